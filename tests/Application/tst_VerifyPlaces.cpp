#include "Application/Verify.h"

#include "support/FolderContents.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTest>

#include <fcntl.h>
#include <grp.h>
#include <sys/inotify.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr uid_t somebodyElse = 65534;

/// Sees who opens or reads files, be it for a moment.
class OpenWatch
{
public:
    OpenWatch() : m_handle(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}
    ~OpenWatch() { ::close(m_handle); }
    Q_DISABLE_COPY_MOVE(OpenWatch)

    bool add(const QString &path) const
    {
        return ::inotify_add_watch(m_handle, QFile::encodeName(path).constData(),
                                   IN_OPEN | IN_ACCESS | IN_CLOSE)
               >= 0;
    }
    /// Whether anything was opened since the last time.
    bool hasSeen() const
    {
        alignas(inotify_event) std::array<char, 4096> events{};
        return ::read(m_handle, events.data(), events.size()) > 0;
    }

private:
    int m_handle;
};

void makeSocket(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, name.constData(), sizeof address.sun_path);
    const int handle = ::socket(AF_UNIX, SOCK_STREAM, 0);
    QCOMPARE(::bind(handle, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    ::close(handle);
}

bool becomeSomebodyElse()
{
    return ::setgroups(0, nullptr) == 0 && ::setgid(somebodyElse) == 0
           && ::setuid(somebodyElse) == 0;
}

} // namespace

/// What `--verify` says of whatever lies where a package or the file in it should be: refused at once,
/// and nothing outside of the package is opened.
class tst_VerifyPlaces : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void aPackageThroughALinkIsRead();
    void aPackageIsRefused_data();
    void aPackageIsRefused();
    void theFileInItIsRefused_data();
    void theFileInItIsRefused();
    void aDeviceIsNotOpened();
    void whatMayNotBeReadIsToldOf_data();
    void whatMayNotBeReadIsToldOf();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }
    QString file() const { return m_package + u"/teammates.json"_s; }
    void make(const QString &kind, const QString &place) const;
    PrintAndExit verifyInTime() const
    {
        QElapsedTimer timer;
        timer.start();
        const PrintAndExit said = verifyPackage(m_package);
        return timer.elapsed() < 1000 ? said : PrintAndExit{u"took too long"_s, -1};
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_package;
};

void tst_VerifyPlaces::init()
{
    m_folder = std::make_unique<QTemporaryDir>(temporaryTemplate());
    m_package = path(u"Mine.tembrabackup"_s);
    QDir().mkpath(path(u"outside/folder"_s));
    writeFile(path(u"outside/good.json"_s), "[]");
    writeFile(path(u"outside/folder/teammates.json"_s), "[]");
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"outside/pipe"_s)).constData(), 0600), 0);
}

/// Puts something at @p place that is not what is expected there.
void tst_VerifyPlaces::make(const QString &kind, const QString &place) const
{
    if (kind == u"file")
        writeFile(place, "[]");
    else if (kind == u"folder")
        QVERIFY(QDir().mkdir(place));
    else if (kind == u"pipe")
        QCOMPARE(::mkfifo(QFile::encodeName(place).constData(), 0600), 0);
    else if (kind == u"socket")
        makeSocket(place);
    else if (kind.startsWith(u"link to "))
        // A name in the folder outside, or anywhere.
        QVERIFY(QFile::link(QDir(path(u"outside"_s)).filePath(kind.mid(8)), place));
    else
        QCOMPARE(kind, u"nothing"_s);
}

void tst_VerifyPlaces::aPackageThroughALinkIsRead()
{
    make(u"link to folder"_s, m_package);
    const PrintAndExit said = verifyInTime();
    QCOMPARE(said.text, m_package + u": 0 teammates, 0 meetings, 0 notes, 0 tags\n"_s);
    QCOMPARE(said.exitStatus, 0);
}

void tst_VerifyPlaces::aPackageIsRefused_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason");
    const QString missing = u"There is no “%1”. Choose another file, or connect the disk it lies "
                            "on, and try again. (No such file or directory)"_s;
    const QString noFolder = u"“%1” is not a folder. Choose another one. (Not a directory)"_s;
    QTest::newRow("nothing") << u"nothing"_s << missing;
    QTest::newRow("link to nothing") << u"link to nothing"_s << missing;
    for (const char *kind :
         {"file", "pipe", "socket", "link to good.json", "link to pipe", "link to /dev/null"})
        QTest::newRow(kind) << QString::fromLatin1(kind) << noFolder;
}

void tst_VerifyPlaces::aPackageIsRefused()
{
    QFETCH(QString, kind);
    QFETCH(QString, reason);
    make(kind, m_package);
    const OpenWatch outside;
    QVERIFY(outside.add(path(u"outside/good.json"_s)) && outside.add(path(u"outside/pipe"_s)));
    const PrintAndExit said = verifyInTime();
    QVERIFY(!outside.hasSeen());
    QCOMPARE(said.text, u"tembra: "_s + m_package + u": Could not load file: "_s
                            + reason.arg(m_package) + u'\n');
    QCOMPARE(said.exitStatus, 1);
}

void tst_VerifyPlaces::theFileInItIsRefused_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("reason");
    const QString noFile = u"Could not load file: “%1” is not a file. Choose another one. "
                           "(not a regular file)"_s;
    QTest::newRow("nothing") << u"nothing"_s << u"No teammate data found."_s;
    for (const char *kind :
         {"folder", "pipe", "socket", "link to good.json", "link to pipe", "link to folder",
          "link to nothing", "link to /dev/zero", "link to /proc/self/fd/0",
          "link to ../Mine.tembrabackup/copy.json", "link to ../Mine.tembrabackup/teammates.json"})
        QTest::newRow(kind) << QString::fromLatin1(kind) << noFile;
}

void tst_VerifyPlaces::theFileInItIsRefused()
{
    QFETCH(QString, kind);
    QFETCH(QString, reason);
    QVERIFY(QDir().mkdir(m_package));
    const QString copy = m_package + u"/copy.json"_s;
    writeFile(copy, "[]");
    make(kind, file());
    const OpenWatch others;
    for (const QString &other :
         {path(u"outside/good.json"_s), path(u"outside/pipe"_s), path(u"outside/folder"_s), copy})
        QVERIFY(others.add(other));
    const PrintAndExit said = verifyInTime();
    QVERIFY(!others.hasSeen());
    if (reason.contains(u"%1"_s))
        reason = reason.arg(file());
    QCOMPARE(said.text, u"tembra: "_s + m_package + u": "_s + reason + u'\n');
    QCOMPARE(said.exitStatus, 1);
    // The watch sees what there is to see.
    readFile(copy);
    QVERIFY(others.hasSeen());
}

/// Opening one may rewind a tape, or hang up.
void tst_VerifyPlaces::aDeviceIsNotOpened()
{
    QVERIFY(QDir().mkdir(m_package));
    const QByteArray device = QFile::encodeName(file());
    if (::mknod(device.constData(), S_IFCHR | 0600, ::makedev(1, 5)) != 0)
        QSKIP("This process may not make devices");
    const OpenWatch watch;
    QVERIFY(watch.add(file()));
    const PrintAndExit said = verifyInTime();
    QVERIFY(!watch.hasSeen());
    QVERIFY2(said.text.contains(u"“%1” is not a file."_s.arg(file())), qPrintable(said.text));
    QCOMPARE(said.exitStatus, 1);
}

void tst_VerifyPlaces::whatMayNotBeReadIsToldOf_data()
{
    QTest::addColumn<int>("modeOfPackage");
    QTest::addColumn<int>("modeOfFile");
    QTest::addColumn<QString>("place"); // Nothing: it may be read.
    QTest::newRow("everything may be read") << 0755 << 0644 << QString();
    QTest::newRow("the file may not") << 0755 << 0200 << u"Mine.tembrabackup/teammates.json"_s;
    QTest::newRow("the package may not be listed") << 0311 << 0644 << u"Mine.tembrabackup"_s;
    QTest::newRow("the package may not be entered")
        << 0644 << 0644 << u"Mine.tembrabackup/teammates.json"_s;
}

void tst_VerifyPlaces::whatMayNotBeReadIsToldOf()
{
    QFETCH(int, modeOfPackage);
    QFETCH(int, modeOfFile);
    QFETCH(QString, place);
    const auto setMode = [](const QString &at, int mode) {
        QCOMPARE(::chmod(QFile::encodeName(at).constData(), mode_t(mode)), 0);
    };
    setMode(m_folder->path(), 0755);
    QVERIFY(QDir().mkdir(m_package));
    writeFile(file(), "[]");
    setMode(file(), modeOfFile);
    setMode(m_package, modeOfPackage);
    const auto saysSo = [&] {
        // Nothing stops an administrator.
        if (::geteuid() == 0 && !becomeSomebodyElse())
            return false;
        const PrintAndExit said = verifyPackage(m_package);
        if (place.isEmpty())
            return said.exitStatus == 0;
        const QString reason = u"Could not load file: You may not read “%1”. Give "
                               "yourself the permission to and try again. (Permission denied)\n"_s;
        const QString expected = u"tembra: "_s + m_package + u": "_s + reason.arg(path(place));
        if (said.text != expected)
            qWarning("%s", qPrintable(said.text));
        return said.exitStatus == 1 && said.text == expected;
    };
    // In a process that then ends: there is no way back to being an administrator.
    QCOMPARE(runAndDie(saysSo), 0);
    setMode(m_package, 0755);
}

QTEST_GUILESS_MAIN(tst_VerifyPlaces)
#include "tst_VerifyPlaces.moc"
