#pragma once

#include "render/vantor3DQt/BGFXOffscreenWidget.h"
#include "render/vantor3DQt/BGFXViewContext.h"
#include "ui/waveform/drawing/WaveformGeometry.h"
#include "ui/waveform/drawing/WaveformProgram.h"
#include "ui/waveform/rules/MovingPosition.h"
#include "ui/waveform/rules/Ruler.h"
#include "ui/waveform/rules/SampleRequest.h"
#include "ui/waveform/rules/SelectionRules.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QBasicTimer>
#include <QtCore/QElapsedTimer>
#include <QtCore/QList>
#include <QtCore/QMutex>
#include <QtCore/QPoint>
#include <QtCore/QPointer>
#include <QtCore/QRectF>
#include <QtGui/QColor>
#include <QtGui/QMatrix4x4>
#include <QtMultimedia/QAudioFormat>

#include <optional>
#include <type_traits>
#include <utility>

namespace vantoraudio::vantorAudioEngine::UI {

/**
 * The drawing surface of the waveform view: draws grid, samples, position and selection on the drawing device, and
 * turns mouse and wheel into zooming, panning, position clicks and selections.
 *
 * Times are seconds from the start of the file. The visible range is the scene rect: x and width in seconds, y and
 * height in amplitude. Without a duration above 0 all input is ignored and only the grid is drawn, also when
 * samples, a position or a selection are set. GUI thread only; slots may call back in from within any signal.
 */
class BGFXWaveformDiagramWidget : public vantor3DQt::BGFXOffscreenWidget
{
    Q_OBJECT

public:
    explicit BGFXWaveformDiagramWidget(QWidget* parent = nullptr);
    ~BGFXWaveformDiagramWidget() override;

    /** Forgets duration, position and selection, and draws only the grid until the next duration. Delay, format,
     *  edit mode and the samples stay; the samples are drawn again, from time 0, if a duration comes before
     *  others. */
    void Reset();
    /** How often Reset() was called: a receiver of its signal may have called it again. */
    [[nodiscard]] int GetResetCount() const { return m_resetCount; }
    void SetAudioFormat(const QAudioFormat& format);
    /** Makes the whole file visible and asks for its samples. */
    void SetDuration(double duration);
    /** Silence behind the audio; makes everything visible. */
    void SetDelay(double delay);
    [[nodiscard]] double GetDelay() const { return m_delay; }
    /** Duration and delay. */
    [[nodiscard]] double GetTotalLength() const { return m_duration + m_delay; }
    /** Time of the first vertex of the samples at hand. */
    [[nodiscard]] double GetBufferStart() const { return m_buffer.start; }

    /** Moves the position line and lets the visible range follow it, unless that is to stay. */
    void SetAudioPosition(double position, bool clearSelection);
    void SetAudioPositionKeepingView(double position);
    [[nodiscard]] double GetAudioPosition() const { return m_audioPosition; }
    /** How fast the position line moves between two positions that are set, in seconds a second; it stands still
     * unless above 0 and at most 16. */
    void SetPositionRate(double rate);
    /** Where the line is drawn. */
    [[nodiscard]] double GetShownPosition() const
    {
        return m_lineTimer.isActive() && m_moving.Reported() == m_audioPosition ? m_shownPosition
                                                                                : m_audioPosition;
    }
    void SetFollowsPosition(bool follows) { m_followsPosition = follows; }
    void SetShowsPositionAtOnce(bool atOnce) { m_showsPositionAtOnce = atOnce; }
    [[nodiscard]] bool GetShowsPositionAtOnce() const { return m_showsPositionAtOnce; }
    void SetKeepsViewFilled(bool filled);
    [[nodiscard]] bool GetKeepsViewFilled() const { return m_keepsViewFilled; }
    [[nodiscard]] bool GetFollowsPosition() const { return m_followsPosition; }

    void SetSelectedSnippet(std::pair<double, double> snippet);
    void ClearSelection();
    void SetSelectionStartTime(double start);
    void SetSelectionEndTime(double end);
    [[nodiscard]] bool HasSelection() const { return m_selection.isPresent; }
    /** 0.0 without a selection. */
    [[nodiscard]] double GetSelectionStartTime() const;
    [[nodiscard]] double GetSelectionEndTime() const;

    void SetEditMode(bool isEditing) { m_isEditing = isEditing; }
    [[nodiscard]] bool GetEditMode() const { return m_isEditing; }
    void SetInteractions(BGFXWaveformWidget::Interactions interactions) { m_interactions = interactions; }
    [[nodiscard]] BGFXWaveformWidget::Interactions GetInteractions() const { return m_interactions; }
    void SetScrollBackToZoomOut(bool scrollBackToZoomOut) { m_scrollBackToZoomOut = scrollBackToZoomOut; }

    /** Ignored unless above 1 and at most 10. */
    void SetWheelZoomFactor(double factor);

    [[nodiscard]] double GetTimeAt(int x) const { return TimeAt(x); }
    /** The lowest and the highest level drawn in a pixel column; not-a-number where there is none. */
    [[nodiscard]] std::pair<double, double> GetLevelAt(int x) const;
    [[nodiscard]] QRectF GetSceneRect() const { return m_sceneRect; }
    /** Both edges are brought into the total length. */
    void SetSceneRange(double left, double right);
    /** Moves the visible range, wherever that is. False when a receiver has destroyed this widget. */
    bool ScrollTo(double left);

    /** Draws these samples from now on, from the start time of the latest request, also when they answer an older
     *  one. The visible range keeps its height even when louder samples widen the drawn amplitudes. */
    void UpdateAudioSampleBuffer(const QList<float>& samples);

    // Written by the owner; they take effect with the next frame.
    QColor m_backgroundColor{27, 27, 27, 255};
    QColor m_gridColor{150, 150, 150, 255};
    QColor m_waveformColor{150, 150, 150, 255};
    /** Drawn half transparent, whatever its alpha. */
    QColor m_selectionColor{115, 140, 155, 255};
    QColor m_positionMarkerColor{52, 151, 209, 255};

Q_SIGNALS:
    /** The picture changed. */
    void Update();
    void SceneRectChanged(const QRectF& sceneRect);
    void GetSamples(double startTime, double endTime, int stepSize);
    void SelectionChanged(std::pair<double, double> selectedSnippet);
    void AudioPositionChanged(double position);

public Q_SLOTS:
    /** The drawing device shuts down; the next frame creates what it needs again. */
    void OnCleanupRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    /** The view may lose the mouse in the middle of a drag. */
    bool event(QEvent* event) override;
    /** A drag past the border scrolls, and the position line moves. */
    void timerEvent(QTimerEvent* event) override;

private:
    friend class WaveformTestAccess;

    /** A selection that was cleared keeps its times: a single end set later pairs with the old other end. */
    struct KeptSelection
    {
        SelectionTimes times{0.0, 0.0};
        bool isPresent = false;
    };

    struct AskedSamples
    {
        double start = 0.0;
        double end = 0.0;
        int stepSize = 0;
    };
    [[nodiscard]] bool Shows(const AskedSamples& asked) const;

    [[nodiscard]] bool Allows(BGFXWaveformWidget::Interaction interaction) const
    {
        return m_interactions.testFlag(interaction);
    }
    /** What selections are limited to. */
    [[nodiscard]] ViewRange SelectionBounds() const;
    /** The times of the selection; for a single end without one the time itself, where the old times are to be
     *  forgotten. */
    [[nodiscard]] SelectionTimes TimesToPairWith(double time) const;
    [[nodiscard]] bool IsForOthers(const QMouseEvent& event) const;
    [[nodiscard]] bool HasAudio() const { return m_duration > 0.0; }
    [[nodiscard]] ViewRange View() const { return HorizontalRange(m_sceneRect); }
    [[nodiscard]] double TimeAt(double x) const { return TimeAtPixel(View(), x, width()); }
    [[nodiscard]] int StepSizeFor(double span) const;
    void ShowEverything();
    // False when a receiver of their signals has destroyed this widget.
    bool RequestSamplesIfNeeded();
    bool FillView();
    bool AskForSamples(double start, double end);
    bool Follow();
    /** Emits. False when a receiver has destroyed the player, and this widget with it. */
    template<typename... Arguments>
    bool Tell(void (BGFXWaveformDiagramWidget::*signal)(Arguments...),
              std::type_identity_t<Arguments>... arguments)
    {
        const QPointer<BGFXWaveformDiagramWidget> self(this);
        Q_EMIT(this->*signal)(arguments...);
        return !self.isNull();
    }
    void Changed();
    bool SceneRectMoved();
    void Select(const SelectionTimes& candidate);

    [[nodiscard]] double LineAt(qint64 now) const;
    void MoveLine();
    void ScrollAtBorder();
    void MoveLineTo(double position);
    void HoverAt(int x);
    void BeginDrag(const QMouseEvent& event);
    void EndDrag();
    void LoseTheMouse();
    [[nodiscard]] double DragTimeAt(int x) const;
    // False when a receiver of their signals has destroyed this widget.
    bool DragTo(const QPoint& position);
    void ScrollWhileDraggedTo(const QPoint& position);
    void ExtendTo(double time);
    bool DragSelectionTo(const SelectionTimes& candidate);
    bool DragBodyTo(double middle);
    /** Whether the mouse has not been dragged since the press, where that makes a difference. */
    bool StaysAClick(const QPoint& position);
    [[nodiscard]] double FarEndFrom(double time) const;
    void ClickAt(double x);
    void Pan(const QWheelEvent& event);
    void Zoom(const QWheelEvent& event);

    void Render();
    void BeginView(const vantor3DQt::BGFXViewContext& view);
    void DrawGrid();
    void DrawWaveform();
    void DrawPosition();
    void DrawSelection();

    QMatrix4x4 m_projection;
    double m_duration = 0.0;
    double m_delay = 0.0;
    QAudioFormat m_format;
    QPoint m_pressPosition;
    QRectF m_sceneRect{0.0, 0.0, 1.0, 1.0};
    BufferedRange m_buffer;
    double m_requestedStart = 0.0;
    /** The latest request that was sent. */
    std::optional<AskedSamples> m_asked;
    int m_stepSize = 1;
    int m_resetCount = 0;
    double m_audioPosition = 0.0;
    /** Runs while the line moves by itself. Then the position may also be set in other ways than by a report; the
     * line stands there until the next one. */
    QBasicTimer m_lineTimer;
    QElapsedTimer m_clock;
    MovingPosition m_moving;
    double m_shownPosition = 0.0;
    KeptSelection m_selection;
    SelectionTimes m_selectionAtGrab{0.0, 0.0};
    BGFXWaveformWidget::Interactions m_interactions;
    double m_pressTime = 0.0;
    /** From the middle of a grabbed selection to where it was grabbed, in seconds. */
    double m_grabOffset = 0.0;
    /** Where a drag has left the widget to. */
    QPoint m_dragPosition;
    QBasicTimer m_borderScroll;
    bool m_isEditing = false;
    Grab m_grab;
    bool m_scrollBackToZoomOut = true;
    bool m_followsPosition = true;
    bool m_showsPositionAtOnce = false;
    bool m_keepsViewFilled = false;
    /** A button is down, and what it does is not over. */
    bool m_isPressed = false;
    /** The left button is. */
    bool m_isHeld = false;
    /** Since a press that only a drag of some length turns into more than a click. */
    bool m_isClick = false;
    /** That is the second click of a double click. */
    bool m_isDoubleClick = false;
    /** Since a press with Shift. */
    bool m_isExtending = false;
    std::optional<double> m_wheelZoomFactor;
    double m_amplitudeExtent = 1.0;
    vantor3DQt::BGFXViewContext m_gridView{0};
    vantor3DQt::BGFXViewContext m_waveformView{1};
    vantor3DQt::BGFXViewContext m_overlayView{2};
    WaveformGeometry m_geometry;
    WaveformProgram m_program;
    QMutex m_bufferLock;
};

} // namespace vantoraudio::vantorAudioEngine::UI
