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

/// Asking after each meeting would take longer than reading it.
constexpr qint64 sessionsBetweenQuestions = 64;
/// Reading is most of the work; the rest is the save, which cannot be cancelled.
constexpr double partOfReading = 0.95;

void count(const SessionValues &session, BackupCounts &counts)
{
    ++counts.sessions;
    counts.tags += qint64(session.tags.size());
    if (session.notes)
        counts.notes += std::ranges::count_if(*session.notes, [](const NoteValues &note) {
            return !note.contentString.isNull();
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
                                   const JournalWork::MayGoOn &mayGoOn)
{
    JsonDecoder decoder(json);
    setDecodingContext(decoder, context);
    BackupCounts counts;
    const auto didDecodeSession = [&] {
        ++counts.sessions;
        if (counts.sessions % sessionsBetweenQuestions == 0
            && !mayGoOn(decoder.progress() * partOfReading))
            decoder.fail({u"The import was cancelled."_s, {}});
    };
    decodeJournal(decoder, [&] {
        ++counts.teammates;
        (void)Counterpart::decode(decoder, didDecodeSession);
    });
    if (!decoder.hasFailed() && !mayGoOn(partOfReading))
        decoder.fail({u"The import was cancelled."_s, {}});
    if (decoder.hasFailed())
        return failure(decoder.error());
    if (Result<void> saved = context.save(); !saved)
        return failure(std::move(saved).error());
    return counts;
}

} // namespace tembra
