// What a test may ask of the CUDA stand-in (libcuda_stand_in.so): a CPU
// implementation of the parts of the CUDA run-time, cuBLAS and cuSOLVER that the
// CUDA GPU library calls, so that the library's own code runs on machines
// without a GPU. Device memory is host memory that only device calls may touch;
// work on a stream runs when something waits for it, as on a GPU; copies from or
// to memory that is not pinned run at once, in stream order, as the run-time's do.
#pragma once

extern "C" {

// The n-th call of a kind from now on fails (n = 1: the next one); calls add up,
// and n = 0 clears them all.
// Kinds: "toDevice" and "toHost" (copies), "compute" (a cuBLAS or cuSOLVER
// routine), "wait" (a stream or event synchronisation that reports an error the
// work met), "allocate" (cudaMalloc).
void cudaStandInFailAt(const char* kind, int n);

// How many calls of a kind have been made: the kinds above, "misuse" (a CUDA
// call in a forked child, an object used after a device reset, a free of memory
// that is not allocated) and "unpinned" (host pages unregistered while a queued
// copy still uses them).
long cudaStandInCount(const char* kind);
}
