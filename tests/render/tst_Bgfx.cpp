#include "FakeDevice.h"
#include "render/bgfx/bx.h"
#include "tests/render/Drawing.h"

#include <QtTest/QtTest>

#include <cmath>
#include <cstring>

using namespace drawing;

namespace {

bgfx::DynamicVertexBufferHandle MakeBuffer(const std::vector<Pos2f>& points)
{
    return bgfx::createDynamicVertexBuffer(
        bgfx::makeRef(points.data(), std::uint32_t(points.size() * sizeof(Pos2f))), Pos2f::Layout(),
        bgfx::BGFX_BUFFER_ALLOW_RESIZE);
}

/** How many pixels a strip of the buffer's vertices covers. */
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
    void init() { bgfx::DrawingDevice::Get().Shutdown(); }
    void cleanupTestCase() { bgfx::DrawingDevice::Get().Shutdown(); }

    void keepsTheConstantsThatHostsWriteAsNumbers()
    {
        QCOMPARE(bgfx::BGFX_BUFFER_ALLOW_RESIZE, std::uint16_t{2048});
        QCOMPARE(bgfx::BGFX_DISCARD_ALL, std::uint8_t{255});
        QCOMPARE(bgfx::kInvalidHandle, std::uint16_t{65535});
        QCOMPARE(Pos2f::Layout().getStride(), std::uint16_t{8});
        QCOMPARE(Pos3fColorRGBA::Layout().getStride(), std::uint16_t{16});
        QCOMPARE(Pos3fColorRGBA::Layout().ColorOffset(), std::uint16_t{12});
    }

    void startsHandlesInvalid()
    {
        QVERIFY(!bgfx::isValid(bgfx::UniformHandle()));
        QVERIFY(!bgfx::isValid(bgfx::DynamicVertexBufferHandle{bgfx::kInvalidHandle}));
    }

    void tellsWhichDeviceDraws()
    {
        auto& device = bgfx::DrawingDevice::Get();
        QCOMPARE(device.Kind(), bgfx::device::Kind::None);
        QCOMPARE(device.MaxSide(), 0);
        QVERIFY(device.Use(bgfx::device::Kind::Software));
        QCOMPARE(device.Kind(), bgfx::device::Kind::Software);
        QVERIFY(device.MaxSide() >= 4096);
        device.Shutdown();
        QCOMPARE(device.Kind(), bgfx::device::Kind::None);
        QVERIFY2(!device.Use(bgfx::device::Kind::None), "none is no device");
    }

    void drawsViewsInAscendingOrder()
    {
        const DeviceScope scope(bgfx::device::Kind::Software);
        const QImage picture = Picture({2, 1}, [](BGFXRenderer&, const BGFXViewContext&) {
            const BGFXViewContext last(2);
            last.SetViewport({0, 0, 1, 1});
            last.SetClear(bgfx::BGFX_CLEAR_COLOR, 0x00ff00ff, 1.0F, 0);
            const BGFXViewContext second(1);
            second.SetViewport({0, 0, 2, 1});
            second.SetClear(bgfx::BGFX_CLEAR_COLOR, 0xff0000ff, 1.0F, 0);
        });
        QCOMPARE(picture.pixelColor(0, 0), QColor(0, 255, 0));
        QCOMPARE(picture.pixelColor(1, 0), QColor(255, 0, 0));
    }

    void clearsOnlyColoursAndOnlyWhereItIsTold()
    {
        const DeviceScope scope(bgfx::device::Kind::Software);
        const QImage picture = Picture({1, 1}, [](BGFXRenderer&, const BGFXViewContext& view) {
            view.SetClear(bgfx::BGFX_CLEAR_DEPTH, 0xffffffff, 1.0F, 0);
        });
        QCOMPARE(picture.pixelColor(0, 0), QColor(0, 0, 0, 0));
    }

    void readsReferencedMemoryInPlace()
    {
        const DeviceScope scope(bgfx::device::Kind::Software);
        std::vector<Pos2f> points{{0.0F, 5.5F}, {10.0F, 5.5F}};
        const auto buffer = MakeBuffer(points);
        QCOMPARE(LitByBuffer(buffer), std::size_t(10));
        points[1].x = 15.0F;
        QCOMPARE(LitByBuffer(buffer), std::size_t(15));
        bgfx::destroy(buffer);
        QCOMPARE(LitByBuffer(buffer), std::size_t(0));
    }

    void takesTheLengthOfTheMemory()
    {
        const DeviceScope scope(bgfx::device::Kind::Software);
        const std::vector<Pos2f> points{{0.0F, 5.5F}, {5.0F, 5.5F}};
        const auto buffer = MakeBuffer(points);
        const std::array longer{Pos2f{0.0F, 5.5F}, Pos2f{5.0F, 5.5F}, Pos2f{12.0F, 5.5F}};
        bgfx::update(buffer, 0, bgfx::makeRef(longer.data(), sizeof(longer)));
        QCOMPARE(LitByBuffer(buffer), std::size_t(12));
        bgfx::update(buffer, 0, bgfx::makeRef(longer.data(), 16));
        QVERIFY2(LitByBuffer(buffer) == 5, "no stale vertices behind shorter memory");
        bgfx::destroy(buffer);
        bgfx::update(buffer, 0, bgfx::makeRef(longer.data(), 16)); // for a buffer that is gone
    }

    void forgetsTheVerticesAfterASubmit()
    {
        const DeviceScope scope(bgfx::device::Kind::Software);
        const auto picture = Picture({20, 20}, [&](BGFXRenderer&, const BGFXViewContext& view) {
            DrawStrip(view, {{0.0F, 5.5F}, {5.0F, 5.5F}});
            bgfx::submit(view.Id(), bgfx::WaveformProgramHandle);
            QCOMPARE(bgfx::RecordedView(view.Id()).draws.size(), std::size_t(1));
        });
        QCOMPARE(LitPixels(picture).size(), std::size_t(5));
    }

    void countsOneUniformForOneName()
    {
        const auto first = bgfx::createUniform("u_test", bgfx::UniformType::Vec4, 1);
        const auto second = bgfx::createUniform("u_test", bgfx::UniformType::Vec4, 1);
        QCOMPARE(first.idx, second.idx);
        QCOMPARE(bgfx::LivingObjects(), std::size_t(1));
        bgfx::destroy(first);
        QCOMPARE(bgfx::LivingObjects(), std::size_t(1));
        bgfx::destroy(second);
        bgfx::destroy(second);
        QCOMPARE(bgfx::LivingObjects(), std::size_t(0));
    }

    void givesANumberOutAgainOnlyAfterAllOthers()
    {
        const std::vector<Pos2f> points(2);
        const auto first = MakeBuffer(points);
        bgfx::destroy(first);
        for (int i = 0; i < 65534; ++i) {
            const auto other = MakeBuffer(points);
            QVERIFY(bgfx::isValid(other) && other.idx != first.idx);
            bgfx::destroy(other);
        }
        const auto again = MakeBuffer(points);
        QCOMPARE(again.idx, first.idx);
        bgfx::destroy(again);
    }

    void keepsHandlesAcrossAShutdown()
    {
        const std::vector<Pos2f> points{{0.0F, 5.5F}, {5.0F, 5.5F}};
        const auto buffer = MakeBuffer(points);
        for (int i = 0; i < 2; ++i) {
            const DeviceScope scope(bgfx::device::Kind::Software);
            QCOMPARE(LitByBuffer(buffer), std::size_t(5));
        }
        bgfx::destroy(buffer);
    }

    void isHarmlessWithoutADeviceAndWithWrongNumbers()
    {
        bgfx::submit(0, {});
        bgfx::submit(60000, {});
        bgfx::setViewClear(60000, bgfx::BGFX_CLEAR_COLOR, 0, 1.0F, 0);
        BGFXViewContext(3).SetViewport({0, 0, 1, 1});
        bgfx::destroy(bgfx::DynamicVertexBufferHandle{});
        bgfx::destroy(bgfx::UniformHandle{17});
        bgfx::setUniform({}, nullptr);
        QCOMPARE(bgfx::LivingObjects(), std::size_t(0));
        QImage picture(1, 1, QImage::Format_RGBA8888);
        picture.fill(Qt::red);
        QVERIFY(!bgfx::DrawingDevice::Get().DrawInto(picture));
        QCOMPARE(picture.pixelColor(0, 0), QColor(Qt::red));
    }

    void projectsTheCornersOfAnOrthographicView()
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

    void writesColoursAsRedGreenBlueAlpha()
    {
        QCOMPARE((Color{27 / 255.0F, 150 / 255.0F, 209 / 255.0F, 1.0F}.ToRGBA()), 0x1b96d1ffU);
        QCOMPARE((Color{2.0F, -1.0F, std::nanf(""), 0.5F}.ToRGBA()), 0xff000080U);
    }

    void writesVertexColoursRedFirstInMemory()
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

    void knowsItsProgramsByName()
    {
        auto& factory = vantor3D::ProgramFactory::Get();
        QVERIFY2(!factory.CreateProgram("vs_waveform_basic_2d", "fs_waveform_samples"), "no device yet");
        const DeviceScope scope(bgfx::device::Kind::Software);
        const auto program = factory.CreateProgram("vs_waveform_basic_2d", "fs_waveform_samples");
        QVERIFY(program && bgfx::isValid(*program));
        QCOMPARE(factory.CreateProgram("vs_waveform_basic_2d", "fs_waveform_samples")->idx, program->idx);
        QVERIFY(!factory.CreateProgram("vs_waveform_basic_2d", "fs_nothing"));
        QVERIFY(!factory.CreateProgram("vs_nothing", "fs_waveform_samples"));
        QVERIFY(!factory.CreateProgram("fs_waveform_samples", "vs_waveform_basic_2d"));
        QVERIFY(!factory.CreateProgram("", ""));
    }

    void survivesAFrameThatThrows()
    {
        int drawn = 0;
        Adopt(drawn, Fault::RunsOutOfMemory);
        QImage picture(1, 1, QImage::Format_RGBA8888);
        QVERIFY_THROWS_EXCEPTION(std::bad_alloc, bgfx::DrawingDevice::Get().DrawInto(picture));
        QCOMPARE(drawn, 1);
        QVERIFY(!bgfx::DrawingDevice::Get().IsLost());
    }

    void drawsInSoftwareOnceTheDeviceIsLost()
    {
        auto& device = bgfx::DrawingDevice::Get();
        int drawn = 0;
        Adopt(drawn, Fault::IsLost);
        QVERIFY(!device.IsLost());
        Picture({1, 1}, [](auto&, auto&) {});
        QVERIFY(device.IsLost());
        QImage untouched(1, 1, QImage::Format_RGBA8888);
        QVERIFY(!device.DrawInto(untouched));
        QVERIFY2(drawn == 1, "a lost device is not asked again");

        QSignalSpy shutdowns(&device, &bgfx::DrawingDevice::AboutToShutDown);
        QVERIFY(device.Ensure());
        QCOMPARE(shutdowns.count(), 1);
        QVERIFY(!device.IsLost());
        QCOMPARE(device.Kind(), bgfx::device::Kind::Software);
        QCOMPARE(Picture(
                     {1, 1}, [](auto&, auto&) {}, 0x112233ff)
                     .pixelColor(0, 0),
                 QColor(0x11, 0x22, 0x33));
    }
};

QTEST_MAIN(tst_Bgfx)
#include "tst_Bgfx.moc"
