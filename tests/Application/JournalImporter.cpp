// Imports a backup as the program does, and tells on standard output how far it is, a letter each:
//
//   O  the journal is open, the import begins
//   R  a part of the backup is read
//   S  everything is read and is about to be saved
//   D  the save was confirmed
//
// Usage: JournalImporter FOLDER PACKAGE. Ends after it has closed the journal, if it is not killed.

#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "Backup/BackupDocument.h"
#include "Backup/JournalImport.h"
#include "Foundation/Precondition.h"
#include "Store/Objects/PersistentContainer.h"

#include <QCoreApplication>

#include <unistd.h>

using namespace tembra;

namespace {

/// How much of an import is done when its save begins.
constexpr double readingFraction = 0.95;

void say(char letter)
{
    require(::write(STDOUT_FILENO, &letter, 1) == 1, "The log can be written");
}

Result<void> importPackage(const QString &package, ManagedObjectContext &context,
                           const BackgroundTask::ProgressHandler &progressHandler)
{
    const auto document = BackupDocument::read(package);
    require(document && document->teammatesJsonData, "The backup can be read");
    const auto counts = importJournal(*document->teammatesJsonData, context, [&](double done) {
        say(done < readingFraction ? 'R' : 'S');
        return progressHandler(done);
    });
    require(counts.has_value(), "The backup can be imported");
    say('D');
    return {};
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    require(arguments.size() == 3, "Usage: JournalImporter FOLDER PACKAGE");
    const auto folder = DataFolder::forOptions({.dataDirectory = arguments.at(1)});
    ProgramServices services(*folder);
    services.derivedTexts.follow(services.coreData.viewContext());
    const QString package = arguments.at(2);
    services.coreData.viewContext();
    say('O');
    const auto work = BackgroundTask::start(
        services.coreData.persistentContainer(),
        [package](ManagedObjectContext &context,
                  const BackgroundTask::ProgressHandler &progressHandler) {
            return importPackage(package, context, progressHandler);
        });
    require(work.has_value(), "An import can be started");
    QObject::connect(work->get(), &BackgroundTask::finished, &application, &QCoreApplication::quit);
    return QCoreApplication::exec();
}
