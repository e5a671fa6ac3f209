#include "fortran_backend.h"

#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

// The back end's file: VORN_LAPACKCPU_BACKEND, else Debian's OpenBLAS.
static const char* backendPath() {
    const char* path = std::getenv("VORN_LAPACKCPU_BACKEND");
    return path != nullptr ? path : "libopenblas.so.0";
}

// The namespace has a private copy of the C library, whose stdout is not flushed
// at exit: the back end's xerbla messages would be lost. Making that stream
// unbuffered sends each message to the process's standard output at once.
static void unbufferPrivateStdout(void* backend) {
    auto privateStdout = static_cast<FILE**>(dlsym(backend, "stdout"));
    using Setvbuf = int (*)(FILE*, char*, int, size_t);
    auto privateSetvbuf = reinterpret_cast<Setvbuf>(dlsym(backend, "setvbuf"));
    if (privateStdout != nullptr && privateSetvbuf != nullptr) {
        privateSetvbuf(*privateStdout, nullptr, _IONBF, 0);
    }
}

static void* loadBackend() {
    void* backend = dlmopen(LM_ID_NEWLM, backendPath(), RTLD_NOW | RTLD_LOCAL);
    if (backend == nullptr) {
        std::fprintf(stderr, "lapackcpu: cannot load the BLAS/LAPACK back end '%s': %s\n",
                     backendPath(), dlerror());
        return nullptr;
    }
    unbufferPrivateStdout(backend);
    return backend;
}

void* fortranSymbol(const char* name) {
    static void* const backend = loadBackend();  // thread-safe, once
    return backend != nullptr ? dlsym(backend, name) : nullptr;
}
