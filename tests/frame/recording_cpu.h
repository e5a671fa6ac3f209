// A CPU library for the frame tests: it exports the test rows' lower-case names in
// the word convention, records the words of each call and writes back what the
// test asked for.
#pragma once

#include <cstdint>

struct CpuRecord {
    int wordCount;          // the last call's word count
    void* words[16];        // the words it received
    int32_t info;           // written to the low half of *info
    int32_t infoHigh;       // when not 0, written to the high half of *info too
    double work;            // written to work[0], in the routine's precision
    int32_t iwork;          // written to iwork[0]
};

extern "C" __attribute__((visibility("default"))) CpuRecord* recordingCpu();
