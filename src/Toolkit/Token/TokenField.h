#pragma once

#include "Toolkit/Token/TokenView.h"

#include <QTextCursor>

#include <optional>
#include <variant>

class QMenu;

namespace tembra {

class TokenCompletionList;

/// A text field whose content are objects, shown as tokens, with half-typed text between them.
///
/// Typed text becomes tokens at Return, at a comma and when editing ends; what they are, say the
/// overridden functions. Editing begins with the keyboard focus or with a change by the user, and
/// ends with the focus, with Return where nothing is half-typed, or by `endEditing`. Another window
/// or a menu does not end it. The field keeps no undo of its own.
class TokenField : public TokenView
{
    Q_OBJECT

public:
    /// What is to become a token: an object, or a text for which there is none.
    using Proposal = std::variant<Object, QString>;

    explicit TokenField(QWidget *parent = nullptr);
    ~TokenField() override;

    QList<Object> objectValue() const; ///< The tokens, in order.
    /// Replaces everything, half-typed text as well.
    void setObjectValue(const QList<Object> &objects);
    /// A token behind the last one; half-typed text, caret and selection stay.
    void appendObject(const Object &object);
    /// Takes the tokens of an object away; all else stays.
    void removeObject(const Object &object);
    /// Asks for the display strings anew; all else stays.
    void refreshTokens();

    bool isEditing() const { return m_isEditing; }
    /// Turns half-typed text into tokens. The focus stays where it is.
    void endEditing();
    /// The half-typed text around the caret.
    QString editedSubstring() const;
    bool isCompletionListShown() const;
    /// Whether the first completion is highlighted while one types, so that Return takes it.
    void setHighlightsFirstCompletion(bool highlightsFirst);

Q_SIGNALS:
    void textDidChange(); ///< The user changed half-typed text or tokens.
    void didBeginEditing();
    void didEndEditing();
    void tokensChanged(); ///< Tokens came, went or moved, by the user or by a function.
    void completionListShown(bool shown);

protected:
    /// What to offer for a half-typed text that will be the token of this number.
    virtual QStringList completionsForSubstring(const QString &substring, int indexOfToken);
    /// The object a text stands for; null leaves it a text.
    virtual Object representedObjectForEditingString(const QString &editingString);
    virtual QString editingStringForRepresentedObject(const Object &object) const;
    /// What of @p proposed to insert as tokens, from number @p index on. A text without an answer
    /// goes away.
    virtual QList<Object> shouldAddObjects(const QList<Proposal> &proposed, int index);
    virtual bool hasMenuForRepresentedObject(const Object &object) const;
    /// The context menu of a token, shown as it is; it stays the subclass's.
    virtual QMenu *menuForRepresentedObject(const Object &object);
    /// Adds the objects to @p mimeData; the text is there already. False if nothing was added.
    virtual bool writeRepresentedObjects(const QList<Object> &objects, QMimeData &mimeData) const;
    virtual bool canReadFromPasteboard(const QMimeData &mimeData) const;
    virtual QList<Object> readFromPasteboard(const QMimeData &mimeData);

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
    friend class TokenFieldAccessible;
    class Change;
    enum class Author { User, Program };

    /// A token that was turned back into text.
    struct EditedToken
    {
        Object object;
        QString text;
        QTextCursor place; ///< The beginning of the text.
    };

    void tellChanges(Author author);
    void announceTokens();
    void beginEditing();
    void restorePreedit();

    void typeText(const QString &text);
    int tokenize(int from, int to);
    void tokenizeAll();
    Proposal proposalFor(const QString &text);
    void replace(int from, int to, const QList<Object> &objects);
    bool pasteText(const QString &text);
    bool pasteObjects(const QMimeData &mimeData);
    bool pasteData(const QMimeData &mimeData);
    void insertPieces(QTextCursor &cursor, const QList<TokenText::Piece> &pieces);
    void editToken(int position);
    bool restoreEditedToken();
    void select(int anchor, int position);

    void complete();
    void placeCompletions();
    void hideCompletions();
    void hideStaleCompletions();
    void takeCompletion(const QString &entry);

    bool handleListKey(QKeyEvent *event);
    bool handleEditingKey(QKeyEvent *event);
    bool handleReturn(const QKeyEvent *event);
    bool handleDeletion(const QKeyEvent *event);
    bool handleSideKey(const QKeyEvent *event);

    void pressToken(int position, bool extends);
    void dragSelection();
    void moveDragged(int position);

    TokenCompletionList *m_completions;
    QList<TokenText::Piece> m_known; ///< What was told last.
    std::optional<EditedToken> m_edited;
    int m_changeDepth = 0;
    int m_completedFrom = -1; ///< Where the text begins that the list is for.
    bool m_isEditing = false;
    std::optional<QPoint> m_pressed; ///< In the selection: a click or a drag, the pointer will tell.
    QTextCursor m_dragged; ///< The selection while it is dragged.
};

} // namespace tembra
