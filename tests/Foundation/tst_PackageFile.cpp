#include "Foundation/Files/PackageFile.h"
#include "PackageFixture.h"
#include "support/FaultFileSystem.h"

#include <QDateTime>
#include <QFileInfo>
#include <QTest>

#include <cerrno>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;
using Call = FaultFileSystem::Call;

Q_DECLARE_METATYPE(tembra::FaultFileSystem::Call)

namespace {

constexpr int piece = 1 << 20;
const auto noLimit = std::numeric_limits<qint64>::max();

void append(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::Append) || file.write(bytes) != bytes.size())
        qFatal("cannot append");
}

/// Makes it a file of that size which takes no room; not every disk can.
bool makeHollow(const QString &path, qint64 size)
{
    return ::truncate(QFile::encodeName(path).constData(), off_t(size)) == 0;
}

} // namespace

class tst_PackageFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAndInspects_data();
    void readsAndInspects();
    void tellsWhenItWasChanged();
    void readsAPackageBehindALink();
    void findsNoFile();
    void saysWhatStandsInTheWay_data();
    void saysWhatStandsInTheWay();
    void refusesWhatIsNoFile_data();
    void refusesWhatIsNoFile();
    void saysWhatItMayNotRead_data();
    void saysWhatItMayNotRead();
    void noticesChanges_data();
    void noticesChanges();
    void readsTheOldFileWhileANewOneTakesItsPlace();
    void readsFilesWhoseSizeIsNotTold();
    void readsNoMoreThanTheLimit();
    void refusesMoreThanTheUsualLimit();
    void refusesMoreThanMemoryHolds();
    void readsOnAfterInterruptionsAndShortReads();
    void saysThatTheDiskFailed_data();
    void saysThatTheDiskFailed();
};

void tst_PackageFile::readsAndInspects_data()
{
    QTest::addColumn<int>("size");
    QTest::newRow("empty") << 0;
    QTest::newRow("one byte") << 1;
    QTest::newRow("a piece less one") << piece - 1;
    QTest::newRow("a piece") << piece;
    QTest::newRow("a piece and one") << piece + 1;
    QTest::newRow("many pieces") << 7 * piece + 3;
}

void tst_PackageFile::readsAndInspects()
{
    QFETCH(int, size);
    const PackageFolder folder;
    const QByteArray contents = sampleContents(size, 1);
    folder.putPackage(contents);
    const auto read = readPackageFile(folder.package, folder.fileName);
    QVERIFY(read);
    QVERIFY(*read == contents);
    QCOMPARE((*read)->capacity() <= size + 64, true); // One buffer of the right size.
    const auto info = inspectPackageFile(folder.package, folder.fileName);
    QVERIFY(info && *info);
    QCOMPARE((*info)->size, size);
}

void tst_PackageFile::tellsWhenItWasChanged()
{
    const PackageFolder folder;
    folder.putPackage("[]");
    const timespec times[] = {{0, UTIME_NOW}, {1'551'657'600, 250'000'000}};
    QVERIFY(::utimensat(AT_FDCWD, QFile::encodeName(folder.file).constData(), times, 0) == 0);
    const auto info = inspectPackageFile(folder.package, folder.fileName);
    QVERIFY(info && *info);
    const QDateTime expected(QDate(2019, 3, 4), QTime(0, 0, 0, 250), Qt::UTC);
    QCOMPARE((*info)->modified.toUnixMilliseconds(), double(expected.toMSecsSinceEpoch()));
}

void tst_PackageFile::readsAPackageBehindALink()
{
    const PackageFolder folder;
    folder.putPackage("[]");
    const QString link = folder.root.filePath(u"link"_s);
    QVERIFY(QFile::link(folder.package, link));
    const auto read = readPackageFile(link, folder.fileName);
    QVERIFY(read);
    QCOMPARE(*read, "[]");
}

/// Which is no failure: the caller tells it apart without reading sentences.
void tst_PackageFile::findsNoFile()
{
    const PackageFolder folder;
    QVERIFY(QDir().mkpath(folder.package));
    writeFile(folder.package + u"/Teammates.json"_s, "other case");
    const auto read = readPackageFile(folder.package, folder.fileName);
    QVERIFY(read);
    QVERIFY(!*read);
    const auto info = inspectPackageFile(folder.package, folder.fileName);
    QVERIFY(info);
    QVERIFY(!*info);
}

void tst_PackageFile::saysWhatStandsInTheWay_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("no package") << u"%1/gone"_s << u"There is no “%1/gone”."_s;
    QTest::newRow("link to nothing") << u"%1/dangling"_s << u"There is no “%1/dangling”."_s;
    QTest::newRow("a file") << u"%1/file"_s << u"“%1/file” is not a folder."_s;
    QTest::newRow("a pipe") << u"%1/pipe"_s << u"“%1/pipe” is not a folder."_s;
    QTest::newRow("a null character") << u"%1/Mine.tembrabackup"_s + QChar::Null + u"x"_s
                                      << u"There is no “%1/Mine.tembrabackup"_s;
    QTest::newRow("no path") << QString() << u"There is no “”."_s;
    QTest::newRow("too long") << u"%1/"_s + QString(300, u'x') << u"The name “%1/xxx"_s;
}

void tst_PackageFile::saysWhatStandsInTheWay()
{
    QFETCH(QString, path);
    QFETCH(QString, sentence);
    const PackageFolder folder;
    folder.putPackage("[]");
    writeFile(folder.root.filePath(u"file"_s), "x");
    makePipe(folder.root.filePath(u"pipe"_s));
    QVERIFY(QFile::link(u"nothing"_s, folder.root.filePath(u"dangling"_s)));
    path.replace(u"%1"_s, folder.root.path());
    sentence.replace(u"%1"_s, folder.root.path());
    const auto read = readPackageFile(path, folder.fileName);
    const auto info = inspectPackageFile(path, folder.fileName);
    QVERIFY(!read);
    QVERIFY(!info);
    QVERIFY2(read.error().message.startsWith(sentence), qPrintable(read.error().message));
    QCOMPARE(info.error().message, read.error().message);
    QVERIFY(!read.error().detail.isEmpty());
}

void tst_PackageFile::refusesWhatIsNoFile_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *kind :
         {"folder", "pipe", "socket", "link to a file", "link to a folder", "link to nothing"})
        QTest::newRow(kind) << QString::fromLatin1(kind);
    QTest::newRow("device") << u"device"_s;
}

void tst_PackageFile::refusesWhatIsNoFile()
{
    QFETCH(QString, kind);
    const PackageFolder folder;
    QVERIFY(QDir().mkpath(folder.package));
    QString package = folder.package;
    QString fileName = folder.fileName;
    if (kind == u"device") {
        package = u"/dev"_s;
        fileName = u"zero"_s;
    } else {
        makeOddity(kind, folder.file, folder.putOutside());
    }
    const auto read = readPackageFile(package, fileName);
    QVERIFY(!read);
    QVERIFY2(read.error().message.startsWith(u"“%1/%2” is not a file."_s.arg(package, fileName)),
             qPrintable(read.error().message));
    QVERIFY(!inspectPackageFile(package, fileName));
}

void tst_PackageFile::saysWhatItMayNotRead_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QString>("named");
    const QString package = u"Mine.tembrabackup"_s;
    const QString file = u"Mine.tembrabackup/teammates.json"_s;
    QTest::newRow("file") << file << 0200 << file;
    QTest::newRow("package not to be entered") << package << 0600 << file;
    QTest::newRow("package not readable") << package << 0300 << package;
    QTest::newRow("folder not to be entered") << u"."_s << 0600 << package;
}

/// Permissions bind no administrator: when one runs the test, a process of an ordinary user tries.
void tst_PackageFile::saysWhatItMayNotRead()
{
    QFETCH(QString, path);
    QFETCH(int, mode);
    QFETCH(QString, named);
    constexpr uid_t ordinaryUser = 65534;
    const bool isAdministrator = ::geteuid() == 0;
    const PackageFolder folder;
    folder.putPackage("[]");
    QStringList entries = snapshot(folder.root.path()).keys();
    for (const QString &entry : entries << u"."_s) {
        const QByteArray name = QFile::encodeName(folder.root.filePath(entry));
        QVERIFY(!isAdministrator || ::lchown(name.constData(), ordinaryUser, ordinaryUser) == 0);
    }
    const QByteArray target = QFile::encodeName(QDir::cleanPath(folder.root.filePath(path)));
    QVERIFY(::chmod(target.constData(), mode_t(mode)) == 0);
    const QString sentence = u"You may not read “%1”."_s.arg(folder.root.filePath(named));
    const int result = runAndDie([&] {
        if (isAdministrator && (::setgid(ordinaryUser) != 0 || ::setuid(ordinaryUser) != 0))
            return false;
        const auto read = readPackageFile(folder.package, folder.fileName);
        return !read && read.error().message.startsWith(sentence);
    });
    QVERIFY(::chmod(target.constData(), 0700) == 0);
    QCOMPARE(result, 0);
}

void tst_PackageFile::noticesChanges_data()
{
    QTest::addColumn<int>("read");
    QTest::addColumn<int>("newSize");
    QTest::addColumn<bool>("isNoticed");
    constexpr int size = 3 * piece;
    QTest::newRow("shrinks before the first piece") << 1 << 10 << true;
    QTest::newRow("shrinks to nothing") << 1 << 0 << true;
    QTest::newRow("shrinks by one") << 2 << size - 1 << true;
    QTest::newRow("shrinks behind what was read") << 4 << 10 << true;
    QTest::newRow("grows by one") << 1 << size + 1 << true;
    QTest::newRow("grows much") << 2 << 4 * size << true;
    QTest::newRow("grows when all was read") << 4 << size + 1 << true;
    QTest::newRow("does not change") << 1 << size << false;
}

void tst_PackageFile::noticesChanges()
{
    QFETCH(int, read);
    QFETCH(int, newSize);
    QFETCH(bool, isNoticed);
    const PackageFolder folder;
    folder.putPackage(sampleContents(3 * piece, 1));
    FaultFileSystem fileSystem;
    bool happened = false;
    fileSystem.before(Call::ReadAt, read, [&] {
        happened = true;
        if (isNoticed)
            QFile::resize(folder.file, newSize);
    });
    const auto result = readPackageFile(folder.package, folder.fileName, fileSystem);
    QVERIFY(happened);
    QCOMPARE(result.has_value(), !isNoticed);
    if (!result)
        QVERIFY2(result.error().message.startsWith(
                     u"“%1” was changed while it was being read."_s.arg(folder.file)),
                 qPrintable(result.error().message));
}

void tst_PackageFile::readsTheOldFileWhileANewOneTakesItsPlace()
{
    const PackageFolder folder;
    const QByteArray old = sampleContents(3 * piece, 1);
    folder.putPackage(old);
    FaultFileSystem fileSystem;
    fileSystem.before(Call::ReadAt, 2, [&] {
        writeFile(folder.root.filePath(u"new"_s), "new");
        QVERIFY(::rename(QFile::encodeName(folder.root.filePath(u"new"_s)).constData(),
                         QFile::encodeName(folder.file).constData())
                == 0);
    });
    const auto read = readPackageFile(folder.package, folder.fileName, fileSystem);
    QVERIFY(read);
    QVERIFY(*read == old);
    QCOMPARE(readFile(folder.file), "new");
}

/// As some network folders do; here the system's own files.
void tst_PackageFile::readsFilesWhoseSizeIsNotTold()
{
    const QByteArray expected = readFile(u"/proc/self/limits"_s);
    if (expected.isEmpty() || QFileInfo(u"/proc/self/limits"_s).size() != 0)
        QSKIP("This system has no such file");
    const auto read = readPackageFile(u"/proc/self"_s, u"limits"_s);
    QVERIFY2(read, read ? "" : qPrintable(read.error().description()));
    QCOMPARE(*read, expected);
}

void tst_PackageFile::readsNoMoreThanTheLimit()
{
    const PackageFolder folder;
    folder.putPackage(QByteArray(1000, 'x'));
    QVERIFY(readPackageFile(folder.package, folder.fileName, systemFileSystem(), 1000));
    const auto refused = readPackageFile(folder.package, folder.fileName, systemFileSystem(), 999);
    QVERIFY(!refused);
    QVERIFY2(refused.error().message.startsWith(
                 u"“%1” is too large to be read."_s.arg(folder.file)),
             qPrintable(refused.error().message));
    FaultFileSystem fileSystem;
    fileSystem.before(Call::ReadAt, 1, [&] { append(folder.file, QByteArray(500'000, 'y')); });
    QVERIFY(!readPackageFile(folder.package, folder.fileName, fileSystem, 100'000));
    // What grows without end is not read without end.
    QVERIFY(fileSystem.count(Call::ReadAt) < 10);
}

void tst_PackageFile::refusesMoreThanTheUsualLimit()
{
    const PackageFolder folder;
    folder.putPackage("");
    if (!makeHollow(folder.file, largestPackageFile + 1))
        QSKIP("No disk here takes such a file");
    FaultFileSystem fileSystem;
    const auto refused = readPackageFile(folder.package, folder.fileName, fileSystem);
    QVERIFY(!refused);
    QVERIFY2(refused.error().message.startsWith(u"“%1” is too large"_s.arg(folder.file)),
             qPrintable(refused.error().message));
    QCOMPARE(refused.error().detail, u"larger than 2048 MiB"_s);
    QCOMPARE(fileSystem.count(Call::ReadAt), 0);
    const auto info = inspectPackageFile(folder.package, folder.fileName);
    QVERIFY(info && *info);
    QCOMPARE((*info)->size, largestPackageFile + 1);
}

void tst_PackageFile::refusesMoreThanMemoryHolds()
{
#ifdef __SANITIZE_ADDRESS__
    QSKIP("The sanitizer ends the program instead of refusing memory");
#endif
    const PackageFolder folder;
    folder.putPackage("");
    if (!makeHollow(folder.file, qint64(1) << 60))
        QSKIP("No disk here takes such a file");
    const auto refused = readPackageFile(folder.package, folder.fileName, systemFileSystem(),
                                         noLimit);
    QVERIFY(!refused);
    QVERIFY2(refused.error().message.startsWith(u"There is not enough memory for “"_s),
             qPrintable(refused.error().message));
}

void tst_PackageFile::readsOnAfterInterruptionsAndShortReads()
{
    const PackageFolder folder;
    const QByteArray contents = sampleContents(3 * piece + 5, 1);
    folder.putPackage(contents);
    FaultFileSystem fileSystem;
    fileSystem.setMostBytes(100'003);
    fileSystem.setInterrupted(true);
    const auto read = readPackageFile(folder.package, folder.fileName, fileSystem);
    QVERIFY2(read, read ? "" : qPrintable(read.error().description()));
    QVERIFY(*read == contents);
    QVERIFY(fileSystem.count(Call::ReadAt) > 60);
}

void tst_PackageFile::saysThatTheDiskFailed_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<int>("number");
    QTest::newRow("open the package") << Call::OpenFolderAt << 1;
    QTest::newRow("look at the name") << Call::StatusIn << 1;
    QTest::newRow("open the file") << Call::OpenFile << 1;
    QTest::newRow("look at the opened file") << Call::Status << 1;
    QTest::newRow("look at its size") << Call::Status << 2;
    QTest::newRow("read the first piece") << Call::ReadAt << 1;
    QTest::newRow("read the last piece") << Call::ReadAt << 3;
    QTest::newRow("read the end") << Call::ReadAt << 4;
    QTest::newRow("look at its size again") << Call::Status << 3;
}

void tst_PackageFile::saysThatTheDiskFailed()
{
    QFETCH(Call, call);
    QFETCH(int, number);
    const PackageFolder folder;
    folder.putPackage(sampleContents(2 * piece + 1, 1));
    FaultFileSystem fileSystem;
    fileSystem.fail({call, number, EIO});
    const auto read = readPackageFile(folder.package, folder.fileName, fileSystem);
    QCOMPARE(fileSystem.failures(), 1);
    QVERIFY(!read);
    QVERIFY2(read.error().message.startsWith(u"The disk failed while “"_s),
             qPrintable(read.error().message));
}

QTEST_GUILESS_MAIN(tst_PackageFile)
#include "tst_PackageFile.moc"
