// Singular value routines: one row per root, with a row of its own for the
// complex routines that take rwork (reductions_eigenvalues_rows.h does the same
// for geev and heev); one instance per precision (singular_values.inc). Job
// arguments go to the GPU function as they are and play no part in the measure.
// What ILP64 callers need adapted (iwork of gesdd) is in ilp64/packing_table.inc.
#pragma once

#include "routing/routed_frame.h"

// gesvd: jobu, jobvt, m, n, a, lda, s, u, ldu, vt, ldvt, work, lwork, info (14); c, z: rwork after lwork (15)
//        | GPU c:jobu, c:jobvt, i:m, i:n, p:a, i:lda, p:s, p:u, i:ldu, p:vt, i:ldvt
//        | C, lwork, lines: work (c, z: work, rwork) | m × n
template <bool Complex>
struct singularValues {
    enum : int { jobu = 1, jobvt, m, n, a, lda, s, u, ldu, vt, ldvt, work, lwork, rwork, info = rwork + Complex,
                 wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Chr<jobu>, Chr<jobvt>, Int<m>, Int<n>, Ptr<a>, Int<lda>, Ptr<s>, Ptr<u>, Int<ldu>, Ptr<vt>,
                            Int<ldvt>>;
    using WorkLines = WorkLinesWithRwork<Complex, WorkReal<work>, WorkReal<rwork>>;
    static int32_t measure(CallWords words) { return multiply32(words.integer(m), words.integer(n)); }
};
using gesvd = singularValues<false>;
using gesvdComplex = singularValues<true>;

// gesdd: jobz, m, n, a, lda, s, u, ldu, vt, ldvt, work, lwork, iwork, info (14); c, z: rwork before iwork (15)
//        | GPU c:jobz, i:m, i:n, p:a, i:lda, p:s, p:u, i:ldu, p:vt, i:ldvt
//        | C, lwork, lines: work, iwork (c, z: work, rwork, iwork) | m × n
template <bool Complex>
struct divideAndConquerSvd {
    enum : int { jobz = 1, m, n, a, lda, s, u, ldu, vt, ldvt, work, lwork, rwork, iwork = rwork + Complex, info,
                 wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Chr<jobz>, Int<m>, Int<n>, Ptr<a>, Int<lda>, Ptr<s>, Ptr<u>, Int<ldu>, Ptr<vt>, Int<ldvt>>;
    using WorkLines = WorkLinesWithRwork<Complex, WorkReal<work>, WorkReal<rwork>, WorkInt<iwork>>;
    static int32_t measure(CallWords words) { return multiply32(words.integer(m), words.integer(n)); }
};
using gesdd = divideAndConquerSvd<false>;
using gesddComplex = divideAndConquerSvd<true>;

// bdsqr: uplo, n, ncvt, nru, ncc, d, e, vt, ldvt, u, ldu, c, ldc, work (c, z: rwork), info (15)
//        | GPU c:uplo, i:n, i:ncvt, i:nru, i:ncc, p:d, p:e, p:vt, i:ldvt, p:u, i:ldu, p:c, i:ldc
//        | B | n, whatever ncvt, nru and ncc say
struct bdsqr {
    enum : int { uplo = 1, n, ncvt, nru, ncc, d, e, vt, ldvt, u, ldu, c, ldc, work, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Chr<uplo>, Int<n>, Int<ncvt>, Int<nru>, Int<ncc>, Ptr<d>, Ptr<e>, Ptr<vt>, Int<ldvt>,
                            Ptr<u>, Int<ldu>, Ptr<c>, Int<ldc>>;
    static int32_t measure(CallWords words) { return words.integer(n); }
};
