#include "ui/waveform/BGFXWaveformDiagramWidget.h"
#include "ui/waveform/rules/TimeScale.h"
#include "ui/waveform/rules/ViewNavigation.h"

#include <QtGui/QContextMenuEvent>
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtGui/QStyleHints>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using Interaction = BGFXWaveformWidget::Interaction;

constexpr int BorderScrollInterval = 30;
constexpr double LargestWheelZoomFactor = 10.0;

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
    if (IsForOthers(*event)) {
        event->ignore();
        return;
    }
    m_isClick = false;
    m_isDoubleClick = false;
    if (HasAudio()) {
        BeginDrag(*event);
    }
}

void BGFXWaveformDiagramWidget::BeginDrag(const QMouseEvent& event)
{
    const QPoint position = PixelOf(event);
    const bool clicksInSelection = Allows(Interaction::MoveFromInside);
    if (clicksInSelection && m_isEditing) {
        // View and selection may have changed since the mouse was moved.
        HoverAt(position.x());
    }
    m_isPressed = true;
    m_isHeld = event.button() == Qt::LeftButton;
    m_pressTime = TimeAt(position.x());
    m_grabOffset = clicksInSelection ? m_pressTime - MiddleOf(m_selection.times) : 0.0;
    m_isExtending = Allows(Interaction::ExtendWithShift) && event.modifiers() == Qt::ShiftModifier;
    if (m_isExtending) {
        m_grab = {};
        m_pressTime = FarEndFrom(m_pressTime);
    }
    m_isClick = Allows(Interaction::DragFromDistance) && !m_isExtending && !m_grab.AnyEdge();
    if (!m_grab.Any() || clicksInSelection || m_isClick) {
        m_pressPosition = position;
    }
}

/** The release of the button does not come any more, or came already. */
void BGFXWaveformDiagramWidget::LoseTheMouse()
{
    m_isHeld = false;
    if (m_interactions) {
        EndDrag();
    }
}

void BGFXWaveformDiagramWidget::EndDrag()
{
    m_isPressed = false;
    m_isHeld = false;
    m_isClick = false;
    m_isDoubleClick = false;
    m_isExtending = false;
    m_grab = {};
    m_borderScroll.stop();
}

void BGFXWaveformDiagramWidget::mouseMoveEvent(QMouseEvent* event)
{
    if (event && !event->buttons().testFlag(Qt::LeftButton)) {
        // It may have been let go of over a menu or another window.
        LoseTheMouse();
    }
    if (event == nullptr || !HasAudio() || !m_isEditing) {
        return;
    }
    if (StaysAClick(PixelOf(*event))) {
        return;
    }
    if (event->buttons() == Qt::LeftButton ||
        (Allows(Interaction::LeftButtonOnly) && event->buttons().testFlag(Qt::LeftButton))) {
        if (m_interactions && !m_isPressed) {
            return;
        }
        ScrollWhileDraggedTo(PixelOf(*event));
        if (!DragTo(PixelOf(*event))) {
            return;
        }
    } else {
        HoverAt(PixelOf(*event).x());
    }
    Changed();
}

void BGFXWaveformDiagramWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (IsForOthers(*event)) {
        event->ignore();
        return;
    }
    const bool isOver = m_interactions && !m_isPressed;
    const bool isClick = StaysAClick(PixelOf(*event));
    const bool isDoubleClick = isClick && m_isDoubleClick;
    const bool isExtending = m_isExtending;
    if (event->buttons().testFlag(Qt::LeftButton)) {
        m_grab = {};
        m_borderScroll.stop();
    } else {
        EndDrag();
    }
    setCursor(Qt::ArrowCursor);
    if (!HasAudio() || isDoubleClick || isOver) {
        return;
    }
    // Only x is compared: a drag straight up or down selects nothing and counts as a click.
    if (m_isEditing && !isClick && PixelOf(*event).x() != m_pressPosition.x()) {
        m_audioPosition = GetSelectionStartTime();
        if (Tell(&BGFXWaveformDiagramWidget::SelectionChanged, {GetSelectionStartTime(), GetSelectionEndTime()})) {
            Changed();
        }
    } else if (m_isEditing && isExtending) {
        ExtendTo(TimeAt(event->position().x()));
    } else {
        ClickAt(event->position().x());
    }
}

void BGFXWaveformDiagramWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (IsForOthers(*event)) {
        event->ignore();
        return;
    }
    if (!HasAudio()) {
        return;
    }
    m_stepSize = StepSizeFor(GetTotalLength());
    m_buffer.start = 0.0;
    m_requestedStart = 0.0;
    if (!AskForSamples(0.0, GetTotalLength())) {
        return;
    }
    ShowEverything();
    m_isPressed = true;
    m_isHeld = event->button() == Qt::LeftButton;
    m_isDoubleClick = Allows(Interaction::DoubleClickOnlyZooms);
    if (m_isDoubleClick || Allows(Interaction::DragFromDistance)) {
        m_isClick = true;
        m_pressPosition = PixelOf(*event);
        m_pressTime = TimeAt(m_pressPosition.x());
    }
    if (Tell(&BGFXWaveformDiagramWidget::SceneRectChanged, m_sceneRect)) {
        Changed();
    }
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

/** In the middle of a drag only the keyboard asks for a menu, which then takes the mouse. */
void BGFXWaveformDiagramWidget::contextMenuEvent(QContextMenuEvent* event)
{
    const bool isDragging = m_isPressed && Allows(Interaction::LeftButtonOnly);
    event->setAccepted(isDragging && event->reason() == QContextMenuEvent::Mouse);
}

bool BGFXWaveformDiagramWidget::event(QEvent* event)
{
    const bool isDisabled = event->type() == QEvent::EnabledChange && !isEnabled();
    if (isDisabled || event->type() == QEvent::WindowDeactivate || event->type() == QEvent::Hide) {
        LoseTheMouse();
    }
    return BGFXOffscreenWidget::event(event);
}

void BGFXWaveformDiagramWidget::SetWheelZoomFactor(double factor)
{
    if (factor > 1.0 && factor <= LargestWheelZoomFactor) {
        m_wheelZoomFactor = factor;
    }
}

void BGFXWaveformDiagramWidget::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == m_lineTimer.timerId()) {
        MoveLine();
    } else if (event->timerId() == m_borderScroll.timerId()) {
        ScrollAtBorder();
    } else {
        BGFXOffscreenWidget::timerEvent(event);
    }
}

void BGFXWaveformDiagramWidget::ScrollAtBorder()
{
    const QWidget* popup = QApplication::activePopupWidget();
    if (!m_isEditing || (popup && popup != window())) {
        // A menu also gets the release of the button.
        EndDrag();
        return;
    }
    const double left = ScrolledByDrag(View(), m_dragPosition.x(), width(), GetTotalLength());
    if (left == m_sceneRect.left()) {
        m_borderScroll.stop();
        return;
    }
    if (ScrollTo(left)) {
        DragTo(m_dragPosition);
    }
}

bool BGFXWaveformDiagramWidget::IsForOthers(const QMouseEvent& event) const
{
    return Allows(Interaction::LeftButtonOnly) && event.button() != Qt::LeftButton;
}

void BGFXWaveformDiagramWidget::HoverAt(int x)
{
    m_grab = {};
    if (!m_selection.isPresent) {
        return;
    }
    m_grab = GrabAt(x, View(), width(), m_selection.times, Allows(Interaction::MoveFromInside));
    setCursor(CursorFor(m_grab));
    if (m_grab.AnyEdge()) {
        m_selectionAtGrab = m_selection.times;
    }
}

/** Where the view scrolls on, an edge that is dragged stays at its border. */
double BGFXWaveformDiagramWidget::DragTimeAt(int x) const
{
    const double time = TimeAt(x);
    return Allows(Interaction::SelectBeyondView) ? ClampTime(time, View().left, View().Right()) : time;
}

void BGFXWaveformDiagramWidget::ScrollWhileDraggedTo(const QPoint& position)
{
    m_dragPosition = position;
    const bool isOutside = position.x() < 0 || position.x() >= width();
    if (!isOutside || !Allows(Interaction::SelectBeyondView)) {
        m_borderScroll.stop();
    } else if (!m_borderScroll.isActive()) {
        m_borderScroll.start(BorderScrollInterval, this);
    }
}

bool BGFXWaveformDiagramWidget::DragTo(const QPoint& position)
{
    const double time = DragTimeAt(position.x());
    if (m_grab.startEdge) {
        return DragSelectionTo(Ordered(time, m_selectionAtGrab.second));
    }
    if (m_grab.endEdge) {
        return DragSelectionTo(Ordered(time, m_selectionAtGrab.first));
    }
    if (m_grab.body) {
        return DragBodyTo(time - m_grabOffset);
    }
    if (position == m_pressPosition) {
        return true;
    }
    // The view may have scrolled since the press.
    const bool isTimeKept = Allows(Interaction::SelectBeyondView) || m_isExtending;
    const double start = isTimeKept ? m_pressTime : TimeAt(m_pressPosition.x());
    return DragSelectionTo(Ordered(start, time));
}

bool BGFXWaveformDiagramWidget::DragSelectionTo(const SelectionTimes& candidate)
{
    Select(candidate);
    if (!Tell(&BGFXWaveformDiagramWidget::SelectionChanged, m_selection.times)) {
        return false;
    }
    Changed();
    return true;
}

/** A selection moved as a whole keeps its length, so neither the limit nor the visible range may cut it. */
bool BGFXWaveformDiagramWidget::DragBodyTo(double middle)
{
    SelectionTimes moved = MovedTo(m_selection.times, middle);
    if (Allows(Interaction::SelectBeyondView)) {
        moved = MovedInto(moved, SelectionBounds());
    }
    m_selection = {.times = Finite(moved), .isPresent = true};
    m_audioPosition = m_selection.times.first;
    if (!Tell(&BGFXWaveformDiagramWidget::SelectionChanged, m_selection.times)) {
        return false;
    }
    Changed();
    return true;
}

void BGFXWaveformDiagramWidget::ExtendTo(double time)
{
    SetSelectedSnippet({FarEndFrom(time), time});
}

/** Of the selection, as seen from `time`; the position where there is none. */
double BGFXWaveformDiagramWidget::FarEndFrom(double time) const
{
    const SelectionTimes& times = m_selection.times;
    const double farEnd = time < MiddleOf(times) ? times.second : times.first;
    return m_selection.isPresent ? farEnd : m_audioPosition;
}

bool BGFXWaveformDiagramWidget::StaysAClick(const QPoint& position)
{
    if (m_isClick) {
        const QPointF way = QPointF(position) - QPointF(m_pressPosition);
        m_isClick = way.manhattanLength() < QGuiApplication::styleHints()->startDragDistance();
    }
    return m_isClick;
}

void BGFXWaveformDiagramWidget::ClickAt(double x)
{
    const double time = TimeAt(x);
    m_audioPosition = time;
    // Silently: whoever follows AudioPositionChanged() knows that a click clears the selection.
    m_selection.isPresent = false;
    if (Tell(&BGFXWaveformDiagramWidget::AudioPositionChanged, time)) {
        Changed();
    }
}

void BGFXWaveformDiagramWidget::Pan(const QWheelEvent& event)
{
    ScrollTo(PannedLeft(View(), TurnOf(event), GetTotalLength()));
}

void BGFXWaveformDiagramWidget::Zoom(const QWheelEvent& event)
{
    const float factor = ZoomFactor(TurnOf(event), event.inverted(), m_scrollBackToZoomOut, m_wheelZoomFactor);
    const auto edges = ZoomedAround(View(), TimeAt(event.position().x()), factor, GetTotalLength());
    if (!edges) {
        return;
    }
    m_sceneRect.setLeft(edges->left);
    m_sceneRect.setRight(edges->right);
    if (Tell(&BGFXWaveformDiagramWidget::SceneRectChanged, m_sceneRect) &&
        Tell(&BGFXWaveformDiagramWidget::Update)) {
        update();
        RequestSamplesIfNeeded();
    }
}

} // namespace vantoraudio::vantorAudioEngine::UI
