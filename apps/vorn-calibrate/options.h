// The command line of vorn-calibrate.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "timed_routines.h"

struct Options {
    std::vector<const TimedRoutine*> routines = defaultTimedRoutines();
    double budgetSeconds = 300;
    std::string output = "vorn-crossovers.list";
    std::string plot;  // empty: the output's name with .png
    std::string timings;  // the output's name with .csv
    int maxSize = 4096;
};

inline constexpr int smallestSize = 16;

// The options, or nothing after a message on stderr (or the help on stdout, with
// `helpShown` set).
std::optional<Options> parseOptions(int argc, char** argv, bool& helpShown);
