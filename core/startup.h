// The one-time start-up of both back ends, and the per-routine cache of CPU
// library functions.
#pragma once

#include <cstdint>

#include "core/link_state.h"

// The start-up of the whole library, run by the first exported call of the
// process from whichever thread: lock, log, routing settings, vornInitialize, the
// shutdown handler, the crossovers. Gives vornInitialize's status in the call that
// ran the start-up and 0 in every other call; no caller looks at it. After start-up
// it costs one acquire load and one test, inline.
int32_t linkStartUp();
inline int32_t linkInitGpu() {
    if (platformLoadAcquire(&linkState.gpuInitDone)) return 0;
    return linkStartUp();
}

// Binds the CPU library the first time a routine needs the CPU side. Gives 1 when
// the library is loaded, 0 when it is not (then the caller returns at once).
// Once bound, two tests inline.
int32_t linkBindCpu();
inline int32_t linkInitCpu() {
    if (platformLoadAcquire(&linkState.cpuInitDone) && linkState.cpuLibrary != nullptr) return 1;
    return linkBindCpu();
}

// One cell per routine that can reach the CPU library: the routine's function in
// the CPU library, null until a look-up found it. All spellings of a routine share
// one slot. Read and written without a lock, as whole loads and stores without
// order: concurrent look-ups store the same value.
struct CpuSlot {
    void* function;
};

// Gives the CPU library's function for a routine, looking it up on first use.
// When the library lacks it, writes the "Failed to read symbol" line (whatever
// verbose says) and gives null; the slot stays empty, so the next call of the
// routine looks again. Only call after linkInitCpu gave 1.
void* linkLookUpCpuFunction(CpuSlot& slot, const char* name);
inline void* linkCachedCpuFunction(CpuSlot& slot) {
    return std::atomic_ref<void*>(slot.function).load(std::memory_order_relaxed);
}
inline void* linkCpuFunction(CpuSlot& slot, const char* name) {
    void* function = linkCachedCpuFunction(slot);
    return function != nullptr ? function : linkLookUpCpuFunction(slot, name);
}

// The routine's CPU function when a call may take the frames' short path (see
// plainCalls), else null.
template <class Routine>
inline void* linkShortPathFunction() {
    return platformLoadAcquire(&linkState.plainCalls) ? linkCachedCpuFunction(Routine::cpuSlot) : nullptr;
}
