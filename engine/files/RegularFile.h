#pragma once

#include <QtCore/QFileInfo>
#include <QtCore/QString>

/**
 * Only regular files are opened: a pipe would wait for its other end, and folders and devices hold no audio file.
 * Links count as what they lead to.
 */
namespace vantoraudio::AudioEngine {

/** False also where nothing has the name. */
[[nodiscard]] inline bool IsRegularFile(const QString& path)
{
    return QFileInfo(path).isFile();
}

/** False also where nothing has the name. */
[[nodiscard]] inline bool IsFolderPipeOrDevice(const QString& path)
{
    const QFileInfo info(path);
    return info.exists() && !info.isFile();
}

/**
 * Empty files are not read: the system has regular files that say they are empty and never come to an end, such as
 * /proc/kmsg. True also where nothing has the name.
 */
[[nodiscard]] inline bool IsEmptyFile(const QString& path)
{
    return QFileInfo(path).size() == 0;
}

} // namespace vantoraudio::AudioEngine
