#include "JournalContents.h"

#include "Foundation/Precondition.h"
#include "Model/Counterpart.h"
#include "Model/JournalQueries.h"
#include "Model/Note.h"
#include "Model/Session.h"
#include "Store/Objects/ManagedObjectContext.h"

namespace tembra {

namespace {

QByteArray key(char kind, const ManagedObject &object)
{
    return kind + QByteArray::number(object.objectID().key);
}

QByteArray encoded(const QString &text)
{
    return text.isNull() ? QByteArray("~") : QByteArray("=" + text.toUtf8().toBase64());
}

} // namespace

QByteArray keyOf(const Counterpart &teammate)
{
    return key('T', teammate);
}

QByteArray keyOf(const Session &session)
{
    return key('S', session);
}

QByteArray keyOf(const Note &note)
{
    return key('N', note);
}

QByteArray valueOf(const Counterpart &teammate)
{
    return teammateValue(teammate.name());
}

QByteArray valueOf(const Session &session)
{
    return QByteArray::number(session.personalSentiment()) + '/'
           + QByteArray::number(session.meetingSentiment());
}

QByteArray valueOf(const Note &note)
{
    return noteValue(note.contentString());
}

QByteArray noteValue(const QString &content)
{
    return encoded(content);
}

QByteArray teammateValue(const QString &name)
{
    return encoded(name);
}

JournalContents contentsOf(ManagedObjectContext &context)
{
    const auto teammates = context.fetch<Counterpart>(JournalQueries::counterparts());
    require(teammates.has_value(), "The teammates can be fetched");
    JournalContents contents;
    for (const auto &teammate : *teammates) {
        contents.insert(keyOf(*teammate), valueOf(*teammate));
        for (const auto &session : teammate->sessions()) {
            contents.insert(keyOf(*session), valueOf(*session));
            const auto notes = session->sortedNotes();
            require(notes.size() == 9, "A meeting has nine notes");
            for (const auto &note : notes)
                contents.insert(keyOf(*note), valueOf(*note));
        }
    }
    return contents;
}

} // namespace tembra
