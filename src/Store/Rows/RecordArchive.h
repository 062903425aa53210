#pragma once

#include "Store/Objects/UnwrittenEdits.h"
#include "Store/Rows/RowReader.h"
#include "Store/Schema/ObjectID.h"

#include <QByteArray>

#include <functional>
#include <vector>

namespace tembra {

/// Deleted records with their links, held compactly (texts as UTF-8) so that they can be brought
/// back as they were.
class RecordArchive
{
public:
    /// A to-one of a surviving record that pointed to a deleted one.
    struct ClearedToOne
    {
        ObjectID id;
        int property;
        qint64 key;
    };

    explicit RecordArchive(int entityCount);

    void addRow(ObjectID id, const RowReader::Row &row);
    void addLink(const LinkKey &link) { m_links.push_back(link); }
    void addCleared(const ClearedToOne &cleared) { m_cleared.push_back(cleared); }
    /// To be called once everything was added.
    void finish();

    /// Visits the rows, entity by entity, until @p visit returns false.
    using Visitor = std::function<bool(ObjectID id, RowReader::Row row)>;
    void forEachRow(const Visitor &visit) const;
    const std::vector<LinkKey> &links() const { return m_links; }
    const std::vector<ClearedToOne> &cleared() const { return m_cleared; }

    bool isEmpty() const;
    size_t byteSize() const;

private:
    std::vector<QByteArray> m_rows; ///< By entity; rows one after the other.
    std::vector<LinkKey> m_links; ///< Each once, after finish().
    std::vector<ClearedToOne> m_cleared;
};

} // namespace tembra
