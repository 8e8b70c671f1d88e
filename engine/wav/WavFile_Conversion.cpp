#include "engine/files/DiskRoom.h"
#include "engine/files/FileReplacement.h"
#include "engine/files/SharedFileCursor.h"
#include "engine/samples/PcmResampler.h"
#include "engine/samples/S24Samples.h"
#include "engine/wav/WavAudio.h"
#include "engine/wav/WavHeader.h"
#include "engine/wav/WavWriter.h"

#include <vantorAudioEngine/WavFile.h>

#include <cstdio>

using namespace vantoraudio::AudioEngine;

namespace {

/** 24-bit samples are widened to the 32 bits that their format speaks of before they are resampled. */
bool IsWidened(const WavAudio& source)
{
    return source.format.Coding() == SampleCoding::S24;
}

/** Of all the audio as it is resampled, in bytes. */
qint64 ResampledLength(const WavAudio& source)
{
    return IsWidened(source) ? ByteCounting::MultiplySaturating(source.dataLength / 3, 4) : source.dataLength;
}

/** -1 when frames cannot be counted. */
int BlockFrames(const WavAudio& source)
{
    constexpr qint64 longestBlock = 1024;
    const qint64 frameSize = source.format.audio.bytesPerFrame();
    const qint64 length = ResampledLength(source);
    return frameSize < 1 || length < 0 ? -1 : static_cast<int>(qMin(length / frameSize, longestBlock));
}

/** Every frame of a file on its way through the resampler into another file. */
struct Conversion
{
    WavFile& file;
    QMutex& deviceMutex;
    const WavAudio source;
    const QAudioFormat target;
    PcmResampler& resampler;
    /** Of the file when it was opened, in bytes. */
    qint64 sourceSize = 0;
    /** By another program, so that the file is no longer what was converted. */
    bool isSourceChanged = false;

    bool HasRoom(const QString& path) const;
    bool WriteTo(const QString& path);
    bool WriteOver(const QString& path);

private:
    bool Write(WavWriter& output);
    bool ConvertBlocks(WavWriter& output);
    bool IsReadWhole(const SharedFileCursor& cursor) const;
};

/** A low rate that is raised steeply makes terabytes of a small file. */
bool Conversion::HasRoom(const QString& path) const
{
    const double frames = double(file.size() - source.dataOffset) / qMax(1, source.format.FrameSize());
    const double seconds = frames / source.format.audio.sampleRate();
    return HasRoomFor(seconds * target.sampleRate() * target.bytesPerFrame(), path);
}

bool Conversion::WriteTo(const QString& path)
{
    if (source.Refuses(path)) {
        return false;
    }
    PendingFile output(path);
    WavWriter writer(output);
    if (Write(writer) && source.TakeName(output)) {
        return true;
    }
    if (source.keepsParts) {
        writer.KeepPart();
    }
    return false;
}

/** Converts into a new file beside the one at `path`, which it replaces at the end; the source is closed then.
 * Until that last step nothing happens to the old file, and a failure leaves no other file behind. */
bool Conversion::WriteOver(const QString& path)
{
    isSourceChanged = FileState::Of(file) != FileState::Of(path);
    PendingFile output(path, path, {.replacesReadOnly = true});
    WavWriter writer(output);
    if (isSourceChanged || !Write(writer) || !output.Store()) {
        return false;
    }
    isSourceChanged = !output.IsSourceUnchanged();
    if (isSourceChanged) {
        return false;
    }
    file.close();
    const bool isReplaced = output.Commit();
    isSourceChanged = !isReplaced && !output.IsSourceUnchanged();
    return isReplaced;
}

/** The header states the size that follows from the length of the source, even when the resampler delivers some
 * frames more or fewer. */
bool Conversion::Write(WavWriter& output)
{
    const ByteCounting counting = source.Counting();
    const qint64 dataSize =
        CalculateAudioDataSize(counting.Restrict(ResampledLength(source)), source.format.audio, target, counting);
    return output.Open(target, dataSize, source.allowsLargeFiles) && ConvertBlocks(output);
}

/** Goes to the end of the file, not of the sample data, on purpose. */
bool Conversion::ConvertBlocks(WavWriter& output)
{
    bool isEmpty = true;
    const auto append = [&](std::optional<QByteArrayView> converted) {
        isEmpty = isEmpty && (!converted || converted->isEmpty());
        return converted && output.Append(*converted);
    };
    SharedFileCursor cursor(file, deviceMutex, source.dataOffset);
    const qint64 blockSize = qint64(resampler.BlockFrames()) * source.format.FrameSize();
    QByteArray block;
    while (cursor.Read(blockSize, block)) {
        const QByteArray frames = IsWidened(source) ? WidenS24Block(block) : block;
        const int frameCount = source.format.audio.framesForBytes(int(frames.size()));
        if (!append(resampler.Convert(frames.constData(), frameCount))) {
            return false;
        }
    }
    if (!IsReadWhole(cursor) || !append(resampler.Drain())) {
        return false;
    }
    // One pass may yield nothing. When all of them do, it is a failure, and FFmpeg's function for the size of a
    // buffer without frames fails as well.
    if (isEmpty) {
        std::fputs("Could not get sample buffer size\n", stderr);
    }
    return !isEmpty;
}

/** What could not be read, or is no longer there, would be missing in the result. */
bool Conversion::IsReadWhole(const SharedFileCursor& cursor) const
{
    return !cursor.HasFailed() && cursor.BytesLeft() == 0 && cursor.Position() >= sourceSize;
}

} // namespace

std::optional<WavFile::ChannelLayout> WavFile::SelectChannelLayout(const QAudioFormat& format)
{
    switch (format.channelCount()) {
    case 1:
        return Mono;
    case 2:
        return Stereo;
    default:
        return {};
    }
}

bool WavFile::Convert(const QAudioFormat& target, const QString& outPath)
{
    if (!isReadable() || target.sampleRate() < 1 || target.channelCount() < 1 ||
        target.sampleFormat() == QAudioFormat::Unknown) {
        return false;
    }
    // value() throws for other channel counts, on purpose: that is how callers learn of them.
    const auto layoutOf = [](const QAudioFormat& format) {
        return PcmLayout{.sampleFormat = FFmpegSampleFormatFromQAudioFormat(format),
                         .channelCount = SelectChannelLayout(format).value(),
                         .sampleRate = format.sampleRate()};
    };
    const PcmLayout sourceLayout = layoutOf(m_fileFormat);
    const PcmLayout targetLayout = layoutOf(target);
    const WavAudio source(*this);
    PcmResampler resampler(sourceLayout, targetLayout, BlockFrames(source));
    if (!resampler.IsReady()) {
        return false;
    }
    Conversion conversion{.file = *this,
                          .deviceMutex = m_deviceMutex,
                          .source = source,
                          .target = target,
                          .resampler = resampler,
                          .sourceSize = m_sizeAtOpening};
    const QString path = outPath.isEmpty() ? fileName() : outPath;
    if (!conversion.HasRoom(path)) {
        return false;
    }
    if (!outPath.isEmpty() && !IsSameFile(fileName(), outPath)) {
        return conversion.WriteTo(outPath);
    }
    const bool isReplaced = conversion.WriteOver(path);
    if (conversion.isSourceChanged) {
        setErrorString(tr("Another program has changed the file"));
    }
    return isReplaced;
}
