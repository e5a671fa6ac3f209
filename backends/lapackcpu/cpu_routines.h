// Where a routine of the CPU library is more than its words handed on in order.
// Word counts, result classes and character arguments come from the routine
// tables; these rows hold what the back end's own argument lists decide.
// Expanded by lapackcpu.cpp, which defines COMPLEX_RESULT and BACKEND_ARGUMENTS.

// Routines the back end lacks, left out of the library: LAPACK dropped slazq3,
// dlazq3, slazq4 and dlazq4, and OpenBLAS 0.3.21 exports none of them.
#define CPU_ABSENT_slazq3 CPU_ABSENT
#define CPU_ABSENT_dlazq3 CPU_ABSENT
#define CPU_ABSENT_slazq4 CPU_ABSENT
#define CPU_ABSENT_dlazq4 CPU_ABSENT

// Complex functions: the back end returns the value in registers, as C returns
// a _Complex; our convention passes the result's address as word 1 instead.
//   COMPLEX_RESULT(name, type of the real and imaginary parts)
COMPLEX_RESULT(cdotc, float) COMPLEX_RESULT(cdotu, float) COMPLEX_RESULT(cladiv, float)
COMPLEX_RESULT(zdotc, double) COMPLEX_RESULT(zdotu, double) COMPLEX_RESULT(zladiv, double)

// Routines whose back-end arguments are not their words in order.
//   BACKEND_ARGUMENTS(name, the word for each back-end argument; 0 for a scratch variable)
// syswapr and heswapr took (uplo, n, a, i1, i2) with a n by n; the back end's
// have lda as their fourth argument, which is therefore n.
BACKEND_ARGUMENTS(ssyswapr, 1, 2, 3, 2, 4, 5) BACKEND_ARGUMENTS(dsyswapr, 1, 2, 3, 2, 4, 5)
BACKEND_ARGUMENTS(csyswapr, 1, 2, 3, 2, 4, 5) BACKEND_ARGUMENTS(zsyswapr, 1, 2, 3, 2, 4, 5)
BACKEND_ARGUMENTS(cheswapr, 1, 2, 3, 2, 4, 5) BACKEND_ARGUMENTS(zheswapr, 1, 2, 3, 2, 4, 5)
// lartgs(x, y, sigma, cs, sn) has five arguments but four words in the table of
// forwarded routines: sn goes to a scratch variable, not to whatever the fifth
// register holds. A fifth word in that table stops the build here.
BACKEND_ARGUMENTS(slartgs, 1, 2, 3, 4, 0) BACKEND_ARGUMENTS(dlartgs, 1, 2, 3, 4, 0)
