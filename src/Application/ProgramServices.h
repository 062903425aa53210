#pragma once

#include "Foundation/Time/CalendarArithmetic.h"
#include "Foundation/Time/Clock.h"
#include "Foundation/Time/DateFormatting.h"
#include "Foundation/Time/UserRegion.h"
#include "Model/CoreDataInterface.h"
#include "Model/DefaultsManager.h"
#include "Model/DerivedTexts.h"
#include "Model/JournalServices.h"
#include "Model/NotificationCenter.h"

namespace tembra {

class DataFolder;

/// Everything without a window that the program runs on, made in this order and taken down in the
/// reverse one. There is one of each, and this is who owns them.
class ProgramServices
{
public:
    explicit ProgramServices(const DataFolder &folder);
    ~ProgramServices();
    Q_DISABLE_COPY_MOVE(ProgramServices)

    UserRegion region;
    SystemClock clock;
    CalendarArithmetic calendar;
    DateFormatting dates;
    NotificationCenter notifications;
    DefaultsManager defaults;
    DerivedTexts derivedTexts;
    JournalServices journal;
    CoreDataInterface coreData;
};

} // namespace tembra
