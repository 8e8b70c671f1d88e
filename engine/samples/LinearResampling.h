#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <span>

/** Linear interpolation between sample rates, each decoded buffer by itself: the way of Decoder::Convert(). */
namespace vantoraudio::AudioEngine {

/** The interleaved samples of one decoded buffer. */
template<typename Sample>
struct SampleBuffer
{
    std::span<const Sample> samples;
    int channelCount = 0;
    /** In Hz. */
    int sampleRate = 0;
};

/**
 * The bytes of the buffer's samples at `targetRate`; sample type and channel count stay. Exists for quint8,
 * qint16, qint32 and float.
 *
 * A buffer that already has the target rate is copied. Any other becomes frames * targetRate / sampleRate frames,
 * where only the lowest 32 bits of the product count. The result is empty when that is below 1, and for rates and
 * channel counts below 1. Integers are truncated toward zero.
 */
template<typename Sample>
[[nodiscard]] QByteArray ResampleLinearly(const SampleBuffer<Sample>& buffer, int targetRate);

} // namespace vantoraudio::AudioEngine
