#include "PaintCounter.h"
#include "SignalRecorder.h"
#include "WaveformTestAccess.h"

#include <QtGui/QWheelEvent>
#include <QtTest/QtTest>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

#include <cmath>
#include <limits>
#include <utility>

using namespace vantoraudio::vantorAudioEngine::UI;
using namespace Qt::Literals::StringLiterals;
using Access = WaveformTestAccess;
using Pair = std::pair<double, double>;

namespace {

constexpr int intMax = std::numeric_limits<int>::max();

QAudioFormat FormatOf(int sampleRate)
{
    QAudioFormat format;
    format.setSampleRate(sampleRate);
    return format;
}

/** 100 seconds at 1000 Hz. */
struct Bench
{
    Bench()
    {
        widget.resize(1050, 160);
        diagram.resize(1000, 100);
        widget.Initilize(FormatOf(1000), 100.0);
        recorder.Take();
    }

    BGFXWaveformWidget widget;
    BGFXWaveformDiagramWidget& diagram = Access::DiagramOf(widget);
    QScrollBar& scrollBar = Access::ScrollBarOf(widget);
    SignalRecorder recorder{widget};
};

} // namespace

class TestWaveformWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /** The first of all, as the device stays for the process. */
    void hasNoDrawingDeviceBeforeTheFirstFrame()
    {
        BGFXWaveformWidget widget;
        QCOMPARE(BGFXWaveformWidget::GetDrawingDevice(), BGFXWaveformWidget::DrawingDevice::None);
        widget.resize(300, 150);
        widget.grab();
        QVERIFY(BGFXWaveformWidget::GetDrawingDevice() != BGFXWaveformWidget::DrawingDevice::None);
    }

    void startsWithItsParts()
    {
        BGFXWaveformWidget widget;
        QCOMPARE(Access::DiagramOf(widget).parent(), &widget);
        QCOMPARE(Access::ScrollBarOf(widget).parent(), &widget);
        QCOMPARE(Access::ScrollBarOf(widget).orientation(), Qt::Horizontal);
        QCOMPARE(Access::ScrollBarOf(widget).minimum(), 0);
        QCOMPARE(Access::ScrollBarOf(widget).maximum(), 0);
        QCOMPARE(Access::IconOf(widget).parent(), &widget);
        QVERIFY(Access::IconOf(widget).isValid());
        QCOMPARE(Access::FrameColor(widget), QColor(125, 125, 125, 255));
        QCOMPARE(Access::ScaleColor(widget), QColor(150, 150, 150, 255));
        QCOMPARE(Access::MarkerColor(widget), QColor(115, 140, 200, 255));
        QCOMPARE(Access::Scale(widget), 1.0);
        QCOMPARE(widget.GetSelectedSnippet(), Pair(0.0, 0.0));
    }

    void laysItsPartsOut()
    {
        BGFXWaveformWidget widget;
        QCOMPARE(widget.minimumHeight(), 120);
        auto* row = qobject_cast<QHBoxLayout*>(widget.layout());
        QVERIFY(row);
        QCOMPARE(row->contentsMargins(), QMargins(10, 0, 0, 0));
        QCOMPARE(row->count(), 3);
        for (const int side : {0, 2}) {
            QVERIFY(row->itemAt(side)->spacerItem());
            QCOMPARE(row->itemAt(side)->sizeHint(), QSize(20, 0));
        }
        auto* column = qobject_cast<QVBoxLayout*>(row->itemAt(1)->layout());
        QVERIFY(column);
        QCOMPARE(column->spacing(), 0);
        QCOMPARE(column->contentsMargins(), QMargins(0, 20, 0, 0));
        QCOMPARE(column->count(), 3);
        QCOMPARE(column->itemAt(0)->widget(), &Access::DiagramOf(widget));
        const QSpacerItem* spacer = column->itemAt(1)->spacerItem();
        QVERIFY(spacer);
        QCOMPARE(spacer->sizeHint(), QSize(0, 1));
        QCOMPARE(spacer->sizePolicy(), QSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum));
        QCOMPARE(column->itemAt(2)->widget(), &Access::ScrollBarOf(widget));
    }

    void leavesRoomForRulerAndLabels()
    {
        BGFXWaveformWidget widget;
        widget.resize(500, 200);
        widget.grab();
        const QRect diagram = Access::DiagramOf(widget).geometry();
        QCOMPARE(diagram.left(), 30);
        QCOMPARE(diagram.top(), 20);
        QCOMPARE(diagram.width(), 450);
        const QRect scrollBar = Access::ScrollBarOf(widget).geometry();
        QCOMPARE(scrollBar.top(), diagram.bottom() + 2);
        QCOMPARE(scrollBar.bottom(), 199);
        QCOMPARE(scrollBar.width(), 450);
    }

    void listsItsSignalsAndSlotsInOrder()
    {
        const QMetaObject& meta = BGFXWaveformWidget::staticMetaObject;
        QStringList names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            const QMetaMethod method = meta.method(i);
            const bool isPrivate = method.access() == QMetaMethod::Private;
            names << (isPrivate ? u"private "_s : QString()) + QString::fromLatin1(method.methodSignature());
        }
        QCOMPARE(names,
                 (QStringList{u"GetSamples(double,double,int)"_s, u"SelectionChanged(std::pair<double,double>)"_s,
                              u"AudioPositionChanged(double)"_s, u"SceneRectChanged(QRectF)"_s,
                              u"OnSceneRectChangeRequested(QRectF)"_s, u"private OnDiagramChanged()"_s,
                              u"private OnGetSamples(double,double,int)"_s,
                              u"private OnSelectionChanged(std::pair<double,double>)"_s,
                              u"private OnAudioPositionChanged(double)"_s}));
        QVERIFY(meta.className() == "vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget"_ba);
    }

    void initilizeClearsThenAsksForTheWholeFile()
    {
        Bench bench;
        bench.widget.SetSelectedSnippet({10.0, 20.0});
        bench.recorder.Take();
        bench.widget.Initilize(FormatOf(8000), 60.0);
        QCOMPARE(bench.recorder.Take(), (QStringList{u"SelectionChanged(0, 0)"_s, u"GetSamples(0, 60, 1)"_s}));
        QCOMPARE(Access::Format(bench.diagram).sampleRate(), 8000);
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(0.0, 0.0, 60.0, 1.0));
    }

    void aFileShownByASlotStays()
    {
        Bench bench;
        const QObject context;
        bool isNested = false;
        connect(&bench.widget, &BGFXWaveformWidget::SelectionChanged, &context, [&] {
            if (!std::exchange(isNested, true)) {
                bench.widget.Initilize(FormatOf(1000), 30.0);
            }
        });
        bench.widget.Initilize(FormatOf(8000), 60.0);
        QCOMPARE(Access::Format(bench.diagram).sampleRate(), 1000);
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(0.0, 0.0, 30.0, 1.0));
    }

    void initilizeReckonsWithTheNewSampleRate()
    {
        Bench bench;
        bench.diagram.resize(100, 100);
        bench.widget.Initilize(FormatOf(8000), 600.0);
        // 600 seconds at 8000 Hz on 100 pixels: 4,800,000 / 100,000.
        QCOMPARE(bench.recorder.Take(), (QStringList{u"SelectionChanged(0, 0)"_s, u"GetSamples(0, 600, 48)"_s}));
    }

    void initilizeAsksWithTheDelayOfBefore()
    {
        Bench bench;
        bench.diagram.resize(100, 100);
        bench.widget.SetDelay(400.0);
        bench.recorder.Take();
        bench.widget.Initilize(FormatOf(1000), 200.0);
        // 600 seconds at 1000 Hz on 100 pixels, though 200 seconds become visible.
        QCOMPARE(bench.recorder.Take(), (QStringList{u"SelectionChanged(0, 0)"_s, u"GetSamples(0, 200, 6)"_s}));
        QCOMPARE(bench.widget.GetDelay(), 0.0);
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(0.0, 0.0, 200.0, 1.0));
        QCOMPARE(Access::StepSize(bench.diagram), 1);
    }

    void forwardsTheDiagramsSignals()
    {
        Bench bench;
        Q_EMIT bench.diagram.GetSamples(1.0, 2.0, 3);
        Q_EMIT bench.diagram.SelectionChanged({4.0, 5.0});
        Q_EMIT bench.diagram.AudioPositionChanged(6.0);
        Q_EMIT bench.diagram.SceneRectChanged(QRectF(7.0, 0.0, 1.0, 1.0));
        QCOMPARE(bench.recorder.Take(), (QStringList{u"GetSamples(1, 2, 3)"_s, u"SelectionChanged(4, 5)"_s,
                                                     u"AudioPositionChanged(6)"_s, u"SceneRectChanged(7, 8)"_s}));
    }

    void scrollBarIsSetBeforeTheNewRangeIsAnnounced()
    {
        Bench bench;
        int value = -1;
        connect(&bench.widget, &BGFXWaveformWidget::SceneRectChanged, this,
                [&] { value = bench.scrollBar.value(); });
        bench.widget.OnSceneRectChangeRequested(QRectF(20.0, 0.0, 30.0, 1.0));
        QCOMPARE(value, 20000);
    }

    void facadeReachesTheDiagram()
    {
        Bench bench;
        bench.widget.SetAudioPosition(12.5);
        QCOMPARE(bench.widget.GetAudioPosition(), 12.5);
        bench.widget.SetSelectedSnippet({30.0, 20.0});
        QCOMPARE(bench.widget.GetSelectedSnippet(), Pair(20.0, 30.0));
        bench.widget.SetAudioPosition(13.0);
        QCOMPARE(bench.widget.GetSelectedSnippet(), Pair(20.0, 30.0)); // the position never clears it
        bench.widget.SetSelectionStartTime(22.0);
        bench.widget.SetSelectionEndTime(33.0);
        QCOMPARE(bench.widget.GetSelectionStartTime(), 22.0);
        QCOMPARE(bench.widget.GetSelectionEndTime(), 33.0);
        bench.widget.SetEditMode(true);
        QVERIFY(bench.widget.GetEditMode());
        QVERIFY(bench.diagram.GetEditMode());
        bench.widget.SetScrollBackToZoomOut(false);
        QVERIFY(!Access::ScrollBackToZoomOut(bench.diagram));
        bench.widget.SetDelay(4.0);
        QCOMPARE(bench.widget.GetDelay(), 4.0);
        QCOMPARE(bench.diagram.GetTotalLength(), 104.0);
        bench.widget.UpdateAudioSampleBuffer({0.5F});
        QVERIFY(!Access::Vertices(bench.diagram).IsEmpty());
        bench.widget.Reset();
        QCOMPARE(Access::Duration(bench.diagram), 0.0);
    }

    void coloursAreStoredWhereTheyAreUsed()
    {
        BGFXWaveformWidget widget;
        const auto& diagram = Access::DiagramOf(widget);
        widget.SetAudioPositionMarkerColor(QColor(1, 0, 0));
        widget.SetAudioSelectionColor(QColor(2, 0, 0));
        widget.SetBackgroundColor(QColor(3, 0, 0));
        widget.SetFrameColor(QColor(4, 0, 0));
        widget.SetGridColor(QColor(5, 0, 0));
        widget.SetScaleColor(QColor(6, 0, 0));
        widget.SetWaveformColor(QColor(7, 0, 0, 99));
        QCOMPARE(Access::MarkerColor(widget), QColor(1, 0, 0));
        QCOMPARE(diagram.m_positionMarkerColor, QColor(1, 0, 0));
        QCOMPARE(diagram.m_selectionColor, QColor(2, 0, 0));
        QCOMPARE(diagram.m_backgroundColor, QColor(3, 0, 0));
        QCOMPARE(Access::FrameColor(widget), QColor(4, 0, 0));
        QCOMPARE(diagram.m_gridColor, QColor(5, 0, 0));
        QCOMPARE(Access::ScaleColor(widget), QColor(6, 0, 0));
        QCOMPARE(diagram.m_waveformColor, QColor(7, 0, 0, 99));
    }

    void coloursDoNotRepaintButUpdateAndDelayDo()
    {
        Bench bench;
        bench.widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bench.widget));
        QCoreApplication::processEvents();
        PaintCounter widgetPaints(bench.widget);
        PaintCounter diagramPaints(bench.diagram);
        bench.widget.SetAudioPositionMarkerColor(Qt::red);
        bench.widget.SetAudioSelectionColor(Qt::red);
        bench.widget.SetBackgroundColor(Qt::red);
        bench.widget.SetFrameColor(Qt::red);
        bench.widget.SetGridColor(Qt::red);
        bench.widget.SetScaleColor(Qt::red);
        bench.widget.SetWaveformColor(Qt::red);
        QCoreApplication::processEvents();
        QCOMPARE(widgetPaints.m_paints, 0);
        QCOMPARE(diagramPaints.m_paints, 0);
        bench.widget.Update();
        QTRY_COMPARE(widgetPaints.m_paints, 1);
        QTRY_COMPARE(diagramPaints.m_paints, 1);
        bench.widget.SetDelay(1.0);
        QTRY_COMPARE(widgetPaints.m_paints, 2);
        QTRY_COMPARE(diagramPaints.m_paints, 2);
    }

    void everyChangeOfTheDiagramRepaintsTheWidget()
    {
        Bench bench;
        bench.widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bench.widget));
        QCoreApplication::processEvents();
        PaintCounter paints(bench.widget);
        Q_EMIT bench.diagram.Update();
        QTRY_COMPARE(paints.m_paints, 1);
        Q_EMIT bench.diagram.SceneRectChanged(bench.diagram.GetSceneRect());
        QTRY_COMPARE(paints.m_paints, 2);
    }

    void anIconThatCannotBeLoadedLeavesNone()
    {
        BGFXWaveformWidget widget;
        widget.SetAudioPositionIcon(u":/no/such.svg"_s);
        QVERIFY(!Access::IconOf(widget).isValid());
        widget.SetAudioPositionIcon(u":/Resources/vantoraudioArrowDownLightBlue.svg"_s);
        QVERIFY(Access::IconOf(widget).isValid());
    }

    void tellsTheLevelUnderThePointer()
    {
        Bench bench;
        bench.widget.grab(); // lays it out
        bench.diagram.resize(1000, 100);
        QList<float> samples(100'000, 0.0F);
        samples[50'010] = 0.75F; // 50.01 seconds: column 500
        samples[50'090] = -0.25F;
        bench.widget.UpdateAudioSampleBuffer(samples);
        const QPoint left = bench.diagram.pos();
        QCOMPARE(bench.widget.GetLevelAt(left + QPoint(500, 7)), Pair(-0.25, 0.75));
        QCOMPARE(bench.widget.GetLevelAt(left + QPoint(500, -5000)), Pair(-0.25, 0.75));
        QCOMPARE(bench.widget.GetLevelAt(left + QPoint(499, 7)), Pair(0.0, 0.0));
        QCOMPARE(bench.widget.GetLevelAt(left + QPoint(501, 7)), Pair(0.0, 0.0));
    }

    void tellsNoLevelWhereNoneIs_data()
    {
        QTest::addColumn<double>("duration");
        QTest::addColumn<int>("x");
        QTest::newRow("left of the waveform") << 100.0 << -1;
        QTest::newRow("right of it") << 100.0 << 1000;
        QTest::newRow("far away") << 100.0 << intMax / 2;
        QTest::newRow("behind the samples") << 100.0 << 900;
        QTest::newRow("no file") << 0.0 << 100;
        QTest::newRow("no length") << std::numeric_limits<double>::quiet_NaN() << 100;
        QTest::newRow("infinite length") << std::numeric_limits<double>::infinity() << 100;
    }

    void tellsNoLevelWhereNoneIs()
    {
        QFETCH(const double, duration);
        QFETCH(const int, x);
        Bench bench;
        bench.widget.grab(); // lays it out
        bench.diagram.resize(1000, 100);
        bench.widget.Initilize(FormatOf(1000), duration);
        bench.widget.UpdateAudioSampleBuffer(QList<float>(80'000, 0.5F));
        const auto [low, high] = bench.widget.GetLevelAt(bench.diagram.pos() + QPoint(x, 10));
        QVERIFY(std::isnan(low) && std::isnan(high));
    }

    void sceneRectRequestsAreBroughtIntoTheFile()
    {
        Bench bench;
        bench.widget.OnSceneRectChangeRequested(QRectF(90.0, 5.0, 40.0, 9.0));
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(90.0, 0.0, 10.0, 1.0));
        QCOMPARE(bench.recorder.Take(), (QStringList{u"SceneRectChanged(90, 100)"_s}));
    }

    void aSceneRectOfNegativeWidthIsTakenTheOtherWayRound()
    {
        Bench bench;
        bench.widget.OnSceneRectChangeRequested(QRectF(40.0, 0.0, -15.0, 1.0));
        QCOMPARE(bench.diagram.GetSceneRect(), QRectF(25.0, 0.0, 15.0, 1.0));
        QCOMPARE(bench.recorder.Take(),
                 (QStringList{u"SceneRectChanged(25, 40)"_s, u"GetSamples(17.5, 47.5, 1)"_s}));
    }

    void twoViewsMayFollowEachOther()
    {
        Bench one;
        Bench other;
        using View = BGFXWaveformWidget;
        connect(&one.widget, &View::SceneRectChanged, &other.widget, &View::OnSceneRectChangeRequested);
        connect(&other.widget, &View::SceneRectChanged, &one.widget, &View::OnSceneRectChangeRequested);
        one.widget.OnSceneRectChangeRequested(QRectF(20.0, 0.0, 30.0, 1.0));
        QCOMPARE(one.diagram.GetSceneRect(), QRectF(20.0, 0.0, 30.0, 1.0));
        QCOMPARE(other.diagram.GetSceneRect(), QRectF(20.0, 0.0, 30.0, 1.0));
        other.scrollBar.setValue(10000);
        QCOMPARE(one.diagram.GetSceneRect(), QRectF(10.0, 0.0, 30.0, 1.0));
        QCOMPARE(other.diagram.GetSceneRect(), QRectF(10.0, 0.0, 30.0, 1.0));
        one.diagram.ScrollTo(50.0);
        QCOMPARE(other.diagram.GetSceneRect(), QRectF(50.0, 0.0, 30.0, 1.0));
    }

    void scrollBarFollowsTheVisibleRangeInMilliseconds()
    {
        Bench bench;
        bench.widget.OnSceneRectChangeRequested(QRectF(20.5, 0.0, 30.25, 1.0));
        QCOMPARE(bench.scrollBar.minimum(), 0);
        QCOMPARE(bench.scrollBar.maximum(), 69750);
        QCOMPARE(bench.scrollBar.pageStep(), 30250);
        QCOMPARE(bench.scrollBar.value(), 20500);
    }

    void anArrowOfTheScrollBarMovesTheViewByAPart()
    {
        Bench bench;
        bench.widget.OnSceneRectChangeRequested(QRectF(20.0, 0.0, 10.0, 1.0));
        bench.scrollBar.triggerAction(QScrollBar::SliderSingleStepAdd);
        QCOMPARE(bench.diagram.GetSceneRect().left(), 20.5);
        bench.widget.OnSceneRectChangeRequested(QRectF(20.0, 0.0, 0.004, 1.0));
        bench.scrollBar.triggerAction(QScrollBar::SliderSingleStepAdd);
        QCOMPARE(bench.diagram.GetSceneRect().left(), 20.001);
    }

    void draggingTheScrollBarMovesTheView()
    {
        Bench bench;
        bench.widget.OnSceneRectChangeRequested(QRectF(20.0, 0.0, 10.0, 1.0));
        bench.recorder.Take();
        QSignalSpy values(&bench.scrollBar, &QScrollBar::valueChanged);
        bench.scrollBar.setValue(40123);
        QCOMPARE(bench.diagram.GetSceneRect().left(), 40.123);
        QCOMPARE(bench.recorder.Take(),
                 (QStringList{u"SceneRectChanged(40.123, 50.123)"_s, u"GetSamples(35.123, 55.123, 1)"_s}));
        QCOMPARE(values.count(), 1);
        QCOMPARE(bench.scrollBar.value(), 40123);
    }

    void valuesSetForTheViewDoNotEcho()
    {
        Bench bench;
        QSignalSpy values(&bench.scrollBar, &QScrollBar::valueChanged);
        bench.widget.OnSceneRectChangeRequested(QRectF(20.0001, 0.0, 10.0, 1.0));
        QCOMPARE(values.count(), 0);
        QCOMPARE(bench.diagram.GetSceneRect().left(), 20.0001); // not cut to whole milliseconds
    }

    void aRangeThatBecomesShorterDoesNotScrollBack()
    {
        Bench bench;
        bench.widget.OnSceneRectChangeRequested(QRectF(49.0, 0.0, 50.0, 1.0));
        QCOMPARE(bench.scrollBar.value(), 49000);
        bench.recorder.Take();
        // Less than 48 seconds remain to scroll, so the bar's old value does not fit its new range.
        const QPointF position(999.0, 50.0);
        QWheelEvent event(position, position, {}, {0, -120}, Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase,
                          false);
        QApplication::sendEvent(&bench.diagram, &event);
        const QRectF rect = bench.diagram.GetSceneRect();
        QVERIFY(qAbs(rect.left() - (98.975 - 49.975 * 16.0 / 15.0)) < 1e-4);
        QCOMPARE(bench.scrollBar.maximum(), static_cast<int>((100.0 - rect.width()) * 1000.0));
        QVERIFY(bench.scrollBar.maximum() < 49000);
        QCOMPARE(bench.scrollBar.value(), static_cast<int>(rect.left() * 1000.0));
        QCOMPARE(bench.recorder.Take().filter(u"SceneRectChanged"_s).size(), 1);
    }

    void scrollBarStaysWithinAnInt()
    {
        Bench bench;
        bench.widget.Initilize(FormatOf(48000), 2e9);
        bench.widget.OnSceneRectChangeRequested(QRectF(1e9, 0.0, 1e8, 1.0));
        QCOMPARE(bench.scrollBar.maximum(), intMax);
        QCOMPARE(bench.scrollBar.pageStep(), intMax);
        QCOMPARE(bench.scrollBar.value(), intMax);
        QCOMPARE(bench.diagram.GetSceneRect().left(), 1e9);
        bench.widget.grab();
    }

    void keepsTheRulersStepOfTheLastPaint()
    {
        Bench bench;
        bench.widget.grab();
        QCOMPARE(Access::Scale(bench.widget), 15.0);
        bench.widget.Initilize(FormatOf(48000), 2e9);
        bench.widget.grab();
        QCOMPARE(Access::Scale(bench.widget), 0.0);
    }

    void goesWithItsChildren()
    {
        auto* widget = new BGFXWaveformWidget;
        QPointer<QObject> diagram(&Access::DiagramOf(*widget));
        QPointer<QObject> scrollBar(&Access::ScrollBarOf(*widget));
        widget->UpdateAudioSampleBuffer({0.5F});
        widget->grab();
        delete widget;
        QVERIFY(!diagram);
        QVERIFY(!scrollBar);
    }
};

QTEST_MAIN(TestWaveformWidget)
#include "tst_waveformwidget.moc"
