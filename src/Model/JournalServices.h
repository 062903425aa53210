#pragma once

namespace tembra {

class CalendarArithmetic;
class Clock;
class DateFormatting;
class DefaultsManager;
class DerivedTexts;

/// What the records of the journal need besides their values to tell their derived texts. Handed
/// to every record when it is made; outlives all of them.
struct JournalServices
{
    const Clock &clock;
    const CalendarArithmetic &calendar;
    const DateFormatting &dates;
    const DefaultsManager &defaults;
    DerivedTexts &derivedTexts;
};

} // namespace tembra
