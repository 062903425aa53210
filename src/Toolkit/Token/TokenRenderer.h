#pragma once

#include "Toolkit/Token/TokenText.h"

#include <QFont>
#include <QObject>
#include <QRectF>
#include <QTextObjectInterface>

class QPainter;
class QPalette;

namespace tembra {

/// The measures of pills in text of one font, in pixels.
struct TokenMetrics
{
    explicit TokenMetrics(const QFont &font);

    double ascent;
    double textHeight;
    double pillHeight;
    double lineHeight; ///< A row of pills with the room between rows.
    double textTop; ///< From the top of a row to that of its text.
};

/// Draws tokens as pills, and tells the layout of a document how wide they are.
class TokenRenderer final : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    struct State
    {
        bool isSelected = false;
        bool isHovered = false;
        bool isEnabled = true;
        bool hasFocus = false;
    };

    TokenRenderer(TokenText *text, QObject *parent);

    void setFont(const QFont &font);
    const TokenMetrics &metrics() const { return m_metrics; }
    /// A token wider than this is elided. True if that is another width than before.
    bool setMaximumWidth(double width);

    /// Of the room a token takes; 0 for none.
    double width(TokenText::Token *token) const;
    QSizeF intrinsicSize(QTextDocument *document, int position, const QTextFormat &format) override;
    /// Draws nothing: the layout would draw the selection over it. The field draws tokens itself.
    void drawObject(QPainter *painter, const QRectF &rect, QTextDocument *document, int position,
                    const QTextFormat &format) override;

    /// Draws a token into @p cell, the room it has in its row.
    void draw(QPainter *painter, const QRectF &cell, const QString &title, const State &state,
              const QPalette &palette) const;
    /// Whether the title does not fit into @p cell.
    bool isElided(const QRectF &cell, const QString &title) const;

private:
    double titleWidth(const QString &title) const;

    TokenText *m_text;
    QFont m_font;
    TokenMetrics m_metrics;
    double m_maximumWidth = 0;
};

} // namespace tembra
