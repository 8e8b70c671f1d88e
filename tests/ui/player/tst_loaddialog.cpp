#include "tests/support/SoundServer.h"
#include "tests/ui/player/LoadedPlayer.h"

#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QPushButton>

#include <functional>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

/** Calls the function with the next file dialog, as soon as that is open. */
void WithNextDialog(QObject* context, const std::function<void(QFileDialog&)>& function)
{
    QTimer::singleShot(0, context, [=] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        if (dialog != nullptr && dialog->isVisible()) {
            function(*dialog);
        } else {
            WithNextDialog(context, function);
        }
    });
}

/** Writes the names into the field for them, as a user does, and presses Return. */
void Choose(QFileDialog& dialog, const QString& folder, const QString& names)
{
    dialog.setDirectory(folder);
    auto* field = dialog.findChild<QLineEdit*>(u"fileNameEdit"_s);
    field->setText(names);
    QTest::keyClick(field, Qt::Key_Return);
}

} // namespace

/** The button that lets the user pick a file. */
class LoadDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void asksForAudioFiles();
    void loadsTheChosenFile();
    void loadsTheFirstOfSeveralFiles();
    void keepsTheFileWhenCancelled();
    void outlivesAPlayerThatIsDestroyed();
    void leavesTheChoiceToTheProgramThatWantsIt();
    void offersAllThatLoadsInTheBackground();
    void loadsTheChosenFileInTheBackground();

private:
    std::unique_ptr<LoadedPlayer> m_loaded;
};

void LoadDialogTest::init()
{
    m_loaded = std::make_unique<LoadedPlayer>(1);
    QVERIFY(m_loaded->Load());
}

void LoadDialogTest::cleanup()
{
    m_loaded.reset();
}

void LoadDialogTest::asksForAudioFiles()
{
    bool isSeen = false;
    WithNextDialog(this, [&](QFileDialog& dialog) {
        isSeen = true;
        dialog.reject();
        QCOMPARE(dialog.windowTitle(), u"Load audio file"_s);
        QCOMPARE(dialog.nameFilters(), QStringList(u"Audio files (*.wav *.mp3)"_s));
        QCOMPARE(dialog.fileMode(), QFileDialog::ExistingFiles);
        QCOMPARE(dialog.acceptMode(), QFileDialog::AcceptOpen);
        QCOMPARE(dialog.parentWidget(), &m_loaded->widget);
    });
    QTest::mouseClick(m_loaded->Controls().btnLoadFile, Qt::LeftButton);
    QVERIFY(isSeen);
}

void LoadDialogTest::loadsTheChosenFile()
{
    const QString path = m_loaded->WriteFile(u"chosen.wav"_s);
    const QSignalSpy told(&m_loaded->widget, &AudioPlayerWidget::AudioFileChanged);
    WithNextDialog(this, [&](QFileDialog& dialog) { Choose(dialog, QFileInfo(path).path(), u"chosen.wav"_s); });
    QTest::mouseClick(m_loaded->Controls().btnLoadFile, Qt::LeftButton);
    QCOMPARE(told.size(), 1);
    QCOMPARE(told[0][0].toString(), m_loaded->CopyPath(u"chosen.wav"_s));
    QCOMPARE(m_loaded->widget.GetOriginalAudioFilePath(), path);
}

void LoadDialogTest::loadsTheFirstOfSeveralFiles()
{
    m_loaded->WriteFile(u"a.wav"_s);
    const QString path = m_loaded->WriteFile(u"b.wav"_s);
    const QSignalSpy told(&m_loaded->widget, &AudioPlayerWidget::AudioFileChanged);
    WithNextDialog(this,
                   [&](QFileDialog& dialog) { Choose(dialog, QFileInfo(path).path(), u"\"b.wav\" \"a.wav\""_s); });
    QTest::mouseClick(m_loaded->Controls().btnLoadFile, Qt::LeftButton);
    QCOMPARE(told.size(), 1);
    QCOMPARE(m_loaded->widget.GetOriginalAudioFilePath(), path);
    QVERIFY(!QFile::exists(m_loaded->CopyPath(u"a.wav"_s)));
}

void LoadDialogTest::keepsTheFileWhenCancelled()
{
    const QSignalSpy told(&m_loaded->widget, &AudioPlayerWidget::AudioFileChanged);
    WithNextDialog(this, [](QFileDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    QTest::mouseClick(m_loaded->Controls().btnLoadFile, Qt::LeftButton);
    QCOMPARE(told.size(), 0);
    QCOMPARE(m_loaded->widget.GetAudioFileName(), m_loaded->CopyPath(u"silence.wav"_s));
}

void LoadDialogTest::outlivesAPlayerThatIsDestroyed()
{
    auto* player = new RecordingPlayerWidget;
    const QPointer<RecordingPlayerWidget> watched(player);
    WithNextDialog(this, [&](QFileDialog&) { delete player; });
    // Not by a click: the button would have to outlive its own signal.
    QMetaObject::invokeMethod(player, "OnBtnLoadFileClicked", Qt::DirectConnection);
    QVERIFY(!watched);
    QVERIFY(QApplication::activeModalWidget() == nullptr);
}

void LoadDialogTest::leavesTheChoiceToTheProgramThatWantsIt()
{
    m_loaded->widget.SetProgramChoosesFiles(true);
    const QSignalSpy requests(&m_loaded->widget, &AudioPlayerWidget::LoadRequested);
    m_loaded->Controls().btnLoadFile->click();
    QCOMPARE(requests.size(), 1);
    QVERIFY(!QApplication::activeModalWidget());
}

void LoadDialogTest::offersAllThatLoadsInTheBackground()
{
    QStringList filters;
    QVERIFY(!m_loaded->widget.GetLoadInBackground());
    m_loaded->widget.SetLoadInBackground(true);
    QVERIFY(m_loaded->widget.GetLoadInBackground());
    WithNextDialog(this, [&](QFileDialog& dialog) {
        filters = dialog.nameFilters();
        dialog.reject();
    });
    QTest::mouseClick(m_loaded->Controls().btnLoadFile, Qt::LeftButton);
    QCOMPARE(filters.size(), 2);
    QCOMPARE(filters.join(u";;"), AudioPlayerWidget::GetLoadableFiles());
    QVERIFY(filters[0].startsWith(u"Audio files (*.wav *.mp3 *.flac "));
    QCOMPARE(filters[1], u"All files (*)"_s);
}

void LoadDialogTest::loadsTheChosenFileInTheBackground()
{
    const QString path = m_loaded->WriteFile(u"chosen.WAV"_s);
    m_loaded->widget.SetLoadInBackground(true);
    const QSignalSpy finished(&m_loaded->widget, &AudioPlayerWidget::LoadFinished);
    WithNextDialog(this, [&](QFileDialog& dialog) { Choose(dialog, QFileInfo(path).path(), u"chosen.WAV"_s); });
    QTest::mouseClick(m_loaded->Controls().btnLoadFile, Qt::LeftButton);
    QVERIFY(m_loaded->widget.IsLoading());
    QTRY_COMPARE(finished.size(), 1);
    QCOMPARE(finished[0][0].toString(), path);
    QCOMPARE(m_loaded->widget.GetOriginalAudioFilePath(), path);
}

int main(int argc, char* argv[])
{
    const SoundServer server({QStringLiteral("one")});
    // The dialogs of desktops live in other processes, where a test cannot reach them.
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication application(argc, argv);
    LoadDialogTest test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_loaddialog.moc"
