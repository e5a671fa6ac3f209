#include "routing/crossover_table.h"

#include <cstring>

constinit CrossoverTable crossoverTable{
#define CROSSOVER(name, value) .name = value,
#include "routing/crossover_defaults.inc"
#undef CROSSOVER
};

int32_t* linkFindCrossover(const char* name) {
    for (const CrossoverName& pair : crossoverNames) {
        if (std::strcmp(pair.name, name) == 0) return &(crossoverTable.*pair.entry);
    }
    return nullptr;
}
