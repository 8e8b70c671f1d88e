#include "FakeDevice.h"
#include "render/bgfx/Frame.h"
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
    using BGFXOffscreenWidget::Picture;
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
    void cleanup() { bgfx::DrawingDevice::Get().Shutdown(); }

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
    int drawn = 0;
    Adopt(drawn, Fault::IsLost);
    TestWidget widget;
    widget.resize(40, 20);
    widget.show();
    QTRY_COMPARE(bgfx::DrawingDevice::Get().Kind(), bgfx::device::Kind::Software);
    QCOMPARE(drawn, 1);
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
        QTRY_COMPARE(widget->Picture().size(), widget->ViewportRect().size());
        QCOMPARE(ColorAt(*widget, {50, 30}), QColor(0x20, 0x40, 0x60));
    }
}

void tst_BGFXOffscreenWidget::choosesTheDeviceByItself()
{
    QOpenGLContext context;
    const bool hasOpenGL = context.create();
    QCOMPARE(bgfx::DrawingDevice::Get().Kind(), bgfx::device::Kind::None);
    TestWidget widget;
    widget.resize(20, 20);
    QCOMPARE(ColorAt(widget, {10, 10}), QColor(0x20, 0x40, 0x60));
    using bgfx::device::Kind;
    constexpr Kind First = Kind::VANTORAUDIO_FIRST_DEVICE;
    const Kind kind = bgfx::DrawingDevice::Get().Kind();
    // bgfx is no longer tried once it could not be started.
    const bool isBgfx = First == Kind::Bgfx && kind == Kind::Bgfx;
    QVERIFY(isBgfx || kind == (hasOpenGL && First != Kind::Software ? Kind::OpenGL : Kind::Software));
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
    QCOMPARE(widget.Picture().size(), expected);
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
    QTRY_COMPARE(widget.Picture().size(), widget.ViewportRect().size());
    widget.resize(200, 100);
    QTRY_COMPARE(widget.Picture().size(), widget.ViewportRect().size());
    QCOMPARE(ColorAt(widget, {190, 90}), QColor(0x20, 0x40, 0x60));
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
    QVERIFY(broken.Renderer().StartFrame(broken.FrameBuffer()));
    const BGFXViewContext leftOver(2);
    leftOver.SetClear(bgfx::BGFX_CLEAR_COLOR, 0xffffffff, 1.0F, 0);
    leftOver.SetViewport({0, 0, 30, 20});
    QCOMPARE(ColorAt(broken, {15, 10}), QColor(0x20, 0x40, 0x60));
}

void tst_BGFXOffscreenWidget::leavesNothingBehindInAnyOrder()
{
    const std::size_t before = bgfx::LivingObjects();
    for (const auto& order : {std::array{0, 1, 2}, std::array{2, 1, 0}, std::array{1, 2, 0}}) {
        std::array<std::unique_ptr<TestWidget>, 3> widgets;
        for (auto& widget : widgets) {
            widget = std::make_unique<TestWidget>();
            widget->resize(20, 20);
            widget->grab();
        }
        for (const int i : order)
            widgets[std::size_t(i)].reset();
        QCOMPARE(bgfx::LivingObjects(), before);
    }
    TestWidget late;
    late.resize(20, 20);
    late.grab();
    bgfx::DrawingDevice::Get().Shutdown();
    QCOMPARE(bgfx::LivingObjects(), before);
}

void tst_BGFXOffscreenWidget::givesItsFrameBufferBackWhenHidden()
{
    TestWidget widget;
    widget.resize(120, 60);
    widget.show();
    QTRY_VERIFY(widget.frames > 0);
    QVERIFY(!widget.Picture().isNull());
    widget.hide();
    QVERIFY(widget.Picture().isNull());
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
    auto typeDuringCleanup = bgfx::device::Kind::None;
    connect(&second, &TestWidget::CleanupRequested, this,
            [&] { typeDuringCleanup = bgfx::DrawingDevice::Get().Kind(); });
    bgfx::DrawingDevice::Get().Shutdown();
    QCOMPARE(firstSpy.count(), 1);
    QCOMPARE(secondSpy.count(), 1);
    QVERIFY2(typeDuringCleanup != bgfx::device::Kind::None, "the device still works during the cleanup");
    bgfx::DrawingDevice::Get().Shutdown();
    QCOMPARE(firstSpy.count(), 1);

    QVERIFY(bgfx::DrawingDevice::Get().Use(bgfx::device::Kind::Software));
    first.color = 0x0000ffff;
    QCOMPARE(ColorAt(first, {10, 10}), QColor(Qt::blue));
    QCOMPARE(ColorAt(first, {0, 10}), QColor(Qt::white));
    QCOMPARE(ColorAt(second, {10, 10}), QColor(0x20, 0x40, 0x60));
    QCOMPARE(bgfx::DrawingDevice::Get().Kind(), bgfx::device::Kind::Software);
}

void tst_BGFXOffscreenWidget::drawsNothingWhileEmpty()
{
    TestWidget widget;
    widget.resize(0, 20);
    QVERIFY(!widget.FrameBuffer());
    QVERIFY(!widget.Renderer().StartFrame(widget.FrameBuffer()));
    QVERIFY(widget.Picture().isNull());
}

void tst_BGFXOffscreenWidget::boundsAbsurdSizes()
{
    QVERIFY(bgfx::DrawingDevice::Get().Use(bgfx::device::Kind::Software));
    TestWidget widget;
    widget.resize(16'000'000, 16'000'000);
    const QRect viewport = widget.ViewportRect();
    QVERIFY(viewport.width() <= 16384 && qint64(viewport.width()) * viewport.height() <= 7680 * 4320);
    widget.resize(20'000, 20);
    QVERIFY(widget.FrameBuffer());
    QCOMPARE(widget.ViewportRect().width(), 16384);
}

int main(int argc, char** argv)
{
    int result = 0;
    int drawn = 0;
    {
        QApplication application(argc, argv);
        tst_BGFXOffscreenWidget test;
        result = QTest::qExec(&test, argc, argv);
        // A device is alive when the application goes, as it is in every host.
        TestWidget widget;
        widget.resize(20, 20);
        widget.grab();
        if (bgfx::DrawingDevice::Get().Kind() == bgfx::device::Kind::None)
            result = 1;
        // One that took the place of another goes with the application, too.
        Adopt(drawn, Fault::None);
    }
    const bool released =
        bgfx::DrawingDevice::Get().Kind() == bgfx::device::Kind::None && !bgfx::DrawingDevice::Get().Ensure();
    return released ? result : 1;
}

#include "tst_BGFXOffscreenWidget.moc"
