// The emulator GPU library: every routine computes through the CPU library, so
// results are right on either side. Its own environment variables make it
// misbehave on purpose, for tests:
//   VORN_EMU_INIT_STATUS=<status>    vornInitialize returns that status
//   VORN_EMU_INIT_DELAY_MS=<ms>      vornInitialize takes at least that long
//   VORN_EMU_STATUS=<routine>=<status>[:<info>],...
//                                    the routine (lower-case base, "spotrf")
//                                    returns that status, without touching its
//                                    arrays, and vornGetErrorInfo gives <info>
//   VORN_EMU_RANDOM_FAILURES=<percent>
//                                    that share of routine calls, drawn at random,
//                                    returns one of the failure statuses (1 to 6,
//                                    drawn at random too) without touching its
//                                    arrays; with VORN_EMU_RECORD each such call
//                                    adds "random failure <status>" after its line
//   VORN_EMU_RECORD=<file>           appends one line per call with the
//                                    by-value arguments: "vornSpotrf(U, 4, 0x..., 4)"
//   VORN_EMU_DELAY_US=<routine>=<microseconds>,...
//                                    the routine waits that long at each call
//                                    before it computes (a GPU of known cost
//                                    for the calibrator's tests)
//   VORN_EMU_CPU_LIB=<file>          the CPU library (default liblapackcpu.so, lapackcpu.dll on Windows)
#pragma once

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include "routing/fixed_string.h"
#include "vorn_lapack.h"

// Status of a routine that the environment forces, if any.
struct ForcedStatus {
    bool forced;
    int status;
    int info;
};
ForcedStatus emulatorForcedStatus(const char* routine);

// Waits as long as VORN_EMU_DELAY_US asks for the routine.
void emulatorPace(const char* routine);

// Exported by the emulator alone, so that a program can tell it from a real GPU
// library (dlsym finds it in the process only where the emulator is loaded). The
// link library never calls it.
extern "C" VORN_API const char* vornEmulatorDescription(void);

// A failure status drawn for this call when VORN_EMU_RANDOM_FAILURES asks for
// one, else 0.
int emulatorRandomFailure();

// Appends a line to the record file when VORN_EMU_RECORD is set.
[[gnu::format(printf, 1, 2)]] void emulatorRecord(const char* format, ...);

// Whether VORN_EMU_RECORD is set: read at every call, as a process may set it
// between calls.
bool emulatorRecording();

// 0 when routines can run: vornInitialize succeeded. Else the status a routine
// gives: not initialised, or the CPU library missing.
int emulatorReadiness();

// The CPU library's function for a routine, or null.
void* emulatorCpuFunction(const char* routine);

// Turns a LAPACK info into a status, and keeps it for vornGetErrorInfo.
int emulatorAnswer(int info);
void emulatorSetErrorInfo(int info);

// Formats one by-value argument for the record.
inline int recordArgument(char* out, std::size_t size, char v) { return std::snprintf(out, size, "%c", v); }
inline int recordArgument(char* out, std::size_t size, int v) { return std::snprintf(out, size, "%d", v); }
inline int recordArgument(char* out, std::size_t size, double v) { return std::snprintf(out, size, "%.17g", v); }
inline int recordArgument(char* out, std::size_t size, float v) { return std::snprintf(out, size, "%.9g", double(v)); }
inline int recordArgument(char* out, std::size_t size, vornFloatComplex v) {
    return std::snprintf(out, size, "(%.9g,%.9g)", double(v.re), double(v.im));
}
inline int recordArgument(char* out, std::size_t size, vornDoubleComplex v) {
    return std::snprintf(out, size, "(%.17g,%.17g)", v.re, v.im);
}
inline int recordArgument(char* out, std::size_t size, const void* v) { return std::snprintf(out, size, "%p", v); }

// Formatting the arguments costs more than a small routine's work: without a
// record file nothing is formatted.
template <class... Args>
void emulatorRecordCall(const char* gpuName, Args... args) {
    if (!emulatorRecording()) return;
    char line[512];
    std::size_t used = std::snprintf(line, sizeof line, "%s(", gpuName);
    const char* separator = "";
    auto add = [&](auto value) {
        used += std::snprintf(line + used, sizeof line - used, "%s", separator);
        used += recordArgument(line + used, sizeof line - used, value);
        separator = ", ";
    };
    (add(args), ...);
    emulatorRecord("%s)", line);
}

// What the CPU routine gets for one argument of a GPU function: an array as it
// is, a by-value argument by its address.
template <class Arg>
void* emulatorAddress(Arg& value) {
    if constexpr (std::is_pointer_v<Arg>) {
        return const_cast<void*>(static_cast<const void*>(value));
    } else {
        return &value;
    }
}

// Common start of every emulated routine: record, forced status, readiness.
// Gives true and sets status when the routine must return at once.
template <FixedString Routine, class... Args>
bool emulatorAnswersEarly(int& status, const char* gpuName, Args... args) {
    emulatorRecordCall(gpuName, args...);
    const ForcedStatus forced = emulatorForcedStatus(Routine.c_str());
    if (forced.forced) {
        emulatorSetErrorInfo(forced.info);
        status = forced.status;
        return true;
    }
    status = emulatorRandomFailure();
    if (status != 0) return true;
    emulatorPace(Routine.c_str());
    status = emulatorReadiness();
    return status != 0;
}

// A routine without info (the BLAS routines): the CPU routine of the same name
// with the addresses of the by-value arguments and the arrays as they are.
template <FixedString Routine, class... Args>
int emulate(const char* gpuName, Args... args) {
    int status;
    if (emulatorAnswersEarly<Routine>(status, gpuName, args...)) return status;
    void* function = emulatorCpuFunction(Routine.c_str());
    if (function == nullptr) return VORN_STATUS_NOT_AVAILABLE;
    using Function = void (*)(decltype((void)args, (void*)nullptr)...);
    reinterpret_cast<Function>(function)(emulatorAddress(args)...);
    return VORN_STATUS_SUCCESS;
}

inline double realPart(float v) { return v; }
inline double realPart(double v) { return v; }
inline double realPart(vornFloatComplex v) { return v.re; }
inline double realPart(vornDoubleComplex v) { return v.re; }

// The sum of a call's by-value integer arguments, negative ones counting 0.
template <class... Args>
long long integerArgumentSum(Args... args) {
    long long sum = 0;
    auto add = [&](auto value) {
        if constexpr (std::is_same_v<decltype(value), int>) sum += std::max(value, 0);
    };
    (add(args), ...);
    return sum;
}

// Calls a CPU routine with Count words.
template <std::size_t... I>
void emulatorCallWords(void* function, void* const* words, std::index_sequence<I...>) {
    using Function = void (*)(decltype((void)I, (void*)nullptr)...);
    reinterpret_cast<Function>(function)(words[I]...);
}

// A routine with info: the CPU routine of the same name with the addresses of the
// by-value arguments, the arrays as they are, then what the GPU interface leaves
// out between them and info (Tail, empty for most), then the address of a local
// info that becomes the status. Tail names them, in order:
//   W  work of the element type, then lwork: the emulator asks the CPU routine
//      for the optimal size (lwork = -1) and brings its own. It brings at least
//      the sum of the integer arguments, which holds every such routine's
//      smallest accepted lwork (n for getri, max(1, n) for geqlf, m + n + p for
//      gglse, ...): some CPU routines answer a query below their own minimum
//      where a dimension is 0 (OpenBLAS 0.3.21's geqlf with m = 0 answers 1 and
//      then wants n, its cunmlq with k = 0 the same), and would refuse the call.
//   r  a real array of 8N elements (rwork of heev or gesvd, work of steqr...);
//   R  a real array of 5N^2 + 8N elements (rwork of cgesdd and zgesdd);
//   i  an integer array of 8N elements (iwork, ifail);
// where N is the largest integer argument of the call, at least 1. A leading -
// says that the GPU function's last argument (the caller's work of syevx and
// heevx, whose size the emulator does not know) is not passed on.
template <FixedString Routine, class T, FixedString Tail, class... Args>
int emulateWithTail(const char* gpuName, Args... args) {
    int status;
    if (emulatorAnswersEarly<Routine>(status, gpuName, args...)) return status;
    void* function = emulatorCpuFunction(Routine.c_str());
    if (function == nullptr) return VORN_STATUS_NOT_AVAILABLE;

    constexpr std::string_view tail = Tail.c_str();
    // count rather than find: gcc 12 cannot evaluate string_view::find at compile
    // time under -fsanitize=undefined.
    constexpr std::size_t dropped = tail.starts_with('-') ? 1 : 0, withWork = std::ranges::count(tail, 'W');
    constexpr std::size_t count = sizeof...(Args) - dropped + tail.size() - dropped + withWork + 1;
    void* const given[] = {emulatorAddress(args)...};
    void* words[count];
    std::size_t next = 0;
    for (; next < sizeof...(Args) - dropped; ++next) words[next] = given[next];

    long long largest = 1;
    auto consider = [&](auto value) {
        if constexpr (std::is_same_v<decltype(value), int>) largest = std::max<long long>(largest, value);
    };
    (consider(args), ...);
    using Real = decltype(realPart(T{}));  // double: ample for float arrays too
    std::vector<std::vector<Real>> arrays;
    arrays.reserve(tail.size());
    std::size_t workWord = 0;
    T size{};
    int lwork = -1, info = 0;
    for (char item : tail.substr(dropped)) {
        if (item == 'W') {
            workWord = next;
            words[next++] = &size;
            words[next++] = &lwork;
            continue;
        }
        const long long elements = item == 'R' ? 5 * largest * largest + 8 * largest : 8 * largest;
        words[next++] = arrays.emplace_back(static_cast<std::size_t>(elements)).data();
    }
    words[next] = &info;
    auto call = [&] { emulatorCallWords(function, words, std::make_index_sequence<count>{}); };
    std::vector<T> work;
    if constexpr (withWork != 0) {
        // A query with an illegal argument is the answer: the CPU routine has
        // reported it (through its xerbla) once, and the call would again.
        call();
        if (info != 0) return emulatorAnswer(info);
        const long long length = std::max({1LL, static_cast<long long>(realPart(size)), integerArgumentSum(args...)});
        work.resize(static_cast<std::size_t>(std::min<long long>(length, std::numeric_limits<int>::max())));
        words[workWord] = work.data();
        lwork = static_cast<int>(work.size());
    }
    call();
    return emulatorAnswer(info);
}

// dsgesv and zcgesv: the single-precision workspace (and zcgesv's rwork) and
// iter are the emulator's own.
template <FixedString Routine, class T>
int emulateMixedGesv(const char* gpuName, int n, int nrhs, T* a, int lda, int* ipiv, const T* b, int ldb, T* x,
                     int ldx, T* work) {
    int status;
    if (emulatorAnswersEarly<Routine>(status, gpuName, n, nrhs, static_cast<const void*>(a), lda,
                                      static_cast<const void*>(ipiv), static_cast<const void*>(b), ldb,
                                      static_cast<const void*>(x), ldx, static_cast<const void*>(work))) {
        return status;
    }
    void* function = emulatorCpuFunction(Routine.c_str());
    if (function == nullptr) return VORN_STATUS_NOT_AVAILABLE;
    using Single = std::conditional_t<std::is_same_v<T, double>, float, vornFloatComplex>;
    std::vector<Single> swork(static_cast<std::size_t>(std::max(n, 0)) * std::max(n + nrhs, 0) + 1);
    std::vector<double> rwork(std::max(n, 1));
    int iter = 0, info = 0;
    if constexpr (std::is_same_v<T, double>) {
        using Dsgesv = void (*)(const int*, const int*, T*, const int*, int*, const T*, const int*, T*, const int*,
                                T*, Single*, int*, int*);
        reinterpret_cast<Dsgesv>(function)(&n, &nrhs, a, &lda, ipiv, b, &ldb, x, &ldx, work, swork.data(), &iter,
                                           &info);
    } else {
        using Zcgesv = void (*)(const int*, const int*, T*, const int*, int*, const T*, const int*, T*, const int*,
                                T*, Single*, double*, int*, int*);
        reinterpret_cast<Zcgesv>(function)(&n, &nrhs, a, &lda, ipiv, b, &ldb, x, &ldx, work, swork.data(),
                                           rwork.data(), &iter, &info);
    }
    return emulatorAnswer(info);
}
