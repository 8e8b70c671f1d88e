#pragma once

#include <QtCore/QRect>
#include <QtGui/QMatrix4x4>

#include <algorithm>
#include <cmath>
#include <cstdint>

/** From numbers to pixels: one rule for those who choose vertices and for all devices. */
namespace vantoraudio::bgfx {

/** Whether none of the numbers is infinite or not-a-number. */
template<typename... Numbers>
[[nodiscard]] bool AreFinite(Numbers... numbers)
{
    return (std::isfinite(numbers) && ...);
}

/** A component between 0 and 1 as a byte. Written so that what is not a number becomes 0. */
[[nodiscard]] inline std::uint8_t ToByte(float component)
{
    return component > 0.0F ? static_cast<std::uint8_t>(std::lround(std::min(component, 1.0F) * 255.0F))
                            : std::uint8_t{0};
}

/** The first whole pixel whose centre is at or behind `position`, kept between two bounds. */
[[nodiscard]] inline int FirstCentre(double position, int lower, int upper)
{
    return static_cast<int>(std::clamp(std::ceil(position - 0.5), double(lower), double(upper)));
}

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
