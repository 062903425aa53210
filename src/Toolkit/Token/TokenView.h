#pragma once

#include "Toolkit/Token/TokenText.h"

#include <QTextEdit>

namespace tembra {

class TokenObject;

/// A text edit that shows objects as tokens: drawing, measures and finding them. What the user does
/// to them is `TokenField`'s.
class TokenView : public QTextEdit
{
    Q_OBJECT

public:
    using Object = TokenText::Object;

    explicit TokenView(QWidget *parent = nullptr);
    ~TokenView() override;

    bool wraps() const { return m_wraps; }
    /// A field that wraps (the default) grows with its tokens, up to 750 pixels; another one scrolls
    /// one line.
    void setWraps(bool wraps);
    /// Where the token of that number is, in the viewport; null if there is none.
    QRect tokenRect(int index) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    virtual QString displayStringForRepresentedObject(const Object &object) const;

    bool event(QEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

    TokenText *tokens() const { return m_text.get(); }
    /// The position of the token at @p point of the viewport; -1 if there is none.
    int tokenAt(const QPoint &point) const;
    bool isInSelection(const QPoint &point) const;
    /// The position of the one token that is selected, and nothing else; else -1.
    int selectedToken() const;
    /// The token that the pointer is over, -1 for none.
    void setHoveredToken(int position);
    /// Whether an input method is composing.
    bool isComposing() const;
    /// Lays everything out anew, with the titles and measures of now.
    void layOutTokens();
    /// To be called after each change of the content.
    void fitSize();

private:
    void applyMeasures();
    void applyWrapping();
    void applyTheme();
    void applyTextDirection();
    void fitTokens();
    void fitScrollBar();
    int heightOfLines(int lines) const;
    int textHeight() const;
    QRectF tokenCell(int position) const;
    QRectF tokenCell(int position, TokenText::Token *token) const;
    QPointF scrollOffset() const;
    bool showTokenToolTip(const QPoint &point, const QPoint &globalPoint);
    void paintTokens(QPainter &painter, const QRect &exposed);
    void paintToken(QPainter &painter, const TokenText::Piece &token);
    void paintFrame();

    std::unique_ptr<TokenText> m_text;
    TokenObject *m_tokenObject;
    bool m_wraps = true;
    int m_hoveredToken = -1;
};

} // namespace tembra
