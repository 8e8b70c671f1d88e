#pragma once

#include "render/bgfx/device/StripColumns.h"

#include <QtGui/QOpenGLFunctions>

namespace vantoraudio::bgfx::device {

/** The texture that tells a fragment shader which rows of each pixel column to draw: one texel a column, red and
 * green are the first row's number, blue and alpha that of the row behind the last one, higher bytes first. Our
 * context is current in all calls. */
class OpenGLColumns
{
public:
    void Create(QOpenGLFunctions& gl);
    void Destroy(QOpenGLFunctions& gl);
    /** Fills the texture with the columns of a picture and binds it. */
    void Bind(QOpenGLFunctions& gl, const StripColumns& columns, int pictureWidth);

private:
    GLuint m_texture = 0;
};

} // namespace vantoraudio::bgfx::device
