#include "render/vantor3DQt/BGFXOffscreenWidget.h"

#include "render/bgfx/DrawingDevice.h"

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
    const int limit = bgfx::DrawingDevice::Get().MaxSide();
    return limit > 0 ? limit : UsualMaxSide;
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
    connect(&bgfx::DrawingDevice::Get(), &bgfx::DrawingDevice::AboutToShutDown, this,
            &BGFXOffscreenWidget::OnDeviceShutdown);
}

QImage* BGFXOffscreenWidget::FrameBuffer()
{
    if (!bgfx::DrawingDevice::Get().Ensure()) {
        return nullptr;
    }
    // Asked for again each time: the scale also changes when a window moves to another screen.
    const QSize size = ViewportRect().size();
    if (size != m_picture.size()) {
        m_picture = QImage(size, QImage::Format_RGBA8888);
        m_picture.fill(Qt::transparent);
    }
    return m_picture.isNull() ? nullptr : &m_picture;
}

QRect BGFXOffscreenWidget::ViewportRect() const
{
    const int width = ToDevicePixels(this->width(), devicePixelRatioF());
    const int height = ToDevicePixels(this->height(), devicePixelRatioF());
    return {0, 0, width, width > 0 ? std::min(height, MaxPixels / width) : height};
}

void BGFXOffscreenWidget::Flush()
{
    if (bgfx::DrawingDevice::Get().IsLost()) {
        update();
    }
    if (m_picture.isNull()) {
        return;
    }
    m_picture.setDevicePixelRatio(devicePixelRatioF());
    const QSize wanted(ToDevicePixels(width(), devicePixelRatioF()),
                       ToDevicePixels(height(), devicePixelRatioF()));
    QPainter painter(this);
    if (m_picture.size() == wanted) {
        painter.drawImage(QPointF(0.0, 0.0), m_picture);
    } else {
        painter.drawImage(rect(), m_picture);
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
    m_picture = {};
}

void BGFXOffscreenWidget::OnDeviceShutdown()
{
    Q_EMIT CleanupRequested();
    update();
}

} // namespace vantoraudio::vantor3DQt
