// A CPU library for the forwarded and logged routines' tests: it exports every one
// of their lower-case names in the word convention, records the words of each
// call and leaves behind what the test asked for.
#pragma once

#include <cstdint>

struct ForwardedCpuRecord {
    int calls;         // calls of any routine so far
    char routine[32];  // the name of the last routine called
    int wordCount;     // its word count
    void* words[32];   // the words it received
    int32_t info;      // written to the low half of *info, for routines with info
    uint64_t result;   // the bits a function returns, in its result's width
};

// What the routine writes to element 1 of its k-th work line (from 0): a real,
// in the routine's own precision, or a 32-bit integer.
inline constexpr double realWorkAnswer(int k) { return -(10.0 * k + 2.75); }
inline constexpr int32_t integerWorkAnswer(int k) { return 1000 + k; }

using RecordingForwardedCpu = ForwardedCpuRecord* (*)();
