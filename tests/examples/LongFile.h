#pragma once

#include "tests/support/WavBytes.h"

#include <QtCore/QFile>
#include <QtCore/QString>

/** A stereo file of up to 400 minutes, silent, which takes the disk no room. */
inline bool WriteSilence(const QString& path, qint64 minutes)
{
    WavTest::WavBytes wav;
    wav.channels = 2;
    wav.statedDataSize = minutes * 60 * 44100 * 4;
    wav.statedRiffSize = wav.statedDataSize + 36;
    const QByteArray header = wav.Build();
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(header) == header.size() &&
           file.resize(header.size() + wav.statedDataSize);
}
