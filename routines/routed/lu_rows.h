// LU routines: one row per root, one instance per precision (lu.inc).
// Columns: the exported arguments (word positions), the GPU function's arguments,
// the frame class, the measure compared with the crossover, the work query. What
// ILP64 callers need adapted (ipiv, iter) is in ilp64/packing_table.inc.
#pragma once

#include <algorithm>

#include "routing/routed_frame.h"

// getrf: m, n, a, lda, ipiv, info (6) | GPU i:m, i:n, p:a, i:lda, p:ipiv | B | m × n
struct getrf {
    enum : int { m = 1, n, a, lda, ipiv, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Int<m>, Int<n>, Ptr<a>, Int<lda>, Ptr<ipiv>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(m), w.integer(n)); }
};

// getrs: trans, n, nrhs, a, lda, ipiv, b, ldb, info (9)
//        | GPU c:trans, i:n, i:nrhs, p:a, i:lda, p:ipiv, p:b, i:ldb | B | n
struct getrs {
    enum : int { trans = 1, n, nrhs, a, lda, ipiv, b, ldb, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Chr<trans>, Int<n>, Int<nrhs>, Ptr<a>, Int<lda>, Ptr<ipiv>, Ptr<b>, Int<ldb>>;
    static int32_t measure(CallWords w) { return w.integer(n); }
};

// getri: n, a, lda, ipiv, work, lwork, info (7) | GPU i:n, p:a, i:lda, p:ipiv | C, lwork, lines: work | n
struct getri {
    enum : int { n = 1, a, lda, ipiv, work, lwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Int<n>, Ptr<a>, Int<lda>, Ptr<ipiv>>;
    using WorkLines = ::WorkLines<WorkReal<work>>;
    static int32_t measure(CallWords w) { return w.integer(n); }
};

// gesv: n, nrhs, a, lda, ipiv, b, ldb, info (8)
//       | GPU i:n, i:nrhs, p:a, i:lda, p:ipiv, p:b, i:ldb | B | n × nrhs
struct gesv {
    enum : int { n = 1, nrhs, a, lda, ipiv, b, ldb, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Int<n>, Int<nrhs>, Ptr<a>, Int<lda>, Ptr<ipiv>, Ptr<b>, Int<ldb>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(n), w.integer(nrhs)); }
};

// gbtrf: m, n, kl, ku, ab, ldab, ipiv, info (8)
//        | GPU i:m, i:n, i:kl, i:ku, p:ab, i:ldab, p:ipiv | B | kl + ku
struct gbtrf {
    enum : int { m = 1, n, kl, ku, ab, ldab, ipiv, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Int<m>, Int<n>, Int<kl>, Int<ku>, Ptr<ab>, Int<ldab>, Ptr<ipiv>>;
    static int32_t measure(CallWords w) { return add32(w.integer(kl), w.integer(ku)); }
};

// dsgesv: n, nrhs, a, lda, ipiv, b, ldb, x, ldx, work, swork, iter, info (13)
//         | GPU i:n, i:nrhs, p:a, i:lda, p:ipiv, p:b, i:ldb, p:x, i:ldx, p:work | B | n × nrhs
// zcgesv: the same with rwork before iter (14). Neither swork, rwork nor iter
// reaches the GPU library; iter is written only by the CPU library.
template <int Words>
struct mixedGesv {
    enum : int { n = 1, nrhs, a, lda, ipiv, b, ldb, x, ldx, work, iter = Words - 1, info = Words, wordCount = Words };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Int<n>, Int<nrhs>, Ptr<a>, Int<lda>, Ptr<ipiv>, Ptr<b>, Int<ldb>, Ptr<x>, Int<ldx>, Ptr<work>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(n), w.integer(nrhs)); }
};
using dsgesvArgs = mixedGesv<13>;
using zcgesvArgs = mixedGesv<14>;
