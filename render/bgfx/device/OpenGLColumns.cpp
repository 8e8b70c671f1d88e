#include "render/bgfx/device/OpenGLColumns.h"

#include <vector>

namespace vantoraudio::bgfx::device {
namespace {

/** A whole row of a picture, without anything beside the columns. */
std::vector<std::uint8_t> ToTexels(const StripColumns& columns, int pictureWidth)
{
    std::vector<std::uint8_t> texels(static_cast<std::size_t>(pictureWidth) * 4);
    auto into = texels.begin() + std::ptrdiff_t{4} * columns.box.left;
    for (const RowSpan& span : columns.rows) {
        for (const int row : {span.lower, span.upper}) {
            *into++ = static_cast<std::uint8_t>(row >> 8);
            *into++ = static_cast<std::uint8_t>(row);
        }
    }
    return texels;
}

} // namespace

void OpenGLColumns::Create(QOpenGLFunctions& gl)
{
    gl.glGenTextures(1, &m_texture);
    gl.glBindTexture(GL_TEXTURE_2D, m_texture);
    for (const GLenum filter : {GLenum(GL_TEXTURE_MIN_FILTER), GLenum(GL_TEXTURE_MAG_FILTER)}) {
        gl.glTexParameteri(GL_TEXTURE_2D, filter, GL_NEAREST);
    }
    for (const GLenum direction : {GLenum(GL_TEXTURE_WRAP_S), GLenum(GL_TEXTURE_WRAP_T)}) {
        gl.glTexParameteri(GL_TEXTURE_2D, direction, GL_CLAMP_TO_EDGE);
    }
}

void OpenGLColumns::Destroy(QOpenGLFunctions& gl)
{
    gl.glDeleteTextures(1, &m_texture);
    m_texture = 0;
}

void OpenGLColumns::Bind(QOpenGLFunctions& gl, const StripColumns& columns, int pictureWidth)
{
    const std::vector<std::uint8_t> texels = ToTexels(columns, pictureWidth);
    gl.glBindTexture(GL_TEXTURE_2D, m_texture);
    gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, pictureWidth, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
}

} // namespace vantoraudio::bgfx::device
