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
    // Direct, so that what a worker tells stands in one line instead of flooding the event queue.
    connect(&file, &WavFile::ProgressChanged, &progress, &ProgressQueue::Report, Qt::DirectConnection);
    connect(
        &file, &WavFile::NewData, &progress, [this] { progress.Leave(NewSamples); }, Qt::DirectConnection);
}

} // namespace vantoraudio::vantorAudioEngine::UI
