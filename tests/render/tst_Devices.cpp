#include "render/bgfx/device/OpenGLContext.h"
#include "tests/render/Drawing.h"

#include <QtGui/QOffscreenSurface>
#include <QtGui/QOpenGLContext>
#include <QtTest/QtTest>

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <random>

using namespace drawing;

namespace vantoraudio::bgfx::device {

class OpenGLContextTestAccess
{
public:
    /** From then on the context cannot be made current, as after a driver's loss. */
    static void LoseSurface(OpenGLContext& context) { context.m_surface.destroy(); }
};

} // namespace vantoraudio::bgfx::device

namespace {

constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float Infinite = std::numeric_limits<float>::infinity();
constexpr float Largest = std::numeric_limits<float>::max();

Pos3fColorRGBA ColorVertex(float x, float y, Color color)
{
    return {x, y, 0.0F, color.ToVertexColor()};
}

void DrawTriangles(BGFXRenderer& renderer, const BGFXViewContext& view, const std::vector<QPointF>& corners,
                   Color color)
{
    std::vector<Pos3fColorRGBA> vertices;
    std::vector<std::uint16_t> indices;
    for (const QPointF& corner : corners) {
        indices.push_back(std::uint16_t(vertices.size()));
        vertices.push_back(ColorVertex(float(corner.x()), float(corner.y()), color));
    }
    renderer.DrawTriangles(view, vertices, indices, BGFXRenderer::STATE_TRANSPARENT);
}

/** Several strips at random inside and around the picture, the same for the same seed. */
std::vector<Pos2f> RandomStrip(unsigned seed, std::size_t count, float range)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> position(-0.3F * range, 1.3F * range);
    std::vector<Pos2f> strip(count);
    for (Pos2f& point : strip)
        point = {position(random), position(random)};
    return strip;
}

/** Moves both ends of a line away from its middle. */
void Lengthen(Pos2f& start, Pos2f& end, float factor)
{
    const Pos2f middle{(start.x + end.x) / 2, (start.y + end.y) / 2};
    for (Pos2f* point : {&start, &end})
        *point = {middle.x + (point->x - middle.x) * factor, middle.y + (point->y - middle.y) * factor};
}

/** Like audio: x rises slowly, many vertices to a column, y jumps about. */
std::vector<Pos2f> DenseStrip(unsigned seed, std::size_t count, float width, float height)
{
    std::mt19937 random(seed);
    std::normal_distribution<float> level(0.0F, 0.15F);
    std::vector<Pos2f> strip(count);
    for (std::size_t i = 0; i < count; ++i)
        strip[i] = {float(i) / float(count) * width, (0.5F + level(random)) * height};
    return strip;
}

/** The pixels of one row. */
std::vector<QPoint> Row(int left, int right, int y)
{
    std::vector<QPoint> pixels;
    for (int x = left; x < right; ++x)
        pixels.emplace_back(x, y);
    return pixels;
}

/** A strip that is drawn in several frames. */
class LastingStrip
{
public:
    explicit LastingStrip(std::vector<Pos2f> points) { Update(std::move(points)); }
    LastingStrip(const LastingStrip&) = delete;
    LastingStrip& operator=(const LastingStrip&) = delete;
    ~LastingStrip() { bgfx::destroy(m_handle); }

    void Update(std::vector<Pos2f> points)
    {
        m_points = std::move(points);
        const auto* memory = bgfx::makeRef(m_points.data(), std::uint32_t(m_points.size() * sizeof(Pos2f)));
        if (bgfx::isValid(m_handle)) {
            bgfx::update(m_handle, 0, memory);
        } else {
            m_handle = bgfx::createDynamicVertexBuffer(memory, Pos2f::Layout(), bgfx::BGFX_BUFFER_ALLOW_RESIZE);
        }
    }
    [[nodiscard]] bgfx::DynamicVertexBufferHandle Handle() const { return m_handle; }

private:
    std::vector<Pos2f> m_points;
    bgfx::DynamicVertexBufferHandle m_handle;
};

/** 8 by 8 pixels that live on from frame to frame. */
class LastingPicture
{
public:
    LastingPicture(QSize size = {8, 8}) : m_picture(size, QImage::Format_RGBA8888) {}
    LastingPicture(const LastingPicture&) = delete;
    LastingPicture& operator=(const LastingPicture&) = delete;
    ~LastingPicture() { bgfx::destroy(m_color); }

    /** The lit pixels of a frame with one strip in white. */
    std::vector<QPoint> Draw(const LastingStrip& strip, float offset = 0.0F)
    {
        if (!m_renderer.StartFrame(&m_picture))
            return {};
        const BGFXViewContext view(0);
        QMatrix4x4 moved;
        moved.translate(offset, 0.0F);
        view.SetTransform(moved, PixelProjection(m_picture.size()));
        view.SetViewport(m_picture.rect());
        view.SetClear(bgfx::BGFX_CLEAR_COLOR, Black, 1.0F, 0);
        bgfx::setUniform(m_color, std::array{1.0F, 1.0F, 1.0F, 1.0F}.data());
        bgfx::setVertexBuffer(0, strip.Handle());
        bgfx::setState(BGFXRenderer::STATE_LINESTRIP);
        bgfx::submit(view.Id(), m_program);
        m_renderer.PresentSubmittedFrame(false);
        return LitPixels(m_picture);
    }

private:
    QImage m_picture;
    const bgfx::ProgramHandle m_program =
        vantor3D::ProgramFactory::Get().CreateProgram("vs_waveform_basic_2d", "fs_waveform_samples").value();
    const bgfx::UniformHandle m_color = bgfx::createUniform("u_waveformColor", bgfx::UniformType::Vec4);
    BGFXRenderer m_renderer;
};

constexpr std::array<const char*, 6> SceneNames{"random strip", "dense strip", "lines",
                                                "fan of lines", "triangles",   "lines far outside"};
constexpr unsigned Seeds = 20;

/** Draws one of the scenes at random into a picture of 200 by 200 pixels, the same for the same seed. */
struct Scene
{
    int kind = 0;
    unsigned seed = 0;

    void operator()(BGFXRenderer& renderer, const BGFXViewContext& view) const
    {
        std::vector<Pos2f> points = RandomStrip(seed, 30, 200.0F);
        std::vector<Line> lines;
        std::vector<QPointF> corners;
        for (std::size_t i = 0; kind == 5 && i + 1 < points.size(); i += 2)
            Lengthen(points[i], points[i + 1], std::pow(10.0F, float(seed % 6)));
        for (std::size_t i = 0; i + 1 < points.size(); ++i) {
            const Pos2f start = kind == 3 ? Pos2f{100.0F, 100.0F} : points[i];
            lines.push_back({{start.x, start.y, 0.0F}, {points[i + 1].x, points[i + 1].y, 0.0F}, White});
            if (i < 6)
                corners.emplace_back(qreal(points[i].x), qreal(points[i].y));
        }
        if (kind == 0)
            DrawStrip(view, points);
        else if (kind == 1)
            DrawStrip(view, DenseStrip(seed, 500 * (seed + 1), 200.0F, 200.0F));
        else if (kind == 4)
            DrawTriangles(renderer, view, corners, White);
        else
            renderer.DrawLines(view, lines);
    }
};

/** A second view in a part of the picture, translucent colours on translucent ones, and colours that run. */
void DrawTranslucentLayers(BGFXRenderer& renderer, const BGFXViewContext& view)
{
    DrawStrip(view, {{0.0F, 5.0F}, {30.0F, 35.0F}, {60.0F, 8.0F}}, {0.9F, 0.2F, 0.4F, 0.6F});
    DrawTriangles(renderer, view, {{5, 5}, {50, 8}, {20, 38}}, {0.3F, 0.7F, 0.9F, 0.5F});
    const BGFXViewContext part(1);
    part.SetViewport({10, 6, 30, 20});
    part.SetTransform({}, PixelProjection({30, 20}));
    part.SetClear(bgfx::BGFX_CLEAR_COLOR, 0x80c0ff80, 1.0F, 0);
    const std::array running{ColorVertex(1.0F, 1.0F, {1.0F, 0.0F, 0.0F, 1.0F}),
                             ColorVertex(28.0F, 3.0F, {0.0F, 1.0F, 0.0F, 0.5F}),
                             ColorVertex(12.0F, 18.0F, {0.0F, 0.0F, 1.0F, 0.2F})};
    renderer.DrawTriangles(part, running, std::array<std::uint16_t, 3>{0, 1, 2}, BGFXRenderer::STATE_TRANSPARENT);
    renderer.DrawLines(part, std::array{Line{{-5.0F, 10.5F, 0.0F}, {40.0F, 10.5F, 0.0F}, White}});
}

int LargestDifference(const QImage& a, const QImage& b)
{
    int difference = a.size() == b.size() && a.format() == b.format() ? 0 : 255;
    for (int y = 0; difference < 255 && y < a.height(); ++y) {
        for (int i = 0; i < 4 * a.width(); ++i)
            difference = std::max(difference, std::abs(a.constScanLine(y)[i] - b.constScanLine(y)[i]));
    }
    return difference;
}

} // namespace

class tst_Devices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clearsToTheColourOfTheView_data() { AddDevices(); }
    void clearsToTheColourOfTheView();
    void drawsALineOfOneDevicePixel_data() { AddDevices(); }
    void drawsALineOfOneDevicePixel();
    void drawsAStripInTheColourOfTheUniform_data() { AddDevices(); }
    void drawsAStripInTheColourOfTheUniform();
    void followsAStripThatLivesOn_data() { AddDevices(); }
    void followsAStripThatLivesOn();
    void blendsHalfTransparentTriangles_data() { AddDevices(); }
    void blendsHalfTransparentTriangles();
    void coversTheEdgeBetweenTwoTrianglesOnce_data() { AddDevices(); }
    void coversTheEdgeBetweenTwoTrianglesOnce();
    void drawsNothingOutsideTheViewport_data() { AddDevices(); }
    void drawsNothingOutsideTheViewport();
    void drawsTheNeighboursOfVerticesThatAreNotFinite_data() { AddDevices(); }
    void drawsTheNeighboursOfVerticesThatAreNotFinite();
    void survivesCoordinatesOfAnySize_data() { AddDevices(); }
    void survivesCoordinatesOfAnySize();
    void drawsLinesThatReachFarOutside_data() { AddDevices(); }
    void drawsLinesThatReachFarOutside();
    void drawsTrianglesThatReachFarOutside_data() { AddDevices(); }
    void drawsTrianglesThatReachFarOutside();
    void drawsNothingInAnEmptyScene_data() { AddDevices(); }
    void drawsNothingInAnEmptyScene();
    void drawsMillionsOfVerticesInOnePass_data() { AddDevices(); }
    void drawsMillionsOfVerticesInOnePass();
    void agreeToWithinAPixel_data();
    void agreeToWithinAPixel();
    void bgfxCoversThePixelsOfOpenGL();
    void leavesTheHostsContextCurrent();
    void keepsTheHostsContextOutOfALossOfItsOwn();

private:
    static void AddDevices()
    {
        QTest::addColumn<int>("device");
        QTest::newRow("OpenGL") << int(bgfx::device::Kind::OpenGL);
        QTest::newRow("Software") << int(bgfx::device::Kind::Software);
        QTest::newRow("bgfx") << int(bgfx::device::Kind::Bgfx);
    }
};

#define MAKE_DEVICE                                                                                               \
    QFETCH(int, device);                                                                                          \
    const DeviceScope scope(static_cast<bgfx::device::Kind>(device));                                             \
    if (!scope.IsMade())                                                                                          \
    QSKIP("this device is not built in, or cannot be had here")

void tst_Devices::clearsToTheColourOfTheView()
{
    MAKE_DEVICE;
    const QImage picture = Picture(
        {5, 3}, [](auto&, auto&) {}, 0x1b2c3dff);
    QCOMPARE(picture.size(), QSize(5, 3));
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x)
            QCOMPARE(picture.pixelColor(x, y), QColor(0x1b, 0x2c, 0x3d, 255));
    }
}

void tst_Devices::drawsALineOfOneDevicePixel()
{
    MAKE_DEVICE;
    const QImage picture = Picture({20, 10}, [](BGFXRenderer& renderer, const BGFXViewContext& view) {
        const std::array lines{Line{{3.0F, 4.5F, 0.0F}, {9.0F, 4.5F, 0.0F}, White},
                               Line{{15.5F, 1.0F, 0.0F}, {15.5F, 7.0F, 0.0F}, White}};
        renderer.DrawLines(view, lines);
    });
    std::vector<QPoint> expected;
    for (int y = 1; y < 7; ++y) {
        if (y == 4)
            for (int x = 3; x < 9; ++x)
                expected.emplace_back(x, 4);
        expected.emplace_back(15, y);
    }
    QCOMPARE(LitPixels(picture), expected);
}

void tst_Devices::drawsAStripInTheColourOfTheUniform()
{
    MAKE_DEVICE;
    const QImage picture = Picture({10, 10}, [](BGFXRenderer&, const BGFXViewContext& view) {
        DrawStrip(view, {{0.0F, 2.5F}, {4.5F, 2.5F}, {4.5F, 8.0F}}, {1.0F, 0.5F, 0.25F, 1.0F});
    });
    const QColor color = picture.pixelColor(2, 2);
    QCOMPARE(color.red(), 255);
    QVERIFY(std::abs(color.green() - 128) <= 1);
    QVERIFY(std::abs(color.blue() - 64) <= 1);
    QCOMPARE(picture.pixelColor(4, 6), color);
    QCOMPARE(picture.pixelColor(6, 6), QColor(Qt::black));
}

void tst_Devices::followsAStripThatLivesOn()
{
    MAKE_DEVICE;
    const std::vector<Pos2f> points{{0.0F, 1.5F}, {4.0F, 1.5F}, {8.0F, 5.5F}};
    LastingStrip strip(points);
    const LastingStrip otherStrip({{0.0F, 7.5F}, {8.0F, 7.5F}});
    LastingPicture picture;
    LastingPicture other;
    LastingPicture larger({12, 10});

    const auto first = picture.Draw(strip);
    QCOMPARE(std::vector(first.begin(), first.begin() + 4), Row(0, 4, 1));
    QVERIFY(first.size() >= 8);
    QCOMPARE(picture.Draw(strip), first);
    // Several pictures, two strips, in turns.
    QCOMPARE(other.Draw(otherStrip), Row(0, 8, 7));
    QCOMPARE(larger.Draw(otherStrip), Row(0, 8, 7));
    QCOMPARE(picture.Draw(strip), first);
    QCOMPARE(picture.Draw(otherStrip), Row(0, 8, 7));
    QCOMPARE(picture.Draw(otherStrip, 2.0F), Row(2, 8, 7));
    QCOMPARE(picture.Draw(strip), first);
    strip.Update({{0.0F, 3.5F}, {8.0F, 3.5F}});
    QCOMPARE(picture.Draw(strip), Row(0, 8, 3));
    strip.Update({{0.0F, 3.5F}, {4.0F, 3.5F}});
    QCOMPARE(picture.Draw(strip), Row(0, 4, 3));
}

void tst_Devices::blendsHalfTransparentTriangles()
{
    MAKE_DEVICE;
    const QImage picture = Picture(
        {8, 8},
        [](BGFXRenderer& renderer, const BGFXViewContext& view) {
            DrawTriangles(renderer, view, {{2, 0}, {6, 0}, {6, 8}, {6, 8}, {2, 8}, {2, 0}},
                          {115.0F / 255.0F, 140.0F / 255.0F, 155.0F / 255.0F, 0.5F});
        },
        0x1b1b1bff);
    // An alpha of 0.5 is 128 in a byte: 115 x 128/255 + 27 x 127/255 = 71.2 and so on.
    const QColor band = picture.pixelColor(3, 3);
    QVERIFY2(std::abs(band.red() - 71) <= 1, qPrintable(band.name()));
    QVERIFY2(std::abs(band.green() - 84) <= 1, qPrintable(band.name()));
    QVERIFY2(std::abs(band.blue() - 91) <= 1, qPrintable(band.name()));
    QCOMPARE(band.alpha(), 255);
    QCOMPARE(picture.pixelColor(1, 3), QColor(27, 27, 27));
    QCOMPARE(picture.pixelColor(6, 3), QColor(27, 27, 27));
    QCOMPARE(picture.pixelColor(5, 7), band);
}

void tst_Devices::coversTheEdgeBetweenTwoTrianglesOnce()
{
    MAKE_DEVICE;
    const QImage picture = Picture({64, 64}, [](BGFXRenderer& renderer, const BGFXViewContext& view) {
        const QPointF a(3.3, 5.1);
        const QPointF b(60.2, 2.4);
        const QPointF c(55.7, 61.9);
        const QPointF d(1.2, 50.6);
        DrawTriangles(renderer, view, {a, b, c, c, d, a}, {1.0F, 1.0F, 1.0F, 0.5F});
    });
    // Along the diagonal: neither a gap (black) nor a pixel drawn twice (brighter).
    for (int x = 6; x < 54; ++x) {
        const int y = int(5.1 + (x + 0.5 - 3.3) * (61.9 - 5.1) / (55.7 - 3.3));
        for (int dy = -1; dy <= 1; ++dy)
            QVERIFY(std::abs(qRed(picture.pixel(x, y + dy)) - 128) <= 1);
    }
}

void tst_Devices::drawsNothingOutsideTheViewport()
{
    MAKE_DEVICE;
    const QImage picture = Picture({20, 20}, [](BGFXRenderer& renderer, const BGFXViewContext& view) {
        view.SetViewport(QRect(5, 2, 10, 8));
        view.SetClear(bgfx::BGFX_CLEAR_COLOR, 0x00ff00ff, 1.0F, 0);
        DrawTriangles(renderer, view, {{-100, -100}, {300, -100}, {-100, 300}}, White);
        renderer.DrawLines(view, std::array{Line{{-50.0F, 7.0F, 0.0F}, {50.0F, 7.0F, 0.0F}, White}});
        DrawStrip(view, {{-50.0F, 3.0F}, {50.0F, 3.0F}});
    });
    for (const QPoint& lit : LitPixels(picture))
        QVERIFY(QRect(5, 2, 10, 8).contains(lit));
    QCOMPARE(LitPixels(picture).size(), std::size_t(80));
    QCOMPARE(picture.pixelColor(7, 4), QColor(Qt::white));
}

void tst_Devices::drawsTheNeighboursOfVerticesThatAreNotFinite()
{
    MAKE_DEVICE;
    for (const float bad : {NotANumber, Infinite, -Infinite}) {
        const QImage picture = Picture({40, 10}, [bad](BGFXRenderer& renderer, const BGFXViewContext& view) {
            DrawStrip(view,
                      {{0.0F, 2.5F}, {10.0F, 2.5F}, {15.0F, bad}, {20.0F, 2.5F}, {30.0F, 2.5F}, {bad, 2.5F}});
            renderer.DrawLines(view, std::array{Line{{0.0F, bad, 0.0F}, {40.0F, 5.5F, 0.0F}, White},
                                                Line{{0.0F, 7.5F, 0.0F}, {40.0F, 7.5F, 0.0F}, White}});
            DrawTriangles(renderer, view, {{0, 5}, {40, 5}, {qreal(bad), 6}}, White);
        });
        QCOMPARE(LitPixels(picture.copy(0, 0, 40, 4)).size(), std::size_t(20));
        QCOMPARE(picture.pixelColor(5, 2), QColor(Qt::white));
        QCOMPARE(picture.pixelColor(15, 2), QColor(Qt::black));
        QCOMPARE(picture.pixelColor(25, 2), QColor(Qt::white));
        QCOMPARE(LitPixels(picture.copy(0, 4, 40, 3)).size(), std::size_t(0));
        QCOMPARE(LitPixels(picture.copy(0, 7, 40, 1)).size(), std::size_t(40));
    }
}

void tst_Devices::survivesCoordinatesOfAnySize()
{
    MAKE_DEVICE;
    std::mt19937 random(7);
    const std::array values{0.0F,   1.0F,    -1.0F,    5.5F,       1e6F,     -1e9F,     1e20F,
                            -3e38F, Largest, -Largest, NotANumber, Infinite, -Infinite, 1e-40F};
    const auto any = [&] { return values[random() % values.size()]; };
    const QImage picture = Picture({64, 32}, [&](BGFXRenderer& renderer, const BGFXViewContext& view) {
        std::vector<Line> lines;
        std::vector<Pos2f> strip;
        std::vector<QPointF> corners;
        for (int i = 0; i < 3000; ++i) {
            lines.push_back({{any(), any(), 0.0F}, {any(), any(), 0.0F}, White});
            strip.push_back({any(), any()});
            corners.emplace_back(qreal(any()), qreal(any()));
        }
        renderer.DrawLines(view, lines);
        renderer.DrawLines(view, lines, vantor3DQt::LineStipple{0x0F0F, 1});
        DrawTriangles(renderer, view, corners, White);
        DrawStrip(view, strip);
    });
    QCOMPARE(picture.size(), QSize(64, 32));
}

void tst_Devices::drawsLinesThatReachFarOutside()
{
    MAKE_DEVICE;
    const QImage picture = Picture({50, 20}, [](BGFXRenderer& renderer, const BGFXViewContext& view) {
        renderer.DrawLines(view, std::array{Line{{-1e6F, 4.5F, 0.0F}, {1e6F, 4.5F, 0.0F}, White}});
        DrawStrip(view, {{-1e30F, 10.5F}, {1e30F, 10.5F}});
        DrawStrip(view, {{20.5F, -Largest}, {20.5F, Largest}});
    });
    QCOMPARE(LitPixels(picture.copy(0, 4, 50, 1)).size(), std::size_t(50));
    QCOMPARE(LitPixels(picture.copy(0, 10, 50, 1)).size(), std::size_t(50));
    QCOMPARE(LitPixels(picture.copy(20, 0, 1, 20)).size(), std::size_t(20));
}

void tst_Devices::drawsTrianglesThatReachFarOutside()
{
    MAKE_DEVICE;
    // As a long selection seen through a short view; its edges may be outside or right in the picture.
    for (const qreal far : {1e3, 1e5, 1e7, 1e8}) {
        const QImage picture = Picture({50, 20}, [far](BGFXRenderer& renderer, const BGFXViewContext& view) {
            DrawTriangles(renderer, view, {{-far, 2}, {far, 2}, {far, 6}, {far, 6}, {-far, 6}, {-far, 2}}, White);
            DrawTriangles(renderer, view, {{10, 8}, {far, 8}, {far, 12}, {far, 12}, {10, 12}, {10, 8}}, White);
            DrawTriangles(renderer, view, {{-far, 14}, {30, 14}, {30, 18}, {30, 18}, {-far, 18}, {-far, 14}},
                          White);
        });
        QCOMPARE(LitPixels(picture.copy(0, 0, 50, 7)).size(), std::size_t(50 * 4));
        QCOMPARE(LitPixels(picture.copy(10, 8, 40, 4)).size(), std::size_t(40 * 4));
        QCOMPARE(LitPixels(picture.copy(0, 14, 30, 4)).size(), std::size_t(30 * 4));
        QCOMPARE(LitPixels(picture).size(), std::size_t(50 * 4 + 40 * 4 + 30 * 4));
    }
}

void tst_Devices::drawsNothingInAnEmptyScene()
{
    MAKE_DEVICE;
    // Left equals right, as for a file of no length: the projection divides by zero.
    const QImage picture = Picture({16, 16}, [](BGFXRenderer& renderer, const BGFXViewContext& view) {
        QMatrix4x4 projection;
        projection(0, 0) = Infinite;
        projection(0, 3) = NotANumber;
        view.SetTransform({}, projection);
        const std::array lines{Line{{0.0F, 0.0F, 0.0F}, {1.0F, 1.0F, 0.0F}, White}};
        renderer.DrawLines(view, lines, vantor3DQt::LineStipple{0x0F0F, 1});
        DrawStrip(view, {{0.0F, 0.0F}, {1.0F, 1.0F}});
    });
    QVERIFY(LitPixels(picture).empty());
}

void tst_Devices::drawsMillionsOfVerticesInOnePass()
{
    MAKE_DEVICE;
    const std::vector<Pos2f> strip = DenseStrip(1, 13'000'000, 1600.0F, 300.0F);
    QImage picture;
    QBENCHMARK_ONCE
    {
        picture = Picture({1600, 300}, [&](auto&, const BGFXViewContext& view) { DrawStrip(view, strip); });
    }
    // 8,125 samples of a normal distribution to a column: each reaches far to both sides of the middle.
    QCOMPARE(LitPixels(picture.copy(1, 100, 1598, 100)).size(), std::size_t(1598 * 100));
}

void tst_Devices::agreeToWithinAPixel_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<unsigned>("seed");
    for (int kind = 0; kind < int(SceneNames.size()); ++kind) {
        for (unsigned seed = 0; seed < Seeds; ++seed)
            QTest::addRow("%s %u", SceneNames[std::size_t(kind)], seed) << kind << seed;
    }
}

void tst_Devices::agreeToWithinAPixel()
{
    QFETCH(int, kind);
    QFETCH(unsigned, seed);
    std::array<QImage, 2> pictures;
    for (const auto type : {bgfx::device::Kind::OpenGL, bgfx::device::Kind::Software}) {
        const DeviceScope scope(type);
        if (!scope.IsMade())
            QSKIP("OpenGL cannot be had here");
        pictures[type == bgfx::device::Kind::Software] = Picture({200, 200}, Scene{kind, seed});
    }
    QVERIFY(!LitPixels(pictures[0]).empty());
    QCOMPARE(StrayPixels(pictures[0], pictures[1]), 0);
    QCOMPARE(StrayPixels(pictures[1], pictures[0]), 0);
    const double ratio = double(LitPixels(pictures[0]).size()) / double(LitPixels(pictures[1]).size());
    QVERIFY2(std::abs(ratio - 1.0) < 0.02, qPrintable(QString::number(ratio)));
}

void tst_Devices::bgfxCoversThePixelsOfOpenGL()
{
    std::array<std::vector<QImage>, 2> pictures;
    for (const auto type : {bgfx::device::Kind::OpenGL, bgfx::device::Kind::Bgfx}) {
        // Starting bgfx takes long, so one start serves for all scenes.
        const DeviceScope scope(type);
        if (!scope.IsMade())
            QSKIP("OpenGL or bgfx is not built in, or cannot be had here");
        std::vector<QImage>& drawn = pictures[type == bgfx::device::Kind::Bgfx];
        for (int kind = 0; kind < int(SceneNames.size()); ++kind) {
            for (unsigned seed = 0; seed < Seeds; ++seed)
                drawn.push_back(Picture({200, 200}, Scene{kind, seed}));
        }
        drawn.push_back(Picture({60, 40}, &DrawTranslucentLayers, 0x204060ff));
    }
    for (std::size_t i = 0; i < pictures[0].size(); ++i) {
        QVERIFY(!LitPixels(pictures[0][i]).empty());
        const int difference = LargestDifference(pictures[0][i], pictures[1][i]);
        QVERIFY2(difference <= 1, qPrintable(QStringLiteral("picture %1 by %2").arg(i).arg(difference)));
    }
}

void tst_Devices::leavesTheHostsContextCurrent()
{
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    if (!context.create() || !context.makeCurrent(&surface))
        QSKIP("OpenGL cannot be had here");
    {
        const DeviceScope scope(bgfx::device::Kind::OpenGL);
        QVERIFY(scope.IsMade());
        QCOMPARE(QOpenGLContext::currentContext(), &context);
        Picture({8, 8}, [](auto&, const BGFXViewContext& view) { DrawStrip(view, {{0.0F, 1.5F}, {8.0F, 1.5F}}); });
        QCOMPARE(QOpenGLContext::currentContext(), &context);
        QCOMPARE(context.surface(), &surface);
        context.doneCurrent();
        Picture({8, 8}, [](auto&, auto&) {});
        QCOMPARE(QOpenGLContext::currentContext(), nullptr);
        context.makeCurrent(&surface);
    }
    QCOMPARE(QOpenGLContext::currentContext(), &context);
}

void tst_Devices::keepsTheHostsContextOutOfALossOfItsOwn()
{
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext host;
    if (!host.create() || !host.makeCurrent(&surface))
        QSKIP("OpenGL cannot be had here");
    const auto ours = bgfx::device::OpenGLContext::Make();
    QVERIFY(ours);
    bgfx::device::OpenGLContextTestAccess::LoseSurface(*ours);
    {
        const bgfx::device::CurrentOpenGL current(*ours);
        QVERIFY(!current.IsValid());
        // Both contexts count their objects from 1: what is deleted now would be the host's.
        QCOMPARE(QOpenGLContext::currentContext(), nullptr);
    }
    QCOMPARE(QOpenGLContext::currentContext(), &host);
    QCOMPARE(host.surface(), &surface);
}

QTEST_MAIN(tst_Devices)
#include "tst_Devices.moc"
