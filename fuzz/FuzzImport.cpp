#include "fuzz/Fuzzing.h"

#include <vantorAudioEngine/AudioImporter.h>

#include <atomic>

extern "C" {
#include <libavutil/log.h>
}

using namespace vantoraudio::AudioEngine;
using Fuzzing::Require;

namespace {

ImportOptions OptionsOf(Fuzzing::Input& input)
{
    constexpr std::array rates{0, 0, 44100, 96000, 8000, 1, -1, 768000, 768001};
    constexpr std::array formats{ImportOptions::Automatic, ImportOptions::Float, ImportOptions::Int16};
    return {.sampleRate = input.PickValueInArray(rates),
            .sampleFormat = input.PickValueInArray(formats),
            .mayBeLarge = input.ConsumeBool()};
}

/** The result is what the file says of itself. */
void CheckWav(const ImportResult& result, const QString& path)
{
    WavFile wav;
    wav.SetLargeFiles(true);
    Require(wav.Open(path) == WavFile::Success);
    Require(wav.GetFileFormat().sampleRate() == result.sampleRate);
    Require(wav.GetFileFormat().channelCount() == result.channelCount);
    Require(wav.GetFileFormat().sampleFormat() == result.sampleFormat);
    Require(wav.GetDataLength() == result.frameCount * wav.GetFileFormat().bytesPerFrame());
    Require(wav.size() == wav.GetDataOffset() + wav.GetDataLength());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    av_log_set_level(AV_LOG_QUIET);
    AudioImporter::LimitAllocations(Fuzzing::largestAllocation);
    const Fuzzing::TimeLimit limit;
    const Fuzzing::Folder& folder = Fuzzing::Folder::Get();
    Fuzzing::Input input(data, size);
    const ImportOptions options = OptionsOf(input);
    const bool isCancelled = input.ConsumeIntegralInRange(0, 15) == 0;
    std::atomic<int> questionsLeft = isCancelled ? int(input.ConsumeIntegral<std::uint8_t>()) : -1;
    const QByteArray bytes = input.AllBytes();
    const QString path = folder.Write(QStringLiteral("input"), bytes);
    const QString output = folder.Path(QStringLiteral("output.wav"));

    const ImportResult result = AudioImporter::ImportNow(path, output, options, [&](int permille) {
        Require(permille >= 0 && permille <= 1000);
        return !isCancelled || --questionsLeft >= 0;
    });
    if (result.IsSuccess()) {
        CheckWav(result, output);
    }
    Require(QFile::exists(output) == result.IsSuccess());
    Require(folder.Read(QStringLiteral("input")) == bytes);
    Require(folder.Clear() == (result.IsSuccess() ? 2 : 1));
    return 0;
}
