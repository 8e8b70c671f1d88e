#include "render/bgfx/device/Geometry.h"

#include <algorithm>

namespace vantoraudio::bgfx::device {

PixelBox ClipToTarget(const Rect& rect, int targetWidth, int targetHeight)
{
    const int top = targetHeight - rect.y;
    return {std::max(0, rect.x), std::min(targetWidth, rect.x + rect.width), std::max(0, top - rect.height),
            std::min(targetHeight, top)};
}

PositionReader::PositionReader(const VertexLayout& layout, std::span<const std::uint8_t> bytes)
    : m_data(bytes.data() + layout.getOffset(Attrib::Position)), m_stride(layout.getStride())
{
    std::uint8_t num = 0;
    AttribType::Enum type = AttribType::Float;
    bool normalized = false;
    bool asInt = false;
    layout.decode(Attrib::Position, num, type, normalized, asInt);
    m_bytes = type == AttribType::Float ? std::min<std::size_t>(num, 3) * sizeof(float) : 0;
}

ClipPoint Transform(const Matrix& matrix, const ClipPoint& point)
{
    const auto row = [&](std::size_t i) {
        return double(matrix[i]) * point.x + double(matrix[i + 4]) * point.y + double(matrix[i + 8]) * point.z +
               double(matrix[i + 12]);
    };
    return {row(0), row(1), row(2)};
}

WindowPoint ToWindow(const Rect& viewport, int targetHeight, const ClipPoint& point)
{
    const double bottom = targetHeight - viewport.y - viewport.height;
    return {viewport.x + (point.x + 1.0) * 0.5 * viewport.width, bottom + (point.y + 1.0) * 0.5 * viewport.height};
}

} // namespace vantoraudio::bgfx::device
