#pragma once

#include "render/bgfx/Frame.h"
#include "render/bgfx/device/OpenGLContext.h"

#include <QtCore/QByteArray>
#include <QtOpenGL/QOpenGLShaderProgram>

#include <span>

namespace vantoraudio::bgfx::device {

/** A linked program for our context, which is current in all calls. Positions are attribute 0, colours
 * attribute 1. */
class OpenGLProgram
{
public:
    explicit OpenGLProgram(const OpenGLContext& context) : m_context(context) {}

    /** False when the driver refuses it. */
    bool Build(const Program& program);
    /** The same program, but it draws only those pixels that OpenGLColumns' texture tells of. */
    bool BuildForColumns(const Program& program);

    /** `transform` leads to -1..1 with y upwards; rows of the frame buffer count from the top. */
    void Use(const QMatrix4x4& transform, std::span<const UniformValue> uniforms);
    /** For a program for columns that is in use. */
    void SetPictureSize(QSize size);

private:
    bool Build(const QByteArray& vertexShader, const QByteArray& fragmentShader);
    bool AddShader(QOpenGLShader::ShaderType stage, const QByteArray& text);

    const OpenGLContext& m_context;
    QOpenGLShaderProgram m_program;
};

} // namespace vantoraudio::bgfx::device
