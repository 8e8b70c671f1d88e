#include "ui/player/TimeText.h"

#include "engine/samples/Truncation.h"

#include <QtCore/QTime>

#include <cmath>

using namespace Qt::Literals::StringLiterals;
using namespace vantoraudio::AudioEngine;

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

constexpr qint64 millisecondsPerDay = qint64(24) * 60 * 60 * 1000;

QString Format()
{
    return u"hh:mm:ss.zzz"_s;
}

} // namespace

QString TimeText(double seconds)
{
    const qint64 milliseconds = TruncateToInt64(std::round(seconds * 1000.0));
    return QTime(0, 0).addMSecs(static_cast<int>(milliseconds % millisecondsPerDay)).toString(Format());
}

double SecondsOf(const QString& text)
{
    const QTime time = QTime::fromString(text, Format());
    // A comma before the milliseconds does not parse either, so the reset texts of the fields count as 0.
    return time.isValid() ? time.hour() * 3600 + time.minute() * 60 + time.second() + time.msec() / 1000.0 : 0.0;
}

qint64 MillisecondsOf(double seconds)
{
    return TruncateToInt64(seconds * 1000.0);
}

} // namespace vantoraudio::vantorAudioEngine::UI
