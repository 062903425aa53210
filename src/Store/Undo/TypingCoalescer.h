#pragma once

#include "Foundation/Time/Date.h"
#include "Store/Schema/ObjectID.h"

#include <QString>

namespace tembra {

/// Decides which edits of a text coalesce into one undo step: characters typed (or deleted) one
/// after the other at one place without a pause, up to the next word or line.
class TypingCoalescer
{
public:
    /// Takes the next edit. True when it belongs to the step so far, false when it starts a new one.
    bool extend(ObjectID id, int property, const QString &before, const QString &after, Date now);
    void end() { m_kind = Kind::None; }

private:
    enum class Kind { None, Typing, Deleting };

    bool continuesTyping(const QString &before, const QString &after, qsizetype typed) const;
    bool continuesDeleting(const QString &before, const QString &after, qsizetype removed) const;

    Kind m_kind = Kind::None;
    ObjectID m_id;
    int m_property = -1;
    Date m_last;
    qsizetype m_caret = 0;
    bool m_lastWasSpace = false;
};

} // namespace tembra
