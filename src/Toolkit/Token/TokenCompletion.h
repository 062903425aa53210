#pragma once

#include <QAbstractListModel>
#include <QStringList>

class QKeyEvent;

namespace tembra {

/// The completions of the text being typed, one a row: which ones are offered, which one is
/// highlighted, and whether the list of them is open. `TokenCompletionList` shows them.
class TokenCompletion final : public QAbstractListModel
{
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;

    /// Whether the first completion is highlighted when new ones are offered, so that Return takes
    /// it; otherwise none is.
    void setHighlightsFirst(bool highlightsFirst) { m_highlightsFirst = highlightsFirst; }
    /// Opens the list with these for the text that begins at @p textStart; closes it if there are none.
    void offer(const QStringList &entries, int textStart);
    void close();
    bool isOpen() const { return m_textStart >= 0; }
    /// Where the text begins that is completed; -1 while the list is closed.
    int textStart() const { return m_textStart; }

    /// The whole completion; what a row displays ends early where it is very long.
    QString entry(int row) const { return m_entries.at(row); }
    /// -1 if there is none.
    int highlightedRow() const { return m_highlightedRow; }
    void setHighlightedRow(int row);
    /// Moves the highlight if the key is one that does. @p rowsPerPage is how many are seen at once.
    bool moveHighlight(const QKeyEvent &event, int rowsPerPage);

    /// Closes the list and signals that this completion was chosen.
    void take(int row);
    /// False if no completion is highlighted.
    bool takeHighlighted();

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

Q_SIGNALS:
    void openChanged(bool isOpen);
    void highlightedRowChanged(int row);
    /// The user chose this completion for the text that begins at @p textStart.
    void taken(const QString &entry, int textStart);

private:
    int rowFor(int key, int rowsPerPage) const;

    QStringList m_entries;
    int m_textStart = -1;
    int m_highlightedRow = -1;
    bool m_highlightsFirst = false;
    bool m_wasMovedByKey = false; ///< The highlight is where a key has moved it.
};

} // namespace tembra
