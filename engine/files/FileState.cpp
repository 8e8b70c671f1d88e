#include "engine/files/FileState.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#ifdef Q_OS_UNIX
#    include <sys/stat.h>
#endif

namespace vantoraudio::AudioEngine {

#ifdef Q_OS_UNIX

namespace {

FileState StateOf(const struct stat& status)
{
    FileState state{.device = status.st_dev, .number = status.st_ino, .size = status.st_size, .changed = {}};
#    ifdef Q_OS_DARWIN
    const timespec& time = status.st_mtimespec;
#    else
    const timespec& time = status.st_mtim;
#    endif
    state.changed = QDateTime::fromMSecsSinceEpoch(qint64(time.tv_sec) * 1000 + time.tv_nsec / 1000000);
    return state;
}

} // namespace

FileState FileState::Of(const QString& path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? StateOf(status) : FileState();
}

FileState FileState::Of(const QFileDevice& file)
{
    struct stat status = {};
    return ::fstat(file.handle(), &status) == 0 ? StateOf(status) : FileState();
}

#else

FileState FileState::Of(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() ? FileState{.size = info.size(), .changed = info.lastModified()} : FileState();
}

FileState FileState::Of(const QFileDevice& file)
{
    return Of(file.fileName());
}

#endif

} // namespace vantoraudio::AudioEngine
