#pragma once

#include <vantorAudioEngine/WavFile.h>

#include <optional>

/** The private members of WavFile, for tests. */
class WavFileTestAccess
{
public:
    explicit WavFileTestAccess(WavFile& file) : m_file(file) {}

    WavFile::AudioEngineReturnValue ReadHeader() { return m_file.ReadHeader(); }
    WavFile::AudioEngineReturnValue WriteHeader(int dataSize) { return m_file.WriteHeader(dataSize); }

    static int CalculateAudioDataSize(int bytes, const QAudioFormat& from, const QAudioFormat& to)
    {
        return WavFile::CalculateAudioDataSize(bytes, from, to);
    }
    static int BytesToSamples(int bytes, int a, int b) { return WavFile::BytesToSamples(bytes, a, b); }
    static int SamplesToBytes(int samples, int a, int b) { return WavFile::SamplesToBytes(samples, a, b); }
    static int FFmpegSampleFormat(const QAudioFormat& format)
    {
        return WavFile::FFmpegSampleFormatFromQAudioFormat(format);
    }

    using Reader = QList<float> (WavFile::*)(const QByteArray&, int, const QAudioFormat&, WavFile::ChannelFormat);
    static constexpr Reader readBlock = &WavFile::ReadBlock;
    static constexpr Reader readS16Block = &WavFile::ReadS16Block;
    static constexpr Reader readS24Block = &WavFile::ReadS24Block;
    static constexpr Reader readS32Block = &WavFile::ReadS32Block;
    static constexpr Reader readF32Block = &WavFile::ReadF32Block;

    using Writer = void (WavFile::*)(const QByteArray&, WavFile&, const QAudioFormat&, WavFile::ChannelFormat);
    static constexpr Writer writeS16Block = &WavFile::WriteS16Block;
    static constexpr Writer writeS32Block = &WavFile::WriteS32Block;
    static constexpr Writer writeF32Block = &WavFile::WriteF32Block;
    static constexpr Writer convertS24BlockToF32Block = &WavFile::ConvertS24BlockToF32Block;

    static std::optional<WavFile::ChannelLayout> SelectChannelLayout(const QAudioFormat& format)
    {
        return WavFile::SelectChannelLayout(format);
    }

    float ReadS24S(const unsigned char* bytes, const QAudioFormat& format)
    {
        return m_file.ReadS24S(bytes, format);
    }

    QAudioFormat& FileFormat() { return m_file.m_fileFormat; }
    qint64& DataOffset() { return m_file.m_dataOffset; }
    qint64& DataLength() { return m_file.m_dataLength; }
    double& Duration() { return m_file.m_duration; }
    QList<float>& Samples() { return m_file.m_samples; }
    int& SampleSize() { return m_file.m_sampleSize; }
    bool& IsReadAborted() { return m_file.m_abortRead; }
    bool& IsWriteAborted() { return m_file.m_abortWrite; }
    bool& IsChannelFilterAborted() { return m_file.m_abortChannelFilter; }
    QMutex& Mutex() { return m_file.m_mutex; }
    QMutex& DeviceMutex() { return m_file.m_deviceMutex; }

private:
    WavFile& m_file;
};
