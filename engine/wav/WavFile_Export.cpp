#include "engine/files/BlockWalk.h"
#include "engine/files/FileReplacement.h"
#include "engine/samples/SampleEncoding.h"
#include "engine/wav/SnippetExport.h"
#include "engine/wav/WavAudio.h"
#include "engine/wav/WavHeader.h"
#include "engine/wav/WavWriter.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QFileInfo>

#include <cmath>

using namespace vantoraudio::AudioEngine;

namespace {

constexpr qint64 framesPerBlock = 200;

/** In the coding of the source, or Float for 24 bits, which the library does not write. */
QAudioFormat OutputFormat(const StoredFormat& source, int channelCount = 1)
{
    QAudioFormat output = source.audio;
    output.setChannelCount(channelCount);
    output.setChannelConfig(QAudioFormat::ChannelConfigUnknown);
    if (source.Is24Bit()) {
        output.setSampleFormat(QAudioFormat::Float);
    }
    return output;
}

enum class CopyEnd
{
    Failed,
    /** An abort that leaves nothing. */
    NothingLeft,
    HasName
};

/** One channel, or both, of a stretch of a file on its way into another file. */
struct ChannelCopy
{
    WavFile& source;
    QMutex& deviceMutex;
    const WavAudio& audio;
    const bool& abortFlag;
    QString progressText;
    /** Positions in the source, in bytes. Whole blocks are copied, so some audio behind the end may be copied,
     * too. The size in the header does not count it, on purpose. */
    qint64 start = 0;
    qint64 end = 0;
    /** Of the source when it was opened, in bytes. */
    qint64 sourceSize = 0;
    /** Whether a file that has the name by the end stays and will do. */
    bool keepsFormer = false;
    int outputChannels = 1;

    CopyEnd WriteTo(const QString& path, qint64 statedSize) const;

private:
    WalkResult CopyInto(WavWriter& output) const;
    bool TakeName(PendingFile& file) const
    {
        return keepsFormer ? file.CommitUnlessTaken() : audio.TakeName(file);
    }
    void ResetProgress() const { Q_EMIT source.ProgressChanged(0, 0, 100, WavFile::tr("")); }
};

CopyEnd ChannelCopy::WriteTo(const QString& path, qint64 statedSize) const
{
    if (audio.Refuses(path)) {
        return CopyEnd::Failed;
    }
    PendingFile file(path);
    WavWriter output(file);
    if (!output.Open(OutputFormat(audio.format, outputChannels), statedSize, audio.allowsLargeFiles)) {
        return CopyEnd::Failed;
    }
    const WalkResult result = CopyInto(output);
    if (result == WalkResult::FileFailed) {
        // Its header would state more than there is to be had: it would look whole.
        return CopyEnd::Failed;
    }
    if (result == WalkResult::Aborted && !audio.keepsParts) {
        return CopyEnd::NothingLeft;
    }
    if (result != WalkResult::Stopped && TakeName(file)) {
        return CopyEnd::HasName;
    }
    if (audio.keepsParts) {
        output.KeepPart();
    }
    return CopyEnd::Failed;
}

/** Stopped when the output could not be filled. An abort and the end of the source are no failures. */
WalkResult ChannelCopy::CopyInto(WavWriter& output) const
{
    const SampleCoding coding = audio.format.Coding();
    if (coding == SampleCoding::Unknown && start < end) {
        ResetProgress();
        return WalkResult::Stopped;
    }
    SharedFileCursor cursor(source, deviceMutex, start);
    const BlockRange range{.end = end,
                           .blockSize = framesPerBlock * audio.format.FrameSize(),
                           .frameSize = audio.format.CodedFrameSize(),
                           .fileSize = sourceSize};
    // Where all channels stay, every sample counts as a frame of its own.
    const int mixedChannels = outputChannels == 1 ? audio.format.audio.channelCount() : 1;
    const BlockTask task{
        .report = [this](int progress) { Q_EMIT source.ProgressChanged(progress, 0, 100, progressText); },
        .isAborted = [this] { return LoadShared(abortFlag); },
        .take =
            [&](QByteArrayView frames) {
                return output.Append(EncodeBlock(frames, coding, mixedChannels, audio.channel));
            }};
    const WalkResult result = WalkBlocks(cursor, range, task);
    if (result == WalkResult::Aborted) {
        ResetProgress();
    }
    return result;
}

} // namespace

WavFile::AudioEngineReturnValue WavFile::FilterChannel(const QString& outPath)
{
    const WavAudio audio = TakeWavAudio(*this, m_mutex);
    if (audio.format.audio.channelCount() != 2 ||
        (audio.channel != ChannelLeft && audio.channel != ChannelRight)) {
        return Success;
    }
    StoreAbortFlag(m_mutex, m_abortChannelFilter, false);
    const bool keepsFormer = audio.existingFile == ExistingFile::Customary;
    // A channel file that is there already is used as it is.
    if (keepsFormer && QFileInfo::exists(outPath)) {
        return Success;
    }
    if (IsSameFile(fileName(), outPath)) {
        return ErrorFilterChannel;
    }
    const double bytesPerSecond =
        double(audio.format.audio.sampleRate()) * OutputFormat(audio.format).bytesPerSample();
    const ChannelCopy copy{.source = *this,
                           .deviceMutex = m_deviceMutex,
                           .audio = audio,
                           .abortFlag = m_abortChannelFilter,
                           .progressText = tr("Updating..."),
                           .start = audio.dataOffset,
                           .end = audio.PositionOf(audio.duration),
                           .sourceSize = m_sizeAtOpening,
                           .keepsFormer = keepsFormer};
    const qint64 statedSize = audio.Counting().Truncate(audio.duration * bytesPerSecond);
    return copy.WriteTo(outPath, statedSize) == CopyEnd::Failed ? ErrorFilterChannel : Success;
}

WavFile::AudioEngineReturnValue WavFile::CreateSnippet(const QString& outPath, double start, double end)
{
    return SnippetExport::Write(*this, outPath, start, end).code;
}

SnippetResult SnippetExport::Write(WavFile& file, const QString& outPath, double start, double end)
{
    // The audio that the snippet is taken from is not to be replaced by it.
    if (IsSameFile(file.fileName(), outPath)) {
        return {WavFile::ErrorCreateSnippet};
    }
    const WavAudio audio = StartTask(file, file.m_mutex, file.m_abortWrite);
    // Counted in whole milliseconds, so the stated size may differ from the size of the range. A snippet without a
    // frame states -1.
    const double milliseconds = std::round((end - start) * 1000.0);
    const qint64 frames =
        audio.Counting().Truncate(double(audio.format.audio.sampleRate()) * milliseconds / 1000.0);
    const bool isStereo = audio.format.audio.channelCount() == 2 && audio.channel == WavFile::ChannelLeftRight;
    const int outputChannels = isStereo && audio.keepsBothChannels ? 2 : 1;
    const qint64 statedSize =
        SamplesToBytes(frames, OutputFormat(audio.format).bytesPerSample(), outputChannels, audio.Counting());
    const ChannelCopy copy{.source = file,
                           .deviceMutex = file.m_deviceMutex,
                           .audio = audio,
                           .abortFlag = file.m_abortWrite,
                           .progressText = WavFile::tr("Creating snippet..."),
                           .start = audio.PositionOf(start),
                           .end = audio.PositionOf(end),
                           .sourceSize = file.m_sizeAtOpening,
                           .outputChannels = outputChannels};
    const CopyEnd copyEnd = copy.WriteTo(outPath, statedSize);
    return {.code = copyEnd == CopyEnd::Failed ? WavFile::ErrorCreateSnippet : WavFile::Success,
            .hasName = copyEnd == CopyEnd::HasName};
}
