#include "Application/Program.h"

#include "Application/AppDelegate.h"
#include "Application/CommandLine.h"
#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "Application/SampleJournal.h"
#include "Application/Screenshots.h"
#include "Application/SingleInstance.h"
#include "Application/UnixSignals.h"
#include "Application/Version.h"
#include "Toolkit/Alert.h"
#include "Toolkit/Icons.h"

#include <QApplication>

#include <cstdio>

namespace tembra {

using namespace Qt::StringLiterals;

namespace {

constexpr int couldNotStart = 1;

void printTo(FILE *stream, const QString &text)
{
    std::fputs(qPrintable(text), stream);
}

/// Tells why the program cannot go on, on the screen and where it was started from.
int giveUp(const QString &message)
{
    printTo(stderr, u"tembra: "_s + message + u'\n');
    Alert::runModal({.messageText = message,
                     .informativeText = QCoreApplication::translate(
                         "Program", "Tembra has changed nothing. It closes now.", "Alert when the start fails"),
                     .buttons = {QCoreApplication::translate("Program", "Quit", "Closes the program")},
                     .style = AlertContents::Style::Critical});
    return couldNotStart;
}

/// Ends the process at once: nothing has been made yet that would have to be taken down.
[[noreturn]] void stopProgram(const QString &message)
{
    std::exit(giveUp(message));
}

int runOn(const DataFolder &folder, const StartOptions &options)
{
    SingleInstance instance(folder.journalDirectory());
    const auto answer = instance.askRunningInstance();
    if (!answer)
        return giveUp(answer.error().description());
    if (*answer == SingleInstance::Answer::Shown)
        return 0;

    ProgramServices services(folder);
    services.coreData.setStopProgram(stopProgram);
    AppDelegate delegate(services, folder);
    delegate.applicationDidFinishLaunching([&] {
        if (options.sample)
            SampleJournal::fill(services.coreData.viewContext(), services.clock);
    });
    instance.listen();
    const UnixSignals signalsOfTheSystem;
    QObject::connect(&instance, &SingleInstance::showRequested, &delegate, &AppDelegate::bringForward);
    QObject::connect(&signalsOfTheSystem, &UnixSignals::terminationRequested, &delegate, &AppDelegate::terminate);
    QObject::connect(qGuiApp, &QGuiApplication::commitDataRequest, &delegate, &AppDelegate::commitDataForLogout,
                     Qt::DirectConnection);

    Screenshots screenshots(options.screenshotsDirectory);
    if (!options.screenshotsDirectory.isEmpty())
        screenshots.takeThenQuit(delegate);
    const int status = QCoreApplication::exec();
    return screenshots.failed() ? couldNotStart : status;
}

} // namespace

int runProgram(int argc, char *argv[])
{
    QCoreApplication::setApplicationName(u"Tembra"_s);
    QCoreApplication::setApplicationVersion(programVersion());
    QStringList rawArguments;
    for (int i = 0; i < argc; ++i)
        rawArguments.append(QString::fromLocal8Bit(argv[i]));
    // Help and version need no display. What is wrong is told later: the toolkit takes its own
    // options off the list first.
    const auto early = parseCommandLine(rawArguments);
    if (const auto *answer = std::get_if<PrintAndExit>(&early); answer && answer->exitStatus == 0) {
        printTo(stdout, answer->text);
        return 0;
    }

    QApplication application(argc, argv);
    QGuiApplication::setDesktopFileName(u"tembra"_s);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setWindowIcon(icons::application());
    const auto parsed = parseCommandLine(QCoreApplication::arguments());
    if (const auto *mistake = std::get_if<PrintAndExit>(&parsed)) {
        printTo(stderr, mistake->text);
        return mistake->exitStatus;
    }
    const auto &options = std::get<StartOptions>(parsed);
    const auto folder = DataFolder::forOptions(options);
    return folder ? runOn(*folder, options) : giveUp(folder.error().description());
}

} // namespace tembra
