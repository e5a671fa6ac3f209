// libFuzzer target for the crossover list reader: arbitrary bytes as a list file,
// with info lines on so that every formatting path runs. Each input starts from
// the table's defaults.
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "core/link_state.h"
#include "routing/crossover_list.h"
#include "routing/crossover_table.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const CrossoverTable defaults = crossoverTable;
    static FILE* const devNull = std::fopen("/dev/null", "w");
    // fmemopen refuses an empty buffer; in mode "r" it never writes to the input.
    FILE* list = size == 0 ? nullptr : fmemopen(const_cast<uint8_t*>(data), size, "r");
    if (list == nullptr) return 0;
    linkState.logStream = devNull;
    linkState.verbose = 1;
    linkApplyCrossoverList(list);
    std::fclose(list);
    crossoverTable = defaults;
    return 0;
}
