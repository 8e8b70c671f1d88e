#include "RecordingDevice.h"
#include "WaveformPicture.h"
#include "WaveformTestAccess.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QtMath>
#include <QtGui/QBackingStore>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <QtTest/QtTest>
#include <QtWidgets/QApplication>

#include <algorithm>
#include <random>

using namespace vantoraudio;
using namespace vantoraudio::vantorAudioEngine::UI;
using namespace Qt::Literals::StringLiterals;
using Access = WaveformTestAccess;

namespace {

const QColor position(255, 255, 255);

/** Side by side, of the scales 1, 1.25 and 2. */
const char* const screens = R"({"screens": [
    {"name": "1", "x": 0, "y": 0, "width": 1000, "height": 600, "logicalDpi": 96, "logicalBaseDpi": 96},
    {"name": "1.25", "x": 1000, "y": 0, "width": 1000, "height": 600, "logicalDpi": 120, "logicalBaseDpi": 96},
    {"name": "2", "x": 2000, "y": 0, "width": 1000, "height": 600, "logicalDpi": 192, "logicalBaseDpi": 96}
]})";

QScreen* Screen(const QString& name)
{
    const QList<QScreen*> all = QGuiApplication::screens();
    const auto found = std::ranges::find(all, name, &QScreen::name);
    return found == all.end() ? nullptr : *found;
}

QList<float> Noise(qsizetype count)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> level(-0.4F, 0.4F);
    QList<float> samples(count);
    std::ranges::generate(samples, [&] { return level(random); });
    return samples;
}

/** A view of 450 x 200, shown on the screen of scale 1. Its diagram is 400 wide and begins at (30, 20). */
struct Window
{
    Window()
    {
        view.resize(450, 200);
        PrepareForPictures(diagram);
        QAudioFormat format;
        format.setSampleRate(10'000);
        view.Initilize(format, 10.0);
        view.UpdateAudioSampleBuffer(Noise(100'000));
        view.SetAudioPosition(3.3);
        view.setScreen(Screen(u"1"_s));
        view.show();
    }

    /** Its size stays the same in logical pixels, as window systems see to. This platform keeps that in device
     * pixels instead, which Qt 6.8 tells the widget at once and Qt 6.4 never. */
    void MoveTo(const QString& screen)
    {
        const QSize size = view.size();
        view.windowHandle()->setScreen(Screen(screen));
        view.windowHandle()->resize(size);
    }

    /** What was painted last, in device pixels. Looking at it draws nothing. */
    QImage Shown() const { return *static_cast<const QImage*>(view.backingStore()->paintDevice()); }

    /** Where the position line, 132 pixels into the diagram, crosses the device row 30 pixels below the view's
     * top. */
    QList<int> LineColumns() const
    {
        const QImage shown = Shown();
        const int row = qFloor(30 * view.devicePixelRatioF());
        QList<int> columns;
        for (int x = 0; x < shown.width() && row < shown.height(); ++x) {
            if (WaveformPicture::IsAbout(shown.pixelColor(x, row), position)) {
                columns << x;
            }
        }
        return columns;
    }

    BGFXWaveformWidget view{nullptr};
    BGFXWaveformDiagramWidget& diagram = Access::DiagramOf(view);
};

std::size_t VerticesOfTheLastStrip(const RecordingDevice::Log& log)
{
    const auto isStrip = [](const RecordedDraw& draw) { return draw.topology == bgfx::Topology::LineStrip; };
    const auto strip = std::find_if(log.rbegin(), log.rend(), isStrip);
    return strip == log.rend() ? 0 : strip->vertexCount;
}

} // namespace

/** A view that is shown while it moves from one screen to another. */
class TestWaveformScreens : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (const QString& scale : {u"1"_s, u"1.25"_s, u"2"_s}) {
            QVERIFY(Screen(scale));
            QCOMPARE(Screen(scale)->devicePixelRatio(), scale.toDouble());
        }
    }

    void isDrawnInThePixelsOfItsNewScreen_data()
    {
        QTest::addColumn<QString>("screen");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<int>("line");
        QTest::newRow("1.25") << u"1.25"_s << QSize(563, 250) << 203; // 37.5, rounded, and 165
        QTest::newRow("2") << u"2"_s << QSize(900, 400) << 324;
    }

    void isDrawnInThePixelsOfItsNewScreen()
    {
        QFETCH(const QString, screen);
        QFETCH(const QSize, size);
        QFETCH(const int, line);
        QVERIFY(UseDevice(bgfx::device::Kind::Software));
        Window window;
        QVERIFY(QTest::qWaitForWindowExposed(&window.view));
        QCOMPARE(window.Shown().size(), QSize(450, 200));
        // A line as wide as one pixel: a picture of another scale would smear it or make it wider.
        QTRY_COMPARE(window.LineColumns(), QList<int>{162});

        window.MoveTo(screen);
        QTRY_COMPARE(window.LineColumns(), QList<int>{line});
        QCOMPARE(window.Shown().size(), size);
        QCOMPARE(window.diagram.size(), QSize(400, 165));

        window.MoveTo(u"1"_s);
        QTRY_COMPARE(window.LineColumns(), QList<int>{162});
        QCOMPARE(window.Shown().size(), QSize(450, 200));
    }

    void itsWaveformHasAsManyColumnsAsItsNewScreen()
    {
        RecordingDevice::Log log;
        RecordingDevice::Adopt(log);
        {
            Window window;
            QVERIFY(QTest::qWaitForWindowExposed(&window.view));
            // Three to four vertices in each column that noise fills.
            QTRY_VERIFY(VerticesOfTheLastStrip(log) >= 400 * 3);
            QVERIFY(VerticesOfTheLastStrip(log) <= 402 * 4);
            window.MoveTo(u"2"_s);
            QTRY_VERIFY(VerticesOfTheLastStrip(log) >= 800 * 3);
            QVERIFY(VerticesOfTheLastStrip(log) <= 802 * 4);
            window.MoveTo(u"1.25"_s);
            QTRY_VERIFY(VerticesOfTheLastStrip(log) <= 502 * 4);
            QVERIFY(VerticesOfTheLastStrip(log) >= 500 * 3);
        }
        bgfx::DrawingDevice::Get().Shutdown();
    }
};

/** The platform without a display, which takes any set of screens from a file. */
int main(int argc, char** argv)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"screens.json"_s);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(screens) < 0) {
        return 1;
    }
    file.close();
    qputenv("QT_QPA_PLATFORM", QByteArray("offscreen:configfile=" + QFile::encodeName(path)));
    qunsetenv("QT_SCALE_FACTOR");
    QApplication application(argc, argv);
    TestWaveformScreens test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_waveformscreens.moc"
