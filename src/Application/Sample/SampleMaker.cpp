// Makes the package of the sample journal. Runs while the program is built.

#include "Application/Sample/SampleDay.h"
#include "Application/Sample/SampleWriter.h"
#include "Backup/BackupDocument.h"
#include "Foundation/Time/CalendarArithmetic.h"
#include "Foundation/Time/Clock.h"
#include "Foundation/Time/DateFormatting.h"
#include "Model/Counterpart.h"
#include "Model/DefaultsManager.h"
#include "Model/DerivedTexts.h"
#include "Model/JournalEncoding.h"
#include "Model/JournalModel.h"
#include "Model/JournalServices.h"
#include "Model/NotificationCenter.h"
#include "Store/Objects/PersistentContainer.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTimeZone>
#include <QUuid>

#include <cstdio>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

/// Noon of the sample's own day, whenever the program is built.
class SampleClock final : public Clock
{
public:
    Date now() const override
    {
        const QDateTime noon(sampleDay(), QTime(12, 0), QTimeZone::utc());
        return Date::fromUnixMilliseconds(double(noon.toMSecsSinceEpoch()));
    }
};

/// What records need around them, the same everywhere.
struct SampleServices
{
    explicit SampleServices(const QString &directory)
        : defaults(directory + u"/settings.ini"_s, notifications)
    {
    }

    SampleClock clock;
    NotificationCenter notifications;
    DefaultsManager defaults;
    CalendarArithmetic calendar{u"UTC"_s};
    DateFormatting dates{u"en_US"_s, u"UTC"_s, clock};
    DerivedTexts derivedTexts{clock, calendar, notifications};
    JournalServices journal{clock, calendar, dates, defaults, derivedTexts};
};

/// Each store has a name that nobody ever gave before; without it the package is always the same.
QByteArray withoutStoreName(QByteArray json, const PersistentContainer &container,
                            const Counterpart &teammate)
{
    const QString uri = container.uriRepresentation(teammate.objectID());
    const QByteArray name = uri.section(u'/', 2, 2).toUtf8();
    return json.replace(name, QUuid().toByteArray(QUuid::WithoutBraces));
}

Result<QByteArray> encodedSample(const QString &directory)
{
    SampleServices services(directory);
    PersistentContainer container(u"Sample"_s, makeJournalModel(services.journal),
                                  {.directory = directory, .clock = &services.clock});
    if (const Result<void> loaded = container.loadPersistentStores(); !loaded)
        return failure(loaded.error());
    const auto teammates = SampleWriter::write(container.viewContext());
    return encodeJournal(container.viewContext(), teammates).map([&](const QByteArray &json) {
        return withoutStoreName(json, container, *teammates.first());
    });
}

Result<void> makeSample(const QString &package)
{
    const QString place = QFileInfo(package).absolutePath();
    const QTemporaryDir throwAway(place + u"/sample-XXXXXX"_s);
    if (!throwAway.isValid())
        return failure(u"No folder could be made in %1."_s.arg(place), throwAway.errorString());
    Result<QByteArray> json = encodedSample(throwAway.path());
    if (!json)
        return failure(json.error());
    return BackupDocument{std::move(*json)}.write(package);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fputs("Usage: SampleMaker PACKAGE\n", stderr);
        return 2;
    }
    const Result<void> made = makeSample(QFile::decodeName(argv[1]));
    if (made)
        return 0;
    std::fprintf(stderr, "SampleMaker: %s\n", qPrintable(made.error().description()));
    return 1;
}
