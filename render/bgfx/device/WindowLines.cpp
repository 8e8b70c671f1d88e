#include "render/bgfx/device/WindowLines.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantoraudio::bgfx::device {
namespace {

WindowPoint Between(const WindowPoint& start, const WindowPoint& end, double t)
{
    return {start.x + (end.x - start.x) * t, start.y + (end.y - start.y) * t};
}

/**
 * Moves a line by a hair across its direction. A line right on the border between two pixels belongs to either by
 * OpenGL's rules, and on the picture's left edge some drivers drop it; so it goes to the pixel behind the border
 * everywhere, as the Software device has it. It is not moved along its direction: its end could then lie inside a
 * pixel's diamond, and OpenGL leaves that pixel out.
 */
void MoveOffTheBorder(WindowPoint& start, WindowPoint& end)
{
    constexpr double Hair = 1.0 / 64.0;
    const bool steep = std::fabs(end.y - start.y) > std::fabs(end.x - start.x);
    double WindowPoint::*const across = steep ? &WindowPoint::x : &WindowPoint::y;
    start.*across += Hair;
    end.*across += Hair;
}

/** Moves ends that lie outside two bounds onto the nearer one. False: the whole line lies outside. */
bool Cut(WindowPoint& start, WindowPoint& end, double WindowPoint::*axis, double lower, double upper)
{
    const double from = start.*axis;
    const double to = end.*axis;
    if (std::max(from, to) < lower || std::min(from, to) > upper) {
        return false;
    }
    const auto cutAt = [&, whole = std::pair(start, end)](WindowPoint& moved, double position) {
        const double bound = std::clamp(position, lower, upper);
        if (bound != position) {
            moved = Between(whole.first, whole.second, (bound - from) / (to - from));
            moved.*axis = bound;
        }
    };
    cutAt(start, from);
    cutAt(end, to);
    return true;
}

/**
 * Cuts back a line that reaches far outside the picture: Mesa 25 leaves out most pixels of a line of a million
 * pixels, Mesa 22 draws them. The ends come to lie a little outside, as OpenGL may leave out the pixel in which a
 * line ends.
 */
bool CutToBox(WindowPoint& start, WindowPoint& end, const PixelBox& box)
{
    constexpr double Margin = 2.0;
    return !box.IsEmpty() && Cut(start, end, &WindowPoint::x, box.left - Margin, box.right + Margin) &&
           Cut(start, end, &WindowPoint::y, box.bottom - Margin, box.top + Margin);
}

LineVertex ToLineVertex(const WindowPoint& point, const std::array<std::uint8_t, 4>& color)
{
    return {float(point.x), float(point.y), color};
}

} // namespace

std::vector<LineVertex> ToWindowLines(const Draw& draw, const View& view, QSize picture)
{
    const WindowVertices vertices(draw, view, picture);
    const PixelBox box = ClipToPicture(view.viewport, picture);
    const std::size_t step = draw.topology == Topology::Lines ? 2 : 1;
    std::vector<LineVertex> lines;
    for (std::size_t i = 0; i + 1 < vertices.Count(); i += step) {
        WindowPoint start = vertices.At(i);
        WindowPoint end = vertices.At(i + 1);
        if (!IsFinite(start) || !IsFinite(end)) {
            continue;
        }
        MoveOffTheBorder(start, end);
        if (CutToBox(start, end, box)) {
            lines.push_back(ToLineVertex(start, vertices.ColorAt(i)));
            lines.push_back(ToLineVertex(end, vertices.ColorAt(i)));
        }
    }
    return lines;
}

QMatrix4x4 FromWindow(const QRect& viewport, QSize picture)
{
    const float width = float(std::max(1, viewport.width()));
    const float height = float(std::max(1, viewport.height()));
    const float bottom = float(picture.height() - viewport.y() - viewport.height());
    QMatrix4x4 matrix;
    matrix(0, 0) = 2.0F / width;
    matrix(1, 1) = 2.0F / height;
    matrix(0, 3) = -1.0F - 2.0F * float(viewport.x()) / width;
    matrix(1, 3) = -1.0F - 2.0F * bottom / height;
    return matrix;
}

} // namespace vantoraudio::bgfx::device
