#include "FileList.h"
#include "PlayerWindows.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <QtCore/QFile>
#include <QtCore/QMimeData>
#include <QtGui/QAction>
#include <QtGui/QDropEvent>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListWidget>

#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString Recording = QStringLiteral(VANTOR_RECORDING);

/** Of half a second. */
bool WriteTake(const QString& path)
{
    WavFile recording;
    return recording.Open(Recording) == WavFile::Success &&
           recording.CreateSnippet(path, 1.0, 1.5) == WavFile::Success;
}

/** Three short files, and a window that was given them. */
class Takes
{
public:
    Takes()
    {
        for (const QString& name : {u"a.wav"_s, u"b.wav"_s, u"c.wav"_s}) {
            paths.append(folder.filePath(name));
            QVERIFY(WriteTake(paths.constLast()));
        }
        QVERIFY(Activate(window));
    }

    bool OpenAll()
    {
        return WindowEnds([this] { window.OpenFiles(paths); });
    }

    /** What is done loads a file, or fails to do so. */
    bool WindowEnds(const std::function<void()>& act)
    {
        const WindowLog log(window);
        act();
        return log.HasEnded();
    }
    bool PressLoads(Qt::Key key)
    {
        return WindowEnds([&] { QTest::keyClick(&window, key, Qt::ControlModifier); });
    }

    QListWidget& List() { return *window.findChild<FileList*>()->findChild<QListWidget*>(); }
    bool HasList() { return window.findChild<FileList*>()->isVisible(); }
    QString Title() const { return window.windowTitle(); }

    /** Of the items that are marked. */
    QStringList Marked()
    {
        QStringList names;
        for (int row = 0; row < List().count(); ++row) {
            if (List().item(row)->font().bold()) {
                names.append(List().item(row)->text());
            }
        }
        return names;
    }

    QPoint PlaceOf(int row) { return List().visualItemRect(List().item(row)).center(); }

    const QTemporaryDir folder;
    QStringList paths;
    PlayerWindow window;
};

void Drop(QWidget& target, const QStringList& paths)
{
    QList<QUrl> urls{QUrl(u"https://example.org/remote.wav"_s)};
    for (const QString& path : paths) {
        urls.append(QUrl::fromLocalFile(path));
    }
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

} // namespace

/** Several files that are opened together. */
class HostFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QSettings().clear(); }

    void severalDroppedFilesBecomeAList()
    {
        Takes takes;
        QVERIFY(!takes.HasList());
        QVERIFY(takes.WindowEnds([&] { Drop(takes.window, takes.paths + takes.paths); }));
        QVERIFY(takes.HasList());
        QCOMPARE(takes.List().count(), 3);
        QCOMPARE(takes.Title(), u"a.wav"_s);
        QCOMPARE(takes.Marked(), QStringList(u"a.wav"_s));
        QCOMPARE(takes.List().item(1)->toolTip(), takes.paths[1]);
    }

    void filesThatAreChosenTogetherBecomeAList()
    {
        Takes takes;
        Answers answers;
        answers.Add<QFileDialog>([&](QFileDialog& dialog) {
            auto* name = ChildNamed<QLineEdit>(dialog, u"fileNameEdit"_s);
            QTest::keyClicks(name, u"\"%1\" \"%2\""_s.arg(takes.paths[1], takes.paths[2]));
            QTest::keyClick(name, Qt::Key_Return);
        });
        QVERIFY(takes.PressLoads(Qt::Key_O));
        QVERIFY(answers.AreGiven());
        QVERIFY(takes.HasList());
        QCOMPARE(takes.List().count(), 2);
        QCOMPARE(takes.Title(), u"b.wav"_s);
    }

    void goesOnBehindALinkToTheLoadedFile()
    {
        Takes takes;
        const QString link = takes.folder.filePath(u"link.wav"_s);
        QVERIFY(QFile::link(takes.paths[0], link));
        takes.paths.insert(1, link);
        QVERIFY(takes.OpenAll());
        QVERIFY(takes.PressLoads(Qt::Key_PageDown));
        QCOMPARE(takes.Marked(), QStringList(u"link.wav"_s));
        QVERIFY(takes.PressLoads(Qt::Key_PageDown));
        QCOMPARE(takes.Title(), u"b.wav"_s);
    }

    void theListHasItsOwnKeysWhileItHasTheFocus()
    {
        Takes takes;
        QVERIFY(Activate(takes.window));
        // The letter is also the key for following the position.
        const QString letter = takes.folder.filePath(u"f.wav"_s);
        QVERIFY(QFile::copy(takes.paths[0], letter));
        takes.paths.insert(1, letter);
        QVERIFY(takes.OpenAll());
        takes.List().setFocus();
        PlayerOf(takes.window)->UpdateAudioPosition(0.2);
        QTRY_COMPARE(PlayerOf(takes.window)->GetAudioPosition(), 0.2);
        QTest::keyClick(&takes.List(), Qt::Key_End);
        QCOMPARE(takes.List().currentRow(), 3);
        const auto* follow = ChildNamed<QAction>(takes.window, u"follow"_s);
        const bool follows = follow->isChecked();
        QTest::keyClick(&takes.List(), Qt::Key_F);
        QCOMPARE(takes.List().currentRow(), 1);
        QCOMPARE(follow->isChecked(), follows);
        QTest::keyClick(&takes.List(), Qt::Key_Home);
        QCOMPARE(takes.List().currentRow(), 0);
        QCOMPARE(PlayerOf(takes.window)->GetAudioPosition(), 0.2);
    }

    void oneFileMakesNoList()
    {
        Takes takes;
        QVERIFY(takes.WindowEnds([&] { Drop(takes.window, {takes.paths[1]}); }));
        QCOMPARE(takes.Title(), u"b.wav"_s);
        QVERIFY(!takes.HasList());
        const FileList* files = takes.window.findChild<FileList*>();
        QVERIFY(!files->toggleViewAction()->isEnabled() && !files->Next()->isEnabled() &&
                !files->Previous()->isEnabled());
    }

    void theSameFileTwiceMakesNoList()
    {
        Takes takes;
        QVERIFY(takes.WindowEnds([&] { takes.window.OpenFiles({takes.paths[1], takes.paths[1]}); }));
        QCOMPARE(takes.Title(), u"b.wav"_s);
        QVERIFY(!takes.HasList());
    }

    void enterAndADoubleClickLoadAFile()
    {
        Takes takes;
        QVERIFY(takes.OpenAll());
        QTest::mouseClick(takes.List().viewport(), Qt::LeftButton, {}, takes.PlaceOf(1));
        QVERIFY(takes.List().hasFocus());
        QVERIFY(!PlayerOf(takes.window)->IsLoading());
        QVERIFY(takes.WindowEnds([&] { QTest::keyClick(&takes.List(), Qt::Key_Return); }));
        QCOMPARE(takes.Title(), u"b.wav"_s);
        QCOMPARE(takes.Marked(), QStringList(u"b.wav"_s));
        // The arrows go on from there.
        QVERIFY(takes.List().hasFocus());
        QTest::keyClick(&takes.List(), Qt::Key_Down);
        QCOMPARE(takes.List().currentRow(), 2);

        QTest::mouseClick(takes.List().viewport(), Qt::LeftButton, {}, takes.PlaceOf(0));
        QVERIFY(takes.WindowEnds(
            [&] { QTest::mouseDClick(takes.List().viewport(), Qt::LeftButton, {}, takes.PlaceOf(0)); }));
        QCOMPARE(takes.Title(), u"a.wav"_s);
        QCOMPARE(takes.Marked(), QStringList(u"a.wav"_s));
    }

    void keysGoToTheNextAndThePreviousFile()
    {
        Takes takes;
        QVERIFY(takes.OpenAll());
        const FileList* files = takes.window.findChild<FileList*>();
        QVERIFY(!files->Previous()->isEnabled());
        QVERIFY(takes.PressLoads(Qt::Key_PageDown));
        QCOMPARE(takes.Title(), u"b.wav"_s);
        QVERIFY(takes.PressLoads(Qt::Key_PageDown));
        QCOMPARE(takes.Title(), u"c.wav"_s);
        QVERIFY(!files->Next()->isEnabled());
        QVERIFY(takes.PressLoads(Qt::Key_PageUp));
        QCOMPARE(takes.Title(), u"b.wav"_s);
        QCOMPARE(takes.Marked(), QStringList(u"b.wav"_s));
    }

    void anUnreadableFileIsToldOfAndCanBePassed()
    {
        Takes takes;
        QFile broken(takes.paths[1]);
        QVERIFY(broken.open(QIODevice::WriteOnly) && broken.write("this is no audio at all") > 0);
        broken.close();
        QVERIFY(takes.OpenAll());
        QVERIFY(takes.PressLoads(Qt::Key_PageDown));
        QVERIFY2(takes.window.FailureText().startsWith(u"“%1”"_s.arg(takes.paths[1])),
                 qPrintable(takes.window.FailureText()));
        QCOMPARE(QApplication::activeModalWidget(), nullptr);
        QCOMPARE(takes.Marked(), QStringList(u"a.wav"_s));
        QVERIFY(takes.PressLoads(Qt::Key_PageDown));
        QCOMPARE(takes.Title(), u"c.wav"_s);
        QCOMPARE(takes.window.FailureText(), QString());
    }

    void aFolderHasItsNameInTheList()
    {
        Takes takes;
        takes.window.OpenFiles({takes.paths[0], takes.folder.path() + u'/'});
        const auto& list = *takes.window.findChild<QListWidget*>();
        QCOMPARE(list.count(), 2);
        QCOMPARE(list.item(1)->text(), QFileInfo(takes.folder.path()).fileName());
    }

    void deleteTakesAFileOffTheList()
    {
        Takes takes;
        QVERIFY(takes.OpenAll());
        QTest::mouseClick(takes.List().viewport(), Qt::LeftButton, {}, takes.PlaceOf(0));
        QTest::keyClick(&takes.List(), Qt::Key_Delete);
        QCOMPARE(takes.List().count(), 2);
        QVERIFY(QFile::exists(takes.paths[0]));
        // It is still loaded, and what follows it comes next.
        QCOMPARE(takes.Title(), u"a.wav"_s);
        QVERIFY(takes.HasList());
        QVERIFY(takes.PressLoads(Qt::Key_PageDown));
        QCOMPARE(takes.Title(), u"b.wav"_s);
        takes.List().setFocus();
        QTest::keyClick(&takes.List(), Qt::Key_Delete);
        QVERIFY(!takes.HasList());
        QVERIFY(!takes.window.findChild<FileList*>()->Next()->isEnabled());
    }

    /** The key is the list's: elsewhere it removes nothing. */
    void deleteDoesNothingOutsideTheList()
    {
        Takes takes;
        QVERIFY(takes.OpenAll());
        PlayerOf(takes.window)->setFocus();
        QTest::keyClick(PlayerOf(takes.window), Qt::Key_Delete);
        QCOMPARE(takes.List().count(), 3);
    }

    void theEndOfAFileIsNotTheStartOfTheNext()
    {
        Takes takes;
        QVERIFY(takes.OpenAll());
        const HostPlayer* player = PlayerOf(takes.window);
        QTRY_VERIFY(!player->IsReadingSamples());
        const auto* audio = takes.window.findChild<AudioPlayer*>();
        // Whoever only looks now and then may miss half a second.
        const QSignalSpy states(audio, &QMediaPlayer::playbackStateChanged);
        takes.window.Play();
        QTRY_COMPARE_WITH_TIMEOUT(audio->playbackState(), QMediaPlayer::PausedState, 15000);
        QCOMPARE(states[0][0].value<QMediaPlayer::PlaybackState>(), QMediaPlayer::PlayingState);
        QVERIFY(!player->IsLoading());
        QCOMPARE(takes.Title(), u"a.wav"_s);
    }

    void otherFilesTakeThePlaceOfTheList()
    {
        Takes takes;
        QVERIFY(takes.OpenAll());
        QVERIFY(takes.WindowEnds([&] { Drop(takes.window, {takes.paths[2], takes.paths[0]}); }));
        QCOMPARE(takes.List().count(), 2);
        QCOMPARE(takes.Title(), u"c.wav"_s);
        QCOMPARE(takes.Marked(), QStringList(u"c.wav"_s));
        // A single one leaves it as it is.
        QVERIFY(takes.WindowEnds([&] { takes.window.OpenFile(takes.paths[1]); }));
        QCOMPARE(takes.List().count(), 2);
        QCOMPARE(takes.Marked(), QStringList());
    }
};

int main(int argc, char* argv[])
{
    return RunApart<HostFilesTest>(argc, argv);
}

#include "tst_hostfiles.moc"
