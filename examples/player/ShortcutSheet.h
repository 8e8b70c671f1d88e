#pragma once

#include <QtWidgets/QDialog>

class QMainWindow;

/** Lists every key of a window: all of its actions that have one, those of its menus first. */
class ShortcutSheet : public QDialog
{
    Q_OBJECT

public:
    explicit ShortcutSheet(QMainWindow& window);
};
