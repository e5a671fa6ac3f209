#include "core/startup.h"

#include <cstdlib>
#include <cstring>

#include "core/link_state.h"
#include "routing/crossover_table.h"
#include "vorn_lapack.h"

// The CPU library loaded when VORN_CPU_LIB is not set is the platform's
// (liblapackcpu.so, lapackcpu.dll); it must fit the path buffer.
static_assert(sizeof platformDefaultCpuLibrary <= cpuLibPathSize);

// A child forked while another thread holds initLock (a start-up under way) gets
// the lock held by a thread it does not have, and its first call would wait
// forever: the child creates the lock afresh, and runs any start-up left
// unfinished itself. The fork is not made to wait for the start-up instead: the
// GPU library's start-up may register fork handlers itself, which fork() would
// not let it do while it waits.
static void linkRenewLockInChild() { platformCreateLock(&linkState.initLock); }

// Creates initLock on first use. The lock cannot be created at load time (nothing
// runs then), so the first thread to claim it creates it while any other thread
// that arrives meanwhile spins until it is ready. The spin is a bare loop: it lasts
// only as long as one lock initialisation.
static void linkEnsureInitLock() {
    if (platformLoadAcquire(&linkState.lockReady)) return;
    if (platformCompareAndSwap(&linkState.lockClaimed, 0, 1) == 0) {
        platformCreateLock(&linkState.initLock);
        platformCallAroundFork(nullptr, nullptr, linkRenewLockInChild);
        platformStoreRelease(&linkState.lockReady, 1);
        return;
    }
    while (!platformLoadAcquire(&linkState.lockReady)) {
    }
}

// Once both start-ups are done, with the CPU library bound, the log off and
// 32-bit callers, a call has nothing to do besides its route and its back-end
// call: the frames test this one flag and take their short path. Called with
// initLock held, after each start-up.
static void linkUpdatePlainCalls() {
    const bool plain = linkState.gpuInitDone && linkState.cpuInitDone && linkState.cpuLibrary != nullptr &&
                       !linkState.verbose && !linkState.ilp64;
    platformStoreRelease(&linkState.plainCalls, plain ? 1 : 0);
}

// The only action at process end: the GPU library's shutdown, registered with
// atexit after a successful vornInitialize. The log stays open, the CPU library
// loaded and the lock alive.
static void linkShutdownGpu() { vornShutdown(); }

int32_t linkStartUp() {
    if (platformLoadAcquire(&linkState.gpuInitDone)) return 0;
    linkEnsureInitLock();
    platformEnterLock(&linkState.initLock);
    if (linkState.gpuInitDone) {  // another thread finished while this one waited
        platformLeaveLock(&linkState.initLock);
        return 0;
    }

    linkOpenLog();
    if (!linkState.routingRead) {
        linkReadRouting();
        linkState.routingRead = 1;
    }

    const int32_t status = vornInitialize();
    if (status != 0) {
        if (linkState.verbose) {
            linkWriteLine("vorn error: vornInitialize failed (%s)\n", vornGetStatusString(status));
            linkWriteLine("vorn info:  forwarding all calls to CPU\n");
        }
        linkState.gpuUnavailable = 1;
    } else {
        std::atexit(linkShutdownGpu);
    }

    // The crossovers are loaded whatever vornInitialize gave: the list file also
    // matters for the log, and a user reading it expects its lines.
    linkLoadCrossovers();

    // Last write of the start-up: a thread that sees it set sees all of the above.
    platformStoreRelease(&linkState.gpuInitDone, 1);
    linkUpdatePlainCalls();
    platformLeaveLock(&linkState.initLock);
    return status;
}

// The part of linkInitCpu that runs under initLock, once per process. Gives the
// result of the call that runs it; the failures return 0 themselves, so that only
// later calls write the "previous attempt" line.
static int32_t linkBindCpuLibrary() {
    linkOpenLog();
    if (!linkState.routingRead) {
        linkReadRouting();
        linkState.routingRead = 1;
    }

    // Both flags set make no sense together. They are looked at only here, once
    // per process, however they came to be set. A control call on another thread
    // may write them meanwhile.
    if (platformLoadRelaxed(&linkState.cpuAlways) && platformLoadRelaxed(&linkState.gpuAlways)) {
        linkWriteLine("vorn error: both VORN_CPU_ALWAYS and VORN_GPU_ALWAYS are set; ignoring both\n");
        platformStoreRelaxed(&linkState.cpuAlways, 0);
        platformStoreRelaxed(&linkState.gpuAlways, 0);
    }

    if (const char* path = std::getenv("VORN_CPU_LIB")) {
        if (std::strlen(path) >= cpuLibPathSize) {
            linkWriteLine("vorn error: Initialization failed, filename path is too long\n");
            return 0;
        }
        std::strncpy(linkState.cpuLibPath, path, cpuLibPathSize - 1);
    } else {
        std::memcpy(linkState.cpuLibPath, platformDefaultCpuLibrary, sizeof platformDefaultCpuLibrary);
    }
    if (linkState.verbose) linkWriteLine("vorn info:  CPU library is %s\n", linkState.cpuLibPath);

    linkState.cpuLibrary = platformLoadLibrary(linkState.cpuLibPath);
    if (linkState.cpuLibrary == nullptr) {
        linkWriteLine("vorn error: failed to read '%s'\n", linkState.cpuLibPath);
        return 0;
    }
    return 1;
}

int32_t linkBindCpu() {
    if (!platformLoadAcquire(&linkState.cpuInitDone)) {
        linkEnsureInitLock();
        platformEnterLock(&linkState.initLock);
        if (!linkState.cpuInitDone) {
            const int32_t bound = linkBindCpuLibrary();
            platformStoreRelease(&linkState.cpuInitDone, 1);
            linkUpdatePlainCalls();
            platformLeaveLock(&linkState.initLock);
            return bound;
        }
        platformLeaveLock(&linkState.initLock);
    }
    if (linkState.cpuLibrary != nullptr) return 1;
    linkWriteLine("vorn error: a previous attempt at initialization failed, cannot continue\n");
    return 0;
}

void* linkLookUpCpuFunction(CpuSlot& slot, const char* name) {
    void* function = platformFindSymbol(linkState.cpuLibrary, name);
    if (function == nullptr) {
        linkWriteLine("vorn error: Failed to read symbol '%s' from '%s'\n", name, linkState.cpuLibPath);
        return nullptr;
    }
    std::atomic_ref<void*>(slot.function).store(function, std::memory_order_relaxed);
    return function;
}
