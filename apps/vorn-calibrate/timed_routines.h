// The routines the calibrator can time: for each, how to build an n-by-n problem,
// make one call through the link library, and what of the result to compare
// between the two sides; and how n turns into the measure that the routine
// compares with its crossover.
#pragma once

#include <span>
#include <string_view>
#include <vector>

// One call: how long it took, the routine's info, and the part of the result
// that both sides must agree on (values that a side may legitimately flip in
// sign, eigenvectors or Householder vectors, are left out or taken as magnitudes).
struct Trial {
    double seconds;
    int info;
    std::vector<double> comparable;
};

struct TimedRoutine {
    std::string_view name;       // the lower-case name, as the crossover list spells it
    std::string_view measureOf;  // the measure of an n-by-n problem, in words
    double (*measure)(int n);
    // The routine compares its measure with its crossover times this factor
    // (the eigenvalue drivers with jobz V, which the calibrator times, hold n
    // against twice their entry).
    int crossoverFactor;
    double tolerance;  // largest relative difference between the sides' results
    Trial (*run)(int n);
};

std::span<const TimedRoutine> timedRoutines();
const TimedRoutine* findTimedRoutine(std::string_view name);
std::vector<const TimedRoutine*> defaultTimedRoutines();
