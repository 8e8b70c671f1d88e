#include "render/bgfx/device/Canvas.h"

#include <algorithm>
#include <cmath>

namespace vantoraudio::bgfx::device {
namespace {

/** Written so that what is not a number becomes 0. */
std::uint8_t ToByte(float value)
{
    return value > 0.0F ? static_cast<std::uint8_t>(std::lround(std::min(value, 1.0F) * 255.0F)) : std::uint8_t(0);
}

bool IsFinite(const Corner& corner)
{
    return std::isfinite(corner.at.x) && std::isfinite(corner.at.y);
}

/** The first whole pixel whose centre is at or behind `position`, kept between two bounds. */
int FirstCentre(double position, int lower, int upper)
{
    return static_cast<int>(std::clamp(std::ceil(position - 0.5), double(lower), double(upper)));
}

bool Contains(double value, int lower, int upper)
{
    return value >= lower && value < upper;
}

std::uint8_t Mix(float source, std::uint8_t destination, float sourceFactor, float alpha)
{
    return ToByte(source * sourceFactor + float(destination) / 255.0F * (1.0F - alpha));
}

void Put(Pixel& pixel, const Rgba& color, const Brush& brush)
{
    const float alpha = brush.blend == Blend::None ? 1.0F : std::clamp(color[3], 0.0F, 1.0F);
    if (brush.writeRgb) {
        pixel.red = Mix(color[0], pixel.red, alpha, alpha);
        pixel.green = Mix(color[1], pixel.green, alpha, alpha);
        pixel.blue = Mix(color[2], pixel.blue, alpha, alpha);
    }
    if (brush.writeAlpha) {
        pixel.alpha = Mix(color[3], pixel.alpha, brush.blend == Blend::Alpha ? alpha : 1.0F, alpha);
    }
}

/** One colour that replaces what was there. */
struct SolidPaint
{
    Pixel pixel;

    void operator()(Pixel& target, const Rgba&) const { target = pixel; }
    static Rgba Between(const Rgba& start, const Rgba&, double) { return start; }
};

struct BlendingPaint
{
    Brush brush;

    void operator()(Pixel& target, const Rgba& color) const { Put(target, color, brush); }
    static Rgba Between(const Rgba& start, const Rgba& end, double t)
    {
        Rgba color{};
        for (std::size_t i = 0; i < color.size(); ++i) {
            color[i] = start[i] + (end[i] - start[i]) * static_cast<float>(t);
        }
        return color;
    }
};

bool IsSolid(const Brush& brush, const Rgba& color)
{
    return brush.writeRgb && brush.writeAlpha && (brush.blend == Blend::None || color[3] >= 1.0F);
}

/** Where an edge meets the row of centres at `y`. Both triangles at an edge get the same answer, so that between
 *  them no pixel is left out or drawn twice. */
double Crossing(WindowPoint a, WindowPoint b, double y)
{
    if (b.y < a.y) {
        std::swap(a, b);
    }
    return a.x + (y - a.y) * ((b.x - a.x) / (b.y - a.y));
}

} // namespace

Pixel Quantize(const Rgba& color)
{
    return {ToByte(color[0]), ToByte(color[1]), ToByte(color[2]), ToByte(color[3])};
}

Canvas::Canvas(int width, int height)
    : m_width(width), m_height(height), m_pixels(std::size_t(width) * std::size_t(height))
{
}

void Canvas::Fill(const PixelBox& box, Pixel pixel)
{
    if (box.IsEmpty()) {
        return;
    }
    for (int y = box.bottom; y < box.top; ++y) {
        std::fill_n(&At(box.left, y), box.right - box.left, pixel);
    }
}

template<typename Paint>
void Canvas::PaintColumns(const StripColumns& columns, const Rgba& color, Paint paint)
{
    // Row by row, as the pixels lie in memory.
    const PixelBox bounds = columns.Bounds();
    for (int row = bounds.bottom; row < bounds.top; ++row) {
        Pixel* pixel = &At(bounds.left, row);
        for (const RowSpan& span : columns.rows) {
            if (span.Contains(row)) {
                paint(*pixel, color);
            }
            ++pixel;
        }
    }
}

void Canvas::FillColumns(const StripColumns& columns, const Rgba& color, const Brush& brush)
{
    if (IsSolid(brush, color)) {
        PaintColumns(columns, color, SolidPaint{Quantize(color)});
    } else {
        PaintColumns(columns, color, BlendingPaint{brush});
    }
}

template<typename Paint>
void Canvas::TraceLine(const Corner& start, const Corner& end, const PixelBox& box, Paint paint)
{
    const double dx = end.at.x - start.at.x;
    const double dy = end.at.y - start.at.y;
    const bool steep = std::fabs(dy) > std::fabs(dx);
    const double from = steep ? start.at.y : start.at.x;
    const double to = steep ? end.at.y : end.at.x;
    const double across = steep ? start.at.x : start.at.y;
    const double slope = steep ? dx / dy : dy / dx;
    const int lower = steep ? box.bottom : box.left;
    const int upper = steep ? box.top : box.right;
    const int acrossLower = steep ? box.left : box.bottom;
    const int acrossUpper = steep ? box.right : box.top;

    const int last = FirstCentre(std::max(from, to), lower, upper);
    for (int i = FirstCentre(std::min(from, to), lower, upper); i < last; ++i) {
        const double way = i + 0.5 - from;
        const double position = across + way * slope;
        if (!Contains(position, acrossLower, acrossUpper)) {
            continue;
        }
        const int j = static_cast<int>(position);
        paint(steep ? At(j, i) : At(i, j), Paint::Between(start.color, end.color, way / (to - from)));
    }
}

void Canvas::DrawLine(const Corner& start, const Corner& end, const PixelBox& box, const Brush& brush)
{
    if (box.IsEmpty() || !IsFinite(start) || !IsFinite(end)) {
        return;
    }
    if (start.color == end.color && IsSolid(brush, start.color)) {
        TraceLine(start, end, box, SolidPaint{Quantize(start.color)});
    } else {
        TraceLine(start, end, box, BlendingPaint{brush});
    }
}

template<typename Paint>
void Canvas::FillTriangle(const std::array<Corner, 3>& corners, const PixelBox& box, Paint paint)
{
    const auto [lowest, highest] = std::minmax({corners[0].at.y, corners[1].at.y, corners[2].at.y});
    const int lastRow = FirstCentre(highest, box.bottom, box.top);
    for (int row = FirstCentre(lowest, box.bottom, box.top); row < lastRow; ++row) {
        const double y = row + 0.5;
        // A row of centres crosses two of the three edges: where it enters and where it leaves.
        std::array<std::pair<double, Rgba>, 2> ends;
        std::size_t found = 0;
        for (std::size_t i = 0; i < 3 && found < 2; ++i) {
            const Corner& a = corners[i];
            const Corner& b = corners[(i + 1) % 3];
            if ((a.at.y <= y) == (b.at.y <= y)) {
                continue;
            }
            const double t = (y - a.at.y) / (b.at.y - a.at.y);
            ends[found++] = {Crossing(a.at, b.at, y), Paint::Between(a.color, b.color, t)};
        }
        if (found < 2) {
            continue;
        }
        if (ends[1].first < ends[0].first) {
            std::swap(ends[0], ends[1]);
        }
        const double width = ends[1].first - ends[0].first;
        const int lastColumn = FirstCentre(ends[1].first, box.left, box.right);
        for (int column = FirstCentre(ends[0].first, box.left, box.right); column < lastColumn; ++column) {
            const double t = (column + 0.5 - ends[0].first) / width;
            paint(At(column, row), Paint::Between(ends[0].second, ends[1].second, t));
        }
    }
}

void Canvas::DrawTriangle(const std::array<Corner, 3>& corners, const PixelBox& box, const Brush& brush)
{
    if (box.IsEmpty() || !std::ranges::all_of(corners, IsFinite)) {
        return;
    }
    const bool flat = corners[0].color == corners[1].color && corners[1].color == corners[2].color;
    if (flat && IsSolid(brush, corners[0].color)) {
        FillTriangle(corners, box, SolidPaint{Quantize(corners[0].color)});
    } else {
        FillTriangle(corners, box, BlendingPaint{brush});
    }
}

} // namespace vantoraudio::bgfx::device
