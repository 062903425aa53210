#pragma once

#include "Toolkit/Token/TokenText.h"

#include <QAccessibleTextInterface>
#include <QAccessibleWidget>

namespace tembra {

class TokenField;

/// Shows a token field to assistive technology as a text in which each token is its title.
class TokenFieldAccessible final : public QAccessibleWidget,
                                   public QAccessibleTextInterface,
                                   public QAccessibleEditableTextInterface
{
public:
    explicit TokenFieldAccessible(TokenField *field);

    /// Registers the factory of this class, once.
    static void install();
    /// The titles and half-typed texts, separated by commas.
    static QString textOf(const TokenField &field);

    /// The parts of the widget are nothing by themselves.
    int childCount() const override { return 0; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessible::State state() const override;
    QString text(QAccessible::Text part) const override;
    void setText(QAccessible::Text part, const QString &text) override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    void selection(int index, int *start, int *end) const override;
    int selectionCount() const override;
    void addSelection(int start, int end) override;
    void removeSelection(int index) override;
    void setSelection(int index, int start, int end) override;
    int cursorPosition() const override;
    void setCursorPosition(int offset) override;
    QString text(int start, int end) const override;
    int characterCount() const override;
    QRect characterRect(int offset) const override;
    int offsetAtPoint(const QPoint &point) const override;
    void scrollToSubstring(int start, int end) override;
    QString attributes(int offset, int *start, int *end) const override;

    void deleteText(int start, int end) override;
    void insertText(int offset, const QString &text) override;
    void replaceText(int start, int end, const QString &text) override;

private:
    enum class Side { Start, End };

    static QString textOf(const TokenField &field, const TokenText::Fragment &fragment);

    TokenField *field() const;
    int offsetOf(int position, Side side) const;
    int positionOf(int offset) const;
};

} // namespace tembra
