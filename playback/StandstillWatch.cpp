#include "playback/StandstillWatch.h"

#include "playback/DeviceFollower.h"

#include <QtMultimedia/QMediaPlayer>

#include <chrono>
#include <cstdlib>

namespace vantoraudio::AudioEngine {

namespace {

using namespace std::chrono_literals;

// Longer than a device needs to start. Without sound the position still creeps, a millisecond a second.
constexpr auto longestStandstill = 2000ms;
constexpr auto betweenLooks = 500ms;
constexpr qint64 creep = 2;

} // namespace

StandstillWatch::StandstillWatch(QMediaPlayer& player) : m_player(player)
{
    m_timer.setInterval(betweenLooks);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { EndStandstill(); });
    QObject::connect(&player, &QMediaPlayer::playbackStateChanged, &m_timer, [this] { OnStateChanged(); });
    QObject::connect(&player, &QMediaPlayer::positionChanged, &m_timer,
                     [this](qint64 position) { NoteProgress(position); });
}

void StandstillWatch::OnStateChanged()
{
    ExpectProgress();
    if (m_player.playbackState() == QMediaPlayer::PlayingState) {
        m_timer.start();
    } else {
        m_timer.stop();
    }
}

void StandstillWatch::NoteProgress(qint64 position)
{
    if (std::abs(position - m_lastPosition) > creep) {
        ExpectProgress();
    }
    m_lastPosition = position;
}

void StandstillWatch::ExpectProgress()
{
    m_progressIsDue.setRemainingTime(longestStandstill);
}

void StandstillWatch::EndStandstill()
{
    const bool isPlaying = m_player.playbackState() == QMediaPlayer::PlayingState;
    const bool canSound = m_player.audioOutput() && m_player.duration() > 0;
    if (isPlaying && canSound && m_progressIsDue.hasExpired()) {
        ExpectProgress();
        PlayAgain(m_player);
    }
}

} // namespace vantoraudio::AudioEngine
