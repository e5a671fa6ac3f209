// The stand-in's cuSOLVER: potrf, getrf and getrs on the handle's stream over
// OpenBLAS's LAPACK, info written to device memory; the mixed-precision solvers
// run at the call, since they answer their iteration count on the host.
#include <cmath>
#include <cusolverDn.h>
#include <limits>

#include "device_model.h"
#include "stand_in.h"

struct cusolverDnContext {
    cudaStream_t stream = nullptr;
};

using C = cuComplex;
using Z = cuDoubleComplex;
using size_t = std::size_t;

namespace {

using standIn::deviceMatrix;

template <class Work> cusolverStatus_t launch(cusolverDnHandle_t handle, bool valid, Work work) {
    if (handle == nullptr) return CUSOLVER_STATUS_NOT_INITIALIZED;
    if (!valid) return CUSOLVER_STATUS_INVALID_VALUE;
    if (standIn::failsNow("compute")) return CUSOLVER_STATUS_EXECUTION_FAILED;
    standIn::enqueue(handle->stream, work);
    return CUSOLVER_STATUS_SUCCESS;
}

bool deviceWords(const char* f, const char* name, const void* p, long count, size_t element) {
    return deviceMatrix(f, name, p, count, 1, count, element);
}

// Workspace sizes, in elements: something, so that the library must place it.
int luWork(int m, int n) { return m + n + 1; }

// LAPACK's dsgesv and zcgesv as cuSOLVER gives them: x, the pivots, info and the
// iteration count; a unchanged when refinement converged, and left with no
// particular contents when it fell back to the higher precision.
template <class T, class Low> size_t mixedBytes(int n, int nrhs) {
    return size_t(n) * nrhs * sizeof(T) + size_t(n) * (n + nrhs) * sizeof(Low) + size_t(n) * sizeof(double);
}
template <class T, class Low, class Solve>
cusolverStatus_t mixed(cusolverDnHandle_t h, const char* f, int n, int nrhs, T* dA, int ldda, int* dipiv, T* dB,
                       int lddb, T* dX, int lddx, void* dWorkspace, size_t lwork_bytes, int* iter, int* d_info,
                       Solve solve) {
    const bool valid = deviceMatrix(f, "A", dA, n, n, ldda, sizeof(T)) && deviceWords(f, "ipiv", dipiv, n, sizeof(int)) &&
                       deviceMatrix(f, "B", dB, n, nrhs, lddb, sizeof(T)) &&
                       deviceMatrix(f, "X", dX, n, nrhs, lddx, sizeof(T)) && deviceWords(f, "info", d_info, 1, sizeof(int)) &&
                       lwork_bytes >= mixedBytes<T, Low>(n, nrhs) &&
                       deviceWords(f, "workspace", dWorkspace, long(lwork_bytes), 1);
    if (h == nullptr) return CUSOLVER_STATUS_NOT_INITIALIZED;
    if (!valid) return CUSOLVER_STATUS_INVALID_VALUE;
    if (standIn::failsNow("compute")) return CUSOLVER_STATUS_EXECUTION_FAILED;
    standIn::drain(h->stream, UINT64_MAX);
    char* work = static_cast<char*>(dWorkspace);
    Low* low = reinterpret_cast<Low*>(work + size_t(n) * nrhs * sizeof(T));
    double* real = reinterpret_cast<double*>(work + size_t(n) * nrhs * sizeof(T) + size_t(n) * (n + nrhs) * sizeof(Low));
    solve(reinterpret_cast<T*>(work), low, real);
    if (*iter < 0)
        for (int j = 0; j < n; ++j)
            for (size_t i = 0; i < size_t(n) * sizeof(T) / sizeof(double); ++i)
                reinterpret_cast<double*>(dA + size_t(j) * ldda)[i] = std::numeric_limits<double>::quiet_NaN();
    return CUSOLVER_STATUS_SUCCESS;
}

}  // namespace

#define STAND_IN_LU(p, P, T) \
    cusolverStatus_t cusolverDn##P##getrf_bufferSize(cusolverDnHandle_t h, int m, int n, T*, int, int* lwork) { \
        if (h == nullptr) return CUSOLVER_STATUS_NOT_INITIALIZED; \
        *lwork = luWork(m, n); \
        return CUSOLVER_STATUS_SUCCESS; \
    } \
    cusolverStatus_t cusolverDn##P##getrf(cusolverDnHandle_t h, int m, int n, T* A, int lda, T* work, int* ipiv, \
                                         int* info) { \
        const char* f = "cusolverDn" #P "getrf"; \
        const bool valid = deviceMatrix(f, "A", A, m, n, lda, sizeof(T)) && \
                           deviceWords(f, "workspace", work, luWork(m, n), sizeof(T)) && \
                           deviceWords(f, "ipiv", ipiv, m < n ? m : n, sizeof(int)) && \
                           deviceWords(f, "info", info, 1, sizeof(int)); \
        return launch(h, valid, [=] { STAND_IN_OPENBLAS(#p "getrf_", &m, &n, A, &lda, ipiv, info); }); \
    } \
    cusolverStatus_t cusolverDn##P##getrs(cusolverDnHandle_t h, cublasOperation_t t, int n, int nrhs, const T* A, \
                                         int lda, const int* ipiv, T* B, int ldb, int* info) { \
        const char* f = "cusolverDn" #P "getrs"; \
        const bool valid = deviceMatrix(f, "A", A, n, n, lda, sizeof(T)) && deviceWords(f, "ipiv", ipiv, n, sizeof(int)) && \
                           deviceMatrix(f, "B", B, n, nrhs, ldb, sizeof(T)) && \
                           deviceWords(f, "info", info, 1, sizeof(int)); \
        return launch(h, valid, [=] { \
            const char trans = t == CUBLAS_OP_N ? 'N' : t == CUBLAS_OP_T ? 'T' : 'C'; \
            STAND_IN_OPENBLAS(#p "getrs_", &trans, &n, &nrhs, A, &lda, ipiv, B, &ldb, info, oneChar); \
        }); \
    }

// dsgesv and zcgesv; zcgesv's LAPACK routine takes a real workspace too.
#define STAND_IN_MIXED(PQ, pq, T, Low, ...) \
    cusolverStatus_t cusolverDn##PQ##gesv_bufferSize(cusolverDnHandle_t h, cusolver_int_t n, cusolver_int_t nrhs, T*, \
                                                     cusolver_int_t, cusolver_int_t*, T*, cusolver_int_t, T*, \
                                                     cusolver_int_t, void*, size_t* lwork_bytes) { \
        if (h == nullptr) return CUSOLVER_STATUS_NOT_INITIALIZED; \
        *lwork_bytes = mixedBytes<T, Low>(n, nrhs); \
        return CUSOLVER_STATUS_SUCCESS; \
    } \
    cusolverStatus_t cusolverDn##PQ##gesv(cusolverDnHandle_t h, cusolver_int_t n, cusolver_int_t nrhs, T* dA, \
                                          cusolver_int_t ldda, cusolver_int_t* dipiv, T* dB, cusolver_int_t lddb, \
                                          T* dX, cusolver_int_t lddx, void* dWorkspace, size_t lwork_bytes, \
                                          cusolver_int_t* iter, cusolver_int_t* d_info) { \
        return mixed<T, Low>(h, "cusolverDn" #PQ "gesv", n, nrhs, dA, ldda, dipiv, dB, lddb, dX, lddx, dWorkspace, \
                             lwork_bytes, iter, d_info, [&](T* work, Low* swork, [[maybe_unused]] double* rwork) { \
            STAND_IN_OPENBLAS(#pq "gesv_", &n, &nrhs, dA, &ldda, dipiv, dB, &lddb, dX, &lddx, work, swork, \
                              __VA_ARGS__ iter, d_info); \
        }); \
    }

extern "C" {

cusolverStatus_t cusolverDnCreate(cusolverDnHandle_t* handle) {
    *handle = new cusolverDnContext;
    return CUSOLVER_STATUS_SUCCESS;
}
cusolverStatus_t cusolverDnDestroy(cusolverDnHandle_t handle) {
    delete handle;
    return CUSOLVER_STATUS_SUCCESS;
}
cusolverStatus_t cusolverDnSetStream(cusolverDnHandle_t handle, cudaStream_t stream) {
    handle->stream = stream;
    return CUSOLVER_STATUS_SUCCESS;
}

cusolverStatus_t cusolverDnSpotrf_bufferSize(cusolverDnHandle_t h, cublasFillMode_t, int n, float*, int, int* lwork) {
    if (h == nullptr) return CUSOLVER_STATUS_NOT_INITIALIZED;
    *lwork = n + 1;
    return CUSOLVER_STATUS_SUCCESS;
}
cusolverStatus_t cusolverDnSpotrf(cusolverDnHandle_t h, cublasFillMode_t u, int n, float* A, int lda, float* work,
                                  int lwork, int* info) {
    const char* f = "cusolverDnSpotrf";
    const bool valid = lwork >= n + 1 && deviceMatrix(f, "A", A, n, n, lda, sizeof(float)) &&
                       deviceWords(f, "workspace", work, lwork, sizeof(float)) && deviceWords(f, "info", info, 1, sizeof(int));
    return launch(h, valid, [=] {
        const char uplo = u == CUBLAS_FILL_MODE_UPPER ? 'U' : 'L';
        STAND_IN_OPENBLAS("spotrf_", &uplo, &n, A, &lda, info, oneChar);
    });
}

STAND_IN_LU(s, S, float)
STAND_IN_LU(d, D, double)
STAND_IN_LU(c, C, C)
STAND_IN_LU(z, Z, Z)
STAND_IN_MIXED(DS, ds, double, float)
STAND_IN_MIXED(ZC, zc, Z, C, rwork,)

}  // extern "C"
