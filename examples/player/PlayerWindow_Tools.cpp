#include "HostPlayer.h"
#include "LevelMeter.h"
#include "PlayerWindow.h"
#include "SpeedMenu.h"
#include "ZoomBar.h"

#include <QtGui/QAction>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QToolButton>

void PlayerWindow::BuildTools()
{
    auto* bar = addToolBar(tr("Tools"));
    bar->setMovable(false);
    // It stays: nothing would bring it back.
    bar->toggleViewAction()->setVisible(false);
    m_zoom = new ZoomBar(*m_player, *m_actions, bar);
    bar->addWidget(m_zoom);
    bar->addSeparator();
    bar->addWidget(MakeSpeedButton());
    bar->addSeparator();
    bar->addWidget(new LevelMeter(*m_player, bar));
}

QToolButton* PlayerWindow::MakeSpeedButton()
{
    auto* button = new QToolButton;
    // The menu has keys.
    button->setFocusPolicy(Qt::NoFocus);
    button->setToolTip(tr("Speed"));
    button->setAccessibleName(tr("Speed"));
    button->setMenu(m_speeds);
    button->setPopupMode(QToolButton::InstantPopup);
    button->setText(m_speeds->Text());
    connect(m_speeds, &SpeedMenu::Changed, button, [this, button] { button->setText(m_speeds->Text()); });
    return button;
}
