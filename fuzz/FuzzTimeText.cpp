#include "fuzz/Fuzzing.h"
#include "ui/player/TimeText.h"

#include <cmath>

using namespace vantoraudio::vantorAudioEngine::UI;

namespace {

constexpr double secondsPerDay = 86400.0;

void CheckTime(double seconds)
{
    const QString text = TimeText(seconds);
    Fuzzing::Require(text.size() == QStringLiteral("hh:mm:ss.zzz").size());
    const double shown = SecondsOf(text);
    Fuzzing::Require(shown >= 0.0 && shown < secondsPerDay);
    if (seconds >= 0.0 && seconds < secondsPerDay - 1.0) {
        Fuzzing::Require(std::abs(shown - seconds) < 0.001);
    }
    static_cast<void>(MillisecondsOf(seconds));
}

void CheckText(const QString& text)
{
    const double seconds = SecondsOf(text);
    Fuzzing::Require(seconds >= 0.0 && seconds < secondsPerDay);
    Fuzzing::Require(seconds == 0.0 || TimeText(seconds) == text);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Fuzzing::TimeLimit limit;
    Fuzzing::Input input(data, size);
    CheckTime(input.Number());
    CheckText(QString::fromUtf8(input.AllBytes()));
    return 0;
}
