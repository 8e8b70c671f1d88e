#include "render/bgfx/device/Canvas.h"
#include "render/bgfx/device/Device.h"

#include <algorithm>

namespace vantoraudio::bgfx::device {
namespace {

Rgba ToRgba(const std::array<std::uint8_t, 4>& bytes)
{
    Rgba color{};
    std::ranges::transform(bytes, color.begin(), [](std::uint8_t byte) { return float(byte) / 255.0F; });
    return color;
}

Rgba UniformColor(const Draw& draw)
{
    const auto uniform = std::ranges::find(draw.uniforms, "u_waveformColor", &UniformValue::name);
    return uniform != draw.uniforms.end() ? uniform->value : Rgba{};
}

/** Draws what is recorded of one view. */
class ViewPainter
{
public:
    ViewPainter(Canvas& canvas, const View& view)
        : m_canvas(canvas), m_view(view), m_box(ClipToPicture(view.viewport, canvas.Size()))
    {
    }

    void Paint()
    {
        if (m_view.clearColor) {
            m_canvas.Fill(m_box, *m_view.clearColor);
        }
        for (const Draw& draw : m_view.draws) {
            if (const auto columns = ToColumns(draw, m_view, m_canvas.Size())) {
                m_canvas.FillColumns(*columns, UniformColor(draw));
            } else if (draw.topology == Topology::Triangles) {
                DrawTriangles(draw);
            } else {
                DrawLines(draw);
            }
        }
    }

private:
    void DrawLines(const Draw& draw)
    {
        const WindowVertices vertices(draw, m_view, m_canvas.Size());
        const std::size_t step = draw.topology == Topology::Lines ? 2 : 1;
        for (std::size_t i = 0; i + 1 < vertices.Count(); i += step) {
            m_canvas.DrawLine(vertices.At(i), vertices.At(i + 1), m_box, ColorOf(draw, vertices, i));
        }
    }

    void DrawTriangles(const Draw& draw)
    {
        const WindowVertices vertices(draw, m_view, m_canvas.Size());
        const auto corner = [&](std::size_t i) { return Corner{vertices.At(i), ColorOf(draw, vertices, i)}; };
        for (std::size_t i = 0; i + 2 < vertices.Count(); i += 3) {
            m_canvas.DrawTriangle({corner(i), corner(i + 1), corner(i + 2)}, m_box);
        }
    }

    static Rgba ColorOf(const Draw& draw, const WindowVertices& vertices, std::size_t vertex)
    {
        return draw.layout.hasColor ? ToRgba(vertices.ColorAt(vertex)) : UniformColor(draw);
    }

    Canvas& m_canvas;
    const View& m_view;
    PixelBox m_box;
};

class SoftwareDevice final : public Device
{
public:
    [[nodiscard]] device::Kind Kind() const override { return device::Kind::Software; }
    [[nodiscard]] int MaxSide() const override { return 16384; }

    bool Draw(const Frame& frame, QImage& picture) override
    {
        // A view that is cleared as a whole spares the pass over all pixels.
        if (!frame[0].clearColor || !frame[0].viewport.contains(picture.rect())) {
            picture.fill(Qt::transparent);
        }
        Canvas canvas(picture);
        for (const View& view : frame) {
            ViewPainter(canvas, view).Paint();
        }
        return true;
    }
};

} // namespace

std::unique_ptr<Device> MakeSoftwareDevice()
{
    return std::make_unique<SoftwareDevice>();
}

} // namespace vantoraudio::bgfx::device
