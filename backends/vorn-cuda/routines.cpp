// The routines of the CUDA GPU library: one row per root, over the element type,
// then one line per GPU function. A row holds the GPU function's arguments in its
// order, LAPACK's argument checks (position, condition) in the reference
// implementation's order, LAPACK's quick return, the operands with the part of
// the caller's array that is read or written, and the cuBLAS or cuSOLVER calls.
// The frame (frame.h) does the rest.
#include "frame.h"

namespace {

// ---- Multiply and rank-update routines: no info; status 8 names the argument
// that reference BLAS would give to xerbla, and the CPU library reports it.

// gemm: c:transa, c:transb, i:m, i:n, i:k, S:alpha, p:a, i:lda, p:b, i:ldb, S:beta, p:c, i:ldc
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

// symm, hemm: c:side, c:uplo, i:m, i:n, S:alpha, p:a, i:lda, p:b, i:ldb, S:beta, p:c, i:ldc.
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

// syrk, herk: c:uplo, c:trans, i:n, i:k, S:alpha (R in herk), p:a, i:lda, S:beta (R), p:c, i:ldc.
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

// syr2k, her2k: c:uplo, c:trans, i:n, i:k, S:alpha, p:a, i:lda, p:b, i:ldb, S:beta (R in her2k), p:c, i:ldc
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

// trmm, trsm: c:side, c:uplo, c:transa, c:diag, i:m, i:n, S:alpha, p:a, i:lda, p:b, i:ldb.
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

// symv, hemv: c:uplo, i:n, S:alpha, p:a, i:lda, p:x, i:incx, S:beta, p:y, i:incy.
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

// ---- LU routines (and potrf, the one Cholesky routine of the interface so
// far): statuses 7 and 8 with info as LAPACK gives it.

// potrf: c:uplo, i:n, p:a, i:lda. A matrix that is not positive definite leaves
// the factor of its leading minor in a, as in LAPACK.
template <class T> struct Potrf {
    using Type = T; static constexpr const char* root = "potrf";
    char uplo; int n; T* a; int lda;
    int illegalArgument() const { return firstIllegal({{1, !oneOf(uplo, "UL")}, {2, n < 0}, {4, lda < atLeastOne(n)}}); }
    bool nothingToDo() const { return n == 0; }
    auto operands() const { return std::array{inOut(a, n, n, lda, true)}; }
    int lwork(ThreadContext& c, int& lwork) const {
        cusolverStatus_t s = Library<T>::potrfSize(c.solver, fill(uplo), n, nullptr, atLeastOne(n), &lwork);
        return s ? solverFailure(s, "potrf", "potrf_bufferSize") : 0;
    }
    int scratchBytes(ThreadContext& c, std::size_t& bytes) const {
        int elements = 0;
        const int status = lwork(c, elements);
        bytes = aligned(std::size_t(elements) * sizeof(T));
        return status;
    }
    int compute(const Gpu& g) const {
        int elements = 0;
        if (int status = lwork(g.context, elements)) return status;
        auto* work = reinterpret_cast<typename Library<T>::Device*>(g.scratch);
        return g.solver(Library<T>::potrf(g.context.solver, fill(uplo), n, g.at<T>(0), g.ld(0), work, elements, g.info), "potrf");
    }
};

template <class T> int getrfScratch(ThreadContext& c, int m, int n, const char* routine, std::size_t& bytes) {
    int lwork = 0;
    if (cusolverStatus_t s = Library<T>::getrfSize(c.solver, m, n, nullptr, atLeastOne(m), &lwork))
        return solverFailure(s, routine, "getrf_bufferSize");
    bytes = aligned(std::size_t(lwork) * sizeof(T));
    return 0;
}

// getrf: i:m, i:n, p:a, i:lda, p:ipiv. A singular factor (info > 0) is complete,
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

// getrs: c:trans, i:n, i:nrhs, p:a, i:lda, p:ipiv, p:b, i:ldb
template <class T> struct Getrs {
    using Type = T; static constexpr const char* root = "getrs";
    char trans; int n, nrhs; const T* a; int lda; const int* ipiv; T* b; int ldb;
    int illegalArgument() const {
        return firstIllegal({{1, !oneOf(trans, "NTC")}, {2, n < 0}, {3, nrhs < 0}, {5, lda < atLeastOne(n)},
                             {8, ldb < atLeastOne(n)}});
    }
    bool nothingToDo() const { return n == 0 || nrhs == 0; }
    auto operands() const { return std::array{in(a, n, n, lda), in(ipiv, n, 1, n), inOut(b, n, nrhs, ldb)}; }
    int compute(const Gpu& g) const {
        return g.solver(Library<T>::getrs(g.context.solver, operation<T>(trans), n, nrhs, g.at<T>(0), g.ld(0),
                                          g.pivots(1), g.at<T>(2), g.ld(2), g.info), "getrs");
    }
};

// getri: i:n, p:a, i:lda, p:ipiv. The inverse solves A X = I with the factors
// given. An exactly zero U(i,i) is found on the host first, as LAPACK's trtri
// does, and leaves a untouched with info = i.
template <class T> struct Getri {
    using Type = T; static constexpr const char* root = "getri";
    int n; T* a; int lda; const int* ipiv;
    int illegalArgument() const { return firstIllegal({{1, n < 0}, {3, lda < atLeastOne(n)}}); }
    int numericalCheck() const {
        for (int i = 0; i < n; ++i)
            if (isZero(a[i + std::size_t(i) * lda])) return i + 1;
        return 0;
    }
    bool nothingToDo() const { return n == 0; }
    auto operands() const { return std::array{inOut(a, n, n, lda), in(ipiv, n, 1, n)}; }
    int scratchBytes(ThreadContext&, std::size_t& bytes) const {
        bytes = aligned(std::size_t(n) * n * sizeof(T));
        return 0;
    }
    int compute(const Gpu& g) const {
        auto* identity = reinterpret_cast<typename Library<T>::Device*>(g.scratch);
        const std::size_t bytes = std::size_t(n) * n * sizeof(T);
        T one{};
        if constexpr (isComplex<T>) one.re = 1; else one = 1;
        if (cudaError_t e = cudaMemsetAsync(identity, 0, bytes, g.context.stream)) return cudaFailure(e, g.routine, "cudaMemsetAsync");
        if (int status = setDiagonal(g.context, identity, n, &one, sizeof(T), g.routine)) return status;
        if (int status = g.solver(Library<T>::getrs(g.context.solver, CUBLAS_OP_N, n, n, g.at<T>(0), g.ld(0),
                                                    g.pivots(1), identity, n, g.ignoredInfo), "getrs"))
            return status;
        cudaError_t e = cudaMemcpyAsync(g.at<T>(0), identity, bytes, cudaMemcpyDeviceToDevice, g.context.stream);
        return e ? cudaFailure(e, g.routine, "cudaMemcpyAsync on the GPU") : 0;
    }
};

// gesv: i:n, i:nrhs, p:a, i:lda, p:ipiv, p:b, i:ldb. With a singular factor
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

// gbtrf: i:m, i:n, i:kl, i:ku, p:ab, i:ldab, p:ipiv. cuSOLVER has no banded LU:
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

// dsgesv, zcgesv: i:n, i:nrhs, p:a, i:lda, p:ipiv, p:b, i:ldb, p:x, i:ldx, p:work.
// cuSOLVER's refinement solver factors in the lower precision and refines in the
// higher. When that converges, LAPACK leaves a as it was and ipiv holding the
// lower-precision pivots: a is not copied back. When it gives up, LAPACK returns
// the higher-precision factors in a; cuSOLVER promises nothing about a then, so
// the caller's a goes to the GPU again and is factored and solved here, as
// LAPACK's fallback does. The caller's work is LAPACK's residual space, which
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

using C = vornFloatComplex;
using Z = vornDoubleComplex;

}  // namespace

// The table: one line per GPU function of backends/include/vorn_lapack.h, the row
// built from the arguments in their order.
extern "C" {

// Cholesky and triangular routines
int vornSpotrf(char uplo, int n, float* a, int lda) { return run(Potrf<float>{uplo, n, a, lda}); }

// LU routines
int vornSgetrf(int m, int n, float* a, int lda, int* ipiv) { return run(Getrf<float>{m, n, a, lda, ipiv}); }
int vornDgetrf(int m, int n, double* a, int lda, int* ipiv) { return run(Getrf<double>{m, n, a, lda, ipiv}); }
int vornCgetrf(int m, int n, C* a, int lda, int* ipiv) { return run(Getrf<C>{m, n, a, lda, ipiv}); }
int vornZgetrf(int m, int n, Z* a, int lda, int* ipiv) { return run(Getrf<Z>{m, n, a, lda, ipiv}); }
int vornSgetrs(char trans, int n, int nrhs, const float* a, int lda, const int* ipiv, float* b, int ldb) { return run(Getrs<float>{trans, n, nrhs, a, lda, ipiv, b, ldb}); }
int vornDgetrs(char trans, int n, int nrhs, const double* a, int lda, const int* ipiv, double* b, int ldb) { return run(Getrs<double>{trans, n, nrhs, a, lda, ipiv, b, ldb}); }
int vornCgetrs(char trans, int n, int nrhs, const C* a, int lda, const int* ipiv, C* b, int ldb) { return run(Getrs<C>{trans, n, nrhs, a, lda, ipiv, b, ldb}); }
int vornZgetrs(char trans, int n, int nrhs, const Z* a, int lda, const int* ipiv, Z* b, int ldb) { return run(Getrs<Z>{trans, n, nrhs, a, lda, ipiv, b, ldb}); }
int vornSgetri(int n, float* a, int lda, const int* ipiv) { return run(Getri<float>{n, a, lda, ipiv}); }
int vornDgetri(int n, double* a, int lda, const int* ipiv) { return run(Getri<double>{n, a, lda, ipiv}); }
int vornCgetri(int n, C* a, int lda, const int* ipiv) { return run(Getri<C>{n, a, lda, ipiv}); }
int vornZgetri(int n, Z* a, int lda, const int* ipiv) { return run(Getri<Z>{n, a, lda, ipiv}); }
int vornSgesv(int n, int nrhs, float* a, int lda, int* ipiv, float* b, int ldb) { return run(Gesv<float>{n, nrhs, a, lda, ipiv, b, ldb}); }
int vornDgesv(int n, int nrhs, double* a, int lda, int* ipiv, double* b, int ldb) { return run(Gesv<double>{n, nrhs, a, lda, ipiv, b, ldb}); }
int vornCgesv(int n, int nrhs, C* a, int lda, int* ipiv, C* b, int ldb) { return run(Gesv<C>{n, nrhs, a, lda, ipiv, b, ldb}); }
int vornZgesv(int n, int nrhs, Z* a, int lda, int* ipiv, Z* b, int ldb) { return run(Gesv<Z>{n, nrhs, a, lda, ipiv, b, ldb}); }
int vornSgbtrf(int m, int n, int kl, int ku, float* ab, int ldab, int* ipiv) { return run(Gbtrf<float>{m, n, kl, ku, ab, ldab, ipiv}); }
int vornDgbtrf(int m, int n, int kl, int ku, double* ab, int ldab, int* ipiv) { return run(Gbtrf<double>{m, n, kl, ku, ab, ldab, ipiv}); }
int vornCgbtrf(int m, int n, int kl, int ku, C* ab, int ldab, int* ipiv) { return run(Gbtrf<C>{m, n, kl, ku, ab, ldab, ipiv}); }
int vornZgbtrf(int m, int n, int kl, int ku, Z* ab, int ldab, int* ipiv) { return run(Gbtrf<Z>{m, n, kl, ku, ab, ldab, ipiv}); }
int vornDsgesv(int n, int nrhs, double* a, int lda, int* ipiv, const double* b, int ldb, double* x, int ldx, double* work) { return run(MixedGesv<double>{n, nrhs, a, lda, ipiv, b, ldb, x, ldx, work}); }
int vornZcgesv(int n, int nrhs, Z* a, int lda, int* ipiv, const Z* b, int ldb, Z* x, int ldx, Z* work) { return run(MixedGesv<Z>{n, nrhs, a, lda, ipiv, b, ldb, x, ldx, work}); }

// Multiply and rank-update routines
int vornSgemm(char transa, char transb, int m, int n, int k, float alpha, const float* a, int lda, const float* b, int ldb, float beta, float* c, int ldc) { return run(Gemm<float>{transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornDgemm(char transa, char transb, int m, int n, int k, double alpha, const double* a, int lda, const double* b, int ldb, double beta, double* c, int ldc) { return run(Gemm<double>{transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornCgemm(char transa, char transb, int m, int n, int k, C alpha, const C* a, int lda, const C* b, int ldb, C beta, C* c, int ldc) { return run(Gemm<C>{transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornZgemm(char transa, char transb, int m, int n, int k, Z alpha, const Z* a, int lda, const Z* b, int ldb, Z beta, Z* c, int ldc) { return run(Gemm<Z>{transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornSsymm(char side, char uplo, int m, int n, float alpha, const float* a, int lda, const float* b, int ldb, float beta, float* c, int ldc) { return run(Symm<float, false>{side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornDsymm(char side, char uplo, int m, int n, double alpha, const double* a, int lda, const double* b, int ldb, double beta, double* c, int ldc) { return run(Symm<double, false>{side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornCsymm(char side, char uplo, int m, int n, C alpha, const C* a, int lda, const C* b, int ldb, C beta, C* c, int ldc) { return run(Symm<C, false>{side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornZsymm(char side, char uplo, int m, int n, Z alpha, const Z* a, int lda, const Z* b, int ldb, Z beta, Z* c, int ldc) { return run(Symm<Z, false>{side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornChemm(char side, char uplo, int m, int n, C alpha, const C* a, int lda, const C* b, int ldb, C beta, C* c, int ldc) { return run(Symm<C, true>{side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornZhemm(char side, char uplo, int m, int n, Z alpha, const Z* a, int lda, const Z* b, int ldb, Z beta, Z* c, int ldc) { return run(Symm<Z, true>{side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornSsyrk(char uplo, char trans, int n, int k, float alpha, const float* a, int lda, float beta, float* c, int ldc) { return run(Syrk<float, false>{uplo, trans, n, k, alpha, a, lda, beta, c, ldc}); }
int vornDsyrk(char uplo, char trans, int n, int k, double alpha, const double* a, int lda, double beta, double* c, int ldc) { return run(Syrk<double, false>{uplo, trans, n, k, alpha, a, lda, beta, c, ldc}); }
int vornCsyrk(char uplo, char trans, int n, int k, C alpha, const C* a, int lda, C beta, C* c, int ldc) { return run(Syrk<C, false>{uplo, trans, n, k, alpha, a, lda, beta, c, ldc}); }
int vornZsyrk(char uplo, char trans, int n, int k, Z alpha, const Z* a, int lda, Z beta, Z* c, int ldc) { return run(Syrk<Z, false>{uplo, trans, n, k, alpha, a, lda, beta, c, ldc}); }
int vornCherk(char uplo, char trans, int n, int k, float alpha, const C* a, int lda, float beta, C* c, int ldc) { return run(Syrk<C, true>{uplo, trans, n, k, alpha, a, lda, beta, c, ldc}); }
int vornZherk(char uplo, char trans, int n, int k, double alpha, const Z* a, int lda, double beta, Z* c, int ldc) { return run(Syrk<Z, true>{uplo, trans, n, k, alpha, a, lda, beta, c, ldc}); }
int vornSsyr2k(char uplo, char trans, int n, int k, float alpha, const float* a, int lda, const float* b, int ldb, float beta, float* c, int ldc) { return run(Syr2k<float, false>{uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornDsyr2k(char uplo, char trans, int n, int k, double alpha, const double* a, int lda, const double* b, int ldb, double beta, double* c, int ldc) { return run(Syr2k<double, false>{uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornCsyr2k(char uplo, char trans, int n, int k, C alpha, const C* a, int lda, const C* b, int ldb, C beta, C* c, int ldc) { return run(Syr2k<C, false>{uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornZsyr2k(char uplo, char trans, int n, int k, Z alpha, const Z* a, int lda, const Z* b, int ldb, Z beta, Z* c, int ldc) { return run(Syr2k<Z, false>{uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornCher2k(char uplo, char trans, int n, int k, C alpha, const C* a, int lda, const C* b, int ldb, float beta, C* c, int ldc) { return run(Syr2k<C, true>{uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornZher2k(char uplo, char trans, int n, int k, Z alpha, const Z* a, int lda, const Z* b, int ldb, double beta, Z* c, int ldc) { return run(Syr2k<Z, true>{uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc}); }
int vornStrmm(char side, char uplo, char transa, char diag, int m, int n, float alpha, const float* a, int lda, float* b, int ldb) { return run(Trxm<float, false>{side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb}); }
int vornDtrmm(char side, char uplo, char transa, char diag, int m, int n, double alpha, const double* a, int lda, double* b, int ldb) { return run(Trxm<double, false>{side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb}); }
int vornCtrmm(char side, char uplo, char transa, char diag, int m, int n, C alpha, const C* a, int lda, C* b, int ldb) { return run(Trxm<C, false>{side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb}); }
int vornZtrmm(char side, char uplo, char transa, char diag, int m, int n, Z alpha, const Z* a, int lda, Z* b, int ldb) { return run(Trxm<Z, false>{side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb}); }
int vornStrsm(char side, char uplo, char transa, char diag, int m, int n, float alpha, const float* a, int lda, float* b, int ldb) { return run(Trxm<float, true>{side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb}); }
int vornDtrsm(char side, char uplo, char transa, char diag, int m, int n, double alpha, const double* a, int lda, double* b, int ldb) { return run(Trxm<double, true>{side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb}); }
int vornCtrsm(char side, char uplo, char transa, char diag, int m, int n, C alpha, const C* a, int lda, C* b, int ldb) { return run(Trxm<C, true>{side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb}); }
int vornZtrsm(char side, char uplo, char transa, char diag, int m, int n, Z alpha, const Z* a, int lda, Z* b, int ldb) { return run(Trxm<Z, true>{side, uplo, transa, diag, m, n, alpha, a, lda, b, ldb}); }
int vornSsymv(char uplo, int n, float alpha, const float* a, int lda, const float* x, int incx, float beta, float* y, int incy) { return run(Symv<float, false>{uplo, n, alpha, a, lda, x, incx, beta, y, incy}); }
int vornDsymv(char uplo, int n, double alpha, const double* a, int lda, const double* x, int incx, double beta, double* y, int incy) { return run(Symv<double, false>{uplo, n, alpha, a, lda, x, incx, beta, y, incy}); }
int vornChemv(char uplo, int n, C alpha, const C* a, int lda, const C* x, int incx, C beta, C* y, int incy) { return run(Symv<C, true>{uplo, n, alpha, a, lda, x, incx, beta, y, incy}); }
int vornZhemv(char uplo, int n, Z alpha, const Z* a, int lda, const Z* x, int incx, Z beta, Z* y, int incy) { return run(Symv<Z, true>{uplo, n, alpha, a, lda, x, incx, beta, y, incy}); }

}  // extern "C"
