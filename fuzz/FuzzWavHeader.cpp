#include "engine/samples/SampleBlocks.h"
#include "engine/wav/WavHeader.h"

#include <QtCore/QBuffer>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace vantoraudio::AudioEngine;

namespace {

void Require(bool isTrue)
{
    if (!isTrue) {
        std::abort();
    }
}

/** Whatever the bytes are, the header ends within them and describes audio that can be decoded. */
void CheckHeader(const WavHeader& header, qint64 fileSize)
{
    Require(header.dataOffset >= 0 && header.dataOffset <= fileSize);
    Require(header.dataLength >= 0 && header.dataLength <= 0xFFFFFFFFLL);
    if (header.format.sampleFormat() == QAudioFormat::Unknown) {
        return;
    }
    Require(header.sampleSize == 16 || header.sampleSize == 24 || header.sampleSize == 32);
    Require(header.format.channelCount() == 1 || header.format.channelCount() == 2);
}

void CheckBlock(const WavHeader& header, QByteArrayView block, int step)
{
    const StoredFormat format{header.format, header.sampleSize};
    QList<float> values;
    for (const auto channel : {WavFile::ChannelLeft, WavFile::ChannelRight, WavFile::ChannelLeftRight}) {
        AppendBlock(values, block, format.Coding(), format.audio.channelCount(), {step, channel});
    }
    Require(values.size() <= 3 * block.size() / 2);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    WavHeader header;
    const auto result = ReadWavHeader(device, header);
    Require(device.pos() <= bytes.size());
    if (result == WavFile::Success) {
        CheckHeader(header, bytes.size());
        CheckBlock(header, QByteArrayView(bytes).sliced(header.dataOffset), static_cast<int>(size % 7));
    }
    return 0;
}
