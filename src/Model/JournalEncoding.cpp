#include "Model/JournalEncoding.h"

#include "Foundation/Json/JsonEncoder.h"
#include "Model/Counterpart.h"
#include "Model/JournalQueries.h"
#include "Model/Note.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

#include <QCoreApplication>
#include <QSet>

#include <algorithm>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr size_t sessionsPerBatch = 64;

bool noteComesBefore(const NoteValues &left, const NoteValues &right)
{
    return left.attributes.integer(Note::identifierProperty)
           < right.attributes.integer(Note::identifierProperty);
}

bool tagComesBefore(const TagValues &left, const TagValues &right)
{
    const auto text = [](const TagValues &tag, int property) {
        return tag.attributes.text(property);
    };
    return Tag::comesBefore(text(left, Tag::nameProperty), text(left, Tag::emojiProperty),
                            text(right, Tag::nameProperty), text(right, Tag::emojiProperty));
}

/// Those of @p teammates that @p order names, in its order, and then the others.
std::vector<qint64> inOrder(const std::vector<qint64> &teammates,
                            const QList<std::shared_ptr<Counterpart>> &order)
{
    QSet<qint64> left(teammates.begin(), teammates.end());
    std::vector<qint64> keys;
    keys.reserve(teammates.size());
    for (const std::shared_ptr<Counterpart> &counterpart : order) {
        if (left.remove(counterpart->objectID().key))
            keys.push_back(counterpart->objectID().key);
    }
    std::ranges::copy_if(teammates, std::back_inserter(keys),
                         [&](qint64 key) { return left.contains(key); });
    return keys;
}

/// A key without its record: in one read transaction that is damage, and no deletion.
tl::unexpected<Error> missing(const QByteArray &entityName)
{
    return failure(QCoreApplication::translate(
                       "JournalEncoding", "The journal is damaged: a part of it cannot be read.",
                       "Why a backup was not written"),
                   u"a record of %1 is not there"_s.arg(QString::fromUtf8(entityName)));
}

} // namespace

/// Some meetings, at the positions of their ascending keys.
struct JournalEncoding::Batch
{
    explicit Batch(std::span<const qint64> given) : keys(given), sessions(given.size()) {}

    SessionValues &session(qint64 key)
    {
        return sessions[size_t(std::ranges::lower_bound(keys, key) - keys.begin())];
    }

    std::span<const qint64> keys;
    std::vector<SessionValues> sessions;
};

JournalEncoding::JournalEncoding(ManagedObjectContext &context, JsonEncoder &encoder,
                                 RecordScan records)
    : m_context(&context)
    , m_encoder(&encoder)
    , m_records(std::move(records))
{
}

Result<JournalEncoding> JournalEncoding::begin(ManagedObjectContext &context, JsonEncoder &encoder)
{
    Result<RecordScan> records = RecordScan::of(context);
    if (!records)
        return failure(std::move(records).error());
    JournalEncoding encoding(context, encoder, std::move(*records));
    if (Result<void> read = encoding.readTags(); !read)
        return failure(std::move(read).error());
    return encoding;
}

QString JournalEncoding::uriOf(const QByteArray &entityName, qint64 key) const
{
    const PersistentContainer &container = m_context->container();
    return container.uriRepresentation({container.model().entityIndex(entityName), key});
}

Result<void> JournalEncoding::readTags()
{
    const Result<std::vector<qint64>> keys = m_context->fetchKeys(JournalQueries::allTags());
    if (!keys)
        return failure(keys.error());
    return m_records.records(Tag::entityName(), *keys, [this](qint64 key, std::vector<Value> row) {
        m_tags.insert(key, {.attributes = AttributeValues(Tag::attributes, std::move(row)),
                            .objectID = uriOf(Tag::entityName(), key)});
    });
}

Result<std::vector<qint64>> JournalEncoding::teammates()
{
    return m_context->fetchKeys(JournalQueries::counterparts());
}

Result<void> JournalEncoding::encodeTeammate(qint64 key)
{
    std::optional<CounterpartValues> teammate;
    const std::span keys(&key, 1);
    const auto take = [&](qint64, std::vector<Value> row) {
        teammate = {.attributes = AttributeValues(Counterpart::attributes, std::move(row)),
                    .objectID = uriOf(Counterpart::entityName(), key)};
    };
    Result<void> done = m_records.records(Counterpart::entityName(), keys, take);
    if (!done)
        return done;
    if (!teammate)
        return missing(Counterpart::entityName());
    std::vector<qint64> sessions;
    done = m_records.related(Counterpart::entityName(), Counterpart::sessionsProperty, keys,
                             [&](qint64, qint64 session) { sessions.push_back(session); });
    if (!done)
        return done;
    std::ranges::sort(sessions);
    teammate->encode(*m_encoder, [&] { done = encodeSessions(sessions); });
    return done;
}

Result<void> JournalEncoding::encodeSessions(std::span<const qint64> keys)
{
    while (!keys.empty()) {
        Batch batch(keys.first(std::min(sessionsPerBatch, keys.size())));
        if (Result<void> read = readBatch(batch); !read)
            return read;
        for (const SessionValues &session : batch.sessions)
            session.encode(*m_encoder);
        keys = keys.subspan(batch.keys.size());
    }
    return {};
}

Result<void> JournalEncoding::readBatch(Batch &batch)
{
    const auto takeSession = [&](qint64 key, std::vector<Value> row) {
        SessionValues &session = batch.session(key);
        session.attributes = AttributeValues(Session::attributes, std::move(row));
        session.objectID = uriOf(Session::entityName(), key);
    };
    const auto takeNote = [&](qint64, std::vector<Value> row) {
        SessionValues &session = batch.session(std::get<qint64>(row[Note::sessionProperty]));
        if (!session.notes)
            session.notes.emplace();
        session.notes->push_back({AttributeValues(Note::attributes, std::move(row))});
    };
    bool areTagsKnown = true;
    const auto takeTag = [&](qint64 session, qint64 tag) {
        const auto known = m_tags.constFind(tag);
        areTagsKnown = areTagsKnown && known != m_tags.cend();
        if (areTagsKnown)
            batch.session(session).tags.push_back(*known);
    };
    Result<void> done = m_records.records(Session::entityName(), batch.keys, takeSession);
    if (done)
        done = m_records.referring(Note::entityName(), Note::sessionProperty, batch.keys, takeNote);
    if (done)
        done = m_records.related(Session::entityName(), Session::tagsProperty, batch.keys, takeTag);
    if (!done)
        return done;
    if (!areTagsKnown)
        return missing(Tag::entityName());
    for (SessionValues &session : batch.sessions) {
        if (session.objectID.isNull())
            return missing(Session::entityName());
        if (session.notes)
            std::ranges::stable_sort(*session.notes, noteComesBefore);
        std::ranges::stable_sort(session.tags, tagComesBefore);
    }
    return {};
}

Result<QByteArray> encodeJournal(ManagedObjectContext &context,
                                 const QList<std::shared_ptr<Counterpart>> &order)
{
    JsonEncoder encoder;
    Result<JournalEncoding> encoding = JournalEncoding::begin(context, encoder);
    if (!encoding)
        return failure(std::move(encoding).error());
    const Result<std::vector<qint64>> teammates = encoding->teammates();
    if (!teammates)
        return failure(teammates.error());
    encoder.beginArray();
    for (const qint64 key : inOrder(*teammates, order)) {
        if (Result<void> done = encoding->encodeTeammate(key); !done)
            return failure(std::move(done).error());
    }
    encoder.endArray();
    return encoder.takeDocument();
}

} // namespace tembra
