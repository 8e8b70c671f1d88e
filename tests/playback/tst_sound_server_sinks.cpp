#include "playback/SoundServerSinks.h"
#include "tests/support/SoundServer.h"

#include <QtCore/QCoreApplication>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using vantoraudio::AudioEngine::SoundServerSinks;
using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int patience = 30000;

using Ids = std::optional<QSet<QByteArray>>;

} // namespace

class SoundServerSinksTest : public QObject
{
    Q_OBJECT

public:
    explicit SoundServerSinksTest(SoundServer& server) : m_server(server) {}

private Q_SLOTS:
    void followsWhatComesAndGoes()
    {
        const SoundServerSinks& sinks = SoundServerSinks::Shared();
        QSignalSpy changes(&sinks, &SoundServerSinks::Changed);
        QTRY_COMPARE_WITH_TIMEOUT(sinks.Present(), Ids({"one"}), patience);
        QVERIFY(m_server.AddSink(u"two"_s));
        QTRY_COMPARE_WITH_TIMEOUT(sinks.Present(), Ids({"one", "two"}), patience);
        changes.clear();
        QVERIFY(m_server.RemoveSink(u"one"_s));
        QVERIFY(!changes.isEmpty() || changes.wait(patience));
        QCOMPARE(sinks.Present(), Ids({"two"}));
        QVERIFY(sinks.Knows("one"));
        QVERIFY(!sinks.Knows("three"));
        QVERIFY(m_server.RemoveSink(u"two"_s));
        QTRY_COMPARE_WITH_TIMEOUT(sinks.Present(), Ids(QSet<QByteArray>()), patience);
    }

    void knowsNothingWhileTheServerIsAwayAndFollowsTheNextOne()
    {
        const SoundServerSinks& sinks = SoundServerSinks::Shared();
        QVERIFY(m_server.AddSink(u"one"_s));
        QTRY_COMPARE_WITH_TIMEOUT(sinks.Present(), Ids({"one"}), patience);
        m_server.Kill();
        QTRY_COMPARE_WITH_TIMEOUT(sinks.Present(), Ids(), patience);
        QVERIFY(sinks.Knows("one"));
        m_server.Start();
        QVERIFY(m_server.AddSink(u"two"_s));
        QTRY_COMPARE_WITH_TIMEOUT(sinks.Present(), Ids({"two"}), patience);
    }

private:
    SoundServer& m_server;
};

int main(int argc, char** argv)
{
    SoundServer server({u"one"_s});
    QCoreApplication application(argc, argv);
    SoundServerSinksTest test(server);
    return QTest::qExec(&test, argc, argv);
}

#include "tst_sound_server_sinks.moc"
