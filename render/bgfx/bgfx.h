#pragma once

#include <cstdint>

/**
 * The few functions of bgfx, the cross-platform renderer, that drawing a waveform takes: same names, same meaning.
 * They record a frame (see Frame.h); BGFXRenderer starts it and hands it to the drawing device. GUI thread only.
 *
 * A handle starts invalid and lives until it is destroyed, also while there is no drawing device. Destroying an
 * invalid handle does nothing.
 */
namespace vantoraudio::bgfx {

using ViewId = std::uint16_t;

inline constexpr std::uint16_t kInvalidHandle = 65535;

struct DynamicVertexBufferHandle
{
    std::uint16_t idx = kInvalidHandle;
};
struct ProgramHandle
{
    std::uint16_t idx = kInvalidHandle;

    friend bool operator==(ProgramHandle, ProgramHandle) = default;
};
struct UniformHandle
{
    std::uint16_t idx = kInvalidHandle;
};

/** Whether the handle was given out by a successful creation; a destroyed handle keeps its number. */
template<typename Handle>
[[nodiscard]] constexpr bool isValid(Handle handle) noexcept
{
    return handle.idx != kInvalidHandle;
}

inline constexpr std::uint64_t BGFX_STATE_WRITE_RGB = 0x0000000000000007;
inline constexpr std::uint64_t BGFX_STATE_WRITE_A = 0x0000000000000008;
/** Source alpha over destination; alpha adds up to the coverage of both, so that what is translucent on an opaque
 *  picture leaves it opaque. Everything is drawn so. */
inline constexpr std::uint64_t BGFX_STATE_BLEND_OVER = 0x0000000006265000;
/** Without a primitive type a draw is a list of triangles, never culled. */
inline constexpr std::uint64_t BGFX_STATE_PT_LINES = 0x0002000000000000;
inline constexpr std::uint64_t BGFX_STATE_PT_LINESTRIP = 0x0003000000000000;
inline constexpr std::uint64_t BGFX_STATE_PT_MASK = 0x0007000000000000;

inline constexpr std::uint16_t BGFX_CLEAR_COLOR = 0x0001;
/** Accepted; pictures hold colours only. */
inline constexpr std::uint16_t BGFX_CLEAR_DEPTH = 0x0002;

inline constexpr std::uint16_t BGFX_BUFFER_ALLOW_RESIZE = 0x0800;

inline constexpr std::uint8_t BGFX_DISCARD_ALL = 0xff;

struct UniformType
{
    enum Enum
    {
        Vec4
    };
};

/** How one vertex lies in memory: its coordinates as floats, then perhaps its colour as four bytes, red first. */
struct VertexLayout
{
    std::uint8_t coordinates = 0;
    bool hasColor = false;

    /** Bytes from the start of a vertex to its colour. */
    [[nodiscard]] std::uint16_t ColorOffset() const noexcept
    {
        return static_cast<std::uint16_t>(coordinates * 4);
    }
    /** Bytes from one vertex to the next. */
    [[nodiscard]] std::uint16_t getStride() const noexcept
    {
        return static_cast<std::uint16_t>(ColorOffset() + (hasColor ? 4 : 0));
    }

    friend bool operator==(const VertexLayout&, const VertexLayout&) = default;
};

/** Bytes of the application. It belongs to the call that it is passed to. */
struct Memory
{
    const std::uint8_t* data = nullptr;
    std::uint32_t size = 0;
};

/** A reference without a copy. The bytes must stay alive and unchanged until the buffer made of them is updated
 *  with others or destroyed. (bgfx itself would let go of them two frames later.) */
[[nodiscard]] const Memory* makeRef(const void* data, std::uint32_t size);

[[nodiscard]] DynamicVertexBufferHandle createDynamicVertexBuffer(const Memory* memory, const VertexLayout& layout,
                                                                  std::uint16_t flags);
/** Makes the buffer refer to other vertices, as many as there are. `startVertex` must be 0. */
void update(DynamicVertexBufferHandle handle, std::uint32_t startVertex, const Memory* memory);
void destroy(DynamicVertexBufferHandle handle);

/** A uniform is known by its name: creating it again gives the same handle, to be destroyed as often. */
[[nodiscard]] UniformHandle createUniform(const char* name, UniformType::Enum type, std::uint16_t num = 1);
void destroy(UniformHandle handle);
/** `value` points to four floats, which are copied. Holds for the following draws, until it is set again. */
void setUniform(UniformHandle handle, const void* value);

/** `rgba` is 0xRRGGBBAA. */
void setViewClear(ViewId id, std::uint16_t flags, std::uint32_t rgba, float depth, std::uint8_t stencil);

/** These two hold for the next submit(). */
void setVertexBuffer(std::uint8_t stream, DynamicVertexBufferHandle handle);
void setState(std::uint64_t state, std::uint32_t rgba = 0);
/** Adds a draw to a view of the frame. The bytes that the buffer refers to must stay until the frame is
 *  presented. */
void submit(ViewId id, ProgramHandle program, std::uint32_t depth = 0, std::uint8_t flags = BGFX_DISCARD_ALL);

} // namespace vantoraudio::bgfx
