#include "render/bgfx/device/StripReduction.h"
#include "render/vantor3D/Vertex.h"

#include <QtTest/QtTest>

#include <limits>

using namespace vantoraudio::bgfx;
using namespace vantoraudio::bgfx::device;
using vantoraudio::vantor3D::Vertex::Pos2f;
using vantoraudio::vantor3D::Vertex::Pos3fColorRGBA;

namespace {

constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr int Size = 100;

/** Scene coordinates are window coordinates of a target of 100 by 100. */
DrawCall Call(const std::vector<Pos2f>& points)
{
    DrawCall call;
    call.topology = Topology::LineStrip;
    call.transform = {0.02F, 0, 0, 0, 0, 0.02F, 0, 0, 0, 0, 1, 0, -1, -1, 0, 1};
    call.viewport = {0, 0, Size, Size};
    call.layout = Pos2f::Layout();
    call.vertices = {reinterpret_cast<const std::uint8_t*>(points.data()), points.size() * sizeof(Pos2f)};
    call.vertexCount = static_cast<std::uint32_t>(points.size());
    return call;
}

ReducedStrip Reduce(const std::vector<Pos2f>& points)
{
    return ReduceStrip(Call(points), Size);
}

/** The points rounded to hundredths, as text. */
QString Text(const ReducedStrip& strip)
{
    QString text;
    for (std::size_t i = 0; i < strip.points.size(); ++i) {
        if (std::ranges::find(strip.runStarts, i) != strip.runStarts.end())
            text += QLatin1Char('|');
        text += QStringLiteral("(%1,%2)")
                    .arg(double(strip.points[i].x), 0, 'g', 4)
                    .arg(double(strip.points[i].y), 0, 'g', 4);
    }
    return text;
}

} // namespace

class tst_StripReduction : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsAStripOfOneVertexToAColumn();
    void keepsFirstLeastGreatestAndLastOfAColumn();
    void treatsAllThatIsOutsideOnOneSideAsOneColumn();
    void startsANewRunAfterAVertexThatIsNotFinite();
    void leavesOutAPointWithoutNeighbour();
    void cutsFarCoordinatesBack();
    void boundsTheLengthOfAnyRisingStrip();
    void leavesTurnedViewsAndColouredVerticesAlone();
    void givesNothingForAViewOfNoExtent();
};

void tst_StripReduction::keepsAStripOfOneVertexToAColumn()
{
    QCOMPARE(Text(Reduce({{0.5F, 1.0F}, {1.5F, 2.0F}, {2.5F, 0.0F}})), u"|(0.5,1)(1.5,2)(2.5,0)"_qs);
}

void tst_StripReduction::keepsFirstLeastGreatestAndLastOfAColumn()
{
    const std::vector<Pos2f> points{{3.1F, 5.0F}, {3.2F, 9.0F}, {3.3F, 1.0F},
                                    {3.4F, 4.0F}, {3.5F, 6.0F}, {4.2F, 5.0F}};
    QCOMPARE(Text(Reduce(points)), u"|(3.1,5)(3.1,1)(3.1,9)(3.5,6)(4.2,5)"_qs);
}

void tst_StripReduction::treatsAllThatIsOutsideOnOneSideAsOneColumn()
{
    const std::vector<Pos2f> points{{-50.0F, 1.0F}, {-30.0F, 3.0F}, {-20.0F, 2.0F}, {-1.0F, 2.5F},
                                    {50.5F, 1.0F},  {101.0F, 4.0F}, {150.0F, 4.0F}, {180.0F, 5.0F}};
    QCOMPARE(Text(Reduce(points)), u"|(-50,1)(-50,1)(-50,3)(-1,2.5)(50.5,1)(101,4)(101,4)(101,5)(180,5)"_qs);
}

void tst_StripReduction::startsANewRunAfterAVertexThatIsNotFinite()
{
    const std::vector<Pos2f> points{{0.5F, 1.0F}, {1.5F, 1.0F}, {NotANumber, 1.0F},
                                    {3.5F, 1.0F}, {4.5F, 1.0F}, {4.6F, std::numeric_limits<float>::infinity()},
                                    {6.5F, 1.0F}, {7.5F, 1.0F}};
    QCOMPARE(Text(Reduce(points)), u"|(0.5,1)(1.5,1)|(3.5,1)(4.5,1)|(6.5,1)(7.5,1)"_qs);
}

void tst_StripReduction::leavesOutAPointWithoutNeighbour()
{
    const std::vector<Pos2f> points{{0.5F, 1.0F}, {1.0F, NotANumber}, {3.5F, 1.0F},
                                    {4.5F, 1.0F}, {4.5F, NotANumber}, {9.5F, 1.0F}};
    QCOMPARE(Text(Reduce(points)), u"|(3.5,1)(4.5,1)"_qs);
    QVERIFY(Reduce({}).points.empty());
    QVERIFY(Reduce({{5.0F, 5.0F}}).points.empty());
    QVERIFY(Reduce({{NotANumber, NotANumber}}).points.empty());
}

void tst_StripReduction::cutsFarCoordinatesBack()
{
    QCOMPARE(Text(Reduce({{-1e30F, 5.0F}, {20.5F, 3e38F}, {40.5F, -3e38F}})),
             u"|(-1e+06,5)(20.5,1e+06)(40.5,-1e+06)"_qs);
}

void tst_StripReduction::boundsTheLengthOfAnyRisingStrip()
{
    std::vector<Pos2f> points(1'000'000);
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = {float(i) * 0.0002F - 50.0F, float(i % 97)};
    // 100 columns and the two sides, four points each; a vertex right on a border may make a column of its own.
    QVERIFY(Reduce(points).points.size() <= 2 * 408);
}

void tst_StripReduction::leavesTurnedViewsAndColouredVerticesAlone()
{
    const std::vector<Pos2f> points{{0.0F, 0.0F}, {1.0F, 1.0F}};
    DrawCall call = Call(points);
    QVERIFY(IsReducible(call));
    call.topology = Topology::Lines;
    QVERIFY(!IsReducible(call));
    call = Call(points);
    call.transform[1] = 0.1F;
    QVERIFY(!IsReducible(call));
    call = Call(points);
    call.transform[3] = 0.1F;
    QVERIFY(!IsReducible(call));
    call = Call(points);
    call.layout = Pos3fColorRGBA::Layout();
    QVERIFY(!IsReducible(call));
    call = Call(points);
    const std::array<std::uint32_t, 2> indices{0, 1};
    call.indices = indices;
    QVERIFY(!IsReducible(call));
}

void tst_StripReduction::givesNothingForAViewOfNoExtent()
{
    const std::vector<Pos2f> points{{0.0F, 0.0F}, {1.0F, 1.0F}};
    for (const float scale : {0.0F, NotANumber, std::numeric_limits<float>::infinity()}) {
        DrawCall call = Call(points);
        call.transform[0] = scale;
        QVERIFY(ReduceStrip(call, Size).points.empty());
    }
    DrawCall call = Call(points);
    call.transform[14] = 1.5F;
    QVERIFY2(ReduceStrip(call, Size).points.empty(), "behind the far plane");
}

QTEST_APPLESS_MAIN(tst_StripReduction)
#include "tst_StripReduction.moc"
