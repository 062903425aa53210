#include "Application/SingleInstance.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <array>
#include <atomic>
#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;
using Outcome = SingleInstance::Outcome;

namespace {

/// Starts in another thread, as a second process does: the first one must be free to answer.
Result<Outcome> start(const QString &folder, const QStringList &packages = {})
{
    Result<Outcome> outcome = Outcome::First;
    const std::unique_ptr<QThread> thread(
        QThread::create([&] { outcome = SingleInstance(folder).start(packages); }));
    thread->start();
    while (!thread->isFinished())
        QTest::qWait(5);
    return outcome;
}

sockaddr_un addressOf(const QByteArray &path)
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, path.constData(), sizeof address.sun_path);
    return address;
}

int connectTo(const QByteArray &path)
{
    const sockaddr_un address = addressOf(path);
    const int handle = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const auto *place = reinterpret_cast<const sockaddr *>(&address);
    return ::connect(handle, place, sizeof address) == 0 ? handle : -1;
}

int listenAt(const QByteArray &path)
{
    const sockaddr_un address = addressOf(path);
    const int handle = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const auto *place = reinterpret_cast<const sockaddr *>(&address);
    const bool listens = ::bind(handle, place, sizeof address) == 0 && ::listen(handle, 8) == 0;
    return listens ? handle : -1;
}

/// A socket file whose program is gone, as after "kill -9".
bool leaveDeadSocket(const QString &path)
{
    const int handle = listenAt(QFile::encodeName(path));
    return handle >= 0 && ::close(handle) == 0;
}

/// As a program does that works on the folder; −1 when another one does.
int lockFolder(const QString &folder)
{
    const int handle = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_CLOEXEC);
    return ::flock(handle, LOCK_EX | LOCK_NB) == 0 ? handle : -1;
}

} // namespace

class tst_SingleInstance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void nobodyRuns();
    void aSecondStartIsAnsweredAndShows();
    void eachLaterStartIsAnswered();
    void packagesAreHandedOver_data();
    void packagesAreHandedOver();
    void packagesComeInPieces();
    void anAlertKeepsNobodyWaiting();
    void aFolderIsTheSameThroughALink();
    void anotherFolderIsAnotherProgram();
    void onlyTheUserReachesTheSocket();
    void aDeadSocketIsNoObstacle();
    void oneThatOnlyStartsIsWaitedFor();
    void oneThatEndsIsWaitedFor();
    void oneThatIsAboutToEndPutsOthersOff_data();
    void oneThatIsAboutToEndPutsOthersOff();
    void oneThatHangsIsToldOf();
    void ofManyAtOnceOneIsTheFirst();
    void withoutAFolderOfTheSessionTheSocketIsInTheJournals_data();
    void withoutAFolderOfTheSessionTheSocketIsInTheJournals();
    void aFolderThatOthersCanWriteToGetsNoSocket();
    void anotherUserIsNotHeard();
    void anotherUserIsNotAsked();
    void otherRequestsShowNothing_data();
    void otherRequestsShowNothing();
    void theSocketGoesWithTheProgram();

private:
    QString folder(const QString &name)
    {
        QDir().mkpath(m_place->filePath(name));
        return m_place->filePath(name);
    }
    /// The one socket of the running program.
    QString socketFile() const
    {
        const auto files = QDir(m_place->filePath(u"run"_s))
                               .entryInfoList(QDir::System | QDir::NoDotAndDotDot);
        return files.size() == 1 ? files.first().filePath() : QString();
    }

    /// Where the socket of a program was that has ended.
    QString socketLeftBehind()
    {
        SingleInstance running(folder(u"journal"_s));
        return running.start() == Outcome::First ? socketFile() : QString();
    }

    std::unique_ptr<QTemporaryDir> m_place;
};

void tst_SingleInstance::init()
{
    m_place = std::make_unique<QTemporaryDir>();
    const QString runtime = folder(u"run"_s);
    QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    qputenv("XDG_RUNTIME_DIR", runtime.toUtf8());
}

void tst_SingleInstance::nobodyRuns()
{
    const auto outcome = start(folder(u"journal"_s));
    QVERIFY(outcome);
    QCOMPARE(*outcome, Outcome::First);
}

void tst_SingleInstance::aSecondStartIsAnsweredAndShows()
{
    SingleInstance running(folder(u"journal"_s));
    QVERIFY(running.start() == Outcome::First);
    QSignalSpy shows(&running, &SingleInstance::showRequested);
    const auto outcome = start(folder(u"journal"_s));
    QVERIFY(outcome);
    QCOMPARE(*outcome, Outcome::Shown);
    QCOMPARE(shows.count(), 1);
}

void tst_SingleInstance::eachLaterStartIsAnswered()
{
    SingleInstance running(folder(u"journal"_s));
    QVERIFY(running.start() == Outcome::First);
    QSignalSpy shows(&running, &SingleInstance::showRequested);
    for (int i = 1; i <= 5; ++i) {
        QCOMPARE(start(folder(u"journal"_s)).value_or(Outcome::First), Outcome::Shown);
        QCOMPARE(shows.count(), i);
    }
}

void tst_SingleInstance::packagesAreHandedOver_data()
{
    QTest::addColumn<QStringList>("packages");
    QTest::newRow("one") << QStringList{u"/home/ana/Mine.tembrabackup"_s};
    QTest::newRow("several, in this order") << QStringList{u"/c"_s, u"/a"_s, u"/b"_s, u"/a"_s};
    QTest::newRow("of two lines") << QStringList{u"/two\nlines\n"_s, u"/show\n"_s, u"open\n"_s};
    QTest::newRow("in another alphabet") << QStringList{u"/Übergabe 山田 🎉"_s};
    QString everything;
    for (char16_t character = 1; character < 0xD800; ++character)
        everything += QChar(character);
    QTest::newRow("of every character") << QStringList{everything};
    QStringList many;
    for (int i = 0; i < 20'000; ++i)
        many.append(u"/%1/%2"_s.arg(QString(100, u'x')).arg(i));
    QTest::newRow("as many as a command line holds") << many;
}

void tst_SingleInstance::packagesAreHandedOver()
{
    QFETCH(QStringList, packages);
    SingleInstance running(folder(u"journal"_s));
    QVERIFY(running.start() == Outcome::First);
    QSignalSpy shows(&running, &SingleInstance::showRequested);
    QSignalSpy opens(&running, &SingleInstance::openRequested);
    const auto outcome = start(folder(u"journal"_s), packages);
    QVERIFY(outcome);
    QCOMPARE(*outcome, Outcome::Shown);
    QTRY_COMPARE(opens.count(), 1);
    QCOMPARE(opens.first().first().toStringList(), packages);
    QCOMPARE(shows.count(), 1);
}

void tst_SingleInstance::packagesComeInPieces()
{
    SingleInstance running(folder(u"journal"_s));
    QVERIFY(running.start() == Outcome::First);
    QSignalSpy opens(&running, &SingleInstance::openRequested);
    QLocalSocket client;
    client.connectToServer(socketFile());
    QVERIFY(client.waitForConnected());
    const QByteArray request("open\n/a\0/b\0\0", 12);
    for (const char byte : request.chopped(1)) {
        client.write(&byte, 1);
        QVERIFY(client.flush());
        QTest::qWait(10);
        QCOMPARE(client.bytesAvailable(), 0);
    }
    QCOMPARE(opens.count(), 0);
    client.write("\0", 1);
    QTRY_COMPARE(opens.count(), 1);
    QCOMPARE(opens.first().first().toStringList(), (QStringList{u"/a"_s, u"/b"_s}));
    QTRY_COMPARE(client.bytesAvailable(), 6);
    QCOMPARE(client.readAll(), "shown\n");
}

/// Such a one runs an event loop of its own, until somebody has read it.
void tst_SingleInstance::anAlertKeepsNobodyWaiting()
{
    SingleInstance running(folder(u"journal"_s));
    QVERIFY(running.start() == Outcome::First);
    QEventLoop alert;
    QStringList opened;
    connect(&running, &SingleInstance::openRequested, this, [&](const QStringList &packages) {
        opened += packages;
        if (opened.size() == 1)
            alert.exec();
    });
    QElapsedTimer timer;
    timer.start();
    const auto second = [&](const QString &package) {
        return SingleInstance(folder(u"journal"_s)).start({package});
    };
    QList<Outcome> outcomes;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        for (const QString &package : {u"/a"_s, u"/b"_s})
            outcomes.append(second(package).value_or(Outcome::First));
    }));
    connect(thread.get(), &QThread::finished, &alert, &QEventLoop::quit);
    thread->start();
    QTRY_VERIFY(thread->isFinished());
    QTRY_COMPARE(opened, (QStringList{u"/a"_s, u"/b"_s}));
    QCOMPARE(outcomes, (QList{Outcome::Shown, Outcome::Shown}));
    QVERIFY(timer.elapsed() < 3000);
}

void tst_SingleInstance::aFolderIsTheSameThroughALink()
{
    SingleInstance running(folder(u"journal"_s));
    QVERIFY(running.start() == Outcome::First);
    QVERIFY(QFile::link(folder(u"journal"_s), m_place->filePath(u"link"_s)));
    QCOMPARE(start(m_place->filePath(u"link"_s)).value_or(Outcome::First), Outcome::Shown);
    QCOMPARE(start(m_place->filePath(u"run/../journal/"_s)).value_or(Outcome::First),
             Outcome::Shown);
}

void tst_SingleInstance::anotherFolderIsAnotherProgram()
{
    SingleInstance running(folder(u"journal"_s));
    QVERIFY(running.start() == Outcome::First);
    QSignalSpy shows(&running, &SingleInstance::showRequested);
    QCOMPARE(start(folder(u"other"_s)).value_or(Outcome::Shown), Outcome::First);
    QCOMPARE(shows.count(), 0);
}

void tst_SingleInstance::onlyTheUserReachesTheSocket()
{
    SingleInstance running(folder(u"journal"_s));
    QVERIFY(running.start() == Outcome::First);
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther
                                      | QFile::WriteOther;
    QVERIFY(!socketFile().isEmpty());
    QVERIFY(!(QFile::permissions(socketFile()) & others));
}

void tst_SingleInstance::aDeadSocketIsNoObstacle()
{
    const QString socket = socketLeftBehind();
    QVERIFY(leaveDeadSocket(socket));
    QVERIFY(QFileInfo::exists(socket));
    SingleInstance running(folder(u"journal"_s));
    QVERIFY(running.start() == Outcome::First);
    QVERIFY(start(folder(u"journal"_s)) == Outcome::Shown);
}

/// One has the lock before it has the socket, and for a while after.
void tst_SingleInstance::oneThatOnlyStartsIsWaitedFor()
{
    const QString socket = socketLeftBehind();
    int lock = lockFolder(folder(u"journal"_s));
    QVERIFY(lock >= 0);
    QLocalServer starting;
    connect(&starting, &QLocalServer::newConnection, this, [&] {
        QLocalSocket *client = starting.nextPendingConnection();
        client->write("shown\n");
        client->flush();
    });
    QTimer::singleShot(300, &starting, [&] { QVERIFY(starting.listen(socket)); });
    QVERIFY(start(folder(u"journal"_s)) == Outcome::Shown);
    ::close(lock);
}

void tst_SingleInstance::oneThatEndsIsWaitedFor()
{
    const QString socket = socketLeftBehind();
    int lock = lockFolder(folder(u"journal"_s));
    QVERIFY(lock >= 0);
    QLocalServer ending;
    QVERIFY(ending.listen(socket));
    connect(&ending, &QLocalServer::newConnection, this,
            [&] { ending.nextPendingConnection()->abort(); });
    bool hasEnded = false;
    QTimer::singleShot(500, &ending, [&] {
        ending.close();
        ::close(lock);
        hasEnded = true;
    });
    QVERIFY(start(folder(u"journal"_s)) == Outcome::First);
    QVERIFY(hasEnded);
}

void tst_SingleInstance::oneThatIsAboutToEndPutsOthersOff_data()
{
    QTest::addColumn<bool>("ends");
    QTest::newRow("and ends") << true;
    QTest::newRow("and stays after all") << false;
}

void tst_SingleInstance::oneThatIsAboutToEndPutsOthersOff()
{
    QFETCH(bool, ends);
    auto running = std::make_unique<SingleInstance>(folder(u"journal"_s));
    QVERIFY(running->start() == Outcome::First);
    bool isEnding = true;
    running->setMayAnswer([&] { return !isEnding; });
    QSignalSpy shows(running.get(), &SingleInstance::showRequested);
    QTimer::singleShot(400, this, [&] {
        QCOMPARE(shows.count(), 0);
        isEnding = false;
        if (ends)
            running.reset();
    });
    QVERIFY(start(folder(u"journal"_s)) == (ends ? Outcome::First : Outcome::Shown));
    QCOMPARE(shows.count(), ends ? 0 : 1);
}

void tst_SingleInstance::oneThatHangsIsToldOf()
{
    SingleInstance hanging(folder(u"journal"_s));
    QVERIFY(hanging.start() == Outcome::First);
    Result<Outcome> outcome = Outcome::First;
    const std::unique_ptr<QThread> thread(
        QThread::create([&] { outcome = SingleInstance(folder(u"journal"_s)).start(); }));
    thread->start();
    QVERIFY(thread->wait(15'000)); // Its event loop does not run meanwhile.
    QVERIFY(!outcome);
    QVERIFY2(outcome.error().message.contains(
                 u"already running with this journal but does not answer"),
             qPrintable(outcome.error().message));
}

/// The first is the first for as long as it lives, and nobody takes its socket away.
void tst_SingleInstance::ofManyAtOnceOneIsTheFirst()
{
    for (int run = 0; run < 20; ++run) {
        folder(u"journal"_s);
        std::atomic<int> firsts = 0;
        std::atomic<int> ended = 0;
        std::atomic<bool> mayEnd = false;
        std::vector<std::unique_ptr<QThread>> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back(QThread::create([&, i] {
                SingleInstance instance(folder(u"journal"_s));
                const auto outcome = instance.start({u"/%1"_s.arg(i)});
                if (outcome == Outcome::First)
                    ++firsts;
                ++ended;
                while (outcome == Outcome::First && !mayEnd)
                    QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
            }));
        }
        for (const auto &thread : threads)
            thread->start();
        QTRY_COMPARE(ended, 4);
        QCOMPARE(firsts, 1);
        QVERIFY(start(folder(u"journal"_s)) == Outcome::Shown);
        mayEnd = true;
        for (const auto &thread : threads)
            QVERIFY(thread->wait());
    }
}

void tst_SingleInstance::withoutAFolderOfTheSessionTheSocketIsInTheJournals_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("no such folder") << 0;
    QTest::newRow("one that others can look into") << 0755;
    QTest::newRow("one that is shared") << 01777;
}

void tst_SingleInstance::withoutAFolderOfTheSessionTheSocketIsInTheJournals()
{
    QFETCH(int, mode);
    const QString shared = m_place->filePath(u"shared"_s);
    if (mode != 0) {
        folder(u"shared"_s);
        QCOMPARE(::chmod(QFile::encodeName(shared).constData(), mode_t(mode)), 0);
    }
    qputenv("XDG_RUNTIME_DIR", shared.toUtf8());
    const QString journal = folder(u"journal"_s);
    QFile::setPermissions(journal, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    SingleInstance running(journal);
    QVERIFY(running.start() == Outcome::First);
    QVERIFY(QDir(shared).isEmpty());
    QCOMPARE(QDir(journal).entryList(QDir::System).size(), 1);
    QVERIFY(start(journal) == Outcome::Shown);
}

void tst_SingleInstance::aFolderThatOthersCanWriteToGetsNoSocket()
{
    qunsetenv("XDG_RUNTIME_DIR");
    const QString journal = folder(u"journal"_s);
    QCOMPARE(::chmod(QFile::encodeName(journal).constData(), 0777), 0);
    SingleInstance running(journal);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^A second start will not find"_s));
    QVERIFY(running.start() == Outcome::First);
    QVERIFY(QDir(journal).isEmpty(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot));
}

void tst_SingleInstance::anotherUserIsNotHeard()
{
    if (::geteuid() != 0)
        QSKIP("Only an administrator can act as another user.");
    SingleInstance running(folder(u"journal"_s));
    QVERIFY(running.start() == Outcome::First);
    QSignalSpy shows(&running, &SingleInstance::showRequested);
    const QByteArray socket = QFile::encodeName(socketFile());
    // As if it had come there all the same.
    for (const QString &place : {m_place->path(), m_place->filePath(u"run"_s), socketFile()})
        QCOMPARE(::chmod(QFile::encodeName(place).constData(), 0777), 0);
    const pid_t stranger = ::fork();
    if (stranger == 0) {
        const bool isOther = ::setuid(65534) == 0;
        const int handle = connectTo(socket);
        ::_exit(isOther && handle >= 0 && ::write(handle, "show\n", 5) == 5 ? 0 : 1);
    }
    int status = -1;
    QTRY_VERIFY(status == 0 || ::waitpid(stranger, &status, WNOHANG) == stranger);
    QCOMPARE(status, 0);
    QTest::qWait(200);
    QCOMPARE(shows.count(), 0);
}

/// Whoever put a socket there instead of the program that has the lock.
void tst_SingleInstance::anotherUserIsNotAsked()
{
    if (::geteuid() != 0)
        QSKIP("Only an administrator can act as another user.");
    const QByteArray socket = QFile::encodeName(socketLeftBehind());
    const int lock = lockFolder(folder(u"journal"_s));
    QVERIFY(lock >= 0);
    for (const QString &place : {m_place->path(), m_place->filePath(u"run"_s)})
        QCOMPARE(::chmod(QFile::encodeName(place).constData(), 0777), 0);
    std::array<int, 2> heard{};
    QCOMPARE(::pipe(heard.data()), 0);
    const pid_t stranger = ::fork();
    if (stranger == 0) {
        const int handle = ::setuid(65534) == 0 ? listenAt(socket) : -1;
        for (;;) {
            const int client = ::accept(handle, nullptr, nullptr);
            std::array<char, 64> bytes{};
            const ssize_t length = ::read(client, bytes.data(), bytes.size());
            if (length > 0 && ::write(heard[1], bytes.data(), size_t(length)) < 0)
                break;
            ::close(client);
        }
        ::_exit(0);
    }
    QTRY_VERIFY(QFileInfo::exists(QFile::decodeName(socket)));
    QCOMPARE(::chmod(QFile::encodeName(m_place->filePath(u"run"_s)).constData(), 0700), 0);
    const auto outcome = start(folder(u"journal"_s), {u"/home/ana/secret"_s});
    ::kill(stranger, SIGKILL);
    ::waitpid(stranger, nullptr, 0);
    ::close(heard[1]);
    ::close(lock);
    std::array<char, 64> bytes{};
    QCOMPARE(::read(heard[0], bytes.data(), bytes.size()), 0);
    ::close(heard[0]);
    QVERIFY(!outcome);
}

void tst_SingleInstance::otherRequestsShowNothing_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::newRow("another word") << QByteArray("quit\n");
    QTest::newRow("another word with paths") << QByteArray("shut\n/a\0\0", 9);
    QTest::newRow("no packages") << QByteArray("open\n\0\0", 7);
    QTest::newRow("half a package") << QByteArray("open\n/a");
    QTest::newRow("more than anybody reads") << QByteArray(40 << 20, 'x');
}

void tst_SingleInstance::otherRequestsShowNothing()
{
    QFETCH(QByteArray, request);
    SingleInstance running(folder(u"journal"_s));
    QVERIFY(running.start() == Outcome::First);
    QSignalSpy shows(&running, &SingleInstance::showRequested);
    QLocalSocket stranger;
    stranger.connectToServer(socketFile());
    QVERIFY(stranger.waitForConnected());
    QSignalSpy opens(&running, &SingleInstance::openRequested);
    stranger.write(request);
    QVERIFY(stranger.flush());
    QTest::qWait(100);
    QCOMPARE(shows.count(), 0);
    QCOMPARE(opens.count(), 0);
    QCOMPARE(start(folder(u"journal"_s)).value_or(Outcome::First), Outcome::Shown);
}

void tst_SingleInstance::theSocketGoesWithTheProgram()
{
    {
        SingleInstance running(folder(u"journal"_s));
        QVERIFY(running.start() == Outcome::First);
        QVERIFY(!socketFile().isEmpty());
    }
    QVERIFY(socketFile().isEmpty());
}

QTEST_GUILESS_MAIN(tst_SingleInstance)
#include "tst_SingleInstance.moc"
