// The stand-in's model of a GPU, shared by its run-time, cuBLAS and cuSOLVER
// parts: which memory is device memory, streams that hold work until someone
// waits, and the failures a test has asked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cuda_runtime.h>
#include <deque>
#include <functional>

struct CUstream_st {
    std::deque<std::function<void()>> pending;
    std::uint64_t issued = 0, finished = 0;
};
struct CUevent_st {
    CUstream_st* stream = nullptr;
    std::uint64_t at = 0;
};

namespace standIn {

// Whether [p, p + bytes) lies inside one device allocation.
bool onDevice(const void* p, std::size_t bytes);
// Whether a column-major rows x cols matrix with leading dimension ld lies in
// device memory (an empty one anywhere); says which argument is wrong on stderr.
bool deviceMatrix(const char* function, const char* name, const void* p, long rows, long cols, long ld,
                  std::size_t element);

// Puts work on a stream, and runs a stream's work up to a point (UINT64_MAX: all
// of it). The CUDA library uses streams of its own only, never the legacy one.
void enqueue(cudaStream_t stream, std::function<void()> work);
void drain(cudaStream_t stream, std::uint64_t upTo);

// Counts a call of a kind and says whether a test has asked it to fail.
bool failsNow(const char* kind);

// A routine of OpenBLAS itself, loaded apart: in a process where the link library
// comes first, the plain name would be the link library's, which would route the
// call back here.
void* openBlasSymbol(const char* name);
template <class... A> void call(void* f, A... args) { reinterpret_cast<void (*)(A...)>(f)(args...); }

}  // namespace standIn

// Calls OpenBLAS's Fortran routine `name` with these arguments as they are:
// pointers, then the hidden character lengths (oneChar).
inline constexpr std::size_t oneChar = 1;
#define STAND_IN_OPENBLAS(name, ...) \
    do { static void* const found = standIn::openBlasSymbol(name); standIn::call(found, __VA_ARGS__); } while (0)
