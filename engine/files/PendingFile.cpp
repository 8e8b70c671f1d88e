#include "engine/files/PendingFile.h"

#include "engine/files/FileReplacement.h"
#include "engine/files/RegularFile.h"

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>

#include <filesystem>
#include <system_error>

namespace vantoraudio::AudioEngine {

namespace {

constexpr qint64 copiedBlockSize = 1 << 20;

QString WithoutLinks(const QString& path)
{
    const QFileInfo info(path);
    QString canonical = info.canonicalFilePath();
    if (!canonical.isEmpty()) {
        return canonical;
    }
    // A link may lead to what is not there yet.
    return info.isSymLink() ? info.symLinkTarget() : info.absoluteFilePath();
}

/** Opening a pipe would wait for its other end. */
bool IsPipe(const QString& path)
{
    std::error_code error;
    return std::filesystem::is_fifo(QFileInfo(path).filesystemFilePath(), error);
}

/** Appending nothing leaves a file as it is. A file that is created by it has a new file's permissions. */
bool OpensForWriting(const QString& path)
{
    return !IsPipe(path) &&
           QFile(path).open(IsFolderPipeOrDevice(path) ? QIODevice::WriteOnly : QIODevice::Append);
}

bool CanBeWritten(const QString& path)
{
    const bool isNew = !QFileInfo::exists(path);
    return OpensForWriting(path) && (!isNew || QFile::remove(path));
}

/** Some file systems flush a file to the disk when it replaces another one, even an empty one. So none is
 * replaced. */
bool MoveToEmptyFile(const QString& from, const QString& to)
{
    QFile::setPermissions(from, QFile::permissions(to));
    return QFile::remove(to) && QFile::rename(from, to);
}

bool CopyRest(QFile& from, QFile& to, const CancelCheck& isCancelled)
{
    QByteArray block = from.read(copiedBlockSize);
    while (!block.isEmpty() && !IsCancelled(isCancelled) && to.write(block) == block.size()) {
        block = from.read(copiedBlockSize);
    }
    return block.isEmpty() && from.atEnd();
}

} // namespace

PendingFile::PendingFile(const QString& path, const QString& sourcePath)
    : m_path(WithoutLinks(path)), m_sourcePath(sourcePath.isEmpty() ? QString() : WithoutLinks(sourcePath))
{
}

bool PendingFile::Open()
{
    // If the only copy of the audio were overwritten byte by byte, it could end as neither the old nor the new
    // file.
    return CanBeWritten(m_path) && (OpenBeside() || (!ReplacesSource() && OpenElsewhere()));
}

bool PendingFile::Commit(const CancelCheck& isCancelled)
{
    // A power failure must not take both the only copy of someone's audio and what replaces it.
    const bool isWhole = ReplacesSource() ? FlushToDisk(m_file) : m_file.flush();
    return isWhole && (m_isBeside ? MoveOver() : CopyOver(isCancelled));
}

void PendingFile::RemoveFormer()
{
    if (IsRegularFile(m_path) && !ReplacesSource() && !QFile::remove(m_path)) {
        QFile::resize(m_path, 0);
    }
}

bool PendingFile::ReplacesSource() const
{
    return IsSameFile(m_sourcePath, m_path);
}

bool PendingFile::OpenBeside()
{
    m_isBeside = !IsFolderPipeOrDevice(m_path) && OpenAs(QFileInfo(m_path).absolutePath() + u"/.decoded-XXXXXX");
    return m_isBeside;
}

bool PendingFile::OpenElsewhere()
{
    return OpenAs(QDir::tempPath() + u"/decoded-XXXXXX");
}

bool PendingFile::OpenAs(const QString& nameTemplate)
{
    m_file.setFileTemplate(nameTemplate);
    return m_file.open();
}

bool PendingFile::MoveOver()
{
    const QString name = m_file.fileName();
    m_file.close();
    const bool isNew = !QFileInfo::exists(m_path);
    // Only its owner may read a temporary file, so it gets the permissions of the file that it replaces.
    const bool isMoved = !name.isEmpty() && OpensForWriting(m_path) &&
                         (isNew ? MoveToEmptyFile(name, m_path) : ReplaceFile(name, m_path));
    m_file.setAutoRemove(!isMoved);
    return isMoved;
}

bool PendingFile::CopyOver(const CancelCheck& isCancelled)
{
    QFile target(m_path);
    // Opening it empties the former file, so that comes last.
    if (IsCancelled(isCancelled) || !m_file.seek(0) ||
        !target.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return false;
    }
    const bool isCopied = CopyRest(m_file, target, isCancelled);
    if (!isCopied && !IsFolderPipeOrDevice(m_path)) {
        target.resize(0);
    }
    return isCopied;
}

} // namespace vantoraudio::AudioEngine
