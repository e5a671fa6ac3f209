// Level 3 of the CBLAS interface: each function in the header's order, forwarded
// through its kind's frame (level3_frames.h) to the link library's routine.
#include "level3_frames.h"

using namespace cblas;

extern "C" {

CBLAS_EXPORT void cblas_sgemm(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE TransA, CBLAS_TRANSPOSE TransB, const CBLAS_INT M,
                              const CBLAS_INT N, const CBLAS_INT K, const float alpha, const float* A,
                              const CBLAS_INT lda, const float* B, const CBLAS_INT ldb, const float beta, float* C,
                              const CBLAS_INT ldc) {
    gemm<'s'>(sgemm_, __func__, layout, TransA, TransB, M, N, K, &alpha, A, lda, B, ldb, &beta, C, ldc);
}
CBLAS_EXPORT void cblas_ssymm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, const CBLAS_INT M,
                              const CBLAS_INT N, const float alpha, const float* A, const CBLAS_INT lda, const float* B,
                              const CBLAS_INT ldb, const float beta, float* C, const CBLAS_INT ldc) {
    symm<'s'>(ssymm_, __func__, layout, Side, Uplo, M, N, &alpha, A, lda, B, ldb, &beta, C, ldc);
}
CBLAS_EXPORT void cblas_ssyrk(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE Trans, const CBLAS_INT N,
                              const CBLAS_INT K, const float alpha, const float* A, const CBLAS_INT lda,
                              const float beta, float* C, const CBLAS_INT ldc) {
    syrk<'s', false>(ssyrk_, __func__, layout, Uplo, Trans, N, K, &alpha, A, lda, &beta, C, ldc);
}
CBLAS_EXPORT void cblas_ssyr2k(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE Trans, const CBLAS_INT N,
                               const CBLAS_INT K, const float alpha, const float* A, const CBLAS_INT lda,
                               const float* B, const CBLAS_INT ldb, const float beta, float* C, const CBLAS_INT ldc) {
    syr2k<'s', false>(ssyr2k_, __func__, layout, Uplo, Trans, N, K, &alpha, A, lda, B, ldb, &beta, C, ldc);
}
CBLAS_EXPORT void cblas_strmm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA,
                              CBLAS_DIAG Diag, const CBLAS_INT M, const CBLAS_INT N, const float alpha, const float* A,
                              const CBLAS_INT lda, float* B, const CBLAS_INT ldb) {
    trmm<'s'>(strmm_, __func__, layout, Side, Uplo, TransA, Diag, M, N, &alpha, A, lda, B, ldb);
}
CBLAS_EXPORT void cblas_strsm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA,
                              CBLAS_DIAG Diag, const CBLAS_INT M, const CBLAS_INT N, const float alpha, const float* A,
                              const CBLAS_INT lda, float* B, const CBLAS_INT ldb) {
    trmm<'s'>(strsm_, __func__, layout, Side, Uplo, TransA, Diag, M, N, &alpha, A, lda, B, ldb);
}
CBLAS_EXPORT void cblas_dgemm(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE TransA, CBLAS_TRANSPOSE TransB, const CBLAS_INT M,
                              const CBLAS_INT N, const CBLAS_INT K, const double alpha, const double* A,
                              const CBLAS_INT lda, const double* B, const CBLAS_INT ldb, const double beta, double* C,
                              const CBLAS_INT ldc) {
    gemm<'d'>(dgemm_, __func__, layout, TransA, TransB, M, N, K, &alpha, A, lda, B, ldb, &beta, C, ldc);
}
CBLAS_EXPORT void cblas_dsymm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, const CBLAS_INT M,
                              const CBLAS_INT N, const double alpha, const double* A, const CBLAS_INT lda,
                              const double* B, const CBLAS_INT ldb, const double beta, double* C, const CBLAS_INT ldc) {
    symm<'d'>(dsymm_, __func__, layout, Side, Uplo, M, N, &alpha, A, lda, B, ldb, &beta, C, ldc);
}
CBLAS_EXPORT void cblas_dsyrk(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE Trans, const CBLAS_INT N,
                              const CBLAS_INT K, const double alpha, const double* A, const CBLAS_INT lda,
                              const double beta, double* C, const CBLAS_INT ldc) {
    syrk<'d', false>(dsyrk_, __func__, layout, Uplo, Trans, N, K, &alpha, A, lda, &beta, C, ldc);
}
CBLAS_EXPORT void cblas_dsyr2k(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE Trans, const CBLAS_INT N,
                               const CBLAS_INT K, const double alpha, const double* A, const CBLAS_INT lda,
                               const double* B, const CBLAS_INT ldb, const double beta, double* C,
                               const CBLAS_INT ldc) {
    syr2k<'d', false>(dsyr2k_, __func__, layout, Uplo, Trans, N, K, &alpha, A, lda, B, ldb, &beta, C, ldc);
}
CBLAS_EXPORT void cblas_dtrmm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA,
                              CBLAS_DIAG Diag, const CBLAS_INT M, const CBLAS_INT N, const double alpha,
                              const double* A, const CBLAS_INT lda, double* B, const CBLAS_INT ldb) {
    trmm<'d'>(dtrmm_, __func__, layout, Side, Uplo, TransA, Diag, M, N, &alpha, A, lda, B, ldb);
}
CBLAS_EXPORT void cblas_dtrsm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA,
                              CBLAS_DIAG Diag, const CBLAS_INT M, const CBLAS_INT N, const double alpha,
                              const double* A, const CBLAS_INT lda, double* B, const CBLAS_INT ldb) {
    trmm<'d'>(dtrsm_, __func__, layout, Side, Uplo, TransA, Diag, M, N, &alpha, A, lda, B, ldb);
}
CBLAS_EXPORT void cblas_cgemm(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE TransA, CBLAS_TRANSPOSE TransB, const CBLAS_INT M,
                              const CBLAS_INT N, const CBLAS_INT K, const void* alpha, const void* A,
                              const CBLAS_INT lda, const void* B, const CBLAS_INT ldb, const void* beta, void* C,
                              const CBLAS_INT ldc) {
    gemm<'c'>(cgemm_, __func__, layout, TransA, TransB, M, N, K, alpha, A, lda, B, ldb, beta, C, ldc);
}
CBLAS_EXPORT void cblas_csymm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, const CBLAS_INT M,
                              const CBLAS_INT N, const void* alpha, const void* A, const CBLAS_INT lda, const void* B,
                              const CBLAS_INT ldb, const void* beta, void* C, const CBLAS_INT ldc) {
    symm<'c'>(csymm_, __func__, layout, Side, Uplo, M, N, alpha, A, lda, B, ldb, beta, C, ldc);
}
CBLAS_EXPORT void cblas_csyrk(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE Trans, const CBLAS_INT N,
                              const CBLAS_INT K, const void* alpha, const void* A, const CBLAS_INT lda,
                              const void* beta, void* C, const CBLAS_INT ldc) {
    syrk<'c', false>(csyrk_, __func__, layout, Uplo, Trans, N, K, alpha, A, lda, beta, C, ldc);
}
CBLAS_EXPORT void cblas_csyr2k(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE Trans, const CBLAS_INT N,
                               const CBLAS_INT K, const void* alpha, const void* A, const CBLAS_INT lda, const void* B,
                               const CBLAS_INT ldb, const void* beta, void* C, const CBLAS_INT ldc) {
    syr2k<'c', false>(csyr2k_, __func__, layout, Uplo, Trans, N, K, alpha, A, lda, B, ldb, beta, C, ldc);
}
CBLAS_EXPORT void cblas_ctrmm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA,
                              CBLAS_DIAG Diag, const CBLAS_INT M, const CBLAS_INT N, const void* alpha, const void* A,
                              const CBLAS_INT lda, void* B, const CBLAS_INT ldb) {
    trmm<'c'>(ctrmm_, __func__, layout, Side, Uplo, TransA, Diag, M, N, alpha, A, lda, B, ldb);
}
CBLAS_EXPORT void cblas_ctrsm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA,
                              CBLAS_DIAG Diag, const CBLAS_INT M, const CBLAS_INT N, const void* alpha, const void* A,
                              const CBLAS_INT lda, void* B, const CBLAS_INT ldb) {
    trmm<'c'>(ctrsm_, __func__, layout, Side, Uplo, TransA, Diag, M, N, alpha, A, lda, B, ldb);
}
CBLAS_EXPORT void cblas_zgemm(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE TransA, CBLAS_TRANSPOSE TransB, const CBLAS_INT M,
                              const CBLAS_INT N, const CBLAS_INT K, const void* alpha, const void* A,
                              const CBLAS_INT lda, const void* B, const CBLAS_INT ldb, const void* beta, void* C,
                              const CBLAS_INT ldc) {
    gemm<'z'>(zgemm_, __func__, layout, TransA, TransB, M, N, K, alpha, A, lda, B, ldb, beta, C, ldc);
}
CBLAS_EXPORT void cblas_zsymm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, const CBLAS_INT M,
                              const CBLAS_INT N, const void* alpha, const void* A, const CBLAS_INT lda, const void* B,
                              const CBLAS_INT ldb, const void* beta, void* C, const CBLAS_INT ldc) {
    symm<'z'>(zsymm_, __func__, layout, Side, Uplo, M, N, alpha, A, lda, B, ldb, beta, C, ldc);
}
CBLAS_EXPORT void cblas_zsyrk(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE Trans, const CBLAS_INT N,
                              const CBLAS_INT K, const void* alpha, const void* A, const CBLAS_INT lda,
                              const void* beta, void* C, const CBLAS_INT ldc) {
    syrk<'z', false>(zsyrk_, __func__, layout, Uplo, Trans, N, K, alpha, A, lda, beta, C, ldc);
}
CBLAS_EXPORT void cblas_zsyr2k(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE Trans, const CBLAS_INT N,
                               const CBLAS_INT K, const void* alpha, const void* A, const CBLAS_INT lda, const void* B,
                               const CBLAS_INT ldb, const void* beta, void* C, const CBLAS_INT ldc) {
    syr2k<'z', false>(zsyr2k_, __func__, layout, Uplo, Trans, N, K, alpha, A, lda, B, ldb, beta, C, ldc);
}
CBLAS_EXPORT void cblas_ztrmm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA,
                              CBLAS_DIAG Diag, const CBLAS_INT M, const CBLAS_INT N, const void* alpha, const void* A,
                              const CBLAS_INT lda, void* B, const CBLAS_INT ldb) {
    trmm<'z'>(ztrmm_, __func__, layout, Side, Uplo, TransA, Diag, M, N, alpha, A, lda, B, ldb);
}
CBLAS_EXPORT void cblas_ztrsm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA,
                              CBLAS_DIAG Diag, const CBLAS_INT M, const CBLAS_INT N, const void* alpha, const void* A,
                              const CBLAS_INT lda, void* B, const CBLAS_INT ldb) {
    trmm<'z'>(ztrsm_, __func__, layout, Side, Uplo, TransA, Diag, M, N, alpha, A, lda, B, ldb);
}
CBLAS_EXPORT void cblas_chemm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, const CBLAS_INT M,
                              const CBLAS_INT N, const void* alpha, const void* A, const CBLAS_INT lda, const void* B,
                              const CBLAS_INT ldb, const void* beta, void* C, const CBLAS_INT ldc) {
    symm<'c'>(chemm_, __func__, layout, Side, Uplo, M, N, alpha, A, lda, B, ldb, beta, C, ldc);
}
CBLAS_EXPORT void cblas_cherk(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE Trans, const CBLAS_INT N,
                              const CBLAS_INT K, const float alpha, const void* A, const CBLAS_INT lda,
                              const float beta, void* C, const CBLAS_INT ldc) {
    syrk<'c', true>(cherk_, __func__, layout, Uplo, Trans, N, K, &alpha, A, lda, &beta, C, ldc);
}
CBLAS_EXPORT void cblas_cher2k(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE Trans, const CBLAS_INT N,
                               const CBLAS_INT K, const void* alpha, const void* A, const CBLAS_INT lda, const void* B,
                               const CBLAS_INT ldb, const float beta, void* C, const CBLAS_INT ldc) {
    syr2k<'c', true>(cher2k_, __func__, layout, Uplo, Trans, N, K, alpha, A, lda, B, ldb, &beta, C, ldc);
}
CBLAS_EXPORT void cblas_zhemm(CBLAS_LAYOUT layout, CBLAS_SIDE Side, CBLAS_UPLO Uplo, const CBLAS_INT M,
                              const CBLAS_INT N, const void* alpha, const void* A, const CBLAS_INT lda, const void* B,
                              const CBLAS_INT ldb, const void* beta, void* C, const CBLAS_INT ldc) {
    symm<'z'>(zhemm_, __func__, layout, Side, Uplo, M, N, alpha, A, lda, B, ldb, beta, C, ldc);
}
CBLAS_EXPORT void cblas_zherk(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE Trans, const CBLAS_INT N,
                              const CBLAS_INT K, const double alpha, const void* A, const CBLAS_INT lda,
                              const double beta, void* C, const CBLAS_INT ldc) {
    syrk<'z', true>(zherk_, __func__, layout, Uplo, Trans, N, K, &alpha, A, lda, &beta, C, ldc);
}
CBLAS_EXPORT void cblas_zher2k(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE Trans, const CBLAS_INT N,
                               const CBLAS_INT K, const void* alpha, const void* A, const CBLAS_INT lda, const void* B,
                               const CBLAS_INT ldb, const double beta, void* C, const CBLAS_INT ldc) {
    syr2k<'z', true>(zher2k_, __func__, layout, Uplo, Trans, N, K, alpha, A, lda, B, ldb, &beta, C, ldc);
}

}  // extern "C"
