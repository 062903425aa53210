#include "Toolkit/Package/PackageListModel.h"

#include "Toolkit/PlainToolTip.h"

#include <QDateTime>
#include <QFileSystemModel>

namespace tembra {

namespace {

// QFileSystemModel has no name for it.
constexpr int modifiedColumn = 3;

const QFileSystemModel &fileSystemOf(const QAbstractItemModel *source)
{
    return *static_cast<const QFileSystemModel *>(source);
}

} // namespace

PackageListModel::PackageListModel(const PackageType &type, QObject *parent)
    : QSortFilterProxyModel(parent)
    , m_type(type)
{
    m_collator.setNumericMode(true);
    m_collator.setCaseSensitivity(Qt::CaseInsensitive);
    sort(0);
}

QString PackageListModel::path(const QModelIndex &index)
{
    return index.siblingAtColumn(0).data(QFileSystemModel::FilePathRole).toString();
}

bool PackageListModel::isPackage(const QModelIndex &index) const
{
    return index.isValid() && isSourcePackage(mapToSource(index));
}

bool PackageListModel::isSourcePackage(const QModelIndex &source) const
{
    const QFileSystemModel &files = fileSystemOf(sourceModel());
    return m_type.hasSuffix(files.fileName(source)) && files.isDir(source);
}

bool PackageListModel::hasChildren(const QModelIndex &parent) const
{
    return !isPackage(parent) && QSortFilterProxyModel::hasChildren(parent);
}

bool PackageListModel::canFetchMore(const QModelIndex &parent) const
{
    return !isPackage(parent) && QSortFilterProxyModel::canFetchMore(parent);
}

QVariant PackageListModel::data(const QModelIndex &index, int role) const
{
    // Long names are elided.
    if (role == Qt::ToolTipRole && index.column() == 0)
        return plainToolTip(QSortFilterProxyModel::data(index).toString());
    return QSortFilterProxyModel::data(index, role);
}

Qt::ItemFlags PackageListModel::flags(const QModelIndex &index) const
{
    if (index.isValid() && !fileSystemOf(sourceModel()).isDir(mapToSource(index)))
        return Qt::NoItemFlags;
    // Nothing is moved about in a dialog that asks for a name, and no package loses its suffix.
    Qt::ItemFlags unwanted = Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
    unwanted.setFlag(Qt::ItemIsEditable, isPackage(index));
    return QSortFilterProxyModel::flags(index) & ~unwanted;
}

bool PackageListModel::filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const
{
    const QFileSystemModel &files = fileSystemOf(sourceModel());
    const QModelIndex source = files.index(sourceRow, 0, sourceParent);
    if (isSourcePackage(sourceParent))
        return false;
    return files.isDir(source) || m_type.hasSuffix(files.fileName(source));
}

bool PackageListModel::lessThan(const QModelIndex &left, const QModelIndex &right) const
{
    const QFileSystemModel &files = fileSystemOf(sourceModel());
    const bool leftIsFile = m_type.hasSuffix(files.fileName(left));
    const bool rightIsFile = m_type.hasSuffix(files.fileName(right));
    // Folders stay at the top in either order.
    if (leftIsFile != rightIsFile)
        return (sortOrder() == Qt::AscendingOrder) == rightIsFile;
    if (left.column() == modifiedColumn && files.lastModified(left) != files.lastModified(right))
        return files.lastModified(left) < files.lastModified(right);
    return m_collator.compare(files.fileName(left), files.fileName(right)) < 0;
}

} // namespace tembra
