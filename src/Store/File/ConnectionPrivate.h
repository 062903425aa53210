#pragma once

#include "Store/File/Connection.h"
#include "Store/File/Statement.h"

#include <QHash>

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Exception.h>
#include <SQLiteCpp/Statement.h>

#include <optional>

namespace tembra {

struct Statement::Private
{
    Private(Connection::Private &owner, const QByteArray &sql);

    /// Describes why the step failed with @p sqliteCode, and resets the statement.
    Error failed(int sqliteCode);

    Connection::Private &connection;
    SQLite::Statement statement;
    int bindError = 0; ///< SQLite's code of the first bind that failed since the last step.
};

/// Which file and log were opened, by what the system knows them by. SQLite keeps its handles to
/// itself, and closing another one would take its locks away.
class OpenedFiles
{
public:
    void remember(const QString &file);
    bool areInPlace(const QString &file) const;

private:
    struct Identity
    {
        quint64 device = 0;
        quint64 inode = 0;
        bool operator==(const Identity &) const = default;
    };
    static std::optional<Identity> identityOf(const QString &path);

    std::optional<Identity> m_file;
    std::optional<Identity> m_log;
};

struct Connection::Private
{
    Private(const QString &name, SQLite::Database &&opened)
        : file(name)
        , database(std::move(opened))
    {
    }

    /// Remembers the fault of the call that just failed with @p sqliteCode and describes it.
    Error failed(int sqliteCode);

    QString file;
    SQLite::Database database;
    QHash<QByteArray, std::shared_ptr<Statement>> statements; ///< Closed before the database.
    StoreFault lastFault = StoreFault::None;
    bool checkpointsOnClose = true;
    OpenedFiles files;
    /// Set when the log could not be synced: the system may have dropped what it failed to write,
    /// and a later sync would not tell. Until a checkpoint brought everything into the file itself,
    /// no commit can be called durable.
    bool logIsSuspect = false;
};

} // namespace tembra
