#include "ui/player/PlayableCopy.h"

#include "playback/PlayableFile.h"
#include "ui/player/HiddenFolder.h"
#include "ui/player/LoadThreads.h"

#include <vantorAudioEngine/AudioImporter.h>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QPromise>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using AudioEngine::AudioImporter;
using AudioEngine::ImportOptions;
using AudioEngine::ImportResult;

constexpr ImportOptions playable{.sampleRate = AudioEngine::highestPlayableRate / 2,
                                 .sampleFormat = ImportOptions::Int16};

/** A file without a frame is told about as the original is. */
bool HasMadeCopy(const ImportResult& result)
{
    return result.IsSuccess() && result.frameCount > 0;
}

} // namespace

PlayableCopy::PlayableCopy(const QString& path, const QString& directory) : m_path(path)
{
    m_folder = HiddenFolder::Make(directory, u"played"_s);
    const QString copyPath = m_folder ? m_folder->FilePath(u"copy.wav"_s) : QString();
    connect(&m_watcher, &QFutureWatcher<bool>::finished, this, [this, copyPath] {
        if (m_watcher.result()) {
            m_path = copyPath;
        }
        Q_EMIT Ended();
    });
    // The task keeps the folder as long as it writes there.
    const auto makeCopy = [folder = m_folder, path, copyPath](QPromise<bool>& promise) {
        const auto goesOn = [&promise](int /*permille*/) { return !promise.isCanceled(); };
        promise.addResult(folder && HasMadeCopy(AudioImporter::ImportNow(path, copyPath, playable, goesOn)));
    };
    m_watcher.setFuture(QtConcurrent::run(LoadThreads::Pool(), makeCopy));
}

PlayableCopy::~PlayableCopy()
{
    m_watcher.cancel();
}

} // namespace vantoraudio::vantorAudioEngine::UI
