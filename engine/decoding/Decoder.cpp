#include "engine/decoding/DecoderProbe.h"
#include "engine/decoding/DecoderRun.h"
#include "engine/decoding/Import.h"
#include "engine/wav/WavHeader.h"

#include <vantorAudioEngine/Decoder.h>

#include <QtConcurrent/QtConcurrentRun>
#include <QtCore/QEventLoop>
#include <QtCore/QFutureWatcher>
#include <QtCore/QThreadPool>
#include <QtCore/QtEndian>

#include <optional>

using namespace vantoraudio::AudioEngine;

namespace {

/** Where a WAV header states its bytes per second. */
constexpr int byteRatePosition = 28;

/** Nothing for a rate that no audio has. */
std::optional<int> TargetRate(int sampleRate)
{
    constexpr int usualRate = 96000;
    if (sampleRate == -1) {
        return usualRate;
    }
    return sampleRate < 1 ? std::nullopt : std::optional(sampleRate);
}

/** Handles events until the import has ended. The end of the application ends the import too. */
ImportResult ResultOf(QFuture<ImportResult> future)
{
    QEventLoop loop;
    QFutureWatcher<ImportResult> watcher;
    QObject::connect(&watcher, &QFutureWatcherBase::finished, &loop, &QEventLoop::quit);
    watcher.setFuture(future);
    if (!future.isFinished()) {
        loop.exec();
    }
    future.cancel();
    future.waitForFinished();
    return future.resultCount() > 0 ? future.result() : ImportResult{.problem = AudioFileInfo::Problem::Cancelled};
}

} // namespace

Decoder::Decoder() = default;

Decoder::~Decoder() = default;

WavFile::AudioEngineReturnValue Decoder::Convert(const QString& inPath, const QString& outPath, int sampleRate)
{
    if (inPath.isEmpty() || outPath.isEmpty()) {
        return WavFile::ErrorOpenFile;
    }
    const std::optional<int> targetRate = TargetRate(sampleRate);
    return targetRate ? Run::Convert(inPath, outPath, *targetRate, &MakeQtDecoderSource)
                      : WavFile::ErrorInvalidFormat;
}

/** Imports on a thread of its own and handles events until it has ended. */
WavFile::AudioEngineReturnValue Decoder::ConvertToFloat(const QString& inPath, const QString& outPath,
                                                        int sampleRate)
{
    if (inPath.isEmpty() || outPath.isEmpty()) {
        return WavFile::ErrorOpenFile;
    }
    const std::optional<int> targetRate = TargetRate(sampleRate);
    if (!targetRate) {
        return WavFile::ErrorInvalidFormat;
    }
    const ImportOptions options{
        .sampleRate = *targetRate, .sampleFormat = ImportOptions::Float, .mayBeLarge = false};
    QThreadPool thread;
    // By value: what is run by the events may change or delete what the caller keeps.
    const auto future = QtConcurrent::run(&thread, [=](QPromise<ImportResult>& promise) {
        const auto goesOn = [&promise](int /*permille*/) { return !promise.isCanceled(); };
        promise.addResult(Import(inPath, outPath, options, goesOn).Run(Import::FormerFile::Goes));
    });
    return ResultOf(future).Code();
}

int Decoder::GetDuration(const QString& path)
{
    return path.isEmpty() ? 0 : Probe::Duration(path);
}

int Decoder::WriteHeader(QFile& file, int dataSize, int sampleRate, int channelCount)
{
    QAudioFormat format;
    format.setSampleFormat(QAudioFormat::Float);
    format.setSampleRate(sampleRate);
    format.setChannelCount(channelCount);
    QByteArray header = ComposeWavHeader(format, dataSize);
    // ComposeWavHeader() counts it in bits, which overflow 32 bits earlier than bytes do.
    const quint32 byteRate = quint32(sampleRate) * quint32(channelCount) * quint32(sizeof(float));
    qToLittleEndian(byteRate, header.data() + byteRatePosition);
    return file.seek(0) && file.write(header) == header.size() && file.flush() ? 1 : 0;
}
