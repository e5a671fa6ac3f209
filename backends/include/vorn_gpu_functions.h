// The GPU functions of vorn_lapack.h as one list, for the C++ code that
// implements or calls all of them: the emulator, the CUDA library, the tests, and
// the emulator's Windows .def file (read from the rows by CMake).
//
// vorn_lapack.h stays the hand-written contract. Every expansion of this list
// that declares or defines a function is compiled with that header included, so
// a parameter list that differs from the header's prototype is a conflicting
// declaration of a C function and fails the build.
//
// Adding a GPU function: one row in VORN_GPU_FUNCTIONS, plus its root's parameter
// list below if the root is new. Adding a routed family also touches: its
// declarations in vorn_lapack.h, its rows in routines/routed/ (link side),
// routing/crossover_defaults.inc if it brings new crossovers, the emulator's
// table of roots without info (BLAS) or its own emulation (emulator/routines.cpp),
// and the CUDA library's root structs (vorn-cuda/routines.cpp).
#pragma once

#include <type_traits>

#include "vorn_lapack.h"

// The real type of an element type: float for float and vornFloatComplex,
// double for double and vornDoubleComplex.
template <class T>
using vornRealOf = std::conditional_t<std::is_same_v<T, float> || std::is_same_v<T, vornFloatComplex>, float, double>;

// Each root's parameter list, written once over the element type T. P(type, name)
// is applied to every parameter; the expansion chooses what it makes of them.
#define VORN_GPU_PARAMETERS_potrf(P, T) P(char, uplo), P(int, n), P(T*, a), P(int, lda)
#define VORN_GPU_PARAMETERS_potrs(P, T) \
    P(char, uplo), P(int, n), P(int, nrhs), P(const T*, a), P(int, lda), P(T*, b), P(int, ldb)
#define VORN_GPU_PARAMETERS_potri VORN_GPU_PARAMETERS_potrf
#define VORN_GPU_PARAMETERS_posv(P, T) \
    P(char, uplo), P(int, n), P(int, nrhs), P(T*, a), P(int, lda), P(T*, b), P(int, ldb)
#define VORN_GPU_PARAMETERS_pbtrf(P, T) P(char, uplo), P(int, n), P(int, kd), P(T*, ab), P(int, ldab)
#define VORN_GPU_PARAMETERS_trtri(P, T) P(char, uplo), P(char, diag), P(int, n), P(T*, a), P(int, lda)
#define VORN_GPU_PARAMETERS_trtrs(P, T)                                                                     \
    P(char, uplo), P(char, trans), P(char, diag), P(int, n), P(int, nrhs), P(const T*, a), P(int, lda), P(T*, b), \
        P(int, ldb)

#define VORN_GPU_PARAMETERS_getrf(P, T) P(int, m), P(int, n), P(T*, a), P(int, lda), P(int*, ipiv)
#define VORN_GPU_PARAMETERS_getrs(P, T) \
    P(char, trans), P(int, n), P(int, nrhs), P(const T*, a), P(int, lda), P(const int*, ipiv), P(T*, b), P(int, ldb)
#define VORN_GPU_PARAMETERS_getri(P, T) P(int, n), P(T*, a), P(int, lda), P(const int*, ipiv)
#define VORN_GPU_PARAMETERS_gesv(P, T) \
    P(int, n), P(int, nrhs), P(T*, a), P(int, lda), P(int*, ipiv), P(T*, b), P(int, ldb)
#define VORN_GPU_PARAMETERS_gbtrf(P, T) \
    P(int, m), P(int, n), P(int, kl), P(int, ku), P(T*, ab), P(int, ldab), P(int*, ipiv)
// dsgesv and zcgesv, over their working (double) element type.
#define VORN_GPU_PARAMETERS_mixedGesv(P, T)                                                                    \
    P(int, n), P(int, nrhs), P(T*, a), P(int, lda), P(int*, ipiv), P(const T*, b), P(int, ldb), P(T*, x), \
        P(int, ldx), P(T*, work)

#define VORN_GPU_PARAMETERS_gemm(P, T)                                                                        \
    P(char, transa), P(char, transb), P(int, m), P(int, n), P(int, k), P(T, alpha), P(const T*, a), P(int, lda), \
        P(const T*, b), P(int, ldb), P(T, beta), P(T*, c), P(int, ldc)
#define VORN_GPU_PARAMETERS_symm(P, T)                                                                       \
    P(char, side), P(char, uplo), P(int, m), P(int, n), P(T, alpha), P(const T*, a), P(int, lda), P(const T*, b), \
        P(int, ldb), P(T, beta), P(T*, c), P(int, ldc)
#define VORN_GPU_PARAMETERS_hemm VORN_GPU_PARAMETERS_symm
#define VORN_GPU_PARAMETERS_syrk(P, T)                                                                      \
    P(char, uplo), P(char, trans), P(int, n), P(int, k), P(T, alpha), P(const T*, a), P(int, lda), P(T, beta), \
        P(T*, c), P(int, ldc)
#define VORN_GPU_PARAMETERS_herk(P, T)                                                                     \
    P(char, uplo), P(char, trans), P(int, n), P(int, k), P(vornRealOf<T>, alpha), P(const T*, a), P(int, lda), \
        P(vornRealOf<T>, beta), P(T*, c), P(int, ldc)
#define VORN_GPU_PARAMETERS_syr2k(P, T)                                                                     \
    P(char, uplo), P(char, trans), P(int, n), P(int, k), P(T, alpha), P(const T*, a), P(int, lda), P(const T*, b), \
        P(int, ldb), P(T, beta), P(T*, c), P(int, ldc)
#define VORN_GPU_PARAMETERS_her2k(P, T)                                                                     \
    P(char, uplo), P(char, trans), P(int, n), P(int, k), P(T, alpha), P(const T*, a), P(int, lda), P(const T*, b), \
        P(int, ldb), P(vornRealOf<T>, beta), P(T*, c), P(int, ldc)
#define VORN_GPU_PARAMETERS_trmm(P, T)                                                                         \
    P(char, side), P(char, uplo), P(char, transa), P(char, diag), P(int, m), P(int, n), P(T, alpha), P(const T*, a), \
        P(int, lda), P(T*, b), P(int, ldb)
#define VORN_GPU_PARAMETERS_trsm VORN_GPU_PARAMETERS_trmm
#define VORN_GPU_PARAMETERS_symv(P, T)                                                                            \
    P(char, uplo), P(int, n), P(T, alpha), P(const T*, a), P(int, lda), P(const T*, x), P(int, incx), P(T, beta), \
        P(T*, y), P(int, incy)
#define VORN_GPU_PARAMETERS_hemv VORN_GPU_PARAMETERS_symv

#define VORN_GPU_PARAMETERS_geqrf(P, T) P(int, m), P(int, n), P(T*, a), P(int, lda), P(T*, tau)
#define VORN_GPU_PARAMETERS_geqlf VORN_GPU_PARAMETERS_geqrf
#define VORN_GPU_PARAMETERS_gerqf VORN_GPU_PARAMETERS_geqrf
#define VORN_GPU_PARAMETERS_gelqf VORN_GPU_PARAMETERS_geqrf
#define VORN_GPU_PARAMETERS_geqrfp VORN_GPU_PARAMETERS_geqrf
#define VORN_GPU_PARAMETERS_gels(P, T) \
    P(char, trans), P(int, m), P(int, n), P(int, nrhs), P(T*, a), P(int, lda), P(T*, b), P(int, ldb)
#define VORN_GPU_PARAMETERS_gglse(P, T)                                                                        \
    P(int, m), P(int, n), P(int, p), P(T*, a), P(int, lda), P(T*, b), P(int, ldb), P(T*, c), P(T*, d), P(T*, x)
#define VORN_GPU_PARAMETERS_ggrqf(P, T)                                                                       \
    P(int, m), P(int, p), P(int, n), P(T*, a), P(int, lda), P(T*, taua), P(T*, b), P(int, ldb), P(T*, taub)

// The org and orm roots stand for the ung and unm routines of complex precisions too.
#define VORN_GPU_PARAMETERS_orgbr(P, T) \
    P(char, vect), P(int, m), P(int, n), P(int, k), P(T*, a), P(int, lda), P(const T*, tau)
#define VORN_GPU_PARAMETERS_orghr(P, T) P(int, n), P(int, ilo), P(int, ihi), P(T*, a), P(int, lda), P(const T*, tau)
#define VORN_GPU_PARAMETERS_orgqr(P, T) P(int, m), P(int, n), P(int, k), P(T*, a), P(int, lda), P(const T*, tau)
#define VORN_GPU_PARAMETERS_orglq VORN_GPU_PARAMETERS_orgqr
#define VORN_GPU_PARAMETERS_orgql VORN_GPU_PARAMETERS_orgqr
#define VORN_GPU_PARAMETERS_orgrq VORN_GPU_PARAMETERS_orgqr
#define VORN_GPU_PARAMETERS_ormqr(P, T)                                                                      \
    P(char, side), P(char, trans), P(int, m), P(int, n), P(int, k), P(const T*, a), P(int, lda), P(const T*, tau), \
        P(T*, c), P(int, ldc)
#define VORN_GPU_PARAMETERS_ormlq VORN_GPU_PARAMETERS_ormqr
#define VORN_GPU_PARAMETERS_ormql VORN_GPU_PARAMETERS_ormqr
#define VORN_GPU_PARAMETERS_ormrq VORN_GPU_PARAMETERS_ormqr

// Reductions, eigenvalues and singular values. R is the real type of T: the
// eigenvalues, singular values, bidiagonal and tridiagonal entries, and the real
// scalars vl, vu and abstol. heev, heevx and hegv take the parameters of their
// real sisters; geev's complex routines have one array w for wr and wi.
#define VORN_GPU_PARAMETERS_gehrd(P, T) P(int, n), P(int, ilo), P(int, ihi), P(T*, a), P(int, lda), P(T*, tau)
#define VORN_GPU_PARAMETERS_gebrd(P, T)                                                                             \
    P(int, m), P(int, n), P(T*, a), P(int, lda), P(vornRealOf<T>*, d), P(vornRealOf<T>*, e), P(T*, tauq), P(T*, taup)
#define VORN_GPU_PARAMETERS_geev(P, T)                                                                       \
    P(char, jobvl), P(char, jobvr), P(int, n), P(T*, a), P(int, lda), P(T*, wr), P(T*, wi), P(T*, vl), P(int, ldvl), \
        P(T*, vr), P(int, ldvr)
#define VORN_GPU_PARAMETERS_geevComplex(P, T)                                                                \
    P(char, jobvl), P(char, jobvr), P(int, n), P(T*, a), P(int, lda), P(T*, w), P(T*, vl), P(int, ldvl), P(T*, vr), \
        P(int, ldvr)
#define VORN_GPU_PARAMETERS_syev(P, T) \
    P(char, jobz), P(char, uplo), P(int, n), P(T*, a), P(int, lda), P(vornRealOf<T>*, w)
#define VORN_GPU_PARAMETERS_heev VORN_GPU_PARAMETERS_syev
#define VORN_GPU_PARAMETERS_syevx(P, T)                                                                          \
    P(char, jobz), P(char, range), P(char, uplo), P(int, n), P(T*, a), P(int, lda), P(vornRealOf<T>, vl),         \
        P(vornRealOf<T>, vu), P(int, il), P(int, iu), P(vornRealOf<T>, abstol), P(int*, m), P(vornRealOf<T>*, w), \
        P(T*, z), P(int, ldz), P(T*, work)
#define VORN_GPU_PARAMETERS_heevx VORN_GPU_PARAMETERS_syevx
#define VORN_GPU_PARAMETERS_sygv(P, T)                                                                       \
    P(int, itype), P(char, jobz), P(char, uplo), P(int, n), P(T*, a), P(int, lda), P(T*, b), P(int, ldb), \
        P(vornRealOf<T>*, w)
#define VORN_GPU_PARAMETERS_hegv VORN_GPU_PARAMETERS_sygv
#define VORN_GPU_PARAMETERS_steqr(P, T) \
    P(char, compz), P(int, n), P(vornRealOf<T>*, d), P(vornRealOf<T>*, e), P(T*, z), P(int, ldz)
#define VORN_GPU_PARAMETERS_stebz(P, T)                                                                          \
    P(char, range), P(char, order), P(int, n), P(T, vl), P(T, vu), P(int, il), P(int, iu), P(T, abstol),          \
        P(const T*, d), P(const T*, e), P(int*, m), P(int*, nsplit), P(T*, w), P(int*, iblock), P(int*, isplit)
#define VORN_GPU_PARAMETERS_gesvd(P, T)                                                                          \
    P(char, jobu), P(char, jobvt), P(int, m), P(int, n), P(T*, a), P(int, lda), P(vornRealOf<T>*, s), P(T*, u), \
        P(int, ldu), P(T*, vt), P(int, ldvt)
#define VORN_GPU_PARAMETERS_gesdd(P, T)                                                                         \
    P(char, jobz), P(int, m), P(int, n), P(T*, a), P(int, lda), P(vornRealOf<T>*, s), P(T*, u), P(int, ldu), \
        P(T*, vt), P(int, ldvt)
#define VORN_GPU_PARAMETERS_bdsqr(P, T)                                                                         \
    P(char, uplo), P(int, n), P(int, ncvt), P(int, nru), P(int, ncc), P(vornRealOf<T>*, d), P(vornRealOf<T>*, e), \
        P(T*, vt), P(int, ldvt), P(T*, u), P(int, ldu), P(T*, c), P(int, ldc)

// One row per GPU function: its name, the routine's base name, its root (whose
// parameter list it takes) and its element type.
#define VORN_GPU_FUNCTIONS(X)                           \
    /* Cholesky and triangular routines */              \
    X(vornSpotrf, spotrf, potrf, float)                 \
    X(vornDpotrf, dpotrf, potrf, double)                \
    X(vornCpotrf, cpotrf, potrf, vornFloatComplex)      \
    X(vornZpotrf, zpotrf, potrf, vornDoubleComplex)     \
    X(vornSpotrs, spotrs, potrs, float)                 \
    X(vornDpotrs, dpotrs, potrs, double)                \
    X(vornCpotrs, cpotrs, potrs, vornFloatComplex)      \
    X(vornZpotrs, zpotrs, potrs, vornDoubleComplex)     \
    X(vornSpotri, spotri, potri, float)                 \
    X(vornDpotri, dpotri, potri, double)                \
    X(vornCpotri, cpotri, potri, vornFloatComplex)      \
    X(vornZpotri, zpotri, potri, vornDoubleComplex)     \
    X(vornSposv, sposv, posv, float)                    \
    X(vornDposv, dposv, posv, double)                   \
    X(vornCposv, cposv, posv, vornFloatComplex)         \
    X(vornZposv, zposv, posv, vornDoubleComplex)        \
    X(vornSpbtrf, spbtrf, pbtrf, float)                 \
    X(vornDpbtrf, dpbtrf, pbtrf, double)                \
    X(vornCpbtrf, cpbtrf, pbtrf, vornFloatComplex)      \
    X(vornZpbtrf, zpbtrf, pbtrf, vornDoubleComplex)     \
    X(vornStrtri, strtri, trtri, float)                 \
    X(vornDtrtri, dtrtri, trtri, double)                \
    X(vornCtrtri, ctrtri, trtri, vornFloatComplex)      \
    X(vornZtrtri, ztrtri, trtri, vornDoubleComplex)     \
    X(vornStrtrs, strtrs, trtrs, float)                 \
    X(vornDtrtrs, dtrtrs, trtrs, double)                \
    X(vornCtrtrs, ctrtrs, trtrs, vornFloatComplex)      \
    X(vornZtrtrs, ztrtrs, trtrs, vornDoubleComplex)     \
    /* LU routines */                                   \
    X(vornSgetrf, sgetrf, getrf, float)                 \
    X(vornDgetrf, dgetrf, getrf, double)                \
    X(vornCgetrf, cgetrf, getrf, vornFloatComplex)      \
    X(vornZgetrf, zgetrf, getrf, vornDoubleComplex)     \
    X(vornSgetrs, sgetrs, getrs, float)                 \
    X(vornDgetrs, dgetrs, getrs, double)                \
    X(vornCgetrs, cgetrs, getrs, vornFloatComplex)      \
    X(vornZgetrs, zgetrs, getrs, vornDoubleComplex)     \
    X(vornSgetri, sgetri, getri, float)                 \
    X(vornDgetri, dgetri, getri, double)                \
    X(vornCgetri, cgetri, getri, vornFloatComplex)      \
    X(vornZgetri, zgetri, getri, vornDoubleComplex)     \
    X(vornSgesv, sgesv, gesv, float)                    \
    X(vornDgesv, dgesv, gesv, double)                   \
    X(vornCgesv, cgesv, gesv, vornFloatComplex)         \
    X(vornZgesv, zgesv, gesv, vornDoubleComplex)        \
    X(vornSgbtrf, sgbtrf, gbtrf, float)                 \
    X(vornDgbtrf, dgbtrf, gbtrf, double)                \
    X(vornCgbtrf, cgbtrf, gbtrf, vornFloatComplex)      \
    X(vornZgbtrf, zgbtrf, gbtrf, vornDoubleComplex)     \
    X(vornDsgesv, dsgesv, mixedGesv, double)            \
    X(vornZcgesv, zcgesv, mixedGesv, vornDoubleComplex) \
    /* Multiply and rank-update routines */             \
    X(vornSgemm, sgemm, gemm, float)                    \
    X(vornDgemm, dgemm, gemm, double)                   \
    X(vornCgemm, cgemm, gemm, vornFloatComplex)         \
    X(vornZgemm, zgemm, gemm, vornDoubleComplex)        \
    X(vornSsymm, ssymm, symm, float)                    \
    X(vornDsymm, dsymm, symm, double)                   \
    X(vornCsymm, csymm, symm, vornFloatComplex)         \
    X(vornZsymm, zsymm, symm, vornDoubleComplex)        \
    X(vornChemm, chemm, hemm, vornFloatComplex)         \
    X(vornZhemm, zhemm, hemm, vornDoubleComplex)        \
    X(vornSsyrk, ssyrk, syrk, float)                    \
    X(vornDsyrk, dsyrk, syrk, double)                   \
    X(vornCsyrk, csyrk, syrk, vornFloatComplex)         \
    X(vornZsyrk, zsyrk, syrk, vornDoubleComplex)        \
    X(vornCherk, cherk, herk, vornFloatComplex)         \
    X(vornZherk, zherk, herk, vornDoubleComplex)        \
    X(vornSsyr2k, ssyr2k, syr2k, float)                 \
    X(vornDsyr2k, dsyr2k, syr2k, double)                \
    X(vornCsyr2k, csyr2k, syr2k, vornFloatComplex)      \
    X(vornZsyr2k, zsyr2k, syr2k, vornDoubleComplex)     \
    X(vornCher2k, cher2k, her2k, vornFloatComplex)      \
    X(vornZher2k, zher2k, her2k, vornDoubleComplex)     \
    X(vornStrmm, strmm, trmm, float)                    \
    X(vornDtrmm, dtrmm, trmm, double)                   \
    X(vornCtrmm, ctrmm, trmm, vornFloatComplex)         \
    X(vornZtrmm, ztrmm, trmm, vornDoubleComplex)        \
    X(vornStrsm, strsm, trsm, float)                    \
    X(vornDtrsm, dtrsm, trsm, double)                   \
    X(vornCtrsm, ctrsm, trsm, vornFloatComplex)         \
    X(vornZtrsm, ztrsm, trsm, vornDoubleComplex)        \
    X(vornSsymv, ssymv, symv, float)                    \
    X(vornDsymv, dsymv, symv, double)                   \
    X(vornChemv, chemv, hemv, vornFloatComplex)         \
    X(vornZhemv, zhemv, hemv, vornDoubleComplex)        \
    /* Orthogonal factorisations */                     \
    X(vornSgeqrf, sgeqrf, geqrf, float)                 \
    X(vornDgeqrf, dgeqrf, geqrf, double)                \
    X(vornCgeqrf, cgeqrf, geqrf, vornFloatComplex)      \
    X(vornZgeqrf, zgeqrf, geqrf, vornDoubleComplex)     \
    X(vornSgeqlf, sgeqlf, geqlf, float)                 \
    X(vornDgeqlf, dgeqlf, geqlf, double)                \
    X(vornCgeqlf, cgeqlf, geqlf, vornFloatComplex)      \
    X(vornZgeqlf, zgeqlf, geqlf, vornDoubleComplex)     \
    X(vornSgerqf, sgerqf, gerqf, float)                 \
    X(vornDgerqf, dgerqf, gerqf, double)                \
    X(vornCgerqf, cgerqf, gerqf, vornFloatComplex)      \
    X(vornZgerqf, zgerqf, gerqf, vornDoubleComplex)     \
    X(vornSgelqf, sgelqf, gelqf, float)                 \
    X(vornDgelqf, dgelqf, gelqf, double)                \
    X(vornCgelqf, cgelqf, gelqf, vornFloatComplex)      \
    X(vornZgelqf, zgelqf, gelqf, vornDoubleComplex)     \
    X(vornSgeqrfp, sgeqrfp, geqrfp, float)              \
    X(vornDgeqrfp, dgeqrfp, geqrfp, double)             \
    X(vornCgeqrfp, cgeqrfp, geqrfp, vornFloatComplex)   \
    X(vornZgeqrfp, zgeqrfp, geqrfp, vornDoubleComplex)  \
    X(vornSgels, sgels, gels, float)                    \
    X(vornDgels, dgels, gels, double)                   \
    X(vornCgels, cgels, gels, vornFloatComplex)         \
    X(vornZgels, zgels, gels, vornDoubleComplex)        \
    X(vornSgglse, sgglse, gglse, float)                 \
    X(vornDgglse, dgglse, gglse, double)                \
    X(vornCgglse, cgglse, gglse, vornFloatComplex)      \
    X(vornZgglse, zgglse, gglse, vornDoubleComplex)     \
    X(vornSggrqf, sggrqf, ggrqf, float)                 \
    X(vornDggrqf, dggrqf, ggrqf, double)                \
    X(vornCggrqf, cggrqf, ggrqf, vornFloatComplex)      \
    X(vornZggrqf, zggrqf, ggrqf, vornDoubleComplex)     \
    /* Orthogonal factor generation and use */          \
    X(vornSorgbr, sorgbr, orgbr, float)                 \
    X(vornDorgbr, dorgbr, orgbr, double)                \
    X(vornCungbr, cungbr, orgbr, vornFloatComplex)      \
    X(vornZungbr, zungbr, orgbr, vornDoubleComplex)     \
    X(vornSorghr, sorghr, orghr, float)                 \
    X(vornDorghr, dorghr, orghr, double)                \
    X(vornCunghr, cunghr, orghr, vornFloatComplex)      \
    X(vornZunghr, zunghr, orghr, vornDoubleComplex)     \
    X(vornSorglq, sorglq, orglq, float)                 \
    X(vornDorglq, dorglq, orglq, double)                \
    X(vornCunglq, cunglq, orglq, vornFloatComplex)      \
    X(vornZunglq, zunglq, orglq, vornDoubleComplex)     \
    X(vornSorgql, sorgql, orgql, float)                 \
    X(vornDorgql, dorgql, orgql, double)                \
    X(vornCungql, cungql, orgql, vornFloatComplex)      \
    X(vornZungql, zungql, orgql, vornDoubleComplex)     \
    X(vornSorgqr, sorgqr, orgqr, float)                 \
    X(vornDorgqr, dorgqr, orgqr, double)                \
    X(vornCungqr, cungqr, orgqr, vornFloatComplex)      \
    X(vornZungqr, zungqr, orgqr, vornDoubleComplex)     \
    X(vornSorgrq, sorgrq, orgrq, float)                 \
    X(vornDorgrq, dorgrq, orgrq, double)                \
    X(vornCungrq, cungrq, orgrq, vornFloatComplex)      \
    X(vornZungrq, zungrq, orgrq, vornDoubleComplex)     \
    X(vornSormlq, sormlq, ormlq, float)                 \
    X(vornDormlq, dormlq, ormlq, double)                \
    X(vornCunmlq, cunmlq, ormlq, vornFloatComplex)      \
    X(vornZunmlq, zunmlq, ormlq, vornDoubleComplex)     \
    X(vornSormql, sormql, ormql, float)                 \
    X(vornDormql, dormql, ormql, double)                \
    X(vornCunmql, cunmql, ormql, vornFloatComplex)      \
    X(vornZunmql, zunmql, ormql, vornDoubleComplex)     \
    X(vornSormqr, sormqr, ormqr, float)                 \
    X(vornDormqr, dormqr, ormqr, double)                \
    X(vornCunmqr, cunmqr, ormqr, vornFloatComplex)      \
    X(vornZunmqr, zunmqr, ormqr, vornDoubleComplex)     \
    X(vornSormrq, sormrq, ormrq, float)                 \
    X(vornDormrq, dormrq, ormrq, double)                \
    X(vornCunmrq, cunmrq, ormrq, vornFloatComplex)      \
    X(vornZunmrq, zunmrq, ormrq, vornDoubleComplex)     \
    /* Reductions and eigenvalues */                    \
    X(vornSgehrd, sgehrd, gehrd, float)                 \
    X(vornDgehrd, dgehrd, gehrd, double)                \
    X(vornCgehrd, cgehrd, gehrd, vornFloatComplex)      \
    X(vornZgehrd, zgehrd, gehrd, vornDoubleComplex)     \
    X(vornSgebrd, sgebrd, gebrd, float)                 \
    X(vornDgebrd, dgebrd, gebrd, double)                \
    X(vornCgebrd, cgebrd, gebrd, vornFloatComplex)      \
    X(vornZgebrd, zgebrd, gebrd, vornDoubleComplex)     \
    X(vornSgeev, sgeev, geev, float)                    \
    X(vornDgeev, dgeev, geev, double)                   \
    X(vornCgeev, cgeev, geevComplex, vornFloatComplex)  \
    X(vornZgeev, zgeev, geevComplex, vornDoubleComplex) \
    X(vornSsyev, ssyev, syev, float)                    \
    X(vornDsyev, dsyev, syev, double)                   \
    X(vornCheev, cheev, heev, vornFloatComplex)         \
    X(vornZheev, zheev, heev, vornDoubleComplex)        \
    X(vornSsyevx, ssyevx, syevx, float)                 \
    X(vornDsyevx, dsyevx, syevx, double)                \
    X(vornCheevx, cheevx, heevx, vornFloatComplex)      \
    X(vornZheevx, zheevx, heevx, vornDoubleComplex)     \
    X(vornSsygv, ssygv, sygv, float)                    \
    X(vornDsygv, dsygv, sygv, double)                   \
    X(vornChegv, chegv, hegv, vornFloatComplex)         \
    X(vornZhegv, zhegv, hegv, vornDoubleComplex)        \
    X(vornSsteqr, ssteqr, steqr, float)                 \
    X(vornDsteqr, dsteqr, steqr, double)                \
    X(vornCsteqr, csteqr, steqr, vornFloatComplex)      \
    X(vornZsteqr, zsteqr, steqr, vornDoubleComplex)     \
    X(vornSstebz, sstebz, stebz, float)                 \
    X(vornDstebz, dstebz, stebz, double)                \
    /* Singular values */                               \
    X(vornSgesvd, sgesvd, gesvd, float)                 \
    X(vornDgesvd, dgesvd, gesvd, double)                \
    X(vornCgesvd, cgesvd, gesvd, vornFloatComplex)      \
    X(vornZgesvd, zgesvd, gesvd, vornDoubleComplex)     \
    X(vornSgesdd, sgesdd, gesdd, float)                 \
    X(vornDgesdd, dgesdd, gesdd, double)                \
    X(vornCgesdd, cgesdd, gesdd, vornFloatComplex)      \
    X(vornZgesdd, zgesdd, gesdd, vornDoubleComplex)     \
    X(vornSbdsqr, sbdsqr, bdsqr, float)                 \
    X(vornDbdsqr, dbdsqr, bdsqr, double)                \
    X(vornCbdsqr, cbdsqr, bdsqr, vornFloatComplex)      \
    X(vornZbdsqr, zbdsqr, bdsqr, vornDoubleComplex)

// Expansions of a parameter list: "int m, int n, float* a", "m, n, a".
#define VORN_GPU_DECLARE(type, name) type name
#define VORN_GPU_PASS(type, name) name
#define VORN_GPU_PARAMETER_LIST(root, T) VORN_GPU_PARAMETERS_##root(VORN_GPU_DECLARE, T)
#define VORN_GPU_ARGUMENT_LIST(root, T) VORN_GPU_PARAMETERS_##root(VORN_GPU_PASS, T)

// Defines one GPU function of the list, with C linkage, as the expansion's own
// VORN_GPU_BODY(function, base, root, T) gives its body, which may use the
// parameters by name: `VORN_GPU_FUNCTIONS(VORN_GPU_DEFINE_ONE)` defines them all.
#define VORN_GPU_DEFINE_ONE(function, base, root, T) \
    extern "C" VORN_API int function(VORN_GPU_PARAMETER_LIST(root, T)) { VORN_GPU_BODY(function, base, root, T) }
