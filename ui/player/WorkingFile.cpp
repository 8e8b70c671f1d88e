#include "ui/player/WorkingFile.h"

#include <QtCore/QThread>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

void Release(WorkingFile* file)
{
    if (file->thread() == QThread::currentThread()) {
        delete file;
    } else {
        file->deleteLater();
    }
}

} // namespace

std::shared_ptr<WorkingFile> WorkingFile::Create()
{
    return {new WorkingFile, &Release};
}

WorkingFile::WorkingFile()
{
    // Direct, so that the worker's reports meet in the relay instead of in the event queue.
    connect(&file, &WavFile::ProgressChanged, &progress, &ProgressRelay::Report, Qt::DirectConnection);
}

} // namespace vantoraudio::vantorAudioEngine::UI
