#include "Application/Verify.h"

#include "Backup/BackupDocument.h"
#include "Backup/JournalImport.h"

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int refused = 1;

Result<BackupCounts> inspect(const QString &package)
{
    const auto document = BackupDocument::read(package);
    if (!document)
        return failure(u"Could not load file: "_s + document.error().description());
    if (!document->teammatesJsonData)
        return failure(u"No teammate data found."_s);
    return inspectJournal(*document->teammatesJsonData);
}

QString amount(qint64 count, const QString &noun)
{
    return QString::number(count) + u' ' + noun + (count == 1 ? u""_s : u"s"_s);
}

QString amounts(const BackupCounts &counts)
{
    const QStringList all{amount(counts.teammates, u"teammate"_s),
                          amount(counts.sessions, u"meeting"_s), amount(counts.notes, u"note"_s),
                          amount(counts.tags, u"tag"_s)};
    return all.join(u", "_s);
}

/// Names of files and of what is in them may hold anything, also what a terminal takes for commands.
QString plainLine(QString text)
{
    for (QChar &character : text) {
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line
            || category == QChar::Separator_Paragraph)
            character = u'?';
    }
    return text + u'\n';
}

} // namespace

PrintAndExit verifyPackage(const QString &package)
{
    const Result<BackupCounts> counts = inspect(package);
    if (!counts)
        return {plainLine(u"tembra: %1: %2"_s.arg(package, counts.error().description())), refused};
    return {plainLine(package + u": "_s + amounts(*counts)), 0};
}

} // namespace tembra
