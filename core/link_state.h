// The process-wide state of the link library, the settings read from the
// environment, and the log.
#pragma once

#include <cstdint>
#include <cstdio>

#include "core/platform.h"

// The CPU library's file name is kept in a buffer of this size; a longer
// VORN_CPU_LIB is refused. Byte 259 is never written, so the name stays terminated.
inline constexpr int cpuLibPathSize = 260;

struct LinkState {
    FILE* logStream;                    // where every log line goes
    char cpuLibPath[cpuLibPathSize];    // the CPU library's file name
    int32_t verbose;                    // 1: info lines are written
    int32_t ilp64;                      // 1: callers pass 64-bit integers
    int32_t gpuUnavailable;             // 1: vornInitialize failed; all calls go to the CPU
    int32_t cpuAlways;                  // 1: routed routines go to the CPU
    int32_t gpuAlways;                  // 1: routed routines go to the GPU whatever their measure
    int32_t lockClaimed;                // 1 once a thread has taken on creating initLock
    int32_t lockReady;                  // 1 once initLock can be entered
    int32_t logOpened;                  // 1: linkOpenLog has done its work
    int32_t routingRead;                // 1: linkReadRouting has done its work
    int32_t gpuInitDone;                // 1: GPU start-up complete (published with release order)
    int32_t cpuInitDone;                // 1: CPU library binding attempted (published with release order)
    int32_t plainCalls;                 // 1: both start-ups done, CPU library bound, log off, 32-bit
                                        //    callers: the frames' short path (published with release order)
    void* cpuLibrary;                   // the CPU library; null when the attempt failed
    PlatformLock initLock;              // guards all one-time work; created lazily, never deleted
};

// Zero-initialised data: loading the library runs nothing.
extern constinit LinkState linkState;

// Opens the log once: stdout, or the file named by VORN_DEBUG_LOG; reads VORN_VERBOSE.
// Called with initLock held.
void linkOpenLog();

// Reads VORN_CPU_ALWAYS, VORN_GPU_ALWAYS and VORN_ILP64. Called with initLock held;
// callers test and set routingRead around it.
void linkReadRouting();

// Writes one formatted line to the log. Each place that logs formats its own line,
// prefix and newline included, and guards info lines with a test of verbose, so
// that nothing is formatted when verbose is off.
[[gnu::format(printf, 1, 2)]] void linkWriteLine(const char* format, ...);

// "vorn info:  info returned as N", when verbose is set and N is not 0.
inline void linkLogInfoReturned(int32_t value) {
    if (linkState.verbose && value != 0) linkWriteLine("vorn info:  info returned as %d\n", value);
}
