#include "engine/files/BlockWalk.h"
#include "engine/files/FileReplacement.h"
#include "engine/samples/SampleEncoding.h"
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
    /** Becomes true when the new file has its name; may be null. */
    bool* hasName = nullptr;

    bool WriteTo(const QString& path, qint64 statedSize) const;

private:
    WalkResult CopyInto(WavWriter& output) const;
    bool TakeName(PendingFile& file) const
    {
        return keepsFormer ? file.CommitUnlessTaken() : audio.TakeName(file);
    }
    void TellOfName() const
    {
        if (hasName) {
            StoreShared(*hasName, true);
        }
    }
    void ResetProgress() const { Q_EMIT source.ProgressChanged(0, 0, 100, WavFile::tr("")); }
};

bool ChannelCopy::WriteTo(const QString& path, qint64 statedSize) const
{
    if (audio.Refuses(path)) {
        return false;
    }
    PendingFile file(path);
    WavWriter output(file);
    if (!output.Open(OutputFormat(audio.format, outputChannels), statedSize, audio.allowsLargeFiles)) {
        return false;
    }
    const WalkResult result = CopyInto(output);
    if (result == WalkResult::FileFailed) {
        // Its header would state more than there is to be had: it would look whole.
        return false;
    }
    if (result == WalkResult::Aborted && !audio.keepsParts) {
        return true;
    }
    if (result != WalkResult::Stopped && TakeName(file)) {
        TellOfName();
        return true;
    }
    if (audio.keepsParts) {
        output.KeepPart();
    }
    return false;
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
    return copy.WriteTo(outPath, audio.Counting().Truncate(audio.duration * bytesPerSecond)) ? Success
                                                                                             : ErrorFilterChannel;
}

bool WavFile::HasWrittenSnippet() const
{
    return LoadShared(m_hasWrittenSnippet);
}

WavFile::AudioEngineReturnValue WavFile::CreateSnippet(const QString& outPath, double start, double end)
{
    StoreShared(m_hasWrittenSnippet, false);
    // The audio that the snippet is taken from is not to be replaced by it.
    if (IsSameFile(fileName(), outPath)) {
        return ErrorCreateSnippet;
    }
    const WavAudio audio = StartTask(*this, m_mutex, m_abortWrite);
    // Counted in whole milliseconds, so the stated size may differ from the size of the range. A snippet without a
    // frame states -1.
    const double milliseconds = std::round((end - start) * 1000.0);
    const qint64 frames =
        audio.Counting().Truncate(double(audio.format.audio.sampleRate()) * milliseconds / 1000.0);
    const bool isStereo = audio.format.audio.channelCount() == 2 && audio.channel == ChannelLeftRight;
    const int outputChannels = isStereo && audio.keepsBothChannels ? 2 : 1;
    const qint64 statedSize = vantoraudio::AudioEngine::SamplesToBytes(
        frames, OutputFormat(audio.format).bytesPerSample(), outputChannels, audio.Counting());
    const ChannelCopy copy{.source = *this,
                           .deviceMutex = m_deviceMutex,
                           .audio = audio,
                           .abortFlag = m_abortWrite,
                           .progressText = tr("Creating snippet..."),
                           .start = audio.PositionOf(start),
                           .end = audio.PositionOf(end),
                           .sourceSize = m_sizeAtOpening,
                           .outputChannels = outputChannels,
                           .hasName = &m_hasWrittenSnippet};
    return copy.WriteTo(outPath, statedSize) ? Success : ErrorCreateSnippet;
}
