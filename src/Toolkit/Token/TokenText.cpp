#include "Toolkit/Token/TokenText.h"

#include "Foundation/Text/WellFormedText.h"

#include <QFont>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QSet>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <array>
#include <cmath>

namespace tembra {

namespace {

constexpr int addressProperty = QTextFormat::UserProperty + 1;
constexpr QChar tokenCharacter = QChar::ObjectReplacementCharacter;

/// What a paragraph cannot hold, and what stands for a token. Their stand-ins are unpaired low
/// surrogates, which no text holds.
constexpr std::array<char16_t, 8> reserved{u'\n',  u'\r',  u'\t',  0x2028,
                                           0x2029, 0xFDD0, 0xFDD1, 0xFFFC};
constexpr char16_t firstStandIn = 0xDC00;

QString encodedForParagraph(const QString &text)
{
    QString result = wellFormedText(text);
    for (QChar &unit : result) {
        const auto *found = std::find(reserved.begin(), reserved.end(), unit.unicode());
        if (found != reserved.end())
            unit = QChar(char16_t(firstStandIn + (found - reserved.begin())));
    }
    return result;
}

QString decodedFromParagraph(const QString &text)
{
    QString result = text;
    for (qsizetype i = 0; i < result.size(); ++i) {
        const int standIn = result.at(i).unicode() - firstStandIn;
        const bool isPaired = i > 0 && result.at(i - 1).isHighSurrogate();
        if (standIn >= 0 && standIn < int(reserved.size()) && !isPaired)
            result[i] = QChar(reserved.at(std::size_t(standIn)));
    }
    return result;
}

quintptr addressOf(const std::shared_ptr<QObject> &object)
{
    return quintptr(object.get());
}

/// As a text: a document finds formats by a hash, which takes no account of long numbers.
QString encodedAddress(quintptr address)
{
    return QString::number(address, 36);
}

quintptr addressIn(const QTextFormat &format)
{
    return quintptr(format.stringProperty(addressProperty).toULongLong(nullptr, 36));
}

/// The caret beside an inline object stands as high above the baseline as the x-height of the
/// object's font tells. This one makes it stand as it does beside text of @p font.
QFont caretFont(const QFont &font)
{
    const QFontMetricsF metrics(font);
    const double wanted = 2 * (metrics.ascent() - metrics.descent());
    QFont result = font;
    result.setPixelSize(std::max(1, int(std::lround(QFontInfo(font).pixelSize() * wanted
                                                    / std::max(1.0, metrics.xHeight())))));
    return result;
}

} // namespace

TokenText::TokenText(QTextDocument *document, TitleOf titleOf)
    : m_document(document)
    , m_titleOf(std::move(titleOf))
{
    m_format.setObjectType(objectType);
    m_format.setVerticalAlignment(QTextCharFormat::AlignMiddle);
}

QList<TokenText::Object> TokenText::objects() const
{
    QList<Object> result;
    for (const Fragment &fragment : fragments()) {
        if (fragment.object)
            result.append(fragment.object);
    }
    return result;
}

QList<TokenText::Fragment> TokenText::fragments() const
{
    return fragments(0, m_document->characterCount() - 1);
}

QList<TokenText::Fragment> TokenText::fragments(int from, int to) const
{
    QList<Fragment> result;
    const QTextBlock block = m_document->firstBlock();
    const auto addText = [&result](const QString &text, int start) {
        // A document may hold one text in several fragments.
        if (result.isEmpty() || result.constLast().object)
            result.append({nullptr, {}, start, 0});
        result.last().text.append(text);
        result.last().length += int(text.size());
    };
    for (auto iterator = block.begin(); !iterator.atEnd(); ++iterator) {
        const QTextFragment fragment = iterator.fragment();
        const int start = std::max(fragment.position(), from);
        const int end = std::min(fragment.position() + fragment.length(), to);
        if (start >= end)
            continue;
        const Object object = objectOf(fragment.charFormat());
        if (!object)
            addText(fragment.text().mid(start - fragment.position(), end - start), start);
        for (int i = start; object && i < end; ++i)
            result.append({object, {}, i, 1});
    }
    for (Fragment &fragment : result)
        fragment.text = decodedFromParagraph(fragment.text);
    return result;
}

TokenText::Fragment TokenText::textAround(int position) const
{
    const QString text = m_document->firstBlock().text();
    const auto caret = std::min(qsizetype(position), text.size());
    const auto start = caret == 0 ? 0 : text.lastIndexOf(tokenCharacter, caret - 1) + 1;
    auto end = text.indexOf(tokenCharacter, caret);
    if (end < 0)
        end = text.size();
    return {nullptr, decodedFromParagraph(text.mid(start, end - start)), int(start),
            int(end - start)};
}

QString TokenText::text(int from, int to) const
{
    return decodedFromParagraph(m_document->firstBlock().text().mid(from, to - from));
}

TokenText::Object TokenText::objectAt(int position) const
{
    if (position < 0 || m_document->characterAt(position) != tokenCharacter)
        return nullptr;
    const QList<Fragment> found = fragments(position, position + 1);
    return found.isEmpty() ? nullptr : found.constFirst().object;
}

TokenText::Object TokenText::objectOf(const QTextFormat &format) const
{
    return format.hasProperty(addressProperty) ? m_tokens.value(addressIn(format)).object : nullptr;
}

TokenText::Token *TokenText::token(const Object &object)
{
    const auto found = m_tokens.find(addressOf(object));
    return found == m_tokens.end() ? nullptr : &*found;
}

int TokenText::positionOfToken(int index) const
{
    const QString text = m_document->firstBlock().text();
    qsizetype position = text.indexOf(tokenCharacter);
    for (int i = 0; i < index && position >= 0; ++i)
        position = text.indexOf(tokenCharacter, position + 1);
    return int(position);
}

int TokenText::tokensBefore(int position) const
{
    return int(QStringView(m_document->firstBlock().text()).left(position).count(tokenCharacter));
}

int TokenText::endOfLastToken() const
{
    return int(m_document->firstBlock().text().lastIndexOf(tokenCharacter)) + 1;
}

void TokenText::insert(QTextCursor &cursor, const QList<Object> &objects)
{
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    for (const Object &object : objects) {
        if (object)
            cursor.insertText(QString(tokenCharacter), formatFor(object));
    }
    cursor.endEditBlock();
}

void TokenText::insert(QTextCursor &cursor, const QString &text)
{
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    // Not in the format of a token before it.
    cursor.insertText(encodedForParagraph(text), QTextCharFormat());
    cursor.endEditBlock();
}

QTextCharFormat TokenText::formatFor(const Object &object)
{
    const quintptr address = addressOf(object);
    if (!m_tokens.contains(address))
        m_tokens.insert(address, {object, m_titleOf(object)});
    QTextCharFormat format = m_format;
    format.setProperty(addressProperty, encodedAddress(address));
    return format;
}

TokenText::Token *TokenText::token(const QTextFormat &format)
{
    const auto found = m_tokens.find(addressIn(format));
    return found == m_tokens.end() ? nullptr : &*found;
}

bool TokenText::refreshTitles()
{
    bool changed = false;
    for (Token &token : m_tokens) {
        const QString title = m_titleOf(token.object);
        if (title == token.title)
            continue;
        token.title = title;
        token.width = -1;
        changed = true;
    }
    return changed;
}

void TokenText::setFont(const QFont &font)
{
    m_format.setFont(caretFont(font), QTextCharFormat::FontPropertiesAll);
    for (Token &token : m_tokens)
        token.width = -1;
    QTextCursor cursor(m_document);
    cursor.beginEditBlock();
    for (const Fragment &fragment : fragments()) {
        if (!fragment.object)
            continue;
        cursor.setPosition(fragment.start);
        cursor.setPosition(fragment.end(), QTextCursor::KeepAnchor);
        cursor.setCharFormat(formatFor(fragment.object));
    }
    cursor.endEditBlock();
}

void TokenText::releaseRemoved()
{
    QSet<quintptr> present;
    for (const Fragment &fragment : fragments()) {
        if (fragment.object)
            present.insert(addressOf(fragment.object));
    }
    m_tokens.removeIf([&present](const auto &entry) { return !present.contains(entry.key()); });
}

} // namespace tembra
