#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QMutex>
#include <QtCore/QObject>
#include <QtCore/QSet>

struct pa_context;
struct pa_threaded_mainloop;

namespace vantoraudio::AudioEngine {

/**
 * Follows the output devices of the sound server (PulseAudio, or PipeWire in its place) on a connection of its
 * own, because Qt tells of devices that come and go late, in part or not at all.
 *
 * The connection is made when it is first needed and lasts as long as the program; a broken one is replaced at the
 * next Shared(). Where there is no such server nothing is known. All members may be used on any thread.
 */
class SoundServerSinks : public QObject
{
    Q_OBJECT

public:
    /** The program's one connection. */
    static SoundServerSinks& Shared();

    ~SoundServerSinks() override;

    /** Whether the server had a device with this id and has it no longer. */
    bool HasLost(const QByteArray& id) const;

Q_SIGNALS:
    /** A device came or went. Emitted on the connection's own thread; Qt's list may be a moment behind. */
    void Changed();

private:
    class Callbacks;

    SoundServerSinks();

    void ConnectIfBroken();
    void Disconnect();
    void Add(unsigned number, const QByteArray& id);
    void Remove(unsigned number);
    void Forget();

    QMutex m_connecting;
    mutable QMutex m_mutex;
    QHash<unsigned, QByteArray> m_present;
    QSet<QByteArray> m_lost;
    bool m_isBroken = true;
    pa_threaded_mainloop* m_loop = nullptr;
    pa_context* m_context = nullptr;
};

} // namespace vantoraudio::AudioEngine
