#include "Store/File/StoreOpening.h"

#include "Foundation/Logging.h"
#include "Store/File/CompanionFiles.h"
#include "Store/File/PrivateFile.h"
#include "Store/File/SchemaMigrator.h"
#include "Store/File/SetAside.h"
#include "Store/File/Statement.h"
#include "Store/File/StoreInspection.h"
#include "Store/Schema/ObjectModel.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <unistd.h>

namespace tembra {

namespace {

/// Makes the folder of a store, and takes it away again unless the store could be opened.
class FolderGuard
{
public:
    Result<void> make(const QString &folder)
    {
        auto made = createPrivateFolder(folder);
        if (!made)
            return failure(made.error());
        m_made = std::move(*made);
        if (!QFileInfo(folder).isDir())
            return failure(
                QStringLiteral(
                    "“%1” is not a folder. Move it somewhere else, or choose another folder for "
                    "the journal.")
                    .arg(folder));
        return {};
    }

    void keep() { m_made.clear(); }

    ~FolderGuard()
    {
        for (const QString &folder : std::as_const(m_made))
            ::rmdir(QFile::encodeName(folder).constData());
    }

private:
    QStringList m_made; ///< Innermost first.
};

Result<void> bringUpToDate(Connection &connection, const ObjectModel &model, int version,
                           const QByteArray &vfs)
{
    qCInfo(storeLog, "Bringing the store from schema version %d to %d", version, model.version());
    return setAsideCopy(connection, model, vfs).and_then([&] {
        return migrate(connection, model, version);
    });
}

/// The version the store has now that something went wrong with it; -1 when that cannot be read.
int versionNow(Connection &connection)
{
    const auto statement = connection.prepare("PRAGMA user_version");
    if (!statement)
        return -1;
    const auto row = (*statement)->step();
    const int version = row && *row ? int((*statement)->key(0)) : -1;
    (*statement)->reset();
    return version;
}

struct OpenFile
{
    std::shared_ptr<Connection> connection;
    StoreMeta meta;
    StoreOrigin origin = StoreOrigin::Found;
    QString logSetAside = {};
};

/// Opens a store that was looked at before. Until all went well, closing it must change nothing.
StoreResult<OpenFile> openInspected(const QString &file, const ObjectModel &model, int version,
                                    const QByteArray &vfs)
{
    const CompanionFiles companions(file);
    auto opened = Connection::open(file, Connection::Mode::ReadWrite, vfs);
    if (!opened) {
        companions.restore();
        return tl::unexpected(opened.error());
    }
    std::shared_ptr<Connection> connection = std::move(*opened);
    connection->setCheckpointsOnClose(false);
    const auto ready = version == model.version() ? Result<void>()
                                                  : bringUpToDate(*connection, model, version, vfs);
    auto meta = ready ? StoreMeta::read(*connection)
                      : tl::unexpected(StoreError(ready.error(), connection->lastFault()));
    if (!meta) {
        const bool isUnchanged = versionNow(*connection) == version;
        connection.reset();
        if (isUnchanged)
            companions.restore();
        return tl::unexpected(meta.error());
    }
    connection->setCheckpointsOnClose(true);
    return OpenFile{std::move(connection), std::move(*meta)};
}

/// Opens a store beside which stands the log of another file.
StoreResult<OpenFile> openWithoutItsLog(const QString &file, const ObjectModel &model, int version,
                                        const QByteArray &vfs)
{
    const auto log = SetAside::moveLog(file);
    if (!log)
        return failure(log.error());
    auto opened = openInspected(file, model, version, vfs);
    if (!opened) {
        removeCompanions(file);
        log->putBack();
        return opened;
    }
    qCWarning(storeLog,
              "The write-ahead log beside the store was written for another file. It was "
              "not used, and lies in %s",
              qPrintable(log->file()));
    opened->logSetAside = log->file();
    return opened;
}

StoreResult<OpenFile> openLocked(const QString &file, const ObjectModel &model,
                                 const QByteArray &vfs)
{
    const auto found = inspectStore(file, model, vfs);
    if (!found)
        return tl::unexpected(found.error());
    if (found->version > 0)
        return found->logBelongs ? openInspected(file, model, found->version, vfs)
                                 : openWithoutItsLog(file, model, found->version, vfs);
    if (auto created = createStore(file, model, vfs); !created)
        return failure(created.error());
    auto opened = openInspected(file, model, model.version(), vfs);
    if (!opened && !found->wasEmpty)
        removeDatabase(file);
    if (opened)
        opened->origin = found->wasEmpty ? StoreOrigin::MadeForAnEmptyFile : StoreOrigin::Made;
    return opened;
}

/// A folder that was given to us, and not made for us alone, keeps its permissions.
bool holdsMoreThanAJournal(const QString &folder)
{
    constexpr auto folders = QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot;
    return QDir::homePath().startsWith(folder) || !QDir(folder).isEmpty(folders);
}

/// Files and folders from elsewhere may be open to others.
void tightenPermissions(const QString &folder, const QString &file)
{
    if (!holdsMoreThanAJournal(folder))
        makePrivate(folder);
    for (const QString &path : QStringList{file} + companionsOf(file))
        makePrivate(path);
}

} // namespace

StoreResult<OpenStore> openStore(const StoreLocation &place, const ObjectModel &model,
                                 const QByteArray &vfs)
{
    FolderGuard folder;
    if (auto made = folder.make(place.directory); !made)
        return failure(made.error());
    // From here on no part of the path is a link, so that SQLite can be told to follow none.
    const StoreLocation real{QFileInfo(place.directory).canonicalFilePath(), place.name};
    auto lock = StoreLock::acquire(real.lockFile());
    if (!lock)
        return failure(lock.error());
    auto opened = openLocked(real.storeFile(), model, vfs);
    if (!opened)
        return tl::unexpected(opened.error());
    folder.keep();
    tightenPermissions(real.directory, real.storeFile());
    return OpenStore{std::move(*lock), std::move(opened->connection), std::move(opened->meta),
                     opened->origin, std::move(opened->logSetAside)};
}

Result<QString> setStoreAside(const StoreLocation &place)
{
    const StoreLocation real{QFileInfo(place.directory).canonicalFilePath(), place.name};
    const auto lock = StoreLock::acquire(real.lockFile());
    if (!lock)
        return failure(lock.error());
    return SetAside::moveStore(real.storeFile()).map([](const SetAside &moved) {
        return moved.file();
    });
}

} // namespace tembra
