#include "render/vantor3DQt/BGFXOffscreenWidget.h"

#include "render/bgfx/DeviceLifetime.h"

#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace vantoraudio::vantor3DQt {
namespace {

/** As many pixels as the largest usual screen has; more would only cost memory. */
constexpr int MaxPixels = 7680 * 4320;
/** While there is no device to ask. */
constexpr int UsualMaxSide = 16384;

int MaxSide()
{
    const auto limit = bgfx::getCaps()->limits.maxTextureSize;
    return limit > 0 ? static_cast<int>(limit) : UsualMaxSide;
}

int ToDevicePixels(int length, double ratio)
{
    // Products like 10 x 1.1 come out a hair above the whole number that they stand for.
    constexpr double Hair = 1e-6;
    return static_cast<int>(std::clamp(std::ceil(length * ratio - Hair), 0.0, double(MaxSide())));
}

} // namespace

BGFXOffscreenWidget::BGFXOffscreenWidget(QWidget* parent, Qt::WindowFlags flags) : QWidget(parent, flags)
{
    connect(&bgfx::DeviceLifetime::Get(), &bgfx::DeviceLifetime::AboutToShutDown, this,
            &BGFXOffscreenWidget::OnDeviceShutdown);
}

BGFXOffscreenWidget::~BGFXOffscreenWidget()
{
    ReleaseFrameBuffer();
}

BGFXRenderer& BGFXOffscreenWidget::Renderer()
{
    return m_renderer;
}

bgfx::FrameBufferHandle BGFXOffscreenWidget::FrameBuffer()
{
    if (!bgfx::DeviceLifetime::Ensure()) {
        return {};
    }
    // Asked for anew each time: the scale also changes when a window moves to another screen.
    const QSize size = ViewportRect().size();
    if (size == m_frameSize) {
        return m_frameBuffer;
    }
    ReleaseFrameBuffer();
    if (size.isEmpty()) {
        return {};
    }
    m_frameBuffer = bgfx::createFrameBuffer(static_cast<std::uint16_t>(size.width()),
                                            static_cast<std::uint16_t>(size.height()), bgfx::TextureFormat::RGBA8);
    m_frameSize = size;
    m_renderer.SetFrameSize(size);
    return m_frameBuffer;
}

QRect BGFXOffscreenWidget::ViewportRect() const
{
    const int width = ToDevicePixels(this->width(), devicePixelRatioF());
    const int height = ToDevicePixels(this->height(), devicePixelRatioF());
    return {0, 0, width, width > 0 ? std::min(height, MaxPixels / width) : height};
}

void BGFXOffscreenWidget::Flush()
{
    if (bgfx::DeviceLifetime::IsLost()) {
        update();
    }
    // On the picture itself: a copy of it would be one more pass over all pixels in every frame.
    m_renderer.SetPixelRatio(devicePixelRatioF());
    const QImage& picture = m_renderer.Picture();
    if (picture.isNull()) {
        return;
    }
    const QSize wanted(ToDevicePixels(width(), devicePixelRatioF()),
                       ToDevicePixels(height(), devicePixelRatioF()));
    QPainter painter(this);
    if (picture.size() == wanted) {
        painter.drawImage(QPointF(0.0, 0.0), picture);
    } else {
        painter.drawImage(rect(), picture);
    }
}

void BGFXOffscreenWidget::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    update();
}

void BGFXOffscreenWidget::showEvent(QShowEvent* event)
{
    QWidget::showEvent(event);
    update();
}

void BGFXOffscreenWidget::hideEvent(QHideEvent* event)
{
    QWidget::hideEvent(event);
    ReleaseFrameBuffer();
}

void BGFXOffscreenWidget::OnDeviceShutdown()
{
    Q_EMIT CleanupRequested();
    ReleaseFrameBuffer();
    update();
}

void BGFXOffscreenWidget::ReleaseFrameBuffer()
{
    bgfx::destroy(m_frameBuffer);
    m_frameBuffer = {};
    m_frameSize = {};
    m_renderer.SetFrameSize({});
}

} // namespace vantoraudio::vantor3DQt
