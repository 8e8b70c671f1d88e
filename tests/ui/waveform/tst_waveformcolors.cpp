#include "PaintCounter.h"
#include "WaveformPicture.h"
#include "WaveformTestAccess.h"
#include "ui/waveform/rules/ViewColors.h"

#include <QtGui/QPalette>
#include <QtTest/QtTest>

using namespace vantoraudio::vantorAudioEngine::UI;
using Access = WaveformTestAccess;

namespace {

QPalette Dark()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0x2b2b2b));
    palette.setColor(QPalette::WindowText, QColor(0xe6e6e6));
    palette.setColor(QPalette::Base, QColor(0x202020));
    palette.setColor(QPalette::Text, QColor(0xe0e0e0));
    palette.setColor(QPalette::Highlight, QColor(0x3589cd));
    return palette;
}

QPalette Light()
{
    QPalette palette;
    palette.setColor(QPalette::Window, QColor(0xefefef));
    palette.setColor(QPalette::WindowText, QColor(0x101010));
    palette.setColor(QPalette::Base, QColor(0xfefefe));
    palette.setColor(QPalette::Text, QColor(0x202020));
    palette.setColor(QPalette::Highlight, QColor(0x0060a0));
    return palette;
}

ViewColors Shown(const BGFXWaveformWidget& widget)
{
    return Access::ColorsOf(widget);
}

} // namespace

class TestWaveformColors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thePaletteDoesNotMatterAtFirst()
    {
        BGFXWaveformWidget widget;
        QVERIFY(!widget.GetColorsFollowPalette());
        const ViewColors usual = Shown(widget);
        widget.setPalette(Dark());
        QCOMPARE(Shown(widget), usual);
        QCOMPARE(usual.background, QColor(27, 27, 27));
    }

    void thePaletteIsFollowedLive()
    {
        QWidget window;
        BGFXWaveformWidget widget(&window);
        widget.SetColorsFollowPalette(true);
        QVERIFY(widget.GetColorsFollowPalette());
        window.setPalette(Dark());
        QCOMPARE(Shown(widget), ColorsOf(Dark()));
        window.setPalette(Light());
        QCOMPARE(Shown(widget), ColorsOf(Light()));
    }

    void theColorsThatWereSetComeBack()
    {
        BGFXWaveformWidget widget;
        widget.SetGridColor(Qt::green);
        widget.SetAudioPositionMarkerColor(Qt::cyan);
        const ViewColors set = Shown(widget);
        widget.setPalette(Dark());
        widget.SetColorsFollowPalette(true);
        widget.SetColorsFollowPalette(true);
        QCOMPARE(Shown(widget), ColorsOf(Dark()));
        widget.SetColorsFollowPalette(false);
        QCOMPARE(Shown(widget), set);
        widget.setPalette(Light());
        QCOMPARE(Shown(widget), set);
    }

    void colorsThatAreSetMeanwhileShowLater()
    {
        BGFXWaveformWidget widget;
        widget.setPalette(Light());
        widget.SetColorsFollowPalette(true);
        widget.SetBackgroundColor(QColor(1, 0, 0));
        widget.SetGridColor(QColor(2, 0, 0));
        widget.SetWaveformColor(QColor(3, 0, 0));
        widget.SetAudioSelectionColor(QColor(4, 0, 0));
        widget.SetAudioPositionMarkerColor(QColor(5, 0, 0));
        widget.SetFrameColor(QColor(6, 0, 0));
        widget.SetScaleColor(QColor(7, 0, 0));
        QCOMPARE(Shown(widget), ColorsOf(Light()));
        widget.SetColorsFollowPalette(false);
        QCOMPARE(Shown(widget), (ViewColors{.background = QColor(1, 0, 0),
                                            .grid = QColor(2, 0, 0),
                                            .waveform = QColor(3, 0, 0),
                                            .selection = QColor(4, 0, 0),
                                            .positionLine = QColor(5, 0, 0),
                                            .positionTick = QColor(5, 0, 0),
                                            .frame = QColor(6, 0, 0),
                                            .scale = QColor(7, 0, 0)}));
    }

    void theChangeIsPainted()
    {
        BGFXWaveformWidget widget;
        widget.resize(400, 150);
        widget.SetColorsFollowPalette(true);
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
        QCoreApplication::processEvents();
        PaintCounter paints(widget);
        PaintCounter diagramPaints(Access::DiagramOf(widget));
        widget.setPalette(Dark());
        QTRY_VERIFY(paints.m_paints > 0);
        QTRY_VERIFY(diagramPaints.m_paints > 0);
    }

    void theMarkersIconHasThePalettesColor()
    {
        BGFXWaveformWidget widget;
        widget.resize(430, 160);
        widget.setPalette(Light());
        widget.SetFollowsPosition(false);
        widget.Initilize({}, 10.0);
        widget.SetAudioPosition(5.0);
        widget.grab(); // lays it out
        const QRect diagram = Access::DiagramOf(widget).geometry();
        const double x = diagram.left() + diagram.width() / 2.0;
        const auto icon = [&] { return WaveformPicture(widget).At(x, diagram.top() - 10.0); };
        QVERIFY(WaveformPicture::IsAbout(icon(), QColor(0x73bfff)));
        widget.SetColorsFollowPalette(true);
        QVERIFY2(WaveformPicture::IsAbout(icon(), QColor(0x0060a0)), qPrintable(icon().name()));
        widget.SetAudioPositionIcon(QStringLiteral(":/no/such.svg"));
        QVERIFY(!WaveformPicture::IsAbout(icon(), QColor(0x0060a0)));
        widget.SetColorsFollowPalette(false);
        widget.SetAudioPositionIcon(QStringLiteral(":/Resources/vantoraudioArrowDownLightBlue.svg"));
        QVERIFY(WaveformPicture::IsAbout(icon(), QColor(0x73bfff)));
    }

    void thePictureHasThePalettesColors()
    {
        QVERIFY(UseDevice(vantoraudio::bgfx::device::Kind::Software));
        BGFXWaveformWidget widget;
        widget.resize(400, 200);
        widget.setPalette(Light());
        widget.SetColorsFollowPalette(true);
        QAudioFormat format;
        format.setSampleRate(1000);
        widget.Initilize(format, 10.0);
        QList<float> samples;
        for (int i = 0; i < 10000; ++i) {
            samples << (i % 2 == 0 ? 0.25F : -0.25F);
        }
        widget.UpdateAudioSampleBuffer(samples);
        widget.SetAudioPosition(5.0);
        widget.grab(); // lays it out
        const WaveformPicture picture(Access::DiagramOf(widget));
        const double middle = Access::DiagramOf(widget).height() / 2.0;
        QVERIFY(WaveformPicture::IsAbout(picture.At(100, 5), QColor(0xfefefe)));
        QVERIFY(WaveformPicture::IsAbout(picture.At(100, middle + 3), QColor(0x202020)));
        const double x = Access::DiagramOf(widget).width() / 2.0;
        QVERIFY(picture.ShareInColumn(QColor(0x0060a0), x, 2.0, 2 * middle - 2) > 0.9);
    }
};

QTEST_MAIN(TestWaveformColors)
#include "tst_waveformcolors.moc"
