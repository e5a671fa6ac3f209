#include "fortran_backend.h"

#include <cstdio>
#include <cstdlib>

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
// ILAENV), else the back end's.
static void bindHooks(void* hooks, void* backend) {
    using SetTargets = void (*)(void*, void*);
    const auto setTargets = reinterpret_cast<SetTargets>(platformFindSymbol(hooks, "lapackcpuSetHookTargets"));
    if (setTargets == nullptr) return;
    void* targets[2] = {};
    const char* const names[2] = {"xerbla_", "ilaenv_"};
    for (int k = 0; k < 2; ++k) {
        targets[k] = platformFindApplicationSymbol(names[k], linkLibraryMark, reinterpret_cast<void*>(&bindHooks));
        if (targets[k] == nullptr) targets[k] = platformFindSymbol(backend, names[k]);
    }
    setTargets(targets[0], targets[1]);
}

// OpenBLAS stops its worker threads before each fork, with a handler it registers
// with the C library it was loaded with; in the back end's namespace that is a
// private copy whose handlers the process's fork() never runs, and a child would
// wait for threads it does not have. The same function, registered here with the
// process's own C library, does it (the threads start again at the next call).
static void stopThreadsBeforeFork(void* backend) {
    const auto shutdown = reinterpret_cast<void (*)()>(platformFindSymbol(backend, "blas_thread_shutdown_"));
    if (shutdown != nullptr) platformCallAroundFork(shutdown, nullptr, nullptr);
}

static void* loadBackend() {
    void* hooks = nullptr;
    void* backend = platformLoadIsolatedLibraryWithHooks(backendPath(), hooksLibrary, &hooks);
    if (backend == nullptr) {
        std::fprintf(stderr, "lapackcpu: cannot load the BLAS/LAPACK back end '%s': %s\n", backendPath(),
                     platformLoadError());
        return nullptr;
    }
    if (hooks != nullptr) bindHooks(hooks, backend);
    stopThreadsBeforeFork(backend);
    return backend;
}

void* fortranSymbol(const char* name) {
    static void* const backend = loadBackend();  // thread-safe, once
    if (backend == nullptr) return nullptr;  // already reported by loadBackend
    void* function = platformFindSymbol(backend, name);
    if (function == nullptr) std::fprintf(stderr, "lapackcpu: back end lacks %s\n", name);
    return function;
}
