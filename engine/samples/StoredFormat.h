#pragma once

#include <QtMultimedia/QAudioFormat>

namespace vantoraudio::AudioEngine {

/** How one sample is stored, lowest byte first. */
enum class SampleCoding
{
    Unknown,
    S16,
    S24,
    S32,
    F32
};

/** Of one sample, in bytes. */
constexpr qsizetype SizeOf(SampleCoding coding)
{
    switch (coding) {
    case SampleCoding::S16:
        return 2;
    case SampleCoding::S24:
        return 3;
    case SampleCoding::S32:
    case SampleCoding::F32:
        return 4;
    case SampleCoding::Unknown:
        break;
    }
    return 0;
}

/** How a file stores its samples. A QAudioFormat alone cannot tell: 24-bit integers are Int32 there. */
struct StoredFormat
{
    QAudioFormat audio;
    /** Bits per sample as the header states them. */
    int sampleSize = 0;

    bool Is24Bit() const { return sampleSize == 24; }

    SampleCoding Coding() const
    {
        switch (audio.sampleFormat()) {
        case QAudioFormat::Int16:
            return SampleCoding::S16;
        case QAudioFormat::Int32:
            return Is24Bit() ? SampleCoding::S24 : SampleCoding::S32;
        case QAudioFormat::Float:
            return SampleCoding::F32;
        default:
            return SampleCoding::Unknown;
        }
    }

    /** Of a frame as the header states it, in bytes. Positions in the file are counted by it, also of floats that
     *  state 16 bits. A refused header may leave anything here, 0 and less included. */
    int FrameSize() const { return audio.channelCount() * (sampleSize / 8); }

    /** Of a frame as the block readers take it, in bytes; 0 for an unknown coding. */
    qsizetype CodedFrameSize() const { return qMax(0, audio.channelCount()) * SizeOf(Coding()); }
};

} // namespace vantoraudio::AudioEngine
