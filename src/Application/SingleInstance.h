#pragma once

#include "Foundation/Result.h"

#include <QLocalServer>
#include <QObject>
#include <QString>
#include <QStringList>

#include <functional>

class QLocalSocket;

namespace tembra {

/// Makes later starts on the same data folder bring the running window forward instead, and hand over
/// the backups they were given. What keeps two programs from one store is the store's own lock; this is
/// the courtesy in front of it.
///
/// A lock of the operating system on the data folder decides who is first, so of starts in the same
/// moment exactly one is, and the socket belongs to whoever has the lock.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    explicit SingleInstance(const QString &dataDirectory, QObject *parent = nullptr);
    ~SingleInstance() override;

    enum class Outcome {
        First, ///< Nobody else runs; from now on this object hears of later starts.
        Shown ///< The running program has brought its window forward.
    };
    /// Becomes the first, or asks the program that is to come forward and to open these packages
    /// (absolute paths) if there are any. Waits for one that is only starting, or ending. Fails when one
    /// runs that does not answer. Call once.
    Result<Outcome> start(const QStringList &packages = {});
    /// Later starts are put off while this says no: they would rely on a program that is about to end.
    void setMayAnswer(std::function<bool()> mayAnswer) { m_mayAnswer = std::move(mayAnswer); }

Q_SIGNALS:
    void showRequested();
    void openRequested(const QStringList &packages);

private:
    enum class Lock { Taken, Busy, Impossible };
    enum class Reply { Shown, None, NobodyThere };

    Lock lockFolder();
    Reply ask(const QStringList &packages, int milliseconds) const;
    void listen();
    void greet();
    void read(QLocalSocket &client, QByteArray &request);

    QString m_dataDirectory;
    QString m_socketFile; ///< Empty where no folder for it is the user's alone.
    int m_lockedFolder = -1;
    QLocalServer m_server;
    std::function<bool()> m_mayAnswer = [] { return true; };
};

} // namespace tembra
