#include "engine/decoding/Import.h"

#include "engine/samples/ResamplerRates.h"

#include <QtCore/QScopeGuard>

#include <algorithm>
#include <exception>
#include <new>
#include <thread>
#include <utility>

namespace vantoraudio::AudioEngine {

namespace {

/** Of decoded samples that go to the other thread together, and of what is written at once; in bytes. */
constexpr qint64 batchSize = qint64(256) * 1024;
/** Smaller batches where the rate rises steeply: each of them becomes much audio, and progress is told in between.
 */
constexpr qint64 leastBatchSize = 4096;

/** A frame that cannot be made must not look like the end of the file. */
FramePointer NewFrame()
{
    FramePointer frame(av_frame_alloc());
    if (!frame) {
        throw std::bad_alloc();
    }
    return frame;
}

int BytesOf(const AVFrame& frame)
{
    const int size = av_get_bytes_per_sample(AVSampleFormat(frame.format));
    return size * frame.nb_samples * frame.ch_layout.nb_channels;
}

QAudioFormat OutputFormat(int sampleRate, int channelCount)
{
    QAudioFormat format;
    format.setSampleRate(sampleRate);
    format.setChannelCount(std::min(channelCount, 2));
    format.setSampleFormat(QAudioFormat::Float);
    return format;
}

AVSampleFormat FFmpegFormatOf(QAudioFormat::SampleFormat format)
{
    return format == QAudioFormat::Int16 ? AV_SAMPLE_FMT_S16 : AV_SAMPLE_FMT_FLT;
}

} // namespace

Import::Import(const QString& inPath, const QString& outPath, const ImportOptions& options, const Observer& goesOn)
    : m_options(options)
    , m_goesOn(goesOn)
    , m_stream(inPath, MakeCancelCheck())
    , m_output(outPath, inPath, MakeCancelCheck())
{
}

CancelCheck Import::MakeCancelCheck()
{
    return [this] { return IsCancelled(); };
}

ImportResult Import::Run(FormerFile formerFile)
{
    Problem problem = CheckAhead();
    if (problem != Problem::None) {
        return ResultOf(problem);
    }
    problem = Transfer();
    if (problem != Problem::None && formerFile == FormerFile::Goes) {
        m_output.RemoveFormer();
    }
    return ResultOf(problem);
}

/** What can be refused before anything is decoded. */
Import::Problem Import::CheckAhead()
{
    if (m_options.sampleRate < 0 || m_options.sampleRate > ImportOptions::highestSampleRate) {
        return Problem::UnsupportedRate;
    }
    if (m_stream.GetProblem() != Problem::None || !m_stream.OpenDecoder()) {
        return m_stream.GetProblem();
    }
    const AVCodecParameters& source = *m_stream.Stream().codecpar;
    const int sampleRate = m_options.sampleRate > 0 ? m_options.sampleRate : source.sample_rate;
    if (!CanBeResampled(source.sample_rate, sampleRate)) {
        return Problem::UnsupportedRate;
    }
    QAudioFormat format = OutputFormat(sampleRate, source.ch_layout.nb_channels);
    m_length = {m_stream.Duration(), m_stream.IsDurationCertain()};
    m_batchSize = qBound(leastBatchSize, batchSize * source.sample_rate / sampleRate, batchSize);
    format.setSampleFormat(FirstSampleFormat(m_options, format, m_length));
    // A guess refuses nothing.
    const double size = m_length.isCertain ? m_length.DataSize(format) : 0.0;
    const Problem problem = ProblemOfSize(size, m_options, m_output.Path());
    if (problem == Problem::None && !m_output.Open()) {
        return m_output.GetProblem();
    }
    return problem;
}

Import::Problem Import::Transfer()
{
    try {
        DecodeAndWrite();
        if (IsCancelled()) {
            return Problem::Cancelled;
        }
        if (m_writingProblem == Problem::None) {
            m_writingProblem = m_stream.GetProblem();
        }
        return m_writingProblem == Problem::None && FinishWriting() ? Problem::None : m_writingProblem;
    } catch (const std::exception&) {
        // There was no memory, or no second thread.
        return Problem::CannotBeWritten;
    }
}

void Import::DecodeAndWrite()
{
    std::thread writer([this] { Write(); });
    // Also where decoding ends because memory has run out.
    const auto end = qScopeGuard([&] {
        m_queue.Close();
        writer.join();
    });
    Decode();
}

/** Once cancelled, an import stays cancelled, whatever is answered later: a part of the audio must not pass for
 * all of it. */
bool Import::IsCancelled()
{
    if (m_goesOn && !m_goesOn(m_progress)) {
        m_isCancelled = true;
    }
    return m_isCancelled;
}

void Import::Decode()
{
    FrameBatch batch;
    for (FramePointer frame = NewFrame(); m_stream.ReadFrame(*frame); frame = NewFrame()) {
        batch.bytes += BytesOf(*frame);
        batch.frames.push_back(std::move(frame));
        if (batch.bytes >= m_batchSize && !PushBatch(batch)) {
            return;
        }
    }
    if (!batch.frames.empty()) {
        PushBatch(batch);
    }
}

bool Import::PushBatch(FrameBatch& batch)
{
    const bool isPushed = m_queue.Push(std::exchange(batch, {}));
    m_progress = static_cast<int>(m_stream.Progress() * 1000.0);
    return isPushed;
}

void Import::Write()
{
    try {
        WriteAll();
    } catch (const std::bad_alloc&) {
        m_writingProblem = Problem::CannotBeWritten;
    }
    // After a failure nobody is left to take what is still decoded.
    m_queue.Close();
}

void Import::WriteAll()
{
    m_block.reserve(4 * batchSize);
    bool goesOn = true;
    while (goesOn) {
        const FrameBatch batch = m_queue.Pop();
        goesOn = !batch.frames.empty() && WriteBatch(batch);
    }
}

bool Import::WriteBatch(const FrameBatch& batch)
{
    return std::ranges::all_of(batch.frames, [this](const FramePointer& frame) { return WriteFrame(*frame); });
}

bool Import::WriteFrame(const AVFrame& frame)
{
    if (!m_resampler && !StartWriting(frame)) {
        return false;
    }
    for (int start = 0; start < frame.nb_samples;) {
        if (IsCancelled()) {
            return false;
        }
        if (!m_resampler->Convert(frame, start, m_block)) {
            m_writingProblem = Problem::Damaged;
            return false;
        }
        if (m_block.size() >= batchSize && !WriteBlock()) {
            return false;
        }
    }
    return true;
}

/** The first frame decides what the file is like, whatever follows. */
bool Import::StartWriting(const AVFrame& first)
{
    const int sampleRate = m_options.sampleRate > 0 ? m_options.sampleRate : first.sample_rate;
    QAudioFormat format = OutputFormat(sampleRate, first.ch_layout.nb_channels);
    format.setSampleFormat(FirstSampleFormat(m_options, format, m_length));
    m_resampler.emplace(FrameResampler::Target{sampleRate, FFmpegFormatOf(format.sampleFormat()),
                                               FrameResampler::OutputLayoutFor(first)});
    m_output.Start(m_options, format, m_length);
    m_writingProblem = m_output.GetProblem();
    return m_writingProblem == Problem::None;
}

bool Import::WriteBlock()
{
    const bool isWritten = m_output.Append(m_block);
    m_writingProblem = m_output.GetProblem();
    m_block.resize(0);
    return isWritten;
}

/** A file without any frame becomes a WAV file without any. */
bool Import::FinishWriting()
{
    if (!m_resampler) {
        const AVCodecParameters& source = *m_stream.Stream().codecpar;
        const int sampleRate = m_options.sampleRate > 0 ? m_options.sampleRate : source.sample_rate;
        QAudioFormat format = OutputFormat(sampleRate, source.ch_layout.nb_channels);
        const ImportLength nothing{.duration = 0.0, .isCertain = true};
        format.setSampleFormat(FirstSampleFormat(m_options, format, nothing));
        m_output.Start(m_options, format, nothing);
    } else if (!m_resampler->Drain(m_block) || !WriteBlock()) {
        m_writingProblem = m_writingProblem == Problem::None ? Problem::Damaged : m_writingProblem;
        return false;
    }
    const bool isFinished = m_output.Finish();
    m_writingProblem = m_output.GetProblem();
    return isFinished;
}

ImportResult Import::ResultOf(Problem problem) const
{
    ImportResult result;
    result.problem = problem;
    result.damagedPackets = m_stream.DamagedPackets();
    const QAudioFormat& format = m_output.Format();
    if (problem == Problem::None && format.bytesPerFrame() > 0) {
        result.sampleRate = format.sampleRate();
        result.channelCount = format.channelCount();
        result.sampleFormat = format.sampleFormat();
        result.frameCount = m_output.DataSize() / format.bytesPerFrame();
    }
    return result;
}

} // namespace vantoraudio::AudioEngine
