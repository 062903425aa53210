#include "Backup/JournalImport.h"

#include "Foundation/Json/JsonDecoder.h"
#include "Model/Counterpart.h"
#include "Model/RecordDecoding.h"
#include "Model/RecordValues.h"
#include "Store/Objects/ManagedObjectContext.h"

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// Reading is most of the work; the rest is the save, which cannot be cancelled.
constexpr double readingFraction = 0.95;

void count(const SessionValues &session, BackupCounts &counts)
{
    ++counts.sessions;
    counts.tags += qint64(session.tags.size());
    if (session.notes)
        counts.notes += std::ranges::count_if(*session.notes, [](const NoteValues &note) {
            return !note.attributes.text(Note::contentStringProperty).isNull();
        });
}

} // namespace

Result<BackupCounts> inspectJournal(QByteArrayView json)
{
    JsonDecoder decoder(json);
    BackupCounts counts;
    decodeJournal(decoder, [&] {
        ++counts.teammates;
        (void)CounterpartValues::decode(decoder,
                                        [&] { count(SessionValues::decode(decoder), counts); });
    });
    if (decoder.hasFailed())
        return failure(decoder.error());
    return counts;
}

Result<BackupCounts> importJournal(QByteArrayView json, ManagedObjectContext &context,
                                   const BackgroundTask::ProgressHandler &progressHandler)
{
    JsonDecoder decoder(json);
    setDecodingContext(decoder, context);
    BackupCounts counts;
    const auto checkCancelled = [&](double progress) {
        if (!decoder.hasFailed() && !progressHandler(progress * readingFraction))
            decoder.fail({u"The import was cancelled."_s, {}});
    };
    const auto didDecodeSession = [&] {
        ++counts.sessions;
        checkCancelled(decoder.progress());
    };
    decodeJournal(decoder, [&] {
        ++counts.teammates;
        (void)Counterpart::decode(decoder, didDecodeSession);
        checkCancelled(decoder.progress());
    });
    checkCancelled(1);
    if (decoder.hasFailed())
        return failure(decoder.error());
    if (Result<void> saved = context.save(); !saved)
        return failure(std::move(saved).error());
    return counts;
}

} // namespace tembra
