#pragma once

#include "ui/player/ProgressQueue.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QObject>

#include <memory>

namespace vantoraudio::vantorAudioEngine::UI {

/**
 * The file that a player works on, with the progress of its tasks on the way to the GUI thread. Tasks share it
 * with the player, so that a player which is destroyed without waiting for them takes nothing away from them.
 */
class WorkingFile : public QObject
{
    Q_OBJECT

public:
    /** What stands in one line with the reports of progress. */
    enum Note
    {
        NewSamples,
        ReadingEnded,
        SnippetEnded,
        ChannelFilterEnded
    };

    /** The last owner may be on any thread; the file goes where it lives. */
    static std::shared_ptr<WorkingFile> Create();

    WavFile file;
    ProgressQueue progress;

private:
    WorkingFile();
};

} // namespace vantoraudio::vantorAudioEngine::UI
