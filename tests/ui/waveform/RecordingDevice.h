#pragma once

#include "render/bgfx/DrawingDevice.h"
#include "render/vantor3D/Vertex.h"

#include <cstring>
#include <memory>
#include <vector>

namespace vantoraudio::vantorAudioEngine::UI {

/** What a RecordingDevice was given to draw. */
struct RecordedDraw
{
    bgfx::Topology topology = bgfx::Topology::Lines;
    std::size_t vertexCount = 0;
    /** Where the vertices lie. */
    const void* vertices = nullptr;
    /** What a draw of coloured vertices was given. */
    std::vector<vantor3D::Vertex::Pos3fColorRGBA> coloured;
    std::vector<bgfx::UniformValue> uniforms;
};

/** Draws nothing, but notes what it should draw. */
class RecordingDevice : public bgfx::device::Device
{
public:
    using Log = std::vector<RecordedDraw>;

    /** Makes it the device that draws. `log` must outlive it. */
    static void Adopt(Log& log) { bgfx::DrawingDevice::Get().Adopt(std::make_unique<RecordingDevice>(log)); }

    explicit RecordingDevice(Log& log) : m_log(log) {}

    [[nodiscard]] bgfx::device::Kind Kind() const override { return bgfx::device::Kind::Software; }
    [[nodiscard]] int MaxSide() const override { return 8192; }
    bool Draw(const bgfx::Frame& frame, QImage&) override
    {
        for (const bgfx::View& view : frame) {
            for (const bgfx::Draw& draw : view.draws) {
                m_log.push_back({.topology = draw.topology,
                                 .vertexCount = draw.VertexCount(),
                                 .vertices = draw.vertices.data(),
                                 .coloured = Coloured(draw),
                                 .uniforms = draw.uniforms});
            }
        }
        return true;
    }

private:
    static std::vector<vantor3D::Vertex::Pos3fColorRGBA> Coloured(const bgfx::Draw& draw)
    {
        std::vector<vantor3D::Vertex::Pos3fColorRGBA> vertices;
        if (draw.layout.hasColor) {
            vertices.resize(draw.VertexCount());
            std::memcpy(vertices.data(), draw.vertices.data(), draw.vertices.size());
        }
        return vertices;
    }

    Log& m_log;
};

} // namespace vantoraudio::vantorAudioEngine::UI
