#include "fortran_backend.h"

#include <cstdio>
#include <cstdlib>

#include "core/platform.h"

// The back end's file: VORN_LAPACKCPU_BACKEND, else Debian's OpenBLAS.
static const char* backendPath() {
    const char* path = std::getenv("VORN_LAPACKCPU_BACKEND");
    return path != nullptr ? path : "libopenblas.so.0";
}

static void* loadBackend() {
    void* backend = platformLoadIsolatedLibrary(backendPath());
    if (backend == nullptr) {
        std::fprintf(stderr, "lapackcpu: cannot load the BLAS/LAPACK back end '%s': %s\n", backendPath(),
                     platformLoadError());
    }
    return backend;
}

void* fortranSymbol(const char* name) {
    static void* const backend = loadBackend();  // thread-safe, once
    if (backend == nullptr) return nullptr;  // already reported by loadBackend
    void* function = platformFindSymbol(backend, name);
    if (function == nullptr) std::fprintf(stderr, "lapackcpu: back end lacks %s\n", name);
    return function;
}
