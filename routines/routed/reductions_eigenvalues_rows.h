// Reductions and eigenvalue routines: one row per root, one instance per precision
// (reductions_eigenvalues.inc). A complex routine whose arguments differ from its
// real sister's (an rwork, one w for wr and wi) has a row of its own. The
// eigenvalue drivers hold n against a crossover scaled by their job character.
// What ILP64 callers need adapted (ifail, iwork of heevx, m, iblock, isplit,
// nsplit) is in ilp64/packing_table.inc.
#pragma once

#include "routing/routed_frame.h"

// The job characters that scale a crossover: jobz 'V' counts it twice (vectors
// cost more than values alone), steqr's compz 'N' ten times.
template <int Jobz>
struct ScaledByJobz {
    static int32_t crossoverFactor(CallWords w) { return w.upperCharacter(Jobz) == 'V' ? 2 : 1; }
};

// gehrd: n, ilo, ihi, a, lda, tau, work, lwork, info (9)
//        | GPU i:n, i:ilo, i:ihi, p:a, i:lda, p:tau | C, lwork, lines: work | n
struct gehrd {
    enum : int { n = 1, ilo, ihi, a, lda, tau, work, lwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Int<n>, Int<ilo>, Int<ihi>, Ptr<a>, Int<lda>, Ptr<tau>>;
    using WorkLines = ::WorkLines<WorkReal<work>>;
    static int32_t measure(CallWords w) { return w.integer(n); }
};

// gebrd: m, n, a, lda, d, e, tauq, taup, work, lwork, info (11)
//        | GPU i:m, i:n, p:a, i:lda, p:d, p:e, p:tauq, p:taup | C, lwork, lines: work | m × n
struct gebrd {
    enum : int { m = 1, n, a, lda, d, e, tauq, taup, work, lwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Int<m>, Int<n>, Ptr<a>, Int<lda>, Ptr<d>, Ptr<e>, Ptr<tauq>, Ptr<taup>>;
    using WorkLines = ::WorkLines<WorkReal<work>>;
    static int32_t measure(CallWords w) { return multiply32(w.integer(m), w.integer(n)); }
};

// geev (s, d): jobvl, jobvr, n, a, lda, wr, wi, vl, ldvl, vr, ldvr, work, lwork, info (14)
//   | GPU c:jobvl, c:jobvr, i:n, p:a, i:lda, p:wr, p:wi, p:vl, i:ldvl, p:vr, i:ldvr
//   | C, lwork, lines: work | n
struct geev {
    enum : int { jobvl = 1, jobvr, n, a, lda, wr, wi, vl, ldvl, vr, ldvr, work, lwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Chr<jobvl>, Chr<jobvr>, Int<n>, Ptr<a>, Int<lda>, Ptr<wr>, Ptr<wi>, Ptr<vl>, Int<ldvl>,
                            Ptr<vr>, Int<ldvr>>;
    using WorkLines = ::WorkLines<WorkReal<work>>;
    static int32_t measure(CallWords w) { return w.integer(n); }
};

// geev (c, z): jobvl, jobvr, n, a, lda, w, vl, ldvl, vr, ldvr, work, lwork, rwork, info (14)
//   | GPU c:jobvl, c:jobvr, i:n, p:a, i:lda, p:w, p:vl, i:ldvl, p:vr, i:ldvr
//   | C, lwork, lines: work, rwork | n
struct geevComplex {
    enum : int { jobvl = 1, jobvr, n, a, lda, w, vl, ldvl, vr, ldvr, work, lwork, rwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Chr<jobvl>, Chr<jobvr>, Int<n>, Ptr<a>, Int<lda>, Ptr<w>, Ptr<vl>, Int<ldvl>, Ptr<vr>,
                            Int<ldvr>>;
    using WorkLines = ::WorkLines<WorkReal<work>, WorkReal<rwork>>;
    static int32_t measure(CallWords words) { return words.integer(n); }
};

// syev: jobz, uplo, n, a, lda, w, work, lwork, info (9)
//       | GPU c:jobz, c:uplo, i:n, p:a, i:lda, p:w | C, lwork, lines: work | n, crossover × 2 for jobz V
// heev: the same with rwork after lwork (10), lines: work, rwork.
template <bool Complex>
struct symmetricEigen : ScaledByJobz<1> {
    enum : int { jobz = 1, uplo, n, a, lda, w, work, lwork, rwork, info = rwork + Complex, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Chr<jobz>, Chr<uplo>, Int<n>, Ptr<a>, Int<lda>, Ptr<w>>;
    using WorkLines = WorkLinesWithRwork<Complex, WorkReal<work>, WorkReal<rwork>>;
    static int32_t measure(CallWords words) { return words.integer(n); }
};
using syev = symmetricEigen<false>;
using heev = symmetricEigen<true>;

// syevx: jobz, range, uplo, n, a, lda, vl, vu, il, iu, abstol, m, w, z, ldz, work, lwork, iwork, ifail, info (20)
//   | GPU c:jobz, c:range, c:uplo, i:n, p:a, i:lda, f:vl, f:vu, i:il, i:iu, f:abstol, p:m, p:w, p:z, i:ldz, p:work
//   | C, lwork, lines: work, iwork | n, crossover × 2 for jobz V
// heevx: the same with rwork after lwork (21), lines: work, rwork, iwork. The
// GPU function gets the caller's work, not ifail.
template <bool Complex>
struct selectedEigen : ScaledByJobz<1> {
    enum : int { jobz = 1, range, uplo, n, a, lda, vl, vu, il, iu, abstol, m, w, z, ldz, work, lwork,
                 rwork, iwork = rwork + Complex, ifail, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Chr<jobz>, Chr<range>, Chr<uplo>, Int<n>, Ptr<a>, Int<lda>, Real<vl>, Real<vu>, Int<il>,
                            Int<iu>, Real<abstol>, Ptr<m>, Ptr<w>, Ptr<z>, Int<ldz>, Ptr<work>>;
    using WorkLines = WorkLinesWithRwork<Complex, WorkReal<work>, WorkReal<rwork>, WorkInt<iwork>>;
    static int32_t measure(CallWords words) { return words.integer(n); }
};
using syevx = selectedEigen<false>;
using heevx = selectedEigen<true>;

// sygv: itype, jobz, uplo, n, a, lda, b, ldb, w, work, lwork, info (12)
//       | GPU i:itype, c:jobz, c:uplo, i:n, p:a, i:lda, p:b, i:ldb, p:w | C, lwork, lines: work
//       | n, crossover × 2 for jobz V (the second argument)
// hegv: the same with rwork after lwork (13), lines: work, rwork.
template <bool Complex>
struct generalizedEigen : ScaledByJobz<2> {
    enum : int { itype = 1, jobz, uplo, n, a, lda, b, ldb, w, work, lwork, rwork, info = rwork + Complex,
                 wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Int<itype>, Chr<jobz>, Chr<uplo>, Int<n>, Ptr<a>, Int<lda>, Ptr<b>, Int<ldb>, Ptr<w>>;
    using WorkLines = WorkLinesWithRwork<Complex, WorkReal<work>, WorkReal<rwork>>;
    static int32_t measure(CallWords words) { return words.integer(n); }
};
using sygv = generalizedEigen<false>;
using hegv = generalizedEigen<true>;

// steqr: compz, n, d, e, z, ldz, work, info (8)
//        | GPU c:compz, i:n, p:d, p:e, p:z, i:ldz | B | n, crossover × 10 for compz N
struct steqr {
    enum : int { compz = 1, n, d, e, z, ldz, work, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Chr<compz>, Int<n>, Ptr<d>, Ptr<e>, Ptr<z>, Int<ldz>>;
    static int32_t measure(CallWords words) { return words.integer(n); }
    static int32_t crossoverFactor(CallWords words) { return words.upperCharacter(compz) == 'N' ? 10 : 1; }
};

// stebz: range, order, n, vl, vu, il, iu, abstol, d, e, m, nsplit, w, iblock, isplit, work, iwork, info (18)
//   | GPU c:range, c:order, i:n, f:vl, f:vu, i:il, i:iu, f:abstol, p:d, p:e, p:m, p:nsplit, p:w, p:iblock,
//     p:isplit | B | n
struct stebz {
    enum : int { range = 1, order, n, vl, vu, il, iu, abstol, d, e, m, nsplit, w, iblock, isplit, work, iwork, info,
                 wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Chr<range>, Chr<order>, Int<n>, Real<vl>, Real<vu>, Int<il>, Int<iu>, Real<abstol>, Ptr<d>,
                            Ptr<e>, Ptr<m>, Ptr<nsplit>, Ptr<w>, Ptr<iblock>, Ptr<isplit>>;
    static int32_t measure(CallWords words) { return words.integer(n); }
};
