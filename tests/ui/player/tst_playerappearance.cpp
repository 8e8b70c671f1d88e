#include "tests/support/SoundServer.h"
#include "tests/support/Tone.h"
#include "tests/ui/player/LoadedPlayer.h"
#include "tests/ui/waveform/WaveformTestAccess.h"
#include "ui/waveform/BGFXWaveformDiagramWidget.h"

#include <QtCore/QRegularExpression>
#include <QtGui/QWheelEvent>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QApplication>
#include <QtWidgets/QPushButton>

#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::vantorAudioEngine::UI;
using Widget = AudioPlayerWidget;
using Access = AudioPlayerWidgetTestAccess;

namespace {

using SetIcon = void (Widget::*)(const QIcon&);
using SetColor = void (Widget::*)(const QColor&);
using SetViewColor = void (BGFXWaveformWidget::*)(const QColor&);

QIcon SomeIcon()
{
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::magenta);
    return QIcon(pixmap);
}

bool IsSomeIcon(const QPushButton& button)
{
    const auto picture = [](const QIcon& icon) { return icon.pixmap(16, 16).toImage(); };
    return picture(button.icon()) == picture(SomeIcon());
}

/** A player that shows a wave, a position and a selection. */
class ShownPlayer
{
public:
    ShownPlayer()
    {
        const QString path = m_files.Path(u"tone.wav"_s);
        QVERIFY(WriteToneFile(path, {.seconds = 1.0}));
        widget.SetWritableDirectoryPath(m_copies.Path(QString()));
        widget.SetEditMode(true);
        widget.resize(1000, 400);
        widget.SetAudioFile(path);
        QVERIFY(QTest::qWaitFor([this] { return !widget.IsReadingSamples(); }));
        widget.SetSelectedSnippet({0.25, 0.5});
    }

    BGFXWaveformWidget& View() { return Access::Waveform(widget); }
    QImage Picture() { return View().grab().toImage(); }

    Widget widget;

private:
    TemporaryFiles m_files;
    TemporaryFiles m_copies;
};

} // namespace

/** What a program sets passes on to the buttons and to the waveform. */
class PlayerAppearanceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anIconShowsOnItsButton_data();
    void anIconShowsOnItsButton();
    void anIconThatTheProgramDoesNotBringIsLeftOut();
    void aColorIsThatOfTheWaveform_data();
    void aColorIsThatOfTheWaveform();
    void thePositionIconIsThatOfTheWaveform();
    void theWheelTurnsTheWayItIsTold_data();
    void theWheelTurnsTheWayItIsTold();
    void theDelayIsThatOfTheWaveform();
    void theChoicesAreThoseOfTheWaveform();
    void theWheelZoomsAsTheWaveformIsTold();
    void timeAndLevelAreThoseOfTheWaveform();
    void everyPeakOfALongFileShowsWhenItIsToldTo();
    void thePositionLineMovesBetweenReportsWhenToldTo();
    void thePositionLineMovesAtThePlaybackRate();
    void theProgramsOwnConnectionsStay();
    void theFocusComesBackToTheWaveformAfterABusyTime_data();
    void theFocusComesBackToTheWaveformAfterABusyTime();
    void theEditModeIsThatOfTheWaveform();
};

void PlayerAppearanceTest::anIconShowsOnItsButton_data()
{
    QTest::addColumn<SetIcon>("set");
    QTest::addColumn<QStringList>("buttons");
    QTest::addColumn<bool>("showsChecked");
    QTest::addColumn<bool>("showsUnchecked");
    const auto row = [](const char* name, SetIcon set, const QStringList& buttons, bool checked, bool unchecked) {
        QTest::newRow(name) << set << buttons << checked << unchecked;
    };
    row("play", &Widget::SetIconPlay, {u"btnPlayPause"_s}, false, true);
    row("pause", &Widget::SetIconPause, {u"btnPlayPause"_s}, true, false);
    row("stop", &Widget::SetIconStop, {u"btnStop"_s}, true, true);
    row("loop", &Widget::SetIconLoop, {u"btnLoop"_s}, true, true);
    row("settings", &Widget::SetIconSettings, {u"btnSettings"_s}, true, true);
    row("mute", &Widget::SetIconMute, {u"btnMute"_s}, true, false);
    row("unmute", &Widget::SetIconUnmute, {u"btnMute"_s}, false, true);
    row("load", &Widget::SetIconLoad, {u"btnLoadFile"_s}, true, true);
    row("increment", &Widget::SetIconIncrement, {u"btnIncSelectionStart"_s, u"btnIncSelectionEnd"_s}, true, true);
    row("decrement", &Widget::SetIconDecrement, {u"btnDecSelectionStart"_s, u"btnDecSelectionEnd"_s}, true, true);
}

void PlayerAppearanceTest::anIconShowsOnItsButton()
{
    QFETCH(SetIcon, set);
    QFETCH(QStringList, buttons);
    QFETCH(bool, showsChecked);
    QFETCH(bool, showsUnchecked);
    for (const bool isChecked : {false, true}) {
        Widget widget;
        for (QPushButton* button : widget.findChildren<QPushButton*>()) {
            button->setChecked(isChecked);
        }
        (widget.*set)(SomeIcon());
        for (const QPushButton* button : widget.findChildren<QPushButton*>()) {
            const bool isItsButton = buttons.contains(button->objectName());
            QVERIFY2(IsSomeIcon(*button) == (isItsButton && (isChecked ? showsChecked : showsUnchecked)),
                     qPrintable(button->objectName()));
        }
    }
}

void PlayerAppearanceTest::anIconThatTheProgramDoesNotBringIsLeftOut()
{
    QTest::failOnWarning(QRegularExpression(u"Cannot open file"_s));
    Widget player;
    const auto& settings = *player.findChild<QPushButton*>(u"btnSettings"_s);
    for (const bool night : {false, true}) {
        player.SetNightIcons(night);
        player.grab();
        QVERIFY(settings.icon().isNull());
    }
}

void PlayerAppearanceTest::aColorIsThatOfTheWaveform_data()
{
    QTest::addColumn<SetColor>("set");
    QTest::addColumn<SetViewColor>("setOfView");
    using View = BGFXWaveformWidget;
    const auto row = [](const char* name, SetColor set, SetViewColor setOfView) {
        QTest::newRow(name) << set << setOfView;
    };
    row("marker", &Widget::SetAudioPositionMarkerColor, &View::SetAudioPositionMarkerColor);
    row("selection", &Widget::SetAudioSelectionColor, &View::SetAudioSelectionColor);
    row("background", &Widget::SetBackgroundColor, &View::SetBackgroundColor);
    row("frame", &Widget::SetFrameColor, &View::SetFrameColor);
    row("grid", &Widget::SetGridColor, &View::SetGridColor);
    row("scale", &Widget::SetScaleColor, &View::SetScaleColor);
    row("waveform", &Widget::SetWaveformColor, &View::SetWaveformColor);
}

void PlayerAppearanceTest::aColorIsThatOfTheWaveform()
{
    QFETCH(SetColor, set);
    QFETCH(SetViewColor, setOfView);
    ShownPlayer plain;
    ShownPlayer direct;
    ShownPlayer shown;
    (direct.View().*setOfView)(Qt::magenta);
    (shown.widget.*set)(Qt::magenta);
    QCOMPARE(shown.Picture(), direct.Picture());
    QVERIFY(shown.Picture() != plain.Picture());
}

void PlayerAppearanceTest::thePositionIconIsThatOfTheWaveform()
{
    ShownPlayer plain;
    ShownPlayer direct;
    ShownPlayer shown;
    const QString icon = u":/Resources/vantoraudioPlayerStop_day.svg"_s;
    direct.View().SetAudioPositionIcon(icon);
    shown.widget.SetAudioPositionIcon(icon);
    QCOMPARE(shown.Picture(), direct.Picture());
    QVERIFY(shown.Picture() != plain.Picture());
}

void PlayerAppearanceTest::theWheelTurnsTheWayItIsTold_data()
{
    QTest::addColumn<bool>("backZoomsOut");
    QTest::newRow("back zooms out") << true;
    QTest::newRow("back zooms in") << false;
}

void PlayerAppearanceTest::theWheelTurnsTheWayItIsTold()
{
    QFETCH(bool, backZoomsOut);
    ShownPlayer player;
    player.widget.SetScrollBackToZoomOut(backZoomsOut);
    player.widget.ShowRange(0.25, 0.75);
    QSignalSpy ranges(&player.widget, &Widget::SceneRectChanged);
    auto* diagram = player.widget.findChild<QWidget*>(u"BGFXWaveformDiagramWidget"_s);
    const QPoint middle = diagram->rect().center();
    QWheelEvent back(middle, diagram->mapToGlobal(middle), QPoint(), QPoint(0, -120), Qt::NoButton,
                     Qt::ControlModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(diagram, &back);
    QVERIFY(!ranges.isEmpty());
    QCOMPARE(ranges.last()[0].toRectF().width() > 0.5, backZoomsOut);
}

void PlayerAppearanceTest::theDelayIsThatOfTheWaveform()
{
    ShownPlayer player;
    player.widget.SetDelay(1.5);
    QCOMPARE(player.View().GetDelay(), 1.5);
    player.View().SetDelay(0.5);
    QCOMPARE(player.widget.GetDelay(), 0.5);
}

void PlayerAppearanceTest::theChoicesAreThoseOfTheWaveform()
{
    Widget widget;
    const BGFXWaveformWidget& view = Access::Waveform(widget);
    for (const bool isOn : {true, false}) {
        widget.SetFollowsPosition(isOn);
        widget.SetShowsPositionAtOnce(isOn);
        widget.SetKeepsViewFilled(isOn);
        widget.SetLabelsFit(isOn);
        widget.SetColorsFollowPalette(isOn);
        widget.SetWaveformTakesFocus(isOn);
        QCOMPARE(view.GetFollowsPosition(), isOn);
        QCOMPARE(view.GetShowsPositionAtOnce(), isOn);
        QCOMPARE(view.GetKeepsViewFilled(), isOn);
        QCOMPARE(view.GetLabelsFit(), isOn);
        QCOMPARE(view.GetColorsFollowPalette(), isOn);
        QCOMPARE(view.GetTakesFocus(), isOn);
        QVERIFY(widget.focusProxy() == (isOn ? &view : nullptr));
    }
}

void PlayerAppearanceTest::theWheelZoomsAsTheWaveformIsTold()
{
    ShownPlayer player;
    player.widget.SetWheelZoomFactor(2.0);
    player.widget.ShowRange(0.25, 0.75);
    auto* diagram = player.widget.findChild<QWidget*>(u"BGFXWaveformDiagramWidget"_s);
    const QPoint middle = diagram->rect().center();
    QWheelEvent forward(middle, diagram->mapToGlobal(middle), QPoint(), QPoint(0, 120), Qt::NoButton,
                        Qt::ControlModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(diagram, &forward);
    const auto [left, right] = player.widget.GetVisibleRange();
    QVERIFY(qAbs(right - left - 0.25) < 1e-9);
}

void PlayerAppearanceTest::timeAndLevelAreThoseOfTheWaveform()
{
    ShownPlayer player;
    QTRY_VERIFY(player.View().GetLevelAt(player.View().rect().center()).second > 0.0);
    const QPoint middle = player.View().rect().center();
    const QPoint inPlayer = player.View().mapTo(&player.widget, middle);
    QCOMPARE(player.widget.GetTimeAt(inPlayer), player.View().GetTimeAt(middle));
    QCOMPARE(player.widget.GetLevelAt(inPlayer), player.View().GetLevelAt(middle));
    QVERIFY(player.widget.GetLevelAt(inPlayer).first < player.widget.GetLevelAt(inPlayer).second);
}

void PlayerAppearanceTest::everyPeakOfALongFileShowsWhenItIsToldTo()
{
    constexpr int rate = 48000;
    QByteArray click(qsizetype(400) * rate * 2, '\0');
    // A sample of 29000, in a frame that no step of some frames hits.
    click.replace(qsizetype(9600011) * 2, 2, WavTest::LittleEndian(qint16(29000)));
    const TemporaryFiles files;
    const QString path = files.Write(u"click.wav"_s, WavTest::WavBytes{.sampleRate = rate, .data = click}.Build());
    const TemporaryFiles copies;
    Widget player;
    player.SetWritableDirectoryPath(copies.Path(QString()));
    player.resize(800, 400);
    player.show();
    const auto highest = [&player] {
        const auto& waveform = *player.findChild<BGFXWaveformWidget*>();
        const QPoint middle = waveform.mapTo(&player, waveform.rect().center());
        double level = 0.0;
        for (int x = 0; x < player.width(); ++x) {
            // Not-a-number beside the waveform.
            level = std::fmax(level, player.GetLevelAt({x, middle.y()}).second);
        }
        return level;
    };
    for (const bool keeps : {false, true}) {
        player.SetKeepPeaks(keeps);
        player.LoadFile(QString());
        player.LoadFile(path);
        QTRY_VERIFY_WITH_TIMEOUT(!player.IsLoading() && player.GetAudioDuration() > 0.0, 30000);
        QTRY_VERIFY_WITH_TIMEOUT(!player.IsReadingSamples(), 30000);
        QCOMPARE(highest(), keeps ? double(29000.0F / 32767.0F) : 0.0);
    }
}

void PlayerAppearanceTest::thePositionLineMovesBetweenReportsWhenToldTo()
{
    ShownPlayer player;
    const auto& line = *player.widget.findChild<BGFXWaveformDiagramWidget*>();
    player.widget.SetLoop(true);
    player.widget.Play();
    const double start = line.GetAudioPosition();
    QTRY_VERIFY(line.GetAudioPosition() != start);
    QCOMPARE(line.GetShownPosition(), line.GetAudioPosition());
    // While it plays already, and when it goes on.
    player.widget.SetPositionMovesSmoothly(true);
    QTRY_VERIFY(line.GetShownPosition() > line.GetAudioPosition());
    player.widget.Pause();
    QTRY_COMPARE(line.GetShownPosition(), line.GetAudioPosition());
    player.widget.Play();
    QTRY_VERIFY(line.GetShownPosition() > line.GetAudioPosition());
    player.widget.SetPositionMovesSmoothly(false);
    QCOMPARE(line.GetShownPosition(), line.GetAudioPosition());
    player.widget.Pause();
    player.widget.Play();
    const double paused = line.GetAudioPosition();
    QTRY_VERIFY(line.GetAudioPosition() != paused);
    QCOMPARE(line.GetShownPosition(), line.GetAudioPosition());
}

void PlayerAppearanceTest::thePositionLineMovesAtThePlaybackRate()
{
    LoadedPlayer player;
    player.widget.SetPlaybackRate(2.0);
    player.widget.SetPlaybackRate(5.0);
    QVERIFY(player.Load());
    QCOMPARE(player.widget.GetPlaybackRate(), 2.0);
    QCOMPARE(player.Player().GetPlaybackRate(), 2.0);
    const auto& line = *player.widget.findChild<BGFXWaveformDiagramWidget*>();
    const auto ahead = [&line] { return qRound((line.GetShownPosition() - line.GetAudioPosition()) * 1000.0); };
    player.widget.SetPositionMovesSmoothly(true);
    player.widget.Play();
    // Without a report it moves for half a second.
    const QSignalBlocker noReports(player.Player());
    QTRY_COMPARE(ahead(), 1000);
    player.widget.SetPlaybackRate(4.0);
    QTRY_COMPARE(ahead(), 3000);
}

void PlayerAppearanceTest::theProgramsOwnConnectionsStay()
{
    LoadedPlayer player;
    int reports = 0;
    connect(&player.Player(), &QMediaPlayer::positionChanged, &player.Waveform(), [&reports] { ++reports; });
    player.Waveform().SetPositionRate(1.0);
    player.widget.SetPositionMovesSmoothly(false);
    QVERIFY(WaveformTestAccess::IsLineMoving(WaveformTestAccess::DiagramOf(player.Waveform())));
    player.widget.SetPositionMovesSmoothly(true);
    player.widget.SetPositionMovesSmoothly(false);
    QVERIFY(player.Load());
    reports = 0;
    player.widget.UpdateAudioPosition(3.0);
    QVERIFY(reports > 0);
}

void PlayerAppearanceTest::theFocusComesBackToTheWaveformAfterABusyTime_data()
{
    QTest::addColumn<bool>("hadFocus");
    QTest::addColumn<bool>("usesAField");
    QTest::addColumn<bool>("hasFocus");
    QTest::newRow("as it was") << true << false << true;
    QTest::newRow("the user has gone on") << true << true << false;
    QTest::newRow("the focus was elsewhere") << false << false << false;
}

void PlayerAppearanceTest::theFocusComesBackToTheWaveformAfterABusyTime()
{
    QFETCH(bool, hadFocus);
    QFETCH(bool, usesAField);
    QFETCH(bool, hasFocus);
    LoadedPlayer player;
    player.widget.SetWaveformTakesFocus(true);
    QVERIFY(player.Load());
    QTest::mouseClick(&WaveformTestAccess::DiagramOf(player.Waveform()), Qt::LeftButton, {}, {100, 20});
    QVERIFY(player.Waveform().hasFocus());
    if (!hadFocus) {
        QTest::keyClick(&player.Waveform(), Qt::Key_Tab);
        QVERIFY(!player.Waveform().hasFocus());
    }
    player.widget.SetSelectedSnippet({1.0, 2.0});
    player.widget.CreateSnippet(player.CopyPath(u"snippet.wav"_s));
    QVERIFY(player.widget.IsBusy());
    QVERIFY(!player.Waveform().hasFocus());
    if (usesAField) {
        QTest::mouseClick(player.Controls().edCurrentPosition, Qt::LeftButton);
    }
    QTRY_VERIFY(!player.widget.IsBusy());
    QCOMPARE(player.Waveform().hasFocus(), hasFocus);
    QCOMPARE(player.Controls().edCurrentPosition->hasFocus(), usesAField);
    if (hasFocus) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        QVERIFY(player.widget.IsPlaying());
    }
}

void PlayerAppearanceTest::theEditModeIsThatOfTheWaveform()
{
    Widget widget;
    QVERIFY(!Access::Waveform(widget).GetEditMode());
    widget.SetEditMode(true);
    QVERIFY(Access::Waveform(widget).GetEditMode());
    QVERIFY(!Access::Controls(widget).frmEditingControls->isHidden());
    widget.SetEditMode(false);
    QVERIFY(!Access::Waveform(widget).GetEditMode());
    QVERIFY(Access::Controls(widget).frmEditingControls->isHidden());
}

int main(int argc, char* argv[])
{
    const SoundServer server({QStringLiteral("one")});
    QApplication application(argc, argv);
    PlayerAppearanceTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playerappearance.moc"
