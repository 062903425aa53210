#pragma once

#include <QPlainTextEdit>
#include <QPointer>

#include <memory>

class QAbstractItemView;

namespace tembra {

class PropertyObservation;
class RawText;

/// A multi-line field for notes in plain text, bound to a text property of an object.
///
/// Every keystroke is written into the property at once; what an input method is still composing is
/// not. An emptied field writes a missing text. A change of the property from
/// elsewhere changes only the part that differs, so the caret stays where it was. The field keeps no
/// undo of its own: Undo and Redo reach the window's actions.
class BindablePlaceholderTextField final : public QPlainTextEdit
{
    Q_OBJECT

public:
    enum class Binding { Text, Placeholder };

    struct BindingOptions
    {
        QString
            nullPlaceholder; ///< Text binding: the placeholder shown while the text is missing or empty.
    };

    explicit BindablePlaceholderTextField(QWidget *parent = nullptr);
    ~BindablePlaceholderTextField() override;

    /// Shows the property @p keyPath (declared, with NOTIFY) of @p object from now on, until the
    /// next binding of the same kind, `unbind`, or the end of the object (then the field is empty).
    void bind(Binding binding, QObject *object, const QByteArray &keyPath,
              const BindingOptions &options);
    void bind(Binding binding, QObject *object, const QByteArray &keyPath);
    void unbind(Binding binding);
    QObject *boundObject() const { return m_object; }

    /// Writes what was typed into the bound property, should they differ. Leaves caret, focus and
    /// a composition of an input method as they are.
    void commitEditing();

    /// The text exactly as typed and bound, unlike `toPlainText`, which turns no-break spaces into
    /// blanks and drops the kind of line ends. Null when empty.
    QString text() const;
    void setText(const QString &text);

    /// The list whose row @p rowIndex is scrolled into view when the field gets the keyboard.
    void setTableView(QAbstractItemView *tableView);
    QAbstractItemView *tableView() const;
    void setRowIndex(int rowIndex) { m_rowIndex = rowIndex; }
    int rowIndex() const { return m_rowIndex; }

    /// Where Tab and Shift+Tab lead; with none the window's own order holds.
    void setNextField(QWidget *field);
    void setPreviousField(QWidget *field);
    QWidget *nextKeyView() const;
    QWidget *previousKeyView() const;

Q_SIGNALS:
    /// The text changed by typing, pasting or the like (not through the binding).
    void edited();

protected:
    bool event(QEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void changeEvent(QEvent *event) override;
    QMimeData *createMimeDataFromSelection() const override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    void bindText(QObject *object, const QByteArray &keyPath, const BindingOptions &options);
    void bindPlaceholder(QObject *object, const QByteArray &keyPath);
    void documentChanged(int position, int removed, int added);
    void textEdited();
    bool isComposing() const;
    void becomeFirstResponder(Qt::FocusReason reason);
    void loadFromObject();
    void replaceDifference(const QString &text);
    void alignToDirection();
    void applyTheme();

    QPointer<QObject> m_object;
    QByteArray m_key;
    std::unique_ptr<PropertyObservation> m_valueObservation;
    std::unique_ptr<PropertyObservation> m_observation; ///< Of the bound placeholder.

    std::unique_ptr<RawText> m_raw; ///< A copy of the document's text, updated with every change.
    bool m_uncommitted = false; ///< Typed, but not yet in the property.
    bool m_loading = false; ///< The document is changed by the binding, not by the user.
    bool m_committing = false;
    bool m_changedWhileComposing =
        false; ///< The property's new value is shown once the composition ends.

    QPointer<QAbstractItemView> m_tableView;
    int m_rowIndex = 0;
    QPointer<QWidget> m_nextField;
    QPointer<QWidget> m_previousField;
};

} // namespace tembra
