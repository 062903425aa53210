#include "Store/Objects/PersistentContainer.h"

#include "Foundation/Logging.h"
#include "Foundation/Precondition.h"
#include "Foundation/Time/Clock.h"
#include "Store/File/Checkpointer.h"
#include "Store/File/IdAllocator.h"
#include "Store/File/StoreOpening.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Schema/ObjectUri.h"

#include <QDir>
#include <QPointer>
#include <QThread>

#include <atomic>

namespace tembra {

struct PersistentContainer::Private
{
    QString name;
    ObjectModel model;
    Options options;
    SystemClock systemClock;
    std::optional<OpenStore> store;
    bool canSetAside = false;
    std::unique_ptr<IdAllocator> ids;
    std::unique_ptr<Checkpointer> checkpointer;
    std::unique_ptr<ManagedObjectContext> viewContext;
    std::atomic<int> backgroundConnections = 0;

    StoreResult<std::unique_ptr<Connection>> openBackgroundConnection() const
    {
        const Connection &main = *store->connection;
        return main.isInPlace()
                   ? Connection::open(main.file(), Connection::Mode::ReadWrite, options.vfs)
                   : Connection::copyInMemory(main);
    }

    StoreLocation place() const
    {
        return {QDir::cleanPath(QDir(options.directory).absolutePath()), name};
    }
};

PersistentContainer::PersistentContainer(QString name, ObjectModel model, Options options)
    : d(std::make_unique<Private>())
{
    d->name = std::move(name);
    d->model = std::move(model);
    d->options = std::move(options);
}

PersistentContainer::~PersistentContainer()
{
    require(d->backgroundConnections == 0, "background contexts go before their container");
    if (!d->viewContext)
        return;
    if (const auto written = d->viewContext->writeDrafts(); !written)
        qCWarning(storeLog, "The last edits could not be written: %s",
                  qPrintable(written.error().detail));
    d->viewContext.reset();
    d->checkpointer.reset();
}

Result<void> PersistentContainer::loadPersistentStores()
{
    require(!d->store, "a store is loaded once");
    auto opened = openStore(d->place(), d->model, d->options.vfs);
    d->canSetAside = !opened
                     && (opened.error().fault == StoreFault::Damaged
                         || opened.error().fault == StoreFault::NotAJournal);
    if (!opened)
        return failure(opened.error());
    d->store.emplace(std::move(*opened));
    d->ids = std::make_unique<IdAllocator>(d->store->meta.highWaterMark);
    const auto isOnlyConnection = [this] { return d->backgroundConnections == 0; };
    d->checkpointer = std::make_unique<Checkpointer>(*d->store->connection, isOnlyConnection,
                                                     Checkpointer::Limits());
    d->viewContext = ManagedObjectContext::makeMain(*this, d->store->connection, *d->ids);
    announceSavesOf(*d->viewContext);
    return {};
}

bool PersistentContainer::canSetStoreAside() const
{
    return d->canSetAside;
}

Result<QString> PersistentContainer::setStoreAside()
{
    require(!d->store, "a store that is in use stays where it is");
    return tembra::setStoreAside(d->place());
}

StoreOrigin PersistentContainer::storeOrigin() const
{
    require(d->store.has_value(), "the store is loaded before it is used");
    return d->store->origin;
}

QString PersistentContainer::logSetAside() const
{
    require(d->store.has_value(), "the store is loaded before it is used");
    return d->store->logSetAside;
}

const QString &PersistentContainer::name() const
{
    return d->name;
}

const ObjectModel &PersistentContainer::model() const
{
    return d->model;
}

const Clock &PersistentContainer::clock() const
{
    return d->options.clock ? *d->options.clock : d->systemClock;
}

QString PersistentContainer::storeFile() const
{
    return d->place().storeFile();
}

ManagedObjectContext &PersistentContainer::viewContext() const
{
    require(bool(d->viewContext), "the store is loaded before it is used");
    return *d->viewContext;
}

Result<std::unique_ptr<ManagedObjectContext>> PersistentContainer::newBackgroundContext()
{
    require(d->store && QThread::currentThread() == thread(),
            "background contexts are made on the container's thread");
    auto opened = d->openBackgroundConnection();
    if (!opened)
        return failure(opened.error());
    (*opened)->setCheckpointsOnClose(false);
    // What an import wrote in its one long transaction must not pile up in memory.
    if (auto spills = (*opened)->execute("PRAGMA cache_spill=ON"); !spills)
        return failure(spills.error());
    ++d->backgroundConnections;
    const auto close = [this](Connection *connection) {
        delete connection;
        --d->backgroundConnections;
        QMetaObject::invokeMethod(
            this, [this] { d->checkpointer->logMayHaveGrown(); }, Qt::QueuedConnection);
    };
    std::shared_ptr<Connection> connection(opened->release(), close);
    auto context = ManagedObjectContext::makeBackground(*this, std::move(connection), *d->ids);
    announceSavesOf(*context);
    return context;
}

/// A save on another thread arrives here with the container's next turn.
void PersistentContainer::announceSavesOf(ManagedObjectContext &context)
{
    connect(&context, &ManagedObjectContext::didSave, this,
            [this, saved = QPointer<ManagedObjectContext>(&context)](const ChangeSet &changes) {
                Q_EMIT contextDidSave(saved, changes);
            });
}

QString PersistentContainer::uriRepresentation(ObjectID id) const
{
    require(d->store && !id.isNull(), "only a record of a loaded store has a URI");
    return objectUri(d->store->meta.uuid, d->model.entity(id.entity).name, id.key);
}

std::optional<ObjectID> PersistentContainer::objectIDForURI(QStringView uri) const
{
    require(d->store.has_value(), "the store is loaded before it is used");
    const auto parts = parseObjectUri(uri);
    if (!parts || parts->storeUuid != d->store->meta.uuid)
        return std::nullopt;
    const int entity = d->model.entityIndex(parts->entityName.toUtf8());
    if (entity < 0)
        return std::nullopt;
    return ObjectID{entity, parts->key};
}

} // namespace tembra
