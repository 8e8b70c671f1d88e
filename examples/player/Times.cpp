#include "Times.h"

#include <QtCore/QRegularExpression>

#include <cmath>

using namespace Qt::Literals::StringLiterals;

std::optional<double> ParseTime(const QString& text)
{
    // At most so many digits that they count whole seconds exactly.
    static const QRegularExpression pattern(
        uR"(^(?:(?:([0-9]{1,6}):)?([0-9]{1,6}):)?([0-9]{1,9}(?:[.,][0-9]*)?|[.,][0-9]+)$)"_s);
    const QRegularExpressionMatch match = pattern.match(text.trimmed());
    if (!match.hasMatch()) {
        return std::nullopt;
    }
    const double hours = match.captured(1).toDouble();
    const double minutes = match.captured(2).toDouble();
    const double seconds = match.captured(3).replace(u',', u'.').toDouble();
    const bool isOverflowing =
        (match.hasCaptured(1) && minutes >= 60.0) || (match.hasCaptured(2) && seconds >= 60.0);
    return isOverflowing ? std::nullopt : std::optional(hours * 3600.0 + minutes * 60.0 + seconds);
}

QString TextOfTime(double seconds)
{
    constexpr double longest = 1e12;
    const bool isTime = std::isfinite(seconds) && seconds > 0.0;
    const qint64 milliseconds = isTime ? std::llround(std::fmin(seconds, longest) * 1000.0) : 0;
    const qint64 hours = milliseconds / 3600000;
    const QString rest = u"%1:%2.%3"_s.arg(milliseconds / 60000 % 60, hours > 0 ? 2 : 1, 10, QChar(u'0'))
                             .arg(milliseconds / 1000 % 60, 2, 10, QChar(u'0'))
                             .arg(milliseconds % 1000, 3, 10, QChar(u'0'));
    return hours > 0 ? u"%1:%2"_s.arg(hours).arg(rest) : rest;
}
