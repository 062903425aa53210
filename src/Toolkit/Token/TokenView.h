#pragma once

#include "Toolkit/Token/TokenText.h"

#include <QTextEdit>

namespace tembra {

class TokenRenderer;

/// A text edit that shows objects as tokens: it draws and measures them, and finds the one at a point.
/// `TokenField` handles what the user does to them.
class TokenView : public QTextEdit
{
    Q_OBJECT

public:
    using Object = TokenText::Object;

    /// @p displayString gives the title of a token.
    explicit TokenView(TokenText::TitleOf displayString, QWidget *parent = nullptr);
    ~TokenView() override;

    bool wraps() const { return m_wraps; }
    /// A field that wraps (the default) grows with its tokens, up to 750 pixels; another one scrolls
    /// one line.
    void setWraps(bool wraps);
    /// Where the token of that number is, in the viewport; null if there is none.
    QRect tokenRect(int index) const;
    /// The position of the token at @p point of the viewport; -1 if there is none.
    int tokenAt(const QPoint &point) const;
    bool isInSelection(const QPoint &point) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    bool viewportEvent(QEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

    TokenText &tokenText() const { return *m_text; }
    /// Sets the position of the token under the pointer; -1 for none.
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
    void paintToken(QPainter &painter, const TokenText::Fragment &token);
    void paintFrame();

    std::unique_ptr<TokenText> m_text;
    TokenRenderer *m_renderer;
    bool m_wraps = true;
    int m_hoveredToken = -1;
};

} // namespace tembra
