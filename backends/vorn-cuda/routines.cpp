// The routines of the CUDA GPU library: one row per root, over the element type,
// and the GPU function list (vorn_gpu_functions.h) defines each function over its
// root's row. A row holds the GPU function's arguments in its
// order, LAPACK's argument checks (position, condition) in the reference
// implementation's order, LAPACK's quick return, the operands with the part of
// the caller's array that is read or written, and the cuBLAS or cuSOLVER calls.
// The frame (frame.h) does the rest.
#include <cmath>
#include <limits>

#include "frame.h"
#include "vorn_gpu_functions.h"

namespace {

// ---- Multiply and rank-update routines: no info; status 8 names the argument
// that reference BLAS would give to xerbla, and the CPU library reports it.
//
// With alpha zero (or k zero) reference BLAS reads neither A nor B: C := beta C,
// and trmm and trsm set B to zero. cuBLAS promises no such thing, and an Inf or
// NaN in A or B could reach C through 0 * Inf: these results are formed on the
// host, as reference BLAS forms them, and nothing goes to the GPU.

// The product of a real or complex factor and an element, as reference BLAS's
// Fortran forms it.
template <class T, class S> T times(const S& s, const T& x) {
    if constexpr (!isComplex<T>) return s * x;
    else if constexpr (std::is_same_v<S, T>) return T{s.re * x.re - s.im * x.im, s.re * x.im + s.im * x.re};
    else return T{s * x.re, s * x.im};
}

// C := beta C over the rows x cols part of the caller's array, or over its `uplo`
// triangle ('U' or 'L'; '\0' for all of it). beta = 0 gives exact zeros whatever
// C held; `hermitian` leaves the diagonal real, as herk and her2k do.
template <class T, class S>
void scaleOnHost(T* c, int rows, int cols, int ld, const S& beta, char uplo = '\0', bool hermitian = false) {
    for (int j = 0; j < cols; ++j) {
        const int first = upper(uplo) == 'L' ? j : 0, last = upper(uplo) == 'U' ? j : rows - 1;
        for (int i = first; i <= last; ++i) {
            T& x = c[i + std::size_t(j) * ld];
            x = isZero(beta) ? T{} : times(beta, x);
            if constexpr (isComplex<T>)
                if (hermitian && i == j) x.im = 0;
        }
    }
}

// gemm.
template <class T> struct Gemm {
    using Type = T; static constexpr const char* root = "gemm";
    char transa, transb; int m, n, k; T alpha; const T* a; int lda; const T* b; int ldb; T beta; T* c; int ldc;
    bool nota() const { return upper(transa) == 'N'; }
    bool notb() const { return upper(transb) == 'N'; }
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(transa, "NTC")}, {2, !oneOf(transb, "NTC")}, {3, m < 0}, {4, n < 0},
                             {5, k < 0}, {8, lda < atLeastOne(nota() ? m : k)},
                             {10, ldb < atLeastOne(notb() ? k : n)}, {13, ldc < atLeastOne(m)}});
    }
    bool nothingToDo() const { return m == 0 || n == 0 || ((isZero(alpha) || k == 0) && isOne(beta)); }
    bool onlyScales() const { return isZero(alpha) || k == 0; }
    void scale() const { scaleOnHost(c, m, n, ldc, beta); }
    auto operands() const {
        return std::array{in(a, nota() ? m : k, nota() ? k : m, lda), in(b, notb() ? k : n, notb() ? n : k, ldb),
                          isZero(beta) ? out(c, m, n, ldc) : inOut(c, m, n, ldc)};
    }
    int compute(const Gpu& g) const {
        const auto al = scalar(alpha), be = scalar(beta);
        return g.blas(Library<T>::gemm(g.context.blas, operation<T>(transa), operation<T>(transb), m, n, k, &al,
                                       g.at<T>(0), g.ld(0), g.at<T>(1), g.ld(1), &be, g.at<T>(2), g.ld(2)), "gemm");
    }
};

// symm, hemm.
// hemm reads A's diagonal as real, whatever its imaginary parts hold.
template <class T, bool Hermitian> struct Symm {
    using Type = T; static constexpr const char* root = Hermitian ? "hemm" : "symm";
    char side, uplo; int m, n; T alpha; const T* a; int lda; const T* b; int ldb; T beta; T* c; int ldc;
    int order() const { return upper(side) == 'L' ? m : n; }
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(side, "LR")}, {2, !oneOf(uplo, "UL")}, {3, m < 0}, {4, n < 0},
                             {7, lda < atLeastOne(order())}, {9, ldb < atLeastOne(m)}, {12, ldc < atLeastOne(m)}});
    }
    bool nothingToDo() const { return m == 0 || n == 0 || (isZero(alpha) && isOne(beta)); }
    bool onlyScales() const { return isZero(alpha); }
    void scale() const { scaleOnHost(c, m, n, ldc, beta); }
    auto operands() const {
        return std::array{in(a, order(), order(), lda), in(b, m, n, ldb),
                          isZero(beta) ? out(c, m, n, ldc) : inOut(c, m, n, ldc)};
    }
    int compute(const Gpu& g) const {
        if constexpr (Hermitian)
            if (int status = g.realDiagonal<T>(0, order())) return status;
        const auto al = scalar(alpha), be = scalar(beta);
        constexpr auto function = choose<Hermitian>(Library<T>::hemm, Library<T>::symm);
        return g.blas(function(g.context.blas, sideOf(side), fill(uplo), m, n, &al, g.at<T>(0), g.ld(0), g.at<T>(1),
                               g.ld(1), &be, g.at<T>(2), g.ld(2)), root);
    }
};

// syrk, herk.
// C is copied in whole whatever beta is: only one triangle is computed, and the
// other goes back as it came. herk and her2k leave C's diagonal real.
template <class T, bool Hermitian> struct Syrk {
    using Type = T; static constexpr const char* root = Hermitian ? "herk" : "syrk";
    using Scalar = std::conditional_t<Hermitian, typename Library<T>::Real, T>;
    char uplo, trans; int n, k; Scalar alpha; const T* a; int lda; Scalar beta; T* c; int ldc;
    bool notrans() const { return upper(trans) == 'N'; }
    int illegalArgument() const {
        const char* transposes = Hermitian ? "NC" : isComplex<T> ? "NT" : "NTC";
        return firstIllegal({{1, !oneOf(uplo, "UL")}, {2, !oneOf(trans, transposes)}, {3, n < 0}, {4, k < 0},
                             {7, lda < atLeastOne(notrans() ? n : k)}, {10, ldc < atLeastOne(n)}});
    }
    bool nothingToDo() const { return n == 0 || ((isZero(alpha) || k == 0) && isOne(beta)); }
    bool onlyScales() const { return isZero(alpha) || k == 0; }
    void scale() const { scaleOnHost(c, n, n, ldc, beta, uplo, Hermitian); }
    auto operands() const {
        return std::array{in(a, notrans() ? n : k, notrans() ? k : n, lda), inOut(c, n, n, ldc)};
    }
    int compute(const Gpu& g) const {
        const auto al = scalar(alpha), be = scalar(beta);
        constexpr auto function = choose<Hermitian>(Library<T>::herk, Library<T>::syrk);
        if (int status = g.blas(function(g.context.blas, fill(uplo), operation<T>(trans), n, k, &al, g.at<T>(0),
                                         g.ld(0), &be, g.at<T>(1), g.ld(1)), root))
            return status;
        if constexpr (Hermitian) return g.realDiagonal<T>(1, n);
        return 0;
    }
};

// syr2k, her2k.
template <class T, bool Hermitian> struct Syr2k {
    using Type = T; static constexpr const char* root = Hermitian ? "her2k" : "syr2k";
    using Beta = std::conditional_t<Hermitian, typename Library<T>::Real, T>;
    char uplo, trans; int n, k; T alpha; const T* a; int lda; const T* b; int ldb; Beta beta; T* c; int ldc;
    bool notrans() const { return upper(trans) == 'N'; }
    int illegalArgument() const {
        const char* transposes = Hermitian ? "NC" : isComplex<T> ? "NT" : "NTC";
        const int rows = atLeastOne(notrans() ? n : k);
        return firstIllegal({{1, !oneOf(uplo, "UL")}, {2, !oneOf(trans, transposes)}, {3, n < 0}, {4, k < 0},
                             {7, lda < rows}, {9, ldb < rows}, {12, ldc < atLeastOne(n)}});
    }
    bool nothingToDo() const { return n == 0 || ((isZero(alpha) || k == 0) && isOne(beta)); }
    bool onlyScales() const { return isZero(alpha) || k == 0; }
    void scale() const { scaleOnHost(c, n, n, ldc, beta, uplo, Hermitian); }
    auto operands() const {
        const int rows = notrans() ? n : k, cols = notrans() ? k : n;
        return std::array{in(a, rows, cols, lda), in(b, rows, cols, ldb), inOut(c, n, n, ldc)};
    }
    int compute(const Gpu& g) const {
        const auto al = scalar(alpha);
        const auto be = scalar(beta);
        constexpr auto function = choose<Hermitian>(Library<T>::her2k, Library<T>::syr2k);
        if (int status = g.blas(function(g.context.blas, fill(uplo), operation<T>(trans), n, k, &al, g.at<T>(0),
                                         g.ld(0), g.at<T>(1), g.ld(1), &be, g.at<T>(2), g.ld(2)), root))
            return status;
        if constexpr (Hermitian) return g.realDiagonal<T>(2, n);
        return 0;
    }
};

// trmm, trsm.
// cuBLAS's trmm writes a separate C; given B's own address it works in place.
template <class T, bool Solve> struct Trxm {
    using Type = T; static constexpr const char* root = Solve ? "trsm" : "trmm";
    char side, uplo, transa, diag; int m, n; T alpha; const T* a; int lda; T* b; int ldb;
    int order() const { return upper(side) == 'L' ? m : n; }
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(side, "LR")}, {2, !oneOf(uplo, "UL")}, {3, !oneOf(transa, "NTC")},
                             {4, !oneOf(diag, "UN")}, {5, m < 0}, {6, n < 0}, {9, lda < atLeastOne(order())},
                             {11, ldb < atLeastOne(m)}});
    }
    bool nothingToDo() const { return m == 0 || n == 0; }
    bool onlyScales() const { return isZero(alpha); }
    void scale() const { scaleOnHost(b, m, n, ldb, T{}); }
    auto operands() const { return std::array{in(a, order(), order(), lda), inOut(b, m, n, ldb)}; }
    int compute(const Gpu& g) const {
        const auto al = scalar(alpha);
        if constexpr (Solve)
            return g.blas(Library<T>::trsm(g.context.blas, sideOf(side), fill(uplo), operation<T>(transa), diagOf(diag),
                                           m, n, &al, g.at<T>(0), g.ld(0), g.at<T>(1), g.ld(1)), root);
        else
            return g.blas(Library<T>::trmm(g.context.blas, sideOf(side), fill(uplo), operation<T>(transa), diagOf(diag),
                                           m, n, &al, g.at<T>(0), g.ld(0), g.at<T>(1), g.ld(1), g.at<T>(1), g.ld(1)),
                          root);
    }
};

// symv, hemv.
// y goes in whole: with a stride, the elements between its own stay as they were.
// hemv reads A's diagonal as real.
template <class T, bool Hermitian> struct Symv {
    using Type = T; static constexpr const char* root = Hermitian ? "hemv" : "symv";
    char uplo; int n; T alpha; const T* a; int lda; const T* x; int incx; T beta; T* y; int incy;
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(uplo, "UL")}, {2, n < 0}, {5, lda < atLeastOne(n)}, {7, incx == 0},
                             {10, incy == 0}});
    }
    bool nothingToDo() const { return n == 0 || (isZero(alpha) && isOne(beta)); }
    bool onlyScales() const { return isZero(alpha); }
    void scale() const { scaleOnHost(y, 1, n, incy < 0 ? -incy : incy, beta); }
    auto operands() const { return std::array{in(a, n, n, lda), vector(x, n, incx, Use::in), vector(y, n, incy, Use::inOut)}; }
    int compute(const Gpu& g) const {
        if constexpr (Hermitian)
            if (int status = g.realDiagonal<T>(0, n)) return status;
        const auto al = scalar(alpha), be = scalar(beta);
        constexpr auto function = choose<Hermitian>(Library<T>::hemv, Library<T>::symv);
        return g.blas(function(g.context.blas, fill(uplo), n, &al, g.at<T>(0), g.ld(0), g.at<T>(1), incx, &be,
                               g.at<T>(2), incy), root);
    }
};

// ---- Cholesky and triangular routines: statuses 7 and 8 with info as LAPACK
// gives it.

// The scratch bytes of a row whose only GPU scratch is the workspace that its
// lwork query gives in elements.
template <class Row> int workspaceBytes(const Row& row, ThreadContext& c, std::size_t& bytes) {
    int elements = 0;
    const int status = row.lwork(c, elements);
    bytes = aligned(std::size_t(elements) * sizeof(typename Row::Type));
    return status;
}

// The first exactly zero element on the diagonal of an n x n host matrix, as
// LAPACK's trtri and trtrs look for it before they compute: 1-based, 0 when none.
template <class T> int firstZeroOnDiagonal(const T* a, int n, int lda) {
    for (int i = 0; i < n; ++i)
        if (isZero(a[i + std::size_t(i) * lda])) return i + 1;
    return 0;
}

template <class T> int potrfWork(ThreadContext& c, char uplo, int n, const char* routine, int& lwork) {
    cusolverStatus_t s = Library<T>::potrfSize(c.solver, fill(uplo), n, nullptr, atLeastOne(n), &lwork);
    return s ? solverFailure(s, routine, "potrf_bufferSize") : 0;
}

// potrf. A matrix that is not positive definite leaves
// the factor of its leading minor in a, as in LAPACK.
template <class T> struct Potrf {
    using Type = T; static constexpr const char* root = "potrf";
    char uplo; int n; T* a; int lda;
    int illegalArgument() const { return firstIllegal({{1, !oneOf(uplo, "UL")}, {2, n < 0}, {4, lda < atLeastOne(n)}}); }
    bool nothingToDo() const { return n == 0; }
    auto operands() const { return std::array{inOut(a, n, n, lda, true)}; }
    int lwork(ThreadContext& c, int& elements) const { return potrfWork<T>(c, uplo, n, root, elements); }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const { return workspaceBytes(*this, c, bytes); }
    int compute(const Gpu& g) const {
        int elements = 0;
        if (int status = lwork(g.context, elements)) return status;
        return g.solver(Library<T>::potrf(g.context.solver, fill(uplo), n, g.at<T>(0), g.ld(0), g.work<T>(), elements,
                                          g.info), "potrf");
    }
};

// potrs.
template <class T> struct Potrs {
    using Type = T; static constexpr const char* root = "potrs";
    char uplo; int n, nrhs; const T* a; int lda; T* b; int ldb;
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(uplo, "UL")}, {2, n < 0}, {3, nrhs < 0}, {5, lda < atLeastOne(n)},
                             {7, ldb < atLeastOne(n)}});
    }
    bool nothingToDo() const { return n == 0 || nrhs == 0; }
    auto operands() const { return std::array{in(a, n, n, lda), inOut(b, n, nrhs, ldb)}; }
    int compute(const Gpu& g) const {
        return g.solver(Library<T>::potrs(g.context.solver, fill(uplo), n, nrhs, g.at<T>(0), g.ld(0), g.at<T>(1),
                                          g.ld(1), g.info), "potrs");
    }
};

// posv: potrf, then potrs. A matrix that is not positive definite leaves the
// factor of its leading minor in a and b as it was; nrhs = 0 still factors.
template <class T> struct Posv {
    using Type = T; static constexpr const char* root = "posv";
    char uplo; int n, nrhs; T* a; int lda; T* b; int ldb;
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(uplo, "UL")}, {2, n < 0}, {3, nrhs < 0}, {5, lda < atLeastOne(n)},
                             {7, ldb < atLeastOne(n)}});
    }
    bool nothingToDo() const { return n == 0; }
    auto operands() const { return std::array{inOut(a, n, n, lda, true), inOut(b, n, nrhs, ldb)}; }
    int lwork(ThreadContext& c, int& elements) const { return potrfWork<T>(c, uplo, n, root, elements); }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const { return workspaceBytes(*this, c, bytes); }
    int compute(const Gpu& g) const {
        int elements = 0;
        if (int status = lwork(g.context, elements)) return status;
        if (int status = g.solver(Library<T>::potrf(g.context.solver, fill(uplo), n, g.at<T>(0), g.ld(0), g.work<T>(),
                                                    elements, g.info), "potrf"))
            return status;
        if (nrhs == 0) return 0;
        // After a failed factorisation b holds nothing useful, and info > 0 keeps it from the caller.
        return g.solver(Library<T>::potrs(g.context.solver, fill(uplo), n, nrhs, g.at<T>(0), g.ld(0), g.at<T>(1),
                                          g.ld(1), g.ignoredInfo), "potrs");
    }
};

// potri. LAPACK inverts the factor with trtri first, which finds an exactly
// zero diagonal element before it computes: found here on the host, a untouched.
template <class T> struct Potri {
    using Type = T; static constexpr const char* root = "potri";
    char uplo; int n; T* a; int lda;
    int illegalArgument() const { return firstIllegal({{1, !oneOf(uplo, "UL")}, {2, n < 0}, {4, lda < atLeastOne(n)}}); }
    int numericalCheck() const { return firstZeroOnDiagonal(a, n, lda); }
    bool nothingToDo() const { return n == 0; }
    auto operands() const { return std::array{inOut(a, n, n, lda)}; }
    int lwork(ThreadContext& c, int& elements) const {
        cusolverStatus_t s = Library<T>::potriSize(c.solver, fill(uplo), n, nullptr, atLeastOne(n), &elements);
        return s ? solverFailure(s, root, "potri_bufferSize") : 0;
    }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const { return workspaceBytes(*this, c, bytes); }
    int compute(const Gpu& g) const {
        int elements = 0;
        if (int status = lwork(g.context, elements)) return status;
        return g.solver(Library<T>::potri(g.context.solver, fill(uplo), n, g.at<T>(0), g.ld(0), g.work<T>(), elements,
                                          g.info), "potri");
    }
};

// trtri, through cuSOLVER's generic interface, which asks for host workspace
// too. With a non-unit diagonal an exactly zero element is found on the host
// first, as LAPACK does, and leaves a untouched.
template <class T> struct Trtri {
    using Type = T; static constexpr const char* root = "trtri";
    char uplo, diag; int n; T* a; int lda;
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(uplo, "UL")}, {2, !oneOf(diag, "NU")}, {3, n < 0}, {5, lda < atLeastOne(n)}});
    }
    int numericalCheck() const { return upper(diag) == 'N' ? firstZeroOnDiagonal(a, n, lda) : 0; }
    bool nothingToDo() const { return n == 0; }
    auto operands() const { return std::array{inOut(a, n, n, lda)}; }
    int sizes(ThreadContext& c, std::size_t& device, std::size_t& host) const {
        cusolverStatus_t s = Library<T>::trtriSize(c.solver, fill(uplo), diagOf(diag), n, Library<T>::dataType, nullptr,
                                                   atLeastOne(n), &device, &host);
        return s ? solverFailure(s, root, "Xtrtri_bufferSize") : 0;
    }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const {
        std::size_t host = 0;
        const int status = sizes(c, bytes, host);
        bytes = aligned(bytes);
        return status;
    }
    int hostScratchBytes(ThreadContext& c, std::size_t& bytes) const {
        std::size_t device = 0;
        return sizes(c, device, bytes);
    }
    int compute(const Gpu& g) const {
        std::size_t device = 0, host = 0;
        if (int status = sizes(g.context, device, host)) return status;
        return g.solver(Library<T>::trtri(g.context.solver, fill(uplo), diagOf(diag), n, Library<T>::dataType,
                                          g.at<T>(0), g.ld(0), g.scratch, device, g.hostScratch, host, g.info),
                        "Xtrtri");
    }
};

// trtrs: LAPACK's check for an exactly zero diagonal element (on the host, b
// untouched; made even without right-hand sides), then cuBLAS's triangular solve.
template <class T> struct Trtrs {
    using Type = T; static constexpr const char* root = "trtrs";
    char uplo, trans, diag; int n, nrhs; const T* a; int lda; T* b; int ldb;
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(uplo, "UL")}, {2, !oneOf(trans, "NTC")}, {3, !oneOf(diag, "NU")}, {4, n < 0},
                             {5, nrhs < 0}, {7, lda < atLeastOne(n)}, {9, ldb < atLeastOne(n)}});
    }
    int numericalCheck() const { return upper(diag) == 'N' ? firstZeroOnDiagonal(a, n, lda) : 0; }
    bool nothingToDo() const { return n == 0 || nrhs == 0; }
    auto operands() const { return std::array{in(a, n, n, lda), inOut(b, n, nrhs, ldb)}; }
    int compute(const Gpu& g) const {
        const auto one = scalar(unit<T>());
        return g.blas(Library<T>::trsm(g.context.blas, CUBLAS_SIDE_LEFT, fill(uplo), operation<T>(trans), diagOf(diag), n,
                                       nrhs, &one, g.at<T>(0), g.ld(0), g.at<T>(1), g.ld(1)), "trsm");
    }
};

// ---- LU routines: statuses 7 and 8 with info as LAPACK gives it.

template <class T> int getrfScratch(ThreadContext& c, int m, int n, const char* routine, std::size_t& bytes) {
    int lwork = 0;
    if (cusolverStatus_t s = Library<T>::getrfSize(c.solver, m, n, nullptr, atLeastOne(m), &lwork))
        return solverFailure(s, routine, "getrf_bufferSize");
    bytes = aligned(std::size_t(lwork) * sizeof(T));
    return 0;
}

// getrf. A singular factor (info > 0) is complete,
// so a and ipiv go back.
template <class T> struct Getrf {
    using Type = T; static constexpr const char* root = "getrf";
    int m, n; T* a; int lda; int* ipiv;
    int illegalArgument() const { return firstIllegal({{1, m < 0}, {2, n < 0}, {4, lda < atLeastOne(m)}}); }
    bool nothingToDo() const { return m == 0 || n == 0; }
    auto operands() const { return std::array{inOut(a, m, n, lda, true), out(ipiv, std::min(m, n), 1, std::min(m, n), true)}; }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const { return getrfScratch<T>(c, m, n, "getrf", bytes); }
    int compute(const Gpu& g) const {
        auto* work = reinterpret_cast<typename Library<T>::Device*>(g.scratch);
        return g.solver(Library<T>::getrf(g.context.solver, m, n, g.at<T>(0), g.ld(0), work, g.pivots(1), g.info), "getrf");
    }
};

// The caller's pivots, checked before anything reaches the GPU: one outside 1..n
// would send cuSOLVER's row swaps outside the matrix there, a fault that spoils
// the CUDA context for every later call. LAPACK's getrs and getri do not check
// them; such a call is left to the CPU library, which does what LAPACK does.
inline const char* pivotOutsideMatrix(const int* ipiv, int n) {
    for (int i = 0; i < n; ++i)
        if (ipiv[i] < 1 || ipiv[i] > n) return "a pivot outside 1..n";
    return nullptr;
}

// getrs.
template <class T> struct Getrs {
    using Type = T; static constexpr const char* root = "getrs";
    char trans; int n, nrhs; const T* a; int lda; const int* ipiv; T* b; int ldb;
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(trans, "NTC")}, {2, n < 0}, {3, nrhs < 0}, {5, lda < atLeastOne(n)},
                             {8, ldb < atLeastOne(n)}});
    }
    bool nothingToDo() const { return n == 0 || nrhs == 0; }
    const char* unsupported() const { return pivotOutsideMatrix(ipiv, n); }
    auto operands() const { return std::array{in(a, n, n, lda), in(ipiv, n, 1, n), inOut(b, n, nrhs, ldb)}; }
    int compute(const Gpu& g) const {
        return g.solver(Library<T>::getrs(g.context.solver, operation<T>(trans), n, nrhs, g.at<T>(0), g.ld(0),
                                          g.pivots(1), g.at<T>(2), g.ld(2), g.info), "getrs");
    }
};

// getri. The inverse solves A X = I with the factors
// given. An exactly zero U(i,i) is found on the host first, as LAPACK's trtri
// does, and leaves a untouched with info = i.
template <class T> struct Getri {
    using Type = T; static constexpr const char* root = "getri";
    int n; T* a; int lda; const int* ipiv;
    int illegalArgument() const { return firstIllegal({{1, n < 0}, {3, lda < atLeastOne(n)}}); }
    int numericalCheck() const { return firstZeroOnDiagonal(a, n, lda); }
    bool nothingToDo() const { return n == 0; }
    const char* unsupported() const { return pivotOutsideMatrix(ipiv, n); }
    auto operands() const { return std::array{inOut(a, n, n, lda), in(ipiv, n, 1, n)}; }
    int scratchBytes(ThreadContext&, std::size_t& bytes) const {
        bytes = aligned(std::size_t(n) * n * sizeof(T));
        return 0;
    }
    int compute(const Gpu& g) const {
        auto* identity = reinterpret_cast<typename Library<T>::Device*>(g.scratch);
        const std::size_t bytes = std::size_t(n) * n * sizeof(T);
        const T one = unit<T>();
        if (cudaError_t e = cudaMemsetAsync(identity, 0, bytes, g.context.stream)) return cudaFailure(e, g.routine, "cudaMemsetAsync");
        if (int status = setDiagonal(g.context, identity, n, &one, sizeof(T), g.routine)) return status;
        if (int status = g.solver(Library<T>::getrs(g.context.solver, CUBLAS_OP_N, n, n, g.at<T>(0), g.ld(0),
                                                    g.pivots(1), identity, n, g.ignoredInfo), "getrs"))
            return status;
        cudaError_t e = cudaMemcpyAsync(g.at<T>(0), identity, bytes, cudaMemcpyDeviceToDevice, g.context.stream);
        return e ? cudaFailure(e, g.routine, "cudaMemcpyAsync on the GPU") : 0;
    }
};

// gesv. With a singular factor
// LAPACK returns a and ipiv factored and b as it was. nrhs = 0 still factors.
template <class T> struct Gesv {
    using Type = T; static constexpr const char* root = "gesv";
    int n, nrhs; T* a; int lda; int* ipiv; T* b; int ldb;
    int illegalArgument() const {
        return firstIllegal({{1, n < 0}, {2, nrhs < 0}, {4, lda < atLeastOne(n)}, {7, ldb < atLeastOne(n)}});
    }
    bool nothingToDo() const { return n == 0; }
    auto operands() const { return std::array{inOut(a, n, n, lda, true), out(ipiv, n, 1, n, true), inOut(b, n, nrhs, ldb)}; }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const { return getrfScratch<T>(c, n, n, "gesv", bytes); }
    int compute(const Gpu& g) const {
        auto* work = reinterpret_cast<typename Library<T>::Device*>(g.scratch);
        if (int status = g.solver(Library<T>::getrf(g.context.solver, n, n, g.at<T>(0), g.ld(0), work, g.pivots(1), g.info), "getrf"))
            return status;
        if (nrhs == 0) return 0;
        return g.solver(Library<T>::getrs(g.context.solver, CUBLAS_OP_N, n, nrhs, g.at<T>(0), g.ld(0), g.pivots(1),
                                          g.at<T>(2), g.ld(2), g.ignoredInfo), "getrs");
    }
};

// gbtrf. cuSOLVER has no banded LU:
// the CPU library factors it.
template <class T> struct Gbtrf {
    using Type = T; static constexpr const char* root = "gbtrf";
    static constexpr bool available = false;
    int m, n, kl, ku; T* ab; int ldab; int* ipiv;
    int illegalArgument() const { return 0; }
    bool nothingToDo() const { return false; }
    auto operands() const { return std::array<Operand, 0>{}; }
    int compute(const Gpu&) const { return 0; }
};

// dsgesv, zcgesv.
// cuSOLVER's refinement solver factors in the lower precision and refines in the
// higher. When that converges, LAPACK leaves a as it was and ipiv holding the
// lower-precision pivots: a is not copied back. When it gives up, LAPACK returns
// the higher-precision factors in a. cuSOLVER's solver has by then factored a in
// the higher precision itself, but that its a and pivots are then the factors
// LAPACK's getrf gives (and not, say, a mix left by the refinement) has never
// been checked on a device; a wrong guess would hand the caller wrong factors
// without a sign. So the caller's a goes to the GPU again and is factored and
// solved here, as LAPACK's fallback does: one more factorisation, only on this
// rare path. The caller's work is LAPACK's residual space, which
// nobody reads afterwards: it is left alone. The iteration count is not part of
// the interface.
template <class T> struct MixedGesv {
    using Type = T; static constexpr const char* root = std::is_same_v<T, double> ? "sgesv" : "cgesv";
    int n, nrhs; T* a; int lda; int* ipiv; const T* b; int ldb; T* x; int ldx; T* work;
    int illegalArgument() const {
        return firstIllegal({{1, n < 0}, {2, nrhs < 0}, {4, lda < atLeastOne(n)}, {7, ldb < atLeastOne(n)},
                             {9, ldx < atLeastOne(n)}});
    }
    bool nothingToDo() const { return n == 0; }
    // LAPACK factors a even without right-hand sides; cuSOLVER's solver needs one.
    const char* unsupported() const { return nrhs == 0 ? "nrhs = 0" : nullptr; }
    auto operands() const {
        return std::array{inOut(a, n, n, lda, true), out(ipiv, n, 1, n, true), in(b, n, nrhs, ldb), out(x, n, nrhs, ldx)};
    }
    int refinementBytes(ThreadContext& c, std::size_t& bytes) const {
        if (cusolverStatus_t s = Library<T>::mixedSize(c.solver, n, nrhs, nullptr, atLeastOne(n), nullptr, nullptr,
                                                       atLeastOne(n), nullptr, atLeastOne(n), nullptr, &bytes))
            return solverFailure(s, root, "gesv_bufferSize");
        return 0;
    }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const {
        std::size_t refinement = 0, factor = 0;
        if (int status = refinementBytes(c, refinement)) return status;
        if (int status = getrfScratch<T>(c, n, n, root, factor)) return status;
        bytes = std::max(aligned(refinement), factor);
        return 0;
    }
    int compute(const Gpu& g) const {
        int iterations = 0;
        std::size_t bytes = 0;
        if (int status = refinementBytes(g.context, bytes)) return status;
        if (int status = g.solver(Library<T>::mixedGesv(g.context.solver, n, nrhs, g.at<T>(0), g.ld(0), g.pivots(1),
                                                        g.at<T>(2), g.ld(2), g.at<T>(3), g.ld(3), g.scratch, bytes,
                                                        &iterations, g.info), "mixed-precision gesv"))
            return status;
        // The iteration count is a host value, final once the solver has returned.
        if (iterations >= 0) {
            g.unchanged(0);
            return 0;
        }
        if (int status = upload(g.context, g.operands[0], g.routine)) return status;
        auto* scratch = reinterpret_cast<typename Library<T>::Device*>(g.scratch);
        if (int status = g.solver(Library<T>::getrf(g.context.solver, n, n, g.at<T>(0), g.ld(0), scratch,
                                                    g.pivots(1), g.info), "getrf"))
            return status;
        const std::size_t solution = std::size_t(n) * nrhs * sizeof(T);
        if (cudaError_t e = cudaMemcpyAsync(g.at<T>(3), g.at<T>(2), solution, cudaMemcpyDeviceToDevice, g.context.stream))
            return cudaFailure(e, g.routine, "cudaMemcpyAsync on the GPU");
        // With a singular factor x holds nothing useful, and info > 0 keeps it from the caller.
        return g.solver(Library<T>::getrs(g.context.solver, CUBLAS_OP_N, n, nrhs, g.at<T>(0), g.ld(0), g.pivots(1),
                                          g.at<T>(3), g.ld(3), g.ignoredInfo), "getrs");
    }
};

// ---- Orthogonal factorisations and factors: LAPACK's Householder
// representation, which cuSOLVER's routines share. No info > 0 except in gels.
// Neither work nor lwork reaches the GPU library: cuSOLVER's workspace is GPU
// scratch.

// geqrf.
template <class T> struct Geqrf {
    using Type = T; static constexpr const char* root = "geqrf";
    int m, n; T* a; int lda; T* tau;
    int illegalArgument() const { return firstIllegal({{1, m < 0}, {2, n < 0}, {4, lda < atLeastOne(m)}}); }
    bool nothingToDo() const { return m == 0 || n == 0; }
    auto operands() const {
        const int k = std::min(m, n);
        return std::array{inOut(a, m, n, lda), out(tau, k, 1, k)};
    }
    int lwork(ThreadContext& c, int& elements) const {
        cusolverStatus_t s = Library<T>::geqrfSize(c.solver, m, n, nullptr, atLeastOne(m), &elements);
        return s ? solverFailure(s, root, "geqrf_bufferSize") : 0;
    }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const { return workspaceBytes(*this, c, bytes); }
    int compute(const Gpu& g) const {
        int elements = 0;
        if (int status = lwork(g.context, elements)) return status;
        return g.solver(Library<T>::geqrf(g.context.solver, m, n, g.at<T>(0), g.ld(0), g.at<T>(1), g.work<T>(),
                                          elements, g.info), "geqrf");
    }
};

// orgqr, ungqr.
template <class T> struct Orgqr {
    using Type = T; static constexpr const char* root = isComplex<T> ? "ungqr" : "orgqr";
    int m, n, k; T* a; int lda; const T* tau;
    int illegalArgument() const {
        return firstIllegal({{1, m < 0}, {2, n < 0 || n > m}, {3, k < 0 || k > n}, {5, lda < atLeastOne(m)}});
    }
    bool nothingToDo() const { return n == 0; }
    auto operands() const { return std::array{inOut(a, m, n, lda), in(tau, k, 1, k)}; }
    int lwork(ThreadContext& c, int& elements) const {
        cusolverStatus_t s = Library<T>::orgqrSize(c.solver, m, n, k, nullptr, atLeastOne(m), nullptr, &elements);
        return s ? solverFailure(s, root, "orgqr_bufferSize") : 0;
    }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const { return workspaceBytes(*this, c, bytes); }
    int compute(const Gpu& g) const {
        int elements = 0;
        if (int status = lwork(g.context, elements)) return status;
        return g.solver(Library<T>::orgqr(g.context.solver, m, n, k, g.at<T>(0), g.ld(0), g.at<T>(1), g.work<T>(),
                                          elements, g.info), root);
    }
};

// ormqr, unmqr. The real routine takes trans 'T', the complex one 'C'.
template <class T> int ormqrWork(ThreadContext& c, cublasSideMode_t side, cublasOperation_t trans, int m, int n, int k,
                                 const char* routine, int& lwork) {
    const int nq = side == CUBLAS_SIDE_LEFT ? m : n;
    cusolverStatus_t s = Library<T>::ormqrSize(c.solver, side, trans, m, n, k, nullptr, atLeastOne(nq), nullptr,
                                               nullptr, atLeastOne(m), &lwork);
    return s ? solverFailure(s, routine, "ormqr_bufferSize") : 0;
}
template <class T> struct Ormqr {
    using Type = T; static constexpr const char* root = isComplex<T> ? "unmqr" : "ormqr";
    char side, trans; int m, n, k; const T* a; int lda; const T* tau; T* c; int ldc;
    int order() const { return upper(side) == 'L' ? m : n; }
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(side, "LR")}, {2, !oneOf(trans, isComplex<T> ? "NC" : "NT")}, {3, m < 0},
                             {4, n < 0}, {5, k < 0 || k > order()}, {7, lda < atLeastOne(order())},
                             {10, ldc < atLeastOne(m)}});
    }
    bool nothingToDo() const { return m == 0 || n == 0 || k == 0; }
    auto operands() const { return std::array{in(a, order(), k, lda), in(tau, k, 1, k), inOut(c, m, n, ldc)}; }
    int lwork(ThreadContext& context, int& elements) const {
        return ormqrWork<T>(context, sideOf(side), operation<T>(trans), m, n, k, root, elements);
    }
    int scratchBytes(ThreadContext& context, std::size_t& bytes) const { return workspaceBytes(*this, context, bytes); }
    int compute(const Gpu& g) const {
        int elements = 0;
        if (int status = lwork(g.context, elements)) return status;
        return g.solver(Library<T>::ormqr(g.context.solver, sideOf(side), operation<T>(trans), m, n, k, g.at<T>(0),
                                          g.ld(0), g.at<T>(1), g.at<T>(2), g.ld(2), g.work<T>(), elements, g.info),
                        root);
    }
};

// orgbr, ungbr: Q (vect 'Q', cuSOLVER's left side) or P^H ('P', the right side)
// of gebrd. tau holds min(m, k) reflectors for Q and min(n, k) for P^H.
template <class T> struct Orgbr {
    using Type = T; static constexpr const char* root = isComplex<T> ? "ungbr" : "orgbr";
    char vect; int m, n, k; T* a; int lda; const T* tau;
    bool wantQ() const { return upper(vect) == 'Q'; }
    int illegalArgument() const {
        const bool badN = n < 0 || (wantQ() && (n > m || n < std::min(m, k))) ||
                          (!wantQ() && (m > n || m < std::min(n, k)));
        return firstIllegal({{1, !oneOf(vect, "QP")}, {2, m < 0}, {3, badN}, {4, k < 0}, {6, lda < atLeastOne(m)}});
    }
    bool nothingToDo() const { return m == 0 || n == 0; }
    auto operands() const {
        const int reflectors = std::min(wantQ() ? m : n, k);
        return std::array{inOut(a, m, n, lda), in(tau, reflectors, 1, reflectors)};
    }
    cublasSideMode_t side() const { return wantQ() ? CUBLAS_SIDE_LEFT : CUBLAS_SIDE_RIGHT; }
    int lwork(ThreadContext& c, int& elements) const {
        cusolverStatus_t s = Library<T>::orgbrSize(c.solver, side(), m, n, k, nullptr, atLeastOne(m), nullptr, &elements);
        return s ? solverFailure(s, root, "orgbr_bufferSize") : 0;
    }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const { return workspaceBytes(*this, c, bytes); }
    int compute(const Gpu& g) const {
        int elements = 0;
        if (int status = lwork(g.context, elements)) return status;
        return g.solver(Library<T>::orgbr(g.context.solver, side(), m, n, k, g.at<T>(0), g.ld(0), g.at<T>(1),
                                          g.work<T>(), elements, g.info), root);
    }
};

// LAPACK's largest absolute value of a matrix (xlange 'M'): a NaN anywhere
// gives NaN, as there.
template <class T> typename Library<T>::Real largestMagnitude(const T* a, int rows, int cols, int ld) {
    using Real = typename Library<T>::Real;
    Real largest = 0;
    for (int j = 0; j < cols; ++j)
        for (int i = 0; i < rows; ++i) {
            const T& x = a[i + std::size_t(j) * ld];
            Real v;
            if constexpr (isComplex<T>) v = std::hypot(x.re, x.im); else v = std::abs(x);
            if (v > largest || v != v) largest = v;
            if (largest != largest) return largest;
        }
    return largest;
}

// gels with m >= n, through the QR factorisation as LAPACK computes it:
// trans 'N', the least squares solution: geqrf, b := Q^H b, then R x = b(1:n);
// trans 'T' ('C' in complex), the minimum norm solution of A^H x = b: geqrf,
// R^H y = b(1:n), b(n+1:m) := 0, x = Q y. An exactly zero diagonal element of
// R (looked for after geqrf and, for 'N', the product with Q^H, as LAPACK's
// trtrs does) gives info = i with a factored, and b as it then is: Q^H b for
// 'N', untouched for 'T'. An empty A gives a zero solution. The CPU library
// takes m < n (an LQ factorisation, which cuSOLVER lacks), and the matrices
// that LAPACK scales first (largest element of A or b outside [smlnum, bignum],
// or A zero).
template <class T> struct Gels {
    using Type = T; static constexpr const char* root = "gels";
    using Real = typename Library<T>::Real;
    char trans; int m, n, nrhs; T* a; int lda; T* b; int ldb;
    bool notrans() const { return upper(trans) == 'N'; }
    bool empty() const { return m == 0 || n == 0; }
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(trans, isComplex<T> ? "NC" : "NT")}, {2, m < 0}, {3, n < 0}, {4, nrhs < 0},
                             {6, lda < atLeastOne(m)}, {8, ldb < atLeastOne(std::max(m, n))}});
    }
    bool nothingToDo() const { return nrhs == 0; }
    const char* unsupported() const {
        if (empty()) return nullptr;
        if (m < n) return "m < n";
        const Real smlnum = std::numeric_limits<Real>::min() / std::numeric_limits<Real>::epsilon();
        const Real bignum = 1 / smlnum;
        const Real anrm = largestMagnitude(a, m, n, lda), bnrm = largestMagnitude(b, notrans() ? m : n, nrhs, ldb);
        if (anrm == 0) return "A is zero";
        if ((anrm > 0 && anrm < smlnum) || anrm > bignum || (bnrm > 0 && bnrm < smlnum) || bnrm > bignum)
            return "A or B needs scaling";
        return nullptr;
    }
    auto operands() const {
        const int rows = std::max(m, n);
        return std::array{inOut(a, m, n, lda, true), empty() ? out(b, rows, nrhs, ldb) : inOut(b, rows, nrhs, ldb, notrans())};
    }
    cublasOperation_t conjugateTranspose() const { return operation<T>('C'); }
    std::size_t tauBytes() const { return aligned(std::size_t(n) * sizeof(T)); }
    int lwork(ThreadContext& c, int& elements) const {
        elements = 0;
        if (empty()) return 0;
        int factor = 0, apply = 0;
        if (cusolverStatus_t s = Library<T>::geqrfSize(c.solver, m, n, nullptr, atLeastOne(m), &factor))
            return solverFailure(s, root, "geqrf_bufferSize");
        const int status = ormqrWork<T>(c, CUBLAS_SIDE_LEFT, notrans() ? conjugateTranspose() : CUBLAS_OP_N, m, nrhs, n,
                                        root, apply);
        elements = std::max(factor, apply);
        return status;
    }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const {
        const int status = workspaceBytes(*this, c, bytes);
        bytes += tauBytes();
        return status;
    }
    int hostScratchBytes(ThreadContext&, std::size_t& bytes) const {
        bytes = std::size_t(n) * sizeof(T) + sizeof(int);
        return 0;
    }
    // LAPACK's info: the first exactly zero diagonal element of R, read back
    // from the GPU once the work so far has finished, and written to the info word.
    int singularR(const Gpu& g, int& info) const {
        T* diagonal = reinterpret_cast<T*>(g.hostScratch);
        const std::size_t pitch = std::size_t(g.ld(0) + 1) * sizeof(T);
        cudaError_t e = cudaMemcpy2DAsync(diagonal, sizeof(T), g.at<T>(0), pitch, sizeof(T), n, cudaMemcpyDeviceToHost,
                                          g.context.stream);
        if (e) return cudaFailure(e, g.routine, "cudaMemcpy2DAsync of R's diagonal");
        if ((e = cudaStreamSynchronize(g.context.stream))) return cudaFailure(e, g.routine, "cudaStreamSynchronize");
        info = firstZeroOnDiagonal(diagonal, n, 0);  // a leading dimension of 0: the diagonal alone
        if (info == 0) return 0;
        int* word = reinterpret_cast<int*>(g.hostScratch + std::size_t(n) * sizeof(T));
        *word = info;
        e = cudaMemcpyAsync(g.info, word, sizeof(int), cudaMemcpyHostToDevice, g.context.stream);
        return e ? cudaFailure(e, g.routine, "cudaMemcpyAsync of info") : 0;
    }
    int compute(const Gpu& g) const {
        auto* x = g.at<T>(1);
        const int ldx = g.ld(1);
        if (empty()) {
            cudaError_t e = cudaMemsetAsync(x, 0, g.operands[1].bytes(), g.context.stream);
            return e ? cudaFailure(e, g.routine, "cudaMemsetAsync") : 0;
        }
        int elements = 0, info = 0;
        if (int status = lwork(g.context, elements)) return status;
        auto* tau = g.work<T>();
        auto* work = g.work<T>(tauBytes());
        auto* qr = g.at<T>(0);
        const int ld = g.ld(0);
        const auto one = scalar(unit<T>());
        if (int status = g.solver(Library<T>::geqrf(g.context.solver, m, n, qr, ld, tau, work, elements, g.ignoredInfo),
                                  "geqrf"))
            return status;
        if (notrans()) {
            if (int status = g.solver(Library<T>::ormqr(g.context.solver, CUBLAS_SIDE_LEFT, conjugateTranspose(), m, nrhs,
                                                        n, qr, ld, tau, x, ldx, work, elements, g.ignoredInfo), "ormqr"))
                return status;
            if (int status = singularR(g, info); status || info) return status;
            return g.blas(Library<T>::trsm(g.context.blas, CUBLAS_SIDE_LEFT, CUBLAS_FILL_MODE_UPPER, CUBLAS_OP_N,
                                           CUBLAS_DIAG_NON_UNIT, n, nrhs, &one, qr, ld, x, ldx), "trsm");
        }
        if (int status = singularR(g, info); status || info) return status;
        if (int status = g.blas(Library<T>::trsm(g.context.blas, CUBLAS_SIDE_LEFT, CUBLAS_FILL_MODE_UPPER,
                                                 conjugateTranspose(), CUBLAS_DIAG_NON_UNIT, n, nrhs, &one, qr, ld, x, ldx),
                                "trsm"))
            return status;
        if (m > n)
            if (cudaError_t e = cudaMemset2DAsync(x + n, std::size_t(ldx) * sizeof(T), 0, std::size_t(m - n) * sizeof(T), nrhs,
                                                  g.context.stream))
                return cudaFailure(e, g.routine, "cudaMemset2DAsync");
        return g.solver(Library<T>::ormqr(g.context.solver, CUBLAS_SIDE_LEFT, CUBLAS_OP_N, m, nrhs, n, qr, ld, tau, x,
                                          ldx, work, elements, g.ignoredInfo), "ormqr");
    }
};

// ---- Eigenvalues, singular values and the bidiagonal reduction. Matrices that
// LAPACK's drivers scale before they compute (largest element outside
// [low, 1/low]) and matrices holding a NaN are left to the CPU library:
// cuSOLVER does not say that it scales them alike.

// LAPACK's largest absolute value of the uplo triangle of a symmetric or
// Hermitian matrix (xlansy, xlanhe 'M'); a Hermitian diagonal counts its real part.
template <class T> typename Library<T>::Real triangleMagnitude(const T* a, int n, int lda, char uplo, bool hermitian) {
    using Real = typename Library<T>::Real;
    Real largest = 0;
    for (int j = 0; j < n; ++j)
        for (int i = upper(uplo) == 'U' ? 0 : j; i <= (upper(uplo) == 'U' ? j : n - 1); ++i) {
            const T& x = a[i + std::size_t(j) * lda];
            Real v;
            if constexpr (isComplex<T>) v = hermitian && i == j ? std::abs(x.re) : std::hypot(x.re, x.im); else v = std::abs(x);
            if (v > largest || v != v) largest = v;
            if (largest != largest) return largest;
        }
    return largest;
}
template <class Real> const char* scaledByLapack(Real largest, Real low) {
    if (largest != largest) return "A holds a NaN";
    return (largest > 0 && largest < low) || largest > 1 / low ? "A needs scaling" : nullptr;
}
template <class Real> Real lapackSafeMinimum() { return std::numeric_limits<Real>::min(); }
template <class Real> Real lapackPrecision() { return std::numeric_limits<Real>::epsilon(); }

inline cusolverEigMode_t eigenMode(char jobz) {
    return upper(jobz) == 'V' ? CUSOLVER_EIG_MODE_VECTOR : CUSOLVER_EIG_MODE_NOVECTOR;
}

// syev, heev through the divide and conquer solver: eigenvalues ascending in w
// and, with jobz 'V', orthonormal eigenvectors in a; info > 0 when the
// tridiagonal iteration does not converge. With jobz 'N' LAPACK leaves a
// destroyed: it gets what cuSOLVER left there. A Hermitian diagonal is read as real.
template <class T> struct Syev {
    using Type = T; static constexpr const char* root = isComplex<T> ? "heev" : "syev";
    using Real = typename Library<T>::Real;
    char jobz, uplo; int n; T* a; int lda; Real* w;
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(jobz, "NV")}, {2, !oneOf(uplo, "UL")}, {3, n < 0}, {5, lda < atLeastOne(n)}});
    }
    bool nothingToDo() const { return n == 0; }
    const char* unsupported() const {
        return scaledByLapack(triangleMagnitude(a, n, lda, uplo, isComplex<T>),
                              std::sqrt(lapackSafeMinimum<Real>() / lapackPrecision<Real>()));
    }
    auto operands() const { return std::array{inOut(a, n, n, lda, true), out(w, n, 1, n, true)}; }
    int lwork(ThreadContext& c, int& elements) const {
        cusolverStatus_t s = Library<T>::syevdSize(c.solver, eigenMode(jobz), fill(uplo), n, nullptr, atLeastOne(n),
                                                   nullptr, &elements);
        return s ? solverFailure(s, root, "syevd_bufferSize") : 0;
    }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const { return workspaceBytes(*this, c, bytes); }
    int compute(const Gpu& g) const {
        int elements = 0;
        if (int status = lwork(g.context, elements)) return status;
        if constexpr (isComplex<T>)
            if (int status = g.realDiagonal<T>(0, n)) return status;
        return g.solver(Library<T>::syevd(g.context.solver, eigenMode(jobz), fill(uplo), n, g.at<T>(0), g.ld(0),
                                          g.at<Real>(1), g.work<T>(), elements, g.info), "syevd");
    }
};

// sygv, hegv through the divide and conquer solver, itype 1 to 3. When B is not
// positive definite, info = n + i and LAPACK leaves the factor of B's leading
// minor in b and a untouched; b goes back, a and w do not (for the rare info <=
// n, non-convergence, LAPACK leaves a and w partly computed: they stay as the
// caller gave them). With jobz 'N' a is destroyed in LAPACK: it gets what
// cuSOLVER left there.
template <class T> struct Sygv {
    using Type = T; static constexpr const char* root = isComplex<T> ? "hegv" : "sygv";
    using Real = typename Library<T>::Real;
    int itype; char jobz, uplo; int n; T* a; int lda; T* b; int ldb; Real* w;
    int illegalArgument() const {
        return firstIllegal({{1, itype < 1 || itype > 3}, {2, !oneOf(jobz, "NV")}, {3, !oneOf(uplo, "UL")}, {4, n < 0},
                             {6, lda < atLeastOne(n)}, {8, ldb < atLeastOne(n)}});
    }
    bool nothingToDo() const { return n == 0; }
    auto operands() const { return std::array{inOut(a, n, n, lda), inOut(b, n, n, ldb, true), out(w, n, 1, n)}; }
    cusolverEigType_t type() const { return cusolverEigType_t(CUSOLVER_EIG_TYPE_1 + (itype - 1)); }
    int lwork(ThreadContext& c, int& elements) const {
        cusolverStatus_t s = Library<T>::sygvdSize(c.solver, type(), eigenMode(jobz), fill(uplo), n, nullptr,
                                                   atLeastOne(n), nullptr, atLeastOne(n), nullptr, &elements);
        return s ? solverFailure(s, root, "sygvd_bufferSize") : 0;
    }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const { return workspaceBytes(*this, c, bytes); }
    int compute(const Gpu& g) const {
        int elements = 0;
        if (int status = lwork(g.context, elements)) return status;
        if constexpr (isComplex<T>)
            for (int i : {0, 1})
                if (int status = g.realDiagonal<T>(i, n)) return status;
        return g.solver(Library<T>::sygvd(g.context.solver, type(), eigenMode(jobz), fill(uplo), n, g.at<T>(0), g.ld(0),
                                          g.at<T>(1), g.ld(1), g.at<Real>(2), g.work<T>(), elements, g.info), "sygvd");
    }
};

// gesvd. cuSOLVER computes m >= n only: with m < n it computes the SVD of A^H,
// whose left vectors are A's right ones and the other way round, and the results
// are conjugate-transposed into u and vt. jobu or jobvt 'O' (the vectors over a)
// with m < n is left to the CPU library. Without 'O' LAPACK leaves a destroyed:
// it gets what cuSOLVER left there, or, with m < n, stays as the caller gave it
// (A^H is worked on in scratch). info > 0: superdiagonals of the bidiagonal
// form that did not converge; LAPACK leaves what it computed, and so does this.
template <class T> struct Gesvd {
    using Type = T; static constexpr const char* root = "gesvd";
    using Real = typename Library<T>::Real;
    char jobu, jobvt; int m, n; T* a; int lda; Real* s; T* u; int ldu; T* vt; int ldvt;
    int k() const { return std::min(m, n); }
    static bool is(char job, char letter) { return upper(job) == letter; }
    bool transposed() const { return m < n; }
    int uCols() const { return is(jobu, 'A') ? m : is(jobu, 'S') ? k() : 0; }
    int vtRows() const { return is(jobvt, 'A') ? n : is(jobvt, 'S') ? k() : 0; }
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(jobu, "ASON")}, {2, !oneOf(jobvt, "ASON") || (is(jobu, 'O') && is(jobvt, 'O'))},
                             {3, m < 0}, {4, n < 0}, {6, lda < atLeastOne(m)},
                             {9, ldu < 1 || (oneOf(jobu, "AS") && ldu < m)},
                             {11, ldvt < 1 || (is(jobvt, 'A') && ldvt < n) || (is(jobvt, 'S') && ldvt < k())}});
    }
    bool nothingToDo() const { return m == 0 || n == 0; }
    const char* unsupported() const {
        if (transposed() && (is(jobu, 'O') || is(jobvt, 'O'))) return "jobu or jobvt 'O' with m < n";
        return scaledByLapack(largestMagnitude(a, m, n, lda),
                              std::sqrt(lapackSafeMinimum<Real>()) / lapackPrecision<Real>());
    }
    auto operands() const {
        return std::array{inOut(a, m, n, lda, true), out(s, k(), 1, k(), true),
                          out(u, uCols() ? m : 0, uCols(), ldu, true), out(vt, vtRows(), vtRows() ? n : 0, ldvt, true)};
    }
    // The GPU scratch: with m < n, A^H (n x m), its left vectors (n x vtRows) and
    // its right ones (m x m); then cuSOLVER's workspace and its real rwork.
    struct Layout { std::size_t left, right, work, rwork, end; int lwork; };
    int layout(ThreadContext& c, Layout& l) const {
        const int rows = transposed() ? n : m, cols = transposed() ? m : n;
        if (cusolverStatus_t status = Library<T>::gesvdSize(c.solver, rows, cols, &l.lwork))
            return solverFailure(status, root, "gesvd_bufferSize");
        const std::size_t element = sizeof(T);
        l.left = transposed() ? aligned(std::size_t(n) * m * element) : 0;
        l.right = l.left + (transposed() ? aligned(std::size_t(n) * vtRows() * element) : 0);
        l.work = l.right + (transposed() ? aligned(std::size_t(m) * m * element) : 0);
        l.rwork = l.work + aligned(std::size_t(l.lwork) * element);
        l.end = l.rwork + aligned(std::size_t(k()) * sizeof(Real));
        return 0;
    }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const {
        Layout l{};
        const int status = layout(c, l);
        bytes = l.end;
        return status;
    }
    // to := from^H (from is rows x cols), on the GPU.
    int conjugateTranspose(const Gpu& g, int rows, int cols, const void* from, int ldFrom, void* to, int ldTo) const {
        using D = typename Library<T>::Device;
        const auto one = scalar(unit<T>()), zero = scalar(T{});
        return g.blas(Library<T>::geam(g.context.blas, operation<T>('C'), CUBLAS_OP_N, cols, rows, &one,
                                       static_cast<const D*>(from), ldFrom, &zero, static_cast<D*>(to), ldTo,
                                       static_cast<D*>(to), ldTo), "geam");
    }
    int compute(const Gpu& g) const {
        Layout l{};
        if (int status = layout(g.context, l)) return status;
        auto* work = g.work<T>(l.work);
        auto* rwork = reinterpret_cast<Real*>(g.scratch + l.rwork);
        const int ldU = std::max(g.ld(2), m), ldVt = std::max(g.ld(3), n);
        if (!transposed()) {
            return g.solver(Library<T>::gesvd(g.context.solver, upper(jobu), upper(jobvt), m, n, g.at<T>(0), g.ld(0),
                                              g.at<Real>(1), g.at<T>(2), ldU, g.at<T>(3), ldVt, work, l.lwork, rwork,
                                              g.info), "gesvd");
        }
        g.unchanged(0);
        auto* transpose = g.work<T>();
        auto* left = g.work<T>(l.left);
        auto* right = g.work<T>(l.right);
        if (int status = conjugateTranspose(g, m, n, g.at<T>(0), g.ld(0), transpose, n)) return status;
        if (int status = g.solver(Library<T>::gesvd(g.context.solver, upper(jobvt), upper(jobu), n, m, transpose, n,
                                                    g.at<Real>(1), left, n, right, m, work, l.lwork, rwork, g.info),
                                  "gesvd"))
            return status;
        if (uCols())
            if (int status = conjugateTranspose(g, m, m, right, m, g.at<T>(2), g.ld(2))) return status;
        if (vtRows()) return conjugateTranspose(g, n, vtRows(), left, n, g.at<T>(3), g.ld(3));
        return 0;
    }
};

// gebrd with m >= n: the upper bidiagonal form, LAPACK's Householder
// representation. m < n (the lower form) is left to the CPU library.
template <class T> struct Gebrd {
    using Type = T; static constexpr const char* root = "gebrd";
    using Real = typename Library<T>::Real;
    int m, n; T* a; int lda; Real* d; Real* e; T* tauq; T* taup;
    int illegalArgument() const { return firstIllegal({{1, m < 0}, {2, n < 0}, {4, lda < atLeastOne(m)}}); }
    bool nothingToDo() const { return m == 0 || n == 0; }
    const char* unsupported() const { return m < n ? "m < n" : nullptr; }
    auto operands() const {
        return std::array{inOut(a, m, n, lda), out(d, n, 1, n), out(e, n - 1, 1, n - 1), out(tauq, n, 1, n),
                          out(taup, n, 1, n)};
    }
    int lwork(ThreadContext& c, int& elements) const {
        cusolverStatus_t s = Library<T>::gebrdSize(c.solver, m, n, &elements);
        return s ? solverFailure(s, root, "gebrd_bufferSize") : 0;
    }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const { return workspaceBytes(*this, c, bytes); }
    int compute(const Gpu& g) const {
        int elements = 0;
        if (int status = lwork(g.context, elements)) return status;
        return g.solver(Library<T>::gebrd(g.context.solver, m, n, g.at<T>(0), g.ld(0), g.at<Real>(1), g.at<Real>(2),
                                          g.at<T>(3), g.at<T>(4), g.work<T>(), elements, g.info), "gebrd");
    }
};

// A routine that cuSOLVER and cuBLAS cannot compute as LAPACK defines it: the
// "not available" status, and the link library runs it on the CPU library. The
// org and orm roots are named ung and unm in complex precisions.
template <class T, const char* Real, const char* Complex> struct LeftToCpu {
    using Type = T; static constexpr const char* root = isComplex<T> ? Complex : Real;
    static constexpr bool available = false;
    template <class... Args> explicit LeftToCpu(Args...) {}
    int illegalArgument() const { return 0; }
    bool nothingToDo() const { return false; }
    auto operands() const { return std::array<Operand, 0>{}; }
    int compute(const Gpu&) const { return 0; }
};
#define VORN_CUDA_LEFT_TO_CPU(real, complex)                                                   \
    constexpr char real##RealName[] = #real, real##ComplexName[] = #complex;                       \
    template <class T> using real##Row = LeftToCpu<T, real##RealName, real##ComplexName>;
// The banded Cholesky factorisation; the QL, RQ and LQ factorisations, the QR
// factorisation with a non-negative diagonal, and the generation and products of
// their factors; the generalised factorisations and least squares; the factor of
// a Hessenberg reduction; the Hessenberg reduction, the nonsymmetric eigenvalue
// problem, the selected eigenvalues of syevx and heevx (cuSOLVER's selection
// takes no abstol), the tridiagonal and bidiagonal solvers, and gesdd.
VORN_CUDA_LEFT_TO_CPU(pbtrf, pbtrf) VORN_CUDA_LEFT_TO_CPU(geqlf, geqlf) VORN_CUDA_LEFT_TO_CPU(gerqf, gerqf)
VORN_CUDA_LEFT_TO_CPU(gelqf, gelqf) VORN_CUDA_LEFT_TO_CPU(geqrfp, geqrfp) VORN_CUDA_LEFT_TO_CPU(gglse, gglse)
VORN_CUDA_LEFT_TO_CPU(ggrqf, ggrqf) VORN_CUDA_LEFT_TO_CPU(orghr, unghr) VORN_CUDA_LEFT_TO_CPU(orglq, unglq)
VORN_CUDA_LEFT_TO_CPU(orgql, ungql) VORN_CUDA_LEFT_TO_CPU(orgrq, ungrq) VORN_CUDA_LEFT_TO_CPU(ormlq, unmlq)
VORN_CUDA_LEFT_TO_CPU(ormql, unmql) VORN_CUDA_LEFT_TO_CPU(ormrq, unmrq)
VORN_CUDA_LEFT_TO_CPU(gehrd, gehrd) VORN_CUDA_LEFT_TO_CPU(geev, geev) VORN_CUDA_LEFT_TO_CPU(geevComplex, geev)
VORN_CUDA_LEFT_TO_CPU(syevx, heevx) VORN_CUDA_LEFT_TO_CPU(heevx, heevx) VORN_CUDA_LEFT_TO_CPU(steqr, steqr)
VORN_CUDA_LEFT_TO_CPU(stebz, stebz) VORN_CUDA_LEFT_TO_CPU(gesdd, gesdd) VORN_CUDA_LEFT_TO_CPU(bdsqr, bdsqr)

// The row each root of the GPU function list runs, over the element type.
namespace rowOf {
template <class T> using potrf = Potrf<T>;
template <class T> using potrs = Potrs<T>;
template <class T> using potri = Potri<T>;
template <class T> using posv = Posv<T>;
template <class T> using pbtrf = pbtrfRow<T>;
template <class T> using trtri = Trtri<T>;
template <class T> using trtrs = Trtrs<T>;
template <class T> using geqrf = Geqrf<T>;
template <class T> using geqlf = geqlfRow<T>;
template <class T> using gerqf = gerqfRow<T>;
template <class T> using gelqf = gelqfRow<T>;
template <class T> using geqrfp = geqrfpRow<T>;
template <class T> using gels = Gels<T>;
template <class T> using gglse = gglseRow<T>;
template <class T> using ggrqf = ggrqfRow<T>;
template <class T> using orgbr = Orgbr<T>;
template <class T> using orghr = orghrRow<T>;
template <class T> using orglq = orglqRow<T>;
template <class T> using orgql = orgqlRow<T>;
template <class T> using orgqr = Orgqr<T>;
template <class T> using orgrq = orgrqRow<T>;
template <class T> using ormlq = ormlqRow<T>;
template <class T> using ormql = ormqlRow<T>;
template <class T> using ormqr = Ormqr<T>;
template <class T> using ormrq = ormrqRow<T>;
template <class T> using getrf = Getrf<T>;
template <class T> using getrs = Getrs<T>;
template <class T> using getri = Getri<T>;
template <class T> using gesv = Gesv<T>;
template <class T> using gbtrf = Gbtrf<T>;
template <class T> using mixedGesv = MixedGesv<T>;
template <class T> using gemm = Gemm<T>;
template <class T> using symm = Symm<T, false>;
template <class T> using hemm = Symm<T, true>;
template <class T> using syrk = Syrk<T, false>;
template <class T> using herk = Syrk<T, true>;
template <class T> using syr2k = Syr2k<T, false>;
template <class T> using her2k = Syr2k<T, true>;
template <class T> using trmm = Trxm<T, false>;
template <class T> using trsm = Trxm<T, true>;
template <class T> using symv = Symv<T, false>;
template <class T> using hemv = Symv<T, true>;
template <class T> using gehrd = gehrdRow<T>;
template <class T> using gebrd = Gebrd<T>;
template <class T> using geev = geevRow<T>;
template <class T> using geevComplex = geevComplexRow<T>;
template <class T> using syev = Syev<T>;
template <class T> using heev = Syev<T>;
template <class T> using syevx = syevxRow<T>;
template <class T> using heevx = heevxRow<T>;
template <class T> using sygv = Sygv<T>;
template <class T> using hegv = Sygv<T>;
template <class T> using steqr = steqrRow<T>;
template <class T> using stebz = stebzRow<T>;
template <class T> using gesvd = Gesvd<T>;
template <class T> using gesdd = gesddRow<T>;
template <class T> using bdsqr = bdsqrRow<T>;
}  // namespace rowOf

}  // namespace

// Every GPU function: its row, built from the arguments in their order.
#define VORN_GPU_BODY(function, base, root, T) return run(rowOf::root<T>{VORN_GPU_ARGUMENT_LIST(root, T)});
VORN_GPU_FUNCTIONS(VORN_GPU_DEFINE_ONE)
