#pragma once

#include "engine/samples/StoredFormat.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QByteArray>

namespace vantoraudio::AudioEngine {

/**
 * The samples of one channel of a block of interleaved frames, for a one-channel file: every frame becomes one
 * sample of the same coding, or a float for 24 bits, which the library does not write. Empty for an unknown
 * coding.
 *
 * A channel count of 1 means mono, where `channel` is ignored and every sample is kept as it is. Any other count
 * means stereo, left before right: ChannelLeft and ChannelRight keep that sample as it is, every other value gives
 * the average of both. An incomplete frame at the end of a block is dropped.
 *
 * The average of integers is left / 2 + right / 2, each truncated toward zero before they are added: -3 and -3
 * give -2.
 */
[[nodiscard]] QByteArray EncodeBlock(QByteArrayView block, SampleCoding coding, int channelCount,
                                     WavFile::ChannelFormat channel);

} // namespace vantoraudio::AudioEngine
