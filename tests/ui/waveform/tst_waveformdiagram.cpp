#include "PaintCounter.h"
#include "SignalRecorder.h"
#include "WaveformTestAccess.h"

#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtTest/QtTest>

#include <cmath>
#include <functional>
#include <limits>
#include <memory>

using namespace vantoraudio::vantorAudioEngine::UI;
using namespace Qt::Literals::StringLiterals;
using Access = WaveformTestAccess;
using Pair = std::pair<double, double>;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

QAudioFormat FormatOf(int sampleRate)
{
    QAudioFormat format;
    format.setSampleRate(sampleRate);
    format.setChannelCount(1);
    format.setSampleFormat(QAudioFormat::Float);
    return format;
}

/** A diagram 1000 pixels wide with `duration` seconds at 1000 Hz. */
struct LoadedDiagram
{
    explicit LoadedDiagram(double duration = 100.0)
    {
        diagram.resize(1000, 100);
        diagram.SetAudioFormat(FormatOf(1000));
        diagram.SetDuration(duration);
        recorder.Take();
    }

    BGFXWaveformDiagramWidget diagram;
    SignalRecorder recorder{diagram};
};

void HoverAt(QWidget& widget, double x)
{
    const QPointF position(x, 50.0);
    QMouseEvent event(QEvent::MouseMove, position, widget.mapToGlobal(position), Qt::NoButton, Qt::NoButton,
                      Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

/** Tells whether painting accepted its event. */
class AcceptanceWatcher : public BGFXWaveformDiagramWidget
{
public:
    void paintEvent(QPaintEvent* event) override
    {
        event->ignore();
        BGFXWaveformDiagramWidget::paintEvent(event);
        m_accepted = event->isAccepted();
    }
    bool m_accepted = false;
};

} // namespace

class TestWaveformDiagram : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsEmpty()
    {
        BGFXWaveformDiagramWidget diagram;
        QCOMPARE(diagram.objectName(), u"BGFXWaveformDiagramWidget"_s);
        QVERIFY(diagram.testAttribute(Qt::WA_MouseTracking));
        QVERIFY(diagram.hasMouseTracking());
        QVERIFY(Access::Projection(diagram).isIdentity());
        QCOMPARE(Access::Duration(diagram), 0.0);
        QCOMPARE(diagram.GetDelay(), 0.0);
        QCOMPARE(diagram.GetTotalLength(), 0.0);
        QCOMPARE(Access::Format(diagram), QAudioFormat());
        QCOMPARE(Access::PressPosition(diagram), QPoint(0, 0));
        QCOMPARE(diagram.GetSceneRect(), QRectF(0.0, 0.0, 1.0, 1.0));
        QCOMPARE(Access::Buffer(diagram).start, 0.0);
        QCOMPARE(Access::Buffer(diagram).end, 0.0);
        QCOMPARE(Access::RequestedStart(diagram), 0.0);
        QCOMPARE(diagram.GetAudioPosition(), 0.0);
        QVERIFY(!Access::HasSelection(diagram));
        QCOMPARE(diagram.GetSelectionStartTime(), 0.0);
        QCOMPARE(diagram.GetSelectionEndTime(), 0.0);
        QCOMPARE(Access::SelectionAtGrab(diagram), Pair(0.0, 0.0));
        QVERIFY(!diagram.GetEditMode());
        QCOMPARE(Access::GrabOf(diagram), Grab{});
        QVERIFY(Access::ScrollBackToZoomOut(diagram));
        QCOMPARE(Access::AmplitudeExtentOf(diagram), 1.0);
        QVERIFY(!Access::HasVertexBuffer(diagram));
        QVERIFY(Access::Vertices(diagram).IsEmpty());
        QVERIFY(!Access::HasProgram(diagram));
        QVERIFY(!Access::HasUniform(diagram));
    }

    void startsWithItsColours()
    {
        const BGFXWaveformDiagramWidget diagram;
        QCOMPARE(diagram.m_backgroundColor, QColor(27, 27, 27, 255));
        QCOMPARE(diagram.m_gridColor, QColor(150, 150, 150, 255));
        QCOMPARE(diagram.m_waveformColor, QColor(150, 150, 150, 255));
        QCOMPARE(diagram.m_selectionColor, QColor(115, 140, 155, 255));
        QCOMPARE(diagram.m_positionMarkerColor, QColor(52, 151, 209, 255));
    }

    void listsItsSignalsAndItsSlotInOrder()
    {
        const QMetaObject& meta = BGFXWaveformDiagramWidget::staticMetaObject;
        QList<QByteArray> names;
        for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
            names << meta.method(i).methodSignature();
        }
        QCOMPARE(names, (QList<QByteArray>{"Update()", "SceneRectChanged(QRectF)", "GetSamples(double,double,int)",
                                           "SelectionChanged(std::pair<double,double>)",
                                           "AudioPositionChanged(double)", "OnCleanupRequested()"}));
    }

    void resetForgetsTheFileButNotTheDelay()
    {
        LoadedDiagram loaded;
        auto& diagram = loaded.diagram;
        diagram.SetEditMode(true);
        diagram.SetDelay(5.0);
        diagram.SetSceneRange(20.0, 40.0);
        diagram.UpdateAudioSampleBuffer({0.5F, 3.5F});
        diagram.SetSelectedSnippet({21.0, 22.0});
        HoverAt(diagram, 50.0);
        QCOMPARE(Access::SelectionAtGrab(diagram), Pair(21.0, 22.0));
        Access::GrabOf(diagram) = {.startEdge = true, .endEdge = true, .body = true};
        loaded.recorder.Take();

        diagram.Reset();
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(0, 0)"_s, u"Update"_s}));
        QCOMPARE(Access::Duration(diagram), 0.0);
        QCOMPARE(diagram.GetDelay(), 5.0);
        QCOMPARE(diagram.GetSceneRect(), QRectF(0.0, 0.0, 1.0, 3.0));
        QCOMPARE(Access::Buffer(diagram).start, 0.0);
        QCOMPARE(Access::Buffer(diagram).end, 0.0);
        QCOMPARE(Access::RequestedStart(diagram), 0.0);
        QCOMPARE(diagram.GetAudioPosition(), 0.0);
        QCOMPARE(Access::GrabOf(diagram), Grab{});
        QVERIFY(!Access::HasSelection(diagram));
        QCOMPARE(Access::SelectionAtGrab(diagram), Pair(0.0, 0.0));
        QVERIFY(diagram.GetEditMode());
        QCOMPARE(Access::Format(diagram).sampleRate(), 1000);
    }

    void asksForTheAudioWithoutItsDelay()
    {
        BGFXWaveformDiagramWidget diagram;
        diagram.resize(100, 100);
        diagram.SetAudioFormat(FormatOf(1000));
        diagram.SetDelay(200.0);
        SignalRecorder recorder(diagram);
        diagram.SetDuration(400.0);
        // 600 seconds at 1000 Hz on 100 pixels: 600,000 / 100,000.
        QCOMPARE(recorder.Take(), QStringList{u"GetSamples(0, 400, 6)"_s});
        QCOMPARE(diagram.GetSceneRect(), QRectF(0.0, 0.0, 600.0, 1.0));
        QCOMPARE(diagram.GetTotalLength(), 600.0);
        QCOMPARE(Access::StepSize(diagram), 6);
    }

    void delayShowsEverythingAndSendsNoRequestAtTimeZero()
    {
        LoadedDiagram loaded(200.0);
        loaded.diagram.resize(100, 100);
        loaded.diagram.SetSceneRange(50.0, 60.0);
        QCOMPARE(Access::RequestedStart(loaded.diagram), 45.0);
        loaded.recorder.Take();
        loaded.diagram.SetDelay(200.0);
        QCOMPARE(Access::RequestedStart(loaded.diagram), 0.0); // not sent, but remembered
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(0.0, 0.0, 400.0, 1.0));
        QCOMPARE(loaded.diagram.GetDelay(), 200.0);
        QCOMPARE(Access::StepSize(loaded.diagram), 4);
        QCOMPARE(loaded.recorder.Take(), QStringList{});
    }

    void delayCountsForTheStepAlsoWhereNothingIsMissing()
    {
        LoadedDiagram loaded(200.0);
        loaded.diagram.resize(100, 100);
        loaded.diagram.UpdateAudioSampleBuffer(QList<float>(401'000, 0.0F));
        QCOMPARE(Access::StepSize(loaded.diagram), 1);
        loaded.diagram.SetDelay(200.0);
        QCOMPARE(Access::StepSize(loaded.diagram), 4);
    }

    void aNewDurationKeepsTheRequestedStart()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(40.0, 50.0);
        loaded.diagram.SetDuration(200.0);
        QCOMPARE(Access::RequestedStart(loaded.diagram), 35.0);
    }

    void theStepIsReckonedForWhatIsAskedForNotForTheView()
    {
        LoadedDiagram loaded(1000.0);
        loaded.diagram.resize(100, 100);
        loaded.diagram.SetSceneRange(400.0, 600.0);
        // 400 seconds at 1000 Hz on 100 pixels: 400,000 / 100,000.
        QCOMPARE(loaded.recorder.Take(),
                 (QStringList{u"SceneRectChanged(400, 600)"_s, u"GetSamples(300, 700, 4)"_s}));
        QCOMPARE(Access::StepSize(loaded.diagram), 4);
    }

    void remembersARequestThatItDoesNotSend()
    {
        // The view begins at 0, so nothing is sent; samples still on their way are drawn as if it had been.
        LoadedDiagram loaded(1000.0);
        loaded.diagram.SetSceneRange(400.0, 500.0);
        QCOMPARE(Access::RequestedStart(loaded.diagram), 350.0);
        Access::StepSize(loaded.diagram) = 77;
        loaded.recorder.Take();
        loaded.diagram.ScrollTo(0.0);
        QCOMPARE(loaded.recorder.Take(), QStringList{u"SceneRectChanged(0, 100)"_s});
        QCOMPARE(Access::RequestedStart(loaded.diagram), 0.0);
        QCOMPARE(Access::StepSize(loaded.diagram), 1);
    }

    void sceneRangeIsBroughtIntoTheAudio_data()
    {
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("right");
        QTest::addColumn<double>("shownLeft");
        QTest::addColumn<double>("shownRight");
        QTest::newRow("inside") << 20.0 << 40.0 << 20.0 << 40.0;
        QTest::newRow("everything") << -5.0 << 500.0 << 0.0 << 100.0;
        QTest::newRow("behind the end") << 200.0 << 300.0 << 100.0 << 100.0;
        QTest::newRow("inverted") << 40.0 << 20.0 << 40.0 << 20.0;
        QTest::newRow("not a number") << notANumber << notANumber << 0.0 << 0.0;
        QTest::newRow("infinite") << -infinity << infinity << 0.0 << 100.0;
    }

    void sceneRangeIsBroughtIntoTheAudio()
    {
        QFETCH(const double, left);
        QFETCH(const double, right);
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(left, right);
        QTEST(loaded.diagram.GetSceneRect().left(), "shownLeft");
        QTEST(loaded.diagram.GetSceneRect().right(), "shownRight");
    }

    void sceneRangeMayReachIntoTheDelay()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetDelay(20.0);
        loaded.diagram.SetSceneRange(90.0, 115.0);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(90.0, 0.0, 25.0, 1.0));
        loaded.diagram.SetSceneRange(90.0, 150.0);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(90.0, 0.0, 30.0, 1.0));
    }

    void sceneRangeIsAnnouncedBeforeSamplesAreAskedFor()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(40.0, 50.0);
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SceneRectChanged(40, 50)"_s, u"GetSamples(35, 55, 1)"_s}));
    }

    void asksForNothingWhileTheBufferCoversTheView()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(40.0, 50.0);
        loaded.diagram.UpdateAudioSampleBuffer(QList<float>(55'000, 0.1F));
        loaded.recorder.Take();
        loaded.diagram.ScrollTo(42.0);
        QCOMPARE(loaded.recorder.Take(), QStringList{u"SceneRectChanged(42, 52)"_s});
        loaded.diagram.ScrollTo(46.0);
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SceneRectChanged(46, 56)"_s, u"GetSamples(41, 61, 1)"_s}));
    }

    void scrollsAnywhereWithoutClamping()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(40.0, 50.0);
        loaded.recorder.Take();
        loaded.diagram.ScrollTo(95.0);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(95.0, 0.0, 10.0, 1.0));
        QCOMPARE(loaded.recorder.Take(),
                 (QStringList{u"SceneRectChanged(95, 105)"_s, u"GetSamples(90, 100, 1)"_s}));
    }

    void aViewStartingAtZeroNeverTriggersGetSamples()
    {
        LoadedDiagram loaded(3600.0);
        for (const double right : {3600.0, 1800.0, 100.0, 1.0}) {
            loaded.diagram.SetSceneRange(0.0, right);
        }
        for (const QString& line : loaded.recorder.Take()) {
            QVERIFY2(!line.startsWith(u"GetSamples"), qPrintable(line));
        }
    }

    void takesSamplesFromTheRequestedStartOn()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(40.0, 50.0);
        loaded.recorder.Take();
        Access::StepSize(loaded.diagram) = 4;
        loaded.diagram.UpdateAudioSampleBuffer({0.0F, 0.5F, -0.5F, 1.0F, 0.25F});
        QCOMPARE(loaded.recorder.Take(), QStringList{u"Update"_s});
        QCOMPARE(loaded.diagram.GetBufferStart(), 35.0);
        const auto& vertices = Access::Vertices(loaded.diagram);
        QCOMPARE(vertices.Size(), 5U);
        QCOMPARE(vertices[3].x, 0.012F);
        QCOMPARE(vertices[3].y, 1.0F);
        QVERIFY(!Access::HasVertexBuffer(loaded.diagram)); // made in the first frame
        loaded.diagram.grab();
        QVERIFY(Access::HasVertexBuffer(loaded.diagram));
    }

    void bufferEndCountsFromZeroNotFromTheStart()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(40.0, 50.0);
        loaded.diagram.UpdateAudioSampleBuffer(QList<float>(20'000, 0.0F));
        QCOMPARE(Access::Buffer(loaded.diagram).start, 35.0);
        QCOMPARE(Access::Buffer(loaded.diagram).end, 20.0);
    }

    void drawsSamplesOfAnOutdatedRequestFromTheLatestStart()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(40.0, 50.0);
        loaded.diagram.SetSceneRange(70.0, 80.0);
        loaded.diagram.UpdateAudioSampleBuffer(QList<float>(20'000, 0.0F));
        QCOMPARE(loaded.diagram.GetBufferStart(), 65.0);
    }

    void standsTheDelayBehindTheSamplesInWholeSamples()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetDelay(2.0);
        Access::StepSize(loaded.diagram) = 10;
        loaded.diagram.UpdateAudioSampleBuffer(QList<float>(100, 0.5F));
        const auto& vertices = Access::Vertices(loaded.diagram);
        QCOMPARE(vertices[99].y, 0.5F);
        QCOMPARE(vertices[100].y, 0.0F);
        QCOMPARE(vertices[100].x, 1.0F);
        // 100 steps and 2000 samples, each counted as one step of 10.
        QCOMPARE(vertices[vertices.Size() - 1].x, 20.99F);
        QCOMPARE(Access::Buffer(loaded.diagram).end, 21.0);
    }

    void aLouderFileChangesTheExtentButNotTheSceneRect()
    {
        LoadedDiagram loaded;
        loaded.diagram.UpdateAudioSampleBuffer({0.1F, -2.7F});
        QCOMPARE(Access::AmplitudeExtentOf(loaded.diagram), 2.0);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(0.0, 0.0, 100.0, 1.0));
        loaded.diagram.SetDuration(100.0);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(0.0, 0.0, 100.0, 2.0));
        loaded.diagram.UpdateAudioSampleBuffer({0.9F});
        QCOMPARE(Access::AmplitudeExtentOf(loaded.diagram), 1.0);
    }

    void anEmptyListEmptiesTheView()
    {
        LoadedDiagram loaded;
        loaded.diagram.UpdateAudioSampleBuffer({});
        QVERIFY(Access::Vertices(loaded.diagram).IsEmpty());
        loaded.diagram.UpdateAudioSampleBuffer({0.5F, 0.5F});
        loaded.diagram.UpdateAudioSampleBuffer({});
        QVERIFY(Access::Vertices(loaded.diagram).IsEmpty());
        QCOMPARE(Access::Buffer(loaded.diagram).end, 0.0);
    }

    void announcesNewSamplesOutsideItsLock()
    {
        LoadedDiagram loaded;
        bool wasFree = false;
        connect(&loaded.diagram, &BGFXWaveformDiagramWidget::Update, this, [&] {
            wasFree = Access::BufferLock(loaded.diagram).tryLock();
            if (wasFree) {
                Access::BufferLock(loaded.diagram).unlock();
            }
        });
        loaded.diagram.UpdateAudioSampleBuffer({0.5F});
        QVERIFY(wasFree);
    }

    void takesNoSamplesWhileItsLockIsHeldElsewhere()
    {
        LoadedDiagram loaded;
        QSemaphore held;
        QSemaphore taken;
        bool wereTaken = true;
        const std::unique_ptr<QThread> holder(QThread::create([&] {
            const QMutexLocker lock(&Access::BufferLock(loaded.diagram));
            held.release();
            wereTaken = taken.tryAcquire(1, 300); // gives up, as the lock keeps the samples out
        }));
        holder->start();
        held.acquire();
        loaded.diagram.UpdateAudioSampleBuffer({0.5F});
        taken.release();
        holder->wait();
        QVERIFY(!wereTaken);
        QCOMPARE(Access::Vertices(loaded.diagram).Size(), 1U);
    }

    void takesThirteenMillionSamples()
    {
        LoadedDiagram loaded(300.0);
        loaded.diagram.SetAudioFormat(FormatOf(44100));
        const QList<float> samples(13'230'000, 0.25F);
        loaded.diagram.UpdateAudioSampleBuffer(samples);
        QCOMPARE(Access::Vertices(loaded.diagram).Size(), 13'230'000U);
    }

    void positionRightOfTheViewTurnsAPage()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(40.0, 50.0);
        loaded.recorder.Take();
        loaded.diagram.SetAudioPosition(50.5, false);
        QCOMPARE(loaded.diagram.GetAudioPosition(), 50.5);
        QCOMPARE(loaded.recorder.Take(),
                 (QStringList{u"SceneRectChanged(50, 60)"_s, u"GetSamples(45, 65, 1)"_s, u"Update"_s}));
    }

    void positionInTheLastPageShowsTheEnd()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(84.0, 94.0);
        loaded.recorder.Take();
        loaded.diagram.SetAudioPosition(95.0, false);
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SceneRectChanged(90, 100)"_s, u"Update"_s}));
    }

    void theLastPageEndsWithTheAudioNotWithItsDelay()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetDelay(50.0);
        loaded.diagram.SetSceneRange(85.0, 95.0);
        loaded.diagram.SetAudioPosition(95.5, false);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(90.0, 0.0, 10.0, 1.0));
    }

    void positionLeftOfTheViewIsScrolledTo()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(40.0, 50.0);
        loaded.recorder.Take();
        loaded.diagram.SetAudioPosition(20.0, false);
        QCOMPARE(loaded.recorder.Take(),
                 (QStringList{u"SceneRectChanged(20, 30)"_s, u"GetSamples(15, 35, 1)"_s, u"Update"_s}));
    }

    void positionInTheViewOnlyUpdates()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetAudioPosition(99.0, false);
        QCOMPARE(loaded.recorder.Take(), QStringList{u"Update"_s});
    }

    void aViewThatStaysOnlyMovesTheLine_data()
    {
        QTest::addColumn<double>("position");
        QTest::newRow("right of the view") << 55.0;
        QTest::newRow("left of the view") << 3.0;
        QTest::newRow("in the view") << 45.0;
        QTest::newRow("behind the file") << 1e300;
        QTest::newRow("before the file") << -7.0;
    }

    void aViewThatStaysOnlyMovesTheLine()
    {
        QFETCH(const double, position);
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(40.0, 50.0);
        QVERIFY(loaded.diagram.GetFollowsPosition());
        loaded.diagram.SetFollowsPosition(false);
        loaded.recorder.Take();
        loaded.diagram.SetAudioPosition(position, false);
        QCOMPARE(loaded.diagram.GetAudioPosition(), position);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(40.0, 0.0, 10.0, 1.0));
        QCOMPARE(loaded.recorder.Take(), QStringList{u"Update"_s});
    }

    void aViewThatFollowsAgainCatchesUpWithTheNextPosition()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSceneRange(40.0, 50.0);
        loaded.diagram.SetFollowsPosition(false);
        loaded.diagram.SetAudioPosition(61.0, false);
        loaded.diagram.SetFollowsPosition(true);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(40.0, 0.0, 10.0, 1.0));
        loaded.diagram.SetAudioPosition(20.0, false);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(20.0, 0.0, 10.0, 1.0));
    }

    void aViewThatShowsPositionsAtOnceTurnsNoSinglePages()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetShowsPositionAtOnce(true);
        loaded.diagram.SetSceneRange(10.0, 20.0);
        loaded.diagram.SetAudioPosition(75.0, false);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(70.0, 0.0, 10.0, 1.0));
        loaded.diagram.SetAudioPosition(81.0, false);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(80.0, 0.0, 10.0, 1.0));
        loaded.diagram.SetAudioPosition(15.0, false);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(10.0, 0.0, 10.0, 1.0));
        loaded.diagram.SetFollowsPosition(false);
        loaded.diagram.SetAudioPosition(75.0, false);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(10.0, 0.0, 10.0, 1.0));
    }

    void aViewThatShowsPositionsAtOnceStaysWithASelectionThatIsOverrun()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetShowsPositionAtOnce(true);
        loaded.diagram.SetSceneRange(10.0, 20.0);
        loaded.diagram.SetSelectedSnippet({10.0, 20.0});
        loaded.diagram.SetAudioPosition(20.1, false);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(10.0, 0.0, 10.0, 1.0));
        loaded.diagram.ClearSelection();
        loaded.diagram.SetAudioPosition(20.1, false);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(20.0, 0.0, 10.0, 1.0));
    }

    void aViewThatIsKeptFilledAsksAtTheEdgesToo()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetKeepsViewFilled(true);
        const auto requestFor = [&](double left, double right) {
            loaded.diagram.SetSceneRange(left, right);
            return loaded.recorder.Take().value(1);
        };
        QCOMPARE(requestFor(40.0, 50.0), u"GetSamples(35, 55, 1)"_s);
        loaded.diagram.UpdateAudioSampleBuffer(QList<float>(20000));
        loaded.recorder.Take();
        QCOMPARE(requestFor(0.0, 10.0), u"GetSamples(0, 15, 1)"_s);
        // It is on its way.
        QCOMPARE(requestFor(0.0, 10.0), QString());
        loaded.diagram.UpdateAudioSampleBuffer(QList<float>(15000));
        loaded.recorder.Take();
        QCOMPARE(requestFor(0.0, 10.0), QString());
        QCOMPARE(requestFor(0.0, 100.0), u"GetSamples(0, 100, 1)"_s);
        // A file whose last sample ends a little before it does is not read with every move.
        loaded.diagram.UpdateAudioSampleBuffer(QList<float>(99999));
        loaded.recorder.Take();
        QCOMPARE(requestFor(0.0, 100.0), QString());
    }

    void aViewThatIsKeptFilledAsksForFinerSamples()
    {
        LoadedDiagram loaded(8000.0);
        loaded.diagram.UpdateAudioSampleBuffer(QList<float>(1000000));
        loaded.diagram.SetSceneRange(0.0, 10.0);
        loaded.recorder.Take();
        loaded.diagram.SetKeepsViewFilled(true);
        loaded.diagram.SetSceneRange(0.0, 11.0);
        QCOMPARE(loaded.recorder.Take().value(1), u"GetSamples(0, 16.5, 1)"_s);
        // The double click brings the whole file's again, and those are too coarse.
        QTest::mouseDClick(&loaded.diagram, Qt::LeftButton, {}, {500, 50});
        QVERIFY(loaded.recorder.Take().contains(u"GetSamples(0, 8000, 8)"_s));
        loaded.diagram.SetSceneRange(0.0, 11.0);
        QCOMPARE(loaded.recorder.Take().value(1), u"GetSamples(0, 16.5, 1)"_s);
    }

    void aViewThatIsKeptFilledGoesByTheLatestRequest()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetKeepsViewFilled(true);
        const auto requestFor = [&](double left, double right) {
            loaded.diagram.SetSceneRange(left, right);
            return loaded.recorder.Take().filter(u"GetSamples"_s);
        };
        QCOMPARE(requestFor(0.0, 10.0), QStringList{u"GetSamples(0, 15, 1)"_s});
        loaded.diagram.UpdateAudioSampleBuffer(QList<float>(15000));
        // On the way back the samples at hand cover the view, but others are about to come.
        QCOMPARE(requestFor(50.0, 60.0), QStringList{u"GetSamples(45, 65, 1)"_s});
        QCOMPARE(requestFor(0.0, 10.0), QStringList{u"GetSamples(0, 15, 1)"_s});
        QCOMPARE(requestFor(2.0, 12.0), QStringList());
        // A thousandth of a second is much in a view of two.
        QCOMPARE(requestFor(50.0, 50.002), QStringList{u"GetSamples(49.999, 50.003, 1)"_s});
        QCOMPARE(requestFor(50.0015, 50.0035), QStringList{u"GetSamples(50.0005, 50.0045, 1)"_s});
    }

    void aViewThatIsKeptFilledDoesNotTakeSilenceForSamples()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetDelay(10.0);
        loaded.diagram.SetKeepsViewFilled(true);
        loaded.diagram.SetSceneRange(0.0, 10.0);
        loaded.diagram.UpdateAudioSampleBuffer(QList<float>(15000));
        loaded.recorder.Take();
        loaded.diagram.SetSceneRange(8.0, 18.0);
        QCOMPARE(loaded.recorder.Take().value(1), u"GetSamples(3, 23, 1)"_s);
    }

    void loadingAsksOnceOnlyForAViewThatIsKeptFilled()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetKeepsViewFilled(true);
        loaded.diagram.Reset();
        loaded.diagram.SetDuration(50.0);
        loaded.diagram.SetDelay(0.0);
        QCOMPARE(loaded.recorder.Take().filter(u"GetSamples"_s), QStringList{u"GetSamples(0, 50, 1)"_s});
        // The same length again is another file.
        loaded.diagram.SetDuration(50.0);
        QCOMPARE(loaded.recorder.Take().filter(u"GetSamples"_s), QStringList{u"GetSamples(0, 50, 1)"_s});
    }

    void positionMayClearTheSelection()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSelectedSnippet({10.0, 20.0});
        loaded.recorder.Take();
        loaded.diagram.SetAudioPosition(5.0, false);
        QVERIFY(Access::HasSelection(loaded.diagram));
        loaded.diagram.SetAudioPosition(6.0, true);
        QVERIFY(!Access::HasSelection(loaded.diagram));
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"Update"_s, u"Update"_s}));
    }

    void selectsASnippetInEitherOrder()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSelectedSnippet({20.0, 10.0});
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(10, 20)"_s, u"Update"_s}));
        QCOMPARE(loaded.diagram.GetAudioPosition(), 10.0);
        QCOMPARE(loaded.diagram.GetSelectionStartTime(), 10.0);
        QCOMPARE(loaded.diagram.GetSelectionEndTime(), 20.0);
    }

    void ignoresTheSnippetThatIsSelectedAlready()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSelectedSnippet({10.0, 20.0});
        loaded.diagram.SetAudioPosition(50.0, false);
        loaded.recorder.Take();
        loaded.diagram.SetSelectedSnippet({10.0009, 19.9991});
        QCOMPARE(loaded.recorder.Take(), QStringList{});
        QCOMPARE(loaded.diagram.GetAudioPosition(), 50.0);
        loaded.diagram.SetSelectedSnippet({10.0, 20.002});
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(10, 20.002)"_s, u"Update"_s}));
    }

    void selectsTheSameSnippetAgainWhenItWasCleared()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSelectedSnippet({10.0, 20.0});
        loaded.diagram.SetAudioPosition(0.0, true);
        loaded.recorder.Take();
        loaded.diagram.SetSelectedSnippet({10.0, 20.0});
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(10, 20)"_s, u"Update"_s}));
    }

    void cutsASnippetToNinetyMinutesAndToTheView()
    {
        LoadedDiagram loaded(20'000.0);
        loaded.diagram.SetSelectedSnippet({1000.0, 9000.0});
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(1000, 6400)"_s, u"Update"_s}));
        loaded.diagram.SetSceneRange(2000.0, 3000.0);
        loaded.recorder.Take();
        loaded.diagram.SetSelectedSnippet({1900.0, 3100.0});
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(2000, 3000)"_s, u"Update"_s}));
        QCOMPARE(loaded.diagram.GetAudioPosition(), 2000.0);
    }

    void selectionStartTakesThePositionAlong()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSelectedSnippet({10.0, 20.0});
        loaded.recorder.Take();
        loaded.diagram.SetSelectionStartTime(15.0);
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(15, 20)"_s, u"Update"_s}));
        QCOMPARE(loaded.diagram.GetAudioPosition(), 15.0);
    }

    void selectionEndLeavesThePosition()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSelectedSnippet({10.0, 20.0});
        loaded.recorder.Take();
        loaded.diagram.SetSelectionEndTime(30.0);
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(10, 30)"_s, u"Update"_s}));
        QCOMPARE(loaded.diagram.GetAudioPosition(), 10.0);
        loaded.diagram.SetSelectionEndTime(5.0);
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(5, 10)"_s, u"Update"_s}));
        QCOMPARE(loaded.diagram.GetAudioPosition(), 10.0);
    }

    void selectionStartBehindTheEndChangesPlaces()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSelectedSnippet({10.0, 20.0});
        loaded.recorder.Take();
        loaded.diagram.SetSelectionStartTime(25.0);
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(20, 25)"_s, u"Update"_s}));
        QCOMPARE(loaded.diagram.GetAudioPosition(), 20.0);
    }

    void selectionEndsAreClampedToTheAudio_data()
    {
        QTest::addColumn<double>("time");
        QTest::addColumn<QString>("afterStart");
        QTest::addColumn<QString>("afterEnd");
        QTest::newRow("negative") << -5.0 << u"SelectionChanged(0, 20)"_s << u"SelectionChanged(0, 10)"_s;
        QTest::newRow("past the end") << 500.0 << u"SelectionChanged(20, 100)"_s << u"SelectionChanged(10, 100)"_s;
        QTest::newRow("not a number") << notANumber << u"SelectionChanged(0, 20)"_s
                                      << u"SelectionChanged(0, 10)"_s;
    }

    void selectionEndsAreClampedToTheAudio()
    {
        QFETCH(const double, time);
        LoadedDiagram start;
        start.diagram.SetDelay(50.0);
        start.diagram.SetSelectedSnippet({10.0, 20.0});
        start.recorder.Take();
        start.diagram.SetSelectionStartTime(time);
        QTEST(start.recorder.Take().first(), "afterStart");
        LoadedDiagram end;
        end.diagram.SetDelay(50.0);
        end.diagram.SetSelectedSnippet({10.0, 20.0});
        end.recorder.Take();
        end.diagram.SetSelectionEndTime(time);
        QTEST(end.recorder.Take().first(), "afterEnd");
    }

    void aSingleEndPairsWithWhatTheSelectionLastHeld()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSelectedSnippet({10.0, 20.0});
        loaded.diagram.SetAudioPosition(0.0, true);
        QCOMPARE(loaded.diagram.GetSelectionEndTime(), 0.0);
        loaded.recorder.Take();
        loaded.diagram.SetSelectionStartTime(15.0);
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(15, 20)"_s, u"Update"_s}));
    }

    void selectionsAreAlwaysFinite_data()
    {
        QTest::addColumn<double>("duration");
        QTest::newRow("a file of sensible length") << 100.0;
        QTest::newRow("a damaged header that makes it infinite") << std::numeric_limits<double>::infinity();
    }

    void selectionsAreAlwaysFinite()
    {
        QFETCH(const double, duration);
        LoadedDiagram loaded(duration);
        const auto isFinite = [&] {
            return std::isfinite(loaded.diagram.GetSelectionStartTime()) &&
                   std::isfinite(loaded.diagram.GetSelectionEndTime());
        };
        constexpr double infinity = std::numeric_limits<double>::infinity();
        for (const double time : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN(), 5.0}) {
            loaded.diagram.SetSelectedSnippet({time, 7.0});
            QVERIFY(isFinite());
            loaded.diagram.SetSelectedSnippet({1.0, time});
            QVERIFY(isFinite());
            loaded.diagram.SetSelectionStartTime(time);
            QVERIFY(isFinite());
            loaded.diagram.SetSelectionEndTime(time);
            QVERIFY(isFinite());
        }
    }

    void resetKeepsThePairForASingleEnd()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSelectedSnippet({10.0, 20.0});
        loaded.diagram.Reset();
        QCOMPARE(loaded.diagram.GetSelectionEndTime(), 0.0);
        loaded.diagram.SetDuration(100.0);
        loaded.recorder.Take();
        loaded.diagram.SetSelectionStartTime(15.0);
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(15, 20)"_s, u"Update"_s}));
    }

    void aFirstSingleEndPairsWithZero()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetSelectionEndTime(15.0);
        QCOMPARE(loaded.recorder.Take(), (QStringList{u"SelectionChanged(0, 15)"_s, u"Update"_s}));
    }

    void callsThatChangeThePictureRepaint_data()
    {
        using Diagram = BGFXWaveformDiagramWidget;
        QTest::addColumn<std::function<void(Diagram&)>>("call");
        const auto add = [](const char* name, std::function<void(Diagram&)> call) {
            QTest::newRow(name) << std::move(call);
        };
        add("Reset", [](Diagram& diagram) { diagram.Reset(); });
        add("SetAudioPosition", [](Diagram& diagram) { diagram.SetAudioPosition(5.0, false); });
        add("SetSelectedSnippet", [](Diagram& diagram) { diagram.SetSelectedSnippet({5.0, 6.0}); });
        add("SetSceneRange", [](Diagram& diagram) { diagram.SetSceneRange(5.0, 6.0); });
        add("ScrollTo", [](Diagram& diagram) { diagram.ScrollTo(5.0); });
        add("UpdateAudioSampleBuffer", [](Diagram& diagram) { diagram.UpdateAudioSampleBuffer({0.5F}); });
    }

    void callsThatChangeThePictureRepaint()
    {
        QFETCH(const std::function<void(BGFXWaveformDiagramWidget&)>, call);
        LoadedDiagram loaded;
        loaded.diagram.show();
        QVERIFY(QTest::qWaitForWindowExposed(&loaded.diagram));
        QCoreApplication::processEvents();
        PaintCounter counter(loaded.diagram);
        call(loaded.diagram);
        QTRY_COMPARE(counter.m_paints, 1);
    }

    void singleEndsScheduleNoRepaint()
    {
        LoadedDiagram loaded;
        loaded.diagram.show();
        QVERIFY(QTest::qWaitForWindowExposed(&loaded.diagram));
        QCoreApplication::processEvents();
        PaintCounter counter(loaded.diagram);
        loaded.diagram.SetSelectionStartTime(15.0);
        loaded.diagram.SetSelectionEndTime(25.0);
        QCoreApplication::processEvents();
        QCOMPARE(counter.m_paints, 0);
        loaded.diagram.SetSelectedSnippet({30.0, 40.0});
        QTRY_COMPARE(counter.m_paints, 1);
    }

    void anOwnerMayAnswerAtOnce()
    {
        LoadedDiagram loaded;
        connect(&loaded.diagram, &BGFXWaveformDiagramWidget::GetSamples, &loaded.diagram,
                [&](double start, double end, int stepSize) {
                    loaded.diagram.UpdateAudioSampleBuffer(
                        QList<float>(static_cast<qsizetype>((end - start) * 1000.0 / stepSize), 0.5F));
                });
        loaded.diagram.SetDuration(100.0);
        QCOMPARE(Access::Vertices(loaded.diagram).Size(), 100'000U);
        loaded.diagram.SetSceneRange(40.0, 50.0);
        QCOMPARE(loaded.diagram.GetBufferStart(), 35.0);
        QCOMPARE(Access::Vertices(loaded.diagram).Size(), 20'000U);
    }

    void anOwnerMayResetFromASignal()
    {
        LoadedDiagram loaded;
        const auto reset = [&] {
            if (Access::Duration(loaded.diagram) != 0.0) {
                loaded.diagram.Reset();
            }
        };
        connect(&loaded.diagram, &BGFXWaveformDiagramWidget::SelectionChanged, this, reset);
        loaded.diagram.SetSelectedSnippet({10.0, 20.0});
        QVERIFY(!Access::HasSelection(loaded.diagram));
        QCOMPARE(loaded.diagram.GetTotalLength(), 0.0);
        QCOMPARE(loaded.diagram.GetAudioPosition(), 0.0);

        loaded.diagram.SetDuration(100.0);
        connect(&loaded.diagram, &BGFXWaveformDiagramWidget::SceneRectChanged, this, reset);
        loaded.diagram.SetAudioPosition(500.0, false);
        QCOMPARE(loaded.diagram.GetSceneRect(), QRectF(0.0, 0.0, 1.0, 1.0));
    }

    void cleanupDropsTheUniformOnly()
    {
        LoadedDiagram loaded;
        loaded.diagram.OnCleanupRequested(); // before any frame
        loaded.diagram.UpdateAudioSampleBuffer({0.5F});
        loaded.diagram.grab();
        QVERIFY(Access::HasProgram(loaded.diagram));
        QVERIFY(Access::HasUniform(loaded.diagram));
        loaded.diagram.OnCleanupRequested();
        QVERIFY(!Access::HasProgram(loaded.diagram));
        QVERIFY(!Access::HasUniform(loaded.diagram));
        QVERIFY(Access::HasVertexBuffer(loaded.diagram));
        loaded.diagram.grab();
        QVERIFY(Access::HasProgram(loaded.diagram));
        QVERIFY(Access::HasUniform(loaded.diagram));
    }

    void writesADebugLineForEachEvent()
    {
        LoadedDiagram loaded;
        const auto line = [](const char* kind) {
            return QRegularExpression(
                u"^BGFXWaveformDiagramWidget :: %1 \\[this: .*BGFXWaveformDiagramWidget\\(0x[0-9a-f]+.*\\) \\] \\[objectName: \"BGFXWaveformDiagramWidget\" \\] \\[event:  .*%1.* \\]$"_s
                    .arg(QLatin1StringView(kind)));
        };
        QTest::ignoreMessage(QtDebugMsg, line("QResizeEvent"));
        QTest::ignoreMessage(QtDebugMsg, line("QShowEvent"));
        QTest::ignoreMessage(QtDebugMsg, line("QPaintEvent"));
        loaded.diagram.show();
        QVERIFY(QTest::qWaitForWindowExposed(&loaded.diagram));
        QTest::qWait(0);
    }

    void acceptsItsPaintEvents()
    {
        AcceptanceWatcher diagram;
        diagram.resize(100, 50);
        diagram.grab();
        QVERIFY(diagram.m_accepted);
    }

    void acceptsAPaintEventThatFindsNothingToDrawInto()
    {
        AcceptanceWatcher diagram;
        diagram.resize(0, 50);
        QPaintEvent event(QRect(0, 0, 1, 1));
        diagram.paintEvent(&event);
        QVERIFY(diagram.m_accepted);
    }

    void paintsAndMovesWithoutAnEvent()
    {
        LoadedDiagram loaded;
        loaded.diagram.SetEditMode(true);
        loaded.diagram.UpdateAudioSampleBuffer({0.5F});
        loaded.recorder.Take();
        Access::PaintWithoutEvent(loaded.diagram);
        Access::MoveWithoutEvent(loaded.diagram);
        QCOMPARE(loaded.recorder.Take(), QStringList{});
    }
};

QTEST_MAIN(TestWaveformDiagram)
#include "tst_waveformdiagram.moc"
