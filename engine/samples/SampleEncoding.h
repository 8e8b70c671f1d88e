#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QByteArray>

/**
 * Encoding blocks of interleaved little-endian samples for a one-channel file: every frame becomes one sample, and
 * a block's samples are made in memory so that they can be written at once.
 *
 * A channel count of 1 means mono, where `channel` is ignored and every sample is kept as it is. Any other count
 * means stereo, left before right: ChannelLeft and ChannelRight keep that sample as it is, every other value makes
 * the average of both. A frame that is not complete at the end of a block is dropped.
 */
namespace vantoraudio::AudioEngine {

/** The average is left / 2 + right / 2, each truncated toward zero before they are added: -3 and -3 give -2. */
[[nodiscard]] QByteArray EncodeS16Block(QByteArrayView block, int channelCount, WavFile::ChannelFormat channel);
[[nodiscard]] QByteArray EncodeS32Block(QByteArrayView block, int channelCount, WavFile::ChannelFormat channel);

[[nodiscard]] QByteArray EncodeF32Block(QByteArrayView block, int channelCount, WavFile::ChannelFormat channel);

/** 24-bit integers become floats, for the library writes no 24-bit files. */
[[nodiscard]] QByteArray EncodeS24BlockAsF32(QByteArrayView block, int channelCount,
                                             WavFile::ChannelFormat channel);

} // namespace vantoraudio::AudioEngine
