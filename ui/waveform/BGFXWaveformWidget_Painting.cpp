#include "ui/waveform/BGFXWaveformDiagramWidget.h"
#include "ui/waveform/rules/Ruler.h"
#include "ui/waveform/rules/TimeScale.h"
#include "ui/waveform/rules/ViewColors.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtSvg/QSvgRenderer>

#include <algorithm>
#include <cmath>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr int TickLength = 4;

double XInDiagram(const ViewRange& view, double time, int diagramWidth)
{
    return diagramWidth * (time - view.left) / view.width;
}

void DrawRulerTick(QPainter& painter, double x, const QRect& diagram)
{
    painter.drawLine(QPointF(x, diagram.top() - 1), QPointF(x, diagram.top() - TickLength));
}

void DrawAmplitudeTick(QPainter& painter, double y, const QRect& diagram)
{
    painter.drawLine(QPointF(diagram.left() - TickLength, y), QPointF(diagram.left() - 1, y));
}

double AmplitudeLabelY(const QRect& diagram, int label)
{
    return diagram.bottom() - diagram.height() * 0.5 * label;
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
    const QRect diagram = m_diagram->geometry();
    painter.setBrush(Qt::NoBrush);
    if (m_takesFocus && hasFocus()) {
        painter.setPen(QPen(AccentOf(palette()), 2.0, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
        painter.drawRect(QRectF(diagram).adjusted(-1.0, -1.0, 1.0, 1.0));
        return;
    }
    painter.setPen(m_frameColor);
    painter.drawRect(diagram.adjusted(-1, -1, 0, 0));
}

void BGFXWaveformWidget::DrawRuler(QPainter& painter)
{
    const QRect diagram = m_diagram->geometry();
    const ViewRange view = HorizontalRange(m_diagram->GetSceneRect());
    m_scale = UI::CalculateScale(view.Right() - view.left);
    const TimeAxis axis = {
        .view = view, .bufferStart = m_diagram->GetBufferStart(), .totalLength = m_diagram->GetTotalLength()};
    const std::vector<double> times = RulerTimes(axis, m_scale);
    if (m_labelsFit) {
        DrawRulerThatFits(painter, times);
        return;
    }
    for (const double time : times) {
        const double x = diagram.left() + XInDiagram(view, time, m_diagram->width());
        DrawRulerTick(painter, x, diagram);
        const QString label = UI::FormatToTime(time);
        const int width = painter.fontMetrics().horizontalAdvance(label);
        const int halfWidth = width / 2;
        painter.drawText(QRectF(x - halfWidth, diagram.top() - 20, width, 16), Qt::AlignHCenter | Qt::AlignBottom,
                         label);
    }
}

void BGFXWaveformWidget::DrawRulerThatFits(QPainter& painter, const std::vector<double>& times) const
{
    const QRect diagram = m_diagram->geometry();
    const ViewRange view = HorizontalRange(m_diagram->GetSceneRect());
    const QFontMetrics metrics = painter.fontMetrics();
    std::vector<RulerLabel> labels;
    for (const double time : times) {
        const double x = diagram.left() + XInDiagram(view, time, m_diagram->width());
        DrawRulerTick(painter, x, diagram);
        const int width = metrics.horizontalAdvance(UI::FormatToTime(time));
        const int halfWidth = width / 2;
        labels.push_back({.step = std::llround(time / m_scale), .left = x - halfWidth, .width = double(width)});
    }
    // The topmost amplitude label reaches up to the ruler.
    const int left = diagram.left() - TickLength;
    for (const RulerLabel& label : LabelsThatFit(labels, left, width(), metrics.horizontalAdvance(u' '))) {
        painter.drawText(QPointF(label.left, diagram.top() - PositionMarkerReach - metrics.descent()),
                         UI::FormatToTime(m_scale * double(label.step)));
    }
}

void BGFXWaveformWidget::DrawAmplitudeLabels(QPainter& painter) const
{
    if (m_labelsFit) {
        DrawAmplitudeLabelsThatFit(painter);
        return;
    }
    const QRect diagram = m_diagram->geometry();
    for (const int k : {0, 1, 2}) {
        const double y = AmplitudeLabelY(diagram, k);
        const QString text = AmplitudeLabel(m_diagram->GetSceneRect().height(), k);
        const int halfWidth = painter.fontMetrics().horizontalAdvance(text) / 2;
        DrawAmplitudeTick(painter, y, diagram);
        // Half of the text's width left of the widget's own edge: there the numbers stand beside their ticks.
        painter.drawText(QRectF(-halfWidth, y - 10, 30, 16), Qt::AlignRight | Qt::AlignBottom, text);
    }
}

void BGFXWaveformWidget::DrawAmplitudeLabelsThatFit(QPainter& painter) const
{
    const QRect diagram = m_diagram->geometry();
    const QFontMetrics metrics = painter.fontMetrics();
    const int halfHeight = metrics.height() / 2;
    std::vector<QRectF> drawn;
    // The one in the middle comes last: a low diagram has no room for it.
    for (const int k : {0, 2, 1}) {
        const double y = AmplitudeLabelY(diagram, k);
        DrawAmplitudeTick(painter, y, diagram);
        const QString text = AmplitudeLabel(m_diagram->GetSceneRect().height(), k);
        const int width = metrics.horizontalAdvance(text);
        const double top = std::max(0.0, std::min(y - halfHeight, double(height() - metrics.height())));
        const QRectF place(diagram.left() - TickLength - width, top, width, metrics.height());
        if (std::none_of(drawn.begin(), drawn.end(),
                         [&](const QRectF& other) { return other.intersects(place); })) {
            painter.drawText(QPointF(place.left(), top + metrics.ascent()), text);
            drawn.push_back(place);
        }
    }
}

void BGFXWaveformWidget::DrawPositionMarker(QPainter& painter) const
{
    const QRect diagram = m_diagram->geometry();
    const ViewRange view = HorizontalRange(m_diagram->GetSceneRect());
    const double x = XInDiagram(view, m_diagram->GetShownPosition(), m_diagram->width());
    if (!(0.0 <= x && x <= diagram.width())) {
        return;
    }
    DrawRulerTick(painter, diagram.left() + x, diagram);
    const QRectF icon(diagram.left() + x - 5, diagram.top() - PositionMarkerReach, 10, 6);
    if (GetColorsFollowPalette()) {
        DrawTintedIcon(painter, icon);
    } else {
        m_positionIcon->render(&painter, icon);
    }
}

void BGFXWaveformWidget::DrawTintedIcon(QPainter& painter, const QRectF& place) const
{
    const double scale = painter.device()->devicePixelRatioF();
    QImage icon((place.size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::transparent);
    QPainter tint(&icon);
    m_positionIcon->render(&tint);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(icon.rect(), m_positionMarkerColor);
    tint.end();
    painter.drawImage(place, icon);
}

} // namespace vantoraudio::vantorAudioEngine::UI
