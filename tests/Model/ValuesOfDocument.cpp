#include "ValuesOfDocument.h"

#include "Foundation/Json/JsonDecoder.h"
#include "Model/RecordValues.h"

#include <QStringList>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QString quoted(const QString &text)
{
    return text.isNull() ? u"null"_s : QString(u'"' + text + u'"');
}

void add(QStringList &parts, const QString &key, const QString &text)
{
    if (!text.isNull())
        parts.append(key + u' ' + quoted(text));
}

void add(QStringList &parts, const QString &key, qint16 number)
{
    if (number != 0)
        parts.append(key + u' ' + QString::number(number));
}

void add(QStringList &parts, const QString &key, OptionalDate date)
{
    if (date)
        parts.append(key + u' ' + QString::number(date->secondsSinceReferenceDate, 'g', 17));
}

void add(QStringList &parts, const AttributeValues &values,
         std::span<const JournalAttribute> attributes)
{
    for (const JournalAttribute &attribute : attributes) {
        const QString key = QString::fromLatin1(attribute.name);
        if (attribute.type == AttributeType::Text)
            add(parts, key, values.text(attribute.property));
        else if (attribute.type == AttributeType::Integer16)
            add(parts, key, values.integer(attribute.property));
        else
            add(parts, key, values.date(attribute.property));
    }
}

QString shown(const TagValues &tag)
{
    QStringList parts;
    // A tag of which nothing is told has the emoji of a new one.
    const QString emoji = tag.attributes.text(Tag::emojiProperty);
    if (emoji != Tag::defaultEmoji())
        parts.append(u"emoji "_s + (emoji.isNull() ? u"null"_s : quoted(emoji)));
    add(parts, u"name"_s, tag.attributes.text(Tag::nameProperty));
    add(parts, u"objectID"_s, tag.objectID);
    return u'(' + parts.join(u", "_s) + u')';
}

QString shown(const NoteValues &note)
{
    QStringList parts;
    add(parts, note.attributes, Note::attributes);
    return u'(' + parts.join(u", "_s) + u')';
}

QString shown(const SessionValues &session)
{
    QStringList parts;
    add(parts, session.attributes, Session::attributes);
    add(parts, u"objectID"_s, session.objectID);
    if (!session.tags.empty()) {
        QString tags = u"tags "_s;
        for (const TagValues &tag : session.tags)
            tags += shown(tag);
        parts.append(tags);
    }
    if (session.notes) {
        QString notes = u"notes "_s;
        for (const NoteValues &note : *session.notes)
            notes += shown(note);
        parts.append(notes);
    }
    return u'[' + parts.join(u", "_s) + u']';
}

} // namespace

QString readValues(QByteArrayView document)
{
    JsonDecoder decoder(document);
    QStringList parts;
    decodeJournal(decoder, [&] {
        QString sessions;
        const auto values = CounterpartValues::decode(decoder, [&] {
            sessions += shown(SessionValues::decode(decoder));
        });
        QStringList own;
        add(own, values.attributes, Counterpart::attributes);
        add(own, u"objectID"_s, values.objectID);
        if (!sessions.isEmpty())
            own.append(sessions);
        parts.append(own.join(u", "_s));
    });
    return decoder.hasFailed() ? u"failed: "_s + decoder.error().message : parts.join(u"; "_s);
}

QList<Key> allKeys()
{
    return {
        {teammate, "name", Kind::Text},
        {teammate, "sessions", Kind::List},
        {teammate, "objectID", Kind::Text},
        {session, "date", Kind::Date},
        {session, "flag", Kind::Integer},
        {session, "counterpartSentiment", Kind::Integer},
        {session, "meetingSentiment", Kind::Integer},
        {session, "personalSentiment", Kind::Integer},
        {session, "objectID", Kind::Text},
        {session, "tags", Kind::List},
        {session, "notes", Kind::List},
        {tag, "emoji", Kind::Text},
        {tag, "name", Kind::Text},
        {note, "identifier", Kind::Integer},
        {note, "contentString", Kind::Text},
    };
}

QByteArray documentWith(const Place &place, const QByteArray &member)
{
    return place.before + member + place.after;
}

QByteArray documentWith(const Key &key, const char *value)
{
    return documentWith(key.place, '"' + QByteArray(key.name) + "\":" + value);
}

QByteArray rowName(const Key &key, const char *value)
{
    return QByteArray(key.place.name) + ' ' + key.name + ' ' + value;
}

} // namespace tembra
