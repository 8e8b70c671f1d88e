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
    auto* view = player.findChild<BGFXWaveformWidget*>();
    view->setAttribute(Qt::WA_Hover);
    view->installEventFilter(this);
}

bool PointerLabel::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::HoverMove) {
        const QPoint onView = static_cast<QHoverEvent*>(event)->position().toPoint();
        const auto* view = static_cast<QWidget*>(watched);
        const QWidget* below = view->childAt(onView);
        // Not over the ruler and the scroll bar.
        const bool isOnWaveform = below && below->objectName() == "BGFXWaveformDiagramWidget"_L1;
        isOnWaveform ? Show(view->mapTo(&m_player, onView)) : clear();
    } else if (event->type() == QEvent::HoverLeave) {
        clear();
    }
    return QLabel::eventFilter(watched, event);
}

void PointerLabel::Show(const QPoint& position)
{
    const auto [lowest, highest] = m_player.GetLevelAt(position);
    const double level = std::max(std::abs(lowest), std::abs(highest));
    if (!std::isfinite(level)) {
        clear();
        return;
    }
    const QString time = TextOfTime(m_player.GetTimeAt(position));
    // Silence has no decibels.
    setText(level > 0.0 ? tr("%1: %2 dB").arg(time, locale().toString(DecibelsOf(level), 'f', 1)) : time);
}
