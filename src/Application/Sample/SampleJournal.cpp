#include "Application/Sample/SampleJournal.h"

#include "Application/Sample/SampleDay.h"
#include "Backup/BackupDocument.h"
#include "Backup/JournalImport.h"
#include "Foundation/Precondition.h"
#include "Foundation/Time/Clock.h"
#include "Model/CoreDataInterface.h"
#include "Model/Session.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"
#include "Store/Undo/UndoManager.h"

#include <QDateTime>
#include <QFile>

#include <algorithm>

static void initializeSampleResource()
{
    // A static library's resources are linked in only where something asks for them.
    Q_INIT_RESOURCE(sample);
}

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

QDateTime inZone(Date date, const QTimeZone &timeZone)
{
    return QDateTime::fromMSecsSinceEpoch(qint64(date.toUnixMilliseconds()), timeZone);
}

Result<QString> copyPackage(const QString &directory)
{
    const QString package = directory + u"/Sample."_s + BackupDocument::tembrabackup;
    return BackupDocument{SampleJournal::document()}.write(package).map([&] { return package; });
}

Result<void> importPackage(const QString &package, PersistentContainer &container)
{
    const auto document = BackupDocument::read(package);
    if (!document)
        return failure(document.error());
    const auto context = container.newBackgroundContext();
    if (!context)
        return failure(context.error());
    const auto counts = importJournal(document->teammatesJsonData.value_or(QByteArray()), **context,
                                      [](double) { return true; });
    return counts ? Result<void>() : failure(counts.error());
}

/// From the sample's day, and the hours of UTC, to today and the hours here.
Date moved(Date date, const QDate &today, const QTimeZone &timeZone)
{
    const QDateTime sample = inZone(date, QTimeZone::utc());
    const QDate day = today.addDays(sampleDay().daysTo(sample.date()));
    const int pastFriday = std::max(0, day.dayOfWeek() - int(Qt::Friday));
    const QDateTime here(day.addDays(-pastFriday), sample.time(), timeZone);
    return Date::fromUnixMilliseconds(double(here.toMSecsSinceEpoch()));
}

Result<void> moveToToday(ManagedObjectContext &context, const QDate &today,
                         const QTimeZone &timeZone)
{
    const UndoManager::Suspension notUndoable(*context.undoManager());
    const auto sessions = context.fetch<Session>({.entityName = Session::entityName()});
    if (!sessions)
        return failure(sessions.error());
    for (const std::shared_ptr<Session> &session : *sessions) {
        if (const OptionalDate date = session->date())
            session->setDate(moved(*date, today, timeZone));
    }
    context.processPendingChanges();
    return context.save();
}

} // namespace

QByteArray SampleJournal::document()
{
    initializeSampleResource();
    QFile file(u":/sample/teammates.json"_s);
    require(file.open(QIODevice::ReadOnly), "the sample is part of the program");
    return file.readAll();
}

Result<void> SampleJournal::importInto(CoreDataInterface &coreData, const QString &directory,
                                       const Clock &clock, const QTimeZone &timeZone)
{
    const Result<QString> package = copyPackage(directory);
    if (!package)
        return failure(package.error());
    if (Result<void> imported = importPackage(*package, coreData.persistentContainer()); !imported)
        return imported;
    return moveToToday(coreData.viewContext(), inZone(clock.now(), timeZone).date(), timeZone);
}

} // namespace tembra
