#include "InputBench.h"
#include "WaveformTestAccess.h"

#include <QtGui/QContextMenuEvent>
#include <QtGui/QStyleHints>
#include <QtWidgets/QMenu>

#include <functional>

using namespace vantoraudio::vantorAudioEngine::UI;
using namespace vantoraudio::vantorAudioEngine::UI::testing;
using namespace Qt::Literals::StringLiterals;
using Access = WaveformTestAccess;
using Interaction = BGFXWaveformWidget::Interaction;
using Pair = std::pair<double, double>;

namespace {

struct FreeBench : Bench
{
    explicit FreeBench(BGFXWaveformWidget::Interactions interactions) { diagram.SetInteractions(interactions); }

    void Click(int x, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(&diagram, Qt::LeftButton, modifiers, {x, 50});
    }
};

/** What a mouse button does from press to release. */
void ClickWith(QWidget& widget, Qt::MouseButton button, int x)
{
    QTest::mouseClick(&widget, button, {}, {x, 50});
}

bool AskForMenu(QWidget& widget, const QPoint& position)
{
    QContextMenuEvent event(QContextMenuEvent::Mouse, position, widget.mapToGlobal(position));
    QApplication::sendEvent(&widget, &event);
    return event.isAccepted();
}

} // namespace

class TestInteractions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup()
    {
        QWidget other;
        Release(other, 1, 1);
    }

    void areOffAtFirst()
    {
        BGFXWaveformWidget widget;
        QCOMPARE(widget.GetInteractions(), BGFXWaveformWidget::Interactions());
        widget.SetInteractions(Interaction::ExtendWithShift | Interaction::LeftButtonOnly);
        QCOMPARE(widget.GetInteractions(), Interaction::ExtendWithShift | Interaction::LeftButtonOnly);
        QCOMPARE(Access::DiagramOf(widget).GetInteractions(), widget.GetInteractions());
    }

    void aSelectionSurvivesZoomingInAndMovingOneEdge()
    {
        FreeBench bench(Interaction::SelectBeyondView);
        bench.diagram.SetSelectedSnippet({10.0, 90.0});
        bench.diagram.SetSceneRange(0.0, 20.0);
        Hover(bench.diagram, 500);
        Press(bench.diagram, 500);
        Move(bench.diagram, 600);
        Release(bench.diagram, 600);
        QCOMPARE(bench.Selection(), Pair(12.01, 90.0));
        bench.diagram.SetSelectionStartTime(5.0);
        QCOMPARE(bench.Selection(), Pair(5.0, 90.0));
        bench.diagram.SetSelectionEndTime(200.0);
        QCOMPARE(bench.Selection(), Pair(5.0, 100.0));
    }

    void withoutThemMovingOneEdgeCutsTheOtherToTheView()
    {
        Bench bench;
        bench.diagram.SetSelectedSnippet({10.0, 90.0});
        bench.diagram.SetSceneRange(0.0, 20.0);
        bench.diagram.SetSelectionStartTime(5.0);
        QCOMPARE(bench.Selection(), Pair(5.0, 20.0));
    }

    void aDragPastTheBorderScrollsOnToTheEndOfTheFile()
    {
        FreeBench bench(Interaction::SelectBeyondView);
        bench.diagram.SetSceneRange(40.0, 60.0);
        Press(bench.diagram, 500);
        Move(bench.diagram, 3000);
        QCOMPARE(bench.Selection(), Pair(50.01, 60.0));
        QTRY_COMPARE(bench.diagram.GetSceneRect().right(), 100.0);
        QTRY_COMPARE(bench.Selection(), Pair(50.01, 100.0));
        bench.recorder.Take();
        Move(bench.diagram, -3000);
        QTRY_COMPARE(bench.diagram.GetSceneRect().left(), 0.0);
        QTRY_COMPARE(bench.Selection(), Pair(0.0, 50.01));
        Release(bench.diagram, -3000);
        QCOMPARE(bench.Selection(), Pair(0.0, 50.01));
    }

    void scrollingEndsWithTheDrag()
    {
        FreeBench bench(Interaction::SelectBeyondView);
        bench.diagram.SetSceneRange(0.0, 1.0);
        Press(bench.diagram, 500);
        Move(bench.diagram, 1001);
        QTRY_VERIFY(bench.diagram.GetSceneRect().left() > 0.0);
        Release(bench.diagram, 1001);
        QVERIFY(!Access::IsBorderScrolling(bench.diagram));
        Press(bench.diagram, 500);
        Move(bench.diagram, 1001);
        QVERIFY(Access::IsBorderScrolling(bench.diagram));
        Move(bench.diagram, 800);
        QVERIFY(!Access::IsBorderScrolling(bench.diagram));
        Move(bench.diagram, 1001);
        bench.diagram.Reset();
        QVERIFY(!Access::IsBorderScrolling(bench.diagram));
    }

    void aMovedSelectionStopsAtTheEdgesOfTheFile()
    {
        FreeBench bench(Interaction::SelectBeyondView);
        bench.SelectAndHover(20.0, 40.0, 300);
        Press(bench.diagram, 300);
        Move(bench.diagram, 10);
        QCOMPARE(bench.Selection(), Pair(0.0, 20.0));
        Move(bench.diagram, 995);
        QCOMPARE(bench.Selection(), Pair(80.0, 100.0));
    }

    void aMoveBeginsAnywhereInTheSelectionWithoutAJump()
    {
        FreeBench bench(Interaction::MoveFromInside);
        bench.SelectAndHover(20.0, 40.0, 250);
        QCOMPARE(bench.diagram.cursor().shape(), Qt::SizeAllCursor);
        Press(bench.diagram, 250);
        Move(bench.diagram, 350);
        Release(bench.diagram, 350);
        QVERIFY(qAbs(bench.Selection().first - 30.0) < 1e-9);
        QVERIFY(qAbs(bench.Selection().second - 50.0) < 1e-9);
    }

    void aClickInsideTheSelectionStillClearsIt()
    {
        FreeBench bench(Interaction::MoveFromInside);
        bench.SelectAndHover(20.0, 40.0, 250);
        bench.Click(250);
        QCOMPARE(bench.recorder.Take(), (QStringList{u"AudioPositionChanged(25.05)"_s, u"Update"_s}));
        QVERIFY(!Access::HasSelection(bench.diagram));
    }

    void shiftAndAClickMoveTheNearerEnd_data()
    {
        QTest::addColumn<int>("x");
        QTest::addColumn<Pair>("selection");
        QTest::newRow("before the start") << 100 << Pair(10.05, 40.0);
        QTest::newRow("inside, nearer to the start") << 250 << Pair(25.05, 40.0);
        QTest::newRow("inside, nearer to the end") << 350 << Pair(20.0, 35.05);
        QTest::newRow("behind the end") << 800 << Pair(20.0, 80.05);
    }

    void shiftAndAClickMoveTheNearerEnd()
    {
        QFETCH(const int, x);
        FreeBench bench(Interaction::ExtendWithShift);
        bench.diagram.SetSelectedSnippet({20.0, 40.0});
        bench.Click(x, Qt::ShiftModifier);
        QTEST(bench.Selection(), "selection");
    }

    void shiftAndAClickSelectFromThePosition()
    {
        FreeBench bench(Interaction::ExtendWithShift);
        bench.diagram.SetAudioPosition(30.0, false);
        bench.Click(100, Qt::ShiftModifier);
        QCOMPARE(bench.Selection(), Pair(10.05, 30.0));
        bench.diagram.SetEditMode(false);
        bench.Click(500, Qt::ShiftModifier);
        QVERIFY(!Access::HasSelection(bench.diagram));
    }

    void shiftAndADragMoveTheNearerEnd()
    {
        FreeBench bench(Interaction::ExtendWithShift);
        for (const int x : {351, 701}) {
            bench.diagram.SetSelectedSnippet({20.0, 40.0});
            QTest::mousePress(&bench.diagram, Qt::LeftButton, Qt::ShiftModifier, {350, 50});
            Move(bench.diagram, x);
            QTest::mouseRelease(&bench.diagram, Qt::LeftButton, Qt::ShiftModifier, {x, 50});
            QCOMPARE(bench.Selection(), Pair(20.0, bench.diagram.GetTimeAt(x)));
        }
    }

    void aPressGrabsWhatItMeets()
    {
        FreeBench bench(Interaction::MoveFromInside | Interaction::SelectBeyondView);
        bench.SelectAndHover(20.0, 40.0, 200);
        // The start is elsewhere now, and below the pointer there is the inside of the selection.
        bench.diagram.SetSceneRange(15.0, 35.0);
        Press(bench.diagram, 300);
        Move(bench.diagram, 350);
        Release(bench.diagram, 350);
        QCOMPARE(bench.Selection(), Pair(21.0, 41.0));
    }

    void aClearedSelectionIsNotMoved()
    {
        FreeBench bench(Interaction::MoveFromInside | Interaction::ForgetCleared);
        bench.SelectAndHover(20.0, 40.0, 300);
        bench.diagram.ClearSelection();
        Press(bench.diagram, 300);
        Move(bench.diagram, 500);
        Release(bench.diagram, 500);
        QCOMPARE(bench.Selection(), Pair(30.05, 50.05));
    }

    void clearingEndsADrag()
    {
        FreeBench bench(Interaction::ForgetCleared | Interaction::SelectBeyondView);
        bench.diagram.SetSceneRange(0.0, 10.0);
        Press(bench.diagram, 300);
        Move(bench.diagram, 1100);
        QVERIFY(Access::IsBorderScrolling(bench.diagram));
        bench.diagram.ClearSelection();
        QVERIFY(!Access::IsBorderScrolling(bench.diagram));
        Move(bench.diagram, 500);
        Release(bench.diagram, 500);
        QVERIFY(!Access::HasSelection(bench.diagram));
    }

    void aReleaseElsewhereEndsADrag_data()
    {
        using Loss = std::function<void(QWidget&)>;
        QTest::addColumn<Loss>("lose");
        QTest::newRow("the mouse comes back without its button") << Loss([](QWidget& view) { Hover(view, 500); });
        QTest::newRow("another window") << Loss([](QWidget& view) {
            QEvent event(QEvent::WindowDeactivate);
            QApplication::sendEvent(&view, &event);
        });
        QTest::newRow("no longer enabled") << Loss([](QWidget& view) { view.setEnabled(false); });
        QTest::newRow("no longer editing") << Loss([](QWidget& view) {
            auto& diagram = static_cast<BGFXWaveformDiagramWidget&>(view);
            diagram.SetEditMode(false);
            QTRY_VERIFY(!Access::IsBorderScrolling(diagram));
        });
        QTest::newRow("a menu") << Loss([](QWidget& view) {
            QMenu menu;
            menu.addAction(u"entry"_s);
            menu.popup({0, 0});
            QTRY_VERIFY(!Access::IsBorderScrolling(static_cast<BGFXWaveformDiagramWidget&>(view)));
        });
    }

    void aReleaseElsewhereEndsADrag()
    {
        QFETCH(const std::function<void(QWidget&)>, lose);
        FreeBench bench(Interaction::SelectBeyondView | Interaction::LeftButtonOnly);
        bench.diagram.SetSceneRange(0.0, 1.0);
        Press(bench.diagram, 500);
        Move(bench.diagram, 1001);
        QVERIFY(Access::IsBorderScrolling(bench.diagram));
        lose(bench.diagram);
        QVERIFY(!Access::IsBorderScrolling(bench.diagram));
        const Pair selection = bench.Selection();
        Move(bench.diagram, 700);
        QCOMPARE(bench.Selection(), selection);
    }

    void theMouseAsksForNoMenuInTheMiddleOfADrag()
    {
        FreeBench bench(Interaction::LeftButtonOnly);
        Press(bench.diagram, 100);
        QVERIFY(AskForMenu(bench.diagram, {100, 50}));
        Release(bench.diagram, 100);
        QVERIFY(!AskForMenu(bench.diagram, {100, 50}));
    }

    void theViewDoesNotFollowThePositionInTheMiddleOfADrag()
    {
        for (const bool atOnce : {false, true}) {
            FreeBench bench(Interaction::SelectBeyondView);
            bench.diagram.SetShowsPositionAtOnce(atOnce);
            bench.diagram.SetSceneRange(40.0, 50.0);
            Press(bench.diagram, 500);
            bench.diagram.SetAudioPosition(5.0, false);
            QCOMPARE(bench.diagram.GetSceneRect().left() == 40.0, atOnce);
            Release(bench.diagram, 500);
            bench.diagram.SetAudioPosition(5.0, false);
            QVERIFY(bench.diagram.GetSceneRect().left() < 40.0);
        }
    }

    void theViewFollowsAgainWhereTheReleaseDoesNotCome()
    {
        FreeBench bench({});
        bench.diagram.SetEditMode(false);
        bench.diagram.SetShowsPositionAtOnce(true);
        const auto follows = [&] {
            bench.diagram.SetSceneRange(40.0, 50.0);
            bench.diagram.SetAudioPosition(5.0, false);
            return bench.diagram.GetSceneRect().left() < 40.0;
        };
        QTest::mousePress(&bench.diagram, Qt::RightButton, {}, {500, 50});
        QVERIFY(follows());
        QTest::mouseRelease(&bench.diagram, Qt::RightButton, {}, {500, 50});
        Press(bench.diagram, 500);
        QVERIFY(!follows());
        Hover(bench.diagram, 500);
        QVERIFY(follows());
        Press(bench.diagram, 500);
        bench.diagram.setEnabled(false);
        QVERIFY(follows());
    }

    void anotherFileEndsADrag()
    {
        FreeBench bench(Interaction::SelectBeyondView);
        Press(bench.diagram, 300);
        Move(bench.diagram, 400);
        bench.diagram.Reset();
        bench.diagram.SetDuration(100.0);
        Move(bench.diagram, 500);
        Release(bench.diagram, 500);
        QVERIFY(!Access::HasSelection(bench.diagram));
        QCOMPARE(bench.diagram.GetAudioPosition(), 0.0);
    }

    void anotherButtonThatIsLetGoOfDoesNotEndADrag()
    {
        FreeBench bench(Interaction::SelectBeyondView);
        Press(bench.diagram, 100);
        Move(bench.diagram, 300);
        QMouseEvent release(QEvent::MouseButtonRelease, {300.0, 50.0}, {300.0, 50.0}, Qt::RightButton,
                            Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&bench.diagram, &release);
        Move(bench.diagram, 400);
        QCOMPARE(bench.Selection(), Pair(10.05, 40.05));
    }

    void aShortDragAtADoubleClickSelectsNothing()
    {
        FreeBench bench(Interaction::DragFromDistance | Interaction::SelectBeyondView);
        bench.diagram.SetSceneRange(40.0, 50.0);
        bench.Click(200);
        SendMouse(bench.diagram, QEvent::MouseButtonDblClick, {200.0, 50.0}, Qt::LeftButton);
        SendMouse(bench.diagram, QEvent::MouseMove, {201.0, 50.0}, Qt::LeftButton);
        Release(bench.diagram, 201);
        QVERIFY(!Access::HasSelection(bench.diagram));
    }

    void aShortDragAtTheMiddleOfTheSelectionIsAClick()
    {
        FreeBench bench(Interaction::DragFromDistance);
        bench.Click(300);
        bench.SelectAndHover(60.0, 80.0, 700);
        QCOMPARE(bench.diagram.cursor().shape(), Qt::SizeAllCursor);
        Press(bench.diagram, 700);
        Move(bench.diagram, 701);
        QCOMPARE(bench.Selection(), Pair(60.0, 80.0));
        Release(bench.diagram, 701);
        QVERIFY(!Access::HasSelection(bench.diagram));
    }

    void aShortDragStaysAClick()
    {
        const int distance = QGuiApplication::styleHints()->startDragDistance();
        FreeBench bench(Interaction::DragFromDistance);
        Press(bench.diagram, 300);
        Move(bench.diagram, 300 + distance - 1);
        QVERIFY(!Access::HasSelection(bench.diagram));
        Release(bench.diagram, 300 + distance - 1);
        QVERIFY(!Access::HasSelection(bench.diagram));
        QCOMPARE(bench.diagram.GetAudioPosition(), bench.diagram.GetTimeAt(300 + distance - 1));
        Press(bench.diagram, 300);
        Move(bench.diagram, 300 + distance);
        // It stays a drag.
        Move(bench.diagram, 301);
        Release(bench.diagram, 301);
        QCOMPARE(bench.Selection(), Pair(30.05, 30.15));
    }

    void aShortDragMovesAnEdgeButNoSelection()
    {
        FreeBench bench(Interaction::DragFromDistance | Interaction::MoveFromInside);
        bench.SelectAndHover(20.0, 40.0, 200);
        Press(bench.diagram, 200);
        Move(bench.diagram, 202);
        Release(bench.diagram, 202);
        QCOMPARE(bench.Selection(), Pair(20.25, 40.0));
        Press(bench.diagram, 300);
        Move(bench.diagram, 302);
        QCOMPARE(bench.Selection(), Pair(20.25, 40.0));
        Move(bench.diagram, 350);
        Release(bench.diagram, 350);
        QCOMPARE(bench.Selection(), Pair(25.25, 45.0));
    }

    void otherButtonsDoNothing()
    {
        for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton}) {
            FreeBench bench(Interaction::LeftButtonOnly);
            bench.diagram.SetSelectedSnippet({20.0, 40.0});
            bench.recorder.Take();
            ClickWith(bench.diagram, button, 700);
            QTest::mouseDClick(&bench.diagram, button, {}, {700, 50});
            QCOMPARE(bench.recorder.Take(), QStringList{});
            QCOMPARE(bench.Selection(), Pair(20.0, 40.0));
        }
    }

    void anotherButtonDoesNotEndADrag()
    {
        FreeBench bench(Interaction::LeftButtonOnly);
        Press(bench.diagram, 100);
        SendMouse(bench.diagram, QEvent::MouseMove, {300.0, 50.0}, Qt::LeftButton | Qt::RightButton);
        QCOMPARE(bench.Selection(), Pair(10.05, 30.05));
        QTest::mouseRelease(&bench.diagram, Qt::RightButton, {}, {350, 50});
        Move(bench.diagram, 400);
        QCOMPARE(bench.Selection(), Pair(10.05, 40.05));
    }

    void tellsTheTimeUnderThePointer()
    {
        BGFXWaveformWidget widget;
        widget.resize(600, 200);
        auto& diagram = Access::DiagramOf(widget);
        diagram.resize(500, 100);
        QAudioFormat format;
        format.setSampleRate(1000);
        widget.Initilize(format, 50.0);
        QCOMPARE(widget.GetTimeAt(diagram.mapTo(&widget, QPoint(250, 20))), 25.05);
    }

    void otherButtonsLeaveAMenuToTheProgram()
    {
        for (const bool isSet : {false, true}) {
            Bench bench;
            bench.diagram.SetInteractions(isSet ? Interaction::LeftButtonOnly
                                                : BGFXWaveformWidget::Interactions());
            QVERIFY(!AskForMenu(bench.diagram, {250, 20}));
        }
    }

    void aClearedSelectionIsForgotten()
    {
        FreeBench bench(Interaction::ForgetCleared);
        bench.diagram.SetSelectedSnippet({10.0, 20.0});
        bench.Click(500);
        bench.recorder.Take();
        bench.diagram.SetSelectionStartTime(15.0);
        QCOMPARE(bench.recorder.Take(), (QStringList{u"SelectionChanged(15, 15)"_s, u"Update"_s}));
        bench.diagram.SetSelectionEndTime(30.0);
        QCOMPARE(bench.Selection(), Pair(15.0, 30.0));
    }

    void theSecondClickOfADoubleClickMovesNoPosition()
    {
        FreeBench bench(Interaction::DoubleClickOnlyZooms);
        bench.diagram.SetSceneRange(40.0, 50.0);
        bench.Click(200);
        QCOMPARE(bench.diagram.GetAudioPosition(), 42.005);
        bench.recorder.Take();
        SendMouse(bench.diagram, QEvent::MouseButtonDblClick, {200.0, 50.0}, Qt::LeftButton);
        Release(bench.diagram, 200);
        QCOMPARE(bench.diagram.GetSceneRect().width(), 100.0);
        QCOMPARE(bench.diagram.GetAudioPosition(), 42.005);
        // The pointer may move a little between the clicks.
        for (const auto modifiers : {Interaction(0), Interaction::SelectBeyondView}) {
            bench.diagram.SetInteractions(Interaction::DoubleClickOnlyZooms | modifiers);
            bench.recorder.Take();
            SendMouse(bench.diagram, QEvent::MouseButtonDblClick, {201.0, 50.0}, Qt::LeftButton);
            SendMouse(bench.diagram, QEvent::MouseMove, {202.0, 51.0}, Qt::LeftButton);
            Release(bench.diagram, 203);
            QCOMPARE(bench.diagram.GetAudioPosition(), 42.005);
            QVERIFY(bench.recorder.Take().filter(u"Selection"_s).isEmpty());
        }
        // The next click counts, and so does a drag that a double click begins.
        bench.Click(300);
        QCOMPARE(bench.diagram.GetAudioPosition(), 30.05);
        SendMouse(bench.diagram, QEvent::MouseButtonDblClick, {300.0, 50.0}, Qt::LeftButton);
        SendMouse(bench.diagram, QEvent::MouseMove, {500.0, 50.0}, Qt::LeftButton);
        SendMouse(bench.diagram, QEvent::MouseButtonRelease, {500.0, 50.0}, Qt::NoButton);
        QCOMPARE(bench.Selection(), Pair(30.05, 50.05));
    }
};

QTEST_MAIN(TestInteractions)
#include "tst_interactions.moc"
