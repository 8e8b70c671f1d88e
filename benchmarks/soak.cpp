/**
 * Uses a player at random for a while, as a user in a hurry would, and fails where memory, open files or threads
 * grow:
 *
 *   scripts/private-session.sh build/dev/benchmarks/vantoraudio-soak SECONDS [SEED]
 *
 * scripts/soak.sh builds it and calls it so. The seed is printed and makes the same calls again, though not at the
 * same moments. Every now and then the player is emptied and the process measured. What its first quarter shows is
 * left out, as caches fill there.
 */
#include "tests/support/TemporaryFiles.h"
#include "tests/support/WavBytes.h"

#include <vantorAudioEngine/AudioPlayerWidget.h>

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QLibraryInfo>
#include <QtCore/QLoggingCategory>
#include <QtCore/QPointer>
#include <QtCore/QThreadPool>
#include <QtCore/QVersionNumber>
#include <QtGui/QWheelEvent>
#include <QtMultimedia/QMediaDevices>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <random>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;

namespace {

/** What the process holds. Without the idle threads of pools, each of which has a file open: they come and go, and
 * there are 16 of the loads and one for each processor at most. */
struct Holdings
{
    qint64 kibibytes = 0;
    qint64 files = 0;
    qint64 threads = 0;

    static Holdings Now()
    {
        malloc_trim(0);
        const QByteArray pages = TemporaryFiles::Read(u"/proc/self/statm"_s).split(' ').value(1);
        const QStringList threads = EntriesOf(u"/proc/self/task"_s);
        const qint64 pooled = std::count_if(threads.begin(), threads.end(), &Holdings::IsPooled);
        return {pages.toLongLong() * sysconf(_SC_PAGESIZE) / 1024, EntriesOf(u"/proc/self/fd"_s).size() - pooled,
                threads.size() - pooled};
    }

private:
    static QStringList EntriesOf(const QString& folder)
    {
        return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    }
    static bool IsPooled(const QString& thread)
    {
        return TemporaryFiles::Read(u"/proc/self/task/%1/comm"_s.arg(thread)).trimmed() == "Thread (pooled)";
    }
};

class Random
{
public:
    explicit Random(unsigned seed) : m_engine(seed) {}

    int Below(int count) { return std::uniform_int_distribution(0, count - 1)(m_engine); }
    double UpTo(double most) { return std::uniform_real_distribution(0.0, most)(m_engine); }

private:
    std::mt19937 m_engine;
};

class Soak
{
public:
    explicit Soak(unsigned seed) : m_random(seed)
    {
        MakeFiles();
        MakePlayer();
    }

    /** Empties the player and takes the measure of the process. */
    Holdings Rest();
    void DoSomething();
    /** Prints how often what was done; false where something never was, or never ended. */
    bool Tell() const;

private:
    void MakeFiles();
    void MakePlayer();
    void Load();
    void Play();
    void Look();
    void Export();
    void Set();

    double AnyTime() { return m_random.UpTo(m_player->GetAudioDuration()); }

    Random m_random;
    TemporaryFiles m_originals;
    TemporaryFiles m_copies;
    QStringList m_files;
    std::unique_ptr<AudioPlayerWidget> m_player;
    int m_loads = 0;
    int m_refusals = 0;
    int m_positions = 0;
    int m_snippets = 0;
    int m_pictures = 0;
    int m_channels = 0;
    int m_players = 0;
    bool m_isStuck = false;
};

/** Of four kinds: copied, imported, imported because it is cut off, and refused. */
void Soak::MakeFiles()
{
    const auto tone = [](qsizetype size, int period) {
        QByteArray bytes(size, '\0');
        for (qsizetype i = 0; i < size; ++i) {
            bytes[i] = static_cast<char>((i % period) * 60 / period);
        }
        return bytes;
    };
    const WavTest::WavBytes stereo{.channels = 2, .data = tone(44100 * 4 * 30, 400)};
    const WavTest::WavBytes longMono{.sampleRate = 8000, .data = tone(8000 * 2 * 400, 40)};
    const WavTest::WavBytes bytes{.bits = 8, .data = tone(44100 * 20, 100)};
    m_files = {m_originals.Write(u"stereo.wav"_s, stereo.Build()),
               m_originals.Write(u"long.wav"_s, longMono.Build()),
               m_originals.Write(u"bytes.wav"_s, bytes.Build()),
               m_originals.Write(u"cut off.wav"_s, stereo.Build().chopped(1000000)),
               m_originals.Write(u"text.mp3"_s, "no audio")};
}

void Soak::MakePlayer()
{
    ++m_players;
    m_player = std::make_unique<AudioPlayerWidget>();
    m_player->SetWritableDirectoryPath(m_copies.Path(QString()));
    m_player->SetEditMode(true);
    m_player->resize(900, 350);
    m_player->show();
    AudioPlayerWidget* player = m_player.get();
    const auto count = [player](auto signal, int& number) {
        QObject::connect(player, signal, player, [&number] { ++number; });
    };
    count(&AudioPlayerWidget::LoadFinished, m_loads);
    count(&AudioPlayerWidget::LoadFailed, m_refusals);
    count(&AudioPlayerWidget::AudioPositionChanged, m_positions);
    count(&AudioPlayerWidget::CreateSnippetFinished, m_snippets);
    count(&AudioPlayerWidget::SceneRectChanged, m_pictures);
}

void Soak::DoSomething()
{
    switch (m_random.Below(12)) {
    case 0:
        Load();
        break;
    case 1:
    case 2:
    case 3:
        Play();
        break;
    case 4:
    case 5:
    case 6:
        Look();
        break;
    case 7:
    case 8:
        Export();
        break;
    default:
        Set();
    }
    QTest::qWait(m_random.Below(120));
}

void Soak::Load()
{
    switch (m_random.Below(20)) {
    case 0:
        m_player->CancelLoad();
        break;
    case 1:
        m_player->Reset();
        break;
    case 2:
        m_player->SetAudioFile(m_files.first());
        break;
    case 3:
        MakePlayer();
        break;
    default:
        m_player->LoadFile(m_files[m_random.Below(int(m_files.size()))]);
    }
}

void Soak::Play()
{
    switch (m_random.Below(5)) {
    case 0:
        m_player->Pause();
        break;
    case 1:
        m_player->StopPlayback();
        break;
    case 2:
        m_player->findChild<QPushButton*>(u"btnLoop"_s)->click();
        break;
    case 3:
        m_player->UpdateAudioPosition(AnyTime());
        break;
    default:
        m_player->Play();
    }
}

void Soak::Look()
{
    auto* diagram = m_player->findChild<QWidget*>(u"BGFXWaveformDiagramWidget"_s);
    const QPointF position(m_random.UpTo(diagram->width()), 10.0);
    const Qt::KeyboardModifiers modifiers = m_random.Below(2) == 0 ? Qt::ControlModifier : Qt::NoModifier;
    QWheelEvent turn(position, diagram->mapToGlobal(position), QPoint(), QPoint(0, m_random.Below(2) * 240 - 120),
                     Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    if (m_random.Below(3) == 0) {
        m_player->ShowRange(AnyTime(), AnyTime());
    } else {
        QApplication::sendEvent(diagram, &turn);
    }
}

void Soak::Export()
{
    switch (m_random.Below(4)) {
    case 0:
        m_player->CancelSnippet();
        break;
    case 1:
        ++m_channels;
        m_player->SetSelectedChannel(WavFile::ChannelFormat(WavFile::ChannelLeft + m_random.Below(3)));
        break;
    default:
        m_player->CreateSnippet(m_copies.Path(u"snippet.wav"_s));
    }
}

void Soak::Set()
{
    switch (m_random.Below(5)) {
    case 0:
        m_player->SetAudioPlayBackVolume(m_random.Below(101));
        break;
    case 1:
        m_player->SetAudioPlayBackMute(m_random.Below(2) == 0);
        break;
    case 2:
        if (const QList<QAudioDevice> outputs = QMediaDevices::audioOutputs(); !outputs.isEmpty()) {
            m_player->SetAudioOutputDevice(outputs[m_random.Below(int(outputs.size()))]);
        }
        break;
    default:
        m_player->SetSelectedSnippet({AnyTime(), AnyTime()});
    }
}

Holdings Soak::Rest()
{
    constexpr int patience = 10000;
    m_player->Reset();
    const bool isIdle = QTest::qWaitFor(
        [this] { return !m_player->IsLoading() && !m_player->IsBusy() && !m_player->IsReadingSamples(); },
        patience);
    m_isStuck = m_isStuck || !isIdle;
    QThreadPool::globalInstance()->waitForDone();
    QTest::qWait(500);
    return Holdings::Now();
}

bool Soak::Tell() const
{
    std::printf("%d loads, %d refusals, %d positions, %d snippets, %d views, %d channels, %d players\n", m_loads,
                m_refusals, m_positions, m_snippets, m_pictures, m_channels, m_players);
    return !m_isStuck && std::min({m_loads, m_refusals, m_positions, m_snippets, m_pictures, m_channels}) > 0;
}

/** The middle one of a quarter of the measures: from the second quarter on, single ones deviate by chance. */
qint64 MiddleOf(const QList<Holdings>& measures, qsizetype quarter, qint64 Holdings::*figure)
{
    QList<qint64> values;
    const qsizetype size = measures.size() / 4;
    for (const Holdings& measure : measures.sliced(quarter * size, size)) {
        values.append(measure.*figure);
    }
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/** False when the figure has grown by more than it may. */
bool IsFlat(const char* name, const QList<Holdings>& measures, qint64 Holdings::*figure, qint64 most)
{
    const qint64 before = MiddleOf(measures, 1, figure);
    const qint64 after = MiddleOf(measures, 3, figure);
    const bool isFlat = after - before <= most;
    std::printf("%-8s %8lld to %8lld, may grow by %lld: %s\n", name, static_cast<long long>(before),
                static_cast<long long>(after), static_cast<long long>(most), isFlat ? "flat" : "GROWS");
    return isFlat;
}

bool Run(int seconds, unsigned seed)
{
    constexpr int measureCount = 24;
    // Longer than any pause of the program, which ends by it when it hangs.
    constexpr unsigned hangs = 60;
    std::printf("seed %u, %d s\n", seed, seconds);
    Soak soak(seed);
    QList<Holdings> measures;
    QElapsedTimer timer;
    timer.start();
    for (int i = 1; i <= measureCount; ++i) {
        while (timer.elapsed() < qint64(seconds) * 1000 * i / measureCount) {
            alarm(hangs);
            soak.DoSomething();
        }
        measures.append(soak.Rest());
        const Holdings& latest = measures.last();
        std::printf("%5lld s %8lld KiB %4lld files %4lld threads\n",
                    static_cast<long long>(timer.elapsed() / 1000), static_cast<long long>(latest.kibibytes),
                    static_cast<long long>(latest.files), static_cast<long long>(latest.threads));
        std::fflush(stdout);
    }
    alarm(0);
    const bool isUsed = soak.Tell();
    const bool hasMemory = IsFlat("KiB", measures, &Holdings::kibibytes, 8192);
    const bool hasFiles = IsFlat("files", measures, &Holdings::files, 2);
    const bool hasThreads = IsFlat("threads", measures, &Holdings::threads, 2);
    return isUsed && hasMemory && hasFiles && hasThreads;
}

/** What is freed goes back to the system at once. By default the allocator keeps more and more of it, torn up
 * between the threads, and what is in use would not show: that stayed at 23 to 28 MB while 100 MB were free. */
void KeepNothingThatIsFreed()
{
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MMAP_THRESHOLD, 128 * 1024);
}

} // namespace

int main(int argc, char* argv[])
{
    KeepNothingThatIsFreed();
    if (QLibraryInfo::version() < QVersionNumber(6, 5) && !qEnvironmentVariableIsSet("QT_MEDIA_BACKEND")) {
        qputenv("QT_MEDIA_BACKEND", "ffmpeg");
    }
    QApplication application(argc, argv);
    QLoggingCategory::setFilterRules(u"*=false"_s);
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 120;
    const unsigned seed = argc > 2 ? unsigned(std::strtoul(argv[2], nullptr, 10)) : std::random_device()();
    return Run(seconds, seed) ? 0 : 1;
}
