#include "PlayerWindows.h"

#include <vantorAudioEngine/AudioPlayer.h>

#include <QtGui/QMouseEvent>
#include <QtTest/QTest>
#include <QtWidgets/QPushButton>

#include <cmath>
#include <functional>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

const QString Recording = QStringLiteral(VANTOR_RECORDING);

using Range = std::pair<double, double>;
using Work = std::function<void()>;

} // namespace

/** How the user finds the borders of a selection: by looking closely at one of them. */
class HostSelectionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        QSettings().clear();
        m_window = std::make_unique<PlayerWindow>();
        QVERIFY(Activate(*m_window));
        QVERIFY(OpenCompletely(*m_window, Recording));
        // Newer versions of Qt load in the background.
        QTRY_COMPARE(m_window->findChild<AudioPlayer*>()->mediaStatus(), QMediaPlayer::LoadedMedia);
        m_window->SelectRange(2.0, 14.0);
        Player().UpdateAudioPosition(3.0);
        QCOMPARE(Player().GetAudioPosition(), 3.0);
    }
    void cleanup() { m_window.reset(); }

    void refiningItDoesNotLeadTheViewAway_data()
    {
        QTest::addColumn<Range>("view");
        QTest::addColumn<Work>("work");
        QTest::addColumn<Range>("selection");
        const Range atEnd(13.0, 15.0);
        QTest::newRow("by the mouse at the end")
            << atEnd << Work([this] { Drag(14.0, 13.5); }) << Range(2.0, 13.5);
        QTest::newRow("by the mouse in the middle")
            << Range(7.0, 9.0) << Work([this] { Drag(8.0, 8.5); }) << Range(2.5, 14.5);
        QTest::newRow("by a key") << atEnd << Work([this] {
            QTest::keyClick(m_window.get(), Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
        }) << Range(2.0, 13.99);
        QTest::newRow("by a button") << atEnd << Work([this] {
            QTest::mouseClick(ChildNamed<QPushButton>(*m_window, u"btnDecSelectionEnd"_s), Qt::LeftButton);
        }) << Range(2.0, 13.99);
    }

    void refiningItDoesNotLeadTheViewAway()
    {
        QFETCH(const Range, view);
        QFETCH(const Work, work);
        QFETCH(const Range, selection);
        m_window->ShowRange(view.first, view.second);
        work();
        const auto [start, end] = Player().GetSelectedSnippet();
        QVERIFY(std::abs(start - selection.first) < 0.02);
        QVERIFY(std::abs(end - selection.second) < 0.02);
        QCOMPARE(Player().GetVisibleRange(), view);
    }

    void refiningItPlaysOn()
    {
        Player().Play();
        QTRY_VERIFY(Player().IsPlaying());
        QTRY_VERIFY(Player().GetAudioPosition() > 3.0);
        m_window->ShowRange(13.0, 15.0);
        Drag(14.0, 13.5);
        QVERIFY(Player().GetSelectedSnippet().second < 13.6);
        QVERIFY(Player().GetAudioPosition() > 2.9);
        QVERIFY(Player().IsPlaying());
    }

    void aDragReachesTheEndOfTheFileWhileItPlays()
    {
        Player().Play();
        QTRY_VERIFY(Player().IsPlaying());
        m_window->ShowRange(3.0, 6.0);
        QTest::mousePress(&Diagram(), Qt::LeftButton, Qt::NoModifier, OnDiagram(5.0));
        Move({Diagram().width() + 2000, 10});
        QTRY_COMPARE(Player().GetVisibleRange().second, m_window->Duration());
        QTRY_COMPARE(Player().GetSelectedSnippet().second, m_window->Duration());
        QVERIFY(Player().IsPlaying());
        QTest::mouseRelease(&Diagram(), Qt::LeftButton, Qt::NoModifier, {Diagram().width() + 2000, 10});
    }

private:
    HostPlayer& Player() { return *PlayerOf(*m_window); }
    QWidget& Diagram() { return *DiagramOf(*m_window); }

    /** Where the waveform shows this time. */
    QPoint OnDiagram(double time)
    {
        const auto [left, right] = Player().GetVisibleRange();
        return {int((time - left) / (right - left) * Diagram().width()), Diagram().height() / 2};
    }

    void Move(const QPoint& place, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        QMouseEvent move(QEvent::MouseMove, QPointF(place), Diagram().mapToGlobal(QPointF(place)), Qt::NoButton,
                         buttons, Qt::NoModifier);
        QApplication::sendEvent(&Diagram(), &move);
    }

    /** In small steps, between which the player tells of what they lead to. */
    void Drag(double from, double to)
    {
        const QPoint first = OnDiagram(from);
        const QPoint last = OnDiagram(to);
        Move(first, Qt::NoButton);
        QTest::mousePress(&Diagram(), Qt::LeftButton, Qt::NoModifier, first);
        constexpr int steps = 5;
        for (int i = 1; i <= steps; ++i) {
            Move(first + (last - first) * i / steps);
            QCoreApplication::processEvents();
        }
        QTest::mouseRelease(&Diagram(), Qt::LeftButton, Qt::NoModifier, last);
        QCoreApplication::processEvents();
    }

    std::unique_ptr<PlayerWindow> m_window;
};

int main(int argc, char* argv[])
{
    return RunApart<HostSelectionTest>(argc, argv);
}

#include "tst_hostselection.moc"
