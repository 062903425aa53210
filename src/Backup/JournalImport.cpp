#include "Backup/JournalImport.h"

#include "Foundation/Json/JsonDecoder.h"
#include "Model/Counterpart.h"
#include "Model/RecordDecoding.h"
#include "Model/RecordValues.h"
#include "Model/Tag.h"
#include "Store/Objects/ManagedObjectContext.h"

#include <algorithm>
#include <set>
#include <tuple>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

/// Reading is most of the work; the rest is the save, which cannot be cancelled.
constexpr double readingFraction = 0.95;

/// Whether a tag has a name, the name, and the emoji.
using TagKey = std::tuple<bool, QString, QString>;

void count(const SessionValues &session, BackupCounts &counts, std::set<TagKey> &tags)
{
    ++counts.sessions;
    for (const TagValues &tag : session.tags) {
        const QString name = tag.attributes.text(Tag::nameProperty);
        tags.emplace(!name.isNull(), name, tag.attributes.text(Tag::emojiProperty));
    }
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
    std::set<TagKey> tags;
    decodeJournal(decoder, [&] {
        ++counts.teammates;
        (void)CounterpartValues::decode(decoder, [&] {
            count(SessionValues::decode(decoder), counts, tags);
        });
    });
    if (decoder.hasFailed())
        return failure(decoder.error());
    counts.tags = qint64(tags.size());
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
