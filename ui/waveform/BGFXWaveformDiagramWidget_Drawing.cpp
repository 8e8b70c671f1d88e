#include "ui/waveform/BGFXWaveformDiagramWidget.h"
#include "ui/waveform/drawing/Projection.h"
#include "ui/waveform/rules/TimeScale.h"

#include <QtCore/QDebug>
#include <QtGui/QPaintEvent>
#include <QtGui/QResizeEvent>
#include <QtGui/QShowEvent>

#include <array>
#include <cstdint>
#include <vector>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using vantor3D::Color;
using vantor3D::Line;
using vantor3D::Vertex::Pos3fColorRGBA;
using vantor3DQt::BGFXRenderer;
using vantor3DQt::BGFXViewContext;
using vantor3DQt::LineStipple;

constexpr LineStipple Dashed = {.pattern = 0x0F0F, .factor = 1};
constexpr float SelectionAlpha = 0.5F;

Color ColorOf(const QColor& color)
{
    return {.red = color.redF(), .green = color.greenF(), .blue = color.blueF(), .alpha = color.alphaF()};
}

Line HorizontalLine(double left, double right, double y, const QColor& color)
{
    return {.start = {ToCoordinate(left), ToCoordinate(y), 0.0F},
            .end = {ToCoordinate(right), ToCoordinate(y), 0.0F},
            .color = ColorOf(color)};
}

Line VerticalLine(double x, double extent, const QColor& color)
{
    return {.start = {ToCoordinate(x), ToCoordinate(-extent), 0.0F},
            .end = {ToCoordinate(x), ToCoordinate(extent), 0.0F},
            .color = ColorOf(color)};
}

void WriteEvent(const char* kind, const BGFXWaveformDiagramWidget* widget, const QEvent* event)
{
    qDebug() << "BGFXWaveformDiagramWidget"
             << "::" << kind << "[this:" << widget << "]"
             << "[objectName:" << widget->objectName() << "]"
             << "[event: " << event << "]";
}

} // namespace

void BGFXWaveformDiagramWidget::paintEvent(QPaintEvent* event)
{
    WriteEvent("QPaintEvent", this, event);
    if (Renderer().StartFrame(FrameBuffer())) {
        Render();
        Renderer().PresentSubmittedFrame(false);
        if (event != nullptr) {
            Flush();
        }
    }
    if (event != nullptr) {
        event->accept();
    }
}

void BGFXWaveformDiagramWidget::resizeEvent(QResizeEvent* event)
{
    WriteEvent("QResizeEvent", this, event);
    BGFXOffscreenWidget::resizeEvent(event);
}

void BGFXWaveformDiagramWidget::showEvent(QShowEvent* event)
{
    WriteEvent("QShowEvent", this, event);
    BGFXOffscreenWidget::showEvent(event);
}

void BGFXWaveformDiagramWidget::Render()
{
    m_program.EnsureCreated();
    m_projection = ProjectionOf(m_sceneRect, m_buffer.start);
    DrawGrid();
    if (!HasAudio() || m_geometry.IsEmpty()) {
        return;
    }
    DrawWaveform();
    BeginView(m_overlayView);
    m_overlayView.SetClear(bgfx::BGFX_CLEAR_DEPTH, 0x000000ff, 1.0F, 0);
    DrawPosition();
    DrawSelection();
}

void BGFXWaveformDiagramWidget::BeginView(const BGFXViewContext& view)
{
    view.SetTransform(QMatrix4x4(), m_projection);
    view.SetViewport(ViewportRect());
}

void BGFXWaveformDiagramWidget::DrawGrid()
{
    BeginView(m_gridView);
    m_gridView.SetClear(bgfx::BGFX_CLEAR_COLOR | bgfx::BGFX_CLEAR_DEPTH, ColorOf(m_backgroundColor).ToRGBA(), 1.0F,
                        0);
    m_program.SetColor(m_waveformColor);

    const TimeAxis axis = {.view = View(), .bufferStart = m_buffer.start, .totalLength = GetTotalLength()};
    std::vector<Line> lines;
    for (const double share : {-0.6, -0.3, 0.0, 0.3, 0.6}) {
        lines.push_back(HorizontalLine(axis.view.left - axis.bufferStart, axis.view.Right() - axis.bufferStart,
                                       m_amplitudeExtent * share, m_gridColor));
    }
    Renderer().DrawLines(m_gridView, lines, Dashed);

    lines.clear();
    for (const double x : GridOffsets(axis, CalculateScale(axis.view.Right() - axis.view.left))) {
        lines.push_back(VerticalLine(x, m_amplitudeExtent, m_gridColor));
    }
    Renderer().DrawLines(m_gridView, lines, Dashed);
}

void BGFXWaveformDiagramWidget::DrawWaveform()
{
    BeginView(m_waveformView);
    m_waveformView.SetClear(bgfx::BGFX_CLEAR_DEPTH, 0x000000ff, 1.0F, 0);
    m_program.SetColor(m_waveformColor);
    const ViewRange view = View();
    m_geometry.Draw(m_waveformView.Id(), m_program.Handle(),
                    {.left = ToCoordinate(view.left - m_buffer.start),
                     .right = ToCoordinate(view.Right() - m_buffer.start),
                     .columns = bgfx::PixelColumns(m_projection, ViewportRect())});
}

void BGFXWaveformDiagramWidget::DrawPosition()
{
    const std::array line = {
        VerticalLine(GetShownPosition() - m_buffer.start, m_amplitudeExtent, m_positionMarkerColor)};
    Renderer().DrawLines(m_overlayView, line);
}

void BGFXWaveformDiagramWidget::DrawSelection()
{
    if (!m_selection.isPresent) {
        return;
    }
    const float start = ToCoordinate(m_selection.times.first - m_buffer.start);
    const float end = ToCoordinate(m_selection.times.second - m_buffer.start);
    const float extent = ToCoordinate(m_amplitudeExtent);
    Color color = ColorOf(m_selectionColor);
    color.alpha = SelectionAlpha;
    const std::uint32_t rgba = color.ToVertexColor();
    const std::array<Pos3fColorRGBA, 4> corners = {{{start, -extent, 0.0F, rgba},
                                                    {end, -extent, 0.0F, rgba},
                                                    {end, extent, 0.0F, rgba},
                                                    {start, extent, 0.0F, rgba}}};
    static constexpr std::array<std::uint16_t, 6> indices = {0, 1, 2, 2, 3, 0};
    Renderer().DrawTriangles(m_overlayView, corners, indices, BGFXRenderer::STATE_TRANSPARENT);
}

} // namespace vantoraudio::vantorAudioEngine::UI
