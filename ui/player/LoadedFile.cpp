#include "ui/player/LoadedFile.h"

#include "engine/wav/SnippetExport.h"

#include <QtCore/QFileInfo>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using AudioEngine::SnippetExport;
using Result = LoadedFile::Result;

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

LoadedFile::Result LoadedFile::Open(const QString& path)
{
    StopReading();
    snippet.Stop();
    channelFilter.Stop();
    return File().Open(path);
}

QFuture<void> LoadedFile::Read(double startTime, double endTime, int stepSize)
{
    StopReading();
    return samples.Start(m_file, [=](WorkingFile& working) {
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
    m_isSnippetWhole = std::make_shared<bool>(false);
    return snippet.Start(m_file, [=, isWhole = m_isSnippetWhole](WorkingFile& working) {
        // Of a closed file only a header would be written, over what is there.
        if (!working.file.isOpen()) {
            return WavFile::ErrorCreateSnippet;
        }
        const auto [code, hasName] = SnippetExport::Write(working.file, path, range.start, range.end);
        *isWhole = hasName;
        return code;
    });
}

/** A whole one stays: it may have replaced a file, and then neither would be left. */
bool LoadedFile::CancelSnippet()
{
    snippet.Stop();
    return !*m_isSnippetWhole;
}

QFuture<LoadedFile::Result> LoadedFile::FilterInto(const QString& path)
{
    return channelFilter.Start(m_file, [path](WorkingFile& working) {
        // A channel file that is there already, or comes meanwhile, is played, also where snippets refuse what is
        // there.
        const bool isThere = QFileInfo::exists(path);
        // A link to nothing would have the channel written wherever it leads.
        if (!isThere && QFileInfo(path).isSymLink()) {
            return WavFile::ErrorFilterChannel;
        }
        const Result result = isThere ? WavFile::Success : working.file.FilterChannel(path);
        return QFileInfo::exists(path) ? WavFile::Success : result;
    });
}

} // namespace vantoraudio::vantorAudioEngine::UI
