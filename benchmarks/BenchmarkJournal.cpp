#include "BenchmarkJournal.h"

#include "Foundation/Precondition.h"
#include "JournalGenerator.h"
#include "Model/JournalModel.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Query/SearchFunction.h"

#include <QFile>

#include <sqlite3.h>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

const QString storeName = u"Vum"_s;

/// A copy of the generated store, so that measuring changes nothing for the next run.
void copyStore(int sessions, const QString &directory)
{
    const QString cached = JournalGenerator::cachedDirectory(sessions);
    JournalGenerator::make(cached, sessions);
    require(QFile::copy(BenchmarkJournal::storeFile(cached),
                        BenchmarkJournal::storeFile(directory)),
            "the generated journal can be copied");
}

} // namespace

QString BenchmarkJournal::storeFile(const QString &directory)
{
    return directory + u'/' + storeName + u".sqlite"_s;
}

void BenchmarkJournal::createEmpty(const QString &directory)
{
    const GeneratedJournalClock clock;
    const CalendarArithmetic calendar(u"UTC"_s);
    const DateFormatting dates(u"en_US"_s, u"UTC"_s, clock);
    NotificationCenter notifications;
    DefaultsManager defaults(directory + u"/settings.ini"_s, notifications);
    DerivedTexts derivedTexts(clock, calendar, notifications);
    const JournalServices services{clock, calendar, dates, defaults, derivedTexts};
    PersistentContainer container(storeName, makeJournalModel(services),
                                  {.directory = directory, .clock = &clock});
    require(container.loadPersistentStores().has_value(), "an empty journal can be made");
}

BenchmarkJournal::BenchmarkJournal(int sessions)
    : defaults(directory.filePath(u"settings.ini"_s), notifications)
    , derivedTexts(clock, calendar, notifications)
    , services{clock, calendar, dates, defaults, derivedTexts}
    , coreData(
          [this] {
              return std::make_unique<PersistentContainer>(
                  storeName, makeJournalModel(services),
                  PersistentContainer::Options{.directory = directory.path(), .clock = &clock});
          },
          defaults)
{
    copyStore(sessions, directory.path());
    defaults.registerDefaults();
    derivedTexts.follow(coreData.viewContext());
    require(sqlite3_open(QFile::encodeName(storeFile(directory.path())).constData(), &m_raw)
                == SQLITE_OK,
            "the journal opens by the raw API");
    sqlite3_exec(m_raw,
                 "PRAGMA synchronous=NORMAL; PRAGMA cache_spill=OFF; PRAGMA temp_store=MEMORY;",
                 nullptr, nullptr, nullptr);
    sqlite3_wal_autocheckpoint(m_raw, 0);
    require(registerSearchFunction(m_raw).has_value(), "the search function can be registered");
}

BenchmarkJournal::~BenchmarkJournal()
{
    sqlite3_close(m_raw);
}

ObjectID BenchmarkJournal::largestTeammate()
{
    return {context().container().model().entityIndex("Counterpart"), 1};
}

} // namespace tembra
