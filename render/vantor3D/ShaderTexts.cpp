#include "render/vantor3D/ShaderTexts.h"

#include <algorithm>
#include <array>

namespace vantoraudio::vantor3D {
namespace {

struct Shader
{
    std::string_view name;
    std::string_view openGL;
};

constexpr std::array Shaders{
    Shader{"vs_waveform_basic_2d", R"(
attribute vec2 a_position;
uniform mat4 u_modelViewProj;
void main()
{
    gl_Position = u_modelViewProj * vec4(a_position, 0.0, 1.0);
}
)"},
    Shader{"fs_waveform_samples", R"(
uniform vec4 u_waveformColor;
void main()
{
    gl_FragColor = u_waveformColor;
}
)"},
    Shader{ColorVertexShader, R"(
attribute vec3 a_position;
attribute vec4 a_color0;
uniform mat4 u_modelViewProj;
varying vec4 v_color0;
void main()
{
    v_color0 = a_color0;
    gl_Position = u_modelViewProj * vec4(a_position, 1.0);
}
)"},
    Shader{ColorFragmentShader, R"(
varying vec4 v_color0;
void main()
{
    gl_FragColor = v_color0;
}
)"},
};

} // namespace

std::optional<std::string_view> ShaderText(std::string_view name, bgfx::RendererType::Enum renderer)
{
    const auto* shader = std::ranges::find(Shaders, name, &Shader::name);
    if (shader == Shaders.end()) {
        return std::nullopt;
    }
    return renderer == bgfx::RendererType::OpenGL ? shader->openGL : shader->name;
}

} // namespace vantoraudio::vantor3D
