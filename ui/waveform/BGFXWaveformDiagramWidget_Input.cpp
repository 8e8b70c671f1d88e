#include "ui/waveform/BGFXWaveformDiagramWidget.h"
#include "ui/waveform/rules/TimeScale.h"
#include "ui/waveform/rules/ViewNavigation.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QWheelEvent>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

QPoint PixelOf(const QMouseEvent& event)
{
    return event.position().toPoint();
}

Qt::CursorShape CursorFor(const Grab& grab)
{
    if (grab.AnyEdge()) {
        return Qt::SizeHorCursor;
    }
    return grab.body ? Qt::SizeAllCursor : Qt::ArrowCursor;
}

WheelTurn TurnOf(const QWheelEvent& event)
{
    const bool inPixels = !event.pixelDelta().isNull();
    const QPoint delta = inPixels ? event.pixelDelta() : event.angleDelta();
    return {.x = static_cast<double>(delta.x()), .y = static_cast<double>(delta.y()), .inPixels = inPixels};
}

} // namespace

void BGFXWaveformDiagramWidget::mousePressEvent(QMouseEvent* event)
{
    if (HasAudio() && !m_grab.Any()) {
        m_pressPosition = PixelOf(*event);
    }
}

void BGFXWaveformDiagramWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (event == nullptr || !HasAudio() || !m_isEditing) {
        return;
    }
    if (event->buttons() == Qt::LeftButton) {
        DragTo(PixelOf(*event));
    } else {
        HoverAt(PixelOf(*event).x());
    }
    Changed();
}

void BGFXWaveformDiagramWidget::mouseReleaseEvent(QMouseEvent* event)
{
    m_grab = {};
    setCursor(Qt::ArrowCursor);
    if (!HasAudio()) {
        return;
    }
    // Only x is compared: a drag straight up or down selects nothing and counts as a click.
    if (m_isEditing && PixelOf(*event).x() != m_pressPosition.x()) {
        m_audioPosition = GetSelectionStartTime();
        Q_EMIT SelectionChanged({GetSelectionStartTime(), GetSelectionEndTime()});
        Changed();
    } else {
        ClickAt(event->position().x());
    }
}

void BGFXWaveformDiagramWidget::mouseDoubleClickEvent(QMouseEvent* /*event*/)
{
    if (!HasAudio()) {
        return;
    }
    m_stepSize = StepSizeFor(GetTotalLength());
    m_buffer.start = 0.0;
    m_requestedStart = 0.0;
    Q_EMIT GetSamples(0.0, GetTotalLength(), m_stepSize);
    ShowEverything();
    Q_EMIT SceneRectChanged(m_sceneRect);
    Changed();
}

void BGFXWaveformDiagramWidget::wheelEvent(QWheelEvent* event)
{
    const Qt::KeyboardModifiers modifiers = event->modifiers();
    const bool pans = modifiers == Qt::NoModifier;
    if (!HasAudio() || !(pans || modifiers.testFlag(Qt::ControlModifier))) {
        event->ignore();
        return;
    }
    if (pans) {
        Pan(*event);
    } else {
        Zoom(*event);
    }
    event->accept();
}

void BGFXWaveformDiagramWidget::HoverAt(int x)
{
    m_grab = {};
    if (!m_selection.isPresent) {
        return;
    }
    m_grab = GrabAt(x, View(), width(), m_selection.times);
    setCursor(CursorFor(m_grab));
    if (m_grab.AnyEdge()) {
        m_selectionAtGrab = m_selection.times;
    }
}

void BGFXWaveformDiagramWidget::DragTo(const QPoint& position)
{
    const double time = TimeAt(position.x());
    if (m_grab.startEdge) {
        DragSelectionTo(Ordered(time, m_selectionAtGrab.second));
    } else if (m_grab.endEdge) {
        DragSelectionTo(Ordered(time, m_selectionAtGrab.first));
    } else if (m_grab.body) {
        DragBodyTo(time);
    } else if (position != m_pressPosition) {
        DragSelectionTo(Ordered(TimeAt(m_pressPosition.x()), time));
    }
}

void BGFXWaveformDiagramWidget::DragSelectionTo(const SelectionTimes& candidate)
{
    Select(candidate);
    Q_EMIT SelectionChanged(m_selection.times);
    Changed();
}

/** A selection moved as a whole keeps its length, so neither the limit nor the visible range may cut it. */
void BGFXWaveformDiagramWidget::DragBodyTo(double middle)
{
    m_selection = {.times = Finite(MovedTo(m_selection.times, middle)), .isPresent = true};
    m_audioPosition = m_selection.times.first;
    Q_EMIT SelectionChanged(m_selection.times);
    Changed();
}

void BGFXWaveformDiagramWidget::ClickAt(double x)
{
    const double time = TimeAt(x);
    m_audioPosition = time;
    // Silently: whoever follows AudioPositionChanged() knows that a click clears the selection.
    m_selection.isPresent = false;
    Q_EMIT AudioPositionChanged(time);
    Changed();
}

void BGFXWaveformDiagramWidget::Pan(const QWheelEvent& event)
{
    ScrollTo(PannedLeft(View(), TurnOf(event), GetTotalLength()));
}

void BGFXWaveformDiagramWidget::Zoom(const QWheelEvent& event)
{
    const float factor = ZoomFactor(TurnOf(event), event.inverted(), m_scrollBackToZoomOut);
    const auto edges = ZoomedAround(View(), TimeAt(event.position().x()), factor, GetTotalLength());
    if (!edges) {
        return;
    }
    m_sceneRect.setLeft(edges->left);
    m_sceneRect.setRight(edges->right);
    Q_EMIT SceneRectChanged(m_sceneRect);
    Changed();
    RequestSamplesIfNeeded();
}

} // namespace vantoraudio::vantorAudioEngine::UI
