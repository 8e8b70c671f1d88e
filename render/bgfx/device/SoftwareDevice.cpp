#include "render/bgfx/device/SoftwareDevice.h"

#include "render/bgfx/device/Canvas.h"
#include "render/bgfx/device/LastColumns.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace vantoraudio::bgfx::device {
namespace {

enum class ColorSource : std::uint8_t
{
    Uniform,
    Vertex
};

class SoftwareProgram final : public Program
{
public:
    explicit SoftwareProgram(ColorSource source) : m_colorSource(source) {}

    [[nodiscard]] Rgba ColorOf(const DrawCall& call, std::uint32_t vertex) const
    {
        return m_colorSource == ColorSource::Vertex ? VertexColor(call, vertex) : UniformColor(call);
    }

private:
    static Rgba UniformColor(const DrawCall& call)
    {
        Rgba color{};
        const auto uniform = std::ranges::find(call.uniforms, "u_waveformColor", &UniformValue::name);
        if (uniform != call.uniforms.end() && uniform->values.size() >= color.size()) {
            std::copy_n(uniform->values.begin(), color.size(), color.begin());
        }
        return color;
    }

    static Rgba VertexColor(const DrawCall& call, std::uint32_t vertex)
    {
        if (!call.layout.has(Attrib::Color0)) {
            return {};
        }
        std::array<std::uint8_t, 4> bytes{};
        std::memcpy(bytes.data(),
                    call.vertices.data() + std::size_t{vertex} * call.layout.getStride() +
                        call.layout.getOffset(Attrib::Color0),
                    bytes.size());
        Rgba color{};
        std::ranges::transform(bytes, color.begin(), [](std::uint8_t byte) { return float(byte) / 255.0F; });
        return color;
    }

    ColorSource m_colorSource;
};

class SoftwareTarget final : public Target
{
public:
    SoftwareTarget(int width, int height) : m_canvas(width, height), m_lastColumns(width, height) {}

    void Clear(const Rect& rect, std::uint32_t rgba) override
    {
        const auto byte = [&](int shift) { return static_cast<std::uint8_t>(rgba >> shift); };
        m_canvas.Fill(ClipToTarget(rect, m_canvas.Width(), m_canvas.Height()),
                      {byte(24), byte(16), byte(8), byte(0)});
    }

    void Draw(const Program& program, const DrawCall& call) override
    {
        const auto& shading = static_cast<const SoftwareProgram&>(program);
        if (const auto& columns = m_lastColumns.Of(call)) {
            m_canvas.FillColumns(*columns, shading.ColorOf(call, 0), BrushOf(call));
        } else if (call.topology == Topology::Triangles) {
            DrawTriangles(shading, call);
        } else {
            DrawLines(shading, call);
        }
    }

    void Read(std::span<std::uint8_t> pixels) override
    {
        const std::size_t size = m_canvas.Pixels().size() * sizeof(Pixel);
        std::memcpy(pixels.data(), m_canvas.Pixels().data(), std::min(size, pixels.size()));
    }

private:
    static Brush BrushOf(const DrawCall& call) { return {call.blend, call.writeRgb, call.writeAlpha}; }

    [[nodiscard]] PixelBox BoxOf(const DrawCall& call) const
    {
        return ClipToTarget(call.viewport, m_canvas.Width(), m_canvas.Height());
    }

    void DrawLines(const SoftwareProgram& program, const DrawCall& call)
    {
        const std::size_t count = CountOf(call);
        const std::size_t step = call.topology == Topology::Lines ? 2 : 1;
        for (std::size_t i = 0; i + 1 < count; i += step) {
            m_canvas.DrawLine(CornerOf(program, call, i), CornerOf(program, call, i + 1), BoxOf(call),
                              BrushOf(call));
        }
    }

    void DrawTriangles(const SoftwareProgram& program, const DrawCall& call)
    {
        const std::size_t count = CountOf(call);
        for (std::size_t i = 0; i + 2 < count; i += 3) {
            m_canvas.DrawTriangle(
                {CornerOf(program, call, i), CornerOf(program, call, i + 1), CornerOf(program, call, i + 2)},
                BoxOf(call), BrushOf(call));
        }
    }

    static std::size_t CountOf(const DrawCall& call)
    {
        return call.indices.empty() ? call.vertexCount : call.indices.size();
    }

    Corner CornerOf(const SoftwareProgram& program, const DrawCall& call, std::size_t i) const
    {
        const std::uint32_t vertex = call.indices.empty() ? static_cast<std::uint32_t>(i) : call.indices[i];
        const ClipPoint position = PositionReader(call.layout, call.vertices)(vertex);
        const ClipPoint clip = Transform(call.transform, position);
        return {ToWindow(call.viewport, m_canvas.Height(), clip), program.ColorOf(call, vertex)};
    }

    Canvas m_canvas;
    LastColumns m_lastColumns;
};

} // namespace

std::unique_ptr<Program> SoftwareDevice::CreateProgram(std::string_view vertexShader,
                                                       std::string_view fragmentShader)
{
    if (vertexShader == "vs_waveform_basic_2d" && fragmentShader == "fs_waveform_samples") {
        return std::make_unique<SoftwareProgram>(ColorSource::Uniform);
    }
    if (vertexShader == "vs_color_3d" && fragmentShader == "fs_color") {
        return std::make_unique<SoftwareProgram>(ColorSource::Vertex);
    }
    return nullptr;
}

std::unique_ptr<Target> SoftwareDevice::CreateTarget(int width, int height)
{
    try {
        return std::make_unique<SoftwareTarget>(width, height);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

} // namespace vantoraudio::bgfx::device
