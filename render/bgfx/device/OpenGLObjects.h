#pragma once

#include <QtGui/QOpenGLFunctions>
#include <QtOpenGL/QOpenGLVertexArrayObject>

namespace vantoraudio::bgfx::device {

/** What all targets of an OpenGL device draw with. Our context is current in all calls. */
class OpenGLObjects
{
public:
    void Create(QOpenGLFunctions& gl);
    /** `isCurrent` false: the context is lost, and with it nearly all. */
    void Destroy(QOpenGLFunctions& gl, bool isCurrent);

    /** A core profile draws with such an object only; others may lack it. */
    [[nodiscard]] QOpenGLVertexArrayObject& VertexArray() { return m_vertexArray; }
    /** Filled anew by every draw. */
    [[nodiscard]] GLuint VertexBuffer() const { return m_vertexBuffer; }

private:
    QOpenGLVertexArrayObject m_vertexArray;
    GLuint m_vertexBuffer = 0;
};

} // namespace vantoraudio::bgfx::device
