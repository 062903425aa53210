#include "Application/SingleInstance.h"

#include "Foundation/Logging.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// As long as a program may take to open its journal, or to end.
constexpr int timeoutInMilliseconds = 8000;
constexpr unsigned long pauseInMilliseconds = 20;
constexpr QByteArrayView showRequest = "show\n";
/// Paths follow, each with the one byte at its end that no path has in it; at the end an empty one.
constexpr QByteArrayView openRequest = "open\n";
constexpr QByteArrayView shownAnswer = "shown\n";
/// More than any command line holds.
constexpr qsizetype longestRequest = 32 << 20;

/// Whether nobody but the user (and root) can put anything into the folder; with @p closed, nor look
/// into it.
bool isUsersAlone(const QString &folder, bool closed)
{
    struct stat status = {};
    const mode_t others = closed ? S_IRWXG | S_IRWXO : S_IWGRP | S_IWOTH;
    return !folder.isEmpty() && ::stat(QFile::encodeName(folder).constData(), &status) == 0
           && S_ISDIR(status.st_mode) && status.st_uid == ::geteuid()
           && (status.st_mode & others) == 0;
}

/// One name per data folder; short, because a socket's path may not be long.
QString socketFileFor(const QString &dataDirectory)
{
    const QByteArray digest = QCryptographicHash::hash(dataDirectory.toUtf8(),
                                                       QCryptographicHash::Sha256)
                                  .toHex()
                                  .first(16);
    const QString name = u"/tembra-"_s + QString::fromLatin1(digest);
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (isUsersAlone(runtime, true))
        return runtime + name;
    return isUsersAlone(dataDirectory, false) ? dataDirectory + name : QString();
}

/// Whether a program of this very user is at the other end.
bool isOwnPeer(const QLocalSocket &socket)
{
    const int descriptor = int(socket.socketDescriptor());
#ifdef SO_PEERCRED
    struct ucred peer = {};
    socklen_t size = sizeof peer;
    return ::getsockopt(descriptor, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0
           && peer.uid == ::geteuid();
#else
    uid_t user = 0;
    gid_t group = 0;
    return ::getpeereid(descriptor, &user, &group) == 0 && user == ::geteuid();
#endif
}

QByteArray requestFor(const QStringList &packages)
{
    if (packages.isEmpty())
        return showRequest.toByteArray();
    QByteArray request = openRequest.toByteArray();
    for (const QString &package : packages)
        request += package.toUtf8() + '\0';
    return request + '\0';
}

/// The paths of a request that has come to its end; nothing of any other.
QStringList packagesIn(const QByteArray &request)
{
    constexpr QByteArrayView end("\0\0", 2);
    if (!request.startsWith(openRequest) || !request.endsWith(end))
        return {};
    const QByteArrayView paths =
        QByteArrayView(request).sliced(openRequest.size()).chopped(end.size());
    QStringList packages;
    if (!paths.isEmpty())
        packages = QString::fromUtf8(paths).split(QChar::Null);
    return packages;
}

} // namespace

SingleInstance::SingleInstance(const QString &dataDirectory, QObject *parent) : QObject(parent)
{
    const QString canonical = QFileInfo(dataDirectory).canonicalFilePath();
    m_dataDirectory = canonical.isEmpty() ? dataDirectory : canonical;
    m_socketFile = socketFileFor(m_dataDirectory);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::greet);
}

SingleInstance::~SingleInstance()
{
    // The socket first: whoever gets the lock next makes one of its own.
    m_server.close();
    if (m_lockedFolder >= 0)
        ::close(m_lockedFolder);
}

Result<SingleInstance::Outcome> SingleInstance::start(const QStringList &packages)
{
    QElapsedTimer waited;
    waited.start();
    const auto timeLeft = [&] {
        return std::max(0, timeoutInMilliseconds - int(waited.elapsed()));
    };
    while (timeLeft() > 0) {
        const Lock lock = lockFolder();
        if (lock == Lock::Taken)
            listen();
        if (lock != Lock::Busy)
            return Outcome::First;
        const Reply reply = ask(packages, timeLeft());
        if (reply == Reply::Shown)
            return Outcome::Shown;
        if (reply == Reply::None)
            break;
        // It has the lock but not yet, or no longer, the socket.
        QThread::msleep(pauseInMilliseconds);
    }
    return failure(u"Tembra is already running with this journal but does not answer. "
                   "Close it, or end it in the system's task manager, then start again."_s);
}

/// The folder itself is locked and no file in it, so that nothing is left behind, whatever happens.
SingleInstance::Lock SingleInstance::lockFolder()
{
    const int folder = ::open(QFile::encodeName(m_dataDirectory).constData(),
                              O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0)
        return Lock::Impossible; // The store will say what is wrong with it.
    if (::flock(folder, LOCK_EX | LOCK_NB) == 0) {
        m_lockedFolder = folder;
        return Lock::Taken;
    }
    const int reason = errno;
    ::close(folder);
    if (reason == EWOULDBLOCK)
        return Lock::Busy;
    qCWarning(applicationLog, "A second start will not find this window: the folder of the journal "
                              "cannot be locked.");
    return Lock::Impossible;
}

SingleInstance::Reply SingleInstance::ask(const QStringList &packages, int milliseconds) const
{
    if (m_socketFile.isEmpty())
        return Reply::NobodyThere;
    QElapsedTimer waited;
    waited.start();
    const auto timeLeft = [&] { return std::max(0, milliseconds - int(waited.elapsed())); };
    QLocalSocket socket;
    socket.connectToServer(m_socketFile);
    // One that is still connecting after so long waits in the queue of a program that hangs.
    if (!socket.waitForConnected(milliseconds))
        return socket.state() == QLocalSocket::UnconnectedState ? Reply::NobodyThere : Reply::None;
    if (!isOwnPeer(socket))
        return Reply::NobodyThere;
    socket.write(requestFor(packages));
    QByteArray received;
    while (!received.contains('\n') && socket.waitForReadyRead(timeLeft()))
        received += socket.readAll();
    if (received == shownAnswer)
        return Reply::Shown;
    return socket.error() == QLocalSocket::PeerClosedError ? Reply::NobodyThere : Reply::None;
}

/// Only with the lock: a socket that is there was left by a program that is gone.
void SingleInstance::listen()
{
    if (m_socketFile.isEmpty()) {
        qCWarning(applicationLog,
                  "A second start will not find this window: others can write to "
                  "the folder of the journal, and the session has none of its own.");
        return;
    }
    QLocalServer::removeServer(m_socketFile);
    if (!m_server.listen(m_socketFile))
        qCWarning(applicationLog, "A second start will not find this window: %s",
                  qUtf8Printable(m_server.errorString()));
}

void SingleInstance::greet()
{
    while (QLocalSocket *client = m_server.nextPendingConnection()) {
        connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
        if (!isOwnPeer(*client)) {
            client->abort();
            continue;
        }
        connect(client, &QLocalSocket::readyRead, this,
                [this, client, request = QByteArray()]() mutable { read(*client, request); });
    }
}

/// A long request comes in pieces; @p request is what came of it so far.
void SingleInstance::read(QLocalSocket &client, QByteArray &request)
{
    request += client.readAll();
    if (request.size() > longestRequest)
        return client.abort();
    const QStringList packages = packagesIn(request);
    if (request != showRequest && packages.isEmpty())
        return;
    request.clear();
    // It asks again, until there is an answer or nobody to ask.
    if (!m_mayAnswer())
        return client.abort();
    Q_EMIT showRequested();
    client.write(shownAnswer.data(), shownAnswer.size());
    client.flush();
    if (packages.isEmpty())
        return;
    // Later: nobody is to wait until an alert about a package was read.
    QMetaObject::invokeMethod(
        this, [this, packages] { Q_EMIT openRequested(packages); }, Qt::QueuedConnection);
}

} // namespace tembra
