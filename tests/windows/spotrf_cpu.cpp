// A CPU library with one routine, spotrf, for the tests of the Windows build that
// route spotrf while the CPU adapter does not exist there: the link library and
// the emulator both compute through it. An unblocked Cholesky factorisation in
// the word convention (uplo, n, a, lda, info) with LAPACK's info for a matrix
// that is not positive definite: the order of the first such leading minor. (No
// test passes it invalid arguments.)
#include <cmath>

#include "exports/words.h"

extern "C" __declspec(dllexport) void spotrf(VORN_WORDS_5) {
    const char uplo = *static_cast<const char*>(w1);
    const int n = *static_cast<const int*>(w2);
    float* const a = static_cast<float*>(w3);
    const int lda = *static_cast<const int*>(w4);
    int& info = *static_cast<int*>(w5);
    const bool lower = uplo == 'L' || uplo == 'l';
    info = 0;
    // Element (i, j) of the triangle that is read and written: lower holds the
    // factor L by columns, upper its transpose U by rows, the same numbers.
    auto at = [&](int i, int j) -> float& { return lower ? a[i + static_cast<long long>(j) * lda]
                                                         : a[j + static_cast<long long>(i) * lda]; };
    // Column by column, each one updating the columns right of it; a zero in the
    // column updates nothing (as the reference BLAS skips it), so that the
    // diagonal matrices the tests factor cost n^2, not n^3.
    for (int j = 0; j < n; ++j) {
        const float diagonal = at(j, j);
        if (!(diagonal > 0.0f)) {
            info = j + 1;
            return;
        }
        const float root = std::sqrt(diagonal);
        at(j, j) = root;
        for (int i = j + 1; i < n; ++i) at(i, j) /= root;
        for (int c = j + 1; c < n; ++c) {
            const float factor = at(c, j);
            if (factor == 0.0f) continue;
            for (int i = c; i < n; ++i) at(i, c) -= at(i, j) * factor;
        }
    }
}
