#include "render/bgfx/device/LastColumns.h"
#include "render/vantor3D/Vertex.h"

#include <QtTest/QtTest>

#include <functional>

using namespace vantoraudio::bgfx;
using namespace vantoraudio::bgfx::device;
using vantoraudio::vantor3D::Vertex::Pos2f;

namespace {

constexpr int Width = 100;
constexpr int Height = 60;

using Points = std::vector<Pos2f>;

DrawCall Call(const Points& points, std::uint64_t revision)
{
    DrawCall call;
    call.topology = Topology::LineStrip;
    call.transform = {2.0F / Width, 0, 0, 0, 0, 2.0F / Height, 0, 0, 0, 0, 1, 0, -1, -1, 0, 1};
    call.viewport = {0, 0, Width, Height};
    call.layout = Pos2f::Layout();
    call.vertices = {reinterpret_cast<const std::uint8_t*>(points.data()), points.size() * sizeof(Pos2f)};
    call.vertexCount = static_cast<std::uint32_t>(points.size());
    call.revision = revision;
    return call;
}

} // namespace

class tst_LastColumns : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void areThoseOfTheStrip()
    {
        const DrawCall call = Call(m_points, 1);
        LastColumns last(Width, Height);
        QCOMPARE(last.Of(call)->rows, ToColumns(call, Width, Height)->rows);
        QVERIFY(last.Version() != 0);
    }

    void areNotWorkedOutAnewForTheSameStrip()
    {
        LastColumns last(Width, Height);
        const auto columns = last.Of(Call(m_points, 1));
        const auto version = last.Version();
        // Told by vertices that were changed behind its back.
        for (Pos2f& point : m_points) {
            point.y += 20.0F;
        }
        QCOMPARE(last.Of(Call(m_points, 1))->rows, columns->rows);
        QCOMPARE(last.Version(), version);
    }

    void areWorkedOutAnewForAnotherStrip_data()
    {
        using Change = std::function<void(DrawCall&)>;
        QTest::addColumn<Change>("change");
        QTest::newRow("other vertices") << Change([](DrawCall& call) { call.revision = 2; });
        QTest::newRow("fewer vertices") << Change([](DrawCall& call) { --call.vertexCount; });
        QTest::newRow("later vertices") << Change([](DrawCall& call) {
            --call.vertexCount;
            call.vertices = call.vertices.subspan(sizeof(Pos2f));
        });
        QTest::newRow("as many later vertices")
            << Change([](DrawCall& call) { call.vertices = call.vertices.subspan(sizeof(Pos2f)); });
        QTest::newRow("moved") << Change([](DrawCall& call) { call.transform[12] = -0.5F; });
        QTest::newRow("scaled") << Change([](DrawCall& call) { call.transform[5] = 0.01F; });
        QTest::newRow("viewport") << Change([](DrawCall& call) { call.viewport.width = 50; });
    }

    void areWorkedOutAnewForAnotherStrip()
    {
        QFETCH(const std::function<void(DrawCall&)>, change);
        LastColumns last(Width, Height);
        // One vertex stands behind those that are drawn.
        DrawCall call = Call(m_points, 1);
        --call.vertexCount;
        const auto before = last.Of(call)->rows;
        const auto version = last.Version();
        for (Pos2f& point : m_points) {
            point.y += 20.0F;
        }
        change(call);
        const auto after = last.Of(call);
        QVERIFY(last.Version() != version);
        QCOMPARE(after->rows, ToColumns(call, Width, Height)->rows);
        QVERIFY(after->rows != before);
    }

    void ofVerticesThatWillNotComeAgainAreNotKept()
    {
        LastColumns last(Width, Height);
        const auto before = last.Of(Call(m_points, 0))->rows;
        const auto version = last.Version();
        m_points[1].y += 20.0F;
        QVERIFY(last.Of(Call(m_points, 0))->rows != before);
        QVERIFY(last.Version() != version);
    }

    void outliveWhatElseIsDrawn()
    {
        LastColumns last(Width, Height);
        (void)last.Of(Call(m_points, 1));
        const auto version = last.Version();
        DrawCall lines = Call(m_points, 2);
        lines.topology = Topology::Lines;
        QVERIFY(!last.Of(lines));
        QVERIFY(last.Of(Call(m_points, 1)));
        QCOMPARE(last.Version(), version);
    }

    void areMissedOnlyOnceByAStripWithout()
    {
        LastColumns last(Width, Height);
        const Points turning = {{1.0F, 1.0F}, {9.0F, 1.0F}, {2.0F, 5.0F}};
        QVERIFY(!last.Of(Call(turning, 3)));
        const auto version = last.Version();
        QVERIFY(!last.Of(Call(turning, 3)));
        QCOMPARE(last.Version(), version);
        QVERIFY(last.Of(Call(m_points, 4)));
    }

    void init() { m_points = {{1.0F, 3.0F}, {20.0F, 40.0F}, {60.0F, 10.0F}, {90.0F, 55.0F}, {95.0F, 5.0F}}; }

private:
    Points m_points;
};

QTEST_APPLESS_MAIN(tst_LastColumns)
#include "tst_LastColumns.moc"
