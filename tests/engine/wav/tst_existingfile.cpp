#include "tests/support/TemporaryFiles.h"
#include "tests/support/TestAudio.h"

#include <vantorAudioEngine/WavFile.h>

#include <QtTest/QTest>

#include <functional>
#include <utility>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;
using ExistingFile = WavFile::ExistingFile;

namespace {

const TestAudio stereo{.channels = 2, .rate = 8000, .frames = 8000};

/** Does something in the moment in which a task first reads it. */
class WatchedFile : public WavFile
{
public:
    std::function<void()> uponReading;

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        if (const auto act = std::exchange(uponReading, nullptr)) {
            act();
        }
        return WavFile::readData(data, maxSize);
    }
};

using Task = std::function<bool(WavFile&, const QString&)>;

void AddTasks()
{
    QTest::addColumn<Task>("write");
    QTest::addRow("snippet") << Task(
        [](WavFile& file, const QString& out) { return file.CreateSnippet(out, 0.0, 1.0) == WavFile::Success; });
    QTest::addRow("channel") << Task(
        [](WavFile& file, const QString& out) { return file.FilterChannel(out) == WavFile::Success; });
    QTest::addRow("conversion") << Task([](WavFile& file, const QString& out) {
        QAudioFormat format;
        format.setSampleFormat(QAudioFormat::Int16);
        format.setSampleRate(8000);
        format.setChannelCount(1);
        return file.Convert(format, out);
    });
}

class Setup
{
public:
    explicit Setup(ExistingFile existing)
    {
        file.SetSelectedChannel(WavFile::ChannelRight);
        file.SetExistingFile(existing);
        QCOMPARE(file.Open(files.Write(u"source.wav"_s, stereo.File())), WavFile::Success);
    }

    QByteArray Result() const { return TemporaryFiles::Read(out); }

    const TemporaryFiles files;
    WatchedFile file;
    const QString out = files.Path(u"out.wav"_s);
};

} // namespace

/** What becomes of a file that has the name of the one that a task writes. */
class TestExistingFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void replacesOnlyAsEachTaskDoesAtFirst_data() { AddTasks(); }
    void replacesOnlyAsEachTaskDoesAtFirst();
    void replacesItWhereItIsAskedTo_data() { AddTasks(); }
    void replacesItWhereItIsAskedTo();
    void refusesIt_data() { AddTasks(); }
    void refusesIt();
    void refusesOneThatComesMeanwhile_data() { AddTasks(); }
    void refusesOneThatComesMeanwhile();
    void refusesNoFreeName_data() { AddTasks(); }
    void refusesNoFreeName();
    void replacesNoSource_data() { AddTasks(); }
    void replacesNoSource();
};

void TestExistingFile::replacesOnlyAsEachTaskDoesAtFirst()
{
    QFETCH(const Task, write);
    Setup setup(WavFile().GetExistingFile());
    setup.files.Write(u"out.wav"_s, "older");
    QVERIFY(write(setup.file, setup.out));
    const bool isChannel = QLatin1StringView(QTest::currentDataTag()) == "channel"_L1;
    QCOMPARE(setup.Result() == "older", isChannel);
}

void TestExistingFile::replacesItWhereItIsAskedTo()
{
    QFETCH(const Task, write);
    Setup free(ExistingFile::Replace);
    QVERIFY(write(free.file, free.out));
    Setup taken(ExistingFile::Replace);
    QCOMPARE(taken.file.GetExistingFile(), ExistingFile::Replace);
    taken.files.Write(u"out.wav"_s, "older");
    QVERIFY(write(taken.file, taken.out));
    QVERIFY(taken.Result().size() > 8000);
    QCOMPARE(taken.Result(), free.Result());
    QCOMPARE(taken.files.Names(), QStringList({u"out.wav"_s, u"source.wav"_s}));
}

void TestExistingFile::refusesIt()
{
    QFETCH(const Task, write);
    Setup setup(ExistingFile::Refuse);
    setup.files.Write(u"out.wav"_s, "older");
    bool isRead = false;
    setup.file.uponReading = [&] { isRead = true; };
    QVERIFY(!write(setup.file, setup.out));
    QVERIFY2(!isRead, "It worked in vain");
    QCOMPARE(setup.Result(), "older");
}

void TestExistingFile::refusesOneThatComesMeanwhile()
{
    QFETCH(const Task, write);
    Setup setup(ExistingFile::Refuse);
    setup.file.uponReading = [&] { setup.files.Write(u"out.wav"_s, "another"); };
    QVERIFY(!write(setup.file, setup.out));
    QCOMPARE(setup.Result(), "another");
    QCOMPARE(setup.files.Names(), QStringList({u"out.wav"_s, u"source.wav"_s}));
}

void TestExistingFile::refusesNoFreeName()
{
    QFETCH(const Task, write);
    Setup customary(ExistingFile::Customary);
    QVERIFY(write(customary.file, customary.out));
    Setup refusing(ExistingFile::Refuse);
    QVERIFY(write(refusing.file, refusing.out));
    QCOMPARE(refusing.Result(), customary.Result());
}

/** But a conversion in place does, which is asked for by that name. */
void TestExistingFile::replacesNoSource()
{
    QFETCH(const Task, write);
    Setup setup(ExistingFile::Replace);
    const QString source = setup.files.Path(u"source.wav"_s);
    const bool isConversion = QLatin1StringView(QTest::currentDataTag()) == "conversion"_L1;
    QCOMPARE(write(setup.file, source), isConversion);
    QCOMPARE(TemporaryFiles::Read(source) == stereo.File(), !isConversion);
}

QTEST_GUILESS_MAIN(TestExistingFile)
#include "tst_existingfile.moc"
