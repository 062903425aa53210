#include "Toolkit/Emoji/EmojiGridModel.h"

#include "Toolkit/Emoji/EmojiCatalogue.h"
#include "Toolkit/Emoji/EmojiText.h"
#include "Toolkit/PlainToolTip.h"

#include <algorithm>

namespace tembra {

EmojiGridModel::EmojiGridModel(int columns, QObject *parent)
    : QAbstractTableModel(parent)
    , m_columns(columns)
{
}

void EmojiGridModel::setSections(const QList<EmojiSection> &sections)
{
    beginResetModel();
    m_sections = sections;
    m_rows.clear();
    for (int section = 0; section < int(m_sections.size()); ++section) {
        if (!m_sections.at(section).title.isEmpty())
            m_rows.push_back({.section = section});
        const qsizetype size = m_sections.at(section).emoji.size();
        for (qsizetype start = 0; start < size; start += m_columns) {
            m_rows.push_back({.section = section,
                              .start = start,
                              .count = std::min<qsizetype>(m_columns, size - start)});
        }
    }
    endResetModel();
}

bool EmojiGridModel::isHeading(int row) const
{
    return m_rows.at(size_t(row)).count == 0;
}

const EmojiEntry *EmojiGridModel::entry(const QModelIndex &index) const
{
    if (!index.isValid())
        return nullptr;
    const Row &row = m_rows.at(size_t(index.row()));
    if (index.column() >= row.count)
        return nullptr;
    return m_sections.at(row.section).emoji.at(row.start + index.column());
}

QModelIndex EmojiGridModel::first() const
{
    const auto row = std::ranges::find_if(m_rows, [](const Row &any) { return any.count > 0; });
    return row == m_rows.end() ? QModelIndex() : index(int(row - m_rows.begin()), 0);
}

QModelIndex EmojiGridModel::last() const
{
    const auto row = std::find_if(m_rows.rbegin(), m_rows.rend(),
                                  [](const Row &any) { return any.count > 0; });
    if (row == m_rows.rend())
        return {};
    return index(int(m_rows.rend() - row) - 1, int(row->count) - 1);
}

QModelIndex EmojiGridModel::indexIn(int row, int column) const
{
    return index(row, std::min(column, int(m_rows.at(size_t(row)).count) - 1));
}

QModelIndex EmojiGridModel::along(const QModelIndex &from, int steps) const
{
    if (!entry(from))
        return first();
    QModelIndex at = from;
    const int direction = steps < 0 ? -1 : 1;
    for (; steps != 0; steps -= direction) {
        QModelIndex next = at.siblingAtColumn(at.column() + direction);
        if (!entry(next)) {
            const QModelIndex other = across(at, direction);
            if (other.row() == at.row())
                return at;
            next = indexIn(other.row(), direction > 0 ? 0 : m_columns - 1);
        }
        at = next;
    }
    return at;
}

QModelIndex EmojiGridModel::across(const QModelIndex &from, int rows) const
{
    if (!entry(from))
        return first();
    int reached = from.row();
    const int direction = rows < 0 ? -1 : 1;
    for (int row = reached + direction; rows != 0 && row >= 0 && row < rowCount();
         row += direction) {
        if (isHeading(row))
            continue;
        reached = row;
        rows -= direction;
    }
    return indexIn(reached, from.column());
}

int EmojiGridModel::firstRow(int section) const
{
    const auto row = std::ranges::find(m_rows, section, &Row::section);
    return row == m_rows.end() ? -1 : int(row - m_rows.begin());
}

int EmojiGridModel::sectionAt(int row) const
{
    return row < 0 || row >= rowCount() ? -1 : m_rows.at(size_t(row)).section;
}

QModelIndex EmojiGridModel::firstOf(int section) const
{
    const int row = firstRow(section);
    return row < 0 ? QModelIndex() : index(isHeading(row) ? row + 1 : row, 0);
}

int EmojiGridModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

int EmojiGridModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_columns;
}

QVariant EmojiGridModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    if (isHeading(index.row())) {
        const bool isTitle = index.column() == 0
                             && (role == Qt::DisplayRole || role == Qt::AccessibleTextRole);
        return isTitle ? m_sections.at(m_rows.at(size_t(index.row())).section).title : QVariant();
    }
    const EmojiEntry *emoji = entry(index);
    if (!emoji)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return displayText(emoji->text);
    case Qt::ToolTipRole:
        return plainToolTip(emoji->name);
    case Qt::AccessibleTextRole:
        return emoji->name;
    case EmojiRole:
        return emoji->text;
    case HasSkinTonesRole:
        return m_offersSkinTones && !emoji->skinTones.empty();
    default:
        return {};
    }
}

Qt::ItemFlags EmojiGridModel::flags(const QModelIndex &index) const
{
    return entry(index) ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren
                        : Qt::NoItemFlags;
}

} // namespace tembra
