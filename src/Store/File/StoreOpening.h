#pragma once

#include "Store/File/Connection.h"
#include "Store/File/StoreLock.h"
#include "Store/File/StoreMeta.h"
#include "Store/File/StoreOrigin.h"

namespace tembra {

class ObjectModel;

/// A store that is open and locked.
struct OpenStore
{
    StoreLock lock; ///< Before the connection, so that it is given back after the file is closed.
    std::shared_ptr<Connection> connection;
    StoreMeta meta;
    StoreOrigin origin = StoreOrigin::Found;
    QString logSetAside = {}; ///< Where a log lies that was written for another file; else empty.
};

/// Where a store lies.
struct StoreLocation
{
    QString directory;
    QString name;

    QString storeFile() const
    {
        return directory + QLatin1Char('/') + name + QLatin1String(".sqlite");
    }
    QString lockFile() const
    {
        return directory + QLatin1Char('/') + name + QLatin1String(".lock");
    }
};

/// Opens a store: makes the folder and the store when they are not there, brings an older one up to
/// date after setting a copy aside. When it fails nothing has changed: what was there is byte for
/// byte as before, and what was not is not (a migration that was completed before a later one
/// failed stays, and so does the copy).
StoreResult<OpenStore> openStore(const StoreLocation &place, const ObjectModel &model,
                                 const QByteArray &vfs);

/// Moves a store that cannot be opened out of the way, with its companions, so that a copy can be
/// put in its place or a new one made. Returns its new name.
Result<QString> setStoreAside(const StoreLocation &place);

} // namespace tembra
