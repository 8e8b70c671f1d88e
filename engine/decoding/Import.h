#pragma once

#include "engine/decoding/AudioStream.h"
#include "engine/decoding/FrameQueue.h"
#include "engine/decoding/ImportedWav.h"
#include "engine/samples/FrameResampler.h"

#include <vantorAudioEngine/AudioImporter.h>

#include <atomic>
#include <optional>

namespace vantoraudio::AudioEngine {

/** One import: this thread decodes, a second one resamples and writes. */
class Import
{
public:
    using Observer = AudioImporter::Observer;

    /** What becomes of an older file under the output's name when decoding fails. */
    enum class FormerFile
    {
        Stays,
        Goes
    };

    Import(const QString& inPath, const QString& outPath, const ImportOptions& options, const Observer& goesOn);

    ImportResult Run(FormerFile formerFile);

private:
    using Problem = AudioFileInfo::Problem;

    Problem CheckAhead();
    Problem Transfer();
    void DecodeAndWrite();
    void Decode();
    bool PushBatch(FrameBatch& batch);
    void Write();
    void WriteAll();
    bool IsCancelled();
    CancelCheck MakeCancelCheck();
    bool WriteBatch(const FrameBatch& batch);
    bool WriteFrame(const AVFrame& frame);
    bool StartWriting(const AVFrame& first);
    bool WriteBlock();
    bool FinishWriting();
    ImportResult ResultOf(Problem problem) const;

    ImportOptions m_options;
    Observer m_goesOn;
    /** From 0 to 1000. */
    std::atomic<int> m_progress = 0;
    std::atomic<bool> m_isCancelled = false;
    AudioStream m_stream;
    ImportLength m_length;
    /** Of the frames that are pushed together, in bytes. */
    qint64 m_batchSize = 0;
    FrameQueue m_queue;

    // Of the thread that writes, until it has ended.
    ImportedWav m_output;
    std::optional<FrameResampler> m_resampler;
    QByteArray m_block;
    Problem m_writingProblem = Problem::None;
};

} // namespace vantoraudio::AudioEngine
