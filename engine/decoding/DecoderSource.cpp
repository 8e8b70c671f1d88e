#include "engine/decoding/DecoderSource.h"

#include "engine/QtDefects.h"
#include "engine/decoding/ReadingPauses.h"

#include <QtCore/QFile>
#include <QtCore/QThread>
#include <QtCore/QUrl>
#include <QtMultimedia/QAudioDecoder>

#include <chrono>

namespace vantoraudio::AudioEngine {

namespace {

class QtDecoderSource : public DecoderSource
{
public:
    explicit QtDecoderSource(const QString& path);

    void Start() override { m_decoder.start(); }
    QAudioBuffer Read() override { return m_decoder.read(); }
    bool MayStandStill() const override { return QtDefects::MissesItsOwnSignals(); }
    SilenceLimits LongestSilence() const override;

private:
    using Clock = std::chrono::steady_clock;

    void SetFile(const QString& path);
    void RestIfNeeded();

    ReadingPauses m_pauses;
    /** Since when nothing but the decoder has kept the next buffer waiting. */
    Clock::time_point m_waitsSince;
    QFile m_file;
    QAudioDecoder m_decoder;
};

QtDecoderSource::QtDecoderSource(const QString& path)
{
    connect(&m_decoder, &QAudioDecoder::bufferReady, this, [this] {
        RestIfNeeded();
        Q_EMIT BufferReady();
        m_waitsSince = Clock::now();
    });
    connect(&m_decoder, &QAudioDecoder::finished, this, &DecoderSource::Finished);
    connect(&m_decoder, qOverload<QAudioDecoder::Error>(&QAudioDecoder::error), this, &DecoderSource::Failed);
    SetFile(path);
}

void QtDecoderSource::SetFile(const QString& path)
{
    const QUrl url = QUrl::fromLocalFile(path);
    m_file.setFileName(path);
    // An open file needs no name.
    if (QtDefects::GarblesNames() && url.toEncoded().contains('%') && m_file.open(QIODevice::ReadOnly)) {
        m_decoder.setSourceDevice(&m_file);
    } else {
        m_decoder.setSource(url);
    }
}

/** A file that never gives a sound is given up within two seconds, both attempts included. */
SilenceLimits QtDecoderSource::LongestSilence() const
{
    SilenceLimits limits;
    if (!QtDefects::IsSilentAboutWhatItCannotDecode()) {
        limits.beforeFirstSound *= 2;
    }
    return limits;
}

void QtDecoderSource::RestIfNeeded()
{
    if (QtDefects::NapsWhileDecoding()) {
        const auto pause = m_pauses.OnBuffer(Clock::now() - m_waitsSince);
        if (pause.count() > 0) {
            QThread::usleep(static_cast<unsigned long>(pause.count()));
        }
    }
}

} // namespace

std::unique_ptr<DecoderSource> MakeQtDecoderSource(const QString& path)
{
    return std::make_unique<QtDecoderSource>(path);
}

} // namespace vantoraudio::AudioEngine
