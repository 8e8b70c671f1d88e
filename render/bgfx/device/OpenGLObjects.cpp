#include "render/bgfx/device/OpenGLObjects.h"

namespace vantoraudio::bgfx::device {

void OpenGLObjects::Create(QOpenGLFunctions& gl)
{
    m_vertexArray.create();
    gl.glGenBuffers(1, &m_vertexBuffer);
}

void OpenGLObjects::Destroy(QOpenGLFunctions& gl, bool isCurrent)
{
    m_vertexArray.destroy();
    if (isCurrent) {
        gl.glDeleteBuffers(1, &m_vertexBuffer);
    }
}

} // namespace vantoraudio::bgfx::device
