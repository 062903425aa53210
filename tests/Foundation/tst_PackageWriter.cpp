#include "Foundation/Files/PackageWriter.h"
#include "PackageFixture.h"
#include "support/FaultFileSystem.h"

#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;
using Call = FaultFileSystem::Call;

namespace {

int modeOf(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? int(status.st_mode & 07777)
                                                                      : -1;
}

ino_t numberOf(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_ino : 0;
}

} // namespace

class tst_PackageWriter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void makesANewPackage_data();
    void makesANewPackage();
    void replacesNothingButTheFile();
    void fillsAnEmptyPackage();
    void writesToADisk();
    void asksTheDiskInTheRightOrder();
    void leavesAlonePlacesThatAreTaken_data();
    void leavesAlonePlacesThatAreTaken();
    void leavesAloneWhatIsNoFile_data();
    void leavesAloneWhatIsNoFile();
    void leavesOtherNamesOfTheOldFileAlone();
    void reachesTheFolderThroughLinks();
    void takesPathsAsUsersWriteThem_data();
    void takesPathsAsUsersWriteThem();
    void refusesWhatNamesNothing_data();
    void refusesWhatNamesNothing();
    void takesTheLongestNames_data();
    void takesTheLongestNames();
    void saysWhatIsMissing_data();
    void saysWhatIsMissing();
    void saysWhatItMayNotDo_data();
    void saysWhatItMayNotDo();
};

void tst_PackageWriter::makesANewPackage_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("umask");
    constexpr int piece = 1 << 20;
    QTest::newRow("empty") << 0 << 022;
    QTest::newRow("one byte") << 1 << 022;
    QTest::newRow("a piece less one") << piece - 1 << 022;
    QTest::newRow("a piece") << piece << 022;
    QTest::newRow("a piece and one") << piece + 1 << 022;
    QTest::newRow("many pieces") << 5 * piece << 022;
    QTest::newRow("generous umask") << 10 << 0;
    QTest::newRow("umask against oneself") << 10 << 0777;
}

void tst_PackageWriter::makesANewPackage()
{
    QFETCH(int, size);
    QFETCH(int, umask);
    const PackageFolder folder;
    const QByteArray contents = sampleContents(size, 1);
    const mode_t before = ::umask(mode_t(umask));
    const auto written = PackageWriter().write(folder.package, folder.fileName, contents);
    ::umask(before);
    QVERIFY2(written, written ? "" : qPrintable(written.error().description()));
    QCOMPARE(readFile(folder.file), contents);
    QCOMPARE(modeOf(folder.package), 0700);
    QCOMPARE(modeOf(folder.file), 0600);
    QCOMPARE(snapshot(folder.root.path()).size(), 2);
}

void tst_PackageWriter::replacesNothingButTheFile()
{
    const PackageFolder folder;
    folder.putPackage(sampleContents(100, 1));
    QVERIFY(QDir().mkpath(folder.package + u"/folder"_s));
    QVERIFY(::chmod(QFile::encodeName(folder.package).constData(), 0755) == 0);
    const ino_t package = numberOf(folder.package);
    auto expected = snapshot(folder.root.path());
    for (const quint32 version : {2U, 3U}) {
        const QByteArray contents = sampleContents(50, version);
        QVERIFY(PackageWriter().write(folder.package, folder.fileName, contents));
        expected[folder.name + u'/' + folder.fileName] = "f100600 " + contents;
        QCOMPARE(snapshot(folder.root.path()), expected);
        QCOMPARE(numberOf(folder.package), package);
    }
}

void tst_PackageWriter::fillsAnEmptyPackage()
{
    const PackageFolder folder;
    QVERIFY(QDir().mkpath(folder.package));
    const ino_t package = numberOf(folder.package);
    QVERIFY(PackageWriter().write(folder.package, folder.fileName, "[]"));
    QCOMPARE(readFile(folder.file), "[]");
    QCOMPARE(numberOf(folder.package), package);
}

/// The other tests use a disk in memory where there is one.
void tst_PackageWriter::writesToADisk()
{
    const PackageFolder folder(QDir::tempPath() + u"/tembra-XXXXXX"_s);
    for (const quint32 version : {1U, 2U}) {
        const QByteArray contents = sampleContents(20'000'000, version);
        const auto written = PackageWriter().write(folder.package, folder.fileName, contents);
        QVERIFY2(written, written ? "" : qPrintable(written.error().description()));
        QVERIFY(readFile(folder.file) == contents);
    }
}

/// What a failure of power would need to show: nothing gets its name before the disk has it.
void tst_PackageWriter::asksTheDiskInTheRightOrder()
{
    const PackageFolder folder;
    const QSet<Call> telling = {Call::CreateFolder, Call::CreateFile,   Call::Write, Call::Sync,
                                Call::ReadAt,       Call::ForgetCached, Call::Rename};
    const auto callsOf = [&](const QByteArray &contents) {
        FaultFileSystem fileSystem;
        const auto written = PackageWriter(fileSystem)
                                 .write(folder.package, folder.fileName, contents);
        QList<Call> calls = fileSystem.calls();
        calls.removeIf([&](Call call) { return !telling.contains(call); });
        return written ? calls : QList<Call>();
    };
    const QList<Call> file = {Call::CreateFile,   Call::Write,  Call::Sync,
                              Call::ForgetCached, Call::ReadAt, Call::ReadAt};
    const QList<Call> ending = {Call::Rename, Call::Sync};
    const QList<Call> folderMade = {Call::CreateFolder};
    const QList<Call> folderSynced = {Call::Sync};
    QCOMPARE(callsOf("first"), folderMade + file + folderSynced + ending);
    QCOMPARE(callsOf("second"), file + ending + folderSynced);
}

void tst_PackageWriter::leavesAlonePlacesThatAreTaken_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("sentence");
    const QString link = u"“%1” is a link to another place."_s;
    const QString noFolder = u"“%1” is not a folder."_s;
    QTest::newRow("file") << u"file"_s << noFolder;
    QTest::newRow("pipe") << u"pipe"_s << noFolder;
    QTest::newRow("socket") << u"socket"_s << noFolder;
    QTest::newRow("link to a file") << u"link to a file"_s << link;
    QTest::newRow("link to a folder") << u"link to a folder"_s << link;
    QTest::newRow("link to nothing") << u"link to nothing"_s << link;
}

void tst_PackageWriter::leavesAlonePlacesThatAreTaken()
{
    QFETCH(QString, kind);
    QFETCH(QString, sentence);
    const PackageFolder folder;
    makeOddity(kind, folder.package, folder.putOutside());
    const auto before = snapshot(folder.root.path());
    for (const QString &slash : {u""_s, u"/"_s}) {
        const auto result = PackageWriter().write(folder.package + slash, folder.fileName, "new");
        QVERIFY(!result);
        QVERIFY2(result.error().message.startsWith(sentence.arg(folder.package)),
                 qPrintable(result.error().message));
        QCOMPARE(snapshot(folder.root.path()), before);
    }
}

void tst_PackageWriter::leavesAloneWhatIsNoFile_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind :
         {"folder", "pipe", "socket", "link to a file", "link to a folder", "link to nothing"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
}

void tst_PackageWriter::leavesAloneWhatIsNoFile()
{
    QFETCH(QString, kind);
    const PackageFolder folder;
    QVERIFY(QDir().mkpath(folder.package));
    makeOddity(kind, folder.file, folder.putOutside());
    const auto before = snapshot(folder.root.path());
    const auto result = PackageWriter().write(folder.package, folder.fileName, "new");
    QVERIFY(!result);
    QVERIFY2(result.error().message.startsWith(u"“%1” is not a file."_s.arg(folder.file)),
             qPrintable(result.error().message));
    QCOMPARE(snapshot(folder.root.path()), before);
}

void tst_PackageWriter::leavesOtherNamesOfTheOldFileAlone()
{
    const PackageFolder folder;
    folder.putPackage("old");
    const QString other = folder.root.filePath(u"kept.json"_s);
    QVERIFY(::link(QFile::encodeName(folder.file).constData(), QFile::encodeName(other).constData())
            == 0);
    QVERIFY(PackageWriter().write(folder.package, folder.fileName, "new"));
    QCOMPARE(readFile(other), "old");
    QCOMPARE(readFile(folder.file), "new");
}

void tst_PackageWriter::reachesTheFolderThroughLinks()
{
    const PackageFolder folder;
    QVERIFY(QDir().mkpath(folder.root.filePath(u"real"_s)));
    QVERIFY(QFile::link(u"real"_s, folder.root.filePath(u"way"_s)));
    const QString package = folder.root.filePath(u"way/"_s + folder.name);
    for (const QByteArray contents : {"first", "second"}) {
        QVERIFY(PackageWriter().write(package, folder.fileName, contents));
        QCOMPARE(readFile(folder.root.filePath(u"real/"_s + folder.name) + u'/' + folder.fileName),
                 contents);
    }
}

void tst_PackageWriter::takesPathsAsUsersWriteThem_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("slashes at the end") << u"%1/Mine.tembrabackup//"_s;
    QTest::newRow("slashes between") << u"%1//Mine.tembrabackup"_s;
    QTest::newRow("a way round") << u"%1/folder/../Mine.tembrabackup"_s;
    QTest::newRow("relative") << u"Mine.tembrabackup"_s;
    QTest::newRow("relative with a folder") << u"folder/../Mine.tembrabackup"_s;
}

void tst_PackageWriter::takesPathsAsUsersWriteThem()
{
    QFETCH(QString, path);
    const PackageFolder folder;
    QVERIFY(QDir(folder.root.path()).mkdir(u"folder"_s));
    const QString current = QDir::currentPath();
    QVERIFY(QDir::setCurrent(folder.root.path()));
    path.replace(u"%1"_s, folder.root.path());
    const auto made = PackageWriter().write(path, folder.fileName, "first");
    const auto replaced = PackageWriter().write(path, folder.fileName, "second");
    QVERIFY(QDir::setCurrent(current));
    QVERIFY(made);
    QVERIFY(replaced);
    QCOMPARE(readFile(folder.file), "second");
}

void tst_PackageWriter::refusesWhatNamesNothing_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("nothing") << QString();
    QTest::newRow("root") << u"/"_s;
    QTest::newRow("this folder") << u"%1/."_s;
    QTest::newRow("the folder above") << u"%1/folder/.."_s;
    QTest::newRow("a null character in the name") << u"%1/Mine"_s + QChar::Null + u"x"_s;
    QTest::newRow("a null character in the folder") << u"%1/folder"_s + QChar::Null + u"x/Mine"_s;
}

void tst_PackageWriter::refusesWhatNamesNothing()
{
    QFETCH(QString, path);
    const PackageFolder folder;
    QVERIFY(QDir(folder.root.path()).mkdir(u"folder"_s));
    path.replace(u"%1"_s, folder.root.path());
    const auto before = snapshot(folder.root.path());
    const auto result = PackageWriter().write(path, folder.fileName, "new");
    QVERIFY(!result);
    QVERIFY2(result.error().message.contains(u"is not a name for a file"_s),
             qPrintable(result.error().message));
    QCOMPARE(snapshot(folder.root.path()), before);
}

void tst_PackageWriter::takesTheLongestNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("fits");
    const QString emoji = u"\U0001F600"_s;
    QTest::newRow("255 bytes") << QString(255, u'x') << true;
    QTest::newRow("256 bytes") << QString(256, u'x') << false;
    QTest::newRow("three bytes each") << QString(85, QChar(0x4e2d)) << true;
    QTest::newRow("too many of three bytes") << QString(86, QChar(0x4e2d)) << false;
    QTest::newRow("four bytes each") << emoji.repeated(63) << true;
    QTest::newRow("four bytes, cut within a pair") << u"x"_s + emoji.repeated(63) << true;
    QTest::newRow("marks apart from their letters") << u"e\u0301"_s.repeated(60) << true;
}

void tst_PackageWriter::takesTheLongestNames()
{
    QFETCH(QString, name);
    QFETCH(bool, fits);
    const PackageFolder folder;
    const QString package = folder.root.filePath(name);
    for (const QByteArray contents : {"first", "second"}) {
        const auto result = PackageWriter().write(package, folder.fileName, contents);
        QCOMPARE(result.has_value(), fits);
        if (!result)
            QVERIFY2(result.error().message.endsWith(u"is too long. Choose a shorter one."_s),
                     qPrintable(result.error().message));
        QCOMPARE(snapshot(folder.root.path()).size(), fits ? 2 : 0);
        QCOMPARE(readFile(package + u'/' + folder.fileName), fits ? contents : QByteArray());
    }
}

void tst_PackageWriter::saysWhatIsMissing_data()
{
    QTest::addColumn<QString>("package");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("no folder") << u"gone/Mine.tembrabackup"_s << u"There is no “%1/gone”."_s;
    QTest::newRow("a file instead of the folder")
        << u"file/Mine.tembrabackup"_s << u"“%1/file” is not a folder."_s;
    QTest::newRow("a link to nothing instead of the folder")
        << u"link/Mine.tembrabackup"_s << u"There is no “%1/link”."_s;
}

void tst_PackageWriter::saysWhatIsMissing()
{
    QFETCH(QString, package);
    QFETCH(QString, sentence);
    const PackageFolder folder;
    writeFile(folder.root.filePath(u"file"_s), "x");
    QVERIFY(QFile::link(u"nothing"_s, folder.root.filePath(u"link"_s)));
    const auto before = snapshot(folder.root.path());
    const auto result = PackageWriter().write(folder.root.filePath(package), folder.fileName,
                                              "new");
    QVERIFY(!result);
    QVERIFY2(result.error().message.startsWith(sentence.arg(folder.root.path())),
             qPrintable(result.error().message));
    QVERIFY(!result.error().detail.isEmpty());
    QCOMPARE(snapshot(folder.root.path()), before);
}

void tst_PackageWriter::saysWhatItMayNotDo_data()
{
    QTest::addColumn<bool>("exists");
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("named");
    QTest::newRow("folder not writable") << false << u"."_s << 0500 << u"%1”"_s;
    QTest::newRow("folder not to be entered") << false << u"."_s << 0600 << u"%1/Mine"_s;
    QTest::newRow("folder not readable") << false << u"."_s << 0300 << u"%1”"_s;
    QTest::newRow("package not writable") << true << u"Mine.tembrabackup"_s << 0500 << u"%1/Mine"_s;
    QTest::newRow("package not to be entered")
        << true << u"Mine.tembrabackup"_s << 0600 << u"%1/Mine"_s;
}

/// Permissions bind no administrator: when one runs the test, a process of an ordinary user tries.
void tst_PackageWriter::saysWhatItMayNotDo()
{
    QFETCH(bool, exists);
    QFETCH(QString, path);
    QFETCH(int, mode);
    QFETCH(QString, named);
    constexpr uid_t ordinaryUser = 65534;
    const bool isAdministrator = ::geteuid() == 0;
    const PackageFolder folder;
    if (exists)
        folder.putPackage("old");
    QStringList entries = snapshot(folder.root.path()).keys();
    for (const QString &entry : entries << u"."_s) {
        const QByteArray name = QFile::encodeName(folder.root.filePath(entry));
        QVERIFY(!isAdministrator || ::lchown(name.constData(), ordinaryUser, ordinaryUser) == 0);
    }
    const auto before = snapshot(folder.root.path());
    const QByteArray target = QFile::encodeName(QDir::cleanPath(folder.root.filePath(path)));
    const int modeBefore = modeOf(folder.root.filePath(path));
    QVERIFY(::chmod(target.constData(), mode_t(mode)) == 0);
    const int result = runAndDie([&] {
        if (isAdministrator && (::setgid(ordinaryUser) != 0 || ::setuid(ordinaryUser) != 0))
            return false;
        const auto written = PackageWriter().write(folder.package, folder.fileName, "new");
        return !written
               && written.error().message.startsWith(u"You may not read or change “"_s
                                                     + named.arg(folder.root.path()));
    });
    QVERIFY(::chmod(target.constData(), mode_t(modeBefore)) == 0);
    QCOMPARE(result, 0);
    QCOMPARE(snapshot(folder.root.path()), before);
}

QTEST_GUILESS_MAIN(tst_PackageWriter)
#include "tst_PackageWriter.moc"
