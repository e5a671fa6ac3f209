// What the calibrator found for each routine, and the files it writes from it:
// the crossover list, the times as CSV, and the plot drawn by gnuplot.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "break_even.h"
#include "timed_routines.h"

enum class Outcome {
    crossover,    // the GPU side wins from `entry` on
    never,        // the GPU side lost at the largest size tried
    mismatch,     // the GPU side's result differs from the CPU side's: never
    gpuFailed,    // the GPU library failed the call (the CPU side ran it): never
    notMeasured,  // no size was measured within the budget: no line, the default stays
};

struct RoutineResult {
    const TimedRoutine* routine;
    std::vector<SizeTiming> timings;
    Outcome outcome = Outcome::notMeasured;
    std::int32_t entry = 0;
    double breakEvenN = 0;
};

// One "name=value" line per measured routine; false when the file cannot be written.
bool writeCrossoverList(const std::string& path, const std::vector<RoutineResult>& results);

// routine,n,measure,cpu_seconds,gpu_seconds: one row per size.
bool writeTimings(const std::string& path, const std::vector<RoutineResult>& results);

// A PNG with one panel per measured routine: both times against n, on log
// scales, the crossover marked. Gives an empty string, or why nothing was drawn.
std::string drawPlot(const std::string& path, const std::vector<RoutineResult>& results, const std::string& title);

// Whether a program of that name is on PATH.
bool programOnPath(const std::string& name);
