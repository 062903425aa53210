#include "Store/Undo/TypingCoalescer.h"

#include <QTextBoundaryFinder>

#include <algorithm>

namespace tembra {

namespace {

constexpr double pause = 1.0;

/// The one place in which two texts differ.
struct Difference
{
    qsizetype place;
    QStringView removed;
    QStringView inserted;
};

Difference differenceBetween(const QString &before, const QString &after)
{
    const auto [beforeEnd, afterEnd] = std::mismatch(before.begin(), before.end(), after.begin(),
                                                     after.end());
    const qsizetype place = beforeEnd - before.begin();
    const qsizetype comparable = std::min(before.size(), after.size()) - place;
    qsizetype tail = 0;
    while (tail < comparable && before[before.size() - 1 - tail] == after[after.size() - 1 - tail])
        ++tail;
    return {place, QStringView(before).sliced(place, before.size() - tail - place),
            QStringView(after).sliced(place, after.size() - tail - place)};
}

bool isOneCharacter(QStringView text)
{
    if (text.isEmpty())
        return false;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text.data(), text.size());
    return finder.toNextBoundary() == text.size();
}

/// True when @p shorter is @p longer without the @p count units at @p place.
bool differsOnlyAt(const QString &longer, const QString &shorter, qsizetype place, qsizetype count)
{
    if (place < 0 || place + count > longer.size())
        return false;
    return QStringView(longer).first(place) == QStringView(shorter).first(place)
           && QStringView(longer).sliced(place + count) == QStringView(shorter).sliced(place);
}

} // namespace

bool TypingCoalescer::extend(ObjectID id, int property, const QString &before, const QString &after,
                             Date now)
{
    const Difference difference = differenceBetween(before, after);
    const bool typed = difference.removed.isEmpty() && isOneCharacter(difference.inserted);
    const bool removed = difference.inserted.isEmpty() && isOneCharacter(difference.removed);
    const double sinceLast = now.secondsSinceReferenceDate - m_last.secondsSinceReferenceDate;
    bool continues = id == m_id && property == m_property && sinceLast >= 0 && sinceLast < pause;
    if (typed)
        continues = continues && continuesTyping(before, after, difference.inserted.size());
    else
        continues = continues && removed
                    && continuesDeleting(before, after, difference.removed.size());
    if (continues && typed)
        m_caret += difference.inserted.size();
    else
        m_caret = difference.place + difference.inserted.size();
    m_kind = typed ? Kind::Typing : removed ? Kind::Deleting : Kind::None;
    m_id = id;
    m_property = property;
    m_last = now;
    m_lastWasSpace = typed && difference.inserted.back().isSpace();
    return continues;
}

bool TypingCoalescer::continuesTyping(const QString &before, const QString &after,
                                      qsizetype typed) const
{
    // Among equal letters the difference may seem to lie further on than the caret was.
    if (m_kind != Kind::Typing || !differsOnlyAt(after, before, m_caret, typed))
        return false;
    const QChar character = after.at(m_caret);
    const bool lineBreak = character == u'\n' || character == u'\r'
                           || character == QChar::LineSeparator
                           || character == QChar::ParagraphSeparator;
    return !lineBreak && (character.isSpace() || !m_lastWasSpace);
}

bool TypingCoalescer::continuesDeleting(const QString &before, const QString &after,
                                        qsizetype removed) const
{
    return m_kind == Kind::Deleting
           && (differsOnlyAt(before, after, m_caret - removed, removed)
               || differsOnlyAt(before, after, m_caret, removed));
}

} // namespace tembra
