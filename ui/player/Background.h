#pragma once

#include "ui/player/FileLoad.h"
#include "ui/player/FileTasks.h"
#include "ui/player/WorkingFile.h"

#include <vantorAudioEngine/AudioPlayerWidget.h>

namespace vantoraudio::vantorAudioEngine::UI {

/** The working copy of the loaded file, the tasks that run on it, and the load of the next file. */
struct AudioPlayerWidget::Background
{
    using Result = WavFile::AudioEngineReturnValue;

    Background() = default;
    ~Background()
    {
        samples.RequestStop();
        snippet.RequestStop();
        channelFilter.RequestStop();
    }
    Background(const Background&) = delete;
    Background& operator=(const Background&) = delete;

    std::shared_ptr<WorkingFile> workingFile = WorkingFile::Create();
    FileTasks<void> samples{&WavFile::AbortRead};
    FileTasks<Result> snippet{&WavFile::AbortWrite};
    FileTasks<Result> channelFilter{&WavFile::AbortChannelFilter};

    /** Null when nothing is being loaded in the background. */
    std::unique_ptr<FileLoad> load;
    /** Of the loaded file, where LoadFile() made it. */
    WorkingCopy copy;
};

} // namespace vantoraudio::vantorAudioEngine::UI
