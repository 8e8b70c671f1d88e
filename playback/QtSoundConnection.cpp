#include "playback/QtSoundConnection.h"

#include "engine/QtDefects.h"
#include "playback/SoundServerSinks.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <QtMultimedia/QAudioFormat>
#include <QtMultimedia/QAudioSink>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace vantoraudio::AudioEngine {

namespace {

using namespace std::chrono_literals;

/** Qt 6.8 destroys an output on a thread of its own, a moment after the player has handed it back. */
constexpr auto destroying = 300ms;
constexpr auto betweenLooks = 50ms;
/** Qt takes some four seconds to connect again, or gives up; then nothing is worth looking often. */
constexpr auto connecting = 10s;
constexpr auto betweenLateLooks = 1s;
/** A thread that takes longer hangs for good, see QtDefects::KeepsItsLock(). */
constexpr auto ending = 1000ms;

} // namespace

/** Ends the thread ahead of Qt's connection, which is a static object made after this one's thread. */
class QtSoundConnection::End
{
public:
    explicit End(QtSoundConnection& connection) : m_connection(connection) {}
    ~End()
    {
        {
            const std::lock_guard lock(m_connection.m_mutex);
            m_connection.m_isEnding = true;
        }
        m_connection.m_changed.notify_all();
        m_connection.quit();
        if (!m_connection.wait(QDeadlineTimer(ending)) && QtDefects::KeepsItsLock()) {
            // Qt's own static object would wait for the same lock next, and the program would never end.
            std::fflush(nullptr);
            std::_Exit(EXIT_FAILURE);
        }
    }
    Q_DISABLE_COPY_MOVE(End)

private:
    QtSoundConnection& m_connection;
};

QtSoundConnection& QtSoundConnection::Shared()
{
    // Never destroyed: a thread that hangs in Qt must not end the program with an error.
    static QtSoundConnection* const shared = new QtSoundConnection;
    return *shared;
}

void QtSoundConnection::Make(const QAudioDevice& device)
{
    std::unique_lock lock(m_mutex);
    if (isRunning()) {
        return;
    }
    m_device = device;
    connect(&SoundServerSinks::Shared(), &SoundServerSinks::Left, this, &QtSoundConnection::OnServerLeft,
            Qt::DirectConnection);
    connect(&SoundServerSinks::Shared(), &SoundServerSinks::Changed, this, &QtSoundConnection::OnServerChanged,
            Qt::DirectConnection);
    start();
    while (!m_isMade) {
        m_changed.wait(lock);
    }
    static const End end(*this);
}

bool QtSoundConnection::IsLost() const
{
    const std::lock_guard lock(m_mutex);
    return m_isLost;
}

void QtSoundConnection::AddUser()
{
    const std::lock_guard lock(m_mutex);
    ++m_users;
}

void QtSoundConnection::RemoveUser()
{
    const std::lock_guard lock(m_mutex);
    --m_users;
    m_changed.notify_all();
}

void QtSoundConnection::OnServerLeft()
{
    const std::lock_guard lock(m_mutex);
    m_isLost = true;
    ++m_leavings;
    m_changed.notify_all();
}

void QtSoundConnection::OnServerChanged()
{
    const std::lock_guard lock(m_mutex);
    m_changed.notify_all();
}

void QtSoundConnection::run()
{
    IsConnected();
    {
        const std::lock_guard lock(m_mutex);
        m_isMade = true;
    }
    m_changed.notify_all();
    while (WaitUntilAnotherServerMayBeUsed()) {
        ConnectAgain();
    }
}

/** False at the program's end. */
bool QtSoundConnection::WaitUntilAnotherServerMayBeUsed()
{
    std::unique_lock lock(m_mutex);
    while (!m_isEnding && (!m_isLost || m_users > 0 || !SoundServerSinks::Shared().Present())) {
        m_changed.wait(lock);
    }
    return !m_isEnding;
}

void QtSoundConnection::ConnectAgain()
{
    msleep(destroying.count());
    if (!QCoreApplication::instance()) {
        return; // there is no event loop without one
    }
    QEventLoop loop;
    QTimer timer;
    const QDeadlineTimer soon(connecting);
    connect(&timer, &QTimer::timeout, &loop, [&] {
        Look();
        // Qt looks for a server only once, so it must not where that one has gone again.
        if (m_isEnding || !IsLost() || !SoundServerSinks::Shared().Present()) {
            loop.quit();
        } else if (soon.hasExpired()) {
            timer.setInterval(betweenLateLooks);
        }
    });
    timer.start(betweenLooks);
    loop.exec();
    if (!IsLost()) {
        Q_EMIT Restored();
    }
}

void QtSoundConnection::Look()
{
    const int leavings = m_leavings;
    const bool isConnected = IsConnected();
    const std::lock_guard lock(m_mutex);
    // A server that left meanwhile is lost, whatever was seen of it.
    if (isConnected && leavings == m_leavings) {
        m_isLost = false;
    }
}

// A format that nobody can play opens no stream. Qt tells of a missing connection first.
bool QtSoundConnection::IsConnected() const
{
    QAudioSink sink(m_device, QAudioFormat());
    sink.start();
    return sink.error() != QAudio::FatalError;
}

} // namespace vantoraudio::AudioEngine
