#pragma once

#include "WaveformTestAccess.h"
#include "render/bgfx/DrawingDevice.h"

#include <QtGui/QImage>
#include <QtGui/QPixmap>
#include <QtWidgets/QWidget>

#include <cmath>
#include <functional>

namespace vantoraudio::vantorAudioEngine::UI {

/** A grabbed widget, asked for in the widget's own (logical) pixels, whatever the screen's scale. */
class WaveformPicture
{
public:
    explicit WaveformPicture(QWidget& widget)
        : m_image(widget.grab().toImage().convertToFormat(QImage::Format_ARGB32))
    {
    }

    [[nodiscard]] const QImage& Image() const { return m_image; }
    [[nodiscard]] QColor At(double x, double y) const
    {
        return m_image.pixelColor(Device(x, m_image.width()), Device(y, m_image.height()));
    }

    /** Share of device pixels in the rectangle, edges included, that have about this colour. */
    [[nodiscard]] double ShareOf(const QColor& color, const QRectF& area) const
    {
        int matching = 0;
        int all = 0;
        for (int y = Device(area.top(), m_image.height()); y <= Device(area.bottom(), m_image.height()); ++y) {
            for (int x = Device(area.left(), m_image.width()); x <= Device(area.right(), m_image.width()); ++x) {
                ++all;
                matching += IsAbout(m_image.pixelColor(x, y), color) ? 1 : 0;
            }
        }
        return static_cast<double>(matching) / all;
    }

    /** The greatest share of the colour in one row of device pixels at most a logical pixel from `y`. */
    [[nodiscard]] double ShareInRow(const QColor& color, double y, double left, double right) const
    {
        return Best([&](double offset) {
            return ShareOf(color, {QPointF(left, y + offset), QPointF(right, y + offset)});
        });
    }

    [[nodiscard]] double ShareInColumn(const QColor& color, double x, double top, double bottom) const
    {
        return Best([&](double offset) {
            return ShareOf(color, {QPointF(x + offset, top), QPointF(x + offset, bottom)});
        });
    }

    [[nodiscard]] static bool IsAbout(const QColor& a, const QColor& b)
    {
        const auto isNear = [](int x, int y) { return std::abs(x - y) <= 3; };
        return isNear(a.red(), b.red()) && isNear(a.green(), b.green()) && isNear(a.blue(), b.blue());
    }

private:
    [[nodiscard]] int Device(double logical, int size) const
    {
        return std::clamp(static_cast<int>(std::floor(logical * m_image.devicePixelRatio())), 0, size - 1);
    }

    [[nodiscard]] double Best(const std::function<double(double)>& shareAt) const
    {
        double best = 0.0;
        for (double offset = -1.0; offset <= 1.0; offset += 0.5 / m_image.devicePixelRatio()) {
            best = std::max(best, shareAt(offset));
        }
        return best;
    }

    QImage m_image;
};

/** A 400 x 200 diagram of 10 seconds at 1000 Hz in colours that no two things share. */
inline void PrepareForPictures(BGFXWaveformDiagramWidget& diagram)
{
    diagram.resize(400, 200);
    diagram.m_backgroundColor = QColor(0, 0, 60);
    diagram.m_gridColor = QColor(0, 200, 0);
    diagram.m_waveformColor = QColor(220, 0, 0);
    diagram.m_selectionColor = QColor(200, 200, 0);
    diagram.m_positionMarkerColor = QColor(255, 255, 255);
    QAudioFormat format;
    format.setSampleRate(1000);
    diagram.SetAudioFormat(format);
    diagram.SetDuration(10.0);
}

inline bool UseDevice(bgfx::device::Kind device)
{
    return bgfx::DrawingDevice::Get().Use(device);
}

} // namespace vantoraudio::vantorAudioEngine::UI
