#pragma once

#include "tests/support/WavBytes.h"

#include <vantorAudioEngine/WavFile.h>

#include <cmath>

/** Audio that also computes its one-channel exports, sample by sample and by arithmetic of its own. */
namespace WavTest {

enum Coding
{
    S16,
    S24,
    S32,
    F32
};

struct TestAudio
{
    Coding coding = S16;
    quint16 channels = 1;
    quint32 rate = 8000;
    int frames = 0;
    /** Bytes behind the audio, which a reader of whole blocks may meet. */
    QByteArray trailer = {};
    qint64 statedDataSize = realSize;

    static int Bits(Coding coding) { return coding == S16 ? 16 : coding == S24 ? 24 : 32; }
    int FrameBytes() const { return Bits(coding) / 8 * channels; }
    /** Of a sample in a one-channel export. */
    int ExportedBytes() const { return coding == S16 ? 2 : 4; }

    /** The same at every call, of both signs, over the whole range. */
    qint64 Integer(int frame, int channel) const
    {
        auto x = static_cast<quint32>(frame * 2 + channel + 1) * 2654435761U;
        x ^= x >> 15;
        x *= 2246822519U;
        return static_cast<qint32>(x) >> (32 - (coding == F32 ? 16 : Bits(coding)));
    }
    float Float(int frame, int channel) const { return static_cast<float>(Integer(frame, channel)) / 16384.0F; }

    QByteArray Sample(int frame, int channel) const
    {
        return coding == F32 ? LittleEndian(Float(frame, channel))
                             : LittleEndian(static_cast<qint32>(Integer(frame, channel))).left(Bits(coding) / 8);
    }
    QByteArray Data() const
    {
        QByteArray data;
        for (int frame = 0; frame < frames; ++frame) {
            for (int channel = 0; channel < channels; ++channel) {
                data += Sample(frame, channel);
            }
        }
        return data;
    }
    QByteArray File() const
    {
        return WavBytes{.formatTag = static_cast<quint16>(coding == F32 ? 3 : 1),
                        .channels = channels,
                        .sampleRate = rate,
                        .bits = static_cast<quint16>(Bits(coding)),
                        .data = Data(),
                        .statedDataSize = statedDataSize}
                   .Build() +
               trailer;
    }

    /** The samples of an export of these frames. */
    QByteArray ExportedData(int firstFrame, int endFrame, WavFile::ChannelFormat channel) const
    {
        QByteArray data;
        for (int frame = firstFrame; frame < endFrame; ++frame) {
            data += ExportedSample(frame, channel);
        }
        return data;
    }
    /** A whole exported file, with a header that states `statedSize` bytes. */
    QByteArray Exported(const QByteArray& data, qint64 statedSize) const
    {
        return WavBytes{.statedRiffSize = statedSize + 36,
                        .formatTag = static_cast<quint16>(coding == F32 || coding == S24 ? 3 : 1),
                        .sampleRate = rate,
                        .bits = static_cast<quint16>(ExportedBytes() * 8),
                        .data = data,
                        .statedDataSize = static_cast<quint32>(statedSize)}
            .Build();
    }

private:
    QByteArray ExportedSample(int frame, WavFile::ChannelFormat channel) const
    {
        if (channels == 1 || channel == WavFile::ChannelLeft) {
            return Unmixed(frame, 0);
        }
        return channel == WavFile::ChannelRight ? Unmixed(frame, 1) : Mixed(frame);
    }
    QByteArray Unmixed(int frame, int channel) const
    {
        return coding == S24 ? LittleEndian(S24AsFloat(frame, channel)) : Sample(frame, channel);
    }
    QByteArray Mixed(int frame) const
    {
        if (coding == S24) {
            return LittleEndian(Middle(S24AsFloat(frame, 0), S24AsFloat(frame, 1)));
        }
        if (coding == F32) {
            return LittleEndian(Middle(Float(frame, 0), Float(frame, 1)));
        }
        const double sum =
            std::trunc(double(Integer(frame, 0)) / 2.0) + std::trunc(double(Integer(frame, 1)) / 2.0);
        return LittleEndian(static_cast<qint32>(sum)).left(Bits(coding) / 8);
    }
    float S24AsFloat(int frame, int channel) const
    {
        return static_cast<float>(double(Integer(frame, channel)) / 8388607.0);
    }
    static float Middle(float a, float b) { return static_cast<float>((double(a) + double(b)) / 2.0); }
};

} // namespace WavTest
