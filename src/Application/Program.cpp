#include "Application/Program.h"

#include "Application/AppDelegate.h"
#include "Application/CommandLine.h"
#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "Application/Sample/SampleJournal.h"
#include "Application/Screenshots.h"
#include "Application/SingleInstance.h"
#include "Application/StartConditions.h"
#include "Application/UnixSignals.h"
#include "Application/Verify.h"
#include "Application/Version.h"
#include "Store/Objects/PersistentContainer.h"
#include "Toolkit/Alert.h"
#include "Toolkit/Icons.h"

#include <QApplication>
#include <QSettings>
#include <QTimer>

#include <csignal>
#include <cstdio>
#include <sys/stat.h>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int couldNotStart = 1;

void printTo(FILE *stream, const QString &text)
{
    std::fputs(qPrintable(text), stream);
}

int print(const PrintAndExit &text)
{
    printTo(text.exitStatus == 0 ? stdout : stderr, text.text);
    return text.exitStatus;
}

/// Unwinds a start that cannot go on, so that everything made so far is taken down again.
struct CannotStart
{
    QString reason;
    bool canSetStoreAside = false;
};

/// Tells why the program cannot go on, on the screen and where it was started from.
int giveUp(const QString &reason)
{
    printTo(stderr, u"tembra: "_s + reason + u'\n');
    Alert::runModal(
        {.messageText = reason,
         .informativeText = QCoreApplication::translate(
             "Program", "Tembra has changed nothing. It closes now.", "Alert when the start fails"),
         .buttons = {QCoreApplication::translate("Program", "Quit", "Closes the program")},
         .style = AlertContents::Style::Critical});
    return couldNotStart;
}

/// The journal cannot be used, but moved away, so that a copy of it finds nothing of the old one in
/// its place.
int giveUpOnStore(const QString &reason, const DataFolder &folder)
{
    printTo(stderr, u"tembra: "_s + reason + u'\n');
    const int button = Alert::runModal(
        {.messageText = reason,
         .informativeText = QCoreApplication::translate(
             "Program",
             "Tembra has changed nothing. Before you put a copy of your journal in its place, set "
             "these files aside together: they are renamed, and nothing is deleted.",
             "Alert when the journal cannot be used"),
         .buttons = {QCoreApplication::translate("Program", "Quit", "Closes the program"),
                     QCoreApplication::translate("Program", "Set Files Aside and Quit",
                                                 "Renames a journal that cannot be used")},
         .cancelButton = 0,
         .style = AlertContents::Style::Critical});
    if (button == 0)
        return couldNotStart;
    const auto aside = PersistentContainer(DataFolder::storeName(), {},
                                           {.directory = folder.journalDirectory()})
                           .setStoreAside();
    if (!aside)
        return giveUp(aside.error().description());
    const QString done =
        QCoreApplication::translate(
            "Program",
            "The journal's files were set aside as “%1”. Put a copy in their place "
            "and start Tembra again, or start it with a new journal.",
            "Says where the files of a journal lie now")
            .arg(*aside);
    printTo(stderr, u"tembra: "_s + done + u'\n');
    Alert::runModal(
        {.messageText = done,
         .informativeText = {},
         .buttons = {QCoreApplication::translate("Program", "Quit", "Closes the program")},
         .style = AlertContents::Style::Informational});
    return couldNotStart;
}

int leaveToRunningInstance(const StartOptions &options)
{
    if (options.screenshotsDirectory.isEmpty())
        return 0;
    printTo(stderr,
            u"tembra: Tembra is already running with this journal. Quit it to take pictures.\n"_s);
    return couldNotStart;
}

/// The toolkit's panels remember things of their own, usually among those of all programs.
void keepToolkitSettingsIn(const DataFolder &folder)
{
    if (folder.holdsEverything())
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           folder.journalDirectory());
}

void importSample(ProgramServices &services, const DataFolder &folder)
{
    const auto done = SampleJournal::importInto(services.coreData, folder.journalDirectory(),
                                                services.clock, QTimeZone::systemTimeZone());
    if (!done)
        throw CannotStart{done.error().description()};
}

int runUntilQuit(AppDelegate &delegate, const StartOptions &options)
{
    Screenshots screenshots(options.screenshotsDirectory);
    if (!options.screenshotsDirectory.isEmpty())
        screenshots.takeThenQuit(delegate);
    if (!options.packages.isEmpty())
        QTimer::singleShot(0, &delegate, [&] { delegate.openFiles(options.packages); });
    const int status = QCoreApplication::exec();
    return screenshots.failed() ? couldNotStart : status;
}

int runOn(const DataFolder &folder, const StartOptions &options)
{
    // Goes last: until everything else has been taken down, nobody else can start on this folder.
    SingleInstance instance(folder.journalDirectory());
    const auto outcome = instance.start(options.packages);
    if (!outcome)
        return giveUp(outcome.error().description());
    if (*outcome == SingleInstance::Outcome::Shown)
        return leaveToRunningInstance(options);

    ProgramServices services(folder);
    services.coreData.setStopProgram(
        [](const QString &reason, const PersistentContainer &container) {
            throw CannotStart{reason, container.canSetStoreAside()};
        });
    AppDelegate delegate(services, folder);
    const UnixSignals signalsOfTheSystem;
    QObject::connect(&instance, &SingleInstance::showRequested, &delegate,
                     &AppDelegate::bringForward);
    instance.setMayAnswer([&] { return !delegate.isEnding(); });
    QObject::connect(&instance, &SingleInstance::openRequested, &delegate, &AppDelegate::openFiles);
    QObject::connect(&signalsOfTheSystem, &UnixSignals::terminationRequested, &delegate,
                     &AppDelegate::terminate);
    QObject::connect(qGuiApp, &QGuiApplication::commitDataRequest, &delegate,
                     &AppDelegate::commitDataForLogout, Qt::DirectConnection);
    try {
        delegate.applicationDidFinishLaunching([&] {
            if (options.sample)
                importSample(services, folder);
        });
    } catch (const CannotStart &stop) {
        return stop.canSetStoreAside ? giveUpOnStore(stop.reason, folder) : giveUp(stop.reason);
    }
    return runUntilQuit(delegate, options);
}

} // namespace

int runProgram(int argc, char *argv[])
{
#ifdef Q_OS_UNIX
    // A write past the limit on the size of files then fails like one to a full disk.
    std::signal(SIGXFSZ, SIG_IGN);
#endif
    QCoreApplication::setApplicationName(u"Tembra"_s);
    QCoreApplication::setApplicationVersion(programVersion());
    // What the toolkit writes for itself would else be open to others.
    ::umask(S_IRWXG | S_IRWXO);
    const QByteArrayList names(argv, argv + argc);
    QStringList arguments;
    for (const QByteArray &name : names)
        arguments.append(QString::fromUtf8(name));
    // Before the toolkit starts: help, version, mistakes and looking into a backup need no display.
    const CommandLine parsed = parseCommandLine(arguments);
    if (const auto *text = std::get_if<PrintAndExit>(&parsed))
        return print(*text);
    if (const QString complaint = complaintAboutNames(names, parsed); !complaint.isEmpty())
        return print({u"tembra: "_s + complaint + u'\n', couldNotStart});
    if (const auto *request = std::get_if<VerifyRequest>(&parsed))
        return print(verifyPackage(request->package));

    auto guard = std::make_optional<DisplayGuard>();
    const QApplication application(argc, argv);
    guard.reset();
    QGuiApplication::setDesktopFileName(u"tembra"_s);
    QApplication::setWindowIcon(icons::application());
    // Only AppDelegate ends the program.
    QApplication::setQuitOnLastWindowClosed(false);
    QCoreApplication::setQuitLockEnabled(false);
    const auto &options = std::get<StartOptions>(parsed);
    const auto folder = DataFolder::forOptions(options);
    if (!folder)
        return giveUp(folder.error().description());
    keepToolkitSettingsIn(*folder);
    return runOn(*folder, options);
}

} // namespace tembra
