#pragma once

#include <functional>
#include <string>

namespace tembra::figures {

/// What is measured: one call is one measurement. Preparation belongs into the closure's making.
using Work = std::function<void()>;

/// Measures @p work beside @p floor, the best that can be done without this program's layers, in
/// the same run: it may take @p factor times the floor plus @p allowance milliseconds.
void compare(const std::string &name, const Work &work, const Work &floor, double factor,
             double allowance);

/// As compare(), with @p prepare before each time of both being left out.
void comparePrepared(const std::string &name, const Work &prepare, const Work &work,
                     const Work &floor, double factor, double allowance);

/// Measures @p work against @p limit in milliseconds.
void limit(const std::string &name, const Work &work, double limit);

/// Measures work that can be done once only, @p prepare before each time being left out.
void limitPrepared(const std::string &name, const Work &prepare, const Work &work, double limit);

/// Measures, right now, work that can be done only once, in milliseconds.
double measureOnce(const Work &work);

/// Adds a figure that was measured elsewhere, in a unit of its own.
void report(const std::string &name, double figure, double allowed, const std::string &unit,
            double floor = -1);

/// Runs what was registered and prints each figure beside its floor and what is allowed. Returns
/// the exit status: 0 when every figure is within, 1 when one is over. With "--smoke" everything
/// runs once and no figure is judged.
int run(int argc, char *argv[]);

/// True when started with "--smoke": a check that the benchmark works, not a measurement.
bool isSmoke(int argc, char *argv[]);

} // namespace tembra::figures
