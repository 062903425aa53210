#pragma once

#include "Store/Schema/ObjectModel.h"

namespace tembra {

/// The SQL that brings the tables of @p entities to schema version @p version: version 1 creates
/// them, a later one adds the columns of the attributes that came with it. Join tables and indexes
/// are not part of it.
QList<QByteArray> tableStatements(const QList<EntityDescription> &entities, int version);

/// The last version that added an attribute.
int latestVersion(const QList<EntityDescription> &entities);

} // namespace tembra
