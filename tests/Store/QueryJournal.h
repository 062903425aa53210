#pragma once

#include "Store/File/Connection.h"
#include "Store/File/Statement.h"
#include "Store/Query/FetchStatement.h"
#include "Store/Schema/ObjectModel.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

#include <map>
#include <set>
#include <vector>

namespace tembra::test {

enum JournalEntity { counterpartEntity, tagEntity, sessionEntity, noteEntity };

/// Teammates, tags, meetings and notes, with the indexes their queries are meant to use.
ObjectModel queryModel();

/// The same records twice: in a store, and as plain values.
class QueryJournal
{
public:
    using Row = std::vector<Value>; ///< By property number, attributes and to-ones.

    QueryJournal();

    /// Adds records with NULLs everywhere, empty texts, equal dates and meetings without teammates.
    void fillAtRandom(QRandomGenerator &random, int sessions);
    qint64 insert(int entity, Row row);
    void link(qint64 session, qint64 tag);

    Connection &connection() const { return *m_connection; }
    Result<std::vector<qint64>> fetchKeys(const FetchRequest &request) const;
    /// How SQLite goes about it, one step per line.
    QByteArray plan(const FetchRequest &request) const;

    const ObjectModel model = queryModel();
    std::vector<std::map<qint64, Row>> rows; ///< By entity.
    std::set<std::pair<qint64, qint64>> links; ///< Meeting and tag.

private:
    QTemporaryDir m_folder;
    std::unique_ptr<Connection> m_connection;
    qint64 m_lastKey = 0;
};

/// The texts of random notes and names; some differ in case and accents only.
QString randomText(QRandomGenerator &random);

} // namespace tembra::test
