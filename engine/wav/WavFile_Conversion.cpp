#include "engine/files/FileReplacement.h"
#include "engine/files/SharedFileCursor.h"
#include "engine/samples/FFmpegResampler.h"
#include "engine/samples/S24Samples.h"
#include "engine/wav/ByteCounting.h"
#include "engine/wav/WavHeader.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryFile>

using namespace vantoraudio::AudioEngine;

namespace {

constexpr qint64 longestBlock = 1024;

} // namespace

/** What the conversion of this file takes in. */
struct WavFile::ConversionSource
{
    QAudioFormat format;
    /** 24-bit samples are widened to the 32 bits that their format speaks of before they are resampled. */
    bool is24Bit = false;
    /** Of a frame in the file, in bytes. */
    int storedFrameSize = 0;
    /** Of all the audio as it is resampled, in bytes. */
    qint64 length = 0;
    bool allowsLargeFiles = false;

    /** -1 when frames cannot be counted. */
    int BlockFrames() const;
    QByteArray Widened(const QByteArray& block) const { return is24Bit ? WidenS24Block(block) : block; }
};

int WavFile::ConversionSource::BlockFrames() const
{
    const qint64 frameSize = format.bytesPerFrame();
    return frameSize < 1 || length < 0 ? -1 : static_cast<int>(qMin(length / frameSize, longestBlock));
}

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
    const ConversionSource source = SourceOfConversion();
    FFmpegResampler resampler(sourceLayout, targetLayout, source.BlockFrames());
    if (!resampler.IsReady()) {
        return false;
    }
    if (outPath.isEmpty() || IsSameFile(fileName(), outPath)) {
        return ConvertOver(outPath.isEmpty() ? fileName() : outPath, source, target, resampler);
    }
    WavFile output;
    return ConvertInto(output, outPath, source, target, resampler) && output.FinishWriting();
}

WavFile::ConversionSource WavFile::SourceOfConversion() const
{
    const bool is24Bit = m_fileFormat.sampleFormat() == QAudioFormat::Int32 && m_sampleSize == 24;
    return {.format = m_fileFormat,
            .is24Bit = is24Bit,
            .storedFrameSize = m_sampleSize / 8 * m_fileFormat.channelCount(),
            .length = is24Bit ? ByteCounting::MultiplySaturating(m_dataLength / 3, 4) : m_dataLength,
            .allowsLargeFiles = GetLargeFiles()};
}

/** Converts into a file beside the one at `path`, which then takes its place; this file ends up closed. Until that
 *  last step nothing happens to the old file, and a failure leaves no other file behind. */
bool WavFile::ConvertOver(const QString& path, const ConversionSource& source, const QAudioFormat& target,
                          FFmpegResampler& resampler)
{
    const QFileInfo replaced(QFileInfo(path).canonicalFilePath());
    // Reserves a name, and removes what has it unless that was renamed.
    QTemporaryFile place(replaced.path() + QStringLiteral("/.vantorAudioEngine-XXXXXX"));
    if (!replaced.isFile() || !place.open()) {
        return false;
    }
    place.close();
    WavFile output;
    if (!ConvertInto(output, place.fileName(), source, target, resampler) || !FlushToDisk(output) ||
        !output.FinishWriting()) {
        return false;
    }
    // A few frames at another rate can be too few for the resampler: nothing must not replace the only copy of
    // them.
    if (QFileInfo(place.fileName()).size() <= output.GetDataOffset()) {
        return false;
    }
    close();
    const bool isReplaced = ReplaceFile(place.fileName(), replaced.filePath());
    place.setAutoRemove(!isReplaced);
    return isReplaced;
}

/** The header states the size that the length of the source gives. It stays so when the resampler delivers some
 *  frames more or fewer. */
bool WavFile::ConvertInto(WavFile& output, const QString& path, const ConversionSource& source,
                          const QAudioFormat& target, FFmpegResampler& resampler)
{
    const ByteCounting counting(source.allowsLargeFiles);
    const qint64 dataSize = vantoraudio::AudioEngine::CalculateAudioDataSize(counting.Restrict(source.length),
                                                                             source.format, target, counting);
    output.SetLargeFiles(source.allowsLargeFiles);
    return output.StartWriting(path, target, dataSize) && ConvertBlocks(output, source, resampler);
}

/** Goes to the end of the file, not of the sample data, on purpose. */
bool WavFile::ConvertBlocks(WavFile& output, const ConversionSource& source, FFmpegResampler& resampler)
{
    const auto append = [&output](std::optional<QByteArrayView> converted) {
        if (converted) {
            output.Append(*converted);
        }
        return converted && !output.m_hasLostBytes;
    };
    SharedFileCursor cursor(*this, m_deviceMutex, m_dataOffset);
    const qint64 blockSize = qint64(resampler.BlockFrames()) * source.storedFrameSize;
    QByteArray block;
    while (cursor.ReadBlock(blockSize, block)) {
        const QByteArray frames = source.Widened(block);
        if (!append(resampler.Convert(frames.constData(), source.format.framesForBytes(int(frames.size()))))) {
            return false;
        }
    }
    // What is left of the file now could not be read, and without it the result would not be whole.
    return cursor.BytesLeft() == 0 && append(resampler.Drain());
}
