#include "engine/samples/SampleBlocks.h"

#include "engine/samples/S24Samples.h"

#include <QtCore/QtEndian>

namespace vantoraudio::AudioEngine {

namespace {

// 16 and 24 bits are divided by their largest positive value, and 32 bits are multiplied by 2^-31. So only the
// first two reach slightly below -1. Views and stored lists depend on exactly these values.
constexpr float largestS16 = 32767.0F;
constexpr float s32Scale = 4.656612873077393e-10F;

// Each coding averages in its own way. For values in the usual range both ways give the same.
float AverageInDouble(float left, float right)
{
    return static_cast<float>(static_cast<double>(left + right) * 0.5);
}

float AverageInFloat(float left, float right)
{
    return (right + left) * 0.5F;
}

struct S16
{
    static constexpr qsizetype size = SizeOf(SampleCoding::S16);
    static float Value(const char* bytes)
    {
        return static_cast<float>(qFromLittleEndian<qint16>(bytes)) / largestS16;
    }
    static float Average(float left, float right) { return AverageInDouble(left, right); }
};

struct S24
{
    static constexpr qsizetype size = SizeOf(SampleCoding::S24);
    static float Value(const char* bytes) { return S24Value(bytes); }
    static float Average(float left, float right) { return AverageInFloat(left, right); }
};

struct S32
{
    static constexpr qsizetype size = SizeOf(SampleCoding::S32);
    static float Value(const char* bytes)
    {
        return static_cast<float>(qFromLittleEndian<qint32>(bytes)) * s32Scale;
    }
    static float Average(float left, float right) { return AverageInDouble(left, right); }
};

struct F32
{
    static constexpr qsizetype size = SizeOf(SampleCoding::F32);
    static float Value(const char* bytes) { return qFromLittleEndian<float>(bytes); }
    static float Average(float left, float right) { return AverageInFloat(left, right); }
};

/** Appends what `valueOf` makes of every step-th frame. */
template<typename ValueOf>
void AppendPicked(QList<float>& values, QByteArrayView block, qsizetype frameSize, qsizetype step, ValueOf valueOf)
{
    const qsizetype frameCount = block.size() / frameSize;
    const qsizetype valueCount = (frameCount + step - 1) / step;
    values.resize(values.size() + valueCount);
    float* value = values.data() + values.size() - valueCount;
    const char* frame = block.data();
    for (qsizetype i = 0; i < valueCount; ++i) {
        value[i] = valueOf(frame + i * step * frameSize);
    }
}

template<typename Coding>
void AppendCoded(QList<float>& values, QByteArrayView block, int channelCount, BlockPick pick)
{
    const auto left = [](const char* frame) { return Coding::Value(frame); };
    const auto right = [](const char* frame) { return Coding::Value(frame + Coding::size); };
    const auto average = [=](const char* frame) { return Coding::Average(left(frame), right(frame)); };

    const qsizetype step = qMax(1, pick.step);
    const qsizetype frameSize = Coding::size * channelCount;
    if (channelCount < 1) {
        return;
    }
    if (channelCount == 1 || pick.channel == WavFile::ChannelLeft) {
        AppendPicked(values, block, frameSize, step, left);
    } else if (pick.channel == WavFile::ChannelRight) {
        AppendPicked(values, block, frameSize, step, right);
    } else {
        AppendPicked(values, block, frameSize, step, average);
    }
}

} // namespace

void AppendBlock(QList<float>& values, QByteArrayView block, SampleCoding coding, int channelCount, BlockPick pick)
{
    switch (coding) {
    case SampleCoding::S16:
        return AppendCoded<S16>(values, block, channelCount, pick);
    case SampleCoding::S24:
        return AppendCoded<S24>(values, block, channelCount, pick);
    case SampleCoding::S32:
        return AppendCoded<S32>(values, block, channelCount, pick);
    case SampleCoding::F32:
        return AppendCoded<F32>(values, block, channelCount, pick);
    case SampleCoding::Unknown:
        return;
    }
}

} // namespace vantoraudio::AudioEngine
