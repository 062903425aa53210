#pragma once

namespace tembra {

class JournalFixture;

/// Fills an empty journal with a few teammates, meetings, notes and tags, as the program can make
/// them: always the same for a seed. Seed by seed another attribute is mostly missing or odd.
///
/// No two tags are equal, and every meeting has its nine notes.
void writeRandomJournal(const JournalFixture &journal, unsigned seed);

} // namespace tembra
