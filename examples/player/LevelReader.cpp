#include "LevelReader.h"

#include "HostPlayer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double ShortestMoment = 0.05;
/** What is farther away was not played up to here. */
constexpr double LongestMoment = 0.2;

} // namespace

QList<double> LevelReader::PeaksBefore(double seconds, const HostPlayer& player)
{
    const QString path = player.GetAudioFileName();
    if (m_file.fileName() != path || !m_file.isOpen()) {
        m_file.SetLargeFiles(true);
        if (path.isEmpty() || m_file.Open(path) != WavFile::Success) {
            return {};
        }
    }
    const double before = std::exchange(m_readTo, seconds);
    const bool goesOn = before < seconds - ShortestMoment && before >= seconds - LongestMoment;
    const double start = goesOn ? before : seconds - ShortestMoment;
    const WavFile::ChannelFormat channel = player.GetSelectedChannel();
    if (m_file.GetFileFormat().channelCount() == 2 && channel == WavFile::ChannelLeftRight) {
        return {PeakOf(WavFile::ChannelLeft, start, seconds), PeakOf(WavFile::ChannelRight, start, seconds)};
    }
    return {PeakOf(channel, start, seconds)};
}

void LevelReader::Close()
{
    m_file.close();
}

double LevelReader::PeakOf(WavFile::ChannelFormat channel, double start, double end)
{
    m_file.SetSelectedChannel(channel);
    // Some headers state rates of gigahertz.
    const double longest = 80000.0 / m_file.GetFileFormat().sampleRate();
    m_file.ReadData(std::max({0.0, start, end - longest}), end, 1);
    double peak = 0.0;
    for (const float sample : m_file.GetSamples()) {
        // What is no number counts as silence.
        peak = std::fmax(peak, std::abs(double(sample)));
    }
    return peak;
}
