// The CUDA stand-in (stand_in.h): one model of a GPU behind its run-time, cuBLAS
// and cuSOLVER parts. Two devices, a current one per thread, and streams,
// events, handles and device memory that belong to the device current at their
// creation and refuse work while another one is current (as the handles of
// cuBLAS and cuSOLVER do, and memory without peer access); device memory that is
// checked on every use;
// pinned memory; streams that hold work until someone waits; copies and the last
// error; the failures a test has asked for. Every cuBLAS and cuSOLVER routine
// checks that its operands lie in device memory, reads its scalars at the call
// (host pointer mode), and puts the reference computation, OpenBLAS's Fortran
// routine, on the handle's stream. A forked child's CUDA calls and the use of an
// object that a device reset has destroyed fail, and are named and counted
// ("misuse").
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cublas_v2.h>
#include <cusolverDn.h>
#include <deque>
#include <dlfcn.h>
#include <functional>
#include <initializer_list>
#include <limits>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <type_traits>
#include <unistd.h>
#include <utility>
#include <vector>

#include "stand_in.h"

// Each thread's current device, as cudaSetDevice leaves it (0 until then).
constexpr int deviceCount = 2;
static thread_local int currentDevice = 0;
static int resets[deviceCount];  // cudaDeviceReset calls: an object of an older count is gone

struct CUstream_st {
    int device = currentDevice, epoch = resets[currentDevice];
    std::deque<std::function<void()>> pending;
    std::uint64_t issued = 0, finished = 0;
};
struct CUevent_st {
    CUstream_st* stream = nullptr;
    std::uint64_t at = 0;
    int device = currentDevice, epoch = resets[currentDevice];
};
struct cublasContext { int device = currentDevice, epoch = resets[currentDevice]; cudaStream_t stream = nullptr; };
struct cusolverDnContext { int device = currentDevice, epoch = resets[currentDevice]; cudaStream_t stream = nullptr; };

using C = cuComplex;
using Z = cuDoubleComplex;
using std::size_t;

namespace {

std::mutex lock;  // the registries, the counts and the failure plan
std::map<const char*, size_t> deviceBlocks, pinnedBlocks;  // start -> bytes
std::map<const char*, int> blockDevice;                    // device block start -> its device
std::map<std::string, long> counts;
std::map<std::string, std::set<long>> failAt;  // kind -> the counts at which it fails
std::multiset<const char*> queuedHost;  // host starts of the copies queued on any stream

// Whether [p, p + bytes) lies inside one block of a registry; device memory
// must also belong to the calling thread's current device.
bool within(const std::map<const char*, size_t>& blocks, const void* p, size_t bytes) {
    const char* c = static_cast<const char*>(p);
    std::lock_guard<std::mutex> hold(lock);
    auto next = blocks.upper_bound(c);
    if (next == blocks.begin()) return false;
    --next;
    return c >= next->first && c + bytes <= next->first + next->second &&
           (&blocks != &deviceBlocks || blockDevice[next->first] == currentDevice);
}
bool onDevice(const void* p, size_t bytes) { return within(deviceBlocks, p, bytes); }

// Whether a stream, event or handle made on `device` may be used now; says
// which is not on stderr.
bool current(int device, const char* what, const char* function) {
    if (device == currentDevice) return true;
    std::fprintf(stderr, "cuda stand-in: %s: %s of device %d used while device %d is current\n", function, what,
                 device, currentDevice);
    return false;
}

// Names a misuse on stderr and counts it.
void misuse(const char* function, const char* what) {
    std::fprintf(stderr, "cuda stand-in: %s: %s\n", function, what);
    std::lock_guard<std::mutex> hold(lock);
    ++counts["misuse"];
}
// Whether the calling process is a forked child of the one that made the first
// CUDA call (CUDA does not survive fork). Checked where the library's every way
// into CUDA begins: the device count, the current device, and the copies.
bool inherited(const char* function) {
    static std::atomic<pid_t> startedIn{0};
    pid_t expected = 0;
    if (startedIn.compare_exchange_strong(expected, getpid()) || expected == getpid()) return false;
    misuse(function, "CUDA called in a forked child of the process that started it");
    return true;
}
// Whether an object was made before its device's last reset.
template <class Object> bool stale(const Object* o, const char* function) {
    if (o->epoch == resets[o->device]) return false;
    misuse(function, "an object destroyed by cudaDeviceReset");
    return true;
}

// Counts a call of a kind and says whether a test has asked it to fail.
bool failsNow(const char* kind) {
    std::lock_guard<std::mutex> hold(lock);
    const long count = ++counts[kind];
    auto plan = failAt.find(kind);
    return plan != failAt.end() && plan->second.erase(count) > 0;
}

// Puts work on a stream, and runs a stream's work up to a point (UINT64_MAX: all
// of it). The CUDA library uses streams of its own only, never the legacy one.
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
cudaError_t wait(cudaStream_t stream, std::uint64_t upTo) {
    drain(stream, upTo);
    return failsNow("wait") ? cudaErrorLaunchFailure : cudaSuccess;
}

// Destroys a stream (after its queued work), event or handle, unless a device
// reset has already: the answer is `gone` then, else `done`.
template <class Object, class Status> Status destroy(Object* o, const char* function, Status gone, Status done) {
    if (stale(o, function)) return gone;
    if constexpr (std::is_same_v<Object, CUstream_st>) drain(o, UINT64_MAX);
    delete o;
    return done;
}

// A block of a registry, aligned; and its release.
void* allocate(std::map<const char*, size_t>& blocks, size_t bytes, size_t alignment) {
    char* block = static_cast<char*>(std::aligned_alloc(alignment, (bytes + alignment - 1) / alignment * alignment));
    std::lock_guard<std::mutex> hold(lock);
    if (block != nullptr) blocks[block] = bytes;
    return block;
}
cudaError_t release(std::map<const char*, size_t>& blocks, void* p) {
    std::unique_lock<std::mutex> hold(lock);
    if (blocks.erase(static_cast<char*>(p)) == 0) {
        hold.unlock();
        misuse("cudaFree or cudaFreeHost", "not a live block");
        return cudaErrorInvalidValue;
    }
    blockDevice.erase(static_cast<char*>(p));
    std::free(p);
    return cudaSuccess;
}

// A copy between host and device (or on the device, for any other kind) checks
// both sides, then runs in stream order: later, if the host side is pinned; now,
// after the stream's earlier work, if not.
cudaError_t copy(void* dst, size_t dstPitch, const void* src, size_t srcPitch, size_t width, size_t height,
                 cudaMemcpyKind kind, cudaStream_t stream, const char* function) {
    if (inherited(function)) return cudaErrorInitializationError;
    if (width == 0 || height == 0) return cudaSuccess;
    if (!current(stream->device, "a stream", function)) return cudaErrorInvalidResourceHandle;
    const size_t dstBytes = dstPitch * (height - 1) + width, srcBytes = srcPitch * (height - 1) + width;
    const bool toHost = kind == cudaMemcpyDeviceToHost, toDevice = kind == cudaMemcpyHostToDevice;
    if (dstPitch < width || srcPitch < width || onDevice(dst, dstBytes) == toHost ||
        onDevice(src, srcBytes) == toDevice) {
        std::fprintf(stderr, "cuda stand-in: %s: a pointer is not where the copy's kind says\n", function);
        return cudaErrorInvalidValue;
    }
    if ((toDevice || toHost) && failsNow(toDevice ? "toDevice" : "toHost")) return cudaErrorLaunchFailure;
    const char* host = static_cast<const char*>(toDevice ? src : dst);
    const bool hostSidePinned = !(toDevice || toHost) || within(pinnedBlocks, host, toDevice ? srcBytes : dstBytes);
    const bool queuedOnHost = (toDevice || toHost) && hostSidePinned;
    if (queuedOnHost) {
        std::lock_guard<std::mutex> hold(lock);
        queuedHost.insert(host);
    }
    auto work = [=] {
        if (queuedOnHost) {
            std::lock_guard<std::mutex> hold(lock);
            queuedHost.erase(queuedHost.find(host));
        }
        for (size_t row = 0; row < height; ++row)
            std::memcpy(static_cast<char*>(dst) + row * dstPitch, static_cast<const char*>(src) + row * srcPitch, width);
    };
    if (hostSidePinned) {
        enqueue(stream, work);
    } else {
        drain(stream, UINT64_MAX);
        work();
    }
    return cudaSuccess;
}

// A routine of OpenBLAS itself, loaded in a namespace of its own: in a process
// where the link library comes first, the plain name would be the link library's,
// which would route the call back here; and OpenBLAS's LAPACK routines must reach
// its own BLAS and LAPACK.
void* openBlasSymbol(const char* name) {
    static void* const library = dlmopen(LM_ID_NEWLM, STAND_IN_OPENBLAS_PATH, RTLD_NOW | RTLD_LOCAL);
    void* symbol = library != nullptr ? dlsym(library, name) : nullptr;
    if (symbol == nullptr) {
        std::fprintf(stderr, "cuda stand-in: %s not found in %s\n", name, STAND_IN_OPENBLAS_PATH);
        std::abort();
    }
    return symbol;
}

// Calls OpenBLAS's Fortran routine `name` with these arguments as they are:
// pointers, then the hidden character lengths (oneChar).
constexpr size_t oneChar = 1;
template <class... A> void openBlas(const char* name, A... args) {
    reinterpret_cast<void (*)(A...)>(openBlasSymbol(name))(args...);
}

// An operand of a cuBLAS or cuSOLVER routine: a column-major rows x cols matrix
// with leading dimension ld, of its pointer's element type (bytes where void).
struct Operand {
    const char* name; const void* p; long rows, cols, ld; size_t element;
    template <class T>
    Operand(const char* name, const T* p, long rows, long cols, long ld)
        : name(name), p(p), rows(rows), cols(cols), ld(ld),
          element(sizeof(std::conditional_t<std::is_void_v<T>, char, T>)) {}
    // Whether it lies in device memory (an empty one anywhere); says which
    // argument is wrong on stderr.
    bool onDevice(const char* function) const {
        if (rows <= 0 || cols <= 0) return true;
        if (ld >= rows && ::onDevice(p, (size_t(ld) * (cols - 1) + rows) * element)) return true;
        std::fprintf(stderr, "cuda stand-in: %s: %s (%ld x %ld, ld %ld) is not in device memory\n", function, name,
                     rows, cols, ld);
        return false;
    }
};
// words: count elements in a row. vector: n elements with stride inc, as the
// matrix of their whole extent.
template <class T> Operand words(const char* name, const T* p, long count) { return {name, p, count, 1, count}; }
template <class T> Operand vector(const char* name, const T* p, int n, int inc) {
    const long span = n > 0 ? 1 + long(n - 1) * std::abs(inc) : 0;
    return {name, p, span, 1, span};
}

// A cuBLAS or cuSOLVER routine: checks the handle and that every operand lies in
// device memory, counts a computation (which may fail on request), then puts the
// work on the handle's stream or, with `now`, runs it at the call after the
// stream's earlier work. The answer in the status type of the handle's library.
template <class Handle, class Work>
auto launch(Handle h, const char* f, std::initializer_list<Operand> operands, Work work, bool now = false) {
    auto as = [](cublasStatus_t blas, cusolverStatus_t solver) {
        if constexpr (std::is_same_v<Handle, cublasHandle_t>) return blas; else return solver;
    };
    if (h == nullptr) return as(CUBLAS_STATUS_NOT_INITIALIZED, CUSOLVER_STATUS_NOT_INITIALIZED);
    if (!current(h->device, "a handle", f)) return as(CUBLAS_STATUS_INVALID_VALUE, CUSOLVER_STATUS_INVALID_VALUE);
    for (const Operand& o : operands)
        if (!o.onDevice(f)) return as(CUBLAS_STATUS_INVALID_VALUE, CUSOLVER_STATUS_INVALID_VALUE);
    if (failsNow("compute")) return as(CUBLAS_STATUS_EXECUTION_FAILED, CUSOLVER_STATUS_EXECUTION_FAILED);
    if (now) {
        drain(h->stream, UINT64_MAX);
        work();
    } else {
        enqueue(h->stream, work);
    }
    return as(CUBLAS_STATUS_SUCCESS, CUSOLVER_STATUS_SUCCESS);
}

char op(cublasOperation_t o) { return o == CUBLAS_OP_N ? 'N' : o == CUBLAS_OP_T ? 'T' : 'C'; }
char fill(cublasFillMode_t f) { return f == CUBLAS_FILL_MODE_UPPER ? 'U' : 'L'; }
char side(cublasSideMode_t s) { return s == CUBLAS_SIDE_LEFT ? 'L' : 'R'; }
char diag(cublasDiagType_t d) { return d == CUBLAS_DIAG_UNIT ? 'U' : 'N'; }

// A bufferSize routine's answer, for a live handle.
template <class Size> cusolverStatus_t sized(cusolverDnHandle_t h, Size* answer, Size size) {
    if (h == nullptr) return CUSOLVER_STATUS_NOT_INITIALIZED;
    *answer = size;
    return CUSOLVER_STATUS_SUCCESS;
}

// The workspace of dsgesv and zcgesv: LAPACK's work (n x nrhs), its lower-precision
// swork (n x (n + nrhs)), then zcgesv's real rwork (n).
template <class T, class Low> size_t mixedBytes(int n, int nrhs) {
    return size_t(n) * nrhs * sizeof(T) + size_t(n) * (n + nrhs) * sizeof(Low) + size_t(n) * sizeof(double);
}
// getrf's workspace, in elements: something, so that the library must place it.
int luWork(int m, int n) { return m + n + 1; }
// The workspace of geqrf, orgqr, ormqr, orgbr and gebrd, in elements: more than
// LAPACK's smallest, enough for OpenBLAS's blocked code.
int blockedWork(int m, int n) { return 64 * (m + n) + 1; }

// The size of an element of cuSOLVER's generic interface; 0 for a type the stand-in lacks.
size_t trtriElement(cudaDataType type) {
    return type == CUDA_R_32F ? 4 : type == CUDA_R_64F || type == CUDA_C_32F ? 8 : type == CUDA_C_64F ? 16 : 0;
}

// a after a mixed-precision solve that fell back: cuSOLVER promises nothing.
template <class T> void scribble(T* a, int n, int lda) {
    for (int j = 0; j < n; ++j)
        std::fill_n(reinterpret_cast<double*>(a + size_t(j) * lda), n * sizeof(T) / sizeof(double),
                    std::numeric_limits<double>::quiet_NaN());
}

// ---- cuSOLVER: the eigenvalue, singular value and bidiagonal routines, each
// with the workspace its bufferSize gives, which it checks it is given.

// LAPACK's smallest workspaces of syevd/heevd and sygvd/hegvd with eigenvectors,
// which serve without them too: work in elements (the cuSOLVER workspace here),
// then the real and integer ones, which the stand-in keeps to itself: eigenSolve
// calls LAPACK's routine with `args` up to lwork, then those, then info.
int eigenWork(bool complex, int n) { return complex ? 2 * n + n * n + 1 : 1 + 6 * n + 2 * n * n; }
template <class R, class... Args> void eigenSolve(const char* name, bool complex, int n, int* info, Args... args) {
    std::vector<R> rwork(1 + 5 * n + 2 * n * n);
    std::vector<int> iwork(3 + 5 * n);
    int lrwork = int(rwork.size()), liwork = int(iwork.size());
    if (complex) openBlas(name, args..., rwork.data(), &lrwork, iwork.data(), &liwork, info, oneChar, oneChar);
    else openBlas(name, args..., iwork.data(), &liwork, info, oneChar, oneChar);
}
// gesvd's: LAPACK's smallest work for any jobu and jobvt, in elements.
int svdWork(bool complex, int m, int n) {
    const int k = std::min(m, n), most = std::max(m, n);
    return std::max(1, complex ? 2 * k + most : std::max(3 * k + most, 5 * k));
}
char eigenJob(cusolverEigMode_t mode) { return mode == CUSOLVER_EIG_MODE_VECTOR ? 'V' : 'N'; }
template <class T> constexpr bool complexType = std::is_same_v<T, C> || std::is_same_v<T, Z>;
template <class T> double realPart(T v) { if constexpr (complexType<T>) return v.x; else return v; }
template <class T> double imaginaryPart(T v) { if constexpr (complexType<T>) return v.y; else return 0; }
template <class T> T conjugate(T v) {
    if constexpr (complexType<T>) v.y = -v.y;
    return v;
}

}  // namespace

// syevd and heevd over LAPACK's own; the complex ones take a real workspace too.
#define STAND_IN_SYEVD(p, P, T, R, root) \
    cusolverStatus_t cusolverDn##P##root##_bufferSize(cusolverDnHandle_t h, cusolverEigMode_t, cublasFillMode_t, \
                                                      int n, const T*, int, const R*, int* lwork) { \
        return sized(h, lwork, eigenWork(complexType<T>, n)); \
    } \
    cusolverStatus_t cusolverDn##P##root(cusolverDnHandle_t h, cusolverEigMode_t mode, cublasFillMode_t u, int n, \
                                        T* A, int lda, R* W, T* work, int lwork, int* info) { \
        if (lwork < eigenWork(complexType<T>, n)) return CUSOLVER_STATUS_INVALID_VALUE; \
        return launch(h, "cusolverDn" #P #root, {{"A", A, n, n, lda}, words("W", W, n), \
                      words("workspace", work, lwork), words("info", info, 1)}, \
                      [=, jobz = eigenJob(mode), uplo = fill(u)] { \
            eigenSolve<R>(#p #root "_", complexType<T>, n, info, &jobz, &uplo, &n, A, &lda, W, work, &lwork); \
        }); \
    }

// sygvd and hegvd over LAPACK's own.
#define STAND_IN_SYGVD(p, P, T, R, root) \
    cusolverStatus_t cusolverDn##P##root##_bufferSize(cusolverDnHandle_t h, cusolverEigType_t, cusolverEigMode_t, \
                                                      cublasFillMode_t, int n, const T*, int, const T*, int, \
                                                      const R*, int* lwork) { \
        return sized(h, lwork, eigenWork(complexType<T>, n)); \
    } \
    cusolverStatus_t cusolverDn##P##root(cusolverDnHandle_t h, cusolverEigType_t type, cusolverEigMode_t mode, \
                                        cublasFillMode_t u, int n, T* A, int lda, T* B, int ldb, R* W, T* work, \
                                        int lwork, int* info) { \
        if (lwork < eigenWork(complexType<T>, n)) return CUSOLVER_STATUS_INVALID_VALUE; \
        return launch(h, "cusolverDn" #P #root, {{"A", A, n, n, lda}, {"B", B, n, n, ldb}, words("W", W, n), \
                      words("workspace", work, lwork), words("info", info, 1)}, \
                      [=, itype = int(type), jobz = eigenJob(mode), uplo = fill(u)] { \
            eigenSolve<R>(#p #root "_", complexType<T>, n, info, &itype, &jobz, &uplo, &n, A, &lda, B, &ldb, W, work, \
                          &lwork); \
        }); \
    }

// gesvd over LAPACK's, for m >= n only, as cuSOLVER's: rwork gets the
// superdiagonals that did not converge (LAPACK's work(2:k) in real precisions,
// rwork(1:k-1) in complex ones).
#define STAND_IN_GESVD(p, P, T, R) \
    cusolverStatus_t cusolverDn##P##gesvd_bufferSize(cusolverDnHandle_t h, int m, int n, int* lwork) { \
        return sized(h, lwork, svdWork(complexType<T>, m, n)); \
    } \
    cusolverStatus_t cusolverDn##P##gesvd(cusolverDnHandle_t h, signed char jobu, signed char jobvt, int m, int n, \
                                         T* A, int lda, R* S, T* U, int ldu, T* VT, int ldvt, T* work, int lwork, \
                                         R* rwork, int* info) { \
        if (m < n || lwork < svdWork(complexType<T>, m, n)) return CUSOLVER_STATUS_INVALID_VALUE; \
        const bool wantU = jobu == 'A' || jobu == 'S', wantVt = jobvt == 'A' || jobvt == 'S'; \
        return launch(h, "cusolverDn" #P "gesvd", {{"A", A, m, n, lda}, words("S", S, n), \
                      {"U", U, wantU ? m : 0, jobu == 'A' ? m : n, ldu}, {"VT", VT, wantVt ? n : 0, n, ldvt}, \
                      words("workspace", work, lwork), words("rwork", rwork, n - 1), words("info", info, 1)}, \
                      [=, ju = char(jobu), jv = char(jobvt)] { \
            std::vector<R> lapackRwork(5 * n); \
            if constexpr (complexType<T>) \
                openBlas(#p "gesvd_", &ju, &jv, &m, &n, A, &lda, S, U, &ldu, VT, &ldvt, work, &lwork, \
                         lapackRwork.data(), info, oneChar, oneChar); \
            else \
                openBlas(#p "gesvd_", &ju, &jv, &m, &n, A, &lda, S, U, &ldu, VT, &ldvt, work, &lwork, info, oneChar, \
                         oneChar); \
            for (int i = 0; i + 1 < n; ++i) \
                rwork[i] = complexType<T> ? lapackRwork[i] : R(realPart(work[i + 1])); \
        }); \
    }

// gebrd over LAPACK's, for m >= n only, as cuSOLVER's.
#define STAND_IN_GEBRD(p, P, T, R) \
    cusolverStatus_t cusolverDn##P##gebrd_bufferSize(cusolverDnHandle_t h, int m, int n, int* lwork) { \
        return sized(h, lwork, blockedWork(m, n)); \
    } \
    cusolverStatus_t cusolverDn##P##gebrd(cusolverDnHandle_t h, int m, int n, T* A, int lda, R* D, R* E, T* tauq, \
                                         T* taup, T* work, int lwork, int* info) { \
        if (m < n || lwork < blockedWork(m, n)) return CUSOLVER_STATUS_INVALID_VALUE; \
        return launch(h, "cusolverDn" #P "gebrd", {{"A", A, m, n, lda}, words("D", D, n), words("E", E, n - 1), \
                      words("tauq", tauq, n), words("taup", taup, n), words("workspace", work, lwork), \
                      words("info", info, 1)}, \
                      [=] { openBlas(#p "gebrd_", &m, &n, A, &lda, D, E, tauq, taup, work, &lwork, info); }); \
    }

// geam: only what the CUDA library asks of it, C = op(A) (alpha 1, beta 0).
#define STAND_IN_GEAM(p, P, T, R) \
    cublasStatus_t cublas##P##geam(cublasHandle_t h, cublasOperation_t ta, cublasOperation_t, int m, int n, \
                                   const T* alpha, const T* A, int lda, const T* beta, const T*, int, T* Cm, int ldc) { \
        if (realPart(*alpha) != 1 || imaginaryPart(*alpha) != 0 || realPart(*beta) != 0 || imaginaryPart(*beta) != 0) \
            return CUBLAS_STATUS_NOT_SUPPORTED; \
        const bool nA = ta == CUBLAS_OP_N; \
        return launch(h, "cublas" #P "geam", {{"A", A, nA ? m : n, nA ? n : m, lda}, {"C", Cm, m, n, ldc}}, [=] { \
            for (int j = 0; j < n; ++j) \
                for (int i = 0; i < m; ++i) { \
                    const T v = nA ? A[i + size_t(j) * lda] : A[j + size_t(i) * lda]; \
                    Cm[i + size_t(j) * ldc] = ta == CUBLAS_OP_C ? conjugate(v) : v; \
                } \
        }); \
    }

// ---- cuBLAS

#define STAND_IN_GEMM(p, P, T, R) \
    cublasStatus_t cublas##P##gemm_v2(cublasHandle_t h, cublasOperation_t ta, cublasOperation_t tb, int m, int n, \
                                      int k, const T* alpha, const T* A, int lda, const T* B, int ldb, \
                                      const T* beta, T* C, int ldc) { \
        const bool nA = ta == CUBLAS_OP_N, nB = tb == CUBLAS_OP_N; \
        return launch(h, "cublas" #P "gemm", {{"A", A, nA ? m : k, nA ? k : m, lda}, \
                      {"B", B, nB ? k : n, nB ? n : k, ldb}, {"C", C, m, n, ldc}}, \
                      [=, a = op(ta), b = op(tb), al = *alpha, be = *beta] { \
            openBlas(#p "gemm_", &a, &b, &m, &n, &k, &al, A, &lda, B, &ldb, &be, C, &ldc, oneChar, oneChar); \
        }); \
    }

// symm and hemm
#define STAND_IN_SYMM(p, P, T, root) \
    cublasStatus_t cublas##P##root##_v2(cublasHandle_t h, cublasSideMode_t s, cublasFillMode_t u, int m, int n, \
                                        const T* alpha, const T* A, int lda, const T* B, int ldb, const T* beta, \
                                        T* C, int ldc) { \
        const int order = s == CUBLAS_SIDE_LEFT ? m : n; \
        return launch(h, "cublas" #P #root, {{"A", A, order, order, lda}, {"B", B, m, n, ldb}, {"C", C, m, n, ldc}}, \
                      [=, a = side(s), b = fill(u), al = *alpha, be = *beta] { \
            openBlas(#p #root "_", &a, &b, &m, &n, &al, A, &lda, B, &ldb, &be, C, &ldc, oneChar, oneChar); \
        }); \
    }

// syrk and herk (real alpha and beta)
#define STAND_IN_SYRK(p, P, T, S, root) \
    cublasStatus_t cublas##P##root##_v2(cublasHandle_t h, cublasFillMode_t u, cublasOperation_t t, int n, int k, \
                                        const S* alpha, const T* A, int lda, const S* beta, T* C, int ldc) { \
        const bool nA = t == CUBLAS_OP_N; \
        return launch(h, "cublas" #P #root, {{"A", A, nA ? n : k, nA ? k : n, lda}, {"C", C, n, n, ldc}}, \
                      [=, a = fill(u), b = op(t), al = *alpha, be = *beta] { \
            openBlas(#p #root "_", &a, &b, &n, &k, &al, A, &lda, &be, C, &ldc, oneChar, oneChar); \
        }); \
    }

// syr2k and her2k (real beta)
#define STAND_IN_SYR2K(p, P, T, S, root) \
    cublasStatus_t cublas##P##root##_v2(cublasHandle_t h, cublasFillMode_t u, cublasOperation_t t, int n, int k, \
                                        const T* alpha, const T* A, int lda, const T* B, int ldb, const S* beta, \
                                        T* C, int ldc) { \
        const int rows = t == CUBLAS_OP_N ? n : k, cols = t == CUBLAS_OP_N ? k : n; \
        return launch(h, "cublas" #P #root, {{"A", A, rows, cols, lda}, {"B", B, rows, cols, ldb}, \
                      {"C", C, n, n, ldc}}, [=, a = fill(u), b = op(t), al = *alpha, be = *beta] { \
            openBlas(#p #root "_", &a, &b, &n, &k, &al, A, &lda, B, &ldb, &be, C, &ldc, oneChar, oneChar); \
        }); \
    }

// trmm and trsm. cuBLAS's trmm writes C = alpha op(A) B, which may be B itself;
// trsm solves in B.
#define STAND_IN_TRMM(p, P, T, R) \
    cublasStatus_t cublas##P##trmm_v2(cublasHandle_t h, cublasSideMode_t s, cublasFillMode_t u, \
                                      cublasOperation_t t, cublasDiagType_t d, int m, int n, const T* alpha, \
                                      const T* A, int lda, const T* B, int ldb, T* C, int ldc) { \
        const int order = s == CUBLAS_SIDE_LEFT ? m : n; \
        return launch(h, "cublas" #P "trmm", {{"A", A, order, order, lda}, {"B", B, m, n, ldb}, {"C", C, m, n, ldc}}, \
                      [=, a = side(s), b = fill(u), c = op(t), e = diag(d), al = *alpha] { \
            if (C != B) \
                for (int j = 0; j < n; ++j) std::memmove(C + size_t(j) * ldc, B + size_t(j) * ldb, m * sizeof(T)); \
            openBlas(#p "trmm_", &a, &b, &c, &e, &m, &n, &al, A, &lda, C, &ldc, oneChar, oneChar, oneChar, oneChar); \
        }); \
    }
#define STAND_IN_TRSM(p, P, T, R) \
    cublasStatus_t cublas##P##trsm_v2(cublasHandle_t h, cublasSideMode_t s, cublasFillMode_t u, \
                                      cublasOperation_t t, cublasDiagType_t d, int m, int n, const T* alpha, \
                                      const T* A, int lda, T* B, int ldb) { \
        const int order = s == CUBLAS_SIDE_LEFT ? m : n; \
        return launch(h, "cublas" #P "trsm", {{"A", A, order, order, lda}, {"B", B, m, n, ldb}}, \
                      [=, a = side(s), b = fill(u), c = op(t), e = diag(d), al = *alpha] { \
            openBlas(#p "trsm_", &a, &b, &c, &e, &m, &n, &al, A, &lda, B, &ldb, oneChar, oneChar, oneChar, oneChar); \
        }); \
    }

// symv and hemv
#define STAND_IN_SYMV(p, P, T, root) \
    cublasStatus_t cublas##P##root##_v2(cublasHandle_t h, cublasFillMode_t u, int n, const T* alpha, const T* A, \
                                        int lda, const T* x, int incx, const T* beta, T* y, int incy) { \
        return launch(h, "cublas" #P #root, {{"A", A, n, n, lda}, vector("x", x, n, incx), vector("y", y, n, incy)}, \
                      [=, a = fill(u), al = *alpha, be = *beta] { \
            openBlas(#p #root "_", &a, &n, &al, A, &lda, x, &incx, &be, y, &incy, oneChar); \
        }); \
    }

// ---- cuSOLVER: the Cholesky, triangular, LU and QR routines on the handle's
// stream, info written to device memory; the mixed-precision solvers at the call,
// since they answer their iteration count on the host.

#define STAND_IN_POTRF(p, P, T, root) \
    cusolverStatus_t cusolverDn##P##root##_bufferSize(cusolverDnHandle_t h, cublasFillMode_t, int n, T*, int, \
                                                      int* lwork) { return sized(h, lwork, n + 1); } \
    cusolverStatus_t cusolverDn##P##root(cusolverDnHandle_t h, cublasFillMode_t u, int n, T* A, int lda, T* work, \
                                        int lwork, int* info) { \
        if (lwork < n + 1) return CUSOLVER_STATUS_INVALID_VALUE; \
        return launch(h, "cusolverDn" #P #root, {{"A", A, n, n, lda}, words("workspace", work, lwork), \
                      words("info", info, 1)}, \
                      [=, uplo = fill(u)] { openBlas(#p #root "_", &uplo, &n, A, &lda, info, oneChar); }); \
    }

// potrf, potri and potrs.
#define STAND_IN_CHOLESKY(p, P, T, R) \
    STAND_IN_POTRF(p, P, T, potrf) \
    STAND_IN_POTRF(p, P, T, potri) \
    cusolverStatus_t cusolverDn##P##potrs(cusolverDnHandle_t h, cublasFillMode_t u, int n, int nrhs, const T* A, \
                                         int lda, T* B, int ldb, int* info) { \
        return launch(h, "cusolverDn" #P "potrs", {{"A", A, n, n, lda}, {"B", B, n, nrhs, ldb}, \
                      words("info", info, 1)}, [=, uplo = fill(u)] { \
            openBlas(#p "potrs_", &uplo, &n, &nrhs, A, &lda, B, &ldb, info, oneChar); \
        }); \
    }

// geqrf, orgqr (ungqr), ormqr (unmqr) and orgbr (ungbr), each with the
// workspace of its bufferSize, which it checks it is given.
#define STAND_IN_QR(p, P, T, org, orm) \
    cusolverStatus_t cusolverDn##P##geqrf_bufferSize(cusolverDnHandle_t h, int m, int n, T*, int, int* lwork) { \
        return sized(h, lwork, blockedWork(m, n)); \
    } \
    cusolverStatus_t cusolverDn##P##geqrf(cusolverDnHandle_t h, int m, int n, T* A, int lda, T* tau, T* work, \
                                         int lwork, int* info) { \
        if (lwork < blockedWork(m, n)) return CUSOLVER_STATUS_INVALID_VALUE; \
        return launch(h, "cusolverDn" #P "geqrf", {{"A", A, m, n, lda}, words("tau", tau, std::min(m, n)), \
                      words("workspace", work, lwork), words("info", info, 1)}, \
                      [=] { openBlas(#p "geqrf_", &m, &n, A, &lda, tau, work, &lwork, info); }); \
    } \
    cusolverStatus_t cusolverDn##P##org##qr_bufferSize(cusolverDnHandle_t h, int m, int n, int, const T*, int, \
                                                      const T*, int* lwork) { \
        return sized(h, lwork, blockedWork(m, n)); \
    } \
    cusolverStatus_t cusolverDn##P##org##qr(cusolverDnHandle_t h, int m, int n, int k, T* A, int lda, const T* tau, \
                                           T* work, int lwork, int* info) { \
        if (lwork < blockedWork(m, n)) return CUSOLVER_STATUS_INVALID_VALUE; \
        return launch(h, "cusolverDn" #P #org "qr", {{"A", A, m, n, lda}, words("tau", tau, k), \
                      words("workspace", work, lwork), words("info", info, 1)}, \
                      [=] { openBlas(#p #org "qr_", &m, &n, &k, A, &lda, tau, work, &lwork, info); }); \
    } \
    cusolverStatus_t cusolverDn##P##orm##qr_bufferSize(cusolverDnHandle_t h, cublasSideMode_t, cublasOperation_t, \
                                                      int m, int n, int, const T*, int, const T*, const T*, int, \
                                                      int* lwork) { return sized(h, lwork, blockedWork(m, n)); } \
    cusolverStatus_t cusolverDn##P##orm##qr(cusolverDnHandle_t h, cublasSideMode_t s, cublasOperation_t t, int m, \
                                           int n, int k, const T* A, int lda, const T* tau, T* Cm, int ldc, T* work, \
                                           int lwork, int* info) { \
        if (lwork < blockedWork(m, n)) return CUSOLVER_STATUS_INVALID_VALUE; \
        const int nq = s == CUBLAS_SIDE_LEFT ? m : n; \
        return launch(h, "cusolverDn" #P #orm "qr", {{"A", A, nq, k, lda}, words("tau", tau, k), {"C", Cm, m, n, ldc}, \
                      words("workspace", work, lwork), words("info", info, 1)}, [=, a = side(s), b = op(t)] { \
            openBlas(#p #orm "qr_", &a, &b, &m, &n, &k, A, &lda, tau, Cm, &ldc, work, &lwork, info, oneChar, oneChar); \
        }); \
    } \
    cusolverStatus_t cusolverDn##P##org##br_bufferSize(cusolverDnHandle_t h, cublasSideMode_t, int m, int n, int, \
                                                      const T*, int, const T*, int* lwork) { \
        return sized(h, lwork, blockedWork(m, n)); \
    } \
    cusolverStatus_t cusolverDn##P##org##br(cusolverDnHandle_t h, cublasSideMode_t s, int m, int n, int k, T* A, \
                                           int lda, const T* tau, T* work, int lwork, int* info) { \
        if (lwork < blockedWork(m, n)) return CUSOLVER_STATUS_INVALID_VALUE; \
        const char vect = s == CUBLAS_SIDE_LEFT ? 'Q' : 'P'; \
        return launch(h, "cusolverDn" #P #org "br", {{"A", A, m, n, lda}, \
                      words("tau", tau, std::min(vect == 'Q' ? m : n, k)), words("workspace", work, lwork), \
                      words("info", info, 1)}, [=] { \
            openBlas(#p #org "br_", &vect, &m, &n, &k, A, &lda, tau, work, &lwork, info, oneChar); \
        }); \
    }

#define STAND_IN_LU(p, P, T, R) \
    cusolverStatus_t cusolverDn##P##getrf_bufferSize(cusolverDnHandle_t h, int m, int n, T*, int, int* lwork) { \
        return sized(h, lwork, luWork(m, n)); \
    } \
    cusolverStatus_t cusolverDn##P##getrf(cusolverDnHandle_t h, int m, int n, T* A, int lda, T* work, int* ipiv, \
                                         int* info) { \
        return launch(h, "cusolverDn" #P "getrf", {{"A", A, m, n, lda}, words("workspace", work, luWork(m, n)), \
                      words("ipiv", ipiv, m < n ? m : n), words("info", info, 1)}, \
                      [=] { openBlas(#p "getrf_", &m, &n, A, &lda, ipiv, info); }); \
    } \
    cusolverStatus_t cusolverDn##P##getrs(cusolverDnHandle_t h, cublasOperation_t t, int n, int nrhs, const T* A, \
                                         int lda, const int* ipiv, T* B, int ldb, int* info) { \
        return launch(h, "cusolverDn" #P "getrs", {{"A", A, n, n, lda}, words("ipiv", ipiv, n), \
                      {"B", B, n, nrhs, ldb}, words("info", info, 1)}, [=, trans = op(t)] { \
            openBlas(#p "getrs_", &trans, &n, &nrhs, A, &lda, ipiv, B, &ldb, info, oneChar); \
        }); \
    }

// dsgesv and zcgesv as cuSOLVER gives them, over LAPACK's: x, the pivots, info
// and the iteration count; a unchanged when refinement converged, and left with
// no particular contents when it fell back to the higher precision. zcgesv's
// LAPACK routine takes the real workspace too.
#define STAND_IN_MIXED(PQ, pq, T, Low, ...) \
    cusolverStatus_t cusolverDn##PQ##gesv_bufferSize(cusolverDnHandle_t h, cusolver_int_t n, cusolver_int_t nrhs, T*, \
                                                     cusolver_int_t, cusolver_int_t*, T*, cusolver_int_t, T*, \
                                                     cusolver_int_t, void*, size_t* lwork_bytes) { \
        return sized(h, lwork_bytes, mixedBytes<T, Low>(n, nrhs)); \
    } \
    cusolverStatus_t cusolverDn##PQ##gesv(cusolverDnHandle_t h, cusolver_int_t n, cusolver_int_t nrhs, T* dA, \
                                          cusolver_int_t ldda, cusolver_int_t* dipiv, T* dB, cusolver_int_t lddb, \
                                          T* dX, cusolver_int_t lddx, void* dWorkspace, size_t lwork_bytes, \
                                          cusolver_int_t* iter, cusolver_int_t* d_info) { \
        if (lwork_bytes < mixedBytes<T, Low>(n, nrhs)) return CUSOLVER_STATUS_INVALID_VALUE; \
        T* work = static_cast<T*>(dWorkspace); \
        Low* swork = reinterpret_cast<Low*>(work + size_t(n) * nrhs); \
        [[maybe_unused]] double* rwork = reinterpret_cast<double*>(swork + size_t(n) * (n + nrhs)); \
        return launch(h, "cusolverDn" #PQ "gesv", {{"A", dA, n, n, ldda}, words("ipiv", dipiv, n), \
                      {"B", dB, n, nrhs, lddb}, {"X", dX, n, nrhs, lddx}, words("info", d_info, 1), \
                      words("workspace", dWorkspace, long(lwork_bytes))}, [&] { \
            openBlas(#pq "gesv_", &n, &nrhs, dA, &ldda, dipiv, dB, &lddb, dX, &lddx, work, swork, \
                     __VA_ARGS__ iter, d_info); \
            if (*iter < 0) scribble(dA, n, ldda); \
        }, true); \
    }

// Each precision: its letters, its type and its real type.
#define STAND_IN_EACH_TYPE(M) M(s, S, float, float) M(d, D, double, double) M(c, C, C, float) M(z, Z, Z, double)

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

// ---- The run-time

cudaError_t cudaGetDeviceCount(int* count) {
    *count = deviceCount;
    return inherited(__func__) ? cudaErrorInitializationError : cudaSuccess;
}
cudaError_t cudaSetDevice(int device) {
    if (device < 0 || device >= deviceCount) return cudaErrorInvalidDevice;
    currentDevice = device;
    return cudaSuccess;
}
cudaError_t cudaGetDevice(int* device) {
    *device = currentDevice;
    return inherited(__func__) ? cudaErrorInitializationError : cudaSuccess;
}
cudaError_t cudaGetLastError(void) { return cudaSuccess; }  // every error here is one call's own
const char* cudaGetErrorString(cudaError_t error) { return error == cudaSuccess ? "no error" : "stand-in CUDA error"; }

// Device memory starts with no particular contents; a failed allocation may be asked for.
cudaError_t cudaMalloc(void** p, size_t bytes) {
    *p = failsNow("allocate") ? nullptr : allocate(deviceBlocks, bytes, 256);
    if (*p != nullptr) std::memset(*p, 0xA5, bytes);
    std::lock_guard<std::mutex> hold(lock);
    if (*p != nullptr) blockDevice[static_cast<char*>(*p)] = currentDevice;
    return *p != nullptr ? cudaSuccess : cudaErrorMemoryAllocation;
}
cudaError_t cudaFree(void* p) { return p == nullptr ? cudaSuccess : release(deviceBlocks, p); }
cudaError_t cudaHostAlloc(void** p, size_t bytes, unsigned int) {
    *p = allocate(pinnedBlocks, bytes, 4096);
    return *p != nullptr ? cudaSuccess : cudaErrorMemoryAllocation;
}
cudaError_t cudaFreeHost(void* p) { return release(pinnedBlocks, p); }
// Pages may be registered once: a range that overlaps a pinned block is refused.
cudaError_t cudaHostRegister(void* p, size_t bytes, unsigned int) {
    char* c = static_cast<char*>(p);
    std::lock_guard<std::mutex> hold(lock);
    auto next = pinnedBlocks.lower_bound(c + bytes);
    if (next != pinnedBlocks.begin() && std::prev(next)->first + std::prev(next)->second > c)
        return cudaErrorHostMemoryAlreadyRegistered;
    pinnedBlocks[c] = bytes;
    return cudaSuccess;
}
// Unregistering pages that a queued copy still uses is counted as "unpinned": on
// a GPU that copy would read or write pages no longer locked.
cudaError_t cudaHostUnregister(void* p) {
    std::unique_lock<std::mutex> hold(lock);
    auto block = pinnedBlocks.find(static_cast<char*>(p));
    if (block == pinnedBlocks.end()) return cudaErrorHostMemoryNotRegistered;
    auto copy = queuedHost.lower_bound(block->first);
    const bool inUse = copy != queuedHost.end() && *copy < block->first + block->second;
    pinnedBlocks.erase(block);
    hold.unlock();
    if (inUse) failsNow("unpinned");
    return cudaSuccess;
}

cudaError_t cudaStreamCreateWithFlags(cudaStream_t* stream, unsigned int) { *stream = new CUstream_st; return cudaSuccess; }
cudaError_t cudaStreamDestroy(cudaStream_t stream) {
    return destroy(stream, __func__, cudaErrorInvalidResourceHandle, cudaSuccess);
}
cudaError_t cudaStreamSynchronize(cudaStream_t stream) { return wait(stream, UINT64_MAX); }
cudaError_t cudaEventCreateWithFlags(cudaEvent_t* event, unsigned int) { *event = new CUevent_st; return cudaSuccess; }
cudaError_t cudaEventDestroy(cudaEvent_t event) {
    return destroy(event, __func__, cudaErrorInvalidResourceHandle, cudaSuccess);
}
// Forgets the current device's memory and every pinned block (left allocated:
// whatever still points there must not be freed again) and outdates its objects.
cudaError_t cudaDeviceReset(void) {
    std::lock_guard<std::mutex> hold(lock);
    for (auto block = blockDevice.begin(); block != blockDevice.end();)
        if (block->second == currentDevice) {
            deviceBlocks.erase(block->first);
            block = blockDevice.erase(block);
        } else ++block;
    pinnedBlocks.clear();
    ++resets[currentDevice];
    return cudaSuccess;
}
cudaError_t cudaPointerGetAttributes(cudaPointerAttributes* attributes, const void* p) {
    *attributes = {};
    attributes->type = onDevice(p, 1) ? cudaMemoryTypeDevice
                     : within(pinnedBlocks, p, 1) ? cudaMemoryTypeHost : cudaMemoryTypeUnregistered;
    return cudaSuccess;
}
cudaError_t cudaEventRecord(cudaEvent_t event, cudaStream_t stream) {
    *event = {stream, stream->issued};
    return cudaSuccess;
}
cudaError_t cudaEventSynchronize(cudaEvent_t event) {
    return event->stream != nullptr ? wait(event->stream, event->at) : cudaSuccess;
}

cudaError_t cudaMemcpyAsync(void* dst, const void* src, size_t count, cudaMemcpyKind kind, cudaStream_t stream) {
    return copy(dst, count, src, count, count, 1, kind, stream, "cudaMemcpyAsync");
}
cudaError_t cudaMemcpy2DAsync(void* dst, size_t dpitch, const void* src, size_t spitch, size_t width, size_t height,
                              cudaMemcpyKind kind, cudaStream_t stream) {
    return copy(dst, dpitch, src, spitch, width, height, kind, stream, "cudaMemcpy2DAsync");
}
cudaError_t cudaMemsetAsync(void* p, int value, size_t count, cudaStream_t stream) {
    return cudaMemset2DAsync(p, count, value, count, 1, stream);
}
cudaError_t cudaMemset2DAsync(void* p, size_t pitch, int value, size_t width, size_t height, cudaStream_t stream) {
    if (width == 0 || height == 0) return cudaSuccess;
    if (!current(stream->device, "a stream", "cudaMemset")) return cudaErrorInvalidResourceHandle;
    if (!Operand("p", static_cast<const char*>(p), long(width), long(height), long(pitch)).onDevice("cudaMemset"))
        return cudaErrorInvalidValue;
    enqueue(stream, [=] {
        for (size_t row = 0; row < height; ++row) std::memset(static_cast<char*>(p) + row * pitch, value, width);
    });
    return cudaSuccess;
}

// ---- cuBLAS

cublasStatus_t cublasCreate_v2(cublasHandle_t* handle) { *handle = new cublasContext; return CUBLAS_STATUS_SUCCESS; }
cublasStatus_t cublasDestroy_v2(cublasHandle_t handle) {
    return destroy(handle, __func__, CUBLAS_STATUS_NOT_INITIALIZED, CUBLAS_STATUS_SUCCESS);
}
cublasStatus_t cublasSetStream_v2(cublasHandle_t handle, cudaStream_t stream) {
    handle->stream = stream;
    return CUBLAS_STATUS_SUCCESS;
}
const char* cublasGetStatusString(cublasStatus_t) { return "stand-in cuBLAS failure"; }

STAND_IN_EACH_TYPE(STAND_IN_GEMM)
STAND_IN_EACH_TYPE(STAND_IN_TRMM)
STAND_IN_EACH_TYPE(STAND_IN_TRSM)
STAND_IN_SYMM(s, S, float, symm) STAND_IN_SYMM(d, D, double, symm) STAND_IN_SYMM(c, C, C, symm)
STAND_IN_SYMM(z, Z, Z, symm) STAND_IN_SYMM(c, C, C, hemm) STAND_IN_SYMM(z, Z, Z, hemm)
STAND_IN_SYRK(s, S, float, float, syrk) STAND_IN_SYRK(d, D, double, double, syrk) STAND_IN_SYRK(c, C, C, C, syrk)
STAND_IN_SYRK(z, Z, Z, Z, syrk) STAND_IN_SYRK(c, C, C, float, herk) STAND_IN_SYRK(z, Z, Z, double, herk)
STAND_IN_SYR2K(s, S, float, float, syr2k) STAND_IN_SYR2K(d, D, double, double, syr2k)
STAND_IN_SYR2K(c, C, C, C, syr2k) STAND_IN_SYR2K(z, Z, Z, Z, syr2k)
STAND_IN_SYR2K(c, C, C, float, her2k) STAND_IN_SYR2K(z, Z, Z, double, her2k)
STAND_IN_SYMV(s, S, float, symv) STAND_IN_SYMV(d, D, double, symv)
STAND_IN_SYMV(c, C, C, hemv) STAND_IN_SYMV(z, Z, Z, hemv)
STAND_IN_EACH_TYPE(STAND_IN_GEAM)

// ---- cuSOLVER

cusolverStatus_t cusolverDnCreate(cusolverDnHandle_t* handle) { *handle = new cusolverDnContext; return CUSOLVER_STATUS_SUCCESS; }
cusolverStatus_t cusolverDnDestroy(cusolverDnHandle_t handle) {
    return destroy(handle, __func__, CUSOLVER_STATUS_NOT_INITIALIZED, CUSOLVER_STATUS_SUCCESS);
}
cusolverStatus_t cusolverDnSetStream(cusolverDnHandle_t handle, cudaStream_t stream) {
    handle->stream = stream;
    return CUSOLVER_STATUS_SUCCESS;
}

STAND_IN_EACH_TYPE(STAND_IN_POTRF)
STAND_IN_EACH_TYPE(STAND_IN_CHOLESKY)
STAND_IN_QR(s, S, float, org, orm) STAND_IN_QR(d, D, double, org, orm)
STAND_IN_QR(c, C, C, ung, unm) STAND_IN_QR(z, Z, Z, ung, unm)

// trtri through the generic interface: the element type is an argument, and the
// routine asks for host workspace too, which must lie outside device memory.
cusolverStatus_t cusolverDnXtrtri_bufferSize(cusolverDnHandle_t h, cublasFillMode_t, cublasDiagType_t, int64_t n,
                                             cudaDataType type, void*, int64_t, size_t* device, size_t* host) {
    if (h == nullptr) return CUSOLVER_STATUS_NOT_INITIALIZED;
    if (trtriElement(type) == 0) return CUSOLVER_STATUS_INVALID_VALUE;
    *device = size_t(n + 1) * trtriElement(type);
    *host = size_t(n + 1);
    return CUSOLVER_STATUS_SUCCESS;
}
cusolverStatus_t cusolverDnXtrtri(cusolverDnHandle_t h, cublasFillMode_t u, cublasDiagType_t d, int64_t n64,
                                  cudaDataType type, void* A, int64_t lda64, void* device, size_t deviceBytes,
                                  void* host, size_t hostBytes, int* info) {
    const size_t element = trtriElement(type);
    if (element == 0 || deviceBytes < size_t(n64 + 1) * element || hostBytes < size_t(n64 + 1) || host == nullptr ||
        onDevice(host, hostBytes))
        return CUSOLVER_STATUS_INVALID_VALUE;
    const int n = int(n64), lda = int(lda64);
    const char* name = type == CUDA_R_32F   ? "strtri_"
                       : type == CUDA_R_64F ? "dtrtri_"
                       : type == CUDA_C_32F ? "ctrtri_"
                                            : "ztrtri_";
    return launch(h, "cusolverDnXtrtri", {{"A", static_cast<const char*>(A), long(n) * long(element), n,
                                           long(lda) * long(element)},
                                          words("workspace", static_cast<const char*>(device), long(deviceBytes)),
                                          words("info", info, 1)},
                  [=, uplo = fill(u), unit = diag(d)] {
                      std::memset(host, 0xA5, hostBytes);
                      openBlas(name, &uplo, &unit, &n, A, &lda, info, oneChar, oneChar);
                  });
}
STAND_IN_EACH_TYPE(STAND_IN_LU)
STAND_IN_MIXED(DS, ds, double, float)
STAND_IN_MIXED(ZC, zc, Z, C, rwork,)
STAND_IN_SYEVD(s, S, float, float, syevd) STAND_IN_SYEVD(d, D, double, double, syevd)
STAND_IN_SYEVD(c, C, C, float, heevd) STAND_IN_SYEVD(z, Z, Z, double, heevd)
STAND_IN_SYGVD(s, S, float, float, sygvd) STAND_IN_SYGVD(d, D, double, double, sygvd)
STAND_IN_SYGVD(c, C, C, float, hegvd) STAND_IN_SYGVD(z, Z, Z, double, hegvd)
STAND_IN_EACH_TYPE(STAND_IN_GESVD)
STAND_IN_EACH_TYPE(STAND_IN_GEBRD)

}  // extern "C"
