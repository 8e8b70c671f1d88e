#pragma once

#include <cstdint>
#include <limits>

/**
 * A subset of the public C++ interface of bgfx, the cross-platform renderer: same names, same meaning, so that
 * code written against this header could be linked to bgfx itself. Each renderer is a device behind
 * device/Device.h.
 *
 * All functions belong to the GUI thread. Submitted work is recorded and carried out by frame(), views in
 * ascending order and the draws of one view in the order of their submission.
 *
 * Where this header promises more than bgfx:
 * - Buffers, uniforms, textures and shaders may be created before init(). Every handle lives until it is
 * destroyed, also across shutdown() and another init(), where a frame buffer loses its picture and a program stops
 * drawing. Destroying after shutdown(), or after the application object is gone, is harmless, and so is destroying
 * an invalid handle.
 * - A handle starts invalid.
 * - A buffer that allows resizing takes the length of the memory given to update(), also when that is shorter.
 *
 * Memory passed with makeRef() is not copied: it must stay alive and unchanged until the buffer made of it is
 * updated from vertex 0 with other memory or destroyed (bgfx itself would let go of it two frames later). Draws of
 * a buffer that were not carried out yet when it is destroyed are dropped.
 */
namespace vantoraudio::bgfx {

using ViewId = std::uint16_t;
/** Called once the renderer no longer needs memory passed with makeRef(). */
using ReleaseFn = void (*)(void* data, void* userData);

inline constexpr std::uint16_t kInvalidHandle = 65535;

struct DynamicVertexBufferHandle
{
    std::uint16_t idx = kInvalidHandle;
};
struct FrameBufferHandle
{
    std::uint16_t idx = kInvalidHandle;
};
struct IndexBufferHandle
{
    std::uint16_t idx = kInvalidHandle;
};
struct ProgramHandle
{
    std::uint16_t idx = kInvalidHandle;
};
struct ShaderHandle
{
    std::uint16_t idx = kInvalidHandle;
};
struct TextureHandle
{
    std::uint16_t idx = kInvalidHandle;
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

inline constexpr std::uint64_t BGFX_STATE_WRITE_R = 0x0000000000000001;
inline constexpr std::uint64_t BGFX_STATE_WRITE_G = 0x0000000000000002;
inline constexpr std::uint64_t BGFX_STATE_WRITE_B = 0x0000000000000004;
inline constexpr std::uint64_t BGFX_STATE_WRITE_A = 0x0000000000000008;
inline constexpr std::uint64_t BGFX_STATE_WRITE_RGB = BGFX_STATE_WRITE_R | BGFX_STATE_WRITE_G | BGFX_STATE_WRITE_B;
inline constexpr std::uint64_t BGFX_STATE_BLEND_ONE = 0x0000000000002000;
inline constexpr std::uint64_t BGFX_STATE_BLEND_SRC_ALPHA = 0x0000000000005000;
inline constexpr std::uint64_t BGFX_STATE_BLEND_INV_SRC_ALPHA = 0x0000000000006000;

/** The factors of source and destination. This subset draws BGFX_STATE_BLEND_ALPHA and the same with ONE as the
 *  source's factor for alpha; other combinations are drawn as the former. */
constexpr std::uint64_t BGFX_STATE_BLEND_FUNC_SEPARATE(std::uint64_t srcRgb, std::uint64_t dstRgb,
                                                       std::uint64_t srcA, std::uint64_t dstA) noexcept
{
    return srcRgb | dstRgb << 4 | (srcA | dstA << 4) << 8;
}

/** Source alpha over destination, for colour and alpha alike. */
inline constexpr std::uint64_t BGFX_STATE_BLEND_ALPHA =
    BGFX_STATE_BLEND_FUNC_SEPARATE(BGFX_STATE_BLEND_SRC_ALPHA, BGFX_STATE_BLEND_INV_SRC_ALPHA,
                                   BGFX_STATE_BLEND_SRC_ALPHA, BGFX_STATE_BLEND_INV_SRC_ALPHA);
inline constexpr std::uint64_t BGFX_STATE_BLEND_MASK = 0x000000000ffff000;
/** Without a primitive type a draw is a list of triangles, never culled. */
inline constexpr std::uint64_t BGFX_STATE_PT_LINES = 0x0002000000000000;
inline constexpr std::uint64_t BGFX_STATE_PT_LINESTRIP = 0x0003000000000000;
inline constexpr std::uint64_t BGFX_STATE_PT_MASK = 0x0007000000000000;

inline constexpr std::uint16_t BGFX_CLEAR_NONE = 0x0000;
inline constexpr std::uint16_t BGFX_CLEAR_COLOR = 0x0001;
/** Accepted; the frame buffers of this subset hold colours only. */
inline constexpr std::uint16_t BGFX_CLEAR_DEPTH = 0x0002;
inline constexpr std::uint16_t BGFX_CLEAR_STENCIL = 0x0004;

inline constexpr std::uint16_t BGFX_BUFFER_NONE = 0x0000;
inline constexpr std::uint16_t BGFX_BUFFER_ALLOW_RESIZE = 0x0800;
inline constexpr std::uint16_t BGFX_BUFFER_INDEX32 = 0x1000;

inline constexpr std::uint64_t BGFX_TEXTURE_NONE = 0x0000000000000000;
inline constexpr std::uint64_t BGFX_TEXTURE_RT = 0x0000001000000000;
inline constexpr std::uint64_t BGFX_TEXTURE_BLIT_DST = 0x0000400000000000;
inline constexpr std::uint64_t BGFX_TEXTURE_READ_BACK = 0x0000800000000000;

inline constexpr std::uint8_t BGFX_DISCARD_NONE = 0x00;
inline constexpr std::uint8_t BGFX_DISCARD_INDEX_BUFFER = 0x02;
inline constexpr std::uint8_t BGFX_DISCARD_STATE = 0x08;
inline constexpr std::uint8_t BGFX_DISCARD_TRANSFORM = 0x10;
inline constexpr std::uint8_t BGFX_DISCARD_VERTEX_STREAMS = 0x20;
inline constexpr std::uint8_t BGFX_DISCARD_ALL = 0xff;

inline constexpr std::uint8_t BGFX_FRAME_NONE = 0x00;
/** Throw the recorded draws away instead of carrying them out. */
inline constexpr std::uint8_t BGFX_FRAME_DISCARD = 0x02;

struct RendererType
{
    enum Enum
    {
        Noop,     ///< Draws nothing; pictures stay transparent black.
        OpenGL,   ///< OpenGL or OpenGL ES, on a context of its own.
        Software, ///< Draws into memory with the processor. Not part of bgfx.
        Count     ///< In Init: choose automatically.
    };
};

struct Attrib
{
    enum Enum
    {
        Position,
        Color0,
        Count
    };
};

struct AttribType
{
    enum Enum
    {
        Uint8,
        Float,
        Count
    };
};

struct TextureFormat
{
    enum Enum
    {
        RGBA8,
        Count
    };
};

struct UniformType
{
    enum Enum
    {
        Vec4,
        Count
    };
};

struct ViewMode
{
    enum Enum
    {
        Default,
        Sequential,
        Count
    };
};

/** How one vertex lies in memory. */
struct VertexLayout
{
    VertexLayout& begin(RendererType::Enum renderer = RendererType::Noop) noexcept;
    /** `num` components of `type`; with `normalized`, bytes 0 to 255 read as 0 to 1. */
    VertexLayout& add(Attrib::Enum attrib, std::uint8_t num, AttribType::Enum type,
                      bool normalized = false) noexcept;
    void end() noexcept;

    [[nodiscard]] bool has(Attrib::Enum attrib) const noexcept { return m_attributes[attrib].num != 0; }
    /** Bytes from the start of a vertex to the attribute. */
    [[nodiscard]] std::uint16_t getOffset(Attrib::Enum attrib) const noexcept
    {
        return m_attributes[attrib].offset;
    }
    /** Bytes from one vertex to the next. */
    [[nodiscard]] std::uint16_t getStride() const noexcept { return m_stride; }
    void decode(Attrib::Enum attrib, std::uint8_t& num, AttribType::Enum& type, bool& normalized,
                bool& asInt) const noexcept;

private:
    struct Attribute
    {
        std::uint16_t offset = 0;
        std::uint8_t num = 0;
        AttribType::Enum type = AttribType::Float;
        bool normalized = false;
    };

    Attribute m_attributes[Attrib::Count];
    std::uint16_t m_stride = 0;
};

/** A block of bytes on its way into the renderer. It belongs to the call that it is passed to, even if that fails.
 */
struct Memory
{
    std::uint8_t* data = nullptr;
    std::uint32_t size = 0;
};

struct TransientVertexBuffer
{
    std::uint8_t* data = nullptr;
    std::uint32_t size = 0;
    std::uint32_t startVertex = 0;
    std::uint16_t stride = 0;
    /** Number of the allocation, for the renderer's use. */
    std::uint16_t allocation = kInvalidHandle;
};

struct TransientIndexBuffer
{
    std::uint8_t* data = nullptr;
    std::uint32_t size = 0;
    std::uint32_t startIndex = 0;
    bool isIndex16 = true;
    /** Number of the allocation, for the renderer's use. */
    std::uint16_t allocation = kInvalidHandle;
};

struct Init
{
    RendererType::Enum type = RendererType::Count;
};

struct Caps
{
    struct Limits
    {
        std::uint32_t maxViews = 256;
        /** Largest width and height of a texture or frame buffer, pixels. */
        std::uint32_t maxTextureSize = 0;
    };

    RendererType::Enum rendererType = RendererType::Noop;
    /** True when the first row read from a frame buffer is its bottom row. */
    bool originBottomLeft = false;
    Limits limits;
};

/** Counts of living objects, and the draws that the last frame() carried out. */
struct Stats
{
    std::uint32_t numDraw = 0;
    std::uint16_t numDynamicVertexBuffers = 0;
    std::uint16_t numFrameBuffers = 0;
    std::uint16_t numIndexBuffers = 0;
    std::uint16_t numPrograms = 0;
    std::uint16_t numShaders = 0;
    std::uint16_t numTextures = 0;
    std::uint16_t numUniforms = 0;
};

/**
 * Makes the drawing device. `Count` tries OpenGL and falls back to Software where no OpenGL context can be had.
 * False when the wanted device cannot be made (none exists then) or when one exists already (it stays).
 */
bool init(const Init& init = {});
/** Gives the device and all that it holds back, after telling everybody who draws (see DeviceLifetime.h). Also
 *  done when the application object goes away. Does nothing without a device. */
void shutdown();
/** Noop before init() and after shutdown(). */
[[nodiscard]] RendererType::Enum getRendererType();
/** Never null. */
[[nodiscard]] const char* getRendererName(RendererType::Enum type);
/** Never null; limits are 0 without a device. */
[[nodiscard]] const Caps* getCaps();
/** Never null. */
[[nodiscard]] const Stats* getStats();
/** Carries the recorded work out. Returns the number of the finished frame. */
std::uint32_t frame(std::uint8_t flags = BGFX_FRAME_NONE);

/** Uninitialised bytes to fill in. */
[[nodiscard]] const Memory* alloc(std::uint32_t size);
[[nodiscard]] const Memory* copy(const void* data, std::uint32_t size);
/** A reference without a copy; see the head of this file for how long the bytes must stay. */
[[nodiscard]] const Memory* makeRef(const void* data, std::uint32_t size, ReleaseFn releaseFn = nullptr,
                                    void* userData = nullptr);

[[nodiscard]] IndexBufferHandle createIndexBuffer(const Memory* mem, std::uint16_t flags = BGFX_BUFFER_NONE);
void destroy(IndexBufferHandle handle);

[[nodiscard]] DynamicVertexBufferHandle createDynamicVertexBuffer(std::uint32_t num, const VertexLayout& layout,
                                                                  std::uint16_t flags = BGFX_BUFFER_NONE);
[[nodiscard]] DynamicVertexBufferHandle createDynamicVertexBuffer(const Memory* mem, const VertexLayout& layout,
                                                                  std::uint16_t flags = BGFX_BUFFER_NONE);
/** Replaces the vertices from `startVertex` on. What a buffer that may not grow has no room for is cut off. */
void update(DynamicVertexBufferHandle handle, std::uint32_t startVertex, const Memory* mem);
void destroy(DynamicVertexBufferHandle handle);

/** How many of `num` vertices or indices a transient buffer could hold in this frame. */
[[nodiscard]] std::uint32_t getAvailTransientVertexBuffer(std::uint32_t num, const VertexLayout& layout);
[[nodiscard]] std::uint32_t getAvailTransientIndexBuffer(std::uint32_t num, bool index32 = false);
/** A buffer to fill in, gone after frame(). Ask for no more than is available. */
void allocTransientVertexBuffer(TransientVertexBuffer* buffer, std::uint32_t num, const VertexLayout& layout);
void allocTransientIndexBuffer(TransientIndexBuffer* buffer, std::uint32_t num, bool index32 = false);

/** The bytes are what the device of the moment reads; see device/Device.h. */
[[nodiscard]] ShaderHandle createShader(const Memory* mem);
void destroy(ShaderHandle handle);
/** Invalid when the device refuses the pair or there is no device. The program stays usable when its shaders are
 *  destroyed. It draws on the device only that it was made for. */
[[nodiscard]] ProgramHandle createProgram(ShaderHandle vertexShader, ShaderHandle fragmentShader,
                                          bool destroyShaders = false);
void destroy(ProgramHandle handle);

/** A uniform is known by its name: creating it again gives the same handle, to be destroyed as often. */
[[nodiscard]] UniformHandle createUniform(const char* name, UniformType::Enum type, std::uint16_t num = 1);
void destroy(UniformHandle handle);
/** `value` points to `num` times four floats, which are copied. Holds for the following draws, until set anew. */
void setUniform(UniformHandle handle, const void* value, std::uint16_t num = 1);

[[nodiscard]] TextureHandle createTexture2D(std::uint16_t width, std::uint16_t height, bool hasMips,
                                            std::uint16_t numLayers, TextureFormat::Enum format,
                                            std::uint64_t flags = BGFX_TEXTURE_NONE, const Memory* mem = nullptr);
void destroy(TextureHandle handle);
/** Copies a texture that allows READ_BACK to `data` (4 bytes a pixel, red first, no padding), which must stay
 *  until frame() returns the number given here. 0 when the texture cannot be read. */
std::uint32_t readTexture(TextureHandle handle, void* data, std::uint8_t mip = 0);

/** Invalid for an empty size or one beyond Caps::Limits::maxTextureSize. */
[[nodiscard]] FrameBufferHandle createFrameBuffer(std::uint16_t width, std::uint16_t height,
                                                  TextureFormat::Enum format,
                                                  std::uint64_t textureFlags = BGFX_TEXTURE_RT);
void destroy(FrameBufferHandle handle);
/** The colour texture of a frame buffer; it belongs to the frame buffer. */
[[nodiscard]] TextureHandle getTexture(FrameBufferHandle handle, std::uint8_t attachment = 0);

void setViewMode(ViewId id, ViewMode::Enum mode = ViewMode::Default);
/** In pixels from the top left corner of the frame buffer. */
void setViewRect(ViewId id, std::uint16_t x, std::uint16_t y, std::uint16_t width, std::uint16_t height);
/** A view is cleared (inside its rectangle) before its first draw, in frames in which something is submitted to it
 *  or it is touched. `rgba` is 0xRRGGBBAA. */
void setViewClear(ViewId id, std::uint16_t flags, std::uint32_t rgba = 0x000000ff, float depth = 1.0F,
                  std::uint8_t stencil = 0);
/** 16 floats each, the translation last; null stands for identity. */
void setViewTransform(ViewId id, const void* view, const void* proj);
void setViewFrameBuffer(ViewId id, FrameBufferHandle handle);
/** Back to no frame buffer, no rectangle, no clearing, identity. */
void resetView(ViewId id);

/** The following hold for the next submit() and, as its flags say, are forgotten by it. */
void setState(std::uint64_t state, std::uint32_t rgba = 0);
/** 16 floats, the translation last. Returns an index that this subset has no use for. */
std::uint32_t setTransform(const void* mtx, std::uint16_t num = 1);
void setIndexBuffer(IndexBufferHandle handle);
void setIndexBuffer(const TransientIndexBuffer* buffer);
void setVertexBuffer(std::uint8_t stream, DynamicVertexBufferHandle handle);
void setVertexBuffer(std::uint8_t stream, DynamicVertexBufferHandle handle, std::uint32_t startVertex,
                     std::uint32_t numVertices);
void setVertexBuffer(std::uint8_t stream, const TransientVertexBuffer* buffer);

/** Makes a view take part in this frame without drawing. */
void touch(ViewId id);
void submit(ViewId id, ProgramHandle program, std::uint32_t depth = 0, std::uint8_t flags = BGFX_DISCARD_ALL);
void discard(std::uint8_t flags = BGFX_DISCARD_ALL);
/** Copies a frame buffer's texture into a texture with BLIT_DST, before the view's draws are carried out: use a
 *  view behind those that draw the source. What lies outside either texture is not copied. */
void blit(ViewId id, TextureHandle dst, std::uint16_t dstX, std::uint16_t dstY, TextureHandle src,
          std::uint16_t srcX = 0, std::uint16_t srcY = 0,
          std::uint16_t width = std::numeric_limits<std::uint16_t>::max(),
          std::uint16_t height = std::numeric_limits<std::uint16_t>::max());

} // namespace vantoraudio::bgfx
