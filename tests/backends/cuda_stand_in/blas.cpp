// The stand-in's cuBLAS: each routine checks that its matrices lie in device
// memory, reads its scalars at the call (host pointer mode), and puts the
// reference computation, OpenBLAS's Fortran routine, on the handle's stream.
#include <cstdlib>
#include <cstring>
#include <cublas_v2.h>
#include <initializer_list>

#include "device_model.h"
#include "stand_in.h"

struct cublasContext {
    cudaStream_t stream = nullptr;
};

using C = cuComplex;
using Z = cuDoubleComplex;
using size_t = std::size_t;

namespace {

char op(cublasOperation_t o) { return o == CUBLAS_OP_N ? 'N' : o == CUBLAS_OP_T ? 'T' : 'C'; }
char fill(cublasFillMode_t f) { return f == CUBLAS_FILL_MODE_UPPER ? 'U' : 'L'; }
char side(cublasSideMode_t s) { return s == CUBLAS_SIDE_LEFT ? 'L' : 'R'; }
char diag(cublasDiagType_t d) { return d == CUBLAS_DIAG_UNIT ? 'U' : 'N'; }

// A matrix operand: its name, address, rows, columns and leading dimension.
struct Matrix { const char* name; const void* p; long rows, cols, ld; };
// A vector of n elements with stride inc, as the matrix of its whole extent.
Matrix vector(const char* name, const void* p, int n, int inc) {
    const long span = n > 0 ? 1 + long(n - 1) * std::abs(inc) : 0;
    return {name, p, span, 1, span};
}

// Checks that every operand lies in device memory, then queues the work.
template <class Work>
cublasStatus_t launch(cublasHandle_t h, const char* f, size_t element, std::initializer_list<Matrix> operands,
                      Work work) {
    if (h == nullptr) return CUBLAS_STATUS_NOT_INITIALIZED;
    for (const Matrix& o : operands)
        if (!standIn::deviceMatrix(f, o.name, o.p, o.rows, o.cols, o.ld, element)) return CUBLAS_STATUS_INVALID_VALUE;
    if (standIn::failsNow("compute")) return CUBLAS_STATUS_EXECUTION_FAILED;
    standIn::enqueue(h->stream, work);
    return CUBLAS_STATUS_SUCCESS;
}

}  // namespace

#define STAND_IN_GEMM(p, P, T) \
    cublasStatus_t cublas##P##gemm_v2(cublasHandle_t h, cublasOperation_t ta, cublasOperation_t tb, int m, int n, \
                                      int k, const T* alpha, const T* A, int lda, const T* B, int ldb, \
                                      const T* beta, T* C, int ldc) { \
        const bool nA = ta == CUBLAS_OP_N, nB = tb == CUBLAS_OP_N; \
        return launch(h, "cublas" #P "gemm", sizeof(T), {{"A", A, nA ? m : k, nA ? k : m, lda}, \
                      {"B", B, nB ? k : n, nB ? n : k, ldb}, {"C", C, m, n, ldc}}, [=, al = *alpha, be = *beta] { \
            const char a = op(ta), b = op(tb); \
            STAND_IN_OPENBLAS(#p "gemm_", &a, &b, &m, &n, &k, &al, A, &lda, B, &ldb, &be, C, &ldc, oneChar, oneChar); \
        }); \
    }

// symm and hemm
#define STAND_IN_SYMM(p, P, T, root) \
    cublasStatus_t cublas##P##root##_v2(cublasHandle_t h, cublasSideMode_t s, cublasFillMode_t u, int m, int n, \
                                        const T* alpha, const T* A, int lda, const T* B, int ldb, const T* beta, \
                                        T* C, int ldc) { \
        const int order = s == CUBLAS_SIDE_LEFT ? m : n; \
        return launch(h, "cublas" #P #root, sizeof(T), {{"A", A, order, order, lda}, {"B", B, m, n, ldb}, \
                      {"C", C, m, n, ldc}}, [=, al = *alpha, be = *beta] { \
            const char a = side(s), b = fill(u); \
            STAND_IN_OPENBLAS(#p #root "_", &a, &b, &m, &n, &al, A, &lda, B, &ldb, &be, C, &ldc, oneChar, oneChar); \
        }); \
    }

// syrk and herk (real alpha and beta)
#define STAND_IN_SYRK(p, P, T, S, root) \
    cublasStatus_t cublas##P##root##_v2(cublasHandle_t h, cublasFillMode_t u, cublasOperation_t t, int n, int k, \
                                        const S* alpha, const T* A, int lda, const S* beta, T* C, int ldc) { \
        const bool nA = t == CUBLAS_OP_N; \
        return launch(h, "cublas" #P #root, sizeof(T), {{"A", A, nA ? n : k, nA ? k : n, lda}, {"C", C, n, n, ldc}}, \
                      [=, al = *alpha, be = *beta] { \
            const char a = fill(u), b = op(t); \
            STAND_IN_OPENBLAS(#p #root "_", &a, &b, &n, &k, &al, A, &lda, &be, C, &ldc, oneChar, oneChar); \
        }); \
    }

// syr2k and her2k (real beta)
#define STAND_IN_SYR2K(p, P, T, S, root) \
    cublasStatus_t cublas##P##root##_v2(cublasHandle_t h, cublasFillMode_t u, cublasOperation_t t, int n, int k, \
                                        const T* alpha, const T* A, int lda, const T* B, int ldb, const S* beta, \
                                        T* C, int ldc) { \
        const int rows = t == CUBLAS_OP_N ? n : k, cols = t == CUBLAS_OP_N ? k : n; \
        return launch(h, "cublas" #P #root, sizeof(T), {{"A", A, rows, cols, lda}, {"B", B, rows, cols, ldb}, \
                      {"C", C, n, n, ldc}}, [=, al = *alpha, be = *beta] { \
            const char a = fill(u), b = op(t); \
            STAND_IN_OPENBLAS(#p #root "_", &a, &b, &n, &k, &al, A, &lda, B, &ldb, &be, C, &ldc, oneChar, oneChar); \
        }); \
    }

// trmm and trsm. cuBLAS's trmm writes C = alpha op(A) B, which may be B itself;
// trsm solves in B.
#define STAND_IN_TRMM(p, P, T) \
    cublasStatus_t cublas##P##trmm_v2(cublasHandle_t h, cublasSideMode_t s, cublasFillMode_t u, \
                                      cublasOperation_t t, cublasDiagType_t d, int m, int n, const T* alpha, \
                                      const T* A, int lda, const T* B, int ldb, T* C, int ldc) { \
        const int order = s == CUBLAS_SIDE_LEFT ? m : n; \
        return launch(h, "cublas" #P "trmm", sizeof(T), {{"A", A, order, order, lda}, {"B", B, m, n, ldb}, \
                      {"C", C, m, n, ldc}}, [=, al = *alpha] { \
            if (C != B) \
                for (int j = 0; j < n; ++j) std::memmove(C + size_t(j) * ldc, B + size_t(j) * ldb, m * sizeof(T)); \
            const char a = side(s), b = fill(u), c = op(t), e = diag(d); \
            STAND_IN_OPENBLAS(#p "trmm_", &a, &b, &c, &e, &m, &n, &al, A, &lda, C, &ldc, oneChar, oneChar, oneChar, \
                              oneChar); \
        }); \
    }
#define STAND_IN_TRSM(p, P, T) \
    cublasStatus_t cublas##P##trsm_v2(cublasHandle_t h, cublasSideMode_t s, cublasFillMode_t u, \
                                      cublasOperation_t t, cublasDiagType_t d, int m, int n, const T* alpha, \
                                      const T* A, int lda, T* B, int ldb) { \
        const int order = s == CUBLAS_SIDE_LEFT ? m : n; \
        return launch(h, "cublas" #P "trsm", sizeof(T), {{"A", A, order, order, lda}, {"B", B, m, n, ldb}}, \
                      [=, al = *alpha] { \
            const char a = side(s), b = fill(u), c = op(t), e = diag(d); \
            STAND_IN_OPENBLAS(#p "trsm_", &a, &b, &c, &e, &m, &n, &al, A, &lda, B, &ldb, oneChar, oneChar, oneChar, \
                              oneChar); \
        }); \
    }

// symv and hemv
#define STAND_IN_SYMV(p, P, T, root) \
    cublasStatus_t cublas##P##root##_v2(cublasHandle_t h, cublasFillMode_t u, int n, const T* alpha, const T* A, \
                                        int lda, const T* x, int incx, const T* beta, T* y, int incy) { \
        return launch(h, "cublas" #P #root, sizeof(T), {{"A", A, n, n, lda}, vector("x", x, n, incx), \
                      vector("y", y, n, incy)}, [=, al = *alpha, be = *beta] { \
            const char a = fill(u); \
            STAND_IN_OPENBLAS(#p #root "_", &a, &n, &al, A, &lda, x, &incx, &be, y, &incy, oneChar); \
        }); \
    }

extern "C" {

cublasStatus_t cublasCreate_v2(cublasHandle_t* handle) { *handle = new cublasContext; return CUBLAS_STATUS_SUCCESS; }
cublasStatus_t cublasDestroy_v2(cublasHandle_t handle) { delete handle; return CUBLAS_STATUS_SUCCESS; }
cublasStatus_t cublasSetStream_v2(cublasHandle_t handle, cudaStream_t stream) {
    handle->stream = stream;
    return CUBLAS_STATUS_SUCCESS;
}
const char* cublasGetStatusString(cublasStatus_t) { return "stand-in cuBLAS failure"; }

STAND_IN_GEMM(s, S, float) STAND_IN_GEMM(d, D, double) STAND_IN_GEMM(c, C, C) STAND_IN_GEMM(z, Z, Z)
STAND_IN_SYMM(s, S, float, symm) STAND_IN_SYMM(d, D, double, symm) STAND_IN_SYMM(c, C, C, symm)
STAND_IN_SYMM(z, Z, Z, symm) STAND_IN_SYMM(c, C, C, hemm) STAND_IN_SYMM(z, Z, Z, hemm)
STAND_IN_SYRK(s, S, float, float, syrk) STAND_IN_SYRK(d, D, double, double, syrk) STAND_IN_SYRK(c, C, C, C, syrk)
STAND_IN_SYRK(z, Z, Z, Z, syrk) STAND_IN_SYRK(c, C, C, float, herk) STAND_IN_SYRK(z, Z, Z, double, herk)
STAND_IN_SYR2K(s, S, float, float, syr2k) STAND_IN_SYR2K(d, D, double, double, syr2k)
STAND_IN_SYR2K(c, C, C, C, syr2k) STAND_IN_SYR2K(z, Z, Z, Z, syr2k)
STAND_IN_SYR2K(c, C, C, float, her2k) STAND_IN_SYR2K(z, Z, Z, double, her2k)
STAND_IN_TRMM(s, S, float) STAND_IN_TRMM(d, D, double) STAND_IN_TRMM(c, C, C) STAND_IN_TRMM(z, Z, Z)
STAND_IN_TRSM(s, S, float) STAND_IN_TRSM(d, D, double) STAND_IN_TRSM(c, C, C) STAND_IN_TRSM(z, Z, Z)
STAND_IN_SYMV(s, S, float, symv) STAND_IN_SYMV(d, D, double, symv)
STAND_IN_SYMV(c, C, C, hemv) STAND_IN_SYMV(z, Z, Z, hemv)

}  // extern "C"
