#pragma once

#include "render/bgfx/bgfx.h"

#include <QtCore/QRect>
#include <QtGui/QMatrix4x4>

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/** What one picture is made of: plain data, all that a drawing device gets to know. */
namespace vantoraudio::bgfx {

/** The names of a program's two shaders. */
struct Program
{
    std::string_view vertexShader;
    std::string_view fragmentShader;
};

/** All programs; a handle is a place in this list. The first takes two coordinates and has the colour of the
 * uniform "u_waveformColor", the second takes three coordinates and the vertices' own colours. */
inline constexpr std::array Programs{Program{"vs_waveform_basic_2d", "fs_waveform_samples"},
                                     Program{"vs_color_3d", "fs_color"}};
inline constexpr ProgramHandle WaveformProgramHandle{0};
inline constexpr ProgramHandle ColorProgramHandle{1};

struct UniformValue
{
    std::string name;
    std::array<float, 4> value{};

    friend bool operator==(const UniformValue&, const UniformValue&) = default;
};

enum class Topology : std::uint8_t
{
    Triangles,
    Lines,
    LineStrip
};

struct Draw
{
    Topology topology = Topology::Triangles;
    ProgramHandle program;
    VertexLayout layout;
    /** Valid until the frame is presented. */
    std::span<const std::uint8_t> vertices;
    std::vector<UniformValue> uniforms;

    [[nodiscard]] std::size_t VertexCount() const
    {
        return layout.getStride() > 0 ? vertices.size() / layout.getStride() : 0;
    }
};

/** A layer of the picture. */
struct View
{
    /** The part of the picture that -1..1 maps to, in pixels from the top left; nothing is drawn outside it. */
    QRect viewport;
    /** From the scene to -1..1. */
    QMatrix4x4 transform;
    /** 0xRRGGBBAA, what the viewport is filled with first. */
    std::optional<std::uint32_t> clearColor;
    /** In the order of their submission. */
    std::vector<Draw> draws;
};

/** Drawn in the order of their numbers. */
using Frame = std::array<View, 3>;

/** The frame that the functions of bgfx.h record. */
[[nodiscard]] Frame& RecordedFrame();
/** The recorded view, or a view that nobody looks at when there is no such number. */
[[nodiscard]] View& RecordedView(ViewId id);
/** Forgets what was recorded. */
void ClearFrame();
/** How many vertex buffers and uniforms there are. */
[[nodiscard]] std::size_t LivingObjects();

} // namespace vantoraudio::bgfx
