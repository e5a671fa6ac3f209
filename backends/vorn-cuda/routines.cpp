// The routines of the CUDA GPU library: one row per root, over the element type,
// and the GPU function list (vorn_gpu_functions.h) defines each function over its
// root's row. A row holds the GPU function's arguments in its
// order, LAPACK's argument checks (position, condition) in the reference
// implementation's order, LAPACK's quick return, the operands with the part of
// the caller's array that is read or written, and the cuBLAS or cuSOLVER calls.
// The frame (frame.h) does the rest.
#include "frame.h"
#include "vorn_gpu_functions.h"

namespace {

// ---- Multiply and rank-update routines: no info; status 8 names the argument
// that reference BLAS would give to xerbla, and the CPU library reports it.

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

// potrf. A matrix that is not positive definite leaves
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

// getrs.
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

// getri. The inverse solves A X = I with the factors
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
    constexpr char real##Name[] = #real, real##ComplexName[] = #complex;                       \
    template <class T> using real##Row = LeftToCpu<T, real##Name, real##ComplexName>;
VORN_CUDA_LEFT_TO_CPU(potrs, potrs) VORN_CUDA_LEFT_TO_CPU(potri, potri) VORN_CUDA_LEFT_TO_CPU(posv, posv)
VORN_CUDA_LEFT_TO_CPU(pbtrf, pbtrf) VORN_CUDA_LEFT_TO_CPU(trtri, trtri) VORN_CUDA_LEFT_TO_CPU(trtrs, trtrs)
VORN_CUDA_LEFT_TO_CPU(geqrf, geqrf) VORN_CUDA_LEFT_TO_CPU(geqlf, geqlf) VORN_CUDA_LEFT_TO_CPU(gerqf, gerqf)
VORN_CUDA_LEFT_TO_CPU(gelqf, gelqf) VORN_CUDA_LEFT_TO_CPU(geqrfp, geqrfp) VORN_CUDA_LEFT_TO_CPU(gels, gels)
VORN_CUDA_LEFT_TO_CPU(gglse, gglse) VORN_CUDA_LEFT_TO_CPU(ggrqf, ggrqf) VORN_CUDA_LEFT_TO_CPU(orgbr, ungbr)
VORN_CUDA_LEFT_TO_CPU(orghr, unghr) VORN_CUDA_LEFT_TO_CPU(orglq, unglq) VORN_CUDA_LEFT_TO_CPU(orgql, ungql)
VORN_CUDA_LEFT_TO_CPU(orgqr, ungqr) VORN_CUDA_LEFT_TO_CPU(orgrq, ungrq) VORN_CUDA_LEFT_TO_CPU(ormlq, unmlq)
VORN_CUDA_LEFT_TO_CPU(ormql, unmql) VORN_CUDA_LEFT_TO_CPU(ormqr, unmqr) VORN_CUDA_LEFT_TO_CPU(ormrq, unmrq)

// The row each root of the GPU function list runs, over the element type.
namespace rowOf {
template <class T> using potrf = Potrf<T>;
template <class T> using potrs = potrsRow<T>;
template <class T> using potri = potriRow<T>;
template <class T> using posv = posvRow<T>;
template <class T> using pbtrf = pbtrfRow<T>;
template <class T> using trtri = trtriRow<T>;
template <class T> using trtrs = trtrsRow<T>;
template <class T> using geqrf = geqrfRow<T>;
template <class T> using geqlf = geqlfRow<T>;
template <class T> using gerqf = gerqfRow<T>;
template <class T> using gelqf = gelqfRow<T>;
template <class T> using geqrfp = geqrfpRow<T>;
template <class T> using gels = gelsRow<T>;
template <class T> using gglse = gglseRow<T>;
template <class T> using ggrqf = ggrqfRow<T>;
template <class T> using orgbr = orgbrRow<T>;
template <class T> using orghr = orghrRow<T>;
template <class T> using orglq = orglqRow<T>;
template <class T> using orgql = orgqlRow<T>;
template <class T> using orgqr = orgqrRow<T>;
template <class T> using orgrq = orgrqRow<T>;
template <class T> using ormlq = ormlqRow<T>;
template <class T> using ormql = ormqlRow<T>;
template <class T> using ormqr = ormqrRow<T>;
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
}  // namespace rowOf

}  // namespace

// Every GPU function: its row, built from the arguments in their order.
#define VORN_GPU_BODY(function, base, root, T) return run(rowOf::root<T>{VORN_GPU_ARGUMENT_LIST(root, T)});
VORN_GPU_FUNCTIONS(VORN_GPU_DEFINE_ONE)
