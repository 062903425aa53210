#pragma once

#include "Store/File/StoredValue.h"
#include "Store/Objects/LinkKey.h"
#include "Store/Schema/ObjectID.h"

#include <QByteArray>

#include <functional>
#include <vector>

namespace tembra {

class Statement;

/// Deleted records with their links, byte for byte as the store had them, so that they can be
/// brought back as they were.
class RecordArchive
{
public:
    explicit RecordArchive(int entityCount);

    /// Adds the current row of a statement: its key and @p columnCount values.
    void addRow(ObjectID id, const Statement &row, size_t columnCount);
    void addLink(const LinkKey &link) { m_links.push_back(link); }
    /// To be called once everything was added.
    void finish();

    /// Visits the rows, entity by entity, until @p visit returns false. The values, by property
    /// number, are the visitor's to change; texts belong to the archive.
    using Visitor = std::function<bool(ObjectID id, std::vector<StoredValue> &row)>;
    void forEachRow(const Visitor &visit) const;
    /// Each once, after finish().
    const std::vector<LinkKey> &links() const { return m_links; }

    bool isEmpty() const;
    size_t byteSize() const;

private:
    std::vector<QByteArray> m_rows; ///< By entity; rows one after the other.
    std::vector<LinkKey> m_links;
};

} // namespace tembra
