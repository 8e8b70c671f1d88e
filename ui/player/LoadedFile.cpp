#include "ui/player/LoadedFile.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

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
    // The header of an output states its full size, so a file that ends half-way would look complete.
    file.SetKeepParts(false);
    // Direct, so that what a worker tells stands in one line instead of flooding the event queue.
    connect(&file, &WavFile::ProgressChanged, &progress, &ProgressQueue::Report, Qt::DirectConnection);
    connect(
        &file, &WavFile::NewData, &progress, [this] { progress.Leave(NewSamples); }, Qt::DirectConnection);
}

LoadedFile::~LoadedFile()
{
    samples.RequestStop();
    snippet.RequestStop();
    channelFilter.RequestStop();
}

QFuture<void> LoadedFile::Read(double startTime, double endTime, int stepSize)
{
    StopReading();
    return samples.Start(m_file, [=](WorkingFile& working, const auto&) {
        working.file.ReadData(startTime, endTime, stepSize);
        working.progress.Leave(WorkingFile::ReadingEnded);
    });
}

void LoadedFile::StopReading()
{
    samples.Stop();
    Progress().Forget(WorkingFile::NewSamples);
    Progress().Forget(WorkingFile::ReadingEnded);
}

QFuture<LoadedFile::Result> LoadedFile::WriteSnippet(const QString& path, const Selection& range)
{
    return snippet.Start(m_file, [=](WorkingFile& working, const std::atomic<bool>& isStopped) {
        // Of a closed file only a header would be written, over what is there.
        const bool hadFormer = QFileInfo::exists(path);
        const Result result = working.file.isOpen() ? working.file.CreateSnippet(path, range.start, range.end)
                                                    : WavFile::ErrorCreateSnippet;
        // The stop may come when the snippet is whole already. One that has replaced a file stays: otherwise
        // neither would be left.
        if (isStopped && result == WavFile::Success && !hadFormer) {
            QFile::remove(path);
        }
        return result;
    });
}

QFuture<LoadedFile::Result> LoadedFile::FilterInto(const QString& path)
{
    return channelFilter.Start(
        m_file, [path](WorkingFile& working, const auto&) { return working.file.FilterChannel(path); });
}

} // namespace vantoraudio::vantorAudioEngine::UI
