#pragma once

#include "render/bgfx/device/Device.h"
#include "render/bgfx/device/OpenGLContext.h"

#include <QtOpenGL/QOpenGLShaderProgram>

#include <optional>

namespace vantoraudio::bgfx::device {

/** A linked program; attributes stand at the number of their Attrib. */
class OpenGLProgram final : public Program
{
public:
    explicit OpenGLProgram(OpenGLContext& context) : m_context(context) {}
    ~OpenGLProgram() override;

    /** Our context is current. False when the driver refuses the text. */
    bool Build(std::string_view vertexShader, std::string_view fragmentShader);
    void Use(const Matrix& transform, std::span<const UniformValue> uniforms) const;

private:
    bool AddShader(QOpenGLShader::ShaderType stage, std::string_view text);

    OpenGLContext& m_context;
    std::optional<QOpenGLShaderProgram> m_program;
};

} // namespace vantoraudio::bgfx::device
