#pragma once

#include <QtCore/QString>

/** A name as the text of an action: what marks the underlined letters of menus is an ordinary letter of it. */
inline QString AsMenuText(QString name)
{
    return name.replace(u'&', QStringLiteral("&&"));
}
