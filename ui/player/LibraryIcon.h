#pragma once

#include <QtCore/QString>
#include <QtGui/QIcon>

namespace vantoraudio::vantorAudioEngine::UI {

/** One of the icons that the library brings along, drawn for a light or a dark window. Empty where there is none.
 */
[[nodiscard]] inline QIcon LibraryIcon(QLatin1StringView name, bool night = false)
{
    return QIcon(QStringLiteral(":/Resources/vantoraudio%1_%2.svg")
                     .arg(name, night ? QLatin1StringView("night") : QLatin1StringView("day")));
}

} // namespace vantoraudio::vantorAudioEngine::UI
