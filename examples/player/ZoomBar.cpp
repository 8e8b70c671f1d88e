#include "ZoomBar.h"

#include "HostPlayer.h"

#include <QtCore/QSignalBlocker>
#include <QtGui/QAction>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QSlider>
#include <QtWidgets/QToolButton>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

/** In seconds. The wheel zooms no farther in, nor out of a shorter view, and the ruler writes milliseconds. */
constexpr double ShortestSpan = 0.101;

constexpr std::array<std::pair<ZoomBar::Actions::Command, const char*>, 4> icons{{
    {ZoomBar::Actions::ZoomOut, "ZoomOut"},
    {ZoomBar::Actions::ZoomIn, "ZoomIn"},
    {ZoomBar::Actions::ShowAll, "ZoomAll"},
    {ZoomBar::Actions::ShowSelection, "ZoomSelection"},
}};

/** A damaged file may last for ever. */
bool CanBeZoomed(double length)
{
    return length > ShortestSpan && std::isfinite(length);
}

bool MovesASlider(int key)
{
    switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default:
        return false;
    }
}

} // namespace

ZoomBar::ZoomBar(HostPlayer& player, const Actions& actions, QWidget* parent)
    : QWidget(parent), m_player(player), m_actions(actions), m_slider(new QSlider(Qt::Horizontal, this))
{
    m_slider->setObjectName("zoom"_L1);
    m_slider->setRange(0, steps);
    m_slider->setPageStep(steps / 10);
    m_slider->setSingleStep(steps / 50);
    m_slider->setMinimumWidth(100);
    m_slider->setToolTip(tr("Zoom"));
    m_slider->setAccessibleName(tr("Zoom"));
    m_slider->installEventFilter(this);
    connect(m_slider, &QSlider::valueChanged, this, [this](int step) { Zoom(SpanAt(step, Length())); });

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    for (const auto& [command, icon] : icons) {
        auto* button = new QToolButton(this);
        button->setDefaultAction(m_actions.Get(command));
        button->setAutoRaise(true);
        // Each has a key of its own.
        button->setFocusPolicy(Qt::NoFocus);
        layout->addWidget(button);
    }
    layout->insertWidget(1, m_slider);
    SetNightIcons(false);
    FitToFont();
    connect(&m_player, &HostPlayer::SceneRectChanged, this, &ZoomBar::ShowView);
    connect(&m_player, &HostPlayer::AudioFileChanged, this, &ZoomBar::ShowView);
    ShowView();
}

void ZoomBar::SetNightIcons(bool night)
{
    for (const auto& [command, name] : icons) {
        QAction* action = m_actions.Get(command);
        action->setIcon(QIcon(
            u":/Resources/vantoraudio%1_%2.svg"_s.arg(QLatin1StringView(name), night ? "night"_L1 : "day"_L1)));
    }
}

double ZoomBar::SpanAt(int step, double length)
{
    return CanBeZoomed(length) ? length * std::pow(ShortestSpan / length, double(step) / steps) : length;
}

int ZoomBar::StepFor(double span, double length)
{
    if (!CanBeZoomed(length) || !(span > 0.0)) {
        return 0;
    }
    const double step = steps * std::log(span / length) / std::log(ShortestSpan / length);
    return static_cast<int>(std::lround(std::clamp(step, 0.0, double(steps))));
}

bool ZoomBar::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* keyEvent = static_cast<QKeyEvent*>(event);
        if (keyEvent->modifiers() == Qt::NoModifier && MovesASlider(keyEvent->key())) {
            event->accept();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void ZoomBar::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        FitToFont();
    }
}

void ZoomBar::FitToFont()
{
    const int size = fontMetrics().height();
    for (auto* button : findChildren<QToolButton*>()) {
        button->setIconSize(QSize(size, size));
    }
}

double ZoomBar::Length() const
{
    return m_player.GetAudioDuration() + m_player.GetDelay();
}

void ZoomBar::ShowView()
{
    const auto [left, right] = m_player.GetVisibleRange();
    const QSignalBlocker blocker(m_slider);
    m_slider->setValue(StepFor(right - left, Length()));
    m_slider->setEnabled(CanBeZoomed(Length()));
}

/** Around the position if it shows, otherwise around the middle of the view. */
void ZoomBar::Zoom(double span)
{
    const auto [left, right] = m_player.GetVisibleRange();
    const double position = m_player.GetAudioPosition();
    const bool shows = left <= position && position <= right;
    const double anchor = shows ? position : left + (right - left) / 2.0;
    const double share = (anchor - left) / (right - left);
    const double start = std::clamp(anchor - share * span, 0.0, std::max(0.0, Length() - span));
    m_player.ShowRange(start, start + span);
}
