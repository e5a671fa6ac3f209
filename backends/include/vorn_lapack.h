/* Interface of a GPU library as the link library uses it.
 *
 * The link library is bound to libvorn_lapack.so at load time and knows it only
 * by these calls. Every GPU library of the project (the CUDA one, the emulator,
 * test stand-ins) implements exactly this header.
 *
 * Conventions: a character is a char, an integer a 32-bit int, a real scalar a
 * float or double, a complex scalar a vornFloatComplex / vornDoubleComplex passed
 * by value, an array a typed pointer to the caller's host memory. Every routine
 * returns a status; on any status but 0, 7 and 8 the caller's arrays must be left
 * exactly as they were, because the link library then repeats the call on the CPU.
 */
#ifndef VORN_LAPACK_H
#define VORN_LAPACK_H

#ifdef __cplusplus
extern "C" {
#endif

/* Every GPU library exports these functions, whatever its default visibility. */
#if defined(_WIN32)
#define VORN_API
#else
#define VORN_API __attribute__((visibility("default")))
#endif

typedef struct { float re, im; } vornFloatComplex;
typedef struct { double re, im; } vornDoubleComplex;

/* Statuses. 0 is success. 7 and 8 are answers, not failures: the routine met
 * what LAPACK reports through info, and vornGetErrorInfo() gives that value.
 * Every other status is a failure that the link library retries on the CPU. */
enum {
    VORN_STATUS_SUCCESS = 0,
    VORN_STATUS_NO_DEVICE = 1,          /* no usable GPU (or no driver) */
    VORN_STATUS_NOT_AVAILABLE = 2,      /* routine not available on this GPU library */
    VORN_STATUS_OUT_OF_MEMORY = 3,      /* GPU memory exhausted */
    VORN_STATUS_RUNTIME_ERROR = 4,      /* the GPU runtime or a GPU library failed */
    VORN_STATUS_NOT_INITIALIZED = 5,    /* called before a successful vornInitialize */
    VORN_STATUS_DEPENDENCY_MISSING = 6, /* a library the GPU library needs is missing */
    VORN_STATUS_INFO_NUMERICAL = 7,     /* info > 0: singular, not positive definite... */
    VORN_STATUS_INFO_ARGUMENT = 8       /* info < 0: an argument had an illegal value */
};

VORN_API int vornInitialize(void);
VORN_API void vornShutdown(void);
VORN_API const char* vornGetStatusString(int status);
/* The info value of the last routine call on the calling thread that returned 7 or 8. */
VORN_API int vornGetErrorInfo(void);

/* Cholesky and triangular routines */
VORN_API int vornSpotrf(char uplo, int n, float* a, int lda);

/* LU routines */
VORN_API int vornSgetrf(int m, int n, float* a, int lda, int* ipiv);
VORN_API int vornDgetrf(int m, int n, double* a, int lda, int* ipiv);
VORN_API int vornCgetrf(int m, int n, vornFloatComplex* a, int lda, int* ipiv);
VORN_API int vornZgetrf(int m, int n, vornDoubleComplex* a, int lda, int* ipiv);
VORN_API int vornSgetrs(char trans, int n, int nrhs, const float* a, int lda, const int* ipiv, float* b, int ldb);
VORN_API int vornDgetrs(char trans, int n, int nrhs, const double* a, int lda, const int* ipiv, double* b, int ldb);
VORN_API int vornCgetrs(char trans, int n, int nrhs, const vornFloatComplex* a, int lda, const int* ipiv, vornFloatComplex* b, int ldb);
VORN_API int vornZgetrs(char trans, int n, int nrhs, const vornDoubleComplex* a, int lda, const int* ipiv, vornDoubleComplex* b, int ldb);
VORN_API int vornSgetri(int n, float* a, int lda, const int* ipiv);
VORN_API int vornDgetri(int n, double* a, int lda, const int* ipiv);
VORN_API int vornCgetri(int n, vornFloatComplex* a, int lda, const int* ipiv);
VORN_API int vornZgetri(int n, vornDoubleComplex* a, int lda, const int* ipiv);
VORN_API int vornSgesv(int n, int nrhs, float* a, int lda, int* ipiv, float* b, int ldb);
VORN_API int vornDgesv(int n, int nrhs, double* a, int lda, int* ipiv, double* b, int ldb);
VORN_API int vornCgesv(int n, int nrhs, vornFloatComplex* a, int lda, int* ipiv, vornFloatComplex* b, int ldb);
VORN_API int vornZgesv(int n, int nrhs, vornDoubleComplex* a, int lda, int* ipiv, vornDoubleComplex* b, int ldb);
VORN_API int vornSgbtrf(int m, int n, int kl, int ku, float* ab, int ldab, int* ipiv);
VORN_API int vornDgbtrf(int m, int n, int kl, int ku, double* ab, int ldab, int* ipiv);
VORN_API int vornCgbtrf(int m, int n, int kl, int ku, vornFloatComplex* ab, int ldab, int* ipiv);
VORN_API int vornZgbtrf(int m, int n, int kl, int ku, vornDoubleComplex* ab, int ldab, int* ipiv);
VORN_API int vornDsgesv(int n, int nrhs, double* a, int lda, int* ipiv, const double* b, int ldb, double* x, int ldx, double* work);
VORN_API int vornZcgesv(int n, int nrhs, vornDoubleComplex* a, int lda, int* ipiv, const vornDoubleComplex* b, int ldb, vornDoubleComplex* x, int ldx, vornDoubleComplex* work);

/* Multiply and rank-update routines */
VORN_API int vornSgemm(char transa, char transb, int m, int n, int k, float alpha, const float* a, int lda, const float* b, int ldb, float beta, float* c, int ldc);
VORN_API int vornDgemm(char transa, char transb, int m, int n, int k, double alpha, const double* a, int lda, const double* b, int ldb, double beta, double* c, int ldc);
VORN_API int vornCgemm(char transa, char transb, int m, int n, int k, vornFloatComplex alpha, const vornFloatComplex* a, int lda, const vornFloatComplex* b, int ldb, vornFloatComplex beta, vornFloatComplex* c, int ldc);
VORN_API int vornZgemm(char transa, char transb, int m, int n, int k, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, const vornDoubleComplex* b, int ldb, vornDoubleComplex beta, vornDoubleComplex* c, int ldc);
VORN_API int vornSsymm(char side, char uplo, int m, int n, float alpha, const float* a, int lda, const float* b, int ldb, float beta, float* c, int ldc);
VORN_API int vornDsymm(char side, char uplo, int m, int n, double alpha, const double* a, int lda, const double* b, int ldb, double beta, double* c, int ldc);
VORN_API int vornCsymm(char side, char uplo, int m, int n, vornFloatComplex alpha, const vornFloatComplex* a, int lda, const vornFloatComplex* b, int ldb, vornFloatComplex beta, vornFloatComplex* c, int ldc);
VORN_API int vornZsymm(char side, char uplo, int m, int n, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, const vornDoubleComplex* b, int ldb, vornDoubleComplex beta, vornDoubleComplex* c, int ldc);
VORN_API int vornChemm(char side, char uplo, int m, int n, vornFloatComplex alpha, const vornFloatComplex* a, int lda, const vornFloatComplex* b, int ldb, vornFloatComplex beta, vornFloatComplex* c, int ldc);
VORN_API int vornZhemm(char side, char uplo, int m, int n, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, const vornDoubleComplex* b, int ldb, vornDoubleComplex beta, vornDoubleComplex* c, int ldc);
VORN_API int vornSsyrk(char uplo, char trans, int n, int k, float alpha, const float* a, int lda, float beta, float* c, int ldc);
VORN_API int vornDsyrk(char uplo, char trans, int n, int k, double alpha, const double* a, int lda, double beta, double* c, int ldc);
VORN_API int vornCsyrk(char uplo, char trans, int n, int k, vornFloatComplex alpha, const vornFloatComplex* a, int lda, vornFloatComplex beta, vornFloatComplex* c, int ldc);
VORN_API int vornZsyrk(char uplo, char trans, int n, int k, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, vornDoubleComplex beta, vornDoubleComplex* c, int ldc);
VORN_API int vornCherk(char uplo, char trans, int n, int k, float alpha, const vornFloatComplex* a, int lda, float beta, vornFloatComplex* c, int ldc);
VORN_API int vornZherk(char uplo, char trans, int n, int k, double alpha, const vornDoubleComplex* a, int lda, double beta, vornDoubleComplex* c, int ldc);
VORN_API int vornSsyr2k(char uplo, char trans, int n, int k, float alpha, const float* a, int lda, const float* b, int ldb, float beta, float* c, int ldc);
VORN_API int vornDsyr2k(char uplo, char trans, int n, int k, double alpha, const double* a, int lda, const double* b, int ldb, double beta, double* c, int ldc);
VORN_API int vornCsyr2k(char uplo, char trans, int n, int k, vornFloatComplex alpha, const vornFloatComplex* a, int lda, const vornFloatComplex* b, int ldb, vornFloatComplex beta, vornFloatComplex* c, int ldc);
VORN_API int vornZsyr2k(char uplo, char trans, int n, int k, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, const vornDoubleComplex* b, int ldb, vornDoubleComplex beta, vornDoubleComplex* c, int ldc);
VORN_API int vornCher2k(char uplo, char trans, int n, int k, vornFloatComplex alpha, const vornFloatComplex* a, int lda, const vornFloatComplex* b, int ldb, float beta, vornFloatComplex* c, int ldc);
VORN_API int vornZher2k(char uplo, char trans, int n, int k, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, const vornDoubleComplex* b, int ldb, double beta, vornDoubleComplex* c, int ldc);
VORN_API int vornStrmm(char side, char uplo, char transa, char diag, int m, int n, float alpha, const float* a, int lda, float* b, int ldb);
VORN_API int vornDtrmm(char side, char uplo, char transa, char diag, int m, int n, double alpha, const double* a, int lda, double* b, int ldb);
VORN_API int vornCtrmm(char side, char uplo, char transa, char diag, int m, int n, vornFloatComplex alpha, const vornFloatComplex* a, int lda, vornFloatComplex* b, int ldb);
VORN_API int vornZtrmm(char side, char uplo, char transa, char diag, int m, int n, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, vornDoubleComplex* b, int ldb);
VORN_API int vornStrsm(char side, char uplo, char transa, char diag, int m, int n, float alpha, const float* a, int lda, float* b, int ldb);
VORN_API int vornDtrsm(char side, char uplo, char transa, char diag, int m, int n, double alpha, const double* a, int lda, double* b, int ldb);
VORN_API int vornCtrsm(char side, char uplo, char transa, char diag, int m, int n, vornFloatComplex alpha, const vornFloatComplex* a, int lda, vornFloatComplex* b, int ldb);
VORN_API int vornZtrsm(char side, char uplo, char transa, char diag, int m, int n, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, vornDoubleComplex* b, int ldb);
VORN_API int vornSsymv(char uplo, int n, float alpha, const float* a, int lda, const float* x, int incx, float beta, float* y, int incy);
VORN_API int vornDsymv(char uplo, int n, double alpha, const double* a, int lda, const double* x, int incx, double beta, double* y, int incy);
VORN_API int vornChemv(char uplo, int n, vornFloatComplex alpha, const vornFloatComplex* a, int lda, const vornFloatComplex* x, int incx, vornFloatComplex beta, vornFloatComplex* y, int incy);
VORN_API int vornZhemv(char uplo, int n, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, const vornDoubleComplex* x, int incx, vornDoubleComplex beta, vornDoubleComplex* y, int incy);

#ifdef __cplusplus
}
#endif

#endif
