// Crossovers: for each routed routine, the measure from which the GPU side pays.
// A routine whose measure is below its entry runs on the CPU; -1 excludes the
// routine from the GPU. Each routed routine reads its own entry directly by name;
// names matter only to the crossover list file.
#pragma once

#include <cstdint>

inline constexpr int32_t crossoverNever = -1;

struct CrossoverTable {
#define CROSSOVER(name, value) int32_t name;
#include "routing/crossover_defaults.inc"
#undef CROSSOVER
};

// Initialised data: the defaults are in place before the first call and are
// never computed.
extern constinit CrossoverTable crossoverTable;

// The pairing of names and entries, in the order of the defaults.
struct CrossoverName {
    const char* name;
    int32_t CrossoverTable::*entry;
};
inline constexpr CrossoverName crossoverNames[] = {
#define CROSSOVER(name, value) {#name, &CrossoverTable::name},
#include "routing/crossover_defaults.inc"
#undef CROSSOVER
};
inline constexpr int crossoverCount = sizeof crossoverNames / sizeof crossoverNames[0];
static_assert(crossoverCount == 204);

// The entry of a name, compared whole and case-sensitively; null for none.
int32_t* linkFindCrossover(const char* name);

// Applies the crossover list file named by VORN_CROSSOVER_LIST, if any. Runs once,
// in the start-up, under initLock, after vornInitialize.
void linkLoadCrossovers();
