#pragma once

#include "render/bgfx/bgfx.h"

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/**
 * The seam between the bgfx interface and what really draws. The front end (Context) keeps handles, recorded work
 * and vertex bytes; a device knows pictures and programs only. A further device, bgfx itself for example, is one
 * more implementation of Device and one more line in MakeDevice().
 *
 * A device outlives its targets and programs; all calls come from the GUI thread.
 */
namespace vantoraudio::bgfx::device {

/** 16 floats, the translation last. */
using Matrix = std::array<float, 16>;

/** In pixels; y counts from the top. */
struct Rect
{
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const Rect&, const Rect&) = default;
};

struct UniformValue
{
    std::string name;
    std::vector<float> values;
};

enum class Topology : std::uint8_t
{
    Triangles,
    Lines,
    LineStrip
};

enum class Blend : std::uint8_t
{
    None,
    /** Source alpha over destination, for colour and alpha alike. */
    Alpha,
    /** The same for colour; alpha adds up to the coverage of both. */
    Over
};

/** One draw. The spans are valid during the call. */
struct DrawCall
{
    Topology topology = Topology::Triangles;
    Blend blend = Blend::None;
    bool writeRgb = false;
    bool writeAlpha = false;
    /** Model, view and projection in one. */
    Matrix transform{};
    /** The part of the target that -1..1 maps to; nothing is drawn outside it. */
    Rect viewport;
    VertexLayout layout;
    std::span<const std::uint8_t> vertices;
    std::uint32_t vertexCount = 0;
    /** The same number stands for the same bytes in the same layout, frames later as well; 0: these bytes will not
     * come again. */
    std::uint64_t revision = 0;
    /** Each below vertexCount; empty: the vertices in their order. */
    std::span<const std::uint32_t> indices;
    std::span<const UniformValue> uniforms;
};

/** A pair of shaders, ready to draw. */
class Program
{
public:
    virtual ~Program() = default;
};

/** A picture that can be drawn into. It starts transparent black. */
class Target
{
public:
    virtual ~Target() = default;

    /** Fills the part of `rect` that lies inside with 0xRRGGBBAA. */
    virtual void Clear(const Rect& rect, std::uint32_t rgba) = 0;
    virtual void Draw(const Program& program, const DrawCall& call) = 0;
    /** Copies the whole picture: 4 bytes a pixel, red first, rows as Device::OriginBottomLeft() says. */
    virtual void Read(std::span<std::uint8_t> pixels) = 0;
};

class Device
{
public:
    virtual ~Device() = default;

    [[nodiscard]] virtual RendererType::Enum Type() const = 0;
    [[nodiscard]] virtual std::uint32_t MaxTextureSize() const = 0;
    [[nodiscard]] virtual bool OriginBottomLeft() const = 0;

    /** Targets are used between a successful BeginFrame() and EndFrame(). False: the device is lost for good. */
    virtual bool BeginFrame() = 0;
    virtual void EndFrame() = 0;
    /** Whether any call has found the device lost; a call that was only refused leaves this false. */
    [[nodiscard]] virtual bool IsLost() const { return false; }

    /** The shaders in the device's own form: OpenGL takes GLSL text without a version line (attributes named
     *  a_position and a_color0, the transform u_modelViewProj), Software takes the shader's name. Null: refused.
     */
    virtual std::unique_ptr<Program> CreateProgram(std::string_view vertexShader,
                                                   std::string_view fragmentShader) = 0;
    /** Null when there is no memory for it. */
    virtual std::unique_ptr<Target> CreateTarget(int width, int height) = 0;
};

/** Null when this kind of device cannot be had here. `Count` chooses. */
std::unique_ptr<Device> MakeDevice(RendererType::Enum type);

} // namespace vantoraudio::bgfx::device
