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
Result<Answer> ask(const QString &folder)
{
    Result<Answer> answer = Answer::NobodyRuns;
    const std::unique_ptr<QThread> thread(
        QThread::create([&] { answer = SingleInstance(folder).askRunningInstance(); }));
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
    void aFolderIsTheSameThroughALink();
    void anotherFolderIsAnotherProgram();
    void onlyTheUserReachesTheSocket();
    void aDeadSocketIsNoObstacle();
    void oneThatEndsMeanwhileIsNobody();
    void oneThatHangsIsToldOf();
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

void tst_SingleInstance::otherRequestsShowNothing()
{
    SingleInstance running(folder(u"journal"_s));
    running.listen();
    QSignalSpy shows(&running, &SingleInstance::showRequested);
    QLocalSocket stranger;
    stranger.connectToServer(socketFile());
    QVERIFY(stranger.waitForConnected());
    stranger.write("quit\n");
    QVERIFY(stranger.flush());
    QTest::qWait(100);
    QCOMPARE(shows.count(), 0);
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
