#pragma once

#include "render/bgfx/device/Device.h"
#include "render/bgfx/device/OpenGLContext.h"

#include <QtOpenGL/QOpenGLShaderProgram>

#include <memory>
#include <optional>
#include <string>

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

    /** The same program, but it leaves out all pixels but those of some columns; null when the driver refuses it.
     *  A texture of one texel for each column of a target says which: red and green are the first row's number,
     *  blue and alpha that of the row behind the last one, higher bytes first. Our context is current. */
    [[nodiscard]] const OpenGLProgram* ForColumns() const;
    /** For a program for columns that is in use. Its texture is the one that is bound. */
    void SetTargetWidth(int width) const;

private:
    bool AddShader(QOpenGLShader::ShaderType stage, std::string_view text);

    OpenGLContext& m_context;
    std::optional<QOpenGLShaderProgram> m_program;
    std::string m_vertexShader;
    std::string m_fragmentShader;
    /** Made when first asked for. */
    mutable std::unique_ptr<OpenGLProgram> m_forColumns;
    mutable bool m_isForColumnsRefused = false;
};

} // namespace vantoraudio::bgfx::device
