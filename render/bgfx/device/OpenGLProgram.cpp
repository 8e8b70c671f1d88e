#include "render/bgfx/device/OpenGLProgram.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace vantoraudio::bgfx::device {
namespace {

struct Shader
{
    std::string_view name;
    const char* text;
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
    Shader{"vs_color_3d", R"(
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
    Shader{"fs_color", R"(
varying vec4 v_color0;
void main()
{
    gl_FragColor = v_color0;
}
)"},
};

QByteArray TextOf(std::string_view name)
{
    const auto* shader = std::ranges::find(Shaders, name, &Shader::name);
    return shader != Shaders.end() ? shader->text : QByteArray();
}

/** Stand around a fragment shader. The texture's rows count from the bottom, those of the frame buffer from the
 * top. */
constexpr const char* ColumnsBegin = "#define main ShadePixel\n";
constexpr const char* ColumnsEnd = R"(
#undef main
uniform sampler2D u_columns;
uniform vec2 u_pictureSize;
void main()
{
    vec4 bytes = floor(texture2D(u_columns, vec2(gl_FragCoord.x / u_pictureSize.x, 0.5)) * 255.0 + 0.5);
    float row = u_pictureSize.y - 1.0 - floor(gl_FragCoord.y);
    if (row < bytes.r * 256.0 + bytes.g || row >= bytes.b * 256.0 + bytes.a) {
        discard;
    }
    ShadePixel();
}
)";

QByteArray WithVersion(QOpenGLShader::ShaderType stage, const OpenGLContext& context, const QByteArray& text)
{
    const bool isFragment = stage == QOpenGLShader::Fragment;
    QByteArray source;
    if (context.IsEmbedded()) {
        source = "#version 100\n";
        // Numbers of pixels are more than medium precision can hold.
        source += isFragment
                      ? "#ifdef GL_FRAGMENT_PRECISION_HIGH\nprecision highp float;\nprecision highp sampler2D;\n"
                        "#else\nprecision mediump float;\n#endif\n"
                      : "";
    } else if (!context.IsCoreProfile()) {
        source = "#version 120\n";
    } else if (isFragment) {
        source = "#version 150\n#define varying in\nout vec4 fragColor;\n#define gl_FragColor fragColor\n"
                 "#define texture2D texture\n";
    } else {
        source = "#version 150\n#define attribute in\n#define varying out\n";
    }
    return source + text;
}

} // namespace

bool OpenGLProgram::Build(const Program& program)
{
    return Build(TextOf(program.vertexShader), TextOf(program.fragmentShader));
}

bool OpenGLProgram::BuildForColumns(const Program& program)
{
    return Build(TextOf(program.vertexShader), ColumnsBegin + TextOf(program.fragmentShader) + ColumnsEnd);
}

bool OpenGLProgram::Build(const QByteArray& vertexShader, const QByteArray& fragmentShader)
{
    if (!AddShader(QOpenGLShader::Vertex, vertexShader) || !AddShader(QOpenGLShader::Fragment, fragmentShader)) {
        return false;
    }
    m_program.bindAttributeLocation("a_position", 0);
    m_program.bindAttributeLocation("a_color0", 1);
    return m_program.link();
}

bool OpenGLProgram::AddShader(QOpenGLShader::ShaderType stage, const QByteArray& text)
{
    return m_program.addShaderFromSourceCode(stage, WithVersion(stage, m_context, text));
}

void OpenGLProgram::Use(const QMatrix4x4& transform, std::span<const UniformValue> uniforms)
{
    QMatrix4x4 upsideDown;
    upsideDown(1, 1) = -1.0F;
    m_program.bind();
    m_program.setUniformValue("u_modelViewProj", upsideDown * transform);
    for (const UniformValue& uniform : uniforms) {
        const auto& [x, y, z, w] = uniform.value;
        m_program.setUniformValue(uniform.name.c_str(), x, y, z, w);
    }
}

void OpenGLProgram::SetPictureSize(QSize size)
{
    m_program.setUniformValue("u_pictureSize", QSizeF(size));
}

} // namespace vantoraudio::bgfx::device
