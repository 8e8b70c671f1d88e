#include "render/vantor3DQt/BGFXOffscreenWidget.h"

#include "render/bgfx/DrawingDevice.h"

#include <QtGui/QBackingStore>
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
    connect(&bgfx::DrawingDevice::Get(), &bgfx::DrawingDevice::PictureArrived, this,
            [this](const QImage* picture) {
                if (picture == &m_picture) {
                    update();
                }
            });
    bgfx::DrawingDevice::Get().AddView();
}

BGFXOffscreenWidget::~BGFXOffscreenWidget()
{
    bgfx::DrawingDevice::Get().RemoveView();
}

QImage* BGFXOffscreenWidget::FrameBuffer()
{
    if (!bgfx::DrawingDevice::Get().Ensure()) {
        return nullptr;
    }
    // Asked for again each time: the scale also changes when a window moves to another screen.
    const QSize size = ViewportRect().size();
    const bool isNew = size != m_picture.size();
    m_renderer.SetMayLag(!isNew && IsPaintedOnScreen());
    if (isNew) {
        m_picture = QImage(size, QImage::Format_RGBA8888);
        m_picture.fill(Qt::transparent);
    }
    return m_picture.isNull() ? nullptr : &m_picture;
}

bool BGFXOffscreenWidget::IsPaintedOnScreen() const
{
    QPoint offset;
    QBackingStore* screen = backingStore();
    return isVisible() && screen && redirected(&offset) == screen->paintDevice();
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
    bgfx::DrawingDevice::Get().Forget(&m_picture);
    m_picture = {};
}

void BGFXOffscreenWidget::OnDeviceShutdown()
{
    Q_EMIT CleanupRequested();
    update();
}

} // namespace vantoraudio::vantor3DQt
