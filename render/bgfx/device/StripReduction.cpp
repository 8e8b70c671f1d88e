#include "render/bgfx/device/StripReduction.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vantoraudio::bgfx::device {
namespace {

constexpr float Largest = std::numeric_limits<float>::max();
/** Pixels; far more than a target's size, far less than what single precision needs for half pixels' slopes. */
constexpr double SafeRange = 1.0e6;

/** pixel = scale x value + offset */
struct AxisMap
{
    double scale = 1.0;
    double offset = 0.0;

    [[nodiscard]] double operator()(double value) const { return scale * value + offset; }
    [[nodiscard]] float Inverse(double pixel) const
    {
        return static_cast<float>(std::clamp((pixel - offset) / scale, -double(Largest), double(Largest)));
    }
    [[nodiscard]] float Safe(float value) const
    {
        return static_cast<float>(std::clamp((*this)(double(value)), -SafeRange, SafeRange));
    }
};

/** The vertices seen so far that lie in one pixel column, one behind the other. */
struct Column
{
    float lower = 0.0F;
    float upper = 0.0F;
    StripPoint first;
    StripPoint last;
    float least = 0.0F;
    float greatest = 0.0F;
    std::size_t count = 0;
};

class Reduction
{
public:
    Reduction(AxisMap x, AxisMap y, const Rect& viewport)
        : m_x(x), m_y(y), m_left(viewport.x), m_right(viewport.x + viewport.width)
    {
    }

    ReducedStrip Run(const std::uint8_t* data, std::size_t stride, std::size_t count)
    {
        const std::uint8_t* const end = data + count * stride;
        while (data != end) {
            data = AbsorbIntoColumn(data, end, stride);
            if (data == end) {
                break;
            }
            StartColumn(Read(data));
            data += stride;
        }
        FinishColumn();
        CloseRun();
        return std::move(m_result);
    }

private:
    static StripPoint Read(const std::uint8_t* data)
    {
        StripPoint point;
        std::memcpy(&point, data, sizeof(point));
        return point;
    }

    /** The tight loop: stays while vertices are finite and in the column. */
    const std::uint8_t* AbsorbIntoColumn(const std::uint8_t* data, const std::uint8_t* end, std::size_t stride)
    {
        if (m_column.count == 0) {
            return data;
        }
        const float lower = m_column.lower;
        const float upper = m_column.upper;
        float least = m_column.least;
        float greatest = m_column.greatest;
        const std::uint8_t* const begin = data;
        for (; data != end; data += stride) {
            const StripPoint point = Read(data);
            // False for values that are not numbers, too.
            const bool stays = bool(unsigned(point.x >= lower) & unsigned(point.x < upper) &
                                    unsigned(std::fabs(point.y) <= Largest));
            if (!stays) {
                break;
            }
            least = point.y < least ? point.y : least;
            greatest = point.y > greatest ? point.y : greatest;
        }
        if (data != begin) {
            m_column.last = Read(data - stride);
            m_column.least = least;
            m_column.greatest = greatest;
            m_column.count += static_cast<std::size_t>(data - begin) / stride;
        }
        return data;
    }

    void StartColumn(StripPoint point)
    {
        FinishColumn();
        if (!std::isfinite(point.x) || !std::isfinite(point.y)) {
            CloseRun();
            return;
        }
        m_column = {0.0F, 0.0F, point, point, point.y, point.y, 1};
        SetBounds(m_x(double(point.x)));
    }

    void SetBounds(double pixel)
    {
        // All that lies left of the viewport counts as one column, and so does all right of it.
        const double lower = pixel < m_left ? -HUGE_VAL : pixel >= m_right ? m_right : std::floor(pixel);
        const double upper = pixel < m_left ? m_left : pixel >= m_right ? HUGE_VAL : std::floor(pixel) + 1.0;
        const auto [least, greatest] = std::minmax({m_x.Inverse(lower), m_x.Inverse(upper)});
        m_column.lower = least;
        m_column.upper = greatest;
    }

    void FinishColumn()
    {
        const Column& column = m_column;
        if (column.count == 0) {
            return;
        }
        Emit(column.first);
        if (column.count > 2) {
            Emit({column.first.x, column.least});
            Emit({column.first.x, column.greatest});
        }
        if (column.count > 1) {
            Emit(column.last);
        }
        m_column.count = 0;
    }

    /** A point without a neighbour draws nothing. */
    void CloseRun()
    {
        if (m_runOpen && m_result.runStarts.back() + 1 == m_result.points.size()) {
            m_result.points.pop_back();
            m_result.runStarts.pop_back();
        }
        m_runOpen = false;
    }

    void Emit(StripPoint point)
    {
        if (!m_runOpen) {
            m_result.runStarts.push_back(m_result.points.size());
        }
        m_runOpen = true;
        m_result.points.push_back({m_x.Safe(point.x), m_y.Safe(point.y)});
    }

    AxisMap m_x;
    AxisMap m_y;
    double m_left;
    double m_right;
    Column m_column;
    bool m_runOpen = false;
    ReducedStrip m_result;
};

bool IsFinite(const AxisMap& map)
{
    return std::isfinite(map.scale) && std::isfinite(map.offset) && map.scale != 0.0;
}

} // namespace

bool IsReducible(const DrawCall& call)
{
    const Matrix& m = call.transform;
    std::uint8_t num = 0;
    AttribType::Enum type = AttribType::Float;
    bool normalized = false;
    bool asInt = false;
    call.layout.decode(Attrib::Position, num, type, normalized, asInt);
    const bool flat = num == 2 && type == AttribType::Float && !call.layout.has(Attrib::Color0);
    const bool separable = m[1] == 0.0F && m[4] == 0.0F && m[3] == 0.0F && m[7] == 0.0F && m[15] == 1.0F;
    return call.topology == Topology::LineStrip && call.indices.empty() && flat && separable;
}

ReducedStrip ReduceStrip(const DrawCall& call, int targetHeight)
{
    const Matrix& m = call.transform;
    const Rect& viewport = call.viewport;
    const WindowPoint origin = ToWindow(viewport, targetHeight, {double(m[12]), double(m[13]), 0.0});
    const AxisMap x{double(m[0]) * 0.5 * viewport.width, origin.x};
    const AxisMap y{double(m[5]) * 0.5 * viewport.height, origin.y};
    const bool insideDepth = std::fabs(m[14]) <= 1.0F;
    if (!IsFinite(x) || !IsFinite(y) || !insideDepth) {
        return {};
    }
    return Reduction(x, y, viewport)
        .Run(call.vertices.data() + call.layout.getOffset(Attrib::Position), call.layout.getStride(),
             call.vertexCount);
}

} // namespace vantoraudio::bgfx::device
