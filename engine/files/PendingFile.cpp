#include "engine/files/PendingFile.h"

#include "engine/files/FileReplacement.h"
#include "engine/files/Leftovers.h"
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
    QFileInfo info(path);
    QString canonical = info.canonicalFilePath();
    if (!canonical.isEmpty()) {
        return canonical;
    }
    // A link may lead to what is not there yet, also through other links, but not for ever.
    for (int links = 0; info.isSymLink() && links < 40; ++links) {
        info.setFile(info.symLinkTarget());
    }
    return info.absoluteFilePath();
}

QString PlaceOf(const QString& path, PendingRights rights)
{
    if (path.isEmpty()) {
        return {};
    }
    return rights.replacesLinks ? QFileInfo(path).absoluteFilePath() : WithoutLinks(path);
}

/** Opening a pipe would wait for its other end. */
bool IsPipe(const QString& path)
{
    std::error_code error;
    return std::filesystem::is_fifo(QFileInfo(path).filesystemFilePath(), error);
}

/** Appending nothing leaves a file as it is. */
bool OpensForWriting(const QString& path)
{
    return !IsPipe(path) &&
           QFile(path).open(IsFolderPipeOrDevice(path) ? QIODevice::WriteOnly : QIODevice::Append);
}

/** Nothing is created for a trial: whoever ends the program in that moment would leave an empty file. */
bool IsPossibleName(const QString& path)
{
    std::error_code error;
    const auto status = std::filesystem::symlink_status(QFileInfo(path).filesystemFilePath(), error);
    return !path.isEmpty() && status.type() != std::filesystem::file_type::none;
}

/** Only its owner may read a temporary file. What others may do with a new file is for the system to say. */
QFile::Permissions PermissionsOfNewFiles(const QString& hiddenName)
{
    QFile trial(hiddenName + u'p');
    if (!trial.open(QIODevice::WriteOnly | QIODevice::NewOnly)) {
        return QFile::ReadOwner | QFile::WriteOwner;
    }
    const QFile::Permissions permissions = trial.permissions();
    trial.remove();
    return permissions;
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

PendingFile::PendingFile(const QString& path, const QString& sourcePath, PendingRights rights)
    : m_path(PlaceOf(path, rights)), m_sourcePath(PlaceOf(sourcePath, {})), m_rights(rights)
{
}

bool PendingFile::Open()
{
    if (ReplacesSource()) {
        m_source = FileState::Of(m_path);
    }
    // If the only copy of the audio were overwritten byte by byte, it could end as neither the old nor the new
    // file.
    return MayTakeName() && (OpenBeside() || (HasFormer() && !m_source && OpenElsewhere()));
}

bool PendingFile::Store()
{
    // A power failure must not take both the only copy of someone's audio and what replaces it.
    return m_source ? FlushToDisk(m_file) : m_file.flush();
}

bool PendingFile::IsSourceUnchanged() const
{
    return !m_source || *m_source == FileState::Of(m_path);
}

bool PendingFile::Commit(const CancelCheck& isCancelled)
{
    return Store() && IsSourceUnchanged() && (m_isBeside ? MoveOver() : CopyOver(isCancelled));
}

bool PendingFile::CommitToFreeName()
{
    return Store() && MoveIfFree();
}

bool PendingFile::CommitUnlessTaken()
{
    return Store() && MoveUnlessTaken();
}

void PendingFile::KeepPart()
{
    m_file.flush();
    static_cast<void>(MoveUnlessTaken());
}

void PendingFile::RemoveFormer()
{
    if (IsRegularFile(m_path) && !m_source && !ReplacesSource() && !QFile::remove(m_path)) {
        QFile::resize(m_path, 0);
    }
}

bool PendingFile::ReplacesSource() const
{
    return IsSameFile(m_sourcePath, m_path);
}

bool PendingFile::HasFormer() const
{
    const QFileInfo info(m_path);
    return info.exists() && !(m_rights.replacesLinks && info.isSymLink());
}

bool PendingFile::MayTakeName() const
{
    if (!HasFormer()) {
        return IsPossibleName(m_path);
    }
    return OpensForWriting(m_path) || (m_rights.replacesReadOnly && IsRegularFile(m_path));
}

bool PendingFile::OpenBeside()
{
    const bool hasFolder = !HasFormer() || !IsFolderPipeOrDevice(m_path);
    m_isBeside = hasFolder && OpenIn(QFileInfo(m_path).absolutePath());
    return m_isBeside;
}

bool PendingFile::OpenElsewhere()
{
    return OpenIn(QDir::tempPath());
}

/** A QTemporaryFile stays open until it is destroyed, and locked. */
bool PendingFile::OpenIn(const QString& folder)
{
    m_file.setFileTemplate(HiddenTemplate(folder, QStringLiteral("written")));
    return m_file.open() && LockHandle(m_file.handle());
}

bool PendingFile::MoveOver()
{
    // A file that has grown without a name gets one here.
    const QString name = m_file.fileName();
    const bool isMoved = !name.isEmpty() && ((!HasFormer() && MoveToFree(name)) ||
                                             (HasFormer() && MayTakeName() && ReplaceFile(name, m_path)));
    m_file.setAutoRemove(!isMoved);
    return isMoved;
}

bool PendingFile::MoveIfFree()
{
    if (HasFormer()) {
        return false;
    }
    const QString name = m_file.fileName();
    const bool isMoved = !name.isEmpty() && MoveToFree(name);
    m_file.setAutoRemove(!isMoved);
    return isMoved;
}

bool PendingFile::MoveUnlessTaken()
{
    return MoveIfFree() || HasFormer();
}

bool PendingFile::MoveToFree(const QString& name)
{
    QFile::setPermissions(name, m_permissions ? *m_permissions : PermissionsOfNewFiles(name));
    return MoveToFreeName(name, m_path) || (m_rights.replacesLinks && ReplaceLink(name, m_path));
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
