#include "Figures.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <vector>

namespace tembra::figures {

namespace {

struct Figure
{
    std::string name;
    double factor = 0;
    double allowance = 0; ///< Milliseconds.
    bool hasFloor = false;
};

struct Reported
{
    std::string name;
    double figure;
    double allowed;
    std::string unit;
    double floor;
};

std::vector<Figure> &registered()
{
    static std::vector<Figure> figures;
    return figures;
}

std::vector<Reported> &reported()
{
    static std::vector<Reported> figures;
    return figures;
}

constexpr int repetitions = 5;
const std::string figureSuffix = ":figure";
const std::string floorSuffix = ":floor";

void registerWork(const std::string &name, const Work &work)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [work](benchmark::State &state) {
                                     for ([[maybe_unused]] auto round : state)
                                         work();
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Repetitions(repetitions)
        ->MinTime(0.05);
}

void registerPrepared(const std::string &name, const Work &prepare, const Work &work)
{
    benchmark::RegisterBenchmark(name.c_str(),
                                 [prepare, work](benchmark::State &state) {
                                     for ([[maybe_unused]] auto round : state) {
                                         state.PauseTiming();
                                         prepare();
                                         state.ResumeTiming();
                                         work();
                                     }
                                 })
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->Repetitions(repetitions)
        ->Iterations(1);
}

/// Keeps the median of each benchmark's repetitions.
class MedianReporter final : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context &) override { return true; }

    void ReportRuns(const std::vector<Run> &runs) override
    {
        for (const Run &run : runs) {
            if (run.aggregate_name == "median"
                || (run.repetitions <= 1 && run.aggregate_name.empty()))
                medians[run.run_name.function_name] = run.GetAdjustedRealTime();
        }
    }

    std::map<std::string, double> medians; ///< Milliseconds by name.
};

/// One line of the table; true when the figure is within what is allowed.
bool print(const Reported &line)
{
    const bool within = line.figure <= line.allowed;
    char floor[32] = "-";
    if (line.floor >= 0)
        std::snprintf(floor, sizeof floor, "%.4g", line.floor);
    std::printf("%-52s %10.4g %10s %10.4g %-3s %s\n", line.name.c_str(), line.figure, floor,
                line.allowed, line.unit.c_str(), within ? "within" : "OVER");
    return within;
}

} // namespace

void compare(const std::string &name, const Work &work, const Work &floor, double factor,
             double allowance)
{
    registered().push_back({name, factor, allowance, true});
    registerWork(name + figureSuffix, work);
    registerWork(name + floorSuffix, floor);
}

void comparePrepared(const std::string &name, const Work &prepare, const Work &work,
                     const Work &floor, double factor, double allowance)
{
    registered().push_back({name, factor, allowance, true});
    registerPrepared(name + figureSuffix, prepare, work);
    registerPrepared(name + floorSuffix, prepare, floor);
}

void limit(const std::string &name, const Work &work, double limitInMilliseconds)
{
    registered().push_back({name, 0, limitInMilliseconds, false});
    registerWork(name + figureSuffix, work);
}

void limitPrepared(const std::string &name, const Work &prepare, const Work &work,
                   double limitInMilliseconds)
{
    registered().push_back({name, 0, limitInMilliseconds, false});
    registerPrepared(name + figureSuffix, prepare, work);
}

double measureOnce(const Work &work)
{
    const auto begin = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now()
                                                              - begin;
    return elapsed.count();
}

void report(const std::string &name, double figure, double allowed, const std::string &unit,
            double floor)
{
    reported().push_back({name, figure, allowed, unit, floor});
}

bool isSmoke(int argc, char *argv[])
{
    return std::any_of(argv, argv + argc,
                       [](const char *word) { return std::strcmp(word, "--smoke") == 0; });
}

int run(int argc, char *argv[])
{
    const bool smoke = isSmoke(argc, argv);
    std::vector<char *> words(argv, argv + argc);
    std::erase_if(words, [](const char *word) { return std::strcmp(word, "--smoke") == 0; });
    std::string shortest = "--benchmark_min_time=0.0";
    std::string once = "--benchmark_repetitions=1";
    if (smoke)
        words.insert(words.end(), {shortest.data(), once.data()});
    int count = int(words.size());
    benchmark::Initialize(&count, words.data());

    MedianReporter medians;
    benchmark::RunSpecifiedBenchmarks(&medians);
    // The closures hold records, which must be gone before the journals they belong to.
    benchmark::ClearRegisteredBenchmarks();
    std::printf("%-52s %10s %10s %10s\n", "figure (medians)", "measured", "floor", "allowed");
    bool within = true;
    for (const Figure &figure : registered()) {
        const auto measured = medians.medians.find(figure.name + figureSuffix);
        if (measured == medians.medians.end())
            continue;
        const double floor = figure.hasFloor ? medians.medians[figure.name + floorSuffix] : -1;
        const double allowed = figure.allowance + (figure.hasFloor ? figure.factor * floor : 0);
        within &= print({figure.name, measured->second, allowed, "ms", floor});
    }
    for (const Reported &line : reported())
        within &= print(line);
    return smoke || within ? 0 : 1;
}

} // namespace tembra::figures
