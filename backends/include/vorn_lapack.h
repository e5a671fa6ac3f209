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
VORN_API int vornDpotrf(char uplo, int n, double* a, int lda);
VORN_API int vornCpotrf(char uplo, int n, vornFloatComplex* a, int lda);
VORN_API int vornZpotrf(char uplo, int n, vornDoubleComplex* a, int lda);
VORN_API int vornSpotrs(char uplo, int n, int nrhs, const float* a, int lda, float* b, int ldb);
VORN_API int vornDpotrs(char uplo, int n, int nrhs, const double* a, int lda, double* b, int ldb);
VORN_API int vornCpotrs(char uplo, int n, int nrhs, const vornFloatComplex* a, int lda, vornFloatComplex* b, int ldb);
VORN_API int vornZpotrs(char uplo, int n, int nrhs, const vornDoubleComplex* a, int lda, vornDoubleComplex* b, int ldb);
VORN_API int vornSpotri(char uplo, int n, float* a, int lda);
VORN_API int vornDpotri(char uplo, int n, double* a, int lda);
VORN_API int vornCpotri(char uplo, int n, vornFloatComplex* a, int lda);
VORN_API int vornZpotri(char uplo, int n, vornDoubleComplex* a, int lda);
VORN_API int vornSposv(char uplo, int n, int nrhs, float* a, int lda, float* b, int ldb);
VORN_API int vornDposv(char uplo, int n, int nrhs, double* a, int lda, double* b, int ldb);
VORN_API int vornCposv(char uplo, int n, int nrhs, vornFloatComplex* a, int lda, vornFloatComplex* b, int ldb);
VORN_API int vornZposv(char uplo, int n, int nrhs, vornDoubleComplex* a, int lda, vornDoubleComplex* b, int ldb);
VORN_API int vornSpbtrf(char uplo, int n, int kd, float* ab, int ldab);
VORN_API int vornDpbtrf(char uplo, int n, int kd, double* ab, int ldab);
VORN_API int vornCpbtrf(char uplo, int n, int kd, vornFloatComplex* ab, int ldab);
VORN_API int vornZpbtrf(char uplo, int n, int kd, vornDoubleComplex* ab, int ldab);
VORN_API int vornStrtri(char uplo, char diag, int n, float* a, int lda);
VORN_API int vornDtrtri(char uplo, char diag, int n, double* a, int lda);
VORN_API int vornCtrtri(char uplo, char diag, int n, vornFloatComplex* a, int lda);
VORN_API int vornZtrtri(char uplo, char diag, int n, vornDoubleComplex* a, int lda);
VORN_API int vornStrtrs(char uplo, char trans, char diag, int n, int nrhs, const float* a, int lda, float* b, int ldb);
VORN_API int vornDtrtrs(char uplo, char trans, char diag, int n, int nrhs, const double* a, int lda, double* b, int ldb);
VORN_API int vornCtrtrs(char uplo, char trans, char diag, int n, int nrhs, const vornFloatComplex* a, int lda, vornFloatComplex* b, int ldb);
VORN_API int vornZtrtrs(char uplo, char trans, char diag, int n, int nrhs, const vornDoubleComplex* a, int lda, vornDoubleComplex* b, int ldb);

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

/* Orthogonal factorisations and the least squares drivers on them. They take no
 * workspace: work and lwork serve the CPU library alone. */
VORN_API int vornSgeqrf(int m, int n, float* a, int lda, float* tau);
VORN_API int vornDgeqrf(int m, int n, double* a, int lda, double* tau);
VORN_API int vornCgeqrf(int m, int n, vornFloatComplex* a, int lda, vornFloatComplex* tau);
VORN_API int vornZgeqrf(int m, int n, vornDoubleComplex* a, int lda, vornDoubleComplex* tau);
VORN_API int vornSgeqlf(int m, int n, float* a, int lda, float* tau);
VORN_API int vornDgeqlf(int m, int n, double* a, int lda, double* tau);
VORN_API int vornCgeqlf(int m, int n, vornFloatComplex* a, int lda, vornFloatComplex* tau);
VORN_API int vornZgeqlf(int m, int n, vornDoubleComplex* a, int lda, vornDoubleComplex* tau);
VORN_API int vornSgerqf(int m, int n, float* a, int lda, float* tau);
VORN_API int vornDgerqf(int m, int n, double* a, int lda, double* tau);
VORN_API int vornCgerqf(int m, int n, vornFloatComplex* a, int lda, vornFloatComplex* tau);
VORN_API int vornZgerqf(int m, int n, vornDoubleComplex* a, int lda, vornDoubleComplex* tau);
VORN_API int vornSgelqf(int m, int n, float* a, int lda, float* tau);
VORN_API int vornDgelqf(int m, int n, double* a, int lda, double* tau);
VORN_API int vornCgelqf(int m, int n, vornFloatComplex* a, int lda, vornFloatComplex* tau);
VORN_API int vornZgelqf(int m, int n, vornDoubleComplex* a, int lda, vornDoubleComplex* tau);
VORN_API int vornSgeqrfp(int m, int n, float* a, int lda, float* tau);
VORN_API int vornDgeqrfp(int m, int n, double* a, int lda, double* tau);
VORN_API int vornCgeqrfp(int m, int n, vornFloatComplex* a, int lda, vornFloatComplex* tau);
VORN_API int vornZgeqrfp(int m, int n, vornDoubleComplex* a, int lda, vornDoubleComplex* tau);
VORN_API int vornSgels(char trans, int m, int n, int nrhs, float* a, int lda, float* b, int ldb);
VORN_API int vornDgels(char trans, int m, int n, int nrhs, double* a, int lda, double* b, int ldb);
VORN_API int vornCgels(char trans, int m, int n, int nrhs, vornFloatComplex* a, int lda, vornFloatComplex* b, int ldb);
VORN_API int vornZgels(char trans, int m, int n, int nrhs, vornDoubleComplex* a, int lda, vornDoubleComplex* b, int ldb);
VORN_API int vornSgglse(int m, int n, int p, float* a, int lda, float* b, int ldb, float* c, float* d, float* x);
VORN_API int vornDgglse(int m, int n, int p, double* a, int lda, double* b, int ldb, double* c, double* d, double* x);
VORN_API int vornCgglse(int m, int n, int p, vornFloatComplex* a, int lda, vornFloatComplex* b, int ldb, vornFloatComplex* c, vornFloatComplex* d, vornFloatComplex* x);
VORN_API int vornZgglse(int m, int n, int p, vornDoubleComplex* a, int lda, vornDoubleComplex* b, int ldb, vornDoubleComplex* c, vornDoubleComplex* d, vornDoubleComplex* x);
VORN_API int vornSggrqf(int m, int p, int n, float* a, int lda, float* taua, float* b, int ldb, float* taub);
VORN_API int vornDggrqf(int m, int p, int n, double* a, int lda, double* taua, double* b, int ldb, double* taub);
VORN_API int vornCggrqf(int m, int p, int n, vornFloatComplex* a, int lda, vornFloatComplex* taua, vornFloatComplex* b, int ldb, vornFloatComplex* taub);
VORN_API int vornZggrqf(int m, int p, int n, vornDoubleComplex* a, int lda, vornDoubleComplex* taua, vornDoubleComplex* b, int ldb, vornDoubleComplex* taub);

/* Generation and use of orthogonal (real) and unitary (complex) factors */
VORN_API int vornSorgbr(char vect, int m, int n, int k, float* a, int lda, const float* tau);
VORN_API int vornDorgbr(char vect, int m, int n, int k, double* a, int lda, const double* tau);
VORN_API int vornCungbr(char vect, int m, int n, int k, vornFloatComplex* a, int lda, const vornFloatComplex* tau);
VORN_API int vornZungbr(char vect, int m, int n, int k, vornDoubleComplex* a, int lda, const vornDoubleComplex* tau);
VORN_API int vornSorghr(int n, int ilo, int ihi, float* a, int lda, const float* tau);
VORN_API int vornDorghr(int n, int ilo, int ihi, double* a, int lda, const double* tau);
VORN_API int vornCunghr(int n, int ilo, int ihi, vornFloatComplex* a, int lda, const vornFloatComplex* tau);
VORN_API int vornZunghr(int n, int ilo, int ihi, vornDoubleComplex* a, int lda, const vornDoubleComplex* tau);
VORN_API int vornSorglq(int m, int n, int k, float* a, int lda, const float* tau);
VORN_API int vornDorglq(int m, int n, int k, double* a, int lda, const double* tau);
VORN_API int vornCunglq(int m, int n, int k, vornFloatComplex* a, int lda, const vornFloatComplex* tau);
VORN_API int vornZunglq(int m, int n, int k, vornDoubleComplex* a, int lda, const vornDoubleComplex* tau);
VORN_API int vornSorgql(int m, int n, int k, float* a, int lda, const float* tau);
VORN_API int vornDorgql(int m, int n, int k, double* a, int lda, const double* tau);
VORN_API int vornCungql(int m, int n, int k, vornFloatComplex* a, int lda, const vornFloatComplex* tau);
VORN_API int vornZungql(int m, int n, int k, vornDoubleComplex* a, int lda, const vornDoubleComplex* tau);
VORN_API int vornSorgqr(int m, int n, int k, float* a, int lda, const float* tau);
VORN_API int vornDorgqr(int m, int n, int k, double* a, int lda, const double* tau);
VORN_API int vornCungqr(int m, int n, int k, vornFloatComplex* a, int lda, const vornFloatComplex* tau);
VORN_API int vornZungqr(int m, int n, int k, vornDoubleComplex* a, int lda, const vornDoubleComplex* tau);
VORN_API int vornSorgrq(int m, int n, int k, float* a, int lda, const float* tau);
VORN_API int vornDorgrq(int m, int n, int k, double* a, int lda, const double* tau);
VORN_API int vornCungrq(int m, int n, int k, vornFloatComplex* a, int lda, const vornFloatComplex* tau);
VORN_API int vornZungrq(int m, int n, int k, vornDoubleComplex* a, int lda, const vornDoubleComplex* tau);
VORN_API int vornSormlq(char side, char trans, int m, int n, int k, const float* a, int lda, const float* tau, float* c, int ldc);
VORN_API int vornDormlq(char side, char trans, int m, int n, int k, const double* a, int lda, const double* tau, double* c, int ldc);
VORN_API int vornCunmlq(char side, char trans, int m, int n, int k, const vornFloatComplex* a, int lda, const vornFloatComplex* tau, vornFloatComplex* c, int ldc);
VORN_API int vornZunmlq(char side, char trans, int m, int n, int k, const vornDoubleComplex* a, int lda, const vornDoubleComplex* tau, vornDoubleComplex* c, int ldc);
VORN_API int vornSormql(char side, char trans, int m, int n, int k, const float* a, int lda, const float* tau, float* c, int ldc);
VORN_API int vornDormql(char side, char trans, int m, int n, int k, const double* a, int lda, const double* tau, double* c, int ldc);
VORN_API int vornCunmql(char side, char trans, int m, int n, int k, const vornFloatComplex* a, int lda, const vornFloatComplex* tau, vornFloatComplex* c, int ldc);
VORN_API int vornZunmql(char side, char trans, int m, int n, int k, const vornDoubleComplex* a, int lda, const vornDoubleComplex* tau, vornDoubleComplex* c, int ldc);
VORN_API int vornSormqr(char side, char trans, int m, int n, int k, const float* a, int lda, const float* tau, float* c, int ldc);
VORN_API int vornDormqr(char side, char trans, int m, int n, int k, const double* a, int lda, const double* tau, double* c, int ldc);
VORN_API int vornCunmqr(char side, char trans, int m, int n, int k, const vornFloatComplex* a, int lda, const vornFloatComplex* tau, vornFloatComplex* c, int ldc);
VORN_API int vornZunmqr(char side, char trans, int m, int n, int k, const vornDoubleComplex* a, int lda, const vornDoubleComplex* tau, vornDoubleComplex* c, int ldc);
VORN_API int vornSormrq(char side, char trans, int m, int n, int k, const float* a, int lda, const float* tau, float* c, int ldc);
VORN_API int vornDormrq(char side, char trans, int m, int n, int k, const double* a, int lda, const double* tau, double* c, int ldc);
VORN_API int vornCunmrq(char side, char trans, int m, int n, int k, const vornFloatComplex* a, int lda, const vornFloatComplex* tau, vornFloatComplex* c, int ldc);
VORN_API int vornZunmrq(char side, char trans, int m, int n, int k, const vornDoubleComplex* a, int lda, const vornDoubleComplex* tau, vornDoubleComplex* c, int ldc);

/* Reductions and eigenvalues. syevx and heevx get the caller's work; m and nsplit
 * are outputs, given as pointers. */
VORN_API int vornSgehrd(int n, int ilo, int ihi, float* a, int lda, float* tau);
VORN_API int vornDgehrd(int n, int ilo, int ihi, double* a, int lda, double* tau);
VORN_API int vornCgehrd(int n, int ilo, int ihi, vornFloatComplex* a, int lda, vornFloatComplex* tau);
VORN_API int vornZgehrd(int n, int ilo, int ihi, vornDoubleComplex* a, int lda, vornDoubleComplex* tau);
VORN_API int vornSgebrd(int m, int n, float* a, int lda, float* d, float* e, float* tauq, float* taup);
VORN_API int vornDgebrd(int m, int n, double* a, int lda, double* d, double* e, double* tauq, double* taup);
VORN_API int vornCgebrd(int m, int n, vornFloatComplex* a, int lda, float* d, float* e, vornFloatComplex* tauq, vornFloatComplex* taup);
VORN_API int vornZgebrd(int m, int n, vornDoubleComplex* a, int lda, double* d, double* e, vornDoubleComplex* tauq, vornDoubleComplex* taup);
VORN_API int vornSgeev(char jobvl, char jobvr, int n, float* a, int lda, float* wr, float* wi, float* vl, int ldvl, float* vr, int ldvr);
VORN_API int vornDgeev(char jobvl, char jobvr, int n, double* a, int lda, double* wr, double* wi, double* vl, int ldvl, double* vr, int ldvr);
VORN_API int vornCgeev(char jobvl, char jobvr, int n, vornFloatComplex* a, int lda, vornFloatComplex* w, vornFloatComplex* vl, int ldvl, vornFloatComplex* vr, int ldvr);
VORN_API int vornZgeev(char jobvl, char jobvr, int n, vornDoubleComplex* a, int lda, vornDoubleComplex* w, vornDoubleComplex* vl, int ldvl, vornDoubleComplex* vr, int ldvr);
VORN_API int vornSsyev(char jobz, char uplo, int n, float* a, int lda, float* w);
VORN_API int vornDsyev(char jobz, char uplo, int n, double* a, int lda, double* w);
VORN_API int vornCheev(char jobz, char uplo, int n, vornFloatComplex* a, int lda, float* w);
VORN_API int vornZheev(char jobz, char uplo, int n, vornDoubleComplex* a, int lda, double* w);
VORN_API int vornSsyevx(char jobz, char range, char uplo, int n, float* a, int lda, float vl, float vu, int il, int iu, float abstol, int* m, float* w, float* z, int ldz, float* work);
VORN_API int vornDsyevx(char jobz, char range, char uplo, int n, double* a, int lda, double vl, double vu, int il, int iu, double abstol, int* m, double* w, double* z, int ldz, double* work);
VORN_API int vornCheevx(char jobz, char range, char uplo, int n, vornFloatComplex* a, int lda, float vl, float vu, int il, int iu, float abstol, int* m, float* w, vornFloatComplex* z, int ldz, vornFloatComplex* work);
VORN_API int vornZheevx(char jobz, char range, char uplo, int n, vornDoubleComplex* a, int lda, double vl, double vu, int il, int iu, double abstol, int* m, double* w, vornDoubleComplex* z, int ldz, vornDoubleComplex* work);
VORN_API int vornSsygv(int itype, char jobz, char uplo, int n, float* a, int lda, float* b, int ldb, float* w);
VORN_API int vornDsygv(int itype, char jobz, char uplo, int n, double* a, int lda, double* b, int ldb, double* w);
VORN_API int vornChegv(int itype, char jobz, char uplo, int n, vornFloatComplex* a, int lda, vornFloatComplex* b, int ldb, float* w);
VORN_API int vornZhegv(int itype, char jobz, char uplo, int n, vornDoubleComplex* a, int lda, vornDoubleComplex* b, int ldb, double* w);
VORN_API int vornSsteqr(char compz, int n, float* d, float* e, float* z, int ldz);
VORN_API int vornDsteqr(char compz, int n, double* d, double* e, double* z, int ldz);
VORN_API int vornCsteqr(char compz, int n, float* d, float* e, vornFloatComplex* z, int ldz);
VORN_API int vornZsteqr(char compz, int n, double* d, double* e, vornDoubleComplex* z, int ldz);
VORN_API int vornSstebz(char range, char order, int n, float vl, float vu, int il, int iu, float abstol, const float* d, const float* e, int* m, int* nsplit, float* w, int* iblock, int* isplit);
VORN_API int vornDstebz(char range, char order, int n, double vl, double vu, int il, int iu, double abstol, const double* d, const double* e, int* m, int* nsplit, double* w, int* iblock, int* isplit);

/* Singular values */
VORN_API int vornSgesvd(char jobu, char jobvt, int m, int n, float* a, int lda, float* s, float* u, int ldu, float* vt, int ldvt);
VORN_API int vornDgesvd(char jobu, char jobvt, int m, int n, double* a, int lda, double* s, double* u, int ldu, double* vt, int ldvt);
VORN_API int vornCgesvd(char jobu, char jobvt, int m, int n, vornFloatComplex* a, int lda, float* s, vornFloatComplex* u, int ldu, vornFloatComplex* vt, int ldvt);
VORN_API int vornZgesvd(char jobu, char jobvt, int m, int n, vornDoubleComplex* a, int lda, double* s, vornDoubleComplex* u, int ldu, vornDoubleComplex* vt, int ldvt);
VORN_API int vornSgesdd(char jobz, int m, int n, float* a, int lda, float* s, float* u, int ldu, float* vt, int ldvt);
VORN_API int vornDgesdd(char jobz, int m, int n, double* a, int lda, double* s, double* u, int ldu, double* vt, int ldvt);
VORN_API int vornCgesdd(char jobz, int m, int n, vornFloatComplex* a, int lda, float* s, vornFloatComplex* u, int ldu, vornFloatComplex* vt, int ldvt);
VORN_API int vornZgesdd(char jobz, int m, int n, vornDoubleComplex* a, int lda, double* s, vornDoubleComplex* u, int ldu, vornDoubleComplex* vt, int ldvt);
VORN_API int vornSbdsqr(char uplo, int n, int ncvt, int nru, int ncc, float* d, float* e, float* vt, int ldvt, float* u, int ldu, float* c, int ldc);
VORN_API int vornDbdsqr(char uplo, int n, int ncvt, int nru, int ncc, double* d, double* e, double* vt, int ldvt, double* u, int ldu, double* c, int ldc);
VORN_API int vornCbdsqr(char uplo, int n, int ncvt, int nru, int ncc, float* d, float* e, vornFloatComplex* vt, int ldvt, vornFloatComplex* u, int ldu, vornFloatComplex* c, int ldc);
VORN_API int vornZbdsqr(char uplo, int n, int ncvt, int nru, int ncc, double* d, double* e, vornDoubleComplex* vt, int ldvt, vornDoubleComplex* u, int ldu, vornDoubleComplex* c, int ldc);

#ifdef __cplusplus
}
#endif

#endif
