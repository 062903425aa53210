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
    <name>FileFault</name>
    <message>
        <source>You may not read “%1”. Give yourself the permission to and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The disk failed while “%1” was being read. Check the disk and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no “%1”. Choose another file, or connect the disk it lies on, and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” is not a folder. Choose another one.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” is not a file. Choose another one.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” is a link to another place. Choose what it leads to.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” could not be read. Check the disk and the permissions of its folder.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The disk is full, so “%1” cannot be written. Free some space on the disk and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Your share of the disk is used up, so “%1” cannot be written. Delete files there that you no longer need and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” is too large for its disk. Choose a folder on another disk and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>You may not read or change “%1”. Give yourself the permission to and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The disk with “%1” can be read but not written. Choose a folder on another disk and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The disk failed while “%1” was being read or written. Check the disk and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The disk gave back something else than what was written to “%1”. Check the disk, or choose a folder on another one.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no “%1”. Choose another place, or connect the disk it lies on, and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” is not a folder. Move it somewhere else, or choose another place.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” is not a file. Move it somewhere else.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” is a link to another place. Remove the link, or choose another place.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Writing “%1” was cancelled; nothing was changed.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The disk or network folder with “%1” is not connected. Connect it and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” is in use by another program. Close that program and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The name “%1” is too long. Choose a shorter one.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” was changed while it was being read. Try again when nothing writes to it.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is not enough memory for “%1”. Close other programs and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Too many files are open to use “%1”. Close other programs and try again.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” could not be read or changed. Check the disk and the permissions of its folder.</source>
        <comment>%1 is the path of a file or folder</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>ImportTexts</name>
    <message>
        <source>Tembra backup</source>
        <comment>What a backup package is called</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 teammate</source>
        <comment>How much a backup holds</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 teammates</source>
        <comment>How much a backup holds</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1 meeting</source>
        <comment>How much a backup holds</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 meetings</source>
        <comment>How much a backup holds</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 and %2</source>
        <comment>%1 is a number of teammates, %2 one of meetings</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>JournalEncoding</name>
    <message>
        <source>The journal is damaged: a part of it cannot be read.</source>
        <comment>Why a backup was not written</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>JournalMenus</name>
    <message>
        <source>&amp;Close Window</source>
        <comment>File menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <comment>File menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <comment>File menu</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>JsonDecoder</name>
    <message>
        <source>expected a list</source>
        <comment>Why a file cannot be read</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>expected a record</source>
        <comment>Why a file cannot be read</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>expected a text</source>
        <comment>Why a file cannot be read</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>expected a number</source>
        <comment>Why a file cannot be read</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>expected a whole number between -32768 and 32767</source>
        <comment>Why a file cannot be read</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a number is too large</source>
        <comment>Why a file cannot be read</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>lists and records are nested too deeply</source>
        <comment>Why a file cannot be read</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the file is empty</source>
        <comment>Why a file cannot be read</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>it ends too early</source>
        <comment>What is wrong with a JSON file</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the file is too large</source>
        <comment>Why a file cannot be read</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>something follows after its end</source>
        <comment>What is wrong with a JSON file</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the name of a value is missing</source>
        <comment>What is wrong with a JSON file</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a colon is missing</source>
        <comment>What is wrong with a JSON file</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a comma or closing bracket is missing</source>
        <comment>What is wrong with a JSON file</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a text holds a control character, or a backslash that means nothing</source>
        <comment>What is wrong with a JSON file</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a text is not encoded in UTF-8</source>
        <comment>What is wrong with a JSON file</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a number lacks digits</source>
        <comment>What is wrong with a JSON file</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a value is missing or makes no sense</source>
        <comment>What is wrong with a JSON file</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1: %2</source>
        <comment>Place in a file (&quot;session 12, date&quot;), then what is wrong there</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>the file is not valid JSON: %1</source>
        <comment>Why a file cannot be read, with the details</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 %2</source>
        <comment>Place in a file: a word (&quot;session&quot;) and its number</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>a text holds half of a surrogate pair</source>
        <comment>What is wrong with a JSON file</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>JsonEncoder</name>
    <message>
        <source>A number is infinite or undefined, so it cannot be written.</source>
        <comment>Why a backup cannot be made</comment>
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
    <name>PackageFile</name>
    <message>
        <source>“%1” is too large to be read. Choose another file.</source>
        <comment>%1 is the path of a file</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>PackagePath</name>
    <message>
        <source>“%1” is not a name for a file. Choose another name.</source>
        <comment>%1 is a path that was typed</comment>
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
    <message>
        <source>Tembra has changed nothing. Before you put a copy of your journal in its place, set these files aside together: they are renamed, and nothing is deleted.</source>
        <comment>Alert when the journal cannot be used</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Set Files Aside and Quit</source>
        <comment>Renames a journal that cannot be used</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The journal&apos;s files were set aside as “%1”. Put a copy in their place and start Tembra again, or start it with a new journal.</source>
        <comment>Says where the files of a journal lie now</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>RecordDeletion</name>
    <message>
        <source>OK</source>
        <comment>Button that closes an alert</comment>
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
</context>
<context>
    <name>RecordValues</name>
    <message>
        <source>teammate</source>
        <comment>Names a place in a backup: &quot;teammate 3, session 12&quot;</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>session</source>
        <comment>Names a place in a backup: &quot;teammate 3, session 12&quot;</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>tag</source>
        <comment>Names a place in a backup: &quot;session 12, tag 3&quot;</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>note</source>
        <comment>Names a place in a backup: &quot;session 12, note 3&quot;</comment>
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
    <message>
        <source>Your specified backup location is not available. Update your preferences to continue making backups.</source>
        <comment>Alert when backup directory unavailable.</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Continue</source>
        <comment>Ignore warning for missing backup directory</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Writing the backup before quitting …</source>
        <comment>Says what is going on</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Finishing the backup before quitting …</source>
        <comment>Says what is going on</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Turning the flags of your meetings into tags …</source>
        <comment>Says what is going on</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The flags of your meetings are tags now, but this could not be saved.</source>
        <comment>Alert when saving the tags that flags became fails</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1

Tembra tries again with every save. If none succeeds before you quit, the flags become tags again at the next start.</source>
        <comment>What an alert about tags that could not be saved says; %1 is the reason</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No journal was found in “%1”, so a new one was begun. If you have a backup, import it.</source>
        <comment>Says that the journal is empty because its file was missing</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Import …</source>
        <comment>Button that asks which backup to import</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The log of another file lay beside the journal. It was not used, and is now “%1”.</source>
        <comment>Says that a file beside the journal was renamed</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::BackupCommands</name>
    <message>
        <source>Cancelled; nothing was changed.</source>
        <comment>After an import</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The import of “%1” was undone.</source>
        <comment>%1 is a backup&apos;s name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Create &amp;Backup…</source>
        <comment>File menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Import Backup…</source>
        <comment>File menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” holds no teammates.</source>
        <comment>After an import; %1 is a backup&apos;s name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1” is imported: %2.</source>
        <comment>%1 is a backup&apos;s name, %2 how many teammates and meetings</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Undo Import…</source>
        <comment>Button: asks, then undoes an import</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The backup “%1” is complete: read back and found whole at %2, %3.</source>
        <comment>%1 is a backup&apos;s name, %2 the time of day, %3 its size</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The one before held more and is kept as “%1”.</source>
        <comment>%1 is a backup&apos;s name</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::BackupPanel</name>
    <message>
        <source>Create Backup</source>
        <comment>Title of the panel that asks where to put a backup</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Writing the backup “%1” …</source>
        <comment>Says what is going on</comment>
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
    <name>tembra::CounterpartRowDelegate</name>
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
        <source>The teammates could not be deleted.</source>
        <comment>Alert when a deletion fails</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Teammates</source>
        <comment>Title of the list of teammates</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add a teammate</source>
        <comment>Tooltip and accessible name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete the selected teammates</source>
        <comment>Tooltip and accessible name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No teammates yet</source>
        <comment>Stands in the empty list of teammates</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add the people you meet one-on-one.</source>
        <comment>Stands in the empty list of teammates</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add Teammate</source>
        <comment>Button in the empty list of teammates</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Rename…</source>
        <comment>Context menu of a teammate</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Delete…</source>
        <comment>Context menu of a teammate</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tags</source>
        <comment>Button: opens the window of all tags</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Show all tags and the meetings that carry them</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The teammates could not be read</source>
        <comment>Stands in the list of teammates after a failure</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Try Again</source>
        <comment>Button: reads the teammates once more</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::DetailPaneViewController</name>
    <message>
        <source>No teammate selected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose a teammate in the list, or add one, to see your meetings.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No meeting selected</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Choose a meeting above to read it and to write.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search notes</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add Meeting</source>
        <comment>Button: adds a meeting with the teammate</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete…</source>
        <comment>Button: asks, then deletes the selected meeting</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete the selected meeting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Meetings</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Unnamed teammate</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search notes for</source>
        <comment>Followed by a teammate&apos;s name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Days since last meeting with</source>
        <comment>Followed by a teammate&apos;s name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No meetings match “%1”</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No note of a meeting with this teammate holds this text.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clear Search</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No meetings yet</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add one to rate it and to take notes.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add Meeting</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Do you really want to delete this session?</source>
        <comment>Asks before a meeting is deleted</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> will be removed.</source>
        <comment>Follows directly upon the date of the meeting to be deleted</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The meeting could not be deleted.</source>
        <comment>Alert when a deletion fails</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Filter by tags</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No note of a meeting with this teammate and these tags holds this text.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No meetings with these tags</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No meeting with this teammate carries all the tags that you filter by.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clear Filter</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::EditCommands</name>
    <message>
        <source>&amp;Undo</source>
        <comment>Edit menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <comment>Edit menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cu&amp;t</source>
        <comment>Edit menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <comment>Edit menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Paste</source>
        <comment>Edit menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <comment>Edit menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This could not be undone.</source>
        <comment>Alert after Undo</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This could not be redone.</source>
        <comment>Alert after Redo</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OK</source>
        <comment>Button that closes an alert</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::EmojiPalette</name>
    <message>
        <source>Recently used</source>
        <comment>Heading of emoji</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No name or keyword has “%1” in it.</source>
        <comment>%1 is what was searched for</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Smileys &amp; Emotion</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>People &amp; Body</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Animals &amp; Nature</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Food &amp; Drink</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Travel &amp; Places</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Activities</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Objects</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Symbols</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Flags</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search emoji</source>
        <comment>Placeholder of a search field</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Emoji</source>
        <comment>Name of the grid to choose an emoji from</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No emoji found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Clear Search</source>
        <comment>Button: shows all emoji again</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::EmojiTextField</name>
    <message>
        <source>This one counts as a letter or a number.</source>
        <comment>Why a character was not taken into a field for emoji</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::Import</name>
    <message>
        <source>No teammate data found.</source>
        <comment>Additional info for import error.</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Import Backup</source>
        <comment>Title of the panel that asks for a backup</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Importing “%1” …</source>
        <comment>Says what is going on</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Do you want to undo this import?</source>
        <comment>Asks before an import is undone</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 that came with “%2” are removed, with everything you have changed in them since. A teammate to whom you have added meetings stays, with those.</source>
        <comment>%1 is like &quot;8 teammates and 412 meetings&quot;, %2 the name of a backup</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Undo Import</source>
        <comment>Button that undoes an import</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <comment>Button that leaves things as they are</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Undoing the import …</source>
        <comment>Says what is going on</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Could not load backup file</source>
        <comment>Alert when import fails</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Okay</source>
        <comment>Closes the alert about a failed import</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The import could not be undone.</source>
        <comment>Alert when undoing an import fails</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Okay</source>
        <comment>Closes the alert about an import that stays</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::ImportQueue</name>
    <message>
        <source>Looking at “%1” …</source>
        <comment>Says what is going on</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Do you want to import this backup file?</source>
        <comment>Prompt for import dialog</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Import</source>
        <comment>Import button</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <comment>Cancel button</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Last modified</source>
        <comment>Label for informative text on import</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::MainWindow</name>
    <message>
        <source>&amp;File</source>
        <comment>Menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>New &amp;Teammate</source>
        <comment>File menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;New Meeting</source>
        <comment>File menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Rename Teammate…</source>
        <comment>File menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <comment>Menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete &amp;Meeting…</source>
        <comment>Edit menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Delete Teammates…</source>
        <comment>Edit menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Find in Notes</source>
        <comment>Edit menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Go</source>
        <comment>Menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Next Note Field</source>
        <comment>Go menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Previous Note Field</source>
        <comment>Go menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>To the &amp;Teammates</source>
        <comment>Go menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>To the &amp;Meetings</source>
        <comment>Go menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>To the N&amp;otes</source>
        <comment>Go menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Debug</source>
        <comment>Menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Stuff Sessions</source>
        <comment>Debug menu</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ta&amp;gs</source>
        <comment>Go menu: shows the window of all tags</comment>
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
    <message>
        <source>No date</source>
        <comment>Value for a previous note entry of a meeting without a date</comment>
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
    <name>tembra::PackageDialog</name>
    <message>
        <source>&amp;Open</source>
        <comment>Button of the open panel</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <comment>Button of the save panel</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 already exists. Do you want to replace it?</source>
        <comment>%1 is the quoted name of a package</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>What it holds will be overwritten.</source>
        <comment>Said of a package that is to be replaced</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Replace</source>
        <comment>Button that overwrites a package</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <comment>Button that leaves things as they are</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::ProgressSheet</name>
    <message>
        <source>Cancel</source>
        <comment>Button that ends the task in progress</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancelling…</source>
        <comment>Said of the task in progress once it is to end early</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::RecentTagsArrayController</name>
    <message>
        <source>Alt+Ctrl+%1</source>
        <comment>Shortcut of a recent tag, as it is read aloud</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, already on this meeting</source>
        <comment>Of a recent tag; follows its shortcut</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::RecentTagsViewController</name>
    <message>
        <source>Recent tags</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>⌥⌘ is Alt+Ctrl here</source>
        <comment>Says which keys a shortcut stands for</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::ResolvedPackagePath</name>
    <message>
        <source>%1 counts as one file. Nothing inside of it can be chosen.</source>
        <comment>%1 is the quoted name of a package</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>“%1”</source>
        <comment>A name in quotation marks</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is named like the kind “%2”, but is a plain file and cannot be opened.</source>
        <comment>%1 is the quoted name of a file, %2 the name of a kind of file</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is not of the kind “%2” and cannot be opened here.</source>
        <comment>%1 is the quoted name of a file, %2 the name of a kind of file</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 was not found. Check the name and the folder.</source>
        <comment>%1 is the quoted name of a file</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>There is no folder %1. Choose another one.</source>
        <comment>%1 is the quoted name of a folder</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This name is too long. Choose a shorter one.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 is a plain file that would be in the way. Choose another name.</source>
        <comment>%1 is the quoted name of a file</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::SaveFailureBanner</name>
    <message>
        <source>Changes could not be saved</source>
        <comment>Shown as long as saving fails</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Save again</source>
        <comment>Button beside &quot;Changes could not be saved&quot;</comment>
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
    <message>
        <source>Show Calendar</source>
        <comment>Button in the field for a date</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>This is no date. Dates are written as in %1.</source>
        <comment>Shown when a typed date is refused; %1 is a date</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Calendar</source>
        <comment>Accessible name of the calendar of a date field</comment>
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
    <name>tembra::SessionDetailViewController</name>
    <message>
        <source>&amp;Me</source>
        <comment>Label of the user&apos;s own mood</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Meet&amp;ing</source>
        <comment>Label of the quality of a meeting</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Teammate</source>
        <comment>Label of the teammate&apos;s mood</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>D&amp;ate</source>
        <comment>Label of a meeting&apos;s date</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Note fields</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>What belongs into this field?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Explain this field</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Previous</source>
        <comment>Button: shows the previous note field</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Previous note field</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Next</source>
        <comment>Button: shows the next note field</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Next note field</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Ta&amp;gs</source>
        <comment>Label of a meeting&apos;s tags</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tags</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Add tags</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::SessionWindowController</name>
    <message>
        <source>Meeting</source>
        <comment>Title of a window that shows a meeting</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::SkinTonePicker</name>
    <message>
        <source>Skin tones</source>
        <comment>Name of a row of variants of an emoji</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::StatusLine</name>
    <message>
        <source>Dismiss message</source>
        <comment>Button with an icon that takes the message in the status line away</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancel</source>
        <comment>Button that ends the task in progress</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Cancelling…</source>
        <comment>Said of the task in progress once it is to end early</comment>
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
<context>
    <name>tembra::TagField</name>
    <message>
        <source>Edit Tag</source>
        <comment>Menu of a tag: shows it among all</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source> (Create New Tag)</source>
        <comment>Follows what was typed, in the line that makes a new tag of it</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::TagRowDelegate</name>
    <message>
        <source>Change Emoji</source>
        <comment>Tooltip of a tag&apos;s emoji</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name</source>
        <comment>Accessible name of the field for a tag&apos;s name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Emoji</source>
        <comment>Accessible name of the field for a tag&apos;s emoji</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::TagWindowController</name>
    <message>
        <source>&amp;Tag</source>
        <comment>Menu of the tag window</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Rename…</source>
        <comment>Menu of a tag</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Change &amp;Emoji…</source>
        <comment>Menu of a tag</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>&amp;Delete…</source>
        <comment>Menu of a tag</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Do you really want to delete these tags?</source>
        <comment>Asks before tags are deleted</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1 will be removed.</source>
        <comment>Titles of the tags to be deleted</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The tags could not be deleted.</source>
        <comment>Alert when a deletion fails</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Where helpful, use tags to organize your meetings. You can assign tags to discover themes across teammates, to track the topics and projects that define your everyday work, to flag things for followup—or anything else that helps you make sense of your data. You&apos;ll always be able to see all meetings with a given tag in this window.</source>
        <comment>Explains what tags are for</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tags</source>
        <comment>Title of the tag browser</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>tagged</source>
        <comment>As in: 3 tagged: Goal (…)</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>double-click a session for more detail</source>
        <comment>Hint above the meetings of a tag, in parentheses</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No tags yet</source>
        <comment>Stands in the empty tag browser</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tags organize your meetings by theme, topic or project. Put one on a meeting, in its tag field, and it is listed here.</source>
        <comment>Stands in the empty tag browser</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Delete the selected tags</source>
        <comment>Tooltip and accessible name</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No tag selected</source>
        <comment>Stands where the meetings of a tag would</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select a tag to see the meetings that carry it.</source>
        <comment>Stands where the meetings of a tag would</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No meetings with this tag</source>
        <comment>Stands where the meetings of a tag would</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Put the tag on a meeting, in its tag field, and the meeting is listed here.</source>
        <comment>Stands where the meetings of a tag would</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>What are tags for?</source>
        <comment>Tooltip of the help button</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Explain tags</source>
        <comment>Accessible name of the help button</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Meeting</source>
        <comment>Column of the meetings of a tag</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Date</source>
        <comment>Column of the meetings of a tag</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tags</source>
        <comment>Column of the meetings of a tag</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Meetings</source>
        <comment>Accessible name of the list of a tag&apos;s meetings</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::TagsArrayController</name>
    <message>
        <source>Unnamed tag</source>
        <comment>Stands where the name of a tag without a name would</comment>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No emoji</source>
        <comment>Accessible text of a tag&apos;s missing emoji</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>tembra::TokenCompletionList</name>
    <message>
        <source>Completions</source>
        <comment>list of texts that complete what is typed</comment>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
