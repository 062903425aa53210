#pragma once

#include "Toolkit/Package/PackageType.h"

#include <QCollator>
#include <QSortFilterProxyModel>

namespace tembra {

/// What a package dialog lists of a `QFileSystemModel`: folders, then packages, which have nothing
/// in them. Plain files are left out, except those that have the packages' suffix: they can be seen,
/// for they are in the way of a package of that name, but not chosen.
class PackageListModel final : public QSortFilterProxyModel
{
    Q_OBJECT

public:
    explicit PackageListModel(const PackageType &type, QObject *parent = nullptr);

    /// The path of @p index, which is one of this model's.
    static QString path(const QModelIndex &index);
    bool isPackage(const QModelIndex &index) const;

    bool hasChildren(const QModelIndex &parent = {}) const override;
    bool canFetchMore(const QModelIndex &parent) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

protected:
    bool filterAcceptsRow(int sourceRow, const QModelIndex &sourceParent) const override;
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override;

private:
    bool isSourcePackage(const QModelIndex &source) const;

    const PackageType m_type;
    QCollator m_collator;
};

} // namespace tembra
