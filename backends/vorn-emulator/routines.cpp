// The emulated routines, one line each: lower-case base, whether it has info, the
// GPU function's parameters.
#include "emulator.h"

extern "C" {

// Cholesky and triangular routines
int vornSpotrf(char uplo, int n, float* a, int lda) { return emulate<"spotrf", true>("vornSpotrf", uplo, n, a, lda); }

// LU routines
int vornSgetrf(int m, int n, float* a, int lda, int* ipiv) { return emulate<"sgetrf", true>("vornSgetrf", m, n, a, lda, ipiv); }
int vornDgetrf(int m, int n, double* a, int lda, int* ipiv) { return emulate<"dgetrf", true>("vornDgetrf", m, n, a, lda, ipiv); }
int vornCgetrf(int m, int n, vornFloatComplex* a, int lda, int* ipiv) { return emulate<"cgetrf", true>("vornCgetrf", m, n, a, lda, ipiv); }
int vornZgetrf(int m, int n, vornDoubleComplex* a, int lda, int* ipiv) { return emulate<"zgetrf", true>("vornZgetrf", m, n, a, lda, ipiv); }
int vornSgetrs(char trans, int n, int nrhs, const float* a, int lda, const int* ipiv, float* b, int ldb) { return emulate<"sgetrs", true>("vornSgetrs", trans, n, nrhs, a, lda, ipiv, b, ldb); }
int vornDgetrs(char trans, int n, int nrhs, const double* a, int lda, const int* ipiv, double* b, int ldb) { return emulate<"dgetrs", true>("vornDgetrs", trans, n, nrhs, a, lda, ipiv, b, ldb); }
int vornCgetrs(char trans, int n, int nrhs, const vornFloatComplex* a, int lda, const int* ipiv, vornFloatComplex* b, int ldb) { return emulate<"cgetrs", true>("vornCgetrs", trans, n, nrhs, a, lda, ipiv, b, ldb); }
int vornZgetrs(char trans, int n, int nrhs, const vornDoubleComplex* a, int lda, const int* ipiv, vornDoubleComplex* b, int ldb) { return emulate<"zgetrs", true>("vornZgetrs", trans, n, nrhs, a, lda, ipiv, b, ldb); }
int vornSgetri(int n, float* a, int lda, const int* ipiv) { return emulateGetri<"sgetri">("vornSgetri", n, a, lda, ipiv); }
int vornDgetri(int n, double* a, int lda, const int* ipiv) { return emulateGetri<"dgetri">("vornDgetri", n, a, lda, ipiv); }
int vornCgetri(int n, vornFloatComplex* a, int lda, const int* ipiv) { return emulateGetri<"cgetri">("vornCgetri", n, a, lda, ipiv); }
int vornZgetri(int n, vornDoubleComplex* a, int lda, const int* ipiv) { return emulateGetri<"zgetri">("vornZgetri", n, a, lda, ipiv); }
int vornSgesv(int n, int nrhs, float* a, int lda, int* ipiv, float* b, int ldb) { return emulate<"sgesv", true>("vornSgesv", n, nrhs, a, lda, ipiv, b, ldb); }
int vornDgesv(int n, int nrhs, double* a, int lda, int* ipiv, double* b, int ldb) { return emulate<"dgesv", true>("vornDgesv", n, nrhs, a, lda, ipiv, b, ldb); }
int vornCgesv(int n, int nrhs, vornFloatComplex* a, int lda, int* ipiv, vornFloatComplex* b, int ldb) { return emulate<"cgesv", true>("vornCgesv", n, nrhs, a, lda, ipiv, b, ldb); }
int vornZgesv(int n, int nrhs, vornDoubleComplex* a, int lda, int* ipiv, vornDoubleComplex* b, int ldb) { return emulate<"zgesv", true>("vornZgesv", n, nrhs, a, lda, ipiv, b, ldb); }
int vornSgbtrf(int m, int n, int kl, int ku, float* ab, int ldab, int* ipiv) { return emulate<"sgbtrf", true>("vornSgbtrf", m, n, kl, ku, ab, ldab, ipiv); }
int vornDgbtrf(int m, int n, int kl, int ku, double* ab, int ldab, int* ipiv) { return emulate<"dgbtrf", true>("vornDgbtrf", m, n, kl, ku, ab, ldab, ipiv); }
int vornCgbtrf(int m, int n, int kl, int ku, vornFloatComplex* ab, int ldab, int* ipiv) { return emulate<"cgbtrf", true>("vornCgbtrf", m, n, kl, ku, ab, ldab, ipiv); }
int vornZgbtrf(int m, int n, int kl, int ku, vornDoubleComplex* ab, int ldab, int* ipiv) { return emulate<"zgbtrf", true>("vornZgbtrf", m, n, kl, ku, ab, ldab, ipiv); }
int vornDsgesv(int n, int nrhs, double* a, int lda, int* ipiv, const double* b, int ldb, double* x, int ldx, double* work) { return emulateMixedGesv<"dsgesv", float>("vornDsgesv", n, nrhs, a, lda, ipiv, b, ldb, x, ldx, work); }
int vornZcgesv(int n, int nrhs, vornDoubleComplex* a, int lda, int* ipiv, const vornDoubleComplex* b, int ldb, vornDoubleComplex* x, int ldx, vornDoubleComplex* work) { return emulateMixedGesv<"zcgesv", vornFloatComplex>("vornZcgesv", n, nrhs, a, lda, ipiv, b, ldb, x, ldx, work); }

// Multiply and rank-update routines
int vornSgemm(char transa, char transb, int m, int n, int k, float alpha, const float* a, int lda, const float* b, int ldb, float beta, float* c, int ldc) { return emulate<"sgemm", false>("vornSgemm", transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornDgemm(char transa, char transb, int m, int n, int k, double alpha, const double* a, int lda, const double* b, int ldb, double beta, double* c, int ldc) { return emulate<"dgemm", false>("vornDgemm", transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornCgemm(char transa, char transb, int m, int n, int k, vornFloatComplex alpha, const vornFloatComplex* a, int lda, const vornFloatComplex* b, int ldb, vornFloatComplex beta, vornFloatComplex* c, int ldc) { return emulate<"cgemm", false>("vornCgemm", transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornZgemm(char transa, char transb, int m, int n, int k, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, const vornDoubleComplex* b, int ldb, vornDoubleComplex beta, vornDoubleComplex* c, int ldc) { return emulate<"zgemm", false>("vornZgemm", transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornSsymm(char side, char uplo, int m, int n, float alpha, const float* a, int lda, const float* b, int ldb, float beta, float* c, int ldc) { return emulate<"ssymm", false>("vornSsymm", side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornDsymm(char side, char uplo, int m, int n, double alpha, const double* a, int lda, const double* b, int ldb, double beta, double* c, int ldc) { return emulate<"dsymm", false>("vornDsymm", side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornCsymm(char side, char uplo, int m, int n, vornFloatComplex alpha, const vornFloatComplex* a, int lda, const vornFloatComplex* b, int ldb, vornFloatComplex beta, vornFloatComplex* c, int ldc) { return emulate<"csymm", false>("vornCsymm", side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornZsymm(char side, char uplo, int m, int n, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, const vornDoubleComplex* b, int ldb, vornDoubleComplex beta, vornDoubleComplex* c, int ldc) { return emulate<"zsymm", false>("vornZsymm", side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornChemm(char side, char uplo, int m, int n, vornFloatComplex alpha, const vornFloatComplex* a, int lda, const vornFloatComplex* b, int ldb, vornFloatComplex beta, vornFloatComplex* c, int ldc) { return emulate<"chemm", false>("vornChemm", side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornZhemm(char side, char uplo, int m, int n, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, const vornDoubleComplex* b, int ldb, vornDoubleComplex beta, vornDoubleComplex* c, int ldc) { return emulate<"zhemm", false>("vornZhemm", side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornSsyrk(char uplo, char trans, int n, int k, float alpha, const float* a, int lda, float beta, float* c, int ldc) { return emulate<"ssyrk", false>("vornSsyrk", uplo, trans, n, k, alpha, a, lda, beta, c, ldc); }
int vornDsyrk(char uplo, char trans, int n, int k, double alpha, const double* a, int lda, double beta, double* c, int ldc) { return emulate<"dsyrk", false>("vornDsyrk", uplo, trans, n, k, alpha, a, lda, beta, c, ldc); }
int vornCsyrk(char uplo, char trans, int n, int k, vornFloatComplex alpha, const vornFloatComplex* a, int lda, vornFloatComplex beta, vornFloatComplex* c, int ldc) { return emulate<"csyrk", false>("vornCsyrk", uplo, trans, n, k, alpha, a, lda, beta, c, ldc); }
int vornZsyrk(char uplo, char trans, int n, int k, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, vornDoubleComplex beta, vornDoubleComplex* c, int ldc) { return emulate<"zsyrk", false>("vornZsyrk", uplo, trans, n, k, alpha, a, lda, beta, c, ldc); }
int vornCherk(char uplo, char trans, int n, int k, float alpha, const vornFloatComplex* a, int lda, float beta, vornFloatComplex* c, int ldc) { return emulate<"cherk", false>("vornCherk", uplo, trans, n, k, alpha, a, lda, beta, c, ldc); }
int vornZherk(char uplo, char trans, int n, int k, double alpha, const vornDoubleComplex* a, int lda, double beta, vornDoubleComplex* c, int ldc) { return emulate<"zherk", false>("vornZherk", uplo, trans, n, k, alpha, a, lda, beta, c, ldc); }
int vornSsyr2k(char uplo, char trans, int n, int k, float alpha, const float* a, int lda, const float* b, int ldb, float beta, float* c, int ldc) { return emulate<"ssyr2k", false>("vornSsyr2k", uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornDsyr2k(char uplo, char trans, int n, int k, double alpha, const double* a, int lda, const double* b, int ldb, double beta, double* c, int ldc) { return emulate<"dsyr2k", false>("vornDsyr2k", uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornCsyr2k(char uplo, char trans, int n, int k, vornFloatComplex alpha, const vornFloatComplex* a, int lda, const vornFloatComplex* b, int ldb, vornFloatComplex beta, vornFloatComplex* c, int ldc) { return emulate<"csyr2k", false>("vornCsyr2k", uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornZsyr2k(char uplo, char trans, int n, int k, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, const vornDoubleComplex* b, int ldb, vornDoubleComplex beta, vornDoubleComplex* c, int ldc) { return emulate<"zsyr2k", false>("vornZsyr2k", uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornCher2k(char uplo, char trans, int n, int k, vornFloatComplex alpha, const vornFloatComplex* a, int lda, const vornFloatComplex* b, int ldb, float beta, vornFloatComplex* c, int ldc) { return emulate<"cher2k", false>("vornCher2k", uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornZher2k(char uplo, char trans, int n, int k, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, const vornDoubleComplex* b, int ldb, double beta, vornDoubleComplex* c, int ldc) { return emulate<"zher2k", false>("vornZher2k", uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc); }
int vornStrmm(char side, char uplo, char transa, char diag, int m, int n, float alpha, const float* a, int lda, float* b, int ldb) { return emulate<"strmm", false>("vornStrmm", side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb); }
int vornDtrmm(char side, char uplo, char transa, char diag, int m, int n, double alpha, const double* a, int lda, double* b, int ldb) { return emulate<"dtrmm", false>("vornDtrmm", side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb); }
int vornCtrmm(char side, char uplo, char transa, char diag, int m, int n, vornFloatComplex alpha, const vornFloatComplex* a, int lda, vornFloatComplex* b, int ldb) { return emulate<"ctrmm", false>("vornCtrmm", side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb); }
int vornZtrmm(char side, char uplo, char transa, char diag, int m, int n, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, vornDoubleComplex* b, int ldb) { return emulate<"ztrmm", false>("vornZtrmm", side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb); }
int vornStrsm(char side, char uplo, char transa, char diag, int m, int n, float alpha, const float* a, int lda, float* b, int ldb) { return emulate<"strsm", false>("vornStrsm", side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb); }
int vornDtrsm(char side, char uplo, char transa, char diag, int m, int n, double alpha, const double* a, int lda, double* b, int ldb) { return emulate<"dtrsm", false>("vornDtrsm", side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb); }
int vornCtrsm(char side, char uplo, char transa, char diag, int m, int n, vornFloatComplex alpha, const vornFloatComplex* a, int lda, vornFloatComplex* b, int ldb) { return emulate<"ctrsm", false>("vornCtrsm", side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb); }
int vornZtrsm(char side, char uplo, char transa, char diag, int m, int n, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, vornDoubleComplex* b, int ldb) { return emulate<"ztrsm", false>("vornZtrsm", side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb); }
int vornSsymv(char uplo, int n, float alpha, const float* a, int lda, const float* x, int incx, float beta, float* y, int incy) { return emulate<"ssymv", false>("vornSsymv", uplo, n, alpha, a, lda, x, incx, beta, y, incy); }
int vornDsymv(char uplo, int n, double alpha, const double* a, int lda, const double* x, int incx, double beta, double* y, int incy) { return emulate<"dsymv", false>("vornDsymv", uplo, n, alpha, a, lda, x, incx, beta, y, incy); }
int vornChemv(char uplo, int n, vornFloatComplex alpha, const vornFloatComplex* a, int lda, const vornFloatComplex* x, int incx, vornFloatComplex beta, vornFloatComplex* y, int incy) { return emulate<"chemv", false>("vornChemv", uplo, n, alpha, a, lda, x, incx, beta, y, incy); }
int vornZhemv(char uplo, int n, vornDoubleComplex alpha, const vornDoubleComplex* a, int lda, const vornDoubleComplex* x, int incx, vornDoubleComplex beta, vornDoubleComplex* y, int incy) { return emulate<"zhemv", false>("vornZhemv", uplo, n, alpha, a, lda, x, incx, beta, y, incy); }

}  // extern "C"
