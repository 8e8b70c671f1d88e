#pragma once

#include "engine/decoding/DecoderSource.h"
#include "engine/decoding/SilenceWatch.h"

#include <vantorAudioEngine/Decoder.h>

#include <QtCore/QByteArray>
#include <QtCore/QEventLoop>
#include <QtCore/QFile>
#include <QtCore/QString>

#include <functional>
#include <memory>
#include <optional>

/**
 * One decoding. It lies on the stack of its call and refers to nothing outside but the output, because anything
 * else may be gone when the event loop comes back.
 */
class Decoder::Run
{
public:
    using Source = vantoraudio::AudioEngine::DecoderSource;
    /** Makes what decodes the file of that absolute path; tests put others in its place. */
    using SourceMaker = std::function<std::unique_ptr<Source>(const QString& path)>;

    /** As Decoder::Convert(), for paths and a rate in their ranges, by means of `makeSource`. */
    static WavFile::AudioEngineReturnValue Convert(const QString& inPath, const QString& outPath, int sampleRate,
                                                   const SourceMaker& makeSource);

private:
    Run(QFile& output, int sampleRate, const SourceMaker& makeSource);

    WavFile::AudioEngineReturnValue Decode(const QString& inPath);
    void Start();
    void OnBufferReady();
    void OnFinished();
    void OnSilence();
    void Append(const QByteArray& bytes);
    bool WriteBlock();
    void End(WavFile::AudioEngineReturnValue result);

    QFile& m_output;
    const int m_sampleRate;
    const SourceMaker m_makeSource;
    QString m_inPath;
    int m_channelCount = 2;
    qint64 m_dataSize = 0;
    QByteArray m_block;
    std::optional<WavFile::AudioEngineReturnValue> m_result;
    bool m_isSecondTry = false;
    QEventLoop m_loop;
    vantoraudio::AudioEngine::SilenceWatch m_silence;
    std::unique_ptr<Source> m_source;
};
