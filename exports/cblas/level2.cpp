// Level 2 of the CBLAS interface: each function in the header's order, forwarded
// through its kind's frame (level2_frames.h) to the link library's routine.
#include "level2_frames.h"

using namespace cblas;

extern "C" {

CBLAS_EXPORT void cblas_sgemv(const CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE TransA, const CBLAS_INT M,
                              const CBLAS_INT N, const float alpha, const float* A, const CBLAS_INT lda, const float* X,
                              const CBLAS_INT incX, const float beta, float* Y, const CBLAS_INT incY) {
    gemv<'s'>(sgemv_, __func__, layout, TransA, M, N, &alpha, A, lda, X, incX, &beta, Y, incY);
}
CBLAS_EXPORT void cblas_sgbmv(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE TransA, const CBLAS_INT M, const CBLAS_INT N,
                              const CBLAS_INT KL, const CBLAS_INT KU, const float alpha, const float* A,
                              const CBLAS_INT lda, const float* X, const CBLAS_INT incX, const float beta, float* Y,
                              const CBLAS_INT incY) {
    gbmv<'s'>(sgbmv_, __func__, layout, TransA, M, N, KL, KU, &alpha, A, lda, X, incX, &beta, Y, incY);
}
CBLAS_EXPORT void cblas_strmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const float* A, const CBLAS_INT lda, float* X, const CBLAS_INT incX) {
    trmv<'s'>(strmv_, __func__, layout, Uplo, TransA, Diag, N, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_stbmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const CBLAS_INT K, const float* A, const CBLAS_INT lda, float* X,
                              const CBLAS_INT incX) {
    tbmv<'s'>(stbmv_, __func__, layout, Uplo, TransA, Diag, N, K, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_stpmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const float* Ap, float* X, const CBLAS_INT incX) {
    tpmv<'s'>(stpmv_, __func__, layout, Uplo, TransA, Diag, N, Ap, X, incX);
}
CBLAS_EXPORT void cblas_strsv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const float* A, const CBLAS_INT lda, float* X, const CBLAS_INT incX) {
    trmv<'s'>(strsv_, __func__, layout, Uplo, TransA, Diag, N, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_stbsv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const CBLAS_INT K, const float* A, const CBLAS_INT lda, float* X,
                              const CBLAS_INT incX) {
    tbmv<'s'>(stbsv_, __func__, layout, Uplo, TransA, Diag, N, K, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_stpsv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const float* Ap, float* X, const CBLAS_INT incX) {
    tpmv<'s'>(stpsv_, __func__, layout, Uplo, TransA, Diag, N, Ap, X, incX);
}
CBLAS_EXPORT void cblas_dgemv(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE TransA, const CBLAS_INT M, const CBLAS_INT N,
                              const double alpha, const double* A, const CBLAS_INT lda, const double* X,
                              const CBLAS_INT incX, const double beta, double* Y, const CBLAS_INT incY) {
    gemv<'d'>(dgemv_, __func__, layout, TransA, M, N, &alpha, A, lda, X, incX, &beta, Y, incY);
}
CBLAS_EXPORT void cblas_dgbmv(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE TransA, const CBLAS_INT M, const CBLAS_INT N,
                              const CBLAS_INT KL, const CBLAS_INT KU, const double alpha, const double* A,
                              const CBLAS_INT lda, const double* X, const CBLAS_INT incX, const double beta, double* Y,
                              const CBLAS_INT incY) {
    gbmv<'d'>(dgbmv_, __func__, layout, TransA, M, N, KL, KU, &alpha, A, lda, X, incX, &beta, Y, incY);
}
CBLAS_EXPORT void cblas_dtrmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const double* A, const CBLAS_INT lda, double* X,
                              const CBLAS_INT incX) {
    trmv<'d'>(dtrmv_, __func__, layout, Uplo, TransA, Diag, N, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_dtbmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const CBLAS_INT K, const double* A, const CBLAS_INT lda, double* X,
                              const CBLAS_INT incX) {
    tbmv<'d'>(dtbmv_, __func__, layout, Uplo, TransA, Diag, N, K, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_dtpmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const double* Ap, double* X, const CBLAS_INT incX) {
    tpmv<'d'>(dtpmv_, __func__, layout, Uplo, TransA, Diag, N, Ap, X, incX);
}
CBLAS_EXPORT void cblas_dtrsv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const double* A, const CBLAS_INT lda, double* X,
                              const CBLAS_INT incX) {
    trmv<'d'>(dtrsv_, __func__, layout, Uplo, TransA, Diag, N, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_dtbsv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const CBLAS_INT K, const double* A, const CBLAS_INT lda, double* X,
                              const CBLAS_INT incX) {
    tbmv<'d'>(dtbsv_, __func__, layout, Uplo, TransA, Diag, N, K, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_dtpsv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const double* Ap, double* X, const CBLAS_INT incX) {
    tpmv<'d'>(dtpsv_, __func__, layout, Uplo, TransA, Diag, N, Ap, X, incX);
}
CBLAS_EXPORT void cblas_cgemv(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE TransA, const CBLAS_INT M, const CBLAS_INT N,
                              const void* alpha, const void* A, const CBLAS_INT lda, const void* X,
                              const CBLAS_INT incX, const void* beta, void* Y, const CBLAS_INT incY) {
    gemv<'c'>(cgemv_, __func__, layout, TransA, M, N, alpha, A, lda, X, incX, beta, Y, incY);
}
CBLAS_EXPORT void cblas_cgbmv(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE TransA, const CBLAS_INT M, const CBLAS_INT N,
                              const CBLAS_INT KL, const CBLAS_INT KU, const void* alpha, const void* A,
                              const CBLAS_INT lda, const void* X, const CBLAS_INT incX, const void* beta, void* Y,
                              const CBLAS_INT incY) {
    gbmv<'c'>(cgbmv_, __func__, layout, TransA, M, N, KL, KU, alpha, A, lda, X, incX, beta, Y, incY);
}
CBLAS_EXPORT void cblas_ctrmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const void* A, const CBLAS_INT lda, void* X, const CBLAS_INT incX) {
    trmv<'c'>(ctrmv_, __func__, layout, Uplo, TransA, Diag, N, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_ctbmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const CBLAS_INT K, const void* A, const CBLAS_INT lda, void* X,
                              const CBLAS_INT incX) {
    tbmv<'c'>(ctbmv_, __func__, layout, Uplo, TransA, Diag, N, K, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_ctpmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const void* Ap, void* X, const CBLAS_INT incX) {
    tpmv<'c'>(ctpmv_, __func__, layout, Uplo, TransA, Diag, N, Ap, X, incX);
}
CBLAS_EXPORT void cblas_ctrsv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const void* A, const CBLAS_INT lda, void* X, const CBLAS_INT incX) {
    trmv<'c'>(ctrsv_, __func__, layout, Uplo, TransA, Diag, N, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_ctbsv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const CBLAS_INT K, const void* A, const CBLAS_INT lda, void* X,
                              const CBLAS_INT incX) {
    tbmv<'c'>(ctbsv_, __func__, layout, Uplo, TransA, Diag, N, K, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_ctpsv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const void* Ap, void* X, const CBLAS_INT incX) {
    tpmv<'c'>(ctpsv_, __func__, layout, Uplo, TransA, Diag, N, Ap, X, incX);
}
CBLAS_EXPORT void cblas_zgemv(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE TransA, const CBLAS_INT M, const CBLAS_INT N,
                              const void* alpha, const void* A, const CBLAS_INT lda, const void* X,
                              const CBLAS_INT incX, const void* beta, void* Y, const CBLAS_INT incY) {
    gemv<'z'>(zgemv_, __func__, layout, TransA, M, N, alpha, A, lda, X, incX, beta, Y, incY);
}
CBLAS_EXPORT void cblas_zgbmv(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE TransA, const CBLAS_INT M, const CBLAS_INT N,
                              const CBLAS_INT KL, const CBLAS_INT KU, const void* alpha, const void* A,
                              const CBLAS_INT lda, const void* X, const CBLAS_INT incX, const void* beta, void* Y,
                              const CBLAS_INT incY) {
    gbmv<'z'>(zgbmv_, __func__, layout, TransA, M, N, KL, KU, alpha, A, lda, X, incX, beta, Y, incY);
}
CBLAS_EXPORT void cblas_ztrmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const void* A, const CBLAS_INT lda, void* X, const CBLAS_INT incX) {
    trmv<'z'>(ztrmv_, __func__, layout, Uplo, TransA, Diag, N, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_ztbmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const CBLAS_INT K, const void* A, const CBLAS_INT lda, void* X,
                              const CBLAS_INT incX) {
    tbmv<'z'>(ztbmv_, __func__, layout, Uplo, TransA, Diag, N, K, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_ztpmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const void* Ap, void* X, const CBLAS_INT incX) {
    tpmv<'z'>(ztpmv_, __func__, layout, Uplo, TransA, Diag, N, Ap, X, incX);
}
CBLAS_EXPORT void cblas_ztrsv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const void* A, const CBLAS_INT lda, void* X, const CBLAS_INT incX) {
    trmv<'z'>(ztrsv_, __func__, layout, Uplo, TransA, Diag, N, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_ztbsv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const CBLAS_INT K, const void* A, const CBLAS_INT lda, void* X,
                              const CBLAS_INT incX) {
    tbmv<'z'>(ztbsv_, __func__, layout, Uplo, TransA, Diag, N, K, A, lda, X, incX);
}
CBLAS_EXPORT void cblas_ztpsv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, CBLAS_TRANSPOSE TransA, CBLAS_DIAG Diag,
                              const CBLAS_INT N, const void* Ap, void* X, const CBLAS_INT incX) {
    tpmv<'z'>(ztpsv_, __func__, layout, Uplo, TransA, Diag, N, Ap, X, incX);
}
CBLAS_EXPORT void cblas_ssymv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const float alpha,
                              const float* A, const CBLAS_INT lda, const float* X, const CBLAS_INT incX,
                              const float beta, float* Y, const CBLAS_INT incY) {
    symv<'s'>(ssymv_, __func__, layout, Uplo, N, &alpha, A, lda, X, incX, &beta, Y, incY);
}
CBLAS_EXPORT void cblas_ssbmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const CBLAS_INT K,
                              const float alpha, const float* A, const CBLAS_INT lda, const float* X,
                              const CBLAS_INT incX, const float beta, float* Y, const CBLAS_INT incY) {
    sbmv<'s'>(ssbmv_, __func__, layout, Uplo, N, K, &alpha, A, lda, X, incX, &beta, Y, incY);
}
CBLAS_EXPORT void cblas_sspmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const float alpha,
                              const float* Ap, const float* X, const CBLAS_INT incX, const float beta, float* Y,
                              const CBLAS_INT incY) {
    spmv<'s'>(sspmv_, __func__, layout, Uplo, N, &alpha, Ap, X, incX, &beta, Y, incY);
}
CBLAS_EXPORT void cblas_sger(CBLAS_LAYOUT layout, const CBLAS_INT M, const CBLAS_INT N, const float alpha,
                             const float* X, const CBLAS_INT incX, const float* Y, const CBLAS_INT incY, float* A,
                             const CBLAS_INT lda) {
    ger<'s'>(sger_, __func__, layout, M, N, &alpha, X, incX, Y, incY, A, lda);
}
CBLAS_EXPORT void cblas_ssyr(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const float alpha, const float* X,
                             const CBLAS_INT incX, float* A, const CBLAS_INT lda) {
    syr<'s'>(ssyr_, __func__, layout, Uplo, N, &alpha, X, incX, A, lda);
}
CBLAS_EXPORT void cblas_sspr(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const float alpha, const float* X,
                             const CBLAS_INT incX, float* Ap) {
    spr<'s'>(sspr_, __func__, layout, Uplo, N, &alpha, X, incX, Ap);
}
CBLAS_EXPORT void cblas_ssyr2(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const float alpha,
                              const float* X, const CBLAS_INT incX, const float* Y, const CBLAS_INT incY, float* A,
                              const CBLAS_INT lda) {
    syr2<'s'>(ssyr2_, __func__, layout, Uplo, N, &alpha, X, incX, Y, incY, A, lda);
}
CBLAS_EXPORT void cblas_sspr2(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const float alpha,
                              const float* X, const CBLAS_INT incX, const float* Y, const CBLAS_INT incY, float* A) {
    spr2<'s'>(sspr2_, __func__, layout, Uplo, N, &alpha, X, incX, Y, incY, A);
}
CBLAS_EXPORT void cblas_dsymv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const double alpha,
                              const double* A, const CBLAS_INT lda, const double* X, const CBLAS_INT incX,
                              const double beta, double* Y, const CBLAS_INT incY) {
    symv<'d'>(dsymv_, __func__, layout, Uplo, N, &alpha, A, lda, X, incX, &beta, Y, incY);
}
CBLAS_EXPORT void cblas_dsbmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const CBLAS_INT K,
                              const double alpha, const double* A, const CBLAS_INT lda, const double* X,
                              const CBLAS_INT incX, const double beta, double* Y, const CBLAS_INT incY) {
    sbmv<'d'>(dsbmv_, __func__, layout, Uplo, N, K, &alpha, A, lda, X, incX, &beta, Y, incY);
}
CBLAS_EXPORT void cblas_dspmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const double alpha,
                              const double* Ap, const double* X, const CBLAS_INT incX, const double beta, double* Y,
                              const CBLAS_INT incY) {
    spmv<'d'>(dspmv_, __func__, layout, Uplo, N, &alpha, Ap, X, incX, &beta, Y, incY);
}
CBLAS_EXPORT void cblas_dger(CBLAS_LAYOUT layout, const CBLAS_INT M, const CBLAS_INT N, const double alpha,
                             const double* X, const CBLAS_INT incX, const double* Y, const CBLAS_INT incY, double* A,
                             const CBLAS_INT lda) {
    ger<'d'>(dger_, __func__, layout, M, N, &alpha, X, incX, Y, incY, A, lda);
}
CBLAS_EXPORT void cblas_dsyr(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const double alpha,
                             const double* X, const CBLAS_INT incX, double* A, const CBLAS_INT lda) {
    syr<'d'>(dsyr_, __func__, layout, Uplo, N, &alpha, X, incX, A, lda);
}
CBLAS_EXPORT void cblas_dspr(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const double alpha,
                             const double* X, const CBLAS_INT incX, double* Ap) {
    spr<'d'>(dspr_, __func__, layout, Uplo, N, &alpha, X, incX, Ap);
}
CBLAS_EXPORT void cblas_dsyr2(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const double alpha,
                              const double* X, const CBLAS_INT incX, const double* Y, const CBLAS_INT incY, double* A,
                              const CBLAS_INT lda) {
    syr2<'d'>(dsyr2_, __func__, layout, Uplo, N, &alpha, X, incX, Y, incY, A, lda);
}
CBLAS_EXPORT void cblas_dspr2(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const double alpha,
                              const double* X, const CBLAS_INT incX, const double* Y, const CBLAS_INT incY, double* A) {
    spr2<'d'>(dspr2_, __func__, layout, Uplo, N, &alpha, X, incX, Y, incY, A);
}
CBLAS_EXPORT void cblas_chemv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const void* alpha, const void* A,
                              const CBLAS_INT lda, const void* X, const CBLAS_INT incX, const void* beta, void* Y,
                              const CBLAS_INT incY) {
    symv<'c'>(chemv_, __func__, layout, Uplo, N, alpha, A, lda, X, incX, beta, Y, incY);
}
CBLAS_EXPORT void cblas_chbmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const CBLAS_INT K,
                              const void* alpha, const void* A, const CBLAS_INT lda, const void* X,
                              const CBLAS_INT incX, const void* beta, void* Y, const CBLAS_INT incY) {
    sbmv<'c'>(chbmv_, __func__, layout, Uplo, N, K, alpha, A, lda, X, incX, beta, Y, incY);
}
CBLAS_EXPORT void cblas_chpmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const void* alpha,
                              const void* Ap, const void* X, const CBLAS_INT incX, const void* beta, void* Y,
                              const CBLAS_INT incY) {
    spmv<'c'>(chpmv_, __func__, layout, Uplo, N, alpha, Ap, X, incX, beta, Y, incY);
}
CBLAS_EXPORT void cblas_cgeru(CBLAS_LAYOUT layout, const CBLAS_INT M, const CBLAS_INT N, const void* alpha,
                              const void* X, const CBLAS_INT incX, const void* Y, const CBLAS_INT incY, void* A,
                              const CBLAS_INT lda) {
    ger<'c'>(cgeru_, __func__, layout, M, N, alpha, X, incX, Y, incY, A, lda);
}
CBLAS_EXPORT void cblas_cgerc(CBLAS_LAYOUT layout, const CBLAS_INT M, const CBLAS_INT N, const void* alpha,
                              const void* X, const CBLAS_INT incX, const void* Y, const CBLAS_INT incY, void* A,
                              const CBLAS_INT lda) {
    ger<'c'>(cgerc_, __func__, layout, M, N, alpha, X, incX, Y, incY, A, lda);
}
CBLAS_EXPORT void cblas_cher(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const float alpha, const void* X,
                             const CBLAS_INT incX, void* A, const CBLAS_INT lda) {
    syr<'c'>(cher_, __func__, layout, Uplo, N, &alpha, X, incX, A, lda);
}
CBLAS_EXPORT void cblas_chpr(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const float alpha, const void* X,
                             const CBLAS_INT incX, void* A) {
    spr<'c'>(chpr_, __func__, layout, Uplo, N, &alpha, X, incX, A);
}
CBLAS_EXPORT void cblas_cher2(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const void* alpha, const void* X,
                              const CBLAS_INT incX, const void* Y, const CBLAS_INT incY, void* A, const CBLAS_INT lda) {
    syr2<'c'>(cher2_, __func__, layout, Uplo, N, alpha, X, incX, Y, incY, A, lda);
}
CBLAS_EXPORT void cblas_chpr2(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const void* alpha, const void* X,
                              const CBLAS_INT incX, const void* Y, const CBLAS_INT incY, void* Ap) {
    spr2<'c'>(chpr2_, __func__, layout, Uplo, N, alpha, X, incX, Y, incY, Ap);
}
CBLAS_EXPORT void cblas_zhemv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const void* alpha, const void* A,
                              const CBLAS_INT lda, const void* X, const CBLAS_INT incX, const void* beta, void* Y,
                              const CBLAS_INT incY) {
    symv<'z'>(zhemv_, __func__, layout, Uplo, N, alpha, A, lda, X, incX, beta, Y, incY);
}
CBLAS_EXPORT void cblas_zhbmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const CBLAS_INT K,
                              const void* alpha, const void* A, const CBLAS_INT lda, const void* X,
                              const CBLAS_INT incX, const void* beta, void* Y, const CBLAS_INT incY) {
    sbmv<'z'>(zhbmv_, __func__, layout, Uplo, N, K, alpha, A, lda, X, incX, beta, Y, incY);
}
CBLAS_EXPORT void cblas_zhpmv(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const void* alpha,
                              const void* Ap, const void* X, const CBLAS_INT incX, const void* beta, void* Y,
                              const CBLAS_INT incY) {
    spmv<'z'>(zhpmv_, __func__, layout, Uplo, N, alpha, Ap, X, incX, beta, Y, incY);
}
CBLAS_EXPORT void cblas_zgeru(CBLAS_LAYOUT layout, const CBLAS_INT M, const CBLAS_INT N, const void* alpha,
                              const void* X, const CBLAS_INT incX, const void* Y, const CBLAS_INT incY, void* A,
                              const CBLAS_INT lda) {
    ger<'z'>(zgeru_, __func__, layout, M, N, alpha, X, incX, Y, incY, A, lda);
}
CBLAS_EXPORT void cblas_zgerc(CBLAS_LAYOUT layout, const CBLAS_INT M, const CBLAS_INT N, const void* alpha,
                              const void* X, const CBLAS_INT incX, const void* Y, const CBLAS_INT incY, void* A,
                              const CBLAS_INT lda) {
    ger<'z'>(zgerc_, __func__, layout, M, N, alpha, X, incX, Y, incY, A, lda);
}
CBLAS_EXPORT void cblas_zher(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const double alpha, const void* X,
                             const CBLAS_INT incX, void* A, const CBLAS_INT lda) {
    syr<'z'>(zher_, __func__, layout, Uplo, N, &alpha, X, incX, A, lda);
}
CBLAS_EXPORT void cblas_zhpr(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const double alpha, const void* X,
                             const CBLAS_INT incX, void* A) {
    spr<'z'>(zhpr_, __func__, layout, Uplo, N, &alpha, X, incX, A);
}
CBLAS_EXPORT void cblas_zher2(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const void* alpha, const void* X,
                              const CBLAS_INT incX, const void* Y, const CBLAS_INT incY, void* A, const CBLAS_INT lda) {
    syr2<'z'>(zher2_, __func__, layout, Uplo, N, alpha, X, incX, Y, incY, A, lda);
}
CBLAS_EXPORT void cblas_zhpr2(CBLAS_LAYOUT layout, CBLAS_UPLO Uplo, const CBLAS_INT N, const void* alpha, const void* X,
                              const CBLAS_INT incX, const void* Y, const CBLAS_INT incY, void* Ap) {
    spr2<'z'>(zhpr2_, __func__, layout, Uplo, N, alpha, X, incX, Y, incY, Ap);
}

}  // extern "C"
