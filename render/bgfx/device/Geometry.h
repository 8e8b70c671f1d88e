#pragma once

#include "render/bgfx/Frame.h"
#include "render/bgfx/Pixels.h"

#include <QtCore/QSize>

#include <array>
#include <cstdint>

/** Where a frame's vertices lie on the picture. */
namespace vantoraudio::bgfx::device {

/** Window coordinates as OpenGL has them: pixels, y counts from the bottom, pixel centres at halves. */
struct WindowPoint
{
    double x = 0.0;
    double y = 0.0;
};

[[nodiscard]] inline bool IsFinite(const WindowPoint& point)
{
    return AreFinite(point.x, point.y);
}

/** A rectangle of whole pixels, upper bounds exclusive, y from the bottom. */
struct PixelBox
{
    int left = 0;
    int right = 0;
    int bottom = 0;
    int top = 0;

    [[nodiscard]] bool IsEmpty() const { return left >= right || bottom >= top; }
};

/** The part of `viewport` inside a picture of this size. */
[[nodiscard]] PixelBox ClipToPicture(const QRect& viewport, QSize picture);

/** The vertices of a draw on the picture. */
class WindowVertices
{
public:
    WindowVertices(const Draw& draw, const View& view, QSize picture);

    [[nodiscard]] std::size_t Count() const { return m_draw.VertexCount(); }
    /** Affine: the matrix's last row is taken as (0, 0, 0, 1). May be infinite or not-a-number. */
    [[nodiscard]] WindowPoint At(std::size_t vertex) const;
    /** The vertex's own colour, red first; transparent black for vertices that have none. */
    [[nodiscard]] std::array<std::uint8_t, 4> ColorAt(std::size_t vertex) const;

private:
    const Draw& m_draw;
    const QMatrix4x4& m_transform;
    PixelColumns m_columns;
    double m_bottom;
    double m_height;
};

} // namespace vantoraudio::bgfx::device
