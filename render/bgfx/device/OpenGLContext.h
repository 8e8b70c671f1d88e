#pragma once

#include <QtCore/QPointer>
#include <QtGui/QOffscreenSurface>
#include <QtGui/QOpenGLContext>
#include <QtGui/QOpenGLFunctions>

#include <memory>

namespace vantoraudio::bgfx::device {

/** An OpenGL context of our own with a surface that is never shown. */
class OpenGLContext
{
public:
    /** Null where none can be made that has frame buffers and shaders. Needs the application object. */
    static std::unique_ptr<OpenGLContext> Make();

    [[nodiscard]] QOpenGLFunctions& Functions() const { return *m_context.functions(); }
    [[nodiscard]] bool IsEmbedded() const { return m_context.isOpenGLES(); }
    [[nodiscard]] bool IsCoreProfile() const
    {
        return m_context.format().profile() == QSurfaceFormat::CoreProfile;
    }

private:
    friend class CurrentOpenGL;
    friend class OpenGLContextTestAccess;

    OpenGLContext() = default;
    bool Create();

    // The surface stands first: the context goes while it is still there.
    QOffscreenSurface m_surface;
    QOpenGLContext m_context;
};

/** While it lives, our context is current, if `IsValid()`; then the host's own one is again, or none as before.
 * The host may be in the middle of painting a QOpenGLWidget. Can be nested. */
class CurrentOpenGL
{
public:
    explicit CurrentOpenGL(OpenGLContext& context);
    CurrentOpenGL(const CurrentOpenGL&) = delete;
    CurrentOpenGL& operator=(const CurrentOpenGL&) = delete;
    ~CurrentOpenGL();

    [[nodiscard]] bool IsValid() const { return m_valid; }

private:
    OpenGLContext& m_context;
    QPointer<QOpenGLContext> m_previous;
    QSurface* m_previousSurface = nullptr;
    bool m_nested = false;
    bool m_valid = false;
};

} // namespace vantoraudio::bgfx::device
