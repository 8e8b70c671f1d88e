#include "render/bgfx/Context.h"

#include <cstring>

namespace vantoraudio::bgfx {
namespace {

View* FindView(ViewId id)
{
    return id < MaxViews ? &Recorder().views[id] : nullptr;
}

device::Matrix ReadMatrix(const void* floats)
{
    device::Matrix matrix = Identity;
    if (floats) {
        std::memcpy(matrix.data(), floats, sizeof(matrix));
    }
    return matrix;
}

UniformSnapshot TakeUniforms()
{
    auto values = std::make_shared<std::vector<device::UniformValue>>();
    Objects().uniforms.ForEach([&](const Uniform& uniform) { values->push_back({uniform.name, uniform.values}); });
    return values;
}

} // namespace

void setViewMode(ViewId, ViewMode::Enum) {}

void setViewRect(ViewId id, std::uint16_t x, std::uint16_t y, std::uint16_t width, std::uint16_t height)
{
    if (View* view = FindView(id)) {
        view->rect = {x, y, width, height};
    }
}

void setViewClear(ViewId id, std::uint16_t flags, std::uint32_t rgba, float, std::uint8_t)
{
    if (View* view = FindView(id)) {
        view->clearFlags = flags;
        view->clearRgba = rgba;
    }
}

void setViewTransform(ViewId id, const void* viewMatrix, const void* projection)
{
    if (View* view = FindView(id)) {
        view->view = ReadMatrix(viewMatrix);
        view->projection = ReadMatrix(projection);
    }
}

void setViewFrameBuffer(ViewId id, FrameBufferHandle handle)
{
    if (View* view = FindView(id)) {
        view->frameBuffer = handle;
    }
}

void resetView(ViewId id)
{
    if (View* view = FindView(id)) {
        *view = {};
    }
}

void setState(std::uint64_t state, std::uint32_t)
{
    Recorder().next.state = state;
}

std::uint32_t setTransform(const void* mtx, std::uint16_t)
{
    Recorder().next.model = ReadMatrix(mtx);
    return 0;
}

void setIndexBuffer(IndexBufferHandle handle)
{
    Recorder().next.indices = {handle, kInvalidHandle};
}

void setIndexBuffer(const TransientIndexBuffer* buffer)
{
    Recorder().next.indices = {{}, buffer->allocation};
}

void setVertexBuffer(std::uint8_t stream, DynamicVertexBufferHandle handle)
{
    setVertexBuffer(stream, handle, 0, UINT32_MAX);
}

void setVertexBuffer(std::uint8_t, DynamicVertexBufferHandle handle, std::uint32_t startVertex,
                     std::uint32_t numVertices)
{
    Recorder().next.vertices = {handle, startVertex, numVertices, kInvalidHandle};
}

void setVertexBuffer(std::uint8_t, const TransientVertexBuffer* buffer)
{
    Recorder().next.vertices = {{}, 0, 0, buffer->allocation};
}

void touch(ViewId id)
{
    if (id < MaxViews) {
        Recorder().touched.set(id);
    }
}

void submit(ViewId id, ProgramHandle program, std::uint32_t, std::uint8_t flags)
{
    FrameRecorder& recorder = Recorder();
    if (id < MaxViews) {
        if (!recorder.uniforms) {
            recorder.uniforms = TakeUniforms();
        }
        recorder.draws.push_back({id, program, recorder.next, recorder.uniforms});
        touch(id);
    }
    recorder.Discard(flags);
}

void discard(std::uint8_t flags)
{
    Recorder().Discard(flags);
}

void blit(ViewId id, TextureHandle dst, std::uint16_t dstX, std::uint16_t dstY, TextureHandle src,
          std::uint16_t srcX, std::uint16_t srcY, std::uint16_t width, std::uint16_t height)
{
    const Texture* destination = Objects().textures.Find(dst);
    if (id >= MaxViews || !destination || !(destination->flags & BGFX_TEXTURE_BLIT_DST)) {
        return;
    }
    Recorder().blits.push_back({id, dst, dstX, dstY, src, {srcX, srcY, width, height}});
    touch(id);
}

} // namespace vantoraudio::bgfx
