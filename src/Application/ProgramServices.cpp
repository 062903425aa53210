#include "Application/ProgramServices.h"

#include "Application/DataFolder.h"
#include "Model/JournalModel.h"
#include "Store/Objects/PersistentContainer.h"

namespace tembra {

ProgramServices::ProgramServices(const DataFolder &folder)
    : region(UserRegion::current())
    , calendar(region.timeZoneId)
    , dates(region.localeName, region.timeZoneId, clock)
    , defaults(folder.settingsFile(), notifications)
    , derivedTexts(clock, calendar, notifications)
    , journal{clock, calendar, dates, defaults, derivedTexts}
    , coreData(
          [this, directory = folder.journalDirectory()] {
              return std::make_unique<PersistentContainer>(
                  DataFolder::storeName(), makeJournalModel(journal),
                  PersistentContainer::Options{.directory = directory, .clock = &clock});
          },
          defaults)
{
}

ProgramServices::~ProgramServices() = default;

} // namespace tembra
