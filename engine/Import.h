#pragma once

#include "engine/AudioStream.h"
#include "engine/FrameQueue.h"
#include "engine/ImportedWav.h"
#include "engine/StreamResampler.h"

#include <vantorAudioEngine/AudioImporter.h>

#include <atomic>
#include <functional>
#include <optional>

namespace vantoraudio::AudioEngine {

/** One import: this thread decodes, a second one resamples and writes. */
class Import
{
public:
    struct Observer
    {
        std::function<bool()> isCancelled;
        /** Told by the calling thread, from 0 to 1000. */
        std::function<void(int permille)> report;
    };

    /** What becomes of an older file under the output's name when decoding fails. */
    enum class FormerFile
    {
        Stays,
        Goes
    };

    Import(const QString& inPath, const QString& outPath, const ImportOptions& options, Observer observer);

    ImportResult Run(FormerFile formerFile);

private:
    using Problem = AudioFileInfo::Problem;

    Problem CheckAhead();
    Problem Transfer();
    void Decode(AudioStream& stream);
    void Report();
    void Write();
    bool WriteBatch(const FrameBatch& batch);
    bool StartWriting(const AVFrame& first);
    bool WriteBlock();
    bool FinishWriting();
    ImportResult ResultOf(Problem problem) const;

    ImportOptions m_options;
    Observer m_observer;
    QString m_inPath;
    AudioStream m_stream;
    ImportLength m_length;
    FrameQueue m_queue;

    // Of the thread that writes, until it has ended.
    ImportedWav m_output;
    std::optional<StreamResampler> m_resampler;
    QByteArray m_block;
    Problem m_writingProblem = Problem::None;
};

} // namespace vantoraudio::AudioEngine
