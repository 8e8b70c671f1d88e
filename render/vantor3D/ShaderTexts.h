#pragma once

#include "render/bgfx/bgfx.h"

#include <optional>
#include <string_view>

namespace vantoraudio::vantor3D {

/** The two shaders of a program that draws Vertex::Pos3fColorRGBA in the vertices' own colours. */
inline constexpr std::string_view ColorVertexShader = "vs_color_3d";
inline constexpr std::string_view ColorFragmentShader = "fs_color";

/** The shader in the form that a renderer takes, or nothing for unknown names. */
std::optional<std::string_view> ShaderText(std::string_view name, bgfx::RendererType::Enum renderer);

} // namespace vantoraudio::vantor3D
