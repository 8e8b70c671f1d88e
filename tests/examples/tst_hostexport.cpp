#include "LongFile.h"
#include "PlayerWindows.h"
#include "TaskProgress.h"
#include "tests/support/FileFaults.h"
#include "tests/support/FileSizeLimit.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>
#include <QtCore/QScopeGuard>
#include <QtCore/QSemaphore>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QProgressBar>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStatusBar>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString Recording = QStringLiteral(VANTOR_RECORDING);

QByteArray BytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool Write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

/** Of every kind, hidden ones too. */
QStringList NamesIn(const QTemporaryDir& folder)
{
    return QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

void TypeName(QFileDialog& dialog, const QString& path)
{
    auto* name = ChildNamed<QLineEdit>(dialog, u"fileNameEdit"_s);
    name->selectAll();
    QTest::keyClicks(name, path);
    QTest::keyClick(name, Qt::Key_Return);
}

/** The second format, another rate. As the keyboard goes there: by the underlined letters of the menus. */
void ChooseWholeFileAs(PlayerWindow& window)
{
    QTest::keyClick(&window, Qt::Key_F, Qt::AltModifier);
    for (const Qt::Key key : {Qt::Key_E, Qt::Key_W, Qt::Key_Down, Qt::Key_Return}) {
        QTest::keyClick(QApplication::activePopupWidget(), key);
    }
}

} // namespace

class HostExportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QSettings().clear(); }

    void asksBeforeItReplacesAFile_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<bool>("isAgreed");
        QTest::addRow("no, asked by the dialog") << u"dear.wav"_s << false;
        QTest::addRow("yes, asked by the dialog") << u"dear.wav"_s << true;
        QTest::addRow("no, for the suffix that is added") << u"dear"_s << false;
        QTest::addRow("no, for the suffix that is added to another one") << u"dear.mp3"_s << false;
        QTest::addRow("yes, for the suffix that is added to another one") << u"dear.mp3"_s << true;
    }
    void asksBeforeItReplacesAFile()
    {
        QFETCH(const QString, typed);
        QFETCH(const bool, isAgreed);
        const QTemporaryDir folder;
        const QString dear = folder.filePath(typed == u"dear.mp3"_s ? u"dear.mp3.wav"_s : u"dear.wav"_s);
        QVERIFY(Write(dear, "dear"));
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 2.0);
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        Answers answers;
        answers.Add<QFileDialog>([&](QFileDialog& dialog) { TypeName(dialog, folder.filePath(typed)); });
        answers.Add<QMessageBox>([&](QMessageBox& question) {
            QTest::mouseClick(question.button(isAgreed ? QMessageBox::Yes : QMessageBox::No), Qt::LeftButton);
        });
        QString proposed;
        if (!isAgreed) {
            answers.Add<QFileDialog>([&](QFileDialog& dialog) {
                proposed = ChildNamed<QLineEdit>(dialog, u"fileNameEdit"_s)->text();
                QTest::keyClick(&dialog, Qt::Key_Escape);
            });
        }
        QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(answers.AreGiven());
        if (isAgreed) {
            QTRY_COMPARE(ended.size(), 1);
        } else {
            QCOMPARE(QFileInfo(proposed).fileName(), typed);
        }
        QCOMPARE(NamesIn(folder), QStringList(QFileInfo(dear).fileName()));
        QCOMPARE(BytesOf(dear) != "dear", isAgreed);
        QCOMPARE(window.FailureText(), QString());
    }

    void asksOnceMoreBeforeItReplacesTheOpenFile()
    {
        const QTemporaryDir folder;
        const QString dear = folder.filePath(u"dear.wav"_s);
        QVERIFY(QFile::copy(Recording, dear));
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, dear));
        window.SelectRange(1.0, 2.0);
        Answers answers;
        answers.Add<QFileDialog>([&](QFileDialog& dialog) { TypeName(dialog, dear); });
        answers.Add<QMessageBox>(
            [](QMessageBox& question) { QTest::mouseClick(question.button(QMessageBox::Yes), Qt::LeftButton); });
        QString asked;
        answers.Add<QMessageBox>([&](QMessageBox& question) {
            asked = question.text();
            QTest::keyClick(&question, Qt::Key_Return);
        });
        answers.Add<QFileDialog>([](QFileDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
        QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(answers.AreGiven());
        QVERIFY2(asked.startsWith(u"“%1” is the file that is open."_s.arg(dear)), qPrintable(asked));
        QCOMPARE(NamesIn(folder), QStringList(u"dear.wav"_s));
        QCOMPARE(BytesOf(dear), BytesOf(Recording));
    }

    void aReplacementRefusedByTheReturnKeyCanGetAnotherName()
    {
        const QTemporaryDir folder;
        const QString dear = folder.filePath(u"dear.wav"_s);
        QVERIFY(Write(dear, "dear"));
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 2.0);
        const QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        Answers answers;
        answers.Add<QFileDialog>([&](QFileDialog& dialog) { TypeName(dialog, folder.filePath(u"dear"_s)); });
        answers.Add<QMessageBox>([](QMessageBox& question) { QTest::keyClick(&question, Qt::Key_Return); });
        answers.Add<QFileDialog>([](QFileDialog& dialog) {
            // The name is selected, as at first.
            QTest::keyClicks(QApplication::focusWidget(), u"other"_s);
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
        QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(answers.AreGiven());
        QTRY_COMPARE(ended.size(), 1);
        QCOMPARE(NamesIn(folder), QStringList({u"dear.wav"_s, u"other.wav"_s}));
        QCOMPARE(BytesOf(dear), "dear");
    }

    void addsTheSuffixThatIsMissing_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("written");
        QTest::addRow("none") << u"take"_s << u"take.wav"_s;
        QTest::addRow("a date") << u"take.2024"_s << u"take.2024.wav"_s;
        QTest::addRow("there already") << u"take.wav"_s << u"take.wav"_s;
        QTest::addRow("there already in capitals") << u"take.WAV"_s << u"take.WAV"_s;
    }
    void addsTheSuffixThatIsMissing()
    {
        QFETCH(const QString, typed);
        QFETCH(const QString, written);
        const QTemporaryDir folder;
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 2.0);
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        Answers answers;
        answers.Add<QFileDialog>([&](QFileDialog& dialog) { TypeName(dialog, folder.filePath(typed)); });
        QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
        QTRY_COMPARE(ended.size(), 1);
        QCOMPARE(NamesIn(folder), QStringList(written));
    }

    void replacesAFileByEveryKindOfExport_data()
    {
        using Export = std::function<void(PlayerWindow&, const QString&)>;
        QTest::addColumn<Export>("start");
        QTest::addRow("selection") << Export([](PlayerWindow& window, const QString& path) {
            window.SelectRange(1.0, 2.5);
            window.ExportSelection(path, PlayerWindow::Existing::Replace);
        });
        QTest::addRow("left channel") << Export([](PlayerWindow& window, const QString& path) {
            window.ExportChannel(path, WavFile::ChannelLeft, PlayerWindow::Existing::Replace);
        });
        QTest::addRow("converted") << Export([](PlayerWindow& window, const QString& path) {
            QAudioFormat format;
            format.setSampleFormat(QAudioFormat::Int16);
            format.setSampleRate(16000);
            format.setChannelCount(1);
            window.ConvertFile(path, format, PlayerWindow::Existing::Replace);
        });
    }
    void replacesAFileByEveryKindOfExport()
    {
        QFETCH(const std::function<void(PlayerWindow&, const QString&)>, start);
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"former.wav"_s);
        QVERIFY(Write(path, "former"));
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        start(window, path);
        QTRY_COMPARE(ended.size(), 1);
        QCOMPARE(window.FailureText(), QString());
        QCOMPARE(NamesIn(folder), QStringList(u"former.wav"_s));
        WavFile written;
        QCOMPARE(written.Open(path), WavFile::Success);
        const bool isSelection = QLatin1StringView(QTest::currentDataTag()) == "selection"_L1;
        QCOMPARE(written.GetFileFormat().channelCount(), isSelection ? 2 : 1);
    }

    void leavesAFileAloneThatTakesTheNameMeanwhile_data()
    {
        using Export = std::function<void(PlayerWindow&, const QString&)>;
        QTest::addColumn<Export>("start");
        const Export selection = [](PlayerWindow& window, const QString& path) {
            window.SelectRange(0.0, window.Duration());
            window.ExportSelection(path);
        };
        const Export channel = [](PlayerWindow& window, const QString& path) {
            window.ExportChannel(path, WavFile::ChannelLeft);
        };
        const Export conversion = [](PlayerWindow& window, const QString& path) {
            QAudioFormat format;
            format.setSampleFormat(QAudioFormat::Int16);
            format.setSampleRate(48000);
            format.setChannelCount(2);
            window.ConvertFile(path, format);
        };
        QTest::addRow("selection") << selection;
        QTest::addRow("left channel") << channel;
        QTest::addRow("converted") << conversion;
    }
    void leavesAFileAloneThatTakesTheNameMeanwhile()
    {
        QFETCH(const std::function<void(PlayerWindow&, const QString&)>, start);
        const QTemporaryDir folder;
        const QString source = folder.filePath(u"long.wav"_s);
        const QString path = folder.filePath(u"free.wav"_s);
        QVERIFY(WriteSilence(source, 1));
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, source));
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        // When all is written, and the file is to get its name.
        const FileFaults atTheEnd(
            FileFault{.calls = NameCall,
                      .part = folder.path(),
                      .effect = FileFault::HappensLater,
                      .error = 0,
                      .first = 1,
                      .meanwhile = [&] { QVERIFY(!QFile::exists(path) && Write(path, "another")); }});
        start(window, path);
        QTRY_COMPARE_WITH_TIMEOUT(ended.size(), 1, 30000);
        QCOMPARE(window.FailureText(), u"“%1” is there already: please choose another name."_s.arg(path));
        QCOMPARE(BytesOf(path), "another");
        QCOMPARE(NamesIn(folder), QStringList({u"free.wav"_s, u"long.wav"_s}));
        QVERIFY(ChildNamed<QMenu>(window, u"export"_s)->isEnabled());
    }

    void anAnswerOfTheDialogHoldsForWhatWasThereThen()
    {
        const QTemporaryDir folder;
        const QString source = folder.filePath(u"long.wav"_s);
        const QString path = folder.filePath(u"free.wav"_s);
        QVERIFY(WriteSilence(source, 5));
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, source));
        window.SelectRange(0.0, window.Duration());
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        Answers answers;
        answers.Add<QFileDialog>([&](QFileDialog& dialog) { TypeName(dialog, path); });
        QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(answers.AreGiven());
        QVERIFY(!QFile::exists(path) && Write(path, "another"));
        QTRY_COMPARE_WITH_TIMEOUT(ended.size(), 1, 30000);
        QCOMPARE(window.FailureText(), u"“%1” is there already: please choose another name."_s.arg(path));
        QCOMPARE(BytesOf(path), "another");
    }

    void exportsNothingOfAFileThatTookThePlaceOfTheOneAskedAbout()
    {
        const QTemporaryDir folder;
        const QString next = folder.filePath(u"next.wav"_s);
        QVERIFY(WriteSilence(next, 1));
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 2.0);
        const QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        Answers answers;
        answers.Add<QFileDialog>([&](QFileDialog& dialog) {
            QVERIFY(OpenCompletely(window, next));
            window.SelectRange(3.0, 4.0);
            TypeName(dialog, folder.filePath(u"selection.wav"_s));
        });
        QTest::keyClick(&window, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(answers.AreGiven());
        QCOMPARE(window.FailureText(), u"Nothing was exported: another file was loaded meanwhile."_s);
        QCOMPARE(ended.size(), 0);
        QCOMPARE(NamesIn(folder), QStringList(u"next.wav"_s));
    }

    void exportsNothingThatIsNotThere()
    {
        const QTemporaryDir folder;
        const QString mono = folder.filePath(u"mono.wav"_s);
        WavFile recording;
        QCOMPARE(recording.Open(Recording), WavFile::Success);
        QCOMPARE(recording.CreateSnippet(mono, 1.0, 2.0), WavFile::Success);
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, mono));
        window.ExportSelection(folder.filePath(u"selection.wav"_s));
        window.ExportChannel(folder.filePath(u"left.wav"_s), WavFile::ChannelLeft);
        // Neither of them was begun.
        QVERIFY(ChildNamed<QMenu>(window, u"export"_s)->isEnabled());
        QCOMPARE(NamesIn(folder), QStringList(u"mono.wav"_s));
    }

    void saysThatASelectionWasCancelled()
    {
        const QTemporaryDir folder;
        const QString source = folder.filePath(u"long.wav"_s);
        const QString path = folder.filePath(u"former.wav"_s);
        QVERIFY(WriteSilence(source, 40) && Write(path, "former"));
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, source));
        window.SelectRange(0.0, window.Duration());
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        window.ExportSelection(path, PlayerWindow::Existing::Replace);
        window.CancelExport();
        QTRY_COMPARE(ended.size(), 1);
        QCOMPARE(BytesOf(path), "former");
        QCOMPARE(window.statusBar()->currentMessage(), u"Cancelled."_s);
    }

    /** It comes a moment before the task ends, which a single try may miss. */
    void saysThatACancelledSelectionHasReplacedTheFile()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"former.wav"_s);
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 2.0);
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        for (int i = 1; i <= 30; ++i) {
            QVERIFY(Write(path, "former"));
            window.ExportSelection(path, PlayerWindow::Existing::Replace);
            QElapsedTimer watch;
            watch.start();
            // Without the event loop, to notice it before the window does.
            while (QFileInfo(path).size() == 6 && watch.elapsed() < 10000) {
            }
            window.CancelExport();
            QTRY_COMPARE(ended.size(), i);
            QVERIFY(BytesOf(path) != "former");
            QCOMPARE(window.statusBar()->currentMessage(), u"Saved “%1”."_s.arg(path));
        }
    }

    void aFailedExportLeavesNothingAndTheFormerFile_data() { replacesAFileByEveryKindOfExport_data(); }
    void aFailedExportLeavesNothingAndTheFormerFile()
    {
        QFETCH(const std::function<void(PlayerWindow&, const QString&)>, start);
        const QTemporaryDir folder;
        const QString former = folder.filePath(u"former.wav"_s);
        QVERIFY(Write(former, "former"));
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        for (const QString& path : {former, folder.filePath(u"new.wav"_s)}) {
            QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
            const FileSizeLimit fullDisk(1000);
            start(window, path);
            QTRY_COMPARE(ended.size(), 1);
            QVERIFY2(window.FailureText().startsWith(u"“%1” cannot be written"_s.arg(path)),
                     qPrintable(window.FailureText()));
            QCOMPARE(NamesIn(folder), QStringList(u"former.wav"_s));
            QCOMPARE(BytesOf(former), "former");
        }
    }

    void convertingAWholeFileShowsItsProgressAndCanBeCancelled()
    {
        const QTemporaryDir folder;
        const QString source = folder.filePath(u"long.wav"_s);
        const QString path = folder.filePath(u"former.wav"_s);
        QVERIFY(WriteSilence(source, 40) && Write(path, "former"));
        PlayerWindow window;
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, source));
        auto* progress = window.findChild<TaskProgress*>();
        QTRY_VERIFY(progress->isHidden());
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        Answers answers;
        answers.Add<QFileDialog>([&](QFileDialog& dialog) { TypeName(dialog, path); });
        answers.Add<QMessageBox>(
            [](QMessageBox& question) { QTest::mouseClick(question.button(QMessageBox::Yes), Qt::LeftButton); });
        ChooseWholeFileAs(window);
        QVERIFY(answers.AreGiven());
        const auto* bar = progress->findChild<QProgressBar*>();
        QTRY_VERIFY(progress->isVisible() && bar->value() > 0);
        QVERIFY2(bar->text().startsWith(u"Exporting "_s), qPrintable(bar->text()));
        QCOMPARE(ended.size(), 0);
        QTest::mouseClick(progress->findChild<QPushButton*>(), Qt::LeftButton);
        QTRY_COMPARE_WITH_TIMEOUT(ended.size(), 1, 1000);
        QVERIFY(!progress->isVisible());
        QCOMPARE(window.statusBar()->currentMessage(), u"Cancelled."_s);
        QCOMPARE(NamesIn(folder), QStringList({u"former.wav"_s, u"long.wav"_s}));
        QCOMPARE(BytesOf(path), "former");
        QVERIFY(ChildNamed<QMenu>(window, u"export"_s)->isEnabled());
    }

    void theProgressOfASelectionIsCountedByItself()
    {
        const QTemporaryDir folder;
        const QString source = folder.filePath(u"long.wav"_s);
        QVERIFY(WriteSilence(source, 1));
        QSemaphore mayEnd;
        const FileFaults holdWhenAllIsWritten(FileFault{.calls = NameCall,
                                                        .part = folder.path(),
                                                        .effect = FileFault::HappensLater,
                                                        .error = 0,
                                                        .first = 1,
                                                        .meanwhile = [&mayEnd] { mayEnd.acquire(); }});
        PlayerWindow window;
        const auto release = qScopeGuard([&mayEnd] { mayEnd.release(); });
        QVERIFY(OpenCompletely(window, source));
        window.SelectRange(30.0, 40.0);
        const QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        const auto* bar = window.findChild<TaskProgress*>()->findChild<QProgressBar*>();
        window.ExportSelection(folder.filePath(u"selection.wav"_s));
        QTRY_VERIFY(bar->isVisibleTo(&window));
        QTRY_COMPARE(bar->value(), 100);
        QCOMPARE(ended.size(), 0);
    }

    void anExportThatIsCancelledAtOnceLeavesItsNameFree()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"left.wav"_s);
        PlayerWindow window;
        QVERIFY(OpenCompletely(window, Recording));
        QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        window.ExportChannel(path, WavFile::ChannelLeft);
        window.CancelExport();
        QTRY_COMPARE(ended.size(), 1);
        QCOMPARE(NamesIn(folder), QStringList());
        window.ExportChannel(path, WavFile::ChannelLeft);
        QTRY_COMPARE(ended.size(), 2);
        QCOMPARE(NamesIn(folder), QStringList(u"left.wav"_s));
    }

    void theOpenDialogListsEveryFormatThatCanBeLoaded()
    {
        PlayerWindow window;
        QVERIFY(Activate(window));
        QStringList filters;
        Answers answers;
        answers.Add<QFileDialog>([&](QFileDialog& dialog) {
            filters = dialog.nameFilters();
            QTest::keyClick(&dialog, Qt::Key_Escape);
        });
        QTest::keyClick(&window, Qt::Key_O, Qt::ControlModifier);
        QVERIFY(answers.AreGiven());
        QCOMPARE(filters.join(u";;"_s), HostPlayer::GetLoadableFiles());
        QVERIFY(filters.constFirst().contains(u"*.flac"_s));
    }
};

int main(int argc, char* argv[])
{
    return RunApart<HostExportTest>(argc, argv);
}

#include "tst_hostexport.moc"
