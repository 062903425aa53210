#include "Toolkit/List/ArrayController.h"

#include "Foundation/Precondition.h"
#include "Toolkit/List/PropertyObservation.h"

#include <QMetaProperty>

// An ArrayController as a table: the columns are properties, and their signals are its changes.

namespace tembra {

namespace {

QMetaProperty propertyOf(const QObject &object, const QByteArray &name)
{
    const QMetaObject *metaObject = object.metaObject();
    return metaObject->property(metaObject->indexOfProperty(name.constData()));
}

} // namespace

int ArrayController::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_arranged.size());
}

int ArrayController::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_columns.size());
}

QVariant ArrayController::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    QObject *object = m_arranged.at(index.row()).get();
    if (role == ObjectRole)
        return QVariant::fromValue(object);
    if (role == Qt::DisplayRole || role == Qt::EditRole)
        return propertyOf(*object, m_columns.at(index.column())).read(object);
    return {};
}

bool ArrayController::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != Qt::EditRole)
        return false;
    const Object object = m_arranged.at(index.row());
    const QMetaProperty property = propertyOf(*object, m_columns.at(index.column()));
    const bool emptied = value.typeId() == QMetaType::QString && value.toString().isEmpty();
    if (!property.write(object.get(), emptied ? QVariant(QString()) : value))
        return false;
    if (!property.hasNotifySignal())
        Q_EMIT dataChanged(index, index);
    return true;
}

QVariant ArrayController::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation == Qt::Horizontal && role == Qt::DisplayRole)
        return m_headerTitles.value(section);
    return {};
}

Qt::ItemFlags ArrayController::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (index.isValid() && m_editable.at(index.column()))
        flags |= Qt::ItemIsEditable;
    return flags;
}

void ArrayController::sort(int column, Qt::SortOrder order)
{
    setSortDescriptors({});
    if (column >= 0 && column < columnCount())
        setSortDescriptors({{m_columns.at(column), order == Qt::AscendingOrder}});
    rearrangeObjects();
}

// One observation for each row and column: a list that many objects tell their changes to directly
// would have to search all of them for the one that speaks.
void ArrayController::observe(const Object &object)
{
    QList<PropertyObservation *> &observations = m_observations[object.get()];
    for (int column = 0; column < m_columns.size(); ++column) {
        const QMetaProperty property = propertyOf(*object, m_columns.at(column));
        require(property.isValid(), "Every column is a property of every listed object");
        if (!property.hasNotifySignal())
            continue;
        observations.append(new PropertyObservation(
            object.get(), m_columns.at(column),
            [this, listed = object.get(), column] { objectChanged(listed, column); }, this));
    }
}

void ArrayController::stopObserving(const Object &object)
{
    const QList<PropertyObservation *> observations = m_observations.take(object.get());
    for (PropertyObservation *observation : observations) {
        disconnect(object.get(), nullptr, observation, nullptr);
        // It may be telling of the very change that takes the object off the list.
        observation->deleteLater();
    }
}

void ArrayController::objectChanged(const QObject *object, int column)
{
    const int row = rowOf(object);
    if (row >= 0 && column < columnCount())
        Q_EMIT dataChanged(index(row, column), index(row, column));
}

} // namespace tembra
