#include "engine/decoding/ImportedWav.h"

#include "engine/files/DiskRoom.h"
#include "engine/wav/WavHeader.h"

#include <QtCore/QFileInfo>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace vantoraudio::AudioEngine {

namespace {

constexpr qint64 narrowedAtOnce = 1 << 20;

QByteArray ToInt16(const QByteArray& floats)
{
    const qsizetype count = floats.size() / qsizetype(sizeof(float));
    QByteArray result(count * qsizetype(sizeof(qint16)), Qt::Uninitialized);
    for (qsizetype i = 0; i < count; ++i) {
        float value = 0.0F;
        std::memcpy(&value, floats.constData() + i * qsizetype(sizeof(float)), sizeof(float));
        const float scaled = std::clamp(value * 32768.0F, -32768.0F, 32767.0F);
        const auto number = static_cast<qint16>(std::lrint(scaled));
        std::memcpy(result.data() + i * qsizetype(sizeof(qint16)), &number, sizeof(number));
    }
    return result;
}

} // namespace

QAudioFormat::SampleFormat FirstSampleFormat(const ImportOptions& options, const QAudioFormat& format,
                                             const ImportLength& length)
{
    QAudioFormat asFloat = format;
    asFloat.setSampleFormat(QAudioFormat::Float);
    const bool isLong = length.isCertain && length.DataSize(asFloat) > double(ImportLimits().mostFloatBytes);
    const bool isInt16 = options.sampleFormat == ImportOptions::Int16 ||
                         (options.sampleFormat == ImportOptions::Automatic && isLong);
    return isInt16 ? QAudioFormat::Int16 : QAudioFormat::Float;
}

AudioFileInfo::Problem ProblemOfSize(double bytes, const ImportOptions& options, const QString& path)
{
    if (!options.mayBeLarge && bytes > double(ImportLimits().mostPlainBytes)) {
        return AudioFileInfo::Problem::TooLong;
    }
    return HasRoomFor(bytes, path) ? AudioFileInfo::Problem::None : AudioFileInfo::Problem::NoSpace;
}

bool ImportedWav::Open()
{
    return m_output.Open() || Fail(Problem::CannotBeCreated);
}

void ImportedWav::Start(const ImportOptions& options, const QAudioFormat& format, const ImportLength& length)
{
    m_format = format;
    m_isFloatGiven = format.sampleFormat() == QAudioFormat::Float;
    m_mayBecomeInt16 = options.sampleFormat == ImportOptions::Automatic;
    m_mayBeLarge = options.mayBeLarge;
    // A source may state a length that is far too short; a small one cannot be long.
    const bool isShort = length.isCertain && length.DataSize(format) < double(m_limits.shortFileBytes) &&
                         QFileInfo(m_sourcePath).size() < m_limits.shortSourceBytes;
    m_hasRoom = options.mayBeLarge && !isShort;
    if (!WriteHeader()) {
        Fail(Problem::CannotBeWritten);
    }
}

bool ImportedWav::Append(const QByteArray& samples)
{
    if (m_problem != Problem::None) {
        return false;
    }
    const bool isNarrowed = m_isFloatGiven && m_format.sampleFormat() == QAudioFormat::Int16;
    if (!Write(isNarrowed ? ToInt16(samples) : samples)) {
        return false;
    }
    if (m_mayBecomeInt16 && m_format.sampleFormat() == QAudioFormat::Float &&
        m_dataSize > m_limits.mostFloatBytes) {
        return Narrow();
    }
    return !IsTooLong() || Fail(Problem::TooLong);
}

/** With neither room in the header nor leave to use it, sizes end at 4 GiB. */
bool ImportedWav::IsTooLong() const
{
    return !(m_hasRoom && m_mayBeLarge) && m_dataSize > m_limits.mostPlainBytes;
}

bool ImportedWav::Write(QByteArrayView bytes)
{
    QFile& file = m_output.File();
    if (file.write(bytes.data(), bytes.size()) != bytes.size()) {
        return Fail(file.error() == QFileDevice::ResourceError ? Problem::NoSpace : Problem::CannotBeWritten);
    }
    m_dataSize += bytes.size();
    return true;
}

bool ImportedWav::WriteHeader()
{
    const QByteArray header = m_hasRoom ? ComposeWavHeaderWithRoom(m_format, m_dataSize)
                                        : ComposeWavHeader(m_format, static_cast<int>(m_dataSize));
    QFile& file = m_output.File();
    return file.seek(0) && file.write(header) == header.size();
}

/** The integers move to the front of the floats that they come from, so nothing is overwritten before it is read.
 */
bool ImportedWav::Narrow()
{
    QFile& file = m_output.File();
    const qint64 start = file.pos() - m_dataSize;
    qint64 written = 0;
    for (qint64 read = 0; read < m_dataSize;) {
        if (IsCancelled(m_isCancelled)) {
            return Fail(Problem::Cancelled);
        }
        if (!file.seek(start + read)) {
            return Fail(Problem::CannotBeWritten);
        }
        const QByteArray floats = file.read(std::min(narrowedAtOnce, m_dataSize - read));
        const QByteArray integers = ToInt16(floats);
        if (floats.isEmpty() || !file.seek(start + written) || file.write(integers) != integers.size()) {
            return Fail(Problem::CannotBeWritten);
        }
        read += floats.size();
        written += integers.size();
    }
    m_dataSize = written;
    m_format.setSampleFormat(QAudioFormat::Int16);
    return file.resize(start + written) && file.seek(start + written) ? true : Fail(Problem::CannotBeWritten);
}

bool ImportedWav::Finish()
{
    if (m_problem != Problem::None) {
        return false;
    }
    const bool isWhole = WriteHeader() && m_output.File().flush();
    if (!isWhole) {
        return Fail(m_output.File().error() == QFileDevice::ResourceError ? Problem::NoSpace
                                                                          : Problem::CannotBeWritten);
    }
    return m_output.Commit(m_isCancelled) ||
           Fail(IsCancelled(m_isCancelled) ? Problem::Cancelled : Problem::CannotBeWritten);
}

bool ImportedWav::Fail(Problem problem)
{
    m_problem = problem;
    return false;
}

} // namespace vantoraudio::AudioEngine
