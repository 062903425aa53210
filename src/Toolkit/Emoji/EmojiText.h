#pragma once

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QTextCharFormat>

class QPainter;

namespace tembra {

/// The text to hand to a plain widget or menu: U+FE0F is left out, for it breaks colour emoji
/// apart on the screen. For display only, never for what is stored.
QString displayText(const QString &text);

/// A font for plain widgets and menus that shows emoji in colour. A family that brings black and
/// white glyphs for emoji of its own is replaced by one that has none, where one is installed.
QFont emojiSafeFont(const QFont &font);

/// The colour emoji font, a little larger than the text of @p font that it stands in.
QFont emojiFont(const QFont &font);

/// What makes an emoji one in a text layout or document; its size is that of the text.
QTextCharFormat emojiFormat();

/// Width and height of @p text on one line, as `drawEmojiText` draws it.
QSizeF emojiTextSize(const QString &text, const QFont &font);

/// Whether @p text has an emoji in it; plain drawing is enough for a text without.
bool hasEmoji(const QString &text);

/// A quick look at the characters: false only if there is no emoji.
bool mayHoldEmoji(const QString &text);

/// Draws one line of mixed text, emoji always in colour. What does not fit is cut with an ellipsis,
/// unless @p elide is false. Leading and trailing follow the painter's layout direction. The
/// baseline is the one of @p font, with or without emoji; a line break is drawn as a blank.
void drawEmojiText(QPainter *painter, const QRectF &rect, const QString &text, const QFont &font,
                   const QColor &color,
                   Qt::Alignment alignment = Qt::AlignLeading | Qt::AlignVCenter,
                   bool elide = true);

} // namespace tembra
