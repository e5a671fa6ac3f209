// The routine list and the classes its routines fall into, with the counts the
// design states checked at compile time. Every base is exactly one of: routed
// (runs on either side), logged CPU-only, forwarded, or lsame; the export list
// generator checks that partition name by name when it runs in the build.
#pragma once

#include "routing/crossover_table.h"

namespace routine_classes {

inline constexpr const char* routineList[] = {
#define ROUTINE(name) #name,
#include "exports/routine_list.inc"
#undef ROUTINE
};

inline constexpr const char* forwardedRoutines[] = {
#define FORWARDED(name, words, info) #name,
#include "routines/cpu/forwarded_routines.inc"
#undef FORWARDED
};

inline constexpr const char* loggedRoutines[] = {
#define LOGGED(name, ...) #name,
#include "routines/cpu/logged_routines.inc"
#undef LOGGED
};

// Six crossover entries belong to no routed routine; every other entry names one.
inline constexpr const char* crossoversWithoutRoutine[] = {"cherdb", "zherdb", "ssyrdb",
                                                           "dsyrdb", "csymv",  "zsymv"};

inline constexpr int routineCount = sizeof routineList / sizeof routineList[0];
inline constexpr int forwardedCount = sizeof forwardedRoutines / sizeof forwardedRoutines[0];
inline constexpr int loggedCount = sizeof loggedRoutines / sizeof loggedRoutines[0];
inline constexpr int routedCount = crossoverCount - 6;
inline constexpr int controlCallCount = 4;
inline constexpr int exportedNameCount = 4 * routineCount + controlCallCount;

static_assert(routineCount == 1664);
static_assert(routedCount == 198);
static_assert(loggedCount == 48);
static_assert(forwardedCount == 1417);
static_assert(routedCount + loggedCount + forwardedCount + 1 == routineCount);  // + lsame
static_assert(exportedNameCount == 6660);

}  // namespace routine_classes
