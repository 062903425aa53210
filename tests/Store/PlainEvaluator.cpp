#include "PlainEvaluator.h"

#include "Foundation/Text/TextFolding.h"

#include <algorithm>

namespace tembra::test {

namespace {

Value valueOf(const std::optional<PredicateArgument> &argument)
{
    if (!argument)
        return {};
    if (const auto *id = std::get_if<ObjectID>(&*argument))
        return id->isNull() ? Value() : Value(id->key);
    if (const auto *text = std::get_if<QString>(&*argument))
        return textValue(*text);
    if (const auto *date = std::get_if<Date>(&*argument))
        return date->secondsSinceReferenceDate;
    return std::get<qint64>(*argument);
}

/// By code point for texts; missing values come first.
int order(const Value &a, const Value &b)
{
    if (isMissing(a) || isMissing(b))
        return int(isMissing(b)) - int(isMissing(a));
    if (const auto *text = std::get_if<QString>(&a)) {
        const auto left = text->toUcs4();
        const auto right = std::get<QString>(b).toUcs4();
        if (left == right)
            return 0;
        return std::lexicographical_compare(left.begin(), left.end(), right.begin(), right.end())
                   ? -1
                   : 1;
    }
    return a == b ? 0 : (a < b ? -1 : 1);
}

bool contains(const Value &text, const Value &needle)
{
    const std::string folded = foldForSearch(std::get<QString>(text).toStdString());
    return folded.find(foldForSearch(std::get<QString>(needle).toStdString())) != std::string::npos;
}

bool holds(const Value &value, ComparisonOperator op, const Value &argument)
{
    if (op == ComparisonOperator::Equal)
        return order(value, argument) == 0;
    if (op == ComparisonOperator::NotEqual)
        return order(value, argument) != 0;
    if (isMissing(value) || isMissing(argument))
        return false;
    switch (op) {
    case ComparisonOperator::Less:
        return order(value, argument) < 0;
    case ComparisonOperator::LessOrEqual:
        return order(value, argument) <= 0;
    case ComparisonOperator::Greater:
        return order(value, argument) > 0;
    case ComparisonOperator::GreaterOrEqual:
        return order(value, argument) >= 0;
    default:
        return contains(value, argument);
    }
}

} // namespace

PlainEvaluator::PlainEvaluator(const QueryJournal &journal) : m_journal(journal) {}

bool PlainEvaluator::matches(const PredicateNode &node, int entity, qint64 key) const
{
    const auto holdsHere = [&](const PredicateNodePointer &operand) {
        return matches(*operand, entity, key);
    };
    if (const auto *negation = std::get_if<Negation>(&node.content))
        return !holdsHere(negation->operand);
    if (const auto *compound = std::get_if<Compound>(&node.content)) {
        return compound->connective == Connective::And
                   ? std::ranges::all_of(compound->operands, holdsHere)
                   : std::ranges::any_of(compound->operands, holdsHere);
    }
    return compares(std::get<Comparison>(node.content), entity, key);
}

bool PlainEvaluator::compares(const Comparison &comparison, int entity, qint64 key) const
{
    const Value argument = valueOf(comparison.argument);
    return std::ranges::any_of(valuesAt(entity, key, comparison.keyPath), [&](const Value &value) {
        return holds(value, comparison.op, argument);
    });
}

std::vector<Value> PlainEvaluator::valuesAt(int entity, qint64 key,
                                            const QList<QByteArray> &names) const
{
    const EntityDescription &description = m_journal.model.entity(entity);
    const int property = description.propertyIndex(names.first());
    const QList<QByteArray> rest = names.mid(1);
    if (description.kindOf(property) == PropertyKind::ToMany) {
        const int destination = description.toMany(property).destination;
        std::vector<Value> values;
        for (const qint64 other : related(entity, key, property)) {
            const std::vector<Value> more = rest.isEmpty() ? std::vector<Value>{other}
                                                           : valuesAt(destination, other, rest);
            values.insert(values.end(), more.begin(), more.end());
        }
        return values;
    }
    const Value value = m_journal.rows[size_t(entity)].at(key)[size_t(property)];
    if (rest.isEmpty())
        return {value};
    const int destination = description.toOne(property)->destination;
    const bool leadsToMany = m_journal.model.entity(destination).propertyIndex(rest.first())
                             >= m_journal.model.entity(destination).columnCount();
    if (isMissing(value))
        return leadsToMany ? std::vector<Value>() : std::vector<Value>{Value()};
    return valuesAt(destination, std::get<qint64>(value), rest);
}

std::vector<qint64> PlainEvaluator::related(int entity, qint64 key, int toMany) const
{
    const ToManyDescription &description = m_journal.model.entity(entity).toMany(toMany);
    std::vector<qint64> found;
    if (description.joined) {
        for (const auto &[session, tag] : m_journal.links) {
            if ((entity == sessionEntity ? session : tag) == key)
                found.push_back(entity == sessionEntity ? tag : session);
        }
        return found;
    }
    for (const auto &[other, row] : m_journal.rows[size_t(description.destination)]) {
        if (row[size_t(description.inverse)] == Value(key))
            found.push_back(other);
    }
    return found;
}

std::vector<qint64> PlainEvaluator::fetchKeys(const FetchRequest &request) const
{
    const int entity = m_journal.model.entityIndex(request.entityName);
    std::vector<qint64> keys;
    for (const auto &[key, row] : m_journal.rows[size_t(entity)]) {
        if (request.predicate.isEmpty() || matches(*request.predicate.root(), entity, key))
            keys.push_back(key);
    }
    std::stable_sort(keys.begin(), keys.end(), [&](qint64 a, qint64 b) {
        for (const SortDescriptor &descriptor : request.sortDescriptors) {
            const QList<QByteArray> path = descriptor.key.split('.');
            const int result = order(valuesAt(entity, a, path).front(),
                                     valuesAt(entity, b, path).front());
            if (result != 0)
                return descriptor.ascending ? result < 0 : result > 0;
        }
        return a < b;
    });
    if (request.fetchLimit > 0 && keys.size() > size_t(request.fetchLimit))
        keys.resize(size_t(request.fetchLimit));
    return keys;
}

} // namespace tembra::test
