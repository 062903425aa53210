#include "Toolkit/List/ObjectSorting.h"

#include <QVariant>

#include <algorithm>
#include <vector>

namespace tembra {

namespace {

struct Row
{
    const ArrayController::Object *object;
    std::vector<QVariant> keys;
    qint64 tieKey = 0;
};

bool isMissing(const QVariant &value)
{
    if (value.typeId() == QMetaType::QString)
        return static_cast<const QString *>(value.constData())->isNull();
    return value.isNull();
}

/// UTF-16 units compare like code points once the surrogates are moved above U+FFFF.
int codePointRank(QChar unit)
{
    const int value = unit.unicode();
    return unit.isSurrogate() ? value + 0x10000 : value;
}

int compareTexts(const QString &left, const QString &right)
{
    const auto [l, r] = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    if (l == left.end() || r == right.end())
        return (l != left.end()) - (r != right.end());
    return codePointRank(*l) - codePointRank(*r);
}

int compareValues(const QVariant &left, const QVariant &right)
{
    if (isMissing(left) || isMissing(right))
        return isMissing(right) - isMissing(left);
    if (left.typeId() == QMetaType::QString && right.typeId() == QMetaType::QString)
        return compareTexts(*static_cast<const QString *>(left.constData()),
                            *static_cast<const QString *>(right.constData()));
    const QPartialOrdering order = QVariant::compare(left, right);
    return (order == QPartialOrdering::Greater) - (order == QPartialOrdering::Less);
}

} // namespace

ArrayController::ObjectList sortedObjects(const ArrayController::ObjectList &objects,
                                          const QList<ArrayController::SortDescriptor> &descriptors,
                                          const ArrayController::TieKey &tieKey)
{
    if (descriptors.isEmpty())
        return objects;
    std::vector<Row> rows;
    rows.reserve(size_t(objects.size()));
    for (const ArrayController::Object &object : objects) {
        Row row{&object, {}, tieKey ? tieKey(*object) : 0};
        for (const auto &descriptor : descriptors)
            row.keys.push_back(object->property(descriptor.key.constData()));
        rows.push_back(std::move(row));
    }
    std::stable_sort(rows.begin(), rows.end(), [&descriptors](const Row &left, const Row &right) {
        for (size_t i = 0; i < left.keys.size(); ++i) {
            if (const int order = compareValues(left.keys[i], right.keys[i]))
                return (order < 0) == descriptors[qsizetype(i)].ascending;
        }
        return left.tieKey < right.tieKey;
    });
    ArrayController::ObjectList result;
    result.reserve(objects.size());
    for (const Row &row : rows)
        result.append(*row.object);
    return result;
}

} // namespace tembra
