#pragma once

#include <QtCore/QRect>
#include <QtGui/QMatrix4x4>

#include <cmath>

namespace vantoraudio::bgfx {

/** Which pixel column an x of the scene lies in. Those who choose vertices and those who draw them both ask here,
 * so they never differ. */
class PixelColumns
{
public:
    PixelColumns() = default;
    PixelColumns(const QMatrix4x4& transform, const QRect& viewport)
        : m_scale(double(transform(0, 0)))
        , m_offset(double(transform(0, 3)))
        , m_left(viewport.x())
        , m_width(viewport.width())
    {
    }

    [[nodiscard]] int Width() const { return m_width; }
    /** Whether nothing shows: there is no column, or all of the scene lies in one place. */
    [[nodiscard]] bool IsEmpty() const
    {
        return m_width <= 0 || !std::isfinite(m_scale) || !std::isfinite(m_offset);
    }
    /** The column of an x of the scene, and behind the point the share of the column that lies left of it. */
    [[nodiscard]] double At(float x) const { return OfNormalised(m_scale * double(x) + m_offset); }
    /** The same for an x that is transformed already. */
    [[nodiscard]] double OfNormalised(double x) const { return m_left + (x + 1.0) * 0.5 * m_width; }

    friend bool operator==(const PixelColumns&, const PixelColumns&) = default;

private:
    double m_scale = 0.0;
    double m_offset = 0.0;
    int m_left = 0;
    int m_width = 0;
};

} // namespace vantoraudio::bgfx
