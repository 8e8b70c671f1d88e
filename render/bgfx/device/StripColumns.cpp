#include "render/bgfx/device/StripColumns.h"

#include "render/bgfx/Pixels.h"

#include <algorithm>
#include <cmath>

namespace vantoraudio::bgfx::device {
namespace {

/** The line between two points, the left one first. */
class Line
{
public:
    Line(WindowPoint start, WindowPoint end) : m_start(start), m_end(end)
    {
        if (m_end.x < m_start.x) {
            std::swap(m_start, m_end);
        }
    }

    [[nodiscard]] double Left() const { return m_start.x; }
    [[nodiscard]] double Right() const { return m_end.x; }
    [[nodiscard]] bool Passes(double x) const { return m_start.x <= x && x < m_end.x; }
    /** Beyond the line's ends: the height of the nearer one. */
    [[nodiscard]] double HeightAt(double x) const
    {
        if (x <= m_start.x) {
            return m_start.y;
        }
        if (x >= m_end.x) {
            return m_end.y;
        }
        return m_start.y + (x - m_start.x) * ((m_end.y - m_start.y) / (m_end.x - m_start.x));
    }

private:
    WindowPoint m_start;
    WindowPoint m_end;
};

class Coverage
{
public:
    explicit Coverage(const PixelBox& box)
        : m_columns{box, std::vector<RowSpan>(box.IsEmpty() ? 0 : static_cast<std::size_t>(box.right - box.left))}
        , m_middles(m_columns.rows.size())
    {
    }

    void Add(const Line& line)
    {
        const PixelBox& box = m_columns.box;
        if (m_columns.rows.empty() || line.Right() < box.left || line.Left() >= box.right) {
            return;
        }
        const int first = static_cast<int>(std::max(std::floor(line.Left()), double(box.left)));
        const int last = static_cast<int>(std::min(std::floor(line.Right()), box.right - 1.0));
        for (int column = first; column <= last; ++column) {
            const auto index = static_cast<std::size_t>(column - box.left);
            Extend(m_columns.rows[index], CentresBetween(line.HeightAt(column), line.HeightAt(column + 1.0)));
            if (const double middle = column + 0.5; line.Passes(middle)) {
                m_middles[index] = PixelAt(line.HeightAt(middle));
            }
        }
    }

    [[nodiscard]] StripColumns Take()
    {
        for (std::size_t i = 0; i < m_middles.size(); ++i) {
            if (m_columns.rows[i].IsEmpty()) {
                m_columns.rows[i] = m_middles[i];
            }
        }
        return std::move(m_columns);
    }

private:
    static void Extend(RowSpan& span, const RowSpan& rows)
    {
        if (span.IsEmpty()) {
            span = rows;
        } else if (!rows.IsEmpty()) {
            span = {std::min(span.lower, rows.lower), std::max(span.upper, rows.upper)};
        }
    }

    [[nodiscard]] RowSpan CentresBetween(double from, double to) const
    {
        const auto [low, high] = std::minmax(from, to);
        const PixelBox& box = m_columns.box;
        return {FirstCentre(low, box.bottom, box.top), FirstCentre(high, box.bottom, box.top)};
    }

    [[nodiscard]] RowSpan PixelAt(double height) const
    {
        const PixelBox& box = m_columns.box;
        if (height < box.bottom || height >= box.top) {
            return {};
        }
        const int row = static_cast<int>(height);
        return {row, row + 1};
    }

    StripColumns m_columns;
    /** The pixels in which the strip passes the columns' middles. */
    std::vector<RowSpan> m_middles;
};

/** x and y of a pixel depend on nothing but a vertex's own x and y, each on one. */
bool IsUpright(const QMatrix4x4& transform)
{
    const float* m = transform.constData();
    return m[1] == 0.0F && m[4] == 0.0F && m[3] == 0.0F && m[7] == 0.0F && m[15] == 1.0F;
}

bool MayHaveColumns(const Draw& draw, const View& view)
{
    return draw.topology == Topology::LineStrip && draw.layout.coordinates == 2 && !draw.layout.hasColor &&
           IsUpright(view.transform);
}

/** Notices when a strip that went one way goes the other. */
class Direction
{
public:
    [[nodiscard]] bool TurnsBack(const WindowPoint& from, const WindowPoint& to)
    {
        m_rises = m_rises || to.x > from.x;
        m_falls = m_falls || to.x < from.x;
        return m_rises && m_falls;
    }

private:
    bool m_rises = false;
    bool m_falls = false;
};

} // namespace

PixelBox StripColumns::Bounds() const
{
    PixelBox bounds{box.left, box.right, box.top, box.bottom};
    for (const RowSpan& span : rows) {
        if (!span.IsEmpty()) {
            bounds.bottom = std::min(bounds.bottom, span.lower);
            bounds.top = std::max(bounds.top, span.upper);
        }
    }
    return bounds;
}

std::optional<StripColumns> ToColumns(const Draw& draw, const View& view, QSize picture)
{
    if (!MayHaveColumns(draw, view)) {
        return std::nullopt;
    }
    const WindowVertices vertices(draw, view, picture);
    Coverage coverage(ClipToPicture(view.viewport, picture));
    Direction direction;
    WindowPoint last;
    for (std::size_t i = 0; i < vertices.Count(); ++i) {
        const WindowPoint point = vertices.At(i);
        if (!IsFinite(point) || (i > 0 && direction.TurnsBack(last, point))) {
            return std::nullopt;
        }
        if (i > 0) {
            coverage.Add({last, point});
        }
        last = point;
    }
    return coverage.Take();
}

} // namespace vantoraudio::bgfx::device
