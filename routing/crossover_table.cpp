#include "routing/crossover_table.h"

constinit CrossoverTable crossoverTable{
    .spotrf = 1024,
};

void linkLoadCrossovers() {}
