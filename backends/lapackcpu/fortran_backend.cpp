#include "fortran_backend.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "core/platform.h"

// The back end's file: VORN_LAPACKCPU_BACKEND, else Debian's OpenBLAS.
static const char* backendPath() {
    const char* path = std::getenv("VORN_LAPACKCPU_BACKEND");
    return path != nullptr ? path : "libopenblas.so.0";
}

// The library loaded ahead of the back end that takes its calls of xerbla_ and
// ilaenv_ (application_hooks.cpp), found beside this library.
static constexpr char hooksLibrary[] = "liblapackcpu_hooks.so";

// A name that only the link library defines: a definition of xerbla_ or ilaenv_ in
// the same module is the link library's export, which leads back here.
static constexpr char linkLibraryMark[] = "vornLinkSetCpuAlways";

// Where the back end's xerbla_ and ilaenv_ calls go: the application's own
// definition where it has one (a Fortran program's XERBLA, a test program's
// ILAENV), with its integers 64 bits wide under VORN_ILP64=1 (the switch the
// link library reads); else the back end's own.
static void bindHooks(void* hooks, void* backend) {
    using SetTargets = void (*)(void*, bool, void*, bool);
    const auto setTargets = reinterpret_cast<SetTargets>(platformFindSymbol(hooks, "lapackcpuSetHookTargets"));
    if (setTargets == nullptr) return;
    const char* ilp64 = std::getenv("VORN_ILP64");
    const bool wideApplication = ilp64 != nullptr && std::strcmp(ilp64, "1") == 0;
    void* targets[2] = {};
    bool wide[2] = {};
    const char* const names[2] = {"xerbla_", "ilaenv_"};
    for (int k = 0; k < 2; ++k) {
        targets[k] = platformFindApplicationSymbol(names[k], linkLibraryMark, reinterpret_cast<void*>(&bindHooks));
        wide[k] = targets[k] != nullptr && wideApplication;
        if (targets[k] == nullptr) targets[k] = platformFindSymbol(backend, names[k]);
    }
    setTargets(targets[0], wide[0], targets[1], wide[1]);
}

// A fork() must not copy a back end half loaded by another thread (the child
// would wait for that load forever), and OpenBLAS must stop its worker threads
// before each fork: it registers that with the C library it was loaded with, in
// the back end's namespace a private copy whose fork handlers the process's
// fork() never runs, so a child would hand work to threads it does not have.
// Both are done here, in the process's own fork handling: the thread that forks
// waits for a load under way and then stops OpenBLAS's threads with OpenBLAS's
// own function (they start again at its next call). The handlers are
// registered before the first load, never under loadLock: fork() holds the C
// library's handler lock while it runs them.
static constinit std::mutex loadLock;
static constinit std::atomic<int> loadDone{0};      // 1 once loadedHandle is set (release order)
static constinit std::atomic<int> forkHandlers{0};  // 0 none, 1 being registered, 2 registered
static void* loadedHandle = nullptr;
static void (*stopThreads)() = nullptr;  // OpenBLAS's blas_thread_shutdown_, once loaded

static void lockBeforeFork() {
    loadLock.lock();
    if (stopThreads != nullptr) stopThreads();
}
static void unlockAfterFork() { loadLock.unlock(); }

static void* loadBackend() {
    void* hooks = nullptr;
    void* loaded = platformLoadIsolatedLibraryWithHooks(backendPath(), hooksLibrary, &hooks);
    if (loaded == nullptr) {
        std::fprintf(stderr, "lapackcpu: cannot load the BLAS/LAPACK back end '%s': %s\n", backendPath(),
                     platformLoadError());
        return nullptr;
    }
    if (hooks != nullptr) bindHooks(hooks, loaded);
    stopThreads = reinterpret_cast<void (*)()>(platformFindSymbol(loaded, "blas_thread_shutdown_"));
    return loaded;
}

static void* loadedBackend() {
    if (loadDone.load(std::memory_order_acquire)) return loadedHandle;
    int none = 0;
    if (forkHandlers.compare_exchange_strong(none, 1)) {
        platformCallAroundFork(lockBeforeFork, unlockAfterFork, unlockAfterFork);
        forkHandlers.store(2, std::memory_order_release);
    }
    while (forkHandlers.load(std::memory_order_acquire) != 2) {
    }
    const std::lock_guard hold(loadLock);
    if (!loadDone.load(std::memory_order_relaxed)) {
        loadedHandle = loadBackend();
        loadDone.store(1, std::memory_order_release);
    }
    return loadedHandle;
}

void* fortranSymbol(const char* name) {
    void* backend = loadedBackend();
    if (backend == nullptr) return nullptr;  // already reported by loadBackend
    void* function = platformFindSymbol(backend, name);
    if (function == nullptr) std::fprintf(stderr, "lapackcpu: back end lacks %s\n", name);
    return function;
}
