#include "render/bgfx/device/bgfx/BgfxDevice.h"
#include "render/bgfx/device/bgfx/Turns.h"
#include "render/vantor3DQt/BGFXOffscreenWidget.h"
#include "tests/render/Drawing.h"

#include <QtTest/QtTest>

using namespace drawing;
using bgfx::device::BgfxDevice;
using bgfx::device::BgfxInstance;
using bgfx::device::FramePlan;

namespace {

constexpr std::uint32_t Red = 0xff0000ff;
constexpr std::uint32_t Green = 0x00ff00ff;
constexpr std::uint32_t Blue = 0x0000ffff;

/** A bgfx that draws when a test wants it to. */
class FakeInstance : public BgfxInstance
{
public:
    explicit FakeInstance(News news) : m_news(std::move(news)) {}

    struct Asked
    {
        std::uint64_t id = 0;
        FramePlan plan;
    };
    std::vector<Asked> asked;
    std::vector<std::uint64_t> forgotten;

    /** Draws what was asked for at this place. */
    void Finish(std::size_t place)
    {
        QImage image(asked[place].plan.size, QImage::Format_RGBA8888);
        const std::uint32_t rgba = asked[place].plan.clearColor;
        image.fill(QColor(int(rgba >> 24), int(rgba >> 16 & 0xffU), int(rgba >> 8 & 0xffU)));
        m_pictures.push_back({asked[place].id, image});
        m_news();
    }
    void Lose()
    {
        m_state = State::Lost;
        m_news();
    }

    [[nodiscard]] State CurrentState() const override { return m_state; }
    [[nodiscard]] QString RendererName() const override { return QStringLiteral("Fake"); }
    [[nodiscard]] int MaxSide() const override { return 1024; }
    void Ask(std::uint64_t id, FramePlan plan) override { asked.push_back({id, std::move(plan)}); }
    void Forget(std::uint64_t id) override { forgotten.push_back(id); }
    bool WaitFor(std::uint64_t) override { return false; }
    bool WaitForStart() override { return true; }
    [[nodiscard]] std::vector<Picture> TakePictures() override { return std::exchange(m_pictures, {}); }

private:
    const News m_news;
    State m_state = State::Running;
    std::vector<Picture> m_pictures;
};

/** Draws with what `start` makes from now on. */
template<typename Start>
auto& UseInstance(Start start)
{
    auto device = std::make_unique<BgfxDevice>(
        [](const QImage* picture) { Q_EMIT bgfx::DrawingDevice::Get().PictureArrived(picture); });
    auto instance = start(device->News());
    auto& used = *instance;
    device->Use(std::move(instance));
    bgfx::DrawingDevice::Get().Adopt(std::move(device));
    return used;
}

FakeInstance& UseFakeInstance()
{
    return UseInstance([](auto news) { return std::make_unique<FakeInstance>(std::move(news)); });
}

class ColorWidget : public vantor3DQt::BGFXOffscreenWidget
{
public:
    using BGFXOffscreenWidget::Picture;
    using BGFXOffscreenWidget::ViewportRect;

    explicit ColorWidget(std::uint32_t color) : m_color(color) { resize(80, 40); }

    void SetColor(std::uint32_t color)
    {
        m_color = color;
        update();
    }
    void ShowOnScreen()
    {
        show();
        QVERIFY(QTest::qWaitForWindowExposed(this));
        QTRY_VERIFY(!Picture().isNull());
    }
    /** The colour of all of the picture on the screen; 0 where the pixels differ. */
    [[nodiscard]] std::uint32_t Shown() const
    {
        QSet<QRgb> colors;
        for (int y = 0; y < Picture().height(); ++y) {
            for (int x = 0; x < Picture().width(); ++x)
                colors.insert(Picture().pixel(x, y));
        }
        return colors.size() == 1 ? (*colors.begin() << 8 | 0xffU) : 0;
    }
    [[nodiscard]] int Frames() const { return m_frames; }

protected:
    void paintEvent(QPaintEvent*) override
    {
        if (Renderer().StartFrame(FrameBuffer())) {
            const BGFXViewContext view(0);
            view.SetViewport(ViewportRect());
            view.SetClear(bgfx::BGFX_CLEAR_COLOR, m_color, 1.0F, 0);
            Renderer().PresentSubmittedFrame(false);
            ++m_frames;
        }
        Flush();
    }

private:
    std::uint32_t m_color;
    int m_frames = 0;
};

QStringList& Warnings()
{
    static QStringList warnings;
    return warnings;
}

void NoteWarning(QtMsgType type, const QMessageLogContext&, const QString& text)
{
    if (type == QtWarningMsg)
        Warnings() << text;
}

} // namespace

class tst_BgfxDevice : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Warnings().clear(); }
    void cleanup() { bgfx::DrawingDevice::Get().Shutdown(); }

    void showsTheFormerFrameUntilTheLatestIsThere();
    void letsTheProcessorDrawWhatCannotBeLate();
    void tellsEveryWidgetOfItsOwnPicture();
    void forgetsWidgetsThatHideOrGo();
    void handsOverInMidLifeWithOneWarning();
    void nobodyWaitsForOneWhoAsksAllTheTime();

    void bringsTheLastFrameOfAMovement();
    void keepsSeveralWidgetsApart();
    void goesWithTheLastWidget();
    void leavesTheRoomToAnotherWhereItCannotStart();
};

void tst_BgfxDevice::showsTheFormerFrameUntilTheLatestIsThere()
{
    FakeInstance& fake = UseFakeInstance();
    ColorWidget widget(Red);
    widget.ShowOnScreen();
    QCOMPARE(widget.Shown(), Red);
    fake.Finish(fake.asked.size() - 1);
    QCoreApplication::processEvents();
    const std::size_t before = fake.asked.size();

    widget.SetColor(Green);
    QTRY_COMPARE(fake.asked.size(), before + 1);
    widget.SetColor(Blue);
    QTRY_COMPARE(fake.asked.size(), before + 2);
    QCOMPARE(widget.Shown(), Red);
    fake.Finish(before);
    QTRY_COMPARE(widget.Shown(), Green);
    fake.Finish(before + 1);
    QTRY_COMPARE(widget.Shown(), Blue);

    // That was the end: a widget that shows its latest frame is left alone.
    const int frames = widget.Frames();
    QCoreApplication::processEvents();
    QCOMPARE(widget.Frames(), frames);
    QCOMPARE(fake.asked.size(), before + 2);
}

void tst_BgfxDevice::letsTheProcessorDrawWhatCannotBeLate()
{
    FakeInstance& fake = UseFakeInstance();
    ColorWidget widget(Red);
    widget.ShowOnScreen();
    fake.Finish(fake.asked.size() - 1);
    QCoreApplication::processEvents();

    widget.SetColor(Green);
    QTRY_COMPARE(fake.asked.back().plan.clearColor, Green);
    QCOMPARE(widget.Shown(), Red);
    QCOMPARE(widget.grab().toImage().pixelColor(5, 5), QColor(0, 255, 0));
    widget.setFixedSize(60, 30);
    QTRY_COMPARE(widget.Picture().size(), widget.ViewportRect().size());
    QCOMPARE(widget.Shown(), Green);
}

void tst_BgfxDevice::tellsEveryWidgetOfItsOwnPicture()
{
    FakeInstance& fake = UseFakeInstance();
    ColorWidget first(Red);
    ColorWidget second(Red);
    for (ColorWidget* widget : {&first, &second}) {
        widget->ShowOnScreen();
        fake.Finish(fake.asked.size() - 1);
        QCoreApplication::processEvents();
    }
    const std::size_t before = fake.asked.size();
    first.SetColor(Green);
    second.SetColor(Blue);
    QTRY_COMPARE(fake.asked.size(), before + 2);
    const bool isFirst = fake.asked[before].plan.clearColor == Green;
    // Both have come when one of them is painted: it takes the other's along.
    fake.Finish(before);
    fake.Finish(before + 1);
    (isFirst ? first : second).repaint();
    QTRY_COMPARE(first.Shown(), Green);
    QTRY_COMPARE(second.Shown(), Blue);
}

void tst_BgfxDevice::forgetsWidgetsThatHideOrGo()
{
    FakeInstance& fake = UseFakeInstance();
    {
        ColorWidget widget(Red);
        widget.ShowOnScreen();
        QVERIFY(fake.forgotten.empty());
        const std::uint64_t id = fake.asked.back().id;
        widget.hide();
        QCOMPARE(fake.forgotten, std::vector{id});
        fake.Finish(fake.asked.size() - 1);
        widget.ShowOnScreen();
        QVERIFY(fake.asked.back().id != id);
    }
    QCOMPARE(fake.forgotten.size(), std::size_t(2));
    fake.Finish(fake.asked.size() - 1);
    QCoreApplication::processEvents();
}

void tst_BgfxDevice::handsOverInMidLifeWithOneWarning()
{
    FakeInstance& fake = UseFakeInstance();
    ColorWidget first(Red);
    ColorWidget second(Blue);
    first.ShowOnScreen();
    second.ShowOnScreen();
    const auto formerHandler = qInstallMessageHandler(&NoteWarning);
    fake.Lose();
    QTRY_VERIFY(bgfx::DrawingDevice::Get().Kind() != bgfx::device::Kind::Bgfx);
    const int frames = first.Frames();
    first.SetColor(Green);
    QTRY_COMPARE(first.Shown(), Green);
    QVERIFY(first.Frames() > frames);
    QTRY_COMPARE(second.Shown(), Blue);
    qInstallMessageHandler(formerHandler);
    QCOMPARE(Warnings().filter(QStringLiteral("bgfx")).size(), 1);
}

void tst_BgfxDevice::nobodyWaitsForOneWhoAsksAllTheTime()
{
    std::map<std::uint64_t, FramePlan> waiting;
    QVERIFY(bgfx::device::NextInTurn(waiting, 7) == waiting.end());
    for (const std::uint64_t id : {2, 5, 9})
        waiting.emplace(id, FramePlan());
    std::vector<std::uint64_t> turns;
    for (std::uint64_t last = 0; turns.size() < 5; last = turns.back()) {
        turns.push_back(bgfx::device::NextInTurn(waiting, last)->first);
    }
    QCOMPARE(turns, (std::vector<std::uint64_t>{2, 5, 9, 2, 5}));
    waiting.erase(5);
    QCOMPARE(bgfx::device::NextInTurn(waiting, 2)->first, std::uint64_t{9});
}

#define USE_BGFX                                                                                                  \
    if (!bgfx::DrawingDevice::Get().Use(bgfx::device::Kind::Bgfx))                                                \
    QSKIP("bgfx is not built in, or cannot be had here")

void tst_BgfxDevice::bringsTheLastFrameOfAMovement()
{
    USE_BGFX;
    ColorWidget widget(Red);
    widget.ShowOnScreen();
    for (std::uint32_t step = 1; step <= 100; ++step) {
        widget.SetColor(step << 24 | 0xffU);
        QCoreApplication::processEvents();
        QVERIFY(widget.Shown() != 0); // never torn
    }
    QTRY_COMPARE(widget.Shown(), 100U << 24 | 0xffU);
    const int frames = widget.Frames();
    QCoreApplication::processEvents();
    QCOMPARE(widget.Frames(), frames);
}

void tst_BgfxDevice::keepsSeveralWidgetsApart()
{
    USE_BGFX;
    std::vector<std::unique_ptr<ColorWidget>> widgets;
    for (int i = 0; i < 8; ++i) {
        widgets.push_back(std::make_unique<ColorWidget>(Red));
        widgets.back()->resize(60 + 4 * i, 40);
        widgets.back()->ShowOnScreen();
    }
    const auto color = [](std::size_t widget, std::uint32_t step) {
        return std::uint32_t(widget + 1) << 24 | step << 16 | 0xffU;
    };
    for (std::uint32_t step = 1; step <= 20; ++step) {
        for (std::size_t i = 0; i < widgets.size(); ++i)
            widgets[i]->SetColor(color(i, step));
        QCoreApplication::processEvents();
        for (std::size_t i = 0; i < widgets.size(); ++i)
            QVERIFY(widgets[i]->Shown() == Red || widgets[i]->Shown() >> 24 == i + 1);
    }
    for (std::size_t i = 0; i < widgets.size(); ++i)
        QTRY_COMPARE(widgets[i]->Shown(), color(i, 20));
}

void tst_BgfxDevice::goesWithTheLastWidget()
{
    USE_BGFX;
    {
        ColorWidget first(Red);
        {
            ColorWidget second(Red);
            second.grab();
        }
        first.grab();
        QCOMPARE(bgfx::DrawingDevice::Get().Kind(), bgfx::device::Kind::Bgfx);
        QVERIFY(!bgfx::DrawingDevice::Get().RendererName().isEmpty());
    }
    QTRY_COMPARE_WITH_TIMEOUT(bgfx::DrawingDevice::Get().Kind(), bgfx::device::Kind::None, 20'000);
    // And comes back with the next one.
    USE_BGFX;
    ColorWidget next(Green);
    QCOMPARE(next.grab().toImage().pixelColor(5, 5), QColor(0, 255, 0));
}

void tst_BgfxDevice::leavesTheRoomToAnotherWhereItCannotStart()
{
    // The same copy of bgfx runs already, as when a program uses it without handing it over.
    const auto running = bgfx::device::StartOwnBgfx([] {});
    if (!running || !running->WaitForStart())
        QSKIP("bgfx is not built in, or cannot be had here");
    const auto formerHandler = qInstallMessageHandler(&NoteWarning);
    UseInstance(&bgfx::device::StartOwnBgfx);
    ColorWidget widget(Red);
    widget.ShowOnScreen();
    QTRY_VERIFY(bgfx::DrawingDevice::Get().Kind() != bgfx::device::Kind::Bgfx);
    QTRY_COMPARE(widget.Shown(), Red);
    qInstallMessageHandler(formerHandler);
    QCOMPARE(Warnings().filter(QStringLiteral("bgfx")).size(), 1);
}

QTEST_MAIN(tst_BgfxDevice)
#include "tst_BgfxDevice.moc"
