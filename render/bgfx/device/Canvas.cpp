#include "render/bgfx/device/Canvas.h"

#include "render/bgfx/Pixels.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantoraudio::bgfx::device {
namespace {

Rgba Between(const Rgba& start, const Rgba& end, double t)
{
    Rgba color{};
    for (std::size_t i = 0; i < color.size(); ++i) {
        color[i] = start[i] + (end[i] - start[i]) * static_cast<float>(t);
    }
    return color;
}

/** A colour that comes over what is there. */
class Ink
{
public:
    explicit Ink(const Rgba& color)
        : m_color(color)
        , m_alpha(std::clamp(color[3], 0.0F, 1.0F))
        , m_opaque{ToByte(color[0]), ToByte(color[1]), ToByte(color[2]), ToByte(color[3])}
    {
    }

    void Cover(Pixel& pixel) const
    {
        if (m_alpha >= 1.0F) {
            pixel = m_opaque;
            return;
        }
        Mix(pixel.red, m_color[0] * m_alpha);
        Mix(pixel.green, m_color[1] * m_alpha);
        Mix(pixel.blue, m_color[2] * m_alpha);
        Mix(pixel.alpha, m_color[3]);
    }

private:
    void Mix(std::uint8_t& channel, float source) const
    {
        channel = ToByte(source + float(channel) / 255.0F * (1.0F - m_alpha));
    }

    Rgba m_color;
    float m_alpha;
    Pixel m_opaque;
};

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

Canvas::Canvas(QImage& picture)
    : m_width(picture.width()), m_height(picture.height()), m_pixels(reinterpret_cast<Pixel*>(picture.bits()))
{
}

void Canvas::Fill(const PixelBox& box, std::uint32_t rgba)
{
    if (box.IsEmpty()) {
        return;
    }
    const auto byte = [&](int shift) { return static_cast<std::uint8_t>(rgba >> shift); };
    for (int y = box.bottom; y < box.top; ++y) {
        std::fill_n(&At(box.left, y), box.right - box.left, Pixel{byte(24), byte(16), byte(8), byte(0)});
    }
}

void Canvas::FillColumns(const StripColumns& columns, const Rgba& color)
{
    const Ink ink(color);
    // Row by row, as the pixels lie in memory.
    const PixelBox bounds = columns.Bounds();
    for (int row = bounds.bottom; row < bounds.top; ++row) {
        Pixel* pixel = &At(bounds.left, row);
        for (const RowSpan& span : columns.rows) {
            if (span.Contains(row)) {
                ink.Cover(*pixel);
            }
            ++pixel;
        }
    }
}

void Canvas::DrawLine(const WindowPoint& start, const WindowPoint& end, const PixelBox& box, const Rgba& color)
{
    if (box.IsEmpty() || !IsFinite(start) || !IsFinite(end)) {
        return;
    }
    const Ink ink(color);
    const double dx = end.x - start.x;
    const double dy = end.y - start.y;
    const bool steep = std::fabs(dy) > std::fabs(dx);
    const double from = steep ? start.y : start.x;
    const double to = steep ? end.y : end.x;
    const double across = steep ? start.x : start.y;
    const double slope = steep ? dx / dy : dy / dx;
    const int lower = steep ? box.bottom : box.left;
    const int upper = steep ? box.top : box.right;
    const int acrossLower = steep ? box.left : box.bottom;
    const int acrossUpper = steep ? box.right : box.top;

    const int last = FirstCentre(std::max(from, to), lower, upper);
    for (int i = FirstCentre(std::min(from, to), lower, upper); i < last; ++i) {
        const double position = across + (i + 0.5 - from) * slope;
        if (position >= acrossLower && position < acrossUpper) {
            const int j = static_cast<int>(position);
            ink.Cover(steep ? At(j, i) : At(i, j));
        }
    }
}

void Canvas::DrawTriangle(const std::array<Corner, 3>& corners, const PixelBox& box)
{
    if (box.IsEmpty() || !std::ranges::all_of(corners, IsFinite, &Corner::at)) {
        return;
    }
    const bool isFlat = corners[0].color == corners[1].color && corners[1].color == corners[2].color;
    const Ink flatInk(corners[0].color);
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
            ends[found++] = {Crossing(a.at, b.at, y), Between(a.color, b.color, t)};
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
            (isFlat ? flatInk : Ink(Between(ends[0].second, ends[1].second, t))).Cover(At(column, row));
        }
    }
}

} // namespace vantoraudio::bgfx::device
