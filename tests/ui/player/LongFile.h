#pragma once

#include "tests/support/WavBytes.h"

#include <QtCore/QFile>

/** Half an hour of stereo silence that takes no room on the disk; no task on it ends by itself within a test. */
inline bool MakeLongFile(const QString& path)
{
    constexpr quint32 dataSize = 1800U * 44100U * 4U;
    QFile file(path);
    const QByteArray header =
        WavTest::WavBytes{.channels = 2, .sampleRate = 44100, .statedDataSize = dataSize}.Build();
    return file.open(QIODevice::WriteOnly) && file.write(header) == header.size() &&
           file.resize(header.size() + qint64(dataSize));
}
