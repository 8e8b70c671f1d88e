#pragma once

#include <vantorAudioEngine/Export.h>

#include <QtCore/QList>
#include <QtCore/QRectF>
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtMultimedia/QAudioFormat>
#include <QtWidgets/QWidget>

#include <memory>
#include <utility>
#include <vector>

class QPainter;
class QScrollBar;
class QSvgRenderer;

namespace vantoraudio::vantorAudioEngine::UI {

class BGFXWaveformDiagramWidget;
struct ViewColors;

/**
 * Shows the waveform of an audio file with time ruler, amplitude labels, playback position and scroll bar, and
 * lets the user zoom, pan, click a position and (in edit mode) drag a selection.
 *
 * The widget reads no file. Whenever its visible range needs other samples than it holds it emits GetSamples(),
 * and the owner answers, at once or later, with UpdateAudioSampleBuffer():
 *
 *     connect(waveform, &BGFXWaveformWidget::GetSamples, this, [=](double start, double end, int stepSize) {
 *         waveform->UpdateAudioSampleBuffer(SamplesOf(file, start, end, stepSize));
 *     });
 *     waveform->Initilize(format, duration);
 *
 * Times are seconds from the start of the file. No call reports a failure: selections and visible ranges outside
 * the file are brought into it, while duration, delay and position are taken as they are. Without a duration above
 * 0 only the grid is drawn and all input is ignored. In a view of 1,080,000 seconds (12.5 days) or more ruler and
 * upright grid lines are missing, and the wheel does not zoom to such a view: a much longer file can only be shown
 * as a whole.
 *
 * Screen readers read position and length as the value of a slider that cannot be moved, and the selection as its
 * description; no change is announced to them.
 *
 * GUI thread only. Slots may call back into the widget from within any of its signals; to destroy it there they
 * use deleteLater().
 */
class VANTORAUDIOENGINE_EXPORT BGFXWaveformWidget : public QWidget
{
    Q_OBJECT

public:
    /** The longest selection, in seconds: 90 minutes. */
    static constexpr int MAX_SNIPPET_LENGTH = 5400;

    /** The step of grid and ruler for a visible span, both in seconds; 0.0 when the span is not above 0 and below
     * 1,080,000. */
    [[nodiscard]] static double CalculateScale(double span);
    /** The ruler's label for a time in seconds, for example "1:15.250 min". Below 0 and from 24 hours on only the
     * unit, which is translated. */
    [[nodiscard]] static QString FormatToTime(double seconds);

    explicit BGFXWaveformWidget(QWidget* parent = nullptr);
    ~BGFXWaveformWidget() override;

    /**
     * Shows another file, `duration` seconds long: position and selection are cleared, the whole file becomes
     * visible, GetSamples() asks for it, and the delay becomes 0. Of the format only the sample rate is used. With
     * a duration that is not above 0 (or not a number) the view stays empty, though GetSamples() is emitted.
     *
     * The misspelt name is kept for existing programs. GetSamples() comes before the delay becomes 0, so its step
     * size still counts the delay of before. Answered from within the signal, the samples stand at their
     * times; answered after this call, they are drawn with the step size for the new length alone and stand at
     * wrong times where the two differ. SetDelay(0.0) ahead of this call avoids that.
     */
    void Initilize(QAudioFormat format, double duration);
    /** Forgets the file: only the grid is drawn until the next Initilize(). The delay and everything that was
     * switched on or set otherwise stay: colours, icon, edit mode, interactions, wheel, focus, following. */
    void Reset();
    /** Schedules a repaint. */
    void Update();
    /** The answer to the latest GetSamples(): one value per `stepSize` frames, about -1.0 to 1.0, from its start
     * time on; other values are drawn, too, those that are not finite as silence. An empty list leaves only the
     * grid or, with a delay, its silence. The list is shared with the caller, not copied; the view keeps what it
     * holds now, also when the caller changes it later. */
    void UpdateAudioSampleBuffer(const QList<float>& samples);

    /** Moves the position line, and the visible range after it: a page on, or back to the position. Any position
     * is kept as it is, also one outside the file: behind it the view shows the file's end, before 0 it begins at
     * the position. AudioPositionChanged() is not emitted. */
    void SetAudioPosition(double position);
    /** SetAudioPosition(), but the visible range stays where it is. */
    void SetAudioPositionKeepingView(double position);
    [[nodiscard]] double GetAudioPosition() const;
    /** How fast the position line moves on by itself between two calls of SetAudioPosition(), in seconds of the
     * file a second: the speed of a file that plays, or 0, as at first, of one that does not. The line then moves
     * as often as screens show a picture, for half a second at most without a call, and not beyond the end of the
     * file; it waits rather than go back by less than a tenth of a second. GetAudioPosition() and the visible
     * range know only what was set. A rate that is not above 0 and at most 16 counts as 0; Initilize() and
     * Reset() set it to 0. */
    void SetPositionRate(double rate);
    /** Whether SetAudioPosition() moves the visible range, as at first, or only the line. */
    void SetFollowsPosition(bool follows);
    [[nodiscard]] bool GetFollowsPosition() const;
    /** With true a visible range that follows shows any position at once: beyond the next page, and on the way
     * back, in its middle. Where it shows the whole selection it also stays for what a player plays past the end
     * of that, up to half a second. It also stays while the user holds the left button on it, and an
     * AudioPlayerWidget's for the reports that a change of its selection leads to. Off at first: it then turns one
     * page a call, and on the way back begins at the position. */
    void SetShowsPositionAtOnce(bool atOnce);
    [[nodiscard]] bool GetShowsPositionAtOnce() const;
    /** With true GetSamples() asks whenever a part of the view has no samples, or coarser ones than it could show,
     * but never twice in a row for the same. Holds from the next change of the view on. Off at first: a view that
     * begins at 0 or ends with the file then keeps the samples it has, and stays empty where it has none. */
    void SetKeepsViewFilled(bool filled);
    [[nodiscard]] bool GetKeepsViewFilled() const;

    /** Selects a range, in either order, cut to MAX_SNIPPET_LENGTH and to the visible range (see
     * Interaction::SelectBeyondView). Moves the position to its start and emits SelectionChanged(), unless it
     * differs by less than a millisecond from the selection. */
    void SetSelectedSnippet(std::pair<double, double> snippet);
    /** (0, 0) without a selection. */
    [[nodiscard]] std::pair<double, double> GetSelectedSnippet() const;
    /** Moves one end of the selection, cut as above; the start takes the position along, the end does not. Without
     * a selection the other end is that of the last one. */
    void SetSelectionStartTime(double start);
    void SetSelectionEndTime(double end);
    /** 0.0 without a selection. */
    [[nodiscard]] double GetSelectionStartTime() const;
    [[nodiscard]] double GetSelectionEndTime() const;

    /** Clears the selection; the position stays. SelectionChanged((0, 0)) tells of it. Does nothing without one.
     */
    void ClearSelection();

    /** What is shown at a place of this widget, in seconds; beyond the waveform also times that do not show. */
    [[nodiscard]] double GetTimeAt(const QPoint& position) const;
    /** The lowest and the highest sample in the pixel column of a place of this widget, as drawn: about -1.0
     * to 1.0, from the samples at hand. Where the samples lie farther apart than columns, both are the height of
     * the line between them. Not-a-number without audio and beside the waveform; above and below it its columns
     * count. */
    [[nodiscard]] std::pair<double, double> GetLevelAt(const QPoint& position) const;
    /** The first and the last time that show. */
    [[nodiscard]] std::pair<double, double> GetVisibleRange() const;

    /** Seconds of silence shown behind the audio. Makes everything visible again. The samples at hand get their
     * silence with the next UpdateAudioSampleBuffer(). A negative delay takes its length off the end of what can
     * be shown; one that is not finite leaves nothing to show until another is set. */
    void SetDelay(double delay);
    [[nodiscard]] double GetDelay() const;

    /** Whether the mouse may make and change a selection; off at first. */
    void SetEditMode(bool isEditing);
    [[nodiscard]] bool GetEditMode() const;
    /** Ways of working with the mouse that programs can switch on; none is on at first. */
    enum class Interaction
    {
        /** Selections are limited by the file instead of the visible range, so that they survive zooming in. A
         * drag past the border scrolls on. A selection that is moved stops at the file's edges. */
        SelectBeyondView = 1,
        /** A drag that begins anywhere inside the selection moves it. A click there still clears it. What a press
         * grabs is what it meets, also when view or selection have changed since the mouse was moved. */
        MoveFromInside = 2,
        /** Shift and a click or drag move the nearer end of the selection to the pointer; without a selection they
         * select from the position to the pointer. */
        ExtendWithShift = 4,
        /** The other buttons do nothing: a menu of the program's may open, see QWidget::contextMenuPolicy(). */
        LeftButtonOnly = 8,
        /** A selection that was cleared leaves no times behind: a single end set later begins an empty one. */
        ForgetCleared = 16,
        /** The second click of a double click, which makes everything visible, moves no position. */
        DoubleClickOnlyZooms = 32,
        /** A press becomes a drag, which selects or moves a selection, only behind the platform's drag distance;
         * until then it stays a click. An edge of the selection still follows each pixel. */
        DragFromDistance = 64
    };
    Q_DECLARE_FLAGS(Interactions, Interaction)
    /** Holds from the next event or call on; a drag that is under way may end differently. Outside edit mode the
     * mouse follows only LeftButtonOnly; SelectBeyondView and ForgetCleared also hold for selections that the
     * program sets. */
    void SetInteractions(Interactions interactions);
    [[nodiscard]] Interactions GetInteractions() const;

    /** With true, as at first, turning the wheel back (toward the user) while Control is held zooms out. */
    void SetScrollBackToZoomOut(bool scrollBackToZoomOut);
    /** How many times as much shows after one notch of the wheel that zooms out; one that zooms in undoes it. From
     * above 1 to 10; other factors are ignored. Until one is set, a notch adds or takes a fifteenth of the view.
     */
    void SetWheelZoomFactor(double factor);

    /** An SVG file or resource for the marker over the position, 10 x 6 pixels; a file that cannot be loaded
     * leaves no icon. */
    void SetAudioPositionIcon(const QString& fileName);
    /** Labels of ruler and amplitudes neither overprint each other nor are cut off, with any font, and the
     * position's marker hides none: the borders grow with the font, a label that would be cut off moves, and one
     * without room is left out. Off at first: labels then stand at their ticks, whatever is there. */
    void SetLabelsFit(bool fit);
    [[nodiscard]] bool GetLabelsFit() const { return m_labelsFit; }
    /** All colours, that of the marker's icon, too, are those of the widget's palette, now and whenever that
     * changes: labels stand out from the window 4.5 to 1; waveform, selection and position from the background 3
     * to 1, and the position line mostly from the waveform 2 to 1. Off at first. Colours that were set, before or
     * meanwhile, show when it is off again. */
    void SetColorsFollowPalette(bool follow);
    [[nodiscard]] bool GetColorsFollowPalette() const { return m_setColors != nullptr; }
    /** The view takes the keyboard focus, by Tab and by a click, and shows it as a frame around the waveform that
     * stands out from the window 3 to 1. All keys go on to the parent. Off at first. An AudioPlayerWidget of
     * which this is set hands its own focus to the view. */
    void SetTakesFocus(bool takesFocus);
    [[nodiscard]] bool GetTakesFocus() const { return m_takesFocus; }
    // Colours take effect with the next repaint.
    void SetAudioPositionMarkerColor(const QColor& color);
    void SetAudioSelectionColor(const QColor& color);
    void SetBackgroundColor(const QColor& color);
    void SetFrameColor(const QColor& color);
    void SetGridColor(const QColor& color);
    void SetScaleColor(const QColor& color);
    void SetWaveformColor(const QColor& color);

    /** What draws the waveforms of this process. */
    enum class DrawingDevice
    {
        None,
        OpenGL,
        Software,
        Bgfx
    };
    /** None before the first waveform was painted. Bgfx also while it starts; the processor draws meanwhile. */
    [[nodiscard]] static DrawingDevice GetDrawingDevice();
    /** The same for people, not translated, for example "bgfx (Vulkan)". Empty for None. */
    [[nodiscard]] static QString GetDrawingDeviceName();

    /**
     * Draws all waveforms of this process with a bgfx that the program runs itself, instead of one that is started
     * for them. `bgfxFunctions` is what the program's bgfx_get_interface() returns and `bgfxVersion` its
     * BGFX_API_VERSION, which must be that of the library. The views from `firstView` on, `viewCount` of them and
     * at least two, belong to the waveforms: each picture takes two in one frame of the program; where there are
     * too few, pictures wait for a later frame.
     *
     * The program goes on calling bgfx's frame() and passes on what it returns to HostFrameEnded(), a few times at
     * least after each change of a waveform: a picture takes three frames. Call these functions on the GUI thread,
     * which must be the one that bgfx's init() was called on. False leaves everything as it was: the library was
     * built without bgfx, the version is another, bgfx is not running, it does not have all these views
     * (`limits.maxViews` of its capabilities), or it cannot read pictures back.
     */
    static bool UseHostRenderer(const void* bgfxFunctions, quint32 bgfxVersion, quint16 firstView,
                                quint16 viewCount);
    /** What the program's last call of bgfx's frame() returned. Does nothing without UseHostRenderer(). */
    static void HostFrameEnded(quint32 frame);
    /** Gives back all that was made in the program's bgfx, which the program may shut down then. The waveforms
     * choose a device by themselves again. Does nothing without UseHostRenderer(). */
    static void LeaveHostRenderer();

Q_SIGNALS:
    /** Samples are needed from `startTime` to `endTime`, one per `stepSize` frames. */
    void GetSamples(double startTime, double endTime, int stepSize);
    /** The selection is another one: start and end in seconds, or (0, 0) for none. A click that clears it emits
     * AudioPositionChanged() instead. */
    void SelectionChanged(std::pair<double, double> selectedSnippet);
    /** The user clicked a position; the selection is gone then. */
    void AudioPositionChanged(double position);
    /** The visible range: x and width in seconds, height half the amplitude range. */
    void SceneRectChanged(const QRectF& sceneRect);

public Q_SLOTS:
    /** Shows the range of another view: left and right of `rect`, in either order, brought into the file's length.
     * Ignored while it is already running, so that two views may be connected both ways. */
    void OnSceneRectChangeRequested(const QRectF& rect);

private Q_SLOTS:
    void OnDiagramChanged();
    void OnGetSamples(double startTime, double endTime, int stepSize);
    void OnSelectionChanged(std::pair<double, double> selectedSnippet);
    void OnAudioPositionChanged(double position);

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    friend class WaveformTestAccess;

    void SetUpLayout();
    void ConnectSignals();
    void DrawFrame(QPainter& painter) const;
    void DrawRuler(QPainter& painter);
    void DrawRulerThatFits(QPainter& painter, const std::vector<double>& times) const;
    void DrawAmplitudeLabels(QPainter& painter) const;
    void DrawAmplitudeLabelsThatFit(QPainter& painter) const;
    void MakeRoomForLabels();
    [[nodiscard]] ViewColors ShownColors() const;
    void Show(const ViewColors& colors);
    void DrawPositionMarker(QPainter& painter) const;
    void DrawTintedIcon(QPainter& painter, const QRectF& place) const;

    BGFXWaveformDiagramWidget* m_diagram;
    QColor m_frameColor{125, 125, 125, 255};
    QColor m_scaleColor{150, 150, 150, 255};
    QColor m_positionMarkerColor{115, 140, 200, 255};
    double m_scale = 1.0;
    bool m_isFollowing = false;
    bool m_labelsFit = false;
    bool m_takesFocus = false;
    /** What the colour setters have set; only while the palette's colours show instead. */
    std::unique_ptr<ViewColors> m_setColors;
    QSvgRenderer* m_positionIcon;
    QScrollBar* m_scrollBar;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(BGFXWaveformWidget::Interactions)

} // namespace vantoraudio::vantorAudioEngine::UI
