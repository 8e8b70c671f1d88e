#include "render/bgfx/device/WindowLines.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace vantoraudio::bgfx::device {
namespace {

/**
 * Adds a line in window coordinates, moved by a hair across its direction. A line right on the border between two
 * pixels belongs to either by OpenGL's rules, and on the picture's left edge some drivers drop it; so it falls to
 * the pixel behind the border everywhere, as the Software device has it. Along its direction it stays, lest its
 * end comes to lie inside a pixel's diamond, whose pixel OpenGL would leave out.
 */
void AppendLine(std::vector<LineVertex>& lines, LineVertex start, LineVertex end)
{
    constexpr float Hair = 1.0F / 64.0F;
    const bool steep = std::fabs(end.y - start.y) > std::fabs(end.x - start.x);
    for (LineVertex* vertex : {&start, &end}) {
        (steep ? vertex->x : vertex->y) += Hair;
        lines.push_back(*vertex);
    }
}

std::optional<LineVertex> ToLineVertex(const DrawCall& call, int targetHeight, std::size_t i)
{
    const std::uint32_t index = call.indices.empty() ? static_cast<std::uint32_t>(i) : call.indices[i];
    const ClipPoint clip = Transform(call.transform, PositionReader(call.layout, call.vertices)(index));
    const WindowPoint window = ToWindow(call.viewport, targetHeight, clip);
    LineVertex vertex{float(window.x), float(window.y)};
    if (!std::isfinite(vertex.x) || !std::isfinite(vertex.y)) {
        return std::nullopt;
    }
    if (call.layout.has(Attrib::Color0)) {
        const std::size_t offset =
            std::size_t{index} * call.layout.getStride() + call.layout.getOffset(Attrib::Color0);
        std::ranges::copy(call.vertices.subspan(offset, vertex.color.size()), vertex.color.begin());
    }
    return vertex;
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

std::vector<LineVertex> ToWindowLines(const DrawCall& call, int targetHeight)
{
    const std::size_t count = call.indices.empty() ? call.vertexCount : call.indices.size();
    const std::size_t step = call.topology == Topology::Lines ? 2 : 1;
    std::vector<LineVertex> lines;
    for (std::size_t i = 0; i + 1 < count; i += step) {
        const auto start = ToLineVertex(call, targetHeight, i);
        const auto end = ToLineVertex(call, targetHeight, i + 1);
        if (start && end) {
            AppendLine(lines, *start, *end);
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
