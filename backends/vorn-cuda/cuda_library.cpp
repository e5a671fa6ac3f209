// Start-up, shutdown, statuses, the per-thread contexts and the host transfers of
// the CUDA GPU library.
#include "cuda_library.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <pthread.h>
#include <unistd.h>

Settings settings{0, defaultTransfer, defaultStagingBytes, SIZE_MAX};

namespace {

std::atomic<int> ready{VORN_STATUS_NOT_INITIALIZED};
char startFailure[256];  // the text of vornInitialize's last failure

// The registry guards the list of contexts, their inUse flags and the generation:
// taking and giving back a context, and shutdown. The GPU work itself runs
// without it, each thread on its own stream and handles.
std::mutex registryLock;
ThreadContext* contexts;
std::atomic<unsigned> generation{1};  // a new one after each shutdown

// The calling thread's claim on a context; it gives the context back to the free
// list when the thread exits, unless a shutdown has destroyed it since.
struct Lease {
    ThreadContext* context = nullptr;
    unsigned generation = 0;
    ~Lease() {
        if (context == nullptr) return;
        std::lock_guard<std::mutex> hold(registryLock);
        if (generation == ::generation.load()) context->inUse = false;
    }
};
thread_local Lease lease;

// The answer of the calling thread's last call: info, and the text of a failure.
thread_local int errorInfo;
thread_local int failureStatus = -1;
thread_local char failureText[320];

// Whether a context's streams, handles and memory still exist: an application's
// cudaDeviceReset destroys them all, its pinned staging slots with them, which
// the run-time tells from the address alone, without touching any of them.
bool alive(const ThreadContext* c) {
    cudaPointerAttributes attributes{};
    const cudaError_t error = cudaPointerGetAttributes(&attributes, c->staging);
    if (error) cudaGetLastError();
    return !error && attributes.type == cudaMemoryTypeHost;
}

void destroy(ThreadContext* c) {
    if (c->solver != nullptr) cusolverDnDestroy(c->solver);
    if (c->blas != nullptr) cublasDestroy(c->blas);
    for (cudaEvent_t event : c->slotFree)
        if (event != nullptr) cudaEventDestroy(event);
    if (c->stream != nullptr) cudaStreamDestroy(c->stream);
    if (c->device != nullptr) cudaFree(c->device);
    if (c->staging != nullptr) cudaFreeHost(c->staging);
    if (c->host != nullptr) cudaFreeHost(c->host);
    delete c;
}

// A context with its own non-blocking stream (so that the application's work on
// the legacy default stream neither waits for it nor delays it), both handles on
// that stream and the pinned staging slots.
ThreadContext* create(int& status) {
    auto* c = new ThreadContext{};
    const char* what = nullptr;
    cudaError_t cuda = cudaSuccess;
    cublasStatus_t blas = CUBLAS_STATUS_SUCCESS;
    cusolverStatus_t solver = CUSOLVER_STATUS_SUCCESS;
    if ((cuda = cudaStreamCreateWithFlags(&c->stream, cudaStreamNonBlocking))) what = "cudaStreamCreateWithFlags";
    else if ((cuda = cudaEventCreateWithFlags(&c->slotFree[0], cudaEventDisableTiming))) what = "cudaEventCreate";
    else if ((cuda = cudaEventCreateWithFlags(&c->slotFree[1], cudaEventDisableTiming))) what = "cudaEventCreate";
    else if ((cuda = cudaMallocHost(&c->staging, 2 * settings.stagingBytes + 64))) what = "cudaMallocHost";
    else if ((blas = cublasCreate(&c->blas))) what = "cublasCreate";
    else if ((blas = cublasSetStream(c->blas, c->stream))) what = "cublasSetStream";
    else if ((solver = cusolverDnCreate(&c->solver))) what = "cusolverDnCreate";
    else if ((solver = cusolverDnSetStream(c->solver, c->stream))) what = "cusolverDnSetStream";
    if (what == nullptr) return c;
    status = cuda ? cudaFailure(cuda, "start of a thread", what)
           : blas ? blasFailure(blas, "start of a thread", what)
                  : solverFailure(solver, "start of a thread", what);
    destroy(c);
    return nullptr;
}

// Says on stderr, once per process and setting (vornInitialize runs again after
// a shutdown), that a setting cannot be used as given and what is used instead.
enum SettingBit : unsigned { deviceBit = 1, transferBit = 2, stagingBit = 4, maxDeviceBit = 8 };
void badSetting(SettingBit bit, const char* name, const char* text, const char* instead) {
    static std::atomic<unsigned> said{0};
    if (said.fetch_or(bit) & bit) return;
    std::fprintf(stderr, "vorn CUDA library: %s=%s cannot be used: %s\n", name, text, instead);
}

// A number of bytes, or a device number: unset gives the fallback; text that is
// not a decimal number gives the fallback, a number below the floor gives
// `belowFloor`, each with its message.
std::size_t numberSetting(SettingBit bit, const char* name, std::size_t fallback, std::size_t floor,
                          std::size_t belowFloor, const char* instead) {
    const char* text = std::getenv(name);
    if (text == nullptr || *text == '\0') return fallback;
    char* end;
    errno = 0;
    const unsigned long long value = std::strtoull(text, &end, 10);
    if (*text < '0' || *text > '9' || *end != '\0' || errno == ERANGE) {
        badSetting(bit, name, text, "not a decimal number; the default is used");
        return fallback;
    }
    if (value < floor) {
        badSetting(bit, name, text, instead);
        return belowFloor;
    }
    return static_cast<std::size_t>(value);
}

int startFailed(int status, const char* format, const char* detail) {
    std::snprintf(startFailure, sizeof startFailure, format, detail);
    ready.store(status);
    return status;
}

// CUDA does not survive fork: a child of a process that has started it inherits
// contexts whose streams, handles and memory it cannot use. The child forgets
// them without a CUDA call (they are the parent's), and from then on its
// routines and vornInitialize refuse, so that the link library runs them on the
// CPU and its shutdown has nothing to destroy. The registry is held across fork,
// so that the child's copy is not one that another thread of the parent held.
// The child's handler does only what is safe in a child of many threads.
std::atomic<bool> forked{false};
constexpr char inheritedState[] = "no usable GPU: a forked child cannot use the CUDA state of its parent";
int refuseInChild() {
    std::memcpy(startFailure, inheritedState, sizeof inheritedState);
    ready.store(VORN_STATUS_NO_DEVICE);
    return VORN_STATUS_NO_DEVICE;
}
void beforeFork() { registryLock.lock(); }
void afterForkInParent() { registryLock.unlock(); }
void afterForkInChild() {
    registryLock.unlock();
    contexts = nullptr;
    generation.fetch_add(1);
    forked.store(true);
    refuseInChild();
}

// Bytes [from, from + count) of the dense column-major image of an operand,
// copied between the caller's strided array and a contiguous buffer.
void gather(char* out, const Operand& o, std::size_t from, std::size_t count) {
    const std::size_t column = std::size_t(o.rows) * o.elementSize, stride = std::size_t(o.ld) * o.elementSize;
    const char* host = static_cast<const char*>(o.host);
    while (count > 0) {
        const std::size_t j = from / column, within = from % column, part = std::min(count, column - within);
        std::memcpy(out, host + j * stride + within, part);
        out += part, from += part, count -= part;
    }
}
void scatter(const Operand& o, const char* in, std::size_t from, std::size_t count) {
    const std::size_t column = std::size_t(o.rows) * o.elementSize, stride = std::size_t(o.ld) * o.elementSize;
    char* host = static_cast<char*>(const_cast<void*>(o.host));
    while (count > 0) {
        const std::size_t j = from / column, within = from % column, part = std::min(count, column - within);
        std::memcpy(host + j * stride + within, in, part);
        in += part, from += part, count -= part;
    }
}

// The bytes an operand spans in the caller's memory.
std::size_t extent(const Operand& o) {
    return (std::size_t(o.ld) * (o.cols - 1) + o.rows) * o.elementSize;
}

}  // namespace

// A thread that has made no device current gets device 0 back, which is what
// the run-time reports as its current device anyway.
OnLibraryDevice::OnLibraryDevice() : previous(settings.device) {
    error = cudaGetDevice(&previous);
    if (error) previous = settings.device;
    else if (previous != settings.device) error = cudaSetDevice(settings.device);
    if (error) cudaGetLastError();
}
OnLibraryDevice::~OnLibraryDevice() {
    if (previous != settings.device) cudaSetDevice(previous);
}

int readiness() { return ready.load(std::memory_order_acquire); }

int fail(int status, const char* routine, const char* what, const char* detail) {
    static const char* const kinds[] = {"", "no usable GPU", "not available", "out of GPU memory",
                                        "CUDA error", "not initialized", "missing library"};
    const char* kind = status > 0 && status < 7 ? kinds[status] : "failure";
    std::snprintf(failureText, sizeof failureText, "%s in %s: %s: %s", kind, routine, what, detail);
    failureStatus = status;
    return status;
}

int cudaFailure(cudaError_t error, const char* routine, const char* what) {
    cudaGetLastError();  // clears a non-sticky error so that later calls start clean
    const int status = error == cudaErrorMemoryAllocation ? VORN_STATUS_OUT_OF_MEMORY : VORN_STATUS_RUNTIME_ERROR;
    return fail(status, routine, what, cudaGetErrorString(error));
}

int blasFailure(cublasStatus_t error, const char* routine, const char* what) {
    const int status = error == CUBLAS_STATUS_ALLOC_FAILED ? VORN_STATUS_OUT_OF_MEMORY : VORN_STATUS_RUNTIME_ERROR;
    return fail(status, routine, what, cublasGetStatusString(error));
}

int solverFailure(cusolverStatus_t error, const char* routine, const char* what) {
    char detail[48];
    std::snprintf(detail, sizeof detail, "cusolverStatus_t %d", static_cast<int>(error));
    const int status = error == CUSOLVER_STATUS_ALLOC_FAILED ? VORN_STATUS_OUT_OF_MEMORY : VORN_STATUS_RUNTIME_ERROR;
    return fail(status, routine, what, detail);
}

int answer(int info) {
    errorInfo = info;
    return info > 0 ? VORN_STATUS_INFO_NUMERICAL : info < 0 ? VORN_STATUS_INFO_ARGUMENT : VORN_STATUS_SUCCESS;
}

ThreadContext* threadContext(int& status) {
    const unsigned current = generation.load(std::memory_order_acquire);
    if (lease.context != nullptr && lease.generation == current) return lease.context;
    std::lock_guard<std::mutex> hold(registryLock);
    ThreadContext* c = contexts;
    while (c != nullptr && c->inUse) c = c->next;
    if (c == nullptr) {
        // Made under the lock: only a thread's first call pays for it, and shutdown
        // must not run beside it.
        if ((c = create(status)) == nullptr) return nullptr;
        c->next = contexts;
        contexts = c;
    }
    c->inUse = true;
    lease.context = c;
    lease.generation = current;
    return c;
}

int reserveDevice(ThreadContext& c, std::size_t bytes) {
    if (bytes <= c.deviceBytes) return 0;
    if (bytes > settings.maxDeviceBytes) {
        char detail[96];
        std::snprintf(detail, sizeof detail, "%zu bytes needed, VORN_CUDA_MAX_DEVICE_BYTES is %zu", bytes,
                      settings.maxDeviceBytes);
        return fail(VORN_STATUS_OUT_OF_MEMORY, "workspace", "reserve", detail);
    }
    // Grown by half again, so that a thread working up through sizes reallocates
    // a few times only. The old workspace is idle: every call ends synchronised.
    std::size_t grown = std::min(std::max(bytes, c.deviceBytes / 2 * 3), settings.maxDeviceBytes);
    if (c.device != nullptr) cudaFree(c.device);
    c.device = nullptr;
    c.deviceBytes = 0;
    if (cudaMalloc(&c.device, grown) != cudaSuccess) {
        cudaGetLastError();
        grown = bytes;
        if (cudaError_t error = cudaMalloc(&c.device, grown)) return cudaFailure(error, "workspace", "cudaMalloc");
    }
    c.deviceBytes = grown;
    return 0;
}

// Exactly the size asked for: the host scratch is small (a diagonal, cuSOLVER's
// host workspace). Every call ends synchronised, so the old one is idle.
int reserveHost(ThreadContext& c, std::size_t bytes) {
    if (bytes <= c.hostBytes) return 0;
    if (c.host != nullptr) cudaFreeHost(c.host);
    c.host = nullptr;
    c.hostBytes = 0;
    if (cudaError_t error = cudaMallocHost(&c.host, bytes)) return cudaFailure(error, "host scratch", "cudaMallocHost");
    c.hostBytes = bytes;
    return 0;
}

// Staged: the dense image passes through the two pinned slots in turn, so that
// the copy of one chunk into a slot overlaps the transfer of the other.
int upload(ThreadContext& c, const Operand& o, const char* routine) {
    char* device = c.device + o.offset;
    if (settings.transfer != Transfer::staged) {
        const std::size_t row = std::size_t(o.rows) * o.elementSize;
        cudaError_t error = cudaMemcpy2DAsync(device, row, o.host, std::size_t(o.ld) * o.elementSize, row, o.cols,
                                              cudaMemcpyHostToDevice, c.stream);
        return error ? cudaFailure(error, routine, "cudaMemcpy2DAsync to the GPU") : 0;
    }
    const std::size_t total = o.bytes();
    for (std::size_t done = 0; done < total;) {
        const int slot = c.nextSlot;
        c.nextSlot ^= 1;
        char* buffer = c.staging + slot * settings.stagingBytes;
        const std::size_t count = std::min(settings.stagingBytes, total - done);
        if (cudaError_t error = cudaEventSynchronize(c.slotFree[slot])) return cudaFailure(error, routine, "cudaEventSynchronize");
        gather(buffer, o, done, count);
        if (cudaError_t error = cudaMemcpyAsync(device + done, buffer, count, cudaMemcpyHostToDevice, c.stream))
            return cudaFailure(error, routine, "cudaMemcpyAsync to the GPU");
        if (cudaError_t error = cudaEventRecord(c.slotFree[slot], c.stream)) return cudaFailure(error, routine, "cudaEventRecord");
        done += count;
    }
    return 0;
}

namespace {

// Staged, larger than the slots: chunk k is in flight while chunk k - 1 is
// copied out of its slot into the caller's array.
int downloadChunked(ThreadContext& c, const Operand& o, const char* routine, bool& touched) {
    const char* device = c.device + o.offset;
    const std::size_t total = o.bytes();
    struct Chunk { int slot; std::size_t from, count; } previous{-1, 0, 0};
    auto drain = [&](const Chunk& chunk) -> int {
        if (cudaError_t error = cudaEventSynchronize(c.slotFree[chunk.slot])) return cudaFailure(error, routine, "cudaEventSynchronize");
        touched = true;
        scatter(o, c.staging + chunk.slot * settings.stagingBytes, chunk.from, chunk.count);
        return 0;
    };
    for (std::size_t done = 0; done < total;) {
        const Chunk chunk{c.nextSlot, done, std::min(settings.stagingBytes, total - done)};
        c.nextSlot ^= 1;
        if (cudaError_t error = cudaMemcpyAsync(c.staging + chunk.slot * settings.stagingBytes, device + done,
                                                chunk.count, cudaMemcpyDeviceToHost, c.stream))
            return cudaFailure(error, routine, "cudaMemcpyAsync from the GPU");
        if (cudaError_t error = cudaEventRecord(c.slotFree[chunk.slot], c.stream)) return cudaFailure(error, routine, "cudaEventRecord");
        if (previous.slot >= 0)
            if (int status = drain(previous)) return status;
        previous = chunk;
        done += chunk.count;
    }
    return previous.slot >= 0 ? drain(previous) : 0;
}

bool fitsInStaging(const Operand* const* outputs, int count) {
    std::size_t total = 0;
    for (int i = 0; i < count; ++i) total += outputs[i]->bytes();
    return total <= 2 * settings.stagingBytes;
}

// The two slots lie end to end: the outputs go there one after another, and
// reach the caller's arrays only once all have arrived.
int downloadTogether(ThreadContext& c, const Operand* const* outputs, int count, const char* routine) {
    for (cudaEvent_t slot : c.slotFree)
        if (cudaError_t error = cudaEventSynchronize(slot)) return cudaFailure(error, routine, "cudaEventSynchronize");
    // Whatever happens, the next user of the slots waits for the copies queued here.
    struct MarkSlots {
        ThreadContext& c;
        ~MarkSlots() {
            for (cudaEvent_t slot : c.slotFree) cudaEventRecord(slot, c.stream);
        }
    };
    std::size_t at = 0;
    {
        MarkSlots mark{c};
        for (int i = 0; i < count; ++i) {
            if (cudaError_t error = cudaMemcpyAsync(c.staging + at, c.device + outputs[i]->offset,
                                                    outputs[i]->bytes(), cudaMemcpyDeviceToHost, c.stream))
                return cudaFailure(error, routine, "cudaMemcpyAsync from the GPU");
            at += outputs[i]->bytes();
        }
    }
    if (cudaError_t error = cudaStreamSynchronize(c.stream)) return cudaFailure(error, routine, "cudaStreamSynchronize");
    at = 0;
    for (int i = 0; i < count; ++i) {
        scatter(*outputs[i], c.staging + at, 0, outputs[i]->bytes());
        at += outputs[i]->bytes();
    }
    return 0;
}

// The library's registrations of the caller's pages, by start: their length and
// how many operands of calls in progress hold them. Registering runs under the
// lock too, so that two threads never both find the same pages free.
struct Registration { std::size_t bytes; int holders; };
std::mutex registrationLock;
std::map<const char*, Registration> registrations;

}  // namespace

int downloadAll(ThreadContext& c, const Operand* const* outputs, int count, const char* routine, bool& touched) {
    touched = false;
    if (fitsInStaging(outputs, count)) return downloadTogether(c, outputs, count, routine);
    if (settings.transfer == Transfer::staged) {
        for (int i = 0; i < count; ++i)
            if (int status = downloadChunked(c, *outputs[i], routine, touched)) return status;
        return 0;
    }
    // All queued, then one wait. A copy to pageable memory may write part of its
    // array before it fails, and one to registered memory runs when the stream
    // gets to it, ahead of a later one's failure: from the first copy on, the
    // caller's arrays may be written.
    touched = true;
    for (int i = 0; i < count; ++i) {
        const Operand& o = *outputs[i];
        const std::size_t row = std::size_t(o.rows) * o.elementSize;
        if (cudaError_t error = cudaMemcpy2DAsync(const_cast<void*>(o.host), std::size_t(o.ld) * o.elementSize,
                                                  c.device + o.offset, row, row, o.cols, cudaMemcpyDeviceToHost,
                                                  c.stream))
            return cudaFailure(error, routine, "cudaMemcpy2DAsync from the GPU");
    }
    if (cudaError_t error = cudaStreamSynchronize(c.stream)) return cudaFailure(error, routine, "cudaStreamSynchronize");
    return 0;
}

void partlyWritten(const char* routine) {
    std::fprintf(stderr,
                 "vorn CUDA library: %s: copying the results back failed twice after part of them was written to "
                 "the caller's arrays (%s); an input is partly overwritten, so neither an answer nor a retry on "
                 "the CPU would be right: stopping\n",
                 routine, failureText);
    std::abort();
}

// Holds every registration of the library on the operand's pages (the run-time
// registers whole pages); registers the extent only when there is none. An
// operand only partly inside them is copied as the run-time finds its pages at
// the call, and the ones it finds locked stay so until the call ends.
int pin(ThreadContext&, const Operand& o, std::vector<const char*>& held, const char* routine) {
    held.clear();
    if (settings.transfer != Transfer::registered || o.bytes() == 0) return 0;
    const char* start = static_cast<const char*>(o.host);
    const std::size_t bytes = extent(o);
    static const std::uintptr_t page = std::uintptr_t(sysconf(_SC_PAGESIZE));
    const char* first = start - reinterpret_cast<std::uintptr_t>(start) % page;
    const char* last = start + bytes + (page - reinterpret_cast<std::uintptr_t>(start + bytes) % page) % page;
    std::lock_guard<std::mutex> hold(registrationLock);
    auto r = registrations.upper_bound(first);
    if (r != registrations.begin() && std::prev(r)->first + std::prev(r)->second.bytes > first) --r;
    for (; r != registrations.end() && r->first < last; ++r) {
        ++r->second.holders;
        held.push_back(r->first);
    }
    if (!held.empty()) return 0;
    cudaError_t error = cudaHostRegister(const_cast<char*>(start), bytes, cudaHostRegisterDefault);
    if (error == cudaErrorHostMemoryAlreadyRegistered) {  // the caller's own pinned memory
        cudaGetLastError();
        return 0;
    }
    if (error) return cudaFailure(error, routine, "cudaHostRegister");
    registrations[start] = {bytes, 1};
    held.push_back(start);
    return 0;
}

void release(std::vector<const char*>& held) {
    if (held.empty()) return;
    std::lock_guard<std::mutex> hold(registrationLock);
    for (const char* start : held) {
        auto r = registrations.find(start);
        if (--r->second.holders == 0) {
            cudaHostUnregister(const_cast<char*>(start));
            registrations.erase(r);
        }
    }
    held.clear();
}

int setDiagonal(ThreadContext& c, void* matrix, int n, const void* one, int elementSize, const char* routine) {
    const int slot = c.nextSlot;
    c.nextSlot ^= 1;
    char* buffer = c.staging + slot * settings.stagingBytes;
    const std::size_t perSlot = settings.stagingBytes / elementSize;
    for (int done = 0; done < n;) {
        const int count = static_cast<int>(std::min<std::size_t>(perSlot, n - done));
        if (cudaError_t error = cudaEventSynchronize(c.slotFree[slot])) return cudaFailure(error, routine, "cudaEventSynchronize");
        for (int i = 0; i < count; ++i) std::memcpy(buffer + std::size_t(i) * elementSize, one, elementSize);
        // Element i of the run goes to (done + i, done + i): a pitch of n + 1 elements.
        const std::size_t pitch = std::size_t(n + 1) * elementSize;
        if (cudaError_t error = cudaMemcpy2DAsync(static_cast<char*>(matrix) + done * pitch, pitch, buffer, elementSize,
                                                  elementSize, count, cudaMemcpyHostToDevice, c.stream))
            return cudaFailure(error, routine, "cudaMemcpy2DAsync of the diagonal");
        if (cudaError_t error = cudaEventRecord(c.slotFree[slot], c.stream)) return cudaFailure(error, routine, "cudaEventRecord");
        done += count;
    }
    return 0;
}

extern "C" {

// Finds the GPU and creates its primary context, so that a thread's first routine
// call pays only for its own handles; the calling thread's current device stays
// as it was. Without a GPU, or without a driver, the
// runtime's own words say what is missing.
int vornInitialize(void) {
    if (readiness() == VORN_STATUS_SUCCESS) return VORN_STATUS_SUCCESS;
    if (forked.load()) return refuseInChild();
    static const bool watchingForks = pthread_atfork(beforeFork, afterForkInParent, afterForkInChild) == 0;
    (void)watchingForks;
    int count = 0;
    if (cudaError_t error = cudaGetDeviceCount(&count)) {
        cudaGetLastError();
        return startFailed(VORN_STATUS_NO_DEVICE, "no usable GPU: the CUDA runtime reports: %s",
                           cudaGetErrorString(error));
    }
    if (count == 0) return startFailed(VORN_STATUS_NO_DEVICE, "no usable GPU: %s", "the CUDA runtime finds no device");
    // A staging slot holds at least a few elements of the largest type: a smaller
    // one could not hold one element, and chunks of a few bytes are no use.
    char smallest[64];
    std::snprintf(smallest, sizeof smallest, "fewer than %zu bytes; %zu are used", minimumStagingBytes,
                  minimumStagingBytes);
    Settings chosen{0, defaultTransfer,
                    numberSetting(stagingBit, "VORN_CUDA_STAGING_BYTES", defaultStagingBytes, minimumStagingBytes,
                                  minimumStagingBytes, smallest),
                    numberSetting(maxDeviceBit, "VORN_CUDA_MAX_DEVICE_BYTES", SIZE_MAX, 1, SIZE_MAX,
                                  "zero bytes; no limit is used")};
    // Whole multiples of 64 bytes, so that the second slot and the info word kept
    // behind both stay aligned for any element type.
    chosen.stagingBytes = std::min<std::size_t>(chosen.stagingBytes, SIZE_MAX / 4) / 64 * 64;
    chosen.device = static_cast<int>(std::min<std::size_t>(
        numberSetting(deviceBit, "VORN_CUDA_DEVICE", 0, 0, 0, ""), INT_MAX));
    if (chosen.device >= count) {
        char detail[64];
        std::snprintf(detail, sizeof detail, "VORN_CUDA_DEVICE=%d, but %d GPUs found", chosen.device, count);
        return startFailed(VORN_STATUS_NO_DEVICE, "no usable GPU: %s", detail);
    }
    if (const char* mode = std::getenv("VORN_CUDA_TRANSFER")) {
        if (std::strcmp(mode, "staged") == 0) chosen.transfer = Transfer::staged;
        else if (std::strcmp(mode, "registered") == 0) chosen.transfer = Transfer::registered;
        else if (std::strcmp(mode, "pageable") == 0) chosen.transfer = Transfer::pageable;
        else if (*mode != '\0')
            badSetting(transferBit, "VORN_CUDA_TRANSFER", mode, "not staged, registered or pageable; the default is used");
    }
    settings = chosen;
    cudaError_t error;
    {
        const OnLibraryDevice onDevice;
        error = onDevice.error;
        if (!error) error = cudaFree(nullptr);  // creates the primary context now
    }
    if (error) {
        cudaGetLastError();
        return startFailed(VORN_STATUS_NO_DEVICE, "no usable GPU: the CUDA runtime reports: %s",
                           cudaGetErrorString(error));
    }
    startFailure[0] = '\0';
    ready.store(VORN_STATUS_SUCCESS, std::memory_order_release);
    return VORN_STATUS_SUCCESS;
}

// Destroys every context, those of threads that have exited included; a thread
// that calls again afterwards finds its lease out of date. Nothing may run on
// another thread meanwhile: the link library calls this at process exit. A
// context that a device reset has destroyed already is only forgotten.
void vornShutdown(void) {
    std::lock_guard<std::mutex> hold(registryLock);
    if (contexts != nullptr) {
        const OnLibraryDevice onDevice;  // the handles are destroyed on their device
        while (contexts != nullptr) {
            ThreadContext* next = contexts->next;
            if (alive(contexts)) destroy(contexts);
            else delete contexts;
            contexts = next;
        }
    }
    generation.fetch_add(1);
    ready.store(VORN_STATUS_NOT_INITIALIZED);
}

const char* vornGetStatusString(int status) {
    if (status == failureStatus && failureText[0] != '\0') return failureText;
    if (status == ready.load() && startFailure[0] != '\0') return startFailure;
    switch (status) {
        case VORN_STATUS_SUCCESS: return "success";
        case VORN_STATUS_NO_DEVICE: return "no usable GPU";
        case VORN_STATUS_NOT_AVAILABLE: return "routine not available on the CUDA GPU library";
        case VORN_STATUS_OUT_OF_MEMORY: return "out of GPU memory";
        case VORN_STATUS_RUNTIME_ERROR: return "CUDA runtime or library error";
        case VORN_STATUS_NOT_INITIALIZED: return "CUDA GPU library not initialized";
        case VORN_STATUS_DEPENDENCY_MISSING: return "a CUDA library is missing";
        case VORN_STATUS_INFO_NUMERICAL: return "routine reported a numerical condition in info";
        case VORN_STATUS_INFO_ARGUMENT: return "routine reported an illegal argument in info";
        default: return "unknown status";
    }
}

int vornGetErrorInfo(void) { return errorInfo; }

}  // extern "C"
