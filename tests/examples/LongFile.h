#pragma once

#include "tests/support/WavBytes.h"

#include <QtCore/QFile>
#include <QtCore/QString>

/** A stereo file of up to 400 minutes, silent but for a constant level where it has 8 bits, which takes the disk
 * no room. */
inline bool WriteSilence(const QString& path, qint64 minutes, quint16 bits = 16)
{
    WavTest::WavBytes wav;
    wav.channels = 2;
    wav.bits = bits;
    wav.statedDataSize = minutes * 60 * 44100 * 2 * (bits / 8);
    wav.statedRiffSize = wav.statedDataSize + 36;
    const QByteArray header = wav.Build();
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(header) == header.size() &&
           file.resize(header.size() + wav.statedDataSize);
}
