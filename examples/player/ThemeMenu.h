#pragma once

#include "Appearance.h"

#include <QtWidgets/QMenu>

/** A menu of the themes, one of them chosen. */
class ThemeMenu : public QMenu
{
    Q_OBJECT

public:
    explicit ThemeMenu(QWidget* parent = nullptr);

    /** Checks it, and tells nobody. */
    void Check(Appearance::Theme theme);

Q_SIGNALS:
    void Chosen(Appearance::Theme theme);
};
