#pragma once

#include <QByteArray>
#include <QString>

namespace tembra {

/// What SQLite's companion files of a database were like before it was opened, to put them back when
/// it turns out that it cannot be used. Only for as long as nothing was committed.
class CompanionFiles
{
public:
    explicit CompanionFiles(const QString &file);

    /// To be called when the database is closed, without a checkpoint.
    void restore() const;

private:
    QString m_log;
    QString m_index;
    qint64 m_logSize = -1; ///< -1: there was none. The log only grows at its end.
    qint64 m_indexSize = -1;
    QByteArray m_indexContent; ///< Small, and rewritten by whoever opens the database.
};

} // namespace tembra
