// The stand-in's CUDA run-time: one device, device memory that is checked on
// every use, pinned memory, streams, events, copies and the last error.
#include <cstdio>
#include <dlfcn.h>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>

#include "device_model.h"
#include "stand_in.h"

namespace {

std::mutex lock;  // the registries and the failure plan
std::map<const char*, std::size_t> deviceBlocks, pinnedBlocks;  // start -> bytes
std::map<std::string, long> counts;
std::map<std::string, std::set<long>> failAt;  // kind -> the counts at which it fails
thread_local cudaError_t lastError = cudaSuccess;

bool within(const std::map<const char*, std::size_t>& blocks, const void* p, std::size_t bytes) {
    const char* c = static_cast<const char*>(p);
    auto next = blocks.upper_bound(c);
    if (next == blocks.begin()) return false;
    --next;
    return c >= next->first && c + bytes <= next->first + next->second;
}
bool overlaps(const std::map<const char*, std::size_t>& blocks, const void* p, std::size_t bytes) {
    const char* c = static_cast<const char*>(p);
    auto next = blocks.lower_bound(c + bytes);
    if (next == blocks.begin()) return false;
    --next;
    return next->first + next->second > c;
}
bool pinned(const void* p, std::size_t bytes) {
    std::lock_guard<std::mutex> hold(lock);
    return within(pinnedBlocks, p, bytes);
}

cudaError_t failed(cudaError_t error) {
    lastError = error;
    return error;
}

// A block of a registry, aligned; and its release.
void* allocate(std::map<const char*, std::size_t>& blocks, std::size_t bytes, std::size_t alignment) {
    char* block = static_cast<char*>(std::aligned_alloc(alignment, (bytes + alignment - 1) / alignment * alignment));
    std::lock_guard<std::mutex> hold(lock);
    if (block != nullptr) blocks[block] = bytes;
    return block;
}
cudaError_t release(std::map<const char*, std::size_t>& blocks, void* p) {
    std::lock_guard<std::mutex> hold(lock);
    if (blocks.erase(static_cast<char*>(p)) == 0) return failed(cudaErrorInvalidValue);
    std::free(p);
    return cudaSuccess;
}

// A copy between host and device checks both sides, then runs in stream order:
// later, if the host side is pinned; now, after the stream's earlier work, if not.
cudaError_t copy(void* dst, std::size_t dstPitch, const void* src, std::size_t srcPitch, std::size_t width,
                 std::size_t height, cudaMemcpyKind kind, cudaStream_t stream, const char* function) {
    if (width == 0 || height == 0) return cudaSuccess;
    const std::size_t dstBytes = dstPitch * (height - 1) + width, srcBytes = srcPitch * (height - 1) + width;
    const bool toDevice = kind == cudaMemcpyHostToDevice || kind == cudaMemcpyDeviceToDevice;
    const bool fromDevice = kind == cudaMemcpyDeviceToHost || kind == cudaMemcpyDeviceToDevice;
    if (dstPitch < width || srcPitch < width || standIn::onDevice(dst, dstBytes) != toDevice ||
        standIn::onDevice(src, srcBytes) != fromDevice) {
        std::fprintf(stderr, "cuda stand-in: %s: a pointer is not where the copy's kind says\n", function);
        return failed(cudaErrorInvalidValue);
    }
    if (kind == cudaMemcpyHostToDevice && standIn::failsNow("toDevice")) return failed(cudaErrorLaunchFailure);
    if (kind == cudaMemcpyDeviceToHost && standIn::failsNow("toHost")) return failed(cudaErrorLaunchFailure);
    auto work = [=] {
        for (std::size_t row = 0; row < height; ++row)
            std::memcpy(static_cast<char*>(dst) + row * dstPitch, static_cast<const char*>(src) + row * srcPitch, width);
    };
    const bool hostSidePinned = kind == cudaMemcpyHostToDevice   ? pinned(src, srcBytes)
                                : kind == cudaMemcpyDeviceToHost ? pinned(dst, dstBytes)
                                                                 : true;
    if (hostSidePinned) {
        standIn::enqueue(stream, work);
    } else {
        standIn::drain(stream, UINT64_MAX);
        work();
    }
    return cudaSuccess;
}

cudaError_t wait(cudaStream_t stream, std::uint64_t upTo) {
    standIn::drain(stream, upTo);
    return standIn::failsNow("wait") ? failed(cudaErrorLaunchFailure) : cudaSuccess;
}

}  // namespace

namespace standIn {

bool onDevice(const void* p, std::size_t bytes) {
    std::lock_guard<std::mutex> hold(lock);
    return within(deviceBlocks, p, bytes);
}

bool deviceMatrix(const char* function, const char* name, const void* p, long rows, long cols, long ld,
                  std::size_t element) {
    if (rows <= 0 || cols <= 0) return true;
    if (ld >= rows && onDevice(p, (std::size_t(ld) * (cols - 1) + rows) * element)) return true;
    std::fprintf(stderr, "cuda stand-in: %s: %s (%ld x %ld, ld %ld) is not in device memory\n", function, name, rows,
                 cols, ld);
    return false;
}

void enqueue(cudaStream_t stream, std::function<void()> work) {
    stream->pending.push_back(std::move(work));
    ++stream->issued;
}

void drain(cudaStream_t stream, std::uint64_t upTo) {
    while (stream->finished < upTo && !stream->pending.empty()) {
        auto work = std::move(stream->pending.front());
        stream->pending.pop_front();
        work();
        ++stream->finished;
    }
}

void* openBlasSymbol(const char* name) {
    // A namespace of its own, so that OpenBLAS's LAPACK routines reach its own
    // BLAS and LAPACK rather than the link library's names of the same spelling.
    static void* const library = dlmopen(LM_ID_NEWLM, STAND_IN_OPENBLAS_PATH, RTLD_NOW | RTLD_LOCAL);
    void* symbol = library != nullptr ? dlsym(library, name) : nullptr;
    if (symbol == nullptr) {
        std::fprintf(stderr, "cuda stand-in: %s not found in %s\n", name, STAND_IN_OPENBLAS_PATH);
        std::abort();
    }
    return symbol;
}

bool failsNow(const char* kind) {
    std::lock_guard<std::mutex> hold(lock);
    const long count = ++counts[kind];
    auto plan = failAt.find(kind);
    return plan != failAt.end() && plan->second.erase(count) > 0;
}

}  // namespace standIn

extern "C" {

void cudaStandInFailAt(const char* kind, int n) {
    std::lock_guard<std::mutex> hold(lock);
    if (n <= 0) failAt.erase(kind);
    else failAt[kind].insert(counts[kind] + n);
}

long cudaStandInCount(const char* kind) {
    std::lock_guard<std::mutex> hold(lock);
    return counts[kind];
}

cudaError_t cudaGetDeviceCount(int* count) { *count = 1; return cudaSuccess; }
cudaError_t cudaSetDevice(int device) { return device == 0 ? cudaSuccess : failed(cudaErrorInvalidDevice); }
cudaError_t cudaGetDevice(int* device) { *device = 0; return cudaSuccess; }
cudaError_t cudaGetLastError(void) { return std::exchange(lastError, cudaSuccess); }
const char* cudaGetErrorString(cudaError_t error) { return error == cudaSuccess ? "no error" : "stand-in CUDA error"; }

// Device memory starts with no particular contents; a failed allocation may be asked for.
cudaError_t cudaMalloc(void** p, std::size_t bytes) {
    *p = standIn::failsNow("allocate") ? nullptr : allocate(deviceBlocks, bytes, 256);
    if (*p != nullptr) std::memset(*p, 0xA5, bytes);
    return *p != nullptr ? cudaSuccess : failed(cudaErrorMemoryAllocation);
}
cudaError_t cudaFree(void* p) { return p == nullptr ? cudaSuccess : release(deviceBlocks, p); }
cudaError_t cudaHostAlloc(void** p, std::size_t bytes, unsigned int) {
    *p = allocate(pinnedBlocks, bytes, 4096);
    return *p != nullptr ? cudaSuccess : failed(cudaErrorMemoryAllocation);
}
cudaError_t cudaFreeHost(void* p) { return release(pinnedBlocks, p); }
cudaError_t cudaHostRegister(void* p, std::size_t bytes, unsigned int) {
    std::lock_guard<std::mutex> hold(lock);
    if (overlaps(pinnedBlocks, p, bytes)) return failed(cudaErrorHostMemoryAlreadyRegistered);
    pinnedBlocks[static_cast<char*>(p)] = bytes;
    return cudaSuccess;
}
cudaError_t cudaHostUnregister(void* p) {
    std::lock_guard<std::mutex> hold(lock);
    return pinnedBlocks.erase(static_cast<char*>(p)) ? cudaSuccess : failed(cudaErrorHostMemoryNotRegistered);
}

cudaError_t cudaStreamCreateWithFlags(cudaStream_t* stream, unsigned int) {
    *stream = new CUstream_st;
    return cudaSuccess;
}
cudaError_t cudaStreamDestroy(cudaStream_t stream) {
    standIn::drain(stream, UINT64_MAX);
    delete stream;
    return cudaSuccess;
}
cudaError_t cudaStreamSynchronize(cudaStream_t stream) { return wait(stream, UINT64_MAX); }
cudaError_t cudaEventCreateWithFlags(cudaEvent_t* event, unsigned int) { *event = new CUevent_st; return cudaSuccess; }
cudaError_t cudaEventDestroy(cudaEvent_t event) { delete event; return cudaSuccess; }
cudaError_t cudaEventRecord(cudaEvent_t event, cudaStream_t stream) {
    event->stream = stream;
    event->at = stream->issued;
    return cudaSuccess;
}
cudaError_t cudaEventSynchronize(cudaEvent_t event) {
    return event->stream != nullptr ? wait(event->stream, event->at) : cudaSuccess;
}

cudaError_t cudaMemcpyAsync(void* dst, const void* src, std::size_t count, cudaMemcpyKind kind, cudaStream_t stream) {
    return copy(dst, count, src, count, count, 1, kind, stream, "cudaMemcpyAsync");
}
cudaError_t cudaMemcpy2DAsync(void* dst, std::size_t dpitch, const void* src, std::size_t spitch, std::size_t width,
                              std::size_t height, cudaMemcpyKind kind, cudaStream_t stream) {
    return copy(dst, dpitch, src, spitch, width, height, kind, stream, "cudaMemcpy2DAsync");
}
cudaError_t cudaMemsetAsync(void* p, int value, std::size_t count, cudaStream_t stream) {
    return cudaMemset2DAsync(p, count, value, count, 1, stream);
}
cudaError_t cudaMemset2DAsync(void* p, std::size_t pitch, int value, std::size_t width, std::size_t height,
                              cudaStream_t stream) {
    if (width == 0 || height == 0) return cudaSuccess;
    if (pitch < width || !standIn::onDevice(p, pitch * (height - 1) + width)) {
        std::fprintf(stderr, "cuda stand-in: cudaMemset: not device memory\n");
        return failed(cudaErrorInvalidValue);
    }
    standIn::enqueue(stream, [=] {
        for (std::size_t row = 0; row < height; ++row) std::memset(static_cast<char*>(p) + row * pitch, value, width);
    });
    return cudaSuccess;
}

}  // extern "C"
