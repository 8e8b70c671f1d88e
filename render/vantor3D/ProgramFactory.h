#pragma once

#include "render/bgfx/bgfx.h"

#include <optional>
#include <string_view>

namespace vantoraudio::vantor3D {

/**
 * Gives out shader programs by the names of their two shaders. A program belongs to the factory, so nobody
 * destroys it, and it lasts; each drawing device builds it for itself.
 *
 * Known pairs: "vs_waveform_basic_2d" with "fs_waveform_samples" (Vertex::Pos2f in the colour of the vec4 uniform
 * "u_waveformColor"), "vs_color_3d" with "fs_color" (Vertex::Pos3fColorRGBA in the vertices' own colours).
 */
class ProgramFactory
{
public:
    static ProgramFactory& Get();

    /** Empty when there is no such pair or no drawing device. */
    std::optional<bgfx::ProgramHandle> CreateProgram(std::string_view vertexShader,
                                                     std::string_view fragmentShader);

private:
    ProgramFactory() = default;
};

} // namespace vantoraudio::vantor3D
