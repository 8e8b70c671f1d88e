#pragma once

#include <QtCore/QThread>
#include <QtMultimedia/QAudioDevice>

#include <atomic>
#include <condition_variable>
#include <mutex>

namespace vantoraudio::AudioEngine {

/**
 * The thread on which Qt's connection to the sound server lives, the one that all audio outputs of the program
 * use.
 *
 * Qt makes it on the thread of the first output. By default that is the sound thread of a player, which ends with
 * the player; a server that ends after that is never found again. And when the server ends, Qt frees the
 * connection at once, under the outputs that still use it: 6.4.2 hangs, 6.8.2 crashes. This thread makes the
 * connection before the first output does. It sleeps until the server has ended, every player has handed its
 * output back and another server is there; only then does it let Qt free the connection and look for that server,
 * which it does three seconds later, and only once. Where that server goes before, it sleeps again until the next.
 *
 * It stays as long as the program. All members may be used on any thread.
 */
class QtSoundConnection : public QThread
{
    Q_OBJECT

public:
    static QtSoundConnection& Shared();

    /** Makes the connection, on the first call; the caller waits for it. The device is any that exists. */
    void Make(const QAudioDevice& device);

    /** Whether the server has ended and Qt is not connected to another one yet: an output would find none. */
    bool IsLost() const;

    /** A player that may use its output, and one that has handed it back. */
    void AddUser();
    void RemoveUser();

Q_SIGNALS:
    /** Qt is connected again after the server had ended. Emitted on this thread. */
    void Restored();

protected:
    void run() override;

private:
    class End;

    QtSoundConnection() = default;

    void OnServerLeft();
    void OnServerChanged();
    bool WaitUntilAnotherServerMayBeUsed();
    void ConnectAgain();
    void Look();
    bool IsConnected() const;

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    QAudioDevice m_device;
    // Atomic although they are guarded: the thread sanitizer does not see waiting on a condition inside a library.
    std::atomic<int> m_users = 0;
    std::atomic<bool> m_isMade = false;
    std::atomic<bool> m_isLost = false;
    /** How often a server has left. */
    std::atomic<int> m_leavings = 0;
    std::atomic<bool> m_isEnding = false;
};

} // namespace vantoraudio::AudioEngine
