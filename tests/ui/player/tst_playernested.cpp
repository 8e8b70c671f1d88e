#include "tests/support/SoundServer.h"
#include "tests/support/TestAudio.h"
#include "tests/ui/player/PlayerSetup.h"

#include <QtCore/QDir>
#include <QtCore/QPointer>
#include <QtMultimedia/QMediaDevices>
#include <QtWidgets/QApplication>

#include <functional>
#include <memory>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;
using vantoraudio::vantorAudioEngine::UI::AudioPlayerWidget;
using Selection = std::pair<double, double>;

namespace {

constexpr int rate = 8000;
constexpr double lengthOfFirst = 1.0;
constexpr double lengthOfSecond = 2.0;
const TestAudio first{.coding = S16, .channels = 2, .rate = rate, .frames = 8000};
const TestAudio second{.coding = S16, .channels = 2, .rate = rate, .frames = 16000};

/** A player and two files, of which the second is twice as long. */
struct TwoFiles : PlayerSetup
{
    TwoFiles()
    {
        player->resize(900, 400);
        QObject::connect(player.get(), &AudioPlayerWidget::AudioFileChanged, &context,
                         [this](const QString& path) { changes.append(QFileInfo(path).fileName()); });
        QObject::connect(player.get(), &AudioPlayerWidget::BusyChanged, &context,
                         [this](bool isBusy) { busyChanges.append(isBusy); });
    }

    /** Calls what is given once, the next time that the signal comes and the condition holds, and no more what was
     * given before. */
    template<typename Signal>
    void Upon(Signal signal, std::function<bool()> condition, std::function<void()> what)
    {
        isDone = false;
        receiver = std::make_unique<QObject>();
        QObject::connect(player.get(), signal, receiver.get(),
                         [this, condition = std::move(condition), what = std::move(what)] {
                             if (!isDone && condition()) {
                                 isDone = true;
                                 what();
                             }
                         });
    }

    /** Shows the player with the second file and the cursor in one of its fields; null when that fails. */
    QLineEdit* PutCursorInto(const QString& field)
    {
        player->show();
        auto* const edit = player->findChild<QLineEdit*>(field);
        if (!QTest::qWaitForWindowExposed(player.get()) || !Load(secondPath)) {
            return nullptr;
        }
        player->activateWindow();
        edit->setFocus();
        const bool hasFocus = QTest::qWaitForWindowActive(player.get()) &&
                              QTest::qWaitFor([&] { return edit->hasFocus(); }, patience);
        return hasFocus ? edit : nullptr;
    }

    /** Fails unless all that the player shows and plays belongs to the second file. */
    void CompareWithSecond()
    {
        QCOMPARE(QFileInfo(player->GetAudioFileName()).fileName(), u"second.wav"_s);
        QCOMPARE(player->GetAudioDuration(), lengthOfSecond);
        QCOMPARE(player->GetVisibleRange(), Selection(0.0, lengthOfSecond));
        QCOMPARE(Controls().edTotalDuration->text(), u"00:00:02.000"_s);
        QVERIFY(Audio().source().toLocalFile().endsWith(u"second.wav"));
        QVERIFY(HasRead());
    }

    /** Later versions of Qt load in the background, and a position is reported only when that has ended. */
    bool CanSeek() const
    {
        return QTest::qWaitFor([this] { return Audio().mediaStatus() == QMediaPlayer::LoadedMedia; }, patience);
    }

    bool IsFirstShown() const { return player->GetAudioFileName().endsWith(u"first.wav"); }

    const QString firstPath = originals.Write(u"first.wav"_s, first.File());
    const QString secondPath = originals.Write(u"second.wav"_s, second.File());
    QStringList changes;
    QList<bool> busyChanges;
    bool isDone = false;
    std::unique_ptr<QObject> receiver;
    QObject context;
};

} // namespace

/** Slots that load, close, select, cancel or destroy while the player is in the middle of something else. */
class PlayerNestedTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileLoadedWhileAnotherIsShownStays_data();
    void aFileLoadedWhileAnotherIsShownStays();
    void aFileClosedWhileItIsShownIsNotTold();
    void aFileLoadedWhileAChannelIsShownIsPlayed();
    void aFileLoadedWhileThePlayerIsEmptiedStays();
    void aLoadBegunWhileAnotherOneEmptiesThePlayerGoesOn();
    void theSelectionOfASlotIsTheLast();
    void stoppingLeavesTheSelectionOfASlot();
    void aCursorInAFieldMeetsABusyTime_data();
    void aCursorInAFieldMeetsABusyTime();
    void aSnippetThatIsGivenUpIsNotToldOf();
    void aPathMayChangeUnderItsLoad();
    void aDeviceMayChangeWhileItIsSet();
    void mayBeDestroyedByTheEndOfEditing();
    void theEndOfEditingPassesTheFocusOn();
    void mayBeDestroyedByTheEndOfABusyTime();
    void mayBeDestroyedByItsVolume();
};

void PlayerNestedTest::aFileLoadedWhileAnotherIsShownStays_data()
{
    QTest::addColumn<bool>("inBackground");
    QTest::addRow("SetAudioFile()") << false;
    QTest::addRow("LoadFile()") << true;
}

void PlayerNestedTest::aFileLoadedWhileAnotherIsShownStays()
{
    QFETCH(bool, inBackground);
    TwoFiles setup;
    QSignalSpy cancelled(setup.player.get(), &AudioPlayerWidget::LoadCancelled);
    QSignalSpy finished(setup.player.get(), &AudioPlayerWidget::LoadFinished);
    setup.Upon(
        &AudioPlayerWidget::WaveFormSelectionChanged, [&] { return setup.IsFirstShown(); },
        [&] { setup.player->SetAudioFile(setup.secondPath); });
    if (inBackground) {
        setup.player->LoadFile(setup.firstPath);
        QVERIFY(QTest::qWaitFor([&] { return cancelled.size() + finished.size() > 0; }, PlayerSetup::patience));
        QCOMPARE(cancelled.size(), 1);
        QVERIFY(finished.isEmpty());
    } else {
        setup.player->SetAudioFile(setup.firstPath);
    }
    QVERIFY(setup.isDone);
    QCOMPARE(setup.changes, QStringList{u"second.wav"_s});
    setup.CompareWithSecond();
}

void PlayerNestedTest::aFileClosedWhileItIsShownIsNotTold()
{
    TwoFiles setup;
    setup.Upon(
        &AudioPlayerWidget::WaveFormSelectionChanged, [&] { return setup.IsFirstShown(); },
        [&] { setup.player->Reset(); });
    setup.player->SetAudioFile(setup.firstPath);
    QVERIFY(setup.isDone);
    QVERIFY(setup.changes.isEmpty());
    QVERIFY(setup.player->GetAudioFileName().isEmpty());
    QCOMPARE(setup.View().GetVisibleRange(), Selection(0.0, 1.0));
    QCOMPARE(setup.Controls().edTotalDuration->text(), u"00:00:00,000"_s);
    QVERIFY(setup.Audio().source().isEmpty());
}

void PlayerNestedTest::aFileLoadedWhileAChannelIsShownIsPlayed()
{
    TwoFiles setup;
    QVERIFY(setup.Load(setup.firstPath));
    setup.Upon(
        &AudioPlayerWidget::WaveFormSelectionChanged, [] { return true; },
        [&] { setup.player->SetAudioFile(setup.secondPath); });
    setup.player->SetSelectedChannel(WavFile::ChannelLeft);
    QVERIFY(QTest::qWaitFor([&] { return setup.isDone; }, PlayerSetup::patience));
    setup.CompareWithSecond();
    QCOMPARE(setup.player->GetSelectedChannel(), WavFile::ChannelLeftRight);
}

void PlayerNestedTest::aFileLoadedWhileThePlayerIsEmptiedStays()
{
    TwoFiles setup;
    QVERIFY(setup.Load(setup.firstPath));
    setup.Upon(
        &AudioPlayerWidget::WaveFormSelectionChanged, [] { return true; },
        [&] { setup.player->SetAudioFile(setup.secondPath); });
    setup.player->Reset();
    QVERIFY(setup.isDone);
    setup.CompareWithSecond();
}

void PlayerNestedTest::aLoadBegunWhileAnotherOneEmptiesThePlayerGoesOn()
{
    TwoFiles setup;
    QVERIFY(setup.Load(u"long.wav"_s, second.File()));
    setup.changes.clear();
    setup.player->SetEditMode(false);
    QVERIFY(setup.CanSeek());
    setup.player->UpdateAudioPosition(1.5);
    QSignalSpy cancelled(setup.player.get(), &AudioPlayerWidget::LoadCancelled);
    QSignalSpy finished(setup.player.get(), &AudioPlayerWidget::LoadFinished);
    // Stopping goes back to the start.
    setup.player->LoadFile(setup.firstPath);
    setup.Upon(
        &AudioPlayerWidget::AudioPositionChanged, [&] { return setup.player->GetAudioPosition() == 0.0; },
        [&] { setup.player->LoadFile(setup.secondPath); });
    QVERIFY(QTest::qWaitFor([&] { return finished.size() == 1; }, PlayerSetup::patience));
    QVERIFY(setup.isDone);
    QCOMPARE(cancelled.size(), 1);
    QCOMPARE(cancelled[0][0].toString(), setup.firstPath);
    QCOMPARE(finished[0][0].toString(), setup.secondPath);
    QCOMPARE(setup.changes, QStringList{u"second.wav"_s});
    setup.CompareWithSecond();
}

void PlayerNestedTest::theSelectionOfASlotIsTheLast()
{
    TwoFiles setup;
    QVERIFY(setup.Load(setup.secondPath));
    QVERIFY(setup.CanSeek());
    setup.player->UpdateAudioPosition(1.5);
    setup.Upon(
        &AudioPlayerWidget::AudioPositionChanged, [] { return true; },
        [&] {
            setup.player->SetSelectedSnippet({1.0, 1.25});
        });
    QSignalSpy selections(setup.player.get(), &AudioPlayerWidget::WaveFormSelectionChanged);
    setup.player->SetSelectedSnippet({0.25, 0.5});
    QVERIFY(setup.isDone);
    QCOMPARE(setup.player->GetSelectedSnippet(), Selection(1.0, 1.25));
    QCOMPARE(selections.last()[0].value<Selection>(), Selection(1.0, 1.25));
    QCOMPARE(setup.Controls().edSelectionStart->text(), u"00:00:01.000"_s);
    QCOMPARE(setup.Controls().edSelectionEnd->text(), u"00:00:01.250"_s);
}

void PlayerNestedTest::stoppingLeavesTheSelectionOfASlot()
{
    TwoFiles setup;
    QVERIFY(setup.Load(setup.secondPath));
    QVERIFY(setup.CanSeek());
    setup.player->UpdateAudioPosition(1.5);
    setup.Upon(
        &AudioPlayerWidget::AudioPositionChanged, [] { return true; },
        [&] {
            setup.player->SetSelectedSnippet({1.0, 1.25});
        });
    setup.player->findChild<QPushButton*>(u"btnStop"_s)->click();
    QVERIFY(setup.isDone);
    // A selection from the start of the file would lead there.
    QCOMPARE(setup.player->GetAudioPosition(), 1.0);
}

void PlayerNestedTest::aCursorInAFieldMeetsABusyTime_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<bool>("destroys");
    for (const char* field : {"edSelectionStart", "edSelectionEnd"}) {
        QTest::addRow("%s, destroyed", field) << QString::fromLatin1(field) << true;
        QTest::addRow("%s, cancelled", field) << QString::fromLatin1(field) << false;
    }
}

void PlayerNestedTest::aCursorInAFieldMeetsABusyTime()
{
    QFETCH(QString, field);
    QFETCH(bool, destroys);
    TwoFiles setup;
    QLineEdit* const edit = setup.PutCursorInto(field);
    QVERIFY(edit);
    setup.player->SetSelectedSnippet({0.5, 1.5});
    edit->setText(u"00:00:01.250"_s);
    setup.Upon(
        &AudioPlayerWidget::WaveFormSelectionChanged, [] { return true; },
        [&] { destroys ? setup.player.reset() : setup.player->Close(); });
    setup.player->CreateSnippet(setup.copies.Path(u"snippet.wav"_s));
    QVERIFY(setup.isDone);
    if (destroys) {
        QVERIFY(!setup.player);
        return;
    }
    QVERIFY(!setup.player->IsBusy());
    QVERIFY(setup.busyChanges.isEmpty() || !setup.busyChanges.last());
    for (const QWidget* control : {static_cast<QWidget*>(setup.Controls().frmSelectionStart),
                                   static_cast<QWidget*>(setup.Controls().frmSelectionEnd),
                                   static_cast<QWidget*>(setup.Controls().cmbboxChannelSelector)}) {
        QVERIFY(control->isEnabled());
    }
}

void PlayerNestedTest::aSnippetThatIsGivenUpIsNotToldOf()
{
    TwoFiles setup;
    QVERIFY(setup.Load(setup.secondPath));
    setup.player->SetSelectedSnippet({0.5, 1.5});
    QSignalSpy finished(setup.player.get(), &AudioPlayerWidget::CreateSnippetFinished);
    HeldTask held(setup.File());
    setup.player->CreateSnippet(setup.copies.Path(u"snippet.wav"_s));
    QVERIFY(held.HasBegun());
    // As a task does that has a result and has not quite ended.
    PlayerSetup::Access::LeaveSnippetEnded(*setup.player);
    held.ReleaseUpon(WavFileTestAccess(setup.File()).IsWriteAborted());
    QVERIFY(setup.player->CancelSnippet());
    QCoreApplication::sendPostedEvents();
    QVERIFY(finished.isEmpty());
    QVERIFY(setup.player->errors.isEmpty());
    QVERIFY(!setup.player->IsBusy());
}

void PlayerNestedTest::aPathMayChangeUnderItsLoad()
{
    TwoFiles setup;
    QSignalSpy finished(setup.player.get(), &AudioPlayerWidget::LoadFinished);
    QStringList queue{setup.secondPath};
    setup.player->LoadFile(setup.firstPath);
    setup.Upon(
        &AudioPlayerWidget::LoadCancelled, [] { return true; }, [&] { queue.first().clear(); });
    setup.player->LoadFile(queue.first());
    QVERIFY(setup.isDone);
    QVERIFY(QTest::qWaitFor([&] { return finished.size() == 1; }, PlayerSetup::patience));
    setup.CompareWithSecond();

    queue = {setup.firstPath};
    setup.player->LoadFile(setup.secondPath);
    setup.Upon(
        &AudioPlayerWidget::LoadCancelled, [] { return true; }, [&] { queue.first().clear(); });
    setup.player->SetAudioFile(queue.first());
    QVERIFY(setup.isDone);
    QCOMPARE(setup.player->GetAudioDuration(), lengthOfFirst);
}

void PlayerNestedTest::aDeviceMayChangeWhileItIsSet()
{
    TwoFiles setup;
    QVERIFY(setup.Load(setup.secondPath));
    QVERIFY(setup.CanSeek());
    setup.player->UpdateAudioPosition(1.5);
    const QAudioDevice chosen = QMediaDevices::defaultAudioOutput();
    QVERIFY(!chosen.isNull());
    QAudioDevice device = chosen;
    // Stopping goes back to the start.
    setup.Upon(
        &AudioPlayerWidget::AudioPositionChanged, [] { return true; }, [&] { device = QAudioDevice(); });
    setup.player->SetAudioOutputDevice(device);
    QVERIFY(setup.isDone);
    QCOMPARE(setup.Audio().GetAudioOutputDevice(), chosen);
}

/** Qt goes on with a frame that it hides with the cursor in it. */
void PlayerNestedTest::mayBeDestroyedByTheEndOfEditing()
{
    TwoFiles setup;
    QLineEdit* const edit = setup.PutCursorInto(u"edSelectionStart"_s);
    QVERIFY(edit);
    edit->setText(u"00:00:01.250"_s);
    setup.Upon(
        &AudioPlayerWidget::WaveFormSelectionChanged, [] { return true; }, [&] { setup.player.reset(); });
    setup.player->SetEditMode(false);
    QVERIFY(setup.isDone);
    QVERIFY(!setup.player);
}

void PlayerNestedTest::theEndOfEditingPassesTheFocusOn()
{
    TwoFiles setup;
    QLineEdit* const edit = setup.PutCursorInto(u"edSelectionStart"_s);
    QVERIFY(edit);
    edit->setText(u"00:00:01.250"_s);
    QSignalSpy selections(setup.player.get(), &AudioPlayerWidget::WaveFormSelectionChanged);
    setup.player->SetEditMode(false);
    // The end of the selection moves along with such a start.
    QCOMPARE(selections.last()[0].value<Selection>(), Selection(1.25, 1.25));
    QVERIFY(QApplication::focusWidget() && QApplication::focusWidget()->isVisible());
}

/** The waveform takes the focus back that a field has had meanwhile. */
void PlayerNestedTest::mayBeDestroyedByTheEndOfABusyTime()
{
    TwoFiles setup;
    setup.player->SetWaveformTakesFocus(true);
    setup.player->SetTypedPositionSeeks(true);
    setup.player->show();
    QVERIFY(QTest::qWaitForWindowExposed(setup.player.get()));
    QVERIFY(setup.Load(setup.secondPath));
    setup.player->SetSelectedSnippet({0.5, 1.5});
    auto* edit = setup.player->findChild<QLineEdit*>(u"edCurrentPosition"_s);
    QWidget::setTabOrder(&setup.View(), edit);
    setup.player->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(setup.player.get()));
    setup.View().setFocus();
    HeldTask held(setup.File());
    setup.player->CreateSnippet(setup.copies.Path(u"snippet.wav"_s));
    QVERIFY(held.HasBegun());
    QVERIFY(edit->hasFocus());
    edit->setText(u"00:00:01.250"_s);
    edit->setModified(true);
    setup.Upon(
        &AudioPlayerWidget::AudioPositionChanged, [] { return true; }, [&] { setup.player.reset(); });
    held.Release();
    QVERIFY(QTest::qWaitFor([&] { return setup.isDone; }, PlayerSetup::patience));
    QVERIFY(!setup.player);
}

/** Qt goes on with a slider that was pressed. */
void PlayerNestedTest::mayBeDestroyedByItsVolume()
{
    TwoFiles setup;
    setup.player->show();
    auto* slider = setup.player->findChild<QSlider*>(u"hSliderVolume"_s);
    const QPointer<QSlider> guard(slider);
    setup.Upon(
        &AudioPlayerWidget::AudioPlayBackVolumeChanged, [] { return true; }, [&] { setup.player.reset(); });
    const QPointF position(2.0, slider->height() / 2.0);
    QMouseEvent press(QEvent::MouseButtonPress, position, slider->mapToGlobal(position), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(slider, &press);
    QVERIFY(setup.isDone);
    // It goes when Qt has come to the end of the event.
    QVERIFY(guard);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!guard);
}

int main(int argc, char* argv[])
{
    const SoundServer server({u"one"_s});
    QApplication application(argc, argv);
    PlayerNestedTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_playernested.moc"
