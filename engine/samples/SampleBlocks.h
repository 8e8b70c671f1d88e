#pragma once

#include "engine/samples/StoredFormat.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>

/**
 * Decodes blocks of interleaved little-endian samples for display: one float for every `step` frames, beginning
 * with the first frame of the block. The frames between them are ignored.
 *
 * A channel count of 1 means mono, where `channel` is ignored. Otherwise the first sample of a frame is the left
 * one and the second the right one, and every channel but ChannelLeft and ChannelRight gives their average. An
 * incomplete frame at the end of a block is dropped. A step below 1 counts as 1. Nothing is clipped.
 */
namespace vantoraudio::AudioEngine {

/** Which of a block's samples are wanted. */
struct BlockPick
{
    /** In frames. */
    int step = 1;
    WavFile::ChannelFormat channel = WavFile::ChannelNone;
};

/** Appends a block's values to `values`; none for an unknown coding and for channel counts below 1. */
void AppendBlock(QList<float>& values, QByteArrayView block, SampleCoding coding, int channelCount,
                 BlockPick pick);

} // namespace vantoraudio::AudioEngine
