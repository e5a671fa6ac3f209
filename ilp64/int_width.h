// Integer width: callers built with 64-bit integers (ILP64 mode) meet back ends
// with 32-bit integers in the caller's own memory. The low half of a 64-bit
// integer is, at the same address, a valid 32-bit integer, so inputs need nothing;
// outputs get their high half cleared, and integer arrays are packed to 32-bit
// elements before a back end runs and unpacked after it.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/link_state.h"
#include "routing/call_words.h"

// In ILP64 mode, a 0 in the high half of an integer output, so that the caller
// reads the low half zero-extended.
inline void linkClearHighHalf(void* output) {
    if (linkState.ilp64) {
        const int32_t zero = 0;
        std::memcpy(static_cast<char*>(output) + 4, &zero, sizeof zero);
    }
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

// A routine's integer data for ILP64 mode, recorded with its row: the integer
// arrays packed and unpacked around the back-end call, each with its word
// position and a length over the call's arguments, and the integer output
// scalars whose high half is cleared after the call.
template <int W, int32_t (*Length)(CallWords)> struct CountedArray {
    static constexpr int position = W;
};
template <int W> struct OutputScalar {
    static constexpr int position = W;
};
template <class... Items> struct IntegerData {};

// The packing steps of a routine: its integer arrays go to 32-bit elements in
// place before the first route decision and back to 64-bit elements at the
// common end. No routine has a packing row yet, so both steps do nothing.
template <class Routine>
inline void linkPackIntegerArrays(CallWords) {}

template <class Routine>
inline void linkUnpackIntegerArrays(CallWords) {}
