#include "render/bgfx/device/StripColumns.h"
#include "render/vantor3D/Vertex.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <random>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::bgfx;
using namespace vantoraudio::bgfx::device;
using vantoraudio::vantor3D::Vertex::Pos2f;
using vantoraudio::vantor3D::Vertex::Pos3fColorRGBA;

namespace {

constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float Infinite = std::numeric_limits<float>::infinity();
constexpr float Largest = std::numeric_limits<float>::max();
constexpr int Size = 100;

/** A strip and the view that it is drawn in. */
struct Scene
{
    Draw draw;
    View view;
};

/** Scene coordinates are window coordinates of a picture of 100 by 100. `points` must outlive the result. */
Scene SceneOf(const std::vector<Pos2f>& points)
{
    Scene scene;
    scene.draw.topology = Topology::LineStrip;
    scene.draw.layout = Pos2f::Layout();
    scene.draw.vertices = {reinterpret_cast<const std::uint8_t*>(points.data()), points.size() * sizeof(Pos2f)};
    scene.view.viewport = {0, 0, Size, Size};
    scene.view.transform = QMatrix4x4(0.02F, 0, 0, -1, 0, 0.02F, 0, -1, 0, 0, 1, 0, 0, 0, 0, 1);
    return scene;
}

std::optional<StripColumns> ColumnsOf(const Scene& scene)
{
    return ToColumns(scene.draw, scene.view, {Size, Size});
}

/** Column, first row and last row of every column that is covered, as text. */
QString Text(const Scene& scene)
{
    const auto columns = ColumnsOf(scene);
    if (!columns) {
        return QStringLiteral("none");
    }
    QStringList text;
    for (std::size_t i = 0; i < columns->rows.size(); ++i) {
        if (const RowSpan& span = columns->rows[i]; !span.IsEmpty()) {
            text << QStringLiteral("%1:%2-%3").arg(columns->box.left + int(i)).arg(span.lower).arg(span.upper - 1);
        }
    }
    return text.join(u' ');
}

QString Text(const std::vector<Pos2f>& points)
{
    return Text(SceneOf(points));
}

} // namespace

class tst_StripColumns : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void holdsThePixelsOfAFlatLine()
    {
        QCOMPARE(Text({{1.0F, 5.3F}, {4.0F, 5.3F}}), u"1:5-5 2:5-5 3:5-5"_s);
        // Only where it passes the middle of a column.
        QCOMPARE(Text({{1.6F, 5.3F}, {4.4F, 5.3F}}), u"2:5-5 3:5-5"_s);
    }

    void holdsTheCentresThatASteepLinePasses()
    {
        QCOMPARE(Text({{7.2F, 3.0F}, {7.2F, 6.0F}}), u"7:3-5"_s);
        QCOMPARE(Text({{7.2F, 3.6F}, {7.2F, 6.4F}}), u"7:4-5"_s);
        QCOMPARE(Text({{7.2F, 6.4F}, {7.2F, 3.6F}}), u"7:4-5"_s);
    }

    void sharesASteepLineOutAmongItsColumns()
    {
        // From column 2 into 3 at height 13, and from there into 4 at 23.
        QCOMPARE(Text({{2.5F, 8.0F}, {4.5F, 28.0F}}), u"2:8-12 3:13-22 4:23-27"_s);
    }

    void holdsAllThatPassesAColumn()
    {
        QCOMPARE(Text({{3.1F, 5.0F}, {3.2F, 9.0F}, {3.3F, 1.0F}, {3.6F, 6.0F}}), u"3:1-8"_s);
    }

    void isTheSameInBothDirections()
    {
        std::vector<Pos2f> points{{1.3F, 5.2F}, {1.4F, 9.7F}, {3.3F, 1.1F}, {7.6F, 6.0F}, {9.9F, 40.0F}};
        const QString forwards = Text(points);
        std::ranges::reverse(points);
        QCOMPARE(Text(points), forwards);
    }

    void quietNoiseHasNoGaps()
    {
        // Pieces far too short to pass the centre of any pixel, on the border between two rows.
        std::mt19937 random(3);
        std::uniform_real_distribution<float> level(49.8F, 50.2F);
        std::vector<Pos2f> points;
        for (float x = -1.0F; x < 101.0F; x += 0.003F) {
            points.push_back({x, level(random)});
        }
        const auto columns = ColumnsOf(SceneOf(points));
        QVERIFY(columns);
        for (const RowSpan& span : columns->rows) {
            QVERIFY(!span.IsEmpty());
            QVERIFY(span.lower >= 49 && span.upper <= 51);
        }
    }

    void leavesOutWhatIsOutside()
    {
        QCOMPARE(Text({{-50.0F, 1.0F}, {-30.0F, 3.0F}, {0.0F, 4.0F}}), QString());
        QCOMPARE(Text({{100.0F, 1.0F}, {130.0F, 3.0F}}), QString());
        QCOMPARE(Text({{5.2F, -20.0F}, {5.3F, -10.0F}, {8.9F, -1.0F}}), QString());
        QCOMPARE(Text({{5.2F, -20.0F}, {5.2F, 300.0F}}), u"5:0-99"_s);
        QCOMPARE(Text({{-1.0F, 7.2F}, {1.0F, 7.2F}}), u"0:7-7"_s);
        QCOMPARE(Text({{99.0F, 7.2F}, {400.0F, 7.2F}}), u"99:7-7"_s);
    }

    void staysInsideTheViewport()
    {
        const std::vector<Pos2f> points{{-1.0F, -1.0F}, {1.0F, 1.0F}};
        Scene scene = SceneOf(points);
        scene.view.transform = {};
        // Four pixels wide and high, the lower edge 94 rows above the target's.
        scene.view.viewport = {10, 2, 4, 4};
        QCOMPARE(Text(scene), u"10:94-94 11:95-95 12:96-96 13:97-97"_s);
        scene.view.viewport = {98, 2, 4, 4};
        QCOMPARE(Text(scene), u"98:94-94 99:95-95"_s);
        scene.view.viewport = {200, 2, 4, 4};
        QCOMPARE(Text(scene), QString());
    }

    void survivesCoordinatesOfAnySize()
    {
        QCOMPARE(Text({{-1e30F, 5.2F}, {1e30F, 5.2F}}).count(u":5-5"_s), 100);
        QCOMPARE(Text({{20.5F, -Largest}, {20.5F, Largest}}), u"20:0-99"_s);
        std::mt19937 random(7);
        const std::array values{0.0F,   1.0F,    -1.0F,    5.5F,       1e6F,     -1e9F,     1e20F,
                                -3e38F, Largest, -Largest, NotANumber, Infinite, -Infinite, 1e-40F};
        for (int i = 0; i < 5000; ++i) {
            std::vector<Pos2f> points(3);
            for (Pos2f& point : points) {
                point = {values[random() % values.size()], values[random() % values.size()]};
            }
            std::ranges::sort(points, {},
                              [](const Pos2f& point) { return std::isfinite(point.x) ? point.x : 0.0F; });
            if (const auto columns = ColumnsOf(SceneOf(points))) {
                for (const RowSpan& span : columns->rows) {
                    QVERIFY(span.IsEmpty() || (span.lower >= 0 && span.upper <= Size));
                }
            }
        }
    }

    void givesNothingForAPointOrLess()
    {
        QCOMPARE(Text(std::vector<Pos2f>{}), QString());
        QCOMPARE(Text({{5.0F, 5.0F}}), QString());
    }

    void isOnlyForStripsThatNeverTurnBack()
    {
        QCOMPARE(Text({{1.0F, 1.0F}, {5.0F, 1.0F}, {4.9F, 3.0F}}), u"none"_s);
        QCOMPARE(Text({{5.0F, 1.0F}, {1.0F, 1.0F}, {1.1F, 3.0F}}), u"none"_s);
        QVERIFY(Text({{5.0F, 1.0F}, {5.0F, 4.0F}, {5.0F, 2.0F}}) != u"none"_s);
    }

    void isOnlyForFiniteVertices()
    {
        for (const float bad : {NotANumber, Infinite, -Infinite}) {
            QCOMPARE(Text({{0.5F, 1.0F}, {1.5F, bad}, {4.5F, 1.0F}}), u"none"_s);
            QCOMPARE(Text({{0.5F, 1.0F}, {1.5F, 1.0F}, {bad, 1.0F}}), u"none"_s);
        }
    }

    void isOnlyForFlatStripsInUprightViews()
    {
        const std::vector<Pos2f> points{{0.0F, 0.0F}, {1.0F, 1.0F}};
        Scene scene = SceneOf(points);
        QVERIFY(ColumnsOf(scene));
        scene.draw.topology = Topology::Lines;
        QVERIFY(!ColumnsOf(scene));
        for (const std::size_t turned : {std::size_t(1), std::size_t(3), std::size_t(4), std::size_t(7)}) {
            scene = SceneOf(points);
            scene.view.transform.data()[turned] = 0.1F;
            QVERIFY(!ColumnsOf(scene));
        }
        scene = SceneOf(points);
        scene.draw.layout = Pos3fColorRGBA::Layout();
        QVERIFY(!ColumnsOf(scene));
        for (const float scale : {NotANumber, Infinite}) {
            scene = SceneOf(points);
            scene.view.transform(0, 0) = scale;
            QVERIFY2(!ColumnsOf(scene), "a view of no extent");
        }
    }
};

QTEST_APPLESS_MAIN(tst_StripColumns)
#include "tst_StripColumns.moc"
