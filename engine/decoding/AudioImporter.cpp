#include "engine/decoding/AudioStream.h"
#include "engine/decoding/Import.h"

#include <vantorAudioEngine/AudioImporter.h>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QPromise>
#include <QtCore/QThreadPool>

namespace vantoraudio::AudioEngine {

namespace {

void RunImport(QPromise<ImportResult>& promise, const QString& inPath, const QString& outPath,
               const ImportOptions& options)
{
    promise.setProgressRange(0, 1000);
    const auto goesOn = [&promise](int permille) {
        promise.setProgressValue(permille);
        return !promise.isCanceled();
    };
    const ImportResult result = AudioImporter::ImportNow(inPath, outPath, options, goesOn);
    promise.setProgressValue(1000);
    promise.addResult(result);
}

} // namespace

WavFile::AudioEngineReturnValue ImportResult::Code() const
{
    using Problem = AudioFileInfo::Problem;
    switch (problem) {
    case Problem::None:
        return WavFile::Success;
    case Problem::NotFound:
    case Problem::NoPermission:
    case Problem::NotAFile:
    case Problem::CannotBeCreated:
        return WavFile::ErrorOpenFile;
    case Problem::NoSpace:
    case Problem::CannotBeWritten:
        return WavFile::ErrorWriteHeader;
    default:
        return WavFile::ErrorInvalidFormat;
    }
}

QFuture<ImportResult> AudioImporter::Import(const QString& inPath, const QString& outPath,
                                            const ImportOptions& options, QThreadPool* pool)
{
    return QtConcurrent::run(pool != nullptr ? pool : QThreadPool::globalInstance(), &RunImport, inPath, outPath,
                             options);
}

ImportResult AudioImporter::ImportNow(const QString& inPath, const QString& outPath, const ImportOptions& options,
                                      const Observer& goesOn)
{
    return AudioEngine::Import(inPath, outPath, options, goesOn).Run(AudioEngine::Import::FormerFile::Stays);
}

void AudioImporter::LimitAllocations(qint64 bytes)
{
    AudioStream::LimitAllocations(bytes);
}

} // namespace vantoraudio::AudioEngine
