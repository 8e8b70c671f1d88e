#pragma once

#include "render/vantor3DQt/BGFXRenderer.h"

#include <QtWidgets/QWidget>

namespace vantoraudio::vantor3DQt {

/**
 * A widget whose picture the drawing device draws off screen, in device pixels. A subclass draws in its
 * paintEvent(): Renderer().StartFrame(FrameBuffer()), drawing, Renderer().PresentSubmittedFrame(false), Flush().
 *
 * The frame buffer follows the widget's size and its screen's scale. It needs no window of the widget's own, so
 * docking, reparenting, hiding and showing lose nothing.
 *
 * On the screen a device may show the former frame for a moment; the widget is painted once more when the latest
 * one is there. All other pictures, as those of grab(), and the first one of each size are never late.
 */
class BGFXOffscreenWidget : public QWidget
{
    Q_OBJECT

public:
    explicit BGFXOffscreenWidget(QWidget* parent = nullptr, Qt::WindowFlags flags = {});
    ~BGFXOffscreenWidget() override;

Q_SIGNALS:
    /** The drawing device shuts down: drop what was created on it; the next frame creates it again. */
    void CleanupRequested();

protected:
    BGFXRenderer& Renderer() { return m_renderer; }
    /** The widget's picture, made or resized on demand to ViewportRect(); null while the widget is empty or
     * nothing can draw. Belongs to the widget, which gives its memory back while it is hidden. */
    QImage* FrameBuffer();
    /** (0, 0, width, height) in device pixels, rounded up so that the picture covers the widget. Cut back to what
     *  the device can draw; Flush() then stretches the picture. */
    QRect ViewportRect() const;
    /** The last presented picture, first row on top; null before the first and while hidden. */
    const QImage& Picture() const { return m_picture; }
    /** Paints the last presented picture onto the widget. Inside paintEvent() only. */
    void Flush();

    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    [[nodiscard]] bool IsPaintedOnScreen() const;
    void OnDeviceShutdown();

    BGFXRenderer m_renderer;
    QImage m_picture;
};

} // namespace vantoraudio::vantor3DQt
