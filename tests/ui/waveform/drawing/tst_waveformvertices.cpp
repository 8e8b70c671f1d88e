#include "ui/waveform/drawing/Projection.h"
#include "ui/waveform/drawing/SampleExtremes.h"
#include "ui/waveform/drawing/WaveformVertices.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {
constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float largest = std::numeric_limits<float>::max();
} // namespace

class TestWaveformVertices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void growsTheExtentOnlyForPeaksOfTwoAndMore_data()
    {
        QTest::addColumn<QList<float>>("samples");
        QTest::addColumn<double>("extent");
        QTest::newRow("none") << QList<float>{} << 1.0;
        QTest::newRow("0.9") << QList<float>{0.1F, 0.9F} << 1.0;
        QTest::newRow("1.9") << QList<float>{1.9F} << 1.0;
        QTest::newRow("2.0") << QList<float>{2.0F} << 2.0;
        QTest::newRow("2.7") << QList<float>{-0.5F, 2.7F, 1.0F} << 2.0;
        QTest::newRow("minus 3.9") << QList<float>{2.0F, -3.9F} << 3.0;
        QTest::newRow("beyond 32 bits") << QList<float>{1e20F} << static_cast<double>(1e20F);
        QTest::newRow("infinity does not count") << QList<float>{infinity, -infinity, 2.5F} << 2.0;
        QTest::newRow("not-a-number does not count") << QList<float>{notANumber, 4.5F, notANumber} << 4.0;
        QTest::newRow("nothing finite") << QList<float>{notANumber, infinity} << 1.0;
    }

    void growsTheExtentOnlyForPeaksOfTwoAndMore()
    {
        QFETCH(const QList<float>, samples);
        QTEST(AmplitudeExtent(SampleExtremes(samples).Peak()), "extent");
    }

    void hasOneVertexPerSample()
    {
        const QList<float> samples = {0.5F, -1.0F, 2.5F};
        const WaveformStrip vertices(samples, static_cast<int>(samples.size()),
                                     {.stepSize = 100, .sampleRate = 8000});
        QCOMPARE(vertices.Size(), 3U);
        QCOMPARE(vertices[0].x, 0.0F);
        QCOMPARE(vertices[1].x, 0.0125F);
        QCOMPARE(vertices[2].x, 0.025F);
        QCOMPARE(vertices[0].y, 0.5F);
        QCOMPARE(vertices[1].y, -1.0F);
        QCOMPARE(vertices[2].y, 2.5F);
    }

    void dividesInSinglePrecision()
    {
        const QList<float> samples(40'000'003, 0.0F);
        const WaveformStrip vertices(samples, static_cast<int>(samples.size()),
                                     {.stepSize = 3, .sampleRate = 44100});
        // 120,000,003 is no float; its nearest, 120,000,000, is divided.
        const float expected = 120'000'000.0F / 44100.0F;
        QVERIFY(vertices[40'000'001].x == expected);
    }

    void drawsSilenceBehindTheSamplesByItsTwoEnds()
    {
        const QList<float> samples = {0.5F, 0.5F};
        const WaveformStrip vertices(samples, 12, {.stepSize = 10, .sampleRate = 100});
        QCOMPARE(vertices.Size(), 4U);
        QCOMPARE(vertices[1].y, 0.5F);
        QCOMPARE(vertices[2].x, 0.2F);
        QCOMPARE(vertices[2].y, 0.0F);
        QCOMPARE(vertices[3].x, 1.1F);
        QCOMPARE(vertices[3].y, 0.0F);
    }

    void drawsOneVertexOfSilence()
    {
        const WaveformStrip vertices({}, 1, {.stepSize = 10, .sampleRate = 100});
        QCOMPARE(vertices.Size(), 1U);
        QCOMPARE(vertices[0].x, 0.0F);
    }

    void countsSilenceInSamplesButAudioInSteps()
    {
        // Two seconds of silence at 100 Hz are 200 vertices whatever the step size, so that they look longer.
        QCOMPARE(VertexCount(7, 2.0, 100), 207);
        const WaveformStrip vertices({}, 200, {.stepSize = 10, .sampleRate = 100});
        QCOMPARE(vertices[vertices.Size() - 1].x, 19.9F);
        QCOMPARE(BufferLength(200, {.stepSize = 10, .sampleRate = 100}), 20.0);
    }

    void countsNoMoreVerticesThanAnInt_data()
    {
        QTest::addColumn<double>("delay");
        QTest::addColumn<int>("rate");
        QTest::addColumn<int>("count");
        constexpr int most = std::numeric_limits<int>::max();
        const double inf = std::numeric_limits<double>::infinity();
        QTest::newRow("none") << 0.0 << 48000 << 5;
        QTest::newRow("fractions of a sample are cut") << 0.00999 << 1000 << 14;
        QTest::newRow("negative delay") << -2.0 << 48000 << 5;
        QTest::newRow("not a number") << std::nan("") << 48000 << 5;
        QTest::newRow("minus infinity") << -inf << 48000 << 5;
        QTest::newRow("infinity") << inf << 48000 << most;
        QTest::newRow("a billion seconds") << 1e9 << 48000 << most;
        QTest::newRow("no rate") << 10.0 << 0 << 5;
        QTest::newRow("negative rate") << 10.0 << -48000 << 5;
    }

    void countsNoMoreVerticesThanAnInt()
    {
        QFETCH(const double, delay);
        QFETCH(const int, rate);
        QTEST(VertexCount(5, delay, rate), "count");
    }

    void aDelayOfAnyLengthCostsNothing()
    {
        const QList<float> samples(10, 0.5F);
        const WaveformStrip vertices(samples, std::numeric_limits<int>::max(),
                                     {.stepSize = 1000, .sampleRate = 1});
        QCOMPARE(vertices.Size(), 12U);
        QCOMPARE(vertices[vertices.Size() - 1].x, 2147483646000.0F);
    }

    void drawsSamplesThatAreNoNumbersAsSilence()
    {
        const QList<float> samples = {notANumber, infinity, -infinity, largest, -largest};
        const WaveformStrip vertices(samples, static_cast<int>(samples.size()),
                                     {.stepSize = 1, .sampleRate = 8000});
        QCOMPARE(vertices[0].y, 0.0F);
        QCOMPARE(vertices[1].y, 0.0F);
        QCOMPARE(vertices[2].y, 0.0F);
        QCOMPARE(vertices[3].y, largest);
        QCOMPARE(vertices[4].y, -largest);
    }

    void hasNoTimesWithoutARate_data()
    {
        QTest::addColumn<int>("rate");
        QTest::newRow("zero") << 0;
        QTest::newRow("negative") << -44100;
    }

    void hasNoTimesWithoutARate()
    {
        QFETCH(const int, rate);
        const SampleSpacing spacing = {.stepSize = 5, .sampleRate = rate};
        const QList<float> samples = {1.0F, 0.25F};
        const WaveformStrip vertices(samples, 3, spacing);
        QCOMPARE(vertices.Size(), 3U);
        QCOMPARE(vertices[1].x, 0.0F);
        QCOMPARE(vertices[2].x, 0.0F);
        QCOMPARE(vertices[1].y, 0.25F);
        QCOMPARE(BufferLength(3, spacing), 0.0);
    }

    void measuresTheBufferWithWrappingThirtyTwoBits()
    {
        QCOMPARE(BufferLength(1000, {.stepSize = 50, .sampleRate = 10000}), 5.0);
        // 50,000 x 50,000 wraps to -1,794,967,296.
        QCOMPARE(BufferLength(50000, {.stepSize = 50000, .sampleRate = 1000}), -1794967.296);
    }

    void projectsTheSceneRect()
    {
        const QMatrix4x4 projection = ProjectionOf(QRectF(5.0, 0.0, 4.0, 2.0), 3.0);
        QCOMPARE(projection.map(QVector3D(2.0F, -2.0F, 0.0F)).toPointF(), QPointF(-1.0, -1.0));
        QCOMPARE(projection.map(QVector3D(6.0F, 2.0F, 0.0F)).toPointF(), QPointF(1.0, 1.0));
        QCOMPARE(projection.map(QVector3D(4.0F, 0.0F, 0.0F)).toPointF(), QPointF(0.0, 0.0));
        QCOMPARE(projection.map(QVector3D(4.0F, 0.0F, -0.01F)).z(), 0.0F);
        QCOMPARE(projection.map(QVector3D(4.0F, 0.0F, 100.0F)).z(), 1.0F);
    }

    void keepsWhatNoFloatCanHoldFinite()
    {
        QCOMPARE(ToCoordinate(0.5), 0.5F);
        QCOMPARE(ToCoordinate(1e300), largest);
        QCOMPARE(ToCoordinate(-std::numeric_limits<double>::infinity()), -largest);
        QVERIFY(std::isnan(ToCoordinate(std::numeric_limits<double>::quiet_NaN())));
    }

    void projectsASceneRectThatBeginsAboveZeroAroundTheMiddle()
    {
        // Bottom is 1 - 3 and top 3 - 1: what the rect leaves out below, it leaves out above.
        const QMatrix4x4 projection = ProjectionOf(QRectF(5.0, 1.0, 4.0, 3.0), 3.0);
        QCOMPARE(projection.map(QPointF(2.0, -2.0)), QPointF(-1.0, -1.0));
        QCOMPARE(projection.map(QPointF(6.0, 2.0)), QPointF(1.0, 1.0));
    }

    void drawsWhatIsVisibleAndANeighbourOnBothSides_data()
    {
        QTest::addColumn<float>("left");
        QTest::addColumn<float>("right");
        QTest::addColumn<VertexRange>("range");
        // Ten samples a tenth of a second apart, then silence up to 4.9 seconds, of which two vertices are made.
        QTest::newRow("all") << 0.0F << 4.9F << VertexRange{0, 12};
        QTest::newRow("far around") << -largest << largest << VertexRange{0, 12};
        QTest::newRow("infinitely far around") << -infinity << infinity << VertexRange{0, 12};
        QTest::newRow("between vertices") << 0.25F << 0.55F << VertexRange{2, 5};
        QTest::newRow("between two neighbours") << 0.31F << 0.39F << VertexRange{3, 2};
        QTest::newRow("from vertex to vertex") << 0.25F << 0.5F << VertexRange{2, 5};
        QTest::newRow("the other way round") << 0.55F << 0.25F << VertexRange{2, 5};
        QTest::newRow("a point on a vertex") << 0.5F << 0.5F << VertexRange{4, 3};
        QTest::newRow("at the start") << 0.0F << 0.15F << VertexRange{0, 3};
        QTest::newRow("over the start") << -3.0F << 0.15F << VertexRange{0, 3};
        QTest::newRow("into the silence") << 0.85F << 2.0F << VertexRange{8, 4};
        QTest::newRow("within the silence") << 2.0F << 3.0F << VertexRange{10, 2};
        QTest::newRow("over the end") << 4.0F << 9.0F << VertexRange{10, 2};
        QTest::newRow("before the start") << -3.0F << -2.0F << VertexRange{0, 1};
        QTest::newRow("behind the end") << 6.0F << 7.0F << VertexRange{11, 1};
    }

    void drawsWhatIsVisibleAndANeighbourOnBothSides()
    {
        QFETCH(const float, left);
        QFETCH(const float, right);
        const WaveformStrip vertices(QList<float>(10, 0.5F), 50, {.stepSize = 1, .sampleRate = 10});
        QCOMPARE(vertices.Size(), 12U);
        QTEST(VisibleVertices(vertices, left, right), "range");
    }

    void anyRangeOfAnyStripStaysWithinIt()
    {
        const WaveformStrip none;
        QCOMPARE(VisibleVertices(none, 0.0F, 1.0F), (VertexRange{0, 0}));
        const WaveformStrip timeless(QList<float>(5, 0.5F), 5, {.stepSize = 1, .sampleRate = 0});
        QCOMPARE(VisibleVertices(timeless, -1.0F, 1.0F), (VertexRange{0, 5}));
        for (const float left : {notANumber, -infinity, 0.0F, infinity}) {
            for (const float right : {notANumber, -infinity, 0.0F, infinity}) {
                const VertexRange range = VisibleVertices(timeless, left, right);
                QVERIFY(range.first + range.count <= 5U);
            }
        }
    }

    /** Late in a long file several vertices share a time in single precision. */
    void missesNoVertexThatRoundingMovedIntoView()
    {
        const WaveformStrip vertices(QList<float>(2'000'000, 0.5F), 2'000'000,
                                     {.stepSize = 100, .sampleRate = 48'000});
        const float left = 4000.0F;
        const float right = 4000.05F;
        const VertexRange range = VisibleVertices(vertices, left, right);
        for (std::size_t i = 0; i < vertices.Size(); ++i) {
            const bool isDrawn = i >= range.first && i < range.first + range.count;
            const bool isVisible = vertices[i].x >= left && vertices[i].x <= right;
            if (isVisible && !isDrawn) {
                QFAIL("a visible vertex is left out");
            }
        }
        QVERIFY(range.count >= 24 && range.count <= 30);
    }
};

QTEST_APPLESS_MAIN(TestWaveformVertices)
#include "tst_waveformvertices.moc"
