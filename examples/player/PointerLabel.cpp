#include "PointerLabel.h"

#include "HostPlayer.h"
#include "Level.h"
#include "Times.h"

#include <vantorAudioEngine/BGFXWaveformWidget.h>

#include <QtCore/QLocale>
#include <QtGui/QHoverEvent>

#include <algorithm>
#include <cmath>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::vantorAudioEngine::UI::BGFXWaveformWidget;

PointerLabel::PointerLabel(const HostPlayer& player, QWidget* parent) : QLabel(parent), m_player(player)
{
    // In a narrow window the other parts of the status bar are worth more.
    setMinimumWidth(1);
    auto* view = player.findChild<BGFXWaveformWidget*>();
    view->setAttribute(Qt::WA_Hover);
    view->installEventFilter(this);
    connect(&player, &HostPlayer::SceneRectChanged, this, &PointerLabel::Refresh);
}

bool PointerLabel::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::HoverMove) {
        const QPoint onView = static_cast<QHoverEvent*>(event)->position().toPoint();
        const auto* view = static_cast<QWidget*>(watched);
        const QWidget* below = view->childAt(onView);
        // Not over the ruler and the scroll bar.
        const bool isOnWaveform = below && below->objectName() == "BGFXWaveformDiagramWidget"_L1;
        m_pointer = isOnWaveform ? std::optional(view->mapTo(&m_player, onView)) : std::nullopt;
        Refresh();
    } else if (event->type() == QEvent::HoverLeave) {
        m_pointer.reset();
        Refresh();
    }
    return QLabel::eventFilter(watched, event);
}

void PointerLabel::Refresh()
{
    setText(m_pointer ? TextAt(*m_pointer) : QString());
}

QString PointerLabel::TextAt(const QPoint& position) const
{
    const auto [lowest, highest] = m_player.GetLevelAt(position);
    const double level = std::max(std::abs(lowest), std::abs(highest));
    if (!std::isfinite(level)) {
        return {};
    }
    const QString time = TextOfTime(m_player.GetTimeAt(position));
    // Silence has no decibels.
    return level > 0.0 ? tr("%1: %2 dB").arg(time, locale().toString(DecibelsOf(level), 'f', 1)) : time;
}
