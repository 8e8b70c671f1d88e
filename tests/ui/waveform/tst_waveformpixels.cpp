#include "WaveformPicture.h"
#include "WaveformTestAccess.h"

#include <QtGui/QPalette>
#include <QtTest/QtTest>

using namespace vantoraudio;
using namespace vantoraudio::vantorAudioEngine::UI;
using namespace Qt::Literals::StringLiterals;
using Access = WaveformTestAccess;

namespace {

const QColor background(0, 0, 60);
const QColor grid(0, 200, 0);
const QColor waveform(220, 0, 0);
const QColor selected(100, 100, 30); // half of the band's (200, 200, 0) over the background
const QColor position(255, 255, 255);

struct DiagramBench
{
    DiagramBench() { PrepareForPictures(diagram); }
    BGFXWaveformDiagramWidget diagram;
};

/** The whole view, white, in colours that no two things share. */
struct WidgetBench
{
    WidgetBench()
    {
        QPalette palette;
        palette.setColor(QPalette::Window, Qt::white);
        widget.setPalette(palette);
        widget.setAutoFillBackground(true);
        widget.resize(450, 200); // the diagram is then 400 wide, at (30, 20)
        PrepareForPictures(diagram);
        widget.SetFrameColor(frame);
        widget.SetScaleColor(scale);
        widget.SetAudioPositionMarkerColor(marker);
        QAudioFormat format;
        format.setSampleRate(1000);
        widget.Initilize(format, 10.0);
        widget.grab(); // lays it out
    }

    const QColor frame{200, 0, 200};
    const QColor scale{0, 0, 255};
    const QColor marker{255, 0, 0};
    BGFXWaveformWidget widget;
    BGFXWaveformDiagramWidget& diagram = Access::DiagramOf(widget);
};

} // namespace

/** Runs with the drawing device that VANTOR_TEST_DEVICE names. */
class TestWaveformPixels : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        using Device = BGFXWaveformWidget::DrawingDevice;
        const QString name = qEnvironmentVariable("VANTOR_TEST_DEVICE", QStringLiteral("OpenGL"));
        const bool isBgfx = name == u"Bgfx";
        const bool inSoftware = name == u"Software";
        const auto kind = isBgfx       ? bgfx::device::Kind::Bgfx
                          : inSoftware ? bgfx::device::Kind::Software
                                       : bgfx::device::Kind::OpenGL;
        if (!UseDevice(kind)) {
            QSKIP("this device is not built in, or cannot be had here");
        }
        QCOMPARE(BGFXWaveformWidget::GetDrawingDevice(), isBgfx       ? Device::Bgfx
                                                         : inSoftware ? Device::Software
                                                                      : Device::OpenGL);
        QVERIFY(BGFXWaveformWidget::GetDrawingDeviceName().startsWith(name, Qt::CaseInsensitive));
    }

    void clearsWithTheBackgroundColour()
    {
        DiagramBench bench;
        const WaveformPicture picture(bench.diagram);
        const double scale = bench.diagram.devicePixelRatioF();
        QCOMPARE(picture.Image().size(), QSize(qRound(400 * scale), qRound(200 * scale)));
        QVERIFY(picture.ShareOf(background, QRectF(5, 5, 30, 25)) == 1.0);
        QVERIFY(picture.ShareOf(background, QRectF(365, 165, 30, 30)) == 1.0);
        QVERIFY(WaveformPicture::IsAbout(picture.At(399, 1), background));
    }

    void drawsFiveDashedLinesAcross_data()
    {
        QTest::addColumn<double>("y");
        QTest::newRow("0.6") << 40.0;
        QTest::newRow("0.3") << 70.0;
        QTest::newRow("0") << 100.0;
        QTest::newRow("-0.3") << 130.0;
        QTest::newRow("-0.6") << 160.0;
    }

    void drawsFiveDashedLinesAcross()
    {
        QFETCH(const double, y);
        DiagramBench bench;
        const WaveformPicture picture(bench.diagram);
        const double share = picture.ShareInRow(grid, y, 0.0, 399.0);
        QVERIFY2(share > 0.45 && share < 0.6, qPrintable(QString::number(share)));
        // Every stretch of two dashes holds both colours.
        for (double x = 0.0; x < 380.0; x += 16.0) {
            QVERIFY(picture.ShareOf(grid, QRectF(x + 1, y - 1.0, 16.0, 2.0)) > 0.0);
        }
    }

    void dashesAreFourPixelsWithGapsOfFour()
    {
        DiagramBench bench;
        const WaveformPicture picture(bench.diagram);
        if (picture.Image().width() != 400) {
            QSKIP("counted in pixels of a screen of scale 1");
        }
        const int row = WaveformPicture::IsAbout(picture.Image().pixelColor(2, 100), grid) ? 100 : 99;
        for (int x = 0; x < 400; ++x) {
            // Beside the upright lines.
            if (x % 40 >= 2 && x % 40 <= 38) {
                const bool isDash = WaveformPicture::IsAbout(picture.Image().pixelColor(x, row), grid);
                QVERIFY2(isDash == (x % 8 < 4), qPrintable(QString::number(x)));
            }
        }
    }

    void drawsNoOtherLinesAcross()
    {
        DiagramBench bench;
        const WaveformPicture picture(bench.diagram);
        for (const double y : {10.0, 25.0, 55.0, 85.0, 115.0, 145.0, 175.0, 190.0}) {
            QVERIFY(picture.ShareOf(grid, QRectF(2, y, 35, 3)) == 0.0);
        }
    }

    void drawsADashedLineUpwardsAtEveryStep()
    {
        DiagramBench bench;
        const WaveformPicture picture(bench.diagram);
        for (int second = 1; second < 10; ++second) {
            const double share = picture.ShareInColumn(grid, second * 40.0, 0.0, 199.0);
            QVERIFY2(share > 0.45 && share < 0.62, qPrintable(QString::number(share)));
            QVERIFY(picture.ShareInColumn(grid, second * 40.0 - 20.0, 0.0, 199.0) < 0.2);
        }
    }

    void gridFollowsTheVisibleRange()
    {
        DiagramBench bench;
        bench.diagram.SetSceneRange(2.25, 6.25); // a step of 1 second is 100 pixels
        const WaveformPicture picture(bench.diagram);
        for (int step = 0; step < 4; ++step) {
            QVERIFY(picture.ShareInColumn(grid, 75.0 + 100.0 * step, 0.0, 199.0) > 0.45);
        }
        QVERIFY(picture.ShareInColumn(grid, 25.0, 0.0, 199.0) < 0.2);
    }

    void withoutSamplesOnlyTheGridIsDrawn()
    {
        DiagramBench bench;
        bench.diagram.SetSelectedSnippet({2.0, 4.0});
        bench.diagram.SetAudioPosition(5.5, false);
        const WaveformPicture picture(bench.diagram);
        const QRectF all(0, 0, 399, 199);
        QCOMPARE(picture.ShareOf(waveform, all), 0.0);
        QCOMPARE(picture.ShareOf(position, all), 0.0);
        QCOMPARE(picture.ShareOf(selected, all), 0.0);
        QVERIFY(picture.ShareOf(grid, all) > 0.0);
    }

    void drawsTheWaveformWhereItsSamplesAre()
    {
        DiagramBench bench;
        QList<float> samples(10'000, 0.5F);
        std::fill_n(samples.begin(), 5000, -0.8F);
        bench.diagram.UpdateAudioSampleBuffer(samples);
        bench.diagram.SetAudioPosition(9.9, false);
        const WaveformPicture picture(bench.diagram);
        QVERIFY(picture.ShareInRow(waveform, 180.0, 2.0, 197.0) > 0.95); // -0.8 in the first half
        QVERIFY(picture.ShareInRow(waveform, 50.0, 203.0, 390.0) > 0.95);
        for (double y = 52.0; y < 178.0; ++y) { // the step between them
            QVERIFY(picture.ShareOf(waveform, QRectF(198.5, y, 2.5, 0.0)) > 0.0);
        }
        QCOMPARE(picture.ShareOf(waveform, QRectF(2, 2, 190, 170)), 0.0);
        QCOMPARE(picture.ShareOf(waveform, QRectF(205, 56, 190, 140)), 0.0);
    }

    void drawsWithASampleInEveryPixelAsHighAsTheyReach()
    {
        DiagramBench bench;
        QList<float> samples(10'000);
        for (qsizetype i = 0; i < samples.size(); ++i) {
            samples[i] = i % 2 == 0 ? 0.9F : -0.9F;
        }
        bench.diagram.UpdateAudioSampleBuffer(samples);
        bench.diagram.SetAudioPosition(9.9, false);
        const WaveformPicture picture(bench.diagram);
        QVERIFY(picture.ShareOf(waveform, QRectF(2, 12, 380, 175)) > 0.99);
        QCOMPARE(picture.ShareOf(waveform, QRectF(0, 0, 399, 7)), 0.0);
        QCOMPARE(picture.ShareOf(waveform, QRectF(0, 192, 399, 7)), 0.0);
    }

    void drawsSamplesThatBeginLaterInTheirPlace()
    {
        DiagramBench bench;
        bench.diagram.SetSceneRange(4.0, 6.0); // asks from 3 seconds on
        bench.diagram.UpdateAudioSampleBuffer(QList<float>(2000, 0.5F));
        QCOMPARE(bench.diagram.GetBufferStart(), 3.0);
        const WaveformPicture picture(bench.diagram);
        QVERIFY(picture.ShareInRow(waveform, 50.0, 2.0, 195.0) > 0.95);
        QVERIFY(picture.ShareInRow(waveform, 50.0, 205.0, 398.0) < 0.02);
    }

    void drawsAllElseInItsPlaceWithSamplesThatBeginLater()
    {
        DiagramBench bench;
        bench.diagram.SetSceneRange(4.0, 6.0); // asks from 3 seconds on
        bench.diagram.UpdateAudioSampleBuffer(QList<float>(2000, 0.0F));
        QCOMPARE(bench.diagram.GetBufferStart(), 3.0);
        bench.diagram.SetSelectedSnippet({4.1, 4.3});
        bench.diagram.SetAudioPosition(5.25, false);
        const WaveformPicture picture(bench.diagram);
        QVERIFY(picture.ShareInColumn(position, 250.0, 0.0, 199.0) > 0.99);
        QVERIFY(picture.ShareOf(selected, QRectF(25, 2, 30, 30)) == 1.0);
        QVERIFY(picture.ShareOf(background, QRectF(2, 2, 15, 30)) == 1.0);
        QVERIFY(picture.ShareOf(background, QRectF(63, 2, 32, 30)) == 1.0);
        for (const double x : {100.0, 200.0, 300.0}) { // a step of half a second
            QVERIFY(picture.ShareInColumn(grid, x, 0.0, 199.0) > 0.45);
        }
        for (const double y : {40.0, 70.0, 130.0, 160.0}) {
            QVERIFY(picture.ShareInRow(grid, y, 65.0, 399.0) > 0.45);
        }
    }

    void theGridBeginsWithTheSamplesThatAreThere()
    {
        DiagramBench bench;
        bench.diagram.SetSceneRange(4.0, 6.0);
        bench.diagram.UpdateAudioSampleBuffer(QList<float>(2000, 0.0F));
        bench.diagram.ScrollTo(2.0);
        QCOMPARE(bench.diagram.GetBufferStart(), 3.0);
        const WaveformPicture picture(bench.diagram);
        QVERIFY(picture.ShareInColumn(grid, 100.0, 0.0, 199.0) < 0.2);
        QVERIFY(picture.ShareInColumn(grid, 200.0, 0.0, 199.0) > 0.45);
        QVERIFY(picture.ShareInColumn(grid, 300.0, 0.0, 199.0) > 0.45);
    }

    void afterAResetOnlyTheGridIsDrawn()
    {
        DiagramBench bench;
        bench.diagram.UpdateAudioSampleBuffer(QList<float>(10'000, 0.5F));
        bench.diagram.SetSelectedSnippet({2.0, 4.0});
        bench.diagram.SetAudioPosition(5.5, false);
        const QRectF all(0, 0, 399, 199);
        const WaveformPicture before(bench.diagram);
        QVERIFY(before.ShareOf(waveform, all) > 0.0);
        QVERIFY(before.ShareOf(position, all) > 0.0);
        bench.diagram.Reset();
        bench.diagram.SetSelectedSnippet({0.2, 0.4});
        bench.diagram.SetAudioPosition(0.5, false);
        const WaveformPicture after(bench.diagram);
        QVERIFY(after.ShareOf(grid, all) > 0.0);
        for (int y = 0; y < after.Image().height(); ++y) {
            for (int x = 0; x < after.Image().width(); ++x) {
                const QColor color = after.Image().pixelColor(x, y);
                QVERIFY(WaveformPicture::IsAbout(color, grid) || WaveformPicture::IsAbout(color, background));
            }
        }
    }

    void drawsTheLatestSamplesWhateverTheirNumber()
    {
        DiagramBench bench;
        const auto upload = [&](qsizetype count, float level) {
            bench.diagram.UpdateAudioSampleBuffer(QList<float>(count, level));
            bench.diagram.SetAudioPosition(0.05, false);
            return WaveformPicture(bench.diagram);
        };
        const auto isDrawn = [](const WaveformPicture& picture, double y, double left, double right) {
            return picture.ShareInRow(waveform, y, left, right) > 0.95;
        };
        const auto isEmpty = [](const WaveformPicture& picture, double y, double left, double right) {
            return picture.ShareInRow(waveform, y, left, right) == 0.0;
        };
        const WaveformPicture half = upload(5'000, 0.5F);
        QVERIFY(isDrawn(half, 50.0, 5.0, 197.0));
        QVERIFY(isEmpty(half, 50.0, 203.0, 399.0));

        const WaveformPicture more = upload(10'000, -0.5F);
        QVERIFY(isDrawn(more, 150.0, 5.0, 396.0));
        QVERIFY(isEmpty(more, 50.0, 5.0, 399.0));

        const WaveformPicture fewer = upload(2'500, 0.75F);
        QVERIFY(isDrawn(fewer, 25.0, 5.0, 97.0));
        QVERIFY(isEmpty(fewer, 25.0, 103.0, 399.0));
        QVERIFY(isEmpty(fewer, 150.0, 5.0, 399.0));

        const WaveformPicture none = upload(0, 0.0F);
        QCOMPARE(none.ShareOf(waveform, QRectF(0, 0, 399, 199)), 0.0);

        const WaveformPicture again = upload(10'000, 0.25F);
        QVERIFY(isDrawn(again, 75.0, 5.0, 396.0));
        QVERIFY(isEmpty(again, 25.0, 5.0, 399.0));
    }

    void drawsTheSamplesOfEveryRange_data()
    {
        QTest::addColumn<double>("left");
        QTest::addColumn<double>("right");
        QTest::newRow("the whole file") << 0.0 << 10.0;
        QTest::newRow("the middle") << 4.0 << 6.0;
        QTest::newRow("between two samples") << 5.0002 << 5.0008;
        QTest::newRow("the end") << 9.0 << 10.0;
    }

    void drawsTheSamplesOfEveryRange()
    {
        QFETCH(const double, left);
        QFETCH(const double, right);
        DiagramBench bench;
        bench.diagram.UpdateAudioSampleBuffer(QList<float>(10'001, 0.5F));
        bench.diagram.SetSceneRange(left, right);
        const WaveformPicture picture(bench.diagram);
        QVERIFY(picture.ShareInRow(waveform, 50.0, 1.0, 399.0) > 0.95);
        QVERIFY(picture.ShareInRow(waveform, 150.0, 1.0, 399.0) == 0.0);
    }

    void twoDiagramsKeepTheirColours()
    {
        DiagramBench one;
        DiagramBench other;
        const QColor blue(40, 120, 250);
        other.diagram.m_waveformColor = blue;
        for (DiagramBench* bench : {&one, &other}) {
            bench->diagram.UpdateAudioSampleBuffer(QList<float>(10'000, 0.5F));
        }
        for (int i = 0; i < 2; ++i) {
            QVERIFY(WaveformPicture(one.diagram).ShareInRow(waveform, 50.0, 5.0, 396.0) > 0.95);
            QVERIFY(WaveformPicture(other.diagram).ShareInRow(blue, 50.0, 5.0, 396.0) > 0.95);
        }
    }

    void drawsTheDelayAsSilence()
    {
        DiagramBench bench;
        bench.diagram.SetDelay(10.0);
        bench.diagram.UpdateAudioSampleBuffer(QList<float>(10'000, 0.5F));
        bench.diagram.SetAudioPosition(0.1, false);
        const WaveformPicture picture(bench.diagram);
        QVERIFY(picture.ShareInRow(waveform, 50.0, 10.0, 197.0) > 0.95);
        QVERIFY(picture.ShareInRow(waveform, 100.0, 203.0, 395.0) > 0.95);
    }

    void aLouderFileOverflowsTheUnchangedSceneRect()
    {
        DiagramBench bench;
        bench.diagram.UpdateAudioSampleBuffer(QList<float>(10'000, 2.5F));
        const WaveformPicture picture(bench.diagram);
        // Extent 2: the lines at ±0.6 of it lie outside, those at ±0.3 at ±0.6.
        QVERIFY(picture.ShareInRow(grid, 40.0, 5.0, 399.0) > 0.45);
        QVERIFY(picture.ShareInRow(grid, 70.0, 5.0, 399.0) < 0.3);
        bench.diagram.SetDuration(10.0); // now the scene rect has the height of the extent
        const WaveformPicture afterwards(bench.diagram);
        QVERIFY(afterwards.ShareInRow(grid, 70.0, 5.0, 399.0) > 0.45);
    }

    void whatStandsUprightReachesTheExtentOfALouderFile()
    {
        DiagramBench bench;
        bench.diagram.UpdateAudioSampleBuffer(QList<float>(10'000, 2.5F));
        bench.diagram.SetDuration(10.0); // now the scene rect has the height of the extent
        bench.diagram.SetSelectedSnippet({2.1, 3.9});
        bench.diagram.SetAudioPosition(5.5, false);
        const WaveformPicture picture(bench.diagram);
        QCOMPARE(bench.diagram.GetSceneRect().height(), 2.0);
        QVERIFY(picture.ShareInColumn(position, 220.0, 0.0, 199.0) > 0.99);
        QVERIFY(picture.ShareOf(selected, QRectF(90, 5, 25, 25)) == 1.0);
        QVERIFY(picture.ShareOf(selected, QRectF(90, 170, 25, 25)) == 1.0);
        QVERIFY(picture.ShareInColumn(grid, 320.0, 5.0, 30.0) > 0.35);
        QVERIFY(picture.ShareInColumn(grid, 320.0, 170.0, 195.0) > 0.35);
    }

    void drawsASolidLineAtThePosition()
    {
        DiagramBench bench;
        bench.diagram.UpdateAudioSampleBuffer(QList<float>(10'000, 0.5F));
        bench.diagram.SetAudioPosition(5.5, false);
        const WaveformPicture picture(bench.diagram);
        QVERIFY(picture.ShareInColumn(position, 220.0, 0.0, 199.0) > 0.99);
        QVERIFY(picture.ShareOf(position, QRectF(0, 0, 216, 199)) == 0.0);
        QVERIFY(picture.ShareOf(position, QRectF(224, 0, 175, 199)) == 0.0);
    }

    void drawsTheSelectionHalfTransparent()
    {
        DiagramBench bench;
        bench.diagram.m_selectionColor.setAlpha(10); // of no account
        bench.diagram.UpdateAudioSampleBuffer(QList<float>(10'000, 0.0F));
        bench.diagram.SetSelectedSnippet({2.0, 4.0});
        const WaveformPicture picture(bench.diagram);
        QVERIFY(picture.ShareOf(selected, QRectF(85, 2, 30, 30)) == 1.0);
        QVERIFY(picture.ShareOf(selected, QRectF(125, 165, 30, 33)) == 1.0);
        QVERIFY(picture.ShareOf(background, QRectF(45, 2, 32, 30)) == 1.0);
        QVERIFY(picture.ShareOf(background, QRectF(163, 2, 32, 30)) == 1.0);
        // The waveform shines through: half of (200, 200, 0) over (220, 0, 0).
        QVERIFY(picture.ShareInRow(QColor(210, 100, 0), 100.0, 85.0, 155.0) > 0.95);
        QCOMPARE(picture.At(100.0, 10.0).alpha(), 255);
    }

    void drawsTheSelectionOverThePosition()
    {
        DiagramBench bench;
        bench.diagram.UpdateAudioSampleBuffer(QList<float>(10'000, 0.0F));
        bench.diagram.SetSelectedSnippet({2.0, 4.0});
        bench.diagram.SetAudioPosition(3.5, false);
        const WaveformPicture picture(bench.diagram);
        // Half of (200, 200, 0) over white.
        QVERIFY(picture.ShareInColumn(QColor(228, 228, 128), 140.0, 1.0, 198.0) > 0.98);
        QCOMPARE(picture.ShareOf(position, QRectF(0, 0, 399, 199)), 0.0);
    }

    void drawsTheFrameAroundTheDiagram()
    {
        WidgetBench bench;
        // On screens of fractional scale the diagram may hide half a pixel; not where it ends on a whole one.
        bench.widget.resize(452, 200);
        bench.widget.grab();
        bench.widget.resize(452, 200 - (bench.diagram.geometry().bottom() + 1) % 4);
        const WaveformPicture picture(bench.widget);
        const QRectF frame = QRectF(bench.diagram.geometry()).adjusted(-1, -1, 0, 0);
        QVERIFY(picture.ShareInRow(bench.frame, frame.top(), frame.left(), frame.right()) > 0.9);
        QVERIFY(picture.ShareInColumn(bench.frame, frame.left(), frame.top(), frame.bottom()) > 0.9);
        QVERIFY(picture.ShareInColumn(bench.frame, frame.right(), frame.top() + 1, frame.bottom()) > 0.9);
        QVERIFY(picture.ShareInRow(bench.frame, frame.bottom(), frame.left(), frame.right()) > 0.9);
        QVERIFY(picture.ShareOf(bench.frame, QRectF(0, 0, 27, 100)) == 0.0);
    }

    void drawsATickAndALabelAtEveryStep()
    {
        WidgetBench bench;
        const WaveformPicture picture(bench.widget);
        const QRect diagram = bench.diagram.geometry();
        QCOMPARE(diagram.left(), 30);
        QCOMPARE(diagram.width(), 400);
        for (int second = 0; second < 10; ++second) {
            const double x = 30.0 + 40.0 * second;
            // At 0 the marker stands on the tick.
            const QColor tick = second == 0 ? bench.marker : bench.scale;
            QVERIFY2(picture.ShareInColumn(tick, x, 16.5, 18.5) > 0.6, qPrintable(QString::number(second)));
            QVERIFY(picture.ShareOf(bench.scale, QRectF(x + 5, 17, 28, 1.2)) == 0.0);
        }
    }

    void writesTheTimeOverItsTick()
    {
        WidgetBench bench;
        bench.widget.OnSceneRectChangeRequested(QRectF(4.5, 0.0, 3.0, 1.0)); // a step of 1 second
        const WaveformPicture picture(bench.widget);
        const QFontMetricsF metrics(bench.widget.font());
        const double half = metrics.horizontalAdvance(u"5.000 sec"_s) / 2.0;
        for (int second = 5; second < 8; ++second) {
            const double x = 30.0 + 400.0 * (second - 4.5) / 3.0;
            if (x + half > 430.0) {
                continue;
            }
            const double ink = Ink(picture, QRectF(x - half, 1, 2 * half, 14));
            QVERIFY2(ink > 0.08, qPrintable(QString::number(ink)));
            QVERIFY(Ink(picture, QRectF(x + half + 3, 1, 10, 14)) == 0.0);
            QVERIFY(Ink(picture, QRectF(x - half - 13, 1, 10, 14)) == 0.0);
        }
    }

    void drawsAmplitudeTicksAndLabels()
    {
        WidgetBench bench;
        const WaveformPicture picture(bench.widget);
        const QRect diagram = bench.diagram.geometry();
        for (int k = 0; k < 3; ++k) {
            const double y = diagram.bottom() - diagram.height() * 0.5 * k;
            QVERIFY2(picture.ShareInRow(bench.scale, y, 26.5, 28.5) > 0.6, qPrintable(QString::number(k)));
            QVERIFY(Ink(picture, QRectF(8, y - 9, 17, 14)) > 0.01);
        }
        QVERIFY(Ink(picture, QRectF(0, diagram.bottom() - diagram.height() * 0.25 - 5, 27, 10)) == 0.0);
    }

    void drawsTheMarkerOverThePosition()
    {
        WidgetBench bench;
        bench.widget.SetAudioPosition(5.5);
        const WaveformPicture picture(bench.widget);
        QVERIFY(picture.ShareInColumn(bench.marker, 250.0, 16.5, 18.5) > 0.6);
        const QColor icon(0x73, 0xbf, 0xff);
        QVERIFY(picture.ShareOf(icon, QRectF(248, 8.5, 4, 2)) > 0.7);
        QVERIFY(picture.ShareOf(icon, QRectF(245, 13, 1, 1)) == 0.0); // it is an arrow downwards
        QVERIFY(picture.ShareOf(icon, QRectF(30, 0, 210, 19)) == 0.0);
        QVERIFY(picture.ShareOf(icon, QRectF(258, 0, 170, 19)) == 0.0);
    }

    void aPositionOutsideTheViewHasNoMarker()
    {
        WidgetBench bench;
        bench.widget.SetAudioPosition(5.5);
        bench.widget.OnSceneRectChangeRequested(QRectF(6.0, 0.0, 3.0, 1.0));
        const WaveformPicture before(bench.widget);
        QCOMPARE(before.ShareOf(bench.marker, QRectF(0, 0, 449, 19)), 0.0);
        bench.widget.OnSceneRectChangeRequested(QRectF(1.0, 0.0, 3.0, 1.0));
        const WaveformPicture behind(bench.widget);
        QCOMPARE(behind.ShareOf(bench.marker, QRectF(0, 0, 449, 19)), 0.0);
    }

    void theMarkerIsDrawnOnBothEdgesOfTheView()
    {
        WidgetBench bench;
        const WaveformPicture left(bench.widget);
        QVERIFY(left.ShareInColumn(bench.marker, 30.0, 16.5, 18.5) > 0.6);
        bench.widget.SetAudioPosition(10.0);
        const WaveformPicture right(bench.widget);
        QVERIFY(right.ShareInColumn(bench.marker, 430.0, 16.5, 18.5) > 0.6);
    }

    void withoutAFileOnlyFrameAndAmplitudesRemain()
    {
        WidgetBench bench;
        bench.widget.Reset();
        bench.widget.SetAudioPosition(-1.0); // or the marker would stand at 0
        bench.diagram.ScrollTo(0.0);
        const WaveformPicture picture(bench.widget);
        QCOMPARE(Ink(picture, QRectF(35, 0, 414, 18)), 0.0);
        QVERIFY(picture.ShareInRow(bench.frame, 19.0, 30.0, 429.0) > 0.9);
        QVERIFY(Ink(picture, QRectF(8, bench.diagram.geometry().bottom() - 9, 17, 14)) > 0.01);
    }

private:
    /** Share of what is not white paper. */
    static double Ink(const WaveformPicture& picture, const QRectF& area)
    {
        return 1.0 - picture.ShareOf(Qt::white, area);
    }
};

QTEST_MAIN(TestWaveformPixels)
#include "tst_waveformpixels.moc"
