#include "Application/SingleInstance.h"

#include "Foundation/Logging.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QLocalSocket>
#include <QStandardPaths>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int patienceInMilliseconds = 4000;
constexpr QByteArrayView showRequest = "show\n";
constexpr QByteArrayView shownAnswer = "shown\n";

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

} // namespace

SingleInstance::SingleInstance(const QString &dataDirectory, QObject *parent)
    : QObject(parent)
    , m_serverName(serverNameFor(dataDirectory))
{
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    connect(&m_server, &QLocalServer::newConnection, this, &SingleInstance::answer);
}

Result<SingleInstance::Answer> SingleInstance::askRunningInstance() const
{
    QLocalSocket socket;
    socket.connectToServer(m_serverName);
    // One that is still connecting after so long waits in the queue of a program that hangs.
    if (!socket.waitForConnected(patienceInMilliseconds)
        && socket.state() == QLocalSocket::UnconnectedState)
        return Answer::NobodyRuns;
    socket.write(showRequest.data(), showRequest.size());
    QByteArray received;
    while (!received.contains('\n') && socket.waitForReadyRead(patienceInMilliseconds))
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

void SingleInstance::answer()
{
    while (QLocalSocket *client = m_server.nextPendingConnection()) {
        connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
        connect(client, &QLocalSocket::readyRead, this, [this, client] {
            if (client->readAll() != showRequest)
                return;
            Q_EMIT showRequested();
            client->write(shownAnswer.data(), shownAnswer.size());
            client->flush();
        });
    }
}

} // namespace tembra
