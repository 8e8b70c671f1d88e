#pragma once

#include <QtMultimedia/QAudioFormat>

namespace WavTest {

inline QAudioFormat Format(QAudioFormat::SampleFormat sampleFormat, int channelCount, int sampleRate = 48000)
{
    QAudioFormat format;
    format.setSampleFormat(sampleFormat);
    format.setChannelCount(channelCount);
    format.setSampleRate(sampleRate);
    return format;
}

} // namespace WavTest
