#include "engine/samples/S24Samples.h"
#include "engine/samples/SampleBlocks.h"
#include "engine/samples/SampleEncoding.h"

#include <vantorAudioEngine/WavFile.h>

using namespace vantoraudio::AudioEngine;

namespace {

QList<float> Decoded(SampleCoding coding, const QByteArray& block, int step, const QAudioFormat& format,
                     WavFile::ChannelFormat channel)
{
    QList<float> values;
    AppendBlock(values, block, coding, format.channelCount(), {step, channel});
    return values;
}

/** A short write is not noticed here; the error state of `destination` tells. */
void Write(SampleCoding coding, const QByteArray& block, WavFile& destination, const QAudioFormat& format,
           WavFile::ChannelFormat channel)
{
    destination.write(EncodeBlock(block, coding, format.channelCount(), channel));
}

} // namespace

QList<float> WavFile::ReadBlock(const QByteArray& block, int step, const QAudioFormat& format,
                                ChannelFormat channel)
{
    return Decoded(StoredFormat{format, m_sampleSize}.Coding(), block, step, format, channel);
}

QList<float> WavFile::ReadS16Block(const QByteArray& block, int step, const QAudioFormat& format,
                                   ChannelFormat channel)
{
    return Decoded(SampleCoding::S16, block, step, format, channel);
}

QList<float> WavFile::ReadS24Block(const QByteArray& block, int step, const QAudioFormat& format,
                                   ChannelFormat channel)
{
    return Decoded(SampleCoding::S24, block, step, format, channel);
}

QList<float> WavFile::ReadS32Block(const QByteArray& block, int step, const QAudioFormat& format,
                                   ChannelFormat channel)
{
    return Decoded(SampleCoding::S32, block, step, format, channel);
}

QList<float> WavFile::ReadF32Block(const QByteArray& block, int step, const QAudioFormat& format,
                                   ChannelFormat channel)
{
    return Decoded(SampleCoding::F32, block, step, format, channel);
}

float WavFile::ReadS24S(const unsigned char* bytes, const QAudioFormat& /*format*/)
{
    return S24Value(reinterpret_cast<const char*>(bytes));
}

void WavFile::WriteS16Block(const QByteArray& block, WavFile& destination, const QAudioFormat& format,
                            ChannelFormat channel)
{
    Write(SampleCoding::S16, block, destination, format, channel);
}

void WavFile::WriteS32Block(const QByteArray& block, WavFile& destination, const QAudioFormat& format,
                            ChannelFormat channel)
{
    Write(SampleCoding::S32, block, destination, format, channel);
}

void WavFile::WriteF32Block(const QByteArray& block, WavFile& destination, const QAudioFormat& format,
                            ChannelFormat channel)
{
    Write(SampleCoding::F32, block, destination, format, channel);
}

void WavFile::ConvertS24BlockToF32Block(const QByteArray& block, WavFile& destination, const QAudioFormat& format,
                                        ChannelFormat channel)
{
    Write(SampleCoding::S24, block, destination, format, channel);
}
