#include "LoadedPlayer.h"
#include "tests/support/SoundServer.h"

#include <vantorAudioEngine/AudioPlayerActions.h>

#include <QtCore/QMetaEnum>
#include <QtGui/QAction>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>

using namespace vantoraudio::vantorAudioEngine::UI;
using namespace Qt::Literals::StringLiterals;
using Actions = AudioPlayerActions;
using Range = std::pair<double, double>;

namespace {

const QList<Actions::Group> AllGroups{Actions::Playback, Actions::View, Actions::Selection};

bool IsNear(const Range& a, const Range& b)
{
    return qAbs(a.first - b.first) < 1e-6 && qAbs(a.second - b.second) < 1e-6;
}

} // namespace

class PlayerActionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_player.reset(); }

    void everyCommandHasATextAKeyAndAName();
    void withoutAFileNothingHappens();
    void spacePlaysWhereverTheFocusIs();
    void keysSeek_data();
    void keysSeek();
    void theStopKeyDoesWhatTheButtonDoes();
    void switchesFollowTheButtons();
    void switchesShowWhatIsAlreadyOn();
    void theMuteKeyTurnsAroundWhatIs();
    void keysZoom();
    void zoomingInEndsWhereTheWheelEnds();
    void bracketsSelectFromAndToThePosition();
    void keysMoveTheEdges();
    void escapeClearsTheSelectionAndKeepsThePosition();
    void slidersAndBoxesKeepTheirKeys();
    void theWheelChangesABoxOnlyWithTheFocus();
    void fieldsKeepTheirKeys();
    void keysThatTypeNoTimeWorkInTheFields();
    void escapeTakesBackWhatWasTyped();
    void toolTipsNameTheKeysThatHold();

private:
    void Press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, QWidget* focused = nullptr)
    {
        // As a window system sends it: shortcuts are looked for first.
        QTest::keyClick(focused ? focused : &Shown(), key, modifiers);
    }
    AudioPlayerWidget& Shown() { return m_player->widget; }
    AudioPlayer& Player() { return m_player->Player(); }
    const auto& Controls() { return AudioPlayerWidgetTestAccess::Controls(Shown()); }
    QAction* Get(Actions::Command command) { return m_actions->Get(command); }

    std::unique_ptr<LoadedPlayer> m_player;
    Actions* m_actions = nullptr;
};

void PlayerActionsTest::init()
{
    m_player = std::make_unique<LoadedPlayer>();
    QVERIFY(m_player->Load());
    Shown().SetInteractions(BGFXWaveformWidget::Interaction::SelectBeyondView);
    m_actions = new Actions(&Shown());
    Shown().setFocus();
}

void PlayerActionsTest::everyCommandHasATextAKeyAndAName()
{
    QSet<QKeySequence> keys;
    int count = 0;
    for (const Actions::Group group : AllGroups) {
        for (const QAction* action : m_actions->All(group)) {
            QVERIFY(!action->text().isEmpty());
            QVERIFY2(!action->shortcut().isEmpty(), qPrintable(action->text()));
            keys.insert(action->shortcut());
            ++count;
        }
    }
    const QMetaEnum commands = QMetaEnum::fromType<Actions::Command>();
    QCOMPARE(count, commands.keyCount());
    QCOMPARE(keys.size(), count);
    for (int i = 0; i < commands.keyCount(); ++i) {
        QCOMPARE(Get(Actions::Command(commands.value(i)))->objectName(), QString::fromLatin1(commands.key(i)));
    }
    QVERIFY(!Get(Actions::PlayPause)->icon().isNull());
}

void PlayerActionsTest::withoutAFileNothingHappens()
{
    AudioPlayerWidget empty;
    const Actions actions(&empty);
    for (const Actions::Group group : AllGroups) {
        for (QAction* action : actions.All(group)) {
            action->trigger();
        }
    }
    QVERIFY(!empty.IsPlaying());
    QCOMPARE(empty.GetSelectedSnippet(), Range(0.0, 0.0));
}

void PlayerActionsTest::spacePlaysWhereverTheFocusIs()
{
    Controls().btnMute->setFocus();
    Press(Qt::Key_Space, {}, Controls().btnMute);
    QVERIFY(Shown().IsPlaying());
    QVERIFY(!Shown().GetAudioPlayBackMute());
    Press(Qt::Key_Space, {}, Controls().hSliderVolume);
    QVERIFY(!Shown().IsPlaying());
}

void PlayerActionsTest::keysSeek_data()
{
    QTest::addColumn<Qt::Key>("key");
    QTest::addColumn<bool>("shift");
    QTest::addColumn<int>("position");
    QTest::newRow("left") << Qt::Key_Left << false << 9000;
    QTest::newRow("right") << Qt::Key_Right << false << 11000;
    QTest::newRow("shift and left") << Qt::Key_Left << true << 5000;
    QTest::newRow("shift and right") << Qt::Key_Right << true << 15000;
    QTest::newRow("home") << Qt::Key_Home << false << 0;
    QTest::newRow("end") << Qt::Key_End << false << 20000;
}

void PlayerActionsTest::keysSeek()
{
    QFETCH(const Qt::Key, key);
    QFETCH(const bool, shift);
    Player().setPosition(10000);
    Press(key, shift ? Qt::ShiftModifier : Qt::NoModifier);
    QTEST(int(Player().position()), "position");
    Player().setPosition(400);
    Press(Qt::Key_Left);
    QCOMPARE(Player().position(), 0);
}

void PlayerActionsTest::theStopKeyDoesWhatTheButtonDoes()
{
    Shown().SetSelectedSnippet({5.0, 8.0});
    Player().setPosition(6000);
    Press(Qt::Key_Period, Qt::ControlModifier);
    QCOMPARE(Player().position(), 5000);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(5.0, 8.0));
}

void PlayerActionsTest::switchesFollowTheButtons()
{
    const QSignalSpy looped(&Shown(), &AudioPlayerWidget::LoopChanged);
    Press(Qt::Key_L);
    QVERIFY(Shown().GetLoop() && Controls().btnLoop->isChecked() && Get(Actions::Loop)->isChecked());
    Controls().btnLoop->click();
    QVERIFY(!Shown().GetLoop() && !Get(Actions::Loop)->isChecked());
    Shown().SetLoop(true);
    Shown().SetLoop(true);
    QVERIFY(Get(Actions::Loop)->isChecked());
    QCOMPARE(looped.size(), 3);

    Press(Qt::Key_M);
    QVERIFY(Shown().GetAudioPlayBackMute() && Controls().btnMute->isChecked());
    Controls().btnMute->click();
    QVERIFY(!Shown().GetAudioPlayBackMute() && !Get(Actions::Mute)->isChecked());
}

void PlayerActionsTest::switchesShowWhatIsAlreadyOn()
{
    Shown().SetLoop(true);
    Shown().SetAudioPlayBackMute(true);
    const Actions actions(&Shown());
    QVERIFY(actions.Get(Actions::Loop)->isChecked());
    QVERIFY(actions.Get(Actions::Mute)->isChecked());
}

void PlayerActionsTest::theMuteKeyTurnsAroundWhatIs()
{
    Shown().SetAudioPlayBackMute(true);
    Press(Qt::Key_M);
    QVERIFY(!Shown().GetAudioPlayBackMute());
    QVERIFY(!Get(Actions::Mute)->isChecked());
    Press(Qt::Key_M);
    QVERIFY(Shown().GetAudioPlayBackMute());
    QVERIFY(Get(Actions::Mute)->isChecked());
}

void PlayerActionsTest::keysZoom()
{
    Player().setPosition(4000);
    Press(Qt::Key_Plus);
    QVERIFY(IsNear(Shown().GetVisibleRange(), {2.0, 12.0}));
    Player().setPosition(4000);
    Press(Qt::Key_Minus);
    QVERIFY(IsNear(Shown().GetVisibleRange(), {0.0, 20.0}));
    Shown().SetSelectedSnippet({5.0, 8.0});
    Press(Qt::Key_Z);
    QVERIFY(IsNear(Shown().GetVisibleRange(), {5.0, 8.0}));
    Press(Qt::Key_0);
    QVERIFY(IsNear(Shown().GetVisibleRange(), {0.0, 20.0}));
}

void PlayerActionsTest::zoomingInEndsWhereTheWheelEnds()
{
    for (int i = 0; i < 40; ++i) {
        Press(Qt::Key_Plus);
    }
    const auto [left, right] = Shown().GetVisibleRange();
    QVERIFY2(right - left > 0.1 && right - left < 0.3, qPrintable(QString::number(right - left)));
}

void PlayerActionsTest::bracketsSelectFromAndToThePosition()
{
    Player().setPosition(4000);
    Press(Qt::Key_BracketLeft);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(4.0, 20.0));
    Player().setPosition(9000);
    Press(Qt::Key_BracketRight);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(4.0, 9.0));
    Shown().ClearSelection();
    Player().setPosition(7000);
    Press(Qt::Key_BracketRight);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(0.0, 7.0));
}

void PlayerActionsTest::keysMoveTheEdges()
{
    Shown().SetSelectedSnippet({5.0, 8.0});
    Press(Qt::Key_Left, Qt::ControlModifier);
    QVERIFY(IsNear(Shown().GetSelectedSnippet(), {4.99, 8.0}));
    Press(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(IsNear(Shown().GetSelectedSnippet(), {4.99, 8.01}));
    Shown().SetSelectedSnippet({0.0, 20.0});
    Press(Qt::Key_Left, Qt::ControlModifier);
    Press(Qt::Key_Right, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(0.0, 20.0));
}

void PlayerActionsTest::escapeClearsTheSelectionAndKeepsThePosition()
{
    Shown().SetSelectedSnippet({5.0, 8.0});
    Player().setPosition(6000);
    const QSignalSpy told(&Shown(), &AudioPlayerWidget::WaveFormSelectionChanged);
    Press(Qt::Key_Escape);
    Press(Qt::Key_Escape);
    QCOMPARE(told.size(), 1);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(0.0, 0.0));
    QCOMPARE(Player().position(), 6000);
    QVERIFY(!AudioPlayerWidgetTestAccess::HasSelection(Shown()));
}

void PlayerActionsTest::slidersAndBoxesKeepTheirKeys()
{
    Player().setPosition(10000);
    QSlider& slider = *Controls().hSliderVolume;
    slider.setValue(50);
    slider.setFocus();
    Press(Qt::Key_Left, {}, &slider);
    QVERIFY(slider.value() < 50);
    Press(Qt::Key_Home, {}, &slider);
    QCOMPARE(slider.value(), slider.minimum());
    QCOMPARE(Player().position(), 10000);
}

void PlayerActionsTest::theWheelChangesABoxOnlyWithTheFocus()
{
    // One of its own: the player's answers a change by work that takes a while.
    AudioPlayerWidget player;
    auto* box = new QComboBox(&player);
    box->addItems({u"first"_s, u"second"_s});
    const Actions actions(&player);
    player.show();
    player.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&player));
    const auto turn = [box] {
        const QPoint place = box->rect().center();
        QWheelEvent event(place, box->mapToGlobal(place), {}, {0, -120}, Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        // As a window system sends it: Qt may give the focus away first.
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(box, &event);
        return box->currentIndex();
    };
    QCOMPARE(turn(), 0);
    QVERIFY(!box->hasFocus());
    box->setFocus();
    QTRY_VERIFY(box->hasFocus());
    QCOMPARE(turn(), 1);
}

void PlayerActionsTest::fieldsKeepTheirKeys()
{
    Player().setPosition(10000);
    QLineEdit& field = *Controls().edCurrentPosition;
    field.setFocus();
    QTRY_VERIFY(field.hasFocus());
    const auto before = Shown().GetVisibleRange();
    Press(Qt::Key_Home, {}, &field);
    Press(Qt::Key_0, {}, &field);
    QCOMPARE(Player().position(), 10000);
    QCOMPARE(Shown().GetVisibleRange(), before);
}

void PlayerActionsTest::keysThatTypeNoTimeWorkInTheFields()
{
    QAction undo;
    undo.setShortcut(QKeySequence::Undo);
    Shown().addAction(&undo);
    const QSignalSpy undone(&undo, &QAction::triggered);
    const auto& controls = Controls();
    for (QLineEdit* field : {controls.edCurrentPosition, controls.edSelectionStart, controls.edSelectionEnd}) {
        field->setFocus();
        QTRY_VERIFY(field->hasFocus());
        Press(Qt::Key_Space, {}, field);
        QVERIFY(Shown().IsPlaying());
        Press(Qt::Key_Space, {}, field);
        QVERIFY(!Shown().IsPlaying());
        const bool loop = Shown().GetLoop();
        Press(Qt::Key_L, {}, field);
        QCOMPARE(Shown().GetLoop(), !loop);
        const auto count = undone.size();
        Press(Qt::Key_Z, Qt::ControlModifier, field);
        QCOMPARE(undone.size(), count + 1);
        // What was typed is the field's own to undo.
        Press(Qt::Key_Home, {}, field);
        Press(Qt::Key_1, {}, field);
        QVERIFY(field->isModified());
        Press(Qt::Key_Z, Qt::ControlModifier, field);
        QCOMPARE(undone.size(), count + 1);
        Press(Qt::Key_Escape, {}, field);
    }
}

void PlayerActionsTest::escapeTakesBackWhatWasTyped()
{
    Shown().SetTypedPositionSeeks(true);
    Player().setPosition(3000);
    Shown().SetSelectedSnippet({2.0, 5.0});
    const auto& controls = Controls();
    for (QLineEdit* field : {controls.edCurrentPosition, controls.edSelectionStart, controls.edSelectionEnd}) {
        field->setFocus();
        QTRY_VERIFY(field->hasFocus());
        const QString before = field->text();
        Press(Qt::Key_Home, {}, field);
        QTest::keyClicks(field, u"00001"_s);
        QVERIFY(field->text() != before);
        Press(Qt::Key_Escape, {}, field);
        QCOMPARE(field->text(), before);
        QCOMPARE(Shown().GetSelectedSnippet(), Range(2.0, 5.0));
    }
    Press(Qt::Key_Escape, {}, controls.edSelectionEnd);
    QCOMPARE(Shown().GetSelectedSnippet(), Range(0.0, 0.0));
}

void PlayerActionsTest::toolTipsNameTheKeysThatHold()
{
    QPushButton& button = *Controls().btnPlayPause;
    const auto told = [](const QString& text, const QString& key) {
        return u"%1 (%2)"_s.arg(text, QKeySequence(key).toString(QKeySequence::NativeText));
    };
    QCOMPARE(button.toolTip(), told(u"Play or pause"_s, u"Space"_s));
    Get(Actions::PlayPause)->setShortcut(QKeySequence(u"Ctrl+P"_s));
    QCOMPARE(button.toolTip(), told(u"Play or pause"_s, u"Ctrl+P"_s));
    Press(Qt::Key_P, Qt::ControlModifier);
    QVERIFY(Shown().IsPlaying());
    Get(Actions::PlayPause)->setText(u"&Play"_s);
    QCOMPARE(button.toolTip(), told(u"Play"_s, u"Ctrl+P"_s));
    Get(Actions::PlayPause)->setShortcut({});
    QCOMPARE(button.toolTip(), u"Play"_s);
    button.setToolTip(u"The program's own"_s);
    Get(Actions::PlayPause)->setShortcut(QKeySequence(u"Ctrl+P"_s));
    QCOMPARE(button.toolTip(), u"The program's own"_s);
}

int main(int argc, char* argv[])
{
    const SoundServer server({u"one"_s});
    QApplication application(argc, argv);
    PlayerActionsTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playeractions.moc"
