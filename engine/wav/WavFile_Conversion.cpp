#include "engine/files/FileReplacement.h"
#include "engine/files/RegularFile.h"
#include "engine/files/SharedFileCursor.h"
#include "engine/samples/PcmResampler.h"
#include "engine/samples/S24Samples.h"
#include "engine/wav/WavAudio.h"
#include "engine/wav/WavHeader.h"
#include "engine/wav/WavWriter.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryFile>

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

    bool WriteTo(WavWriter& output, const QString& path);
    bool WriteOver(const QString& path);

private:
    bool ConvertBlocks(WavWriter& output);
};

/** The header states the size that follows from the length of the source, even when the resampler delivers some
 * frames more or fewer. */
bool Conversion::WriteTo(WavWriter& output, const QString& path)
{
    const ByteCounting counting = source.Counting();
    const qint64 dataSize =
        CalculateAudioDataSize(counting.Restrict(ResampledLength(source)), source.format.audio, target, counting);
    return output.Open(path, target, dataSize, source.allowsLargeFiles) && ConvertBlocks(output);
}

/** Converts into a new file beside the one at `path`, which it replaces at the end; the source is closed then.
 * Until that last step nothing happens to the old file, and a failure leaves no other file behind. */
bool Conversion::WriteOver(const QString& path)
{
    const QFileInfo replaced(QFileInfo(path).canonicalFilePath());
    // Reserves a name. Unless the file was renamed, it is removed at the end.
    QTemporaryFile place(replaced.path() + QStringLiteral("/.vantorAudioEngine-XXXXXX"));
    if (!IsRegularFile(path) || !place.open()) {
        return false;
    }
    place.close();
    WavWriter output;
    if (!WriteTo(output, place.fileName()) || !output.FinishOnDisk()) {
        return false;
    }
    file.close();
    const bool isReplaced = ReplaceFile(place.fileName(), replaced.filePath());
    place.setAutoRemove(!isReplaced);
    return isReplaced;
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
    // A rest of the file that could not be read would be missing in the result.
    if (cursor.BytesLeft() > 0 || !append(resampler.Drain())) {
        return false;
    }
    // One pass may yield nothing. When all of them do, it is a failure, and FFmpeg's function for the size of a
    // buffer without frames fails as well.
    if (isEmpty) {
        std::fputs("Could not get sample buffer size\n", stderr);
    }
    return !isEmpty;
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
    Conversion conversion{*this, m_deviceMutex, source, target, resampler};
    if (outPath.isEmpty() || IsSameFile(fileName(), outPath)) {
        return conversion.WriteOver(outPath.isEmpty() ? fileName() : outPath);
    }
    WavWriter output;
    return conversion.WriteTo(output, outPath) && output.Finish();
}
