#include "Model/JournalModel.h"

namespace tembra {

// References are checked at the end of a transaction, so that rows may be written in any order.
// The partial indexes serve the look-ups of filled notes and of old flags; everything else is found
// by way of the teammate, the date or the meeting.
QList<SchemaMigration> journalMigrations()
{
    return {
        {1,
         {
             "CREATE TABLE counterpart (id INTEGER PRIMARY KEY, name TEXT, email TEXT, lastUpdate REAL)",
             "CREATE TABLE tag (id INTEGER PRIMARY KEY, name TEXT, emoji TEXT, lastUse REAL)",
             "CREATE TABLE session (id INTEGER PRIMARY KEY, date REAL, flag INTEGER, personalSentiment INTEGER,"
             " meetingSentiment INTEGER, counterpartSentiment INTEGER,"
             " counterpart INTEGER REFERENCES counterpart(id) DEFERRABLE INITIALLY DEFERRED)",
             "CREATE TABLE note (id INTEGER PRIMARY KEY, identifier INTEGER, contentString TEXT,"
             " session INTEGER REFERENCES session(id) DEFERRABLE INITIALLY DEFERRED)",
             "CREATE TABLE session_tag ("
             " session INTEGER NOT NULL REFERENCES session(id) DEFERRABLE INITIALLY DEFERRED,"
             " tag INTEGER NOT NULL REFERENCES tag(id) DEFERRABLE INITIALLY DEFERRED,"
             " PRIMARY KEY (session, tag)) WITHOUT ROWID",
             "CREATE INDEX session_counterpart_date ON session(counterpart, date)",
             "CREATE INDEX session_date ON session(date)",
             "CREATE INDEX session_flag ON session(flag) WHERE flag > 0",
             "CREATE INDEX note_session_identifier ON note(session, identifier)",
             "CREATE INDEX note_filled ON note(identifier, session)"
             " WHERE contentString IS NOT NULL AND contentString IS NOT ''",
             "CREATE INDEX session_tag_tag ON session_tag(tag, session)",
             "CREATE INDEX tag_lastUse ON tag(lastUse)",
         }},
    };
}

} // namespace tembra
