#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QtEndian>

/** Samples of three bytes, lowest first. */
namespace vantoraudio::AudioEngine {

/** One sample in the upper 24 of 32 bits. */
[[nodiscard]] inline qint32 S24InS32(const char* bytes)
{
    return static_cast<qint32>(static_cast<quint32>(static_cast<quint8>(bytes[0])) << 8 |
                               static_cast<quint32>(static_cast<quint8>(bytes[1])) << 16 |
                               static_cast<quint32>(static_cast<quint8>(bytes[2])) << 24);
}

/** One sample as a part of the largest positive value; the lowest one lies slightly below -1. */
[[nodiscard]] inline float S24Value(const char* bytes)
{
    // The shift down extends the sign.
    return static_cast<float>(S24InS32(bytes) >> 8) / 8388607.0F;
}

/** Every sample of `block` as a little-endian 32-bit one of the same loudness. An incomplete last one is dropped.
 */
[[nodiscard]] QByteArray WidenS24Block(QByteArrayView block);

} // namespace vantoraudio::AudioEngine
