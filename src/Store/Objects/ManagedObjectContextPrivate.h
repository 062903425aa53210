#pragma once

#include "Store/File/Connection.h"
#include "Store/Objects/ContextSetup.h"
#include "Store/Objects/DeletionEffects.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/NotifySignals.h"
#include "Store/Objects/ObjectRegistry.h"
#include "Store/Objects/PendingChanges.h"
#include "Store/Objects/UnwrittenEdits.h"
#include "Store/Rows/KeyRanges.h"
#include "Store/Rows/LeftoverRows.h"
#include "Store/Rows/RowReader.h"
#include "Store/Rows/RowWriter.h"
#include "Store/Schema/ObjectModel.h"

#include <QSet>
#include <QTimer>

#include <functional>
#include <optional>

namespace tembra {

class DeletionPlan;
class UndoHistory;

/// NOTIFY signals to emit once the state behind them is complete. Keeps their objects alive.
using Announcements = std::vector<std::pair<std::shared_ptr<ManagedObject>, int>>;
using ObjectList = std::vector<std::shared_ptr<ManagedObject>>;

/// The working parts of a context. Its functions stand in ContextObjects.cpp (objects and
/// reading), ContextEditing.cpp, ContextWriting.cpp, ContextDeletion.cpp, ContextRestoring.cpp and
/// ContextMerge.cpp.
///
/// Nothing here calls foreign code (signals, hooks) while a transaction is open or the parts below
/// disagree with each other; after calling it, nothing is taken for granted.
struct ManagedObjectContext::Private
{
    Private(ManagedObjectContext &context, PersistentContainer &owner, ContextSetup given);
    ~Private();

    // Objects
    std::shared_ptr<ManagedObject> makeObject(ObjectID id, RowReader::Row values);
    std::shared_ptr<ManagedObject> object(ObjectID id);
    /// Reads the values of an object that has none yet. False when that fails or it has vanished.
    bool load(ManagedObject &object);
    Result<void> loadTogether(const QList<std::shared_ptr<ManagedObject>> &objects);
    Result<QList<std::shared_ptr<ManagedObject>>> objects(int entity, std::span<const qint64> keys,
                                                          bool asFaults);
    void takeValues(ManagedObject &object, RowReader::Row values);
    void setPinned(ManagedObject &object, bool pinned);
    bool exists(ObjectID id);
    /// Nothing when there is no such record, or none any more.
    Result<std::optional<RowReader::Row>> presentRow(ObjectID id);
    std::optional<HiddenRecords> hiddenFrom(const FetchRequest &request) const;

    // To-many relationships
    static std::vector<qint64> *knownRelated(const ManagedObject &object, int property);
    const std::vector<qint64> &relatedKeys(const ManagedObject &owner, const ToManyDescription &link);
    Result<void> readRelated(const ToManyDescription &link, std::span<const qint64> owners);
    void overlayUnwritten(const ToManyDescription &link, qint64 owner, std::vector<qint64> &keys) const;
    bool isLinked(const ManagedObject &owner, const ToManyDescription &link, const ManagedObject &other);
    /// Brings the known related keys of a live owner up to date and announces the change.
    void relate(ObjectID owner, int property, qint64 key, bool related,
                Announcements &announcements);

    // Editing
    std::shared_ptr<ManagedObject> insert(int entity);
    void setColumn(ManagedObject &object, int property, Value value);
    void setLinked(ManagedObject &owner, int property, ManagedObject &other, bool linked);
    void markUnwritten(ManagedObject &object, PropertyMask columns);
    void noteColumn(const ManagedObject &object, int property, const Value &before,
                    const Value &after, Announcements &announcements);
    /// Calls @p noting with each collector that is to learn of an edit.
    template<typename Noting>
    void note(const Noting &noting)
    {
        noting(sinceSave);
        if (!setup.isBackground)
            noting(turn);
    }
    static void announce(const Announcements &announcements);
    /// Something was edited (not merged): a turn is under way and the context has changes.
    void didEdit();
    void scheduleTurnEnd();
    void endTurn();
    void tellChanges();

    // Writing
    Result<void> writeDrafts();
    Result<void> save();
    /// The records it returns are not there to be updated: they were deleted elsewhere.
    Result<std::vector<ObjectID>> writeUnwritten(Transaction &transaction);
    Result<void> writeObject(Transaction &transaction, ManagedObject &object,
                             std::vector<ObjectID> &vanished);
    /// The objects it returns turned out to be deleted elsewhere; the caller announces that.
    Result<ObjectList> writeInOwnTransaction(Transaction::Durability durability);
    ObjectList didWrite(const std::vector<ObjectID> &vanished);
    void startDraftTimer();
    /// Runs @p work in a draft of its own, or in the one transaction of a background context.
    Result<void> inTransaction(const std::function<Result<void>(Transaction &)> &work);

    // Writing in the background
    Result<void> writePiece();
    Result<void> beginLongTransaction();
    Result<ObjectList> saveLongTransaction();
    Result<void> dropVanishedToOnes();
    /// Deletes what it may of one entity's records with these keys.
    Result<void> deleteUnreferenced(Transaction &transaction, int entity, KeyRange keys);
    tl::unexpected<Error> lose(const Error &reason);

    // Deleting and bringing back
    Result<void> deleteRecords(std::vector<ObjectID> roots);
    Result<void> deleteAfterHooks(std::vector<ObjectID> roots);
    Result<void> runHooks(const DeletionPlan &plan);
    Result<void> runDeletion(const DeletionPlan &plan);
    Result<void> deleteRows(Transaction &transaction, const DeletionPlan &plan, int entity);
    /// The live objects of the records that a deletion takes, those that it leaves for later too.
    Result<ObjectList> liveObjectsOf(const DeletionPlan &plan);
    Result<void> writeDeletion(const DeletionPlan &plan);
    Result<void> checkForNewcomers(const DeletionPlan &plan);
    void finishDeletion(const DeletionPlan &plan, const DeletionEffects &effects,
                        const ObjectList &gone);
    void deleteSomeLeftovers();
    Result<void> deleteLeftovers();
    /// The live object of a record that is gone, if any, becomes deleted; the caller announces it.
    std::shared_ptr<ManagedObject> becomeDeleted(ObjectID id);
    static void announceDeleted(const ObjectList &gone);
    void noteVanished(ObjectID id);
    void applyToOne(ObjectID id, const ToOneChange &change, Announcements &announcements);
    void applyRelated(const RelatedChanges &related, bool gained, Announcements &announcements);
    /// Brings back deleted records under their old keys, with their links as far as these still
    /// lead somewhere. Fails when the store cannot be written; then nothing came back.
    Result<void> restoreRecords(const RecordArchive &archive);
    Result<void> writeRestored(Transaction &transaction, const RecordArchive &archive,
                               RestorationEffects &restoration);
    Result<void> writeRestoredLinks(Transaction &transaction, const RecordArchive &archive,
                                    RestorationEffects &restoration,
                                    const std::function<bool(ObjectID)> &reaches);
    Result<void> writeCleared(Transaction &transaction, const RecordArchive &archive,
                              RestorationEffects &restoration);

    // Merging
    void merge(const ChangeSet &changes);
    void mergeWholesale(EntityMask entities, Announcements &announcements, ObjectList &gone);
    bool hasVanished(ObjectID id);
    void refresh(ManagedObject &object, PropertyMask properties, Announcements &announcements);

    UndoHistory *recorder() const; ///< Null when nothing is to be recorded.

    ManagedObjectContext &q;
    PersistentContainer &container;
    const ContextSetup setup;
    Connection &connection;
    const ObjectModel &schema;
    RowReader reader;
    RowWriter writer;
    LeftoverRows leftovers;
    NotifySignals notifySignals;

    ObjectRegistry registry;
    QHash<ObjectID, std::shared_ptr<ManagedObject>> pinned;
    UnwrittenEdits unwritten;
    PendingChanges turn; ///< Not told yet.
    PendingChanges sinceSave; ///< Not saved yet.
    QSet<ObjectID> hooked; ///< Records whose deletion is under way and whose hook has run.
    int deletionDepth = 0;
    quint64 edits = 0; ///< Counts them, so that one can tell whether there was any.
    bool hasChanges = false;
    bool turnEndScheduled = false;

    QTimer leftoverTimer;
    bool leftoversFail = false; ///< Said in the log already.
    QTimer draftTimer;
    bool draftsFail = false; ///< Said in the log already.
    /// Told while drafts failed, when queries did not see it yet: told once more when they do.
    PendingChanges unseenByQueries;
    std::optional<Transaction> longTransaction; ///< Of a background context.
    KeyRanges inserted; ///< By a background context.
    std::optional<Error> lost; ///< Why a background context cannot be saved any more.

    std::unique_ptr<UndoManager> undoManager;
};

} // namespace tembra
