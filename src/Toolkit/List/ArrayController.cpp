#include "Toolkit/List/ArrayController.h"

#include "Foundation/Precondition.h"
#include "Toolkit/List/ObjectSorting.h"

#include <QScopedValueRollback>
#include <QSet>

#include <algorithm>

namespace tembra {

namespace {

/// Beyond this many steps a view is told to start afresh: each step costs it all rows it knows.
constexpr qsizetype mostRemovalSteps = 200;

QSet<const QObject *> pointersOf(const ArrayController::ObjectList &objects)
{
    QSet<const QObject *> pointers;
    pointers.reserve(objects.size());
    for (const ArrayController::Object &object : objects)
        pointers.insert(object.get());
    return pointers;
}

/// Runs of neighbouring rows, as (first, last), of rows in ascending order.
QList<std::pair<int, int>> rangesOf(const QList<int> &rows)
{
    QList<std::pair<int, int>> ranges;
    for (const int row : rows) {
        if (!ranges.isEmpty() && ranges.last().second == row - 1)
            ranges.last().second = row;
        else
            ranges.append({row, row});
    }
    return ranges;
}

} // namespace

ArrayController::ArrayController(QObject *parent) : QAbstractTableModel(parent) {}

ArrayController::~ArrayController() = default;

void ArrayController::setColumns(const QList<QByteArray> &properties)
{
    {
        const QScopedValueRollback ignoring(m_ignoreView, true);
        beginResetModel();
        for (const Object &object : std::as_const(m_content))
            stopObserving(object);
        m_columns = properties;
        m_editable = QList<bool>(properties.size(), false);
        for (const Object &object : std::as_const(m_content))
            observe(object);
        endResetModel();
    }
    showSelectionInView();
}

void ArrayController::setHeaderTitles(const QStringList &titles)
{
    m_headerTitles = titles;
    if (!m_columns.isEmpty())
        Q_EMIT headerDataChanged(Qt::Horizontal, 0, int(m_columns.size()) - 1);
}

void ArrayController::setColumnEditable(int column, bool editable)
{
    m_editable[column] = editable;
}

void ArrayController::setContent(const ObjectList &objects)
{
    if (objects == m_content) {
        rearrangeObjects();
        return;
    }
    require(pointersOf(objects).size() == objects.size(), "An object is listed at most once");
    {
        const QScopedValueRollback ignoring(m_ignoreView, true);
        beginResetModel();
        for (const Object &object : std::as_const(m_content))
            stopObserving(object);
        m_content = objects;
        for (const Object &object : std::as_const(m_content))
            observe(object);
        m_arranged = sortedObjects(m_content, m_sortDescriptors);
        m_rows.clear();
        endResetModel();
    }
    keepSelectionListed();
}

void ArrayController::setSortDescriptors(const QList<SortDescriptor> &descriptors)
{
    m_sortDescriptors = descriptors;
}

void ArrayController::rearrangeObjects()
{
    ObjectList arranged = sortedObjects(m_content, m_sortDescriptors);
    if (arranged == m_arranged)
        return;
    {
        const QScopedValueRollback ignoring(m_ignoreView, true);
        Q_EMIT layoutAboutToBeChanged({}, VerticalSortHint);
        const QModelIndexList before = persistentIndexList();
        QList<const QObject *> objects;
        for (const QModelIndex &index : before)
            objects.append(m_arranged.at(index.row()).get());
        m_arranged = std::move(arranged);
        m_rows.clear();
        QModelIndexList after;
        for (qsizetype i = 0; i < before.size(); ++i)
            after.append(index(rowOf(objects.at(i)), before.at(i).column()));
        changePersistentIndexList(before, after);
        Q_EMIT layoutChanged({}, VerticalSortHint);
    }
    showSelectionInView();
}

ArrayController::Object ArrayController::objectAt(int row) const
{
    return m_arranged.value(row);
}

int ArrayController::rowOf(const QObject *object) const
{
    if (m_rows.isEmpty()) {
        m_rows.reserve(m_arranged.size());
        for (qsizetype row = 0; row < m_arranged.size(); ++row)
            m_rows.insert(m_arranged.at(row).get(), int(row));
    }
    return m_rows.value(object, -1);
}

void ArrayController::setNewObject(std::function<Object()> newObject)
{
    m_newObject = std::move(newObject);
}

void ArrayController::setDeleteObjects(std::function<void(const ObjectList &)> deleteObjects)
{
    m_deleteObjects = std::move(deleteObjects);
}

void ArrayController::add()
{
    require(bool(m_newObject), "A controller that adds knows where new objects come from");
    const Object object = m_newObject();
    require(bool(object), "A new object is an object");
    addObjects({object});
    setSelectedObjects({object});
}

void ArrayController::remove()
{
    const ObjectList objects = m_selected;
    removeObjects(objects);
    if (m_deleteObjects)
        m_deleteObjects(objects);
}

void ArrayController::addObjects(const ObjectList &objects)
{
    insertObjects(rowCount(), objects);
}

void ArrayController::insertObjects(int row, const ObjectList &objects)
{
    const ObjectList added = unlisted(objects);
    if (added.isEmpty())
        return;
    row = std::clamp(row, 0, rowCount());
    const qsizetype place = row < rowCount() ? m_content.indexOf(m_arranged.at(row))
                                             : m_content.size();
    {
        const QScopedValueRollback ignoring(m_ignoreView, true);
        beginInsertRows({}, row, row + int(added.size()) - 1);
        for (qsizetype i = 0; i < added.size(); ++i) {
            m_content.insert(place + i, added.at(i));
            m_arranged.insert(row + i, added.at(i));
            observe(added.at(i));
        }
        m_rows.clear();
        endInsertRows();
    }
    showSelectionInView();
}

void ArrayController::removeObjects(const ObjectList &objects)
{
    QList<int> rows;
    for (const Object &object : objects) {
        if (const int row = rowOf(object.get()); row >= 0)
            rows.append(row);
    }
    if (rows.isEmpty())
        return;
    std::sort(rows.begin(), rows.end());
    const QList<std::pair<int, int>> ranges = rangesOf(rows);
    const QSet<const QObject *> gone = pointersOf(objects);
    const auto isGone = [&gone](const Object &object) { return gone.contains(object.get()); };
    for (const int row : std::as_const(rows))
        stopObserving(m_arranged.at(row));
    {
        const QScopedValueRollback ignoring(m_ignoreView, true);
        m_content.removeIf(isGone);
        if (ranges.size() > mostRemovalSteps) {
            beginResetModel();
            m_arranged.removeIf(isGone);
            m_rows.clear();
            endResetModel();
        } else {
            removeRanges(ranges);
        }
    }
    keepSelectionListed();
}

void ArrayController::removeRanges(const QList<std::pair<int, int>> &ranges)
{
    for (auto range = ranges.crbegin(); range != ranges.crend(); ++range) {
        const auto [first, last] = *range;
        beginRemoveRows({}, first, last);
        m_arranged.remove(first, last - first + 1);
        m_rows.clear();
        endRemoveRows();
    }
}

ArrayController::ObjectList ArrayController::unlisted(const ObjectList &objects) const
{
    QSet<const QObject *> seen;
    ObjectList result;
    for (const Object &object : objects) {
        if (rowOf(object.get()) >= 0 || seen.contains(object.get()))
            continue;
        seen.insert(object.get());
        result.append(object);
    }
    return result;
}

} // namespace tembra
