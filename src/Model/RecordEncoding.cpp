// How the records of the journal write themselves into a backup.

#include "Foundation/Json/JsonEncoder.h"
#include "Foundation/Precondition.h"
#include "Model/Counterpart.h"
#include "Model/JournalEncoding.h"
#include "Model/JournalScan.h"
#include "Model/Note.h"
#include "Model/RecordValues.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

ManagedObjectContext &contextOf(const ManagedObject &record)
{
    require(record.managedObjectContext(), "a record that is written is in the store");
    return *record.managedObjectContext();
}

QString uriOfRecord(const ManagedObject &record)
{
    return contextOf(record).container().uriRepresentation(record.objectID());
}

/// Writes nothing for a teammate who is not in the store any more.
Result<void> encodeTeammate(qint64 key, JsonEncoder &encoder, JournalScan &scan)
{
    const Result<std::optional<JournalScan::Teammate>> teammate = scan.teammate(key);
    if (!teammate)
        return failure(teammate.error());
    if (!*teammate)
        return {};
    const JournalScan::Teammate &found = **teammate;
    Result<void> done;
    found.values.encode(encoder, [&] {
        done = scan.forEachSession(found.sessionKeys,
                                   [&](const SessionValues &values) { values.encode(encoder); });
    });
    return done;
}

} // namespace

void Tag::encode(JsonEncoder &encoder) const
{
    TagValues{emoji(), name(), uriOfRecord(*this)}.encode(encoder);
}

void Note::encode(JsonEncoder &encoder) const
{
    NoteValues{identifier(), contentString()}.encode(encoder);
}

Result<void> Session::encode(JsonEncoder &encoder) const
{
    Result<JournalScan> scan = JournalScan::of(contextOf(*this));
    if (!scan)
        return failure(std::move(scan).error());
    const qint64 key = objectID().key;
    return scan->forEachSession(std::span(&key, 1),
                                [&](const SessionValues &values) { values.encode(encoder); });
}

Result<void> Counterpart::encode(JsonEncoder &encoder) const
{
    Result<JournalScan> scan = JournalScan::of(contextOf(*this));
    if (!scan)
        return failure(std::move(scan).error());
    return encodeTeammate(objectID().key, encoder, *scan);
}

Result<QByteArray> encodeJournal(ManagedObjectContext &context,
                                 const QList<std::shared_ptr<Counterpart>> &counterparts)
{
    Result<JournalScan> scan = JournalScan::of(context);
    if (!scan)
        return failure(std::move(scan).error());
    JsonEncoder encoder;
    encoder.beginArray();
    for (const std::shared_ptr<Counterpart> &counterpart : counterparts) {
        if (Result<void> done = encodeTeammate(counterpart->objectID().key, encoder, *scan); !done)
            return failure(std::move(done).error());
    }
    encoder.endArray();
    return encoder.takeDocument();
}

} // namespace tembra
