#include "Store/Query/SqlEmitter.h"

#include "Foundation/Precondition.h"
#include "Foundation/Text/TextFolding.h"
#include "Store/Query/QueryDriver.h"
#include "Store/Query/SqlText.h"

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

Value toValue(const PredicateArgument &argument)
{
    struct Conversion
    {
        Value operator()(const ObjectID &id) const { return id.isNull() ? Value() : Value(id.key); }
        Value operator()(const QString &text) const { return textValue(text); }
        Value operator()(const Date &date) const { return date.secondsSinceReferenceDate; }
        Value operator()(qint64 number) const { return number; }
    };
    return std::visit(Conversion(), argument);
}

/// Whether values of the property can be compared with the argument.
bool fits(const ObjectModel &model, const KeyPathStep &step, const PredicateArgument &argument)
{
    const auto *record = std::get_if<ObjectID>(&argument);
    if (step.isRelationship())
        return record && (record->isNull() || record->entity == step.destination);
    switch (model.entity(step.entity).attributeAt(step.property).type) {
    case AttributeType::Text:
        return std::holds_alternative<QString>(argument);
    case AttributeType::Integer16:
        return std::holds_alternative<qint64>(argument);
    case AttributeType::Date:
        break;
    }
    return std::holds_alternative<Date>(argument);
}

bool isEquality(ComparisonOperator op)
{
    return op == ComparisonOperator::Equal || op == ComparisonOperator::NotEqual;
}

tl::unexpected<Error> misfit(const Comparison &comparison, const QString &reason)
{
    return failure(u"The condition on “%1” cannot be used: %2."_s.arg(
        QString::fromLatin1(comparison.keyPath.join('.')), reason));
}

} // namespace

SqlEmitter::SqlEmitter(const ObjectModel &model, int entity)
    : m_model(model)
    , m_entity(entity)
    , m_scope(openScope(model.entity(entity).table))
{
}

QByteArray SqlEmitter::keyColumn() const
{
    return QByteArray(m_scope.alias + ".\"id\"");
}

/// SQLite likes to read a whole table in the order of its keys rather than to sort the few records
/// that an index gives: the plus sign keeps it from that.
QByteArray SqlEmitter::keyOrder(bool isOnlyOrder) const
{
    return QByteArray((isOnlyOrder && m_isSelective ? "+" : "") + keyColumn());
}

QByteArray SqlEmitter::tables() const
{
    return m_scope.tables;
}

Result<QByteArray> SqlEmitter::condition(const PredicateNode &root)
{
    const std::vector<const PredicateNode *> parts = conjuncts(&root);
    const PredicateNode *driver = chooseDriver(parts);
    QByteArray sql;
    for (const PredicateNode *part : parts) {
        const auto *comparison = std::get_if<Comparison>(&part->content);
        const Result<QByteArray> emitted = comparison ? emitComparison(*comparison, part == driver)
                                                      : emitNode(*part);
        if (!emitted)
            return emitted;
        // The plus sign keeps the planner from driving the query by a plain equality after all.
        const bool isTestOnly = hasAny(driver) && isPlainRecordEquality(*part);
        sql += (sql.isEmpty() ? "" : " AND ") + QByteArray(isTestOnly ? "+" : "") + *emitted;
        m_isSelective = m_isSelective || (comparison && isSelective(*comparison));
    }
    return sql;
}

Result<QByteArray> SqlEmitter::emitNode(const PredicateNode &node)
{
    if (const auto *comparison = std::get_if<Comparison>(&node.content))
        return emitComparison(*comparison, false);
    if (const auto *compound = std::get_if<Compound>(&node.content))
        return emitCompound(*compound);
    return emitNode(*std::get<Negation>(node.content).operand).map([](const QByteArray &operand) {
        return QByteArray('(' + operand + ") IS NOT TRUE");
    });
}

Result<QByteArray> SqlEmitter::emitCompound(const Compound &compound)
{
    const QByteArray word = compound.connective == Connective::And ? " AND " : " OR ";
    QByteArray sql;
    for (const PredicateNodePointer &operand : compound.operands) {
        const Result<QByteArray> emitted = emitNode(*operand);
        if (!emitted)
            return emitted;
        sql += (sql.isEmpty() ? QByteArray("(") : word) + *emitted;
    }
    return QByteArray(sql + ')');
}

Result<KeyPath> SqlEmitter::resolvedPath(const Comparison &comparison) const
{
    Result<KeyPath> path = KeyPath::resolve(m_model, m_entity, comparison.keyPath);
    if (!path)
        return path;
    if (path->hasToMany() && !comparison.any)
        return misfit(comparison, u"it leads through a to-many relationship, which takes ANY"_s);
    if (!path->hasToMany() && comparison.any)
        return misfit(comparison, u"ANY takes a to-many relationship"_s);
    if (comparison.argument && !fits(m_model, path->last(), *comparison.argument))
        return misfit(comparison, u"the argument is of another kind"_s);
    if (path->last().isRelationship() && !isEquality(comparison.op))
        return misfit(comparison, u"records have no order and no text"_s);
    return path;
}

Result<QByteArray> SqlEmitter::emitComparison(const Comparison &comparison, bool drives)
{
    const Result<KeyPath> path = resolvedPath(comparison);
    if (!path)
        return failure(path.error());
    if (comparison.any)
        return emitAny(*path, comparison, drives);
    return emitTest(column(m_scope, path->steps), comparison);
}

QByteArray SqlEmitter::emitAny(const KeyPath &path, const Comparison &comparison, bool drives)
{
    const KeyPathStep &step = path.steps[size_t(path.toManyIndex)];
    const ToManyDescription &toMany = m_model.entity(step.entity).toMany(step.property);
    const QByteArray owner = path.beforeToMany().empty() ? keyColumn()
                                                         : column(m_scope, path.beforeToMany());
    const EntityDescription &destination = m_model.entity(step.destination);
    Scope scope = openScope(toMany.joined ? toMany.joinTable : destination.table);
    const QByteArray link = scope.alias + '.'
                            + quoted(toMany.joined ? toMany.ownColumn : toMany.inverseName);
    QByteArray tested = scope.alias + '.'
                        + quoted(toMany.joined ? toMany.destinationColumn : QByteArray("id"));
    const std::span<const KeyPathStep> rest = path.afterToMany();
    if (!rest.empty() && toMany.joined) {
        // The join table has the keys only: the records themselves are one join further.
        Scope records = openScope(destination.table);
        scope.tables += " JOIN " + records.tables + " ON " + records.alias + ".\"id\" = " + tested;
        scope.alias = records.alias;
    }
    if (!rest.empty())
        tested = column(scope, rest);
    const QByteArray test = emitTest(tested, comparison);
    if (drives)
        return QByteArray(owner + " IN (SELECT " + link + " FROM " + scope.tables + " WHERE " + test
                          + ')');
    return QByteArray("EXISTS (SELECT 1 FROM " + scope.tables + " WHERE " + link + " = " + owner
                      + " AND " + test + ')');
}

QByteArray SqlEmitter::emitTest(const QByteArray &column, const Comparison &comparison)
{
    const auto &argument = comparison.argument;
    if (!argument || isMissing(*argument)) {
        if (!isEquality(comparison.op))
            return "FALSE";
        return QByteArray(
            column + (comparison.op == ComparisonOperator::Equal ? " IS NULL" : " IS NOT NULL"));
    }
    switch (comparison.op) {
    case ComparisonOperator::Contains:
        return emitSearch(column, std::get<QString>(*argument));
    case ComparisonOperator::Equal:
        return QByteArray(column + " = " + bound(*argument));
    case ComparisonOperator::NotEqual:
        return QByteArray(column + " IS NOT " + bound(*argument));
    default:
        return QByteArray(column + ' ' + spelling(comparison.op).data() + ' ' + bound(*argument));
    }
}

/// What folds to nothing is part of every text. Anything else is not part of the empty text, and
/// saying so lets an index of the texts that are not empty serve the search.
QByteArray SqlEmitter::emitSearch(const QByteArray &column, const QString &needle)
{
    if (foldForSearch(needle.toStdString()).empty())
        return QByteArray(column + " IS NOT NULL");
    m_bindings.emplace_back(needle);
    return QByteArray(column + " IS NOT NULL AND " + column + " IS NOT '' AND text_contains("
                      + column + ", ?)");
}

/// The empty text is the one value that is written out, as it says nothing about anyone and an
/// index of the texts that are not empty can only be chosen when it stands there.
QByteArray SqlEmitter::bound(const PredicateArgument &argument)
{
    const auto *text = std::get_if<QString>(&argument);
    if (text && text->isEmpty())
        return "''";
    m_bindings.push_back(toValue(argument));
    return "?";
}

Result<QByteArray> SqlEmitter::sortColumn(const QByteArray &key)
{
    const Result<KeyPath> path = KeyPath::resolve(m_model, m_entity, key.split('.'));
    if (!path)
        return failure(path.error());
    if (path->hasToMany() || path->last().isRelationship())
        return failure(u"Records cannot be sorted by “%1”: it is not an attribute."_s.arg(
            QString::fromUtf8(key)));
    return column(m_scope, path->steps);
}

SqlEmitter::Scope SqlEmitter::openScope(const QByteArray &table)
{
    const QByteArray alias = 't' + QByteArray::number(m_aliases++);
    return {alias, quoted(table) + " AS " + alias, {}};
}

/// The column that the last step names, in the table that the steps before it lead to.
QByteArray SqlEmitter::column(Scope &scope, std::span<const KeyPathStep> path)
{
    require(!path.empty(), "a key path with a column");
    const QByteArray alias = joinedAlias(scope, path.first(path.size() - 1));
    const KeyPathStep &step = path.back();
    return QByteArray(alias + '.'
                      + quoted(m_model.entity(step.entity).propertyName(step.property)));
}

QByteArray SqlEmitter::joinedAlias(Scope &scope, std::span<const KeyPathStep> prefix)
{
    if (prefix.empty())
        return scope.alias;
    for (const auto &[known, alias] : scope.joins) {
        if (std::equal(known.begin(), known.end(), prefix.begin(), prefix.end()))
            return alias;
    }
    const QByteArray reference = column(scope, prefix);
    const Scope added = openScope(m_model.entity(prefix.back().destination).table);
    scope.tables += " LEFT JOIN " + added.tables + " ON " + added.alias + ".\"id\" = " + reference;
    scope.joins.emplace_back(std::vector<KeyPathStep>(prefix.begin(), prefix.end()), added.alias);
    return added.alias;
}

} // namespace tembra
