#include "engine/wav/SnippetExport.h"
#include "tests/support/TemporaryFiles.h"
#include "tests/support/TestAudio.h"

#include <QtTest/QtTest>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

using namespace Qt::Literals::StringLiterals;
using namespace WavTest;

/** Tasks that run on the same object at once give what each of them gives alone. */
class TestSimultaneousExports : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void twoSnippetsGiveTheSameBytesAsEachAlone();
    void aSnippetAndAChannelGiveTheSameBytesAsEachAlone();
    void anExportBesideAnExtractionGivesTheSameBytesAsAlone();
    void aConversionBesideOthersGivesTheSameBytesAsAlone();
    void abortingOneLeavesTheOtherAlone();
    void eachSnippetKnowsWhetherItHasItsName();

private:
    using Task = std::function<void()>;

    /** Runs the tasks at once, each on its own thread; none goes on until all of them have begun. */
    void RunTogether(const std::vector<Task>& tasks);

    QString Path(const QString& name) const { return m_files.Path(name); }
    QByteArray Read(const QString& name) const { return TemporaryFiles::Read(m_files.Path(name)); }
    Task Snippet(const QString& name, double start, double end)
    {
        return [=, this] { m_results += m_file->CreateSnippet(Path(name), start, end); };
    }
    Task Channel(const QString& name)
    {
        return [=, this] { m_results += m_file->FilterChannel(Path(name)); };
    }

    TemporaryFiles m_files;
    TestAudio m_audio{.channels = 2, .rate = 32768, .frames = 150000};
    std::unique_ptr<WavFile> m_file;
    /** The sum of all result codes, of which none but Success is 0 and none is positive. */
    std::atomic<int> m_results = 0;
};

void TestSimultaneousExports::init()
{
    m_file = std::make_unique<WavFile>();
    QCOMPARE(m_file->Open(m_files.Write(u"source.wav"_s, m_audio.File())), WavFile::Success);
    m_file->SetSelectedChannel(WavFile::ChannelRight);
    m_results = 0;
    for (const char* name : {"first.wav", "second.wav", "third.wav"}) {
        QFile::remove(Path(QString::fromLatin1(name)));
    }
}

void TestSimultaneousExports::RunTogether(const std::vector<Task>& tasks)
{
    std::atomic<std::size_t> begun = 0;
    std::vector<std::thread> threads;
    for (const Task& task : tasks) {
        threads.emplace_back([&begun, &task, count = tasks.size()] {
            ++begun;
            while (begun < count) {
                std::this_thread::yield();
            }
            task();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

void TestSimultaneousExports::twoSnippetsGiveTheSameBytesAsEachAlone()
{
    for (int round = 0; round < 5; ++round) {
        RunTogether({Snippet(u"first.wav"_s, 0, 4), Snippet(u"second.wav"_s, 0.125, 4.125)});
        QCOMPARE(m_results.load(), 0);
        // 131072 frames in blocks of 200.
        QVERIFY(Read(u"first.wav"_s) ==
                m_audio.Exported(m_audio.ExportedData(0, 131200, WavFile::ChannelRight), 262144));
        QVERIFY(Read(u"second.wav"_s) ==
                m_audio.Exported(m_audio.ExportedData(4096, 135296, WavFile::ChannelRight), 262144));
    }
}

void TestSimultaneousExports::aSnippetAndAChannelGiveTheSameBytesAsEachAlone()
{
    RunTogether({Snippet(u"first.wav"_s, 0.125, 4.125), Channel(u"second.wav"_s)});
    QCOMPARE(m_results.load(), 0);
    QVERIFY(Read(u"first.wav"_s) ==
            m_audio.Exported(m_audio.ExportedData(4096, 135296, WavFile::ChannelRight), 262144));
    QVERIFY(Read(u"second.wav"_s) ==
            m_audio.Exported(m_audio.ExportedData(0, 150000, WavFile::ChannelRight), 300000));
}

void TestSimultaneousExports::anExportBesideAnExtractionGivesTheSameBytesAsAlone()
{
    m_file->ReadData(0, 4, 7);
    const QList<float> alone = m_file->GetSamples();
    QCOMPARE_GT(alone.size(), 18000);
    RunTogether(
        {Snippet(u"first.wav"_s, 0.125, 4.125), [this] { m_file->ReadData(0, 4, 7); }, Channel(u"second.wav"_s)});
    QCOMPARE(m_results.load(), 0);
    QCOMPARE(m_file->GetSamples(), alone);
    QVERIFY(Read(u"first.wav"_s) ==
            m_audio.Exported(m_audio.ExportedData(4096, 135296, WavFile::ChannelRight), 262144));
    QVERIFY(Read(u"second.wav"_s) ==
            m_audio.Exported(m_audio.ExportedData(0, 150000, WavFile::ChannelRight), 300000));
}

void TestSimultaneousExports::aConversionBesideOthersGivesTheSameBytesAsAlone()
{
    QAudioFormat target;
    target.setSampleRate(44100);
    target.setChannelCount(1);
    target.setSampleFormat(QAudioFormat::Float);
    const auto convert = [&](const QString& name) { m_results -= m_file->Convert(target, Path(name)) ? 0 : 1; };
    convert(u"first.wav"_s);
    const QByteArray alone = Read(u"first.wav"_s);
    QCOMPARE_GT(alone.size(), 800000);
    RunTogether({[&] { convert(u"first.wav"_s); }, [&] { convert(u"second.wav"_s); },
                 Snippet(u"third.wav"_s, 0.125, 4.125), [this] { m_file->ReadData(0, 4, 1); }});
    QCOMPARE(m_results.load(), 0);
    QVERIFY(Read(u"first.wav"_s) == alone);
    QVERIFY(Read(u"second.wav"_s) == alone);
    QVERIFY(Read(u"third.wav"_s) ==
            m_audio.Exported(m_audio.ExportedData(4096, 135296, WavFile::ChannelRight), 262144));
}

void TestSimultaneousExports::abortingOneLeavesTheOtherAlone()
{
    RunTogether({Snippet(u"first.wav"_s, 0, 4), Channel(u"second.wav"_s), [this] { m_file->AbortWrite(); }});
    QCOMPARE(m_results.load(), 0);
    const QByteArray whole = m_audio.Exported(m_audio.ExportedData(0, 131200, WavFile::ChannelRight), 262144);
    const QByteArray first = Read(u"first.wav"_s);
    QVERIFY(first == whole.left(first.size()));
    QCOMPARE((first.size() - 44) % 400, 0);
    QVERIFY(Read(u"second.wav"_s) ==
            m_audio.Exported(m_audio.ExportedData(0, 150000, WavFile::ChannelRight), 300000));
}

/** Both run on one thread here: one begins and ends while the other is at its first block, and aborts it then. */
void TestSimultaneousExports::eachSnippetKnowsWhetherItHasItsName()
{
    using vantoraudio::AudioEngine::SnippetExport;
    using vantoraudio::AudioEngine::SnippetResult;
    m_file->SetKeepParts(false);
    SnippetResult inner;
    connect(
        m_file.get(), &WavFile::ProgressChanged, this,
        [&] {
            inner = SnippetExport::Write(*m_file, Path(u"second.wav"_s), 0, 4);
            m_file->AbortWrite();
        },
        Qt::SingleShotConnection);
    const SnippetResult outer = SnippetExport::Write(*m_file, Path(u"first.wav"_s), 0, 4);
    QCOMPARE(inner.code, WavFile::Success);
    QVERIFY(inner.hasName);
    QVERIFY(QFile::exists(Path(u"second.wav"_s)));
    QCOMPARE(outer.code, WavFile::Success);
    QVERIFY(!outer.hasName);
    QVERIFY(!QFile::exists(Path(u"first.wav"_s)));
}

QTEST_GUILESS_MAIN(TestSimultaneousExports)
#include "tst_simultaneousexports.moc"
