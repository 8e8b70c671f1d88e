#include "render/vantor3DQt/Stipple.h"

#include "render/bgfx/Pixels.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace vantoraudio::vantor3DQt {
namespace {

using vantor3D::Line;

struct Point
{
    double x = 0.0;
    double y = 0.0;
};

/** A part of a line: 0 is its start, 1 its end. */
struct Part
{
    double from = 0.0;
    double to = 1.0;
};

Point ToPixels(const bgfx::View& view, const std::array<float, 3>& scene)
{
    const QMatrix4x4& matrix = view.transform;
    const auto row = [&](int i) {
        return double(matrix(i, 0)) * double(scene[0]) + double(matrix(i, 1)) * double(scene[1]) +
               double(matrix(i, 2)) * double(scene[2]) + double(matrix(i, 3));
    };
    return {(row(0) + 1.0) * 0.5 * view.viewport.width(), (row(1) + 1.0) * 0.5 * view.viewport.height()};
}

/** Keeps of `part` what lies between 0 and `limit` on one axis. */
void Clip(Part& part, double start, double end, double limit)
{
    const double way = end - start;
    if (way == 0.0) {
        if (start < 0.0 || start > limit) {
            part.to = part.from - 1.0;
        }
        return;
    }
    const auto [enter, leave] = std::minmax({-start / way, (limit - start) / way});
    part.from = std::max(part.from, enter);
    part.to = std::min(part.to, leave);
}

std::optional<Part> VisiblePart(Point start, Point end, const QRect& viewport)
{
    Part part;
    Clip(part, start.x, end.x, viewport.width());
    Clip(part, start.y, end.y, viewport.height());
    // Also false for what is not a number.
    return part.from < part.to ? std::optional(part) : std::nullopt;
}

std::array<float, 3> Between(const Line& line, double t)
{
    std::array<float, 3> point{};
    for (std::size_t i = 0; i < point.size(); ++i) {
        const double start = double(line.start[i]);
        point[i] = static_cast<float>(start + (double(line.end[i]) - start) * t);
    }
    return point;
}

bool IsOn(std::uint16_t pattern, double cell)
{
    return ((pattern >> static_cast<int>(std::fmod(cell, 16.0))) & 1) != 0;
}

bool IsFinite(const Line& line)
{
    const auto& [start, end, color] = line;
    return bgfx::AreFinite(start[0], start[1], start[2], end[0], end[1], end[2]);
}

} // namespace

std::vector<Line> CutDashes(const Line& line, const LineStipple& stipple, const bgfx::View& view)
{
    if (!IsFinite(line)) {
        return {};
    }
    const Point start = ToPixels(view, line.start);
    const Point end = ToPixels(view, line.end);
    const std::optional<Part> visible = VisiblePart(start, end, view.viewport);
    const double length = std::max(std::fabs(end.x - start.x), std::fabs(end.y - start.y));
    if (!visible || !bgfx::AreFinite(length)) {
        return {};
    }

    // A cell is the stretch of one bit.
    const double cellLength = std::clamp(stipple.factor, 1, 256);
    const double firstCell = std::floor(visible->from * length / cellLength);
    const double lastCell = std::ceil(visible->to * length / cellLength);
    const auto partAt = [&](double cell) {
        return std::clamp(cell * cellLength / length, visible->from, visible->to);
    };
    std::vector<Line> dashes;
    // Cells have whole numbers; where a line is so long that doubles skip some, nothing sensible can be drawn.
    if (lastCell > 1e15) {
        return dashes;
    }
    for (double cell = firstCell; cell < lastCell;) {
        const double begin = cell;
        while (cell < lastCell && IsOn(stipple.pattern, cell)) {
            ++cell;
        }
        if (cell > begin) {
            dashes.push_back({Between(line, partAt(begin)), Between(line, partAt(cell)), line.color});
        } else {
            ++cell;
        }
    }
    return dashes;
}

} // namespace vantoraudio::vantor3DQt
