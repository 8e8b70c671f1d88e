#pragma once

#include <QtWidgets/QMenu>

class HostPlayer;
class QAction;

/** How fast the player plays: half to double speed, in steps. Every start begins at normal speed. */
class SpeedMenu : public QMenu
{
    Q_OBJECT

public:
    /** The player must live longer. */
    explicit SpeedMenu(HostPlayer& player, QWidget* parent = nullptr);

    /** The chosen speed, such as "1.25×". */
    QString Text() const;

Q_SIGNALS:
    void Changed();

private:
    void Choose(qsizetype rate);
    void ChooseBeside(qsizetype steps);

    HostPlayer& m_player;
    /** In the order of the speeds. */
    QList<QAction*> m_rates;
    qsizetype m_chosen = 0;
    QAction* m_slower;
    QAction* m_faster;
};
