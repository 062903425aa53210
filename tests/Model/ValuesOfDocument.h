#pragma once

#include <QByteArray>
#include <QList>
#include <QMetaType>
#include <QString>

namespace tembra {

/// All that the records of a document hold, as text, or the reason why it cannot be read. Only what
/// differs from a record of which the document says nothing: a tag as "(name "launch")", a meeting
/// as "[date 5, tags (..)(..), notes (..)]".
QString readValues(QByteArrayView document);

/// Where a record of one member stands in a document: what is before it, and behind it.
struct Place
{
    const char *name; ///< As a message names it.
    const char *before;
    const char *after;
};

inline constexpr Place teammate{"teammate 1", "[{", "}]"};
inline constexpr Place session{"teammate 1, session 1", R"([{"sessions":[{)", "}]}]"};
inline constexpr Place tag{"teammate 1, session 1, tag 1", R"([{"sessions":[{"tags":[{)", "}]}]}]"};
inline constexpr Place note{"teammate 1, session 1, note 1", R"([{"sessions":[{"notes":[{)",
                            "}]}]}]"};

enum class Kind { Text, Date, Integer, List };

struct Key
{
    Place place;
    const char *name;
    Kind kind;
};

/// Every key of a document.
QList<Key> allKeys();

/// A document that holds but one record, with this member, inside of those it belongs to.
QByteArray documentWith(const Place &place, const QByteArray &member);
QByteArray documentWith(const Key &key, const char *value);
/// Names a test's case after the two.
QByteArray rowName(const Key &key, const char *value);

} // namespace tembra

Q_DECLARE_METATYPE(tembra::Key)
