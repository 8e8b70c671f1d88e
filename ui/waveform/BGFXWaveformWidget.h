#pragma once

#include <vantorAudioEngine/Export.h>

#include <QtCore/QList>
#include <QtCore/QRectF>
#include <QtCore/QString>
#include <QtGui/QColor>
#include <QtMultimedia/QAudioFormat>
#include <QtWidgets/QWidget>

#include <utility>

class QPainter;
class QScrollBar;
class QSvgRenderer;

namespace vantoraudio::vantorAudioEngine::UI {

class BGFXWaveformDiagramWidget;

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
 * Times are seconds from the start of the file. No call fails: times outside the file or the visible range are
 * brought into them. GUI thread only. Slots may call back into the widget from within any of its signals.
 */
class VANTORAUDIOENGINE_EXPORT BGFXWaveformWidget : public QWidget
{
    Q_OBJECT

public:
    /** The longest selection, in seconds: 90 minutes. */
    static constexpr int MAX_SNIPPET_LENGTH = 5400;

    /** The step of grid and ruler for a visible span, both in seconds; 0.0 when the span is not above 0 and below
     *  1,080,000. */
    [[nodiscard]] static double CalculateScale(double span);
    /** The ruler's label for a time in seconds, for example "1:15.250 min". Below 0 and from 24 hours on only the
     *  unit. */
    [[nodiscard]] static QString FormatToTime(double seconds);

    explicit BGFXWaveformWidget(QWidget* parent = nullptr);
    ~BGFXWaveformWidget() override;

    /**
     * Shows another file, `duration` seconds long: position and selection are cleared, the whole file becomes
     * visible, GetSamples() asks for it, and the delay becomes 0. Of the format only the sample rate is used.
     *
     * The spelling is what embedding programs call. The first request's step size still reckons with the delay
     * that was set before, so that it covers the view in which the file appears.
     */
    void Initilize(QAudioFormat format, double duration);
    /** Forgets the file. Colours, icon, edit mode, wheel direction and delay stay. */
    void Reset();
    /** Schedules a repaint. */
    void Update();
    /** The answer to the latest GetSamples(): one value per `stepSize` frames, about -1.0 to 1.0, from its start
     *  time on. An empty list empties the view. */
    void UpdateAudioSampleBuffer(const QList<float>& samples);

    /** Moves the position line, and the visible range after it. AudioPositionChanged() is not emitted. */
    void SetAudioPosition(double position);
    [[nodiscard]] double GetAudioPosition() const;

    /** Selects a range, in either order, cut to MAX_SNIPPET_LENGTH and to the visible range. Moves the position to
     *  its start and emits SelectionChanged(), unless it differs by less than a millisecond from the selection. */
    void SetSelectedSnippet(std::pair<double, double> snippet);
    /** (0, 0) without a selection. */
    [[nodiscard]] std::pair<double, double> GetSelectedSnippet() const;
    /** Moves one end of the selection, cut as above; the start takes the position along, the end does not. Without
     *  a selection the other end is that of the last one. */
    void SetSelectionStartTime(double start);
    void SetSelectionEndTime(double end);
    /** 0.0 without a selection. */
    [[nodiscard]] double GetSelectionStartTime() const;
    [[nodiscard]] double GetSelectionEndTime() const;

    /** Seconds of silence shown behind the audio. */
    void SetDelay(double delay);
    [[nodiscard]] double GetDelay() const;

    /** Whether the mouse may make and change a selection; off at first. */
    void SetEditMode(bool isEditing);
    [[nodiscard]] bool GetEditMode() const;
    /** With true, as at first, turning the wheel back (toward the user) while Control is held zooms out. */
    void SetScrollBackToZoomOut(bool scrollBackToZoomOut);

    /** An SVG file or resource for the marker over the position, 10 x 6 pixels; a file that cannot be loaded
     * leaves no icon. */
    void SetAudioPositionIcon(const QString& fileName);
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
        Software
    };
    /** None before the first waveform was painted. */
    [[nodiscard]] static DrawingDevice GetDrawingDevice();

Q_SIGNALS:
    /** Samples are needed from `startTime` to `endTime`, one per `stepSize` frames. */
    void GetSamples(double startTime, double endTime, int stepSize);
    void SelectionChanged(std::pair<double, double> selectedSnippet);
    /** The user clicked a position; the selection is gone then. */
    void AudioPositionChanged(double position);
    /** The visible range: x and width in seconds, height half the amplitude range. */
    void SceneRectChanged(const QRectF& sceneRect);

public Q_SLOTS:
    /** Shows the range of another view: left and right of `rect`, brought into the file's length. */
    void OnSceneRectChangeRequested(const QRectF& rect);

private Q_SLOTS:
    void OnDiagramChanged();
    void OnGetSamples(double startTime, double endTime, int stepSize);
    void OnSelectionChanged(std::pair<double, double> selectedSnippet);
    void OnAudioPositionChanged(double position);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    friend class WaveformTestAccess;

    void SetUpLayout();
    void ConnectSignals();
    void DrawFrame(QPainter& painter) const;
    void DrawRuler(QPainter& painter);
    void DrawAmplitudeLabels(QPainter& painter) const;
    void DrawPositionMarker(QPainter& painter) const;

    BGFXWaveformDiagramWidget* m_diagram;
    QColor m_frameColor{125, 125, 125, 255};
    QColor m_scaleColor{150, 150, 150, 255};
    QColor m_positionMarkerColor{115, 140, 200, 255};
    double m_scale = 1.0;
    QSvgRenderer* m_positionIcon;
    QScrollBar* m_scrollBar;
};

} // namespace vantoraudio::vantorAudioEngine::UI
