#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtMultimedia/QAudioFormat>

/**
 * Decoding blocks of interleaved little-endian samples for display: one float for every `step` frames, counted
 * from the block's first frame; the frames between are not looked at.
 *
 * A channel count of 1 means mono, where `channel` is ignored; otherwise the frame's first sample is the left one
 * and the second the right one, and every channel but ChannelLeft and ChannelRight gives their average. A frame
 * that is not complete at the end of a block is dropped. A step below 1 counts as 1. Nothing is clipped.
 */
namespace vantoraudio::AudioEngine {

/** How a block's samples are stored. */
struct BlockFormat
{
    QAudioFormat audio;
    /** Bits per sample; tells 24-bit integers from the true Int32. */
    int sampleSize = 0;
};

/** Which of a block's samples are wanted. */
struct BlockPick
{
    /** In frames. */
    int step = 1;
    WavFile::ChannelFormat channel = WavFile::ChannelNone;
};

/** Appends a block's values to `values`; none for formats other than Int16, Int32 and Float. */
void AppendBlock(QList<float>& values, QByteArrayView block, const BlockFormat& format, BlockPick pick);

void AppendS16Block(QList<float>& values, QByteArrayView block, int channelCount, BlockPick pick);
void AppendS24Block(QList<float>& values, QByteArrayView block, int channelCount, BlockPick pick);
void AppendS32Block(QList<float>& values, QByteArrayView block, int channelCount, BlockPick pick);
void AppendF32Block(QList<float>& values, QByteArrayView block, int channelCount, BlockPick pick);

/** One 24-bit sample of three bytes, lowest first, in the upper 24 of 32 bits. */
[[nodiscard]] inline qint32 S24InS32(const char* bytes)
{
    return static_cast<qint32>(static_cast<quint32>(static_cast<quint8>(bytes[0])) << 8 |
                               static_cast<quint32>(static_cast<quint8>(bytes[1])) << 16 |
                               static_cast<quint32>(static_cast<quint8>(bytes[2])) << 24);
}

/** One 24-bit sample as a part of the largest positive value; the lowest one lies slightly below -1. */
[[nodiscard]] inline float S24Value(const char* bytes)
{
    // The shift down extends the sign.
    return static_cast<float>(S24InS32(bytes) >> 8) / 8388607.0F;
}

} // namespace vantoraudio::AudioEngine
