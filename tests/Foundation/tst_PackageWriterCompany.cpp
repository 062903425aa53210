#include "Foundation/Files/FileHandle.h"
#include "Foundation/Files/PackageWriter.h"
#include "Foundation/Files/TemporaryFiles.h"
#include "PackageFixture.h"
#include "support/FaultFileSystem.h"

#include <QTest>

#include <array>
#include <atomic>
#include <thread>

using namespace tembra;
using namespace Qt::StringLiterals;
using Call = FaultFileSystem::Call;

Q_DECLARE_METATYPE(tembra::FaultFileSystem::Call)

namespace {

/// The temporary folder of another writer of the package, or of one that crashed.
QString makeTemporaryPackage(const PackageFolder &folder, const QByteArray &content)
{
    const QString temporary = newTemporaryName(folder.name);
    QDir().mkpath(folder.root.filePath(temporary));
    writeFile(folder.root.filePath(temporary) + u'/' + folder.fileName, content);
    return temporary;
}

FileHandle lockedFile(const QString &folder, const QString &name)
{
    FileSystem &system = systemFileSystem();
    auto file = FileHandle::folderAt(system, folder).and_then([&](const FileHandle &opened) {
        return FileHandle::fileIn(opened, name, FileAccess::ReadAndWrite);
    });
    if (!file || !system.lock(file->id()))
        qFatal("no lock");
    return *std::move(file);
}

/// What somebody else does while a package is being written.
enum class Event {
    FolderRemoved,
    FolderMoved,
    PackageRemoved,
    PackageMoved,
    PackageAppears,
    EmptyPackageAppears,
    FileAppears,
    LinkAppears
};

void happen(Event event, const PackageFolder &folder, const QString &around)
{
    const QString moved = folder.root.filePath(u"moved"_s);
    const QString package = around + u'/' + folder.name;
    switch (event) {
    case Event::FolderRemoved:
        QDir(around).removeRecursively();
        return;
    case Event::FolderMoved:
        QDir().rename(around, moved);
        return;
    case Event::PackageRemoved:
        QDir(package).removeRecursively();
        return;
    case Event::PackageMoved:
        QDir().rename(package, moved);
        return;
    case Event::PackageAppears:
        QDir().mkpath(package);
        writeFile(package + u'/' + folder.fileName, "theirs");
        writeFile(package + u"/other"_s, "theirs too");
        return;
    case Event::EmptyPackageAppears:
        QDir().mkpath(package);
        return;
    case Event::FileAppears:
        writeFile(package, "theirs");
        return;
    case Event::LinkAppears:
        QFile::link(u"nothing"_s, package);
        return;
    }
}

} // namespace

Q_DECLARE_METATYPE(Event)

/// Packages at which others work at the same time, or worked before and crashed.
class tst_PackageWriterCompany : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void followsWhatHappensMeanwhile_data();
    void followsWhatHappensMeanwhile();
    void sweepsAbandonedTemporaries_data();
    void sweepsAbandonedTemporaries();
    void leavesTemporariesOfLivingWriters();
    void leavesWhatOnlyLooksLikeATemporary();
    void givesWayToAWriterThatSweepsItsFile_data();
    void givesWayToAWriterThatSweepsItsFile();
    void writersDoNotHarmEachOther_data();
    void writersDoNotHarmEachOther();
};

void tst_PackageWriterCompany::followsWhatHappensMeanwhile_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<Event>("event");
    QTest::addColumn<QString>("sentence"); // Empty: the package is written nevertheless.
    const QString missing = u"There is no “"_s;
    QTest::newRow("folder removed, new") << false << Event::FolderRemoved << missing;
    QTest::newRow("folder removed, existing") << true << Event::FolderRemoved << missing;
    QTest::newRow("folder moved, new") << false << Event::FolderMoved << missing;
    QTest::newRow("folder moved, existing") << true << Event::FolderMoved << missing;
    QTest::newRow("package removed") << true << Event::PackageRemoved << QString();
    QTest::newRow("package moved") << true << Event::PackageMoved << missing;
    QTest::newRow("package appears") << false << Event::PackageAppears << QString();
    QTest::newRow("empty package appears") << false << Event::EmptyPackageAppears << QString();
    QTest::newRow("file appears") << false << Event::FileAppears << u"“%1” is not a folder."_s;
    QTest::newRow("link appears") << false << Event::LinkAppears << u"“%1” is a link"_s;
}

void tst_PackageWriterCompany::followsWhatHappensMeanwhile()
{
    QFETCH(bool, exists);
    QFETCH(Event, event);
    QFETCH(QString, sentence);
    for (const Call call :
         {Call::CreateFile, Call::Write, Call::Sync, Call::ReadAt, Call::Rename}) {
        const PackageFolder folder;
        const QString around = folder.root.filePath(u"around"_s);
        const QString package = around + u'/' + folder.name;
        QVERIFY(QDir().mkpath(exists ? package : around));
        if (exists)
            writeFile(package + u'/' + folder.fileName, "old");
        FaultFileSystem fileSystem;
        fileSystem.before(call, 1, [&] { happen(event, folder, around); });
        const auto result = PackageWriter(fileSystem).write(package, folder.fileName, "new");
        const QByteArray where = FaultFileSystem::nameOf(call);
        QVERIFY2(result.has_value() == sentence.isEmpty(), where.constData());
        if (result)
            QCOMPARE(readFile(package + u'/' + folder.fileName), "new");
        else
            QVERIFY2(result.error().message.startsWith(
                         sentence.contains(u"%1") ? sentence.arg(package) : sentence),
                     qPrintable(result.error().message));
        if (event == Event::PackageAppears)
            QCOMPARE(readFile(package + u"/other"_s), "theirs too");
        if (event == Event::FileAppears)
            QCOMPARE(readFile(package), "theirs");
        QVERIFY2(folder.temporaries().isEmpty(), where.constData());
    }
}

void tst_PackageWriterCompany::sweepsAbandonedTemporaries_data()
{
    QTest::addColumn<bool>("exists");
    QTest::newRow("new") << false;
    QTest::newRow("existing") << true;
}

void tst_PackageWriterCompany::sweepsAbandonedTemporaries()
{
    QFETCH(bool, exists);
    const PackageFolder folder;
    if (exists) {
        folder.putPackage("old");
        writeFile(folder.package + u'/' + newTemporaryName(folder.fileName), "half of a bac");
    }
    makeTemporaryPackage(folder, "half of a bac");
    makeTemporaryPackage(folder, "");
    QVERIFY(QDir().mkpath(folder.root.filePath(newTemporaryName(folder.name))));
    QVERIFY(PackageWriter().write(folder.package, folder.fileName, "new"));
    QCOMPARE(folder.temporaries(), QStringList());
    QCOMPARE(readFile(folder.file), "new");
}

void tst_PackageWriterCompany::leavesTemporariesOfLivingWriters()
{
    const PackageFolder folder;
    folder.putPackage("old");
    const QString temporaryFile = newTemporaryName(folder.fileName);
    writeFile(folder.package + u'/' + temporaryFile, "being written");
    const QString temporaryPackage = makeTemporaryPackage(folder, "being written");
    const QStringList before = folder.temporaries();
    QCOMPARE(before.size(), 3);
    {
        const auto first = lockedFile(folder.package, temporaryFile);
        const auto second = lockedFile(folder.root.filePath(temporaryPackage), folder.fileName);
        QVERIFY(PackageWriter().write(folder.package, folder.fileName, "new"));
        QCOMPARE(folder.temporaries(), before);
    }
    QVERIFY(PackageWriter().write(folder.package, folder.fileName, "newer"));
    QCOMPARE(folder.temporaries(), QStringList());
}

void tst_PackageWriterCompany::leavesWhatOnlyLooksLikeATemporary()
{
    const PackageFolder folder;
    const QString outside = folder.putOutside();
    folder.putPackage("old");
    const QString start = folder.root.filePath(u"."_s + folder.name);
    writeFile(start + u".0123456789abcdef.tmp"_s, "a file where a folder would be");
    writeFile(start + u".0123456789ABCDEF.tmp"_s, "other digits");
    writeFile(start + u".tmp"_s, "no digits");
    QVERIFY(QFile::link(outside + u"/folder"_s, start + u".0000000000000001.tmp"_s));
    QVERIFY(QDir().mkpath(start + u".0000000000000002.tmp/folder"_s));
    QVERIFY(QDir().mkpath(start + u".0000000000000003.tmp"_s));
    writeFile(start + u".0000000000000003.tmp/teammates.json"_s, "with another file");
    writeFile(start + u".0000000000000003.tmp/mine.txt"_s, "x");
    QVERIFY(QDir().mkpath(start + u".0000000000000004.tmp"_s));
    makePipe(start + u".0000000000000004.tmp/teammates.json"_s);
    QVERIFY(QDir().mkpath(folder.root.filePath(u".Yours.tembrabackup.0000000000000005.tmp"_s)));
    const QString inside = folder.package + u"/.teammates.json.000000000000000"_s;
    QVERIFY(QFile::link(outside + u"/file"_s, inside + u"1.tmp"_s));
    QVERIFY(QDir().mkpath(inside + u"2.tmp"_s));
    makePipe(inside + u"3.tmp"_s);
    auto expected = snapshot(folder.root.path());
    QVERIFY(PackageWriter().write(folder.package, folder.fileName, "new"));
    expected[folder.name + u'/' + folder.fileName] = "f100600 new";
    QCOMPARE(snapshot(folder.root.path()), expected);
}

void tst_PackageWriterCompany::givesWayToAWriterThatSweepsItsFile_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<Call>("call");
    for (const Call call : {Call::CreateFile, Call::Lock, Call::Write, Call::Close, Call::Rename}) {
        QTest::addRow("new, before %s", FaultFileSystem::nameOf(call)) << false << call;
        QTest::addRow("existing, before %s", FaultFileSystem::nameOf(call)) << true << call;
    }
}

/// Two writers meet at the worst moments. Both write, and the second one's contents stay.
void tst_PackageWriterCompany::givesWayToAWriterThatSweepsItsFile()
{
    QFETCH(bool, exists);
    QFETCH(Call, call);
    const PackageFolder folder;
    if (exists)
        folder.putPackage("old");
    FaultFileSystem fileSystem;
    bool otherWrote = false;
    fileSystem.before(call, 1, [&] {
        otherWrote = PackageWriter().write(folder.package, folder.fileName, "theirs").has_value();
    });
    const auto written = PackageWriter(fileSystem).write(folder.package, folder.fileName, "mine");
    QVERIFY(otherWrote);
    QVERIFY2(written, written ? "" : qPrintable(written.error().description()));
    QCOMPARE(readFile(folder.file), "mine");
    QCOMPARE(folder.temporaries(), QStringList());
}

void tst_PackageWriterCompany::writersDoNotHarmEachOther_data()
{
    QTest::addColumn<bool>("removes");
    QTest::newRow("replacing") << false;
    QTest::newRow("making anew") << true;
}

void tst_PackageWriterCompany::writersDoNotHarmEachOther()
{
    QFETCH(bool, removes);
    constexpr int writers = 4;
    constexpr int rounds = 50;
    const PackageFolder folder;
    QList<QByteArray> versions;
    for (quint32 version = 0; version < writers; ++version)
        versions.append(sampleContents(20'000, version));
    std::atomic<int> failures = 0;
    const auto write = [&](int writer) {
        for (int round = 0; round < rounds; ++round) {
            const auto written = PackageWriter().write(folder.package, folder.fileName,
                                                       versions[writer]);
            // One whose package is moved away in between says so.
            if (!written && !removes) {
                qWarning("%s", qPrintable(written.error().description()));
                ++failures;
            }
            const QString away = folder.root.filePath(u"away %1 %2"_s.arg(writer).arg(round));
            if (removes)
                QDir().rename(folder.package, away);
        }
    };
    std::array<std::thread, writers> threads;
    for (int writer = 0; writer < writers; ++writer)
        threads[size_t(writer)] = std::thread(write, writer);
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(failures.load(), 0);
    const auto entries = snapshot(folder.root.path());
    int packages = 0;
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry) {
        if (entry->startsWith('d')) {
            ++packages;
            QVERIFY2(versions.contains(
                         readFile(folder.root.filePath(entry.key()) + u'/' + folder.fileName)),
                     qPrintable(entry.key()));
        }
    }
    QVERIFY(packages >= 1);
    QCOMPARE(folder.temporaries(), QStringList());
}

QTEST_GUILESS_MAIN(tst_PackageWriterCompany)
#include "tst_PackageWriterCompany.moc"
