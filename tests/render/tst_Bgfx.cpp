#include "FakeDevice.h"
#include "render/bgfx/bx.h"
#include "tests/render/Drawing.h"

#include <QtTest/QtTest>

#include <cmath>

using namespace drawing;

namespace {

struct Frame
{
    explicit Frame(std::uint16_t width, std::uint16_t height)
        : handle(bgfx::createFrameBuffer(width, height, bgfx::TextureFormat::RGBA8))
        , copy(bgfx::createTexture2D(width, height, false, 1, bgfx::TextureFormat::RGBA8,
                                     bgfx::BGFX_TEXTURE_BLIT_DST | bgfx::BGFX_TEXTURE_READ_BACK))
        , pixels(std::size_t{width} * height)
    {
    }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;
    ~Frame()
    {
        bgfx::destroy(handle);
        bgfx::destroy(copy);
    }

    void Clear(bgfx::ViewId view, std::uint32_t rgba, std::uint16_t width = 100)
    {
        bgfx::setViewFrameBuffer(view, handle);
        bgfx::setViewRect(view, 0, 0, width, 100);
        bgfx::setViewClear(view, bgfx::BGFX_CLEAR_COLOR, rgba);
        bgfx::touch(view);
    }
    void Fetch(bgfx::ViewId view)
    {
        bgfx::blit(view, copy, 0, 0, bgfx::getTexture(handle));
        const std::uint32_t available = bgfx::readTexture(copy, pixels.data());
        while (bgfx::frame() < available) {
        }
    }
    [[nodiscard]] std::uint32_t At(std::size_t i) const
    {
        std::array<std::uint8_t, 4> bytes{};
        std::memcpy(bytes.data(), &pixels[i], 4);
        return std::uint32_t(bytes[0]) << 24 | std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8 |
               bytes[3];
    }

    bgfx::FrameBufferHandle handle;
    bgfx::TextureHandle copy;
    std::vector<std::uint32_t> pixels;
};

bgfx::DynamicVertexBufferHandle MakeBuffer(const std::vector<Pos2f>& points, std::uint16_t flags)
{
    return bgfx::createDynamicVertexBuffer(bgfx::copy(points.data(), std::uint32_t(points.size() * sizeof(Pos2f))),
                                           Pos2f::Layout(), flags);
}

std::size_t LitByBuffer(bgfx::DynamicVertexBufferHandle buffer)
{
    const auto picture = Picture({20, 20}, [&](BGFXRenderer&, const BGFXViewContext& view) {
        const auto program =
            vantor3D::ProgramFactory::Get().CreateProgram("vs_waveform_basic_2d", "fs_waveform_samples").value();
        const auto uniform = bgfx::createUniform("u_waveformColor", bgfx::UniformType::Vec4);
        const std::array white{1.0F, 1.0F, 1.0F, 1.0F};
        bgfx::setUniform(uniform, white.data());
        bgfx::setVertexBuffer(0, buffer);
        bgfx::setState(BGFXRenderer::STATE_LINESTRIP, 0);
        bgfx::submit(view.Id(), program, 0, 255);
        bgfx::destroy(uniform);
    });
    return LitPixels(picture).size();
}

} // namespace

class tst_Bgfx : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { bgfx::shutdown(); }
    void cleanupTestCase() { bgfx::shutdown(); }

    void keepsTheConstantsThatHostsWriteAsNumbers();
    void startsHandlesInvalid();
    void tellsWhichDeviceDraws();
    void keepsTheDeviceOfTheFirstInit();
    void drawsViewsInAscendingOrder();
    void clearsOnlyViewsThatTakePart();
    void copiesBeforeTheDrawsOfItsView();
    void readsOnlyTexturesThatAllowIt();
    void throwsADiscardedFrameAway();
    void givesReferencedMemoryBackOnceItIsReplaced();
    void readsReferencedMemoryInPlace();
    void takesTheLengthOfTheMemoryWhenResizing();
    void cutsAnUpdateOfAFixedBuffer();
    void replacesVerticesInTheMiddle();
    void dropsTheDrawsOfADestroyedBuffer();
    void leavesOutDrawsWithIndicesOutOfRange();
    void forgetsTheStateAfterASubmit();
    void countsOneUniformForOneName();
    void refusesFrameBuffersOfAbsurdSize();
    void keepsHandlesAcrossAShutdown();
    void isHarmlessWithoutADevice();
    void drawsNothingWithTheNoopDevice();
    void projectsTheCornersOfAnOrthographicView();
    void writesColoursAsRedGreenBlueAlpha();
    void knowsItsProgramsByName();
    void dropsItsProgramsAtShutdown();
    void writesVertexColoursRedFirstInMemory();
    void endsAFrameThatThrows();
    void drawsInSoftwareOnceTheDeviceIsLost();
    void aRefusedProgramDoesNotLoseTheDevice();
    void aDeviceLostWhileMakingAProgramIsReplaced();
};

void tst_Bgfx::writesVertexColoursRedFirstInMemory()
{
    const auto bytesOf = [](const Color& color) {
        const std::uint32_t value = color.ToVertexColor();
        QByteArray bytes(4, '\0');
        std::memcpy(bytes.data(), &value, 4);
        return bytes.toHex();
    };
    QCOMPARE(bytesOf({1.0F, 0.5F, 0.0F, 0.25F}), QByteArray("ff800040"));
    QCOMPARE(bytesOf({2.0F, -1.0F, std::nanf(""), 1.0F}), QByteArray("ff0000ff"));
}

void tst_Bgfx::endsAFrameThatThrows()
{
    FakeLog log;
    Adopt(log, {.throwsOnClear = true});
    Frame frame(1, 1);
    frame.Clear(0, 0x112233ff);
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc, bgfx::frame());
    QCOMPARE(log.begun, 1);
    QCOMPARE(log.ended, 1);
}

void tst_Bgfx::drawsInSoftwareOnceTheDeviceIsLost()
{
    FakeLog log;
    Adopt(log, {.begins = false});
    Frame frame(1, 1);
    frame.Clear(0, 0x112233ff);
    QVERIFY(!bgfx::DeviceLifetime::IsLost());
    frame.Fetch(200);
    QVERIFY(bgfx::DeviceLifetime::IsLost());
    QCOMPARE(log.begun, 1);
    QCOMPARE(log.ended, 0);
    bgfx::frame();
    QCOMPARE(log.begun, 1);

    QSignalSpy shutdowns(&bgfx::DeviceLifetime::Get(), &bgfx::DeviceLifetime::HasShutDown);
    QVERIFY(bgfx::DeviceLifetime::Ensure());
    QCOMPARE(shutdowns.count(), 1);
    QVERIFY(!bgfx::DeviceLifetime::IsLost());
    QCOMPARE(bgfx::getRendererType(), bgfx::RendererType::Software);
    frame.Clear(0, 0x112233ff);
    frame.Fetch(200);
    QCOMPARE(frame.At(0), 0x112233ffU);
}

void tst_Bgfx::aRefusedProgramDoesNotLoseTheDevice()
{
    FakeLog log;
    Adopt(log, {});
    QVERIFY(!vantor3D::ProgramFactory::Get().CreateProgram("vs_color_3d", "fs_color"));
    QVERIFY(!bgfx::DeviceLifetime::IsLost());
}

void tst_Bgfx::aDeviceLostWhileMakingAProgramIsReplaced()
{
    FakeLog log;
    Adopt(log, {.losesPrograms = true});
    QVERIFY(!vantor3D::ProgramFactory::Get().CreateProgram("vs_color_3d", "fs_color"));
    QVERIFY(bgfx::DeviceLifetime::IsLost());
    QVERIFY(bgfx::DeviceLifetime::Ensure());
    QVERIFY(vantor3D::ProgramFactory::Get().CreateProgram("vs_color_3d", "fs_color"));
}

void tst_Bgfx::keepsTheConstantsThatHostsWriteAsNumbers()
{
    QCOMPARE(bgfx::BGFX_BUFFER_ALLOW_RESIZE, std::uint16_t{2048});
    QCOMPARE(bgfx::BGFX_DISCARD_ALL, std::uint8_t{255});
    QCOMPARE(bgfx::kInvalidHandle, std::uint16_t{65535});
    QCOMPARE(bgfx::BGFX_STATE_BLEND_ALPHA, std::uint64_t{0x06565000});
    QCOMPARE(Pos2f::Layout().getStride(), std::uint16_t{8});
    QCOMPARE(Pos3fColorRGBA::Layout().getStride(), std::uint16_t{16});
}

void tst_Bgfx::startsHandlesInvalid()
{
    QVERIFY(!bgfx::isValid(bgfx::UniformHandle()));
    QVERIFY(!bgfx::isValid(bgfx::DynamicVertexBufferHandle{bgfx::kInvalidHandle}));
}

void tst_Bgfx::tellsWhichDeviceDraws()
{
    QCOMPARE(bgfx::getRendererType(), bgfx::RendererType::Noop);
    QVERIFY(bgfx::init({bgfx::RendererType::Software}));
    QCOMPARE(bgfx::getRendererType(), bgfx::RendererType::Software);
    QCOMPARE(bgfx::getRendererName(bgfx::getRendererType()), "Software");
    QVERIFY(bgfx::getCaps()->limits.maxTextureSize >= 4096);
    bgfx::shutdown();
    QCOMPARE(bgfx::getRendererType(), bgfx::RendererType::Noop);
}

void tst_Bgfx::keepsTheDeviceOfTheFirstInit()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    QVERIFY(!bgfx::init({bgfx::RendererType::Noop}));
    QCOMPARE(bgfx::getRendererType(), bgfx::RendererType::Software);
}

void tst_Bgfx::drawsViewsInAscendingOrder()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    Frame frame(2, 1);
    frame.Clear(7, 0x00ff00ff, 1);
    frame.Clear(3, 0xff0000ff);
    frame.Fetch(200);
    QCOMPARE(frame.At(0), 0x00ff00ffU);
    QCOMPARE(frame.At(1), 0xff0000ffU);
}

void tst_Bgfx::clearsOnlyViewsThatTakePart()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    Frame frame(1, 1);
    frame.Clear(0, 0x112233ff);
    frame.Fetch(200);
    bgfx::setViewClear(0, bgfx::BGFX_CLEAR_COLOR, 0xffffffff);
    frame.Fetch(200);
    QCOMPARE(frame.At(0), 0x112233ffU);
    bgfx::setViewClear(0, bgfx::BGFX_CLEAR_DEPTH, 0xffffffff);
    bgfx::touch(0);
    frame.Fetch(200);
    QCOMPARE(frame.At(0), 0x112233ffU);
}

void tst_Bgfx::copiesBeforeTheDrawsOfItsView()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    Frame frame(1, 1);
    frame.Clear(0, 0x112233ff);
    frame.Fetch(0);
    QCOMPARE(frame.At(0), 0U);
    frame.Fetch(0);
    QCOMPARE(frame.At(0), 0x112233ffU);
}

void tst_Bgfx::readsOnlyTexturesThatAllowIt()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    const Frame frame(1, 1);
    std::uint32_t pixel = 0;
    QCOMPARE(bgfx::readTexture(bgfx::getTexture(frame.handle), &pixel), 0U);
    QCOMPARE(bgfx::readTexture({}, &pixel), 0U);
    const auto texture = bgfx::createTexture2D(1, 1, false, 1, bgfx::TextureFormat::RGBA8,
                                               bgfx::BGFX_TEXTURE_READ_BACK, bgfx::copy("abcd", 4));
    const std::uint32_t available = bgfx::readTexture(texture, &pixel);
    QVERIFY(available > 0);
    QVERIFY(bgfx::frame() >= available);
    QCOMPARE(std::memcmp(&pixel, "abcd", 4), 0);
    bgfx::destroy(texture);
}

void tst_Bgfx::throwsADiscardedFrameAway()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    Frame frame(1, 1);
    frame.Clear(0, 0xffffffff);
    bgfx::frame(bgfx::BGFX_FRAME_DISCARD);
    frame.Fetch(200);
    QCOMPARE(frame.At(0), 0U);
}

void tst_Bgfx::givesReferencedMemoryBackOnceItIsReplaced()
{
    std::vector<Pos2f> points(3);
    int released = 0;
    const auto reference = [&] {
        return bgfx::makeRef(
            points.data(), 24, [](void*, void* count) { ++*static_cast<int*>(count); }, &released);
    };
    const auto buffer =
        bgfx::createDynamicVertexBuffer(reference(), Pos2f::Layout(), bgfx::BGFX_BUFFER_ALLOW_RESIZE);
    bgfx::frame();
    bgfx::frame();
    QCOMPARE(released, 0);
    bgfx::update(buffer, 0, reference());
    QCOMPARE(released, 1);
    bgfx::destroy(buffer);
    QCOMPARE(released, 2);
    bgfx::update(buffer, 0, reference());
    QVERIFY2(released == 3, "memory for a buffer that is gone");
}

void tst_Bgfx::readsReferencedMemoryInPlace()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    std::vector<Pos2f> points{{0.0F, 5.5F}, {10.0F, 5.5F}};
    const auto buffer = bgfx::createDynamicVertexBuffer(bgfx::makeRef(points.data(), 16), Pos2f::Layout());
    QCOMPARE(LitByBuffer(buffer), std::size_t(10));
    points[1].x = 15.0F;
    QCOMPARE(LitByBuffer(buffer), std::size_t(15));
    bgfx::destroy(buffer);
}

void tst_Bgfx::takesTheLengthOfTheMemoryWhenResizing()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    const auto buffer = MakeBuffer({{0.0F, 5.5F}, {5.0F, 5.5F}}, bgfx::BGFX_BUFFER_ALLOW_RESIZE);
    const std::array longer{Pos2f{0.0F, 5.5F}, Pos2f{5.0F, 5.5F}, Pos2f{12.0F, 5.5F}};
    bgfx::update(buffer, 0, bgfx::copy(longer.data(), sizeof(longer)));
    QCOMPARE(LitByBuffer(buffer), std::size_t(12));
    bgfx::update(buffer, 0, bgfx::copy(longer.data(), 16));
    QVERIFY2(LitByBuffer(buffer) == 5, "no stale vertices behind shorter memory");
    bgfx::destroy(buffer);
}

void tst_Bgfx::cutsAnUpdateOfAFixedBuffer()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    const auto buffer = MakeBuffer({{0.0F, 5.5F}, {5.0F, 5.5F}}, bgfx::BGFX_BUFFER_NONE);
    const std::array longer{Pos2f{0.0F, 5.5F}, Pos2f{8.0F, 5.5F}, Pos2f{12.0F, 5.5F}};
    bgfx::update(buffer, 0, bgfx::copy(longer.data(), sizeof(longer)));
    QCOMPARE(LitByBuffer(buffer), std::size_t(8));
    bgfx::update(buffer, 4'000'000'000U, bgfx::copy(longer.data(), sizeof(longer)));
    QCOMPARE(LitByBuffer(buffer), std::size_t(8));
    bgfx::destroy(buffer);
}

void tst_Bgfx::replacesVerticesInTheMiddle()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    std::vector<Pos2f> points{{0.0F, 5.5F}, {5.0F, 5.5F}};
    const auto buffer = bgfx::createDynamicVertexBuffer(bgfx::makeRef(points.data(), 16), Pos2f::Layout());
    const Pos2f end{9.0F, 5.5F};
    bgfx::update(buffer, 1, bgfx::copy(&end, sizeof(end)));
    QCOMPARE(LitByBuffer(buffer), std::size_t(9));
    QVERIFY2(points[1].x == 5.0F, "the application's memory is never written");
    bgfx::destroy(buffer);
}

void tst_Bgfx::dropsTheDrawsOfADestroyedBuffer()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    const auto picture = Picture({20, 20}, [&](BGFXRenderer&, const BGFXViewContext& view) {
        DrawStrip(view, std::vector<Pos2f>{{0.0F, 5.5F}, {5.0F, 5.5F}});
        bgfx::destroy(StripsOfFrame().back());
        DrawStrip(view, std::vector<Pos2f>{{0.0F, 7.5F}, {5.0F, 7.5F}});
    });
    QCOMPARE(LitPixels(picture).size(), std::size_t(5));
    QCOMPARE(LitPixels(picture).front(), QPoint(0, 7));
}

void tst_Bgfx::leavesOutDrawsWithIndicesOutOfRange()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    const std::array<Pos3fColorRGBA, 3> vertices{
        Pos3fColorRGBA{0, 0, 0, 0xffffffff}, {20, 0, 0, 0xffffffff}, {0, 20, 0, 0xffffffff}};
    const auto lit = [&](std::vector<std::uint16_t> indices) {
        const auto picture = Picture({20, 20}, [&](BGFXRenderer& renderer, const BGFXViewContext& view) {
            renderer.DrawTriangles(view, vertices, indices, BGFXRenderer::STATE_TRANSPARENT);
        });
        return LitPixels(picture).size();
    };
    QVERIFY(lit({0, 1, 2}) > 150);
    QCOMPARE(lit({0, 1, 3}), std::size_t(0));
    QVERIFY(lit({0, 1, 65535, 0, 1, 2}) > 150);
    QCOMPARE(lit({0, 1}), std::size_t(0));
    QCOMPARE(lit({}), std::size_t(0));
}

void tst_Bgfx::forgetsTheStateAfterASubmit()
{
    const DeviceScope scope(bgfx::RendererType::Software);
    const auto picture = Picture({20, 20}, [&](BGFXRenderer&, const BGFXViewContext& view) {
        QMatrix4x4 down;
        down.translate(0.0F, 4.0F);
        bgfx::setTransform(down.constData());
        DrawStrip(view, std::vector<Pos2f>{{0.0F, 5.5F}, {5.0F, 5.5F}});
        DrawStrip(view, std::vector<Pos2f>{{0.0F, 5.5F}, {5.0F, 5.5F}});
        const auto program =
            vantor3D::ProgramFactory::Get().CreateProgram("vs_waveform_basic_2d", "fs_waveform_samples").value();
        bgfx::submit(view.Id(), program);
    });
    QCOMPARE(LitPixels(picture.copy(0, 5, 20, 1)).size(), std::size_t(5));
    QCOMPARE(LitPixels(picture.copy(0, 9, 20, 1)).size(), std::size_t(5));
    QCOMPARE(LitPixels(picture).size(), std::size_t(10));
    QCOMPARE(bgfx::getStats()->numDraw, 2U);
}

void tst_Bgfx::countsOneUniformForOneName()
{
    const auto first = bgfx::createUniform("u_test", bgfx::UniformType::Vec4, 1);
    const auto second = bgfx::createUniform("u_test", bgfx::UniformType::Vec4, 1);
    QCOMPARE(first.idx, second.idx);
    QCOMPARE(bgfx::getStats()->numUniforms, std::uint16_t{1});
    bgfx::destroy(first);
    QCOMPARE(bgfx::getStats()->numUniforms, std::uint16_t{1});
    bgfx::destroy(second);
    bgfx::destroy(second);
    QCOMPARE(bgfx::getStats()->numUniforms, std::uint16_t{0});
}

void tst_Bgfx::refusesFrameBuffersOfAbsurdSize()
{
    QVERIFY(!bgfx::isValid(bgfx::createFrameBuffer(10, 10, bgfx::TextureFormat::RGBA8)));
    const DeviceScope scope(bgfx::RendererType::Software);
    QVERIFY(!bgfx::isValid(bgfx::createFrameBuffer(0, 10, bgfx::TextureFormat::RGBA8)));
    QVERIFY(!bgfx::isValid(bgfx::createFrameBuffer(10, 0, bgfx::TextureFormat::RGBA8)));
    QVERIFY(!bgfx::isValid(bgfx::createFrameBuffer(65535, 10, bgfx::TextureFormat::RGBA8)));
    QCOMPARE(bgfx::getStats()->numFrameBuffers, std::uint16_t{0});
}

void tst_Bgfx::keepsHandlesAcrossAShutdown()
{
    const auto buffer = MakeBuffer({{0.0F, 5.5F}, {5.0F, 5.5F}}, bgfx::BGFX_BUFFER_ALLOW_RESIZE);
    for (int i = 0; i < 2; ++i) {
        const DeviceScope scope(bgfx::RendererType::Software);
        QCOMPARE(LitByBuffer(buffer), std::size_t(5));
    }
    bgfx::destroy(buffer);

    auto scope = std::make_unique<DeviceScope>(bgfx::RendererType::Software);
    Frame frame(1, 1);
    scope.reset();
    scope = std::make_unique<DeviceScope>(bgfx::RendererType::Software);
    frame.Clear(0, 0x112233ff);
    frame.Fetch(200);
    QCOMPARE(frame.At(0), 0x112233ffU);
}

void tst_Bgfx::isHarmlessWithoutADevice()
{
    bgfx::shutdown();
    bgfx::touch(0);
    bgfx::submit(0, {});
    bgfx::submit(60000, {});
    bgfx::touch(60000);
    bgfx::setViewRect(60000, 0, 0, 1, 1);
    bgfx::frame();
    bgfx::destroy(bgfx::ProgramHandle{17});
    bgfx::destroy(bgfx::FrameBufferHandle{17});
    bgfx::destroy(bgfx::DynamicVertexBufferHandle{});
    bgfx::destroy(bgfx::IndexBufferHandle{});
    bgfx::destroy(bgfx::TextureHandle{});
    bgfx::setUniform({}, nullptr);
    QCOMPARE(bgfx::getStats()->numDynamicVertexBuffers, std::uint16_t{0});
    const auto indices = bgfx::createIndexBuffer(bgfx::copy("\0\0", 2));
    QVERIFY(bgfx::isValid(indices));
    bgfx::destroy(indices);
}

void tst_Bgfx::drawsNothingWithTheNoopDevice()
{
    const DeviceScope scope(bgfx::RendererType::Noop);
    const QImage picture = Picture({4, 4}, [](auto&, const BGFXViewContext& view) {
        DrawStrip(view, std::vector<Pos2f>{{0.0F, 1.5F}, {4.0F, 1.5F}});
    });
    QCOMPARE(picture.pixel(1, 1), QRgb(0));
}

void tst_Bgfx::projectsTheCornersOfAnOrthographicView()
{
    QMatrix4x4 matrix;
    bx::mtxOrtho(matrix.data(), 2.0F, 10.0F, -1.0F, 1.0F, -0.01F, 100.0F, 0.0F, false);
    QCOMPARE(matrix.map(QVector3D(2.0F, -1.0F, 0.0F)).toPointF(), QPointF(-1.0, -1.0));
    QCOMPARE(matrix.map(QVector3D(10.0F, 1.0F, 0.0F)).toPointF(), QPointF(1.0, 1.0));
    QVERIFY(std::abs(matrix.map(QVector3D(0, 0, -0.01F)).z()) < 1e-6F);
    QVERIFY(std::abs(matrix.map(QVector3D(0, 0, 100.0F)).z() - 1.0F) < 1e-6F);
    bx::mtxOrtho(matrix.data(), 0.0F, 1.0F, 0.0F, 1.0F, 0.0F, 10.0F, 0.5F, true, bx::Handedness::Right);
    QCOMPARE(matrix(0, 3), -0.5F);
    QCOMPARE(matrix(2, 2), -0.2F);
    QCOMPARE(matrix(2, 3), -1.0F);
}

void tst_Bgfx::writesColoursAsRedGreenBlueAlpha()
{
    QCOMPARE((Color{27 / 255.0F, 150 / 255.0F, 209 / 255.0F, 1.0F}.ToRGBA()), 0x1b96d1ffU);
    QCOMPARE((Color{2.0F, -1.0F, std::nanf(""), 0.5F}.ToRGBA()), 0xff000080U);
}

void tst_Bgfx::knowsItsProgramsByName()
{
    auto& factory = vantor3D::ProgramFactory::Get();
    QVERIFY2(!factory.CreateProgram("vs_waveform_basic_2d", "fs_waveform_samples"), "no device yet");
    const DeviceScope scope(bgfx::RendererType::Software);
    const auto program = factory.CreateProgram("vs_waveform_basic_2d", "fs_waveform_samples");
    QVERIFY(program && bgfx::isValid(*program));
    QCOMPARE(factory.CreateProgram("vs_waveform_basic_2d", "fs_waveform_samples")->idx, program->idx);
    QVERIFY(!factory.CreateProgram("vs_waveform_basic_2d", "fs_nothing"));
    QVERIFY(!factory.CreateProgram("vs_nothing", "fs_waveform_samples"));
    QVERIFY(!factory.CreateProgram("fs_waveform_samples", "vs_waveform_basic_2d"));
    QVERIFY(!factory.CreateProgram("", ""));
    QCOMPARE(bgfx::getStats()->numPrograms, std::uint16_t{1});
    QCOMPARE(bgfx::getStats()->numShaders, std::uint16_t{0});
}

void tst_Bgfx::dropsItsProgramsAtShutdown()
{
    {
        const DeviceScope scope(bgfx::RendererType::Software);
        QVERIFY(vantor3D::ProgramFactory::Get().CreateProgram("vs_color_3d", "fs_color"));
    }
    QCOMPARE(bgfx::getStats()->numPrograms, std::uint16_t{0});
    const DeviceScope scope(bgfx::RendererType::Software);
    QVERIFY(vantor3D::ProgramFactory::Get().CreateProgram("vs_color_3d", "fs_color"));
}

QTEST_GUILESS_MAIN(tst_Bgfx)
#include "tst_Bgfx.moc"
