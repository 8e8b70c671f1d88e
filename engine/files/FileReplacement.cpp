#include "engine/files/FileReplacement.h"

#include <QtCore/QFileInfo>

#include <filesystem>
#include <system_error>

#ifdef Q_OS_UNIX
#    include <unistd.h>
#endif

namespace vantoraudio::AudioEngine {

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
    return ::fsync(file.handle()) == 0;
#else
    return true;
#endif
}

bool ReplaceFile(const QString& from, const QString& to)
{
    QFile::setPermissions(from, QFile::permissions(to));
    std::error_code error;
    // Unlike QFile::rename(), this replaces what has the name.
    std::filesystem::rename(QFileInfo(from).filesystemFilePath(), QFileInfo(to).filesystemFilePath(), error);
    return !error;
}

} // namespace vantoraudio::AudioEngine
