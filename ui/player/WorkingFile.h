#pragma once

#include "ui/player/ProgressRelay.h"

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
    /** The last owner may be on any thread; the file goes where it lives. */
    static std::shared_ptr<WorkingFile> Create();

    WavFile file;
    ProgressRelay progress;

private:
    WorkingFile();
};

} // namespace vantoraudio::vantorAudioEngine::UI
