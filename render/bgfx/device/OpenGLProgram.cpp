#include "render/bgfx/device/OpenGLProgram.h"

#include <array>

namespace vantoraudio::bgfx::device {
namespace {

constexpr const char* TransformName = "u_modelViewProj";
constexpr std::array<const char*, Attrib::Count> AttributeNames{"a_position", "a_color0"};

QByteArray WithVersion(QOpenGLShader::ShaderType stage, const OpenGLContext& context, std::string_view text)
{
    const bool isFragment = stage == QOpenGLShader::Fragment;
    QByteArray source;
    if (context.IsEmbedded()) {
        source = isFragment ? "#version 100\nprecision mediump float;\n" : "#version 100\n";
    } else if (!context.IsCoreProfile()) {
        source = "#version 120\n";
    } else if (isFragment) {
        source = "#version 150\n#define varying in\nout vec4 fragColor;\n#define gl_FragColor fragColor\n";
    } else {
        source = "#version 150\n#define attribute in\n#define varying out\n";
    }
    return source.append(text.data(), qsizetype(text.size()));
}

} // namespace

OpenGLProgram::~OpenGLProgram()
{
    const CurrentOpenGL current(m_context);
    m_program.reset();
}

bool OpenGLProgram::Build(std::string_view vertexShader, std::string_view fragmentShader)
{
    m_program.emplace();
    if (!AddShader(QOpenGLShader::Vertex, vertexShader) || !AddShader(QOpenGLShader::Fragment, fragmentShader)) {
        return false;
    }
    for (std::size_t i = 0; i < AttributeNames.size(); ++i) {
        m_program->bindAttributeLocation(AttributeNames[i], static_cast<int>(i));
    }
    return m_program->link();
}

void OpenGLProgram::Use(const Matrix& transform, std::span<const UniformValue> uniforms) const
{
    auto& gl = m_context.Functions();
    gl.glUseProgram(m_program->programId());
    gl.glUniformMatrix4fv(m_program->uniformLocation(TransformName), 1, GL_FALSE, transform.data());
    for (const UniformValue& uniform : uniforms) {
        const int location = m_program->uniformLocation(uniform.name.c_str());
        gl.glUniform4fv(location, static_cast<GLsizei>(uniform.values.size() / 4), uniform.values.data());
    }
}

bool OpenGLProgram::AddShader(QOpenGLShader::ShaderType stage, std::string_view text)
{
    return m_program->addShaderFromSourceCode(stage, WithVersion(stage, m_context, text));
}

} // namespace vantoraudio::bgfx::device
