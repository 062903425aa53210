// Writing and reading whole journals, beside the same rows by the raw C API; the memory that takes;
// and how long the main thread stands still meanwhile. Memory is measured in processes of their own.

#include "Backup/BackupDocument.h"
#include "Backup/Import.h"
#include "BenchmarkJournal.h"
#include "Figures.h"
#include "Foundation/Precondition.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/MainWindow.h"
#include "Model/JournalEncoding.h"
#include "Model/JournalQueries.h"
#include "RawBackup.h"
#include "Store/Objects/ManagedObjectContext.h"
#include "Store/Objects/PersistentContainer.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr double writingFactor = 1.5;
constexpr double readingFactor = 2;
constexpr double memoryBeside = 16; ///< Megabytes, beside the document.
constexpr double longestPause = 100; ///< Milliseconds.
constexpr double megabyte = 1024.0 * 1024;

template<typename Work>
double milliseconds(const Work &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

double medianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// A line of /proc/self/status, in megabytes.
double memory(const QByteArray &name)
{
    QFile status(u"/proc/self/status"_s);
    require(status.open(QIODevice::ReadOnly), "the process status can be read");
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(QByteArray(name + ':')))
            return line.mid(name.size() + 1).trimmed().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

/// What the process holds now; from here on the peak is measured anew.
double memoryAtRest()
{
    QFile references(u"/proc/self/clear_refs"_s);
    require(references.open(QIODevice::WriteOnly) && references.write("5") == 1,
            "the peak can be forgotten");
    return memory("VmRSS");
}

QByteArray documentOf(BenchmarkJournal &journal)
{
    const auto teammates = journal.context().fetch<Counterpart>(JournalQueries::counterparts());
    require(teammates.has_value(), "the teammates are there");
    auto json = encodeJournal(journal.context(), *teammates);
    require(json.has_value(), "the journal can be written");
    return std::move(*json);
}

void write(QByteArray json, const QString &path)
{
    require(BackupDocument{std::move(json)}.write(path).has_value(), "the package is written");
}

void importInto(BenchmarkJournal &journal, const QByteArray &json)
{
    const auto context = std::move(*journal.coreData.persistentContainer().newBackgroundContext());
    require(importJournal(json, *context, [](double) { return true; }).has_value(),
            "the journal can be read");
}

void reportWriting(int sessions, int rounds)
{
    BenchmarkJournal journal(sessions);
    const QString path = journal.directory.filePath(u"Bench.tembrabackup"_s);
    std::vector<double> own;
    std::vector<double> floor;
    for (int round = 0; round < rounds; ++round) {
        own.push_back(milliseconds([&] { write(documentOf(journal), path); }));
        floor.push_back(milliseconds([&] { write(rawBackup::encode(journal.raw()), path); }));
    }
    figures::report("write a package of " + std::to_string(sessions), medianOf(own),
                    writingFactor * medianOf(floor), "ms", medianOf(floor));
}

void reportReading(int sessions, int rounds)
{
    const QByteArray json = [&] {
        BenchmarkJournal journal(sessions);
        return documentOf(journal);
    }();
    std::vector<double> own;
    std::vector<double> floor;
    for (int round = 0; round < rounds; ++round) {
        BenchmarkJournal journal(0);
        own.push_back(milliseconds([&] { importInto(journal, json); }));
        const QTemporaryDir other;
        BenchmarkJournal::createEmpty(other.path());
        floor.push_back(milliseconds(
            [&] { rawBackup::import(json, BenchmarkJournal::storeFile(other.path())); }));
    }
    figures::report("read and save " + std::to_string(sessions), medianOf(own),
                    readingFactor * medianOf(floor), "ms", medianOf(floor));
}

/// The program at rest: its window shows the teammate with the most meetings, if there is any.
std::unique_ptr<MainWindow> openWindow(BenchmarkJournal &journal)
{
    auto window = std::make_unique<MainWindow>(journal.coreData, journal.services,
                                               journal.notifications,
                                               journal.directory.filePath(u"windows.ini"_s), [] {});
    window->show();
    window->detailPaneViewController().setSelectedCounterpart(
        journal.context().object<Counterpart>(journal.largestTeammate()));
    for (int turn = 0; turn < 50; ++turn)
        QCoreApplication::processEvents();
    return window;
}

// Memory, in a process of its own: says how much more than at rest it took at most, and how much the
// document is.

int measureWriting(int sessions)
{
    BenchmarkJournal journal(sessions);
    const auto window = openWindow(journal);
    const double idle = memoryAtRest();
    const QByteArray json = documentOf(journal);
    write(json, journal.directory.filePath(u"Bench.tembrabackup"_s));
    std::printf("%f %f\n", memory("VmHWM") - idle, double(json.size()) / megabyte);
    return 0;
}

int measureReading(const QString &file)
{
    BenchmarkJournal journal(0);
    const auto window = openWindow(journal);
    const double idle = memoryAtRest();
    const auto document = BackupDocument::read(file);
    require(document && document->teammatesJsonData, "the package is read");
    importInto(journal, *document->teammatesJsonData);
    std::printf("%f %f\n", memory("VmHWM") - idle,
                double(document->teammatesJsonData->size()) / megabyte);
    return 0;
}

std::pair<double, double> measured(const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(), arguments);
    require(process.waitForFinished(600'000) && process.exitCode() == 0, "the measurement ends");
    const QList<QByteArray> numbers = process.readAll().trimmed().split(' ');
    require(numbers.size() == 2, "the measurement tells two numbers");
    return {numbers.at(0).toDouble(), numbers.at(1).toDouble()};
}

void reportMemory(int sessions)
{
    const QTemporaryDir directory;
    const QString path = directory.filePath(u"Bench.tembrabackup"_s);
    {
        BenchmarkJournal journal(sessions);
        write(documentOf(journal), path);
    }
    const auto [writing, written] = measured({u"--measure-write"_s, QString::number(sessions)});
    figures::report("memory to write " + std::to_string(sessions), writing, written + memoryBeside,
                    "MB", written);
    const auto [reading, read] = measured({u"--measure-read"_s, path});
    figures::report("memory to read " + std::to_string(sessions), reading, read + memoryBeside,
                    "MB", read);
}

/// The longest time between two turns of the event loop while the window shows a journal of the same
/// size and another one comes in.
void reportPause(int sessions)
{
    BenchmarkJournal journal(sessions);
    const QString path = journal.directory.filePath(u"Bench.tembrabackup"_s);
    write(documentOf(journal), path);
    const auto window = openWindow(journal);

    Import import(journal.coreData, window.get());
    QEventLoop loop;
    QObject::connect(&import, &Import::finished, &loop, &QEventLoop::quit);
    double longest = 0;
    QElapsedTimer sinceLastTurn;
    QTimer turns;
    QObject::connect(&turns, &QTimer::timeout, &loop, [&] {
        longest = std::max(longest, double(sinceLastTurn.nsecsElapsed()) / 1e6);
        sinceLastTurn.start();
    });
    sinceLastTurn.start();
    import.importPackage(path);
    turns.start(0);
    loop.exec();
    for (int turn = 0; turn < 50; ++turn)
        QCoreApplication::processEvents();
    figures::report("longest pause while " + std::to_string(sessions) + " come in", longest,
                    longestPause, "ms");
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.contains(u"--measure-write"_s))
        return measureWriting(arguments.last().toInt());
    if (arguments.contains(u"--measure-read"_s))
        return measureReading(arguments.last());

    const bool smoke = figures::isSmoke(argc, argv);
    for (const int sessions : smoke ? std::vector{1'000} : std::vector{10'000, 100'000}) {
        reportWriting(sessions, smoke ? 1 : 3);
        reportReading(sessions, smoke ? 1 : 3);
        reportMemory(sessions);
        reportPause(sessions);
    }
    return figures::run(argc, argv);
}
