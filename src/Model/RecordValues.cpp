#include "Model/RecordValues.h"

#include "Foundation/Json/JsonDecoder.h"
#include "Foundation/Json/JsonEncoder.h"

#include <QCoreApplication>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QString teammateLabel()
{
    return QCoreApplication::translate("RecordValues", "teammate",
                                       "Names a place in a backup: \"teammate 3, session 12\"");
}

QString sessionLabel()
{
    return QCoreApplication::translate("RecordValues", "session",
                                       "Names a place in a backup: \"teammate 3, session 12\"");
}

QString tagLabel()
{
    return QCoreApplication::translate("RecordValues", "tag",
                                       "Names a place in a backup: \"session 12, tag 3\"");
}

QString noteLabel()
{
    return QCoreApplication::translate("RecordValues", "note",
                                       "Names a place in a backup: \"session 12, note 3\"");
}

/// The elements of an array; nothing in place of one that is missing.
template<typename Values>
std::optional<std::vector<Values>> decodeAll(JsonDecoder &decoder, const QString &label)
{
    if (decoder.readNull())
        return {};
    std::vector<Values> all;
    decoder.readArray(label, [&] { all.push_back(Values::decode(decoder)); });
    return all;
}

} // namespace

void TagValues::encode(JsonEncoder &encoder) const
{
    encoder.beginObject();
    attributes.encode(encoder);
    encoder.key("objectID"_L1);
    encoder.text(objectID);
    encoder.endObject();
}

TagValues TagValues::decode(JsonDecoder &decoder)
{
    TagValues values;
    values.attributes.set(Tag::emojiProperty, Tag::defaultEmoji());
    decoder.readObject([&](QByteArrayView key) { values.attributes.decode(key, decoder); });
    return values;
}

void NoteValues::encode(JsonEncoder &encoder) const
{
    encoder.beginObject();
    attributes.encode(encoder);
    encoder.endObject();
}

NoteValues NoteValues::decode(JsonDecoder &decoder)
{
    NoteValues values;
    decoder.readObject([&](QByteArrayView key) { values.attributes.decode(key, decoder); });
    return values;
}

void SessionValues::encode(JsonEncoder &encoder) const
{
    encoder.beginObject();
    attributes.encode(encoder);
    encoder.key("objectID"_L1);
    encoder.text(objectID);
    encoder.key("tags"_L1);
    encoder.beginArray();
    for (const TagValues &tag : tags)
        tag.encode(encoder);
    encoder.endArray();
    if (notes) {
        encoder.key("notes"_L1);
        encoder.beginArray();
        for (const NoteValues &note : *notes) {
            if (!note.attributes.text(Note::contentStringProperty).isNull())
                note.encode(encoder);
        }
        encoder.endArray();
    }
    encoder.endObject();
}

SessionValues SessionValues::decode(JsonDecoder &decoder)
{
    SessionValues values;
    decoder.readObject([&](QByteArrayView key) {
        if (key == "objectID")
            values.objectID = decoder.readText().value_or(QString());
        else if (key == "tags")
            values.tags = decodeAll<TagValues>(decoder, tagLabel())
                              .value_or(std::vector<TagValues>());
        else if (key == "notes")
            values.notes = decodeAll<NoteValues>(decoder, noteLabel());
        else
            values.attributes.decode(key, decoder);
    });
    return values;
}

void CounterpartValues::encode(JsonEncoder &encoder,
                               const std::function<void()> &encodeSessions) const
{
    encoder.beginObject();
    attributes.encode(encoder);
    encoder.key("objectID"_L1);
    encoder.text(objectID);
    encoder.key("sessions"_L1);
    encoder.beginArray();
    encodeSessions();
    encoder.endArray();
    encoder.endObject();
}

CounterpartValues CounterpartValues::decode(JsonDecoder &decoder,
                                            const std::function<void()> &decodeSession)
{
    CounterpartValues values;
    decoder.readObject([&](QByteArrayView key) {
        if (key == "objectID")
            values.objectID = decoder.readText().value_or(QString());
        else if (key != "sessions")
            values.attributes.decode(key, decoder);
        else if (!decoder.readNull())
            decoder.readArray(sessionLabel(), decodeSession);
    });
    return values;
}

void decodeJournal(JsonDecoder &decoder, const std::function<void()> &decodeCounterpart)
{
    decoder.readArray(teammateLabel(), decodeCounterpart);
    decoder.finish();
}

} // namespace tembra
