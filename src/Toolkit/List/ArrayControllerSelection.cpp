#include "Toolkit/List/ArrayController.h"

#include "Foundation/Precondition.h"

#include <QItemSelectionModel>
#include <QScopedValueRollback>
#include <QSet>

#include <algorithm>

// The selection of an ArrayController: held by object, shown in the selection model of one view.

namespace tembra {

QList<int> ArrayController::selectionIndexes() const
{
    QList<int> rows;
    rows.reserve(m_selected.size());
    for (const Object &object : m_selected)
        rows.append(rowOf(object.get()));
    return rows;
}

int ArrayController::selectionIndex() const
{
    return m_selected.isEmpty() ? -1 : rowOf(m_selected.first().get());
}

void ArrayController::setSelectedObjects(const ObjectList &objects)
{
    ObjectList listed;
    QSet<const QObject *> seen;
    for (const Object &object : objects) {
        if (rowOf(object.get()) < 0 || seen.contains(object.get()))
            continue;
        seen.insert(object.get());
        listed.append(object);
    }
    replaceSelection(listed);
}

void ArrayController::setSelectionIndexes(const QList<int> &rows)
{
    ObjectList objects;
    for (const int row : rows) {
        if (const Object object = objectAt(row))
            objects.append(object);
    }
    setSelectedObjects(objects);
}

void ArrayController::setSelectionIndex(int row)
{
    setSelectionIndexes({row});
}

void ArrayController::bindSelection(QItemSelectionModel *selectionModel)
{
    require(!selectionModel || selectionModel->model() == this,
            "A bound selection is of this list");
    if (m_selectionModel)
        disconnect(m_selectionModel, nullptr, this, nullptr);
    m_selectionModel = selectionModel;
    if (!selectionModel)
        return;
    connect(selectionModel, &QItemSelectionModel::selectionChanged, this,
            &ArrayController::takeSelectionFromView);
    showSelectionInView();
}

void ArrayController::replaceSelection(const ObjectList &objects)
{
    const bool changed = objects != m_selected;
    m_selected = objects;
    showSelectionInView();
    if (changed)
        Q_EMIT selectionChanged();
}

void ArrayController::keepSelectionListed()
{
    ObjectList listed = m_selected;
    listed.removeIf([this](const Object &object) { return rowOf(object.get()) < 0; });
    replaceSelection(listed);
}

void ArrayController::takeSelectionFromView(const QItemSelection &selected, const QItemSelection &)
{
    if (m_ignoreView)
        return;
    ObjectList objects;
    QSet<const QObject *> known;
    for (const Object &object : std::as_const(m_selected)) {
        if (!m_selectionModel->rowIntersectsSelection(rowOf(object.get())))
            continue;
        objects.append(object);
        known.insert(object.get());
    }
    for (const QItemSelectionRange &range : selected) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            const Object object = objectAt(row);
            if (known.contains(object.get()))
                continue;
            known.insert(object.get());
            objects.append(object);
        }
    }
    if (objects == m_selected)
        return;
    m_selected = objects;
    Q_EMIT selectionChanged();
}

void ArrayController::showSelectionInView()
{
    if (!m_selectionModel || m_ignoreView)
        return;
    const QScopedValueRollback ignoring(m_ignoreView, true);
    QList<int> rows = selectionIndexes();
    std::sort(rows.begin(), rows.end());
    QItemSelection selection;
    const int lastColumn = std::max(0, columnCount() - 1);
    for (const int row : std::as_const(rows)) {
        if (!selection.isEmpty() && selection.last().bottom() == row - 1)
            selection.last() = QItemSelectionRange(selection.last().topLeft(),
                                                   index(row, lastColumn));
        else
            selection.append(QItemSelectionRange(index(row, 0), index(row, lastColumn)));
    }
    m_selectionModel->select(selection, QItemSelectionModel::ClearAndSelect);
    const QModelIndex current = m_selectionModel->currentIndex();
    if (!rows.isEmpty() && !std::binary_search(rows.begin(), rows.end(), current.row()))
        m_selectionModel->setCurrentIndex(index(selectionIndex(), std::max(0, current.column())),
                                          QItemSelectionModel::NoUpdate);
}

} // namespace tembra
