#include "render/bgfx/device/OpenGLDevice.h"

#include "render/bgfx/device/OpenGLContext.h"
#include "render/bgfx/device/StripReduction.h"

#include <QtOpenGL/QOpenGLFramebufferObject>
#include <QtOpenGL/QOpenGLShaderProgram>
#include <QtOpenGL/QOpenGLVertexArrayObject>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace vantoraudio::bgfx::device {
namespace {

constexpr const char* TransformName = "u_modelViewProj";
constexpr std::array<const char*, Attrib::Count> AttributeNames{"a_position", "a_color0"};

using CurrentIfValid = std::unique_ptr<CurrentOpenGL>;

QByteArray WithVersion(QOpenGLShader::ShaderType stage, const OpenGLContext& context, std::string_view text)
{
    const bool isFragment = stage == QOpenGLShader::Fragment;
    QByteArray source;
    if (context.IsEmbedded())
        source = isFragment ? "#version 100\nprecision mediump float;\n" : "#version 100\n";
    else if (!context.IsCoreProfile())
        source = "#version 120\n";
    else if (isFragment)
        source = "#version 150\n#define varying in\nout vec4 fragColor;\n#define gl_FragColor fragColor\n";
    else
        source = "#version 150\n#define attribute in\n#define varying out\n";
    return source.append(text.data(), qsizetype(text.size()));
}

class OpenGLProgram final : public Program
{
public:
    explicit OpenGLProgram(OpenGLContext& context) : m_context(context) {}
    ~OpenGLProgram() override
    {
        const CurrentOpenGL current(m_context);
        m_program.reset();
    }

    bool Build(std::string_view vertexShader, std::string_view fragmentShader)
    {
        m_program.emplace();
        if (!AddShader(QOpenGLShader::Vertex, vertexShader) || !AddShader(QOpenGLShader::Fragment, fragmentShader))
            return false;
        for (std::size_t i = 0; i < AttributeNames.size(); ++i)
            m_program->bindAttributeLocation(AttributeNames[i], static_cast<int>(i));
        return m_program->link();
    }

    void Use(const Matrix& transform, std::span<const UniformValue> uniforms) const
    {
        auto& gl = m_context.Functions();
        gl.glUseProgram(m_program->programId());
        gl.glUniformMatrix4fv(m_program->uniformLocation(TransformName), 1, GL_FALSE, transform.data());
        for (const UniformValue& uniform : uniforms) {
            const int location = m_program->uniformLocation(uniform.name.c_str());
            gl.glUniform4fv(location, static_cast<GLsizei>(uniform.values.size() / 4), uniform.values.data());
        }
    }

private:
    bool AddShader(QOpenGLShader::ShaderType stage, std::string_view text)
    {
        return m_program->addShaderFromSourceCode(stage, WithVersion(stage, m_context, text));
    }

    OpenGLContext& m_context;
    mutable std::optional<QOpenGLShaderProgram> m_program;
};

/** The vertices of an indexed draw one by one, since OpenGL ES 2 knows no 32-bit indices. */
std::vector<std::uint8_t> Unindexed(const DrawCall& call)
{
    const std::size_t stride = call.layout.getStride();
    std::vector<std::uint8_t> bytes(call.indices.size() * stride);
    auto into = bytes.begin();
    for (const std::uint32_t index : call.indices)
        into = std::ranges::copy(call.vertices.subspan(index * stride, stride), into).out;
    return bytes;
}

struct LineVertex
{
    StripPoint at;
    std::array<std::uint8_t, 4> color{};
};

VertexLayout LineVertexLayout()
{
    VertexLayout layout;
    layout.begin()
        .add(Attrib::Position, 2, AttribType::Float)
        .add(Attrib::Color0, 4, AttribType::Uint8, true)
        .end();
    return layout;
}

/**
 * Adds a line in window coordinates, moved by a hair across its direction. A line right on the border between two
 * pixels belongs to either by OpenGL's rules, and on the picture's left edge some drivers drop it; so it falls to
 * the pixel behind the border everywhere, as the Software device has it. Along its direction it stays, lest its
 * end comes to lie inside a pixel's diamond, whose pixel OpenGL would leave out.
 */
void AppendLine(std::vector<LineVertex>& lines, LineVertex start, LineVertex end)
{
    constexpr float Hair = 1.0F / 64.0F;
    const bool steep = std::fabs(end.at.y - start.at.y) > std::fabs(end.at.x - start.at.x);
    for (LineVertex* vertex : {&start, &end}) {
        (steep ? vertex->at.x : vertex->at.y) += Hair;
        lines.push_back(*vertex);
    }
}

/** All runs as separate lines, to be drawn in one go. */
std::vector<LineVertex> ToLines(const ReducedStrip& strip)
{
    std::vector<LineVertex> lines;
    lines.reserve(strip.points.size() * 2);
    auto nextStart = strip.runStarts.begin();
    for (std::size_t i = 0; i < strip.points.size(); ++i) {
        const bool startsRun = nextStart != strip.runStarts.end() && *nextStart == i;
        if (startsRun)
            ++nextStart;
        else
            AppendLine(lines, {strip.points[i - 1]}, {strip.points[i]});
    }
    return lines;
}

std::optional<LineVertex> ToLineVertex(const DrawCall& call, int targetHeight, std::size_t i)
{
    const std::uint32_t index = call.indices.empty() ? static_cast<std::uint32_t>(i) : call.indices[i];
    const ClipPoint clip = Transform(call.transform, PositionReader(call.layout, call.vertices)(index));
    const WindowPoint window = ToWindow(call.viewport, targetHeight, clip);
    LineVertex vertex{{float(window.x), float(window.y)}};
    if (!std::isfinite(vertex.at.x) || !std::isfinite(vertex.at.y))
        return std::nullopt;
    if (call.layout.has(Attrib::Color0)) {
        const std::size_t offset =
            std::size_t{index} * call.layout.getStride() + call.layout.getOffset(Attrib::Color0);
        std::ranges::copy(call.vertices.subspan(offset, vertex.color.size()), vertex.color.begin());
    }
    return vertex;
}

/** The lines of a list or strip; those at vertices that are not finite are left out. */
std::vector<LineVertex> ToLines(const DrawCall& call, int targetHeight)
{
    const std::size_t count = call.indices.empty() ? call.vertexCount : call.indices.size();
    const std::size_t step = call.topology == Topology::Lines ? 2 : 1;
    std::vector<LineVertex> lines;
    for (std::size_t i = 0; i + 1 < count; i += step) {
        const auto start = ToLineVertex(call, targetHeight, i);
        const auto end = ToLineVertex(call, targetHeight, i + 1);
        if (start && end)
            AppendLine(lines, *start, *end);
    }
    return lines;
}

/** From window coordinates to -1..1 in the viewport. */
Matrix FromWindow(const Rect& viewport, int targetHeight)
{
    const float width = float(std::max(1, viewport.width));
    const float height = float(std::max(1, viewport.height));
    const float bottom = float(targetHeight - viewport.y - viewport.height);
    Matrix matrix{};
    matrix[0] = 2.0F / width;
    matrix[5] = 2.0F / height;
    matrix[12] = -1.0F - 2.0F * float(viewport.x) / width;
    matrix[13] = -1.0F - 2.0F * bottom / height;
    matrix[15] = 1.0F;
    return matrix;
}

class OpenGLTarget final : public Target
{
public:
    OpenGLTarget(OpenGLContext& context, QOpenGLVertexArrayObject& vertexArray, GLuint vertexBuffer, QSize size)
        : m_context(context), m_vertexArray(vertexArray), m_vertexBuffer(vertexBuffer), m_frameBuffer(size)
    {
    }
    ~OpenGLTarget() override
    {
        const CurrentOpenGL current(m_context);
        m_frameBuffer.reset();
    }

    [[nodiscard]] bool IsValid() const { return m_frameBuffer->isValid(); }

    void Clear(const Rect& rect, std::uint32_t rgba) override
    {
        auto& gl = Bind(rect);
        const auto component = [&](int shift) { return float(rgba >> shift & 0xFFU) / 255.0F; };
        gl.glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
        gl.glClearColor(component(24), component(16), component(8), component(0));
        gl.glClear(GL_COLOR_BUFFER_BIT);
    }

    void Draw(const Program& program, const DrawCall& call) override
    {
        auto& gl = Bind(call.viewport);
        const auto rgb = static_cast<GLboolean>(call.writeRgb);
        gl.glColorMask(rgb, rgb, rgb, static_cast<GLboolean>(call.writeAlpha));
        SetBlend(gl, call.blend);
        const auto& shading = static_cast<const OpenGLProgram&>(program);
        const int height = m_frameBuffer->height();
        if (call.topology == Topology::Triangles)
            DrawTriangles(gl, shading, call);
        else
            DrawLines(gl, shading, call,
                      IsReducible(call) ? ToLines(ReduceStrip(call, height)) : ToLines(call, height));
    }

    void Read(std::span<std::uint8_t> pixels) override
    {
        const QSize size = m_frameBuffer->size();
        if (pixels.size() < std::size_t(size.width()) * std::size_t(size.height()) * 4)
            return;
        auto& gl = m_context.Functions();
        m_frameBuffer->bind();
        gl.glPixelStorei(GL_PACK_ALIGNMENT, 1);
        gl.glReadPixels(0, 0, size.width(), size.height(), GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    }

private:
    QOpenGLFunctions& Bind(const Rect& rect)
    {
        auto& gl = m_context.Functions();
        m_frameBuffer->bind();
        const int bottom = m_frameBuffer->height() - rect.y - rect.height;
        gl.glViewport(rect.x, bottom, rect.width, rect.height);
        gl.glEnable(GL_SCISSOR_TEST);
        gl.glScissor(rect.x, bottom, rect.width, rect.height);
        return gl;
    }

    static void SetBlend(QOpenGLFunctions& gl, Blend blend)
    {
        if (blend == Blend::None) {
            gl.glDisable(GL_BLEND);
            return;
        }
        gl.glEnable(GL_BLEND);
        gl.glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, blend == Blend::Over ? GL_ONE : GL_SRC_ALPHA,
                               GL_ONE_MINUS_SRC_ALPHA);
    }

    void DrawLines(QOpenGLFunctions& gl, const OpenGLProgram& program, const DrawCall& call,
                   const std::vector<LineVertex>& lines)
    {
        if (lines.empty())
            return;
        program.Use(FromWindow(call.viewport, m_frameBuffer->height()), call.uniforms);
        DrawVertices(gl, GL_LINES, LineVertexLayout(), lines.data(), lines.size());
    }

    void DrawTriangles(QOpenGLFunctions& gl, const OpenGLProgram& program, const DrawCall& call)
    {
        program.Use(call.transform, call.uniforms);
        if (call.indices.empty())
            DrawVertices(gl, GL_TRIANGLES, call.layout, call.vertices.data(), call.vertexCount);
        else
            DrawVertices(gl, GL_TRIANGLES, call.layout, Unindexed(call).data(), call.indices.size());
    }

    void DrawVertices(QOpenGLFunctions& gl, GLenum mode, const VertexLayout& layout, const void* vertices,
                      std::size_t count)
    {
        const QOpenGLVertexArrayObject::Binder vertexArray(&m_vertexArray);
        gl.glBindBuffer(GL_ARRAY_BUFFER, m_vertexBuffer);
        gl.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(count * layout.getStride()), vertices,
                        GL_STREAM_DRAW);
        for (unsigned i = 0; i < Attrib::Count; ++i)
            SetAttribute(gl, layout, static_cast<Attrib::Enum>(i));
        gl.glDrawArrays(mode, 0, static_cast<GLsizei>(count));
    }

    static void SetAttribute(QOpenGLFunctions& gl, const VertexLayout& layout, Attrib::Enum attrib)
    {
        if (!layout.has(attrib)) {
            gl.glDisableVertexAttribArray(attrib);
            return;
        }
        std::uint8_t num = 0;
        AttribType::Enum type = AttribType::Float;
        bool normalized = false;
        bool asInt = false;
        layout.decode(attrib, num, type, normalized, asInt);
        const auto* offset = reinterpret_cast<const void*>(std::uintptr_t{layout.getOffset(attrib)});
        gl.glEnableVertexAttribArray(attrib);
        gl.glVertexAttribPointer(attrib, num, type == AttribType::Float ? GL_FLOAT : GL_UNSIGNED_BYTE,
                                 static_cast<GLboolean>(normalized), layout.getStride(), offset);
    }

    OpenGLContext& m_context;
    QOpenGLVertexArrayObject& m_vertexArray;
    GLuint m_vertexBuffer;
    std::optional<QOpenGLFramebufferObject> m_frameBuffer;
};

class OpenGLDevice final : public Device
{
public:
    explicit OpenGLDevice(std::unique_ptr<OpenGLContext> context) : m_context(std::move(context))
    {
        const CurrentOpenGL current(*m_context);
        auto& gl = m_context->Functions();
        // A core profile draws with such an object only; others may lack it.
        m_vertexArray.create();
        gl.glGenBuffers(1, &m_vertexBuffer);
        gl.glDisable(GL_DITHER);
        m_maxSize = QueryMaxSize(gl);
    }
    ~OpenGLDevice() override
    {
        m_current.reset();
        const CurrentOpenGL current(*m_context);
        m_vertexArray.destroy();
        if (current.IsValid())
            m_context->Functions().glDeleteBuffers(1, &m_vertexBuffer);
    }

    [[nodiscard]] RendererType::Enum Type() const override { return RendererType::OpenGL; }
    [[nodiscard]] std::uint32_t MaxTextureSize() const override { return m_maxSize; }
    [[nodiscard]] bool OriginBottomLeft() const override { return true; }

    bool BeginFrame() override
    {
        m_current = std::make_unique<CurrentOpenGL>(*m_context);
        if (m_current->IsValid())
            return true;
        m_current.reset();
        return false;
    }
    void EndFrame() override { m_current.reset(); }

    std::unique_ptr<Program> CreateProgram(std::string_view vertexShader, std::string_view fragmentShader) override
    {
        const CurrentOpenGL current(*m_context);
        auto program = std::make_unique<OpenGLProgram>(*m_context);
        if (!current.IsValid() || !program->Build(vertexShader, fragmentShader))
            return nullptr;
        return program;
    }

    std::unique_ptr<Target> CreateTarget(int width, int height) override
    {
        const CurrentOpenGL current(*m_context);
        if (!current.IsValid())
            return nullptr;
        auto target =
            std::make_unique<OpenGLTarget>(*m_context, m_vertexArray, m_vertexBuffer, QSize(width, height));
        if (!target->IsValid())
            return nullptr;
        target->Clear({0, 0, width, height}, 0);
        return target;
    }

private:
    static std::uint32_t QueryMaxSize(QOpenGLFunctions& gl)
    {
        GLint texture = 0;
        std::array<GLint, 2> viewport{};
        gl.glGetIntegerv(GL_MAX_TEXTURE_SIZE, &texture);
        gl.glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport.data());
        return static_cast<std::uint32_t>(std::max(0, std::min({texture, viewport[0], viewport[1]})));
    }

    std::unique_ptr<OpenGLContext> m_context;
    QOpenGLVertexArrayObject m_vertexArray;
    GLuint m_vertexBuffer = 0;
    std::uint32_t m_maxSize = 0;
    CurrentIfValid m_current;
};

} // namespace

std::unique_ptr<Device> MakeOpenGLDevice()
{
    auto context = OpenGLContext::Make();
    return context ? std::make_unique<OpenGLDevice>(std::move(context)) : nullptr;
}

} // namespace vantoraudio::bgfx::device
