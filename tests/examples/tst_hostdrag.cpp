#include "DragHandle.h"
#include "LongFile.h"
#include "PlayerWindows.h"
#include "TaskProgress.h"
#include "tests/support/TemporaryFiles.h"

#include <QtCore/QFileInfo>
#include <QtCore/QMimeData>
#include <QtCore/QPointer>
#include <QtGui/QDrag>
#include <QtGui/QDragEnterEvent>
#include <QtTest/QSignalSpy>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QToolButton>

#include <functional>
#include <optional>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString Recording = QStringLiteral(VANTOR_RECORDING);

/** Looks at every drag that starts, and ends it: QDrag::exec() returns with its end. */
class Drags
{
public:
    explicit Drags(DragHandle& handle)
    {
        m_look.callOnTimeout([this, &handle] {
            auto* drag = handle.findChild<QDrag*>();
            if (!drag) {
                return;
            }
            // One that has ended is there for a moment.
            if (drag != std::exchange(m_seen, drag)) {
                paths.append(drag->mimeData()->urls().value(0).toLocalFile());
                contents.append(TemporaryFiles::Read(paths.constLast()));
                if (meanwhile) {
                    meanwhile(*drag->mimeData());
                }
            }
            QDrag::cancel();
        });
        m_look.start(std::chrono::milliseconds(5));
    }

    std::function<void(const QMimeData&)> meanwhile;
    QStringList paths;
    QList<QByteArray> contents;

private:
    QPointer<QDrag> m_seen;
    QTimer m_look;
};

class Setup
{
public:
    Setup()
    {
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, Recording));
        window.SelectRange(1.0, 2.5);
    }
    /** What is selected of a file of so many minutes takes a while to write, also because its samples get another
     * format. */
    explicit Setup(int minutes)
    {
        const QString path = folder.filePath(u"long.wav"_s);
        QVERIFY(WriteSilence(path, minutes, 24));
        QVERIFY(Activate(window));
        QVERIFY(OpenCompletely(window, path));
        window.SelectRange(0.0, window.Duration());
    }

    DragHandle& Handle() { return *window.findChild<DragHandle*>(); }

    void Press() { QTest::mousePress(&Handle(), Qt::LeftButton, {}, Handle().rect().center()); }
    void Release() { QTest::mouseRelease(&Handle(), Qt::LeftButton, {}, Handle().rect().center()); }
    void MoveBy(int pixels)
    {
        const QPointF place = Handle().rect().center() + QPoint(pixels, -pixels);
        QMouseEvent move(QEvent::MouseMove, place, Handle().mapToGlobal(place), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QApplication::sendEvent(&Handle(), &move);
    }
    /** Until the drag has ended. */
    void Drag()
    {
        Press();
        MoveBy(60);
        QTRY_VERIFY(!Handle().IsWriting());
    }

    /** What an export of the selection writes; empty when it fails. */
    QByteArray Exported()
    {
        const QString path = folder.filePath(u"exported.wav"_s);
        const QSignalSpy ended(&window, &PlayerWindow::ExportEnded);
        window.ExportSelection(path);
        static_cast<void>(QTest::qWaitFor([&] { return !ended.isEmpty(); }));
        return TemporaryFiles::Read(path);
    }

    const QTemporaryDir folder;
    PlayerWindow window;
};

} // namespace

/** The selection that is dragged out of the window. */
class HostDragTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QSettings().clear(); }

    void dragsAFileWithWhatAnExportWrites()
    {
        Setup setup;
        const QByteArray exported = setup.Exported();
        Drags drags(setup.Handle());
        setup.Drag();
        QTRY_COMPARE(drags.paths.size(), 1);
        QCOMPARE(QFileInfo(drags.paths[0]).fileName(), u"welcome selection.wav"_s);
        QVERIFY(!exported.isEmpty());
        QCOMPARE(drags.contents[0], exported);
        QCOMPARE(setup.window.FailureText(), QString());
        QVERIFY(!setup.Handle().isDown());
    }

    void startsNoDragBeforeTheFileIsWhole()
    {
        Setup setup;
        const QByteArray exported = setup.Exported();
        Drags drags(setup.Handle());
        setup.Press();
        setup.MoveBy(60);
        setup.MoveBy(80);
        QVERIFY(setup.Handle().IsWriting());
        QVERIFY(drags.paths.isEmpty());
        QTRY_COMPARE(drags.paths.size(), 1);
        QVERIFY(!exported.isEmpty());
        QCOMPARE(drags.contents[0], exported);
    }

    void aReleaseBeforeThatStartsNone()
    {
        Setup setup;
        const QByteArray exported = setup.Exported();
        Drags drags(setup.Handle());
        setup.Press();
        setup.MoveBy(60);
        QVERIFY(setup.Handle().IsWriting());
        setup.Release();
        QTRY_VERIFY(!setup.Handle().IsWriting());
        QVERIFY(!setup.Handle().findChild<QDrag*>());
        // The file is there now, so the next one starts at once.
        setup.Press();
        QVERIFY(!setup.Handle().IsWriting());
        setup.MoveBy(60);
        QCOMPARE(drags.paths.size(), 1);
        QVERIFY(!exported.isEmpty());
        QCOMPARE(drags.contents[0], exported);
    }

    void aClickStartsNone()
    {
        Setup setup;
        const Drags drags(setup.Handle());
        setup.Press();
        setup.MoveBy(1);
        QTRY_VERIFY(!setup.Handle().IsWriting());
        QCoreApplication::processEvents();
        setup.Release();
        QVERIFY(!setup.Handle().findChild<QDrag*>() && drags.paths.isEmpty());
    }

    void losingTheSelectionStartsNone()
    {
        Setup setup;
        const Drags drags(setup.Handle());
        QSignalSpy ended(&setup.Handle(), &DragHandle::Ended);
        setup.Press();
        setup.MoveBy(60);
        QVERIFY(setup.Handle().IsWriting());
        setup.window.SelectRange(0.0, 0.0);
        QVERIFY(!setup.Handle().isEnabled());
        QVERIFY(!setup.Handle().isDown());
        QTRY_COMPARE(ended.size(), 1);
        QVERIFY(!setup.Handle().IsWriting());
        QVERIFY(!setup.Handle().findChild<QDrag*>() && drags.paths.isEmpty());
    }

    void eachSelectionIsAFileOfItsOwn()
    {
        Setup setup;
        Drags drags(setup.Handle());
        setup.Drag();
        QTRY_COMPARE(drags.paths.size(), 1);
        setup.Drag();
        QTRY_COMPARE(drags.paths.size(), 2);
        QCOMPARE(drags.paths[1], drags.paths[0]);
        setup.window.SelectRange(3.0, 4.0);
        setup.Drag();
        QTRY_COMPARE(drags.paths.size(), 3);
        QVERIFY(drags.paths[2] != drags.paths[0]);
        QVERIFY(drags.contents[2].size() < drags.contents[0].size());
        // Who took the first one may still read it.
        QCOMPARE(TemporaryFiles::Read(drags.paths[0]), drags.contents[0]);
    }

    void anotherSelectionMeanwhileIsTheOneThatIsDragged()
    {
        Setup setup(5);
        Drags drags(setup.Handle());
        setup.Press();
        setup.Release();
        QVERIFY(setup.Handle().IsWriting());
        setup.window.SelectRange(3.0, 4.0);
        setup.Press();
        setup.MoveBy(60);
        QTRY_COMPARE(drags.paths.size(), 1);
        QVERIFY(!drags.contents[0].isEmpty());
        QCOMPARE(drags.contents[0], setup.Exported());
    }

    void theFilesGoWithTheWindow()
    {
        auto setup = std::make_unique<Setup>();
        QString path;
        {
            Drags drags(setup->Handle());
            setup->Drag();
            QTRY_COMPARE(drags.paths.size(), 1);
            path = drags.paths[0];
        }
        QVERIFY(QFile::exists(path));
        setup.reset();
        QVERIFY(!QFile::exists(path));
    }

    /** File systems take names of 255 bytes. No half of a letter beyond 16 bits is left over. */
    void aLongNameIsShortened()
    {
        const QString letter = u"\U0001F3B5"_s;
        Setup setup;
        const QString path = setup.folder.filePath(u'a' + letter.repeated(60) + u".wav"_s);
        QVERIFY(QFile::copy(Recording, path));
        QVERIFY(OpenCompletely(setup.window, path));
        setup.window.SelectRange(1.0, 2.5);
        Drags drags(setup.Handle());
        setup.Drag();
        QTRY_COMPARE(drags.paths.size(), 1);
        QCOMPARE(QFileInfo(drags.paths[0]).fileName(), u'a' + letter.repeated(49) + u" selection.wav"_s);
        QVERIFY(!drags.contents[0].isEmpty());
    }

    void theNextDragHidesAFormerFailure()
    {
        Setup setup;
        QSignalSpy ended(&setup.window, &PlayerWindow::ExportEnded);
        setup.window.ExportSelection(u"/proc/no file"_s);
        QVERIFY(!ended.isEmpty() || ended.wait());
        QVERIFY(!setup.window.FailureText().isEmpty());
        const Drags drags(setup.Handle());
        setup.Press();
        QCOMPARE(setup.window.FailureText(), QString());
        QTRY_VERIFY(!setup.Handle().IsWriting());
        setup.Release();
    }

    void needsASelection()
    {
        Setup setup;
        QVERIFY(setup.Handle().isEnabled());
        QTest::keyClick(&setup.window, Qt::Key_Escape);
        QTRY_VERIFY(!setup.Handle().isEnabled());
    }

    void theWindowDoesNotTakeItsOwnDrag()
    {
        Setup setup;
        Drags drags(setup.Handle());
        std::optional<bool> isTaken;
        drags.meanwhile = [&](const QMimeData& data) {
            QDragEnterEvent enter(QPoint(10, 10), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(&setup.window, &enter);
            isTaken = enter.isAccepted();
        };
        setup.Drag();
        QTRY_COMPARE(drags.paths.size(), 1);
        QCOMPARE(isTaken, std::optional(false));
    }

    void aLongSelectionShowsItsProgressAndCanBeCancelled()
    {
        Setup setup(90);
        Drags drags(setup.Handle());
        QSignalSpy ended(&setup.Handle(), &DragHandle::Ended);
        const auto* progress = setup.window.findChild<TaskProgress*>();
        setup.Press();
        setup.MoveBy(60);
        QTRY_VERIFY(progress->isVisible());
        QVERIFY(setup.Handle().IsWriting());
        QTest::mouseClick(progress->findChild<QPushButton*>(), Qt::LeftButton);
        QTRY_COMPARE(ended.size(), 1);
        QVERIFY(!progress->isVisible());
        QVERIFY(drags.paths.isEmpty());
        QCOMPARE(setup.window.FailureText(), QString());
    }
};

int main(int argc, char* argv[])
{
    return RunApart<HostDragTest>(argc, argv);
}

#include "tst_hostdrag.moc"
