#pragma once

#include <QString>

namespace tembra {

/// A lossless copy of a QTextDocument's text, updated with each change of the document.
///
/// A document knows one kind of paragraph end and reserves U+FDD0 and U+FDD1. So a text goes into it
/// with stand-ins (unpaired low surrogates, which no text holds): every line end becomes "\n", led by
/// a stand-in where it was another one ("\r\n", "\r", U+2029), and the reserved characters get one
/// each. A line-end stand-in whose line end was deleted means nothing. Very long paragraphs are
/// broken, led by a stand-in too: a document lays a whole paragraph out anew at every keystroke.
class RawText
{
public:
    /// Paragraphs are broken at the first good place from here on.
    static constexpr qsizetype longParagraph = 8'000;

    /// Encodes @p text for the document; unpaired surrogates become U+FFFD.
    static QString encoded(const QString &text);
    /// Decodes a text of the document, which has "\n" between paragraphs.
    static QString decoded(const QString &raw);

    /// Records that @p removed characters at @p position were replaced by @p added. False when these
    /// are the same.
    bool replace(qsizetype position, qsizetype removed, const QString &added);

    const QString &raw() const { return m_raw; }
    /// The text; null when empty. Decoded at most once per change, and only if it may hold a stand-in.
    QString text() const;

private:
    QString m_raw;
    mutable QString m_decoded;
    bool m_mayHoldStandIns = false;
};

} // namespace tembra
