#pragma once

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <sys/types.h>

/**
 * A PulseAudio server of the test's own, with sinks that come and go as the test wants and are heard by nobody.
 *
 * Create it first thing in main(), before any Qt application or multimedia object: it points PULSE_SERVER and
 * XDG_RUNTIME_DIR of this process at itself, and asks a Qt that would take another one for the FFmpeg
 * backend; Qt reads them once. It ends with the object, and with the process at the latest.
 */
class SoundServer
{
public:
    explicit SoundServer(const QStringList& sinks = {});
    ~SoundServer();
    Q_DISABLE_COPY_MOVE(SoundServer)

    /** Whether the server answers. */
    bool IsRunning() const;

    /** True when the server has made the sink; Qt lists it a moment later. */
    bool AddSink(const QString& name);
    bool RemoveSink(const QString& name);
    void RemoveAllSinks();

    /** Ends the server in good order, as "pulseaudio -k" or a session's end does, or as a crash would. */
    void End();
    void Kill();
    /** Starts a server without sinks at the same place. */
    void Start();

    /** From now on the server makes a sink "auto_null" whenever it has no other one, as desktop systems do. */
    bool StandIn();

private:
    void EndBy(int signal);

    QTemporaryDir m_folder;
    pid_t m_process = -1;
    QHash<QString, QString> m_modules;
};
