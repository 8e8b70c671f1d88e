#include "engine/samples/SampleEncoding.h"

#include "engine/samples/S24Samples.h"

#include <QtCore/QtEndian>

#include <bit>

namespace vantoraudio::AudioEngine {

namespace {

/** Both are halved before they are added, so that the sum fits. Programs rely on the rounding that follows from
 * it. */
template<typename Integer>
Integer AverageOfIntegers(Integer left, Integer right)
{
    return static_cast<Integer>(left / 2 + right / 2);
}

float AverageOfFloats(float left, float right)
{
    return left * 0.5F + right * 0.5F;
}

template<typename Integer>
struct IntegerCoding
{
    using Sample = Integer;
    static constexpr qsizetype size = sizeof(Integer);
    static Sample Value(const char* bytes) { return qFromLittleEndian<Integer>(bytes); }
    static Sample Average(Sample left, Sample right) { return AverageOfIntegers(left, right); }
};

/** Floats are copied as bits, so that a single channel keeps whatever its samples hold. */
struct FloatCoding
{
    using Sample = quint32;
    static constexpr qsizetype size = sizeof(float);
    static Sample Value(const char* bytes) { return qFromLittleEndian<quint32>(bytes); }
    static Sample Average(Sample left, Sample right)
    {
        return std::bit_cast<quint32>(AverageOfFloats(std::bit_cast<float>(left), std::bit_cast<float>(right)));
    }
};

struct S24AsFloatCoding
{
    using Sample = float;
    static constexpr qsizetype size = 3;
    static Sample Value(const char* bytes) { return S24Value(bytes); }
    static Sample Average(Sample left, Sample right) { return AverageOfFloats(left, right); }
};

/** What `sampleOf` makes of every frame. The frame size is a constant, so that the loop can be vectorised. */
template<qsizetype frameSize, typename SampleOf>
QByteArray EncodeFrames(QByteArrayView block, SampleOf sampleOf)
{
    constexpr qsizetype size = sizeof(sampleOf(block.data()));
    const qsizetype frameCount = block.size() / frameSize;
    QByteArray encoded(frameCount * size, Qt::Uninitialized);
    const char* frames = block.data();
    char* samples = encoded.data();
    for (qsizetype i = 0; i < frameCount; ++i) {
        qToLittleEndian(sampleOf(frames + i * frameSize), samples + i * size);
    }
    return encoded;
}

template<typename Coding>
QByteArray EncodeCoded(QByteArrayView block, int channelCount, WavFile::ChannelFormat channel)
{
    constexpr qsizetype stereo = 2 * Coding::size;
    const auto left = [](const char* frame) { return Coding::Value(frame); };
    const auto right = [](const char* frame) { return Coding::Value(frame + Coding::size); };
    const auto average = [=](const char* frame) { return Coding::Average(left(frame), right(frame)); };

    if (channelCount == 1) {
        return EncodeFrames<Coding::size>(block, left);
    }
    switch (channel) {
    case WavFile::ChannelLeft:
        return EncodeFrames<stereo>(block, left);
    case WavFile::ChannelRight:
        return EncodeFrames<stereo>(block, right);
    default:
        return EncodeFrames<stereo>(block, average);
    }
}

} // namespace

QByteArray EncodeBlock(QByteArrayView block, SampleCoding coding, int channelCount, WavFile::ChannelFormat channel)
{
    switch (coding) {
    case SampleCoding::S16:
        return EncodeCoded<IntegerCoding<qint16>>(block, channelCount, channel);
    case SampleCoding::S24:
        return EncodeCoded<S24AsFloatCoding>(block, channelCount, channel);
    case SampleCoding::S32:
        return EncodeCoded<IntegerCoding<qint32>>(block, channelCount, channel);
    case SampleCoding::F32:
        return EncodeCoded<FloatCoding>(block, channelCount, channel);
    case SampleCoding::Unknown:
        break;
    }
    return {};
}

} // namespace vantoraudio::AudioEngine
