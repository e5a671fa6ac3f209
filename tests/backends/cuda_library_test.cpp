// The CUDA GPU library, called as the link library calls it. Without a GPU: its
// start-up failure and its text, and routines that refuse to run and touch
// nothing. With a GPU, or over the CUDA stand-in (these skip themselves
// elsewhere): chunked transfers against OpenBLAS, statuses 7 and 8 with info, what
// LAPACK leaves in the arrays, and calls from many threads. (Every function's
// results: the family tests through the link library; failures at each step: the
// stand-in's own tests.)
#include <algorithm>
#include <cmath>
#include <complex>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "test_support.h"
#include "vorn_gpu_functions.h"
#include "vorn_lapack.h"

// OpenBLAS, linked into this program, with gfortran's hidden lengths.
using Z = std::complex<double>;
extern "C" {
void dgemm_(const char*, const char*, const int*, const int*, const int*, const double*, const double*, const int*,
            const double*, const int*, const double*, double*, const int*, std::size_t, std::size_t);
void dtrsm_(const char*, const char*, const char*, const char*, const int*, const int*, const double*, const double*,
            const int*, double*, const int*, std::size_t, std::size_t, std::size_t, std::size_t);
void dgetrf_(const int*, const int*, double*, const int*, int*, int*);
void zgetrf_(const int*, const int*, Z*, const int*, int*, int*);
void zherk_(const char*, const char*, const int*, const int*, const double*, const Z*, const int*, const double*, Z*,
            const int*, std::size_t, std::size_t);
void zher2k_(const char*, const char*, const int*, const int*, const Z*, const Z*, const int*, const Z*, const int*,
             const double*, Z*, const int*, std::size_t, std::size_t);
void zhemv_(const char*, const int*, const Z*, const Z*, const int*, const Z*, const int*, const Z*, Z*, const int*,
            std::size_t);
}

namespace {

vornDoubleComplex* gpu(Z* p) { return reinterpret_cast<vornDoubleComplex*>(p); }
vornDoubleComplex gpu(Z v) { return {v.real(), v.imag()}; }

// A column-major rows x cols matrix in an array of leading dimension ld, with a
// strong diagonal; the padding rows hold a marker that must survive every call.
template <class T> std::vector<T> matrix(int rows, int cols, int ld, unsigned seed) {
    std::vector<T> a(std::size_t(ld) * cols, T(-7));
    for (int j = 0; j < cols; ++j)
        for (int i = 0; i < rows; ++i) {
            seed = seed * 1103515245u + 12345u;
            const double v = double((seed >> 8) % 2001) / 1000.0 - 1.0 + (i == j ? 4.0 : 0.0);
            if constexpr (std::is_same_v<T, Z>) a[i + std::size_t(j) * ld] = T(v, 0.5 * v - 0.25);
            else a[i + std::size_t(j) * ld] = T(v);
        }
    return a;
}

// LAPACK's test bound: the largest difference, relative to the largest reference
// element, within a small multiple of n·eps.
template <class T> void expectClose(const std::vector<T>& got, const std::vector<T>& want, int n, double eps) {
    ASSERT_EQ(got.size(), want.size());
    double largest = 0, difference = 0;
    for (std::size_t i = 0; i < got.size(); ++i) {
        largest = std::max(largest, double(std::abs(want[i])));
        difference = std::max(difference, double(std::abs(got[i] - want[i])));
    }
    EXPECT_LE(difference, 30.0 * n * eps * std::max(largest, 1.0)) << "largest difference " << difference;
}

constexpr double dEps = 1.1e-16, sEps = 6e-8;

// The GPU tests run only where vornInitialize finds a GPU.
#define REQUIRE_GPU()                                                              \
    do {                                                                           \
        if (const int status = vornInitialize())                                   \
            GTEST_SKIP() << "no GPU: " << vornGetStatusString(status);             \
    } while (0)

// Every GPU function of the list with arguments that would be legal: sizes of 4
// (band widths and strides 1), the usual letters, scalars of 1, and each array at
// its own place in 4096 doubles (pivots in 4096 ints).
struct AnyCall {
    const char* name;
    std::function<int(double*, int*)> call;
};
struct LegalArguments {
    double* arrays;
    int* pivots;
    template <class P> P get(const char* name) const {
        const std::string n = name;
        if constexpr (std::is_same_v<P, char>) {
            return n == "uplo" ? 'U' : n == "side" ? 'L' : 'N';
        } else if constexpr (std::is_same_v<P, int>) {
            return n == "kl" || n == "ku" || n.rfind("inc", 0) == 0 ? 1 : 4;
        } else if constexpr (std::is_pointer_v<P> && std::is_same_v<std::remove_cv_t<std::remove_pointer_t<P>>, int>) {
            return pivots;
        } else if constexpr (std::is_pointer_v<P>) {
            const int place = n == "b" ? 1 : n == "c" || n == "x" ? 2 : n == "y" || n == "work" ? 3 : 0;
            return reinterpret_cast<P>(arrays + 64 * place);
        } else {
            P one{};
            if constexpr (std::is_arithmetic_v<P>) one = 1; else one.re = 1;
            return one;
        }
    }
};
const std::vector<AnyCall>& everyFunction() {
#define LEGAL(type, name) legal.template get<type>(#name)
#define ANY_CALL(function, base, root, T)                                         \
    {#base, [](double* p, int* i) {                                                \
         const LegalArguments legal{p, i};                                         \
         return function(VORN_GPU_PARAMETERS_##root(LEGAL, T));                    \
     }},
    static const std::vector<AnyCall> calls = {VORN_GPU_FUNCTIONS(ANY_CALL)};
#undef ANY_CALL
#undef LEGAL
    return calls;
}

// Calls every function on arrays of markers; each must give `status` and leave
// every byte as it was.
void expectEveryFunctionRefuses(int status) {
    for (const AnyCall& c : everyFunction()) {
        std::vector<double> arrays(4096, 0.5);
        std::vector<int> pivots(4096, 1);
        const auto arraysBefore = arrays;
        const auto pivotsBefore = pivots;
        EXPECT_EQ(c.call(arrays.data(), pivots.data()), status) << c.name;
        EXPECT_EQ(arrays, arraysBefore) << c.name;
        EXPECT_EQ(pivots, pivotsBefore) << c.name;
    }
}

}  // namespace

// The list names every function that vorn_lapack.h declares, each once.
TEST(CudaLibrary, TheFunctionListCoversTheInterface) {
    std::set<std::string> listed, declared;
    for (const AnyCall& c : everyFunction()) listed.insert(std::string("vorn") + char(std::toupper(c.name[0])) + (c.name + 1));
    EXPECT_EQ(listed.size(), everyFunction().size());
    std::ifstream header(VORN_GPU_HEADER);
    const std::regex declaration(R"(^VORN_API int (vorn[A-Z][a-z0-9]+)\()");
    for (std::string line; std::getline(header, line);) {
        std::smatch match;
        if (std::regex_search(line, match, declaration) && match[1] != "vornInitialize" &&
            match[1] != "vornGetErrorInfo")
            declared.insert(match[1]);
    }
    EXPECT_EQ(listed, declared);
}

// Before vornInitialize every routine refuses. Without a GPU (or without the
// driver) the start-up fails with a status of its own and a text that says what
// the CUDA runtime found missing; a second attempt answers the same, and every
// routine gives that status. None touches an array.
TEST(CudaLibrary, RoutinesRefuseUntilStartedAndTouchNothing) {
    expectEveryFunctionRefuses(VORN_STATUS_NOT_INITIALIZED);
    const int status = vornInitialize();
    if (status == VORN_STATUS_SUCCESS) GTEST_SKIP() << "a GPU is present";
    EXPECT_EQ(status, VORN_STATUS_NO_DEVICE);
    const std::string text = vornGetStatusString(status);
    EXPECT_EQ(text.rfind("no usable GPU: ", 0), 0u) << text;
    EXPECT_GT(text.size(), std::string("no usable GPU: ").size() + 10) << text;
    EXPECT_EQ(vornInitialize(), status);
    expectEveryFunctionRefuses(status);
    vornShutdown();  // shutting down what never started is harmless
}

// ---- With a GPU

// Larger problems than the link library's family test, with padded leading
// dimensions and staging slots far smaller than a column, so that chunks end
// inside columns; once per transfer mode. gemm's C with beta 0 is an output only,
// trsm's B goes both ways, getrf's pivots come back beside complex factors.
class CudaLargeProblems : public testing::TestWithParam<const char*> {};
TEST_P(CudaLargeProblems, MatchOpenBlasWithinErrorBounds) {
    setEnv("VORN_CUDA_TRANSFER", GetParam());
    setEnv("VORN_CUDA_STAGING_BYTES", "1000");
    REQUIRE_GPU();
    const int n = 301, ld = n + 5, k = 257, cols = n - 20;
    const double one = 1.0, zero = 0.0;
    const auto a = matrix<double>(k, n, ld, 1), b = matrix<double>(k, n, ld, 2);
    auto c = matrix<double>(n, n, ld, 3), expected = c;
    dgemm_("T", "N", &n, &n, &k, &one, a.data(), &ld, b.data(), &ld, &zero, expected.data(), &ld, 1, 1);
    ASSERT_EQ(vornDgemm('T', 'N', n, n, k, one, a.data(), ld, b.data(), ld, zero, c.data(), ld), 0);
    expectClose(c, expected, k, dEps);

    const auto t = matrix<double>(n, n, ld, 7);
    auto x = matrix<double>(n, n, ld, 8), xExpected = x;
    dtrsm_("R", "L", "T", "U", &n, &n, &one, t.data(), &ld, xExpected.data(), &ld, 1, 1, 1, 1);
    ASSERT_EQ(vornDtrsm('R', 'L', 'T', 'U', n, n, one, t.data(), ld, x.data(), ld), 0);
    expectClose(x, xExpected, n, dEps);

    auto z = matrix<Z>(n, cols, ld, 10), zExpected = z;
    std::vector<int> ipiv(cols), expectedIpiv(cols);
    int info = -1;
    zgetrf_(&n, &cols, zExpected.data(), &ld, expectedIpiv.data(), &info);
    ASSERT_EQ(vornZgetrf(n, cols, gpu(z.data()), ld, ipiv.data()), 0);
    EXPECT_EQ(ipiv, expectedIpiv);
    expectClose(z, zExpected, n, dEps);
}
INSTANTIATE_TEST_SUITE_P(TransferModes, CudaLargeProblems, testing::Values("staged", "registered", "pageable"));

// info > 0: status 7, info as LAPACK gives it, and the arrays as LAPACK leaves
// them: getrf's factors and pivots; gesv's factors with b untouched; getri's a
// untouched.
TEST(CudaLibrary, SingularMatricesGiveStatusSevenWithInfo) {
    REQUIRE_GPU();
    const int n = 6;
    std::vector<int> ipiv(n), expectedIpiv(n);
    auto a = matrix<double>(n, n, n, 21);
    for (int i = 0; i < n; ++i) a[i + 3 * n] = 0;  // column 4 is zero: U(4,4) = 0
    auto expected = a;
    int info = 0;
    dgetrf_(&n, &n, expected.data(), &n, expectedIpiv.data(), &info);
    ASSERT_EQ(info, 4);
    EXPECT_EQ(vornDgetrf(n, n, a.data(), n, ipiv.data()), VORN_STATUS_INFO_NUMERICAL);
    EXPECT_EQ(vornGetErrorInfo(), 4);
    EXPECT_EQ(ipiv, expectedIpiv);
    expectClose(a, expected, n, dEps);

    auto z = matrix<Z>(n, n, n, 22), b = matrix<Z>(n, 2, n, 23);
    for (int i = 0; i < n; ++i) z[i + 2 * n] = 0;
    const auto bBefore = b;
    EXPECT_EQ(vornZgesv(n, 2, gpu(z.data()), n, ipiv.data(), gpu(b.data()), n), VORN_STATUS_INFO_NUMERICAL);
    EXPECT_EQ(vornGetErrorInfo(), 3);
    EXPECT_EQ(b, bBefore);

    auto s = matrix<float>(n, n, n, 24);
    s[2 + 2 * n] = 0;
    const auto sBefore = s;
    EXPECT_EQ(vornSgetri(n, s.data(), n, ipiv.data()), VORN_STATUS_INFO_NUMERICAL);
    EXPECT_EQ(vornGetErrorInfo(), 3);
    EXPECT_EQ(s, sBefore);
}

// dsgesv leaves a as LAPACK does: as it was when refinement in the lower
// precision converged (or the higher-precision factors, where the solver judged
// refinement not worth trying), and the higher-precision factors with their
// pivots when it gave up. The matrix of the second case is singular in single
// precision only (its condition number is about 4e10).
TEST(CudaLibrary, MixedPrecisionSolversLeaveAAsLapackDoes) {
    REQUIRE_GPU();
    struct Case { const char* what; int n; std::vector<double> a, b; double bound; bool fallsBack; };
    const Case cases[] = {
        {"converges", 40, matrix<double>(40, 40, 40, 41), matrix<double>(40, 1, 40, 42), 30.0 * 40 * dEps * 8, false},
        {"falls back", 3, {1, 1, 0, 1, 1 + 1e-10, 0, 0, 0.5, 2}, {2, 3, 1}, 1e-5, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const int n = c.n;
        auto given = c.a, factors = c.a, x = std::vector<double>(n, -1.0), work = x;
        std::vector<int> ipiv(n), expectedIpiv(n);
        int info = 0;
        dgetrf_(&n, &n, factors.data(), &n, expectedIpiv.data(), &info);
        ASSERT_EQ(vornDsgesv(n, 1, given.data(), n, ipiv.data(), c.b.data(), n, x.data(), n, work.data()), 0);
        for (int i = 0; i < n; ++i) {  // the residual of A x = b
            double r = c.b[i];
            for (int j = 0; j < n; ++j) r -= c.a[i + std::size_t(j) * n] * x[j];
            EXPECT_LE(std::abs(r), c.bound) << i;
        }
        EXPECT_TRUE(!c.fallsBack || ipiv == expectedIpiv);
        if (c.fallsBack || given != c.a) expectClose(given, factors, n, dEps);
    }
}

// Reference BLAS reads only the real part of the diagonal of a Hermitian A, and
// herk and her2k leave C's diagonal real: imaginary parts there in the caller's
// arrays change nothing and come back as zero.
TEST(CudaLibrary, HermitianRoutinesKeepTheDiagonalReal) {
    REQUIRE_GPU();
    const int n = 33, k = 17, inc = 1;
    auto a = matrix<Z>(n, n, n, 51), b = matrix<Z>(n, k, n, 52), c = matrix<Z>(n, n, n, 53);
    for (int i = 0; i < n; ++i) {
        a[i + std::size_t(i) * n].imag(5.0 + i);
        c[i + std::size_t(i) * n].imag(-3.0 - i);
    }
    const Z alpha(0.75, 0.5), one(1, 0);
    const double beta = 0.5, realAlpha = 1.25;
    auto y = matrix<Z>(n, 1, n, 54), yExpected = y;
    zhemv_("L", &n, &alpha, a.data(), &n, b.data(), &inc, &one, yExpected.data(), &inc, 1);
    ASSERT_EQ(vornZhemv('L', n, gpu(alpha), gpu(a.data()), n, gpu(b.data()), 1, gpu(one), gpu(y.data()), 1), 0);
    expectClose(y, yExpected, n, dEps);

    auto herk = c, herkExpected = c, her2k = c, her2kExpected = c;
    zherk_("U", "N", &n, &k, &realAlpha, b.data(), &n, &beta, herkExpected.data(), &n, 1, 1);
    ASSERT_EQ(vornZherk('U', 'N', n, k, realAlpha, gpu(b.data()), n, beta, gpu(herk.data()), n), 0);
    zher2k_("U", "N", &n, &k, &alpha, b.data(), &n, b.data(), &n, &beta, her2kExpected.data(), &n, 1, 1);
    ASSERT_EQ(vornZher2k('U', 'N', n, k, gpu(alpha), gpu(b.data()), n, gpu(b.data()), n, beta, gpu(her2k.data()), n),
              0);
    for (int i = 0; i < n; ++i) {
        EXPECT_EQ(herk[i + std::size_t(i) * n].imag(), 0.0) << "herk " << i;
        EXPECT_EQ(her2k[i + std::size_t(i) * n].imag(), 0.0) << "her2k " << i;
    }
    expectClose(herk, herkExpected, k, dEps);
    expectClose(her2k, her2kExpected, k, dEps);
}

// info < 0: status 8 with info -i for the first illegal argument in LAPACK's
// order of checks, and nothing touched.
TEST(CudaLibrary, IllegalArgumentsGiveStatusEightWithTheirPosition) {
    REQUIRE_GPU();
    struct Case { const char* what; std::function<int(double*, int*)> call; int info; };
    const Case cases[] = {
        {"dgetrf m < 0", [](double* p, int* i) { return vornDgetrf(-1, 4, p, 4, i); }, -1},
        {"dgetrf lda < m", [](double* p, int* i) { return vornDgetrf(5, 4, p, 4, i); }, -4},
        {"dgetrs trans", [](double* p, int* i) { return vornDgetrs('X', -1, 1, p, 4, i, p, 4); }, -1},
        {"dgetrs ldb", [](double* p, int* i) { return vornDgetrs('t', 4, 1, p, 4, i, p, 3); }, -8},
        {"dgetri lda", [](double* p, int* i) { return vornDgetri(4, p, 3, i); }, -3},
        {"dgesv nrhs", [](double* p, int* i) { return vornDgesv(4, -2, p, 4, i, p, 4); }, -2},
        {"dsgesv ldx", [](double* p, int* i) { return vornDsgesv(4, 1, p, 4, i, p, 4, p, 3, p); }, -9},
        {"dgemm transb", [](double* p, int*) { return vornDgemm('N', 'Q', 4, 4, 4, 1, p, 4, p, 4, 0, p, 4); }, -2},
        {"dgemm lda for A^T", [](double* p, int*) { return vornDgemm('T', 'N', 4, 4, 5, 1, p, 4, p, 5, 0, p, 4); }, -8},
        {"dsyrk ldc", [](double* p, int*) { return vornDsyrk('L', 'C', 4, 2, 1, p, 2, 0, p, 3); }, -10},
        {"dtrsm diag", [](double* p, int*) { return vornDtrsm('L', 'U', 'N', 'X', 4, 4, 1, p, 4, p, 4); }, -4},
        {"dsymv incy", [](double* p, int*) { return vornDsymv('U', 4, 1, p, 4, p, 1, 1, p, 0); }, -10},
    };
    for (const Case& c : cases) {
        std::vector<double> arrays(256, 0.25);
        std::vector<int> pivots(16, 1);
        EXPECT_EQ(c.call(arrays.data(), pivots.data()), VORN_STATUS_INFO_ARGUMENT) << c.what;
        EXPECT_EQ(vornGetErrorInfo(), c.info) << c.what;
        EXPECT_EQ(arrays, std::vector<double>(256, 0.25)) << c.what;
    }
}

// Threads call at once, each with its own sizes; each gets OpenBLAS's answer and
// its own info. Threads that exit give their contexts back for shutdown to free,
// and the library starts again afterwards.
TEST(CudaLibrary, ConcurrentCallsFromManyThreads) {
    REQUIRE_GPU();
    constexpr int threads = 8, rounds = 12;
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([t] {
            for (int r = 0; r < rounds; ++r) {
                const int n = 40 + 37 * ((t + r) % 5), ld = n + t;
                const double one = 1;
                const auto a = matrix<double>(n, n, ld, 100 * t + r), b = matrix<double>(n, n, ld, 7);
                auto c = matrix<double>(n, n, ld, 5), expected = c;
                dgemm_("N", "T", &n, &n, &n, &one, a.data(), &ld, b.data(), &ld, &one, expected.data(), &ld, 1, 1);
                EXPECT_EQ(vornDgemm('N', 'T', n, n, n, one, a.data(), ld, b.data(), ld, one, c.data(), ld), 0);
                expectClose(c, expected, n, dEps);
                auto singular = a;
                std::vector<int> ipiv(n);
                for (int i = 0; i < n; ++i) singular[i + std::size_t(t % n) * ld] = 0;
                EXPECT_EQ(vornDgetrf(n, n, singular.data(), ld, ipiv.data()), VORN_STATUS_INFO_NUMERICAL);
                EXPECT_EQ(vornGetErrorInfo(), t % n + 1);
            }
        });
    }
    for (auto& worker : workers) worker.join();
    vornShutdown();
    double x = 2;
    EXPECT_EQ(vornDgemm('N', 'N', 1, 1, 1, 1, &x, 1, &x, 1, 0, &x, 1), VORN_STATUS_NOT_INITIALIZED);
    ASSERT_EQ(vornInitialize(), 0);
    EXPECT_EQ(vornDgemm('N', 'N', 1, 1, 1, 1, &x, 1, &x, 1, 0, &x, 1), 0);
    EXPECT_EQ(x, 4);
}
