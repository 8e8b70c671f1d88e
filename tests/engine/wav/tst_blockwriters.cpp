#include "engine/samples/SampleEncoding.h"
#include "tests/support/AudioFormat.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/WavBytes.h"
#include "tests/support/WavFileTestAccess.h"

#include <QtCore/QRegularExpression>
#include <QtTest/QtTest>

#include <cstring>
#include <limits>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;

namespace {

using Access = WavFileTestAccess;

constexpr int anyOther[] = {WavFile::ChannelNone, WavFile::ChannelMono, WavFile::ChannelLeftRight, 99};

constexpr qint64 highestS32 = std::numeric_limits<qint32>::max();
constexpr qint64 lowestS32 = std::numeric_limits<qint32>::min();

float FromBits(quint32 bits)
{
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

} // namespace

class TestBlockWriters : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheChannel_data();
    void writesTheChannel();
    void copiesAMonoBlockWhateverTheChannel_data();
    void copiesAMonoBlockWhateverTheChannel();
    void keepsTheBitsOfAFloatThatIsNotANumber();
    void dropsAnIncompleteFrame_data();
    void dropsAnIncompleteFrame();
    void writesNothingForAnEmptyBlock();
    void appendsBehindWhatWasWritten();
    void survivesAClosedDestination();

private:
    QByteArray Written(Access::Writer writer, const QByteArray& block, const QAudioFormat& format, int channel);

    TemporaryFiles m_files;
};

QByteArray TestBlockWriters::Written(Access::Writer writer, const QByteArray& block, const QAudioFormat& format,
                                     int channel)
{
    WavFile owner;
    WavFile destination;
    destination.setFileName(m_files.Path(u"written"_s));
    if (!destination.open(QIODevice::WriteOnly)) {
        return "not opened";
    }
    // Bytes that do not start at an address of their type's alignment.
    const QByteArray shifted = 'x' + block;
    (owner.*writer)(QByteArray::fromRawData(shifted.constData() + 1, block.size()), destination, format,
                    WavFile::ChannelFormat(channel));
    destination.close();
    return TemporaryFiles::Read(destination.fileName());
}

void TestBlockWriters::writesTheChannel_data()
{
    QTest::addColumn<Access::Writer>("writer");
    QTest::addColumn<QAudioFormat>("format");
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<QByteArray>("left");
    QTest::addColumn<QByteArray>("right");
    QTest::addColumn<QByteArray>("average");

    const QAudioFormat s16 = Format(QAudioFormat::Int16, 2);
    const auto addS16 = [&](const char* name, int left, int right, int average) {
        QTest::newRow(name) << Access::writeS16Block << s16 << PackS16({left, right}) << PackS16({left})
                            << PackS16({right}) << PackS16({average});
    };
    addS16("16 bits: 1000 and -1000 meet at 0", 1000, -1000, 0);
    addS16("16 bits: -3 and -3 give -2", -3, -3, -2);
    addS16("16 bits: 1 and 1 give 0", 1, 1, 0);
    addS16("16 bits: 32767 and 32767 give 32766", 32767, 32767, 32766);
    addS16("16 bits: -32768 and -32768 stay", -32768, -32768, -32768);
    addS16("16 bits: -32768 and 32767 give -1", -32768, 32767, -1);
    QTest::newRow("16 bits: several frames")
        << Access::writeS16Block << s16 << PackS16({1, 2, 30, 40, -500, -601, 7000, -9000})
        << PackS16({1, 30, -500, 7000}) << PackS16({2, 40, -601, -9000}) << PackS16({1, 35, -550, -1000});

    const auto addS32 = [&](const char* name, qint64 left, qint64 right, qint64 average) {
        QTest::newRow(name) << Access::writeS32Block << Format(QAudioFormat::Int32, 2) << PackS32({left, right})
                            << PackS32({left}) << PackS32({right}) << PackS32({average});
    };
    addS32("32 bits: -3 and -3 give -2", -3, -3, -2);
    addS32("32 bits: the highest twice", highestS32, highestS32, highestS32 - 1);
    addS32("32 bits: the lowest twice", lowestS32, lowestS32, lowestS32);
    addS32("32 bits: lowest and highest", lowestS32, highestS32, -1);

    const auto addF32 = [&](const char* name, float left, float right, float average) {
        QTest::newRow(name) << Access::writeF32Block << Format(QAudioFormat::Float, 2) << PackF32({left, right})
                            << PackF32({left}) << PackF32({right}) << PackF32({average});
    };
    const float largest = std::numeric_limits<float>::max();
    addF32("float: 1 and 0 give a half", 1.0F, 0.0F, 0.5F);
    addF32("float: beyond 1 is not clipped", 3.0F, 2.0F, 2.5F);
    addF32("float: the largest twice does not overflow", largest, largest, largest);

    const auto addS24 = [&](const char* name, const QByteArray& block, float left, float right, float average) {
        QTest::newRow(name) << Access::convertS24BlockToF32Block << Format(QAudioFormat::Int32, 2) << block
                            << PackF32({left}) << PackF32({right}) << PackF32({average});
    };
    const float lowest = -1.0000001192092896F;
    addS24("24 bits: the highest and zero", QByteArray::fromHex("ffff7f000000"), 1.0F, 0.0F, 0.5F);
    addS24("24 bits: the lowest and the highest", QByteArray::fromHex("000080ffff7f"), lowest, 1.0F,
           -5.9604644775390625e-08F);
    addS24("24 bits: minus one step", QByteArray::fromHex("ffffff000000"), -1.1920930376163597e-07F, 0.0F,
           -5.9604651880817983e-08F);
}

void TestBlockWriters::writesTheChannel()
{
    QFETCH(const Access::Writer, writer);
    QFETCH(const QAudioFormat, format);
    QFETCH(const QByteArray, block);
    QTEST(Written(writer, block, format, WavFile::ChannelLeft), "left");
    QTEST(Written(writer, block, format, WavFile::ChannelRight), "right");
    for (const int channel : anyOther) {
        QTEST(Written(writer, block, format, channel), "average");
    }
}

void TestBlockWriters::copiesAMonoBlockWhateverTheChannel_data()
{
    QTest::addColumn<Access::Writer>("writer");
    QTest::addColumn<QAudioFormat>("format");
    QTest::addColumn<QByteArray>("block");
    QTest::addColumn<QByteArray>("written");

    const QByteArray s16 = PackS16({1, -2, 32767, -32768, 5});
    QTest::newRow("16 bits") << Access::writeS16Block << Format(QAudioFormat::Int16, 1) << s16 << s16;
    const QByteArray s32 = PackS32({1, -2, highestS32, lowestS32, 5});
    QTest::newRow("32 bits") << Access::writeS32Block << Format(QAudioFormat::Int32, 1) << s32 << s32;
    const QByteArray f32 = PackF32({0.25F, -1.5F, 7.0F});
    QTest::newRow("float") << Access::writeF32Block << Format(QAudioFormat::Float, 1) << f32 << f32;
    QTest::newRow("24 bits") << Access::convertS24BlockToF32Block << Format(QAudioFormat::Int32, 1)
                             << QByteArray::fromHex("ffff7f000080000000")
                             << PackF32({1.0F, -1.0000001192092896F, 0.0F});
}

void TestBlockWriters::copiesAMonoBlockWhateverTheChannel()
{
    QFETCH(const Access::Writer, writer);
    QFETCH(const QAudioFormat, format);
    QFETCH(const QByteArray, block);
    for (int channel = WavFile::ChannelNone; channel <= WavFile::ChannelLeftRight; ++channel) {
        QTEST(Written(writer, block, format, channel), "written");
    }
}

void TestBlockWriters::keepsTheBitsOfAFloatThatIsNotANumber()
{
    const QByteArray odd = LittleEndian(quint32(0x7FA12345)) + LittleEndian(quint32(0x80000001));
    QCOMPARE(Written(Access::writeF32Block, odd, Format(QAudioFormat::Float, 1), 0), odd);
    QCOMPARE(Written(Access::writeF32Block, odd, Format(QAudioFormat::Float, 2), WavFile::ChannelLeft),
             odd.left(4));
    QCOMPARE(Written(Access::writeF32Block, odd, Format(QAudioFormat::Float, 2), WavFile::ChannelRight),
             odd.mid(4));
    const QByteArray mixed = Written(Access::writeF32Block, odd, Format(QAudioFormat::Float, 2), 0);
    QVERIFY(qIsNaN(FromBits(qFromLittleEndian<quint32>(mixed.constData()))));
}

void TestBlockWriters::dropsAnIncompleteFrame_data()
{
    QTest::addColumn<Access::Writer>("writer");
    QTest::addColumn<QAudioFormat>("format");
    QTest::addColumn<int>("frameSize");
    QTest::addColumn<int>("sampleSize");
    for (const int channels : {1, 2}) {
        QTest::addRow("16 bits, %d channels", channels)
            << Access::writeS16Block << Format(QAudioFormat::Int16, channels) << 2 * channels << 2;
        QTest::addRow("24 bits, %d channels", channels)
            << Access::convertS24BlockToF32Block << Format(QAudioFormat::Int32, channels) << 3 * channels << 4;
        QTest::addRow("32 bits, %d channels", channels)
            << Access::writeS32Block << Format(QAudioFormat::Int32, channels) << 4 * channels << 4;
        QTest::addRow("float, %d channels", channels)
            << Access::writeF32Block << Format(QAudioFormat::Float, channels) << 4 * channels << 4;
    }
}

void TestBlockWriters::dropsAnIncompleteFrame()
{
    QFETCH(const Access::Writer, writer);
    QFETCH(const QAudioFormat, format);
    QFETCH(const int, frameSize);
    QFETCH(const int, sampleSize);
    const QByteArray twoFrames(2 * frameSize, 'a');
    const QByteArray written = Written(writer, twoFrames, format, WavFile::ChannelRight);
    QCOMPARE(written.size(), 2 * sampleSize);
    for (int extra = 1; extra < frameSize; ++extra) {
        QCOMPARE(Written(writer, twoFrames + QByteArray(extra, 'b'), format, WavFile::ChannelRight), written);
    }
}

void TestBlockWriters::writesNothingForAnEmptyBlock()
{
    for (const int channels : {0, 1, 2}) {
        QCOMPARE(Written(Access::writeS16Block, {}, Format(QAudioFormat::Int16, channels), 0), QByteArray());
        QCOMPARE(Written(Access::convertS24BlockToF32Block, {}, Format(QAudioFormat::Int32, channels), 0),
                 QByteArray());
    }
}

void TestBlockWriters::appendsBehindWhatWasWritten()
{
    WavFile owner;
    WavFile destination;
    destination.setFileName(m_files.Path(u"appended"_s));
    QVERIFY(destination.open(QIODevice::WriteOnly));
    const QAudioFormat format = Format(QAudioFormat::Int16, 1);
    QCOMPARE(destination.write("header"), 6);
    (owner.*Access::writeS16Block)(PackS16({1, 2}), destination, format, WavFile::ChannelNone);
    (owner.*Access::writeS16Block)(PackS16({3}), destination, format, WavFile::ChannelNone);
    destination.close();
    QCOMPARE(TemporaryFiles::Read(destination.fileName()), "header" + PackS16({1, 2, 3}));
}

void TestBlockWriters::survivesAClosedDestination()
{
    WavFile owner;
    WavFile destination;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"device not open$"_s));
    (owner.*Access::writeS16Block)(PackS16({1, 2}), destination, Format(QAudioFormat::Int16, 1),
                                   WavFile::ChannelNone);
    QVERIFY(!destination.isOpen());
}

QTEST_GUILESS_MAIN(TestBlockWriters)
#include "tst_blockwriters.moc"
