#pragma once

#include "Foundation/Result.h"

#include <QLocalServer>
#include <QObject>
#include <QString>
#include <QStringList>

class QLocalSocket;

namespace tembra {

/// Lets a second start on the same data folder bring the running window forward instead, and hand
/// over the backups it was given. What keeps two programs from one store is the store's own lock; this
/// is the courtesy in front of it.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    explicit SingleInstance(const QString &dataDirectory, QObject *parent = nullptr);

    enum class Answer {
        NobodyRuns, ///< No program works on this folder, or none that listens, or one that is ending.
        Shown ///< The running program has brought its window forward.
    };
    /// Asks a running program to come forward, and to open these packages (absolute paths) if there
    /// are any; fails when one is there but does not answer.
    Result<Answer> askRunningInstance(const QStringList &packages = {}) const;

    /// Listens for later starts, on a socket that this user alone can reach. Call when nobody runs:
    /// whatever socket was left there is removed. A later start waits for its answer until the
    /// event loop runs.
    void listen();

Q_SIGNALS:
    void showRequested();
    void openRequested(const QStringList &packages);

private:
    void greet();
    void read(QLocalSocket &client, QByteArray &request);

    QString m_serverName;
    QLocalServer m_server;
};

} // namespace tembra
