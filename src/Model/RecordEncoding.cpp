// How the records of the journal write themselves into a backup.

#include "Foundation/JsonEncoder.h"
#include "Foundation/Precondition.h"
#include "Model/Counterpart.h"
#include "Model/JournalEncoding.h"
#include "Model/Note.h"
#include "Model/RecordValues.h"
#include "Model/Session.h"
#include "Model/SessionScan.h"
#include "Model/Tag.h"
#include "Store/ManagedObjectContext.h"
#include "Store/PersistentContainer.h"

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

std::vector<qint64> keysOf(const std::vector<ObjectID> &ids)
{
    std::vector<qint64> keys;
    keys.reserve(ids.size());
    for (const ObjectID id : ids)
        keys.push_back(id.key);
    return keys;
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
    Result<SessionScan> scan = SessionScan::of(contextOf(*this));
    if (!scan)
        return failure(std::move(scan).error());
    const qint64 key = objectID().key;
    return scan->forEach(std::span(&key, 1),
                         [&](const SessionValues &values) { values.encode(encoder); });
}

Result<void> Counterpart::encode(JsonEncoder &encoder, SessionScan &scan) const
{
    encoder.beginObject();
    encoder.key("name"_L1);
    encoder.textOrNull(name());
    encoder.key("objectID"_L1);
    encoder.text(uriOfRecord(*this));
    encoder.key("sessions"_L1);
    encoder.beginArray();
    const std::vector<qint64> keys = keysOf(relatedIDs(sessionsProperty));
    Result<void> done = scan.forEach(keys,
                                     [&](const SessionValues &values) { values.encode(encoder); });
    encoder.endArray();
    encoder.endObject();
    return done;
}

Result<QByteArray> encodeJournal(ManagedObjectContext &context,
                                 const QList<std::shared_ptr<Counterpart>> &counterparts)
{
    Result<SessionScan> scan = SessionScan::of(context);
    if (!scan)
        return failure(std::move(scan).error());
    JsonEncoder encoder;
    encoder.beginArray();
    for (const std::shared_ptr<Counterpart> &counterpart : counterparts) {
        if (Result<void> done = counterpart->encode(encoder, *scan); !done)
            return failure(std::move(done).error());
    }
    encoder.endArray();
    return encoder.takeDocument();
}

} // namespace tembra
