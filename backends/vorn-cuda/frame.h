// The one frame every routine of the CUDA GPU library follows, and the cuBLAS and
// cuSOLVER functions behind each root by precision. A routine is a row (routines.cpp):
// its arguments, its LAPACK argument checks, its quick return, its operands and
// its computation; the frame does the rest, written once:
//   ready? -> arguments (status 8) -> quick return -> context -> workspace ->
//   copy in -> compute -> wait, read info -> copy out what LAPACK leaves -> status.
// The caller's arrays are written only in the last step, after the GPU work, the
// wait and the info word have succeeded, and all at once from the staging slots
// when the outputs fit there, so every failure status leaves them as they were.
// Outputs larger than the slots are the one exception: they reach the caller's
// arrays piece by piece, so only a failure of that copy itself can come after
// part of them was written (see run for what the frame does then).
#pragma once

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <type_traits>
#include <vector>

#include "cuda_library.h"

// The cuBLAS and cuSOLVER functions, by root, for the four element types.
inline constexpr std::nullptr_t none = nullptr;
//              s                              d                              c                              z
#define VORN_CUDA_FUNCTIONS(X) \
  X(gemm,       cublasSgemm,                   cublasDgemm,                   cublasCgemm,                   cublasZgemm) \
  X(symm,       cublasSsymm,                   cublasDsymm,                   cublasCsymm,                   cublasZsymm) \
  X(hemm,       none,                          none,                          cublasChemm,                   cublasZhemm) \
  X(syrk,       cublasSsyrk,                   cublasDsyrk,                   cublasCsyrk,                   cublasZsyrk) \
  X(herk,       none,                          none,                          cublasCherk,                   cublasZherk) \
  X(syr2k,      cublasSsyr2k,                  cublasDsyr2k,                  cublasCsyr2k,                  cublasZsyr2k) \
  X(her2k,      none,                          none,                          cublasCher2k,                  cublasZher2k) \
  X(trmm,       cublasStrmm,                   cublasDtrmm,                   cublasCtrmm,                   cublasZtrmm) \
  X(trsm,       cublasStrsm,                   cublasDtrsm,                   cublasCtrsm,                   cublasZtrsm) \
  X(symv,       cublasSsymv,                   cublasDsymv,                   none,                          none) \
  X(hemv,       none,                          none,                          cublasChemv,                   cublasZhemv) \
  X(potrfSize,  cusolverDnSpotrf_bufferSize,   cusolverDnDpotrf_bufferSize,   cusolverDnCpotrf_bufferSize,   cusolverDnZpotrf_bufferSize) \
  X(potrf,      cusolverDnSpotrf,              cusolverDnDpotrf,              cusolverDnCpotrf,              cusolverDnZpotrf) \
  X(getrfSize,  cusolverDnSgetrf_bufferSize,   cusolverDnDgetrf_bufferSize,   cusolverDnCgetrf_bufferSize,   cusolverDnZgetrf_bufferSize) \
  X(getrf,      cusolverDnSgetrf,              cusolverDnDgetrf,              cusolverDnCgetrf,              cusolverDnZgetrf) \
  X(getrs,      cusolverDnSgetrs,              cusolverDnDgetrs,              cusolverDnCgetrs,              cusolverDnZgetrs) \
  X(mixedSize,  none,                          cusolverDnDSgesv_bufferSize,   none,                          cusolverDnZCgesv_bufferSize) \
  X(mixedGesv,  none,                          cusolverDnDSgesv,              none,                          cusolverDnZCgesv) \
  X(potrs,      cusolverDnSpotrs,              cusolverDnDpotrs,              cusolverDnCpotrs,              cusolverDnZpotrs) \
  X(potriSize,  cusolverDnSpotri_bufferSize,   cusolverDnDpotri_bufferSize,   cusolverDnCpotri_bufferSize,   cusolverDnZpotri_bufferSize) \
  X(potri,      cusolverDnSpotri,              cusolverDnDpotri,              cusolverDnCpotri,              cusolverDnZpotri) \
  X(trtriSize,  cusolverDnXtrtri_bufferSize,   cusolverDnXtrtri_bufferSize,   cusolverDnXtrtri_bufferSize,   cusolverDnXtrtri_bufferSize) \
  X(trtri,      cusolverDnXtrtri,              cusolverDnXtrtri,              cusolverDnXtrtri,              cusolverDnXtrtri) \
  X(geqrfSize,  cusolverDnSgeqrf_bufferSize,   cusolverDnDgeqrf_bufferSize,   cusolverDnCgeqrf_bufferSize,   cusolverDnZgeqrf_bufferSize) \
  X(geqrf,      cusolverDnSgeqrf,              cusolverDnDgeqrf,              cusolverDnCgeqrf,              cusolverDnZgeqrf) \
  X(orgqrSize,  cusolverDnSorgqr_bufferSize,   cusolverDnDorgqr_bufferSize,   cusolverDnCungqr_bufferSize,   cusolverDnZungqr_bufferSize) \
  X(orgqr,      cusolverDnSorgqr,              cusolverDnDorgqr,              cusolverDnCungqr,              cusolverDnZungqr) \
  X(ormqrSize,  cusolverDnSormqr_bufferSize,   cusolverDnDormqr_bufferSize,   cusolverDnCunmqr_bufferSize,   cusolverDnZunmqr_bufferSize) \
  X(ormqr,      cusolverDnSormqr,              cusolverDnDormqr,              cusolverDnCunmqr,              cusolverDnZunmqr) \
  X(orgbrSize,  cusolverDnSorgbr_bufferSize,   cusolverDnDorgbr_bufferSize,   cusolverDnCungbr_bufferSize,   cusolverDnZungbr_bufferSize) \
  X(orgbr,      cusolverDnSorgbr,              cusolverDnDorgbr,              cusolverDnCungbr,              cusolverDnZungbr) \
  X(geam,       cublasSgeam,                   cublasDgeam,                   cublasCgeam,                   cublasZgeam) \
  X(syevdSize,  cusolverDnSsyevd_bufferSize,   cusolverDnDsyevd_bufferSize,   cusolverDnCheevd_bufferSize,   cusolverDnZheevd_bufferSize) \
  X(syevd,      cusolverDnSsyevd,              cusolverDnDsyevd,              cusolverDnCheevd,              cusolverDnZheevd) \
  X(sygvdSize,  cusolverDnSsygvd_bufferSize,   cusolverDnDsygvd_bufferSize,   cusolverDnChegvd_bufferSize,   cusolverDnZhegvd_bufferSize) \
  X(sygvd,      cusolverDnSsygvd,              cusolverDnDsygvd,              cusolverDnChegvd,              cusolverDnZhegvd) \
  X(gesvdSize,  cusolverDnSgesvd_bufferSize,   cusolverDnDgesvd_bufferSize,   cusolverDnCgesvd_bufferSize,   cusolverDnZgesvd_bufferSize) \
  X(gesvd,      cusolverDnSgesvd,              cusolverDnDgesvd,              cusolverDnCgesvd,              cusolverDnZgesvd) \
  X(gebrdSize,  cusolverDnSgebrd_bufferSize,   cusolverDnDgebrd_bufferSize,   cusolverDnCgebrd_bufferSize,   cusolverDnZgebrd_bufferSize) \
  X(gebrd,      cusolverDnSgebrd,              cusolverDnDgebrd,              cusolverDnCgebrd,              cusolverDnZgebrd)

#define VORN_CUDA_COLUMN_S(root, s, d, c, z) static constexpr auto root = s;
#define VORN_CUDA_COLUMN_D(root, s, d, c, z) static constexpr auto root = d;
#define VORN_CUDA_COLUMN_C(root, s, d, c, z) static constexpr auto root = c;
#define VORN_CUDA_COLUMN_Z(root, s, d, c, z) static constexpr auto root = z;

// Per element type of the interface: the CUDA type of the same layout, the real
// type, the precision letter, the type's name in cuSOLVER's generic API and the
// functions.
template <class T> struct Library;
template <> struct Library<float> {
    using Device = float; using Real = float; static constexpr char letter = 's';
    static constexpr cudaDataType dataType = CUDA_R_32F;
    VORN_CUDA_FUNCTIONS(VORN_CUDA_COLUMN_S)
};
template <> struct Library<double> {
    using Device = double; using Real = double; static constexpr char letter = 'd';
    static constexpr cudaDataType dataType = CUDA_R_64F;
    VORN_CUDA_FUNCTIONS(VORN_CUDA_COLUMN_D)
};
template <> struct Library<vornFloatComplex> {
    using Device = cuComplex; using Real = float; static constexpr char letter = 'c';
    static constexpr cudaDataType dataType = CUDA_C_32F;
    VORN_CUDA_FUNCTIONS(VORN_CUDA_COLUMN_C)
};
template <> struct Library<vornDoubleComplex> {
    using Device = cuDoubleComplex; using Real = double; static constexpr char letter = 'z';
    static constexpr cudaDataType dataType = CUDA_C_64F;
    VORN_CUDA_FUNCTIONS(VORN_CUDA_COLUMN_Z)
};
static_assert(sizeof(vornFloatComplex) == sizeof(cuComplex) && sizeof(vornDoubleComplex) == sizeof(cuDoubleComplex));

template <class T> inline constexpr bool isComplex = !std::is_same_v<T, typename Library<T>::Real>;

// A scalar in the CUDA type, held where cuBLAS can read it (host pointer mode).
template <class T> typename Library<T>::Device scalar(const T& value) {
    typename Library<T>::Device out;
    std::memcpy(&out, &value, sizeof out);
    return out;
}
template <class T> bool isZero(const T& v) {
    if constexpr (isComplex<T>) return v.re == 0 && v.im == 0; else return v == 0;
}
template <class T> bool isOne(const T& v) {
    if constexpr (isComplex<T>) return v.re == 1 && v.im == 0; else return v == 1;
}
template <class T> T unit() {
    T one{};
    if constexpr (isComplex<T>) one.re = 1; else one = 1;
    return one;
}

// LAPACK's character tests: case-insensitive, one byte.
inline char upper(char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; }
inline bool oneOf(char c, const char* allowed) { return c != '\0' && std::strchr(allowed, upper(c)) != nullptr; }
inline int atLeastOne(int n) { return n > 1 ? n : 1; }

// One of two functions of different types, by a compile-time flag (symmetric or
// Hermitian).
template <bool First, class A, class B> constexpr auto choose(A first, B second) {
    if constexpr (First) return first; else return second;
}

// The position of the first illegal argument as LAPACK numbers it (so info is
// its negative), in LAPACK's order of checks; 0 when all are legal.
struct Check { int position; bool illegal; };
inline int firstIllegal(std::initializer_list<Check> checks) {
    for (const Check& check : checks)
        if (check.illegal) return check.position;
    return 0;
}

// Characters to cuBLAS enumerations. For real types 'C' is the transpose.
template <class T> cublasOperation_t operation(char c) {
    const char u = upper(c);
    return u == 'N' ? CUBLAS_OP_N : u == 'T' || !isComplex<T> ? CUBLAS_OP_T : CUBLAS_OP_C;
}
inline cublasFillMode_t fill(char c) { return upper(c) == 'U' ? CUBLAS_FILL_MODE_UPPER : CUBLAS_FILL_MODE_LOWER; }
inline cublasSideMode_t sideOf(char c) { return upper(c) == 'L' ? CUBLAS_SIDE_LEFT : CUBLAS_SIDE_RIGHT; }
inline cublasDiagType_t diagOf(char c) { return upper(c) == 'U' ? CUBLAS_DIAG_UNIT : CUBLAS_DIAG_NON_UNIT; }

// Operand constructors for the rows.
template <class T> Operand in(const T* host, int rows, int cols, int ld) {
    return {host, rows, cols, ld, int(sizeof(T)), Use::in, false, 0};
}
template <class T> Operand out(T* host, int rows, int cols, int ld, bool keptOnInfo = false) {
    return {host, rows, cols, ld, int(sizeof(T)), Use::out, keptOnInfo, 0};
}
template <class T> Operand inOut(T* host, int rows, int cols, int ld, bool keptOnInfo = false) {
    return {host, rows, cols, ld, int(sizeof(T)), Use::inOut, keptOnInfo, 0};
}
// A strided vector: its whole extent as one column, so that the GPU sees the same stride.
template <class T> Operand vector(T* host, int n, int inc, Use use) {
    const int span = 1 + (n - 1) * (inc < 0 ? -inc : inc);
    return {host, span, 1, span, int(sizeof(T)), use, false, 0};
}

// What a row's computation sees: the handles, the operands on the GPU, its scratch
// space on the GPU and on the host (pinned) and two info words (LAPACK's, and one
// for calls whose info is not LAPACK's).
struct Gpu {
    ThreadContext& context;
    const char* routine;
    Operand* operands;
    char* scratch;
    char* hostScratch;
    int* info;
    int* ignoredInfo;
    template <class T> typename Library<T>::Device* at(int i) const {
        return reinterpret_cast<typename Library<T>::Device*>(context.device + operands[i].offset);
    }
    // The GPU scratch from byte `from` on, as elements.
    template <class T> typename Library<T>::Device* work(std::size_t from = 0) const {
        return reinterpret_cast<typename Library<T>::Device*>(scratch + from);
    }
    int* pivots(int i) const { return reinterpret_cast<int*>(context.device + operands[i].offset); }
    int ld(int i) const { return operands[i].deviceLd(); }
    int blas(cublasStatus_t status, const char* what) const {
        return status ? blasFailure(status, routine, what) : 0;
    }
    int solver(cusolverStatus_t status, const char* what) const {
        return status ? solverFailure(status, routine, what) : 0;
    }
    // The computation found that operand i is as the caller gave it: it is not
    // copied back.
    void unchanged(int i) const { operands[i].use = Use::in; }
    // Sets the imaginary parts of the diagonal of operand i (n x n, complex) to
    // zero, as reference BLAS leaves them in herk and her2k and reads them in hemm
    // and hemv.
    template <class T> int realDiagonal(int i, int n) const {
        using Real = typename Library<T>::Real;
        const std::size_t pitch = std::size_t(ld(i) + 1) * sizeof(T);
        cudaError_t e = cudaMemset2DAsync(reinterpret_cast<char*>(at<T>(i)) + sizeof(Real), pitch, 0, sizeof(Real), n,
                                          context.stream);
        return e ? cudaFailure(e, routine, "cudaMemset2DAsync of the diagonal") : 0;
    }
};

inline std::size_t aligned(std::size_t bytes) { return (bytes + 255) & ~std::size_t{255}; }

// The frame. A row may add: `static constexpr bool available = false` (the
// routine is left to the CPU), `int numericalCheck() const` (info > 0 found on the
// host, before anything is copied), `const char* unsupported() const` (arguments
// whose result cuSOLVER cannot give as LAPACK does: left to the CPU), `int
// scratchBytes(ThreadContext&, std::size_t&) const` (GPU scratch beyond the
// operands), `int hostScratchBytes(ThreadContext&, std::size_t&) const` (pinned
// host scratch), `bool onlyScales() const` with `void scale() const` (a result
// that reads none of the operands that the GPU would multiply: computed on the
// host, where it costs no more than the copies would).
template <class Row>
int run(const Row& row) {
    char routine[16];
    std::snprintf(routine, sizeof routine, "%c%s", Library<typename Row::Type>::letter, Row::root);
    if (const int status = readiness()) return status;
    if (const int position = row.illegalArgument()) return answer(-position);
    if constexpr (requires { Row::available; }) {
        if (!Row::available) return fail(VORN_STATUS_NOT_AVAILABLE, routine, "routine", "left to the CPU library");
    }
    if constexpr (requires { row.numericalCheck(); }) {
        if (const int info = row.numericalCheck()) return answer(info);
    }
    if (row.nothingToDo()) return answer(0);
    if constexpr (requires { row.onlyScales(); }) {
        if (row.onlyScales()) {
            row.scale();
            return answer(0);
        }
    }
    if constexpr (requires { row.unsupported(); }) {
        if (const char* why = row.unsupported()) return fail(VORN_STATUS_NOT_AVAILABLE, routine, "arguments", why);
    }

    // The device first: a thread's context is made on the device current then, and
    // its handles work only there. Restored last, after every other clean-up.
    const OnLibraryDevice onDevice;
    if (onDevice.error) return cudaFailure(onDevice.error, routine, "cudaSetDevice");
    int status = 0;
    ThreadContext* context = threadContext(status);
    if (context == nullptr) return status;
    ThreadContext& c = *context;

    auto operands = row.operands();
    std::size_t scratch = 0;
    if constexpr (requires { row.scratchBytes(c, scratch); }) {
        if ((status = row.scratchBytes(c, scratch))) return status;
    }
    std::size_t bytes = 256;  // the two info words
    for (Operand& o : operands) {
        o.offset = bytes;
        bytes += aligned(o.bytes());
    }
    const std::size_t scratchOffset = bytes;
    if ((status = reserveDevice(c, bytes + scratch))) return status;
    if constexpr (requires { row.hostScratchBytes(c, scratch); }) {
        std::size_t hostScratch = 0;
        if ((status = row.hostScratchBytes(c, hostScratch)) || (status = reserveHost(c, hostScratch))) return status;
    }

    std::array<std::vector<const char*>, std::tuple_size_v<decltype(operands)>> held{};
    struct Release {
        decltype(held)& list;
        cudaStream_t stream;
        // A failure may leave copies in flight: they end before the pages are let go.
        ~Release() {
            bool any = false;
            for (const auto& ranges : list) any = any || !ranges.empty();
            if (any) cudaStreamSynchronize(stream);
            for (auto& ranges : list) release(ranges);
        }
    } releaseAll{held, c.stream};
    for (std::size_t i = 0; i < operands.size(); ++i)
        if ((status = pin(c, operands[i], held[i], routine))) return status;

    int* info = reinterpret_cast<int*>(c.device);
    if (cudaError_t error = cudaMemsetAsync(info, 0, sizeof(int), c.stream))
        return cudaFailure(error, routine, "cudaMemsetAsync");
    for (const Operand& o : operands)
        if (o.use != Use::out && o.bytes() > 0 && (status = upload(c, o, routine))) return status;
    const Gpu gpu{c, routine, operands.data(), c.device + scratchOffset, c.host, info, info + 32};
    status = row.compute(gpu);

    // Everything on the stream has finished (or failed) before the info word is read.
    int* hostInfo = reinterpret_cast<int*>(c.staging + 2 * settings.stagingBytes);
    cudaError_t error = cudaMemcpyAsync(hostInfo, info, sizeof(int), cudaMemcpyDeviceToHost, c.stream);
    if (!error) error = cudaStreamSynchronize(c.stream);
    if (status) return status;
    if (error) return cudaFailure(error, routine, "cudaStreamSynchronize");
    const int lapackInfo = *hostInfo;
    if (lapackInfo < 0) {
        // An argument that the checks above let through: the CPU library decides.
        char detail[48];
        std::snprintf(detail, sizeof detail, "info %d", lapackInfo);
        return fail(VORN_STATUS_RUNTIME_ERROR, routine, "argument refused on the GPU", detail);
    }
    std::array<const Operand*, std::tuple_size_v<decltype(operands)>> outputs{};
    int count = 0;
    for (const Operand& o : operands)
        if (o.use != Use::in && o.bytes() > 0 && (lapackInfo == 0 || o.keptOnInfo)) outputs[count++] = &o;
    // The one step that writes the caller's arrays; nothing else can fail after it.
    // Outputs larger than the staging slots reach them piece by piece, so a failure
    // of this copy may leave them partly written: they then hold neither what the
    // caller gave nor the results. The GPU still holds the results, so the copy is
    // made again, whole. If that fails too, a retry on the CPU is right only when
    // every output is one that the routine writes without reading it; otherwise
    // neither an answer nor a retry would be right, and the process stops.
    bool touched = false;
    status = downloadAll(c, outputs.data(), count, routine, touched);
    if (status && touched) {
        status = downloadAll(c, outputs.data(), count, routine, touched);
        for (int i = 0; status && i < count; ++i)
            if (outputs[i]->use == Use::inOut) partlyWritten(routine);
    }
    if (status) return status;
    return answer(lapackInfo);
}
