#pragma once

#include <QtGui/QKeyEvent>

#include <initializer_list>

/** For event() of what a button lies in: accepts these keys, which the window's shortcuts would take from the
 * button that has the focus otherwise. */
inline bool KeepsFromShortcuts(QEvent* event, std::initializer_list<int> keys)
{
    if (event->type() != QEvent::ShortcutOverride) {
        return false;
    }
    for (const int key : keys) {
        if (static_cast<QKeyEvent*>(event)->key() == key) {
            event->accept();
            return true;
        }
    }
    return false;
}
