#include "ui/player/PlayableCopy.h"

#include "playback/PlayableFile.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QDir>
#include <QtCore/QThreadPool>
#include <QtMultimedia/QAudioFormat>

using namespace Qt::Literals::StringLiterals;

namespace vantoraudio::vantorAudioEngine::UI {
namespace {

bool Resample(const QString& path, const QString& copyPath)
{
    WavFile file;
    file.SetLargeFiles(true);
    if (file.Open(path) != WavFile::Success) {
        return false;
    }
    QAudioFormat format = file.GetFileFormat();
    format.setSampleRate(AudioEngine::highestPlayableRate / 2);
    format.setSampleFormat(QAudioFormat::Int16);
    return file.Convert(format, copyPath);
}

} // namespace

PlayableCopy::PlayableCopy(const QString& path, const QString& directory)
    : m_path(path), m_folder(std::make_shared<QTemporaryDir>(QDir(directory).filePath(u".played-XXXXXX"_s)))
{
    const QString copyPath = m_folder->filePath(u"copy.wav"_s);
    connect(&m_watcher, &QFutureWatcher<bool>::finished, this, [this, copyPath] {
        if (m_watcher.result()) {
            m_path = copyPath;
        }
        Q_EMIT Ended();
    });
    m_watcher.setFuture(QtConcurrent::run(QThreadPool::globalInstance(), [folder = m_folder, path, copyPath] {
        return folder->isValid() && Resample(path, copyPath);
    }));
}

} // namespace vantoraudio::vantorAudioEngine::UI
