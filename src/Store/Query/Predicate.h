#pragma once

#include "Foundation/Result.h"
#include "Foundation/Time/Date.h"
#include "Store/Schema/ObjectID.h"

#include <QList>
#include <QString>

#include <memory>
#include <variant>

namespace tembra {

struct PredicateNode;

/// A value for a place holder of a format: "%@" takes a record, a text or a date, "%d" an integer.
using PredicateArgument = std::variant<ObjectID, QString, Date, qint64>;

/// A condition on records of an entity, in the format language
///
///     [ANY] keypath op (%@ | %d | NULL)    with op one of == != < > <= >= CONTAINS[cd]
///
/// joined by AND, OR, NOT and parentheses; nothing else. Immutable, cheap to copy.
class Predicate
{
public:
    Predicate() = default; ///< No condition: every record matches.

    /// Parses @p format and fills its place holders, in order, from @p arguments.
    /// Fails, naming the position, on anything outside the language and on a wrong number or kind
    /// of arguments. Arguments are values: they never become part of the format text.
    static Result<Predicate> withFormat(QStringView format,
                                        const QList<PredicateArgument> &arguments);

    /// As withFormat() for a format fixed in the program: a mistake in it stops the program.
    static Predicate fixed(QStringView format, const QList<PredicateArgument> &arguments);

    /// All of @p subpredicates must hold. An empty list, and conditionless members, match everything.
    static Predicate andPredicate(const QList<Predicate> &subpredicates);

    bool isEmpty() const { return !m_root; }

    /// The condition written out with place holders, as parse would read it again.
    QString describe() const;
    /// The arguments in the order of describe()'s place holders.
    QList<PredicateArgument> arguments() const;

    const PredicateNode *root() const { return m_root.get(); }

private:
    explicit Predicate(std::shared_ptr<const PredicateNode> root);

    std::shared_ptr<const PredicateNode> m_root;
};

} // namespace tembra
