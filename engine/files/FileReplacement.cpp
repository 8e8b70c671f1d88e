#include "engine/files/FileReplacement.h"

#include <QtCore/QFileInfo>

#include <filesystem>
#include <system_error>

#ifdef Q_OS_UNIX
#    include <cerrno>
#    include <unistd.h>
#endif

namespace vantoraudio::AudioEngine {

namespace {

bool Rename(const QString& from, const QString& to)
{
    std::error_code error;
    // Unlike QFile::rename(), this replaces what has the name, and never copies byte by byte.
    std::filesystem::rename(QFileInfo(from).filesystemFilePath(), QFileInfo(to).filesystemFilePath(), error);
    return !error;
}

bool IsTaken(const QString& path)
{
    return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
}

} // namespace

bool IsSameFile(const QString& a, const QString& b)
{
    std::error_code error;
    return std::filesystem::equivalent(QFileInfo(a).filesystemFilePath(), QFileInfo(b).filesystemFilePath(),
                                       error);
}

bool FlushToDisk(QFile& file)
{
    if (!file.flush()) {
        return false;
    }
#ifdef Q_OS_UNIX
    int result = ::fsync(file.handle());
    while (result != 0 && errno == EINTR) {
        result = ::fsync(file.handle());
    }
    return result == 0;
#else
    return true;
#endif
}

bool ReplaceFile(const QString& from, const QString& to)
{
    QFile::setPermissions(from, QFile::permissions(to));
    return Rename(from, to);
}

bool MoveToFreeName(const QString& from, const QString& to)
{
#ifdef Q_OS_UNIX
    // Unlike a rename, this fails for a name that is taken.
    if (::link(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()) == 0) {
        QFile::remove(from);
        return true;
    }
#endif
    return !IsTaken(to) && Rename(from, to);
}

bool ReplaceLink(const QString& from, const QString& to)
{
    return QFileInfo(to).isSymLink() && Rename(from, to);
}

} // namespace vantoraudio::AudioEngine
