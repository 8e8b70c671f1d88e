#include "ui/player/LoadedFile.h"

#include "engine/wav/SnippetExport.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using AudioEngine::FileState;
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
    m_snippet = std::make_shared<Snippet>(Snippet{.path = path});
    return snippet.Start(m_file,
                         [range, written = m_snippet](WorkingFile& working, const std::atomic<bool>& isStopped) {
                             const Result result = written->WriteFrom(working.file, range);
                             if (isStopped) {
                                 written->RemoveIfNew();
                             }
                             return result;
                         });
}

Result LoadedFile::Snippet::WriteFrom(WavFile& file, const Selection& range)
{
    const bool hadFormer = QFileInfo::exists(path);
    // Of a closed file only a header would be written, over what is there.
    if (!file.isOpen()) {
        return WavFile::ErrorCreateSnippet;
    }
    const auto [code, hasName] = SnippetExport::Write(file, path, range.start, range.end);
    if (hasName) {
        written = FileState::Of(path);
        isNew = !hadFormer;
    }
    return code;
}

/** One that has replaced a file stays: otherwise neither would be left. So does what another program has put in
 * its place. */
void LoadedFile::Snippet::RemoveIfNew()
{
    if (written.IsFile() && isNew && FileState::Of(path) == written && QFile::remove(path)) {
        written = {};
    }
}

bool LoadedFile::CancelSnippet()
{
    snippet.Stop();
    // The stop may come when the task has looked for it already.
    m_snippet->RemoveIfNew();
    return !m_snippet->written.IsFile();
}

QFuture<LoadedFile::Result> LoadedFile::FilterInto(const QString& path)
{
    return channelFilter.Start(m_file, [path](WorkingFile& working, const auto&) {
        // A channel file that is there already is played, also where snippets refuse what is there.
        return QFileInfo::exists(path) ? WavFile::Success : working.file.FilterChannel(path);
    });
}

} // namespace vantoraudio::vantorAudioEngine::UI
