#include "render/bgfx/device/WindowLines.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace vantoraudio::bgfx::device {
namespace {

/** An end of a line, before it is rounded to what the driver takes. */
struct LineEnd
{
    WindowPoint at;
    /** As in the vertices, 0 to 255. */
    std::array<float, 4> color{};
};

LineEnd Between(const LineEnd& start, const LineEnd& end, double t)
{
    LineEnd between{{start.at.x + (end.at.x - start.at.x) * t, start.at.y + (end.at.y - start.at.y) * t}};
    for (std::size_t i = 0; i < between.color.size(); ++i) {
        between.color[i] = start.color[i] + (end.color[i] - start.color[i]) * static_cast<float>(t);
    }
    return between;
}

/**
 * Moves a line by a hair across its direction. A line right on the border between two pixels belongs to either by
 * OpenGL's rules, and on the picture's left edge some drivers drop it; so it falls to the pixel behind the border
 * everywhere, as the Software device has it. Along its direction it stays, lest its end comes to lie inside a
 * pixel's diamond, whose pixel OpenGL would leave out.
 */
void MoveOffTheBorder(LineEnd& start, LineEnd& end)
{
    constexpr double Hair = 1.0 / 64.0;
    const bool steep = std::fabs(end.at.y - start.at.y) > std::fabs(end.at.x - start.at.x);
    double WindowPoint::*const across = steep ? &WindowPoint::x : &WindowPoint::y;
    start.at.*across += Hair;
    end.at.*across += Hair;
}

/** Moves ends that lie outside two bounds onto the nearer one. False: the whole line lies outside. */
bool Cut(LineEnd& start, LineEnd& end, double WindowPoint::*axis, double lower, double upper)
{
    const double from = start.at.*axis;
    const double to = end.at.*axis;
    if (std::max(from, to) < lower || std::min(from, to) > upper) {
        return false;
    }
    const auto cutAt = [&, whole = std::pair(start, end)](LineEnd& moved, double position) {
        const double bound = std::clamp(position, lower, upper);
        if (bound != position) {
            moved = Between(whole.first, whole.second, (bound - from) / (to - from));
            moved.at.*axis = bound;
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
bool CutToBox(LineEnd& start, LineEnd& end, const PixelBox& box)
{
    constexpr double Margin = 2.0;
    return !box.IsEmpty() && Cut(start, end, &WindowPoint::x, box.left - Margin, box.right + Margin) &&
           Cut(start, end, &WindowPoint::y, box.bottom - Margin, box.top + Margin);
}

LineVertex ToLineVertex(const LineEnd& end)
{
    LineVertex vertex{float(end.at.x), float(end.at.y)};
    std::ranges::transform(end.color, vertex.color.begin(),
                           [](float value) { return static_cast<std::uint8_t>(std::lround(value)); });
    return vertex;
}

std::optional<LineEnd> EndAt(const DrawCall& call, int targetHeight, std::size_t i)
{
    const std::uint32_t index = call.indices.empty() ? static_cast<std::uint32_t>(i) : call.indices[i];
    const ClipPoint clip = Transform(call.transform, PositionReader(call.layout, call.vertices)(index));
    LineEnd end{ToWindow(call.viewport, targetHeight, clip)};
    if (!std::isfinite(end.at.x) || !std::isfinite(end.at.y)) {
        return std::nullopt;
    }
    if (call.layout.has(Attrib::Color0)) {
        const std::size_t offset =
            std::size_t{index} * call.layout.getStride() + call.layout.getOffset(Attrib::Color0);
        std::ranges::copy(call.vertices.subspan(offset, end.color.size()), end.color.begin());
    }
    return end;
}

} // namespace

VertexLayout LineVertexLayout()
{
    VertexLayout layout;
    layout.begin()
        .add(Attrib::Position, 2, AttribType::Float)
        .add(Attrib::Color0, 4, AttribType::Uint8, true)
        .end();
    return layout;
}

std::vector<LineVertex> ToWindowLines(const DrawCall& call, int targetWidth, int targetHeight)
{
    const PixelBox box = ClipToTarget(call.viewport, targetWidth, targetHeight);
    const std::size_t count = call.indices.empty() ? call.vertexCount : call.indices.size();
    const std::size_t step = call.topology == Topology::Lines ? 2 : 1;
    std::vector<LineVertex> lines;
    for (std::size_t i = 0; i + 1 < count; i += step) {
        auto start = EndAt(call, targetHeight, i);
        auto end = EndAt(call, targetHeight, i + 1);
        if (!start || !end) {
            continue;
        }
        MoveOffTheBorder(*start, *end);
        if (CutToBox(*start, *end, box)) {
            lines.push_back(ToLineVertex(*start));
            lines.push_back(ToLineVertex(*end));
        }
    }
    return lines;
}

Matrix FromWindow(const Rect& viewport, int targetHeight)
{
    const float width = float(std::max(1, viewport.width));
    const float height = float(std::max(1, viewport.height));
    const float bottom = float(targetHeight - viewport.y - viewport.height);
    Matrix matrix{};
    matrix[0] = 2.0F / width;
    matrix[5] = 2.0F / height;
    matrix[12] = -1.0F - 2.0F * float(viewport.x) / width;
    matrix[13] = -1.0F - 2.0F * bottom / height;
    matrix[15] = 1.0F;
    return matrix;
}

} // namespace vantoraudio::bgfx::device
