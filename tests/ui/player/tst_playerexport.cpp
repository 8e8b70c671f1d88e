#include "tests/playback/AudioPlayerTestAccess.h"
#include "tests/support/SoundServer.h"
#include "tests/support/TestAudio.h"
#include "tests/ui/player/BlockedPool.h"
#include "tests/ui/player/PlayerSetup.h"
#include "tests/ui/waveform/InputBench.h"

#include <QtWidgets/QApplication>

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using Access = PlayerSetup::Access;
using Errors = QList<WavFile::AudioEngineReturnValue>;
using States = QList<QVariantList>;

namespace {

const TestAudio stereo{.coding = S16, .channels = 2, .rate = 8000, .frames = 8000};
const TestAudio mono{.coding = S16, .channels = 1, .rate = 8000, .frames = 8000};

/** A stereo file of one second, loaded, and what the player tells. */
class ExportSetup : public PlayerSetup
{
public:
    explicit ExportSetup(const TestAudio& audio = stereo) { QVERIFY(Load(u"take.wav"_s, audio.File())); }

    QString Left() const { return copies.Path(u"take_Left.wav"_s); }
    QString Right() const { return copies.Path(u"take_Right.wav"_s); }
    QString Copy() const { return copies.Path(u"take.wav"_s); }
    QString Snippet() const { return originals.Path(u"snippet.wav"_s); }

    /** No file can be written under that name, although none is there. */
    static bool MakeUnwritable(const QString& path) { return QFile::link(u"/missing/folder/file"_s, path); }

    /** What waits for the event loop when a task is done. */
    static void EndTasks() { QThreadPool::globalInstance()->waitForDone(); }

    QSignalSpy busy{player.get(), &AudioPlayerWidget::BusyChanged};
    QSignalSpy finished{player.get(), &AudioPlayerWidget::CreateSnippetFinished};
};

} // namespace

class PlayerExportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheSelectionOfTheSelectedChannel();
    void writesBothChannelsWhereItIsAskedTo();
    void leavesAnExistingFileAloneWhereItIsAskedTo();
    void playsTheChannelFileThatIsThereWhereSnippetsRefuseOne();
    void dropsASnippetWhileSamplesAreRead();
    void aFailedSnippetIsReportedAndItsPathForgotten();
    void aSnippetThatVanishedIsReportedAsSuccess();
    void aSnippetOverTheWorkingCopyIsRefused();
    void aSelectionThatIsMovedPastTheEndIsExportedFromWithinTheFile();
    void cancelsASnippet();
    void cancelsASnippetThatWaitsForItsTurn();
    void aSnippetThatASlotBeginsAndCancelsEndsBeingBusy_data();
    void aSnippetThatASlotBeginsAndCancelsEndsBeingBusy();
    void aSnippetOfAClosedFileEndsBeforeTheNextFile();
    void tellsWhetherASnippetIsCancelledInTime_data();
    void tellsWhetherASnippetIsCancelledInTime();
    void cancellingLeavesAFileAloneThatTookTheName();
    void tellsOfASnippetThatIsWholeWhenThePlayerIsClosed();
    void cancellingWithoutASnippetDoesNothing();
    void aSnippetAndAFilteringMayRunAtOnce();
    void ofTwoSnippetsAtOnceTheLatterIsAnnounced();
    void theNextSnippetMayStartWhenTheBusyTimeEnds();
    void theNextSnippetMayStartWhenOneHasFailed();
    void tellsOfEveryBlockAheadOfTheEnd_data();
    void tellsOfEveryBlockAheadOfTheEnd();
    void aStopTellsOfItsProgressAheadOfTheEnd_data();
    void aStopTellsOfItsProgressAheadOfTheEnd();
    void closingFromEveryReportGoesNoDeeper();
    void aFilteringThatAReportStartsStaysBusy();
    void theLastProgressOfALongExportArrives();
    void withoutAFileASnippetFailsAndOverwritesNothing();
    void closingDropsAFilteringThatIsDoneButNotASnippet();

    void choosesOnlyWhatTheFileOffers();
    void withoutAFileNoChannelIsFiltered();
    void withoutAFileTheChannelBoxFallsBack();
    void filtersIntoAFileBesideTheWorkingCopy();
    void bothChannelsPlayTheWorkingCopyItself();
    void aFilteringEndsTheReadingOfSamples();
    void keepsTheSelection();
    void aSelectionOfLessThanAMillisecondStaysThePlayers();
    void keepsNoSelectionWhereThereWasNone();
    void keepsViewPositionAndPlaybackWhereItIsAskedTo();
    void keepsThePositionAlsoWherePlayingReturnsToTheStart();
    void theLatestChoiceCounts();
    void aFailedFilteringGoesBackToThePreviousChannel();
    void aLinkToNothingIsNoPlaceForAChannel();
    void aFailureIsToldWhenTheWayBackHasBegun();
    void aChannelFileThatVanishedIsReportedAsSuccess();
    void failingInBothDirectionsEnds();
    void goesBackAgainAfterAWayBackThatFailed();
    void goesBackInTheNextFileAfterAWayBackThatWasCutOff();
    void anotherChannelMayBeChosenWhenTheBusyTimeEnds();
    void anotherFileMayBeLoadedWhenTheBusyTimeEnds();
    void resettingLeavesTheFileThatIsLoadedWhenTheBusyTimeEnds();
    void mayBeDestroyedWhenTheBusyTimeEnds_data();
    void mayBeDestroyedWhenTheBusyTimeEnds();
};

void PlayerExportTest::writesTheSelectionOfTheSelectedChannel()
{
    ExportSetup setup;
    setup.player->SetSelectedChannel(WavFile::ChannelRight);
    QVERIFY(setup.IsIdle() && setup.HasRead());
    setup.player->SetSelectedSnippet({0.25, 0.5});
    setup.busy.clear();
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(setup.player->IsBusy());
    QVERIFY(!setup.Controls().cmbboxChannelSelector->isEnabled());
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.busy, (States{{true}, {false}}));
    QCOMPARE(setup.finished, States{{setup.Snippet()}});
    QCOMPARE(Access::SnippetFilePath(*setup.player), setup.Snippet());
    QCOMPARE(TemporaryFiles::Read(setup.Snippet()),
             stereo.Exported(stereo.ExportedData(2000, 4000, WavFile::ChannelRight), 4000));
    QVERIFY(setup.player->errors.isEmpty());
}

void PlayerExportTest::writesBothChannelsWhereItIsAskedTo()
{
    ExportSetup setup;
    setup.player->SetKeepBothChannels(true);
    setup.player->SetSelectedSnippet({0.25, 0.5});
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(setup.IsIdle());
    WavFile written;
    QCOMPARE(written.Open(setup.Snippet()), WavFile::Success);
    QCOMPARE(written.GetFileFormat().channelCount(), 2);
    QCOMPARE(written.GetDuration(), 0.25);
}

void PlayerExportTest::leavesAnExistingFileAloneWhereItIsAskedTo()
{
    ExportSetup setup;
    setup.player->SetKeepExistingFiles(true);
    setup.player->SetSelectedSnippet({0.25, 0.5});
    {
        const BlockedPool pool;
        setup.player->CreateSnippet(setup.Snippet());
        setup.originals.Write(u"snippet.wav"_s, "another");
    }
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorCreateSnippet});
    QVERIFY(setup.finished.isEmpty());
    QCOMPARE(TemporaryFiles::Read(setup.Snippet()), "another");
    setup.player->SetKeepExistingFiles(false);
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.finished.size(), 1);
    QCOMPARE(TemporaryFiles::Read(setup.Snippet()).size(), 4044);
}

void PlayerExportTest::playsTheChannelFileThatIsThereWhereSnippetsRefuseOne()
{
    ExportSetup setup;
    setup.player->SetKeepExistingFiles(true);
    for (const auto channel : {WavFile::ChannelLeft, WavFile::ChannelLeftRight, WavFile::ChannelLeft}) {
        setup.player->SetSelectedChannel(channel);
        QVERIFY(setup.IsIdle() && setup.HasRead());
    }
    QVERIFY(setup.player->errors.isEmpty());
    QCOMPARE(setup.player->GetSelectedChannel(), WavFile::ChannelLeft);
}

void PlayerExportTest::dropsASnippetWhileSamplesAreRead()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.25, 0.5});
    {
        const BlockedPool pool;
        Q_EMIT setup.View().GetSamples(0.0, 1.0, 1);
        setup.player->CreateSnippet(setup.Snippet());
        QVERIFY(!setup.player->IsBusy());
    }
    QVERIFY(setup.HasRead());
    QCoreApplication::processEvents();
    QVERIFY(setup.busy.isEmpty());
    QVERIFY(setup.finished.isEmpty());
    QVERIFY(setup.player->errors.isEmpty());
    QVERIFY(!QFile::exists(setup.Snippet()));
    QCOMPARE(Access::SnippetFilePath(*setup.player), QString());
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.finished.size(), 1);
}

void PlayerExportTest::aFailedSnippetIsReportedAndItsPathForgotten()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.25, 0.5});
    setup.player->CreateSnippet(setup.originals.Path(u"missing/snippet.wav"_s));
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.busy, (States{{true}, {false}}));
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorCreateSnippet});
    QVERIFY(setup.finished.isEmpty());
    QCOMPARE(Access::SnippetFilePath(*setup.player), QString());
}

void PlayerExportTest::aSnippetThatVanishedIsReportedAsSuccess()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.25, 0.5});
    setup.player->CreateSnippet(setup.Snippet());
    ExportSetup::EndTasks();
    QVERIFY(QFile::remove(setup.Snippet()));
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.player->errors, Errors{WavFile::Success});
    QVERIFY(setup.finished.isEmpty());
    QCOMPARE(Access::SnippetFilePath(*setup.player), QString());
}

void PlayerExportTest::aSnippetOverTheWorkingCopyIsRefused()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.25, 0.5});
    setup.player->CreateSnippet(setup.Copy());
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorCreateSnippet});
    QCOMPARE(TemporaryFiles::Read(setup.Copy()), stereo.File());
}

void PlayerExportTest::aSelectionThatIsMovedPastTheEndIsExportedFromWithinTheFile()
{
    using Interaction = PlayerSetup::Waveform::Interaction;
    namespace Mouse = vantoraudio::vantorAudioEngine::UI::testing;
    ExportSetup setup;
    setup.player->SetInteractions(Interaction::SelectBeyondView | Interaction::MoveFromInside);
    setup.player->resize(800, 400);
    setup.player->show();
    QVERIFY(QTest::qWaitForWindowExposed(setup.player.get()) && setup.HasRead());
    setup.player->SetSelectedSnippet({0.5, 0.75});
    auto& diagram = *setup.player->findChild<QWidget*>(u"BGFXWaveformDiagramWidget"_s);
    const int inside = int(diagram.width() * 0.6);
    Mouse::Hover(diagram, inside);
    Mouse::Press(diagram, inside);
    Mouse::Move(diagram, diagram.width() - 1);
    Mouse::Release(diagram, diagram.width() - 1);
    QCOMPARE(setup.player->GetSelectedSnippet(), std::pair(0.75, 1.0));
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(setup.IsIdle());
    QCOMPARE(TemporaryFiles::Read(setup.Snippet()),
             stereo.Exported(stereo.ExportedData(6000, 8000, WavFile::ChannelLeftRight), 4000));
}

void PlayerExportTest::cancelsASnippet()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.0, 1.0});
    HeldTask held(setup.File());
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(held.HasBegun());
    QVERIFY(!QFile::exists(setup.Snippet()));
    held.ReleaseUpon(WavFileTestAccess(setup.File()).IsWriteAborted());
    setup.player->CancelSnippet();
    QVERIFY(!setup.player->IsBusy());
    QVERIFY(!QFile::exists(setup.Snippet()));
    ExportSetup::EndTasks();
    QCoreApplication::processEvents();
    QCOMPARE(setup.busy, (States{{true}, {false}}));
    QVERIFY(setup.finished.isEmpty());
    QVERIFY(setup.player->errors.isEmpty());
}

void PlayerExportTest::cancelsASnippetThatWaitsForItsTurn()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.0, 1.0});
    {
        const BlockedPool pool;
        setup.player->CreateSnippet(setup.Snippet());
        QVERIFY(setup.player->CancelSnippet());
        QVERIFY(!setup.player->IsBusy());
    }
    QCoreApplication::processEvents();
    QVERIFY(!QFile::exists(setup.Snippet()));
    QCOMPARE(setup.busy, (States{{true}, {false}}));
    QVERIFY(setup.finished.isEmpty());
    QVERIFY(setup.player->errors.isEmpty());
}

void PlayerExportTest::aSnippetThatASlotBeginsAndCancelsEndsBeingBusy_data()
{
    using End = void (*)(AudioPlayerWidget&);
    const End close = [](auto& widget) { widget.Close(); };
    const End cancel = [](auto& widget) { widget.CancelSnippet(); };
    QTest::addColumn<End>("endOuter");
    QTest::addColumn<End>("endInner");
    QTest::newRow("by cancelling while it closes") << close << cancel;
    QTest::newRow("by closing while it closes") << close << close;
    QTest::newRow("by cancelling while another is cancelled") << cancel << cancel;
    QTest::newRow("by closing while another is cancelled") << cancel << close;
}

void PlayerExportTest::aSnippetThatASlotBeginsAndCancelsEndsBeingBusy()
{
    using End = void (*)(AudioPlayerWidget&);
    QFETCH(const End, endOuter);
    QFETCH(const End, endInner);
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.0, 1.0});
    HeldTask held(setup.File());
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(held.HasBegun());
    held.ReleaseUpon(WavFileTestAccess(setup.File()).IsWriteAborted());
    int calls = 0;
    connect(setup.player.get(), &AudioPlayerWidget::ProgressChanged, this, [&] {
        if (calls++ == 0) {
            const BlockedPool pool;
            setup.player->CreateSnippet(setup.Snippet());
            endInner(*setup.player);
        }
    });
    endOuter(*setup.player);
    QVERIFY(calls > 0);
    QVERIFY(!setup.player->IsBusy());
    QCOMPARE(setup.busy, (States{{true}, {true}, {false}}));
}

void PlayerExportTest::aSnippetOfAClosedFileEndsBeforeTheNextFile()
{
    ExportSetup setup;
    setup.player->Close();
    const BlockedPool pool;
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(setup.player->IsBusy());
    setup.player->SetAudioFile(setup.originals.Path(u"take.wav"_s));
    QVERIFY(setup.File().isOpen());
    // It has ended, although no thread is free.
    QTRY_VERIFY(!setup.player->IsBusy());
    QVERIFY(!QFile::exists(setup.Snippet()));
}

void PlayerExportTest::tellsWhetherASnippetIsCancelledInTime_data()
{
    QTest::addColumn<double>("end");
    QTest::addColumn<bool>("hasFormer");
    QTest::addColumn<bool>("isWritten");
    // The task looks at its abort flag before each report, so one of a single block goes on to its end.
    constexpr double singleBlock = 0.02;
    QTest::newRow("in the middle") << 1.0 << false << false;
    QTest::newRow("in the middle, over a file") << 1.0 << true << false;
    QTest::newRow("when it is whole") << singleBlock << false << true;
    QTest::newRow("when it is whole and has replaced a file") << singleBlock << true << true;
}

void PlayerExportTest::tellsWhetherASnippetIsCancelledInTime()
{
    QFETCH(double, end);
    QFETCH(bool, hasFormer);
    QFETCH(bool, isWritten);
    ExportSetup setup;
    if (hasFormer) {
        setup.originals.Write(u"snippet.wav"_s, "former");
    }
    setup.player->SetSelectedSnippet({0.0, end});
    HeldTask held(setup.File());
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(held.HasBegun());
    held.ReleaseUpon(WavFileTestAccess(setup.File()).IsWriteAborted());
    QCOMPARE(setup.player->CancelSnippet(), !isWritten);
    QCOMPARE(setup.player->IsBusy(), isWritten);
    QCOMPARE(QFile::exists(setup.Snippet()), hasFormer || isWritten);
    QCOMPARE(TemporaryFiles::Read(setup.Snippet()).startsWith("RIFF"), isWritten);
    QVERIFY(setup.IsIdle());
    QCoreApplication::processEvents();
    QCOMPARE(setup.finished.size(), isWritten ? 1 : 0);
    QCOMPARE(setup.busy, (States{{true}, {false}}));
}

void PlayerExportTest::cancellingLeavesAFileAloneThatTookTheName()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.0, 1.0});
    HeldTask held(setup.File());
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(held.HasBegun());
    setup.originals.Write(u"snippet.wav"_s, "another");
    held.ReleaseUpon(WavFileTestAccess(setup.File()).IsWriteAborted());
    QVERIFY(setup.player->CancelSnippet());
    QCOMPARE(TemporaryFiles::Read(setup.Snippet()), "another");
}

void PlayerExportTest::tellsOfASnippetThatIsWholeWhenThePlayerIsClosed()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.0, 0.02});
    HeldTask held(setup.File());
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(held.HasBegun());
    held.ReleaseUpon(WavFileTestAccess(setup.File()).IsWriteAborted());
    setup.player->Close();
    QVERIFY(!setup.player->IsBusy());
    QTRY_COMPARE(setup.finished, States{{setup.Snippet()}});
    QCOMPARE(setup.busy, (States{{true}, {false}, {false}}));
    QVERIFY(TemporaryFiles::Read(setup.Snippet()).startsWith("RIFF"));
}

void PlayerExportTest::cancellingWithoutASnippetDoesNothing()
{
    ExportSetup setup;
    QVERIFY(!setup.player->CancelSnippet());
    QVERIFY(setup.busy.isEmpty());
    setup.player->SetSelectedSnippet({0.25, 0.5});
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(setup.IsIdle());
    setup.player->CancelSnippet();
    QVERIFY(QFile::exists(setup.Snippet()));
    QCOMPARE(setup.busy.size(), 2);
}

void PlayerExportTest::aSnippetAndAFilteringMayRunAtOnce()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.25, 0.5});
    {
        HeldTask held(setup.File());
        setup.player->CreateSnippet(setup.Snippet());
        QVERIFY(held.HasBegun());
        setup.player->SetSelectedChannel(WavFile::ChannelLeft);
        QVERIFY(held.HasBegun());
    }
    QTRY_COMPARE(setup.busy, (States{{true}, {true}, {false}, {false}}));
    QCOMPARE(setup.finished, States{{setup.Snippet()}});
    // The channel of the snippet is that of its start.
    QCOMPARE(TemporaryFiles::Read(setup.Snippet()),
             stereo.Exported(stereo.ExportedData(2000, 4000, WavFile::ChannelLeftRight), 4000));
    QCOMPARE(TemporaryFiles::Read(setup.Left()),
             stereo.Exported(stereo.ExportedData(0, 8000, WavFile::ChannelLeft), 16000));
    QVERIFY(setup.player->errors.isEmpty());
    QVERIFY(!setup.player->IsBusy());
}

void PlayerExportTest::ofTwoSnippetsAtOnceTheLatterIsAnnounced()
{
    ExportSetup setup;
    const QString second = setup.originals.Path(u"second.wav"_s);
    setup.player->SetSelectedSnippet({0.25, 0.5});
    {
        HeldTask held(setup.File());
        setup.player->CreateSnippet(setup.Snippet());
        QVERIFY(held.HasBegun());
        setup.player->CreateSnippet(second);
        QVERIFY(held.HasBegun());
    }
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.finished, States{{second}});
    QCOMPARE(TemporaryFiles::Read(setup.Snippet()), TemporaryFiles::Read(second));
    QCOMPARE(TemporaryFiles::Read(second).size(), 4044);
}

void PlayerExportTest::theNextSnippetMayStartWhenTheBusyTimeEnds()
{
    ExportSetup setup;
    const QString second = setup.originals.Path(u"second.wav"_s);
    setup.player->SetSelectedSnippet({0.25, 0.5});
    bool isStarted = false;
    connect(setup.player.get(), &AudioPlayerWidget::BusyChanged, this, [&](bool isBusy) {
        if (!isBusy && !std::exchange(isStarted, true)) {
            setup.player->CreateSnippet(second);
        }
    });
    setup.player->CreateSnippet(setup.Snippet());
    QTRY_COMPARE(setup.finished, (States{{setup.Snippet()}, {second}}));
    QCOMPARE(setup.busy, (States{{true}, {false}, {true}, {false}}));
    QVERIFY(setup.player->errors.isEmpty());
}

void PlayerExportTest::theNextSnippetMayStartWhenOneHasFailed()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.25, 0.5});
    bool isStarted = false;
    connect(setup.player.get(), &AudioPlayerWidget::BusyChanged, this, [&](bool isBusy) {
        if (!isBusy && !std::exchange(isStarted, true)) {
            setup.player->CreateSnippet(setup.Snippet());
        }
    });
    setup.player->CreateSnippet(setup.originals.Path(u"missing/snippet.wav"_s));
    QTRY_COMPARE(setup.finished, States{{setup.Snippet()}});
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorCreateSnippet});
}

void PlayerExportTest::tellsOfEveryBlockAheadOfTheEnd_data()
{
    QTest::addColumn<bool>("isSnippet");
    QTest::newRow("snippet") << true;
    QTest::newRow("channel") << false;
}

void PlayerExportTest::tellsOfEveryBlockAheadOfTheEnd()
{
    QFETCH(bool, isSnippet);
    // 160 blocks of 200 frames.
    ExportSetup setup(TestAudio{.coding = S16, .channels = 2, .rate = 8000, .frames = 32000});
    Access::StopClock(*setup.player);
    setup.player->SetSelectedSnippet({0.0, 4.0});
    const QString text = isSnippet ? u"Creating snippet..."_s : u"Updating..."_s;
    QStringList expected{u"busy"_s};
    constexpr double end = 44 + 32000 * 4;
    for (int block = 0; block < 160; ++block) {
        expected.append(u"%1 %2"_s.arg(static_cast<int>((44 + block * 800) / end * 100.0)).arg(text));
    }
    expected.append(u"idle"_s);

    QStringList told;
    connect(setup.player.get(), &AudioPlayerWidget::BusyChanged, this,
            [&told](bool isBusy) { told.append(isBusy ? u"busy"_s : u"idle"_s); });
    connect(
        setup.player.get(), &AudioPlayerWidget::ProgressChanged, this,
        [&told](int progress, int, int, const QString& what) { told.append(u"%1 %2"_s.arg(progress).arg(what)); });
    connect(setup.player.get(), &AudioPlayerWidget::CreateSnippetFinished, this,
            [&told] { told.append(u"finished"_s); });
    if (isSnippet) {
        expected.append(u"finished"_s);
        setup.player->CreateSnippet(setup.Snippet());
    } else {
        setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    }
    ExportSetup::EndTasks();
    QTRY_VERIFY(told.contains(u"idle"_s));
    QCOMPARE(told.first(expected.size()), expected);
}

void PlayerExportTest::aStopTellsOfItsProgressAheadOfTheEnd_data()
{
    using Stop = std::function<void(AudioPlayerWidget&)>;
    QTest::addColumn<Stop>("stop");
    QTest::newRow("cancelled") << Stop(&AudioPlayerWidget::CancelSnippet);
    QTest::newRow("closed") << Stop(&AudioPlayerWidget::Close);
    QTest::newRow("reset") << Stop(&AudioPlayerWidget::Reset);
}

void PlayerExportTest::aStopTellsOfItsProgressAheadOfTheEnd()
{
    QFETCH(const std::function<void(AudioPlayerWidget&)>, stop);
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.0, 1.0});
    QCoreApplication::processEvents();
    HeldTask held(setup.File());
    QStringList told;
    connect(
        setup.player.get(), &AudioPlayerWidget::ProgressChanged, this,
        [&told](int progress, int, int, const QString& what) { told.append(u"%1 %2"_s.arg(progress).arg(what)); });
    connect(setup.player.get(), &AudioPlayerWidget::BusyChanged, this, [&told](bool isBusy) {
        if (!isBusy) {
            told.append(u"idle"_s);
        }
    });
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(held.HasBegun());
    held.ReleaseUpon(WavFileTestAccess(setup.File()).IsWriteAborted());
    stop(*setup.player);
    QCoreApplication::processEvents();
    QCOMPARE(told, QStringList({u"0 Creating snippet..."_s, u"0 "_s, u"idle"_s}));
}

void PlayerExportTest::closingFromEveryReportGoesNoDeeper()
{
    ExportSetup setup(TestAudio{.coding = S16, .channels = 2, .rate = 8000, .frames = 800000});
    setup.player->SetSelectedSnippet({0.0, 100.0});
    QCoreApplication::processEvents();
    setup.player->CreateSnippet(setup.Snippet());
    ExportSetup::EndTasks();
    int reports = 0;
    int depth = 0;
    int deepest = 0;
    connect(setup.player.get(), &AudioPlayerWidget::ProgressChanged, this, [&] {
        ++reports;
        deepest = std::max(deepest, ++depth);
        setup.player->Close();
        --depth;
    });
    setup.player->Close();
    QVERIFY(reports > 100);
    QCOMPARE(deepest, 1);
    QVERIFY(!setup.player->IsBusy());
}

void PlayerExportTest::aFilteringThatAReportStartsStaysBusy()
{
    ExportSetup setup;
    const QString other = setup.originals.Write(u"other.wav"_s, stereo.File());
    setup.player->SetSelectedSnippet({0.0, 1.0});
    QCoreApplication::processEvents();
    setup.player->CreateSnippet(setup.Snippet());
    ExportSetup::EndTasks();
    const BlockedPool pool;
    bool hasStarted = false;
    connect(setup.player.get(), &AudioPlayerWidget::ProgressChanged, this, [&] {
        if (!std::exchange(hasStarted, true)) {
            setup.player->SetAudioFile(other);
            setup.player->SetSelectedChannel(WavFile::ChannelLeft);
        }
    });
    setup.player->Close();
    QVERIFY(hasStarted);
    QVERIFY(setup.player->IsBusy());
    QCOMPARE(setup.busy.last(), QVariantList{true});
}

void PlayerExportTest::theLastProgressOfALongExportArrives()
{
    ExportSetup setup(TestAudio{.coding = S16, .channels = 2, .rate = 8000, .frames = 800000});
    setup.player->SetSelectedSnippet({0.0, 100.0});
    QCoreApplication::processEvents();
    QSignalSpy progress(setup.player.get(), &AudioPlayerWidget::ProgressChanged);
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(setup.IsIdle());
    // The last of 4,000 blocks of 800 bytes begins 800 bytes before the end at 3,200,044.
    QTRY_VERIFY(!progress.isEmpty() && progress.last() == (QVariantList{99, 0, 100, u"Creating snippet..."_s}));
    int former = 0;
    for (const QVariantList& report : std::as_const(progress)) {
        QVERIFY(report[0].toInt() >= former);
        former = report[0].toInt();
    }
}

void PlayerExportTest::closingDropsAFilteringThatIsDoneButNotASnippet()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.25, 0.5});
    setup.player->CreateSnippet(setup.Snippet());
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    ExportSetup::EndTasks();
    setup.player->Close();
    QVERIFY(!setup.player->IsBusy());
    QVERIFY(setup.finished.wait(PlayerSetup::patience));
    QCOMPARE(setup.finished, States{{setup.Snippet()}});
    QVERIFY(QFile::exists(setup.Snippet()));
    QVERIFY(QFile::exists(setup.Left()));
    QCOMPARE(setup.Audio().source().toLocalFile(), setup.Copy());
    QVERIFY(setup.player->errors.isEmpty());
}

void PlayerExportTest::withoutAFileASnippetFailsAndOverwritesNothing()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.25, 0.5});
    setup.originals.Write(u"snippet.wav"_s, "dear");
    setup.player->Close();
    setup.player->CreateSnippet(setup.Snippet());
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorCreateSnippet});
    QVERIFY(setup.finished.isEmpty());
    QCOMPARE(TemporaryFiles::Read(setup.Snippet()), "dear");
}

void PlayerExportTest::withoutAFileNoChannelIsFiltered()
{
    ExportSetup setup;
    setup.player->Reset();
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.busy.isEmpty());
    QVERIFY(!QFile::exists(setup.Left()));
    // Loaded again, it is whole.
    QVERIFY(setup.Load(setup.originals.Path(u"take.wav"_s)));
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QCOMPARE(TemporaryFiles::Read(setup.Left()).size(), 16044);
}

void PlayerExportTest::withoutAFileTheChannelBoxFallsBack()
{
    ExportSetup setup;
    const auto* box = setup.Controls().cmbboxChannelSelector;
    setup.player->Close();
    for (const WavFile::ChannelFormat channel : {WavFile::ChannelLeft, WavFile::ChannelRight}) {
        setup.player->SetSelectedChannel(channel);
        QCOMPARE(box->currentData().value<WavFile::ChannelFormat>(), WavFile::ChannelLeftRight);
        QCOMPARE(setup.player->GetSelectedChannel(), WavFile::ChannelLeftRight);
    }
    QVERIFY(setup.busy.isEmpty());
    QVERIFY(setup.player->errors.isEmpty());
    QVERIFY(!QFile::exists(setup.Left()) && !QFile::exists(setup.Right()));
}

void PlayerExportTest::choosesOnlyWhatTheFileOffers()
{
    ExportSetup setup;
    setup.player->SetSelectedChannel(WavFile::ChannelLeftRight);
    setup.player->SetSelectedChannel(WavFile::ChannelMono);
    setup.player->SetSelectedChannel(WavFile::ChannelNone);
    QVERIFY(setup.busy.isEmpty());
    QCOMPARE(setup.player->GetSelectedChannel(), WavFile::ChannelLeftRight);
    QVERIFY(setup.Load(u"mono.wav"_s, mono.File()));
    setup.player->SetSelectedChannel(WavFile::ChannelMono);
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.busy.isEmpty());
    QCOMPARE(setup.player->GetSelectedChannel(), WavFile::ChannelMono);
    AudioPlayerWidget empty;
    empty.SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(!empty.IsBusy());
    QCOMPARE(empty.GetSelectedChannel(), WavFile::ChannelNone);
}

void PlayerExportTest::filtersIntoAFileBesideTheWorkingCopy()
{
    ExportSetup setup;
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.player->IsBusy());
    QCOMPARE(Access::FilteredFilePath(*setup.player), setup.Left());
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.busy, (States{{true}, {false}}));
    QCOMPARE(TemporaryFiles::Read(setup.Left()),
             stereo.Exported(stereo.ExportedData(0, 8000, WavFile::ChannelLeft), 16000));
    QCOMPARE(setup.Audio().source().toLocalFile(), setup.Left());
    QCOMPARE(setup.player->GetAudioFileName(), setup.Copy());
    QCOMPARE(setup.player->GetSelectedChannel(), WavFile::ChannelLeft);
}

void PlayerExportTest::bothChannelsPlayTheWorkingCopyItself()
{
    ExportSetup setup;
    setup.player->SetSelectedChannel(WavFile::ChannelRight);
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.Audio().source().toLocalFile(), setup.Right());
    setup.player->SetSelectedChannel(WavFile::ChannelLeftRight);
    QCOMPARE(Access::FilteredFilePath(*setup.player), setup.Copy());
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.Audio().source().toLocalFile(), setup.Copy());
    QCOMPARE(TemporaryFiles::Read(setup.Copy()), stereo.File());
}

void PlayerExportTest::aFilteringEndsTheReadingOfSamples()
{
    ExportSetup setup;
    QSignalSpy news(&setup.File(), &WavFile::NewData);
    {
        const BlockedPool pool;
        Q_EMIT setup.View().GetSamples(0.0, 1.0, 1);
        setup.player->SetSelectedChannel(WavFile::ChannelLeft);
        QVERIFY(!Access::IsReadingSamples(*setup.player));
    }
    QVERIFY(setup.IsIdle());
    QVERIFY(setup.HasRead());
    // Only those that the view asked for when the channel was there.
    QTRY_COMPARE(news.size(), 1);
    QCOMPARE(setup.File().GetSamples().size(), 8000);
}

void PlayerExportTest::keepsTheSelection()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.25, 0.5});
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.player->GetSelectedSnippet(), std::pair(0.25, 0.5));
    QVERIFY(Access::HasSelection(*setup.player));
    QTRY_COMPARE(setup.Audio().position(), 250);
    QCOMPARE(setup.Controls().edSelectionStart->text(), u"00:00:00.250"_s);
    QCOMPARE(setup.Controls().edSelectionEnd->text(), u"00:00:00.500"_s);
}

void PlayerExportTest::aSelectionOfLessThanAMillisecondStaysThePlayers()
{
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.25, 0.5});
    setup.View().SetSelectionEndTime(0.2505);
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QCOMPARE(AudioPlayerTestAccess::SelectionStart(setup.Audio()), 0.25);
    QCOMPARE(AudioPlayerTestAccess::SelectionEnd(setup.Audio()), 0.2505);
}

void PlayerExportTest::keepsViewPositionAndPlaybackWhereItIsAskedTo()
{
    ExportSetup setup(TestAudio{.coding = S16, .channels = 2, .rate = 8000, .frames = 160000});
    setup.player->SetChannelChangeKeepsPlace(true);
    setup.player->resize(800, 400);
    setup.player->show();
    setup.player->ShowRange(4.0, 8.0);
    setup.player->UpdateAudioPosition(5.0);
    // Where Qt loads in the background nothing plays yet for a moment, and the player is at 0.
    QTRY_COMPARE_WITH_TIMEOUT(setup.Audio().position(), 5000, PlayerSetup::patience);
    setup.player->Play();
    QVERIFY(setup.player->IsPlaying());
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.player->GetVisibleRange(), std::pair(4.0, 8.0));
    QTRY_VERIFY_WITH_TIMEOUT(setup.Audio().position() > 5000, PlayerSetup::patience);
    QVERIFY(setup.Audio().position() < 10000);
    QVERIFY(setup.player->IsPlaying());
    QVERIFY(setup.Audio().source().fileName().endsWith(u"_Left.wav"_s));
}

void PlayerExportTest::keepsThePositionAlsoWherePlayingReturnsToTheStart()
{
    ExportSetup setup(TestAudio{.coding = S16, .channels = 2, .rate = 8000, .frames = 160000});
    setup.player->SetChannelChangeKeepsPlace(true);
    setup.player->SetSelectedSnippet({10.0, 15.0});
    setup.player->UpdateAudioPosition(5.0);
    QTRY_COMPARE_WITH_TIMEOUT(setup.Audio().position(), 5000, PlayerSetup::patience);
    setup.player->Play();
    QVERIFY(setup.player->IsPlaying());
    setup.player->SetPlayReturnsToStart(true);
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QTRY_VERIFY_WITH_TIMEOUT(setup.Audio().position() > 5000, PlayerSetup::patience);
    QVERIFY(setup.Audio().position() < 10000);
    QVERIFY(setup.player->IsPlaying());
}

void PlayerExportTest::keepsNoSelectionWhereThereWasNone()
{
    ExportSetup setup;
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.player->GetSelectedSnippet(), std::pair(0.0, 0.0));
    QVERIFY(!Access::HasSelection(*setup.player));
    QCOMPARE(setup.Audio().position(), 0);
}

void PlayerExportTest::theLatestChoiceCounts()
{
    ExportSetup setup;
    {
        const BlockedPool pool;
        setup.player->SetSelectedChannel(WavFile::ChannelLeft);
        setup.player->SetSelectedChannel(WavFile::ChannelRight);
    }
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.busy, (States{{true}, {true}, {false}}));
    QCOMPARE(setup.Audio().source().toLocalFile(), setup.Right());
    QVERIFY(!QFile::exists(setup.Left()));
    QVERIFY(setup.player->errors.isEmpty());
}

void PlayerExportTest::aFailedFilteringGoesBackToThePreviousChannel()
{
    ExportSetup setup;
    QVERIFY(ExportSetup::MakeUnwritable(setup.Left()));
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QTRY_COMPARE(setup.busy, (States{{true}, {false}, {true}, {false}}));
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorFilterChannel});
    QCOMPARE(setup.Controls().cmbboxChannelSelector->currentIndex(), 0);
    QCOMPARE(setup.player->GetSelectedChannel(), WavFile::ChannelLeftRight);
    QCOMPARE(setup.Audio().source().toLocalFile(), setup.Copy());
    QCOMPARE(Access::FilteredFilePath(*setup.player), setup.Copy());
}

void PlayerExportTest::aLinkToNothingIsNoPlaceForAChannel()
{
    ExportSetup setup;
    const QString nothing = setup.originals.Path(u"nothing"_s);
    QVERIFY(QFile::link(nothing, setup.Left()));
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QTRY_COMPARE(setup.busy, (States{{true}, {false}, {true}, {false}}));
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorFilterChannel});
    QVERIFY(!QFile::exists(nothing));
    QCOMPARE(QFileInfo(setup.Left()).symLinkTarget(), nothing);
}

void PlayerExportTest::aFailureIsToldWhenTheWayBackHasBegun()
{
    class Player : public AudioPlayerWidget
    {
    public:
        QList<bool> wasBusy;

    protected:
        void ErrorHandler(WavFile::AudioEngineReturnValue) override { wasBusy.append(IsBusy()); }
    } player;
    const TemporaryFiles originals;
    const TemporaryFiles copies;
    player.SetWritableDirectoryPath(copies.Path(QString()));
    player.SetAudioFile(originals.Write(u"take.wav"_s, stereo.File()));
    QVERIFY(ExportSetup::MakeUnwritable(copies.Path(u"take_Left.wav"_s)));
    player.SetSelectedChannel(WavFile::ChannelLeft);
    QTRY_COMPARE(player.wasBusy, QList<bool>{true});
    QTRY_VERIFY(!player.IsBusy());
}

void PlayerExportTest::aChannelFileThatVanishedIsReportedAsSuccess()
{
    ExportSetup setup;
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    ExportSetup::EndTasks();
    QVERIFY(QFile::remove(setup.Left()));
    QTRY_COMPARE(setup.busy, (States{{true}, {false}, {true}, {false}}));
    QCOMPARE(setup.player->errors, Errors{WavFile::Success});
    QCOMPARE(setup.Controls().cmbboxChannelSelector->currentIndex(), 0);
}

void PlayerExportTest::failingInBothDirectionsEnds()
{
    ExportSetup setup;
    QVERIFY(ExportSetup::MakeUnwritable(setup.Left()));
    QVERIFY(QFile::remove(setup.Copy()));
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QTRY_COMPARE(setup.busy, (States{{true}, {false}, {true}, {false}}));
    QCOMPARE(setup.player->errors, (Errors{WavFile::ErrorFilterChannel, WavFile::Success}));
    QCOMPARE(Access::FilteredFilePath(*setup.player), QString());
    ExportSetup::EndTasks();
    QCoreApplication::processEvents();
    QVERIFY(!setup.player->IsBusy());
    QCOMPARE(setup.busy.size(), 4);
    QCOMPARE(setup.Controls().cmbboxChannelSelector->currentIndex(), 0);
}

void PlayerExportTest::goesBackAgainAfterAWayBackThatFailed()
{
    ExportSetup setup;
    QVERIFY(ExportSetup::MakeUnwritable(setup.Left()));
    QVERIFY(QFile::remove(setup.Copy()));
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QTRY_COMPARE(setup.player->errors.size(), 2);
    setup.copies.Write(u"take.wav"_s, stereo.File());
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QTRY_COMPARE(setup.busy.size(), 8);
    QCOMPARE(setup.player->errors.mid(2), Errors{WavFile::ErrorFilterChannel});
    QCOMPARE(setup.player->GetSelectedChannel(), WavFile::ChannelLeftRight);
    QCOMPARE(setup.Audio().source().toLocalFile(), setup.Copy());
}

void PlayerExportTest::goesBackInTheNextFileAfterAWayBackThatWasCutOff()
{
    ExportSetup setup;
    QVERIFY(ExportSetup::MakeUnwritable(setup.Left()));
    QVERIFY(ExportSetup::MakeUnwritable(setup.copies.Path(u"next_Left.wav"_s)));
    const QMetaObject::Connection connection =
        connect(setup.player.get(), &AudioPlayerWidget::BusyChanged, this, [&](bool isBusy) {
            if (isBusy && setup.busy.size() == 3) {
                setup.player->Close();
            }
        });
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QTRY_COMPARE(setup.busy, (States{{true}, {false}, {true}, {false}}));
    disconnect(connection);
    setup.player->errors.clear();
    QVERIFY(setup.Load(u"next.wav"_s, stereo.File()));
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QTRY_COMPARE(setup.busy.size(), 8);
    QCOMPARE(setup.player->errors, Errors{WavFile::ErrorFilterChannel});
    QCOMPARE(setup.player->GetSelectedChannel(), WavFile::ChannelLeftRight);
}

void PlayerExportTest::anotherChannelMayBeChosenWhenTheBusyTimeEnds()
{
    ExportSetup setup;
    connect(setup.player.get(), &AudioPlayerWidget::BusyChanged, this, [&](bool isBusy) {
        if (!isBusy) {
            setup.player->SetSelectedChannel(WavFile::ChannelRight);
        }
    });
    QSignalSpy sources(&setup.Audio(), &QMediaPlayer::sourceChanged);
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QTRY_COMPARE(setup.busy, (States{{true}, {false}, {true}, {false}}));
    QCOMPARE(setup.Audio().source().toLocalFile(), setup.Right());
    QCOMPARE(sources.size(), 1);
    QVERIFY(QFile::exists(setup.Left()));
    QVERIFY(setup.player->errors.isEmpty());
}

void PlayerExportTest::anotherFileMayBeLoadedWhenTheBusyTimeEnds()
{
    ExportSetup setup;
    const QString next = setup.originals.Write(u"next.wav"_s, mono.File());
    connect(setup.player.get(), &AudioPlayerWidget::BusyChanged, this, [&](bool isBusy) {
        if (!isBusy) {
            setup.player->SetAudioFile(next);
        }
    });
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(setup.IsIdle());
    QCOMPARE(setup.player->GetAudioFileName(), setup.copies.Path(u"next.wav"_s));
    QCOMPARE(setup.Audio().source().toLocalFile(), setup.copies.Path(u"next.wav"_s));
    QVERIFY(setup.player->errors.isEmpty());
}

void PlayerExportTest::resettingLeavesTheFileThatIsLoadedWhenTheBusyTimeEnds()
{
    ExportSetup setup;
    const QString next = setup.originals.Write(u"next.wav"_s, mono.File());
    connect(setup.player.get(), &AudioPlayerWidget::BusyChanged, this, [&](bool isBusy) {
        if (!isBusy) {
            setup.player->SetAudioFile(next);
        }
    });
    const BlockedPool pool;
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    setup.player->Reset();
    QCOMPARE(setup.player->GetAudioFileName(), setup.copies.Path(u"next.wav"_s));
    QVERIFY(setup.Controls().btnPlayPause->isEnabled());
    QCOMPARE(setup.Controls().edTotalDuration->text(), u"00:00:01.000"_s);
}

void PlayerExportTest::mayBeDestroyedWhenTheBusyTimeEnds_data()
{
    using Step = std::function<void(ExportSetup&)>;
    QTest::addColumn<Step>("step");
    QTest::newRow("snippet") << Step([](ExportSetup& setup) { setup.player->CreateSnippet(setup.Snippet()); });
    QTest::newRow("failing snippet") << Step(
        [](ExportSetup& setup) { setup.player->CreateSnippet(u"/nowhere/snippet.wav"_s); });
    QTest::newRow("channel") << Step(
        [](ExportSetup& setup) { setup.player->SetSelectedChannel(WavFile::ChannelLeft); });
    QTest::newRow("reset") << Step([](ExportSetup& setup) {
        const BlockedPool pool;
        setup.player->SetSelectedChannel(WavFile::ChannelLeft);
        setup.player->Reset();
    });
    QTest::newRow("another file") << Step([](ExportSetup& setup) {
        const QString next = setup.originals.Write(u"next.wav"_s, mono.File());
        const BlockedPool pool;
        setup.player->SetSelectedChannel(WavFile::ChannelLeft);
        setup.player->SetAudioFile(next);
    });
}

void PlayerExportTest::mayBeDestroyedWhenTheBusyTimeEnds()
{
    QFETCH(const std::function<void(ExportSetup&)>, step);
    ExportSetup setup;
    setup.player->SetSelectedSnippet({0.25, 0.5});
    connect(setup.player.get(), &AudioPlayerWidget::BusyChanged, this, [&](bool isBusy) {
        if (!isBusy) {
            setup.player.reset();
        }
    });
    step(setup);
    QTRY_VERIFY(!setup.player);
    ExportSetup::EndTasks();
    QCoreApplication::processEvents();
    QVERIFY(setup.finished.isEmpty());
}

int main(int argc, char* argv[])
{
    const SoundServer server({QStringLiteral("one")});
    QApplication application(argc, argv);
    PlayerExportTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playerexport.moc"
