#include "fuzz/Fuzzing.h"

#include <vantorAudioEngine/AudioFileInfo.h>
#include <vantorAudioEngine/AudioImporter.h>
#include <vantorAudioEngine/Decoder.h>

#include <cmath>

extern "C" {
#include <libavutil/log.h>
}

using namespace vantoraudio::AudioEngine;
using Fuzzing::Require;

namespace {

void CheckFacts(const AudioFileInfo& info)
{
    Require(std::isfinite(info.GetDuration()) && info.GetDuration() >= 0.0);
    Require(info.GetSampleRate() >= 0 && info.GetChannelCount() >= 0 && info.GetBitsPerSample() >= 0);
    Require(info.CanBeLoaded() == info.GetProblemText().isEmpty());
    for (const auto format : {ImportOptions::Automatic, ImportOptions::Float, ImportOptions::Int16}) {
        const ImportOptions options{.sampleRate = 0, .sampleFormat = format, .mayBeLarge = false};
        Require(info.GetImportedSize(options) >= 0);
        static_cast<void>(info.CheckImport(options, Fuzzing::Folder::Get().Path(QStringLiteral("output.wav"))));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    av_log_set_level(AV_LOG_QUIET);
    AudioImporter::LimitAllocations(Fuzzing::largestAllocation);
    const Fuzzing::TimeLimit limit;
    Fuzzing::Input input(data, size);
    constexpr std::array names{"input", "input.wav", "input.mp3", "input.ogg", "input.flac", "input.m4a"};
    const QString name = QString::fromLatin1(input.PickValueInArray(names));
    const QString path = Fuzzing::Folder::Get().Write(name, input.AllBytes());
    CheckFacts(AudioFileInfo::Probe(path));
    // Below 0 where the container states so.
    static_cast<void>(Decoder::GetDuration(path));
    Require(Fuzzing::Folder::Get().Clear() == 1);
    return 0;
}
