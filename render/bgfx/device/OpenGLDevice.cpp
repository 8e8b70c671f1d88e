#include "render/bgfx/device/OpenGLDevice.h"

#include "render/bgfx/device/LastColumns.h"
#include "render/bgfx/device/OpenGLColumns.h"
#include "render/bgfx/device/OpenGLContext.h"
#include "render/bgfx/device/OpenGLObjects.h"
#include "render/bgfx/device/OpenGLProgram.h"
#include "render/bgfx/device/WindowLines.h"

#include <QtOpenGL/QOpenGLFramebufferObject>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

namespace vantoraudio::bgfx::device {
namespace {

using CurrentIfValid = std::unique_ptr<CurrentOpenGL>;

/** The vertices of an indexed draw one by one, since OpenGL ES 2 knows no 32-bit indices. */
std::vector<std::uint8_t> Unindexed(const DrawCall& call)
{
    const std::size_t stride = call.layout.getStride();
    std::vector<std::uint8_t> bytes(call.indices.size() * stride);
    auto into = bytes.begin();
    for (const std::uint32_t index : call.indices) {
        into = std::ranges::copy(call.vertices.subspan(index * stride, stride), into).out;
    }
    return bytes;
}

class OpenGLTarget final : public Target
{
public:
    OpenGLTarget(OpenGLContext& context, OpenGLObjects& objects, QSize size)
        : m_context(context), m_objects(objects), m_frameBuffer(size), m_lastColumns(size.width(), size.height())
    {
    }
    ~OpenGLTarget() override
    {
        const CurrentOpenGL current(m_context);
        m_frameBuffer.reset();
        if (current.IsValid()) {
            m_columns.Destroy(m_context.Functions());
        }
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
        if (call.topology == Topology::Triangles) {
            DrawTriangles(gl, shading, call);
        } else if (!DrawColumns(gl, shading, call)) {
            DrawLines(gl, shading, call);
        }
    }

    void Read(std::span<std::uint8_t> pixels) override
    {
        const QSize size = m_frameBuffer->size();
        if (pixels.size() < std::size_t(size.width()) * std::size_t(size.height()) * 4) {
            return;
        }
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

    /** One rectangle, however many lines there are: drivers that draw without a graphics card take milliseconds
     *  for a thousand lines. False for what cannot be drawn so. */
    bool DrawColumns(QOpenGLFunctions& gl, const OpenGLProgram& program, const DrawCall& call)
    {
        const auto& columns = m_lastColumns.Of(call);
        const OpenGLProgram* shading = columns ? program.ForColumns() : nullptr;
        if (!shading) {
            return false;
        }
        const PixelBox bounds = columns->Bounds();
        if (bounds.IsEmpty()) {
            return true;
        }
        m_columns.Bind(gl, *columns, m_lastColumns.Version(), m_frameBuffer->width());
        shading->Use(FromWindow(call.viewport, m_frameBuffer->height()), call.uniforms);
        shading->SetTargetWidth(m_frameBuffer->width());
        const LineVertex lower{float(bounds.left), float(bounds.bottom)};
        const LineVertex upper{float(bounds.right), float(bounds.top)};
        const std::array<LineVertex, 6> corners{lower, {upper.x, lower.y}, upper,
                                                upper, {lower.x, upper.y}, lower};
        DrawVertices(gl, GL_TRIANGLES, LineVertexLayout(), corners.data(), corners.size());
        return true;
    }

    void DrawLines(QOpenGLFunctions& gl, const OpenGLProgram& program, const DrawCall& call)
    {
        const std::vector<LineVertex> lines = ToWindowLines(call, m_frameBuffer->width(), m_frameBuffer->height());
        if (lines.empty()) {
            return;
        }
        program.Use(FromWindow(call.viewport, m_frameBuffer->height()), call.uniforms);
        DrawVertices(gl, GL_LINES, LineVertexLayout(), lines.data(), lines.size());
    }

    void DrawTriangles(QOpenGLFunctions& gl, const OpenGLProgram& program, const DrawCall& call)
    {
        program.Use(call.transform, call.uniforms);
        if (call.indices.empty()) {
            DrawVertices(gl, GL_TRIANGLES, call.layout, call.vertices.data(), call.vertexCount);
        } else {
            DrawVertices(gl, GL_TRIANGLES, call.layout, Unindexed(call).data(), call.indices.size());
        }
    }

    void DrawVertices(QOpenGLFunctions& gl, GLenum mode, const VertexLayout& layout, const void* vertices,
                      std::size_t count)
    {
        const QOpenGLVertexArrayObject::Binder vertexArray(&m_objects.VertexArray());
        gl.glBindBuffer(GL_ARRAY_BUFFER, m_objects.VertexBuffer());
        gl.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(count * layout.getStride()), vertices,
                        GL_STREAM_DRAW);
        for (unsigned i = 0; i < Attrib::Count; ++i) {
            SetAttribute(gl, layout, static_cast<Attrib::Enum>(i));
        }
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
    OpenGLObjects& m_objects;
    std::optional<QOpenGLFramebufferObject> m_frameBuffer;
    LastColumns m_lastColumns;
    OpenGLColumns m_columns;
};

class OpenGLDevice final : public Device
{
public:
    explicit OpenGLDevice(std::unique_ptr<OpenGLContext> context) : m_context(std::move(context))
    {
        const CurrentOpenGL current(*m_context);
        auto& gl = m_context->Functions();
        m_objects.Create(gl);
        gl.glDisable(GL_DITHER);
        m_maxSize = QueryMaxSize(gl);
    }
    ~OpenGLDevice() override
    {
        m_current.reset();
        const CurrentOpenGL current(*m_context);
        m_objects.Destroy(m_context->Functions(), current.IsValid());
    }

    [[nodiscard]] RendererType::Enum Type() const override { return RendererType::OpenGL; }
    [[nodiscard]] std::uint32_t MaxTextureSize() const override { return m_maxSize; }
    [[nodiscard]] bool OriginBottomLeft() const override { return true; }
    [[nodiscard]] bool IsLost() const override { return m_isLost; }

    bool BeginFrame() override
    {
        // First gives back what a frame without an end has left: assigned over, it would end inside the new one.
        m_current.reset();
        m_current = std::make_unique<CurrentOpenGL>(*m_context);
        if (m_current->IsValid()) {
            return true;
        }
        m_current.reset();
        m_isLost = true;
        return false;
    }
    void EndFrame() override { m_current.reset(); }

    std::unique_ptr<Program> CreateProgram(std::string_view vertexShader, std::string_view fragmentShader) override
    {
        const CurrentOpenGL current(*m_context);
        if (!current.IsValid()) {
            m_isLost = true;
            return nullptr;
        }
        auto program = std::make_unique<OpenGLProgram>(*m_context);
        return program->Build(vertexShader, fragmentShader) ? std::move(program) : nullptr;
    }

    std::unique_ptr<Target> CreateTarget(int width, int height) override
    {
        const CurrentOpenGL current(*m_context);
        if (!current.IsValid()) {
            return nullptr;
        }
        auto target = std::make_unique<OpenGLTarget>(*m_context, m_objects, QSize(width, height));
        if (!target->IsValid()) {
            return nullptr;
        }
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
    OpenGLObjects m_objects;
    std::uint32_t m_maxSize = 0;
    CurrentIfValid m_current;
    bool m_isLost = false;
};

/** Some drivers make a context and then fail at the first thing that it is asked to do. */
bool CanDraw(OpenGLDevice& device)
{
    const auto program = device.CreateProgram(
        "attribute vec2 a_position;\nvoid main() { gl_Position = vec4(a_position, 0.0, 1.0); }\n",
        "uniform vec4 u_color;\nvoid main() { gl_FragColor = u_color; }\n");
    return program && device.CreateTarget(1, 1);
}

} // namespace

std::unique_ptr<Device> MakeOpenGLDevice()
{
    auto context = OpenGLContext::Make();
    if (!context) {
        return nullptr;
    }
    auto device = std::make_unique<OpenGLDevice>(std::move(context));
    return CanDraw(*device) ? std::move(device) : nullptr;
}

} // namespace vantoraudio::bgfx::device
