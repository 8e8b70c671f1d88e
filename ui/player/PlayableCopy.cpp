#include "ui/player/PlayableCopy.h"

#include "playback/PlayableFile.h"
#include "ui/player/HiddenFolder.h"
#include "ui/player/LoadThreads.h"

#include <vantorAudioEngine/AudioImporter.h>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QDir>
#include <QtCore/QPromise>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

using AudioEngine::AudioImporter;
using AudioEngine::ImportOptions;
using AudioEngine::ImportResult;

constexpr ImportOptions playable{.sampleRate = AudioEngine::highestPlayableRate / 2,
                                 .sampleFormat = ImportOptions::Int16};

/** Of a file without a frame the player reports what it does of the original. */
bool HasMadeCopy(const ImportResult& result)
{
    return result.IsSuccess() && result.frameCount > 0;
}

} // namespace

PlayableCopy::PlayableCopy(const QString& path, const QString& directory) : m_path(path)
{
    connect(&m_watcher, &QFutureWatcher<Made>::finished, this, [this] {
        m_made = m_watcher.result();
        if (!m_made.path.isEmpty()) {
            m_path = m_made.path;
        }
        Q_EMIT Ended();
    });
    const auto makeCopy = [path, directory = QDir(directory).absolutePath()](QPromise<Made>& promise) {
        const auto goesOn = [&promise](int /*permille*/) { return !promise.isCanceled(); };
        Made made{HiddenFolder::Make(directory, u"played"_s), {}};
        const QString copyPath = made.folder ? made.folder->FilePath(u"copy.wav"_s) : QString();
        if (made.folder && HasMadeCopy(AudioImporter::ImportNow(path, copyPath, playable, goesOn))) {
            made.path = copyPath;
        }
        promise.addResult(made);
    };
    m_watcher.setFuture(QtConcurrent::run(LoadThreads::Pool(), makeCopy));
}

PlayableCopy::~PlayableCopy()
{
    m_watcher.cancel();
}

} // namespace vantoraudio::vantorAudioEngine::UI
