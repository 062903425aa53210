#include "Foundation/Files/PackageWriter.h"
#include "PackageFixture.h"
#include "support/PrivateMounts.h"

#include <QTest>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr int kibibyte = 1024;

/// Makes the disk of the folder as full as that, less what fits into @p left bytes.
void fillDisk(const QString &folder, int size, int left)
{
    writeFile(folder + u"/other file"_s, QByteArray(size - left, 'x'));
}

} // namespace

/// Writes packages to real disks that are full, read-only or another disk than the rest.
class tst_PackageWriterDisks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void saysThatTheDiskIsFull_data();
    void saysThatTheDiskIsFull();
    void needsNoMoreRoomThanItTakes();
    void saysThatNoMoreFilesFit_data();
    void saysThatNoMoreFilesFit();
    void saysThatTheDiskIsReadOnly_data();
    void saysThatTheDiskIsReadOnly();
    void writesIntoAPackageOnADiskOfItsOwn();
    void leavesAFileOnADiskOfItsOwn();
};

void tst_PackageWriterDisks::init()
{
    if (!PrivateMounts::obstacle().isEmpty())
        QSKIP(qPrintable(PrivateMounts::obstacle()));
}

void tst_PackageWriterDisks::saysThatTheDiskIsFull_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<int>("left");
    for (const int left : {0, 4, 40, 100, 200, 290}) {
        QTest::addRow("new, %d KiB left", left) << false << left;
        QTest::addRow("existing, %d KiB left", left) << true << left;
    }
}

void tst_PackageWriterDisks::saysThatTheDiskIsFull()
{
    QFETCH(bool, exists);
    QFETCH(int, left);
    constexpr int diskSize = 1024 * kibibyte;
    constexpr int oldSize = 100 * kibibyte;
    const PackageFolder folder;
    const auto disk = MountedDisk::inMemory(folder.root.path(), "size=1m");
    QVERIFY(disk.isMounted());
    if (exists)
        folder.putPackage(sampleContents(oldSize, 1));
    const int used = exists ? oldSize + 4 * kibibyte : 0;
    fillDisk(folder.root.path(), diskSize - used, left * kibibyte);
    const auto before = snapshot(folder.root.path());
    const QByteArray contents = sampleContents(300 * kibibyte, 2);

    const auto refused = PackageWriter().write(folder.package, folder.fileName, contents);
    QVERIFY(!refused);
    QVERIFY2(refused.error().message.startsWith(
                 u"The disk is full, so “%1” cannot be"_s.arg(folder.package)),
             qPrintable(refused.error().message));
    QVERIFY2(refused.error().detail.endsWith(u"No space left on device"_s),
             qPrintable(refused.error().detail));
    QVERIFY(snapshot(folder.root.path()) == before);

    QVERIFY(QFile::remove(folder.root.filePath(u"other file"_s)));
    QVERIFY(PackageWriter().write(folder.package, folder.fileName, contents));
    QCOMPARE(readFile(folder.file), contents);
    QCOMPARE(folder.temporaries(), QStringList());
}

/// With every amount of room, a success means that all of it is there.
void tst_PackageWriterDisks::needsNoMoreRoomThanItTakes()
{
    constexpr int diskSize = 256 * kibibyte;
    const QByteArray contents = sampleContents(100 * kibibyte, 2);
    int written = 0;
    int refused = 0;
    for (int left = 80 * kibibyte; left <= 120 * kibibyte; left += 4 * kibibyte) {
        const PackageFolder folder;
        const auto disk = MountedDisk::inMemory(folder.root.path(), "size=256k");
        QVERIFY(disk.isMounted());
        fillDisk(folder.root.path(), diskSize, left);
        const bool done =
            PackageWriter().write(folder.package, folder.fileName, contents).has_value();
        QCOMPARE(readFile(folder.file), done ? contents : QByteArray());
        QCOMPARE(QFileInfo::exists(folder.package), done);
        (done ? written : refused) += 1;
    }
    QCOMPARE(written, 6); // From 100 KiB on.
    QCOMPARE(refused, 5);
}

void tst_PackageWriterDisks::saysThatNoMoreFilesFit_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<QByteArray>("options");
    // The disk itself counts as one, an existing package as three.
    QTest::newRow("no folder") << false << QByteArray("size=1m,nr_inodes=1");
    QTest::newRow("a folder but no file") << false << QByteArray("size=1m,nr_inodes=2");
    QTest::newRow("no file") << true << QByteArray("size=1m,nr_inodes=4");
}

void tst_PackageWriterDisks::saysThatNoMoreFilesFit()
{
    QFETCH(bool, exists);
    QFETCH(QByteArray, options);
    const PackageFolder folder;
    const auto disk = MountedDisk::inMemory(folder.root.path(), options);
    QVERIFY(disk.isMounted());
    if (exists)
        folder.putPackage("old");
    const auto before = snapshot(folder.root.path());
    const auto result = PackageWriter().write(folder.package, folder.fileName, "new");
    QVERIFY(!result);
    QVERIFY2(result.error().message.startsWith(u"The disk is full"_s),
             qPrintable(result.error().message));
    QVERIFY(snapshot(folder.root.path()) == before);
}

void tst_PackageWriterDisks::saysThatTheDiskIsReadOnly_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("new") << false;
    QTest::newRow("existing") << true;
}

void tst_PackageWriterDisks::saysThatTheDiskIsReadOnly()
{
    QFETCH(bool, exists);
    const PackageFolder folder;
    auto disk = MountedDisk::inMemory(folder.root.path(), "size=1m");
    QVERIFY(disk.isMounted());
    if (exists)
        folder.putPackage("old");
    const auto before = snapshot(folder.root.path());
    QVERIFY(disk.makeReadOnly());
    const auto result = PackageWriter().write(folder.package, folder.fileName, "new");
    QVERIFY(!result);
    const QString where = exists ? folder.package : folder.root.path();
    QVERIFY2(result.error().message.startsWith(
                 u"The disk with “%1” can be read but not"_s.arg(where)),
             qPrintable(result.error().message));
    QVERIFY2(result.error().detail.endsWith(u"Read-only file system"_s),
             qPrintable(result.error().detail));
    QVERIFY(snapshot(folder.root.path()) == before);
}

void tst_PackageWriterDisks::writesIntoAPackageOnADiskOfItsOwn()
{
    const PackageFolder folder;
    QVERIFY(QDir().mkpath(folder.package));
    const auto disk = MountedDisk::inMemory(folder.package, "size=1m");
    QVERIFY(disk.isMounted());
    folder.putPackage("old");
    QVERIFY(PackageWriter().write(folder.package, folder.fileName, "new"));
    QCOMPARE(readFile(folder.file), "new");
    QCOMPARE(folder.temporaries(), QStringList());
}

/// Nothing can be renamed over such a file.
void tst_PackageWriterDisks::leavesAFileOnADiskOfItsOwn()
{
    const PackageFolder folder;
    folder.putPackage("old");
    const PackageFolder elsewhere(QDir::tempPath() + u"/tembra-XXXXXX"_s);
    writeFile(elsewhere.root.filePath(u"far"_s), "far away");
    const auto disk = MountedDisk::mirror(elsewhere.root.filePath(u"far"_s), folder.file);
    QVERIFY(disk.isMounted());
    const auto before = snapshot(folder.root.path());
    const auto result = PackageWriter().write(folder.package, folder.fileName, "new");
    QVERIFY(!result);
    QVERIFY2(result.error().message.contains(u"is in use by another program"_s),
             qPrintable(result.error().message));
    QVERIFY(snapshot(folder.root.path()) == before);
    QCOMPARE(readFile(elsewhere.root.filePath(u"far"_s)), "far away");
}

int main(int argc, char **argv)
{
    PrivateMounts::enter();
    QCoreApplication application(argc, argv);
    tst_PackageWriterDisks test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_PackageWriterDisks.moc"
