// Orthogonal factorisations and the least squares drivers on them: one row per
// root, one instance per precision (orthogonal_factorisations.inc). All are class
// C with lwork as the work query's argument and one work line, for work; neither
// work nor lwork reaches the GPU library. They have no integer array, so a 64-bit
// caller needs only the high half of info cleared.
#pragma once

#include "routing/routed_frame.h"

// geqrf: m, n, a, lda, tau, work, lwork, info (8)
//        | GPU i:m, i:n, p:a, i:lda, p:tau | C, lwork, lines: work | m × n
// geqlf, gerqf, gelqf, geqrfp: the same.
struct geqrf {
    enum : int { m = 1, n, a, lda, tau, work, lwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Int<m>, Int<n>, Ptr<a>, Int<lda>, Ptr<tau>>;
    using WorkLines = ::WorkLines<WorkReal<work>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(m), w.integer(n)); }
};
using geqlf = geqrf;
using gerqf = geqrf;
using gelqf = geqrf;
using geqrfp = geqrf;

// gels: trans, m, n, nrhs, a, lda, b, ldb, work, lwork, info (11)
//       | GPU c:trans, i:m, i:n, i:nrhs, p:a, i:lda, p:b, i:ldb | C, lwork, lines: work | m × n
struct gels {
    enum : int { trans = 1, m, n, nrhs, a, lda, b, ldb, work, lwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Chr<trans>, Int<m>, Int<n>, Int<nrhs>, Ptr<a>, Int<lda>, Ptr<b>, Int<ldb>>;
    using WorkLines = ::WorkLines<WorkReal<work>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(m), w.integer(n)); }
};

// gglse: m, n, p, a, lda, b, ldb, c, d, x, work, lwork, info (13)
//        | GPU i:m, i:n, i:p, p:a, i:lda, p:b, i:ldb, p:c, p:d, p:x | C, lwork, lines: work
//        | m × n (p plays no part)
struct gglse {
    enum : int { m = 1, n, p, a, lda, b, ldb, c, d, x, work, lwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Int<m>, Int<n>, Int<p>, Ptr<a>, Int<lda>, Ptr<b>, Int<ldb>, Ptr<c>, Ptr<d>, Ptr<x>>;
    using WorkLines = ::WorkLines<WorkReal<work>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(m), w.integer(n)); }
};

// ggrqf: m, p, n, a, lda, taua, b, ldb, taub, work, lwork, info (12)
//        | GPU i:m, i:p, i:n, p:a, i:lda, p:taua, p:b, i:ldb, p:taub | C, lwork, lines: work
//        | (m × n) × p in double
struct ggrqf {
    enum : int { m = 1, p, n, a, lda, taua, b, ldb, taub, work, lwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Int<m>, Int<p>, Int<n>, Ptr<a>, Int<lda>, Ptr<taua>, Ptr<b>, Int<ldb>, Ptr<taub>>;
    using WorkLines = ::WorkLines<WorkReal<work>>;
    static double measure(CallWords w) { return double(w.integer(m)) * w.integer(n) * w.integer(p); }
};
