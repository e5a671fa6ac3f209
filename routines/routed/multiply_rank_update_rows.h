// Multiply and rank-update routines (BLAS level 3, symv and hemv): one row per
// root, instantiated per precision (multiply_rank_update.inc). All are class A:
// no info, and every GPU status but 0 is retried on the CPU. The real scalars of
// s and d routines reach the GPU as Real, the complex ones of c and z as Cplx.
#pragma once

#include "routing/routed_frame.h"

// gemm: transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc (13)
//       | GPU all of them, scalars by value | A | (m × n) × k in double
template <template <int> class Scalar>
struct gemm {
    enum : int { transa = 1, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc, wordCount = ldc };
    static constexpr FrameClass frameClass = FrameClass::A;
    using GpuArgs = ArgList<Chr<transa>, Chr<transb>, Int<m>, Int<n>, Int<k>, Scalar<alpha>, Ptr<a>, Int<lda>,
                            Ptr<b>, Int<ldb>, Scalar<beta>, Ptr<c>, Int<ldc>>;
    static double measure(CallWords w) { return double(w.integer(m)) * w.integer(n) * w.integer(k); }
};

// symm, hemm: side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc (12)
//             | GPU all of them | A | m × n, 32-bit for symm, in double for hemm
template <template <int> class Scalar, class Measure>
struct symmetricMultiply {
    enum : int { side = 1, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc, wordCount = ldc };
    static constexpr FrameClass frameClass = FrameClass::A;
    using GpuArgs = ArgList<Chr<side>, Chr<uplo>, Int<m>, Int<n>, Scalar<alpha>, Ptr<a>, Int<lda>, Ptr<b>,
                            Int<ldb>, Scalar<beta>, Ptr<c>, Int<ldc>>;
    static Measure measure(CallWords w) {
        if constexpr (sizeof(Measure) == sizeof(double)) {
            return double(w.integer(m)) * w.integer(n);
        } else {
            return multiply32(w.integer(m), w.integer(n));
        }
    }
};
template <template <int> class Scalar> using symm = symmetricMultiply<Scalar, int32_t>;
using hemm = symmetricMultiply<Cplx, double>;

// syrk, herk: uplo, trans, n, k, alpha, a, lda, beta, c, ldc (10)
//             | GPU all of them | A | n × k, 32-bit. herk's alpha and beta are real.
template <template <int> class Scalar>
struct rankUpdate {
    enum : int { uplo = 1, trans, n, k, alpha, a, lda, beta, c, ldc, wordCount = ldc };
    static constexpr FrameClass frameClass = FrameClass::A;
    using GpuArgs = ArgList<Chr<uplo>, Chr<trans>, Int<n>, Int<k>, Scalar<alpha>, Ptr<a>, Int<lda>, Scalar<beta>,
                            Ptr<c>, Int<ldc>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(n), w.integer(k)); }
};
template <template <int> class Scalar> using syrk = rankUpdate<Scalar>;
using herk = rankUpdate<Real>;

// syr2k, her2k: uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc (12)
//               | GPU all of them | A | n × k, 32-bit. her2k: complex alpha, real beta.
template <template <int> class Alpha, template <int> class Beta>
struct rank2kUpdate {
    enum : int { uplo = 1, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc, wordCount = ldc };
    static constexpr FrameClass frameClass = FrameClass::A;
    using GpuArgs = ArgList<Chr<uplo>, Chr<trans>, Int<n>, Int<k>, Alpha<alpha>, Ptr<a>, Int<lda>, Ptr<b>,
                            Int<ldb>, Beta<beta>, Ptr<c>, Int<ldc>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(n), w.integer(k)); }
};
template <template <int> class Scalar> using syr2k = rank2kUpdate<Scalar, Scalar>;
using her2k = rank2kUpdate<Cplx, Real>;

// trmm, trsm: side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb (11)
//             | GPU all of them | A | m × n, 32-bit
template <template <int> class Scalar>
struct triangularMultiply {
    enum : int { side = 1, uplo, transa, diag, m, n, alpha, a, lda, b, ldb, wordCount = ldb };
    static constexpr FrameClass frameClass = FrameClass::A;
    using GpuArgs = ArgList<Chr<side>, Chr<uplo>, Chr<transa>, Chr<diag>, Int<m>, Int<n>, Scalar<alpha>, Ptr<a>,
                            Int<lda>, Ptr<b>, Int<ldb>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(m), w.integer(n)); }
};
template <template <int> class Scalar> using trmm = triangularMultiply<Scalar>;
template <template <int> class Scalar> using trsm = triangularMultiply<Scalar>;

// symv (s, d), hemv (c, z): uplo, n, alpha, a, lda, x, incx, beta, y, incy (10)
//                           | GPU all of them | A | n
template <template <int> class Scalar>
struct symmetricMatrixVector {
    enum : int { uplo = 1, n, alpha, a, lda, x, incx, beta, y, incy, wordCount = incy };
    static constexpr FrameClass frameClass = FrameClass::A;
    using GpuArgs = ArgList<Chr<uplo>, Int<n>, Scalar<alpha>, Ptr<a>, Int<lda>, Ptr<x>, Int<incx>, Scalar<beta>,
                            Ptr<y>, Int<incy>>;
    static int32_t measure(CallWords w) { return w.integer(n); }
};
using symv = symmetricMatrixVector<Real>;
using hemv = symmetricMatrixVector<Cplx>;
