// Generation and use of orthogonal factors: one row per root, one instance per
// precision (orthogonal_factors.inc). The org and orm rows serve the ung and unm
// routines of complex precisions as well: same arguments, class and measure. All
// are class C with lwork as the work query's argument and one work line, for work;
// neither work nor lwork reaches the GPU library, and there is no integer array.
#pragma once

#include "routing/routed_frame.h"

// orgbr, ungbr: vect, m, n, k, a, lda, tau, work, lwork, info (10)
//               | GPU c:vect, i:m, i:n, i:k, p:a, i:lda, p:tau | C, lwork, lines: work
//               | m × n, whatever vect says
struct orgbr {
    enum : int { vect = 1, m, n, k, a, lda, tau, work, lwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Chr<vect>, Int<m>, Int<n>, Int<k>, Ptr<a>, Int<lda>, Ptr<tau>>;
    using WorkLines = ::WorkLines<WorkReal<work>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(m), w.integer(n)); }
};

// orghr, unghr: n, ilo, ihi, a, lda, tau, work, lwork, info (9)
//               | GPU i:n, i:ilo, i:ihi, p:a, i:lda, p:tau | C, lwork, lines: work | n
struct orghr {
    enum : int { n = 1, ilo, ihi, a, lda, tau, work, lwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Int<n>, Int<ilo>, Int<ihi>, Ptr<a>, Int<lda>, Ptr<tau>>;
    using WorkLines = ::WorkLines<WorkReal<work>>;
    static int32_t measure(CallWords w) { return w.integer(n); }
};

// orgqr, ungqr: m, n, k, a, lda, tau, work, lwork, info (9)
//               | GPU i:m, i:n, i:k, p:a, i:lda, p:tau | C, lwork, lines: work | m × n
// orglq, orgql, orgrq and their ung sisters: the same.
struct orgqr {
    enum : int { m = 1, n, k, a, lda, tau, work, lwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Int<m>, Int<n>, Int<k>, Ptr<a>, Int<lda>, Ptr<tau>>;
    using WorkLines = ::WorkLines<WorkReal<work>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(m), w.integer(n)); }
};
using orglq = orgqr;
using orgql = orgqr;
using orgrq = orgqr;

// ormqr, unmqr: side, trans, m, n, k, a, lda, tau, c, ldc, work, lwork, info (13)
//               | GPU c:side, c:trans, i:m, i:n, i:k, p:a, i:lda, p:tau, p:c, i:ldc
//               | C, lwork, lines: work | m × n, the size of c (k plays no part)
// ormlq, ormql, ormrq and their unm sisters: the same.
struct ormqr {
    enum : int { side = 1, trans, m, n, k, a, lda, tau, c, ldc, work, lwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Chr<side>, Chr<trans>, Int<m>, Int<n>, Int<k>, Ptr<a>, Int<lda>, Ptr<tau>, Ptr<c>, Int<ldc>>;
    using WorkLines = ::WorkLines<WorkReal<work>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(m), w.integer(n)); }
};
using ormlq = ormqr;
using ormql = ormqr;
using ormrq = ormqr;
