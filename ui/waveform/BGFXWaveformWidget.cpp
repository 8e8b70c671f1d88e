#include "render/bgfx/DrawingDevice.h"
#include "ui/waveform/BGFXWaveformDiagramWidget.h"
#include "ui/waveform/WaveformAccessible.h"
#include "ui/waveform/rules/Ruler.h"
#include "ui/waveform/rules/TimeScale.h"
#include "ui/waveform/rules/ViewColors.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QEvent>
#include <QtCore/QMetaType>
#include <QtCore/QPointer>
#include <QtCore/QSignalBlocker>
#include <QtSvg/QSvgRenderer>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QSpacerItem>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

/** Lets selections travel through queued connections and recorded signals from the moment the library is loaded.
 */
[[maybe_unused]] const int PairMetaType = qRegisterMetaType<std::pair<double, double>>("std::pair<double,double>");

constexpr int MinimumHeight = 120;
constexpr int RulerHeight = 20;
constexpr int SideSpacing = 20;
constexpr int LeftMargin = 10;
/** Between a label and what it belongs to. */
constexpr int LabelDistance = 4;

} // namespace

double BGFXWaveformWidget::CalculateScale(double span)
{
    return UI::CalculateScale(span);
}

QString BGFXWaveformWidget::FormatToTime(double seconds)
{
    return UI::FormatToTime(seconds);
}

BGFXWaveformWidget::BGFXWaveformWidget(QWidget* parent)
    : QWidget(parent)
    , m_diagram(new BGFXWaveformDiagramWidget(this))
    , m_positionIcon(new QSvgRenderer(QStringLiteral(":/Resources/vantoraudioArrowDownLightBlue.svg"), this))
    , m_scrollBar(new QScrollBar(Qt::Horizontal, this))
{
    m_scrollBar->setRange(0, 0);
    SetUpLayout();
    ConnectSignals();
    InstallWaveformAccessible();
}

BGFXWaveformWidget::~BGFXWaveformWidget() = default;

void BGFXWaveformWidget::SetUpLayout()
{
    setMinimumHeight(MinimumHeight);
    auto* column = new QVBoxLayout;
    column->setSpacing(0);
    column->setContentsMargins(0, RulerHeight, 0, 0);
    column->addWidget(m_diagram);
    column->addItem(new QSpacerItem(0, 1, QSizePolicy::Expanding, QSizePolicy::Minimum));
    column->addWidget(m_scrollBar);

    auto* row = new QHBoxLayout;
    row->setContentsMargins(LeftMargin, 0, 0, 0);
    row->addSpacing(SideSpacing);
    row->addLayout(column);
    row->addSpacing(SideSpacing);
    setLayout(row);
}

void BGFXWaveformWidget::SetTakesFocus(bool takesFocus)
{
    m_takesFocus = takesFocus;
    setFocusPolicy(takesFocus ? Qt::StrongFocus : Qt::NoFocus);
    update();
}

void BGFXWaveformWidget::SetLabelsFit(bool fit)
{
    m_labelsFit = fit;
    MakeRoomForLabels();
    update();
}

void BGFXWaveformWidget::MakeRoomForLabels()
{
    QSize room(0, 0);
    if (m_labelsFit) {
        const QString longest = AmplitudeLabel(m_diagram->GetSceneRect().height(), 0);
        room = QSize(fontMetrics().horizontalAdvance(longest), fontMetrics().height());
        room += QSize(LabelDistance, PositionMarkerReach);
    }
    layout()->setContentsMargins(std::max(LeftMargin, room.width() - SideSpacing), 0, 0, 0);
    layout()->itemAt(1)->layout()->setContentsMargins(0, std::max(RulerHeight, room.height()), 0, 0);
}

void BGFXWaveformWidget::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && m_labelsFit) {
        MakeRoomForLabels();
    } else if (event->type() == QEvent::PaletteChange && GetColorsFollowPalette()) {
        Show(ColorsOf(palette()));
    }
}

void BGFXWaveformWidget::ConnectSignals()
{
    using Diagram = BGFXWaveformDiagramWidget;
    connect(m_diagram, &Diagram::SceneRectChanged, this, &BGFXWaveformWidget::OnDiagramChanged);
    connect(m_diagram, &Diagram::SceneRectChanged, this, &BGFXWaveformWidget::SceneRectChanged);
    connect(m_diagram, &Diagram::Update, this, &BGFXWaveformWidget::OnDiagramChanged);
    connect(m_diagram, &Diagram::GetSamples, this, &BGFXWaveformWidget::OnGetSamples);
    connect(m_diagram, &Diagram::SelectionChanged, this, &BGFXWaveformWidget::OnSelectionChanged);
    connect(m_diagram, &Diagram::AudioPositionChanged, this, &BGFXWaveformWidget::OnAudioPositionChanged);
    connect(m_scrollBar, &QScrollBar::valueChanged, m_diagram,
            [this](int value) { m_diagram->ScrollTo(value / 1000.0); });
}

void BGFXWaveformWidget::Initilize(QAudioFormat format, double duration)
{
    // A receiver of the signals may destroy the player, or show another file.
    const QPointer<BGFXWaveformWidget> self(this);
    const auto isLatest = [&, reset = m_diagram->GetResetCount() + 1] {
        return self && m_diagram->GetResetCount() == reset;
    };
    m_diagram->Reset();
    if (isLatest()) {
        m_diagram->SetAudioFormat(format);
        m_diagram->SetDuration(duration);
    }
    if (isLatest()) {
        m_diagram->SetDelay(0.0);
    }
    if (isLatest() && m_labelsFit) {
        MakeRoomForLabels();
    }
}

void BGFXWaveformWidget::Reset()
{
    m_diagram->Reset();
}

void BGFXWaveformWidget::Update()
{
    m_diagram->update();
    update();
}

void BGFXWaveformWidget::UpdateAudioSampleBuffer(const QList<float>& samples)
{
    m_diagram->UpdateAudioSampleBuffer(samples);
}

void BGFXWaveformWidget::SetAudioPosition(double position)
{
    m_diagram->SetAudioPosition(position, false);
}

void BGFXWaveformWidget::SetAudioPositionKeepingView(double position)
{
    m_diagram->SetAudioPositionKeepingView(position);
}

double BGFXWaveformWidget::GetAudioPosition() const
{
    return m_diagram->GetAudioPosition();
}

void BGFXWaveformWidget::SetPositionRate(double rate)
{
    m_diagram->SetPositionRate(rate);
}

void BGFXWaveformWidget::SetFollowsPosition(bool follows)
{
    m_diagram->SetFollowsPosition(follows);
}

bool BGFXWaveformWidget::GetFollowsPosition() const
{
    return m_diagram->GetFollowsPosition();
}

void BGFXWaveformWidget::SetShowsPositionAtOnce(bool atOnce)
{
    m_diagram->SetShowsPositionAtOnce(atOnce);
}

bool BGFXWaveformWidget::GetShowsPositionAtOnce() const
{
    return m_diagram->GetShowsPositionAtOnce();
}

void BGFXWaveformWidget::SetKeepsViewFilled(bool filled)
{
    m_diagram->SetKeepsViewFilled(filled);
}

bool BGFXWaveformWidget::GetKeepsViewFilled() const
{
    return m_diagram->GetKeepsViewFilled();
}

void BGFXWaveformWidget::SetSelectedSnippet(std::pair<double, double> snippet)
{
    m_diagram->SetSelectedSnippet(snippet);
}

std::pair<double, double> BGFXWaveformWidget::GetSelectedSnippet() const
{
    return {GetSelectionStartTime(), GetSelectionEndTime()};
}

void BGFXWaveformWidget::ClearSelection()
{
    m_diagram->ClearSelection();
}

double BGFXWaveformWidget::GetTimeAt(const QPoint& position) const
{
    return m_diagram->GetTimeAt(m_diagram->mapFrom(this, position).x());
}

std::pair<double, double> BGFXWaveformWidget::GetLevelAt(const QPoint& position) const
{
    return m_diagram->GetLevelAt(m_diagram->mapFrom(this, position).x());
}

std::pair<double, double> BGFXWaveformWidget::GetVisibleRange() const
{
    const QRectF rect = m_diagram->GetSceneRect();
    return {rect.left(), rect.right()};
}

void BGFXWaveformWidget::SetSelectionStartTime(double start)
{
    m_diagram->SetSelectionStartTime(start);
}

void BGFXWaveformWidget::SetSelectionEndTime(double end)
{
    m_diagram->SetSelectionEndTime(end);
}

double BGFXWaveformWidget::GetSelectionStartTime() const
{
    return m_diagram->GetSelectionStartTime();
}

double BGFXWaveformWidget::GetSelectionEndTime() const
{
    return m_diagram->GetSelectionEndTime();
}

void BGFXWaveformWidget::SetDelay(double delay)
{
    m_diagram->SetDelay(delay);
    Update();
}

double BGFXWaveformWidget::GetDelay() const
{
    return m_diagram->GetDelay();
}

void BGFXWaveformWidget::SetEditMode(bool isEditing)
{
    m_diagram->SetEditMode(isEditing);
}

bool BGFXWaveformWidget::GetEditMode() const
{
    return m_diagram->GetEditMode();
}

void BGFXWaveformWidget::SetInteractions(Interactions interactions)
{
    m_diagram->SetInteractions(interactions);
}

BGFXWaveformWidget::Interactions BGFXWaveformWidget::GetInteractions() const
{
    return m_diagram->GetInteractions();
}

void BGFXWaveformWidget::SetScrollBackToZoomOut(bool scrollBackToZoomOut)
{
    m_diagram->SetScrollBackToZoomOut(scrollBackToZoomOut);
}

void BGFXWaveformWidget::SetWheelZoomFactor(double factor)
{
    m_diagram->SetWheelZoomFactor(factor);
}

void BGFXWaveformWidget::SetAudioPositionIcon(const QString& fileName)
{
    m_positionIcon->load(fileName);
}

BGFXWaveformWidget::DrawingDevice BGFXWaveformWidget::GetDrawingDevice()
{
    switch (bgfx::DrawingDevice::Get().Kind()) {
    case bgfx::device::Kind::Bgfx:
        return DrawingDevice::Bgfx;
    case bgfx::device::Kind::OpenGL:
        return DrawingDevice::OpenGL;
    case bgfx::device::Kind::Software:
        return DrawingDevice::Software;
    case bgfx::device::Kind::None:
        break;
    }
    return DrawingDevice::None;
}

QString BGFXWaveformWidget::GetDrawingDeviceName()
{
    switch (GetDrawingDevice()) {
    case DrawingDevice::Bgfx: {
        const QString renderer = bgfx::DrawingDevice::Get().RendererName();
        return renderer.isEmpty() ? QStringLiteral("bgfx") : QStringLiteral("bgfx (%1)").arg(renderer);
    }
    case DrawingDevice::OpenGL:
        return QStringLiteral("OpenGL");
    case DrawingDevice::Software:
        return QStringLiteral("Software");
    case DrawingDevice::None:
        break;
    }
    return {};
}

bool BGFXWaveformWidget::UseHostRenderer(const void* bgfxFunctions, quint32 bgfxVersion, quint16 firstView,
                                         quint16 viewCount)
{
    return bgfx::DrawingDevice::Get().UseHost(
        {.functions = bgfxFunctions, .version = bgfxVersion, .firstView = firstView, .viewCount = viewCount});
}

void BGFXWaveformWidget::HostFrameEnded(quint32 frame)
{
    bgfx::DrawingDevice::Get().OnHostFrame(frame);
}

void BGFXWaveformWidget::LeaveHostRenderer()
{
    bgfx::DrawingDevice::Get().LeaveHost();
}

void BGFXWaveformWidget::OnSceneRectChangeRequested(const QRectF& rect)
{
    // Views that follow each other both ways would send the range back and forth without end.
    if (m_isFollowing) {
        return;
    }
    m_isFollowing = true;
    const QRectF range = rect.normalized();
    // A receiver of the signals may destroy the player.
    const QPointer<BGFXWaveformWidget> self(this);
    m_diagram->SetSceneRange(range.left(), range.right());
    if (self) {
        m_isFollowing = false;
    }
}

void BGFXWaveformWidget::OnDiagramChanged()
{
    const ScrollBarState state =
        ScrollBarFor(HorizontalRange(m_diagram->GetSceneRect()), m_diagram->GetTotalLength());
    {
        // Without this the bar would scroll the view back to where it can follow: a range that becomes shorter
        // than the old value changes the value, too.
        const QSignalBlocker noEcho(m_scrollBar);
        m_scrollBar->setRange(0, state.maximum);
        m_scrollBar->setPageStep(state.pageStep);
        // The bar counts milliseconds, so that a step of one would move nothing.
        m_scrollBar->setSingleStep(std::max(1, state.pageStep / 20));
        m_scrollBar->setValue(state.value);
    }
    if (m_labelsFit) {
        MakeRoomForLabels();
    }
    update();
}

void BGFXWaveformWidget::OnGetSamples(double startTime, double endTime, int stepSize)
{
    Q_EMIT GetSamples(startTime, endTime, stepSize);
}

void BGFXWaveformWidget::OnSelectionChanged(std::pair<double, double> selectedSnippet)
{
    Q_EMIT SelectionChanged(selectedSnippet);
}

void BGFXWaveformWidget::OnAudioPositionChanged(double position)
{
    Q_EMIT AudioPositionChanged(position);
}

} // namespace vantoraudio::vantorAudioEngine::UI
