#pragma once

#include "Toolkit/Token/TokenDragAndDrop.h"
#include "Toolkit/Token/TokenEditor.h"
#include "Toolkit/Token/TokenView.h"

namespace tembra {

class TokenCompletion;
class TokenCompletionList;

/// A text field whose content are objects, shown as tokens, with half-typed text between them.
///
/// Typed text becomes tokens at Return, at a comma and when editing ends; the delegate says what they
/// are. Editing begins with the keyboard focus or with a change by the user, and ends with the focus,
/// with Return where nothing is half-typed, or by `endEditing`. Another window or a menu does not end
/// it. The field keeps no undo history.
class TokenField : public TokenView
{
    Q_OBJECT

public:
    /// @p delegate, which must live as long, is not called before the field has tokens or events.
    explicit TokenField(TokenFieldDelegate &delegate, QWidget *parent = nullptr);
    ~TokenField() override;

    QList<Object> objectValue() const; ///< The tokens, in order.
    /// Replaces everything, half-typed text as well.
    void setObjectValue(const QList<Object> &objects);
    /// A token behind the last one; half-typed text, caret and selection stay.
    void appendObject(const Object &object);
    /// Removes the tokens of an object, also one being edited whose text was not changed.
    void removeObject(const Object &object);
    /// Asks for the display strings anew; all else stays.
    void refreshTokens();

    bool isEditing() const { return m_isEditing; }
    /// Turns half-typed text into tokens. The focus stays where it is.
    void endEditing();
    bool isCompletionListShown() const;
    /// Whether the first completion is highlighted while one types, so that Return takes it.
    void setHighlightsFirstCompletion(bool highlightsFirst);
    /// The content and what can be done to it without a widget.
    TokenEditor &editor() const { return *m_editor; }

Q_SIGNALS:
    void textDidChange(); ///< The user changed half-typed text or tokens.
    void didBeginEditing();
    void didEndEditing();
    void tokensChanged(); ///< Tokens came, went or moved, by the user or by a function.
    void completionListShown(bool shown);

protected:
    bool event(QEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    QMimeData *createMimeDataFromSelection() const override;
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;

private:
    void connectEditor();
    void connectCompletion();
    void contentChanged(TokenEditor::Author author, bool hasOtherTokens);
    void followTextCursor();
    void announceTokens();
    void beginEditing();
    void restorePreedit();

    void complete();
    bool takeWholeName();
    QString halfTypedName() const;
    void placeCompletionList();
    void closeStaleCompletion();
    void takeCompletion(const QString &entry, int textStart);

    void typeText(const QString &text);
    bool handleCompletionKey(const QKeyEvent &event);
    bool handleEditingKey(QKeyEvent &event);
    bool handleReturn(const QKeyEvent &event);
    bool handleDeletion(const QKeyEvent &event);
    bool handleSideKey(const QKeyEvent &event);

    void pressToken(int position, bool extends);
    QMenu *menuOfToken(int position);
    QMenu *standardMenu();

    TokenFieldDelegate &m_delegate;
    std::unique_ptr<TokenEditor> m_editor;
    std::unique_ptr<TokenCompletion> m_completion;
    TokenCompletionList *m_completionList;
    TokenDragAndDrop m_dragAndDrop;
    bool m_isEditing = false;
};

} // namespace tembra
