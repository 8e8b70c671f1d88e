#include "fuzz/OpenedInput.h"

#include <optional>

using Fuzzing::Require;

namespace {

/** Target rates are the caller's choice, and no file's. */
QAudioFormat TargetOf(Fuzzing::Input& input)
{
    constexpr int highestRate = 768000;
    constexpr std::array rates{8000, 44100, 48000, 96000, 192000, 384000, 1, 0, -1};
    constexpr int oneTooMany = QAudioFormat::NSampleFormats;
    QAudioFormat format;
    format.setSampleRate(input.ConsumeBool() ? input.PickValueInArray(rates)
                                             : input.ConsumeIntegralInRange(-1, highestRate));
    format.setChannelCount(input.ConsumeIntegralInRange(0, 3));
    format.setSampleFormat(QAudioFormat::SampleFormat(input.ConsumeIntegralInRange(0, oneTooMany)));
    return format;
}

/** Nothing for channel counts that callers learn of by an exception. */
std::optional<bool> Convert(WavFile& file, const QAudioFormat& target, const QString& path)
{
    try {
        return file.Convert(target, path);
    } catch (const std::bad_optional_access&) {
        return {};
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Fuzzing::TimeLimit limit;
    Fuzzing::Input input(data, size);
    Fuzzing::OpenedInput opened(input);
    const QAudioFormat target = TargetOf(input);
    const bool isInPlace = input.ConsumeBool();
    opened.Open(input);

    const QString path = Fuzzing::Folder::Get().Path(QStringLiteral("converted.wav"));
    const std::optional<bool> result = Convert(opened.file, target, isInPlace ? QString() : path);
    if (result == true) {
        WavFile converted;
        converted.SetLargeFiles(true);
        const QString source = Fuzzing::Folder::Get().Path(QStringLiteral("input.wav"));
        Require(converted.Open(isInPlace ? source : path) == WavFile::Success);
        Require(converted.GetFileFormat().channelCount() == target.channelCount());
        Require(converted.GetFileFormat().sampleFormat() == target.sampleFormat());
    }
    if (!isInPlace || result != true) {
        opened.RequireUntouched();
    }
    Require(Fuzzing::Folder::Get().Clear() <= (isInPlace ? 1 : 2));
    return 0;
}
