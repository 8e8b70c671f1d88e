#include "FakeDevice.h"
#include "render/vantor3DQt/BGFXOffscreenWidget.h"
#include "tests/render/Drawing.h"

#include <QtGui/QOpenGLContext>
#include <QtTest/QtTest>
#include <QtWidgets/QDockWidget>
#include <QtWidgets/QMainWindow>
#include <QtWidgets/QVBoxLayout>

#include <cmath>

using namespace drawing;

namespace {

/** Fills itself with a colour and draws a white line down its left edge. */
class TestWidget : public vantor3DQt::BGFXOffscreenWidget
{
public:
    using BGFXOffscreenWidget::BGFXOffscreenWidget;
    using BGFXOffscreenWidget::FrameBuffer;
    using BGFXOffscreenWidget::Renderer;
    using BGFXOffscreenWidget::ViewportRect;

    std::uint32_t color = 0x204060ff;
    int frames = 0;

protected:
    void paintEvent(QPaintEvent*) override
    {
        if (Renderer().StartFrame(FrameBuffer())) {
            Draw();
            Renderer().PresentSubmittedFrame(false);
            ++frames;
        }
        Flush();
    }

private:
    void Draw()
    {
        m_view.SetTransform({}, PixelProjection(ViewportRect().size()));
        m_view.SetViewport(ViewportRect());
        m_view.Submit(FrameBuffer(), ViewportRect());
        m_view.SetClear(bgfx::BGFX_CLEAR_COLOR, color, 1.0F, 0);
        const auto height = float(ViewportRect().height());
        Renderer().DrawLines(m_view, std::array{Line{{0.5F, 0.0F, 0.0F}, {0.5F, height, 0.0F}, White}});
    }

    BGFXViewContext m_view{0};
};

QColor ColorAt(QWidget& widget, QPoint at)
{
    const QImage image = widget.grab().toImage();
    return image.pixelColor((QPointF(at) * image.devicePixelRatio()).toPoint());
}

} // namespace

class tst_BGFXOffscreenWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { bgfx::shutdown(); }

    void choosesTheDeviceByItself();
    void coversTheWidgetInDevicePixels_data();
    void coversTheWidgetInDevicePixels();
    void paintsOnePixelOnOnePixel();
    void followsItsSize();
    void survivesReparentingHidingAndShowing();
    void keepsTwoWidgetsApart();
    void forgetsAFrameThatAnExceptionEnded();
    void leavesNothingBehindInAnyOrder();
    void givesItsFrameBufferBackWhenHidden();
    void asksForCleanupAndRecovers();
    void drawsNothingWhileEmpty();
    void boundsAbsurdSizes();
    void goesOnInSoftwareWhenTheDeviceIsLost();
    void survivesFloatingAndDocking();
};

void tst_BGFXOffscreenWidget::goesOnInSoftwareWhenTheDeviceIsLost()
{
    FakeLog log;
    Adopt(log, {.begins = false});
    TestWidget widget;
    widget.resize(40, 20);
    widget.show();
    QTRY_COMPARE(bgfx::getRendererType(), bgfx::RendererType::Software);
    QCOMPARE(log.begun, 1);
    QTRY_VERIFY(widget.frames >= 2);
    QCOMPARE(ColorAt(widget, {20, 10}), QColor(0x20, 0x40, 0x60));
}

void tst_BGFXOffscreenWidget::survivesFloatingAndDocking()
{
    QMainWindow window;
    window.resize(300, 200);
    QDockWidget dock;
    auto* widget = new TestWidget;
    widget->setMinimumSize(100, 60);
    dock.setWidget(widget);
    window.addDockWidget(Qt::LeftDockWidgetArea, &dock);
    window.show();
    QTRY_VERIFY(widget->frames > 0);
    for (const bool floats : {true, false, true}) {
        const int before = widget->frames;
        dock.setFloating(floats);
        QCOMPARE(dock.isFloating(), floats);
        QTRY_VERIFY(widget->frames > before);
        QTRY_COMPARE(widget->Renderer().Picture().size(), widget->ViewportRect().size());
        QCOMPARE(ColorAt(*widget, {50, 30}), QColor(0x20, 0x40, 0x60));
        QCOMPARE(bgfx::getStats()->numFrameBuffers, std::uint16_t{1});
    }
}

void tst_BGFXOffscreenWidget::choosesTheDeviceByItself()
{
    QOpenGLContext context;
    const bool hasOpenGL = context.create();
    QCOMPARE(bgfx::getRendererType(), bgfx::RendererType::Noop);
    TestWidget widget;
    widget.resize(20, 20);
    QCOMPARE(ColorAt(widget, {10, 10}), QColor(0x20, 0x40, 0x60));
    QCOMPARE(bgfx::getRendererType(), hasOpenGL ? bgfx::RendererType::OpenGL : bgfx::RendererType::Software);
}

void tst_BGFXOffscreenWidget::coversTheWidgetInDevicePixels_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("even") << QSize(80, 40);
    QTest::newRow("odd") << QSize(101, 33);
    QTest::newRow("one pixel") << QSize(1, 1);
}

void tst_BGFXOffscreenWidget::coversTheWidgetInDevicePixels()
{
    QFETCH(QSize, size);
    TestWidget widget;
    widget.resize(size);
    widget.setFixedSize(size);
    const double ratio = widget.devicePixelRatioF();
    const QSize expected(int(std::ceil(size.width() * ratio)), int(std::ceil(size.height() * ratio)));
    QCOMPARE(widget.ViewportRect(), QRect(QPoint(0, 0), expected));
    const QImage image = widget.grab().toImage();
    QCOMPARE(widget.Renderer().Picture().size(), expected);
    for (const QPoint corner : {image.rect().topRight(), image.rect().bottomRight()}) {
        if (size.width() > 1)
            QCOMPARE(image.pixelColor(corner), QColor(0x20, 0x40, 0x60));
    }
    QCOMPARE(image.pixelColor(image.rect().bottomLeft()), QColor(Qt::white));
}

void tst_BGFXOffscreenWidget::paintsOnePixelOnOnePixel()
{
    TestWidget widget;
    widget.resize(40, 40);
    const QImage image = widget.grab().toImage();
    // A line of one device pixel stays one pixel and keeps its colour: nothing is stretched or smoothed.
    for (int y = 0; y < image.height(); ++y) {
        QCOMPARE(image.pixelColor(0, y), QColor(Qt::white));
        QCOMPARE(image.pixelColor(1, y), QColor(0x20, 0x40, 0x60));
    }
}

void tst_BGFXOffscreenWidget::followsItsSize()
{
    QWidget window;
    TestWidget widget(&window);
    widget.setGeometry(0, 0, 50, 40);
    window.resize(300, 200);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_COMPARE(widget.Renderer().Picture().size(), widget.ViewportRect().size());
    widget.resize(200, 100);
    QTRY_COMPARE(widget.Renderer().Picture().size(), widget.ViewportRect().size());
    QCOMPARE(ColorAt(widget, {190, 90}), QColor(0x20, 0x40, 0x60));
    QCOMPARE(bgfx::getStats()->numFrameBuffers, std::uint16_t{1});
}

void tst_BGFXOffscreenWidget::survivesReparentingHidingAndShowing()
{
    QWidget first;
    QWidget second;
    first.resize(200, 150);
    second.resize(200, 150);
    auto* widget = new TestWidget(&first);
    widget->setGeometry(0, 0, 100, 60);
    first.show();
    QTRY_VERIFY(widget->frames > 0);
    widget->setParent(&second);
    widget->show();
    int before = widget->frames;
    second.show();
    QTRY_VERIFY(widget->frames > before);
    widget->hide();
    before = widget->frames;
    widget->show();
    QTRY_VERIFY(widget->frames > before);
    QCOMPARE(ColorAt(*widget, {50, 30}), QColor(0x20, 0x40, 0x60));
}

void tst_BGFXOffscreenWidget::keepsTwoWidgetsApart()
{
    TestWidget red;
    red.color = 0xff0000ff;
    red.resize(30, 20);
    TestWidget blue;
    blue.color = 0x0000ffff;
    blue.resize(60, 50);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(ColorAt(red, {15, 10}), QColor(Qt::red));
        QCOMPARE(ColorAt(blue, {15, 10}), QColor(Qt::blue));
        QCOMPARE(ColorAt(blue, {50, 40}), QColor(Qt::blue));
    }
}

void tst_BGFXOffscreenWidget::forgetsAFrameThatAnExceptionEnded()
{
    TestWidget broken;
    broken.resize(30, 20);
    const auto frameBuffer = broken.FrameBuffer();
    QVERIFY(broken.Renderer().StartFrame(frameBuffer));
    const BGFXViewContext leftOver(5);
    leftOver.SetClear(bgfx::BGFX_CLEAR_COLOR, 0xffffffff, 1.0F, 0);
    leftOver.Submit(frameBuffer, {0, 0, 30, 20});
    QCOMPARE(ColorAt(broken, {15, 10}), QColor(0x20, 0x40, 0x60));
}

void tst_BGFXOffscreenWidget::leavesNothingBehindInAnyOrder()
{
    const auto count = [] {
        const bgfx::Stats stats = *bgfx::getStats();
        return stats.numFrameBuffers + stats.numTextures + stats.numDynamicVertexBuffers + stats.numUniforms +
               stats.numIndexBuffers + stats.numShaders;
    };
    const int before = count();
    for (const auto& order : {std::array{0, 1, 2}, std::array{2, 1, 0}, std::array{1, 2, 0}}) {
        std::array<std::unique_ptr<TestWidget>, 3> widgets;
        for (auto& widget : widgets) {
            widget = std::make_unique<TestWidget>();
            widget->resize(20, 20);
            widget->grab();
        }
        QCOMPARE(bgfx::getStats()->numFrameBuffers, std::uint16_t{3});
        for (const int i : order)
            widgets[std::size_t(i)].reset();
        QCOMPARE(count(), before);
    }
    TestWidget late;
    late.resize(20, 20);
    late.grab();
    bgfx::shutdown();
    QCOMPARE(count(), before);
}

void tst_BGFXOffscreenWidget::givesItsFrameBufferBackWhenHidden()
{
    TestWidget widget;
    widget.resize(120, 60);
    widget.show();
    QTRY_VERIFY(widget.frames > 0);
    QCOMPARE(bgfx::getStats()->numFrameBuffers, std::uint16_t{1});
    widget.hide();
    QCOMPARE(bgfx::getStats()->numFrameBuffers, std::uint16_t{0});
    QCOMPARE(bgfx::getStats()->numTextures, std::uint16_t{0});
}

void tst_BGFXOffscreenWidget::asksForCleanupAndRecovers()
{
    TestWidget first;
    TestWidget second;
    for (TestWidget* widget : {&first, &second}) {
        widget->resize(20, 20);
        widget->grab();
    }
    QSignalSpy firstSpy(&first, &TestWidget::CleanupRequested);
    QSignalSpy secondSpy(&second, &TestWidget::CleanupRequested);
    auto typeDuringCleanup = bgfx::RendererType::Noop;
    connect(&second, &TestWidget::CleanupRequested, this, [&] { typeDuringCleanup = bgfx::getRendererType(); });
    bgfx::shutdown();
    QCOMPARE(firstSpy.count(), 1);
    QCOMPARE(secondSpy.count(), 1);
    QVERIFY2(typeDuringCleanup != bgfx::RendererType::Noop, "the device still works during the cleanup");
    bgfx::shutdown();
    QCOMPARE(firstSpy.count(), 1);

    QVERIFY(bgfx::init({bgfx::RendererType::Software}));
    first.color = 0x0000ffff;
    QCOMPARE(ColorAt(first, {10, 10}), QColor(Qt::blue));
    QCOMPARE(ColorAt(first, {0, 10}), QColor(Qt::white));
    QCOMPARE(ColorAt(second, {10, 10}), QColor(0x20, 0x40, 0x60));
    QCOMPARE(bgfx::getRendererType(), bgfx::RendererType::Software);
}

void tst_BGFXOffscreenWidget::drawsNothingWhileEmpty()
{
    TestWidget widget;
    widget.resize(0, 20);
    QVERIFY(!bgfx::isValid(widget.FrameBuffer()));
    QVERIFY(!widget.Renderer().StartFrame(widget.FrameBuffer()));
    QVERIFY(widget.Renderer().Picture().isNull());
}

void tst_BGFXOffscreenWidget::boundsAbsurdSizes()
{
    QVERIFY(bgfx::init({bgfx::RendererType::Software}));
    TestWidget widget;
    widget.resize(16'000'000, 16'000'000);
    const QRect viewport = widget.ViewportRect();
    QVERIFY(viewport.width() <= 16384 && qint64(viewport.width()) * viewport.height() <= 7680 * 4320);
    widget.resize(20'000, 20);
    QVERIFY(bgfx::isValid(widget.FrameBuffer()));
    QCOMPARE(widget.ViewportRect().width(), 16384);
}

int main(int argc, char** argv)
{
    int result = 0;
    {
        QApplication application(argc, argv);
        tst_BGFXOffscreenWidget test;
        result = QTest::qExec(&test, argc, argv);
        // A device is alive when the application goes, as it is in every host.
        TestWidget widget;
        widget.resize(20, 20);
        widget.grab();
        if (bgfx::getRendererType() == bgfx::RendererType::Noop)
            result = 1;
    }
    const bool released = bgfx::getRendererType() == bgfx::RendererType::Noop && !bgfx::DeviceLifetime::Ensure();
    return released ? result : 1;
}

#include "tst_BGFXOffscreenWidget.moc"
