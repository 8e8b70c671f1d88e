#include "ui/waveform/drawing/WaveformProgram.h"

#include "render/vantor3D/ProgramFactory.h"

#include <array>

namespace vantoraudio::vantorAudioEngine::UI {

WaveformProgram::~WaveformProgram()
{
    Drop();
}

void WaveformProgram::EnsureCreated()
{
    if (m_isCreated) {
        return;
    }
    // A frame that found no program has left the uniform behind.
    if (!bgfx::isValid(m_colorUniform)) {
        m_colorUniform = bgfx::createUniform("u_waveformColor", bgfx::UniformType::Vec4, 1);
    }
    m_program =
        vantor3D::ProgramFactory::Get().CreateProgram("vs_waveform_basic_2d", "fs_waveform_samples").value();
    m_isCreated = true;
}

void WaveformProgram::Drop()
{
    if (bgfx::isValid(m_colorUniform)) {
        bgfx::destroy(m_colorUniform);
        m_colorUniform = {};
    }
    m_isCreated = false;
}

void WaveformProgram::SetColor(const QColor& color) const
{
    const std::array value = {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
    bgfx::setUniform(m_colorUniform, value.data());
}

} // namespace vantoraudio::vantorAudioEngine::UI
