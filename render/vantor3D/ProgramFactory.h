#pragma once

#include "render/bgfx/bgfx.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace vantoraudio::vantor3D {

/**
 * Makes shader programs by the names of their two shaders and keeps them: a program belongs to the factory, so
 * nobody else destroys it. It lasts until the drawing device is shut down. GUI thread only.
 *
 * Known pairs: "vs_waveform_basic_2d" with "fs_waveform_samples" (Vertex::Pos2f in the colour of the vec4 uniform
 * "u_waveformColor"), "vs_color_3d" with "fs_color" (Vertex::Pos3fColorRGBA in the vertices' own colours).
 */
class ProgramFactory
{
public:
    static ProgramFactory& Get();

    /** Empty when a name is unknown, when there is no drawing device or when that refuses the program. */
    std::optional<bgfx::ProgramHandle> CreateProgram(std::string_view vertexShader,
                                                     std::string_view fragmentShader);

private:
    ProgramFactory();
    void DropPrograms();

    std::map<std::pair<std::string, std::string>, bgfx::ProgramHandle> m_programs;
};

} // namespace vantoraudio::vantor3D
