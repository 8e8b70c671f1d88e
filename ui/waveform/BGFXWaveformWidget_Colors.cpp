#include "ui/waveform/BGFXWaveformDiagramWidget.h"
#include "ui/waveform/rules/ViewColors.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtGui/QPalette>

namespace vantoraudio::vantorAudioEngine::UI {

void BGFXWaveformWidget::SetColorsFollowPalette(bool follow)
{
    if (follow == GetColorsFollowPalette()) {
        return;
    }
    if (follow) {
        m_setColors = std::make_unique<ViewColors>(ShownColors());
        Show(ColorsOf(palette()));
    } else {
        Show(*m_setColors);
        m_setColors.reset();
    }
}

ViewColors BGFXWaveformWidget::ShownColors() const
{
    return {.background = m_diagram->m_backgroundColor,
            .grid = m_diagram->m_gridColor,
            .waveform = m_diagram->m_waveformColor,
            .selection = m_diagram->m_selectionColor,
            .positionLine = m_diagram->m_positionMarkerColor,
            .positionTick = m_positionMarkerColor,
            .frame = m_frameColor,
            .scale = m_scaleColor};
}

void BGFXWaveformWidget::Show(const ViewColors& colors)
{
    m_diagram->m_backgroundColor = colors.background;
    m_diagram->m_gridColor = colors.grid;
    m_diagram->m_waveformColor = colors.waveform;
    m_diagram->m_selectionColor = colors.selection;
    m_diagram->m_positionMarkerColor = colors.positionLine;
    m_positionMarkerColor = colors.positionTick;
    m_frameColor = colors.frame;
    m_scaleColor = colors.scale;
    Update();
}

void BGFXWaveformWidget::SetAudioPositionMarkerColor(const QColor& color)
{
    (m_setColors ? m_setColors->positionTick : m_positionMarkerColor) = color;
    (m_setColors ? m_setColors->positionLine : m_diagram->m_positionMarkerColor) = color;
}

void BGFXWaveformWidget::SetAudioSelectionColor(const QColor& color)
{
    (m_setColors ? m_setColors->selection : m_diagram->m_selectionColor) = color;
}

void BGFXWaveformWidget::SetBackgroundColor(const QColor& color)
{
    (m_setColors ? m_setColors->background : m_diagram->m_backgroundColor) = color;
}

void BGFXWaveformWidget::SetFrameColor(const QColor& color)
{
    (m_setColors ? m_setColors->frame : m_frameColor) = color;
}

void BGFXWaveformWidget::SetGridColor(const QColor& color)
{
    (m_setColors ? m_setColors->grid : m_diagram->m_gridColor) = color;
}

void BGFXWaveformWidget::SetScaleColor(const QColor& color)
{
    (m_setColors ? m_setColors->scale : m_scaleColor) = color;
}

void BGFXWaveformWidget::SetWaveformColor(const QColor& color)
{
    (m_setColors ? m_setColors->waveform : m_diagram->m_waveformColor) = color;
}

} // namespace vantoraudio::vantorAudioEngine::UI
