#include "engine/samples/SampleBlocks.h"
#include "engine/wav/WavHeader.h"
#include "fuzz/Fuzzing.h"

#include <QtCore/QBuffer>

#include <cmath>

using namespace vantoraudio::AudioEngine;
using Fuzzing::Require;

namespace {

/** Whatever the bytes are, the header ends within them and describes audio that can be decoded. */
void CheckHeader(const WavHeader& header, qint64 fileSize, WavKinds kinds)
{
    Require(header.dataOffset >= 0 && header.dataOffset <= fileSize);
    Require(header.dataLength >= 0 && (kinds == WavKinds::RiffAndRf64 || header.dataLength <= 0xFFFFFFFFLL));
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

/** The file gives what its bytes give. */
void CheckOpen(const QByteArray& bytes, WavKinds kinds, WavFile::AudioEngineReturnValue result,
               const WavHeader& header)
{
    WavFile file;
    file.SetLargeFiles(kinds == WavKinds::RiffAndRf64);
    Require(file.Open(Fuzzing::Folder::Get().Write(QStringLiteral("input.wav"), bytes)) == result);
    Require(file.GetFileFormat().sampleRate() == header.format.sampleRate());
    Require(file.GetFileFormat().channelCount() == header.format.channelCount());
    Require(file.GetSampleSize() == header.sampleSize);
    Require(file.GetDataOffset() == header.dataOffset && file.GetDataLength() == header.dataLength);
    // Without a rate the duration is a length divided by zero.
    Require(std::isfinite(file.GetDuration()) || file.GetFileFormat().sampleRate() == 0);
}

void CheckKind(QByteArray bytes, WavKinds kinds)
{
    QBuffer device(&bytes);
    device.open(QIODevice::ReadOnly);
    WavHeader header;
    header.format.setChannelCount(0);
    const auto result = ReadWavHeader(device, header, kinds);
    Require(device.pos() <= bytes.size());
    if (result == WavFile::Success) {
        CheckHeader(header, bytes.size(), kinds);
        CheckBlock(header, QByteArrayView(bytes).sliced(header.dataOffset), static_cast<int>(bytes.size() % 7));
    }
    CheckOpen(bytes, kinds, result, header);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Fuzzing::TimeLimit limit;
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    CheckKind(bytes, WavKinds::Riff);
    CheckKind(bytes, WavKinds::RiffAndRf64);
    return 0;
}
