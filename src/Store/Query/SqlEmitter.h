#pragma once

#include "Foundation/Result.h"
#include "Store/Query/KeyPath.h"
#include "Store/Query/PredicateNode.h"
#include "Store/Schema/Value.h"

#include <QByteArray>

#include <span>
#include <utility>
#include <vector>

namespace tembra {

/// Writes conditions and orders on the records of one entity as SQL: the only place that knows how
/// the predicate language is spoken there.
///
/// A to-one relationship on a key path is a LEFT JOIN, one per prefix. ANY is a sub-query.
class SqlEmitter
{
public:
    SqlEmitter(const ObjectModel &model, int entity);

    /// The condition, for after WHERE. To be called before the bindings are read.
    Result<QByteArray> condition(const PredicateNode &root);
    /// The column a sort descriptor names.
    Result<QByteArray> sortColumn(const QByteArray &key);
    /// The column with the records' keys.
    QByteArray keyColumn() const;
    /// The keys as an order: the only one, or the one that breaks the ties of those before it.
    QByteArray keyOrder(bool isOnlyOrder) const;
    /// The table with all joins that were needed so far, for after FROM.
    QByteArray tables() const;

    /// Values for the place holders of condition(), in their order.
    const std::vector<Value> &bindings() const { return m_bindings; }

private:
    /// A table in a FROM clause, and those joined to it by to-one relationships.
    struct Scope
    {
        QByteArray alias;
        QByteArray tables;
        std::vector<std::pair<std::vector<KeyPathStep>, QByteArray>> joins; ///< Prefix to alias.
    };

    Result<QByteArray> emitNode(const PredicateNode &node);
    Result<QByteArray> emitCompound(const Compound &compound);
    Result<QByteArray> emitComparison(const Comparison &comparison, bool drives);
    Result<KeyPath> resolvedPath(const Comparison &comparison) const;
    QByteArray emitAny(const KeyPath &path, const Comparison &comparison, bool drives);
    QByteArray emitTest(const QByteArray &column, const Comparison &comparison);
    QByteArray emitSearch(const QByteArray &column, const QString &needle);
    QByteArray bound(const PredicateArgument &argument);

    Scope openScope(const QByteArray &table);
    QByteArray column(Scope &scope, std::span<const KeyPathStep> path);
    QByteArray joinedAlias(Scope &scope, std::span<const KeyPathStep> prefix);

    const ObjectModel &m_model;
    int m_entity;
    int m_aliases = 0;
    Scope m_scope;
    bool m_isSelective = false; ///< Few records pass the condition.
    std::vector<Value> m_bindings;
};

} // namespace tembra
