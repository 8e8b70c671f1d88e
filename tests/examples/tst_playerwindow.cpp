#include "Contrast.h"
#include "DeviceMenu.h"
#include "LongFile.h"
#include "PlayerWindows.h"
#include "PointerLabel.h"
#include "ScreenshotJob.h"
#include "SettingsDialog.h"
#include "ShortcutSheet.h"
#include "TaskProgress.h"
#include "tests/support/HeldFile.h"
#include "tests/support/WavBytes.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QMimeData>
#include <QtCore/QProcess>
#include <QtCore/QScopeGuard>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtGui/QAccessible>
#include <QtGui/QAction>
#include <QtGui/QContextMenuEvent>
#include <QtGui/QDropEvent>
#include <QtGui/QImage>
#include <QtGui/QWindow>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QFormLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSlider>
#include <QtWidgets/QToolButton>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>
#include <string_view>
#include <sys/resource.h>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget;

namespace {

const QString Recording = QStringLiteral(VANTOR_RECORDING);

bool Refuses(PlayerWindow& window, const QString& path)
{
    const WindowLog log(window);
    window.OpenFile(path);
    return log.HasEnded() && log.isRefused && !log.isOpened;
}

BGFXWaveformWidget* WaveformOf(PlayerWindow& window)
{
    return window.findChild<BGFXWaveformWidget*>();
}

/** Where a control has its text or icon, without its border; empty for what shows neither. */
QRect ContentOf(const QWidget& control)
{
    if (const auto* label = qobject_cast<const QLabel*>(&control)) {
        return label->text().isEmpty() ? QRect() : control.rect();
    }
    const bool hasBorder = qobject_cast<const QPushButton*>(&control) ||
                           qobject_cast<const QLineEdit*>(&control) || qobject_cast<const QComboBox*>(&control);
    return hasBorder ? control.rect().adjusted(5, 4, -5, -4) : QRect();
}

void Drop(QWidget& target, const QList<QUrl>& urls)
{
    QMimeData data;
    data.setUrls(urls);
    // A drop goes to the widget that took the drag before.
    QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&target, &enter);
    QDropEvent event(QPointF(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    if (enter.isAccepted()) {
        QApplication::sendEvent(&target, &event);
    }
}

struct Outcome
{
    int exitCode;
    QString message;
};

Outcome RunPlayer(const QStringList& arguments)
{
    QProcess process;
    // In sanitizer builds: what graphics drivers leak in a whole program cannot be told from leaks of ours.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(VANTOR_PLAYER), arguments);
    if (!process.waitForFinished(60000)) {
        process.kill();
        process.waitForFinished();
        return {-1, u"did not end"_s};
    }
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardError())};
}

int DistinctColors(const QImage& image)
{
    QSet<QRgb> colors;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            colors.insert(image.pixel(x, y));
        }
    }
    return static_cast<int>(colors.size());
}

bool Shows(const QImage& image, const QColor& color)
{
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y) == color) {
                return true;
            }
        }
    }
    return false;
}

/** In the system's theme. */
QColor WaveformColor()
{
    const auto roles = Appearance::Roles();
    const auto waveform = std::ranges::find_if(
        roles, [](const Appearance::Role& role) { return std::string_view(role.key) == "waveform"; });
    return Appearance().ColorOf(static_cast<std::size_t>(waveform - roles.begin()));
}

} // namespace

class PlayerWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /** What one test leaves there is none of the next one's business. */
    void init() { QSettings().clear(); }

    void opensAFileAndShowsItWhole()
    {
        PlayerWindow window;
        window.show();
        QVERIFY(OpenCompletely(window, Recording));
        QCOMPARE(window.windowTitle(), u"welcome.wav"_s);
        QCOMPARE(window.FailureText(), QString());
        QVERIFY(window.Duration() > 17.0 && window.Duration() < 17.1);
    }

    void keepsTheFormerFileWhenTheNextCannotBeRead()
    {
        QTemporaryDir folder;
        const QString broken = folder.filePath(u"broken take.wav"_s);
        QFile file(broken);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("this is no audio at all") > 0);
        file.close();

        PlayerWindow window;
        window.show();
        QVERIFY(OpenCompletely(window, Recording));
        const double duration = window.Duration();
        QVERIFY(Refuses(window, broken));
        QCOMPARE(window.FailureText(), u"“%1” holds no audio that can be decoded."_s.arg(broken));
        QVERIFY(window.findChild<QLabel*>(u"failure"_s)->isVisible());
        QCOMPARE(window.Duration(), duration);
        QCOMPARE(window.windowTitle(), u"welcome.wav"_s);

        QVERIFY(Open(window, Recording));
        QVERIFY(!window.findChild<QLabel*>(u"failure"_s)->isVisible());
        QCOMPARE(window.FailureText(), QString());
    }

    void tellsOfAFileThatDoesNotPlay()
    {
        PlayerWindow window;
        window.show();
        QVERIFY(OpenCompletely(window, Recording));
        Q_EMIT window.findChild<HostPlayer*>()->PlaybackFailed(u"no sound"_s);
        QCOMPARE(window.FailureText(), u"“%1” cannot be played: no sound"_s.arg(Recording));
        QVERIFY(window.findChild<QLabel*>(u"failure"_s)->isVisible());
        QVERIFY(Open(window, Recording));
        QCOMPARE(window.FailureText(), QString());
    }

    void aFailureCanBePutAway_data()
    {
        QTest::addColumn<bool>("byKeyboard");
        QTest::newRow("mouse") << false;
        QTest::newRow("keyboard") << true;
    }
    void aFailureCanBePutAway()
    {
        QFETCH(const bool, byKeyboard);
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        const auto hasFocus = [&] { return PlayerOf(window)->isAncestorOf(QApplication::focusWidget()); };
        QVERIFY(hasFocus());
        QVERIFY(Refuses(window, u"/nowhere/take.wav"_s));
        auto* button = ChildNamed<QToolButton>(window, u"hideFailure"_s);
        QTRY_VERIFY(button && button->isVisible());
        QCOMPARE(button->toolTip(), u"Hide this message"_s);
        auto* accessible = QAccessible::queryAccessibleInterface(button);
        QCOMPARE(accessible->text(QAccessible::Name), u"Hide this message"_s);
        QVERIFY(ContrastIn(button->parentWidget()->grab(button->geometry()).toImage()) >= 4.5);
        if (byKeyboard) {
            for (int i = 0; i < 100 && QApplication::focusWidget() != button; ++i) {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            }
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Space);
        } else {
            QTest::mouseClick(button, Qt::LeftButton);
        }
        QVERIFY(!ChildNamed<QLabel>(window, u"failure"_s)->isVisible());
        QCOMPARE(window.FailureText(), QString());
        QVERIFY(!PlayerOf(window)->IsPlaying());
        QVERIFY(hasFocus());
        QVERIFY(Refuses(window, u"/nowhere/take.wav"_s));
        QVERIFY(button->isVisible());
    }

    void saysWhyAFileCannotBeOpened_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("sentence");
        QTest::addRow("missing") << u"/nowhere/take.wav"_s << u"There is no file “/nowhere/take.wav”."_s;
        QTest::addRow("folder") << QDir::tempPath() << u"“%1” is not a file."_s.arg(QDir::tempPath());
    }
    void saysWhyAFileCannotBeOpened()
    {
        QFETCH(const QString, path);
        QFETCH(const QString, sentence);
        PlayerWindow window;
        QVERIFY(Refuses(window, path));
        QCOMPARE(window.FailureText(), sentence);
    }

    void showsOrRefusesWhatOtherProgramsWrote_data()
    {
        QTest::addColumn<QString>("path");
        const QDir folder(QStringLiteral(VANTOR_REAL_WAVS_DIR));
        const QStringList names = folder.entryList({u"*.wav"_s}, QDir::Files);
        QVERIFY(!names.isEmpty());
        for (const QString& name : names) {
            QTest::newRow(qPrintable(name)) << folder.filePath(name);
        }
    }
    void showsOrRefusesWhatOtherProgramsWrote()
    {
        QFETCH(const QString, path);
        WavFile file;
        const bool isReadable = file.Open(path) == WavFile::Success;
        PlayerWindow window;
        window.show();
        const bool isShown = OpenCompletely(window, path);
        QVERIFY2(isShown || !isReadable, qPrintable(window.FailureText()));
        QCOMPARE(window.FailureText().isEmpty(), isShown);
        WaveformOf(window)->SetWaveformColor(Qt::red);
        // A single sample makes no line.
        const bool hasLine = isReadable ? file.GetDuration() * file.GetFileFormat().sampleRate() > 1.5 : isShown;
        QCOMPARE(Shows(DiagramOf(window)->grab().toImage(), Qt::red), hasLine);
    }

    void opensADroppedFile()
    {
        PlayerWindow window;
        window.show();
        const WindowLog log(window);
        Drop(window, {QUrl::fromLocalFile(Recording)});
        QVERIFY(log.HasEnded() && log.HasCompleted());
        QCOMPARE(window.windowTitle(), u"welcome.wav"_s);
    }

    void opensACompressedFile()
    {
        QTemporaryDir folder;
        const QString compressed = folder.filePath(u"spoken words #1.mp3"_s);
        QCOMPARE(QProcess::execute(u"lame"_s, {u"--quiet"_s, Recording, compressed}), 0);
        PlayerWindow window;
        window.show();
        QVERIFY2(OpenCompletely(window, compressed), qPrintable(window.FailureText()));
        QCOMPARE(window.windowTitle(), u"spoken words #1.mp3"_s);
        QVERIFY(std::abs(window.Duration() - 17.06) < 0.2);
    }

    void goesByWhatIsInAFileNotByItsName_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isFlac");
        QTest::addRow("WAV in capitals") << u"take.WAV"_s << false;
        QTest::addRow("WAV without a suffix") << u"take"_s << false;
        QTest::addRow("FLAC called WAV") << u"take.wav"_s << true;
    }
    void goesByWhatIsInAFileNotByItsName()
    {
        QFETCH(const QString, name);
        QFETCH(const bool, isFlac);
        QTemporaryDir folder;
        const QString path = folder.filePath(name);
        if (isFlac) {
            QCOMPARE(QProcess::execute(u"sox"_s, {Recording, u"-t"_s, u"flac"_s, path}), 0);
        } else {
            QVERIFY(QFile::copy(Recording, path));
        }
        PlayerWindow window;
        QVERIFY2(OpenCompletely(window, path), qPrintable(window.FailureText()));
        QCOMPARE(window.windowTitle(), name);
        QVERIFY(window.Duration() > 17.0 && window.Duration() < 17.1);
        QCOMPARE(PlayerOf(window)->GetAudioFileFormat().sampleRate(), 22050);
    }

    void theFormerFileStaysWhileTheNextIsOpened()
    {
        QTemporaryDir folder;
        const QString next = folder.filePath(u"next.wav"_s);
        QVERIFY(QFile::copy(Recording, next));
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 2.0);
        const WindowLog log(window);
        window.OpenFile(next);
        QVERIFY(PlayerOf(window)->IsLoading());
        QCOMPARE(window.windowTitle(), u"welcome.wav"_s);
        QCOMPARE(WaveformOf(window)->GetSelectedSnippet(), std::make_pair(1.0, 2.0));
        QVERIFY(log.HasEnded() && log.isOpened);
        QCOMPARE(window.windowTitle(), u"next.wav"_s);
        QCOMPARE(WaveformOf(window)->GetSelectedSnippet(), std::make_pair(0.0, 0.0));
    }

    void theCancelButtonGivesUpOpening()
    {
        PlayerWindow window;
        window.show();
        QVERIFY(OpenCompletely(window, Recording));
        const double duration = window.Duration();
        auto* progress = window.findChild<TaskProgress*>();
        auto* cancel = progress->findChild<QPushButton*>();
        QTRY_VERIFY(progress->isHidden());
        const WindowLog log(window);
        window.OpenFile(QStringLiteral(VANTOR_PLAYER));
        QVERIFY(!cancel->isHidden());
        cancel->click();
        QVERIFY(log.isCancelled && !PlayerOf(window)->IsLoading());
        QVERIFY(cancel->isHidden() && progress->isHidden());
        QCOMPARE(window.FailureText(), QString());
        QCOMPARE(window.Duration(), duration);
    }

    void showsPercentAndACancelButtonWhileAFileIsOpened()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"stuck.wav"_s);
        QVERIFY(QFile::copy(Recording, path));
        const HeldFile held(path);
        if (!held.IsHeld()) {
            QSKIP("This file system lets every reader in.");
        }
        PlayerWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(OpenCompletely(window, Recording));
        const WindowLog log(window);
        window.OpenFile(path);
        auto* progress = window.findChild<TaskProgress*>();
        QTRY_VERIFY(progress->isVisible());
        QCOMPARE(progress->findChild<QProgressBar*>()->text(), u"Loading... 0 %"_s);
        QTest::mouseClick(progress->findChild<QPushButton*>(), Qt::LeftButton);
        QVERIFY(log.isCancelled && !progress->isVisible());
    }

    void theCancelButtonIsPressedByKeys_data()
    {
        QTest::addColumn<Qt::Key>("key");
        QTest::newRow("Space") << Qt::Key_Space;
        QTest::newRow("Return") << Qt::Key_Return;
        QTest::newRow("Escape") << Qt::Key_Escape;
    }
    void theCancelButtonIsPressedByKeys()
    {
        QFETCH(const Qt::Key, key);
        QTemporaryDir folder;
        const QString path = folder.filePath(u"stuck.wav"_s);
        QVERIFY(QFile::copy(Recording, path));
        const HeldFile held(path);
        if (!held.IsHeld()) {
            QSKIP("This file system lets every reader in.");
        }
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 2.0);
        const WindowLog log(window);
        window.OpenFile(path);
        const auto* progress = window.findChild<TaskProgress*>();
        const auto* cancel = progress->findChild<QPushButton*>();
        QTRY_VERIFY(cancel->isVisible());
        for (int i = 0; i < 100 && !cancel->hasFocus(); ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        }
        QVERIFY(cancel->hasFocus());
        QTest::keyClick(QApplication::focusWidget(), key);
        QVERIFY(log.isCancelled && !progress->isVisible());
        QVERIFY(!PlayerOf(window)->IsPlaying());
        QCOMPARE(PlayerOf(window)->GetSelectedSnippet(), std::make_pair(1.0, 2.0));
        QVERIFY(PlayerOf(window)->isAncestorOf(QApplication::focusWidget()));
    }

    void theProgressHasRoomInANarrowWindow()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"stuck.wav"_s);
        QVERIFY(QFile::copy(Recording, path));
        const HeldFile held(path);
        if (!held.IsHeld()) {
            QSKIP("This file system lets every reader in.");
        }
        PlayerWindow window;
        window.resize(480, 480);
        QVERIFY(Activate(window));
        QVERIFY(DiagramOf(window)->width() < 480);
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(10.0, 12.0);
        // Where the pointer is already a move is none.
        for (const int x : {101, 100}) {
            QTest::mouseMove(window.windowHandle(), DiagramOf(window)->mapTo(&window, QPoint(x, 20)));
        }
        auto* pointerLabel = window.findChild<PointerLabel*>();
        QTRY_VERIFY(!pointerLabel->text().isEmpty());
        window.OpenFile(path);
        auto* progress = window.findChild<TaskProgress*>();
        QTRY_VERIFY(progress->isVisible());
        const auto* bar = progress->findChild<QProgressBar*>();
        const auto* cancel = progress->findChild<QPushButton*>();
        QTRY_VERIFY(bar->geometry().right() < cancel->geometry().left());
        QVERIFY(bar->width() > bar->fontMetrics().horizontalAdvance(u"Loading... 100 %"_s));
        QVERIFY(progress->rect().contains(cancel->geometry()));
        QVERIFY(!pointerLabel->text().isEmpty() && pointerLabel->geometry().right() < progress->x());
        window.CancelTask();
    }

    void aFileThatCannotBeOpenedLeavesTheExportAlone()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"selection.wav"_s);
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 2.0);
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        window.ExportSelection(path);
        QVERIFY(Refuses(window, u"/nowhere/take.wav"_s));
        QVERIFY(!ended.isEmpty() || ended.wait(20000));
        QVERIFY(QFile::exists(path));
        QCOMPARE(window.FailureText(), u"There is no file “/nowhere/take.wav”."_s);
    }

    void theLoadButtonOpensInTheBackground()
    {
        const PlayerWindow window;
        QVERIFY(window.findChild<HostPlayer*>()->GetLoadInBackground());
    }

    void aSelectionIsExportedAsItWasWhenItWasAskedFor()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"selection.wav"_s);
        const QString next = folder.filePath(u"next.wav"_s);
        QVERIFY(QFile::copy(Recording, next));
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 16.0);
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        window.ExportSelection(path);
        window.SelectRange(0.0, 0.0);
        QVERIFY(Open(window, next));
        QVERIFY(!ended.isEmpty() || ended.wait(20000));
        WavFile written;
        QCOMPARE(written.Open(path), WavFile::Success);
        QCOMPARE(written.GetDuration(), 15.0);
        QVERIFY(ChildNamed<QMenu>(window, u"export"_s)->isEnabled());
    }

    void exportsWhatTheLibraryWrites_data()
    {
        using Export = std::function<void(PlayerWindow&, const QString&)>;
        using Direct = std::function<void(WavFile&, const QString&)>;
        QTest::addColumn<Export>("byHost");
        QTest::addColumn<Direct>("directly");
        QTest::addRow("selection") << Export([](PlayerWindow& window, const QString& path) {
            window.SelectRange(1.0, 2.5);
            window.ExportSelection(path);
        }) << Direct([](WavFile& file, const QString& path) {
            file.SetKeepBothChannels(true);
            file.SetSelectedChannel(WavFile::ChannelLeftRight);
            file.CreateSnippet(path, 1.0, 2.5);
        });
        QTest::addRow("left channel") << Export([](PlayerWindow& window, const QString& path) {
            window.ExportChannel(path, WavFile::ChannelLeft);
        }) << Direct([](WavFile& file, const QString& path) {
            file.SetSelectedChannel(WavFile::ChannelLeft);
            file.FilterChannel(path);
        });
        QAudioFormat format;
        format.setSampleFormat(QAudioFormat::Float);
        format.setSampleRate(16000);
        format.setChannelCount(1);
        QTest::addRow("converted") << Export([format](PlayerWindow& window, const QString& path) {
            window.ConvertFile(path, format);
        }) << Direct([format](WavFile& file, const QString& path) { file.Convert(format, path); });
    }
    void exportsWhatTheLibraryWrites()
    {
        using Export = std::function<void(PlayerWindow&, const QString&)>;
        using Direct = std::function<void(WavFile&, const QString&)>;
        QFETCH(const Export, byHost);
        QFETCH(const Direct, directly);
        QTemporaryDir folder;
        PlayerWindow window;
        window.show();
        QVERIFY(OpenCompletely(window, Recording));
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        byHost(window, folder.filePath(u"host.wav"_s));
        QVERIFY(!ended.isEmpty() || ended.wait(20000));
        QCOMPARE(window.FailureText(), QString());

        WavFile file;
        QCOMPARE(file.Open(Recording), WavFile::Success);
        directly(file, folder.filePath(u"direct.wav"_s));
        QFile host(folder.filePath(u"host.wav"_s));
        QFile direct(folder.filePath(u"direct.wav"_s));
        QVERIFY(host.open(QIODevice::ReadOnly) && direct.open(QIODevice::ReadOnly));
        QVERIFY(host.size() > 44);
        QCOMPARE(host.readAll(), direct.readAll());
    }

    void leavesAnExistingFileAlone()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"dear.wav"_s);
        QFile dear(path);
        QVERIFY(dear.open(QIODevice::WriteOnly) && dear.write("dear") == 4);
        dear.close();
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        window.ExportSelection(path);
        QCOMPARE(window.FailureText(), u"“%1” is there already: please choose another name."_s.arg(path));
        QVERIFY(dear.open(QIODevice::ReadOnly));
        QCOMPARE(dear.readAll(), "dear");
    }

    /** Its working copy goes with the file. */
    void anExportOutlivesTheFileItIsMadeFrom()
    {
        QTemporaryDir folder;
        const QString source = folder.filePath(u"long.wav"_s);
        const QString path = folder.filePath(u"left.wav"_s);
        QVERIFY(WriteSilence(source, 10));
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, source));
        const QString workingCopy = PlayerOf(window)->GetAudioFileName();
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        window.ExportChannel(path, WavFile::ChannelLeft);
        QVERIFY(Open(window, Recording));
        QTRY_VERIFY_WITH_TIMEOUT(!QFile::exists(workingCopy), 10000);
        QVERIFY(!ended.isEmpty() || ended.wait(20000));
        QCOMPARE(window.FailureText(), QString());
        QVERIFY(QFile::exists(path));
    }

    void tellsWhenAnExportCannotBeWritten()
    {
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        window.ExportChannel(u"/nowhere/left.wav"_s, WavFile::ChannelLeft);
        QVERIFY(!ended.isEmpty() || ended.wait(10000));
        QVERIFY2(window.FailureText().startsWith(u"“/nowhere/left.wav” cannot be written"_s),
                 qPrintable(window.FailureText()));
    }

    void removesWhatACancelledExportWrote()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"left.wav"_s);
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        window.ExportChannel(path, WavFile::ChannelLeft);
        window.CancelExport();
        QVERIFY(!ended.isEmpty() || ended.wait(10000));
        QVERIFY(!QFile::exists(path));
    }

    void removesWhatACancelledSelectionWrote()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"selection.wav"_s);
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 16.0);
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        window.ExportSelection(path);
        QVERIFY(!ChildNamed<QMenu>(window, u"export"_s)->isEnabled());
        window.CancelExport();
        QVERIFY(!ended.isEmpty() || ended.wait(20000));
        QVERIFY(ChildNamed<QMenu>(window, u"export"_s)->isEnabled());
        QVERIFY(!QFile::exists(path));
    }

    void anExportDoesNotWaitForTheWaveform()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"selection.wav"_s);
        PlayerWindow window;
        const BusyPool busy;
        QVERIFY(Open(window, Recording));
        QVERIFY(!window.IsPictureComplete());
        window.SelectRange(1.0, 2.0);
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        window.ExportSelection(path);
        QVERIFY(!ended.isEmpty() || ended.wait(20000));
        QVERIFY(!window.IsPictureComplete());
        QVERIFY(QFile::exists(path));
    }

    void playsAndPauses()
    {
        PlayerWindow window;
        window.show();
        QVERIFY(OpenCompletely(window, Recording));
        auto* play = ChildNamed<QPushButton>(window, u"btnPlayPause"_s);
        QVERIFY(play && play->isEnabled());
        QSignalSpy positions(&window, &PlayerWindow::PositionChanged);
        QTest::mouseClick(play, Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(!positions.isEmpty() && positions.last().first().toDouble() > 0.3, 15000);
        QVERIFY(play->isChecked());
        QVERIFY(WaveformOf(window)->GetAudioPosition() > 0.0);
        QTest::keyClick(PlayerOf(window), Qt::Key_Space);
        QTRY_VERIFY(!play->isChecked());
    }

    void theDeviceMenuFollowsWhatIsPluggedIn()
    {
        PlayerWindow window;
        auto* menu = window.findChild<DeviceMenu*>();
        QVERIFY(menu);
        const auto count = [menu] { return menu->actions().size(); };
        const qsizetype before = count();
        QProcess plug;
        plug.start(u"pactl"_s, {u"load-module"_s, u"module-null-sink"_s, u"sink_name=plugged"_s});
        QVERIFY(plug.waitForFinished());
        if (plug.exitCode() != 0) {
            QSKIP("no sound server to plug a device into");
        }
        QTRY_COMPARE(count(), before + 1);
        QStringList names;
        for (const QAction* action : menu->actions()) {
            names.append(action->text());
        }
        const QString module = QString::fromLatin1(plug.readAllStandardOutput()).trimmed();
        QCOMPARE(QProcess::execute(u"pactl"_s, {u"unload-module"_s, module}), 0);
        QTRY_COMPARE(count(), before);
        // These are all of one kind, and Qt describes them in the same words.
        QCOMPARE(names.removeDuplicates(), 0);
    }

    void theDeviceMenuShowsEveryLetterOfAName()
    {
        PlayerWindow window;
        QProcess plug;
        plug.start(u"pactl"_s, {u"load-module"_s, u"module-null-sink"_s, u"sink_name=rock"_s,
                                u"sink_properties=device.description=Rock&Roll"_s});
        QVERIFY(plug.waitForFinished());
        if (plug.exitCode() != 0) {
            QSKIP("no sound server to plug a device into");
        }
        const QString module = QString::fromLatin1(plug.readAllStandardOutput()).trimmed();
        const auto unplug = qScopeGuard([&] { QProcess::execute(u"pactl"_s, {u"unload-module"_s, module}); });
        const auto names = [&] {
            QStringList texts;
            for (const QAction* action : window.findChild<DeviceMenu*>()->actions()) {
                texts.append(action->text());
            }
            return texts;
        };
        QTRY_VERIFY2(names().contains(u"Rock&&Roll"_s), qPrintable(names().join(u'\n')));
    }

    void theAboutBoxNamesTheDrawingDeviceAndQt()
    {
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        window.grab();
        const QString device = BGFXWaveformWidget::GetDrawingDeviceName();
        QVERIFY(!device.isEmpty());
        for (QAction* action : window.findChildren<QAction*>()) {
            if (action->text().contains(u"About"_s)) {
                action->trigger();
            }
        }
        auto* box = window.findChild<QMessageBox*>();
        QVERIFY(box);
        QVERIFY2(box->informativeText().contains(device), qPrintable(box->informativeText()));
        QVERIFY(box->informativeText().contains(u"Qt %1."_s.arg(QLatin1StringView(qVersion()))));
        box->close();
    }

    void everyFileIsReadAgain()
    {
        QTemporaryDir folder;
        const QString path = folder.filePath(u"take.wav"_s);
        QVERIFY(QFile::copy(Recording, path));
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, path));
        const double duration = window.Duration();
        WavFile source;
        QCOMPARE(source.Open(Recording), WavFile::Success);
        QVERIFY(QFile::remove(path));
        QCOMPARE(source.CreateSnippet(path, 0.0, 2.0), WavFile::Success);
        QVERIFY(OpenCompletely(window, path));
        QVERIFY(window.Duration() < 2.1 && duration > 17.0);
    }

    void touchesNothingWithoutAPlaceForWorkingCopies()
    {
        QTemporaryDir folder;
        const QString own = folder.filePath(u"own.mp3"_s);
        QCOMPARE(QProcess::execute(u"lame"_s, {u"--quiet"_s, Recording, own}), 0);
        const qint64 size = QFileInfo(own).size();
        const QByteArray cache = qgetenv("XDG_CACHE_HOME");
        const QString current = QDir::currentPath();
        qputenv("XDG_CACHE_HOME", QFile::encodeName(own));
        QVERIFY(QDir::setCurrent(folder.path()));
        {
            PlayerWindow window;
            QVERIFY(Refuses(window, own));
            QCOMPARE(window.FailureText(), u"The audio of “%1” may not be written to that folder."_s.arg(own));
        }
        QVERIFY(QDir::setCurrent(current));
        qputenv("XDG_CACHE_HOME", cache);
        QCOMPARE(QFileInfo(own).size(), size);
        QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList(u"own.mp3"_s));
    }

    void leavesNothingInTheCache()
    {
        const QDir cache(QStandardPaths::writableLocation(QStandardPaths::CacheLocation));
        QString copy;
        {
            PlayerWindow window;
            QVERIFY(OpenCompletely(window, Recording));
            copy = PlayerOf(window)->GetAudioFileName();
            QVERIFY(QFile::exists(copy));
            QVERIFY(copy.startsWith(cache.path()));
        }
        QVERIFY(!QFile::exists(copy));
        QCOMPARE(cache.entryList({u"player-*"_s}, QDir::Dirs), QStringList());
    }

    void remembersWindowVolumeAndAppearance()
    {
        {
            PlayerWindow window;
            window.resize(913, 517);
            ChildNamed<QSlider>(window, u"hSliderVolume"_s)->setValue(41);
            window.show();
            QVERIFY(QTest::qWaitForWindowExposed(&window));
            window.close();
        }
        PlayerWindow again;
        QCOMPARE(again.size(), QSize(913, 517));
        QCOMPARE(ChildNamed<QSlider>(again, u"hSliderVolume"_s)->value(), 41);
    }

    void everythingIsReadable_data()
    {
        QTest::addColumn<int>("theme");
        QTest::newRow("light") << int(Appearance::Theme::Light);
        QTest::newRow("dark") << int(Appearance::Theme::Dark);
        QTest::newRow("high contrast") << int(Appearance::Theme::HighContrast);
    }

    void everythingIsReadable()
    {
        QFETCH(const int, theme);
        // First as at a start, then live: from the other theme to this one.
        for (const bool isLive : {false, true}) {
            Appearance appearance;
            if (!isLive) {
                appearance.theme = Appearance::Theme(theme);
                appearance.Save();
            }
            PlayerWindow window;
            window.show();
            QVERIFY(OpenCompletely(window, Recording));
            appearance.theme = Appearance::Theme(theme);
            appearance.ApplyTo(*PlayerOf(window));
            for (QWidget* control : PlayerOf(window)->findChildren<QWidget*>()) {
                const QRect inside = ContentOf(*control);
                if (control->isVisible() && control->isEnabled() && !inside.isEmpty()) {
                    // A new palette reaches the controls by events.
                    QTRY_VERIFY2(ContrastIn(control->grab(inside).toImage()) >= 4.5,
                                 qPrintable(control->objectName()));
                }
            }
            // The ruler above the diagram and the amplitudes beside it.
            const QRect diagram = DiagramOf(window)->geometry();
            for (const QRect& labels : {QRect(diagram.left(), 0, diagram.width(), diagram.top() - 8),
                                        QRect(0, diagram.top(), diagram.left() - 2, diagram.height())}) {
                QVERIFY(ContrastIn(WaveformOf(window)->grab(labels).toImage()) >= 4.5);
            }
            Appearance().ApplyTo(*PlayerOf(window));
            Appearance().Save();
        }
    }

    void everyKeyIsListedInHelp()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QStringList listed;
        const auto look = [&] {
            auto* dialog = QApplication::activeModalWidget();
            QVERIFY(dialog);
            QCOMPARE(dialog->objectName(), u"keys"_s);
            for (const QLabel* label : dialog->findChildren<QLabel*>()) {
                listed.append(label->text());
            }
            QTest::keyClick(dialog, Qt::Key_Escape);
        };
        QTimer::singleShot(0, &window, look);
        QTest::keyClick(&window, Qt::Key_F1);
        for (const QString& text : {u"Space"_s, u"Play or pause"_s, u"["_s, u"Zoom to the selection"_s}) {
            QVERIFY2(listed.contains(text), qPrintable(text));
        }
    }

    void everyActionWithAKeyIsListedInHelp()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QMap<QString, QString> listed;
        const auto look = [&] {
            auto* dialog = QApplication::activeModalWidget();
            QVERIFY(dialog);
            const auto* table = dialog->findChild<QFormLayout*>();
            for (int row = 0; row < table->rowCount(); ++row) {
                const auto textAt = [&](QFormLayout::ItemRole role) {
                    return qobject_cast<QLabel*>(table->itemAt(row, role)->widget())->text();
                };
                listed.insert(textAt(QFormLayout::LabelRole), textAt(QFormLayout::FieldRole));
            }
            QTest::keyClick(dialog, Qt::Key_Escape);
        };
        QTimer::singleShot(0, &window, look);
        QTest::keyClick(&window, Qt::Key_F1);
        int count = 0;
        for (const QAction* action : window.findChildren<QAction*>()) {
            const QString key = QKeySequence::listToString(action->shortcuts(), QKeySequence::NativeText);
            QVERIFY2(key.isEmpty() || listed.contains(key), qPrintable(action->text()));
            count += key.isEmpty() ? 0 : 1;
        }
        QCOMPARE(listed.size(), count);
        QVERIFY(count > 30);
        for (const auto& [key, text] :
             std::initializer_list<std::pair<QString, QString>>{{u"F"_s, u"Follow the position"_s},
                                                                {u"F1"_s, u"Keys"_s},
                                                                {u"Ctrl+O"_s, u"Open"_s},
                                                                {u"Ctrl+S"_s, u"Export: Selection"_s},
                                                                {u"Ctrl+Z"_s, u"Undo"_s},
                                                                {u"Del"_s, u"Remove from the list"_s},
                                                                {u"Ctrl+Q"_s, u"Quit"_s}}) {
            QCOMPARE(listed.value(key), text);
        }
    }

    void helpTellsOfTheMouse()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QStringList texts;
        Answers answers;
        answers.Add<ShortcutSheet>([&](ShortcutSheet& sheet) {
            for (const QLabel* label : sheet.findChildren<QLabel*>()) {
                texts.append(label->text());
            }
            QTest::keyClick(&sheet, Qt::Key_Escape);
        });
        QTest::keyClick(&window, Qt::Key_F1);
        QVERIFY(answers.AreGiven());
        const QStringList mouse = texts.filter(u"Mouse"_s);
        QCOMPARE(mouse.size(), 1);
        for (const QString& gesture : {u"drag"_s, u"Shift"_s, u"Ctrl and wheel"_s, u"double click"_s}) {
            QVERIFY2(mouse.first().contains(gesture), qPrintable(mouse.first()));
        }
    }

    void aRightClickOpensAMenuAndLeavesTheSelection()
    {
        PlayerWindow window;
        window.show();
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 2.0);
        QStringList offered;
        const auto look = [&] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            QVERIFY(menu);
            for (const QAction* action : menu->actions()) {
                offered.append(action->text());
            }
            menu->close();
        };
        QTimer::singleShot(0, &window, look);
        const QPoint middle = DiagramOf(window)->rect().center();
        QTest::mouseClick(DiagramOf(window), Qt::RightButton, {}, middle);
        QContextMenuEvent event(QContextMenuEvent::Mouse, middle, DiagramOf(window)->mapToGlobal(middle));
        QApplication::sendEvent(DiagramOf(window), &event);
        QVERIFY(offered.contains(u"Play or pause"_s));
        QVERIFY(offered.contains(u"&Export"_s));
        QCOMPARE(PlayerOf(window)->GetSelectedSnippet(), (std::pair<double, double>(1.0, 2.0)));
    }

    void aSelectionSurvivesZoomingIn()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 4.0);
        window.ShowRange(0.5, 1.5);
        QTest::keyClick(&window, Qt::Key_Right, Qt::ControlModifier);
        QCOMPARE(PlayerOf(window)->GetSelectedSnippet(), (std::pair<double, double>(1.01, 4.0)));
    }

    void theSettingsButtonOpensColoursAndScrollDirection()
    {
        PlayerWindow window;
        window.show();
        QVERIFY(OpenCompletely(window, Recording));
        QList<QRgb> backgrounds;
        const auto chooseDark = [&] {
            auto* dialog = qobject_cast<SettingsDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            for (const int theme : {1, 2}) {
                ChildNamed<QComboBox>(*dialog, u"theme"_s)->setCurrentIndex(theme);
                backgrounds.append(DiagramOf(window)->grab().toImage().pixel(3, 3));
            }
            ChildNamed<QCheckBox>(*dialog, u"scroll"_s)->setChecked(false);
            dialog->accept();
        };
        QTimer::singleShot(0, &window, chooseDark);
        QTest::mouseClick(ChildNamed<QPushButton>(window, u"btnSettings"_s), Qt::LeftButton);
        QCOMPARE(backgrounds, QList<QRgb>({0xfffafafa, 0xff1c1c1c}));
        const Appearance kept = Appearance::Load();
        QCOMPARE(kept.theme, Appearance::Theme::Dark);
        QCOMPARE(kept.scrollBackToZoomOut, false);
        Appearance().Save();
    }

    void cancellingTheSettingsTakesThemBack()
    {
        PlayerWindow window;
        const auto tryAndCancel = [] {
            auto* dialog = qobject_cast<SettingsDialog*>(QApplication::activeModalWidget());
            QVERIFY(dialog);
            ChildNamed<QComboBox>(*dialog, u"theme"_s)->setCurrentIndex(2);
            QTest::mouseClick(dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel),
                              Qt::LeftButton);
        };
        QTimer::singleShot(0, &window, tryAndCancel);
        QTest::mouseClick(ChildNamed<QPushButton>(window, u"btnSettings"_s), Qt::LeftButton);
        QCOMPARE(Appearance::Load().theme, Appearance::Theme::System);
    }

    void aClickInTheWaveformMovesThePosition()
    {
        PlayerWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(OpenCompletely(window, Recording));
        QSignalSpy positions(&window, &PlayerWindow::PositionChanged);
        QWidget* diagram = DiagramOf(window);
        const QPoint middle = diagram->rect().center();
        QTest::mouseClick(diagram, Qt::LeftButton, Qt::NoModifier, middle);
        QTRY_VERIFY_WITH_TIMEOUT(!positions.isEmpty(), 10000);
        const double expected = window.Duration() * (middle.x() + 0.5) / diagram->width();
        QVERIFY(std::abs(positions.last().first().toDouble() - expected) < 0.01);
    }

    void aDragSelectsAndAClickClears()
    {
        PlayerWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(OpenCompletely(window, Recording));
        QWidget* diagram = DiagramOf(window);
        const int y = diagram->height() / 2;
        QTest::mousePress(diagram, Qt::LeftButton, Qt::NoModifier, QPoint(100, y));
        QMouseEvent move(QEvent::MouseMove, QPointF(300, y), diagram->mapToGlobal(QPointF(300, y)), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(diagram, &move);
        QTest::mouseRelease(diagram, Qt::LeftButton, Qt::NoModifier, QPoint(300, y));
        const auto [start, end] = WaveformOf(window)->GetSelectedSnippet();
        const double second = window.Duration() / diagram->width();
        QVERIFY(std::abs(start - 100.5 * second) < 0.001);
        QVERIFY(std::abs(end - 300.5 * second) < 0.001);

        QTest::mouseClick(diagram, Qt::LeftButton, Qt::NoModifier, QPoint(400, y));
        QCOMPARE(WaveformOf(window)->GetSelectedSnippet(), std::make_pair(0.0, 0.0));
    }

    void closesWhileItStillReads()
    {
        for (int i = 0; i < 20; ++i) {
            PlayerWindow window;
            QVERIFY(Open(window, Recording));
        }
    }

    void closesWhileItStillLoads()
    {
        for (int i = 0; i < 20; ++i) {
            PlayerWindow window;
            const WindowLog log(window);
            window.OpenFile(Recording);
            window.close();
            QVERIFY(log.isCancelled && !log.isOpened);
        }
        const auto hasCopies = [] {
            const QString cache = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
            return QDirIterator(cache, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories).hasNext();
        };
        QTRY_VERIFY(!hasCopies());
    }

    void theProgramLeavesAScreenshot_data()
    {
        QTest::addColumn<QStringList>("options");
        QTest::addRow("at rest") << QStringList();
        QTest::addRow("playing") << QStringList{u"--play"_s};
    }
    void theProgramLeavesAScreenshot()
    {
        QFETCH(const QStringList, options);
        QTemporaryDir folder;
        const QString picture = folder.filePath(u"picture.png"_s);
        const Outcome outcome =
            RunPlayer(options + QStringList{u"--view"_s, u"1-6"_s, u"--selection"_s, u"2-3.5"_s, u"--screenshot"_s,
                                            picture, Recording});
        QVERIFY2(outcome.exitCode == 0, qPrintable(outcome.message));
        const QImage image(picture);
        QVERIFY(image.width() >= 600 && image.height() >= 300);
        QVERIFY(DistinctColors(image) > 20);
        QVERIFY2(Shows(image, m_waveformColor), "the waveform is missing");
    }

    void aPictureIsSavedWithoutTheSoundThatDoesNotCome()
    {
        const QTemporaryDir folder;
        const QString picture = folder.filePath(u"picture.png"_s);
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        const ScreenshotJob job(window, picture, true, std::chrono::milliseconds(1));
        QSignalSpy done(&job, &ScreenshotJob::Done);
        QTRY_COMPARE(done, QList<QVariantList>{{QString()}});
        QVERIFY(QFile::exists(picture));
    }

    void noPictureIsSavedOfHalfAWaveform()
    {
        const QTemporaryDir folder;
        const QString picture = folder.filePath(u"picture.png"_s);
        PlayerWindow window;
        const BusyPool busy;
        QVERIFY(Open(window, Recording));
        QVERIFY(!window.IsPictureComplete());
        const ScreenshotJob job(window, picture, false, std::chrono::milliseconds(1));
        QSignalSpy done(&job, &ScreenshotJob::Done);
        QTRY_COMPARE(done,
                     QList<QVariantList>{{u"No picture was saved: the waveform was not complete in time."_s}});
        QVERIFY(!QFile::exists(picture));
    }

    void theProgramSaysWhyItSavesNoPicture()
    {
        const Outcome outcome = RunPlayer({u"--screenshot"_s, u"/nowhere/picture.png"_s});
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY2(outcome.message.contains(u"“/nowhere/picture.png” cannot be written"_s),
                 qPrintable(outcome.message));
    }

    void theProgramNamesTheFileThatItCannotRead()
    {
        QTemporaryDir folder;
        const Outcome outcome =
            RunPlayer({u"--screenshot"_s, folder.filePath(u"picture.png"_s), u"/nowhere/take.wav"_s});
        QCOMPARE(outcome.exitCode, 1);
        QVERIFY2(outcome.message.contains(u"There is no file “/nowhere/take.wav”."_s),
                 qPrintable(outcome.message));
    }

    void theProgramListsSeveralFiles()
    {
        QTemporaryDir folder;
        const QString other = folder.filePath(u"other.wav"_s);
        QVERIFY(QFile::copy(Recording, other));
        const auto hasWaveformAtTheRight = [&](const QStringList& files) {
            const QString picture = folder.filePath(u"picture.png"_s);
            const Outcome outcome = RunPlayer(QStringList{u"--screenshot"_s, picture} + files);
            QImage image(picture);
            image = image.copy(image.width() - 150, 0, 150, image.height());
            return outcome.exitCode == 0 && Shows(image, m_waveformColor);
        };
        QVERIFY(hasWaveformAtTheRight({Recording}));
        QVERIFY(!hasWaveformAtTheRight({Recording, other}));
    }

    /** A tag that states a length of 1.2 GB, in a list that states even more. */
    void theProgramTakesNoGigabytesForABrokenFile()
    {
        QTemporaryDir folder;
        const QString broken = folder.filePath(u"tag.wav"_s);
        const QByteArray tag = "INAM" + WavTest::LittleEndian(quint32(1'200'000'000));
        QFile file(broken);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(WavTest::WavBytes{.beforeData = {{"LIST", "INFO" + tag, 1'300'000'000}}}.Build());
        file.close();
        const Outcome outcome = RunPlayer({u"--screenshot"_s, folder.filePath(u"picture.png"_s), broken});
        QCOMPARE(outcome.exitCode, 1);
        rusage children{};
        ::getrusage(RUSAGE_CHILDREN, &children);
        QVERIFY2(children.ru_maxrss < 1'000'000, qPrintable(QString::number(children.ru_maxrss)));
    }

    void theMinimalProgramOpensItsFile()
    {
        QProcess program;
        program.start(QStringLiteral(VANTOR_MINIMAL), {Recording});
        QVERIFY(program.waitForStarted());
        const auto copies = [] {
            QDirIterator it(QDir::tempPath(), {u"welcome.wav"_s}, QDir::Files | QDir::Hidden,
                            QDirIterator::Subdirectories);
            return it.hasNext();
        };
        QTRY_VERIFY_WITH_TIMEOUT(copies(), 20000);
        QCOMPARE(program.state(), QProcess::Running);
        program.terminate();
        QVERIFY(program.waitForFinished(10000));
        QCOMPARE(QString::fromUtf8(program.readAllStandardError()).contains(u"ERROR"_s), false);
    }

    void theProgramRefusesARangeThatIsNone()
    {
        const Outcome outcome = RunPlayer({u"--view"_s, u"6-1"_s, Recording});
        QCOMPARE(outcome.exitCode, 2);
        QVERIFY(outcome.message.contains(u"6-1"_s));
    }

private:
    /** Asked for before a test changes the theme. */
    const QColor m_waveformColor = WaveformColor();
};

int main(int argc, char* argv[])
{
    return RunApart<PlayerWindowTest>(argc, argv);
}

#include "tst_playerwindow.moc"
