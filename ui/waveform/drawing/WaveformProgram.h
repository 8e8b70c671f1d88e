#pragma once

#include "render/bgfx/bgfx.h"

#include <QtGui/QColor>

namespace vantoraudio::vantorAudioEngine::UI {

/** The shader program that draws the waveform in one colour. GUI thread only. */
class WaveformProgram
{
public:
    WaveformProgram() = default;
    ~WaveformProgram();
    WaveformProgram(const WaveformProgram&) = delete;
    WaveformProgram& operator=(const WaveformProgram&) = delete;

    /** Throws std::bad_optional_access when there is no such program: nothing useful could be drawn without it. */
    void EnsureCreated();
    /** Lets EnsureCreated() create everything again. The program itself belongs to its factory. */
    void Drop();

    void SetColor(const QColor& color) const;
    [[nodiscard]] bgfx::ProgramHandle Handle() const { return m_program; }

private:
    friend class WaveformTestAccess;

    bool m_isCreated = false;
    bgfx::UniformHandle m_colorUniform;
    bgfx::ProgramHandle m_program;
};

} // namespace vantoraudio::vantorAudioEngine::UI
