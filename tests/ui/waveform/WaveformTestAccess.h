#pragma once

#include "ui/waveform/BGFXWaveformDiagramWidget.h"
#include "ui/waveform/rules/ViewColors.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtSvg/QSvgRenderer>
#include <QtWidgets/QScrollBar>

namespace vantoraudio::vantorAudioEngine::UI {

/** Lets tests see what the waveform widgets keep to themselves. */
class WaveformTestAccess
{
public:
    using Diagram = BGFXWaveformDiagramWidget;
    using Widget = BGFXWaveformWidget;

    static Diagram& DiagramOf(Widget& widget) { return *widget.m_diagram; }
    static QScrollBar& ScrollBarOf(Widget& widget) { return *widget.m_scrollBar; }
    static QSvgRenderer& IconOf(Widget& widget) { return *widget.m_positionIcon; }
    static QColor FrameColor(const Widget& widget) { return widget.m_frameColor; }
    static QColor ScaleColor(const Widget& widget) { return widget.m_scaleColor; }
    static QColor MarkerColor(const Widget& widget) { return widget.m_positionMarkerColor; }
    static ViewColors ColorsOf(const Widget& widget) { return widget.ShownColors(); }
    static double Scale(const Widget& widget) { return widget.m_scale; }

    static QMatrix4x4 Projection(const Diagram& diagram) { return diagram.m_projection; }
    static double Duration(const Diagram& diagram) { return diagram.m_duration; }
    static QAudioFormat Format(const Diagram& diagram) { return diagram.m_format; }
    static QPoint& PressPosition(Diagram& diagram) { return diagram.m_pressPosition; }
    static BufferedRange& Buffer(Diagram& diagram) { return diagram.m_buffer; }
    static double& RequestedStart(Diagram& diagram) { return diagram.m_requestedStart; }
    static int& StepSize(Diagram& diagram) { return diagram.m_stepSize; }
    static bool HasSelection(const Diagram& diagram) { return diagram.m_selection.isPresent; }
    static SelectionTimes SelectionAtGrab(const Diagram& diagram) { return diagram.m_selectionAtGrab; }
    static Grab& GrabOf(Diagram& diagram) { return diagram.m_grab; }
    static bool IsBorderScrolling(const Diagram& diagram) { return diagram.m_borderScroll.isActive(); }
    static bool IsLineMoving(const Diagram& diagram) { return diagram.m_lineTimer.isActive(); }
    static void TickLine(Diagram& diagram) { diagram.MoveLine(); }
    static bool ScrollBackToZoomOut(const Diagram& diagram) { return diagram.m_scrollBackToZoomOut; }
    static double AmplitudeExtentOf(const Diagram& diagram) { return diagram.m_amplitudeExtent; }
    static QMutex& BufferLock(Diagram& diagram) { return diagram.m_bufferLock; }
    static bool HasProgram(const Diagram& diagram) { return diagram.m_program.m_isCreated; }
    static bool HasUniform(const Diagram& diagram) { return bgfx::isValid(diagram.m_program.m_colorUniform); }
    static bool HasVertexBuffer(const Diagram& diagram)
    {
        return bgfx::isValid(diagram.m_geometry.m_vertexBuffer);
    }
    static const WaveformStrip& Vertices(const Diagram& diagram) { return diagram.m_geometry.m_strip; }
    static const auto& DrawnVertices(const Diagram& diagram) { return diagram.m_geometry.m_vertices; }
    static void PaintWithoutEvent(Diagram& diagram) { diagram.paintEvent(nullptr); }
    static void MoveWithoutEvent(Diagram& diagram) { diagram.mouseMoveEvent(nullptr); }
};

} // namespace vantoraudio::vantorAudioEngine::UI
