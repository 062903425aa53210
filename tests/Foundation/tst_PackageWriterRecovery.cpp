#include "PackageTrial.h"
#include "support/FaultFileSystem.h"

#include <QTest>

#include <cerrno>

using namespace tembra;
using namespace Qt::StringLiterals;
using Call = FaultFileSystem::Call;
using Lasting = FaultFileSystem::Lasting;

Q_DECLARE_METATYPE(tembra::FaultFileSystem::Call)
Q_DECLARE_METATYPE(tembra::FaultFileSystem::Lasting)

/// What is made of single faults of disks and network folders.
class tst_PackageWriterRecovery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failsWhenTheFileCannotBeClosed_data();
    void failsWhenTheFileCannotBeClosed();
    void neverTrustsASecondSync();
    void noticesWhatTheDiskAltered_data();
    void noticesWhatTheDiskAltered();
    void believesARenameThatSaysItFailed_data();
    void believesARenameThatSaysItFailed();
    void writesOnAfterInterruptionsAndShortWrites_data();
    void writesOnAfterInterruptionsAndShortWrites();
    void givesUpWhenInterruptedForever();
    void sweepsLaterWhatItCouldNotRemove_data();
    void sweepsLaterWhatItCouldNotRemove();
    void worksOnDisksWithoutLocksAndFolderSyncs();
};

void tst_PackageWriterRecovery::failsWhenTheFileCannotBeClosed_data()
{
    addColumns();
    addRows("close fails");
}

/// Network folders tell only then that they could not keep what was written.
void tst_PackageWriterRecovery::failsWhenTheFileCannotBeClosed()
{
    QFETCH(bool, exists);
    QFETCH(qsizetype, size);
    const PackageTrial trial(exists, size);
    FaultFileSystem fileSystem;
    fileSystem.fail({Call::Close, 1, EIO, Lasting::ForGood});
    const auto result = trial.write(fileSystem);
    QVERIFY(!result);
    QVERIFY2(result.error().message.startsWith(u"The disk failed while “"_s),
             qPrintable(result.error().message));
    QVERIFY(result.error().detail.startsWith(u"close: "_s));
    QVERIFY(trial.isOld());
}

/// After a failed sync, the next one of the same file may succeed though its contents are lost.
void tst_PackageWriterRecovery::neverTrustsASecondSync()
{
    const PackageTrial trial(true, smallSize);
    FaultFileSystem fileSystem;
    fileSystem.fail({Call::Sync, 1, EIO});
    QVERIFY(trial.write(fileSystem));
    QCOMPARE(fileSystem.count(Call::CreateFile), 2);
    const QList<Call> calls = fileSystem.calls();
    const qsizetype failed = calls.indexOf(Call::Sync);
    const qsizetype next = calls.indexOf(Call::Sync, failed + 1);
    QVERIFY(calls.mid(failed, next - failed).contains(Call::CreateFile));
    QVERIFY(calls.mid(failed, next - failed).contains(Call::Write));
}

void tst_PackageWriterRecovery::noticesWhatTheDiskAltered_data()
{
    addColumns();
    QTest::addColumn<int>("read");
    QTest::addColumn<Lasting>("lasting");
    addRows("first piece, once", 1, Lasting::Once);
    addRows("first piece, for good", 1, Lasting::ForGood);
    QTest::newRow("last piece, once") << true << largeSize << 3 << Lasting::Once;
    QTest::newRow("last piece, for good") << true << largeSize << 3 << Lasting::ForGood;
}

void tst_PackageWriterRecovery::noticesWhatTheDiskAltered()
{
    QFETCH(bool, exists);
    QFETCH(qsizetype, size);
    QFETCH(int, read);
    QFETCH(Lasting, lasting);
    const PackageTrial trial(exists, size);
    FaultFileSystem fileSystem;
    fileSystem.alterRead(read, lasting);
    const auto result = trial.write(fileSystem);
    QCOMPARE(fileSystem.count(Call::CreateFile), 2);
    QCOMPARE(result.has_value(), lasting == Lasting::Once);
    const QByteArray broken = trial.broken(result, false);
    QVERIFY2(broken.isEmpty(), broken.constData());
    if (!result) {
        QVERIFY(trial.isOld());
        QVERIFY(result.error().message.startsWith(u"The disk gave back something else"_s));
    }
}

void tst_PackageWriterRecovery::believesARenameThatSaysItFailed_data()
{
    addColumns();
    QTest::addColumn<int>("systemError");
    QTest::addColumn<Lasting>("lasting");
    for (const int systemError : {EIO, ENOENT, EINTR}) {
        const QByteArray name = QByteArray::number(systemError);
        addRows(name + " once", systemError, Lasting::Once);
        addRows(name + " for good", systemError, Lasting::ForGood);
    }
}

/// On a network folder the answer may get lost. What is in place by then must not be tidied away.
void tst_PackageWriterRecovery::believesARenameThatSaysItFailed()
{
    QFETCH(bool, exists);
    QFETCH(qsizetype, size);
    QFETCH(int, systemError);
    QFETCH(Lasting, lasting);
    const PackageTrial trial(exists, size);
    FaultFileSystem fileSystem;
    fileSystem.fail({Call::Rename, 1, systemError, lasting, true});
    const auto result = trial.write(fileSystem);
    QCOMPARE(result.has_value(), lasting == Lasting::Once);
    QVERIFY(trial.isNew());
    QCOMPARE(trial.folder().temporaries(), QStringList());
}

void tst_PackageWriterRecovery::writesOnAfterInterruptionsAndShortWrites_data()
{
    addColumns();
    QTest::addColumn<qint64>("mostBytes");
    QTest::addColumn<bool>("interrupted");
    addRows("short", qint64(7001), false);
    addRows("interrupted", qint64(0), true);
    addRows("both", qint64(7001), true);
}

void tst_PackageWriterRecovery::writesOnAfterInterruptionsAndShortWrites()
{
    QFETCH(bool, exists);
    QFETCH(qsizetype, size);
    QFETCH(qint64, mostBytes);
    QFETCH(bool, interrupted);
    const PackageTrial trial(exists, size);
    FaultFileSystem fileSystem;
    fileSystem.setMostBytes(mostBytes);
    fileSystem.setInterrupted(interrupted);
    const auto result = trial.write(fileSystem);
    QVERIFY2(result, result ? "" : qPrintable(result.error().description()));
    QVERIFY(trial.isNew());
    // Taken up where it stopped, and not begun anew.
    QCOMPARE(fileSystem.count(Call::CreateFile), interrupted ? 2 : 1);
    if (mostBytes > 0)
        QVERIFY(fileSystem.count(Call::Write) >= size / mostBytes);
}

void tst_PackageWriterRecovery::givesUpWhenInterruptedForever()
{
    const PackageTrial trial(true, smallSize);
    FaultFileSystem fileSystem;
    fileSystem.fail({Call::Write, 1, EINTR, Lasting::ForGood});
    const auto result = trial.write(fileSystem);
    QVERIFY(!result);
    QVERIFY(trial.isOld());
    QCOMPARE(trial.folder().temporaries(), QStringList());
}

void tst_PackageWriterRecovery::sweepsLaterWhatItCouldNotRemove_data()
{
    addColumns();
    QTest::addColumn<Call>("removal");
    addRows("file stays", Call::RemoveFile);
}

void tst_PackageWriterRecovery::sweepsLaterWhatItCouldNotRemove()
{
    QFETCH(bool, exists);
    QFETCH(qsizetype, size);
    QFETCH(Call, removal);
    const PackageTrial trial(exists, size);
    FaultFileSystem fileSystem;
    fileSystem.fail({Call::Write, 1, ENOSPC, Lasting::ForGood});
    fileSystem.fail({removal, 1, EIO, Lasting::ForGood});
    QVERIFY(!trial.write(fileSystem));
    QVERIFY(trial.isOld());
    QVERIFY(!trial.folder().temporaries().isEmpty());
    const QByteArray later = trial.brokenAfterRepair();
    QVERIFY2(later.isEmpty(), later.constData());
}

void tst_PackageWriterRecovery::worksOnDisksWithoutLocksAndFolderSyncs()
{
    for (const bool exists : {false, true}) {
        const PackageTrial trial(exists, smallSize);
        FaultFileSystem fileSystem;
        fileSystem.fail({Call::Lock, 1, ENOLCK, Lasting::ForGood});
        fileSystem.fail({Call::ForgetCached, 1, EINVAL, Lasting::ForGood});
        // The first sync is the file's, all others are of folders.
        fileSystem.fail({Call::Sync, 2, EINVAL, Lasting::ForGood});
        const auto result = trial.write(fileSystem);
        QVERIFY2(result, result ? "" : qPrintable(result.error().description()));
        QVERIFY(trial.isNew());
        QCOMPARE(fileSystem.count(Call::CreateFile), 1);
    }
}

QTEST_GUILESS_MAIN(tst_PackageWriterRecovery)
#include "tst_PackageWriterRecovery.moc"
