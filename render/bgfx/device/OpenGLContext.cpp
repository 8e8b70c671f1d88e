#include "render/bgfx/device/OpenGLContext.h"

#include <QtGui/QGuiApplication>
#include <QtOpenGL/QOpenGLFramebufferObject>

namespace vantoraudio::bgfx::device {

std::unique_ptr<OpenGLContext> OpenGLContext::Make()
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        return nullptr;
    }
    std::unique_ptr<OpenGLContext> context(new OpenGLContext);
    return context->Create() ? std::move(context) : nullptr;
}

bool OpenGLContext::Create()
{
    // Not the application's default format: that may ask for what only its own windows need.
    m_context.setFormat(QSurfaceFormat());
    if (!m_context.create()) {
        return false;
    }
    m_surface.setFormat(m_context.format());
    m_surface.create();
    const CurrentOpenGL current(*this);
    return current.IsValid() && QOpenGLFramebufferObject::hasOpenGLFramebufferObjects() &&
           Functions().hasOpenGLFeature(QOpenGLFunctions::Shaders);
}

CurrentOpenGL::CurrentOpenGL(OpenGLContext& context)
    : m_context(context), m_previous(QOpenGLContext::currentContext())
{
    m_nested = m_previous == &context.m_context;
    m_previousSurface = m_previous ? m_previous->surface() : nullptr;
    m_valid = m_nested || context.m_context.makeCurrent(&context.m_surface);
    if (!m_valid && m_previous) {
        // What belongs to our context must not be freed in the host's.
        m_previous->doneCurrent();
    }
}

CurrentOpenGL::~CurrentOpenGL()
{
    if (m_nested) {
        return;
    }
    if (m_previous) {
        m_previous->makeCurrent(m_previousSurface);
    } else {
        m_context.m_context.doneCurrent();
    }
}

} // namespace vantoraudio::bgfx::device
