#pragma once

#include "engine/decoding/SilenceWatch.h"

#include <QtCore/QObject>
#include <QtMultimedia/QAudioBuffer>

#include <memory>

namespace vantoraudio::AudioEngine {

/**
 * Where a decoding gets its buffers from: Qt's decoder, or what a test puts in its place.
 *
 * Belongs to one thread, whose event loop must run. Signals may come while Start() still runs.
 */
class DecoderSource : public QObject
{
    Q_OBJECT

public:
    virtual void Start() = 0;
    /** The buffer that is ready. The next one comes only after this. */
    virtual QAudioBuffer Read() = 0;

    /** Whether it may fall silent without a reason, so that another one is worth a try. */
    virtual bool MayStandStill() const = 0;
    /** How long it may say nothing before it is given up. */
    virtual SilenceLimits LongestSilence() const = 0;

Q_SIGNALS:
    void BufferReady();
    void Finished();
    void Failed();
};

/** Qt's own decoder of the audio file `path`. */
std::unique_ptr<DecoderSource> MakeQtDecoderSource(const QString& path);

} // namespace vantoraudio::AudioEngine
