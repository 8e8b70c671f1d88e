#include "SpeedMenu.h"

#include "HostPlayer.h"

#include <QtCore/QLocale>
#include <QtGui/QActionGroup>

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr std::array rates{0.5, 0.75, 1.0, 1.25, 1.5, 2.0};
constexpr qsizetype normal = 2;

} // namespace

SpeedMenu::SpeedMenu(HostPlayer& player, QWidget* parent) : QMenu(tr("S&peed"), parent), m_player(player)
{
    auto* group = new QActionGroup(this);
    for (const double rate : rates) {
        QAction* action = group->addAction(QLocale().toString(rate) + u'×');
        action->setCheckable(true);
        connect(action, &QAction::triggered, this, [this, index = m_rates.size()] { Choose(index); });
        m_rates.append(action);
    }
    addActions(m_rates);
    addSeparator();
    m_slower = addAction(tr("&Slower"), QKeySequence(Qt::Key_Less), this, [this] { ChooseBeside(-1); });
    m_faster = addAction(tr("&Faster"), QKeySequence(Qt::Key_Greater), this, [this] { ChooseBeside(1); });
    addAction(tr("&Normal speed"), QKeySequence(Qt::Key_1), this, [this] { Choose(normal); });
    Choose(normal);
}

QString SpeedMenu::Text() const
{
    return m_rates.at(m_chosen)->text();
}

void SpeedMenu::Choose(qsizetype rate)
{
    m_chosen = rate;
    m_rates.at(rate)->setChecked(true);
    m_slower->setEnabled(rate > 0);
    m_faster->setEnabled(rate < m_rates.size() - 1);
    m_player.SetPlaybackRate(rates[static_cast<std::size_t>(rate)]);
    Q_EMIT Changed();
}

void SpeedMenu::ChooseBeside(qsizetype steps)
{
    Choose(std::clamp(m_chosen + steps, qsizetype(0), m_rates.size() - 1));
}
