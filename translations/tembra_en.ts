<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>CounterpartRowViewModel</name>
    <message>
        <source>New teammate</source>
        <comment>Stands where the name of a teammate without a name would</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>NoteField</name>
    <message>
        <source>Action items for me</source>
        <comment>Session field title</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This is what I committed to do with/for my teammate.</source>
        <comment>Note field prompt text</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Blockers</source>
        <comment>Session field title</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This is what is getting in the way of my teammate&apos;s success.</source>
        <comment>Note field prompt text</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Feedback given</source>
        <comment>Session field title</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This is what I told my teammate to help them be successful, and where I praised them for a job well done.</source>
        <comment>Note field prompt text</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Feedback received</source>
        <comment>Session field title</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This is what my teammate told me to help me work with them better.</source>
        <comment>Note field prompt text</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Goals discussed</source>
        <comment>Session field title</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Examples: short-term, long-term, project-based, etc.</source>
        <comment>Note field prompt text</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Wins</source>
        <comment>Session field title</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Capture any successes discussed in this meeting, as these are easy to forget as time goes on.</source>
        <comment>Note field prompt text</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Professional development</source>
        <comment>Session field title</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Am I checking in regularly, at least every other month, on progress to short and long term professional goals?</source>
        <comment>Note field prompt text</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Next time off</source>
        <comment>Session field title</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>When was the last time I discussed time off with this teammate? Remember to build breaks into the work for sustainability and long-term success.</source>
        <comment>Note field prompt text</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Miscellaneous</source>
        <comment>Session field title</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>Program</name>
    <message>
        <source>Tembra has changed nothing. It closes now.</source>
        <comment>Alert when the start fails</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quit</source>
        <comment>Closes the program</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SentimentScale</name>
    <message>
        <source>None</source>
        <comment>Sentiment description: no selection</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Satisfied</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disappointed</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Excited</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Frustrated</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tired</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Proud</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Disengaged</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Confused</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Impactful</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Passionate</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Uneventful</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tense</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Frustrating</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Energizing</source>
        <comment>Sentiment description</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::AppDelegate</name>
    <message>
        <source>%1

Your changes are still in this window. Tembra tries again with every save.</source>
        <comment>What an alert about a failed save says; %1 is the reason</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Your changes could not be saved.</source>
        <comment>Alert when saving fails</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OK</source>
        <comment>Closes the alert about a failed save</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Could not save changes while quitting. Quit anyway?</source>
        <comment>Quit without saves error question message</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quitting now will lose any changes you have made since the last successful save</source>
        <comment>Quit without saves error question info</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Quit anyway</source>
        <comment>Quit anyway button title</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <comment>Cancel button title</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::Counterpart</name>
    <message>
        <source>No sessions</source>
        <comment>Summary of a teammate without meetings</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::CounterpartNameEditor</name>
    <message>
        <source>Name</source>
        <comment>Accessible name of the field for a teammate&apos;s name</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::CounterpartsPaneViewController</name>
    <message>
        <source>Do you really want to delete these teammates?</source>
        <comment>Asks before teammates are deleted</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 will be removed.</source>
        <comment>Number of teammates to be deleted</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete</source>
        <comment>Button that deletes</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <comment>Button that leaves things as they are</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The teammates could not be deleted.</source>
        <comment>Alert when a deletion fails</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OK</source>
        <comment>Button that closes an alert</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::Note</name>
    <message>
        <source>Never</source>
        <comment>Value for no previous note entry found</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Failed</source>
        <comment>Value when looking for previous note entries failed</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Last note</source>
        <comment>Label to indicate note staleness</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::NotesArrayController</name>
    <message>
        <source>%1, filled in</source>
        <comment>A note field that holds text, read aloud</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::SessionDateField</name>
    <message>
        <source>Date of the meeting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No date</source>
        <comment>A meeting without a date</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set Date</source>
        <comment>Button: gives a meeting without a date one</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::SessionDescription</name>
    <message>
        <source>No date</source>
        <comment>A meeting without a date</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Me: %1</source>
        <comment>The user&apos;s own mood</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Meeting: %1</source>
        <comment>The quality of a meeting</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Teammate: %1</source>
        <comment>The teammate&apos;s mood</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::SummaryCollectionView</name>
    <message>
        <source>Delete Meeting…</source>
        <comment>Menu of a meeting&apos;s tile</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
