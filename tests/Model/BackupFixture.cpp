#include "BackupFixture.h"

#include "Foundation/Json/JsonDecoder.h"
#include "Foundation/Precondition.h"
#include "Model/JournalEncoding.h"
#include "Model/RecordDecoding.h"
#include "Model/RecordValues.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

#include <QRegularExpression>

#include <thread>

namespace tembra {

using namespace Qt::StringLiterals;

Result<QByteArray> writeBackup(const JournalFixture &journal)
{
    return encodeJournal(journal.context(), journal.counterparts());
}

Result<QList<std::shared_ptr<Counterpart>>> readBackup(QByteArrayView document,
                                                       ManagedObjectContext &context)
{
    JsonDecoder decoder(document);
    setDecodingContext(decoder, context);
    QList<std::shared_ptr<Counterpart>> counterparts;
    decodeJournal(decoder, [&] { counterparts.append(Counterpart::decode(decoder)); });
    if (decoder.hasFailed())
        return failure(decoder.error());
    return counterparts;
}

std::unique_ptr<ManagedObjectContext> newImportContext(const JournalFixture &journal)
{
    auto context = journal.coreData().persistentContainer().newBackgroundContext();
    require(context.has_value(), "A background context can be made");
    return std::move(*context);
}

Result<void> importBackup(QByteArrayView document, const JournalFixture &journal)
{
    auto context = newImportContext(journal);
    Result<void> outcome;
    std::thread thread([&] {
        const auto read = readBackup(document, *context);
        outcome = read ? context->save() : failure(read.error());
        context.reset();
    });
    thread.join();
    return outcome;
}

QByteArray withoutKeys(QByteArray document)
{
    // In UTF-8 and back: a document is well-formed.
    static const QRegularExpression uri(u"tembra-store://[^/]+/([A-Za-z]+)/p[0-9]+"_s);
    return QString::fromUtf8(document).replace(uri, u"\\1"_s).toUtf8();
}

QByteArray uriOf(const ManagedObject &record)
{
    require(record.managedObjectContext(), "A record with a URI is in the store");
    return record.managedObjectContext()->container().uriRepresentation(record.objectID()).toUtf8();
}

} // namespace tembra
