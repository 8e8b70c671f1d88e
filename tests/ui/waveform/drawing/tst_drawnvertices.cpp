#include "ui/waveform/drawing/DrawnVertices.h"
#include "ui/waveform/drawing/Projection.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <numeric>
#include <random>

using namespace vantoraudio::vantorAudioEngine::UI;
using vantoraudio::bgfx::PixelColumns;
using vantoraudio::vantor3D::Vertex::Pos2f;

namespace {

constexpr int Rate = 1000;

struct Drawn
{
    Drawn(const QList<float>& samples, double delay, double left, double right, int width)
        : strip(samples, VertexCount(static_cast<std::size_t>(samples.size()), delay, Rate),
                {.stepSize = 1, .sampleRate = Rate})
        , columns(ProjectionOf(QRectF(left, 0.0, right - left, 1.0), 0.0), {0, 0, width, 300})
        , range(VisibleVertices(strip, ToCoordinate(left), ToCoordinate(right)))
        , vertices(DrawnVertices(strip, SampleExtremes(samples), range, columns))
    {
    }

    [[nodiscard]] bool HasDrawn(float x, float y) const
    {
        return std::ranges::any_of(vertices, [&](const Pos2f& vertex) { return vertex.x == x && vertex.y == y; });
    }

    WaveformStrip strip;
    PixelColumns columns;
    VertexRange range;
    std::vector<Pos2f> vertices;
};

QList<float> Noise(qsizetype count)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> level(-0.9F, 0.9F);
    QList<float> samples(count);
    std::ranges::generate(samples, [&] { return level(random); });
    return samples;
}

} // namespace

class TestDrawnVertices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbersTheColumnsFromTheLeftEdge()
    {
        const PixelColumns columns(ProjectionOf(QRectF(5.0, 0.0, 4.0, 1.0), 3.0), {0, 0, 400, 300});
        QCOMPARE(columns.Width(), 400);
        QCOMPARE(columns.At(2.0F), 0.0);
        QCOMPARE(columns.At(4.0F), 200.0);
        QCOMPARE(columns.At(6.0F), 400.0);
        QVERIFY(columns == PixelColumns(ProjectionOf(QRectF(5.0, 0.0, 4.0, 1.0), 3.0), {0, 0, 400, 300}));
        QVERIFY(columns != PixelColumns(ProjectionOf(QRectF(5.0, 0.0, 4.0, 1.0), 3.0), {0, 0, 401, 300}));
        QVERIFY(columns != PixelColumns(ProjectionOf(QRectF(5.0, 0.0, 4.1, 1.0), 3.0), {0, 0, 400, 300}));
    }

    void drawsAllVerticesWhereTheyAreFew()
    {
        const Drawn drawn(Noise(2000), 0.0, 0.0, 1.5, 400);
        QCOMPARE(drawn.range.count, std::size_t{1502}); // with the neighbour on the right
        QCOMPARE(drawn.vertices.size(), std::size_t{1502});
    }

    void drawsFirstLowestHighestAndLastOfAColumn()
    {
        // Two columns of five samples, the lowest of the second before its highest, that of the first behind it.
        const QList<float> samples = {0.1F, 0.9F, 0.0F, -0.9F, 0.2F, 0.3F, -0.5F, 0.0F, 0.5F, 0.4F};
        const Drawn drawn(samples, 0.0, -0.0005, 0.0095, 2);
        QStringList text;
        for (const Pos2f& vertex : drawn.vertices) {
            text << QStringLiteral("%1 %2").arg(std::lround(vertex.x * 1000.0F)).arg(double(vertex.y));
        }
        QCOMPARE(text.join(u", "), QStringLiteral("0 0.1, 1 0.9, 3 -0.9, 4 0.2, 5 0.3, 6 -0.5, 8 0.5, 9 0.4"));
    }

    void drawsNoVertexTwice()
    {
        // Rising: first and lowest are one, and so are highest and last.
        QList<float> samples(100);
        std::iota(samples.begin(), samples.end(), 0.0F);
        const Drawn drawn(samples, 0.0, -0.0005, 0.0995, 10);
        QCOMPARE(drawn.vertices.size(), std::size_t{20});
    }

    void drawsAFewVerticesPerColumnWhateverTheSpan_data()
    {
        QTest::addColumn<double>("span");
        for (const double span : {0.1, 1.0, 10.0, 60.0, 300.0, 3000.0}) {
            QTest::addRow("%g s", span) << span;
        }
    }

    void drawsAFewVerticesPerColumnWhateverTheSpan()
    {
        QFETCH(const double, span);
        static const QList<float> samples = Noise(3'000'000);
        for (const int width : {1, 10, 400, 1600}) {
            for (const double left : {0.0, 0.37, 100.0}) {
                const Drawn drawn(samples, 0.0, left, left + span, width);
                // A vertex on both sides besides.
                QVERIFY(drawn.vertices.size() <= MostVerticesPerColumn * static_cast<std::size_t>(width + 2));
            }
        }
    }

    void keepsTheOrderOfTime()
    {
        const Drawn drawn(Noise(100'000), 0.0, 10.0, 90.0, 777);
        QVERIFY(std::ranges::is_sorted(drawn.vertices, {}, &Pos2f::x));
        for (const Pos2f& vertex : drawn.vertices) {
            const Pos2f original = drawn.strip[static_cast<std::size_t>(std::lround(vertex.x * Rate))];
            QVERIFY(original.x == vertex.x && original.y == vertex.y);
        }
    }

    void losesNoClick()
    {
        QList<float> samples(500'000, 0.0F);
        for (qsizetype i = 1234; i < samples.size(); i += 49'999) {
            samples[i] = i % 2 == 0 ? 0.7F : -0.7F;
        }
        for (const int width : {100, 1600}) {
            const Drawn drawn(samples, 0.0, 0.0, 500.0, width);
            for (qsizetype i = 1234; i < samples.size(); i += 49'999) {
                const Pos2f click = drawn.strip[static_cast<std::size_t>(i)];
                QVERIFY(drawn.HasDrawn(click.x, click.y));
            }
        }
    }

    void followsAMirroredView()
    {
        const Drawn drawn(Noise(100'000), 0.0, 90.0, 10.0, 100);
        QVERIFY(drawn.vertices.size() > 390);
        QVERIFY(drawn.vertices.size() <= MostVerticesPerColumn * 102);
    }

    void drawsTheSilenceBehindTheSamples()
    {
        const Drawn drawn(Noise(10'000), 30.0, 0.0, 40.0, 100);
        QVERIFY(drawn.HasDrawn(10.0F, 0.0F));
        QVERIFY(drawn.HasDrawn(39.999F, 0.0F));
        const Drawn within({}, 30.0, 10.0, 20.0, 100);
        QCOMPARE(within.vertices.size(), std::size_t{2});
    }

    void endsInViewsOfAnyExtent()
    {
        const QList<float> samples = Noise(5000);
        const double nan = std::nan("");
        const double inf = std::numeric_limits<double>::infinity();
        for (const double left : {0.0, -1e30, 1e30, inf, -inf, nan}) {
            for (const double right : {0.0, 1e-30, 5.0, 1e30, inf, -inf, nan}) {
                for (const int width : {0, 1, 500}) {
                    const Drawn drawn(samples, 0.0, left, right, width);
                    QVERIFY(drawn.vertices.size() <= static_cast<std::size_t>(samples.size()));
                }
            }
        }
        const WaveformStrip timeless(samples, 5000, {.stepSize = 1, .sampleRate = 0});
        const PixelColumns columns(ProjectionOf(QRectF(0.0, 0.0, 1.0, 1.0), 0.0), {0, 0, 100, 300});
        QCOMPARE(DrawnVertices(timeless, SampleExtremes(samples), {0, 5000}, columns).size(), std::size_t{4});
        QVERIFY(DrawnVertices({}, {}, {}, columns).empty());
    }
};

QTEST_APPLESS_MAIN(TestDrawnVertices)
#include "tst_drawnvertices.moc"
