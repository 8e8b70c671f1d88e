#pragma once

#include "engine/samples/Truncation.h"

#include <QtCore/QtGlobal>
#include <QtCore/qnumeric.h>

#include <limits>

/** How a WavFile counts the frames and bytes of its audio. */
namespace vantoraudio::AudioEngine {

/**
 * By default in 32 bits, whose numbers wrap around on purpose. In 64 bits for files of any length: a number that
 * they cannot hold becomes the nearest one that they can.
 */
class ByteCounting
{
public:
    explicit constexpr ByteCounting(bool isLarge) noexcept : m_isLarge(isLarge) {}

    /** Truncates toward zero. A value out of reach becomes the nearest number, in both ways of counting. */
    [[nodiscard]] qint64 Truncate(double value) const noexcept
    {
        return m_isLarge ? TruncateToInt64(value) : TruncateToInt32(value);
    }

    /** Wraps a 64-bit number around where frames and bytes are counted in 32 bits. */
    [[nodiscard]] constexpr qint64 Restrict(qint64 number) const noexcept
    {
        return m_isLarge ? number : WrapToInt32(number);
    }

    [[nodiscard]] qint64 Multiply(qint64 a, qint64 b) const noexcept
    {
        return m_isLarge ? MultiplySaturating(a, b) : MultiplyWrapping(WrapToInt32(a), WrapToInt32(b));
    }

    /** Where a file's audio is at a time, in bytes: frames of `frameSize` bytes begin at `dataOffset`. Two such
     *  positions can be subtracted without overflow. */
    [[nodiscard]] qint64 PositionOf(double seconds, int sampleRate, int frameSize,
                                    qint64 dataOffset) const noexcept
    {
        // No file is that long.
        constexpr qint64 farthest = qint64(1) << 60;
        const qint64 frame = Truncate(double(sampleRate) * seconds);
        return dataOffset + qBound(-farthest, Multiply(frameSize, frame), farthest);
    }

    [[nodiscard]] static qint64 MultiplySaturating(qint64 a, qint64 b) noexcept
    {
        qint64 product = 0;
        if (!qMulOverflow(a, b, &product)) {
            return product;
        }
        return (a < 0) == (b < 0) ? std::numeric_limits<qint64>::max() : std::numeric_limits<qint64>::min();
    }

private:
    bool m_isLarge;
};

} // namespace vantoraudio::AudioEngine
