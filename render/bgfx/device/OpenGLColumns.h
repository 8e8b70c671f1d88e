#pragma once

#include "render/bgfx/device/StripColumns.h"

#include <QtGui/QOpenGLFunctions>

#include <cstdint>

namespace vantoraudio::bgfx::device {

/** The texture that OpenGLProgram::ForColumns() reads. Our context is current in all calls. */
class OpenGLColumns
{
public:
    /** Binds the texture, which is filled only when `version` is another one than the last time. */
    void Bind(QOpenGLFunctions& gl, const StripColumns& columns, std::uint64_t version, int targetWidth);
    void Destroy(QOpenGLFunctions& gl);

private:
    void Create(QOpenGLFunctions& gl);

    GLuint m_texture = 0;
    std::uint64_t m_version = 0;
};

} // namespace vantoraudio::bgfx::device
