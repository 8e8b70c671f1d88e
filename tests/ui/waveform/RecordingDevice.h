#pragma once

#include "render/bgfx/Context.h"
#include "render/bgfx/device/Device.h"
#include "render/vantor3D/Vertex.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace vantoraudio::vantorAudioEngine::UI {

/** What a RecordingDevice was given to draw. */
struct RecordedDraw
{
    bgfx::device::Topology topology = bgfx::device::Topology::Lines;
    std::uint32_t vertexCount = 0;
    /** Names the vertices. */
    std::uint64_t revision = 0;
    /** What a call of coloured vertices was given. */
    std::vector<vantor3D::Vertex::Pos3fColorRGBA> coloured;
    std::vector<bgfx::device::UniformValue> uniforms;
};

/** Draws nothing, but notes what it should draw. */
class RecordingDevice : public bgfx::device::Device
{
public:
    using Log = std::vector<RecordedDraw>;

    /** Makes it the device that draws. `log` must outlive it. */
    static void Adopt(Log& log)
    {
        bgfx::shutdown();
        bgfx::Objects().AdoptDevice(std::make_unique<RecordingDevice>(log));
    }

    explicit RecordingDevice(Log& log) : m_log(log) {}

    [[nodiscard]] bgfx::RendererType::Enum Type() const override { return bgfx::RendererType::Software; }
    [[nodiscard]] std::uint32_t MaxTextureSize() const override { return 8192; }
    [[nodiscard]] bool OriginBottomLeft() const override { return false; }
    bool BeginFrame() override { return true; }
    void EndFrame() override {}
    std::unique_ptr<bgfx::device::Program> CreateProgram(std::string_view, std::string_view) override
    {
        return std::make_unique<bgfx::device::Program>();
    }
    std::unique_ptr<bgfx::device::Target> CreateTarget(int, int) override
    {
        return std::make_unique<RecordingTarget>(m_log);
    }

private:
    class RecordingTarget : public bgfx::device::Target
    {
    public:
        explicit RecordingTarget(Log& log) : m_log(log) {}
        void Clear(const bgfx::device::Rect&, std::uint32_t) override {}
        void Draw(const bgfx::device::Program&, const bgfx::device::DrawCall& call) override
        {
            m_log.push_back({.topology = call.topology,
                             .vertexCount = call.vertexCount,
                             .revision = call.revision,
                             .coloured = Coloured(call),
                             .uniforms = {call.uniforms.begin(), call.uniforms.end()}});
        }
        void Read(std::span<std::uint8_t> pixels) override { std::ranges::fill(pixels, std::uint8_t{0}); }

    private:
        static std::vector<vantor3D::Vertex::Pos3fColorRGBA> Coloured(const bgfx::device::DrawCall& call)
        {
            std::vector<vantor3D::Vertex::Pos3fColorRGBA> vertices;
            if (call.vertices.size() == call.vertexCount * sizeof(vertices[0])) {
                vertices.resize(call.vertexCount);
                std::memcpy(vertices.data(), call.vertices.data(), call.vertices.size());
            }
            return vertices;
        }

        Log& m_log;
    };

    Log& m_log;
};

} // namespace vantoraudio::vantorAudioEngine::UI
