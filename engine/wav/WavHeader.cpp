#include "engine/wav/WavHeader.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <optional>

namespace vantoraudio::AudioEngine {

namespace {

using Result = WavFile::AudioEngineReturnValue;

constexpr quint16 extensibleTag = 0xFFFE;

constexpr qint64 chunkHeaderSize = 8;
/** Size of what every "fmt " body holds, whatever its tag is. */
constexpr qint64 commonFormatSize = 16;
constexpr quint16 subFormatExtensionSize = 22;

template<typename Number>
Number NumberAt(const char* bytes)
{
    return qFromLittleEndian<Number>(bytes);
}

using ChunkHeader = std::array<char, chunkHeaderSize>;

/**
 * Goes from chunk to chunk, starting where the device stands, and leaves the device where the walk ended. It reads
 * ahead and skips zeros all at once: those of an interrupted recording look like millions of empty chunks.
 */
class ChunkWalk
{
public:
    explicit ChunkWalk(QIODevice& device) : m_device(device), m_position(device.pos()), m_end(device.size()) {}
    ~ChunkWalk() { m_device.seek(m_position); }
    Q_DISABLE_COPY_MOVE(ChunkWalk)

    /** The next chunk that is not nameless and empty. False at the end of the device. A last piece of fewer than 8
     * bytes is filled up with zeros: an incomplete name matches no name, and skipping such a chunk always reaches
     * the end. */
    bool Peek(ChunkHeader& header);

    /** False when fewer than `size` bytes were left; the walk then stands at the end. */
    bool Skip(qint64 size);

private:
    /** What was read ahead from here on; at least a chunk header where there is one. */
    QByteArrayView View();
    void PassOverZeros();
    bool IsInWindow() const;
    void MoveWindow();

    static constexpr qint64 windowSize = 65536;

    QIODevice& m_device;
    qint64 m_position;
    qint64 m_end;
    QByteArray m_window;
    qint64 m_windowStart = 0;
};

bool ChunkWalk::Peek(ChunkHeader& header)
{
    PassOverZeros();
    const QByteArrayView view = View();
    const QByteArrayView bytes = view.first(qMin(view.size(), chunkHeaderSize));
    header.fill('\0');
    std::copy(bytes.begin(), bytes.end(), header.begin());
    return !bytes.isEmpty();
}

bool ChunkWalk::Skip(qint64 size)
{
    const qint64 left = m_end - m_position;
    m_position += qMin(size, left);
    return size <= left;
}

QByteArrayView ChunkWalk::View()
{
    if (!IsInWindow()) {
        MoveWindow();
    }
    return QByteArrayView(m_window).sliced(m_position - m_windowStart);
}

void ChunkWalk::PassOverZeros()
{
    qsizetype passed = 0;
    do {
        const QByteArrayView view = View();
        passed = 0;
        while (passed + chunkHeaderSize <= view.size() && NumberAt<quint64>(view.data() + passed) == 0) {
            passed += chunkHeaderSize;
        }
        m_position += passed;
    } while (passed > 0);
}

bool ChunkWalk::IsInWindow() const
{
    return m_position >= m_windowStart && m_position + chunkHeaderSize <= m_windowStart + m_window.size();
}

void ChunkWalk::MoveWindow()
{
    m_windowStart = m_position;
    m_window = m_device.seek(m_position) ? m_device.read(windowSize) : QByteArray();
}

/** Walks through a header, one step after the other. A step that ends the reading returns the result. */
class HeaderReader
{
public:
    HeaderReader(QIODevice& device, WavHeader& header, WavKinds kinds)
        : m_device(device), m_header(header), m_kinds(kinds)
    {
    }

    Result Read();

private:
    using Outcome = std::optional<Result>;

    Outcome CheckRiff();
    Outcome ReadSizeChunk();
    Outcome FindFormatChunk();
    Outcome ReadFormatChunk();
    Outcome ReadRestOfFormatChunk();
    Outcome StoreSampleSize();
    Outcome StoreChannelCountAndRate();
    Outcome StoreSampleFormat();
    Outcome FindDataChunk();
    Outcome ReadDataChunk();

    Outcome ReadExtension();
    Outcome ReadSubFormat();
    Outcome FindChunk(QByteArrayView name);

    template<std::size_t size>
    bool ReadWhole(std::array<char, size>& bytes)
    {
        return m_device.read(bytes.data(), qint64(size)) == qint64(size);
    }
    Outcome Skip(qint64 size);

    std::optional<QAudioFormat::SampleFormat> SampleFormat() const;
    QAudioFormat::SampleFormat IntegerFormat() const;

    QIODevice& m_device;
    WavHeader& m_header;
    WavKinds m_kinds;

    bool m_isRf64 = false;
    /** The size of the data by RF64's "ds64" chunk. */
    qint64 m_largeDataSize = 0;
    quint32 m_formatChunkSize = 0;
    quint16 m_tag = 0;
    quint16 m_channelCount = 0;
    quint32 m_sampleRate = 0;
    quint16 m_bits = 0;
    /** Empty until read, so that it equals neither known sub-format. */
    QByteArray m_subFormat;
};

Result HeaderReader::Read()
{
    // The order decides which failure is reported and what has been stored by then.
    constexpr std::array steps{
        &HeaderReader::CheckRiff,
        &HeaderReader::ReadSizeChunk,
        &HeaderReader::FindFormatChunk,
        &HeaderReader::ReadFormatChunk,
        &HeaderReader::ReadRestOfFormatChunk,
        &HeaderReader::StoreSampleSize,
        &HeaderReader::StoreChannelCountAndRate,
        &HeaderReader::StoreSampleFormat,
        &HeaderReader::FindDataChunk,
        &HeaderReader::ReadDataChunk,
    };
    for (const auto step : steps) {
        if (const Outcome outcome = (this->*step)()) {
            return *outcome;
        }
    }
    return WavFile::Success;
}

HeaderReader::Outcome HeaderReader::CheckRiff()
{
    m_device.seek(0);
    std::array<char, 12> bytes{};
    if (!ReadWhole(bytes)) {
        return WavFile::ErrorReadFile;
    }
    const QByteArrayView view(bytes.data(), bytes.size());
    m_isRf64 = m_kinds == WavKinds::RiffAndRf64 && view.startsWith("RF64");
    if ((!view.startsWith("RIFF") && !m_isRf64) || !view.endsWith("WAVE")) {
        return WavFile::ErrorInvalidFormat;
    }
    return {};
}

/** RF64 begins with the sizes that its 32-bit fields cannot state. Of these only the size of the data is of use.
 */
HeaderReader::Outcome HeaderReader::ReadSizeChunk()
{
    if (!m_isRf64) {
        return {};
    }
    std::array<char, chunkHeaderSize> start{};
    if (!ReadWhole(start)) {
        return WavFile::ErrorReadFile;
    }
    const auto size = NumberAt<quint32>(&start[4]);
    if (!QByteArrayView(start).startsWith("ds64") || size < sizeChunkSize) {
        return WavFile::ErrorInvalidFormat;
    }
    std::array<char, sizeChunkSize> body{};
    if (!ReadWhole(body)) {
        return WavFile::ErrorReadFile;
    }
    m_largeDataSize = NumberAt<qint64>(&body[8]);
    if (m_largeDataSize < 0) {
        return WavFile::ErrorInvalidFormat;
    }
    return Skip(qint64(size) - sizeChunkSize);
}

HeaderReader::Outcome HeaderReader::FindFormatChunk()
{
    return FindChunk("fmt ");
}

HeaderReader::Outcome HeaderReader::ReadFormatChunk()
{
    std::array<char, chunkHeaderSize + commonFormatSize> bytes{};
    if (!ReadWhole(bytes)) {
        // A file without a complete "fmt " chunk is accepted on purpose; it simply has no audio.
        m_header.dataOffset = m_device.pos();
        return WavFile::Success;
    }
    m_formatChunkSize = NumberAt<quint32>(&bytes[4]);
    m_tag = NumberAt<quint16>(&bytes[8]);
    m_channelCount = NumberAt<quint16>(&bytes[10]);
    m_sampleRate = NumberAt<quint32>(&bytes[12]);
    m_bits = NumberAt<quint16>(&bytes[22]);
    if (m_tag != pcmTag && m_tag != floatTag && m_tag != extensibleTag) {
        return WavFile::ErrorInvalidFormat;
    }
    return {};
}

HeaderReader::Outcome HeaderReader::ReadRestOfFormatChunk()
{
    if (m_tag == extensibleTag) {
        return ReadExtension();
    }
    return Skip(m_formatChunkSize - commonFormatSize);
}

/** The extension states its own size; the size of the whole chunk does not matter here. */
HeaderReader::Outcome HeaderReader::ReadExtension()
{
    std::array<char, 2> bytes{};
    if (m_device.peek(bytes.data(), bytes.size()) != qint64(bytes.size())) {
        return WavFile::ErrorInvalidFormat;
    }
    const auto extensionSize = NumberAt<quint16>(bytes.data());
    if (extensionSize == subFormatExtensionSize) {
        return ReadSubFormat();
    }
    return Skip(qint64(extensionSize) + qint64(sizeof(extensionSize)));
}

HeaderReader::Outcome HeaderReader::ReadSubFormat()
{
    constexpr qsizetype subFormatPosition = 8;
    const QByteArray extension = m_device.read(sizeof(quint16) + subFormatExtensionSize);
    if (extension.size() != sizeof(quint16) + subFormatExtensionSize) {
        return WavFile::ErrorReadFile;
    }
    m_subFormat = extension.mid(subFormatPosition);
    return {};
}

HeaderReader::Outcome HeaderReader::StoreSampleSize()
{
    m_header.sampleSize = m_bits;
    if (m_bits != 16 && m_bits != 24 && m_bits != 32) {
        return WavFile::ErrorInvalidFormat;
    }
    return {};
}

HeaderReader::Outcome HeaderReader::StoreChannelCountAndRate()
{
    m_header.format.setChannelCount(m_channelCount);
    m_header.format.setChannelConfig(QAudioFormat::ChannelConfigUnknown);
    if (m_channelCount != 1 && m_channelCount != 2) {
        return WavFile::ErrorChannelCount;
    }
    m_header.format.setSampleRate(static_cast<int>(m_sampleRate));
    return {};
}

HeaderReader::Outcome HeaderReader::StoreSampleFormat()
{
    const auto sampleFormat = SampleFormat();
    if (!sampleFormat) {
        return WavFile::ErrorInvalidFormat;
    }
    m_header.format.setSampleFormat(*sampleFormat);
    return {};
}

std::optional<QAudioFormat::SampleFormat> HeaderReader::SampleFormat() const
{
    static const QByteArray pcmSubFormat = QByteArray::fromHex("0100000000001000800000aa00389b71");
    static const QByteArray floatSubFormat = QByteArray::fromHex("0300000000001000800000aa00389b71");

    if (m_tag == pcmTag || m_subFormat == pcmSubFormat) {
        return IntegerFormat();
    }
    if (m_tag == floatTag || m_subFormat == floatSubFormat) {
        // A float file that states 16 or 24 bits is accepted on purpose.
        return QAudioFormat::Float;
    }
    return {};
}

/** Qt has no name for 24 bits; the sample size tells them from 32. */
QAudioFormat::SampleFormat HeaderReader::IntegerFormat() const
{
    return m_bits == 16 ? QAudioFormat::Int16 : QAudioFormat::Int32;
}

HeaderReader::Outcome HeaderReader::FindDataChunk()
{
    return FindChunk("data");
}

HeaderReader::Outcome HeaderReader::ReadDataChunk()
{
    std::array<char, chunkHeaderSize> bytes{};
    if (!ReadWhole(bytes)) {
        return WavFile::ErrorReadFile;
    }
    const auto size = NumberAt<quint32>(&bytes[4]);
    m_header.dataLength = m_isRf64 && size == sizeStatedElsewhere ? m_largeDataSize : size;
    m_header.dataOffset = m_device.pos();
    return {};
}

/**
 * Stops before the next chunk of that name, or at the end of the device when there is none. Chunks are skipped by
 * their exact size, without the pad byte behind an odd one, on purpose.
 */
HeaderReader::Outcome HeaderReader::FindChunk(QByteArrayView name)
{
    ChunkWalk walk(m_device);
    for (ChunkHeader header; walk.Peek(header) && !QByteArrayView(header).startsWith(name);) {
        if (!walk.Skip(chunkHeaderSize + NumberAt<quint32>(&header[4]))) {
            return WavFile::ErrorReadFile;
        }
    }
    return {};
}

/** Skips `size` bytes, or all up to the end of the device. */
HeaderReader::Outcome HeaderReader::Skip(qint64 size)
{
    if (size > 0 && m_device.skip(size) != size) {
        return WavFile::ErrorReadFile;
    }
    return {};
}

} // namespace

WavFile::AudioEngineReturnValue ReadWavHeader(QIODevice& device, WavHeader& header, WavKinds kinds)
{
    return HeaderReader(device, header, kinds).Read();
}

} // namespace vantoraudio::AudioEngine
