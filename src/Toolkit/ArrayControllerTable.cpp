#include "Toolkit/ArrayController.h"

#include "Foundation/Precondition.h"

#include <QMetaMethod>
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

void ArrayController::observe(const Object &object)
{
    static const QMetaMethod slot = staticMetaObject.method(
        staticMetaObject.indexOfSlot("objectChanged()"));
    for (const QByteArray &column : std::as_const(m_columns)) {
        const QMetaProperty property = propertyOf(*object, column);
        require(property.isValid(), "Every column is a property of every listed object");
        // Properties may share a signal; one connection per signal is enough.
        if (property.hasNotifySignal())
            connect(object.get(), property.notifySignal(), this, slot, Qt::UniqueConnection);
    }
}

void ArrayController::stopObserving(const Object &object)
{
    disconnect(object.get(), nullptr, this, nullptr);
}

void ArrayController::objectChanged()
{
    const int row = rowOf(sender());
    if (row < 0)
        return;
    for (int column = 0; column < columnCount(); ++column) {
        const QMetaProperty property = propertyOf(*sender(), m_columns.at(column));
        if (property.notifySignalIndex() == senderSignalIndex())
            Q_EMIT dataChanged(index(row, column), index(row, column));
    }
}

} // namespace tembra
