#include "engine/PendingFile.h"
#include "tests/support/TemporaryFiles.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtTest/QTest>

#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::AudioEngine::PendingFile;

namespace {

constexpr uid_t nobody = 65534;

/** The administrator may write everywhere; for this object's life the test is somebody else. */
class OrdinaryUser
{
public:
    OrdinaryUser() : m_former(geteuid()) { m_isOrdinary = m_former != 0 || seteuid(nobody) == 0; }
    ~OrdinaryUser() { static_cast<void>(seteuid(m_former)); }
    Q_DISABLE_COPY_MOVE(OrdinaryUser)

    bool IsOrdinary() const { return m_isOrdinary; }

private:
    uid_t m_former;
    bool m_isOrdinary;
};

bool GiveToOrdinaryUser(const QString& path)
{
    return geteuid() != 0 || chown(qPrintable(path), nobody, nobody) == 0;
}

QStringList AllIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

class TestPendingFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void takesItsNameOnlyWhenCommitted()
    {
        const TemporaryFiles files;
        const QString path = files.Path(u"out"_s);
        PendingFile pending(path);
        QVERIFY(pending.Open());
        QCOMPARE(pending.File().write("new"), 3);
        QVERIFY(!QFile::exists(path));
        QVERIFY(pending.Commit());
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("new"));
        QCOMPARE(AllIn(QFileInfo(path).path()), QStringList{u"out"_s});
    }

    void dropsWhatWasNotCommitted()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        {
            PendingFile pending(path);
            QVERIFY(pending.Open());
            pending.File().write("new");
        }
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("old"));
        QCOMPARE(AllIn(QFileInfo(path).path()), QStringList{u"out"_s});
    }

    void givesANewFileTheUsualPermissions()
    {
        const TemporaryFiles files;
        const QString usual = files.Write(u"usual"_s, "");
        PendingFile pending(files.Path(u"out"_s));
        QVERIFY(pending.Open());
        QVERIFY(pending.Commit());
        QCOMPARE(QFile::permissions(files.Path(u"out"_s)), QFile::permissions(usual));
    }

    void keepsThePermissionsOfTheFormerFile()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        const auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner | QFile::ReadOther;
        QVERIFY(QFile::setPermissions(path, permissions));
        PendingFile pending(path);
        QVERIFY(pending.Open());
        QVERIFY(pending.Commit());
        QCOMPARE(QFile::permissions(path) & ~(QFile::ReadUser | QFile::WriteUser | QFile::ExeUser), permissions);
    }

    void replacesWhatALinkPointsAt()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        QVERIFY(QFile::link(path, files.Path(u"link"_s)));
        PendingFile pending(files.Path(u"link"_s));
        QVERIFY(pending.Open());
        pending.File().write("new");
        QVERIFY(pending.Commit());
        QVERIFY(QFileInfo(files.Path(u"link"_s)).isSymLink());
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("new"));
    }

    void refusesWhatMayNotBeWritten_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addRow("a folder") << u"."_s;
        QTest::addRow("no such folder") << u"missing/out"_s;
        QTest::addRow("a name that is too long") << QString(300, u'x');
    }
    void refusesWhatMayNotBeWritten()
    {
        QFETCH(const QString, name);
        const TemporaryFiles files;
        PendingFile pending(files.Path(name));
        QVERIFY(!pending.Open());
        QVERIFY(AllIn(files.Path({})).isEmpty());
    }

    void worksForTheLongestNames()
    {
        const TemporaryFiles files;
        const QString path = files.Path(QString(255, u'x'));
        PendingFile pending(path);
        QVERIFY(pending.Open());
        QVERIFY(pending.Commit());
        QVERIFY(QFile::exists(path));
    }

    void overwritesInPlaceWhereTheFolderMayNotBeWritten()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "a longer old file");
        const QString folder = QFileInfo(path).path();
        QVERIFY(GiveToOrdinaryUser(path) && GiveToOrdinaryUser(folder));
        QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
        bool isWritten = false;
        {
            const OrdinaryUser user;
            QVERIFY(user.IsOrdinary());
            QVERIFY(!QFile(files.Path(u"other"_s)).open(QIODevice::WriteOnly));
            PendingFile pending(path);
            isWritten = pending.Open() && pending.File().write("new") == 3 && pending.Commit();
        }
        QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QVERIFY(isWritten);
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("new"));
    }

    void refusesAFileThatMayNotBeWritten()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        QVERIFY(GiveToOrdinaryUser(path) && GiveToOrdinaryUser(QFileInfo(path).path()));
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
        const OrdinaryUser user;
        PendingFile pending(path);
        QVERIFY(!pending.Open());
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("old"));
    }

    void copiesItsBytesIntoADevice()
    {
        PendingFile pending(u"/dev/null"_s);
        QVERIFY(pending.Open());
        QVERIFY(pending.File().resize(3'000'000));
        QVERIFY(pending.Commit());
        pending.RemoveFormer();
        QVERIFY(!QFileInfo(u"/dev/null"_s).isFile() && QFileInfo::exists(u"/dev/null"_s));
    }

    void tellsThatADeviceIsFull()
    {
        PendingFile pending(u"/dev/full"_s);
        QVERIFY(pending.Open());
        pending.File().write("new");
        QVERIFY(!pending.Commit());
        QVERIFY(!QFileInfo(u"/dev/full"_s).isFile() && QFileInfo::exists(u"/dev/full"_s));
    }

    void removesTheFormerFile()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        PendingFile(path).RemoveFormer();
        QVERIFY(!QFile::exists(path));
    }
};

QTEST_APPLESS_MAIN(TestPendingFile)
#include "tst_pendingfile.moc"
