#include "Model/JournalScan.h"

#include "Model/Counterpart.h"
#include "Model/JournalQueries.h"
#include "Model/Note.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

#include <algorithm>

namespace tembra {

namespace {

constexpr size_t sessionsOfOnePiece = 64;

QString textOf(const Value &value)
{
    const auto *text = std::get_if<QString>(&value);
    return text ? *text : QString();
}

qint16 integerOf(const Value &value)
{
    const auto *number = std::get_if<qint64>(&value);
    return number ? qint16(*number) : qint16(0);
}

OptionalDate dateOf(const Value &value)
{
    const auto *seconds = std::get_if<double>(&value);
    return seconds ? OptionalDate(Date{*seconds}) : std::nullopt;
}

qint64 keyOf(const Value &value)
{
    const auto *key = std::get_if<qint64>(&value);
    return key ? *key : 0;
}

QString uriOf(const ManagedObjectContext &context, const QByteArray &entityName, qint64 key)
{
    const PersistentContainer &container = context.container();
    return container.uriRepresentation({container.model().entityIndex(entityName), key});
}

bool noteComesBefore(const NoteValues &left, const NoteValues &right)
{
    return left.identifier < right.identifier;
}

bool tagComesBefore(const TagValues &left, const TagValues &right)
{
    return Tag::comesBefore(left.name, left.emoji.value_or(QString()), right.name,
                            right.emoji.value_or(QString()));
}

} // namespace

/// Some meetings, at the places of their keys; those that are not in the store stay without values.
struct JournalScan::Piece
{
    explicit Piece(std::span<const qint64> given) : keys(given), sessions(given.size()) {}

    SessionValues *session(qint64 key)
    {
        const auto place = std::lower_bound(keys.begin(), keys.end(), key);
        const bool known = place != keys.end() && *place == key;
        return known ? &sessions[size_t(place - keys.begin())] : nullptr;
    }

    std::span<const qint64> keys;
    std::vector<SessionValues> sessions;
};

JournalScan::JournalScan(ManagedObjectContext &context, RecordScan records)
    : m_context(&context)
    , m_records(records)
{
}

Result<JournalScan> JournalScan::of(ManagedObjectContext &context)
{
    Result<RecordScan> records = RecordScan::of(context);
    if (!records)
        return failure(std::move(records).error());
    JournalScan scan(context, *records);
    if (Result<void> read = scan.readTags(); !read)
        return failure(std::move(read).error());
    return scan;
}

Result<void> JournalScan::readTags()
{
    const Result<std::vector<qint64>> keys = m_context->fetchKeys(JournalQueries::allTags());
    if (!keys)
        return failure(keys.error());
    return m_records.records(Tag::entityName(), *keys,
                             [this](qint64 key, const std::vector<Value> &row) {
                                 m_tags.insert(key, {textOf(row[Tag::emojiProperty]),
                                                     textOf(row[Tag::nameProperty]),
                                                     uriOf(*m_context, Tag::entityName(), key)});
                             });
}

Result<std::optional<JournalScan::Teammate>> JournalScan::teammate(qint64 key)
{
    std::optional<Teammate> found;
    const std::span keys(&key, 1);
    Result<void> done = m_records.records(
        Counterpart::entityName(), keys, [&](qint64, const std::vector<Value> &row) {
            found = Teammate{.values = {.name = textOf(row[Counterpart::nameProperty]),
                                        .objectID = uriOf(*m_context, Counterpart::entityName(),
                                                          key)},
                             .sessionKeys = {}};
        });
    if (!done)
        return failure(std::move(done).error());
    if (!found)
        return found;
    done = m_records.related(Counterpart::entityName(), Counterpart::sessionsProperty, keys,
                             [&](qint64, qint64 session) {
                                 found->sessionKeys.push_back(session);
                             });
    if (!done)
        return failure(std::move(done).error());
    std::sort(found->sessionKeys.begin(), found->sessionKeys.end());
    return found;
}

Result<void> JournalScan::forEachSession(std::span<const qint64> keys, const Visitor &visit)
{
    while (!keys.empty()) {
        Piece piece(keys.first(std::min(sessionsOfOnePiece, keys.size())));
        if (Result<void> read = readPiece(piece); !read)
            return read;
        for (const SessionValues &session : piece.sessions) {
            if (!session.objectID.isNull())
                visit(session);
        }
        keys = keys.subspan(piece.keys.size());
    }
    return {};
}

Result<void> JournalScan::readPiece(Piece &piece)
{
    Result<void> done = m_records.records(Session::entityName(), piece.keys,
                                          [&](qint64 key, const std::vector<Value> &row) {
                                              take(row, key, *piece.session(key));
                                          });
    if (!done)
        return done;
    const auto takeNote = [&](qint64, const std::vector<Value> &row) {
        SessionValues &session = *piece.session(keyOf(row[Note::sessionProperty]));
        if (!session.notes)
            session.notes.emplace();
        session.notes->push_back(
            {integerOf(row[Note::identifierProperty]), textOf(row[Note::contentStringProperty])});
    };
    done = m_records.referring(Note::entityName(), Note::sessionProperty, piece.keys, takeNote);
    if (!done)
        return done;
    const auto takeTag = [&](qint64 key, qint64 tag) {
        if (const auto known = m_tags.constFind(tag); known != m_tags.cend())
            piece.session(key)->tags.push_back(*known);
    };
    done = m_records.related(Session::entityName(), Session::tagsProperty, piece.keys, takeTag);
    for (SessionValues &session : piece.sessions) {
        if (session.notes)
            std::stable_sort(session.notes->begin(), session.notes->end(), noteComesBefore);
        std::stable_sort(session.tags.begin(), session.tags.end(), tagComesBefore);
    }
    return done;
}

void JournalScan::take(const std::vector<Value> &row, qint64 key, SessionValues &session) const
{
    session.date = dateOf(row[Session::dateProperty]);
    session.flag = integerOf(row[Session::flagProperty]);
    session.counterpartSentiment = integerOf(row[Session::counterpartSentimentProperty]);
    session.meetingSentiment = integerOf(row[Session::meetingSentimentProperty]);
    session.personalSentiment = integerOf(row[Session::personalSentimentProperty]);
    session.objectID = uriOf(*m_context, Session::entityName(), key);
}

} // namespace tembra
