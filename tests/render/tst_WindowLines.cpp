#include "render/bgfx/device/WindowLines.h"
#include "render/vantor3D/Vertex.h"

#include <QtTest/QtTest>

#include <array>
#include <cmath>
#include <limits>

using namespace vantoraudio::bgfx;
using namespace vantoraudio::bgfx::device;
using vantoraudio::vantor3D::Vertex::Pos2f;
using vantoraudio::vantor3D::Vertex::Pos3fColorRGBA;

namespace {

constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float Infinite = std::numeric_limits<float>::infinity();
constexpr float Largest = std::numeric_limits<float>::max();
constexpr int Width = 100;
constexpr int Height = 60;

/** Lines and the view that they are drawn in. */
struct Scene
{
    Draw draw;
    View view;
};

/** Scene coordinates are window coordinates of a picture of 100 by 60. `points` must outlive the result. */
template<typename Vertex>
Scene SceneOf(const std::vector<Vertex>& points, Topology topology = Topology::Lines)
{
    Scene scene;
    scene.draw.topology = topology;
    scene.draw.layout = Vertex::Layout();
    scene.draw.vertices = {reinterpret_cast<const std::uint8_t*>(points.data()), points.size() * sizeof(Vertex)};
    scene.view.viewport = {0, 0, Width, Height};
    scene.view.transform = FromWindow(scene.view.viewport, {Width, Height});
    return scene;
}

std::vector<LineVertex> LinesOf(const Scene& scene)
{
    return ToWindowLines(scene.draw, scene.view, {Width, Height});
}

bool IsNear(double value, double expected)
{
    // A line is moved by a 64th of a pixel at most.
    return std::fabs(value - expected) < 0.02;
}

} // namespace

class tst_WindowLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cutsBackWhatReachesFarOutside_data()
    {
        QTest::addColumn<QLineF>("line");
        QTest::addColumn<QLineF>("cut");
        QTest::newRow("inside") << QLineF(3, 5, 90, 50) << QLineF(3, 5, 90, 50);
        QTest::newRow("a little outside") << QLineF(-1.5, 30, 101.5, 30) << QLineF(-1.5, 30, 101.5, 30);
        QTest::newRow("flat") << QLineF(-1e6, 4.5, 1e6, 4.5) << QLineF(-2, 4.5, 102, 4.5);
        QTest::newRow("flat, backwards") << QLineF(1e6, 4.5, -1e6, 4.5) << QLineF(102, 4.5, -2, 4.5);
        QTest::newRow("upright") << QLineF(20.5, -1e30, 20.5, 1e30) << QLineF(20.5, -2, 20.5, 62);
        QTest::newRow("as long as can be")
            << QLineF(qreal(-Largest), 7, qreal(Largest), 7) << QLineF(-2, 7, 102, 7);
        QTest::newRow("one end outside") << QLineF(50, 10, 250, 110) << QLineF(50, 10, 102, 36);
        QTest::newRow("through the top") << QLineF(50, 30, 1050, 1030) << QLineF(50, 30, 82, 62);
        QTest::newRow("through left and bottom") << QLineF(-1000, -990, 40, 50) << QLineF(-2, 8, 40, 50);
    }

    void cutsBackWhatReachesFarOutside()
    {
        QFETCH(const QLineF, line);
        QFETCH(const QLineF, cut);
        const std::vector<Pos2f> ends{{float(line.x1()), float(line.y1())}, {float(line.x2()), float(line.y2())}};
        const auto lines = LinesOf(SceneOf(ends));
        QCOMPARE(lines.size(), std::size_t(2));
        QVERIFY(IsNear(double(lines[0].x), cut.x1()));
        QVERIFY(IsNear(double(lines[0].y), cut.y1()));
        QVERIFY(IsNear(double(lines[1].x), cut.x2()));
        QVERIFY(IsNear(double(lines[1].y), cut.y2()));
    }

    void leavesOutWhatCannotBeSeen_data()
    {
        QTest::addColumn<QLineF>("line");
        QTest::newRow("left") << QLineF(-1e6, 10, -5, 20);
        QTest::newRow("right") << QLineF(105, 10, 105, 20);
        QTest::newRow("below") << QLineF(-1e6, -5, 1e6, -5);
        QTest::newRow("above") << QLineF(20, 1e20, 20, 65);
        QTest::newRow("past a corner") << QLineF(-100, 20, 20, -100);
        QTest::newRow("not a number") << QLineF(10, 10, qreal(NotANumber), 20);
        QTest::newRow("infinite") << QLineF(qreal(-Infinite), 10, 20, 20);
    }

    void leavesOutWhatCannotBeSeen()
    {
        QFETCH(const QLineF, line);
        const std::vector<Pos2f> ends{{float(line.x1()), float(line.y1())}, {float(line.x2()), float(line.y2())}};
        QVERIFY(LinesOf(SceneOf(ends)).empty());
        // And nothing but that.
        const std::vector<Pos2f> strip{{10, 10}, {20, 10}, ends[0], ends[1], {30, 10}, {40, 10}};
        QVERIFY(LinesOf(SceneOf(strip, Topology::LineStrip)).size() >= 4);
        const std::vector<Pos2f> list{{10, 10}, {20, 10}, ends[0], ends[1], {30, 10}, {40, 10}};
        QCOMPARE(LinesOf(SceneOf(list)).size(), std::size_t(4));
    }

    void givesALineTheColourOfItsFirstVertex()
    {
        const std::vector<Pos3fColorRGBA> ends{{-100.0F, 30.0F, 0.0F, 0xff332211},
                                               {100.0F, 30.0F, 0.0F, 0xffffffff}};
        const auto lines = LinesOf(SceneOf(ends));
        QCOMPARE(lines.size(), std::size_t(2));
        for (const LineVertex& end : lines) {
            QCOMPARE(end.color, (std::array<std::uint8_t, 4>{0x11, 0x22, 0x33, 0xff}));
        }
    }

    void drawsNothingInAViewportBesideTheTarget()
    {
        const std::vector<Pos2f> ends{{-1000.0F, 10.0F}, {1000.0F, 10.0F}};
        Scene scene = SceneOf(ends);
        QCOMPARE(LinesOf(scene).size(), std::size_t(2));
        // Far enough that no part of it is near the target's edge, on either side.
        for (const int x : {Width + 10, -Width - 10}) {
            scene.view.viewport.moveLeft(x);
            QVERIFY(LinesOf(scene).empty());
        }
    }

    void cutsToThePartOfTheViewportInsideTheTarget()
    {
        // 1000 by 1000 with its lower left corner 100 to the left of the picture's and its top at the picture's
        // top.
        const std::vector<Pos2f> ends{{-1.0F, 0.99F}, {1.0F, 0.99F}};
        Scene scene = SceneOf(ends);
        scene.view.viewport = {-100, 0, 1000, 1000};
        scene.view.transform = {};
        const auto lines = LinesOf(scene);
        QCOMPARE(lines.size(), std::size_t(2));
        QVERIFY(IsNear(double(lines[0].x), -2.0));
        QVERIFY(IsNear(double(lines[1].x), 102.0));
        QVERIFY(IsNear(double(lines[0].y), 55.0));
    }
};

QTEST_GUILESS_MAIN(tst_WindowLines)
#include "tst_WindowLines.moc"
