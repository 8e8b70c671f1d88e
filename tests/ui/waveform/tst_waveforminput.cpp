#include "InputBench.h"
#include "PaintCounter.h"
#include "WaveformTestAccess.h"

#include <QtGui/QWheelEvent>
#include <QtTest/QtTest>

#include <functional>
#include <limits>

using namespace vantoraudio::vantorAudioEngine::UI;
using namespace vantoraudio::vantorAudioEngine::UI::testing;
using namespace Qt::Literals::StringLiterals;
using Access = WaveformTestAccess;
using Pair = std::pair<double, double>;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

struct Wheel
{
    QPoint angle;
    QPoint pixels;
    Qt::KeyboardModifiers modifiers = Qt::NoModifier;
    bool inverted = false;
    double x = 500.0;
};

/** Whether the event was accepted. */
bool Turn(QWidget& widget, const Wheel& wheel)
{
    const QPointF position(wheel.x, 50.0);
    QWheelEvent event(position, widget.mapToGlobal(position), wheel.pixels, wheel.angle, Qt::NoButton,
                      wheel.modifiers, Qt::NoScrollPhase, wheel.inverted);
    QApplication::sendEvent(&widget, &event);
    return event.isAccepted();
}

} // namespace

class TestWaveformInput : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /** QTest remembers a button that a test left pressed. */
    void cleanup()
    {
        QWidget other;
        Release(other, 1, 1);
    }

    void withoutAudioAllInputIsIgnoredButTheArrowComesBack_data()
    {
        QTest::addColumn<double>("duration");
        QTest::newRow("zero") << 0.0;
        QTest::newRow("negative") << -10.0;
        QTest::newRow("not a number") << notANumber;
    }

    void withoutAudioAllInputIsIgnoredButTheArrowComesBack()
    {
        QFETCH(const double, duration);
        Bench bench(duration);
        const QRectF sceneRect = bench.diagram.GetSceneRect();
        bench.diagram.setCursor(Qt::SizeHorCursor);
        Hover(bench.diagram, 50);
        Press(bench.diagram, 100);
        QCOMPARE(Access::PressPosition(bench.diagram), QPoint(0, 0));
        Move(bench.diagram, 200);
        SendMouse(bench.diagram, QEvent::MouseButtonDblClick, {200.0, 50.0}, Qt::LeftButton);
        QVERIFY(!Turn(bench.diagram, {.angle = {0, 120}, .pixels = {}}));
        QVERIFY(!Turn(bench.diagram, {.angle = {0, 120}, .pixels = {}, .modifiers = Qt::ControlModifier}));
        QCOMPARE(bench.diagram.cursor().shape(), Qt::SizeHorCursor);
        Access::GrabOf(bench.diagram).body = true;
        Release(bench.diagram, 300);
        QCOMPARE(bench.diagram.cursor().shape(), Qt::ArrowCursor);
        QCOMPARE(Access::GrabOf(bench.diagram), Grab{});
        QCOMPARE(bench.recorder.Take(), QStringList{});
        QVERIFY(bench.diagram.GetSceneRect() == sceneRect || std::isnan(duration));
        QCOMPARE(bench.diagram.GetAudioPosition(), 0.0);
    }

    void clickSetsThePositionAndClearsTheSelectionSilently()
    {
        Bench bench;
        bench.diagram.SetSelectedSnippet({10.0, 20.0});
        bench.recorder.Take();
        QTest::mouseClick(&bench.diagram, Qt::LeftButton, {}, {500, 50});
        QCOMPARE(bench.recorder.Take(), (QStringList{u"AudioPositionChanged(50.05)"_s, u"Update"_s}));
        QCOMPARE(bench.diagram.GetAudioPosition(), 50.05);
        QVERIFY(!Access::HasSelection(bench.diagram));
    }

    void clickKeepsThePairForASingleEnd()
    {
        Bench bench;
        bench.diagram.SetSelectedSnippet({10.0, 20.0});
        QTest::mouseClick(&bench.diagram, Qt::LeftButton, {}, {500, 50});
        bench.recorder.Take();
        bench.diagram.SetSelectionStartTime(15.0);
        QCOMPARE(bench.recorder.Take(), (QStringList{u"SelectionChanged(15, 20)"_s, u"Update"_s}));
    }

    void clickCountsPartsOfAPixel()
    {
        Bench bench;
        SendMouse(bench.diagram, QEvent::MouseButtonPress, {500.25, 50.0}, Qt::LeftButton);
        SendMouse(bench.diagram, QEvent::MouseButtonRelease, {500.25, 50.0}, Qt::NoButton);
        QCOMPARE(bench.recorder.Take(), (QStringList{u"AudioPositionChanged(50.075)"_s, u"Update"_s}));
    }

    void releaseAtThePressXButAnotherYCountsAsAClick()
    {
        Bench bench;
        Press(bench.diagram, 500, 20);
        Release(bench.diagram, 500, 80);
        QCOMPARE(bench.recorder.Take(), (QStringList{u"AudioPositionChanged(50.05)"_s, u"Update"_s}));
    }

    void withoutEditModeADragIsAClick()
    {
        Bench bench;
        bench.diagram.SetEditMode(false);
        Press(bench.diagram, 100);
        Move(bench.diagram, 200);
        QCOMPARE(bench.recorder.Take(), QStringList{});
        Release(bench.diagram, 300);
        QCOMPARE(bench.recorder.Take(), (QStringList{u"AudioPositionChanged(30.05)"_s, u"Update"_s}));
    }

    void dragSelects()
    {
        Bench bench;
        Press(bench.diagram, 100);
        QCOMPARE(bench.recorder.Take(), QStringList{});
        Move(bench.diagram, 300);
        QCOMPARE(bench.recorder.Take(),
                 (QStringList{u"SelectionChanged(10.05, 30.05)"_s, u"Update"_s, u"Update"_s}));
        Move(bench.diagram, 50);
        QCOMPARE(bench.recorder.Take(),
                 (QStringList{u"SelectionChanged(5.05, 10.05)"_s, u"Update"_s, u"Update"_s}));
        QCOMPARE(bench.diagram.GetAudioPosition(), 0.0);
        Release(bench.diagram, 50);
        QCOMPARE(bench.recorder.Take(), (QStringList{u"SelectionChanged(5.05, 10.05)"_s, u"Update"_s}));
        QCOMPARE(bench.diagram.GetAudioPosition(), 5.05);
    }

    void dragSelectsNothingWhileThePointerIsWhereItWasPressed()
    {
        Bench bench;
        Press(bench.diagram, 100, 50);
        Move(bench.diagram, 100, 50);
        QCOMPARE(bench.recorder.Take(), QStringList{u"Update"_s});
        QVERIFY(!Access::HasSelection(bench.diagram));
        Move(bench.diagram, 100, 51);
        QCOMPARE(bench.recorder.Take(),
                 (QStringList{u"SelectionChanged(10.05, 10.05)"_s, u"Update"_s, u"Update"_s}));
    }

    void dragWithAnotherButtonHovers()
    {
        Bench bench;
        bench.diagram.SetSelectedSnippet({10.0, 20.0});
        bench.recorder.Take();
        SendMouse(bench.diagram, QEvent::MouseMove, {100.0, 50.0}, Qt::LeftButton | Qt::RightButton);
        QCOMPARE(bench.recorder.Take(), QStringList{u"Update"_s});
        QVERIFY(Access::GrabOf(bench.diagram).startEdge);
    }

    void aReleaseAwayFromThePressWithoutASelectionReportsNone()
    {
        Bench bench;
        bench.diagram.SetSelectedSnippet({10.0, 20.0});
        bench.diagram.SetAudioPosition(30.0, true);
        bench.recorder.Take();
        Press(bench.diagram, 100);
        Release(bench.diagram, 400);
        QCOMPARE(bench.recorder.Take(), (QStringList{u"SelectionChanged(0, 0)"_s, u"Update"_s}));
        QCOMPARE(bench.diagram.GetAudioPosition(), 0.0);
    }

    void aSelectionDraggedPastNinetyMinutesIsCut()
    {
        Bench bench(10'000.0); // 10 seconds a pixel
        Press(bench.diagram, 100);
        Move(bench.diagram, 900);
        QCOMPARE(bench.recorder.Take().first(), u"SelectionChanged(1005, 6405)"_s);
    }

    void aSelectionDraggedBeyondTheEdgeStopsThere()
    {
        Bench bench;
        Press(bench.diagram, 600);
        Move(bench.diagram, 1500);
        QCOMPARE(bench.recorder.Take().first(), u"SelectionChanged(60.05, 100)"_s);
        Move(bench.diagram, -200);
        QCOMPARE(bench.recorder.Take().first(), u"SelectionChanged(0, 60.05)"_s);
    }

    void hoverWithoutASelectionLeavesTheCursor()
    {
        Bench bench;
        bench.diagram.setCursor(Qt::CrossCursor);
        Access::GrabOf(bench.diagram).body = true;
        Hover(bench.diagram, 100);
        QCOMPARE(bench.diagram.cursor().shape(), Qt::CrossCursor);
        QCOMPARE(Access::GrabOf(bench.diagram), Grab{});
        QCOMPARE(bench.recorder.Take(), QStringList{u"Update"_s});
    }

    void hoverShowsWhatWouldBeGrabbed_data()
    {
        QTest::addColumn<int>("x");
        QTest::addColumn<Qt::CursorShape>("cursor");
        QTest::newRow("five pixels left of the start") << 195 << Qt::SizeHorCursor;
        QTest::newRow("six pixels left of the start") << 194 << Qt::ArrowCursor;
        QTest::newRow("on the end") << 400 << Qt::SizeHorCursor;
        QTest::newRow("five pixels behind the end") << 405 << Qt::SizeHorCursor;
        QTest::newRow("six pixels behind the end") << 406 << Qt::ArrowCursor;
        QTest::newRow("in the middle") << 300 << Qt::SizeAllCursor;
        QTest::newRow("five pixels from the middle") << 295 << Qt::SizeAllCursor;
        QTest::newRow("six pixels from the middle") << 294 << Qt::ArrowCursor;
    }

    void hoverShowsWhatWouldBeGrabbed()
    {
        QFETCH(const int, x);
        Bench bench;
        bench.diagram.SetSelectedSnippet({20.0, 40.0});
        bench.recorder.Take();
        Hover(bench.diagram, x);
        QTEST(bench.diagram.cursor().shape(), "cursor");
        QCOMPARE(bench.recorder.Take(), QStringList{u"Update"_s});
    }

    void onlyAnEdgeRemembersTheSelectionAtGrab()
    {
        Bench bench;
        bench.SelectAndHover(20.0, 40.0, 300);
        QVERIFY(Access::GrabOf(bench.diagram).body);
        QCOMPARE(Access::SelectionAtGrab(bench.diagram), Pair(0.0, 0.0));
        Hover(bench.diagram, 400);
        QCOMPARE(Access::SelectionAtGrab(bench.diagram), Pair(20.0, 40.0));
    }

    void draggingTheStartEdgeKeepsTheGrabbedEnd()
    {
        Bench bench;
        bench.SelectAndHover(20.0, 40.0, 200);
        QCOMPARE(Access::SelectionAtGrab(bench.diagram), Pair(20.0, 40.0));
        Press(bench.diagram, 200);
        QCOMPARE(Access::PressPosition(bench.diagram), QPoint(0, 0)); // an edge is held, not a new place
        Move(bench.diagram, 100);
        QCOMPARE(bench.recorder.Take(), (QStringList{u"SelectionChanged(10.05, 40)"_s, u"Update"_s, u"Update"_s}));
        Move(bench.diagram, 600);
        QCOMPARE(bench.recorder.Take().first(), u"SelectionChanged(40, 60.05)"_s);
        Move(bench.diagram, 300);
        QCOMPARE(bench.recorder.Take().first(), u"SelectionChanged(30.05, 40)"_s);
        Release(bench.diagram, 300);
        QCOMPARE(bench.recorder.Take(), (QStringList{u"SelectionChanged(30.05, 40)"_s, u"Update"_s}));
        QCOMPARE(bench.diagram.GetAudioPosition(), 30.05);
        QCOMPARE(bench.diagram.cursor().shape(), Qt::ArrowCursor);
        QCOMPARE(Access::GrabOf(bench.diagram), Grab{});
    }

    void draggingTheEndEdgeKeepsTheGrabbedStart()
    {
        Bench bench;
        bench.SelectAndHover(20.0, 40.0, 400);
        Press(bench.diagram, 400);
        Move(bench.diagram, 500);
        QCOMPARE(bench.recorder.Take(), (QStringList{u"SelectionChanged(20, 50.05)"_s, u"Update"_s, u"Update"_s}));
        Move(bench.diagram, 100);
        QCOMPARE(bench.recorder.Take().first(), u"SelectionChanged(10.05, 20)"_s);
        Move(bench.diagram, 300);
        QCOMPARE(bench.recorder.Take().first(), u"SelectionChanged(20, 30.05)"_s);
    }

    void twoCloseEdgesAreBothGrabbedAndTheStartWins()
    {
        Bench bench;
        bench.SelectAndHover(29.8, 30.2, 300);
        QCOMPARE(Access::GrabOf(bench.diagram), (Grab{.startEdge = true, .endEdge = true, .body = false}));
        Press(bench.diagram, 300);
        Move(bench.diagram, 100);
        QCOMPARE(bench.recorder.Take().first(), u"SelectionChanged(10.05, 30.2)"_s);
    }

    void movingTheBodyKeepsTheLengthAndTakesThePositionAlong()
    {
        Bench bench;
        bench.SelectAndHover(20.0, 40.0, 300);
        Press(bench.diagram, 300);
        QCOMPARE(Access::PressPosition(bench.diagram), QPoint(0, 0)); // the body is held, not a new place
        Move(bench.diagram, 500);
        QCOMPARE(bench.recorder.Take(),
                 (QStringList{u"SelectionChanged(40.05, 60.05)"_s, u"Update"_s, u"Update"_s}));
        QCOMPARE(bench.diagram.GetAudioPosition(), 40.05);
    }

    void movingTheBodyIsNotLimited()
    {
        Bench bench;
        bench.SelectAndHover(20.0, 40.0, 300);
        Press(bench.diagram, 300);
        Move(bench.diagram, 10);
        QCOMPARE(bench.recorder.Take().first(), u"SelectionChanged(-8.95, 11.05)"_s);
        Move(bench.diagram, 990);
        QCOMPARE(bench.recorder.Take().first(), u"SelectionChanged(89.05, 109.05)"_s);
    }

    void doubleClickShowsEverythingAndAlwaysAsks()
    {
        Bench bench(600.0);
        bench.diagram.resize(100, 100);
        bench.diagram.SetSceneRange(200.0, 210.0);
        bench.diagram.UpdateAudioSampleBuffer(QList<float>(20'000, 0.5F));
        QCOMPARE(bench.diagram.GetBufferStart(), 195.0);
        bench.recorder.Take();
        SendMouse(bench.diagram, QEvent::MouseButtonDblClick, {50.0, 50.0}, Qt::LeftButton);
        QCOMPARE(bench.recorder.Take(),
                 (QStringList{u"GetSamples(0, 600, 6)"_s, u"SceneRectChanged(0, 600)"_s, u"Update"_s}));
        QCOMPARE(bench.diagram.GetBufferStart(), 0.0);
        QCOMPARE(Access::RequestedStart(bench.diagram), 0.0);
        SendMouse(bench.diagram, QEvent::MouseButtonDblClick, {50.0, 50.0}, Qt::LeftButton);
        QCOMPARE(bench.recorder.Take().first(), u"GetSamples(0, 600, 6)"_s);
    }

    void doubleClickAsksBeforeItShowsEverything()
    {
        Bench bench;
        bench.diagram.SetSceneRange(20.0, 30.0);
        QRectF shownWhenAsked;
        connect(&bench.diagram, &BGFXWaveformDiagramWidget::GetSamples, this,
                [&] { shownWhenAsked = bench.diagram.GetSceneRect(); });
        SendMouse(bench.diagram, QEvent::MouseButtonDblClick, {50.0, 50.0}, Qt::LeftButton);
        QCOMPARE(shownWhenAsked, QRectF(20.0, 0.0, 10.0, 1.0));
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(0.0, 0.0, 100.0, 1.0));
    }

    void doubleClickShowsAllAmplitudesOfALouderFile()
    {
        Bench bench;
        bench.diagram.UpdateAudioSampleBuffer({0.0F, 2.5F});
        SendMouse(bench.diagram, QEvent::MouseButtonDblClick, {50.0, 50.0}, Qt::LeftButton);
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(0.0, 0.0, 100.0, 2.0));
    }

    void doubleClickCountsTheDelayForTheStep()
    {
        Bench bench(200.0);
        bench.diagram.resize(100, 100);
        bench.diagram.SetDelay(200.0);
        bench.recorder.Take();
        SendMouse(bench.diagram, QEvent::MouseButtonDblClick, {50.0, 50.0}, Qt::LeftButton);
        // 400 seconds at 1000 Hz on 100 pixels: 400,000 / 100,000.
        QCOMPARE(bench.recorder.Take().first(), u"GetSamples(0, 400, 4)"_s);
    }

    void doubleClickAsksForTheDelayToo()
    {
        Bench bench;
        bench.diagram.SetDelay(20.0);
        bench.recorder.Take();
        QTest::mouseDClick(&bench.diagram, Qt::LeftButton, {}, {500, 50});
        QVERIFY(bench.recorder.Take().contains(u"GetSamples(0, 120, 1)"_s));
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(0.0, 0.0, 120.0, 1.0));
    }

    void wheelPansAThirtiethPerNotch()
    {
        Bench bench;
        bench.diagram.SetSceneRange(30.0, 60.0);
        bench.recorder.Take();
        QVERIFY(Turn(bench.diagram, {.angle = {0, 120}, .pixels = {}}));
        QCOMPARE(bench.recorder.Take(), (QStringList{u"SceneRectChanged(29, 59)"_s, u"GetSamples(14, 74, 1)"_s}));
        QVERIFY(Turn(bench.diagram, {.angle = {0, -120}, .pixels = {}}));
        QCOMPARE(bench.diagram.GetSceneRect().left(), 30.0);
    }

    void horizontalWheelsWin()
    {
        Bench bench;
        bench.diagram.SetSceneRange(30.0, 60.0);
        QVERIFY(Turn(bench.diagram, {.angle = {-240, 120}, .pixels = {}}));
        QCOMPARE(bench.diagram.GetSceneRect().left(), 32.0);
    }

    void pixelDeltasWinOverAngles()
    {
        Bench bench;
        bench.diagram.SetSceneRange(30.0, 60.0);
        QVERIFY(Turn(bench.diagram, {.angle = {0, 120}, .pixels = {0, -32}}));
        QCOMPARE(bench.diagram.GetSceneRect().left(), 32.0);
    }

    void horizontalPixelDeltasWinToo()
    {
        Bench bench;
        bench.diagram.SetSceneRange(30.0, 60.0);
        QVERIFY(Turn(bench.diagram, {.angle = {0, 120}, .pixels = {-32, 0}}));
        QCOMPARE(bench.diagram.GetSceneRect().left(), 32.0);
    }

    void panningReachesTheEndOfTheDelay()
    {
        Bench bench;
        bench.diagram.SetDelay(20.0);
        bench.diagram.SetSceneRange(70.0, 100.0);
        QVERIFY(Turn(bench.diagram, {.angle = {0, -360}, .pixels = {}}));
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(73.0, 0.0, 30.0, 1.0));
        QVERIFY(Turn(bench.diagram, {.angle = {0, -120 * 30}, .pixels = {}}));
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(90.0, 0.0, 30.0, 1.0));
    }

    void panningStopsAtBothEnds()
    {
        Bench bench;
        bench.diagram.SetSceneRange(1.0, 31.0);
        QVERIFY(Turn(bench.diagram, {.angle = {0, 240}, .pixels = {}}));
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(0.0, 0.0, 30.0, 1.0));
        bench.diagram.SetSceneRange(69.5, 99.5);
        QVERIFY(Turn(bench.diagram, {.angle = {0, -240}, .pixels = {}}));
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(70.0, 0.0, 30.0, 1.0));
    }

    void controlZoomsAroundThePointer_data()
    {
        QTest::addColumn<QPoint>("angle");
        QTest::addColumn<QPoint>("pixels");
        QTest::addColumn<bool>("inverted");
        QTest::addColumn<bool>("backZoomsOut");
        QTest::addColumn<bool>("zoomsIn");
        const QPoint none;
        QTest::newRow("forward") << QPoint(0, 120) << none << false << true << true;
        QTest::newRow("back") << QPoint(0, -120) << none << false << true << false;
        QTest::newRow("inverted forward") << QPoint(0, 120) << none << true << true << false;
        QTest::newRow("inverted back") << QPoint(0, -120) << none << true << true << true;
        QTest::newRow("other convention, forward") << QPoint(0, 120) << none << false << false << false;
        QTest::newRow("other convention, inverted") << QPoint(0, 120) << none << true << false << true;
        QTest::newRow("pixels") << QPoint(0, -120) << QPoint(0, 16) << false << true << true;
    }

    void controlZoomsAroundThePointer()
    {
        QFETCH(const QPoint, angle);
        QFETCH(const QPoint, pixels);
        QFETCH(const bool, inverted);
        QFETCH(const bool, backZoomsOut);
        QFETCH(const bool, zoomsIn);
        Bench bench;
        bench.diagram.SetScrollBackToZoomOut(backZoomsOut);
        bench.diagram.SetSceneRange(30.0, 60.0);
        bench.recorder.Take();
        // The pointer's time is 30 + 30 x 250 / 1000 = 37.5.
        const bool isAccepted = Turn(bench.diagram, {.angle = angle,
                                                     .pixels = pixels,
                                                     .modifiers = Qt::ControlModifier,
                                                     .inverted = inverted,
                                                     .x = 249.5});
        QVERIFY(isAccepted);
        const QStringList lines = bench.recorder.Take();
        QCOMPARE(lines.size(), 3);
        const double factor = static_cast<double>(zoomsIn ? 14.0F / 15.0F : 16.0F / 15.0F);
        QCOMPARE(bench.diagram.GetSceneRect().left(), 37.5 - 7.5 * factor);
        QCOMPARE(bench.diagram.GetSceneRect().right(), 37.5 + 22.5 * factor);
        QVERIFY(lines[0].startsWith(u"SceneRectChanged("));
        QCOMPARE(lines[1], u"Update"_s);
        QVERIFY(lines[2].startsWith(u"GetSamples("));
    }

    void controlWithOtherModifiersZoomsToo()
    {
        Bench bench;
        bench.diagram.SetSceneRange(30.0, 60.0);
        const auto modifiers = Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier;
        QVERIFY(Turn(bench.diagram, {.angle = {0, 120}, .pixels = {}, .modifiers = modifiers}));
        QCOMPARE(bench.diagram.GetSceneRect().width(), static_cast<double>(14.0F / 15.0F) * 30.0);
    }

    void zoomingOutStopsAtTheWholeAudio()
    {
        Bench bench;
        bench.diagram.SetDelay(10.0);
        for (int i = 0; i < 5; ++i) {
            QVERIFY(Turn(bench.diagram, {.angle = {0, -120}, .pixels = {}, .modifiers = Qt::ControlModifier}));
        }
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(0.0, 0.0, 110.0, 1.0));
    }

    void zoomingInStopsAtATenthOfASecond()
    {
        Bench bench;
        bench.diagram.SetSceneRange(50.0, 50.0 + 0.0999 * 15.0 / 14.0);
        bench.recorder.Take();
        QVERIFY(Turn(bench.diagram, {.angle = {0, 120}, .pixels = {}, .modifiers = Qt::ControlModifier}));
        QCOMPARE(bench.recorder.Take(), QStringList{}); // refused, yet accepted
        bench.diagram.SetSceneRange(50.0, 50.0 + 0.11 * 15.0 / 14.0);
        bench.recorder.Take();
        QVERIFY(Turn(bench.diagram, {.angle = {0, 120}, .pixels = {}, .modifiers = Qt::ControlModifier}));
        QVERIFY(bench.recorder.Take().size() >= 2);
        QVERIFY(qAbs(bench.diagram.GetSceneRect().width() - 0.11) < 1e-6);
    }

    void zoomingInEndsNearATenthOfASecond()
    {
        Bench bench;
        for (int i = 0; i < 500; ++i) {
            Turn(bench.diagram, {.angle = {0, 120}, .pixels = {}, .modifiers = Qt::ControlModifier});
        }
        const double width = bench.diagram.GetSceneRect().width();
        QVERIFY2(width > 0.1 && width < 0.11, qPrintable(QString::number(width)));
    }

    void aNotchZoomsAsMuchAsItIsTold()
    {
        Bench bench;
        bench.diagram.SetWheelZoomFactor(2.0);
        bench.diagram.SetSceneRange(30.0, 60.0);
        bench.recorder.Take();
        QVERIFY(
            Turn(bench.diagram, {.angle = {0, 120}, .pixels = {}, .modifiers = Qt::ControlModifier, .x = 249.5}));
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(33.75, 0.0, 15.0, 1.0));
        QCOMPARE(bench.recorder.Take().size(), 3);
        QVERIFY(
            Turn(bench.diagram, {.angle = {0, -120}, .pixels = {}, .modifiers = Qt::ControlModifier, .x = 249.5}));
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(30.0, 0.0, 30.0, 1.0));
    }

    void wheelFactorsThatMakeNoSenseAreIgnored_data()
    {
        QTest::addColumn<double>("factor");
        QTest::newRow("none") << 1.0;
        QTest::newRow("inwards") << 0.5;
        QTest::newRow("zero") << 0.0;
        QTest::newRow("negative") << -2.0;
        QTest::newRow("too much") << 10.001;
        QTest::newRow("infinite") << infinity;
        QTest::newRow("not a number") << notANumber;
    }

    void wheelFactorsThatMakeNoSenseAreIgnored()
    {
        QFETCH(const double, factor);
        const Wheel forward{.angle = {0, 120}, .pixels = {}, .modifiers = Qt::ControlModifier};
        Bench usual;
        usual.diagram.SetSceneRange(30.0, 60.0);
        usual.diagram.SetWheelZoomFactor(factor);
        QVERIFY(Turn(usual.diagram, forward));
        QCOMPARE(usual.diagram.GetSceneRect().width(), static_cast<double>(14.0F / 15.0F) * 30.0);
        Bench chosen;
        chosen.diagram.SetSceneRange(30.0, 60.0);
        chosen.diagram.SetWheelZoomFactor(2.0);
        chosen.diagram.SetWheelZoomFactor(factor);
        QVERIFY(Turn(chosen.diagram, forward));
        QCOMPARE(chosen.diagram.GetSceneRect().width(), 15.0);
    }

    void otherModifiersLeaveTheWheelToTheParent_data()
    {
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::newRow("shift") << Qt::KeyboardModifiers(Qt::ShiftModifier);
        QTest::newRow("alt") << Qt::KeyboardModifiers(Qt::AltModifier);
        QTest::newRow("meta and shift") << (Qt::MetaModifier | Qt::ShiftModifier);
    }

    void otherModifiersLeaveTheWheelToTheParent()
    {
        QFETCH(const Qt::KeyboardModifiers, modifiers);
        Bench bench;
        QVERIFY(!Turn(bench.diagram, {.angle = {0, 120}, .pixels = {}, .modifiers = modifiers}));
        QCOMPARE(bench.recorder.Take(), QStringList{});
    }

    void inputThatChangesThePictureRepaints_data()
    {
        QTest::addColumn<std::function<void(QWidget&)>>("input");
        const auto add = [](const char* name, std::function<void(QWidget&)> input) {
            QTest::newRow(name) << std::move(input);
        };
        const auto dragTo = [](QWidget& widget, double x) {
            SendMouse(widget, QEvent::MouseMove, QPointF(x, 50.0), Qt::LeftButton);
        };
        add("pan", [](QWidget& widget) { Turn(widget, Wheel{.angle = {0, -120}, .pixels = {}}); });
        add("zoom", [](QWidget& widget) {
            Turn(widget, Wheel{.angle = {0, 120}, .pixels = {}, .modifiers = Qt::ControlModifier});
        });
        add("hover", [](QWidget& widget) { Hover(widget, 300); });
        add("drag", [=](QWidget& widget) { dragTo(widget, 300.0); });
        add("click", [](QWidget& widget) {
            SendMouse(widget, QEvent::MouseButtonRelease, QPointF(0.0, 50.0), Qt::NoButton);
        });
        add("release behind a drag", [](QWidget& widget) {
            SendMouse(widget, QEvent::MouseButtonRelease, QPointF(300.0, 50.0), Qt::NoButton);
        });
        add("double click", [](QWidget& widget) {
            SendMouse(widget, QEvent::MouseButtonDblClick, QPointF(300.0, 50.0), Qt::LeftButton);
        });
    }

    void inputThatChangesThePictureRepaints()
    {
        QFETCH(const std::function<void(QWidget&)>, input);
        Bench bench;
        bench.diagram.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bench.diagram));
        bench.diagram.SetSceneRange(20.0, 60.0);
        QCoreApplication::processEvents();
        PaintCounter counter(bench.diagram);
        input(bench.diagram);
        QTRY_COMPARE(counter.m_paints, 1);
    }

    void anOwnerMayResetFromWithinADrag()
    {
        Bench bench;
        connect(&bench.diagram, &BGFXWaveformDiagramWidget::SelectionChanged, this, [&] {
            if (Access::Duration(bench.diagram) > 0.0) {
                bench.diagram.Reset();
            }
        });
        Press(bench.diagram, 100);
        Move(bench.diagram, 300);
        QVERIFY(!Access::HasSelection(bench.diagram));
        Move(bench.diagram, 400);
        Release(bench.diagram, 500);
        QVERIFY(!Access::HasSelection(bench.diagram));
        QCOMPARE(bench.diagram.GetAudioPosition(), 0.0);
    }

    void anOwnerMayResetWhenAskedForSamples()
    {
        Bench bench;
        connect(&bench.diagram, &BGFXWaveformDiagramWidget::GetSamples, this, [&] { bench.diagram.Reset(); });
        SendMouse(bench.diagram, QEvent::MouseButtonDblClick, {50.0, 50.0}, Qt::LeftButton);
        QCOMPARE(bench.diagram.GetTotalLength(), 0.0);
        bench.diagram.grab();
    }

    void survivesAnyFile_data()
    {
        QTest::addColumn<double>("duration");
        QTest::addColumn<double>("delay");
        QTest::addColumn<int>("rate");
        QTest::addColumn<QSize>("size");
        const QSize usual(300, 100);
        QTest::newRow("zero length") << 0.0 << 0.0 << 48000 << usual;
        QTest::newRow("no rate") << 100.0 << 5.0 << 0 << usual;
        QTest::newRow("negative rate") << 400.0 << 5.0 << -1 << usual;
        QTest::newRow("negative") << -100.0 << 0.0 << 48000 << usual;
        QTest::newRow("not a number") << notANumber << 0.0 << 48000 << usual;
        QTest::newRow("infinite") << infinity << 0.0 << 48000 << usual;
        QTest::newRow("infinite delay") << 10.0 << infinity << 48 << usual;
        QTest::newRow("delay not a number") << 10.0 << notANumber << 48 << usual;
        QTest::newRow("delay takes all back") << 10.0 << -10.0 << 48 << usual;
        QTest::newRow("two billion seconds") << 2e9 << 0.0 << 48000 << usual;
        QTest::newRow("shorter than any scale") << 1e-300 << 0.0 << 48000 << usual;
        QTest::newRow("no width") << 400.0 << 0.0 << 48000 << QSize(0, 100);
        QTest::newRow("no height") << 400.0 << 0.0 << 48000 << QSize(300, 0);
    }

    void survivesAnyFile()
    {
        QFETCH(const double, duration);
        QFETCH(const double, delay);
        QFETCH(const int, rate);
        QFETCH(const QSize, size);
        BGFXWaveformWidget widget;
        auto& diagram = Access::DiagramOf(widget);
        widget.resize(400, 150);
        QAudioFormat format;
        format.setSampleRate(rate);
        widget.Initilize(format, duration);
        diagram.setMinimumSize(0, 0);
        diagram.resize(size);
        widget.SetDelay(delay);
        widget.SetEditMode(true);
        const float inf = std::numeric_limits<float>::infinity();
        widget.UpdateAudioSampleBuffer({0.5F, inf, -inf, std::numeric_limits<float>::quiet_NaN(), 1.0F});
        const auto useAll = [&] {
            Press(diagram, 10);
            Move(diagram, 120);
            Release(diagram, 130);
            Hover(diagram, 125);
            for (const int turn : {120, -120, 100000, -100000}) {
                for (const Qt::KeyboardModifiers modifiers : {Qt::NoModifier, Qt::ControlModifier}) {
                    Turn(diagram, {.angle = {0, turn}, .pixels = {}, .modifiers = modifiers, .x = 50.0});
                }
                widget.grab();
            }
            SendMouse(diagram, QEvent::MouseButtonDblClick, {50.0, 50.0}, Qt::LeftButton);
            widget.SetAudioPosition(duration);
            widget.SetSelectedSnippet({-duration, duration});
            widget.SetSelectionStartTime(notANumber);
            widget.SetSelectionEndTime(infinity);
            widget.OnSceneRectChangeRequested(QRectF(duration / 2, 0, 1, 1));
            widget.grab();
        };
        useAll();
        widget.OnSceneRectChangeRequested(QRectF(1.999e9, 0, 0.5, 1));
        useAll();
        Access::ScrollBarOf(widget).setValue(1234);
        widget.OnSceneRectChangeRequested(QRectF(5, 0, -3, 1));
        useAll();
        widget.Reset();
        QCOMPARE(diagram.GetSceneRect().width(), 1.0);
    }
};

QTEST_MAIN(TestWaveformInput)
#include "tst_waveforminput.moc"
