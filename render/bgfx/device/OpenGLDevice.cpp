#include "render/bgfx/device/Device.h"
#include "render/bgfx/device/OpenGLColumns.h"
#include "render/bgfx/device/OpenGLContext.h"
#include "render/bgfx/device/OpenGLProgram.h"
#include "render/bgfx/device/WindowLines.h"

#include <QtOpenGL/QOpenGLFramebufferObject>
#include <QtOpenGL/QOpenGLVertexArrayObject>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

namespace vantoraudio::bgfx::device {
namespace {

/** What lives in our context, which is current in all calls. */
class OpenGLPainter
{
public:
    explicit OpenGLPainter(const OpenGLContext& context)
        : m_gl(context.Functions()), m_waveform(context), m_waveformColumns(context), m_color(context)
    {
        m_vertexArray.create();
        m_gl.glGenBuffers(1, &m_vertexBuffer);
        m_columns.Create(m_gl);
        m_gl.glDisable(GL_DITHER);
        m_gl.glEnable(GL_BLEND);
        m_gl.glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
        m_gl.glPixelStorei(GL_PACK_ALIGNMENT, 4);
    }
    ~OpenGLPainter()
    {
        // Without a current context, as after its loss, nearly all is gone already.
        if (QOpenGLContext::currentContext()) {
            m_columns.Destroy(m_gl);
            m_gl.glDeleteBuffers(1, &m_vertexBuffer);
        }
    }
    OpenGLPainter(const OpenGLPainter&) = delete;
    OpenGLPainter& operator=(const OpenGLPainter&) = delete;

    bool BuildPrograms()
    {
        return m_waveform.Build(Programs[WaveformProgramHandle.idx]) &&
               m_waveformColumns.BuildForColumns(Programs[WaveformProgramHandle.idx]) &&
               m_color.Build(Programs[ColorProgramHandle.idx]);
    }

    /** False when there is no memory for a picture of this size. */
    bool Draw(const Frame& frame, QImage& picture)
    {
        m_pictureSize = picture.size();
        if (!FitsFrameBuffer()) {
            m_frameBuffer.emplace(m_pictureSize);
        }
        if (!m_frameBuffer->isValid() || !m_frameBuffer->bind()) {
            return false;
        }
        Clear({QPoint(0, 0), picture.size()}, 0);
        for (const View& view : frame) {
            Draw(view);
        }
        // The first row of the frame buffer is the picture's first: everything is drawn upside down.
        m_gl.glReadPixels(0, 0, picture.width(), picture.height(), GL_RGBA, GL_UNSIGNED_BYTE, picture.bits());
        return true;
    }

private:
    /** Widgets of about the same size share the frame buffer, each from its first row and column on. */
    [[nodiscard]] bool FitsFrameBuffer() const
    {
        const auto area = [](QSize size) { return qint64(size.width()) * size.height(); };
        const QSize size = m_frameBuffer ? m_frameBuffer->size() : QSize();
        return size.width() >= m_pictureSize.width() && size.height() >= m_pictureSize.height() &&
               area(size) <= 2 * area(m_pictureSize);
    }

    void Draw(const View& view)
    {
        if (view.clearColor) {
            Clear(view.viewport, *view.clearColor);
        }
        SetViewport(view.viewport);
        for (const bgfx::Draw& draw : view.draws) {
            if (draw.topology == Topology::Triangles) {
                DrawTriangles(draw, view);
            } else if (const auto columns = ToColumns(draw, view, m_pictureSize)) {
                DrawColumns(*columns, draw, view);
            } else {
                DrawLines(draw, view);
            }
        }
    }

    void SetViewport(const QRect& rect)
    {
        m_gl.glViewport(rect.x(), rect.y(), rect.width(), rect.height());
        m_gl.glEnable(GL_SCISSOR_TEST);
        m_gl.glScissor(rect.x(), rect.y(), rect.width(), rect.height());
    }

    void Clear(const QRect& rect, std::uint32_t rgba)
    {
        const auto component = [&](int shift) { return float(rgba >> shift & 0xFFU) / 255.0F; };
        SetViewport(rect);
        m_gl.glClearColor(component(24), component(16), component(8), component(0));
        m_gl.glClear(GL_COLOR_BUFFER_BIT);
    }

    /** One rectangle, however many lines there are: drivers that draw without a graphics card take milliseconds
     *  for a thousand lines. */
    void DrawColumns(const StripColumns& columns, const bgfx::Draw& draw, const View& view)
    {
        const PixelBox bounds = columns.Bounds();
        if (bounds.IsEmpty()) {
            return;
        }
        m_columns.Bind(m_gl, columns, m_pictureSize.width());
        m_waveformColumns.Use(FromWindow(view.viewport, m_pictureSize), draw.uniforms);
        m_waveformColumns.SetPictureSize(m_pictureSize);
        const LineVertex lower{float(bounds.left), float(bounds.bottom)};
        const LineVertex upper{float(bounds.right), float(bounds.top)};
        const std::array<LineVertex, 6> corners{lower, {upper.x, lower.y}, upper,
                                                upper, {lower.x, upper.y}, lower};
        DrawVertices(GL_TRIANGLES, LineVertexLayout, corners.data(), corners.size());
    }

    void DrawLines(const bgfx::Draw& draw, const View& view)
    {
        const std::vector<LineVertex> lines = ToWindowLines(draw, view, m_pictureSize);
        if (!lines.empty()) {
            ProgramOf(draw).Use(FromWindow(view.viewport, m_pictureSize), draw.uniforms);
            DrawVertices(GL_LINES, LineVertexLayout, lines.data(), lines.size());
        }
    }

    void DrawTriangles(const bgfx::Draw& draw, const View& view)
    {
        ProgramOf(draw).Use(view.transform, draw.uniforms);
        DrawVertices(GL_TRIANGLES, draw.layout, draw.vertices.data(), draw.VertexCount());
    }

    OpenGLProgram& ProgramOf(const bgfx::Draw& draw)
    {
        return draw.program.idx == WaveformProgramHandle.idx ? m_waveform : m_color;
    }

    void DrawVertices(GLenum mode, const VertexLayout& layout, const void* vertices, std::size_t count)
    {
        // A core profile draws with such an object only; others may lack it.
        const QOpenGLVertexArrayObject::Binder vertexArray(&m_vertexArray);
        m_gl.glBindBuffer(GL_ARRAY_BUFFER, m_vertexBuffer);
        m_gl.glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(count * layout.getStride()), vertices,
                          GL_STREAM_DRAW);
        m_gl.glEnableVertexAttribArray(0);
        m_gl.glVertexAttribPointer(0, layout.coordinates, GL_FLOAT, GL_FALSE, layout.getStride(), nullptr);
        if (layout.hasColor) {
            const auto* offset = reinterpret_cast<const void*>(std::uintptr_t{layout.ColorOffset()});
            m_gl.glEnableVertexAttribArray(1);
            m_gl.glVertexAttribPointer(1, 4, GL_UNSIGNED_BYTE, GL_TRUE, layout.getStride(), offset);
        } else {
            m_gl.glDisableVertexAttribArray(1);
        }
        m_gl.glDrawArrays(mode, 0, static_cast<GLsizei>(count));
    }

    QOpenGLFunctions& m_gl;
    OpenGLProgram m_waveform;
    OpenGLProgram m_waveformColumns;
    OpenGLProgram m_color;
    OpenGLColumns m_columns;
    QOpenGLVertexArrayObject m_vertexArray;
    /** Filled again by every draw. */
    GLuint m_vertexBuffer = 0;
    std::optional<QOpenGLFramebufferObject> m_frameBuffer;
    /** Of the frame at hand. */
    QSize m_pictureSize;
};

class OpenGLDevice final : public Device
{
public:
    /** False when the driver cannot do what drawing takes: some make a context and fail at the first thing that it
     * is asked to do. */
    bool Create()
    {
        m_context = OpenGLContext::Make();
        if (!m_context) {
            return false;
        }
        const CurrentOpenGL current(*m_context);
        if (!current.IsValid()) {
            return false;
        }
        m_painter.emplace(*m_context);
        m_maxSide = QueryMaxSide(m_context->Functions());
        QImage picture(1, 1, QImage::Format_RGBA8888);
        return m_painter->BuildPrograms() && m_painter->Draw({}, picture);
    }
    ~OpenGLDevice() override
    {
        if (m_context) {
            const CurrentOpenGL current(*m_context);
            m_painter.reset();
        }
    }

    [[nodiscard]] device::Kind Kind() const override { return device::Kind::OpenGL; }
    [[nodiscard]] int MaxSide() const override { return m_maxSide; }

    bool Draw(const Frame& frame, QImage& picture) override
    {
        // Gives the host's own context back at the end, also when memory runs out in between.
        const CurrentOpenGL current(*m_context);
        return current.IsValid() && m_painter->Draw(frame, picture);
    }

private:
    static int QueryMaxSide(QOpenGLFunctions& gl)
    {
        GLint texture = 0;
        std::array<GLint, 2> viewport{};
        gl.glGetIntegerv(GL_MAX_TEXTURE_SIZE, &texture);
        gl.glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport.data());
        // The texture of the columns carries 16-bit rows.
        return std::clamp(std::min({texture, viewport[0], viewport[1]}), 0, 65535);
    }

    // The context stands first: it must outlive what lives in it.
    std::unique_ptr<OpenGLContext> m_context;
    std::optional<OpenGLPainter> m_painter;
    int m_maxSide = 0;
};

} // namespace

std::unique_ptr<Device> MakeOpenGLDevice()
{
    auto device = std::make_unique<OpenGLDevice>();
    return device->Create() ? std::move(device) : nullptr;
}

} // namespace vantoraudio::bgfx::device
