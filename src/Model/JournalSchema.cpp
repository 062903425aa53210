#include "Model/JournalModel.h"

namespace tembra {

// References are checked at the end of a transaction, so that rows may be written in any order.
// Meetings are read newest first, and indexes that run the same way spare the sort. The partial
// indexes serve the look-ups of filled notes and of old flags. A note's meeting stands before its
// text, so that reading the one does not walk past the other.
QList<SchemaMigration> journalMigrations()
{
    return {
        {1,
         {
             "CREATE TABLE counterpart (id INTEGER PRIMARY KEY, name TEXT, email TEXT, lastUpdate "
             "REAL)",
             "CREATE TABLE tag (id INTEGER PRIMARY KEY, name TEXT, emoji TEXT, lastUse REAL)",
             "CREATE TABLE session (id INTEGER PRIMARY KEY, date REAL, flag INTEGER, "
             "personalSentiment INTEGER,"
             " meetingSentiment INTEGER, counterpartSentiment INTEGER,"
             " counterpart INTEGER REFERENCES counterpart(id) DEFERRABLE INITIALLY DEFERRED)",
             "CREATE TABLE note (id INTEGER PRIMARY KEY, identifier INTEGER,"
             " session INTEGER REFERENCES session(id) DEFERRABLE INITIALLY DEFERRED,"
             " contentString TEXT)",
             "CREATE TABLE session_tag ("
             " session INTEGER NOT NULL REFERENCES session(id) DEFERRABLE INITIALLY DEFERRED,"
             " tag INTEGER NOT NULL REFERENCES tag(id) DEFERRABLE INITIALLY DEFERRED,"
             " PRIMARY KEY (session, tag)) WITHOUT ROWID",
             "CREATE INDEX session_counterpart_date ON session(counterpart, date DESC)",
             "CREATE INDEX session_date ON session(date DESC)",
             "CREATE INDEX session_flag ON session(flag) WHERE flag > 0",
             "CREATE INDEX note_session_identifier ON note(session, identifier)",
             "CREATE INDEX note_filled ON note(session, identifier)"
             " WHERE contentString IS NOT NULL AND contentString IS NOT ''",
             "CREATE INDEX session_tag_tag ON session_tag(tag, session)",
             "CREATE INDEX tag_lastUse ON tag(lastUse)",
         }},
    };
}

} // namespace tembra
