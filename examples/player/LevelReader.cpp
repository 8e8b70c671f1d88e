#include "LevelReader.h"

#include "HostPlayer.h"

#include <algorithm>
#include <cmath>

QList<double> LevelReader::PeaksBefore(double seconds, const HostPlayer& player)
{
    const QString path = player.GetAudioFileName();
    if (m_file.fileName() != path || !m_file.isOpen()) {
        m_file.SetLargeFiles(true);
        if (path.isEmpty() || m_file.Open(path) != WavFile::Success) {
            return {};
        }
    }
    const WavFile::ChannelFormat channel = player.GetSelectedChannel();
    if (m_file.GetFileFormat().channelCount() == 2 && channel == WavFile::ChannelLeftRight) {
        return {PeakOf(WavFile::ChannelLeft, seconds), PeakOf(WavFile::ChannelRight, seconds)};
    }
    return {PeakOf(channel, seconds)};
}

void LevelReader::Close()
{
    m_file.close();
}

double LevelReader::PeakOf(WavFile::ChannelFormat channel, double seconds)
{
    m_file.SetSelectedChannel(channel);
    // Some headers state rates of gigahertz.
    const double length = std::min(0.05, 20000.0 / m_file.GetFileFormat().sampleRate());
    m_file.ReadData(std::max(0.0, seconds - length), seconds, 1);
    double peak = 0.0;
    for (const float sample : m_file.GetSamples()) {
        // What is no number counts as silence.
        peak = std::fmax(peak, std::abs(double(sample)));
    }
    return peak;
}
