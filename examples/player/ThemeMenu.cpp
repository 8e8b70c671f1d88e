#include "ThemeMenu.h"

#include <QtGui/QActionGroup>

ThemeMenu::ThemeMenu(QWidget* parent) : QMenu(tr("&Theme"), parent)
{
    auto* group = new QActionGroup(this);
    for (const QString& name : Appearance::ThemeNames()) {
        QAction* action = group->addAction(name);
        action->setCheckable(true);
        const auto theme = static_cast<Appearance::Theme>(actions().size());
        connect(action, &QAction::triggered, this, [this, theme] { Q_EMIT Chosen(theme); });
        addAction(action);
    }
}

void ThemeMenu::Check(Appearance::Theme theme)
{
    actions().at(static_cast<int>(theme))->setChecked(true);
}
