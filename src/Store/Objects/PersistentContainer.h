#pragma once

#include "Foundation/Result.h"
#include "Store/File/StoreOrigin.h"
#include "Store/Objects/ChangeSet.h"
#include "Store/Schema/ObjectModel.h"

#include <QObject>
#include <QString>

#include <memory>
#include <optional>

namespace tembra {

class Clock;
class ManagedObjectContext;

/// The store file of a program, opened, with its contexts.
///
/// The file is `<directory>/<name>.sqlite` in WAL mode, with a lock file beside it: one process at
/// a time. Lives on the main thread; newBackgroundContext() may be called from it only, and the
/// context it returns is then used on one thread of the caller's choice.
class PersistentContainer : public QObject
{
    Q_OBJECT

public:
    struct Options
    {
        QString directory; ///< Created, readable by the user alone, when it is not there.
        const Clock *clock =
            nullptr; ///< The computer's clock when null; must outlive the container.
        QByteArray vfs =
            {}; ///< SQLite file system to use; empty for the usual one. For fault tests.
    };

    PersistentContainer(QString name, ObjectModel model, Options options);
    ~PersistentContainer() override; ///< Writes drafts, closes the file, releases the lock.

    /// Opens the store: creates it, migrates an older one after a verified copy was set aside, and
    /// leaves one that it cannot use byte for byte as it was. Call once, before anything else.
    Result<void> loadPersistentStores();

    /// After that failed: whether a damaged journal, or something that is none, lies in the store's
    /// place, so that setStoreAside() makes room.
    bool canSetStoreAside() const;
    /// Moves the store's files out of the way, all under one dated name beside it, and returns that.
    Result<QString> setStoreAside();

    /// Where the content of the loaded store comes from.
    StoreOrigin storeOrigin() const;
    /// Where a write-ahead log lies now that stood beside the store but was written for another
    /// file; empty when there was none.
    QString logSetAside() const;

    const QString &name() const;
    const ObjectModel &model() const;
    const Clock &clock() const;
    QString storeFile() const;

    ManagedObjectContext &viewContext() const;
    /// A context on a connection of its own, for an import: it only inserts, and links to existing
    /// records. It writes in batches inside one transaction that save() commits; dropped without
    /// save() it leaves nothing. From its first write on no other context can write. When the
    /// store's file was removed or replaced since it was loaded, this is a copy in memory, only to
    /// be read.
    Result<std::unique_ptr<ManagedObjectContext>> newBackgroundContext();

    /// "tembra-store://<store uuid>/<Entity>/p<key>".
    QString uriRepresentation(ObjectID id) const;
    /// The record a URI names; nothing when it is malformed or of another store. The record itself
    /// may have been deleted since.
    std::optional<ObjectID> objectIDForURI(QStringView uri) const;

Q_SIGNALS:
    /// After any context of this container saved something; emitted on the main thread. The context
    /// is null when it is gone by then.
    void contextDidSave(tembra::ManagedObjectContext *context, const tembra::ChangeSet &changes);

private:
    void announceSavesOf(ManagedObjectContext &context);

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace tembra
