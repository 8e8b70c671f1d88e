#pragma once

#include <QtCore/QFileInfo>
#include <QtCore/QStorageInfo>
#include <QtCore/QString>

namespace vantoraudio::AudioEngine {

/** Whether the disk on which `path` lies has so many bytes left. True where that cannot be known. */
[[nodiscard]] inline bool HasRoomFor(double bytes, const QString& path)
{
    const QStorageInfo storage(QFileInfo(path).absolutePath());
    return !storage.isValid() || double(storage.bytesAvailable()) >= bytes;
}

} // namespace vantoraudio::AudioEngine
