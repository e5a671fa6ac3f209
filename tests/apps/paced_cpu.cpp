// A CPU library of known cost for the calibrator's test: dpotrf waits
// PACED_CPU_US_PER_N microseconds for each unit of n, dgemm nothing extra; both
// then run in the real CPU library.
#include <chrono>
#include <cstdlib>
#include <dlfcn.h>
#include <thread>

#include "exports/words.h"

template <class Function>
static Function cpuRoutine(const char* name) {
    static void* library = dlopen(VORN_TEST_LAPACKCPU, RTLD_NOW | RTLD_LOCAL);
    return reinterpret_cast<Function>(dlsym(library, name));
}

extern "C" {
VORN_EXPORT void dpotrf(VORN_WORDS_5) {
    const char* perN = std::getenv("PACED_CPU_US_PER_N");
    const long n = *static_cast<const int*>(w2);
    std::this_thread::sleep_for(std::chrono::microseconds(n * (perN != nullptr ? std::atol(perN) : 0)));
    cpuRoutine<void (*)(VORN_WORDS_5)>("dpotrf")(VORN_ARGS_5);
}
VORN_EXPORT void dgemm(VORN_WORDS_13) { cpuRoutine<void (*)(VORN_WORDS_13)>("dgemm")(VORN_ARGS_13); }
}
