// The CUDA GPU library: each routine copies the caller's host arrays to the GPU,
// computes there with cuBLAS or cuSOLVER, and copies the results back.
//
// Settings of its own, read once by vornInitialize:
//   VORN_CUDA_DEVICE=<n>            the GPU to use (default 0)
//   VORN_CUDA_TRANSFER=<mode>       how host arrays reach the GPU: "staged" through
//                                   pinned buffers of the library's own, "registered"
//                                   (the caller's pages pinned for the call), or
//                                   "pageable" (the driver stages them)
//   VORN_CUDA_STAGING_BYTES=<n>     size of each of a thread's two pinned staging slots
//                                   (at least minimumStagingBytes)
//   VORN_CUDA_MAX_DEVICE_BYTES=<n>  most GPU memory one thread's workspace may hold; a
//                                   call that needs more returns "out of GPU memory"
// A setting that cannot be used is named once on stderr, with what is used instead.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cublas_v2.h>
#include <cuda_runtime.h>
#include <cusolverDn.h>
#include <vector>

#include "vorn_lapack.h"

enum class Transfer { staged, registered, pageable };

// The transfer mode when VORN_CUDA_TRANSFER is unset. Staged until the GPU
// benchmark (tools/run-gpu-bench.sh, VORN_CUDA_TRANSFER per run) says otherwise.
inline constexpr Transfer defaultTransfer = Transfer::staged;
inline constexpr std::size_t defaultStagingBytes = std::size_t{16} << 20;
inline constexpr std::size_t minimumStagingBytes = 256;

struct Settings {
    int device;
    Transfer transfer;
    std::size_t stagingBytes;
    std::size_t maxDeviceBytes;
};
// Written by vornInitialize before it reports success; read-only afterwards.
extern Settings settings;

// What one calling thread owns: its stream and the handles bound to it, its
// growing GPU workspace and host scratch, and its two pinned staging slots. A thread takes a free
// context on its first call and gives it back when it exits, so thread pools reuse
// them; vornShutdown destroys them all.
struct ThreadContext {
    cudaStream_t stream;
    cublasHandle_t blas;
    cusolverDnHandle_t solver;
    char* device;               // GPU workspace, grown on demand, never shrunk
    std::size_t deviceBytes;
    char* staging;              // pinned: two slots of settings.stagingBytes, then the info words
    char* host;                 // pinned host scratch, grown on demand, never shrunk
    std::size_t hostBytes;
    cudaEvent_t slotFree[2];    // recorded after the last copy that reads or writes a slot
    int nextSlot;
    ThreadContext* next;        // the registry's list
    bool inUse;
};

// Makes the library's device current on the calling thread while it lives, and
// the caller's current device again afterwards: every stream, handle and byte of
// GPU memory of the library belongs to that device, and the application's own
// choice of device stays as it was. error: what selecting it met.
struct OnLibraryDevice {
    int previous;
    cudaError_t error;
    OnLibraryDevice();
    ~OnLibraryDevice();
    OnLibraryDevice(const OnLibraryDevice&) = delete;
    OnLibraryDevice& operator=(const OnLibraryDevice&) = delete;
};

// 0 when routines may run; else the status they give (not initialised, or the
// start-up failure).
int readiness();

// The calling thread's context, made on first use; null with a failure status set.
ThreadContext* threadContext(int& status);

// Makes the thread's GPU workspace at least `bytes` long.
int reserveDevice(ThreadContext& context, std::size_t bytes);
// Makes the thread's pinned host scratch at least `bytes` long: cuSOLVER's host
// workspace, and what a routine reads back from the GPU before it goes on.
int reserveHost(ThreadContext& context, std::size_t bytes);

// Failure statuses with a text for vornGetStatusString on the calling thread.
int fail(int status, const char* routine, const char* what, const char* detail);
int cudaFailure(cudaError_t error, const char* routine, const char* what);
int blasFailure(cublasStatus_t error, const char* routine, const char* what);
int solverFailure(cusolverStatus_t error, const char* routine, const char* what);

// Keeps info for vornGetErrorInfo and turns it into a status: 0, 7 or 8.
int answer(int info);

// A rectangular part of a host array and its dense copy on the GPU (leading
// dimension rows). Vectors with a stride are one column of their whole extent.
enum class Use { in, out, inOut };
struct Operand {
    const void* host;
    int rows, cols, ld;         // ld in elements, at least rows
    int elementSize;
    Use use;
    bool keptOnInfo;            // copied back also when info > 0 (LAPACK leaves it so)
    std::size_t offset;         // in the workspace, set by the frame
    std::size_t bytes() const { return std::size_t(rows) * std::size_t(cols) * std::size_t(elementSize); }
    int deviceLd() const { return rows > 1 ? rows : 1; }
};

// Host to GPU in the chosen transfer mode.
int upload(ThreadContext& context, const Operand& operand, const char* routine);
// Brings a call's outputs back into the caller's arrays: the one step of a call
// that writes them, made once everything else has succeeded. When the outputs fit
// in the two staging slots together, every copy has arrived there before the
// first byte of the caller's arrays is written, so a failure leaves them as they
// were. Larger outputs go through the slots chunk by chunk (staged) or straight
// into the caller's arrays (registered, pageable): `touched` says that a failure
// may have come after part of them was written.
int downloadAll(ThreadContext& context, const Operand* const* outputs, int count, const char* routine, bool& touched);
// Stops the process: the copy back failed after part of the results reached the
// caller's arrays, and one of them is also an input (see run in frame.h).
[[noreturn]] void partlyWritten(const char* routine);
// Registered mode: the library's registrations of the caller's pages that an
// operand's copies rely on, held for the call. pin registers the operand's pages
// unless registrations of the library already overlap them (another operand, or
// another thread's call on the same array), which it then holds instead; release
// lets go of them, and the last holder unregisters. So no call unregisters pages
// while another call's copies may still read or write them.
int pin(ThreadContext& context, const Operand& operand, std::vector<const char*>& held, const char* routine);
void release(std::vector<const char*>& held);

// Writes n copies of the element `one` on the diagonal of a dense n x n matrix on
// the GPU (the identity that getri solves against).
int setDiagonal(ThreadContext& context, void* matrix, int n, const void* one, int elementSize,
                const char* routine);
