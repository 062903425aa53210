#include "JournalState.h"

#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "Foundation/Precondition.h"
#include "Model/Counterpart.h"
#include "Model/JournalEncoding.h"
#include "Model/JournalQueries.h"
#include "Model/Note.h"
#include "Model/Session.h"
#include "Model/Tag.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "support/RecordCount.h"

#include <QFile>

#include <sqlite3.h>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QByteArray integrityOf(const QString &file)
{
    sqlite3 *database = nullptr;
    sqlite3_open_v2(QFile::encodeName(file).constData(), &database, SQLITE_OPEN_READONLY, nullptr);
    QByteArray found;
    const auto append = [](void *text, int, char **values, char **) {
        *static_cast<QByteArray *>(text) += values[0];
        return 0;
    };
    for (const char *check : {"PRAGMA integrity_check", "PRAGMA foreign_key_check"}) {
        if (sqlite3_exec(database, check, append, &found, nullptr) != SQLITE_OK)
            found += sqlite3_errmsg(database);
    }
    sqlite3_close(database);
    return found;
}

} // namespace

QByteArray backupOfManyMeetings()
{
    const QByteArray text = QByteArray("Wants to lead the next release, próximo año 🎉. ")
                                .repeated(2);
    QByteArray json = "[";
    for (int teammate = 0; teammate < teammatesInBackup; ++teammate) {
        json += teammate == 0 ? "" : ",";
        json += "{\"name\":\"Imported " + QByteArray::number(teammate) + "\",\"sessions\":[";
        for (int meeting = 0; meeting < meetingsOfEach; ++meeting) {
            json += meeting == 0 ? "" : ",";
            json += "{\"date\":" + QByteArray::number(500'000'000 + meeting * 600'000)
                    + ",\"meetingSentiment\":3,\"tags\":[{\"emoji\":\"🚀\",\"name\":\"launch\"},"
                      "{\"emoji\":null,\"name\":\"new "
                    + QByteArray::number(meeting % 7) + "\"}],\"notes\":[";
            for (int note = 0; note < 4; ++note) {
                json += note == 0 ? "" : ",";
                json += "{\"identifier\":" + QByteArray::number(note * 2) + ",\"contentString\":\""
                        + text + "\"}";
            }
            json += "]}";
        }
        json += "]}";
    }
    return json + "]";
}

void makeJournal(const QString &directory)
{
    const auto folder = DataFolder::forOptions({.dataDirectory = directory});
    ProgramServices services(*folder);
    ManagedObjectContext &context = services.coreData.viewContext();
    services.derivedTexts.follow(context);
    for (const QString &name : {u"Ana"_s, u"Ben"_s, u"Cem"_s}) {
        const auto teammate = context.insert<Counterpart>();
        teammate->setName(name);
        for (int i = 0; i < 5; ++i) {
            const auto session = context.insert<Session>();
            session->setCounterpart(teammate);
            session->sortedNotes().first()->setContentString(name + u" said something"_s);
            session->addTag(*Tag::findOrCreate(context, u"launch"_s, u"🚀"_s));
        }
    }
    require(context.save().has_value(), "The journal can be saved");
}

JournalState stateOf(const QString &directory)
{
    struct StoreIsBroken
    {
    };
    JournalState state;
    const auto folder = DataFolder::forOptions({.dataDirectory = directory});
    try {
        ProgramServices services(*folder);
        services.coreData.setStopProgram([&](const QString &reason, const PersistentContainer &) {
            state.integrity = reason.toUtf8();
            throw StoreIsBroken();
        });
        ManagedObjectContext &context = services.coreData.viewContext();
        const auto teammates = context.fetch<Counterpart>(JournalQueries::counterparts());
        require(teammates.has_value(), "The teammates can be fetched");
        state.document = encodeJournal(context, *teammates).value_or(QByteArray());
        for (const char *entity : {"Counterpart", "Session", "Note", "Tag"})
            state.counts.append(recordCount(context, {.entityName = entity}));
    } catch (const StoreIsBroken &) {
        return state;
    }
    state.integrity = integrityOf(directory + u"/Vum.sqlite"_s);
    return state;
}

} // namespace tembra
