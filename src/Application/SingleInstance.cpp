#include "Application/SingleInstance.h"

#include "Foundation/Logging.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QLocalSocket>
#include <QStandardPaths>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int timeoutInMilliseconds = 4000;
constexpr QByteArrayView showRequest = "show\n";
/// Paths follow, each with the one byte at its end that no path has in it; at the end an empty one.
constexpr QByteArrayView openRequest = "open\n";
constexpr QByteArrayView shownAnswer = "shown\n";
/// More than any command line holds.
constexpr qsizetype longestRequest = 32 << 20;

/// One name per data folder; short, because a socket's path may not be long.
QString serverNameFor(const QString &dataDirectory)
{
    const QString canonical = QFileInfo(dataDirectory).canonicalFilePath();
    const QByteArray folder = (canonical.isEmpty() ? dataDirectory : canonical).toUtf8();
    const QByteArray digest =
        QCryptographicHash::hash(folder, QCryptographicHash::Sha256).toHex().first(16);
    const QString runtime = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    const QString name = u"tembra-"_s + QString::fromLatin1(digest);
    return runtime.isEmpty() ? name : runtime + u'/' + name;
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

SingleInstance::SingleInstance(const QString &dataDirectory, QObject *parent)
    : QObject(parent)
    , m_serverName(serverNameFor(dataDirectory))
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::greet);
}

Result<SingleInstance::Answer> SingleInstance::askRunningInstance(const QStringList &packages) const
{
    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    // One that is still connecting after so long waits in the queue of a program that hangs.
    if (!socket.waitForConnected(timeoutInMilliseconds)
        && socket.state() == QLocalSocket::UnconnectedState)
        return Answer::NobodyRuns;
    socket.write(requestFor(packages));
    QByteArray received;
    while (!received.contains('\n') && socket.waitForReadyRead(timeoutInMilliseconds))
        received += socket.readAll();
    if (received == shownAnswer)
        return Answer::Shown;
    if (socket.error() == QLocalSocket::PeerClosedError)
        return Answer::NobodyRuns;
    return failure(u"Tembra is already running with this journal but does not answer. "
                   "Close it, or end it in the system's task manager, then start again."_s);
}

void SingleInstance::listen()
{
    QLocalServer::removeServer(m_serverName);
    if (!m_server.listen(m_serverName))
        qCWarning(applicationLog, "A second start will not find this window: %s",
                  qUtf8Printable(m_server.errorString()));
}

void SingleInstance::greet()
{
    while (QLocalSocket *client = m_server.nextPendingConnection()) {
        connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
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
