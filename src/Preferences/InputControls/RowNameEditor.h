#pragma once

#include <QLineEdit>
#include <QTimer>

class QAbstractItemDelegate;
class QAbstractItemModel;
class QAbstractItemView;
class QModelIndex;

namespace tembra {

/// The editor that an item delegate opens for the name of a row.
///
/// The text is written into the model shortly after it was typed, so that little is lost if the
/// program dies; Escape writes the name from before the editing again. Tab ends the editing and
/// opens no other editor. A name is one line: line breaks and tabs become blanks.
class RowNameEditor final : public QLineEdit
{
    Q_OBJECT

public:
    /// @p delegate, which made the editor, gives its events to handleEvent().
    RowNameEditor(QAbstractItemDelegate *delegate, QWidget *parent);

    /// Shows the record's name. A text that is being typed is left alone.
    void setName(const QString &name);
    /// Writes the text into the model if it differs from the record's name.
    void writeTo(QAbstractItemModel *model, const QModelIndex &index);
    /// Has the delegate write the text, if it differs from the record's name. Leaves caret and focus
    /// as they are; while an input method is composing it does nothing.
    void commit();
    /// Handles Escape and Tab; to be called first in the delegate's event filter. True when nobody
    /// else is to handle the event.
    bool handleEvent(QEvent *event);

protected:
    void inputMethodEvent(QInputMethodEvent *event) override;

private:
    bool isUncommitted() const { return text() != m_committed; }
    void revert();
    void scheduleCommit();

    QAbstractItemDelegate *m_delegate;
    QString m_nameBefore;
    QString m_committed;
    QTimer m_commitTimer;
    bool m_hasName = false;
    bool m_isComposing = false;
};

/// Opens the editor of a cell and gives it the keyboard, where it can be seen. An editor that is open
/// already stays as it is; one in another cell commits.
void editInPlace(QAbstractItemView &view, const QModelIndex &index);

} // namespace tembra
