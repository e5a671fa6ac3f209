// The matrix-vector functions, one frame per kind, over the link library's
// routine given as `routine`. Row-major arrays are the transposes of the
// column-major arrays the Fortran routines see: uplo names the other triangle,
// the dimensions and operands trade places, and where a complex call needs the
// conjugate rather than the transpose the frame conjugates copies of the vectors
// (or the vector in place, and back) as the reference CBLAS does.
#pragma once

#include <utility>

#include "cblas_frame.h"

namespace cblas {

// y := alpha A^H x + beta y computed as conj(conj(alpha) A^T conj(x) + conj(beta) conj(y)),
// with x of nx and y of ny elements; `call` gets the conjugated alpha, x, its increment and beta.
template <char p>
void conjugatedProduct(const char* name, Ref alpha, Ref beta, Ref x, int nx, int incx, void* y, int ny, int incy,
                       auto call) {
    ConjugatedCopy<p> copy(x, nx, incx);
    if (copyFailed(name, copy.data)) return;
    const Element<p> conjugatedAlpha = std::conj(*static_cast<const Element<p>*>(alpha));
    const Element<p> conjugatedBeta = std::conj(*static_cast<const Element<p>*>(beta));
    const int one = 1;
    conjugate<p>(y, ny, incy);
    call(&conjugatedAlpha, copy.data, &one, &conjugatedBeta);
    conjugate<p>(y, ny, incy);
}

// The letter of a row-major call's transposition: the transpose of the transpose.
constexpr char rowMajorTranspose(char trans) { return trans == 'N' ? 'T' : 'N'; }

template <char p, class Routine>
void gemv(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transA, int m, int n, Ref alpha,
          Ref a, int lda, Ref x, int incx, Ref beta, void* y, int incy) {
    const bool row = layout == CblasRowMajor;
    const Report report{name, row, {{3, 4}}};
    if (!validLayout(name, layout)) return;
    char trans = transposeLetter(transA);
    if (trans == 0) return report.illegal(2, "Illegal TransA setting, %d\n", transA);
    const bool conjugated = row && complexPrecision<p> && trans == 'C';
    if (row) trans = rowMajorTranspose(trans), std::swap(m, n);
    if (int info = firstFailure({{2, m < 0}, {3, n < 0}, {6, lda < atLeastOne(m)}, {8, incx == 0}, {11, incy == 0}}))
        return report.fortranPosition(info);
    if constexpr (complexPrecision<p>)
        if (conjugated)
            return conjugatedProduct<p>(
                name, alpha, beta, x, n, incx, y, m, incy,
                [&](Ref al, Ref cx, Ref one, Ref be) { routine(&trans, &m, &n, al, a, &lda, cx, one, be, y, &incy); });
    routine(&trans, &m, &n, alpha, a, &lda, x, &incx, beta, y, &incy);
}

template <char p, class Routine>
void gbmv(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transA, int m, int n, int kl, int ku,
          Ref alpha, Ref a, int lda, Ref x, int incx, Ref beta, void* y, int incy) {
    const bool row = layout == CblasRowMajor;
    const Report report{name, row, {{3, 4}, {5, 6}}};
    if (!validLayout(name, layout)) return;
    char trans = transposeLetter(transA);
    if (trans == 0) return report.illegal(2, "Illegal TransA setting, %d\n", transA);
    const bool conjugated = row && complexPrecision<p> && trans == 'C';
    if (row) trans = rowMajorTranspose(trans), std::swap(m, n), std::swap(kl, ku);
    if (int info = firstFailure({{2, m < 0},
                                 {3, n < 0},
                                 {4, kl < 0},
                                 {5, ku < 0},
                                 {8, lda < kl + ku + 1},
                                 {10, incx == 0},
                                 {13, incy == 0}}))
        return report.fortranPosition(info);
    if constexpr (complexPrecision<p>)
        if (conjugated)
            return conjugatedProduct<p>(name, alpha, beta, x, n, incx, y, m, incy,
                                        [&](Ref al, Ref cx, Ref one, Ref be) {
                                            routine(&trans, &m, &n, &kl, &ku, al, a, &lda, cx, one, be, y, &incy);
                                        });
    routine(&trans, &m, &n, &kl, &ku, alpha, a, &lda, x, &incx, beta, y, &incy);
}

// trmv, tbmv, tpmv, trsv, tbsv, tpsv: `checks` are the Fortran routine's own after
// its three letters; `call` gets the addresses of the three letters.
template <char p>
void triangularVector(const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transA, CBLAS_DIAG diag,
                      int n, void* x, int incx, std::initializer_list<Check> checks, auto call) {
    const bool row = layout == CblasRowMajor;
    const Report report{name, row};
    if (!validLayout(name, layout)) return;
    const char ul = uploLetter(uplo, row);
    if (ul == 0) return report.illegal(2, "Illegal Uplo setting, %d\n", uplo);
    char trans = transposeLetter(transA);
    if (trans == 0) return report.illegal(3, "Illegal TransA setting, %d\n", transA);
    const char di = diagLetter(diag);
    if (di == 0) return report.illegal(4, "Illegal Diag setting, %d\n", diag);
    if (int info = firstFailure(checks)) return report.fortranPosition(info);
    const bool conjugated = row && complexPrecision<p> && trans == 'C';
    if (row) trans = rowMajorTranspose(trans);
    if constexpr (complexPrecision<p>)
        if (conjugated) conjugate<p>(x, n, incx);
    call(&ul, &trans, &di);
    if constexpr (complexPrecision<p>)
        if (conjugated) conjugate<p>(x, n, incx);
}

template <char p, class Routine>
void trmv(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans,
          CBLAS_DIAG diag, int n, Ref a, int lda, void* x, int incx) {
    triangularVector<p>(name, layout, uplo, trans, diag, n, x, incx,
                        {{4, n < 0}, {6, lda < atLeastOne(n)}, {8, incx == 0}},
                        [&](Ref ul, Ref tr, Ref di) { routine(ul, tr, di, &n, a, &lda, x, &incx); });
}
template <char p, class Routine>
void tbmv(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans,
          CBLAS_DIAG diag, int n, int k, Ref a, int lda, void* x, int incx) {
    triangularVector<p>(name, layout, uplo, trans, diag, n, x, incx,
                        {{4, n < 0}, {5, k < 0}, {7, lda < k + 1}, {9, incx == 0}},
                        [&](Ref ul, Ref tr, Ref di) { routine(ul, tr, di, &n, &k, a, &lda, x, &incx); });
}
template <char p, class Routine>
void tpmv(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans,
          CBLAS_DIAG diag, int n, Ref ap, void* x, int incx) {
    triangularVector<p>(name, layout, uplo, trans, diag, n, x, incx, {{4, n < 0}, {7, incx == 0}},
                        [&](Ref ul, Ref tr, Ref di) { routine(ul, tr, di, &n, ap, x, &incx); });
}

// symv, sbmv, spmv and the Hermitian hemv, hbmv, hpmv: `call` gets uplo, alpha,
// x, its increment and beta. A row-major Hermitian matrix is the conjugate of
// the column-major one the routine sees.
template <char p>
void symmetricProduct(const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, int n, Ref alpha, Ref x, int incx,
                      Ref beta, void* y, int incy, std::initializer_list<Check> checks, auto call) {
    const bool row = layout == CblasRowMajor;
    const Report report{name, row};
    if (!validLayout(name, layout)) return;
    const char ul = uploLetter(uplo, row);
    if (ul == 0) return report.illegal(2, "Illegal Uplo setting, %d\n", uplo);
    if (int info = firstFailure(checks)) return report.fortranPosition(info);
    if constexpr (complexPrecision<p>)
        if (row)
            return conjugatedProduct<p>(name, alpha, beta, x, n, incx, y, n, incy,
                                        [&](Ref al, Ref cx, Ref one, Ref be) { call(&ul, al, cx, one, be); });
    call(&ul, alpha, x, &incx, beta);
}

template <char p, class Routine>
void symv(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, int n, Ref alpha, Ref a, int lda,
          Ref x, int incx, Ref beta, void* y, int incy) {
    symmetricProduct<p>(
        name, layout, uplo, n, alpha, x, incx, beta, y, incy,
        {{2, n < 0}, {5, lda < atLeastOne(n)}, {7, incx == 0}, {10, incy == 0}},
        [&](Ref ul, Ref al, Ref cx, Ref ix, Ref be) { routine(ul, &n, al, a, &lda, cx, ix, be, y, &incy); });
}
template <char p, class Routine>
void sbmv(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, int n, int k, Ref alpha, Ref a,
          int lda, Ref x, int incx, Ref beta, void* y, int incy) {
    symmetricProduct<p>(
        name, layout, uplo, n, alpha, x, incx, beta, y, incy,
        {{2, n < 0}, {3, k < 0}, {6, lda < k + 1}, {8, incx == 0}, {11, incy == 0}},
        [&](Ref ul, Ref al, Ref cx, Ref ix, Ref be) { routine(ul, &n, &k, al, a, &lda, cx, ix, be, y, &incy); });
}
template <char p, class Routine>
void spmv(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, int n, Ref alpha, Ref ap, Ref x,
          int incx, Ref beta, void* y, int incy) {
    symmetricProduct<p>(name, layout, uplo, n, alpha, x, incx, beta, y, incy,
                        {{2, n < 0}, {6, incx == 0}, {9, incy == 0}},
                        [&](Ref ul, Ref al, Ref cx, Ref ix, Ref be) { routine(ul, &n, al, ap, cx, ix, be, y, &incy); });
}

// ger, geru and gerc: in row-major order A^T = alpha y x^T, and for gerc
// A^T = alpha conj(y) x^T, a geru over a conjugated copy of y.
template <char p, class Routine>
void ger(Routine routine, const char* name, CBLAS_LAYOUT layout, int m, int n, Ref alpha, Ref x, int incx, Ref y,
         int incy, void* a, int lda) {
    const bool row = layout == CblasRowMajor;
    const Report report{name, row, {{2, 3}, {6, 8}}};
    if (!validLayout(name, layout)) return;
    if (row) std::swap(m, n), std::swap(x, y), std::swap(incx, incy);
    if (int info = firstFailure({{1, m < 0}, {2, n < 0}, {5, incx == 0}, {7, incy == 0}, {9, lda < atLeastOne(m)}}))
        return report.fortranPosition(info);
    if constexpr (complexPrecision<p>)
        if (row && (routine == cgerc_ || routine == zgerc_)) {
            ConjugatedCopy<p> copy(x, m, incx);
            if (copyFailed(name, copy.data)) return;
            const int one = 1;
            return pick<p>(cgeru_, zgeru_)(&m, &n, alpha, copy.data, &one, y, &incy, a, &lda);
        }
    routine(&m, &n, alpha, x, &incx, y, &incy, a, &lda);
}

// syr, spr and the Hermitian her, hpr: a row-major Hermitian update is the
// column-major one with conj(x). `call` gets uplo, x and its increment.
template <char p>
void rankOneSymmetric(const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, int n, Ref x, int incx,
                      std::initializer_list<Check> checks, auto call) {
    const bool row = layout == CblasRowMajor;
    const Report report{name, row};
    if (!validLayout(name, layout)) return;
    const char ul = uploLetter(uplo, row);
    if (ul == 0) return report.illegal(2, "Illegal Uplo setting, %d\n", uplo);
    if (int info = firstFailure(checks)) return report.fortranPosition(info);
    if constexpr (complexPrecision<p>)
        if (row) {
            ConjugatedCopy<p> copy(x, n, incx);
            if (copyFailed(name, copy.data)) return;
            const int one = 1;
            return call(&ul, copy.data, &one);
        }
    call(&ul, x, &incx);
}

template <char p, class Routine>
void syr(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, int n, Ref alpha, Ref x, int incx,
         void* a, int lda) {
    rankOneSymmetric<p>(name, layout, uplo, n, x, incx, {{2, n < 0}, {5, incx == 0}, {7, lda < atLeastOne(n)}},
                        [&](Ref ul, Ref cx, Ref ix) { routine(ul, &n, alpha, cx, ix, a, &lda); });
}
template <char p, class Routine>
void spr(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, int n, Ref alpha, Ref x, int incx,
         void* ap) {
    rankOneSymmetric<p>(name, layout, uplo, n, x, incx, {{2, n < 0}, {5, incx == 0}},
                        [&](Ref ul, Ref cx, Ref ix) { routine(ul, &n, alpha, cx, ix, ap); });
}

// syr2, spr2 and the Hermitian her2, hpr2: a row-major Hermitian update is the
// column-major one with conj(y) and conj(x) in each other's places. `call` gets
// uplo and the two vectors with their increments.
template <char p>
void rankTwoSymmetric(const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, int n, Ref x, int incx, Ref y, int incy,
                      bool packed, int lda, auto call) {
    const bool row = layout == CblasRowMajor;
    const Report report{name, row, {{complexPrecision<p> ? 6 : 0, 8}}};
    if (!validLayout(name, layout)) return;
    const char ul = uploLetter(uplo, row);
    if (ul == 0) return report.illegal(2, "Illegal Uplo setting, %d\n", uplo);
    const bool swapped = row && complexPrecision<p>;
    if (int info = firstFailure({{2, n < 0},
                                 {5, (swapped ? incy : incx) == 0},
                                 {7, (swapped ? incx : incy) == 0},
                                 {9, !packed && lda < atLeastOne(n)}}))
        return report.fortranPosition(info);
    if constexpr (complexPrecision<p>)
        if (row) {
            ConjugatedCopy<p> xCopy(x, n, incx), yCopy(y, n, incy);
            if (copyFailed(name, xCopy.data) || copyFailed(name, yCopy.data)) return;
            const int one = 1;
            return call(&ul, yCopy.data, &one, xCopy.data, &one);
        }
    call(&ul, x, &incx, y, &incy);
}

template <char p, class Routine>
void syr2(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, int n, Ref alpha, Ref x, int incx,
          Ref y, int incy, void* a, int lda) {
    rankTwoSymmetric<p>(name, layout, uplo, n, x, incx, y, incy, false, lda,
                        [&](Ref ul, Ref u, Ref iu, Ref v, Ref iv) { routine(ul, &n, alpha, u, iu, v, iv, a, &lda); });
}
template <char p, class Routine>
void spr2(Routine routine, const char* name, CBLAS_LAYOUT layout, CBLAS_UPLO uplo, int n, Ref alpha, Ref x, int incx,
          Ref y, int incy, void* ap) {
    rankTwoSymmetric<p>(name, layout, uplo, n, x, incx, y, incy, true, 0,
                        [&](Ref ul, Ref u, Ref iu, Ref v, Ref iv) { routine(ul, &n, alpha, u, iu, v, iv, ap); });
}

}  // namespace cblas
