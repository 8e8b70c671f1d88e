#include "ui/waveform/rules/TimeScale.h"

#include "engine/samples/Truncation.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTime>

#include <array>
#include <cmath>
#include <optional>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using AudioEngine::TruncateToInt32;
using AudioEngine::TruncateToInt64;

constexpr double LongestBase = 3600.0;
constexpr double SpanWithoutStep = 1'080'000.0;

std::optional<double> StepOnBase(double span, double base)
{
    // Three or ten whole bases are good only here; the multiples below refuse both bounds.
    if (const double ratio = span / base; ratio >= 3.0 && ratio <= 10.0) {
        return base;
    }
    constexpr std::array multiples = {1.0, 2.0, 5.0, 10.0, 15.0, 20.0, 30.0};
    for (const double multiple : multiples) {
        const double step = base * multiple;
        if (const double steps = span / step; steps > 3.0 && steps < 10.0) {
            return step;
        }
    }
    return std::nullopt;
}

double NextFinerBase(double base)
{
    return base / 60.0 >= 1.0 ? base / 60.0 : base / 10.0;
}

struct ClockFields
{
    int hours;
    int minutes;
    int seconds;
    int milliseconds;
};

ClockFields SplitTime(double seconds)
{
    const int whole = TruncateToInt32(seconds);
    // Seconds are cut and milliseconds rounded, each on its own: 1.9996 reads 1.000, and hosts compare labels.
    const auto rounded = TruncateToInt64(seconds * 1000.0 + std::copysign(0.5, seconds));
    return {.hours = whole / 3600,
            .minutes = TruncateToInt32(seconds / 60.0) % 60,
            .seconds = whole % 60,
            .milliseconds = static_cast<int>(rounded % 1000)};
}

struct LabelFormat
{
    QString clock;
    QString unit;
};

LabelFormat FormatFor(const ClockFields& fields)
{
    if (fields.hours != 0) {
        return {QStringLiteral("h:mm:ss.zzz"), QCoreApplication::translate("TimeScale", "hr")};
    }
    if (fields.minutes != 0) {
        return {QStringLiteral("m:ss.zzz"), QCoreApplication::translate("TimeScale", "min")};
    }
    if (fields.seconds != 0) {
        return {QStringLiteral("s.zzz"), QCoreApplication::translate("TimeScale", "sec")};
    }
    if (fields.milliseconds != 0) {
        return {QStringLiteral("zzz"), QCoreApplication::translate("TimeScale", "msec")};
    }
    return {QStringLiteral("s"), QCoreApplication::translate("TimeScale", "sec")};
}

} // namespace

double CalculateScale(double span)
{
    if (!(span > 0.0 && span < SpanWithoutStep)) {
        return 0.0;
    }
    // Below the smallest double the base itself becomes 0, which ends the search for a span without a step.
    for (double base = LongestBase; base > 0.0; base = NextFinerBase(base)) {
        if (const auto step = StepOnBase(span, base)) {
            return *step;
        }
    }
    return 0.0;
}

QString FormatToTime(double seconds)
{
    const ClockFields fields = SplitTime(seconds);
    const LabelFormat format = FormatFor(fields);
    const QTime clock(fields.hours, fields.minutes, fields.seconds, fields.milliseconds);
    return clock.toString(format.clock) + u' ' + format.unit;
}

} // namespace vantoraudio::vantorAudioEngine::UI
