// The matrix-matrix functions, one frame per kind, over the link library's
// routine given as `routine`. A row-major call is the column-major call on the
// transposes: the dimensions and the operands of gemm trade places, side and
// uplo name the other side and triangle, and the rank-k updates transpose the
// other way; her2k takes conj(alpha) there.
#pragma once

#include <utility>

#include "cblas_frame.h"

namespace cblas {

template <char p, class Routine>
void gemm(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transA, CBLAS_TRANSPOSE transB, int m,
          int n, int k, Ref alpha, Ref a, int lda, Ref b, int ldb, Ref beta, void* c, int ldc) {
    const bool row = layout == CblasRowMajor;
    const Report report{name, row, {{4, 5}, {9, 11}}};
    if (!validLayout(name, layout)) return;
    char ta = transposeLetter(transA), tb = transposeLetter(transB);
    if (ta == 0) return report.illegal(2, "Illegal TransA setting, %d\n", transA);
    if (tb == 0) return report.illegal(3, "Illegal TransB setting, %d\n", transB);
    if (row) std::swap(ta, tb), std::swap(m, n), std::swap(a, b), std::swap(lda, ldb);
    const int rowsA = ta == 'N' ? m : k, rowsB = tb == 'N' ? k : n;
    if (int info = firstFailure({{3, m < 0},
                                 {4, n < 0},
                                 {5, k < 0},
                                 {8, lda < atLeastOne(rowsA)},
                                 {10, ldb < atLeastOne(rowsB)},
                                 {13, ldc < atLeastOne(m)}}))
        return report.fortranPosition(info);
    routine(&ta, &tb, &m, &n, &k, alpha, a, &lda, b, &ldb, beta, c, &ldc);
}

// symm and hemm.
template <char p, class Routine>
void symm(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, int m, int n,
          Ref alpha, Ref a, int lda, Ref b, int ldb, Ref beta, void* c, int ldc) {
    const bool row = layout == CblasRowMajor;
    const Report report{name, row, {{4, 5}}};
    if (!validLayout(name, layout)) return;
    const char si = sideLetter(side, row);
    if (si == 0) return report.illegal(2, "Illegal Side setting, %d\n", side);
    const char ul = uploLetter(uplo, row);
    if (ul == 0) return report.illegal(3, "Illegal Uplo setting, %d\n", uplo);
    if (row) std::swap(m, n);
    if (int info = firstFailure({{3, m < 0},
                                 {4, n < 0},
                                 {7, lda < atLeastOne(si == 'L' ? m : n)},
                                 {9, ldb < atLeastOne(m)},
                                 {12, ldc < atLeastOne(m)}}))
        return report.fortranPosition(info);
    routine(&si, &ul, &m, &n, alpha, a, &lda, b, &ldb, beta, c, &ldc);
}

// syrk, syr2k, herk, her2k: the letters and the checks. `hermitian` routines take
// N or C, complex symmetric ones N or T, real ones all three. In row-major order
// N becomes the transposition the routine takes and the other allowed value N;
// `call` gets uplo and trans.
template <char p>
void rankK(const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transIn, bool hermitian, int n,
           int k, int lda, int ldb, int ldc, bool twoOperands, auto call) {
    const bool row = layout == CblasRowMajor;
    const Report report{name, row};
    if (!validLayout(name, layout)) return;
    const char ul = uploLetter(uplo, row);
    if (ul == 0) return report.illegal(2, "Illegal Uplo setting, %d\n", uplo);
    char trans = transposeLetter(transIn);
    if (trans == 0) return report.illegal(3, "Illegal Trans setting, %d\n", transIn);
    const char other = hermitian ? 'C' : 'T';
    const bool allowed = !complexPrecision<p> || trans == 'N' || trans == other;
    if (row) {
        if (!allowed) return report.illegal(3, "Illegal Trans setting, %d\n", transIn);
        trans = trans == 'N' ? other : 'N';
    }
    const int rowsA = trans == 'N' ? n : k;
    if (int info = firstFailure({{2, !allowed},
                                 {3, n < 0},
                                 {4, k < 0},
                                 {7, lda < atLeastOne(rowsA)},
                                 {9, twoOperands && ldb < atLeastOne(rowsA)},
                                 {twoOperands ? 12 : 10, ldc < atLeastOne(n)}}))
        return report.fortranPosition(info);
    call(&ul, &trans);
}

template <char p, bool hermitian, class Routine>
void syrk(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, int n, int k,
          Ref alpha, Ref a, int lda, Ref beta, void* c, int ldc) {
    rankK<p>(name, layout, uplo, trans, hermitian, n, k, lda, 0, ldc, false,
             [&](Ref ul, Ref tr) { routine(ul, tr, &n, &k, alpha, a, &lda, beta, c, &ldc); });
}

template <char p, bool hermitian, class Routine>
void syr2k(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, int n, int k,
           Ref alpha, Ref a, int lda, Ref b, int ldb, Ref beta, void* c, int ldc) {
    rankK<p>(name, layout, uplo, trans, hermitian, n, k, lda, ldb, ldc, true, [&](Ref ul, Ref tr) {
        Element<p> scale = *static_cast<const Element<p>*>(alpha);
        if constexpr (hermitian)
            if (layout == CblasRowMajor) scale = std::conj(scale);
        routine(ul, tr, &n, &k, &scale, a, &lda, b, &ldb, beta, c, &ldc);
    });
}

// trmm and trsm.
template <char p, class Routine>
void trmm(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo,
          CBLAS_TRANSPOSE transA, CBLAS_DIAG diag, int m, int n, Ref alpha, Ref a, int lda, void* b, int ldb) {
    const bool row = layout == CblasRowMajor;
    const Report report{name, row, {{6, 7}}};
    if (!validLayout(name, layout)) return;
    const char si = sideLetter(side, row);
    if (si == 0) return report.illegal(2, "Illegal Side setting, %d\n", side);
    const char ul = uploLetter(uplo, row);
    if (ul == 0) return report.illegal(3, "Illegal Uplo setting, %d\n", uplo);
    const char tr = transposeLetter(transA);
    if (tr == 0) return report.illegal(4, "Illegal Trans setting, %d\n", transA);
    const char di = diagLetter(diag);
    if (di == 0) return report.illegal(5, "Illegal Diag setting, %d\n", diag);
    if (row) std::swap(m, n);
    if (int info =
            firstFailure({{5, m < 0}, {6, n < 0}, {9, lda < atLeastOne(si == 'L' ? m : n)}, {11, ldb < atLeastOne(m)}}))
        return report.fortranPosition(info);
    routine(&si, &ul, &tr, &di, &m, &n, alpha, a, &lda, b, &ldb);
}

}  // namespace cblas
