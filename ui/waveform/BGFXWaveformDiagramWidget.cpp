#include "ui/waveform/BGFXWaveformDiagramWidget.h"

#include "ui/waveform/drawing/Projection.h"
#include "ui/waveform/rules/ViewNavigation.h"

#include <QtCore/QMutexLocker>

#include <algorithm>
#include <cmath>
#include <limits>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr double FastestRate = 16.0;
/** Milliseconds: about as often as screens show a picture. */
constexpr int LineInterval = 16;

} // namespace

BGFXWaveformDiagramWidget::BGFXWaveformDiagramWidget(QWidget* parent) : BGFXOffscreenWidget(parent)
{
    setObjectName(QStringLiteral("BGFXWaveformDiagramWidget"));
    setAttribute(Qt::WA_MouseTracking);
    connect(this, &BGFXOffscreenWidget::CleanupRequested, this, &BGFXWaveformDiagramWidget::OnCleanupRequested);
    Reset();
}

BGFXWaveformDiagramWidget::~BGFXWaveformDiagramWidget() = default;

void BGFXWaveformDiagramWidget::Reset()
{
    ++m_resetCount;
    m_duration = 0.0;
    m_sceneRect = QRectF(0.0, 0.0, 1.0, m_amplitudeExtent);
    m_buffer = {};
    m_requestedStart = 0.0;
    m_asked.reset();
    m_audioPosition = 0.0;
    m_grab = {};
    m_borderScroll.stop();
    LoseTheMouse();
    m_lineTimer.stop();
    m_selection.isPresent = false;
    m_selectionAtGrab = {0.0, 0.0};
    if (Tell(&BGFXWaveformDiagramWidget::SelectionChanged, {0.0, 0.0})) {
        Changed();
    }
}

void BGFXWaveformDiagramWidget::SetAudioFormat(const QAudioFormat& format)
{
    m_format = format;
}

void BGFXWaveformDiagramWidget::SetDuration(double duration)
{
    m_duration = duration;
    ShowEverything();
    m_stepSize = StepSizeFor(GetTotalLength());
    // The step size counts the visible silence, too; samples exist only for the audio.
    AskForSamples(0.0, duration);
}

void BGFXWaveformDiagramWidget::SetDelay(double delay)
{
    m_delay = delay;
    ShowEverything();
    m_stepSize = StepSizeFor(GetTotalLength());
    RequestSamplesIfNeeded();
}

void BGFXWaveformDiagramWidget::SetAudioPosition(double position, bool clearSelection)
{
    MoveLineTo(position);
    if (clearSelection) {
        m_selection.isPresent = false;
    }
    // What the mouse holds must not slip away.
    const bool isKept = m_showsPositionAtOnce && m_isHeld;
    if (!m_followsPosition || isKept || Follow()) {
        Changed();
    }
}

void BGFXWaveformDiagramWidget::SetAudioPositionKeepingView(double position)
{
    MoveLineTo(position);
    Changed();
}

void BGFXWaveformDiagramWidget::MoveLineTo(double position)
{
    m_audioPosition = position;
    if (m_lineTimer.isActive()) {
        const qint64 now = m_clock.elapsed();
        m_moving.Report(position, now);
        m_shownPosition = LineAt(now);
    }
}

/** False when a receiver has destroyed this widget. */
bool BGFXWaveformDiagramWidget::Follow()
{
    if (m_showsPositionAtOnce) {
        const bool isOverrun = m_selection.isPresent && IsOverrun(m_selection.times, View(), m_audioPosition);
        const auto left = isOverrun ? std::nullopt : LeftThatShows(View(), m_audioPosition, m_duration);
        return !left || ScrollTo(*left);
    }
    const auto left = PageFor(View(), m_audioPosition, m_duration);
    return (!left || ScrollTo(*left)) && (!(m_sceneRect.left() > m_audioPosition) || ScrollTo(m_audioPosition));
}

void BGFXWaveformDiagramWidget::SetKeepsViewFilled(bool filled)
{
    m_keepsViewFilled = filled;
    // The answer to what was asked for before may have got another start or step, see RequestSamplesIfNeeded().
    m_asked.reset();
}

void BGFXWaveformDiagramWidget::SetPositionRate(double rate)
{
    if (!(rate > 0.0 && rate <= FastestRate)) {
        if (m_lineTimer.isActive()) {
            m_lineTimer.stop();
            Changed();
        }
        return;
    }
    if (!m_lineTimer.isActive()) {
        m_clock.start();
        m_moving = MovingPosition(m_audioPosition);
        m_shownPosition = m_audioPosition;
        m_lineTimer.start(LineInterval, this);
    }
    m_moving.SetRate(rate, m_clock.elapsed());
}

/** The line waits at the end of the file. */
double BGFXWaveformDiagramWidget::LineAt(qint64 now) const
{
    return std::min(m_moving.At(now), std::max(m_audioPosition, m_duration));
}

/** Only where it reaches another pixel. */
void BGFXWaveformDiagramWidget::MoveLine()
{
    const auto pixelOf = [this](double time) {
        return std::floor(PixelAtTime(View(), time, width()) * devicePixelRatioF());
    };
    const double former = GetShownPosition();
    m_shownPosition = LineAt(m_clock.elapsed());
    // Pixels are whole numbers, unless the position or the view is not finite.
    if (isVisible() && HasAudio() && std::abs(pixelOf(GetShownPosition()) - pixelOf(former)) >= 1.0) {
        Changed();
    }
}

void BGFXWaveformDiagramWidget::SetSelectedSnippet(std::pair<double, double> snippet)
{
    if (m_selection.isPresent && IsSameSelection(m_selection.times, snippet)) {
        return;
    }
    Select(Ordered(snippet.first, snippet.second));
    m_audioPosition = m_selection.times.first;
    if (Tell(&BGFXWaveformDiagramWidget::SelectionChanged, m_selection.times)) {
        Changed();
    }
}

void BGFXWaveformDiagramWidget::ClearSelection()
{
    if (Allows(BGFXWaveformWidget::Interaction::ForgetCleared)) {
        EndDrag();
    }
    if (m_selection.isPresent) {
        m_selection.isPresent = false;
        if (Tell(&BGFXWaveformDiagramWidget::SelectionChanged, {0.0, 0.0})) {
            Changed();
        }
    }
}

void BGFXWaveformDiagramWidget::SetSelectionStartTime(double start)
{
    const double time = ClampTime(start, 0.0, m_duration);
    Select(Ordered(time, TimesToPairWith(time).second));
    m_audioPosition = m_selection.times.first;
    if (Tell(&BGFXWaveformDiagramWidget::SelectionChanged, m_selection.times)) {
        Q_EMIT Update();
    }
}

void BGFXWaveformDiagramWidget::SetSelectionEndTime(double end)
{
    // Unlike the start, the end leaves the position alone: playback goes on where it is.
    const double time = ClampTime(end, 0.0, m_duration);
    Select(Ordered(TimesToPairWith(time).first, time));
    if (Tell(&BGFXWaveformDiagramWidget::SelectionChanged, m_selection.times)) {
        Q_EMIT Update();
    }
}

double BGFXWaveformDiagramWidget::GetSelectionStartTime() const
{
    return m_selection.isPresent ? m_selection.times.first : 0.0;
}

double BGFXWaveformDiagramWidget::GetSelectionEndTime() const
{
    return m_selection.isPresent ? m_selection.times.second : 0.0;
}

std::pair<double, double> BGFXWaveformDiagramWidget::GetLevelAt(int x) const
{
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    if (!HasAudio() || x < 0 || x >= width()) {
        return {none, none};
    }
    const auto levels = m_geometry.LevelsBetween(ToCoordinate(TimeAt(x - 0.5) - m_buffer.start),
                                                 ToCoordinate(TimeAt(x + 0.5) - m_buffer.start));
    return levels ? std::pair<double, double>(levels->low, levels->high) : std::pair(none, none);
}

void BGFXWaveformDiagramWidget::SetSceneRange(double left, double right)
{
    m_sceneRect.setLeft(ClampTime(left, 0.0, GetTotalLength()));
    m_sceneRect.setRight(ClampTime(right, 0.0, GetTotalLength()));
    SceneRectMoved();
}

bool BGFXWaveformDiagramWidget::ScrollTo(double left)
{
    m_sceneRect.moveLeft(left);
    return SceneRectMoved();
}

void BGFXWaveformDiagramWidget::UpdateAudioSampleBuffer(const QList<float>& samples)
{
    {
        const QMutexLocker lock(&m_bufferLock);
        const SampleSpacing spacing{.stepSize = m_stepSize, .sampleRate = m_format.sampleRate()};
        // The end deliberately counts from 0, not from the start: with samples that begin later, nearly every move
        // of the view asks for new ones.
        m_buffer = {.start = m_requestedStart, .end = m_geometry.SetSamples(samples, m_delay, spacing)};
        m_amplitudeExtent = AmplitudeExtent(m_geometry.Peak());
    }
    Changed();
}

void BGFXWaveformDiagramWidget::OnCleanupRequested()
{
    m_program.Drop();
}

int BGFXWaveformDiagramWidget::StepSizeFor(double span) const
{
    return StepSizeForSpan(span, m_format.sampleRate(), width());
}

void BGFXWaveformDiagramWidget::ShowEverything()
{
    m_sceneRect = QRectF(0.0, 0.0, GetTotalLength(), m_amplitudeExtent);
}

bool BGFXWaveformDiagramWidget::RequestSamplesIfNeeded()
{
    if (m_keepsViewFilled) {
        return FillView();
    }
    const auto request = RequestFor(View(), m_buffer, GetTotalLength());
    if (!request) {
        return true;
    }
    // It is remembered even if it is not sent: samples still on their way are then drawn from this start time on.
    m_stepSize = StepSizeFor(request->end - request->start);
    m_requestedStart = request->start;
    return !request->isSent || AskForSamples(request->start, request->end);
}

/** Goes by what was asked for last, which will be there in the end, and not by what is there at the moment. */
bool BGFXWaveformDiagramWidget::FillView()
{
    const SampleRequest filling = FillingRequestFor(View(), GetTotalLength());
    const int stepSize = StepSizeFor(filling.end - filling.start);
    if (m_asked && m_asked->stepSize <= stepSize && Shows(*m_asked)) {
        // A delay may have set another.
        m_stepSize = m_asked->stepSize;
        return true;
    }
    if (!filling.isSent) {
        return true;
    }
    m_stepSize = stepSize;
    m_requestedStart = filling.start;
    return AskForSamples(filling.start, filling.end);
}

/** All that the view shows of the file was asked for. */
bool BGFXWaveformDiagramWidget::Shows(const AskedSamples& asked) const
{
    const double roundingError = View().width * 1e-6;
    return asked.start <= ClampTime(View().left, 0.0, GetTotalLength()) + roundingError &&
           ClampTime(View().Right(), 0.0, GetTotalLength()) <= asked.end + roundingError;
}

bool BGFXWaveformDiagramWidget::AskForSamples(double start, double end)
{
    m_asked = AskedSamples{.start = start, .end = end, .stepSize = m_stepSize};
    return Tell(&BGFXWaveformDiagramWidget::GetSamples, start, end, m_stepSize);
}

void BGFXWaveformDiagramWidget::Changed()
{
    update();
    Q_EMIT Update();
}

bool BGFXWaveformDiagramWidget::SceneRectMoved()
{
    update();
    return Tell(&BGFXWaveformDiagramWidget::SceneRectChanged, m_sceneRect) && RequestSamplesIfNeeded();
}

void BGFXWaveformDiagramWidget::Select(const SelectionTimes& candidate)
{
    m_selection.times =
        Finite(LimitSelection(candidate, SelectionBounds(), BGFXWaveformWidget::MAX_SNIPPET_LENGTH));
    m_selection.isPresent = true;
}

SelectionTimes BGFXWaveformDiagramWidget::TimesToPairWith(double time) const
{
    const bool forgets = !m_selection.isPresent && Allows(BGFXWaveformWidget::Interaction::ForgetCleared);
    return forgets ? SelectionTimes{time, time} : m_selection.times;
}

ViewRange BGFXWaveformDiagramWidget::SelectionBounds() const
{
    return Allows(BGFXWaveformWidget::Interaction::SelectBeyondView) ? ViewRange{.left = 0.0, .width = m_duration}
                                                                     : View();
}

} // namespace vantoraudio::vantorAudioEngine::UI
