#include "engine/files/PendingFile.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/OrdinaryUser.h"
#include "tests/support/TemporaryFiles.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtTest/QTest>

#include <functional>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using vantoraudio::AudioEngine::PendingFile;

namespace {

void SetTime(const QString& path, const QDateTime& time)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
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

    void replacesALinkItselfWhereThatIsWanted_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addRow("to a file") << u"out"_s;
        QTest::addRow("to nothing") << u"missing"_s;
        QTest::addRow("to a folder") << u"."_s;
        QTest::addRow("to itself") << u"link"_s;
    }
    void replacesALinkItselfWhereThatIsWanted()
    {
        QFETCH(const QString, target);
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        const QString link = files.Path(u"link"_s);
        QVERIFY(QFile::link(files.Path(target), link));
        PendingFile pending(link, {}, {.replacesLinks = true});
        QVERIFY(pending.Open());
        pending.File().write("new");
        QVERIFY(QFileInfo(link).isSymLink());
        QVERIFY(pending.CommitUnlessTaken());
        QVERIFY(!QFileInfo(link).isSymLink());
        QCOMPARE(TemporaryFiles::Read(link), QByteArray("new"));
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("old"));
        QCOMPARE(AllIn(QFileInfo(path).path()), (QStringList{u"link"_s, u"out"_s}));
    }

    void fillsTheFileThatALinkToALinkPromises()
    {
        const TemporaryFiles files;
        const QString path = files.Path(u"out"_s);
        QVERIFY(QFile::link(path, files.Path(u"inner"_s)));
        QVERIFY(QFile::link(files.Path(u"inner"_s), files.Path(u"outer"_s)));
        PendingFile pending(files.Path(u"outer"_s));
        QVERIFY(pending.Open());
        pending.File().write("new");
        QVERIFY(pending.Commit());
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("new"));
        QVERIFY(QFileInfo(files.Path(u"inner"_s)).isSymLink() && QFileInfo(files.Path(u"outer"_s)).isSymLink());
    }

    void leavesAFileThatCameMeanwhile()
    {
        const TemporaryFiles files;
        const QString path = files.Path(u"out"_s);
        PendingFile pending(path);
        QVERIFY(pending.Open());
        pending.File().write("new");
        QCOMPARE(files.Write(u"out"_s, "other"), path);
        QVERIFY(pending.CommitUnlessTaken());
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("other"));
        pending.KeepPart();
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("other"));
        QVERIFY(pending.Commit());
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("new"));
        QCOMPARE(AllIn(QFileInfo(path).path()), QStringList{u"out"_s});
    }

    void keepsAPartOnlyWhereNothingElseIs()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        {
            PendingFile pending(path);
            QVERIFY(pending.Open());
            pending.File().write("ne");
            pending.KeepPart();
        }
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("old"));
        QVERIFY(QFile::remove(path));
        {
            PendingFile pending(path);
            QVERIFY(pending.Open());
            pending.File().write("ne");
            pending.KeepPart();
        }
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("ne"));
        QCOMPARE(AllIn(QFileInfo(path).path()), QStringList{u"out"_s});
    }

    void givesANewFileThePermissionsThatItIsTold()
    {
        const TemporaryFiles files;
        const QString path = files.Path(u"out"_s);
        PendingFile pending(path);
        QVERIFY(pending.Open());
        pending.SetPermissions(QFile::ReadOwner | QFile::ReadOther);
        QVERIFY(pending.CommitUnlessTaken());
        QVERIFY(QFile::permissions(path).testFlag(QFile::ReadOther));
        QVERIFY(!QFile::permissions(path).testAnyFlags(QFile::WriteOwner | QFile::ReadGroup));
    }

    void leavesNothingUnderTheNameWhileItGrows()
    {
        const TemporaryFiles files;
        PendingFile pending(files.Path(u"out"_s));
        QVERIFY(pending.Open());
        QVERIFY(!AllIn(files.Path({})).contains(u"out"_s));
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
        bool isWritten = false;
        AsOrdinaryUserOfAClosedFolder(path, [&] {
            QVERIFY(!QFile(files.Path(u"other"_s)).open(QIODevice::WriteOnly));
            PendingFile pending(path);
            isWritten = pending.Open() && pending.File().write("new") == 3 && pending.Commit();
        });
        QVERIFY(isWritten);
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("new"));
    }

    void refusesAFileThatMayNotBeWritten()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        QVERIFY(OrdinaryUser::TakesOver(path) && OrdinaryUser::TakesOver(QFileInfo(path).path()));
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

    void takesThePlaceOfItsSourceInOneStep()
    {
        const TemporaryFiles files;
        const QString source = files.Write(u"source"_s, "old");
        QVERIFY(QFile::link(source, files.Path(u"link"_s)));
        PendingFile pending(files.Path(u"link"_s), source);
        QVERIFY(pending.Open());
        pending.File().write("new");
        QCOMPARE(TemporaryFiles::Read(source), QByteArray("old"));
        QVERIFY(pending.Commit());
        QCOMPARE(TemporaryFiles::Read(source), QByteArray("new"));
    }

    void leavesASourceThatWasChangedMeanwhile_data()
    {
        QTest::addColumn<QString>("change");
        QTest::addRow("longer") << u"longer"_s;
        QTest::addRow("rewritten") << u"rewritten"_s;
        QTest::addRow("replaced") << u"replaced"_s;
        QTest::addRow("removed") << u"removed"_s;
    }
    void leavesASourceThatWasChangedMeanwhile()
    {
        QFETCH(const QString, change);
        const TemporaryFiles files;
        const QString source = files.Write(u"source"_s, "old");
        PendingFile pending(source, source);
        QVERIFY(pending.Open());
        pending.File().write("new");
        if (change == u"removed") {
            QVERIFY(QFile::remove(source));
        } else if (change == u"replaced") {
            const QDateTime time = QFileInfo(source).lastModified();
            const QString other = files.Write(u"other"_s, "its");
            QVERIFY(QFile::remove(source) && QFile::rename(other, source));
            SetTime(source, time);
        } else {
            QCOMPARE(files.Write(u"source"_s, change == u"longer" ? "it is" : "its"), source);
            SetTime(source, QDateTime::currentDateTime().addSecs(1));
        }
        const QByteArray left = TemporaryFiles::Read(source);
        QVERIFY(!pending.Commit());
        QCOMPARE(TemporaryFiles::Read(source), left);
        QCOMPARE(QFile::exists(source), change != u"removed");
    }

    void replacesAReadOnlyFileWhereThatIsAllowed()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        QVERIFY(OrdinaryUser::TakesOver(path) && OrdinaryUser::TakesOver(QFileInfo(path).path()));
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner));
        const OrdinaryUser user;
        PendingFile pending(path, path, {.replacesReadOnly = true});
        QVERIFY(pending.Open());
        pending.File().write("new");
        QVERIFY(pending.Commit());
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("new"));
        QVERIFY(!QFile::permissions(path).testFlag(QFile::WriteOwner));
    }

    void neverOverwritesItsSourceByteByByte()
    {
        const TemporaryFiles files;
        const QString source = files.Write(u"source"_s, "old");
        bool isOpen = true;
        AsOrdinaryUserOfAClosedFolder(source, [&] { isOpen = PendingFile(source, source).Open(); });
        QVERIFY(!isOpen);
        QCOMPARE(TemporaryFiles::Read(source), QByteArray("old"));
    }

    void keepsItsSourceWhenTheFormerFileIsRemoved()
    {
        const TemporaryFiles files;
        const QString source = files.Write(u"source"_s, "old");
        PendingFile(source, source).RemoveFormer();
        QCOMPARE(TemporaryFiles::Read(source), QByteArray("old"));
    }

    /** The two names were one file; now one of them is somebody else's. */
    void keepsWhatHasTakenTheNameOfItsSource()
    {
        const TemporaryFiles files;
        const QString source = files.Write(u"source"_s, "old");
        const QString out = files.Path(u"out"_s);
        QCOMPARE(::link(QFile::encodeName(source).constData(), QFile::encodeName(out).constData()), 0);
        PendingFile pending(out, source);
        QVERIFY(pending.Open());
        QVERIFY(QFile::remove(out));
        QCOMPARE(files.Write(u"out"_s, "its"), out);
        QVERIFY(!pending.Commit());
        pending.RemoveFormer();
        QCOMPARE(TemporaryFiles::Read(out), QByteArray("its"));
        QCOMPARE(TemporaryFiles::Read(source), QByteArray("old"));
    }

    void canBeCancelledWhileItCopies()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        int blocks = 0;
        bool isCommitted = true;
        AsOrdinaryUserOfAClosedFolder(path, [&] {
            PendingFile pending(path);
            QVERIFY(pending.Open());
            QVERIFY(pending.File().resize(10'000'000));
            isCommitted = pending.Commit([&blocks] { return ++blocks == 3; });
        });
        QVERIFY(!isCommitted);
        QCOMPARE(blocks, 3);
        QCOMPARE(TemporaryFiles::Read(path), QByteArray());
    }

    void keepsTheFormerFileWhenItIsCancelledBeforeItCopies()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        bool isCommitted = true;
        AsOrdinaryUserOfAClosedFolder(path, [&] {
            PendingFile pending(path);
            QVERIFY(pending.Open());
            isCommitted = pending.Commit([] { return true; });
        });
        QVERIFY(!isCommitted);
        QCOMPARE(TemporaryFiles::Read(path), QByteArray("old"));
    }

    void removesTheFormerFile()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        PendingFile(path).RemoveFormer();
        QVERIFY(!QFile::exists(path));
    }

    void emptiesTheFormerFileThatCannotBeRemoved()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        AsOrdinaryUserOfAClosedFolder(path, [&] { PendingFile(path).RemoveFormer(); });
        QVERIFY(QFile::exists(path));
        QCOMPARE(TemporaryFiles::Read(path), QByteArray());
    }

    /** A part of the new file must not pass for all of it. */
    void emptiesTheFileThatCannotBeOverwrittenWhole()
    {
        const TemporaryFiles files;
        const QString path = files.Write(u"out"_s, "old");
        bool isOpen = false;
        bool isCommitted = true;
        AsOrdinaryUserOfAClosedFolder(path, [&] {
            PendingFile pending(path);
            isOpen = pending.Open() && pending.File().write(QByteArray(100000, 'n')) == 100000;
            isOpen = isOpen && pending.File().flush();
            const FileSizeLimit limit(50000);
            isCommitted = pending.Commit();
        });
        QVERIFY(isOpen);
        QVERIFY(!isCommitted);
        QVERIFY(QFile::exists(path));
        QCOMPARE(TemporaryFiles::Read(path), QByteArray());
    }

private:
    /** Runs `task` as somebody who may write the file but not its folder. */
    static void AsOrdinaryUserOfAClosedFolder(const QString& path, const std::function<void()>& task)
    {
        const QString folder = QFileInfo(path).path();
        QVERIFY(OrdinaryUser::TakesOver(path) && OrdinaryUser::TakesOver(folder));
        QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
        {
            const OrdinaryUser user;
            QVERIFY(user.IsOrdinary());
            task();
        }
        QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }
};

QTEST_APPLESS_MAIN(TestPendingFile)
#include "tst_pendingfile.moc"
