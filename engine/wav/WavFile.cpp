#include "engine/files/RegularFile.h"
#include "engine/wav/WavAudio.h"
#include "engine/wav/WavHeader.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtCore/QMetaType>
#include <QtCore/QMutexLocker>

#include <limits>
#include <mutex>

using namespace vantoraudio::AudioEngine;

namespace {

/** Called when the library is loaded, so that the type is known by its name before anyone uses the class. */
void RegisterMetaTypes()
{
    qRegisterMetaType<WavFile::ChannelFormat>("WavFile::ChannelFormat");
}

} // namespace

Q_CONSTRUCTOR_FUNCTION(RegisterMetaTypes)

WavFile::WavFile(QObject* parent) : QFile(parent)
{
    // A fresh QAudioFormat has one channel in some versions of Qt.
    m_fileFormat.setChannelCount(0);
}

WavFile::~WavFile() = default;

// It leaves out the flag of channel filtering, the sample size, SetLargeFiles(), SetKeepParts(),
// SetKeepBothChannels(), SetKeepPeaks(), SetExistingFile() and all of the QFile on purpose.
WavFile& WavFile::operator=(const WavFile& other)
{
    if (this == &other) {
        return *this;
    }
    const std::scoped_lock lock(m_mutex, other.m_mutex);
    StoreShared(m_abortRead, other.m_abortRead);
    StoreShared(m_abortWrite, other.m_abortWrite);
    m_duration = other.m_duration;
    m_fileFormat = other.m_fileFormat;
    m_dataOffset = other.m_dataOffset;
    m_dataLength = other.m_dataLength;
    m_samples = other.m_samples;
    SetSelectedChannel(other.GetSelectedChannel());
    return *this;
}

WavFile::AudioEngineReturnValue WavFile::Open(const QString& fileName)
{
    close();
    setFileName(fileName);
    const bool isFolder = QFileInfo(fileName).isDir();
    if (!isFolder && IsFolderPipeOrDevice(fileName)) {
        setErrorString(tr("Not a regular file"));
        return ErrorOpenFile;
    }
    if (!open(QIODevice::ReadOnly)) {
        close();
        return ErrorOpenFile;
    }
    if (isFolder) {
        // Folders of resources can be opened.
        close();
        setErrorString(tr("Not a regular file"));
        return ErrorOpenFile;
    }
    m_sizeAtOpening = size();
    if (m_sizeAtOpening == 0) {
        // As IsEmptyFile() explains.
        return ErrorReadFile;
    }
    const AudioEngineReturnValue result = ReadHeader();
    if (result != Success) {
        return result;
    }
    if (error() == QFileDevice::ReadError) {
        // Otherwise it would be taken for a file that ends before its format.
        return ErrorReadFile;
    }
    const int frameSize = StoredFormat{m_fileFormat, m_sampleSize}.FrameSize();
    if (frameSize < 1) {
        return Success;
    }
    // A rate of 0 makes the duration infinite, or not-a-number without data. Callers expect these values.
    static_assert(std::numeric_limits<double>::is_iec559);
    m_duration = double(m_dataLength) / (double(frameSize) * double(m_fileFormat.sampleRate()));
    return Success;
}

qint64 WavFile::GetDataLength() const
{
    return m_dataLength;
}

qint64 WavFile::GetDataOffset() const
{
    return m_dataOffset;
}

double WavFile::GetDuration() const
{
    return m_duration;
}

const QAudioFormat& WavFile::GetFileFormat() const
{
    return m_fileFormat;
}

int WavFile::GetSampleSize() const
{
    return m_sampleSize;
}

bool WavFile::GetLargeFiles() const
{
    return LoadShared(m_allowsLargeFiles);
}

void WavFile::SetLargeFiles(bool allowed)
{
    StoreShared(m_allowsLargeFiles, allowed);
}

bool WavFile::GetKeepParts() const
{
    return LoadShared(m_keepsParts);
}

void WavFile::SetKeepParts(bool keep)
{
    StoreShared(m_keepsParts, keep);
}

bool WavFile::GetKeepBothChannels() const
{
    return LoadShared(m_keepsBothChannels);
}

void WavFile::SetKeepBothChannels(bool keep)
{
    StoreShared(m_keepsBothChannels, keep);
}

bool WavFile::GetKeepPeaks() const
{
    return LoadShared(m_keepsPeaks);
}

void WavFile::SetKeepPeaks(bool keep)
{
    StoreShared(m_keepsPeaks, keep);
}

WavFile::ExistingFile WavFile::GetExistingFile() const
{
    return LoadShared(m_existingFile);
}

void WavFile::SetExistingFile(ExistingFile existing)
{
    StoreShared(m_existingFile, existing);
}

WavFile::ChannelFormat WavFile::GetSelectedChannel() const
{
    return LoadShared(m_selectedChannel);
}

void WavFile::SetSelectedChannel(ChannelFormat channel)
{
    if (GetSelectedChannel() != channel) {
        StoreShared(m_selectedChannel, channel);
    }
}

QList<float> WavFile::GetSamples() const
{
    const QMutexLocker lock(&m_mutex);
    return m_samples;
}

void WavFile::AbortRead()
{
    StoreAbortFlag(m_mutex, m_abortRead, true);
}

void WavFile::AbortWrite()
{
    StoreAbortFlag(m_mutex, m_abortWrite, true);
}

void WavFile::AbortChannelFilter()
{
    StoreAbortFlag(m_mutex, m_abortChannelFilter, true);
}

WavFile::AudioEngineReturnValue WavFile::ReadHeader()
{
    WavHeader header{m_fileFormat, m_sampleSize, m_dataOffset, m_dataLength};
    const WavKinds kinds = GetLargeFiles() ? WavKinds::RiffAndRf64 : WavKinds::Riff;
    const AudioEngineReturnValue result = ReadWavHeader(*this, header, kinds);
    const QMutexLocker lock(&m_mutex);
    m_fileFormat = header.format;
    m_sampleSize = header.sampleSize;
    m_dataOffset = header.dataOffset;
    m_dataLength = header.dataLength;
    return result;
}

WavFile::AudioEngineReturnValue WavFile::WriteHeader(int dataSize)
{
    const bool isAtStart = seek(0);
    const QByteArray header = ComposeWavHeader(m_fileFormat, dataSize);
    if (header.isEmpty()) {
        return ErrorInvalidFormat;
    }
    m_dataOffset = header.size();
    // Flushed, so that a full disk is noticed here and not when the file is closed.
    const bool isWritten = isAtStart && write(header) == header.size() && flush();
    return isWritten ? Success : ErrorWriteHeader;
}

int WavFile::CalculateAudioDataSize(int bytes, const QAudioFormat& from, const QAudioFormat& to)
{
    return WrapToInt32(vantoraudio::AudioEngine::CalculateAudioDataSize(bytes, from, to, ByteCounting(false)));
}

int WavFile::BytesToSamples(int bytes, int a, int b)
{
    return static_cast<int>(vantoraudio::AudioEngine::BytesToSamples(bytes, a, b));
}

int WavFile::SamplesToBytes(int samples, int a, int b)
{
    return WrapToInt32(vantoraudio::AudioEngine::SamplesToBytes(samples, a, b, ByteCounting(false)));
}

int WavFile::FFmpegSampleFormatFromQAudioFormat(const QAudioFormat& format)
{
    switch (format.sampleFormat()) {
    case QAudioFormat::Int16:
        return 1; // AV_SAMPLE_FMT_S16
    case QAudioFormat::Int32:
        return 2; // AV_SAMPLE_FMT_S32
    case QAudioFormat::Float:
        return 3; // AV_SAMPLE_FMT_FLT
    default:
        return -1; // AV_SAMPLE_FMT_NONE, for UInt8 too
    }
}
