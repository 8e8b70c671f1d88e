#include "fuzz/OpenedInput.h"

using Fuzzing::Require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Fuzzing::TimeLimit limit;
    Fuzzing::Input input(data, size);
    Fuzzing::OpenedInput opened(input);
    opened.Open(input);

    const QString path = Fuzzing::Folder::Get().Path(QStringLiteral("channel.wav"));
    const auto result = opened.file.FilterChannel(path);
    Require(result == WavFile::Success || result == WavFile::ErrorFilterChannel);
    opened.RequireUntouched();
    if (result == WavFile::Success && QFile::exists(path)) {
        WavFile channel;
        channel.SetLargeFiles(true);
        Require(channel.Open(path) == WavFile::Success && channel.GetFileFormat().channelCount() == 1);
        Require(channel.size() <= channel.GetDataOffset() + 2 * opened.bytes.size() / 3);
    }
    Require(Fuzzing::Folder::Get().Clear() <= 2);
    return 0;
}
