// The platform layer: loading a shared library, finding a symbol in it, the one
// recursive lock, and the atomic operations on the start-up flags. One source file
// per operating system implements it; nothing else in the library includes the
// system headers behind it.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>

// Storage for the platform's recursive lock: a pthread mutex on Linux, a critical
// section on Windows (40 bytes each on x86-64). Each platform file checks that its
// lock fits. The storage is plain bytes so that it can sit in constant-initialised
// state and be set up lazily.
struct PlatformLock {
    alignas(16) unsigned char storage[48];
};

// The CPU library's file name when VORN_CPU_LIB is not set: the platform's own
// spelling of a shared library, found by the loader's usual search.
#if defined(_WIN32)
inline constexpr char platformDefaultCpuLibrary[] = "lapackcpu.dll";
#else
inline constexpr char platformDefaultCpuLibrary[] = "liblapackcpu.so";
#endif

// Loads a shared library by name and gives its handle, or null when it cannot be
// loaded. An empty name always fails (some loaders answer it with the main program).
void* platformLoadLibrary(const char* name);

// Loads a shared library so that its own references never resolve to another
// module's symbols, whatever the process has loaded already, and gives its handle,
// or null. For the CPU library's BLAS: its internal calls must not reach the link
// library's exports of the same names. Messages the library prints to its
// standard output reach the process's standard output unbuffered.
void* platformLoadIsolatedLibrary(const char* name);

// The same, with the library `hooks` (when it loads) placed where the library's
// references find it before the library's own definitions: its exported names
// then serve the library's calls of them. Gives the hooks' handle in *hooksHandle,
// null when they could not be loaded (the library's own names serve then). On
// Windows the hooks are not loaded: each DLL binds its own imports.
void* platformLoadIsolatedLibraryWithHooks(const char* name, const char* hooks, void** hooksHandle);

// The definition of `name` that the application's own references reach (the
// first in the process's global lookup order), or null when there is none, when
// it lies in the module that also defines `excludedModuleMark` (the link library,
// by one of its control calls), or in the module holding `self`.
void* platformFindApplicationSymbol(const char* name, const char* excludedModuleMark, const void* self);

// Runs prepare in the thread that calls fork() just before it forks, and parent or
// child after it, in the process's own fork handling. Any may be null. No effect on
// Windows, which has no fork.
void platformCallAroundFork(void (*prepare)(), void (*parent)(), void (*child)());

// Why the last load on this thread failed.
const char* platformLoadError();

// Gives the address of a symbol of a loaded library, or null.
void* platformFindSymbol(void* library, const char* name);

// The recursive lock. Create runs once, before the first Enter.
void platformCreateLock(PlatformLock* lock);
void platformEnterLock(PlatformLock* lock);
void platformLeaveLock(PlatformLock* lock);

// The atomics are the standard library's on every platform, and inline: the
// acquire load of a start-up flag is on every call's path.

// Atomically: if *target equals expected, store desired. Gives the old value.
inline int32_t platformCompareAndSwap(int32_t* target, int32_t expected, int32_t desired) {
    std::atomic_ref<int32_t>(*target).compare_exchange_strong(expected, desired, std::memory_order_acq_rel);
    return expected;  // compare_exchange leaves the old value here
}

// Publication of the start-up flags: a store with release order and a load with
// acquire order, so that a thread that sees a flag set also sees all that was
// written before it.
inline void platformStoreRelease(int32_t* flag, int32_t value) {
    std::atomic_ref<int32_t>(*flag).store(value, std::memory_order_release);
}
inline int32_t platformLoadAcquire(const int32_t* flag) {
    return std::atomic_ref<int32_t>(*const_cast<int32_t*>(flag)).load(std::memory_order_acquire);
}

// Settings that the control calls change while other threads route calls: a
// whole store and a whole load, with no order to other memory (a plain move on
// x86-64), so that a concurrent read sees the old or the new value.
inline void platformStoreRelaxed(int32_t* flag, int32_t value) {
    std::atomic_ref<int32_t>(*flag).store(value, std::memory_order_relaxed);
}
inline int32_t platformLoadRelaxed(const int32_t* flag) {
    return std::atomic_ref<int32_t>(*const_cast<int32_t*>(flag)).load(std::memory_order_relaxed);
}

// Reads one line of a text file as fgets does, at most size - 1 bytes up to and
// including the newline, and terminates it. A CR LF line end reads as a newline,
// as text mode gives it on Windows. Gives null when nothing could be read.
char* platformReadTextLine(char* buffer, int size, FILE* stream);

// strtol in base 0, with the result of a platform whose long is 32 bits: a value
// beyond the signed 32-bit range gives 2147483647 or -2147483648.
int32_t platformParseLong(const char* text);
