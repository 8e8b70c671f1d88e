#include "render/bgfx/FrameRecorder.h"

#include <algorithm>

namespace vantoraudio::bgfx {

void FrameRecorder::Discard(std::uint8_t flags)
{
    const DrawState fresh;
    if (flags & BGFX_DISCARD_STATE) {
        next.state = fresh.state;
    }
    if (flags & BGFX_DISCARD_TRANSFORM) {
        next.model = fresh.model;
    }
    if (flags & BGFX_DISCARD_VERTEX_STREAMS) {
        next.vertices = fresh.vertices;
    }
    if (flags & BGFX_DISCARD_INDEX_BUFFER) {
        next.indices = fresh.indices;
    }
}

void FrameRecorder::Forget(DynamicVertexBufferHandle handle)
{
    std::erase_if(draws, [&](const RecordedDraw& draw) { return draw.state.vertices.buffer.idx == handle.idx; });
}

void FrameRecorder::Forget(TextureHandle handle)
{
    std::erase_if(blits, [&](const RecordedBlit& blit) {
        return blit.destination.idx == handle.idx || blit.source.idx == handle.idx;
    });
    std::erase_if(reads, [&](const RecordedRead& read) { return read.texture.idx == handle.idx; });
}

void FrameRecorder::Forget(FrameBufferHandle handle)
{
    for (View& view : views) {
        if (view.frameBuffer.idx == handle.idx) {
            view.frameBuffer = {};
        }
    }
}

void FrameRecorder::Clear()
{
    draws.clear();
    blits.clear();
    reads.clear();
    transientVertices.clear();
    transientIndices.clear();
    transientBytes = 0;
    touched.reset();
    Discard(BGFX_DISCARD_ALL);
}

} // namespace vantoraudio::bgfx
