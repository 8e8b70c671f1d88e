#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QMutex>
#include <QtCore/QObject>
#include <QtCore/QSet>

#include <optional>

struct pa_context;
struct pa_threaded_mainloop;

namespace vantoraudio::AudioEngine {

/**
 * Follows the output devices ("sinks") of the sound server, PulseAudio or PipeWire in its place, on a connection
 * of its own, because Qt tells of devices that come and go late, in part or not at all.
 *
 * The connection lasts as long as the program. While there is no server it is tried again once a second, on a
 * thread of its own. All members may be used on any thread.
 */
class SoundServerSinks : public QObject
{
    Q_OBJECT

public:
    /** The program's one connection, made at the first call. It has to answer before anything is known. */
    static SoundServerSinks& Shared();

    ~SoundServerSinks() override;

    /** The ids of the devices that the server has now; nothing while that is not known. */
    std::optional<QSet<QByteArray>> Present() const;

    /** Whether the server has ended that was there, and no other one has told its devices yet. */
    bool IsAway() const;

    /** Whether this is, or was in the program's time, a device of the server. */
    bool Knows(const QByteArray& id) const;

Q_SIGNALS:
    /** A device or the server came or went. Emitted on the connection's own thread; Qt's list may be behind. */
    void Changed();

    /** The server has ended, or a connection to it. Emitted on the connection's own thread, ahead of Changed(). */
    void Left();

private:
    class Callbacks;

    SoundServerSinks();

    void Connect();
    void ConnectLater();
    void Disconnect();
    void Add(unsigned number, const QByteArray& id);
    void Remove(unsigned number);
    void SetListed(bool isListed);

    mutable QMutex m_mutex;
    QHash<unsigned, QByteArray> m_present;
    QSet<QByteArray> m_known;
    bool m_isListed = false;
    bool m_isAway = false;
    pa_threaded_mainloop* m_loop = nullptr;
    pa_context* m_context = nullptr;
};

} // namespace vantoraudio::AudioEngine
