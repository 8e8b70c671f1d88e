#include "engine/samples/S24Samples.h"
#include "engine/samples/SampleBlocks.h"
#include "engine/samples/SampleEncoding.h"

#include <vantorAudioEngine/WavFile.h>

using namespace vantoraudio::AudioEngine;

QList<float> WavFile::ReadBlock(const QByteArray& block, int step, const QAudioFormat& format,
                                ChannelFormat channel)
{
    QList<float> values;
    AppendBlock(values, block, {format, m_sampleSize}, {step, channel});
    return values;
}

QList<float> WavFile::ReadS16Block(const QByteArray& block, int step, const QAudioFormat& format,
                                   ChannelFormat channel)
{
    QList<float> values;
    AppendS16Block(values, block, format.channelCount(), {step, channel});
    return values;
}

QList<float> WavFile::ReadS24Block(const QByteArray& block, int step, const QAudioFormat& format,
                                   ChannelFormat channel)
{
    QList<float> values;
    AppendS24Block(values, block, format.channelCount(), {step, channel});
    return values;
}

QList<float> WavFile::ReadS32Block(const QByteArray& block, int step, const QAudioFormat& format,
                                   ChannelFormat channel)
{
    QList<float> values;
    AppendS32Block(values, block, format.channelCount(), {step, channel});
    return values;
}

QList<float> WavFile::ReadF32Block(const QByteArray& block, int step, const QAudioFormat& format,
                                   ChannelFormat channel)
{
    QList<float> values;
    AppendF32Block(values, block, format.channelCount(), {step, channel});
    return values;
}

float WavFile::ReadS24S(const unsigned char* bytes, const QAudioFormat& /*format*/)
{
    return S24Value(reinterpret_cast<const char*>(bytes));
}

void WavFile::WriteS16Block(const QByteArray& block, WavFile& destination, const QAudioFormat& format,
                            ChannelFormat channel)
{
    destination.Append(EncodeS16Block(block, format.channelCount(), channel));
}

void WavFile::WriteS32Block(const QByteArray& block, WavFile& destination, const QAudioFormat& format,
                            ChannelFormat channel)
{
    destination.Append(EncodeS32Block(block, format.channelCount(), channel));
}

void WavFile::WriteF32Block(const QByteArray& block, WavFile& destination, const QAudioFormat& format,
                            ChannelFormat channel)
{
    destination.Append(EncodeF32Block(block, format.channelCount(), channel));
}

void WavFile::ConvertS24BlockToF32Block(const QByteArray& block, WavFile& destination, const QAudioFormat& format,
                                        ChannelFormat channel)
{
    destination.Append(EncodeS24BlockAsF32(block, format.channelCount(), channel));
}
