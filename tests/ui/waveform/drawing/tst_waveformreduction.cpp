#include "tests/render/Drawing.h"
#include "ui/waveform/drawing/Projection.h"
#include "ui/waveform/drawing/WaveformGeometry.h"
#include "ui/waveform/drawing/WaveformProgram.h"

#include <QtTest/QtTest>

#include <array>
#include <cmath>
#include <random>

using namespace vantoraudio::vantorAudioEngine::UI;
using namespace drawing;

namespace {

constexpr int Rate = 8000;
constexpr qsizetype SampleCount = 240'000;
constexpr SampleSpacing Spacing{.stepSize = 1, .sampleRate = Rate};

template<typename Signal>
QList<float> Samples(Signal signal)
{
    QList<float> samples(SampleCount);
    for (qsizetype i = 0; i < SampleCount; ++i) {
        samples[i] = static_cast<float>(signal(static_cast<double>(i) / Rate));
    }
    return samples;
}

QList<float> Noise(double level)
{
    std::mt19937 random(11);
    std::uniform_real_distribution<double> noise(-level, level);
    return Samples([&](double) { return noise(random); });
}

double Music(double t)
{
    return std::sin(t * 1382.0) * 0.5 + std::sin(t * 2090.0) * 0.3 + std::sin(t * 9000.0) * 0.1;
}

/** Single samples stand out of silence, one about every second. */
QList<float> Clicks()
{
    QList<float> samples(SampleCount, 0.0F);
    for (qsizetype i = 4321; i < SampleCount; i += 8009) {
        samples[i] = i % 2 == 0 ? 0.6F : -0.4F;
    }
    return samples;
}

QList<float> Signal(const QString& name)
{
    if (name == u"loud noise") {
        return Noise(0.95);
    }
    if (name == u"quiet noise") {
        return Noise(0.02);
    }
    if (name == u"music") {
        return Samples([](double t) { return Music(t) * (0.6 + 0.4 * std::sin(t)); });
    }
    if (name == u"clipped") {
        return Samples([](double t) { return std::clamp(Music(t) * 4.0, -1.0, 1.0); });
    }
    if (name == u"a slow tone") {
        return Samples([](double t) { return 0.1 + 0.03 * std::sin(t * 5.0); });
    }
    return Clicks();
}

struct Scene
{
    double left = 0.0;
    double span = 1.0;
    QSize size;

    [[nodiscard]] QMatrix4x4 Projection() const { return ProjectionOf(QRectF(left, 0.0, span, 1.0), 0.0); }
};

/** A picture of what `draw` submits with the waveform's program, white on black. */
QImage PictureOf(const Scene& scene, const std::function<void(const BGFXViewContext&, bgfx::ProgramHandle)>& draw)
{
    WaveformProgram program;
    program.EnsureCreated();
    return Picture(scene.size, [&](BGFXRenderer&, const BGFXViewContext& view) {
        view.SetTransform({}, scene.Projection());
        program.SetColor(Qt::white);
        draw(view, program.Handle());
    });
}

/** As the waveform view draws it. */
QImage Reduced(const QList<float>& samples, const Scene& scene)
{
    WaveformGeometry geometry;
    geometry.SetSamples(samples, 0.0, Spacing);
    return PictureOf(scene, [&](const BGFXViewContext& view, bgfx::ProgramHandle program) {
        geometry.Draw(view.Id(), program,
                      {.left = ToCoordinate(scene.left),
                       .right = ToCoordinate(scene.left + scene.span),
                       .columns = bgfx::PixelColumns(scene.Projection(), QRect(QPoint(0, 0), scene.size))});
    });
}

/** All vertices, each as often as it ends a line of this state. */
QImage Complete(const QList<float>& samples, const Scene& scene, std::uint64_t state)
{
    const WaveformStrip strip(samples, SampleCount, Spacing);
    std::vector<Pos2f> vertices;
    for (std::size_t i = 0; i < strip.Size(); ++i) {
        if (state == BGFXRenderer::STATE_LINES && i > 0) {
            vertices.push_back(strip[i - 1]);
        }
        if (state != BGFXRenderer::STATE_LINES || i > 0) {
            vertices.push_back(strip[i]);
        }
    }
    return PictureOf(scene, [&](const BGFXViewContext& view, bgfx::ProgramHandle program) {
        SubmitVertices(view, vertices.data(), vertices.size() * sizeof(Pos2f), Pos2f::Layout(), state, program);
    });
}

int Differences(const QImage& one, const QImage& other)
{
    int count = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            count += one.pixel(x, y) != other.pixel(x, y) ? 1 : 0;
        }
    }
    return count;
}

} // namespace

/** The few vertices that are drawn make the picture of all of them. */
class TestWaveformReduction : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void coversThePixelsOfTheCompleteStrip_data() { AddViews(); }

    void coversThePixelsOfTheCompleteStrip()
    {
        QFETCH(const int, device);
        QFETCH(const QString, signal);
        QFETCH(const double, left);
        QFETCH(const double, span);
        const DeviceScope scope(static_cast<bgfx::device::Kind>(device));
        if (!scope.IsMade()) {
            QSKIP("this device cannot be had here");
        }
        const QList<float> samples = Signal(signal);
        for (const QSize size : {QSize(1600, 300), QSize(777, 201)}) {
            const Scene scene{left, span, size};
            const QImage reduced = Reduced(samples, scene);
            const QImage complete = Complete(samples, scene, BGFXRenderer::STATE_LINESTRIP);
            QVERIFY(LitPixels(complete).size() >= std::size_t(size.width() / 2));
            const int differences = Differences(reduced, complete);
            QVERIFY2(differences * 1000 <= size.width() * size.height(), qPrintable(QString::number(differences)));
        }
    }

    /** Beside the devices' own way with strips. */
    void staysWithinAPixelOfAllLinesDrawnOneByOne_data()
    {
        QTest::addColumn<int>("device");
        QTest::addColumn<QString>("signal");
        for (const char* signal : {"loud noise", "music", "clicks"}) {
            QTest::addRow("OpenGL, %s", signal) << int(bgfx::device::Kind::OpenGL) << QString::fromLatin1(signal);
            QTest::addRow("Software, %s", signal)
                << int(bgfx::device::Kind::Software) << QString::fromLatin1(signal);
            QTest::addRow("bgfx, %s", signal) << int(bgfx::device::Kind::Bgfx) << QString::fromLatin1(signal);
        }
    }

    void staysWithinAPixelOfAllLinesDrawnOneByOne()
    {
        QFETCH(const int, device);
        QFETCH(const QString, signal);
        const DeviceScope scope(static_cast<bgfx::device::Kind>(device));
        if (!scope.IsMade()) {
            QSKIP("this device cannot be had here");
        }
        const QList<float> samples = Signal(signal);
        const Scene scene{3.0, 20.0, {400, 150}};
        const QImage reduced = Reduced(samples, scene);
        const QImage complete = Complete(samples, scene, BGFXRenderer::STATE_LINES);
        QVERIFY(LitPixels(reduced).size() >= 400U);
        QCOMPARE(StrayPixels(reduced, complete), 0);
        QCOMPARE(StrayPixels(complete, reduced), 0);
    }

    void drawsEveryClick_data()
    {
        QTest::addColumn<int>("device");
        QTest::newRow("OpenGL") << int(bgfx::device::Kind::OpenGL);
        QTest::newRow("Software") << int(bgfx::device::Kind::Software);
        QTest::newRow("bgfx") << int(bgfx::device::Kind::Bgfx);
    }

    void drawsEveryClick()
    {
        QFETCH(const int, device);
        const DeviceScope scope(static_cast<bgfx::device::Kind>(device));
        if (!scope.IsMade()) {
            QSKIP("this device cannot be had here");
        }
        const QList<float> samples = Clicks();
        const QImage picture = Reduced(samples, {0.0, 30.0, {1600, 300}});
        for (qsizetype i = 0; i < samples.size(); ++i) {
            if (samples[i] != 0.0F) {
                const int x = int(double(i) / Rate / 30.0 * 1600.0);
                const int tip = int(150.0F - samples[i] * 150.0F);
                for (const int y : {tip + (samples[i] > 0.0F ? 1 : -1), (tip + 150) / 2}) {
                    QVERIFY2(qGreen(picture.pixel(x, y)) > 127, qPrintable(QString::number(i)));
                }
            }
        }
    }

    void bothDevicesDrawTheSamePicture_data() { AddSignals(); }

    void bothDevicesDrawTheSamePicture()
    {
        QFETCH(const QString, signal);
        const QList<float> samples = Signal(signal);
        std::vector<QImage> pictures;
        for (const auto device : {bgfx::device::Kind::OpenGL, bgfx::device::Kind::Software}) {
            const DeviceScope scope(device);
            if (!scope.IsMade()) {
                QSKIP("there is no OpenGL here");
            }
            for (const double span : {0.05, 1.0, 30.0}) {
                pictures.push_back(Reduced(samples, {0.3, span, {1600, 300}}));
            }
        }
        for (std::size_t i = 0; i < 3; ++i) {
            QCOMPARE(Differences(pictures[i], pictures[i + 3]), 0);
        }
    }

    void bgfxDrawsTheSamePicture()
    {
        std::vector<QImage> pictures;
        for (const auto device : {bgfx::device::Kind::Software, bgfx::device::Kind::Bgfx}) {
            const DeviceScope scope(device);
            if (!scope.IsMade()) {
                QSKIP("bgfx is not built in, or cannot be had here");
            }
            for (const char* signal : Signals) {
                for (const double span : {0.05, 1.0, 30.0}) {
                    pictures.push_back(Reduced(Signal(QString::fromLatin1(signal)), {0.3, span, {1600, 300}}));
                }
            }
        }
        const std::size_t count = pictures.size() / 2;
        for (std::size_t i = 0; i < count; ++i) {
            QCOMPARE(Differences(pictures[i], pictures[i + count]), 0);
        }
    }

    void quietNoiseIsALineWithoutGaps_data() { drawsEveryClick_data(); }

    void quietNoiseIsALineWithoutGaps()
    {
        QFETCH(const int, device);
        const DeviceScope scope(static_cast<bgfx::device::Kind>(device));
        if (!scope.IsMade()) {
            QSKIP("this device cannot be had here");
        }
        // A seventh of a pixel around the border between two rows.
        const QList<float> samples = Noise(0.001);
        for (const double span : {0.2, 0.7, 3.0, 29.0}) {
            const QImage picture = Reduced(samples, {0.5, span, {1600, 300}});
            for (int x = 0; x < 1600; ++x) {
                QVERIFY(qGreen(picture.pixel(x, 149)) > 127 || qGreen(picture.pixel(x, 150)) > 127);
            }
        }
    }

private:
    static constexpr std::array Signals{"loud noise", "quiet noise", "music", "clipped", "a slow tone", "clicks"};

    static void AddSignals()
    {
        QTest::addColumn<QString>("signal");
        for (const char* signal : Signals) {
            QTest::newRow(signal) << QString::fromLatin1(signal);
        }
    }

    static void AddViews()
    {
        QTest::addColumn<int>("device");
        QTest::addColumn<QString>("signal");
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("span");
        for (const char* signal : Signals) {
            for (const auto device : {bgfx::device::Kind::OpenGL, bgfx::device::Kind::Software}) {
                for (const double span : {0.3, 0.9, 1.7, 5.0, 13.3, 30.0}) {
                    const double left = span < 20.0 ? 7.77 : 0.0;
                    QTest::addRow("%s, %g s, %s", signal, span,
                                  device == bgfx::device::Kind::OpenGL ? "OpenGL" : "Software")
                        << int(device) << QString::fromLatin1(signal) << left << span;
                }
            }
        }
    }
};

QTEST_MAIN(TestWaveformReduction)
#include "tst_waveformreduction.moc"
