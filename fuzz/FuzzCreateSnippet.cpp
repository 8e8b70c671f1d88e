#include "fuzz/OpenedInput.h"

using Fuzzing::Require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Fuzzing::TimeLimit limit;
    Fuzzing::Input input(data, size);
    Fuzzing::OpenedInput opened(input);
    const double start = input.Number();
    const double end = input.ConsumeBool() ? start + 1.0 : input.Number();
    const bool isOverItself = input.ConsumeIntegralInRange(0, 15) == 0;
    opened.Open(input);

    const QString name = isOverItself ? QStringLiteral("input.wav") : QStringLiteral("snippet.wav");
    const auto result = opened.file.CreateSnippet(Fuzzing::Folder::Get().Path(name), start, end);
    Require(result == WavFile::Success || result == WavFile::ErrorCreateSnippet);
    Require(!isOverItself || result == WavFile::ErrorCreateSnippet);
    opened.RequireUntouched();
    if (!isOverItself && result == WavFile::Success) {
        WavFile snippet;
        snippet.SetLargeFiles(true);
        Require(snippet.Open(Fuzzing::Folder::Get().Path(name)) == WavFile::Success);
        Require(snippet.GetFileFormat().channelCount() == 1);
        // 24 bits become 32 and nothing else grows.
        Require(snippet.size() <= snippet.GetDataOffset() + 4 * opened.bytes.size() / 3);
    }
    Require(Fuzzing::Folder::Get().Clear() <= 2);
    return 0;
}
