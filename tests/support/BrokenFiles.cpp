#include "tests/support/BrokenFiles.h"

#include "tests/support/WavBytes.h"

#include <QtTest/QTest>

#include <limits>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;

namespace BrokenFiles {
namespace {

using Result = WavFile::AudioEngineReturnValue;

/** 100 frames of stereo, 16 bit: no two bytes next to each other are equal. */
QByteArray SomeAudio(qsizetype size = 400)
{
    QByteArray bytes;
    for (qsizetype i = 0; i < size; ++i) {
        bytes += static_cast<char>(i * 37 + 11);
    }
    return bytes;
}

WavBytes Stereo()
{
    return {.channels = 2, .sampleRate = 8000, .data = SomeAudio()};
}

WavBytes Extensible(const QByteArray& extension)
{
    return {.formatTag = 0xFFFE, .channels = 2, .sampleRate = 8000, .extension = extension, .data = SomeAudio()};
}

/** With the zeros in it. */
template<std::size_t size>
QByteArray Raw(const char (&literal)[size])
{
    return QByteArray(literal, qsizetype(size) - 1);
}

/** Writes over a number or a name in a file. */
QByteArray With(QByteArray bytes, qsizetype position, const QByteArray& replacement)
{
    return bytes.replace(position, replacement.size(), replacement);
}

class Table
{
public:
    File& Add(const QByteArray& row, const QByteArray& bytes, Result open, Audio audio = Audio::Clear)
    {
        m_files.append({row, u"file.wav"_s, bytes, open, open, audio, audio});
        return m_files.last();
    }
    /** Numbered by what varies. */
    template<typename Number>
    File& Add(const QByteArray& row, Number number, const QByteArray& bytes, Result open,
              Audio audio = Audio::Clear)
    {
        return Add(row + ' ' + QByteArray::number(number), bytes, open, audio);
    }
    QList<File> Take() { return std::exchange(m_files, {}); }

private:
    QList<File> m_files;
};

// Where the fields of the usual header begin.
constexpr qsizetype formOffset = 8;
constexpr qsizetype fmtOffset = 12;
constexpr qsizetype dataOffset = 36;
constexpr qsizetype samplesOffset = 44;

void AddCutOffs(Table& table)
{
    const QByteArray file = Stereo().Build();
    for (qsizetype size = 0; size <= samplesOffset + 5; ++size) {
        const bool endsBeforeForm = size < 12;
        // A name of fewer than four bytes is that of an unknown chunk, which goes on behind the end.
        const bool endsInName = size > 12 && size < 16;
        const bool endsBeforeData = size >= dataOffset && size < samplesOffset;
        const Result open =
            endsBeforeForm || endsInName || endsBeforeData ? WavFile::ErrorReadFile : WavFile::Success;
        table.Add("cut off after byte", size, file.first(size), open,
                  size < samplesOffset ? Audio::Refused : Audio::Clear);
    }
    table.Add("cut off in the last frame", file.chopped(3), WavFile::Success, Audio::Readable);
    table.Add("cut off in the middle", file.first(file.size() / 2), WavFile::Success, Audio::Readable);
}

void AddExtensibleCutOffs(Table& table)
{
    const QByteArray file = Extensible(Extension(PcmGuid())).Build();
    constexpr qsizetype extensionOffset = 36;
    for (qsizetype size = extensionOffset; size < extensionOffset + 32; ++size) {
        const bool hasNoExtensionSize = size < extensionOffset + 2;
        table.Add("extensible, cut off after byte", size, file.first(size),
                  hasNoExtensionSize ? WavFile::ErrorInvalidFormat : WavFile::ErrorReadFile, Audio::Refused);
    }
}

void AddSoundFiles(Table& table)
{
    constexpr std::array<std::pair<int, int>, 4> kinds{{{1, 16}, {1, 24}, {1, 32}, {3, 32}}};
    for (const auto& [tag, bits] : kinds) {
        for (const int channels : {1, 2}) {
            const WavBytes file{.formatTag = quint16(tag),
                                .channels = quint16(channels),
                                .sampleRate = 8000,
                                .bits = quint16(bits),
                                .data = QByteArray(bits * channels * 10, '\x20')};
            const QByteArray row =
                "sound, tag " + QByteArray::number(tag) + ", channels " + QByteArray::number(channels) + ", bits";
            table.Add(row, bits, file.Build(), WavFile::Success, Audio::Readable);
        }
    }
    table.Add("a name in capitals", Stereo().Build(), WavFile::Success, Audio::Readable).name = u"FILE.WAV"_s;
    table.Add("a name without extension", Stereo().Build(), WavFile::Success, Audio::Readable).name = u"file"_s;
    table.Add("a name with two dots", Stereo().Build(), WavFile::Success, Audio::Readable).name = u"a.b.wav"_s;
    table.Add("a WAV file named .mp3", Stereo().Build(), WavFile::Success, Audio::Readable).name = u"file.mp3"_s;
    table.Add("a name beyond ASCII", Stereo().Build(), WavFile::Success, Audio::Readable).name =
        u"größe %20.wav"_s;
}

void AddNames(Table& table)
{
    const QByteArray file = Stereo().Build();
    for (const char* name : {"riff", "FFIR", "FORM", "LIST", "RIF "}) {
        table.Add("begins with " + QByteArray(name), With(file, 0, name), WavFile::ErrorInvalidFormat);
    }
    table.Add("begins with zeros", With(file, 0, QByteArray(4, '\0')), WavFile::ErrorInvalidFormat);
    table.Add("big-endian", With(file, 0, "RIFX"), WavFile::ErrorInvalidFormat);
    for (const char* name : {"wave", "EVAW", "AVI ", "WEBP", "sfbk"}) {
        table.Add("form " + QByteArray(name), With(file, formOffset, name), WavFile::ErrorInvalidFormat);
    }
    // Unknown chunks are passed over, and a file without a format is accepted.
    for (const char* name : {"FMT ", "fmt_", "tmf ", "data"}) {
        table.Add("format chunk named " + QByteArray(name), With(file, fmtOffset, name), WavFile::Success,
                  Audio::Refused);
    }
    for (const char* name : {"DATA", "dat ", "atad", "fmt "}) {
        table.Add("data chunk named " + QByteArray(name), With(file, dataOffset, name), WavFile::ErrorReadFile);
    }
}

void AddSizes(Table& table)
{
    const QByteArray file = Stereo().Build();
    for (const quint32 size : {0U, 1U, 4U, 36U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
        table.Add("RIFF size", size, With(file, 4, LittleEndian(size)), WavFile::Success, Audio::Clear);
    }
    for (const quint32 size : {0U, 1U, 15U}) {
        table.Add("format chunk of size", size, With(file, 16, LittleEndian(size)), WavFile::Success);
    }
    for (const quint32 size : {1000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFF0U, 0xFFFFFFFFU}) {
        table.Add("format chunk of size", size, With(file, 16, LittleEndian(size)), WavFile::ErrorReadFile);
    }
    for (const int more : {2, 4, 24, 100}) {
        WavBytes longer = Stereo();
        longer.extension = QByteArray(more, '\0');
        table.Add("a format chunk longer by", more, longer.Build(), WavFile::Success, Audio::Readable);
    }
    for (const quint32 size : {0U, 1U, 3U, 399U, 401U, 402U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU, 0xFFFFFFFFU}) {
        table.Add("data of size", size, With(file, 40, LittleEndian(size)), WavFile::Success);
    }
    for (const int size : {0, 1, 2, 3, 5}) {
        WavBytes few = Stereo();
        few.data = SomeAudio(size);
        table.Add("bytes of data:", size, few.Build(), WavFile::Success);
    }
}

void AddFormats(Table& table)
{
    const QByteArray file = Stereo().Build();
    for (const int tag : {0, 2, 6, 7, 0x11, 0x31, 0x50, 0x55, 0xFF, 0x100, 0x300, 0x674F, 0xFFFD, 0xFFFF}) {
        table.Add("format tag", tag, With(file, 20, LittleEndian(quint16(tag))), WavFile::ErrorInvalidFormat);
    }
    for (const int count : {0, 3, 4, 6, 8, 9, 64, 65, 255, 256, 0x7FFF, 0x8000, 0xFFFF}) {
        table.Add("channels:", count, With(file, 22, LittleEndian(quint16(count))), WavFile::ErrorChannelCount);
    }
    for (const int bits : {0, 1, 4, 7, 8, 12, 15, 17, 20, 23, 25, 31, 33, 48, 64, 128, 255, 0x1000, 0xFFFF}) {
        table.Add("bits:", bits, With(file, 34, LittleEndian(quint16(bits))), WavFile::ErrorInvalidFormat);
    }
    const QByteArray floats = With(file, 20, LittleEndian(quint16(3)));
    for (const int bits : {16, 24}) {
        table.Add("bits of a float:", bits, With(floats, 34, LittleEndian(quint16(bits))), WavFile::Success);
    }
    for (const int bits : {0, 8, 12, 64}) {
        table.Add("bits of a float:", bits, With(floats, 34, LittleEndian(quint16(bits))),
                  WavFile::ErrorInvalidFormat);
    }
    const QByteArray surround = With(file, 22, LittleEndian(quint16(3)));
    table.Add("three channels of 8 bits", With(surround, 34, LittleEndian(quint16(8))),
              WavFile::ErrorInvalidFormat);
    table.Add("three channels of an unknown tag", With(surround, 20, LittleEndian(quint16(2))),
              WavFile::ErrorInvalidFormat);
}

void AddRates(Table& table)
{
    const QByteArray file = Stereo().Build();
    for (const quint32 rate : {1U, 2U, 100U, 384000U, 384001U, 768000U, 1860000001U, 0x7FFFFFFFU}) {
        // The header is not doubted; the player copies what it can open.
        table.Add("sample rate", rate, With(file, 24, LittleEndian(rate)), WavFile::Success).loaded =
            Audio::Readable;
    }
    for (const quint32 rate : {0U, 0x80000000U, 0xFFFFFFFFU}) {
        table.Add("sample rate", rate, With(file, 24, LittleEndian(rate)), WavFile::Success, Audio::Refused);
    }
    for (const quint32 rate : {0U, 1U, 0xFFFFFFFFU}) {
        table.Add("bytes a second:", rate, With(file, 28, LittleEndian(rate)), WavFile::Success).loaded =
            Audio::Readable;
    }
    for (const int size : {0, 1, 3, 0xFFFF}) {
        table.Add("block align", size, With(file, 32, LittleEndian(quint16(size))), WavFile::Success).loaded =
            Audio::Readable;
    }
}

void AddExtensions(Table& table)
{
    const auto file = [](quint16 statedSize) { return Extensible(Extension(PcmGuid(), statedSize)).Build(); };
    for (const int size : {0, 1, 2, 21, 23, 24}) {
        table.Add("an extension of size", size, file(quint16(size)), WavFile::ErrorInvalidFormat);
    }
    for (const int size : {1000, 0x7FFF, 0xFFFF}) {
        table.Add("an extension of size", size, file(quint16(size)), WavFile::ErrorReadFile);
    }
    for (const quint32 size : {0U, 16U, 18U, 39U}) {
        table.Add("an extensible chunk of size", size, With(file(22), 16, LittleEndian(size)), WavFile::Success);
    }
    for (const int bits : {0, 1, 15, 17, 24, 0xFFFF}) {
        table.Add("valid bits:", bits, Extensible(Extension(PcmGuid(), 22, quint16(bits))).Build(),
                  WavFile::Success);
    }
    table.Add("a mask of channels that do not exist", With(file(22), 40, QByteArray(4, '\xFF')), WavFile::Success);
    table.Add("a sub-format of zeros", Extensible(Extension(QByteArray(16, '\0'))).Build(),
              WavFile::ErrorInvalidFormat);
    table.Add("an unknown sub-format", Extensible(Extension(With(PcmGuid(), 0, "\x55"))).Build(),
              WavFile::ErrorInvalidFormat);
    table.Add("a sub-format that differs in its last byte",
              Extensible(Extension(With(PcmGuid(), 15, "\x70"))).Build(), WavFile::ErrorInvalidFormat);
    table.Add("floats of 16 bits, extensible", Extensible(Extension(FloatGuid())).Build(), WavFile::Success);
    WavBytes surround = Extensible(Extension(QByteArray(16, '\0')));
    surround.channels = 6;
    table.Add("six channels of an unknown sub-format", surround.Build(), WavFile::ErrorChannelCount);
}

void AddChunks(Table& table)
{
    const Chunk list{"LIST", "INFOISFT"};
    const Chunk odd{"note", "odd"};
    const Chunk endless{"JUNK", "short", 0xFFFFFFF0};
    const auto add = [&table](const char* row, auto change, Result open, Audio audio) -> File& {
        WavBytes file = Stereo();
        change(file);
        return table.Add(row, file.Build(), open, audio);
    };
    add(
        "a list before the format", [&](WavBytes& f) { f.beforeFmt = {list}; }, WavFile::Success, Audio::Readable);
    add(
        "a list before the data", [&](WavBytes& f) { f.beforeData = {list}; }, WavFile::Success, Audio::Readable);
    add(
        "a list behind the data", [&](WavBytes& f) { f.afterData = {list}; }, WavFile::Success, Audio::Readable);
    add(
        "many empty chunks",
        [&](WavBytes& f) {
            f.beforeFmt = QList<Chunk>(500, {"JUNK", ""});
        },
        WavFile::Success, Audio::Readable);
    add(
        "zeros before the data",
        [&](WavBytes& f) {
            f.beforeData = QList<Chunk>(20000, {QByteArray(4, '\0'), ""});
        },
        WavFile::Success, Audio::Readable);
    // Bytes that fill up odd chunks are not passed over.
    // FFmpeg does.
    add(
        "an odd chunk, not filled up", [&](WavBytes& f) { f.beforeFmt = {odd}; }, WavFile::Success, Audio::Refused)
        .loaded = Audio::Readable;
    add(
        "an odd chunk, filled up",
        [&](WavBytes& f) {
            f.beforeFmt = {{"note", QByteArray("odd\0", 4), 3}};
        },
        WavFile::ErrorReadFile, Audio::Readable);
    add(
        "an odd chunk before the data, filled up",
        [&](WavBytes& f) {
            f.beforeData = {{"note", QByteArray("odd\0", 4), 3}};
        },
        WavFile::ErrorReadFile, Audio::Readable);
    add(
        "an endless chunk before the format", [&](WavBytes& f) { f.beforeFmt = {endless}; },
        WavFile::ErrorReadFile, Audio::Refused);
    add(
        "an endless chunk before the data", [&](WavBytes& f) { f.beforeData = {endless}; }, WavFile::ErrorReadFile,
        Audio::Refused);
    add(
        "an endless chunk behind the data", [&](WavBytes& f) { f.afterData = {endless}; }, WavFile::Success,
        Audio::Readable);
    add(
        "two pieces of data",
        [&](WavBytes& f) {
            f.afterData = {{"data", SomeAudio()}};
        },
        WavFile::Success, Audio::Readable);
    add(
        "two formats",
        [&](WavBytes& f) {
            f.beforeData = {{"fmt ", WavBytes{.channels = 6}.FmtBody()}};
        },
        WavFile::Success, Audio::Readable);
    const QByteArray fmt = Chunk{"fmt ", Stereo().FmtBody()}.Build();
    const QByteArray data = Chunk{"data", SomeAudio()}.Build();
    const QByteArray start = "RIFF" + LittleEndian(quint32(1000)) + "WAVE";
    table.Add("data before the format", start + data + fmt, WavFile::ErrorReadFile);
    table.Add("data without a format", start + data, WavFile::Success, Audio::Refused);
    table.Add("a format without data", start + fmt, WavFile::ErrorReadFile, Audio::Refused);
    table.Add("nothing but chunk names", start + "fmt fmt fmt fmt fmt fmt fmt fmt ", WavFile::ErrorInvalidFormat,
              Audio::Refused);
}

QByteArray SizeChunk(quint64 dataSize, quint32 statedSize = 28)
{
    return "ds64" + LittleEndian(statedSize) + LittleEndian(quint64(0)) + LittleEndian(dataSize) +
           LittleEndian(quint64(0)) + LittleEndian(quint32(0));
}

/** A header of 64-bit sizes is refused unless such files are allowed. */
void AddLargeFiles(Table& table)
{
    const auto add = [&table](const char* row, const QByteArray& sizeChunk, quint32 dataSize, Result openLarge) {
        const QByteArray bytes = "RF64" + LittleEndian(quint32(0xFFFFFFFF)) + "WAVE" + sizeChunk +
                                 Chunk{"fmt ", Stereo().FmtBody()}.Build() +
                                 Chunk{"data", SomeAudio(), dataSize}.Build();
        table.Add(row, bytes, WavFile::ErrorInvalidFormat).openLarge = openLarge;
    };
    constexpr quint32 elsewhere = 0xFFFFFFFF;
    constexpr auto most = quint64(std::numeric_limits<qint64>::max());
    add("RF64", SizeChunk(400), elsewhere, WavFile::Success);
    add("RF64 that states its size twice", SizeChunk(8), 400, WavFile::Success);
    add("RF64 of size 0", SizeChunk(0), elsewhere, WavFile::Success);
    add("RF64 of the greatest size", SizeChunk(most), elsewhere, WavFile::Success);
    add("RF64 of a negative size", SizeChunk(most + 1), elsewhere, WavFile::ErrorInvalidFormat);
    add("RF64 of size -1", SizeChunk(~quint64(0)), elsewhere, WavFile::ErrorInvalidFormat);
    add("RF64 without sizes", QByteArray(), elsewhere, WavFile::ErrorInvalidFormat);
    add("RF64 with a short chunk of sizes", SizeChunk(400, 27), elsewhere, WavFile::ErrorInvalidFormat);
    add("RF64 with an endless chunk of sizes", SizeChunk(400, 0xFFFFFFFF), elsewhere, WavFile::ErrorReadFile);
    add("RF64 with a table of chunks", SizeChunk(400, 40) + QByteArray(12, '\0'), elsewhere, WavFile::Success);
    table
        .Add("RF64 that ends with its name", "RF64\xFF\xFF\xFF\xFFWAVE", WavFile::ErrorInvalidFormat,
             Audio::Refused)
        .openLarge = WavFile::ErrorReadFile;
}

void AddSamples(Table& table)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float most = std::numeric_limits<float>::max();
    const auto add = [&table](const char* row, float value) {
        QByteArray samples;
        for (int i = 0; i < 50; ++i) {
            samples += PackF32({value, -value});
        }
        const WavBytes file{.formatTag = 3, .sampleRate = 8000, .bits = 32, .data = samples};
        table.Add(row, file.Build(), WavFile::Success, Audio::Readable);
    };
    add("floats that are infinite", infinity);
    add("floats that are no numbers", nan);
    add("the greatest floats", most);
    add("the least floats", std::numeric_limits<float>::denorm_min());
}

QByteArray Noise(qsizetype size)
{
    QByteArray bytes;
    quint32 state = 1;
    for (qsizetype i = 0; i < size; ++i) {
        state = state * 1664525U + 1013904223U;
        bytes += static_cast<char>(state >> 24);
    }
    return bytes;
}

/** A box of an MP4 file. */
QByteArray Box(const char* name, const QByteArray& body)
{
    QByteArray size(4, Qt::Uninitialized);
    qToBigEndian(quint32(8 + body.size()), size.data());
    return size + name + body;
}

/** FFmpeg reserves memory for all entries of such a table. */
void AddStatedTables(Table& table)
{
    for (const char* name : {"stts", "ctts", "stsc", "stsz", "stco", "co64", "stss"}) {
        const QByteArray entries = QByteArray::fromHex("00000000"
                                                       "01000001"
                                                       "00000001"
                                                       "00000001"
                                                       "00000001");
        const QByteArray tables = Box("minf", Box("stbl", Box(name, entries)));
        const QByteArray file = Box("ftyp", Raw("M4A \0\0\0\0isom")) +
                                Box("moov", Box("trak", Box("mdia", tables))) + Box("mdat", SomeAudio());
        table
            .Add("M4A with a table of 16 million entries: " + QByteArray(name), file, WavFile::ErrorInvalidFormat,
                 Audio::Refused)
            .name = u"file.m4a"_s;
    }
}

/** What is no audio at all, under the names of audio files. */
void AddOtherFiles(Table& table)
{
    const QList<std::pair<QByteArray, QByteArray>> others{
        {"empty", ""},
        {"one byte", "R"},
        {"text", QByteArray("This is a text, and no audio.\n").repeated(20)},
        {"web page", "<!DOCTYPE html><html><body>no audio here</body></html>\n"},
        {"script", "#!/bin/sh\necho no audio here\nexit 1\n"},
        {"picture", QByteArray::fromHex("89504e470d0a1a0a0000000d49484452") + QByteArray(40, '\1')},
        {"document", "%PDF-1.7\n1 0 obj\n<< /Type /Catalog >>\nendobj\ntrailer\n%%EOF\n"},
        {"archive", QByteArray::fromHex("504b0304140000000800") + QByteArray(40, '\1')},
        {"program", QByteArray::fromHex("7f454c4602010100") + QByteArray(60, '\0')},
        {"zeros", QByteArray(1000, '\0')},
        {"ID3 tag alone", QByteArray::fromHex("49443303000000000010") + QByteArray(16, '\0')},
        {"beginning of FLAC", QByteArray::fromHex("664c614380000022") + QByteArray(10, '\0')},
        {"beginning of Ogg", "OggS" + QByteArray(23, '\0')},
        {"beginning of M4A", QByteArray::fromHex("0000001866747970") + Raw("M4A \0\0\0\0isomM4A ")},
        {"beginning of AIFF", Raw("FORM\0\0\1\0AIFFCOMM")},
        {"beginning of AU", Raw(".snd\0\0\0\x18\0\0\0\0")},
        {"play list", "#EXTM3U\n#EXTINF:1,One\nfile:///etc/hostname\n"},
        {"list of parts", "ffconcat version 1.0\nfile '/etc/hostname'\n"},
        {"description of a session", "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=x\nm=audio 5004 RTP/AVP 0\n"}};
    for (const auto& [row, bytes] : others) {
        const Result open = bytes.size() < 12 ? WavFile::ErrorReadFile : WavFile::ErrorInvalidFormat;
        for (const char* name : {"file.wav", "file.mp3", "file.ogg"}) {
            table.Add(row + ", named " + name, bytes, open, Audio::Refused).name = QString::fromLatin1(name);
        }
    }
    for (const int size : {11, 12, 100, 5000}) {
        for (const char* name : {"file.wav", "file.mp3", "file.flac", "file.m4a"}) {
            const Result open = size < 12 ? WavFile::ErrorReadFile : WavFile::ErrorInvalidFormat;
            table.Add("noise, named " + QByteArray(name) + ", bytes:", size, Noise(size), open).name =
                QString::fromLatin1(name);
        }
    }
}

QList<File> Make()
{
    Table table;
    for (const auto add :
         {&AddSoundFiles, &AddCutOffs, &AddExtensibleCutOffs, &AddNames, &AddSizes, &AddFormats, &AddRates,
          &AddExtensions, &AddChunks, &AddLargeFiles, &AddStatedTables, &AddSamples, &AddOtherFiles}) {
        add(table);
    }
    return table.Take();
}

} // namespace

const QList<File>& All()
{
    static const QList<File> files = Make();
    return files;
}

void AddRows()
{
    QTest::addColumn<File>("file");
    for (const File& file : All()) {
        QTest::newRow(file.row.constData()) << file;
    }
}

} // namespace BrokenFiles
