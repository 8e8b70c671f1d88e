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
        source = "#version 100\n";
        // Numbers of pixels are more than what medium precision need hold.
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
    return source.append(text.data(), qsizetype(text.size()));
}

/** Stand around a fragment shader. */
constexpr std::string_view ColumnsBegin = "#define main ShadePixel\n";
constexpr std::string_view ColumnsEnd = R"(
#undef main
uniform sampler2D u_columns;
uniform float u_targetWidth;
void main()
{
    vec4 bytes = floor(texture2D(u_columns, vec2(gl_FragCoord.x / u_targetWidth, 0.5)) * 255.0 + 0.5);
    float row = floor(gl_FragCoord.y);
    if (row < bytes.r * 256.0 + bytes.g || row >= bytes.b * 256.0 + bytes.a) {
        discard;
    }
    ShadePixel();
}
)";

} // namespace

OpenGLProgram::~OpenGLProgram()
{
    const CurrentOpenGL current(m_context);
    m_program.reset();
}

bool OpenGLProgram::Build(std::string_view vertexShader, std::string_view fragmentShader)
{
    m_vertexShader = vertexShader;
    m_fragmentShader = fragmentShader;
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

const OpenGLProgram* OpenGLProgram::ForColumns() const
{
    if (!m_forColumns && !m_isForColumnsRefused) {
        auto program = std::make_unique<OpenGLProgram>(m_context);
        std::string fragmentShader(ColumnsBegin);
        fragmentShader.append(m_fragmentShader).append(ColumnsEnd);
        m_isForColumnsRefused = !program->Build(m_vertexShader, fragmentShader);
        m_forColumns = m_isForColumnsRefused ? nullptr : std::move(program);
    }
    return m_forColumns.get();
}

void OpenGLProgram::SetTargetWidth(int width) const
{
    m_context.Functions().glUniform1f(m_program->uniformLocation("u_targetWidth"), float(width));
}

bool OpenGLProgram::AddShader(QOpenGLShader::ShaderType stage, std::string_view text)
{
    return m_program->addShaderFromSourceCode(stage, WithVersion(stage, m_context, text));
}

} // namespace vantoraudio::bgfx::device
