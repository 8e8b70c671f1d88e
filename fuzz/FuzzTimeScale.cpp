#include "fuzz/Fuzzing.h"
#include "ui/waveform/rules/TimeScale.h"

#include <cmath>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

void CheckScale(double span)
{
    constexpr double longest = 1'080'000.0;
    const double step = CalculateScale(span);
    Fuzzing::Require(std::isfinite(step) && step >= 0.0);
    Fuzzing::Require(step == 0.0 || (span / step >= 3.0 && span / step <= 10.0));
    // The few spans so near to 0 that no smaller step exists have none either.
    Fuzzing::Require(step > 0.0 || !(span > 1e-300 && span < longest));
}

void CheckLabel(double seconds)
{
    const QString label = FormatToTime(seconds);
    // What is no number counts as 0. So do times below 0 whose seconds are cut to 0 and whose milliseconds round
    // to none or to a whole second.
    const bool countsAsZero =
        std::isnan(seconds) || (seconds > -0.0005 && seconds < 0.0) || (seconds > -1.0 && seconds <= -0.9995);
    const bool isTimeOfDay = countsAsZero || (seconds >= 0.0 && seconds < 86400.0);
    Fuzzing::Require(label.contains(u' ') && label.startsWith(u' ') != isTimeOfDay);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Fuzzing::TimeLimit limit;
    Fuzzing::Input input(data, size);
    const double number = input.Number();
    CheckScale(number);
    CheckLabel(number);
    return 0;
}
