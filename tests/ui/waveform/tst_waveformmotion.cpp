#include "PaintRecorder.h"
#include "SignalRecorder.h"
#include "WaveformPicture.h"
#include "WaveformTestAccess.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QtTest>

#include <limits>

using namespace vantoraudio::vantorAudioEngine::UI;
using namespace Qt::Literals::StringLiterals;
using Access = WaveformTestAccess;

namespace {

/** A file at 1000 Hz that shows. */
struct Bench
{
    explicit Bench(double length = 100.0)
    {
        widget.resize(450, 160);
        widget.show();
        isShown = QTest::qWaitForWindowExposed(&widget);
        QAudioFormat format;
        format.setSampleRate(1000);
        widget.Initilize(format, length);
        widget.UpdateAudioSampleBuffer(QList<float>(1000, 0.0F));
        recorder.Take();
    }

    BGFXWaveformWidget widget;
    BGFXWaveformDiagramWidget& diagram = Access::DiagramOf(widget);
    SignalRecorder recorder{widget};
    bool isShown = false;
};

} // namespace

class TestWaveformMotion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theLineStandsStillAtFirst()
    {
        Bench bench;
        QVERIFY(bench.isShown);
        bench.widget.SetAudioPosition(5.0);
        QCOMPARE(bench.diagram.GetShownPosition(), 5.0);
        QVERIFY(!Access::IsLineMoving(bench.diagram));
    }

    void theLineMovesOnByItselfAndWaits()
    {
        Bench bench;
        QVERIFY(bench.isShown);
        bench.widget.SetAudioPosition(5.0);
        bench.widget.SetPositionRate(1.0);
        QCOMPARE(bench.diagram.GetShownPosition(), 5.0);
        QTRY_VERIFY(bench.diagram.GetShownPosition() > 5.0);
        QTRY_COMPARE(bench.diagram.GetShownPosition(), 5.5);
        QCOMPARE(bench.widget.GetAudioPosition(), 5.0);
        QCOMPARE(bench.recorder.Take(), QStringList{});
        bench.widget.SetAudioPosition(5.45);
        QCOMPARE(bench.diagram.GetShownPosition(), 5.5);
        bench.widget.SetAudioPosition(2.0);
        QCOMPARE(bench.diagram.GetShownPosition(), 2.0);
        bench.widget.SetPositionRate(0.0);
        QCOMPARE(bench.diagram.GetShownPosition(), 2.0);
        QVERIFY(!Access::IsLineMoving(bench.diagram));
    }

    void aLineThatStopsShowsWhatWasSet()
    {
        Bench bench;
        QVERIFY(bench.isShown);
        bench.widget.SetAudioPosition(5.0);
        bench.widget.SetPositionRate(1.0);
        QTRY_COMPARE(bench.diagram.GetShownPosition(), 5.5);
        QSignalSpy updates(&bench.diagram, &BGFXWaveformDiagramWidget::Update);
        bench.widget.SetPositionRate(0.0);
        QCOMPARE(bench.diagram.GetShownPosition(), 5.0);
        QCOMPARE(updates.count(), 1);
        bench.widget.SetPositionRate(0.0);
        QCOMPARE(updates.count(), 1);
    }

    void onlyAnotherPixelIsPainted()
    {
        Bench bench; // 4 pixels a second
        QVERIFY(bench.isShown);
        bench.widget.SetAudioPosition(50.0);
        QSignalSpy updates(&bench.diagram, &BGFXWaveformDiagramWidget::Update);
        bench.widget.SetPositionRate(1.0);
        QTRY_COMPARE(bench.diagram.GetShownPosition(), 50.5);
        QVERIFY2(updates.count() >= 1 && double(updates.count()) <= 3.0 * bench.widget.devicePixelRatioF(),
                 qPrintable(QString::number(updates.count())));
    }

    void aHiddenViewPaintsNothing()
    {
        Bench bench(1.0);
        QVERIFY(bench.isShown);
        bench.widget.hide();
        QSignalSpy updates(&bench.diagram, &BGFXWaveformDiagramWidget::Update);
        bench.widget.SetPositionRate(1.0);
        QTRY_COMPARE(bench.diagram.GetShownPosition(), 0.5);
        QCOMPARE(updates.count(), 0);
    }

    void lineAndMarkerStandWhereTheyHaveMovedTo()
    {
        Bench bench(1.0);
        QVERIFY(bench.isShown);
        bench.diagram.m_positionMarkerColor = Qt::red;
        bench.widget.SetPositionRate(1.0);
        QTRY_COMPARE(bench.diagram.GetShownPosition(), 0.5);
        const WaveformPicture picture(bench.diagram);
        QVERIFY(picture.ShareInColumn(Qt::red, bench.diagram.width() / 2.0, 2.0, bench.diagram.height() / 3.0) >
                0.9);
        PaintRecorder marker(bench.widget);
        bench.widget.SetAudioPositionMarkerColor(Qt::red);
        bench.widget.render(&marker, {}, {}, {});
        const double x = bench.diagram.x() + bench.diagram.width() / 2.0;
        const QString tick = u"line #ff0000 %1,19 %1,16"_s.arg(x);
        QVERIFY2(marker.Lines().contains(tick), qPrintable(marker.Lines().join(u'\n')));
    }

    void theLineWaitsAtTheEndOfTheFile()
    {
        Bench bench(10.0);
        QVERIFY(bench.isShown);
        bench.widget.SetAudioPosition(9.9);
        bench.widget.SetPositionRate(2.0);
        QTRY_COMPARE(bench.diagram.GetShownPosition(), 10.0);
    }

    void whatTheUserClicksHoldsUntilTheNextReport()
    {
        Bench bench;
        QVERIFY(bench.isShown);
        bench.widget.SetAudioPosition(5.0);
        bench.widget.SetPositionRate(1.0);
        QTRY_VERIFY(bench.diagram.GetShownPosition() > 5.0);
        QTest::mouseClick(&bench.diagram, Qt::LeftButton, {}, {200, 20});
        const double clicked = bench.widget.GetAudioPosition();
        QVERIFY(clicked > 40.0);
        QCOMPARE(bench.diagram.GetShownPosition(), clicked);
        bench.widget.SetAudioPosition(clicked);
        QTRY_VERIFY(bench.diagram.GetShownPosition() > clicked);
    }

    void anotherFileStandsStill()
    {
        Bench bench;
        QVERIFY(bench.isShown);
        bench.widget.SetPositionRate(1.0);
        QVERIFY(Access::IsLineMoving(bench.diagram));
        bench.widget.Initilize({}, 50.0);
        QVERIFY(!Access::IsLineMoving(bench.diagram));
        QCOMPARE(bench.diagram.GetShownPosition(), 0.0);
    }

    void ratesThatMakeNoSenseCountAsZero_data()
    {
        QTest::addColumn<double>("rate");
        QTest::newRow("backwards") << -1.0;
        QTest::newRow("too fast") << 16.001;
        QTest::newRow("infinite") << std::numeric_limits<double>::infinity();
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    }

    void ratesThatMakeNoSenseCountAsZero()
    {
        QFETCH(const double, rate);
        Bench bench;
        bench.widget.SetPositionRate(16.0);
        QVERIFY(Access::IsLineMoving(bench.diagram));
        bench.widget.SetPositionRate(rate);
        QVERIFY(!Access::IsLineMoving(bench.diagram));
    }

    void positionsThatAreNotFiniteDoNotPaintOnAndOn()
    {
        Bench bench;
        QVERIFY(bench.isShown);
        bench.widget.SetFollowsPosition(false);
        bench.widget.SetPositionRate(1.0);
        for (const double position :
             {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
            bench.widget.SetAudioPosition(position);
            QSignalSpy updates(&bench.diagram, &BGFXWaveformDiagramWidget::Update);
            Access::TickLine(bench.diagram);
            Access::TickLine(bench.diagram);
            QCOMPARE(updates.count(), 0);
        }
    }
};

QTEST_MAIN(TestWaveformMotion)
#include "tst_waveformmotion.moc"
