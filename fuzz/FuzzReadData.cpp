#include "fuzz/OpenedInput.h"

#include <cmath>

using Fuzzing::Require;

namespace {

/** The least size of a frame is two bytes. */
void CheckSamples(const Fuzzing::OpenedInput& opened)
{
    const QList<float> samples = opened.file.GetSamples();
    Require(samples.size() <= opened.bytes.size() / 2 + 1);
    Require(samples.capacity() <= 2 * opened.bytes.size() + 64);
    // A file of floats may hold what is no number.
    if (opened.file.GetFileFormat().sampleFormat() != QAudioFormat::Float) {
        for (const float sample : samples) {
            Require(std::abs(sample) <= 1.001F);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Fuzzing::TimeLimit limit;
    Fuzzing::Input input(data, size);
    Fuzzing::OpenedInput opened(input);
    const double start = input.Number();
    const double end = input.ConsumeBool() ? start + 1.0 : input.Number();
    const int step = input.ConsumeBool() ? input.ConsumeIntegral<int>() : input.ConsumeIntegralInRange(-2, 50);
    opened.file.SetKeepPeaks(input.ConsumeBool());
    opened.Open(input);
    opened.file.ReadData(start, end, step);
    CheckSamples(opened);
    opened.file.ReadData(0.0, opened.file.GetDuration(), step);
    CheckSamples(opened);
    return 0;
}
