#pragma once

#include <QLineEdit>
#include <QTimer>

namespace tembra {

/// The field in which the name of a row is typed, in its place in the list.
///
/// What is typed is handed on shortly after, so that little is lost if the program dies; giving up
/// puts back the name that was there when the editing began.
class RowNameEditor final : public QLineEdit
{
    Q_OBJECT

public:
    explicit RowNameEditor(QWidget *parent = nullptr);

    /// Shows the record's name. A text that is being typed is left alone.
    void setName(const QString &name);
    /// True while the text differs from what the record holds.
    bool isUncommitted() const { return text() != m_committed; }
    /// The text was written into the record.
    void setCommitted();
    /// Asks for the text to be written, if it differs from the record. Leaves caret and focus as
    /// they are; while an input method is composing it does nothing.
    void commit();
    /// Has the name from before the editing written.
    void revert();

Q_SIGNALS:
    /// The text is to be written into the record, and the editing goes on.
    void commitRequested();

protected:
    void inputMethodEvent(QInputMethodEvent *event) override;

private:
    void scheduleCommit();

    QString m_nameBefore;
    QString m_committed;
    QTimer m_commitTimer;
    bool m_hasName = false;
    bool m_isComposing = false;
};

} // namespace tembra
