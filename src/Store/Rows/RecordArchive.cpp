#include "Store/Rows/RecordArchive.h"

#include "Store/File/Statement.h"

#include <algorithm>
#include <cstring>

namespace tembra {

namespace {

// A row is its key, the number of its values, and each value as one byte for its alternative of
// the variant, followed by its bytes; a text's bytes follow their number.

template<typename Plain>
void append(QByteArray &bytes, Plain plain)
{
    bytes.append(reinterpret_cast<const char *>(&plain), sizeof plain);
}

template<typename Plain>
Plain take(const char *&place)
{
    Plain plain;
    std::memcpy(&plain, place, sizeof plain);
    place += sizeof plain;
    return plain;
}

void appendValue(QByteArray &bytes, const StoredValue &value)
{
    bytes.append(char(value.index()));
    if (const auto *number = std::get_if<qint64>(&value)) {
        append(bytes, *number);
    } else if (const auto *date = std::get_if<double>(&value)) {
        append(bytes, *date);
    } else if (const auto *text = std::get_if<QByteArrayView>(&value)) {
        append(bytes, quint32(text->size()));
        bytes.append(*text);
    }
}

StoredValue takeValue(const char *&place)
{
    switch (*place++) {
    case 1:
        return take<qint64>(place);
    case 2:
        return take<double>(place);
    case 3: {
        const auto size = take<quint32>(place);
        const QByteArrayView text(place, qsizetype(size));
        place += size;
        return text;
    }
    default:
        return {};
    }
}

static_assert(
    std::is_same_v<StoredValue, std::variant<std::monostate, qint64, double, QByteArrayView>>);

} // namespace

RecordArchive::RecordArchive(int entityCount) : m_rows(size_t(entityCount)) {}

void RecordArchive::addRow(ObjectID id, const Statement &row, size_t columnCount)
{
    QByteArray &bytes = m_rows[size_t(id.entity)];
    append(bytes, id.key);
    append(bytes, quint16(columnCount));
    for (size_t column = 0; column < columnCount; ++column)
        appendValue(bytes, row.storedValue(int(column) + 1));
}

void RecordArchive::finish()
{
    std::sort(m_links.begin(), m_links.end());
    m_links.erase(std::unique(m_links.begin(), m_links.end()), m_links.end());
    m_links.shrink_to_fit();
    for (QByteArray &bytes : m_rows)
        bytes.squeeze();
}

void RecordArchive::forEachRow(const Visitor &visit) const
{
    std::vector<StoredValue> row;
    for (size_t entity = 0; entity < m_rows.size(); ++entity) {
        const char *place = m_rows[entity].constData();
        const char *end = place + m_rows[entity].size();
        while (place < end) {
            const auto key = take<qint64>(place);
            row.resize(take<quint16>(place));
            for (StoredValue &value : row)
                value = takeValue(place);
            if (!visit({int(entity), key}, row))
                return;
        }
    }
}

bool RecordArchive::isEmpty() const
{
    return m_links.empty()
           && std::all_of(m_rows.begin(), m_rows.end(),
                          [](const QByteArray &bytes) { return bytes.isEmpty(); });
}

size_t RecordArchive::byteSize() const
{
    size_t size = sizeof *this + m_links.size() * sizeof(LinkKey);
    for (const QByteArray &bytes : m_rows)
        size += size_t(bytes.size());
    return size;
}

} // namespace tembra
