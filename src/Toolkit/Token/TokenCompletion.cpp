#include "Toolkit/Token/TokenCompletion.h"

#include "Foundation/Text/Abbreviation.h"

#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace tembra {

void TokenCompletion::offer(const QStringList &entries, int textStart)
{
    if (entries.isEmpty()) {
        close();
        return;
    }
    const bool wasOpen = isOpen();
    beginResetModel();
    m_entries = entries;
    m_textStart = textStart;
    m_wasMovedByKey = false;
    m_highlightedRow = m_highlightsFirst ? 0 : -1;
    endResetModel();
    Q_EMIT highlightedRowChanged(m_highlightedRow);
    if (!wasOpen)
        Q_EMIT openChanged(true);
}

void TokenCompletion::close()
{
    if (!isOpen())
        return;
    m_textStart = -1;
    m_highlightedRow = -1;
    Q_EMIT openChanged(false);
}

void TokenCompletion::setHighlightedRow(int row)
{
    if (std::exchange(m_highlightedRow, row) != row)
        Q_EMIT highlightedRowChanged(row);
}

bool TokenCompletion::moveHighlight(const QKeyEvent &event, int rowsPerPage)
{
    if (!isOpen() || (event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    const int row = rowFor(event.key(), rowsPerPage);
    if (row < 0)
        return false;
    setHighlightedRow(row);
    m_wasMovedByKey = true;
    return true;
}

/// The row that a key leads to; -1 if it leads to none.
int TokenCompletion::rowFor(int key, int rowsPerPage) const
{
    const int last = rowCount() - 1;
    const int current = m_highlightedRow;
    const int page = std::max(1, rowsPerPage - 1);
    switch (key) {
    case Qt::Key_Down:
        return current == last ? 0 : current + 1;
    case Qt::Key_Up:
        return current <= 0 ? last : current - 1;
    case Qt::Key_PageDown:
        return std::min(last, std::max(current, 0) + page);
    case Qt::Key_PageUp:
        return current < 0 ? last : std::max(0, current - page);
    // As long as no key has moved the highlight, these move the caret.
    case Qt::Key_Home:
        return m_wasMovedByKey ? 0 : -1;
    case Qt::Key_End:
        return m_wasMovedByKey ? last : -1;
    default:
        return -1;
    }
}

void TokenCompletion::take(int row)
{
    if (!isOpen())
        return;
    const QString chosen = entry(row);
    const int start = m_textStart;
    close();
    Q_EMIT taken(chosen, start);
}

bool TokenCompletion::takeHighlighted()
{
    if (m_highlightedRow < 0)
        return false;
    take(m_highlightedRow);
    return true;
}

int TokenCompletion::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_entries.size());
}

QVariant TokenCompletion::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)
        return {};
    return singleLine(m_entries.at(index.row()));
}

} // namespace tembra
