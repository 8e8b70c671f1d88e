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

/** A widened sample as a part of the largest positive value; the lowest one lies slightly below -1. */
[[nodiscard]] inline float WidenedS24Value(qint32 sample)
{
    // The shift down extends the sign.
    return static_cast<float>(sample >> 8) / 8388607.0F;
}

/** What WidenS24Block() does on a processor without an instruction for it: from 3 * count bytes to 4 * count. */
void WidenS24Plainly(const char* from, char* to, qsizetype count);

/** Every sample of `block` as a little-endian 32-bit one of the same loudness; a sample cut off is dropped. */
[[nodiscard]] QByteArray WidenS24Block(QByteArrayView block);

/**
 * Hands a block over to `use`, widened and in stretches that stay in the processor's cache. No frame is torn
 * apart.
 *
 * Three bytes fit into no processor's lanes; widened first, the samples are converted many at once.
 */
template<typename Use>
void ForWidenedStretches(QByteArrayView block, qsizetype frameSize, Use use)
{
    constexpr qsizetype framesAtOnce = 1024;
    while (!block.isEmpty()) {
        const QByteArrayView stretch = block.first(qMin(framesAtOnce * frameSize, block.size()));
        use(WidenS24Block(stretch));
        block = block.sliced(stretch.size());
    }
}

} // namespace vantoraudio::AudioEngine
