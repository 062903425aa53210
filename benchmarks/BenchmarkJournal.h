#pragma once

#include "Foundation/Time/CalendarArithmetic.h"
#include "Foundation/Time/Clock.h"
#include "Foundation/Time/DateFormatting.h"
#include "Model/CoreDataInterface.h"
#include "Model/DefaultsManager.h"
#include "Model/DerivedTexts.h"
#include "Model/JournalServices.h"
#include "Model/NotificationCenter.h"
#include "Store/Schema/ObjectID.h"

#include <QTemporaryDir>

struct sqlite3;

namespace tembra {

/// A clock that stands at the end of the generated journals.
class GeneratedJournalClock final : public Clock
{
public:
    Date now() const override { return {815'100'000}; }
};

/// A generated journal of some size, on a copy of its own, open as the program opens it; and the
/// same file open by the raw C API, for floors.
class BenchmarkJournal
{
public:
    explicit BenchmarkJournal(int sessions);
    ~BenchmarkJournal();
    Q_DISABLE_COPY_MOVE(BenchmarkJournal)

    static QString storeFile(const QString &directory);
    static void createEmpty(const QString &directory);

    ManagedObjectContext &context() { return coreData.viewContext(); }
    sqlite3 *raw() const { return m_raw; }
    /// The teammate who holds a tenth of all meetings.
    ObjectID largestTeammate();

    QTemporaryDir directory;
    GeneratedJournalClock clock;
    CalendarArithmetic calendar{QStringLiteral("UTC")};
    DateFormatting dates{QStringLiteral("en_US"), QStringLiteral("UTC"), clock};
    NotificationCenter notifications;
    DefaultsManager defaults;
    DerivedTexts derivedTexts;
    JournalServices services;
    CoreDataInterface coreData;

private:
    sqlite3 *m_raw = nullptr;
};

} // namespace tembra
