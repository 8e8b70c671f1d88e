#include "render/bgfx/device/bgfx/FramePlan.h"

#include "render/bgfx/device/StripColumns.h"
#include "render/bgfx/device/WindowLines.h"

#include <array>
#include <cstring>

namespace vantoraudio::bgfx::device {
namespace {

struct Corner
{
    float x = 0.0F;
    float y = 0.0F;
};

constexpr VertexLayout CornerLayout{.coordinates = 2, .hasColor = false};

template<typename Vertex>
std::vector<std::uint8_t> ToBytes(const std::vector<Vertex>& vertices)
{
    std::vector<std::uint8_t> bytes(vertices.size() * sizeof(Vertex));
    std::memcpy(bytes.data(), vertices.data(), bytes.size());
    return bytes;
}

template<typename Vertex>
void AppendRectangle(std::vector<Vertex>& corners, Vertex lower, const Vertex& upper)
{
    Vertex lowerRight = lower;
    lowerRight.x = upper.x;
    Vertex upperLeft = upper;
    upperLeft.x = lower.x;
    corners.insert(corners.end(), {lower, lowerRight, upper, upper, upperLeft, lower});
}

/** Neighbours that cover the same rows become one rectangle. */
std::vector<Corner> ToRectangles(const StripColumns& columns)
{
    std::vector<Corner> corners;
    const std::size_t count = columns.rows.size();
    for (std::size_t first = 0; first < count;) {
        const RowSpan& rows = columns.rows[first];
        std::size_t last = first + 1;
        while (last < count && columns.rows[last] == rows) {
            ++last;
        }
        if (!rows.IsEmpty()) {
            AppendRectangle(corners, {float(columns.box.left + int(first)), float(rows.lower)},
                            {float(columns.box.left + int(last)), float(rows.upper)});
        }
        first = last;
    }
    return corners;
}

/** From -1..1 in the viewport to -1..1 on the picture. */
QMatrix4x4 FromViewport(const QRect& viewport, QSize picture)
{
    const auto width = float(picture.width());
    const auto height = float(picture.height());
    const float bottom = height - float(viewport.y()) - float(viewport.height());
    QMatrix4x4 matrix;
    matrix(0, 0) = float(viewport.width()) / width;
    matrix(1, 1) = float(viewport.height()) / height;
    matrix(0, 3) = (2.0F * float(viewport.x()) + float(viewport.width())) / width - 1.0F;
    matrix(1, 3) = (2.0F * bottom + float(viewport.height())) / height - 1.0F;
    return matrix;
}

class Planner
{
public:
    explicit Planner(QSize size) : m_whole(QPoint(0, 0), size) { m_plan.size = size; }

    void Add(const View& view)
    {
        m_clip = view.viewport & m_whole;
        if (m_clip.isEmpty()) {
            return;
        }
        if (view.clearColor) {
            Clear(*view.clearColor);
        }
        for (const Draw& draw : view.draws) {
            Add(draw, view);
        }
    }

    [[nodiscard]] FramePlan Take() { return std::move(m_plan); }

private:
    void Clear(std::uint32_t rgba)
    {
        if (m_plan.draws.empty() && m_clip == m_whole) {
            m_plan.clearColor = rgba;
            return;
        }
        LineVertex lower{float(m_clip.left()), float(m_whole.height() - m_clip.bottom() - 1)};
        for (std::size_t i = 0; i < lower.color.size(); ++i) {
            lower.color[i] = static_cast<std::uint8_t>(rgba >> (24 - 8 * i));
        }
        LineVertex upper = lower;
        upper.x += float(m_clip.width());
        upper.y += float(m_clip.height());
        std::vector<LineVertex> corners;
        AppendRectangle(corners, lower, upper);
        AddInWindow(false, ColorProgramHandle, LineVertexLayout, ToBytes(corners));
        m_plan.draws.back().replaces = true;
    }

    void Add(const Draw& draw, const View& view)
    {
        if (draw.topology == Topology::Triangles) {
            AddTriangles(draw, view);
        } else if (const auto columns = ToColumns(draw, view, m_plan.size)) {
            AddInWindow(false, draw.program, CornerLayout, ToBytes(ToRectangles(*columns)));
        } else {
            AddInWindow(true, draw.program, LineVertexLayout, ToBytes(ToWindowLines(draw, view, m_plan.size)));
        }
        if (m_plan.draws.back().vertices.empty()) {
            m_plan.draws.pop_back();
        } else {
            m_plan.draws.back().uniforms = draw.uniforms;
        }
    }

    void AddTriangles(const Draw& draw, const View& view)
    {
        const std::size_t size = draw.VertexCount() / 3 * 3 * draw.layout.getStride();
        // A viewport of the whole picture keeps its transform to the bit, and with it the covered pixels.
        m_plan.draws.push_back({.program = draw.program,
                                .layout = draw.layout,
                                .vertices = {draw.vertices.begin(), draw.vertices.begin() + std::ptrdiff_t(size)},
                                .transform = view.viewport == m_whole
                                                 ? view.transform
                                                 : FromViewport(view.viewport, m_plan.size) * view.transform,
                                .clip = m_clip,
                                .uniforms = {}});
    }

    void AddInWindow(bool isLines, ProgramHandle program, const VertexLayout& layout,
                     std::vector<std::uint8_t> vertices)
    {
        m_plan.draws.push_back({.isLines = isLines,
                                .program = program,
                                .layout = layout,
                                .vertices = std::move(vertices),
                                .transform = FromWindow(m_whole, m_plan.size),
                                .clip = m_clip,
                                .uniforms = {}});
    }

    FramePlan m_plan;
    QRect m_whole;
    /** The part of the viewport at hand that lies in the picture. */
    QRect m_clip;
};

} // namespace

FramePlan PlanFrame(const Frame& frame, QSize picture)
{
    Planner planner(picture);
    for (const View& view : frame) {
        planner.Add(view);
    }
    return planner.Take();
}

} // namespace vantoraudio::bgfx::device
