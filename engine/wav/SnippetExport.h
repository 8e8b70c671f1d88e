#pragma once

#include <vantorAudioEngine/WavFile.h>

namespace vantoraudio::AudioEngine {

struct SnippetResult
{
    WavFile::AudioEngineReturnValue code = WavFile::Success;
    /** Whether the new file, or what there was of it when it was aborted, took its name. An aborted one that left
     *  nothing is a success, too. */
    bool hasName = false;
};

/** WavFile::CreateSnippet() for callers that need to know what has become of the file. */
struct SnippetExport
{
    static SnippetResult Write(WavFile& file, const QString& outPath, double start, double end);
};

} // namespace vantoraudio::AudioEngine
