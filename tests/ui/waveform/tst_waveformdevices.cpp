#include "WaveformPicture.h"

#include <QtTest/QtTest>

#include <cmath>
#include <cstdlib>
#include <vector>

using namespace vantoraudio;
using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

QList<float> Tone()
{
    QList<float> samples(10'000);
    for (qsizetype i = 0; i < samples.size(); ++i) {
        samples[i] = 0.9F * static_cast<float>(std::sin(static_cast<double>(i) * 0.004));
    }
    return samples;
}

bool HasNear(const QImage& picture, const QPoint& at, const QColor& color)
{
    for (int y = at.y() - 1; y <= at.y() + 1; ++y) {
        for (int x = at.x() - 1; x <= at.x() + 1; ++x) {
            if (picture.valid(x, y) && WaveformPicture::IsAbout(picture.pixelColor(x, y), color)) {
                return true;
            }
        }
    }
    return false;
}

/** The pixels of `picture` whose colour is not in `other` at most a pixel away. */
QStringList Strays(const QImage& picture, const QImage& other)
{
    QStringList strays;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (const QColor color = picture.pixelColor(x, y); !HasNear(other, {x, y}, color)) {
                strays << QStringLiteral("%1,%2 %3").arg(x).arg(y).arg(color.name());
            }
        }
    }
    return strays;
}

} // namespace

class TestWaveformDevices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bothDevicesDrawTheSamePicture()
    {
        if (!UseDevice(bgfx::device::Kind::OpenGL)) {
            QSKIP("there is no OpenGL here");
        }
        BGFXWaveformDiagramWidget diagram;
        PrepareForPictures(diagram);
        diagram.UpdateAudioSampleBuffer(Tone());
        diagram.SetSelectedSnippet({2.0, 4.0});
        diagram.SetAudioPosition(5.5, false);
        const QImage byOpenGL = WaveformPicture(diagram).Image();

        QVERIFY(UseDevice(bgfx::device::Kind::Software));
        QVERIFY(!WaveformTestAccess::HasProgram(diagram)); // dropped with the device that it was made for
        const QImage bySoftware = WaveformPicture(diagram).Image();
        QCOMPARE(bySoftware.size(), byOpenGL.size());
        // Lines may differ by a pixel where they pass between two.
        QCOMPARE(Strays(byOpenGL, bySoftware), QStringList{});
        QCOMPARE(Strays(bySoftware, byOpenGL), QStringList{});

        QVERIFY(UseDevice(bgfx::device::Kind::OpenGL));
        QCOMPARE(WaveformPicture(diagram).Image(), byOpenGL);
    }

    void bgfxDrawsThePictureOfOpenGL()
    {
        BGFXWaveformDiagramWidget diagram;
        PrepareForPictures(diagram);
        diagram.UpdateAudioSampleBuffer(Tone());
        diagram.SetSelectedSnippet({2.0, 4.0});
        diagram.SetAudioPosition(5.5, false);
        std::vector<QImage> pictures;
        for (const auto device : {bgfx::device::Kind::OpenGL, bgfx::device::Kind::Bgfx}) {
            if (!UseDevice(device)) {
                QSKIP("OpenGL or bgfx is not built in, or cannot be had here");
            }
            pictures.push_back(WaveformPicture(diagram).Image());
        }
        for (int y = 0; y < pictures[0].height(); ++y) {
            for (int x = 0; x < pictures[0].width(); ++x) {
                const QColor color = pictures[0].pixelColor(x, y);
                const QColor other = pictures[1].pixelColor(x, y);
                QVERIFY(std::abs(color.red() - other.red()) <= 1);
                QVERIFY(std::abs(color.green() - other.green()) <= 1);
                QVERIFY(std::abs(color.blue() - other.blue()) <= 1);
            }
        }
    }

    void anAbsentProgramIsAnException()
    {
        bgfx::DrawingDevice::Get().Shutdown(); // no device, no programs
        WaveformProgram program;
        QVERIFY_THROWS_EXCEPTION(std::bad_optional_access, program.EnsureCreated());
        QVERIFY(UseDevice(bgfx::device::Kind::Software));
        program.EnsureCreated();
        QVERIFY(bgfx::isValid(program.Handle()));
    }

    void nothingIsLeftOnTheDeviceBehindAWidget()
    {
        QVERIFY(UseDevice(bgfx::device::Kind::Software));
        QCOMPARE(bgfx::LivingObjects(), std::size_t(0));
        {
            BGFXWaveformDiagramWidget diagram;
            PrepareForPictures(diagram);
            diagram.UpdateAudioSampleBuffer(Tone());
            diagram.grab();
            QVERIFY(bgfx::LivingObjects() > 0);
        }
        QCOMPARE(bgfx::LivingObjects(), std::size_t(0));
    }
};

QTEST_MAIN(TestWaveformDevices)
#include "tst_waveformdevices.moc"
