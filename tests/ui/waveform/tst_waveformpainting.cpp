#include "PaintRecorder.h"
#include "WaveformTestAccess.h"

#include <QtGui/QPainter>
#include <QtTest/QtTest>

using namespace vantoraudio::vantorAudioEngine::UI;
using namespace Qt::Literals::StringLiterals;
using Access = WaveformTestAccess;

namespace {

const QColor frameColor(200, 0, 200);
const QColor scaleColor(0, 0, 255);
const QColor markerColor(255, 0, 0);

/** 10 seconds; the diagram is 400 x 100 at (30, 20). */
struct Bench
{
    Bench()
    {
        Access::ScrollBarOf(widget).setFixedHeight(15);
        Access::DiagramOf(widget).setFixedHeight(100);
        widget.resize(450, 136);
        widget.SetFrameColor(frameColor);
        widget.SetScaleColor(scaleColor);
        widget.SetAudioPositionMarkerColor(markerColor);
        QAudioFormat format;
        format.setSampleRate(1000);
        widget.Initilize(format, 10.0);
        widget.grab(); // lays it out
    }

    [[nodiscard]] QRect DiagramPlace() { return Access::DiagramOf(widget).geometry(); }

    /** What the widget itself paints, without its children. */
    QStringList Painted()
    {
        PaintRecorder recorder(widget);
        widget.render(&recorder, {}, {}, {});
        return recorder.Lines();
    }

    BGFXWaveformWidget widget;
};

/** The same paint calls written out give the lines to compare with: texts depend on the machine's fonts. */
class Expected
{
public:
    explicit Expected(QWidget& widget) : m_recorder(widget), m_painter(&m_recorder)
    {
        m_painter.setFont(widget.font());
    }

    [[nodiscard]] int WidthOf(const QString& text) const
    {
        return m_painter.fontMetrics().horizontalAdvance(text);
    }
    void Frame()
    {
        m_painter.setPen(frameColor);
        m_painter.drawRect(QRectF(29, 19, 401, 101));
    }
    void Time(double x, const QString& text)
    {
        m_painter.setPen(scaleColor);
        m_painter.drawLine(QPointF(x, 19), QPointF(x, 16));
        m_painter.drawText(QRectF(x - WidthOf(text) / 2, 0, WidthOf(text), 16), Qt::AlignHCenter | Qt::AlignBottom,
                           text);
    }
    void Amplitude(double y, const QString& text)
    {
        m_painter.setPen(scaleColor);
        m_painter.drawLine(QPointF(26, y), QPointF(29, y));
        m_painter.drawText(QRectF(-(WidthOf(text) / 2), y - 10, 30, 16), Qt::AlignRight | Qt::AlignBottom, text);
    }
    /** `x` is the position's, counted from the widget's left edge. */
    void Marker(double x)
    {
        m_painter.setPen(markerColor);
        m_painter.drawLine(QPointF(x, 19), QPointF(x, 16));
        QSvgRenderer icon(u":/Resources/vantoraudioArrowDownLightBlue.svg"_s);
        icon.render(&m_painter, QRectF(x - 5, 8, 10, 6));
    }
    QStringList Lines()
    {
        m_painter.end();
        return m_recorder.Lines();
    }

private:
    PaintRecorder m_recorder;
    QPainter m_painter;
};

} // namespace

class TestWaveformPainting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void paintsFrameRulerAmplitudesAndMarker()
    {
        Bench bench;
        QCOMPARE(bench.DiagramPlace(), QRect(30, 20, 400, 100));
        bench.widget.OnSceneRectChangeRequested(QRectF(2.5, 0.0, 4.0, 1.0)); // a step of 1 second
        bench.widget.SetAudioPosition(4.25);
        Expected expected(bench.widget);
        expected.Frame();
        expected.Time(80.0, u"3.000 sec"_s);
        expected.Time(180.0, u"4.000 sec"_s);
        expected.Time(280.0, u"5.000 sec"_s);
        expected.Time(380.0, u"6.000 sec"_s);
        expected.Amplitude(119.0, u"-1 "_s);
        expected.Amplitude(69.0, u"0 "_s);
        expected.Amplitude(19.0, u"1 "_s);
        expected.Marker(205.0);
        QCOMPARE(bench.Painted(), expected.Lines());
    }

    void recordsWhatItCompares()
    {
        Bench bench;
        bench.widget.OnSceneRectChangeRequested(QRectF(2.5, 0.0, 4.0, 1.0));
        bench.widget.SetAudioPosition(4.25);
        const QStringList painted = bench.Painted();
        QCOMPARE(painted.value(0), u"rect #c800c8 29,19 430,120"_s);
        QCOMPARE(painted.value(1), u"line #0000ff 80,19 80,16"_s);
        QVERIFY2(painted.value(2).startsWith(u"text \"3.000 sec\" #0000ff "), qPrintable(painted.value(2)));
        QCOMPARE(painted.value(9), u"line #0000ff 26,119 29,119"_s);
        QVERIFY2(painted.value(10).startsWith(u"text \"-1 \" #0000ff "), qPrintable(painted.value(10)));
        QVERIFY2(painted.value(12).startsWith(u"text \"0 \" #0000ff "), qPrintable(painted.value(12)));
        QVERIFY2(painted.value(14).startsWith(u"text \"1 \" #0000ff "), qPrintable(painted.value(14)));
        QCOMPARE(painted.value(15), u"line #ff0000 205,19 205,16"_s);
        QCOMPARE(painted.size(), 17);
        QVERIFY2(painted.value(16).startsWith(u"path #"), qPrintable(painted.value(16)));
    }

    void writesTheAmplitudesOfALouderFile()
    {
        Bench bench;
        bench.widget.UpdateAudioSampleBuffer({0.0F, 3.5F});
        QAudioFormat format;
        format.setSampleRate(1000);
        bench.widget.Initilize(format, 10.0);
        const QStringList texts = bench.Painted().filter(u"text \""_s).mid(10);
        QCOMPARE(texts.size(), 3);
        QVERIFY(texts[0].startsWith(u"text \"-3 \""));
        QVERIFY(texts[1].startsWith(u"text \"0 \""));
        QVERIFY(texts[2].startsWith(u"text \"3 \""));
    }

    void writesHugeAmplitudesWithAnExponent()
    {
        Bench bench;
        bench.widget.UpdateAudioSampleBuffer({0.0F, 2'000'000.0F});
        bench.widget.Initilize(QAudioFormat(), 10.0);
        const QStringList texts = bench.Painted().filter(u"text \""_s).mid(10);
        QCOMPARE(texts.size(), 3);
        QVERIFY2(texts[0].startsWith(u"text \"-2e+06 \""), qPrintable(texts[0]));
        QVERIFY2(texts[1].startsWith(u"text \"0 \""), qPrintable(texts[1]));
        QVERIFY2(texts[2].startsWith(u"text \"2e+06 \""), qPrintable(texts[2]));
    }

    void theRulerBeginsWithTheSamplesThatAreThere()
    {
        Bench bench;
        bench.widget.OnSceneRectChangeRequested(QRectF(4.0, 0.0, 2.0, 1.0));
        bench.widget.UpdateAudioSampleBuffer(QList<float>(4000, 0.5F));
        QCOMPARE(Access::DiagramOf(bench.widget).GetBufferStart(), 3.0);
        const auto ticks = [&] {
            return bench.Painted().filter(QRegularExpression(u"^line #0000ff .*,19 .*,16$"_s));
        };
        // A step of half a second is 100 pixels.
        QCOMPARE(ticks(), (QStringList{u"line #0000ff 30,19 30,16"_s, u"line #0000ff 130,19 130,16"_s,
                                       u"line #0000ff 230,19 230,16"_s, u"line #0000ff 330,19 330,16"_s,
                                       u"line #0000ff 430,19 430,16"_s}));
        Access::DiagramOf(bench.widget).ScrollTo(2.0);
        QCOMPARE(ticks(), (QStringList{u"line #0000ff 230,19 230,16"_s, u"line #0000ff 330,19 330,16"_s,
                                       u"line #0000ff 430,19 430,16"_s}));
    }

    void withoutAFileOnlyFrameAmplitudesAndMarkerRemain()
    {
        Bench bench;
        bench.widget.Reset();
        Expected expected(bench.widget);
        expected.Frame();
        expected.Amplitude(119.0, u"-1 "_s);
        expected.Amplitude(69.0, u"0 "_s);
        expected.Amplitude(19.0, u"1 "_s);
        expected.Marker(30.0); // position 0 of an empty view, which shows the first second
        QCOMPARE(bench.Painted(), expected.Lines());
    }

    void aPositionOutsideTheViewHasNoMarker()
    {
        Bench bench;
        bench.widget.SetAudioPosition(5.5);
        bench.widget.OnSceneRectChangeRequested(QRectF(6.0, 0.0, 3.0, 1.0));
        QCOMPARE(bench.Painted().filter(markerColor.name()), QStringList{});
        bench.widget.OnSceneRectChangeRequested(QRectF(1.0, 0.0, 3.0, 1.0));
        QCOMPARE(bench.Painted().filter(markerColor.name()), QStringList{});
        bench.widget.OnSceneRectChangeRequested(QRectF(5.5, 0.0, 3.0, 1.0));
        QCOMPARE(bench.Painted().filter(markerColor.name()), QStringList{u"line #ff0000 30,19 30,16"_s});
    }

    void multipliesBeforeItDividesForTheMarker()
    {
        Bench bench;
        bench.widget.OnSceneRectChangeRequested(QRectF(QPointF(1.3, 0.0), QPointF(4.2, 1.0)));
        bench.widget.SetAudioPosition(4.2);
        // Multiplied first, the product is rounded up to a hair behind the right edge; divided first it is not.
        QCOMPARE(bench.Painted().filter(markerColor.name()), QStringList{});
        bench.widget.SetAudioPosition(4.1999999);
        QCOMPARE(bench.Painted().filter(markerColor.name()).size(), 1);
    }
};

QTEST_MAIN(TestWaveformPainting)
#include "tst_waveformpainting.moc"
