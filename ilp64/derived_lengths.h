// The arithmetic of the packing lengths (ilp64/packing_table.inc): signed 32-bit
// values whose sums and products wrap, / truncating towards 0, and the tree-level
// terms of the divide-and-conquer routines, worked out from the arguments with
// integer arithmetic alone.
#pragma once

#include <cstdint>

#include "routing/call_words.h"

// A length in the making. Written like int in the table's expressions
// (3 * blvl(n) * n, max(liwork, 1)), but every operation wraps at 32 bits, as the
// 32-bit back ends would compute it.
struct Int32 {
    int32_t value;
    constexpr Int32(int32_t v) : value(v) {}  // NOLINT: literals mix with arguments
};

constexpr Int32 operator+(Int32 a, Int32 b) { return add32(a.value, b.value); }
constexpr Int32 operator-(Int32 a, Int32 b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a.value) - static_cast<uint32_t>(b.value));
}
constexpr Int32 operator*(Int32 a, Int32 b) { return multiply32(a.value, b.value); }
// A divisor of 0 gives 0, and so does any length built on it: a routine called with
// such an argument rejects it itself, and the step packs nothing rather than
// stopping the process. The one quotient that overflows wraps like a product.
constexpr Int32 operator/(Int32 a, Int32 b) {
    if (b.value == 0) return 0;
    if (b.value == -1) return Int32(0) - a;
    return a.value / b.value;
}
constexpr bool operator==(Int32 a, Int32 b) { return a.value == b.value; }
constexpr bool operator<(Int32 a, Int32 b) { return a.value < b.value; }
constexpr bool operator>(Int32 a, Int32 b) { return a.value > b.value; }
constexpr Int32 max(Int32 a, Int32 b) { return a.value < b.value ? b : a; }
constexpr Int32 min(Int32 a, Int32 b) { return a.value < b.value ? a : b; }
constexpr Int32 abs(Int32 a) { return a.value < 0 ? Int32(0) - a : a; }

// The position of the highest set bit, in five fixed steps: each tests a mask and
// shifts by its width arithmetically. 0 and 1 give 0; every negative value gives 31.
constexpr int32_t linkFloorLog2(int32_t value) {
    struct Step {
        uint32_t mask;
        int shift;
    };
    constexpr Step steps[] = {{0xFFFF0000u, 16}, {0x0000FF00u, 8}, {0x000000F0u, 4}, {0x0000000Cu, 2}, {0x00000002u, 1}};
    int32_t result = 0;
    for (const Step& step : steps) {
        if (static_cast<uint32_t>(value) & step.mask) {
            value >>= step.shift;
            result |= step.shift;
        }
    }
    return result;
}
constexpr Int32 floorLog2(Int32 a) { return linkFloorLog2(a.value); }

// The depth terms, named as the packing table names them. 26 stands for the fixed
// leaf size of bdsdc and gelsd, which have no smlsiz argument.
constexpr Int32 L(Int32 n) { return floorLog2(n) * n; }
constexpr Int32 NLVL(Int32 n, Int32 smlsiz) { return floorLog2(n / (smlsiz + 1)) + 1; }
constexpr Int32 TLVL(Int32 n, Int32 smlsiz) { return floorLog2(n / smlsiz); }
constexpr Int32 BLVL(Int32 n) { return floorLog2(n / 26) + 1; }
constexpr Int32 LIW(Int32 m, Int32 n) {
    const Int32 smaller = min(m, n);
    const Int32 glvl = max(0, floorLog2(smaller / 26) + 1);
    return max(1, 3 * glvl * smaller + 11 * smaller);
}
