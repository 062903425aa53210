#include "Store/Rows/RecordArchive.h"

#include <algorithm>
#include <cstring>
#include <tuple>

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

void appendValue(QByteArray &bytes, const Value &value)
{
    bytes.append(char(value.index()));
    if (const auto *number = std::get_if<qint64>(&value)) {
        append(bytes, *number);
    } else if (const auto *date = std::get_if<double>(&value)) {
        append(bytes, *date);
    } else if (const auto *text = std::get_if<QString>(&value)) {
        const QByteArray utf8 = text->toUtf8();
        append(bytes, quint32(utf8.size()));
        bytes.append(utf8);
    }
}

Value takeValue(const char *&place)
{
    switch (*place++) {
    case 1:
        return take<qint64>(place);
    case 2:
        return take<double>(place);
    case 3: {
        const auto size = take<quint32>(place);
        const QString text = size == 0 ? QString(QLatin1String(""))
                                       : QString::fromUtf8(place, qsizetype(size));
        place += size;
        return text;
    }
    default:
        return {};
    }
}

static_assert(std::is_same_v<Value, std::variant<std::monostate, qint64, double, QString>>);

} // namespace

RecordArchive::RecordArchive(int entityCount) : m_rows(size_t(entityCount)) {}

void RecordArchive::addRow(ObjectID id, const RowReader::Row &row)
{
    QByteArray &bytes = m_rows[size_t(id.entity)];
    append(bytes, id.key);
    append(bytes, quint16(row.size()));
    for (const Value &value : row)
        appendValue(bytes, value);
}

void RecordArchive::finish()
{
    const auto order = [](const LinkKey &link) {
        return std::tie(link.entity, link.property, link.owner, link.other);
    };
    std::sort(m_links.begin(), m_links.end(),
              [&](const LinkKey &a, const LinkKey &b) { return order(a) < order(b); });
    m_links.erase(std::unique(m_links.begin(), m_links.end()), m_links.end());
    m_links.shrink_to_fit();
    for (QByteArray &bytes : m_rows)
        bytes.squeeze();
}

void RecordArchive::forEachRow(const Visitor &visit) const
{
    for (size_t entity = 0; entity < m_rows.size(); ++entity) {
        const char *place = m_rows[entity].constData();
        const char *end = place + m_rows[entity].size();
        while (place < end) {
            const auto key = take<qint64>(place);
            RowReader::Row row(take<quint16>(place));
            for (Value &value : row)
                value = takeValue(place);
            if (!visit({int(entity), key}, std::move(row)))
                return;
        }
    }
}

bool RecordArchive::isEmpty() const
{
    return m_links.empty() && m_cleared.empty()
           && std::all_of(m_rows.begin(), m_rows.end(),
                          [](const QByteArray &bytes) { return bytes.isEmpty(); });
}

size_t RecordArchive::byteSize() const
{
    size_t size = sizeof *this + m_links.size() * sizeof(LinkKey)
                  + m_cleared.size() * sizeof(ClearedToOne);
    for (const QByteArray &bytes : m_rows)
        size += size_t(bytes.size());
    return size;
}

} // namespace tembra
