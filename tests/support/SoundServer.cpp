#include "tests/support/SoundServer.h"

#include "engine/QtDefects.h"

#include <QtCore/QByteArray>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QFile>
#include <QtCore/QProcess>

#include <csignal>
#include <optional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace {

/** What pactl prints, or nothing when it fails. */
std::optional<QString> Pactl(const QStringList& arguments)
{
    QProcess pactl;
    pactl.setProcessChannelMode(QProcess::SeparateChannels);
    pactl.start(QStringLiteral("pactl"), arguments);
    if (!pactl.waitForFinished() || pactl.exitStatus() != QProcess::NormalExit || pactl.exitCode() != 0) {
        return std::nullopt;
    }
    return QString::fromLocal8Bit(pactl.readAllStandardOutput()).trimmed();
}

} // namespace

#if defined(__SANITIZE_ADDRESS__)
// Qt's FFmpeg backend leaks the options and probing buffers of every file that it opens.
extern "C" Q_DECL_EXPORT const char* __lsan_default_suppressions();
extern "C" Q_DECL_EXPORT const char* __lsan_default_suppressions()
{
    return "leak:libavutil.so\nleak:libffmpegmediaplugin.so\n";
}
#endif

SoundServer::SoundServer(const QStringList& sinks)
{
    QFile::setPermissions(m_folder.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_folder.path()));
    qputenv("PULSE_SERVER", QByteArray("unix:" + QFile::encodeName(m_folder.filePath(QStringLiteral("native")))));
    if (vantoraudio::AudioEngine::QtDefects::PrefersABackendWithoutPlugins() &&
        !qEnvironmentVariableIsSet("QT_MEDIA_BACKEND")) {
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    }
    qunsetenv("PULSE_SINK");
    qunsetenv("PULSE_RUNTIME_PATH");
    Start();
    for (const QString& sink : sinks) {
        AddSink(sink);
    }
}

SoundServer::~SoundServer()
{
    Kill();
}

void SoundServer::End()
{
    EndBy(SIGTERM);
}

void SoundServer::Kill()
{
    EndBy(SIGKILL);
}

void SoundServer::EndBy(int signal)
{
    if (m_process > 0) {
        ::kill(m_process, signal);
        ::waitpid(std::exchange(m_process, -1), nullptr, 0);
    }
    m_modules.clear();
}

void SoundServer::Start()
{
    const QByteArray protocol =
        "--load=module-native-protocol-unix auth-anonymous=1 auth-cookie-enabled=0 socket=" +
        QFile::encodeName(m_folder.filePath(QStringLiteral("native")));
    const QByteArray home = QFile::encodeName(m_folder.path());
    m_process = ::fork();
    if (m_process == 0) {
        // A crashing test must not leave a server behind.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::setenv("HOME", home.constData(), 1);
        ::execlp("pulseaudio", "pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--log-target=null",
                 "--realtime=no", "--high-priority=no", protocol.constData(), static_cast<char*>(nullptr));
        ::_exit(127);
    }
    const QDeadlineTimer deadline(30000);
    while (!IsRunning() && !deadline.hasExpired()) {
    }
}

bool SoundServer::IsRunning() const
{
    return Pactl({QStringLiteral("info")}).has_value();
}

bool SoundServer::AddSink(const QString& name)
{
    const auto module = Pactl({QStringLiteral("load-module"), QStringLiteral("module-null-sink"),
                               QStringLiteral("sink_name=") + name, QStringLiteral("rate=44100")});
    if (!module) {
        return false;
    }
    m_modules.insert(name, *module);
    return true;
}

bool SoundServer::RemoveSink(const QString& name)
{
    return m_modules.contains(name) && Pactl({QStringLiteral("unload-module"), m_modules.take(name)}).has_value();
}

void SoundServer::RemoveAllSinks()
{
    // The stand-in first, or it would make one for the others.
    RemoveSink(QStringLiteral("module-always-sink"));
    const QStringList names = m_modules.keys();
    for (const QString& name : names) {
        RemoveSink(name);
    }
}

bool SoundServer::StandIn()
{
    const QString name = QStringLiteral("module-always-sink");
    const auto module = Pactl({QStringLiteral("load-module"), name});
    if (!module) {
        return false;
    }
    m_modules.insert(name, *module);
    return true;
}
