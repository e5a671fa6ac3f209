// The CUDA GPU library, called as the link library calls it. Without a GPU: its
// start-up failure and its text, its statuses, and routines that refuse to run
// and touch nothing. With a GPU (these skip themselves elsewhere): results against
// OpenBLAS within LAPACK's error bounds, statuses 7 and 8 with info, a forced
// failure that leaves the arrays alone, and calls from many threads.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>
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
void zgemm_(const char*, const char*, const int*, const int*, const int*, const Z*, const Z*, const int*, const Z*,
            const int*, const Z*, Z*, const int*, std::size_t, std::size_t);
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

TEST(CudaLibrary, StatusTextsAreDistinctAndNonEmpty) {
    std::set<std::string> texts;
    for (int status = 0; status <= 8; ++status) {
        const std::string text = vornGetStatusString(status);
        EXPECT_FALSE(text.empty()) << status;
        texts.insert(text);
    }
    EXPECT_EQ(texts.size(), 9u);
    EXPECT_EQ(std::string(vornGetStatusString(99)), "unknown status");
}

// Before vornInitialize every routine refuses; after a failed start-up every
// routine gives the start-up's status. Neither touches an array.
TEST(CudaLibrary, RoutinesRefuseUntilStartedAndTouchNothing) {
    expectEveryFunctionRefuses(VORN_STATUS_NOT_INITIALIZED);
    const int status = vornInitialize();
    if (status == VORN_STATUS_SUCCESS) GTEST_SKIP() << "a GPU is present";
    EXPECT_EQ(status, VORN_STATUS_NO_DEVICE);
    expectEveryFunctionRefuses(status);
}

// Without a GPU (or without the driver) the start-up fails with a status of its
// own and a text that says what the CUDA runtime found missing.
TEST(CudaLibrary, StartWithoutGpuSaysWhy) {
    const int status = vornInitialize();
    if (status == VORN_STATUS_SUCCESS) GTEST_SKIP() << "a GPU is present";
    EXPECT_EQ(status, VORN_STATUS_NO_DEVICE);
    const std::string text = vornGetStatusString(status);
    EXPECT_EQ(text.rfind("no usable GPU: ", 0), 0u) << text;
    EXPECT_GT(text.size(), std::string("no usable GPU: ").size() + 10) << text;
    EXPECT_EQ(vornInitialize(), status);  // a second attempt answers the same
    vornShutdown();                       // and shutting down what never started is harmless
}

// ---- With a GPU

// Larger problems than the link library's family test, with padded leading
// dimensions and staging slots far smaller than a column, so that chunks end
// inside columns; once per transfer mode.
class CudaLargeProblems : public testing::TestWithParam<const char*> {};
TEST_P(CudaLargeProblems, MatchOpenBlasWithinErrorBounds) {
    setEnv("VORN_CUDA_TRANSFER", GetParam());
    setEnv("VORN_CUDA_STAGING_BYTES", "1000");
    REQUIRE_GPU();
    const int n = 301, ld = n + 5, k = 257;
    const double one = 1.0;
    {
        SCOPED_TRACE("dgemm T N");
        const auto a = matrix<double>(k, n, ld, 1), b = matrix<double>(k, n, ld, 2);
        auto c = matrix<double>(n, n, ld, 3), expected = c;
        const double beta = 0.5;
        dgemm_("T", "N", &n, &n, &k, &one, a.data(), &ld, b.data(), &ld, &beta, expected.data(), &ld, 1, 1);
        ASSERT_EQ(vornDgemm('T', 'N', n, n, k, one, a.data(), ld, b.data(), ld, beta, c.data(), ld), 0);
        expectClose(c, expected, k, dEps);
    }
    {
        SCOPED_TRACE("zgemm C N, beta 0");
        const auto a = matrix<Z>(k, n, ld, 4), b = matrix<Z>(k, n, ld, 5);
        auto c = matrix<Z>(n, n, ld, 6), expected = c;
        const Z alpha(0.5, -1), beta(0);
        zgemm_("C", "N", &n, &n, &k, &alpha, a.data(), &ld, b.data(), &ld, &beta, expected.data(), &ld, 1, 1);
        ASSERT_EQ(vornZgemm('C', 'N', n, n, k, gpu(alpha), gpu(const_cast<Z*>(a.data())), ld,
                            gpu(const_cast<Z*>(b.data())), ld, gpu(beta), gpu(c.data()), ld), 0);
        expectClose(c, expected, k, dEps);
    }
    {
        SCOPED_TRACE("dtrsm R L T U");
        const auto a = matrix<double>(n, n, ld, 7);
        auto b = matrix<double>(n, n, ld, 8), expected = b;
        dtrsm_("R", "L", "T", "U", &n, &n, &one, a.data(), &ld, expected.data(), &ld, 1, 1, 1, 1);
        ASSERT_EQ(vornDtrsm('R', 'L', 'T', 'U', n, n, one, a.data(), ld, b.data(), ld), 0);
        expectClose(b, expected, n, dEps);
    }
    {
        SCOPED_TRACE("dgetrf, zgetrf: same pivots, close factors");
        auto a = matrix<double>(n, n - 20, ld, 9), expected = a;
        std::vector<int> ipiv(n), expectedIpiv(n);
        int info = -1, m = n, cols = n - 20;
        dgetrf_(&m, &cols, expected.data(), &ld, expectedIpiv.data(), &info);
        ASSERT_EQ(vornDgetrf(m, cols, a.data(), ld, ipiv.data()), 0);
        EXPECT_EQ(std::vector<int>(ipiv.begin(), ipiv.begin() + cols),
                  std::vector<int>(expectedIpiv.begin(), expectedIpiv.begin() + cols));
        expectClose(a, expected, n, dEps);
        auto z = matrix<Z>(n, n, ld, 10), zExpected = z;
        zgetrf_(&m, &m, zExpected.data(), &ld, expectedIpiv.data(), &info);
        ASSERT_EQ(vornZgetrf(n, n, gpu(z.data()), ld, ipiv.data()), 0);
        EXPECT_EQ(ipiv, expectedIpiv);
        expectClose(z, zExpected, n, dEps);
    }
}
INSTANTIATE_TEST_SUITE_P(TransferModes, CudaLargeProblems, testing::Values("staged", "registered", "pageable"));

// info > 0: status 7, info as LAPACK gives it, and the arrays as LAPACK leaves
// them: getrf's factors; gesv's factors with b untouched; getri's a untouched.
TEST(CudaLibrary, SingularMatricesGiveStatusSevenWithInfo) {
    REQUIRE_GPU();
    const int n = 6;
    auto a = matrix<double>(n, n, n, 21);
    for (int i = 0; i < n; ++i) a[i + 3 * n] = 0;  // column 4 is zero: U(4,4) = 0
    auto expected = a;
    std::vector<int> ipiv(n), expectedIpiv(n);
    int info = 0, nn = n;
    dgetrf_(&nn, &nn, expected.data(), &nn, expectedIpiv.data(), &info);
    ASSERT_EQ(info, 4);
    auto factors = a;
    EXPECT_EQ(vornDgetrf(n, n, factors.data(), n, ipiv.data()), VORN_STATUS_INFO_NUMERICAL);
    EXPECT_EQ(vornGetErrorInfo(), 4);
    expectClose(factors, expected, n, dEps);

    auto z = matrix<Z>(n, n, n, 22);
    for (int i = 0; i < n; ++i) z[i + 2 * n] = 0;
    auto b = matrix<Z>(n, 2, n, 23);
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

// dsgesv and zcgesv leave a as LAPACK does: as it was when refinement in the
// lower precision converged (or the higher-precision factors, where the solver
// judged refinement not worth trying), and the higher-precision factors with
// their pivots when it gave up. The matrix of the second case is singular in
// single precision only.
TEST(CudaLibrary, MixedPrecisionSolversLeaveAAsLapackDoes) {
    REQUIRE_GPU();
    auto residual = [](const std::vector<double>& a, const std::vector<double>& x, const std::vector<double>& b, int n) {
        double worst = 0;
        for (int i = 0; i < n; ++i) {
            double r = b[i];
            for (int j = 0; j < n; ++j) r -= a[i + std::size_t(j) * n] * x[j];
            worst = std::max(worst, std::abs(r));
        }
        return worst;
    };
    {
        SCOPED_TRACE("converges");
        const int n = 40;
        const auto a = matrix<double>(n, n, n, 41), b = matrix<double>(n, 1, n, 42);
        auto given = a, x = b, work = b, factors = a;
        std::vector<int> ipiv(n), expectedIpiv(n);
        int info = 0;
        dgetrf_(&n, &n, factors.data(), &n, expectedIpiv.data(), &info);
        ASSERT_EQ(vornDsgesv(n, 1, given.data(), n, ipiv.data(), b.data(), n, x.data(), n, work.data()), 0);
        EXPECT_LE(residual(a, x, b, n), 30.0 * n * dEps * 8.0);
        if (given != a) expectClose(given, factors, n, dEps);
    }
    {
        SCOPED_TRACE("falls back");
        const int n = 3;
        const std::vector<double> a = {1, 1, 0, 1, 1 + 1e-10, 0, 0, 0.5, 2}, b = {2, 3, 1};
        auto given = a, x = std::vector<double>(3, -1.0), work = x, factors = a;
        std::vector<int> ipiv(n), expectedIpiv(n);
        int info = 0;
        dgetrf_(&n, &n, factors.data(), &n, expectedIpiv.data(), &info);
        ASSERT_EQ(info, 0);
        ASSERT_EQ(vornDsgesv(n, 1, given.data(), n, ipiv.data(), b.data(), n, x.data(), n, work.data()), 0);
        EXPECT_EQ(ipiv, expectedIpiv);
        expectClose(given, factors, n, dEps);
        EXPECT_LE(residual(a, x, b, n), 1e-5);  // the condition number is about 4e10
    }
}

// Reference BLAS reads only the real part of the diagonal of a Hermitian A, and
// herk and her2k leave C's diagonal real: imaginary parts there in the caller's
// arrays change nothing and come back as zero.
TEST(CudaLibrary, HermitianRoutinesKeepTheDiagonalReal) {
    REQUIRE_GPU();
    const int n = 33, k = 17;
    auto a = matrix<Z>(n, n, n, 51), b = matrix<Z>(n, k, n, 52), c = matrix<Z>(n, n, n, 53);
    for (int i = 0; i < n; ++i) {
        a[i + std::size_t(i) * n].imag(5.0 + i);
        c[i + std::size_t(i) * n].imag(-3.0 - i);
    }
    const Z alpha(0.75, 0.5), one(1, 0);
    const double beta = 0.5, realAlpha = 1.25;
    {
        SCOPED_TRACE("zhemv");
        auto y = matrix<Z>(n, 1, n, 54), expected = y;
        const int inc = 1;
        zhemv_("L", &n, &alpha, a.data(), &n, b.data(), &inc, &one, expected.data(), &inc, 1);
        ASSERT_EQ(vornZhemv('L', n, gpu(alpha), gpu(a.data()), n, gpu(b.data()), 1, gpu(one), gpu(y.data()), 1), 0);
        expectClose(y, expected, n, dEps);
    }
    for (const bool rank2 : {false, true}) {
        SCOPED_TRACE(rank2 ? "zher2k" : "zherk");
        auto got = c, expected = c;
        if (rank2) {
            zher2k_("U", "N", &n, &k, &alpha, b.data(), &n, b.data(), &n, &beta, expected.data(), &n, 1, 1);
            ASSERT_EQ(vornZher2k('U', 'N', n, k, gpu(alpha), gpu(b.data()), n, gpu(b.data()), n, beta, gpu(got.data()), n), 0);
        } else {
            zherk_("U", "N", &n, &k, &realAlpha, b.data(), &n, &beta, expected.data(), &n, 1, 1);
            ASSERT_EQ(vornZherk('U', 'N', n, k, realAlpha, gpu(b.data()), n, beta, gpu(got.data()), n), 0);
        }
        for (int i = 0; i < n; ++i) EXPECT_EQ(got[i + std::size_t(i) * n].imag(), 0.0) << i;
        expectClose(got, expected, k, dEps);
    }
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

// A failure after the arrays went to the GPU (here: more workspace than allowed)
// leaves them as they were, with a text that names the cause. gbtrf is never
// computed here.
TEST(CudaLibrary, FailuresLeaveTheArraysUntouched) {
    setEnv("VORN_CUDA_MAX_DEVICE_BYTES", "65536");
    REQUIRE_GPU();
    const int n = 64;
    auto a = matrix<double>(n, n, n, 31), b = a, c = a;
    const auto before = c;
    EXPECT_EQ(vornDgemm('N', 'N', n, n, n, 1, a.data(), n, b.data(), n, 1, c.data(), n), VORN_STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(c, before);
    EXPECT_NE(std::string(vornGetStatusString(VORN_STATUS_OUT_OF_MEMORY)).find("VORN_CUDA_MAX_DEVICE_BYTES"),
              std::string::npos);
    std::vector<int> ipiv(n, 7);
    EXPECT_EQ(vornDgbtrf(n, n, 1, 1, c.data(), n, ipiv.data()), VORN_STATUS_NOT_AVAILABLE);
    EXPECT_EQ(c, before);
    EXPECT_EQ(ipiv, std::vector<int>(n, 7));
    const int small = 4;  // within the limit the same thread computes again
    EXPECT_EQ(vornDgemm('N', 'N', small, small, small, 1, a.data(), n, b.data(), n, 1, c.data(), n), 0);
}

// Threads call at once, each with its own sizes; each gets OpenBLAS's answer and
// its own info. Threads that exit give their contexts back for shutdown to free,
// and the library starts again afterwards.
TEST(CudaLibrary, ConcurrentCallsFromManyThreads) {
    REQUIRE_GPU();
    constexpr int threads = 8, rounds = 12;
    std::vector<int> failures(threads, 0);
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([t, &failures] {
            for (int r = 0; r < rounds; ++r) {
                const int n = 40 + 37 * ((t + r) % 5), ld = n + t;
                const double one = 1;
                const auto a = matrix<double>(n, n, ld, 100 * t + r), b = matrix<double>(n, n, ld, 7);
                auto c = matrix<double>(n, n, ld, 5), expected = c;
                dgemm_("N", "T", &n, &n, &n, &one, a.data(), &ld, b.data(), &ld, &one, expected.data(), &ld, 1, 1);
                if (vornDgemm('N', 'T', n, n, n, one, a.data(), ld, b.data(), ld, one, c.data(), ld) != 0) ++failures[t];
                for (std::size_t i = 0; i < c.size(); ++i)
                    if (std::abs(c[i] - expected[i]) > 30.0 * n * dEps * 64) { ++failures[t]; break; }
                auto singular = a;
                std::vector<int> ipiv(n);
                for (int i = 0; i < n; ++i) singular[i + std::size_t(t % n) * ld] = 0;
                if (vornDgetrf(n, n, singular.data(), ld, ipiv.data()) != VORN_STATUS_INFO_NUMERICAL ||
                    vornGetErrorInfo() != t % n + 1)
                    ++failures[t];
            }
        });
    }
    for (auto& worker : workers) worker.join();
    EXPECT_EQ(failures, std::vector<int>(threads, 0));
    vornShutdown();
    double x = 2;
    EXPECT_EQ(vornDgemm('N', 'N', 1, 1, 1, 1, &x, 1, &x, 1, 0, &x, 1), VORN_STATUS_NOT_INITIALIZED);
    ASSERT_EQ(vornInitialize(), 0);
    EXPECT_EQ(vornDgemm('N', 'N', 1, 1, 1, 1, &x, 1, &x, 1, 0, &x, 1), 0);
    EXPECT_EQ(x, 4);
}
