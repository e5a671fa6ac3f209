// Integer width: callers built with 64-bit integers (ILP64 mode) meet back ends
// with 32-bit integers in the caller's own memory. The low half of a 64-bit
// integer is, at the same address, a valid 32-bit integer, so inputs need nothing;
// outputs get their high half cleared, and integer arrays are packed to 32-bit
// elements before a back end runs and unpacked after it (ilp64/integer_packing.h,
// by the rows of ilp64/packing_table.inc).
#pragma once

#include <cstdint>
#include <cstring>

#include "core/link_state.h"
#include "ilp64/integer_packing.h"
#include "routing/call_words.h"

// In ILP64 mode, a 0 in the high half of an integer output, so that the caller
// reads the low half zero-extended.
inline void linkClearHighHalf(void* output) {
    if (linkState.ilp64) linkZeroHighHalf(output);
}

// Stores a 32-bit value in the low half of an integer output and clears its high
// half in ILP64 mode.
inline void linkStoreInteger(void* output, int32_t value) {
    std::memcpy(output, &value, sizeof value);
    linkClearHighHalf(output);
}

// Reads the low half of an integer output that a back end wrote and, in ILP64
// mode, clears its high half.
inline int32_t linkTakeInteger(void* output) {
    int32_t value;
    std::memcpy(&value, output, sizeof value);
    linkClearHighHalf(output);
    return value;
}
