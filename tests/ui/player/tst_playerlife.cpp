#include "tests/support/AudioPrograms.h"
#include "tests/support/SoundServer.h"
#include "tests/support/TestAudio.h"
#include "tests/ui/player/BlockedPool.h"
#include "tests/ui/player/LongFile.h"
#include "tests/ui/player/PlayerSetup.h"

#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

#include <malloc.h>
#include <optional>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using Access = PlayerSetup::Access;
using Errors = QList<WavFile::AudioEngineReturnValue>;

namespace {

const TestAudio stereo{.coding = S16, .channels = 2, .rate = 8000, .frames = 8000};

enum State
{
    Idle,
    Loading,
    Extracting,
    Filtering,
    Exporting,
    Playing
};

enum Stop
{
    Closing,
    Resetting,
    Reloading,
    Destroying
};

} // namespace

class PlayerLifeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    void aThousandLoadsLeaveTheMemoryAsItWas();
    void canBeStoppedInEveryState_data();
    void canBeStoppedInEveryState();
    void aRemovedChannelFileIsWrittenAgainAfterAReload();
    void isDestroyedWithTheCursorInAField_data();
    void isDestroyedWithTheCursorInAField();
    void tasksOutliveTheWidget();

private:
    void Enter(State state, PlayerSetup& setup);
    bool IsAtWork(State state, PlayerSetup& setup);
    void Leave(Stop stop, PlayerSetup& setup);

    TemporaryFiles m_files;
};

void PlayerLifeTest::initTestCase()
{
    const QString tone = m_files.Path(u"tone.wav"_s);
    QVERIFY(AudioPrograms::MakeTone(tone, 44100, 2, 10.0));
    QVERIFY(AudioPrograms::Encode(u"mp3"_s, tone, m_files.Path(u"tone.mp3"_s)));
}

void PlayerLifeTest::cleanup()
{
    QThreadPool::globalInstance()->waitForDone();
    QCoreApplication::processEvents();
}

void PlayerLifeTest::aThousandLoadsLeaveTheMemoryAsItWas()
{
    PlayerSetup setup;
    const TestAudio tiny{.coding = S16, .channels = 2, .rate = 8000, .frames = 400};
    const QString paths[]{setup.originals.Write(u"one.wav"_s, tiny.File()),
                          setup.originals.Write(u"two.wav"_s, tiny.File())};
    const auto load = [&](int count) {
        for (int i = 0; i < count; ++i) {
            setup.player->SetAudioFile(paths[i % 2]);
            setup.player->SetSelectedSnippet({0.01, 0.02});
            QCoreApplication::processEvents();
            setup.player->Reset();
        }
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        return static_cast<qint64>(::mallinfo2().uordblks);
    };
    const qint64 before = load(200);
    const qint64 after = load(800);
    qInfo("%lld KiB after 200 loads, %lld KiB after 1,000", before / 1024, after / 1024);
    QVERIFY(setup.player->errors.isEmpty());
    // The samples of one file alone take 1.6 KiB; the media backend keeps some 200 bytes of each.
    QVERIFY2(after - before < 400 * 1024, qPrintable(QString::number(after - before)));
}

void PlayerLifeTest::canBeStoppedInEveryState_data()
{
    QTest::addColumn<State>("state");
    QTest::addColumn<Stop>("stop");
    QTest::addColumn<bool>("isPoolBlocked");
    const std::pair<State, const char*> states[]{{Idle, "idle"},           {Loading, "loading"},
                                                 {Extracting, "reading"},  {Filtering, "filtering"},
                                                 {Exporting, "exporting"}, {Playing, "playing"}};
    const std::pair<Stop, const char*> stops[]{
        {Closing, "closed"}, {Resetting, "reset"}, {Reloading, "loaded again"}, {Destroying, "destroyed"}};
    for (const auto& [state, stateName] : states) {
        for (const auto& [stop, stopName] : stops) {
            QTest::addRow("%s, then %s", stateName, stopName) << state << stop << false;
            if (state != Idle && state != Playing) {
                QTest::addRow("%s in a busy pool, then %s", stateName, stopName) << state << stop << true;
            }
        }
    }
}

void PlayerLifeTest::canBeStoppedInEveryState()
{
    QFETCH(State, state);
    QFETCH(Stop, stop);
    QFETCH(bool, isPoolBlocked);
    PlayerSetup setup;
    QVERIFY(MakeLongFile(setup.copies.Path(u"long.wav"_s)));
    setup.originals.Write(u"next.wav"_s, stereo.File());
    setup.player->SetAudioFile(setup.originals.Path(u"long.wav"_s));
    QVERIFY(setup.File().isOpen());
    if (state == Idle || state == Exporting) {
        QVERIFY(setup.HasRead());
    }
    setup.player->SetSelectedSnippet({0.0, 1800.0});
    QSignalSpy finished(setup.player.get(), &AudioPlayerWidget::CreateSnippetFinished);

    std::optional<BlockedPool> pool;
    if (isPoolBlocked) {
        pool.emplace();
    }
    if (state == Loading) {
        // In the event loop of the decoding.
        QTimer::singleShot(0, this, [&] { Leave(stop, setup); });
        setup.player->SetAudioFile(m_files.Path(u"tone.mp3"_s));
    } else {
        Enter(state, setup);
        if (!isPoolBlocked) {
            QVERIFY(IsAtWork(state, setup));
        }
        Leave(stop, setup);
    }
    pool.reset();
    QThreadPool::globalInstance()->waitForDone();
    QVERIFY(finished.isEmpty());
    QVERIFY(!QFile::exists(setup.copies.Path(u"long_Left.wav"_s)));
    QVERIFY(!QFile::exists(setup.originals.Path(u"snippet.wav"_s)));
    if (!setup.player) {
        return;
    }
    QCoreApplication::processEvents();
    QVERIFY(!setup.player->IsBusy());
    QCOMPARE(setup.player->errors, Errors());
    QCOMPARE(setup.player->GetAudioFileName(), stop == Reloading ? setup.copies.Path(u"next.wav"_s) : QString());
    QVERIFY(setup.Load(setup.originals.Path(u"next.wav"_s)));
    QCOMPARE(setup.player->GetAudioDuration(), 1.0);
}

void PlayerLifeTest::Enter(State state, PlayerSetup& setup)
{
    switch (state) {
    case Idle:
    case Loading:
        break;
    case Extracting:
        Q_EMIT setup.View().GetSamples(0.0, 1800.0, 1);
        QVERIFY(Access::IsReadingSamples(*setup.player));
        break;
    case Filtering:
        setup.player->SetSelectedChannel(WavFile::ChannelLeft);
        QVERIFY(setup.player->IsBusy());
        break;
    case Exporting:
        setup.player->CreateSnippet(setup.originals.Path(u"snippet.wav"_s));
        QVERIFY(setup.player->IsBusy());
        break;
    case Playing:
        setup.Controls().btnPlayPause->click();
        QTRY_VERIFY_WITH_TIMEOUT(setup.Audio().position() > 0, PlayerSetup::patience);
        break;
    }
}

bool PlayerLifeTest::IsAtWork(State state, PlayerSetup& setup)
{
    switch (state) {
    case Extracting:
    case Filtering:
    case Exporting:
        return QSignalSpy(setup.player.get(), &AudioPlayerWidget::ProgressChanged).wait(PlayerSetup::patience);
    default:
        return true;
    }
}

void PlayerLifeTest::Leave(Stop stop, PlayerSetup& setup)
{
    switch (stop) {
    case Closing:
        setup.player->Close();
        break;
    case Resetting:
        setup.player->Reset();
        break;
    case Reloading:
        setup.player->SetAudioFile(setup.originals.Path(u"next.wav"_s));
        break;
    case Destroying:
        setup.player.reset();
        break;
    }
}

void PlayerLifeTest::aRemovedChannelFileIsWrittenAgainAfterAReload()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, stereo.File()));
    {
        HeldTask held(setup.File());
        setup.player->SetSelectedChannel(WavFile::ChannelLeft);
        QVERIFY(held.HasBegun());
        QVERIFY(!QFile::exists(setup.copies.Path(u"take_Left.wav"_s)));
        held.ReleaseUpon(WavFileTestAccess(setup.File()).IsChannelFilterAborted());
        setup.player->Close();
    }
    QVERIFY(!QFile::exists(setup.copies.Path(u"take_Left.wav"_s)));
    QVERIFY(setup.Load(setup.originals.Path(u"take.wav"_s)));
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    const QByteArray left = TemporaryFiles::Read(setup.copies.Path(u"take_Left.wav"_s));
    QCOMPARE(left, stereo.Exported(stereo.ExportedData(0, 8000, WavFile::ChannelLeft), 16000));
    // One that was there before is not removed by a stop.
    QVERIFY(setup.Load(u"other.wav"_s, stereo.File()));
    QVERIFY(setup.Load(setup.originals.Path(u"take.wav"_s)));
    {
        const BlockedPool pool;
        setup.player->SetSelectedChannel(WavFile::ChannelLeft);
        setup.player->Close();
    }
    QCOMPARE(TemporaryFiles::Read(setup.copies.Path(u"take_Left.wav"_s)), left);
}

void PlayerLifeTest::isDestroyedWithTheCursorInAField_data()
{
    QTest::addColumn<bool>("isWindow");
    QTest::addColumn<QString>("field");
    for (const bool isWindow : {true, false}) {
        for (const char* field : {"edCurrentPosition", "edSelectionStart", "edSelectionEnd"}) {
            QTest::addRow("%s in a %s", field, isWindow ? "window" : "parent")
                << isWindow << QString::fromLatin1(field);
        }
    }
}

void PlayerLifeTest::isDestroyedWithTheCursorInAField()
{
    QFETCH(bool, isWindow);
    QFETCH(QString, field);
    PlayerSetup setup;
    QWidget parent;
    QWidget* window = setup.player.get();
    if (!isWindow) {
        setup.player->setParent(&parent);
        window = &parent;
    }
    window->resize(900, 400);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window));
    QVERIFY(setup.Load(u"take.wav"_s, stereo.File()));
    window->activateWindow();
    auto* edit = setup.player->findChild<QLineEdit*>(field);
    edit->setFocus();
    QVERIFY(QTest::qWaitForWindowActive(window));
    QTRY_VERIFY(edit->hasFocus());
    const QPointer<QLineEdit> guard(edit);
    QSignalSpy positions(setup.player.get(), &AudioPlayerWidget::AudioPositionChanged);
    setup.player.reset();
    QVERIFY(!guard);
    // The editing that ends with the field is no longer heard of.
    QVERIFY(positions.isEmpty());
}

void PlayerLifeTest::tasksOutliveTheWidget()
{
    PlayerSetup setup;
    QVERIFY(setup.Load(u"take.wav"_s, stereo.File()));
    setup.player->SetSelectedSnippet({0.0, 1.0});
    HeldTask held(setup.File());
    QPointer<WavFile> file(&setup.File());
    setup.player->CreateSnippet(setup.originals.Path(u"snippet.wav"_s));
    QVERIFY(held.HasBegun());
    setup.player.reset();
    QVERIFY(file);
    held.Release();
    QThreadPool::globalInstance()->waitForDone();
    QVERIFY(!QFile::exists(setup.originals.Path(u"snippet.wav"_s)));
    QTRY_VERIFY(!file);
}

int main(int argc, char* argv[])
{
    // Only the first arena is counted.
    ::mallopt(M_ARENA_MAX, 1);
    const SoundServer server({QStringLiteral("one")});
    QApplication application(argc, argv);
    PlayerLifeTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playerlife.moc"
