#include "Application/SingleInstance.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLocalServer>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace tembra;
using namespace Qt::StringLiterals;
using Answer = SingleInstance::Answer;

namespace {

/// Asks from another thread, as a second process does: the first one must be free to answer.
Result<Answer> ask(const QString &folder, const QStringList &packages = {})
{
    Result<Answer> answer = Answer::NobodyRuns;
    const std::unique_ptr<QThread> thread(
        QThread::create([&] { answer = SingleInstance(folder).askRunningInstance(packages); }));
    thread->start();
    while (!thread->isFinished())
        QTest::qWait(5);
    return answer;
}

/// A socket file whose program is gone, as after "kill -9".
bool leaveDeadSocket(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    qstrncpy(address.sun_path, name.constData(), sizeof address.sun_path);
    const int handle = ::socket(AF_UNIX, SOCK_STREAM, 0);
    const bool made = ::bind(handle, reinterpret_cast<const sockaddr *>(&address), sizeof address)
                          == 0
                      && ::listen(handle, 1) == 0;
    ::close(handle);
    return made;
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
    void oneThatEndsMeanwhileIsNobody();
    void oneThatHangsIsToldOf();
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
                               .entryInfoList(QDir::System | QDir::Files | QDir::NoDotAndDotDot);
        return files.size() == 1 ? files.first().filePath() : QString();
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
    const auto answer = ask(folder(u"journal"_s));
    QVERIFY(answer);
    QCOMPARE(*answer, Answer::NobodyRuns);
}

void tst_SingleInstance::aSecondStartIsAnsweredAndShows()
{
    SingleInstance running(folder(u"journal"_s));
    running.listen();
    QSignalSpy shows(&running, &SingleInstance::showRequested);
    const auto answer = ask(folder(u"journal"_s));
    QVERIFY(answer);
    QCOMPARE(*answer, Answer::Shown);
    QCOMPARE(shows.count(), 1);
}

void tst_SingleInstance::eachLaterStartIsAnswered()
{
    SingleInstance running(folder(u"journal"_s));
    running.listen();
    QSignalSpy shows(&running, &SingleInstance::showRequested);
    for (int i = 1; i <= 5; ++i) {
        QCOMPARE(ask(folder(u"journal"_s)).value_or(Answer::NobodyRuns), Answer::Shown);
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
    running.listen();
    QSignalSpy shows(&running, &SingleInstance::showRequested);
    QSignalSpy opens(&running, &SingleInstance::openRequested);
    const auto answer = ask(folder(u"journal"_s), packages);
    QVERIFY(answer);
    QCOMPARE(*answer, Answer::Shown);
    QTRY_COMPARE(opens.count(), 1);
    QCOMPARE(opens.first().first().toStringList(), packages);
    QCOMPARE(shows.count(), 1);
}

void tst_SingleInstance::packagesComeInPieces()
{
    SingleInstance running(folder(u"journal"_s));
    running.listen();
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
    running.listen();
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
        return SingleInstance(folder(u"journal"_s)).askRunningInstance({package});
    };
    QList<Answer> answers;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        for (const QString &package : {u"/a"_s, u"/b"_s})
            answers.append(second(package).value_or(Answer::NobodyRuns));
    }));
    connect(thread.get(), &QThread::finished, &alert, &QEventLoop::quit);
    thread->start();
    QTRY_VERIFY(thread->isFinished());
    QTRY_COMPARE(opened, (QStringList{u"/a"_s, u"/b"_s}));
    QCOMPARE(answers, (QList{Answer::Shown, Answer::Shown}));
    QVERIFY(timer.elapsed() < 3000);
}

void tst_SingleInstance::aFolderIsTheSameThroughALink()
{
    SingleInstance running(folder(u"journal"_s));
    running.listen();
    QVERIFY(QFile::link(folder(u"journal"_s), m_place->filePath(u"link"_s)));
    QCOMPARE(ask(m_place->filePath(u"link"_s)).value_or(Answer::NobodyRuns), Answer::Shown);
    QCOMPARE(ask(m_place->filePath(u"run/../journal/"_s)).value_or(Answer::NobodyRuns),
             Answer::Shown);
}

void tst_SingleInstance::anotherFolderIsAnotherProgram()
{
    SingleInstance running(folder(u"journal"_s));
    running.listen();
    QSignalSpy shows(&running, &SingleInstance::showRequested);
    QCOMPARE(ask(folder(u"other"_s)).value_or(Answer::Shown), Answer::NobodyRuns);
    QCOMPARE(shows.count(), 0);
}

void tst_SingleInstance::onlyTheUserReachesTheSocket()
{
    SingleInstance running(folder(u"journal"_s));
    running.listen();
    const QFile::Permissions others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther
                                      | QFile::WriteOther;
    QVERIFY(!socketFile().isEmpty());
    QVERIFY(!(QFile::permissions(socketFile()) & others));
}

void tst_SingleInstance::aDeadSocketIsNoObstacle()
{
    QString socket;
    {
        SingleInstance running(folder(u"journal"_s));
        running.listen();
        socket = socketFile();
    }
    QVERIFY(leaveDeadSocket(socket));
    QVERIFY(QFileInfo::exists(socket));
    QCOMPARE(ask(folder(u"journal"_s)).value_or(Answer::Shown), Answer::NobodyRuns);
    SingleInstance running(folder(u"journal"_s));
    running.listen();
    QCOMPARE(ask(folder(u"journal"_s)).value_or(Answer::NobodyRuns), Answer::Shown);
}

void tst_SingleInstance::oneThatEndsMeanwhileIsNobody()
{
    QString socket;
    {
        SingleInstance running(folder(u"journal"_s));
        running.listen();
        socket = socketFile();
    }
    QLocalServer ending;
    QVERIFY(ending.listen(socket));
    connect(&ending, &QLocalServer::newConnection, this,
            [&] { ending.nextPendingConnection()->abort(); });
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(ask(folder(u"journal"_s)).value_or(Answer::Shown), Answer::NobodyRuns);
    QVERIFY(timer.elapsed() < 3000);
}

void tst_SingleInstance::oneThatHangsIsToldOf()
{
    QString socket;
    {
        SingleInstance running(folder(u"journal"_s));
        running.listen();
        socket = socketFile();
    }
    QLocalServer hanging;
    QVERIFY(hanging.listen(socket));
    QElapsedTimer timer;
    timer.start();
    const auto answer = ask(folder(u"journal"_s));
    QVERIFY(!answer);
    QVERIFY2(answer.error().message.contains(
                 u"already running with this journal but does not answer"),
             qPrintable(answer.error().message));
    QVERIFY(timer.elapsed() < 10'000);
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
    running.listen();
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
    QCOMPARE(ask(folder(u"journal"_s)).value_or(Answer::NobodyRuns), Answer::Shown);
}

void tst_SingleInstance::theSocketGoesWithTheProgram()
{
    {
        SingleInstance running(folder(u"journal"_s));
        running.listen();
        QVERIFY(!socketFile().isEmpty());
    }
    QVERIFY(socketFile().isEmpty());
}

QTEST_GUILESS_MAIN(tst_SingleInstance)
#include "tst_SingleInstance.moc"
