#include "ui/waveform/BGFXWaveformDiagramWidget.h"
#include "ui/waveform/rules/Ruler.h"
#include "ui/waveform/rules/TimeScale.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

double XInDiagram(const ViewRange& view, double time, int diagramWidth)
{
    return diagramWidth * (time - view.left) / view.width;
}

void DrawRulerTick(QPainter& painter, double x, const QRect& diagram)
{
    painter.drawLine(QPointF(x, diagram.top() - 1), QPointF(x, diagram.top() - 4));
}

} // namespace

void BGFXWaveformWidget::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    DrawFrame(painter);
    painter.setPen(m_scaleColor);
    DrawRuler(painter);
    DrawAmplitudeLabels(painter);
    painter.setPen(m_positionMarkerColor);
    DrawPositionMarker(painter);
}

void BGFXWaveformWidget::DrawFrame(QPainter& painter) const
{
    painter.setPen(m_frameColor);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(m_diagram->geometry().adjusted(-1, -1, 0, 0));
}

void BGFXWaveformWidget::DrawRuler(QPainter& painter)
{
    const QRect diagram = m_diagram->geometry();
    const ViewRange view = HorizontalRange(m_diagram->GetSceneRect());
    m_scale = UI::CalculateScale(view.Right() - view.left);
    const TimeAxis axis = {
        .view = view, .bufferStart = m_diagram->GetBufferStart(), .totalLength = m_diagram->GetTotalLength()};
    for (const double time : RulerTimes(axis, m_scale)) {
        const double x = diagram.left() + XInDiagram(view, time, m_diagram->width());
        DrawRulerTick(painter, x, diagram);
        const QString label = UI::FormatToTime(time);
        const int width = painter.fontMetrics().horizontalAdvance(label);
        const int halfWidth = width / 2;
        painter.drawText(QRectF(x - halfWidth, diagram.top() - 20, width, 16), Qt::AlignHCenter | Qt::AlignBottom,
                         label);
    }
}

void BGFXWaveformWidget::DrawAmplitudeLabels(QPainter& painter) const
{
    const QRect diagram = m_diagram->geometry();
    for (int k = 0; k < 3; ++k) {
        const double y = diagram.bottom() - diagram.height() * 0.5 * k;
        const double value = m_diagram->GetSceneRect().height() * (k - 1);
        const QString text = QStringLiteral("%1 ").arg(value, 0, 'g', -1, u' ');
        const int halfWidth = painter.fontMetrics().horizontalAdvance(text) / 2;
        painter.drawLine(QPointF(diagram.left() - 4, y), QPointF(diagram.left() - 1, y));
        // Half of the text's width left of the widget's own edge: there the numbers stand beside their ticks.
        painter.drawText(QRectF(-halfWidth, y - 10, 30, 16), Qt::AlignRight | Qt::AlignBottom, text);
    }
}

void BGFXWaveformWidget::DrawPositionMarker(QPainter& painter) const
{
    const QRect diagram = m_diagram->geometry();
    const ViewRange view = HorizontalRange(m_diagram->GetSceneRect());
    const double x = XInDiagram(view, m_diagram->GetAudioPosition(), m_diagram->width());
    if (!(0.0 <= x && x <= diagram.width())) {
        return;
    }
    DrawRulerTick(painter, diagram.left() + x, diagram);
    m_positionIcon->render(&painter, QRectF(diagram.left() + x - 5, diagram.top() - 12, 10, 6));
}

} // namespace vantoraudio::vantorAudioEngine::UI
