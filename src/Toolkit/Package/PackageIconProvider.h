#pragma once

#include "Toolkit/Package/PackageType.h"

#include <QFileIconProvider>
#include <QObject>

namespace tembra {

/// Shows packages of one type with the icon of a package and the name of the type, all else as
/// usual. Asked by the file system model's own thread.
class PackageIconProvider final : public QObject, public QFileIconProvider
{
    Q_OBJECT

public:
    explicit PackageIconProvider(const PackageType &type, QObject *parent);

    using QFileIconProvider::icon;
    QIcon icon(const QFileInfo &file) const override;
    QString type(const QFileInfo &file) const override;

private:
    const PackageType m_type;
    const QIcon m_packageIcon;
};

} // namespace tembra
