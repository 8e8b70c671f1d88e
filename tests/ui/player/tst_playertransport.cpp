#include "tests/playback/AudioPlayerTestAccess.h"
#include "tests/support/SoundServer.h"
#include "tests/ui/player/LoadedPlayer.h"

#include <QtGui/QRegularExpressionValidator>
#include <QtMultimedia/QMediaDevices>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QVBoxLayout>

#include <limits>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::vantorAudioEngine::UI;
using Widget = AudioPlayerWidget;

namespace {

using Range = std::pair<double, double>;

/** How long playback may take to go on, on a busy machine. */
constexpr int patience = 20000;

Range RangeOf(const AudioPlayer& player)
{
    return {AudioPlayerTestAccess::SelectionStart(player), AudioPlayerTestAccess::SelectionEnd(player)};
}

bool Shows(const QPushButton& button, const QString& name)
{
    const auto picture = [](const QIcon& icon) { return icon.pixmap(64, 64).toImage(); };
    return picture(button.icon()) == picture(QIcon(u":/Resources/vantoraudio"_s + name + u"_day.svg"_s));
}

void Click(QWidget* widget)
{
    QTest::mouseClick(widget, Qt::LeftButton);
}

QAudioDevice Device(const QByteArray& id)
{
    for (const QAudioDevice& device : QMediaDevices::audioOutputs()) {
        if (device.id() == id) {
            return device;
        }
    }
    return {};
}

/** Takes what the player widget leaves to its parent. */
class KeyTaker : public QWidget
{
public:
    QList<int> keys;

protected:
    void keyPressEvent(QKeyEvent* event) override { keys << event->key(); }
};

} // namespace

class PlayerTransportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void aClickPlaysAndAnotherOnePauses();
    void theProgramPlaysAndPauses();
    void playingNeedsAFile();
    void theButtonMirrorsThePlayer();
    void theClickedButtonShowsItsIconBeforeThePlayerFollows();
    void theButtonShowsTheIconsOfTheHost();
    void playbackThatEndsShowsThePlayIcon();

    void stopWithoutASelectionStopsAtTheStart();
    void stopWithASelectionPausesAtItsStart();
    void stopGivesThePlayerItsSelectionAgain();
    void stopGivesThePlayerTheWholeFileAgain();
    void stopPlaybackStopsAtTheStartEvenWithASelection();
    void stopPlaybackGivesThePlayerItsDeviceAgain();

    void loopFollowsItsButton();
    void aLoopedSelectionIsPlayedAgain();

    void aClickMutesAndUnmutes();
    void aMuteButtonThatAgreesWithThePlayerDoesNothing();
    void settingTheMuteMovesTheButtonAndEmitsNothing();
    void settingTheMuteThatIsDoesNothing();
    void settingTheMuteIsSilentForTheButton();
    void tellsWhetherItIsMuted();

    void theSliderSetsTheVolume();
    void aSliderThatAgreesWithThePlayerDoesNothing();
    void settingTheVolumeMovesTheSliderAndEmitsNothing_data();
    void settingTheVolumeMovesTheSliderAndEmitsNothing();
    void settingTheVolumeThatIsDoesNothing();
    void tellsTheVolumeThatWasSet_data();
    void tellsTheVolumeThatWasSet();
    void tellsTheVolumeOfTheSlider();

    void anotherDeviceStopsAndPlaysTheWholeFile();
    void anotherDevicePlaysOnWhereTheHostWantsIt();
    void anUnknownDeviceIsKeptButNotPlayedTo();

    void aSelectionThatChangesDoesNotLeadTheViewAwayWhereTheHostWantsIt();
    void anotherSelectionPlaysOnWhereTheHostWantsIt();
    void aTypedStartShowsWhereTheHostWantsIt();

    void thePlayersPositionMovesFieldMarkerAndHost();
    void playingMovesThePosition();
    void updatingThePositionMovesPlayerAndMarker();
    void anEndlessPositionIsSurvived_data();
    void anEndlessPositionIsSurvived();

    void aTypedPositionMovesTheMarkerButNotThePlayer();
    void aTypedPositionClearsTheSelection();
    void aTypedPositionMovesThePlayerWhereTheHostWantsIt();
    void aTypedStartMovesThePlayerWhereTheHostWantsIt();
    void fieldsThatAreLeftUntypedChangeNothingWhereTheHostWantsIt();
    void theCursorStaysWhereThePositionIsToBeTyped();
    void playingReturnsToTheStartWhereTheHostWantsIt_data();
    void playingReturnsToTheStartWhereTheHostWantsIt();
    void anEditedPositionIsNotWrittenOverWhereTheHostWantsIt();
    void aTypedPositionCountsWhenTheFieldIsLeft();
    void theEndOfTheFileMayBeTyped();
    void aPositionBeyondTheDurationSnapsBack();
    void aPositionThatIsNoTimeCountsAsTheStart();
    void noKeyMakesAPositionOutsideADay();

    void spacePlaysAndPauses();
    void spaceShowsTheIconOfTheButton();
    void selectAllSelectsTheWholeFile();
    void otherKeysReachTheParent_data();
    void otherKeysReachTheParent();
    void spaceAndSelectAllDoNotReachTheParent();

    void anEmptiedPlayerHasNoPlaceToGoToAndNothingToSelect();

    void theSettingsButtonTellsTheHost();
    void aFailureOfAFileThatHasGoneIsNotTold();

private:
    void StartPlaying();
    const auto& Controls() { return m_loaded->Controls(); }
    double Marker() { return m_loaded->Waveform().GetAudioPosition(); }
    QString PositionText() { return Controls().edCurrentPosition->text(); }
    AudioPlayer& Player() { return m_loaded->Player(); }
    Widget& Shown() { return m_loaded->widget; }

    std::unique_ptr<LoadedPlayer> m_loaded;
};

void PlayerTransportTest::initTestCase()
{
    QTRY_COMPARE_WITH_TIMEOUT(QMediaDevices::audioOutputs().size(), 2, patience);
}

void PlayerTransportTest::init()
{
    m_loaded = std::make_unique<LoadedPlayer>();
    QVERIFY(m_loaded->Load());
}

void PlayerTransportTest::cleanup()
{
    if (m_loaded) {
        QCOMPARE(m_loaded->widget.errors.size(), 0);
    }
    m_loaded.reset();
}

/** Plays until the position has moved on. */
void PlayerTransportTest::StartPlaying()
{
    const qint64 before = Player().position();
    Click(Controls().btnPlayPause);
    QTRY_VERIFY_WITH_TIMEOUT(Player().position() > before, patience);
    QCOMPARE(Player().playbackState(), QMediaPlayer::PlayingState);
}

void PlayerTransportTest::aClickPlaysAndAnotherOnePauses()
{
    QPushButton& button = *Controls().btnPlayPause;
    QVERIFY(button.isEnabled());
    Click(&button);
    QCOMPARE(Player().playbackState(), QMediaPlayer::PlayingState);
    QVERIFY(button.isChecked());
    QVERIFY(Shows(button, u"PlayerPause"_s));
    Click(&button);
    QCOMPARE(Player().playbackState(), QMediaPlayer::PausedState);
    QVERIFY(!button.isChecked());
    QVERIFY(Shows(button, u"PlayerPlay"_s));
}

void PlayerTransportTest::theProgramPlaysAndPauses()
{
    QPushButton& button = *Controls().btnPlayPause;
    QVERIFY(!Shown().IsPlaying());
    Shown().Pause();
    QCOMPARE(Player().playbackState(), QMediaPlayer::StoppedState);
    for (int i = 0; i < 2; ++i) {
        Shown().Play();
        QVERIFY(Shown().IsPlaying());
        QVERIFY(button.isChecked());
        QVERIFY(Shows(button, u"PlayerPause"_s));
    }
    for (int i = 0; i < 2; ++i) {
        Shown().Pause();
        QVERIFY(!Shown().IsPlaying());
        QCOMPARE(Player().playbackState(), QMediaPlayer::PausedState);
        QVERIFY(!button.isChecked());
        QVERIFY(Shows(button, u"PlayerPlay"_s));
    }
}

void PlayerTransportTest::playingNeedsAFile()
{
    Shown().Reset();
    Shown().Play();
    QVERIFY(!Shown().IsPlaying());
    QCOMPARE(Player().playbackState(), QMediaPlayer::StoppedState);
}

void PlayerTransportTest::theButtonMirrorsThePlayer()
{
    QPushButton& button = *Controls().btnPlayPause;
    const QSignalSpy toggled(&button, &QPushButton::toggled);
    const QSignalSpy clicked(&button, &QPushButton::clicked);
    Player().play();
    QVERIFY(button.isChecked());
    QVERIFY(Shows(button, u"PlayerPause"_s));
    Player().pause();
    QVERIFY(!button.isChecked());
    QVERIFY(Shows(button, u"PlayerPlay"_s));
    Player().play();
    QVERIFY(button.isChecked());
    Player().stop();
    QVERIFY(!button.isChecked());
    QVERIFY(Shows(button, u"PlayerPlay"_s));
    QCOMPARE(toggled.size() + clicked.size(), 0);
    QVERIFY(!button.signalsBlocked());
}

void PlayerTransportTest::theClickedButtonShowsItsIconBeforeThePlayerFollows()
{
    const QSignalBlocker silentPlayer(&Player());
    Click(Controls().btnPlayPause);
    QVERIFY(Shows(*Controls().btnPlayPause, u"PlayerPause"_s));
    Click(Controls().btnPlayPause);
    QVERIFY(Shows(*Controls().btnPlayPause, u"PlayerPlay"_s));
}

void PlayerTransportTest::theButtonShowsTheIconsOfTheHost()
{
    Shown().SetIconPlay(QIcon(u":/Resources/vantoraudioMute_day.svg"_s));
    QVERIFY(Shows(*Controls().btnPlayPause, u"Mute"_s));
    Shown().SetIconPause(QIcon(u":/Resources/vantoraudioUnmute_day.svg"_s));
    QVERIFY(Shows(*Controls().btnPlayPause, u"Mute"_s));
    Player().play();
    QVERIFY(Shows(*Controls().btnPlayPause, u"Unmute"_s));
    Shown().SetIconPause(QIcon(u":/Resources/vantoraudioPlayerLoop_day.svg"_s));
    QVERIFY(Shows(*Controls().btnPlayPause, u"PlayerLoop"_s));
    Player().stop();
    QVERIFY(Shows(*Controls().btnPlayPause, u"Mute"_s));
}

void PlayerTransportTest::playbackThatEndsShowsThePlayIcon()
{
    Shown().SetSelectedSnippet({1.0, 1.2});
    Click(Controls().btnPlayPause);
    QTRY_COMPARE_WITH_TIMEOUT(Player().playbackState(), QMediaPlayer::PausedState, patience);
    QVERIFY(!Controls().btnPlayPause->isChecked());
    QVERIFY(Shows(*Controls().btnPlayPause, u"PlayerPlay"_s));
    QCOMPARE(Player().position(), 1000);
    QTRY_COMPARE(PositionText(), u"00:00:01.000"_s);
    QCOMPARE(Marker(), 1.0);
}

void PlayerTransportTest::stopWithoutASelectionStopsAtTheStart()
{
    StartPlaying();
    const QSignalSpy toggled(Controls().btnPlayPause, &QPushButton::toggled);
    Click(Controls().btnStop);
    QCOMPARE(Player().playbackState(), QMediaPlayer::StoppedState);
    QCOMPARE(Player().position(), 0);
    QCOMPARE(Marker(), 0.0);
    QVERIFY(!Controls().btnPlayPause->isChecked());
    QVERIFY(Shows(*Controls().btnPlayPause, u"PlayerPlay"_s));
    QCOMPARE(toggled.size(), 0);
}

void PlayerTransportTest::stopWithASelectionPausesAtItsStart()
{
    Shown().SetSelectedSnippet({2.0, 15.0});
    StartPlaying();
    const QSignalSpy toggled(Controls().btnPlayPause, &QPushButton::toggled);
    Click(Controls().btnStop);
    QCOMPARE(Player().playbackState(), QMediaPlayer::PausedState);
    QCOMPARE(Player().position(), 2000);
    QCOMPARE(Marker(), 2.0);
    QCOMPARE(RangeOf(Player()), Range(2.0, 15.0));
    QVERIFY(!Controls().btnPlayPause->isChecked());
    QVERIFY(Shows(*Controls().btnPlayPause, u"PlayerPlay"_s));
    QCOMPARE(toggled.size(), 0);
}

void PlayerTransportTest::stopGivesThePlayerItsSelectionAgain()
{
    Shown().SetSelectedSnippet({2.0, 15.0});
    Shown().SetAudioOutputDevice(Device("one"));
    QCOMPARE(RangeOf(Player()), Range(0.0, 20.0));
    Click(Controls().btnStop);
    QCOMPARE(RangeOf(Player()), Range(2.0, 15.0));
    QCOMPARE(Player().position(), 2000);
}

void PlayerTransportTest::stopGivesThePlayerTheWholeFileAgain()
{
    Player().SetSelection(3.0, 4.0);
    Click(Controls().btnStop);
    QCOMPARE(RangeOf(Player()), Range(0.0, 20.0));
    QCOMPARE(Player().position(), 0);
}

void PlayerTransportTest::stopPlaybackStopsAtTheStartEvenWithASelection()
{
    Shown().SetSelectedSnippet({2.0, 15.0});
    StartPlaying();
    const QSignalSpy toggled(Controls().btnPlayPause, &QPushButton::toggled);
    Shown().StopPlayback();
    QCOMPARE(Player().playbackState(), QMediaPlayer::StoppedState);
    QCOMPARE(Marker(), 0.0);
    QVERIFY(!Controls().btnPlayPause->isChecked());
    QVERIFY(Shows(*Controls().btnPlayPause, u"PlayerPlay"_s));
    QCOMPARE(toggled.size(), 0);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(2.0, 15.0));
}

void PlayerTransportTest::stopPlaybackGivesThePlayerItsDeviceAgain()
{
    Shown().SetAudioOutputDevice(Device("two"));
    Player().SetAudioOutputDevice(Device("one"));
    Shown().StopPlayback();
    QCOMPARE(Player().GetAudioOutputDevice().id(), "two");
}

void PlayerTransportTest::loopFollowsItsButton()
{
    Click(Controls().btnLoop);
    QVERIFY(Controls().btnLoop->isChecked());
    QVERIFY(AudioPlayerTestAccess::IsLooping(Player()));
    Click(Controls().btnLoop);
    QVERIFY(!Controls().btnLoop->isChecked());
    QVERIFY(!AudioPlayerTestAccess::IsLooping(Player()));
}

void PlayerTransportTest::aLoopedSelectionIsPlayedAgain()
{
    Shown().SetSelectedSnippet({1.0, 1.3});
    int rounds = 0;
    connect(&Shown(), &Widget::AudioPositionChanged, this,
            [&rounds](double position) { rounds += position == 1.0 ? 1 : 0; });
    Click(Controls().btnLoop);
    Click(Controls().btnPlayPause);
    QTRY_VERIFY_WITH_TIMEOUT(rounds >= 3, patience);
    QVERIFY(Controls().btnPlayPause->isChecked());
}

void PlayerTransportTest::aClickMutesAndUnmutes()
{
    const QSignalSpy told(&Shown(), &Widget::AudioPlayBackMuteChanged);
    Click(Controls().btnMute);
    QVERIFY(Player().IsMuted());
    QVERIFY(Shows(*Controls().btnMute, u"Mute"_s));
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.last(), QVariantList{true});
    Click(Controls().btnMute);
    QVERIFY(!Player().IsMuted());
    QVERIFY(Shows(*Controls().btnMute, u"Unmute"_s));
    QCOMPARE(told.size(), 2);
    QCOMPARE(told.last(), QVariantList{false});
}

void PlayerTransportTest::aMuteButtonThatAgreesWithThePlayerDoesNothing()
{
    const QSignalSpy told(&Shown(), &Widget::AudioPlayBackMuteChanged);
    Player().SetMuted(true);
    Click(Controls().btnMute);
    QVERIFY(Controls().btnMute->isChecked());
    QVERIFY(Player().IsMuted());
    QVERIFY(Shows(*Controls().btnMute, u"Unmute"_s));
    QCOMPARE(told.size(), 0);
}

void PlayerTransportTest::settingTheMuteMovesTheButtonAndEmitsNothing()
{
    const QSignalSpy told(&Shown(), &Widget::AudioPlayBackMuteChanged);
    Shown().SetAudioPlayBackMute(true);
    QVERIFY(Player().IsMuted());
    QVERIFY(Controls().btnMute->isChecked());
    QVERIFY(Shows(*Controls().btnMute, u"Mute"_s));
    Shown().SetAudioPlayBackMute(false);
    QVERIFY(!Player().IsMuted());
    QVERIFY(!Controls().btnMute->isChecked());
    QVERIFY(Shows(*Controls().btnMute, u"Unmute"_s));
    QCOMPARE(told.size(), 0);
}

void PlayerTransportTest::settingTheMuteThatIsDoesNothing()
{
    Player().SetMuted(true);
    Shown().SetAudioPlayBackMute(true);
    QVERIFY(Player().IsMuted());
    QVERIFY(!Controls().btnMute->isChecked());
    QVERIFY(Shows(*Controls().btnMute, u"Unmute"_s));
}

void PlayerTransportTest::settingTheMuteIsSilentForTheButton()
{
    const QSignalSpy toggled(Controls().btnMute, &QPushButton::toggled);
    Shown().SetAudioPlayBackMute(true);
    QVERIFY(Controls().btnMute->isChecked());
    QVERIFY(Shows(*Controls().btnMute, u"Mute"_s));
    QVERIFY(toggled.isEmpty());
    QVERIFY(!Controls().btnMute->signalsBlocked());
}

void PlayerTransportTest::tellsWhetherItIsMuted()
{
    QVERIFY(!Shown().GetAudioPlayBackMute());
    Shown().SetAudioPlayBackMute(true);
    QVERIFY(Shown().GetAudioPlayBackMute());
    Click(Controls().btnMute);
    QVERIFY(!Shown().GetAudioPlayBackMute());
}

void PlayerTransportTest::theSliderSetsTheVolume()
{
    const QSignalSpy told(&Shown(), &Widget::AudioPlayBackVolumeChanged);
    QSlider* slider = Controls().hSliderVolume;
    QTest::keyClick(slider, Qt::Key_Home);
    QCOMPARE(slider->value(), 0);
    QCOMPARE(Player().Volume(), 0);
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.last(), QVariantList{0});
    QTest::keyClick(slider, Qt::Key_PageUp);
    QCOMPARE(slider->value(), 10);
    QCOMPARE(Player().Volume(), 10);
    QCOMPARE(told.size(), 2);
    QCOMPARE(told.last(), QVariantList{10});
    QTest::keyClick(slider, Qt::Key_End);
    QCOMPARE(Player().Volume(), 99);
    QCOMPARE(told.last(), QVariantList{99});
}

void PlayerTransportTest::aSliderThatAgreesWithThePlayerDoesNothing()
{
    const QSignalSpy told(&Shown(), &Widget::AudioPlayBackVolumeChanged);
    Player().SetVolume(0);
    QTest::keyClick(Controls().hSliderVolume, Qt::Key_Home);
    QCOMPARE(Controls().hSliderVolume->value(), 0);
    QCOMPARE(told.size(), 0);
}

void PlayerTransportTest::settingTheVolumeMovesTheSliderAndEmitsNothing_data()
{
    QTest::addColumn<int>("volume");
    QTest::addColumn<int>("shown");
    QTest::addColumn<int>("played");
    QTest::newRow("half") << 50 << 50 << 50;
    QTest::newRow("none") << 0 << 0 << 0;
    QTest::newRow("one that the player truncates") << 57 << 57 << 56;
    QTest::newRow("full, which the slider does not reach") << 100 << 99 << 100;
    QTest::newRow("too much") << 150 << 99 << 100;
    QTest::newRow("less than nothing") << -5 << 0 << 0;
}

void PlayerTransportTest::settingTheVolumeMovesTheSliderAndEmitsNothing()
{
    QFETCH(int, volume);
    Shown().SetAudioPlayBackVolume(30);
    const QSignalSpy told(&Shown(), &Widget::AudioPlayBackVolumeChanged);
    Shown().SetAudioPlayBackVolume(volume);
    QTEST(Controls().hSliderVolume->value(), "shown");
    QTEST(Player().Volume(), "played");
    QCOMPARE(told.size(), 0);
    QVERIFY(!Controls().hSliderVolume->signalsBlocked());
}

void PlayerTransportTest::settingTheVolumeThatIsDoesNothing()
{
    const QSignalSpy told(&Shown(), &Widget::AudioPlayBackVolumeChanged);
    Player().SetVolume(40);
    Shown().SetAudioPlayBackVolume(40);
    QCOMPARE(Controls().hSliderVolume->value(), 99);
    QCOMPARE(Player().Volume(), 40);
    QCOMPARE(told.size(), 0);
}

void PlayerTransportTest::tellsTheVolumeThatWasSet_data()
{
    QTest::addColumn<int>("volume");
    QTest::addColumn<int>("told");
    QTest::newRow("silent") << 0 << 0;
    QTest::newRow("one that the player reads back as less") << 57 << 57;
    QTest::newRow("full") << 100 << 100;
    QTest::newRow("below all") << -20 << 0;
    QTest::newRow("above all") << 150 << 100;
    QTest::newRow("just above all") << 101 << 100;
}

void PlayerTransportTest::tellsTheVolumeThatWasSet()
{
    QFETCH(int, volume);
    QFETCH(int, told);
    QCOMPARE(Shown().GetAudioPlayBackVolume(), 100);
    Shown().SetAudioPlayBackVolume(volume);
    QCOMPARE(Shown().GetAudioPlayBackVolume(), told);
    // Set again, as a program does that keeps it from one start to the next.
    Shown().SetAudioPlayBackVolume(Shown().GetAudioPlayBackVolume());
    QCOMPARE(Shown().GetAudioPlayBackVolume(), told);
}

void PlayerTransportTest::tellsTheVolumeOfTheSlider()
{
    Controls().hSliderVolume->setValue(29);
    QCOMPARE(Shown().GetAudioPlayBackVolume(), 29);
    Player().SetVolume(70);
    QVERIFY(Shown().GetAudioPlayBackVolume() >= 69 && Shown().GetAudioPlayBackVolume() <= 70);
}

void PlayerTransportTest::anotherDeviceStopsAndPlaysTheWholeFile()
{
    Shown().SetSelectedSnippet({2.0, 15.0});
    StartPlaying();
    Shown().SetAudioOutputDevice(Device("two"));
    QCOMPARE(Player().playbackState(), QMediaPlayer::StoppedState);
    QVERIFY(!Controls().btnPlayPause->isChecked());
    QCOMPARE(RangeOf(Player()), Range(0.0, 20.0));
    QCOMPARE(Player().GetAudioOutputDevice().id(), "two");
    StartPlaying();
    Shown().SetAudioOutputDevice(Device("one"));
    QCOMPARE(Player().GetAudioOutputDevice().id(), "one");
}

void PlayerTransportTest::anotherDevicePlaysOnWhereTheHostWantsIt()
{
    Shown().SetDeviceChangeKeepsPlace(true);
    Shown().SetAudioOutputDevice(Device("two"));
    Shown().SetSelectedSnippet({2.0, 15.0});
    StartPlaying();
    QTRY_VERIFY(Player().position() >= 2000);
    Shown().SetAudioOutputDevice(Device("one"));
    QCOMPARE(Player().GetAudioOutputDevice().id(), "one");
    QVERIFY(Shown().IsPlaying());
    QCOMPARE(RangeOf(Player()), Range(2.0, 15.0));
    const qint64 reached = Player().position();
    QVERIFY(reached >= 1800);
    QTRY_VERIFY(Player().position() > reached + 200);
    // It is the widget's device from now on.
    Shown().StopPlayback();
    QCOMPARE(Player().GetAudioOutputDevice().id(), "one");
}

void PlayerTransportTest::anUnknownDeviceIsKeptButNotPlayedTo()
{
    Shown().SetAudioOutputDevice(Device("two"));
    Shown().SetAudioOutputDevice(QAudioDevice());
    QCOMPARE(Player().GetAudioOutputDevice().id(), "two");
    Player().SetAudioOutputDevice(Device("one"));
    Shown().StopPlayback();
    QCOMPARE(Player().GetAudioOutputDevice().id(), "one");
}

void PlayerTransportTest::aSelectionThatChangesDoesNotLeadTheViewAwayWhereTheHostWantsIt()
{
    Shown().SetInteractions(BGFXWaveformWidget::Interaction::SelectBeyondView);
    for (const bool atOnce : {false, true}) {
        Shown().SetShowsPositionAtOnce(atOnce);
        Shown().SetSelectedSnippet({2.0, 15.0});
        Player().setPosition(3000);
        Shown().ShowRange(14.0, 16.0);
        Controls().btnDecSelectionEnd->click();
        QVERIFY(Shown().GetSelectedSnippet().second < 15.0);
        QCOMPARE(Player().position(), qint64(2000));
        QCOMPARE(Marker(), 2.0);
        QCOMPARE(Shown().GetVisibleRange().first == 14.0, atOnce);
        // Whoever goes there is led there.
        Shown().UpdateAudioPosition(2.0);
        QVERIFY(Shown().GetVisibleRange().first <= 2.0);
        Shown().ClearSelection();
    }
}

void PlayerTransportTest::anotherSelectionPlaysOnWhereTheHostWantsIt()
{
    Shown().SetInteractions(BGFXWaveformWidget::Interaction::SelectBeyondView);
    for (const bool keeps : {false, true}) {
        Shown().SetSelectionChangeKeepsPlace(keeps);
        Shown().SetSelectedSnippet({2.0, 15.0});
        StartPlaying();
        Player().setPosition(5000);
        QTRY_VERIFY(Player().position() >= 5000);
        Shown().SetSelectedSnippet({2.0, 14.0});
        const qint64 position = Player().position();
        QCOMPARE(position >= 5000, keeps);
        QCOMPARE(Marker(), double(position) / 1000.0);
        QCOMPARE(RangeOf(Player()), Range(2.0, 14.0));
        // A selection elsewhere is played from its start.
        Shown().SetSelectedSnippet({9.0, 14.0});
        QVERIFY(Player().position() >= 9000);
        QVERIFY(Shown().IsPlaying());
        Shown().Pause();
        QTRY_VERIFY(!Shown().IsPlaying());
        Player().setPosition(10000);
        Shown().SetSelectedSnippet({9.0, 13.0});
        QCOMPARE(Player().position(), qint64(9000));
    }
}

void PlayerTransportTest::aTypedStartShowsWhereTheHostWantsIt()
{
    Shown().SetInteractions(BGFXWaveformWidget::Interaction::SelectBeyondView);
    Shown().SetShowsPositionAtOnce(true);
    Shown().SetTypedPositionSeeks(true);
    Shown().SetSelectedSnippet({2.0, 15.0});
    Shown().ShowRange(14.0, 16.0);
    TypeTime(*Controls().edSelectionStart, u"000003000"_s);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(3.0, 15.0));
    const auto [first, last] = Shown().GetVisibleRange();
    QVERIFY(first <= 3.0 && 3.0 <= last);
}

void PlayerTransportTest::thePlayersPositionMovesFieldMarkerAndHost()
{
    QStringList told;
    connect(&Shown(), &Widget::AudioPositionChanged, this,
            [&](double position) { told << u"%1 %2 %3"_s.arg(position).arg(PositionText()).arg(Marker()); });
    const QSignalSpy changed(Controls().edCurrentPosition, &QLineEdit::textChanged);
    Player().setPosition(12345);
    QCOMPARE(told, QStringList(u"12.345 00:00:12.345 12.345"_s));
    QCOMPARE(changed.size(), 0);
    QVERIFY(!Controls().edCurrentPosition->signalsBlocked());
}

void PlayerTransportTest::playingMovesThePosition()
{
    const QSignalSpy positions(&Player(), &QMediaPlayer::positionChanged);
    const QSignalSpy told(&Shown(), &Widget::AudioPositionChanged);
    StartPlaying();
    QTRY_VERIFY_WITH_TIMEOUT(told.size() >= 3, patience);
    Click(Controls().btnPlayPause);
    QCOMPARE(told.size(), positions.size());
    for (qsizetype i = 0; i < told.size(); ++i) {
        QCOMPARE(told[i][0].toDouble(), static_cast<double>(positions[i][0].toLongLong()) / 1000.0);
    }
    QCOMPARE(Marker(), told.last()[0].toDouble());
}

void PlayerTransportTest::updatingThePositionMovesPlayerAndMarker()
{
    Shown().UpdateAudioPosition(3.4567);
    QCOMPARE(Player().position(), 3456);
    QCOMPARE(PositionText(), u"00:00:03.456"_s);
    QCOMPARE(Marker(), 3.4567);
}

void PlayerTransportTest::anEndlessPositionIsSurvived_data()
{
    QTest::addColumn<double>("seconds");
    QTest::newRow("behind the end") << 25.0;
    QTest::newRow("far behind the end") << 1e6;
    QTest::newRow("longer than all time") << 1e300;
    QTest::newRow("endless") << std::numeric_limits<double>::infinity();
    QTest::newRow("before the start") << -1.0;
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
}

void PlayerTransportTest::anEndlessPositionIsSurvived()
{
    QFETCH(double, seconds);
    StartPlaying();
    Shown().UpdateAudioPosition(seconds);
    Click(Controls().btnStop);
    QCOMPARE(Player().position(), 0);
    StartPlaying();
}

void PlayerTransportTest::aTypedPositionMovesTheMarkerButNotThePlayer()
{
    Player().setPosition(1000);
    QSignalSpy told(&Shown(), &Widget::AudioPositionChanged);
    TypeTime(*Controls().edCurrentPosition, u"000005250"_s);
    QCOMPARE(Marker(), 5.25);
    QCOMPARE(PositionText(), u"00:00:05.250"_s);
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.last(), QVariantList{5.25});
    QCOMPARE(Player().position(), 1000);
}

void PlayerTransportTest::aTypedPositionClearsTheSelection()
{
    Shown().SetSelectedSnippet({2.0, 15.0});
    QStringList told;
    connect(&Shown(), &Widget::WaveFormSelectionChanged, this,
            [&told](const Range& range) { told << u"selection %1 %2"_s.arg(range.first).arg(range.second); });
    TypeTime(*Controls().edCurrentPosition, u"000005250"_s);
    QCOMPARE(told, QStringList({u"selection 0 15"_s, u"selection 0 0"_s}));
    QCOMPARE(Shown().GetSelectedSnippet(), Range(0.0, 0.0));
    QVERIFY(!AudioPlayerWidgetTestAccess::HasSelection(Shown()));
    QCOMPARE(RangeOf(Player()), Range(0.0, 20.0));
    QCOMPARE(Controls().edSelectionEnd->text(), u"00:00:00.000"_s);
    QCOMPARE(Marker(), 5.25);
    QCOMPARE(PositionText(), u"00:00:05.250"_s);
}

void PlayerTransportTest::aTypedPositionMovesThePlayerWhereTheHostWantsIt()
{
    Shown().SetTypedPositionSeeks(true);
    Shown().SetSelectedSnippet({2.0, 15.0});
    TypeTime(*Controls().edCurrentPosition, u"000005250"_s);
    QCOMPARE(Player().position(), 5250);
    QCOMPARE(Marker(), 5.25);
    QCOMPARE(PositionText(), u"00:00:05.250"_s);
    QCOMPARE(RangeOf(Player()), Range(0.0, 20.0));
}

void PlayerTransportTest::aTypedStartMovesThePlayerWhereTheHostWantsIt()
{
    Shown().SetTypedPositionSeeks(true);
    Shown().SetSelectedSnippet({2.0, 4.0});
    TypeTime(*Controls().edSelectionStart, u"000008000"_s);
    QCOMPARE(Marker(), 8.0);
    QCOMPARE(Player().position(), 8000);
}

void PlayerTransportTest::fieldsThatAreLeftUntypedChangeNothingWhereTheHostWantsIt()
{
    Player().setPosition(3500);
    Shown().SetSelectedSnippet({2.0, 4.0});
    Player().setPosition(3000);
    const auto& controls = Controls();
    const QList<QLineEdit*> fields{controls.edSelectionStart, controls.edSelectionEnd, controls.edCurrentPosition};
    Shown().SetTypedPositionSeeks(true);
    for (QLineEdit* field : fields) {
        QTest::keyClick(field, Qt::Key_Return);
        QCOMPARE(Marker(), 3.0);
        QCOMPARE(Shown().GetSelectedSnippet(), Range(2.0, 4.0));
    }
    Shown().SetTypedPositionSeeks(false);
    QTest::keyClick(controls.edSelectionStart, Qt::Key_Return);
    QCOMPARE(Marker(), 2.0);
    QTest::keyClick(controls.edCurrentPosition, Qt::Key_Return);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(0.0, 0.0));
}

void PlayerTransportTest::theCursorStaysWhereThePositionIsToBeTyped()
{
    QLineEdit& field = *Controls().edCurrentPosition;
    field.setFocus();
    QTRY_VERIFY(field.hasFocus());
    Shown().SetEditedPositionStays(true);
    QTest::keyClick(&field, Qt::Key_Home);
    Player().setPosition(1000);
    QCOMPARE(field.text(), u"00:00:01.000"_s);
    QCOMPARE(field.cursorPosition(), 0);
    QTest::keyClicks(&field, u"000005250"_s);
    Player().setPosition(2000);
    QCOMPARE(field.text(), u"00:00:05.250"_s);
}

void PlayerTransportTest::playingReturnsToTheStartWhereTheHostWantsIt_data()
{
    QTest::addColumn<Range>("selection");
    QTest::addColumn<int>("position");
    QTest::addColumn<bool>("isOn");
    QTest::addColumn<bool>("byButton");
    QTest::addColumn<int>("begin");
    QTest::newRow("inside the selection") << Range(2.0, 15.0) << 5000 << true << true << 5000;
    QTest::newRow("behind the selection") << Range(2.0, 4.0) << 5000 << true << true << 2000;
    QTest::newRow("behind the selection, by Play()") << Range(2.0, 4.0) << 5000 << true << false << 2000;
    QTest::newRow("behind the selection, as at first") << Range(2.0, 4.0) << 5000 << false << true << 5000;
    QTest::newRow("before the selection") << Range(10.0, 15.0) << 5000 << true << true << 10000;
    QTest::newRow("in the file") << Range(0.0, 0.0) << 5000 << true << true << 5000;
    QTest::newRow("at the end of the file") << Range(0.0, 0.0) << 20000 << true << true << 0;
    QTest::newRow("at the end of the file, by Play()") << Range(0.0, 0.0) << 20000 << true << false << 0;
}

void PlayerTransportTest::playingReturnsToTheStartWhereTheHostWantsIt()
{
    QFETCH(const Range, selection);
    QFETCH(const int, position);
    QFETCH(const bool, isOn);
    QFETCH(const bool, byButton);
    Shown().SetPlayReturnsToStart(isOn);
    if (selection.first < selection.second) {
        Shown().SetSelectedSnippet(selection);
    }
    Player().setPosition(position);
    QCOMPARE(Player().position(), qint64(position));
    // The player's own moves come later.
    QList<qint64> positions{position};
    const auto log = connect(&Player(), &QMediaPlayer::positionChanged, this,
                             [&](qint64 reported) { positions.append(reported); });
    byButton ? Controls().btnPlayPause->click() : Shown().Play();
    disconnect(log);
    QTEST(int(positions.value(1, positions[0])), "begin");
    QTRY_VERIFY(Shown().IsPlaying());
}

void PlayerTransportTest::anEditedPositionIsNotWrittenOverWhereTheHostWantsIt()
{
    QLineEdit& field = *Controls().edCurrentPosition;
    field.setFocus();
    QTRY_VERIFY(field.hasFocus());
    OverwriteTime(field, u"000005250"_s);
    Player().setPosition(1000);
    QCOMPARE(field.text(), u"00:00:01.000"_s);

    Shown().SetEditedPositionStays(true);
    OverwriteTime(field, u"000005250"_s);
    Player().setPosition(2000);
    QCOMPARE(field.text(), u"00:00:05.250"_s);
    QTest::keyClick(&field, Qt::Key_Return);
    QCOMPARE(Marker(), 5.25);
    Player().setPosition(3000);
    QCOMPARE(field.text(), u"00:00:03.000"_s);

    field.selectAll();
    Player().setPosition(4000);
    QCOMPARE(field.selectedText(), u"00:00:03.000"_s);
    field.deselect();
    Player().setPosition(5000);
    QCOMPARE(field.text(), u"00:00:05.000"_s);
}

void PlayerTransportTest::aTypedPositionCountsWhenTheFieldIsLeft()
{
    QLineEdit* field = Controls().edCurrentPosition;
    field->setFocus();
    QTRY_VERIFY(field->hasFocus());
    OverwriteTime(*field, u"000005250"_s);
    QCOMPARE(Marker(), 0.0);
    Shown().setFocus();
    QCOMPARE(Marker(), 5.25);
}

void PlayerTransportTest::theEndOfTheFileMayBeTyped()
{
    TypeTime(*Controls().edCurrentPosition, u"00:00:20.000"_s);
    QCOMPARE(Marker(), 20.0);
}

void PlayerTransportTest::aPositionBeyondTheDurationSnapsBack()
{
    Shown().SetSelectedSnippet({2.0, 15.0});
    Player().setPosition(3000);
    const QSignalSpy told(&Shown(), &Widget::AudioPositionChanged);
    QLineEdit& field = *Controls().edCurrentPosition;
    OverwriteTime(field, u"000020001"_s);
    QCOMPARE(field.text(), u"00:00:20.001"_s);
    const QSignalSpy changed(&field, &QLineEdit::textChanged);
    QTest::keyClick(&field, Qt::Key_Return);
    QCOMPARE(field.text(), u"00:00:03.000"_s);
    QCOMPARE(changed.size(), 0);
    QCOMPARE(Marker(), 3.0);
    QCOMPARE(told.size(), 0);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(2.0, 15.0));
}

void PlayerTransportTest::aPositionThatIsNoTimeCountsAsTheStart()
{
    Player().setPosition(3000);
    // Only a program that takes mask and validator away lets such a text through.
    QLineEdit& field = *Controls().edCurrentPosition;
    field.setInputMask(QString());
    field.setValidator(nullptr);
    field.clear();
    const QSignalSpy told(&Shown(), &Widget::AudioPositionChanged);
    TypeTime(field, u"garbage"_s);
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.last(), QVariantList{0.0});
    QCOMPARE(Marker(), 0.0);
    QCOMPARE(field.text(), u"00:00:00.000"_s);
    QCOMPARE(Player().position(), 3000);
}

void PlayerTransportTest::noKeyMakesAPositionOutsideADay()
{
    QLineEdit& field = *Controls().edCurrentPosition;
    field.setCursorPosition(0);
    QTest::keyClicks(&field, u"3x"_s);
    QCOMPARE(field.text(), u"00:00:00.000"_s);
}

void PlayerTransportTest::spacePlaysAndPauses()
{
    QTest::keyClick(&Shown(), Qt::Key_Space);
    QCOMPARE(Player().playbackState(), QMediaPlayer::PlayingState);
    QVERIFY(Controls().btnPlayPause->isChecked());
    QVERIFY(Shows(*Controls().btnPlayPause, u"PlayerPause"_s));
    QTest::keyClick(&Shown(), Qt::Key_Space);
    QCOMPARE(Player().playbackState(), QMediaPlayer::PausedState);
    QVERIFY(!Controls().btnPlayPause->isChecked());
    QVERIFY(Shows(*Controls().btnPlayPause, u"PlayerPlay"_s));
}

void PlayerTransportTest::spaceShowsTheIconOfTheButton()
{
    QPushButton& button = *Controls().btnPlayPause;
    const QSignalBlocker silentPlayer(&Player());
    button.setIcon(QIcon());
    QTest::keyClick(&Shown(), Qt::Key_Space);
    QCOMPARE(Player().playbackState(), QMediaPlayer::PlayingState);
    // The button, and the icon with it, follow the player's report, which does not come here.
    QVERIFY(!button.isChecked());
    QVERIFY(Shows(button, u"PlayerPlay"_s));
}

void PlayerTransportTest::selectAllSelectsTheWholeFile()
{
    const QSignalSpy told(&Shown(), &Widget::WaveFormSelectionChanged);
    QTest::keyClick(&Shown(), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(0.0, 20.0));
    QCOMPARE(RangeOf(Player()), Range(0.0, 20.0));
    QCOMPARE(told.size(), 1);
    QCOMPARE(told.last()[0].value<Range>(), Range(0.0, 20.0));
    QCOMPARE(Player().playbackState(), QMediaPlayer::StoppedState);
}

void PlayerTransportTest::otherKeysReachTheParent_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::newRow("A without Control") << Qt::Key_A;
    QTest::newRow("Escape") << Qt::Key_Escape;
    QTest::newRow("Return") << Qt::Key_Return;
    QTest::newRow("Left") << Qt::Key_Left;
}

void PlayerTransportTest::otherKeysReachTheParent()
{
    QFETCH(Qt::Key, key);
    KeyTaker parent;
    auto* player = new RecordingPlayerWidget(&parent);
    QTest::keyClick(player, key);
    QCOMPARE(parent.keys, QList<int>{key});
}

void PlayerTransportTest::spaceAndSelectAllDoNotReachTheParent()
{
    KeyTaker parent;
    auto* player = new RecordingPlayerWidget(&parent);
    QTest::keyClick(player, Qt::Key_Space);
    QTest::keyClick(player, Qt::Key_A, Qt::ControlModifier);
    // Control itself is such another key, too.
    QCOMPARE(parent.keys, QList<int>{Qt::Key_Control});
}

void PlayerTransportTest::anEmptiedPlayerHasNoPlaceToGoToAndNothingToSelect()
{
    Shown().Reset();
    const QSignalSpy told(&Shown(), &Widget::AudioPositionChanged);
    TypeTime(*Controls().edCurrentPosition, u"000005250"_s);
    QCOMPARE(told.size(), 0);
    QCOMPARE(PositionText(), u"00:00:00.000"_s);
    QTest::keyClick(&Shown(), Qt::Key_A, Qt::ControlModifier);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(0.0, 0.0));
    QVERIFY(!AudioPlayerWidgetTestAccess::HasSelection(Shown()));
}

void PlayerTransportTest::theSettingsButtonTellsTheHost()
{
    const QSignalSpy told(&Shown(), &Widget::SettingsButtonClicked);
    Click(Controls().btnSettings);
    QCOMPARE(told.size(), 1);
}

void PlayerTransportTest::aFailureOfAFileThatHasGoneIsNotTold()
{
    const QSignalSpy failures(&Shown(), &Widget::PlaybackFailed);
    const auto fail = [this] { Q_EMIT Player().errorOccurred(QMediaPlayer::ResourceError, u"reason"_s); };
    fail();
    QCOMPARE(failures.size(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(failures.size(), 1);
    QCOMPARE(failures[0], QVariantList{u"reason"_s});
    fail();
    Shown().SetAudioFile(m_loaded->WriteFile(u"other.wav"_s));
    QCoreApplication::processEvents();
    QCOMPARE(failures.size(), 1);
    fail();
    Shown().Reset();
    QCoreApplication::processEvents();
    QCOMPARE(failures.size(), 1);
}

int main(int argc, char* argv[])
{
    const SoundServer server({QStringLiteral("one"), QStringLiteral("two")});
    QApplication application(argc, argv);
    PlayerTransportTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playertransport.moc"
