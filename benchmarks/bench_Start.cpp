// Whole processes: from the start to the first complete picture, emoji included, and the memory held
// after scrolling through everything, each beside an empty window of the same libraries. The parent starts itself
// again as the process that is measured.

#include "Application/AppDelegate.h"
#include "Application/CommandLine.h"
#include "Application/DataFolder.h"
#include "Application/ProgramServices.h"
#include "BenchmarkJournal.h"
#include "Figures.h"
#include "Foundation/Precondition.h"
#include "JournalGenerator.h"
#include "MainWindow/Detail/DetailPaneViewController.h"
#include "MainWindow/MainWindow.h"
#include "Model/JournalQueries.h"
#include "Store/Objects/ManagedObjectContext.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMainWindow>
#include <QProcess>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace tembra;
using namespace Qt::StringLiterals;

namespace {

constexpr double startFactor = 3;
constexpr double growthFactor = 1.3;
constexpr double memoryLimit = 40;
constexpr int roundsOfAMeasurement = 9;

/// Calls back when the picture is complete: something was painted, and in the whole turn of the event
/// loop after that nothing any more.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(std::function<void()> completed) : m_completed(std::move(completed))
    {
        qApp->installEventFilter(this);
        connect(&m_idle, &QTimer::timeout, this, &PaintWatch::endTurn);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            m_wasPainted = true;
            m_idle.start(0);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void endTurn()
    {
        if (std::exchange(m_wasPainted, false))
            return;
        m_idle.stop();
        qApp->removeEventFilter(this);
        m_completed();
    }

    std::function<void()> m_completed;
    QTimer m_idle;
    bool m_wasPainted = false;
};

double residentMegabytes()
{
    QFile status(u"/proc/self/status"_s);
    require(status.open(QIODevice::ReadOnly), "the process status can be read");
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024;
    }
    return 0;
}

void say(const QByteArray &line)
{
    std::fputs(line.constData(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

/// Scrolls every list of the window to its end and back, page by page, painting each.
void scrollEverywhere(QWidget &window)
{
    for (QScrollBar *bar : window.findChildren<QScrollBar *>()) {
        const int step = std::max({1, bar->pageStep(), bar->maximum() / 400});
        for (int value = bar->minimum(); value <= bar->maximum(); value += step) {
            bar->setValue(value);
            QCoreApplication::processEvents();
        }
        bar->setValue(bar->minimum());
    }
}

int measuredEmptyWindow(QApplication &application)
{
    QMainWindow window;
    window.resize(1100, 720);
    PaintWatch watch([&] {
        say("painted");
        say(QByteArray::number(residentMegabytes()));
        QCoreApplication::exit(0);
    });
    window.show();
    return application.exec();
}

int measuredProgram(QApplication &application, const QString &directory, bool scrolls)
{
    const auto folder = DataFolder::forOptions({directory, false, {}});
    ProgramServices services(*folder);
    AppDelegate delegate(services, *folder);
    PaintWatch watch([&] {
        say("painted");
        if (scrolls) {
            ManagedObjectContext &context = services.coreData.viewContext();
            const auto teammates = context.fetch<Counterpart>(JournalQueries::counterparts())
                                       .value();
            for (const auto &teammate : teammates) {
                delegate.window()->detailPaneViewController().setSelectedCounterpart(teammate);
                scrollEverywhere(*delegate.window());
            }
        }
        say(QByteArray::number(residentMegabytes()));
        QCoreApplication::exit(0);
    });
    delegate.applicationDidFinishLaunching();
    return application.exec();
}

struct Measurement
{
    double milliseconds; ///< From starting the process to its first complete picture.
    double megabytes; ///< Resident at the end.
};

Measurement measureOnce(const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QElapsedTimer timer;
    timer.start();
    process.start(QCoreApplication::applicationFilePath(), arguments);
    require(process.waitForReadyRead(60'000), "the measured process paints");
    const double milliseconds = double(timer.nsecsElapsed()) / 1e6;
    require(process.waitForFinished(300'000), "the measured process ends");
    const QList<QByteArray> lines = process.readAll().split('\n');
    require(lines.size() > 1 && lines.first() == "painted",
            "the measured process tells its memory");
    return {milliseconds, lines.at(1).toDouble()};
}

double medianOf(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// A folder with a generated journal for the measured process to work on.
class Folder
{
public:
    explicit Folder(int sessions)
    {
        const QString cached = JournalGenerator::cachedDirectory(sessions);
        JournalGenerator::make(cached, sessions);
        require(QFile::copy(BenchmarkJournal::storeFile(cached),
                            BenchmarkJournal::storeFile(m_directory.path())),
                "the generated journal can be copied");
    }
    QString path() const { return m_directory.path(); }

private:
    QTemporaryDir m_directory;
};

void reportStart(int rounds, const Folder &small, const Folder &large)
{
    std::vector<double> empty;
    std::vector<double> with1k;
    std::vector<double> withLarge;
    // In turn, so that a machine that slows down slows all three.
    for (int round = 0; round < rounds; ++round) {
        empty.push_back(measureOnce({u"--measure-empty"_s}).milliseconds);
        with1k.push_back(measureOnce({u"--measure-start"_s, small.path()}).milliseconds);
        withLarge.push_back(measureOnce({u"--measure-start"_s, large.path()}).milliseconds);
    }
    const double floor = medianOf(empty);
    figures::report("start to the complete picture, 1k", medianOf(with1k), startFactor * floor,
                    "ms", floor);
    figures::report("start to the complete picture, 1M", medianOf(withLarge), startFactor * floor,
                    "ms", floor);
    figures::report("start at 1M beside its own at 1k", medianOf(withLarge),
                    growthFactor * medianOf(with1k), "ms", medianOf(with1k));
}

void reportMemory(const Folder &large)
{
    const double empty = measureOnce({u"--measure-empty"_s}).megabytes;
    const double scrolled = measureOnce({u"--measure-memory"_s, large.path()}).megabytes;
    figures::report("memory above an empty window, all scrolled", scrolled - empty, memoryLimit,
                    "MB", 0);
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName(u"Tembra"_s);
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.contains(u"--measure-empty"_s))
        return measuredEmptyWindow(application);
    if (arguments.contains(u"--measure-start"_s))
        return measuredProgram(application, arguments.last(), false);
    if (arguments.contains(u"--measure-memory"_s))
        return measuredProgram(application, arguments.last(), true);

    const bool smoke = figures::isSmoke(argc, argv);
    const Folder small(1'000);
    const Folder medium(smoke ? 1'000 : 100'000);
    const Folder large(smoke ? 1'000 : 1'000'000);
    reportStart(smoke ? 1 : roundsOfAMeasurement, small, large);
    reportMemory(medium);
    return figures::run(argc, argv);
}
