#include "tests/support/SoundRecording.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <numbers>
#include <utility>

namespace {

constexpr int rate = 44100;
constexpr int window = rate / 5;
constexpr int bytesPerFrame = 4;
constexpr int inaudible = 4;

int SampleAt(const QByteArray& heard, int frame, int channel)
{
    const qsizetype first = heard.size() / bytesPerFrame - window;
    qint16 sample = 0;
    std::memcpy(&sample, heard.constData() + (first + frame) * bytesPerFrame + channel * 2, sizeof sample);
    return sample;
}

} // namespace

SoundRecording::SoundRecording(const QString& sink)
{
    QObject::connect(&m_recorder, &QProcess::readyReadStandardOutput, &m_recorder,
                     [this] { m_heard += m_recorder.readAllStandardOutput(); });
    m_recorder.start(QStringLiteral("parec"),
                     {QStringLiteral("--raw"), QStringLiteral("--format=s16le"), QStringLiteral("--rate=44100"),
                      QStringLiteral("--channels=2"), QStringLiteral("--latency-msec=20"), QStringLiteral("-d"),
                      sink + QStringLiteral(".monitor")});
}

SoundRecording::~SoundRecording()
{
    m_recorder.disconnect();
    m_recorder.kill();
    m_recorder.waitForFinished();
}

void SoundRecording::Clear()
{
    m_recorder.readAllStandardOutput();
    m_heard.clear();
}

bool SoundRecording::HasEnough() const
{
    return m_heard.size() / bytesPerFrame >= window;
}

bool SoundRecording::IsSilent() const
{
    if (!HasEnough()) {
        return false;
    }
    for (int frame = 0; frame < window; ++frame) {
        if (std::abs(SampleAt(m_heard, frame, Left)) > inaudible ||
            std::abs(SampleAt(m_heard, frame, Right)) > inaudible) {
            return false;
        }
    }
    return true;
}

int SoundRecording::Frequency(Channel channel) const
{
    int loudest = 0;
    double highest = static_cast<double>(inaudible) / 32768.0;
    for (int frequency = 50; frequency <= 2000; frequency += 5) {
        const double amplitude = Amplitude(channel, frequency);
        if (amplitude > highest) {
            highest = amplitude;
            loudest = frequency;
        }
    }
    return loudest;
}

// Goertzel's algorithm. The window holds a whole number of periods of every multiple of 5 Hz, so neighbouring
// frequencies do not leak into each other.
double SoundRecording::Amplitude(Channel channel, int frequency) const
{
    if (!HasEnough()) {
        return 0.0;
    }
    const double coefficient = 2.0 * std::cos(2.0 * std::numbers::pi * frequency / rate);
    double previous = 0.0;
    double beforePrevious = 0.0;
    for (int frame = 0; frame < window; ++frame) {
        const double now = SampleAt(m_heard, frame, channel) / 32768.0 + coefficient * previous - beforePrevious;
        beforePrevious = std::exchange(previous, now);
    }
    const double power =
        previous * previous + beforePrevious * beforePrevious - coefficient * previous * beforePrevious;
    return 2.0 * std::sqrt(std::max(power, 0.0)) / window;
}
