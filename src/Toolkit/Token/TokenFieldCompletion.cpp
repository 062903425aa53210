#include "Toolkit/Token/TokenField.h"

#include "Toolkit/Token/TokenCompletionList.h"
#include "Toolkit/Token/TokenFieldChange.h"

#include <algorithm>

// When completions are offered, and what taking one does.

namespace tembra {

/// Offers what completes the text around the caret, after a change by the user.
void TokenField::complete()
{
    const TokenText::Piece text = tokens()->textAround(textCursor().position());
    const auto first = std::ranges::find_if_not(text.text, [](QChar c) { return c.isSpace(); });
    const QString substring = text.text.sliced(first - text.text.begin());
    const bool isOffering = !substring.isEmpty() && hasFocus() && !isReadOnly() && !isComposing()
                            && !textCursor().hasSelection();
    const QStringList entries = isOffering
                                    ? completionsForSubstring(substring,
                                                              tokens()->tokensBefore(text.start))
                                    : QStringList();
    if (entries.isEmpty()) {
        hideCompletions();
        return;
    }
    m_completedFrom = text.start;
    m_completions->setEntries(entries);
    placeCompletions();
}

void TokenField::placeCompletions()
{
    if (m_completedFrom < 0)
        return;
    QTextCursor start(document());
    start.setPosition(m_completedFrom);
    QRect anchor = cursorRect(start);
    // A text that begins out of sight is offered for at the edge.
    anchor.moveLeft(std::clamp(anchor.left(), 0, viewport()->width()));
    const QRect caret = cursorRect();
    anchor.setTop(caret.top());
    anchor.setBottom(caret.bottom());
    m_completions->showBeside({viewport()->mapToGlobal(anchor.topLeft()), anchor.size()});
}

void TokenField::hideCompletions()
{
    m_completedFrom = -1;
    m_completions->hide();
}

/// The list goes when the caret leaves the text it is for.
void TokenField::hideStaleCompletions()
{
    if (m_completedFrom < 0 || m_changeDepth > 0)
        return;
    const TokenText::Piece text = tokens()->textAround(textCursor().position());
    if (text.length == 0 || text.start != m_completedFrom || textCursor().hasSelection())
        hideCompletions();
}

void TokenField::takeCompletion(const QString &entry)
{
    if (m_completedFrom < 0)
        return;
    const Change change(*this);
    const TokenText::Piece text = tokens()->textAround(m_completedFrom);
    hideCompletions();
    m_edited.reset();
    QTextCursor place(document());
    place.setPosition(text.start);
    place.setPosition(text.end(), QTextCursor::KeepAnchor);
    QList<Object> objects;
    const Proposal proposal = proposalFor(entry);
    if (std::holds_alternative<Object>(proposal) || !entry.trimmed().isEmpty())
        objects = shouldAddObjects({proposal}, tokens()->tokensBefore(text.start));
    tokens()->insert(place, objects);
    setTextCursor(place);
    ensureCursorVisible();
}

} // namespace tembra
