#pragma once

#include "render/bgfx/Resources.h"

#include <array>
#include <bitset>
#include <memory>
#include <span>
#include <vector>

namespace vantoraudio::bgfx {

inline constexpr std::size_t MaxViews = 256;
inline constexpr device::Matrix Identity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

struct View
{
    FrameBufferHandle frameBuffer;
    device::Rect rect;
    std::uint16_t clearFlags = BGFX_CLEAR_NONE;
    std::uint32_t clearRgba = 0;
    device::Matrix view = Identity;
    device::Matrix projection = Identity;
};

using UniformSnapshot = std::shared_ptr<const std::vector<device::UniformValue>>;

/** Where a draw takes its vertices from: a dynamic buffer or, when that is invalid, a transient one. */
struct VertexSource
{
    DynamicVertexBufferHandle buffer;
    std::uint32_t start = 0;
    std::uint32_t count = 0;
    std::uint16_t transient = kInvalidHandle;
};

struct IndexSource
{
    IndexBufferHandle buffer;
    std::uint16_t transient = kInvalidHandle;
};

/** What the next submit() draws with. */
struct DrawState
{
    std::uint64_t state = BGFX_STATE_WRITE_RGB | BGFX_STATE_WRITE_A;
    device::Matrix model = Identity;
    VertexSource vertices;
    IndexSource indices;
};

struct RecordedDraw
{
    ViewId view = 0;
    ProgramHandle program;
    DrawState state;
    UniformSnapshot uniforms;
};

struct RecordedBlit
{
    ViewId view = 0;
    TextureHandle destination;
    std::uint16_t destinationX = 0;
    std::uint16_t destinationY = 0;
    TextureHandle source;
    device::Rect sourceRect;
};

struct RecordedRead
{
    TextureHandle texture;
    std::uint8_t* data = nullptr;
};

struct TransientVertices
{
    std::vector<std::uint8_t> bytes;
    VertexLayout layout;
};

struct TransientIndices
{
    std::vector<std::uint8_t> bytes;
    bool index16 = true;
};

/** Bytes that the transient buffers of one frame may take together. */
inline constexpr std::size_t TransientBudget = std::size_t{32} << 20;

/** The work of one frame, as far as it is recorded. Views stay set from frame to frame. */
struct FrameRecorder
{
    std::array<View, MaxViews> views;
    std::bitset<MaxViews> touched;
    DrawState next;
    UniformSnapshot uniforms;

    std::vector<RecordedDraw> draws;
    std::vector<RecordedBlit> blits;
    std::vector<RecordedRead> reads;
    std::vector<TransientVertices> transientVertices;
    std::vector<TransientIndices> transientIndices;
    std::size_t transientBytes = 0;

    void Discard(std::uint8_t flags);
    void Forget(DynamicVertexBufferHandle handle);
    void Forget(TextureHandle handle);
    void Forget(FrameBufferHandle handle);
    /** Drops the recorded work. */
    void Clear();
};

/** Carries out what is recorded; the caller has begun the device's frame. Returns the number of draws. */
std::uint32_t Execute(Resources& resources, FrameRecorder& recorder);

} // namespace vantoraudio::bgfx
