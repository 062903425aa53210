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
    encoder.key("emoji"_L1);
    encoder.textOrNull(emoji.value_or(QString()));
    encoder.key("name"_L1);
    encoder.textOrNull(name);
    encoder.key("objectID"_L1);
    encoder.text(objectID);
    encoder.endObject();
}

TagValues TagValues::decode(JsonDecoder &decoder)
{
    TagValues values;
    decoder.readObject([&](QByteArrayView key) {
        if (key == "emoji")
            values.emoji = decoder.readText().value_or(QString());
        else if (key == "name")
            values.name = decoder.readText().value_or(QString());
    });
    return values;
}

void NoteValues::encode(JsonEncoder &encoder) const
{
    encoder.beginObject();
    encoder.key("identifier"_L1);
    encoder.integer(identifier);
    encoder.key("contentString"_L1);
    encoder.textOrNull(contentString);
    encoder.endObject();
}

NoteValues NoteValues::decode(JsonDecoder &decoder)
{
    NoteValues values;
    decoder.readObject([&](QByteArrayView key) {
        if (key == "identifier")
            values.identifier = decoder.readInt16().value_or(0);
        else if (key == "contentString")
            values.contentString = decoder.readText().value_or(QString());
    });
    return values;
}

void SessionValues::encode(JsonEncoder &encoder) const
{
    encoder.beginObject();
    encoder.key("date"_L1);
    encoder.dateOrNull(date);
    encoder.key("flag"_L1);
    encoder.integer(flag);
    encoder.key("counterpartSentiment"_L1);
    encoder.integer(counterpartSentiment);
    encoder.key("meetingSentiment"_L1);
    encoder.integer(meetingSentiment);
    encoder.key("personalSentiment"_L1);
    encoder.integer(personalSentiment);
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
            if (!note.contentString.isNull())
                note.encode(encoder);
        }
        encoder.endArray();
    }
    encoder.endObject();
}

SessionValues SessionValues::decode(JsonDecoder &decoder)
{
    SessionValues values;
    const auto integer = [&] { return decoder.readInt16().value_or(0); };
    decoder.readObject([&](QByteArrayView key) {
        if (key == "date")
            values.date = decoder.readDate();
        else if (key == "flag")
            values.flag = integer();
        else if (key == "counterpartSentiment")
            values.counterpartSentiment = integer();
        else if (key == "meetingSentiment")
            values.meetingSentiment = integer();
        else if (key == "personalSentiment")
            values.personalSentiment = integer();
        else if (key == "objectID")
            values.objectID = decoder.readText().value_or(QString());
        else if (key == "tags")
            values.tags = decodeAll<TagValues>(decoder, tagLabel())
                              .value_or(std::vector<TagValues>());
        else if (key == "notes")
            values.notes = decodeAll<NoteValues>(decoder, noteLabel());
    });
    return values;
}

void CounterpartValues::encode(JsonEncoder &encoder,
                               const std::function<void()> &encodeSessions) const
{
    encoder.beginObject();
    encoder.key("name"_L1);
    encoder.textOrNull(name);
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
        if (key == "name")
            values.name = decoder.readText().value_or(QString());
        else if (key == "objectID")
            values.objectID = decoder.readText().value_or(QString());
        else if (key == "sessions" && !decoder.readNull())
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
