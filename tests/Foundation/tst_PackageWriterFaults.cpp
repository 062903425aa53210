#include "PackageTrial.h"
#include "support/FaultFileSystem.h"

#include <QTest>

#include <cerrno>
#include <signal.h>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;
using Call = FaultFileSystem::Call;
using Lasting = FaultFileSystem::Lasting;

Q_DECLARE_METATYPE(tembra::FaultFileSystem::Call)
Q_DECLARE_METATYPE(tembra::FaultFileSystem::Lasting)

namespace {

qsizetype openFiles()
{
    return QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size();
}

/// Calls without which a temporary folder or file cannot be removed.
bool preventsRemoval(Call call)
{
    return call == Call::OpenFolder || call == Call::RemoveFile || call == Call::RemoveFolder;
}

/// Calls that a package cannot be written without.
bool isEssential(Call call, bool exists)
{
    switch (call) {
    case Call::OpenFolderAt:
    case Call::OpenFolder:
    case Call::CreateFile:
    case Call::StatusIn:
    case Call::Write:
    case Call::ReadAt:
    case Call::Sync:
    case Call::Rename:
        return true;
    case Call::CreateFolder:
        return !exists;
    default:
        return false;
    }
}

} // namespace

/// Lets every call fail that is made while a package is written.
class tst_PackageWriterFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keepsOldOrNew_data();
    void keepsOldOrNew();
    void beginsAnewOnce_data();
    void beginsAnewOnce();
    void nothingHelpsAFullDisk_data();
    void nothingHelpsAFullDisk();
    void survivesBeingKilledAtEveryCall_data();
    void survivesBeingKilledAtEveryCall();
};

void tst_PackageWriterFaults::keepsOldOrNew_data()
{
    addColumns();
    QTest::addColumn<Call>("call");
    QTest::addColumn<Lasting>("lasting");
    const std::pair<const char *, Lasting> lastings[] = {{"once", Lasting::Once},
                                                         {"for good", Lasting::ForGood},
                                                         {"and all else", Lasting::EveryCall}};
    for (const Call call : FaultFileSystem::allCalls()) {
        for (const auto &[name, lasting] : lastings)
            addRows(FaultFileSystem::nameOf(call) + QByteArray(" fails ") + name, call, lasting);
    }
}

void tst_PackageWriterFaults::keepsOldOrNew()
{
    QFETCH(bool, exists);
    QFETCH(qsizetype, size);
    QFETCH(Call, call);
    QFETCH(Lasting, lasting);
    const qsizetype openBefore = openFiles();
    bool failed = true;
    for (int number = 1; failed; ++number) {
        const PackageTrial trial(exists, size);
        FaultFileSystem fileSystem;
        fileSystem.fail({call, number, EIO, lasting});
        const auto result = trial.write(fileSystem);
        failed = fileSystem.failures() > 0;
        const QByteArray where = "call " + QByteArray::number(number) + ": ";
        const bool mayLeave = lasting == Lasting::EveryCall
                              || (lasting == Lasting::ForGood && preventsRemoval(call));
        const QByteArray broken = trial.broken(result, mayLeave);
        QVERIFY2(broken.isEmpty(), QByteArray(where + broken).constData());
        QVERIFY2(result || failed, QByteArray(where + "failed for no reason").constData());
        if (failed && lasting != Lasting::Once && isEssential(call, exists))
            QVERIFY2(!result, QByteArray(where + "success without what it needs").constData());
        const QByteArray later = trial.brokenAfterRepair();
        QVERIFY2(later.isEmpty(), QByteArray(where + "after repair: " + later).constData());
    }
    QCOMPARE(openFiles(), openBefore);
}

void tst_PackageWriterFaults::beginsAnewOnce_data()
{
    addColumns();
    QTest::addColumn<Call>("call");
    for (const Call call : {Call::CreateFile, Call::Write, Call::Sync, Call::ReadAt, Call::Close,
                            Call::Rename, Call::OpenFolder})
        addRows(FaultFileSystem::nameOf(call), call);
}

/// A passing fault of the disk is no reason to go without a backup; two in a row are.
void tst_PackageWriterFaults::beginsAnewOnce()
{
    QFETCH(bool, exists);
    QFETCH(qsizetype, size);
    QFETCH(Call, call);
    int number = 1;
    for (bool failed = true; failed; ++number) {
        const PackageTrial trial(exists, size);
        FaultFileSystem fileSystem;
        fileSystem.fail({call, number, EIO});
        const auto result = trial.write(fileSystem);
        failed = fileSystem.failures() > 0;
        QVERIFY2(result, result ? "" : qPrintable(result.error().description()));
        QVERIFY(trial.isNew());
    }
    QVERIFY(number > 2);
}

void tst_PackageWriterFaults::nothingHelpsAFullDisk_data()
{
    addColumns();
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("systemError");
    QTest::addColumn<QString>("start");
    for (const Call call : {Call::CreateFile, Call::Write}) {
        const QByteArray name = FaultFileSystem::nameOf(call);
        addRows(name + ", full", call, ENOSPC, u"The disk is full, so “%1” cannot be"_s);
        addRows(name + ", quota", call, EDQUOT, u"Your share of the disk is used up, so “%1”"_s);
    }
    addRows("write, too large", Call::Write, EFBIG, u"“%1” is too large for its disk."_s);
    addRows("sync, full", Call::Sync, ENOSPC, u"The disk is full, so “%1” cannot be"_s);
}

void tst_PackageWriterFaults::nothingHelpsAFullDisk()
{
    QFETCH(bool, exists);
    QFETCH(qsizetype, size);
    QFETCH(Call, call);
    QFETCH(int, systemError);
    QFETCH(QString, start);
    const PackageTrial trial(exists, size);
    FaultFileSystem fileSystem;
    fileSystem.fail({call, 1, systemError, Lasting::ForGood});
    const auto result = trial.write(fileSystem);
    QVERIFY(!result);
    QVERIFY2(result.error().message.startsWith(start.arg(trial.folder().package)),
             qPrintable(result.error().message));
    QVERIFY(!result.error().detail.isEmpty());
    QVERIFY(trial.isOld());
    QCOMPARE(trial.folder().temporaries(), QStringList());
    // Writing hundreds of megabytes twice would not make room.
    QCOMPARE(fileSystem.failures(), call == Call::Sync ? 2 : 1);
}

void tst_PackageWriterFaults::survivesBeingKilledAtEveryCall_data()
{
    addColumns();
    addRows("killed");
}

void tst_PackageWriterFaults::survivesBeingKilledAtEveryCall()
{
    QFETCH(bool, exists);
    QFETCH(qsizetype, size);
    constexpr int killed = -1;
    int status = killed;
    int oldOnes = 0;
    int newOnes = 0;
    for (int number = 1; status == killed; ++number) {
        const PackageTrial trial(exists, size);
        status = runAndDie([&] {
            FaultFileSystem fileSystem;
            // So that it is also killed within the contents.
            fileSystem.setMostBytes(size / 3);
            fileSystem.beforeAny(number, [](Call) { ::kill(::getpid(), SIGKILL); });
            return trial.write(fileSystem).has_value();
        });
        oldOnes += trial.isOld();
        newOnes += trial.isNew();
        const QByteArray where = "call " + QByteArray::number(number);
        QVERIFY2(trial.isOld() || trial.isNew(), where.constData());
        const QByteArray later = trial.brokenAfterRepair();
        QVERIFY2(later.isEmpty(), QByteArray(where + ", then: " + later).constData());
    }
    QCOMPARE(status, 0);
    QVERIFY(oldOnes > 10);
    QVERIFY(newOnes > 1);
}

QTEST_GUILESS_MAIN(tst_PackageWriterFaults)
#include "tst_PackageWriterFaults.moc"
