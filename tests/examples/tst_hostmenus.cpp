#include "DeviceMenu.h"
#include "FileInformation.h"
#include "GoTo.h"
#include "PlayerWindows.h"
#include "Question.h"
#include "RecentFiles.h"
#include "Times.h"
#include "tests/support/HeldFile.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtGui/QAction>
#include <QtGui/QWindow>
#include <QtMultimedia/QAudioOutput>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>

#include <algorithm>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString Recording = QStringLiteral(VANTOR_RECORDING);

/** A folder with copies of the recording under these names. */
class Copies
{
public:
    explicit Copies(const QStringList& names)
    {
        for (const QString& name : names) {
            QFile::copy(Recording, Path(name));
        }
    }

    QString Path(const QString& name) const { return m_folder.filePath(name); }
    QString Folder() const { return m_folder.path(); }

private:
    const QTemporaryDir m_folder;
};

/** The recent files as the keyboard opens them, and as they are written there. */
QStringList ShowRecentFiles(PlayerWindow& window)
{
    QTest::keyClick(&window, Qt::Key_F, Qt::AltModifier);
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_R);
    QStringList texts;
    for (const QAction* action : window.findChild<RecentFiles*>()->actions()) {
        if (!action->isSeparator()) {
            texts.append(action->text());
        }
    }
    return texts;
}

void PressInMenu(Qt::Key key, int times = 1)
{
    for (int i = 0; i < times; ++i) {
        QTest::keyClick(QApplication::activePopupWidget(), key);
    }
}

void CloseMenus()
{
    while (QWidget* popup = QApplication::activePopupWidget()) {
        popup->close();
    }
}

/** Closes the window as a user does, so that it remembers. */
void Close(PlayerWindow& window)
{
    QTest::keyClick(&window, Qt::Key_Q, Qt::ControlModifier);
}

QMenu* MenuNamed(PlayerWindow& window, const QString& title)
{
    const QList<QMenu*> menus = window.findChildren<QMenu*>();
    const auto menu =
        std::find_if(menus.cbegin(), menus.cend(), [&](const QMenu* each) { return each->title() == title; });
    return menu == menus.cend() ? nullptr : *menu;
}

/** From one pixel column to another, by way of some between them. */
void Drag(PlayerWindow& window, int from, int to)
{
    QWidget* diagram = DiagramOf(window);
    const int y = diagram->height() / 2;
    QTest::mousePress(diagram, Qt::LeftButton, Qt::NoModifier, QPoint(from, y));
    for (int step = 1; step <= 4; ++step) {
        const QPointF place(from + (to - from) * step / 4, y);
        QMouseEvent move(QEvent::MouseMove, place, diagram->mapToGlobal(place), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(diagram, &move);
        QCoreApplication::processEvents();
    }
    QTest::mouseRelease(diagram, Qt::LeftButton, Qt::NoModifier, QPoint(to, y));
}

QMap<QString, QString> RowsOf(const QDialog& dialog)
{
    QMap<QString, QString> rows;
    const auto* table = qobject_cast<QFormLayout*>(dialog.layout());
    for (int row = 0; row < table->rowCount(); ++row) {
        const QLayoutItem* name = table->itemAt(row, QFormLayout::LabelRole);
        const QLayoutItem* value = table->itemAt(row, QFormLayout::FieldRole);
        if (name && value) {
            rows.insert(qobject_cast<QLabel*>(name->widget())->text(),
                        qobject_cast<QLabel*>(value->widget())->text());
        }
    }
    return rows;
}

/** What the information about the file says. Nothing if it was not shown, or could not be closed. */
QMap<QString, QString> ShowInformation(PlayerWindow& window)
{
    QMap<QString, QString> rows;
    Answers answers;
    answers.Add<FileInformation>([&](FileInformation& dialog) {
        rows = RowsOf(dialog);
        QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    QTest::keyClick(&window, Qt::Key_I, Qt::ControlModifier);
    return answers.AreGiven() ? rows : QMap<QString, QString>();
}

/** Its id: the devices of a test have one name. */
QByteArray CheckedDevice(PlayerWindow& window)
{
    const QList<QAction*> actions = window.findChild<DeviceMenu*>()->actions();
    const auto checked =
        std::find_if(actions.cbegin(), actions.cend(), [](const QAction* action) { return action->isChecked(); });
    return checked == actions.cend() ? QByteArray() : (*checked)->data().toByteArray();
}

/** By the keyboard. */
void ChooseDevice(PlayerWindow& window, int entry)
{
    QTest::keyClick(&window, Qt::Key_O, Qt::AltModifier);
    PressInMenu(Qt::Key_Home);
    PressInMenu(Qt::Key_Down, entry);
    PressInMenu(Qt::Key_Return);
}

} // namespace

class HostMenusTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QSettings().clear(); }

    void understandsATimeAsAPersonWritesIt_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("seconds");
        constexpr double none = -1.0;
        for (const auto& [text, seconds] :
             std::initializer_list<std::pair<const char*, double>>{{"7.5", 7.5},
                                                                   {"7,5", 7.5},
                                                                   {"0", 0.0},
                                                                   {"007", 7.0},
                                                                   {".25", 0.25},
                                                                   {"3.", 3.0},
                                                                   {" 1:30 ", 90.0},
                                                                   {"1:30.5", 90.5},
                                                                   {"90", 90.0},
                                                                   {"90:00", 5400.0},
                                                                   {"1:02:03.250", 3723.25},
                                                                   {"1:02:03,250", 3723.25},
                                                                   {"00:00:07.500", 7.5},
                                                                   {"30:00:00", 108000.0},
                                                                   {"999999999", 999999999.0},
                                                                   {"", none},
                                                                   {" ", none},
                                                                   {":", none},
                                                                   {"1:", none},
                                                                   {":30", none},
                                                                   {"1:60", none},
                                                                   {"1:60:00", none},
                                                                   {"1:2:3:4", none},
                                                                   {"-1", none},
                                                                   {"+1", none},
                                                                   {"1e3", none},
                                                                   {"inf", none},
                                                                   {"nan", none},
                                                                   {"1.2.3", none},
                                                                   {"1.5:30", none},
                                                                   {".", none},
                                                                   {"seven", none},
                                                                   {"7 s", none},
                                                                   {"0x10", none},
                                                                   {"9999999999", none},
                                                                   {"1 : 30", none},
                                                                   {"\u0661:\u0663\u0660", none}}) {
            QTest::addRow("%s", text) << QString::fromUtf8(text) << seconds;
        }
    }
    void understandsATimeAsAPersonWritesIt()
    {
        QFETCH(const QString, text);
        QFETCH(const double, seconds);
        QCOMPARE(ParseTime(text).value_or(-1.0), seconds);
    }

    void writesTimesThatItUnderstands_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("text");
        QTest::addRow("start") << 0.0 << u"0:00.000"_s;
        QTest::addRow("milliseconds") << 7.0625 << u"0:07.063"_s;
        QTest::addRow("rounded up") << 59.9999 << u"1:00.000"_s;
        QTest::addRow("hours") << 3723.25 << u"1:02:03.250"_s;
        QTest::addRow("days") << 360000.0 << u"100:00:00.000"_s;
        QTest::addRow("below 0") << -1.0 << u"0:00.000"_s;
        QTest::addRow("infinite") << std::numeric_limits<double>::infinity() << u"0:00.000"_s;
        QTest::addRow("no number") << std::numeric_limits<double>::quiet_NaN() << u"0:00.000"_s;
    }
    void writesTimesThatItUnderstands()
    {
        QFETCH(const double, seconds);
        QFETCH(const QString, text);
        QCOMPARE(TextOfTime(seconds), text);
        QVERIFY(ParseTime(text).has_value());
    }

    void goesToATypedTime_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<double>("position");
        QTest::addRow("seconds") << u"7.5"_s << 7.5;
        QTest::addRow("minutes") << u"0:12"_s << 12.0;
        QTest::addRow("behind the end") << u"1:30"_s << -1.0;
    }
    void goesToATypedTime()
    {
        QFETCH(const QString, typed);
        QFETCH(const double, position);
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        window.ShowRange(1.0, 3.0);
        Answers answers;
        answers.Add<GoTo>([&](GoTo& dialog) {
            // What is there is selected, so typing replaces it.
            QTest::keyClicks(QApplication::focusWidget(), typed);
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
        QTest::keyClick(&window, Qt::Key_G, Qt::ControlModifier);
        QVERIFY(answers.AreGiven());
        const double expected = position < 0.0 ? window.Duration() : position;
        QTRY_VERIFY(std::abs(PlayerOf(window)->GetAudioPosition() - expected) < 0.01);
        const auto [left, right] = PlayerOf(window)->GetVisibleRange();
        QVERIFY(left <= expected && expected <= right + 0.001);
        QVERIFY(std::abs(right - left - 2.0) < 0.001);
    }

    void doesNotGoToWhatIsNoTime()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        Answers answers;
        answers.Add<GoTo>([&](GoTo& dialog) {
            QTest::keyClicks(QApplication::focusWidget(), u"1:75"_s);
            QVERIFY(!dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->isEnabled());
            QTest::keyClick(&dialog, Qt::Key_Return);
            QVERIFY(dialog.isVisible());
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        QTest::keyClick(&window, Qt::Key_G, Qt::ControlModifier);
        QVERIFY(answers.AreGiven());
        QCOMPARE(PlayerOf(window)->GetAudioPosition(), 0.0);
    }

    void tellsWhatIsInTheFile()
    {
        const Copies copies({});
        const QString path = copies.Path(u"spoken.mp3"_s);
        QCOMPARE(
            QProcess::execute(u"lame"_s, {u"--quiet"_s, u"--tt"_s, u"A <b>bold</b> title"_s, Recording, path}), 0);
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, path));
        const QMap<QString, QString> rows = ShowInformation(window);
        QCOMPARE(rows.value(u"Name:"_s), u"spoken.mp3"_s);
        QCOMPARE(rows.value(u"Folder:"_s), copies.Folder());
        QCOMPARE(rows.value(u"Title:"_s), u"A <b>bold</b> title"_s);
        QVERIFY(rows.value(u"Format:"_s).contains(u"MP2/3"_s));
        QVERIFY(rows.value(u"Coding:"_s).contains(u"MP3"_s));
        QCOMPARE(rows.value(u"Sample rate:"_s), u"%1 Hz"_s.arg(QLocale().toString(22050)));
        QCOMPARE(rows.value(u"Channels:"_s), u"2"_s);
        QVERIFY(!rows.contains(u"Bits of a sample:"_s));
        QVERIFY2(rows.value(u"Length:"_s).startsWith(u"0:17."_s), qPrintable(rows.value(u"Length:"_s)));
    }

    void tellsOfAFileThatHasGoneWhatWasLoadedOfIt()
    {
        const Copies copies({u"take.wav"_s});
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, copies.Path(u"take.wav"_s)));
        QVERIFY(QFile::remove(copies.Path(u"take.wav"_s)));
        const QMap<QString, QString> rows = ShowInformation(window);
        QCOMPARE(rows.value(u"Name:"_s), u"take.wav"_s);
        QCOMPARE(rows.value(u"Bits of a sample:"_s), u"16"_s);
        QVERIFY(!rows.contains(u"Size:"_s));
        QCOMPARE(rows.value(u"Note:"_s), u"The file cannot be read now. This is what was loaded of it."_s);
    }

    void tellsOfAFileWhoseDiskDoesNotAnswerWhatWasLoadedOfIt()
    {
        const Copies copies({u"take.wav"_s});
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, copies.Path(u"take.wav"_s)));
        const HeldFile held(copies.Path(u"take.wav"_s));
        if (!held.IsHeld()) {
            QSKIP("This file system lets every reader in.");
        }
        const QMap<QString, QString> rows = ShowInformation(window);
        QCOMPARE(rows.value(u"Name:"_s), u"take.wav"_s);
        QCOMPARE(rows.value(u"Bits of a sample:"_s), u"16"_s);
    }

    void anAnswerThatComesTooLateIsNotWaitedFor()
    {
        const auto gate = std::make_shared<QSemaphore>();
        Question<int> late([gate] {
            gate->acquire();
            return 1;
        });
        QCOMPARE(late.AnswerUntil(std::chrono::steady_clock::now()), std::nullopt);
        Question<int> early([] { return 1; });
        QCOMPARE(early.AnswerUntil(std::chrono::steady_clock::now() + std::chrono::seconds(20)), 1);
        gate->release();
    }

    void withoutAFileThereIsNoInformationAndNowhereToGo()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QTest::keyClick(&window, Qt::Key_I, Qt::ControlModifier);
        QTest::keyClick(&window, Qt::Key_G, Qt::ControlModifier);
        QCOMPARE(QApplication::activeModalWidget(), nullptr);
    }

    void theTitleNamesTheFile()
    {
        const Copies copies({u"a[*]b & c.wav"_s});
        PlayerWindow window;
        QVERIFY(Activate(window));
        QCOMPARE(window.windowHandle()->title(), u"Player"_s);
        QVERIFY(Open(window, copies.Path(u"a[*]b & c.wav"_s)));
        QCOMPARE(window.windowHandle()->title(), u"a[*]b & c.wav"_s);
        QCOMPARE(window.windowFilePath(), copies.Path(u"a[*]b & c.wav"_s));
    }

    void listsRecentFilesTheLatestFirst()
    {
        const Copies copies({u"a & b.wav"_s, u"gone.wav"_s, u"c.wav"_s});
        {
            PlayerWindow window;
            for (const QString& name : {u"a & b.wav"_s, u"gone.wav"_s, u"c.wav"_s, u"a & b.wav"_s}) {
                QVERIFY(Open(window, copies.Path(name)));
            }
        }
        QVERIFY(QFile::remove(copies.Path(u"gone.wav"_s)));
        PlayerWindow window;
        QVERIFY(Activate(window));
        const QStringList texts = ShowRecentFiles(window);
        QCOMPARE(texts, QStringList({copies.Path(u"a && b.wav"_s), copies.Path(u"c.wav"_s), u"&Clear list"_s}));
        const WindowLog log(window);
        PressInMenu(Qt::Key_Down);
        PressInMenu(Qt::Key_Return);
        QVERIFY(log.HasEnded() && log.isOpened);
        QCOMPARE(PlayerOf(window)->GetOriginalAudioFilePath(), copies.Path(u"c.wav"_s));
    }

    void listsNoMoreThanTenRecentFiles()
    {
        const QTemporaryDir folder;
        RecentFiles menu;
        QStringList added;
        for (int i = 0; i < 12; ++i) {
            added.prepend(folder.filePath(u"%1.wav"_s.arg(i)));
            QVERIFY(QFile::copy(Recording, added.first()));
            menu.Add(added.first());
        }
        QCOMPARE(QSettings().value(u"recentFiles"_s).toStringList(), added.first(10));
    }

    void showsNoMoreThanTenThatAnotherVersionHasKept()
    {
        const QTemporaryDir folder;
        QStringList kept;
        for (int i = 0; i < 12; ++i) {
            kept.append(folder.filePath(u"%1.wav"_s.arg(i)));
            QVERIFY(QFile::copy(Recording, kept.last()));
        }
        QSettings().setValue(u"recentFiles"_s, kept);
        PlayerWindow window;
        QVERIFY(Activate(window));
        QCOMPARE(ShowRecentFiles(window), kept.first(10) + QStringList(u"&Clear list"_s));
        CloseMenus();
    }

    void clearsTheListOfRecentFiles()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(Open(window, Recording));
        QCOMPARE(ShowRecentFiles(window).size(), 2);
        PressInMenu(Qt::Key_C);
        QVERIFY(!QApplication::activePopupWidget());
        QCOMPARE(ShowRecentFiles(window), QStringList(u"No files"_s));
        CloseMenus();
    }

    void remembersLoopMuteAndVolume()
    {
        {
            PlayerWindow window;
            QVERIFY(Activate(window));
            QVERIFY(Open(window, Recording));
            PlayerOf(window)->SetAudioPlayBackVolume(41);
            QTest::keyClick(&window, Qt::Key_L);
            QTest::keyClick(&window, Qt::Key_M);
            Close(window);
        }
        PlayerWindow again;
        QVERIFY(Activate(again));
        QVERIFY(PlayerOf(again)->GetLoop());
        QVERIFY(PlayerOf(again)->GetAudioPlayBackMute());
        QCOMPARE(PlayerOf(again)->GetAudioPlayBackVolume(), 41);
        // The menus show it, too: the next key switches it off.
        QTest::keyClick(&again, Qt::Key_L);
        QTest::keyClick(&again, Qt::Key_M);
        QVERIFY(!PlayerOf(again)->GetLoop());
        QVERIFY(!PlayerOf(again)->GetAudioPlayBackMute());
    }

    void remembersWhatShowedOfTheLastFile()
    {
        const Copies copies({u"other.wav"_s});
        {
            PlayerWindow window;
            QVERIFY(Activate(window));
            QVERIFY(OpenCompletely(window, Recording));
            window.ShowRange(2.0, 5.0);
            Close(window);
        }
        PlayerWindow again;
        QVERIFY(Open(again, copies.Path(u"other.wav"_s)));
        QCOMPARE(PlayerOf(again)->GetVisibleRange().first, 0.0);
        QVERIFY(Open(again, Recording));
        const auto [start, end] = PlayerOf(again)->GetVisibleRange();
        QVERIFY(std::abs(start - 2.0) < 0.001 && std::abs(end - 5.0) < 0.001);
    }

    void comingBackToAFileShowsWhatItWasLeftWith()
    {
        const Copies copies({u"other.wav"_s});
        const QString other = copies.Path(u"other.wav"_s);
        {
            PlayerWindow window;
            QVERIFY(Activate(window));
            QVERIFY(OpenCompletely(window, Recording));
            window.ShowRange(2.0, 5.0);
            Close(window);
        }
        PlayerWindow again;
        QVERIFY(Activate(again));
        const auto view = [&] { return PlayerOf(again)->GetVisibleRange(); };
        QVERIFY(OpenCompletely(again, Recording));
        QCOMPARE(view(), std::make_pair(2.0, 5.0));
        QTest::keyClick(&again, Qt::Key_0);
        const auto whole = view();
        QVERIFY(whole.second > 17.0);
        QVERIFY(OpenCompletely(again, other));
        QCOMPARE(view(), whole);
        again.ShowRange(3.0, 4.0);
        QVERIFY(OpenCompletely(again, Recording));
        QCOMPARE(view(), whole);
        QVERIFY(OpenCompletely(again, other));
        QCOMPARE(view(), std::make_pair(3.0, 4.0));
    }

    void selectsAllFromWhereverTheFocusIs()
    {
        const Copies copies({u"other.wav"_s});
        PlayerWindow window;
        QVERIFY(Activate(window));
        QTest::keyClick(&window, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(PlayerOf(window)->GetSelectedSnippet(), std::make_pair(0.0, 0.0));
        QVERIFY(OpenCompletely(window, Recording));
        const auto all = std::make_pair(0.0, window.Duration());
        window.ShowRange(3.0, 5.0);
        for (QWidget* place : {static_cast<QWidget*>(PlayerOf(window)), ChildNamed<QWidget>(window, u"zoom"_s)}) {
            place->setFocus();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
            QCOMPARE(PlayerOf(window)->GetSelectedSnippet(), all);
            window.SelectRange(0.0, 0.0);
        }
        // Alt+S opens the menu.
        QTest::keyClick(&window, Qt::Key_S, Qt::AltModifier);
        PressInMenu(Qt::Key_A);
        QCOMPARE(PlayerOf(window)->GetSelectedSnippet(), all);
    }

    void controlAStaysATextsOwnWhereOneIsTyped()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        auto* field = ChildNamed<QLineEdit>(window, u"edCurrentPosition"_s);
        field->setFocus();
        field->deselect();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QCOMPARE(field->selectedText(), field->text());
        Answers answers;
        answers.Add<GoTo>([&](GoTo& dialog) {
            auto* time = dialog.findChild<QLineEdit*>();
            QTest::keyClicks(time, u"12"_s);
            QTest::keyClick(time, Qt::Key_A, Qt::ControlModifier);
            QCOMPARE(time->selectedText(), u"12"_s);
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        QTest::keyClick(&window, Qt::Key_G, Qt::ControlModifier);
        QVERIFY(answers.AreGiven());
        QCOMPARE(PlayerOf(window)->GetSelectedSnippet(), std::make_pair(0.0, 0.0));
    }

    void takesNoHarmFromDamagedSettings()
    {
        QSettings settings;
        for (const char* key : {"volume", "mute", "loop", "view/start", "view/end", "recentFiles", "outputDevice",
                                "geometry", "folder/open", "folder/export"}) {
            settings.setValue(QString::fromLatin1(key), u"nan"_s);
        }
        settings.setValue(u"volume"_s, 1e300);
        settings.setValue(u"view/file"_s, Recording);
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        QCOMPARE(PlayerOf(window)->GetVisibleRange().first, 0.0);
        QCOMPARE(ShowRecentFiles(window).size(), 2);
        CloseMenus();
    }

    void remembersTheOutputDevice()
    {
        QByteArray chosen;
        {
            PlayerWindow window;
            QVERIFY(Activate(window));
            if (window.findChild<DeviceMenu*>()->actions().size() < 2) {
                QSKIP("There are no two devices to choose from.");
            }
            const QList<QAction*> devices = window.findChild<DeviceMenu*>()->actions();
            const int other = devices.at(0)->isChecked() ? 1 : 0;
            chosen = devices.at(other)->data().toByteArray();
            ChooseDevice(window, other);
            QCOMPARE(CheckedDevice(window), chosen);
        }
        PlayerWindow again;
        QCOMPARE(CheckedDevice(again), chosen);
        const auto* output = again.findChild<AudioPlayer*>()->audioOutput();
        QCOMPARE(output->device().id(), chosen);
        QVERIFY(Open(again, Recording));
        QCOMPARE(output->device().id(), chosen);
    }

    void playsOnWhereItIsOnTheDeviceThatIsChosen_data()
    {
        QTest::addColumn<bool>("isOther");
        QTest::addColumn<bool>("plays");
        QTest::newRow("another one, playing") << true << true;
        QTest::newRow("another one, paused") << true << false;
        QTest::newRow("the one in use, playing") << false << true;
        QTest::newRow("the one in use, paused") << false << false;
    }
    void playsOnWhereItIsOnTheDeviceThatIsChosen()
    {
        QFETCH(const bool, isOther);
        QFETCH(const bool, plays);
        PlayerWindow window;
        QVERIFY(Activate(window));
        const QList<QAction*> devices = window.findChild<DeviceMenu*>()->actions();
        if (devices.size() < 2) {
            QSKIP("There are no two devices to choose from.");
        }
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(5.0, 7.5);
        window.ShowRange(4.0, 10.0);
        HostPlayer& player = *PlayerOf(window);
        player.SetLoop(true);
        QTest::keyClick(&window, Qt::Key_Space);
        QTRY_VERIFY_WITH_TIMEOUT(player.GetAudioPosition() > 5.2, 15000);
        if (!plays) {
            QTest::keyClick(&window, Qt::Key_Space);
        }
        auto* audio = window.findChild<AudioPlayer*>();
        const QSignalSpy states(audio, &QMediaPlayer::playbackStateChanged);
        const QSignalSpy changes(audio->audioOutput(), &QAudioOutput::deviceChanged);
        const QSignalSpy positions(&player, &HostPlayer::AudioPositionChanged);
        const double before = player.GetAudioPosition();

        const int entry = devices.at(0)->isChecked() == isOther ? 1 : 0;
        ChooseDevice(window, entry);
        QCOMPARE(audio->audioOutput()->device().id(), devices.at(entry)->data().toByteArray());
        QCOMPARE(changes.isEmpty(), !isOther);
        QCOMPARE(player.GetSelectedSnippet(), std::make_pair(5.0, 7.5));
        QCOMPARE(player.GetVisibleRange(), std::make_pair(4.0, 10.0));
        QCOMPARE(player.IsPlaying(), plays);
        QVERIFY(!states.contains(QVariantList{QVariant::fromValue(QMediaPlayer::StoppedState)}));
        if (!plays) {
            QCOMPARE(player.GetAudioPosition(), before);
            QTest::keyClick(&window, Qt::Key_Space);
        }
        // From its place on to the end of the selection, and round again.
        QTRY_VERIFY_WITH_TIMEOUT(positions.contains(QVariantList{5.0}), 15000);
        QVERIFY(positions.first().first().toDouble() > before - 0.2);
        for (const QVariantList& position : positions) {
            QVERIFY(position.first().toDouble() >= 5.0 && position.first().toDouble() < 10.0);
        }
    }

    void theDialogsRememberTheirFolders()
    {
        const Copies opened({u"take.wav"_s});
        const QTemporaryDir exported;
        {
            PlayerWindow window;
            QVERIFY(Activate(window));
            QVERIFY(OpenCompletely(window, opened.Path(u"take.wav"_s)));
            window.SelectRange(1.0, 2.0);
            Answers answers;
            answers.Add<QFileDialog>([&](QFileDialog& dialog) {
                QCOMPARE(dialog.directory().path(), opened.Folder());
                auto* name = ChildNamed<QLineEdit>(dialog, u"fileNameEdit"_s);
                QCOMPARE(name->text(), u"take selection.wav"_s);
                name->selectAll();
                QTest::keyClicks(name, exported.filePath(u"part"_s));
                QTest::keyClick(name, Qt::Key_Return);
            });
            QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
            QVERIFY(answers.AreGiven());
        }
        PlayerWindow again;
        QVERIFY(Activate(again));
        QVERIFY(OpenCompletely(again, opened.Path(u"take.wav"_s)));
        again.SelectRange(1.0, 2.0);
        QStringList folders;
        Answers answers;
        for (int i = 0; i < 2; ++i) {
            answers.Add<QFileDialog>([&](QFileDialog& dialog) {
                folders.append(dialog.directory().path());
                QTest::keyClick(&dialog, Qt::Key_Escape);
            });
        }
        QTest::keyClick(&again, Qt::Key_O, Qt::ControlModifier);
        QVERIFY(Activate(again));
        QTest::keyClick(&again, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(answers.AreGiven());
        QCOMPARE(folders, QStringList({opened.Folder(), exported.path()}));
    }

    void takesChangesOfTheSelectionBack()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        const auto selection = [&] { return PlayerOf(window)->GetSelectedSnippet(); };
        const auto undo = [&] { QTest::keyClick(&window, Qt::Key_Z, Qt::ControlModifier); };
        const auto redo = [&] { QTest::keyClick(&window, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier); };
        const QList<QAction*> actions = MenuNamed(window, u"&Edit"_s)->actions();
        QVERIFY(!actions.at(0)->isEnabled());
        Drag(window, 100, 300);
        const auto first = selection();
        QVERIFY(first.first < first.second);
        QTRY_VERIFY(actions.at(0)->isEnabled());
        QTest::keyClick(&window, Qt::Key_Right, Qt::ControlModifier);
        const auto second = selection();
        QVERIFY(second != first);
        QTRY_COMPARE(actions.at(0)->text(), u"&Undo selection"_s);
        QTest::qWait(0);
        QTest::keyClick(&window, Qt::Key_Escape);
        QCOMPARE(selection(), std::make_pair(0.0, 0.0));
        QTest::qWait(0);

        undo();
        QCOMPARE(selection(), second);
        undo();
        QCOMPARE(selection(), first);
        // All moves of the mouse in one step.
        undo();
        QCOMPARE(selection(), std::make_pair(0.0, 0.0));
        QVERIFY(!actions.at(0)->isEnabled());
        redo();
        redo();
        QCOMPARE(selection(), second);
        QTest::qWait(0);
        QVERIFY(actions.at(1)->isEnabled());
        QTest::keyClick(&window, Qt::Key_Right, Qt::ControlModifier);
        QTRY_VERIFY(!actions.at(1)->isEnabled());
    }

    void anotherFileStartsWithoutAPast()
    {
        const Copies copies({u"other.wav"_s});
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        Drag(window, 100, 300);
        const QList<QAction*> actions = MenuNamed(window, u"&Edit"_s)->actions();
        QTRY_VERIFY(actions.at(0)->isEnabled());
        QVERIFY(OpenCompletely(window, copies.Path(u"other.wav"_s)));
        QVERIFY(!actions.at(0)->isEnabled());
        QTest::keyClick(&window, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(PlayerOf(window)->GetSelectedSnippet(), std::make_pair(0.0, 0.0));
    }

    void theWindowAndTheAboutBoxHaveAnIcon()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(!window.windowIcon().pixmap(32).isNull());
        QTest::keyClick(&window, Qt::Key_H, Qt::AltModifier);
        PressInMenu(Qt::Key_A);
        auto* box = window.findChild<QMessageBox*>();
        QVERIFY(box);
        QCOMPARE(box->iconPixmap().toImage(), window.windowIcon().pixmap(64).toImage());
        box->close();
    }
};

int main(int argc, char* argv[])
{
    return RunApart<HostMenusTest>(argc, argv);
}

#include "tst_hostmenus.moc"
