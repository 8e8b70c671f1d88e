#include "render/vantor3DQt/Stipple.h"
#include "tests/render/Drawing.h"

#include <QtTest/QtTest>

#include <limits>

using namespace drawing;
using vantor3DQt::CutDashes;
using vantor3DQt::LineStipple;

namespace {

const bgfx::View View{QRect(0, 0, 64, 32), PixelProjection({64, 32}), {}, {}};

Line Horizontal(float from, float to)
{
    return {{from, 10.5F, 0.0F}, {to, 10.5F, 0.0F}, White};
}

} // namespace

class tst_Stipple : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lightsFourPixelsOnAndFourOff_data() { AddDevices(); }
    void lightsFourPixelsOnAndFourOff();
    void beginsAgainWithEachLine_data() { AddDevices(); }
    void beginsAgainWithEachLine();
    void readsThePatternLowestBitFirst();
    void stretchesEachBitByTheFactor();
    void joinsTheBitsOfASolidPatternToOneDash();
    void keepsTheDashesInPlaceWhenTheStartIsOutside();
    void cutsOnlyWhatIsVisible_data();
    void cutsOnlyWhatIsVisible();
    void countsPixelsAlongTheLongerAxis();

private:
    static void AddDevices()
    {
        QTest::addColumn<int>("device");
        QTest::newRow("OpenGL") << int(bgfx::device::Kind::OpenGL);
        QTest::newRow("Software") << int(bgfx::device::Kind::Software);
    }
};

#define MAKE_DEVICE                                                                                               \
    QFETCH(int, device);                                                                                          \
    const DeviceScope scope(static_cast<bgfx::device::Kind>(device));                                             \
    if (!scope.IsMade())                                                                                          \
    QSKIP("this device cannot be had here")

void tst_Stipple::lightsFourPixelsOnAndFourOff()
{
    MAKE_DEVICE;
    const QImage picture = Picture({64, 32}, [](BGFXRenderer& renderer, const BGFXViewContext& view) {
        // In the middle between two rows, at a row's centre, upwards, and from right to left.
        const std::array lines{Line{{0.0F, 8.0F, 0.0F}, {64.0F, 8.0F, 0.0F}, White},
                               Line{{0.0F, 20.5F, 0.0F}, {64.0F, 20.5F, 0.0F}, White},
                               Line{{64.0F, 24.5F, 0.0F}, {0.0F, 24.5F, 0.0F}, White}};
        renderer.DrawLines(view, lines, LineStipple{0x0F0F, 1});
    });
    const int upperRow = qGreen(picture.pixel(0, 7)) > 127 ? 7 : 8;
    for (int x = 0; x < 64; ++x) {
        QCOMPARE(qGreen(picture.pixel(x, upperRow)), x % 8 < 4 ? 255 : 0);
        QCOMPARE(qGreen(picture.pixel(x, 20)), x % 8 < 4 ? 255 : 0);
        QCOMPARE(qGreen(picture.pixel(63 - x, 24)), x % 8 < 4 ? 255 : 0);
    }
    QCOMPARE(LitPixels(picture).size(), std::size_t(3 * 32));

    const QImage upright = Picture({64, 32}, [](BGFXRenderer& renderer, const BGFXViewContext& view) {
        renderer.DrawLines(view, std::array{Line{{30.5F, 32.0F, 0.0F}, {30.5F, 0.0F, 0.0F}, White}},
                           LineStipple{0x0F0F, 1});
    });
    for (int y = 0; y < 32; ++y)
        QCOMPARE(qGreen(upright.pixel(30, 31 - y)), y % 8 < 4 ? 255 : 0);
    QCOMPARE(LitPixels(upright).size(), std::size_t(16));
}

void tst_Stipple::beginsAgainWithEachLine()
{
    MAKE_DEVICE;
    const QImage picture = Picture({64, 32}, [](BGFXRenderer& renderer, const BGFXViewContext& view) {
        renderer.DrawLines(view, std::array{Horizontal(0.0F, 6.0F), Horizontal(10.0F, 20.0F)},
                           LineStipple{0x0F0F, 1});
    });
    const std::vector<QPoint> expected{{0, 10},  {1, 10},  {2, 10},  {3, 10},  {10, 10},
                                       {11, 10}, {12, 10}, {13, 10}, {18, 10}, {19, 10}};
    QCOMPARE(LitPixels(picture), expected);
}

void tst_Stipple::readsThePatternLowestBitFirst()
{
    const auto dashes = CutDashes(Horizontal(0.0F, 32.0F), {0x8003, 1}, View);
    QCOMPARE(dashes.size(), std::size_t(3));
    QCOMPARE(dashes[0].start[0], 0.0F);
    QCOMPARE(dashes[0].end[0], 2.0F);
    QCOMPARE(dashes[1].start[0], 15.0F);
    QCOMPARE(dashes[1].end[0], 18.0F);
    QCOMPARE(dashes[2].start[0], 31.0F);
    QCOMPARE(dashes[2].end[0], 32.0F);
}

void tst_Stipple::stretchesEachBitByTheFactor()
{
    const auto dashes = CutDashes(Horizontal(0.0F, 32.0F), {0x0F0F, 3}, View);
    QCOMPARE(dashes.size(), std::size_t(2));
    QCOMPARE(dashes[0].end[0], 12.0F);
    QCOMPARE(dashes[1].start[0], 24.0F);
    QCOMPARE(dashes[1].end[0], 32.0F);
    for (const int factor : {0, -5})
        QCOMPARE(CutDashes(Horizontal(0.0F, 32.0F), {0x0F0F, factor}, View).size(), std::size_t(4));
}

void tst_Stipple::joinsTheBitsOfASolidPatternToOneDash()
{
    const auto dashes = CutDashes(Horizontal(0.0F, 60.0F), {0xFFFF, 1}, View);
    QCOMPARE(dashes.size(), std::size_t(1));
    QCOMPARE(dashes[0].end[0], 60.0F);
    QVERIFY(CutDashes(Horizontal(0.0F, 60.0F), {0x0000, 1}, View).empty());
}

void tst_Stipple::keepsTheDashesInPlaceWhenTheStartIsOutside()
{
    // From -8000 on, a whole number of patterns before the left edge, and two pixels less.
    QCOMPARE(CutDashes(Horizontal(-8000.0F, 60.0F), {0x0F0F, 1}, View).front().end[0], 4.0F);
    QCOMPARE(CutDashes(Horizontal(-8002.0F, 60.0F), {0x0F0F, 1}, View).front().end[0], 2.0F);
}

void tst_Stipple::cutsOnlyWhatIsVisible_data()
{
    constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();
    constexpr float Infinite = std::numeric_limits<float>::infinity();
    constexpr float Largest = std::numeric_limits<float>::max();
    QTest::addColumn<Line>("line");
    QTest::addColumn<bool>("visible");
    QTest::newRow("a million pixels long") << Horizontal(-1e6F, 1e6F) << true;
    QTest::newRow("1e12 pixels long") << Horizontal(-10.0F, 1e12F) << true;
    QTest::newRow("beyond what can be counted") << Horizontal(-Largest, Largest) << false;
    QTest::newRow("left of the view") << Horizontal(-10.0F, -1.0F) << false;
    QTest::newRow("right of the view") << Horizontal(65.0F, 70.0F) << false;
    QTest::newRow("above") << Line{{0.0F, -3.0F, 0.0F}, {50.0F, -3.0F, 0.0F}, White} << false;
    QTest::newRow("past a corner") << Line{{-30.0F, 16.0F, 0.0F}, {20.0F, -30.0F, 0.0F}, White} << false;
    QTest::newRow("no length") << Horizontal(5.0F, 5.0F) << false;
    QTest::newRow("not a number") << Horizontal(NotANumber, 5.0F) << false;
    QTest::newRow("infinite") << Horizontal(0.0F, Infinite) << false;
}

void tst_Stipple::cutsOnlyWhatIsVisible()
{
    QFETCH(Line, line);
    QFETCH(bool, visible);
    const auto dashes = CutDashes(line, {0x5555, 1}, View);
    QCOMPARE(!dashes.empty(), visible);
    QVERIFY(dashes.size() <= 34);
    for (const Line& dash : dashes)
        QVERIFY(dash.start[0] >= -0.1F && dash.end[0] <= 64.1F);
}

void tst_Stipple::countsPixelsAlongTheLongerAxis()
{
    const auto dashes = CutDashes({{0.0F, 0.0F, 0.0F}, {64.0F, 32.0F, 0.0F}, White}, {0x0F0F, 1}, View);
    QCOMPARE(dashes.size(), std::size_t(8));
    QCOMPARE(dashes[1].start[0], 8.0F);
    QCOMPARE(dashes[1].start[1], 4.0F);
}

QTEST_MAIN(tst_Stipple)
#include "tst_Stipple.moc"
