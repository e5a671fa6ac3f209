// The entry lines of the logged CPU-only routines: for each group of routines that
// share one, the kinds of the words it prints, from word 1 on (routing/entry_line.h).
// The words behind the last printed one, in brackets below, are left out of the
// line. Real scalars print in the routine's own precision; only gemv and laset
// print complex ones (lascl's cfrom and cto are real in every precision).
#pragma once

#include "routing/entry_line.h"

// gemv: trans, m, n, alpha, a, lda, x, incx, beta, y, incy
template <template <int> class S> using gemv = FirstWords<Chr, Int, Int, S, Ptr, Int, Ptr, Int, S, Ptr, Int>;
// lacpy: uplo, m, n, a, lda, b, ldb
using lacpy = FirstWords<Chr, Int, Int, Ptr, Int, Ptr, Int>;
// zlag2c, slag2d, dlag2s, clag2z: m, n, a, lda, sa, ldsa [info]
using lag2 = FirstWords<Int, Int, Ptr, Int, Ptr, Int>;
// lar2v: n, x, y, z, incx, c, s, incc
using lar2v = FirstWords<Int, Ptr, Ptr, Ptr, Int, Ptr, Ptr, Int>;
// larfb: side, trans, direct, storev, m, n, k, v, ldv, t, ldt, c, ldc [work, ldwork]
using larfb = FirstWords<Chr, Chr, Chr, Chr, Int, Int, Int, Ptr, Int, Ptr, Int, Ptr, Int>;
// larfg: n, alpha, x, incx, tau
using larfg = FirstWords<Int, Ptr, Ptr, Int, Ptr>;
// largv: n, x, incx, y, incy, c, incc
using largv = FirstWords<Int, Ptr, Int, Ptr, Int, Ptr, Int>;
// lartv: n, x, incx, y, incy, c, s, incc
using lartv = FirstWords<Int, Ptr, Int, Ptr, Int, Ptr, Ptr, Int>;
// lascl: type, kl, ku, cfrom, cto, m, n, a, lda [info]
using lascl = FirstWords<Chr, Int, Int, Real, Real, Int, Int, Ptr, Int>;
// laset: uplo, m, n, alpha, beta, a, lda
template <template <int> class S> using laset = FirstWords<Chr, Int, Int, S, S, Ptr, Int>;
// lasr: side, pivot, direct, m, n, c, s, a, lda
using lasr = FirstWords<Chr, Chr, Chr, Int, Int, Ptr, Ptr, Ptr, Int>;
// zlat2c, dlat2s: uplo, n, a, lda, sa, ldsa [info]
using lat2 = FirstWords<Chr, Int, Ptr, Int, Ptr, Int>;
// dsposv, zcposv: uplo, n, nrhs, a, lda, b, ldb, x, ldx, work [swork, (zcposv) rwork, iter, info]
using mixedPosv = FirstWords<Chr, Int, Int, Ptr, Int, Ptr, Int, Ptr, Int, Ptr>;
