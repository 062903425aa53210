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

QString shown(const TagValues &tag)
{
    QStringList parts;
    if (tag.emoji)
        parts.append(u"emoji "_s + quoted(*tag.emoji));
    add(parts, u"name"_s, tag.name);
    add(parts, u"objectID"_s, tag.objectID);
    return u'(' + parts.join(u", "_s) + u')';
}

QString shown(const NoteValues &note)
{
    QStringList parts;
    add(parts, u"identifier"_s, note.identifier);
    add(parts, u"contentString"_s, note.contentString);
    return u'(' + parts.join(u", "_s) + u')';
}

QString shown(const SessionValues &session)
{
    QStringList parts;
    if (session.date)
        parts.append(u"date "_s
                     + QString::number(session.date->secondsSinceReferenceDate, 'g', 17));
    add(parts, u"flag"_s, session.flag);
    add(parts, u"counterpartSentiment"_s, session.counterpartSentiment);
    add(parts, u"meetingSentiment"_s, session.meetingSentiment);
    add(parts, u"personalSentiment"_s, session.personalSentiment);
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
        add(own, u"name"_s, values.name);
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
