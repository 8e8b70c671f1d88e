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

/** What AppendBlock() takes for a frame of that format, in bytes; 0 where it yields nothing. */
qsizetype BytesPerFrame(const BlockFormat& format);

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

} // namespace vantoraudio::AudioEngine
