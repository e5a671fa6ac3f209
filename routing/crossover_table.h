// Crossovers: for each routed routine, the measure from which the GPU side pays.
// A routine whose measure is below its entry runs on the CPU; -1 excludes the
// routine from the GPU. Each routed routine reads its own entry directly by name.
#pragma once

#include <cstdint>

inline constexpr int32_t crossoverNever = -1;

struct CrossoverTable {
    int32_t spotrf;
};

// Initialised data: the defaults are in place before the first call.
extern constinit CrossoverTable crossoverTable;

// Applies the user's crossover list at start-up, under initLock.
void linkLoadCrossovers();
