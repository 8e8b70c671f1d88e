#include "render/bgfx/device/Geometry.h"

#include <algorithm>
#include <cstring>

namespace vantoraudio::bgfx::device {

PixelBox ClipToPicture(const QRect& viewport, QSize picture)
{
    const int top = picture.height() - viewport.y();
    return {std::max(0, viewport.x()), std::min(picture.width(), viewport.x() + viewport.width()),
            std::max(0, top - viewport.height()), std::min(picture.height(), top)};
}

WindowVertices::WindowVertices(const Draw& draw, const View& view, QSize picture)
    : m_draw(draw)
    , m_transform(view.transform)
    , m_columns(view.transform, view.viewport)
    , m_bottom(picture.height() - view.viewport.y() - view.viewport.height())
    , m_height(view.viewport.height())
{
}

WindowPoint WindowVertices::At(std::size_t vertex) const
{
    std::array<float, 3> position{};
    std::memcpy(position.data(), &m_draw.vertices[vertex * m_draw.layout.getStride()],
                std::min<std::size_t>(m_draw.layout.ColorOffset(), sizeof(position)));
    // Column by column; element access by row and column would cost a check of the matrix's kind each time.
    const float* matrix = m_transform.constData();
    const auto row = [&](std::size_t i) {
        return double(matrix[i]) * double(position[0]) + double(matrix[i + 4]) * double(position[1]) +
               double(matrix[i + 8]) * double(position[2]) + double(matrix[i + 12]);
    };
    const bool isUpright = matrix[4] == 0.0F && matrix[8] == 0.0F;
    return {isUpright ? m_columns.At(position[0]) : m_columns.OfNormalised(row(0)),
            m_bottom + (row(1) + 1.0) * 0.5 * m_height};
}

std::array<std::uint8_t, 4> WindowVertices::ColorAt(std::size_t vertex) const
{
    std::array<std::uint8_t, 4> color{};
    if (m_draw.layout.hasColor) {
        std::memcpy(color.data(),
                    &m_draw.vertices[vertex * m_draw.layout.getStride() + m_draw.layout.ColorOffset()],
                    color.size());
    }
    return color;
}

} // namespace vantoraudio::bgfx::device
