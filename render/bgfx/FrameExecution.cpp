#include "render/bgfx/FrameRecorder.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace vantoraudio::bgfx {
namespace {

using device::DrawCall;
using device::Matrix;
using device::Rect;

Matrix Multiply(const Matrix& left, const Matrix& right)
{
    Matrix product{};
    for (std::size_t column = 0; column < 4; ++column) {
        for (std::size_t row = 0; row < 4; ++row) {
            for (std::size_t i = 0; i < 4; ++i) {
                product[column * 4 + row] += left[i * 4 + row] * right[column * 4 + i];
            }
        }
    }
    return product;
}

device::Topology TopologyOf(std::uint64_t state)
{
    switch (state & BGFX_STATE_PT_MASK) {
    case BGFX_STATE_PT_LINES:
        return device::Topology::Lines;
    case BGFX_STATE_PT_LINESTRIP:
        return device::Topology::LineStrip;
    default:
        return device::Topology::Triangles;
    }
}

device::Blend BlendOf(std::uint64_t state)
{
    constexpr std::uint64_t AlphaSourceMask = BGFX_STATE_BLEND_FUNC_SEPARATE(0, 0, 0xf000, 0);
    constexpr std::uint64_t AlphaSourceOne = BGFX_STATE_BLEND_FUNC_SEPARATE(0, 0, BGFX_STATE_BLEND_ONE, 0);
    if (!(state & BGFX_STATE_BLEND_MASK)) {
        return device::Blend::None;
    }
    return (state & AlphaSourceMask) == AlphaSourceOne ? device::Blend::Over : device::Blend::Alpha;
}

class Execution
{
public:
    Execution(Resources& resources, const FrameRecorder& recorder) : m_resources(resources), m_recorder(recorder)
    {
    }

    std::uint32_t Run()
    {
        for (std::size_t id = 0; id < MaxViews; ++id) {
            if (m_recorder.touched.test(id)) {
                RunView(static_cast<ViewId>(id));
            }
        }
        for (const RecordedRead& read : m_recorder.reads) {
            Read(read);
        }
        return m_drawCount;
    }

private:
    void RunView(ViewId id)
    {
        for (const RecordedBlit& blit : m_recorder.blits) {
            if (blit.view == id) {
                Blit(blit);
            }
        }
        const View& view = m_recorder.views[id];
        device::Target* target = TargetOf(view.frameBuffer);
        if (!target) {
            return;
        }
        if (view.clearFlags & BGFX_CLEAR_COLOR) {
            target->Clear(view.rect, view.clearRgba);
        }
        for (const RecordedDraw& draw : m_recorder.draws) {
            if (draw.view == id) {
                Draw(*target, view, draw);
            }
        }
    }

    device::Target* TargetOf(FrameBufferHandle handle)
    {
        FrameBuffer* frameBuffer = m_resources.frameBuffers.Find(handle);
        if (!frameBuffer) {
            return nullptr;
        }
        if (!frameBuffer->target) {
            frameBuffer->target = m_resources.device->CreateTarget(frameBuffer->width, frameBuffer->height);
        }
        return frameBuffer->target.get();
    }

    void Draw(device::Target& target, const View& view, const RecordedDraw& draw)
    {
        const ProgramObject* object = m_resources.programs.Find(draw.program);
        DrawCall call;
        if (!object || !object->program || !SetVertices(call, draw.state.vertices)) {
            return;
        }
        const auto indices = IndicesOf(draw.state.indices);
        if (indices) {
            // An index beyond the vertices would read foreign memory.
            if (indices->empty() ||
                std::ranges::any_of(*indices, [&](std::uint32_t index) { return index >= call.vertexCount; })) {
                return;
            }
            call.indices = *indices;
        }
        const std::uint64_t state = draw.state.state;
        call.topology = TopologyOf(state);
        call.blend = BlendOf(state);
        call.writeRgb = (state & BGFX_STATE_WRITE_RGB) != 0;
        call.writeAlpha = (state & BGFX_STATE_WRITE_A) != 0;
        call.transform = Multiply(view.projection, Multiply(view.view, draw.state.model));
        call.viewport = view.rect;
        call.uniforms = *draw.uniforms;
        target.Draw(*object->program, call);
        ++m_drawCount;
    }

    bool SetVertices(DrawCall& call, const VertexSource& source) const
    {
        if (source.transient < m_recorder.transientVertices.size()) {
            const TransientVertices& vertices = m_recorder.transientVertices[source.transient];
            return SetVertices(call, vertices.layout, vertices.bytes, 0, UINT32_MAX);
        }
        const VertexBuffer* buffer = m_resources.vertexBuffers.Find(source.buffer);
        if (!buffer || !buffer->memory) {
            return false;
        }
        call.revision = buffer->revision;
        return SetVertices(call, buffer->layout, buffer->memory->Bytes(), source.start, source.count);
    }

    static bool SetVertices(DrawCall& call, const VertexLayout& layout, std::span<const std::uint8_t> bytes,
                            std::uint32_t start, std::uint32_t count)
    {
        const std::size_t stride = layout.getStride();
        if (stride == 0 || start >= bytes.size() / stride) {
            return false;
        }
        const std::size_t drawn = std::min<std::size_t>(count, bytes.size() / stride - start);
        call.layout = layout;
        call.vertices = bytes.subspan(start * stride, drawn * stride);
        call.vertexCount = static_cast<std::uint32_t>(drawn);
        return true;
    }

    std::optional<std::vector<std::uint32_t>> IndicesOf(const IndexSource& source) const
    {
        if (source.transient < m_recorder.transientIndices.size()) {
            const TransientIndices& indices = m_recorder.transientIndices[source.transient];
            return WidenIndices(indices.bytes, indices.index16);
        }
        if (const IndexBuffer* buffer = m_resources.indexBuffers.Find(source.buffer)) {
            return buffer->indices;
        }
        return std::nullopt;
    }

    void Blit(const RecordedBlit& blit)
    {
        Texture* destination = m_resources.textures.Find(blit.destination);
        const Texture* source = m_resources.textures.Find(blit.source);
        if (!destination || !source) {
            return;
        }
        device::Target* target = TargetOf(source->frameBuffer);
        if (!target) {
            return;
        }
        const Rect from = blit.sourceRect;
        const int width = std::min({from.width, source->width - from.x, destination->width - blit.destinationX});
        const int height =
            std::min({from.height, source->height - from.y, destination->height - blit.destinationY});
        if (width <= 0 || height <= 0) {
            return;
        }
        const bool whole = width == source->width && width == destination->width && height == source->height &&
                           height == destination->height;
        if (whole) {
            target->Read(destination->pixels);
            return;
        }
        m_picture.resize(std::size_t{4} * source->width * source->height);
        target->Read(m_picture);
        for (int row = 0; row < height; ++row) {
            const auto first = (std::size_t(from.y + row) * source->width + std::size_t(from.x)) * 4;
            const auto into = (std::size_t(blit.destinationY + row) * destination->width + blit.destinationX) * 4;
            std::copy_n(m_picture.data() + first, std::size_t(width) * 4, destination->pixels.data() + into);
        }
    }

    void Read(const RecordedRead& read) const
    {
        if (const Texture* texture = m_resources.textures.Find(read.texture)) {
            std::ranges::copy(texture->pixels, read.data);
        }
    }

    Resources& m_resources;
    const FrameRecorder& m_recorder;
    std::vector<std::uint8_t> m_picture;
    std::uint32_t m_drawCount = 0;
};

} // namespace

std::uint32_t Execute(Resources& resources, FrameRecorder& recorder)
{
    return Execution(resources, recorder).Run();
}

} // namespace vantoraudio::bgfx
