#pragma once

#include <QtCore/QFile>
#include <QtCore/QString>
#include <QtGui/QIcon>

namespace vantoraudio::vantorAudioEngine::UI {

/** An icon of the library or of the program, drawn for a light or a dark window. Empty where there is none.
 */
[[nodiscard]] inline QIcon LibraryIcon(QLatin1StringView name, bool night = false)
{
    const QString path = QStringLiteral(":/Resources/vantoraudio%1_%2.svg")
                             .arg(name, night ? QLatin1StringView("night") : QLatin1StringView("day"));
    // Qt warns of an icon whose file is missing.
    return QFile::exists(path) ? QIcon(path) : QIcon();
}

} // namespace vantoraudio::vantorAudioEngine::UI
