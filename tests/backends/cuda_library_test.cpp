// The CUDA GPU library, called as the link library calls it. Without a GPU: its
// start-up failure and its text, and routines that refuse to run. With a GPU, or
// over the CUDA stand-in (these skip themselves elsewhere): chunked transfers
// against OpenBLAS, statuses 7 and 8 with info, what LAPACK leaves in the arrays,
// and calls from many threads. (Every function's results, Hermitian diagonals and
// converged mixed-precision solves included: the family tests through the link
// library, over the stand-in and on a GPU.) Built with VORN_CUDA_STAND_IN, over
// the stand-in only: failures at each step, a forked child and a device reset.
#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <regex>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "test_support.h"
#include "vorn_gpu_functions.h"
#include "vorn_lapack.h"
#ifdef VORN_CUDA_STAND_IN
#include <cuda_runtime_api.h>
#include <sys/wait.h>
#include <unistd.h>

#include "stand_in.h"
#endif

// OpenBLAS, linked into this program, with gfortran's hidden lengths.
using Z = std::complex<double>;
using I = const int*;
extern "C" {
void dgemm_(const char*, const char*, I, I, I, const double*, const double*, I, const double*, I, const double*,
            double*, I, std::size_t, std::size_t);
void dgetrf_(I, I, double*, I, int*, int*);
void dgetrs_(const char*, I, I, const double*, I, I, double*, I, int*, std::size_t);
void dgetri_(I, double*, I, I, double*, I, int*);
void zgetrf_(I, I, Z*, I, int*, int*);
void dposv_(const char*, I, I, double*, I, double*, I, int*, std::size_t);
void dgeqrf_(I, I, double*, I, double*, double*, I, int*);
void dormqr_(const char*, const char*, I, I, I, const double*, I, const double*, double*, I, double*, I, int*,
             std::size_t, std::size_t);
void zgels_(const char*, I, I, I, Z*, I, Z*, I, Z*, I, int*, std::size_t);
void dsyev_(const char*, const char*, I, double*, I, double*, double*, I, int*, std::size_t, std::size_t);
void zhegv_(I, const char*, const char*, I, Z*, I, Z*, I, double*, Z*, I, double*, int*, std::size_t, std::size_t);
void dgesvd_(const char*, const char*, I, I, double*, I, double*, double*, I, double*, I, double*, I, int*,
             std::size_t, std::size_t);
}

namespace {

vornDoubleComplex* gpu(Z* p) { return reinterpret_cast<vornDoubleComplex*>(p); }
vornDoubleComplex* complex(double* a) { return reinterpret_cast<vornDoubleComplex*>(a); }

// A column-major rows x cols matrix in an array of leading dimension ld: entries
// in [-1, 1), none exactly zero, plus weight at row (j + shift) mod rows of each
// column j. Shift 0 gives the strong diagonal that the positive definite cases
// need; the padding rows hold a marker that must survive every call.
template <class T>
std::vector<T> matrix(int rows, int cols, int ld, unsigned seed, int shift = 0, double weight = 4.0) {
    std::vector<T> a(std::size_t(ld) * cols, T(-7));
    for (int j = 0; j < cols; ++j)
        for (int i = 0; i < rows; ++i) {
            seed = seed * 1103515245u + 12345u;
            const double v = (double(seed >> 8) + 0.5) / double(1u << 23) - 1.0 + (i == (j + shift) % rows ? weight : 0.0);
            if constexpr (std::is_same_v<T, Z>) a[i + std::size_t(j) * ld] = T(v, 0.5 * v - 0.25);
            else a[i + std::size_t(j) * ld] = T(v);
        }
    return a;
}

// A matrix whose LU with partial pivoting swaps rows: column j's largest entry
// outweighs the rest of it, one row below the diagonal (the last column's in the
// first row). Its pivots are far from ties, so a GPU chooses them as OpenBLAS
// does, and it is well conditioned, so results agree within LAPACK's bounds.
template <class T> std::vector<T> pivoting(int rows, int cols, int ld, unsigned seed) {
    return matrix<T>(rows, cols, ld, seed, 1, 2.0 * rows);
}
bool swapsRows(const std::vector<int>& ipiv, std::size_t from = 0) {
    for (std::size_t i = from; i < ipiv.size(); ++i)
        if (ipiv[i] != int(i) + 1) return true;
    return false;
}

// LAPACK's test bound: the largest difference, relative to the largest reference
// element, within a small multiple of n·eps.
constexpr double eps = 1.1e-16;
template <class T> void expectClose(const std::vector<T>& got, const std::vector<T>& want, int n) {
    ASSERT_EQ(got.size(), want.size());
    double largest = 0, difference = 0;
    for (std::size_t i = 0; i < got.size(); ++i) {
        largest = std::max(largest, double(std::abs(want[i])));
        difference = std::max(difference, double(std::abs(got[i] - want[i])));
    }
    EXPECT_LE(difference, 30.0 * n * eps * std::max(largest, 1.0)) << "largest difference " << difference;
}

// A V = W diag(values) within LAPACK's bound, n eps ||A|| (A m x n, V n x k, W
// m x k), and, for orthonormal vectors, V^H V = I and W^H W = I: whatever the
// signs or phases that the vectors come with.
using Element = std::function<Z(int, int)>;
template <class T> Element entries(const std::vector<T>& x, int ld) {
    return [&x, ld](int i, int j) { return Z(x[i + std::size_t(j) * ld]); };
}
void expectDecomposition(int m, int n, int k, const Element& a, const Element& v, const Element& w,
                         const std::vector<double>& values, bool orthonormal) {
    double largest = 0, residual = 0, orthogonality = 0;
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < m; ++i) largest = std::max(largest, std::abs(a(i, j)));
    auto unitary = [&](const Element& x, int rows, int i, int j) {
        Z dot = 0;
        for (int l = 0; l < rows; ++l) dot += std::conj(x(l, i)) * x(l, j);
        return std::abs(dot - (i == j ? 1.0 : 0.0));
    };
    for (int j = 0; j < k; ++j) {
        for (int i = 0; i < m; ++i) {
            Z product = 0;
            for (int l = 0; l < n; ++l) product += a(i, l) * v(l, j);
            residual = std::max(residual, std::abs(product - w(i, j) * values[j]));
        }
        for (int i = 0; orthonormal && i < k; ++i)
            orthogonality = std::max({orthogonality, unitary(v, n, i, j), unitary(w, m, i, j)});
    }
    EXPECT_LE(residual, 30.0 * std::max(m, n) * eps * largest);
    EXPECT_LE(orthogonality, 30.0 * std::max(m, n) * eps);
}

// Status 7 with this info.
void expectNumerical(int status, int info) {
    EXPECT_EQ(status, VORN_STATUS_INFO_NUMERICAL);
    EXPECT_EQ(vornGetErrorInfo(), info) << "status " << status;
}

// The GPU tests run only where vornInitialize finds a GPU.
#define REQUIRE_GPU() \
    if (const int status = vornInitialize()) GTEST_SKIP() << "no GPU: " << vornGetStatusString(status)

// Every GPU function of the list, called with value-initialised arguments: null
// arrays, zero sizes and scalars, and '\0' letters, which no routine accepts. A
// routine that refuses only after its argument checks answers 8; one that touches
// an array crashes.
struct AnyCall { const char* name; int (*call)(); };
#define ZERO(type, name) std::type_identity_t<type>{}
#define ANY_CALL(function, base, root, T) {#function, [] { return function(VORN_GPU_PARAMETERS_##root(ZERO, T)); }},
const AnyCall everyFunction[] = {VORN_GPU_FUNCTIONS(ANY_CALL)};
void expectEveryFunctionRefuses(int status) {
    for (const AnyCall& c : everyFunction) EXPECT_EQ(c.call(), status) << c.name;
}

}  // namespace

// The list names every function that vorn_lapack.h declares, each once (the
// header's int functions are the list's and vornInitialize and vornGetErrorInfo),
// and before vornInitialize every one refuses. Without a GPU (or without the
// driver) the start-up fails with a status of its own and a text that says what
// the CUDA runtime found missing; a second attempt answers the same, and every
// routine gives that status.
TEST(CudaLibrary, RoutinesRefuseUntilStartedAndTouchNothing) {
    const std::string header = readFile(VORN_GPU_HEADER);
    for (const AnyCall& c : everyFunction)
        EXPECT_NE(header.find("VORN_API int " + std::string(c.name) + "("), std::string::npos) << c.name;
    const std::regex declaration(R"(VORN_API int vorn\w+\()");
    EXPECT_EQ(std::distance(std::sregex_iterator(header.begin(), header.end(), declaration), std::sregex_iterator()),
              std::size(everyFunction) + 2);
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
// inside columns, and elements of 16 bytes across chunks; once per transfer mode.
// gemm's C with beta 0 is an output only; getrf's pivots come back beside complex
// factors.
class CudaTransferModes : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(TransferModes, CudaTransferModes, testing::Values("staged", "registered", "pageable"));
TEST_P(CudaTransferModes, LargeProblemsMatchOpenBlasWithinErrorBounds) {
    setEnv("VORN_CUDA_TRANSFER", GetParam());
    setEnv("VORN_CUDA_STAGING_BYTES", "1000");
    REQUIRE_GPU();
    const int n = 301, ld = n + 5, k = 257, cols = n - 20;
    const double one = 1.0, zero = 0.0;
    const auto a = matrix<double>(k, n, ld, 1), b = matrix<double>(k, n, ld, 2);
    auto c = matrix<double>(n, n, ld, 3), expected = c;
    dgemm_("T", "N", &n, &n, &k, &one, a.data(), &ld, b.data(), &ld, &zero, expected.data(), &ld, 1, 1);
    ASSERT_EQ(vornDgemm('T', 'N', n, n, k, one, a.data(), ld, b.data(), ld, zero, c.data(), ld), 0);
    expectClose(c, expected, k);

    auto z = pivoting<Z>(n, cols, ld, 10), zExpected = z;
    std::vector<int> ipiv(cols), expectedIpiv(cols);
    int info = -1;
    zgetrf_(&n, &cols, zExpected.data(), &ld, expectedIpiv.data(), &info);
    ASSERT_TRUE(swapsRows(expectedIpiv));
    ASSERT_EQ(vornZgetrf(n, cols, gpu(z.data()), ld, ipiv.data()), 0);
    EXPECT_EQ(ipiv, expectedIpiv);
    expectClose(z, zExpected, n);

    // geqrf's factors and tau; then Q^T C with OpenBLAS's factors, so that only the product differs.
    auto qr = matrix<double>(n, cols, ld, 11), qrExpected = qr;
    std::vector<double> tau(cols), tauExpected(cols), work(64 * n);
    const int lwork = int(work.size());
    dgeqrf_(&n, &cols, qrExpected.data(), &ld, tauExpected.data(), work.data(), &lwork, &info);
    ASSERT_EQ(vornDgeqrf(n, cols, qr.data(), ld, tau.data()), 0);
    expectClose(qr, qrExpected, n);
    expectClose(tau, tauExpected, n);
    c = matrix<double>(n, k, ld, 12), expected = c;
    dormqr_("L", "T", &n, &k, &cols, qrExpected.data(), &ld, tauExpected.data(), expected.data(), &ld, work.data(),
            &lwork, &info, 1, 1);
    ASSERT_EQ(vornDormqr('L', 'T', n, k, cols, qrExpected.data(), ld, tauExpected.data(), c.data(), ld), 0);
    expectClose(c, expected, n);

    // getrs with OpenBLAS's factors and pivots ('N' swaps rows of b before the
    // solves, 'T' after them).
    auto lu = pivoting<double>(n, n, ld, 18);
    std::vector<int> luIpiv(n);
    dgetrf_(&n, &n, lu.data(), &ld, luIpiv.data(), &info);
    ASSERT_TRUE(swapsRows(luIpiv));
    for (const char trans : {'N', 'T'}) {
        auto x = matrix<double>(n, k, ld, 19), xExpected = x;
        dgetrs_(&trans, &n, &k, lu.data(), &ld, luIpiv.data(), xExpected.data(), &ld, &info, 1);
        ASSERT_EQ(vornDgetrs(trans, n, k, lu.data(), ld, luIpiv.data(), x.data(), ld), 0) << trans;
        expectClose(x, xExpected, n);
    }

    // Eigenvalues and singular values against OpenBLAS's; their vectors through the
    // decomposition they give. dsyev reads the upper triangle; the lower one is the
    // same, for the residual.
    const int e = 97, le = e + 3;
    auto sym = matrix<double>(e, e, le, 13);
    for (int j = 0; j < e; ++j)
        for (int i = j + 1; i < e; ++i) sym[i + j * le] = sym[j + i * le];
    auto vectors = sym, values = std::vector<double>(e), expectedValues = values;
    dsyev_("N", "U", &e, vectors.data(), &le, expectedValues.data(), work.data(), &lwork, &info, 1, 1);
    vectors = sym;
    ASSERT_EQ(vornDsyev('V', 'U', e, vectors.data(), le, values.data()), 0);
    expectClose(values, expectedValues, e);
    expectDecomposition(e, e, e, entries(sym, le), entries(vectors, le), entries(vectors, le), values, true);

    // zhegv, A Z = B Z diag(w), from the lower triangles (complex diagonals read as real).
    const int h = 40;
    auto ha = matrix<Z>(h, h, h, 14), hb = matrix<Z>(h, h, h, 15);
    for (int j = 0; j < h; ++j)
        for (int i = j; i < h; ++i) {
            if (i > j) hb[i + j * h] *= 0.01;
            ha[j + i * h] = std::conj(ha[i + j * h]);
            hb[j + i * h] = std::conj(hb[i + j * h]);
        }
    auto hz = ha, hbFactor = hb, hzExpected = ha, hbExpected = hb;
    std::vector<double> hw(h), hwExpected(h), rwork(3 * h);
    std::vector<Z> zwork(64 * h);
    const int itype = 1, lzwork = int(zwork.size());
    zhegv_(&itype, "V", "L", &h, hzExpected.data(), &h, hbExpected.data(), &h, hwExpected.data(), zwork.data(), &lzwork,
           rwork.data(), &info, 1, 1);
    for (int j = 0; j < h; ++j) ha[j + j * h].imag(1.5), hb[j + j * h].imag(-1.5);
    hz = ha, hbFactor = hb;
    ASSERT_EQ(vornZhegv(1, 'V', 'L', h, gpu(hz.data()), h, gpu(hbFactor.data()), h, hw.data()), 0);
    expectClose(hw, hwExpected, h);
    expectClose(hbFactor, hbExpected, h);
    const Element bz = [&](int i, int j) {
        Z sum = 0;
        for (int l = 0; l < h; ++l) sum += Z(hb[i + l * h].real(), i == l ? 0 : hb[i + l * h].imag()) * hz[l + j * h];
        return sum;
    };
    const Element hermitian = [&](int i, int j) { return i == j ? Z(ha[i + j * h].real()) : ha[i + j * h]; };
    expectDecomposition(h, h, h, hermitian, entries(hz, h), bz, hw, false);

    // dgesvd with m < n (cuSOLVER's SVD of A^T), jobu 'A', jobvt 'S'; A V = U diag(s).
    const int sm = 60, sn = 97, sk = sm;
    const auto general = matrix<double>(sm, sn, le, 16);
    auto destroyed = general, sExpected = std::vector<double>(sk), sv = sExpected;
    std::vector<double> u(sm * sm), vt(le * sn);
    dgesvd_("N", "N", &sm, &sn, destroyed.data(), &le, sExpected.data(), u.data(), &sm, vt.data(), &le, work.data(),
            &lwork, &info, 1, 1);
    destroyed = general;
    ASSERT_EQ(vornDgesvd('A', 'S', sm, sn, destroyed.data(), le, sv.data(), u.data(), sm, vt.data(), le), 0);
    EXPECT_EQ(destroyed, general);
    expectClose(sv, sExpected, sn);
    const Element v = [&](int i, int j) { return Z(vt[j + i * le]); };
    expectDecomposition(sm, sn, sk, entries(general, le), v, entries(u, sm), sv, true);

}

// info > 0: status 7, info as LAPACK gives it, and the arrays as LAPACK leaves
// them: getrf's factors and pivots; gesv's and posv's factors with b untouched;
// getri's, potri's and trtri's a untouched; trtrs's b untouched, even with no
// right-hand side; gels's QR factors with Q^T b ('N') or b untouched ('C'). And
// gels's quick return that writes: an empty A gives a zero solution; and the
// cases of gels left to the CPU.
TEST(CudaLibrary, SingularMatricesGiveStatusSevenWithInfo) {
    REQUIRE_GPU();
    const int n = 6;
    std::vector<int> ipiv(n), expectedIpiv(n);
    auto a = pivoting<double>(n, n, n, 21);
    std::fill_n(a.begin() + 3 * n, n, 0.0);  // column 4 is zero: U(4,4) = 0, and the factoring goes on
    auto expected = a;
    int info = 0;
    dgetrf_(&n, &n, expected.data(), &n, expectedIpiv.data(), &info);
    ASSERT_EQ(info, 4);
    ASSERT_TRUE(swapsRows(expectedIpiv, 4));
    expectNumerical(vornDgetrf(n, n, a.data(), n, ipiv.data()), 4);
    EXPECT_EQ(ipiv, expectedIpiv);
    expectClose(a, expected, n);

    auto z = pivoting<Z>(n, n, n, 22), b = matrix<Z>(n, 2, n, 23);
    std::fill_n(z.begin() + 2 * n, n, 0.0);
    const auto bBefore = b;
    expectNumerical(vornZgesv(n, 2, gpu(z.data()), n, ipiv.data(), gpu(b.data()), n), 3);
    EXPECT_EQ(b, bBefore);

    auto s = matrix<float>(n, n, n, 24);
    s[2 + 2 * n] = 0;
    const auto sBefore = s;
    expectNumerical(vornSgetri(n, s.data(), n, ipiv.data()), 3);
    EXPECT_EQ(s, sBefore);
    expectNumerical(vornSpotri('U', n, s.data(), n), 3);
    expectNumerical(vornStrtri('L', 'N', n, s.data(), n), 3);
    expectNumerical(vornStrtrs('U', 'T', 'N', n, 0, s.data(), n, s.data(), n), 3);
    EXPECT_EQ(s, sBefore);

    const int rhs = 2;
    auto p = matrix<double>(n, n, n, 25), pExpected = p, pb = matrix<double>(n, rhs, n, 26), pbExpected = pb;
    p[3 + 3 * n] = pExpected[3 + 3 * n] = -40;
    dposv_("L", &n, &rhs, pExpected.data(), &n, pbExpected.data(), &n, &info, 1);
    ASSERT_GT(info, 0);
    expectNumerical(vornDposv('L', n, rhs, p.data(), n, pb.data(), n), info);
    EXPECT_EQ(pb, pbExpected);
    expectClose(p, pExpected, n);

    // Column 2 of A is zero, so R(2,2) is exactly zero.
    const int m = 9, cols = 4;
    std::vector<Z> work(64 * m);
    const int lwork = int(work.size());
    for (const char trans : {'N', 'C'}) {
        auto g = matrix<Z>(m, cols, m, 27), gb = matrix<Z>(m, rhs, m, 28);
        std::fill_n(g.begin() + m, m, 0.0);
        auto gExpected = g, gbExpected = gb;
        zgels_(&trans, &m, &cols, &rhs, gExpected.data(), &m, gbExpected.data(), &m, work.data(), &lwork, &info, 1);
        ASSERT_EQ(info, 2) << trans;
        expectNumerical(vornZgels(trans, m, cols, rhs, gpu(g.data()), m, gpu(gb.data()), m), 2);
        expectClose(g, gExpected, m);
        expectClose(gb, gbExpected, m);
    }
    auto empty = matrix<Z>(2, rhs, m, 29);
    EXPECT_EQ(vornZgels('N', 0, cols, rhs, gpu(empty.data()), 1, gpu(empty.data()), m), 0);
    for (int j = 0; j < rhs; ++j)
        for (int i = 0; i < m; ++i) EXPECT_EQ(empty[i + j * m], i < cols ? Z(0) : Z(-7)) << i << "," << j;

    // What LAPACK's gels scales first, and m < n (an LQ factorisation), are left
    // to the CPU library: "not available", nothing touched.
    auto tiny = matrix<double>(m, cols, m, 30), normal = matrix<double>(m, cols, m, 31);
    for (double& v : tiny) v *= 1e-300;
    const auto tinyBefore = tiny, normalBefore = normal;
    EXPECT_EQ(vornDgels('N', m, cols, 1, tiny.data(), m, normal.data(), m), VORN_STATUS_NOT_AVAILABLE);
    EXPECT_EQ(vornDgels('T', m, cols, 1, normal.data(), m, tiny.data(), m), VORN_STATUS_NOT_AVAILABLE);
    EXPECT_EQ(vornDgels('N', cols, m, 1, normal.data(), cols, tiny.data(), m), VORN_STATUS_NOT_AVAILABLE);
    EXPECT_EQ(tiny, tinyBefore);
    EXPECT_EQ(normal, normalBefore);
}

// When refinement in the lower precision gives up, dsgesv leaves a as LAPACK
// does: the higher-precision factors, with their pivots. This matrix is singular
// in single precision only (its condition number is about 4e10).
TEST(CudaLibrary, MixedPrecisionFallbackLeavesTheFactors) {
    REQUIRE_GPU();
    const int n = 3;
    const std::vector<double> a = {1, 1, 0, 1, 1 + 1e-10, 0, 0, 0.5, 2}, b = {2, 3, 1};
    auto given = a, factors = a, x = std::vector<double>(n, -1.0), work = x;
    std::vector<int> ipiv(n), expectedIpiv(n);
    int info = 0;
    dgetrf_(&n, &n, factors.data(), &n, expectedIpiv.data(), &info);
    ASSERT_EQ(vornDsgesv(n, 1, given.data(), n, ipiv.data(), b.data(), n, x.data(), n, work.data()), 0);
    for (int i = 0; i < n; ++i)  // the residual of A x = b
        EXPECT_LE(std::abs(b[i] - a[i] * x[0] - a[i + n] * x[1] - a[i + 2 * n] * x[2]), 1e-5) << i;
    EXPECT_EQ(ipiv, expectedIpiv);
    expectClose(given, factors, n);
}

// info < 0: status 8 with info -i for the first illegal argument in LAPACK's
// order of checks, and nothing touched. Info 0: LAPACK's quick return, status 0,
// and nothing touched either.
TEST(CudaLibrary, IllegalArgumentsGiveStatusEightWithTheirPositionAndQuickReturnsTouchNothing) {
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
        {"dpotrs ldb", [](double* p, int*) { return vornDpotrs('U', 4, 1, p, 4, p, 3); }, -7},
        {"dposv uplo", [](double* p, int*) { return vornDposv('X', -1, 1, p, 4, p, 4); }, -1},
        {"dpotri lda", [](double* p, int*) { return vornDpotri('L', 4, p, 3); }, -4},
        {"dtrtri diag", [](double* p, int*) { return vornDtrtri('U', 'X', 4, p, 4); }, -2},
        {"dtrtrs nrhs", [](double* p, int*) { return vornDtrtrs('U', 'C', 'N', 4, -1, p, 4, p, 4); }, -5},
        {"dgeqrf lda", [](double* p, int*) { return vornDgeqrf(5, 4, p, 4, p); }, -4},
        {"dorgqr n > m", [](double* p, int*) { return vornDorgqr(3, 4, 2, p, 4, p); }, -2},
        {"dorgqr k > n", [](double* p, int*) { return vornDorgqr(4, 3, 4, p, 4, p); }, -3},
        {"dormqr trans C", [](double* p, int*) { return vornDormqr('L', 'C', 4, 4, 2, p, 4, p, p, 4); }, -2},
        {"zunmqr trans T", [](double* p, int*) { auto* z = reinterpret_cast<vornDoubleComplex*>(p);
                                                 return vornZunmqr('R', 'T', 4, 4, 2, z, 4, z, z, 4); }, -2},
        {"dormqr lda, right", [](double* p, int*) { return vornDormqr('R', 'N', 5, 4, 2, p, 3, p, p, 5); }, -7},
        {"dorgbr m > n for P", [](double* p, int*) { return vornDorgbr('P', 4, 3, 2, p, 4, p); }, -3},
        {"dgels trans C", [](double* p, int*) { return vornDgels('C', 4, 3, 1, p, 4, p, 4); }, -1},
        {"dgels ldb < n", [](double* p, int*) { return vornDgels('N', 3, 4, 1, p, 3, p, 3); }, -8},
        {"dsyev jobz", [](double* p, int*) { return vornDsyev('X', 'Q', 4, p, 4, p); }, -1},
        {"zheev lda", [](double* p, int*) { return vornZheev('V', 'L', 4, complex(p), 3, p); }, -5},
        {"dsygv itype", [](double* p, int*) { return vornDsygv(4, 'V', 'U', 4, p, 4, p, 4, p); }, -1},
        {"dsygv ldb", [](double* p, int*) { return vornDsygv(2, 'N', 'U', 4, p, 4, p, 3, p); }, -8},
        {"dgesvd jobu and jobvt O", [](double* p, int*) { return vornDgesvd('O', 'O', 4, 4, p, 4, p, p, 4, p, 4); }, -2},
        {"dgesvd ldu for S", [](double* p, int*) { return vornDgesvd('S', 'N', 4, 3, p, 4, p, p, 3, p, 1); }, -9},
        {"dgesvd ldvt for S", [](double* p, int*) { return vornDgesvd('N', 'S', 2, 4, p, 2, p, p, 1, p, 1); }, -11},
        {"dgebrd lda", [](double* p, int*) { return vornDgebrd(4, 3, p, 3, p, p, p, p); }, -4},
        {"dpotrs nrhs = 0", [](double* p, int*) { return vornDpotrs('U', 4, 0, p, 4, p, 4); }, 0},
        {"dtrtrs nrhs = 0", [](double* p, int*) { return vornDtrtrs('L', 'N', 'N', 4, 0, p, 4, p, 4); }, 0},
        {"dgeqrf m = 0", [](double* p, int*) { return vornDgeqrf(0, 4, p, 1, p); }, 0},
        {"dorgqr n = 0", [](double* p, int*) { return vornDorgqr(4, 0, 0, p, 4, p); }, 0},
        {"dormqr k = 0", [](double* p, int*) { return vornDormqr('L', 'T', 4, 4, 0, p, 4, p, p, 4); }, 0},
        {"dorgbr n = 0", [](double* p, int*) { return vornDorgbr('P', 0, 0, 3, p, 1, p); }, 0},
        {"dgels nrhs = 0", [](double* p, int*) { return vornDgels('N', 4, 3, 0, p, 4, p, 4); }, 0},
        {"dsyev n = 0", [](double* p, int*) { return vornDsyev('V', 'L', 0, p, 1, p); }, 0},
        {"zhegv n = 0", [](double* p, int*) { return vornZhegv(3, 'N', 'U', 0, complex(p), 1, complex(p), 1, p); }, 0},
        {"dgesvd m = 0", [](double* p, int*) { return vornDgesvd('A', 'A', 0, 4, p, 1, p, p, 1, p, 4); }, 0},
        {"dgebrd n = 0", [](double* p, int*) { return vornDgebrd(4, 0, p, 4, p, p, p, p); }, 0},
    };
    for (const Case& c : cases) {
        std::vector<double> arrays(256, 0.25);
        std::vector<int> pivots(16, 1);
        EXPECT_EQ(c.call(arrays.data(), pivots.data()), c.info < 0 ? VORN_STATUS_INFO_ARGUMENT : 0) << c.what;
        EXPECT_EQ(vornGetErrorInfo(), c.info) << c.what;
        EXPECT_EQ(arrays, std::vector<double>(256, 0.25)) << c.what;
    }
}

// alpha = 0 (and k = 0): C := beta C as reference BLAS gives it (only syrk's
// triangle; herk's diagonal real), B := 0 in trmm and trsm, A and B (all Inf)
// unread, beta = 0 giving zeros over NaN. The stand-in's OpenBLAS may skip A
// itself: over it, nothing may reach the GPU at all.
TEST(CudaLibrary, AlphaZeroScalesCWithoutReadingAOrB) {
    REQUIRE_GPU();
    constexpr int n = 4;
    auto gpuWork = [] {
#ifdef VORN_CUDA_STAND_IN
        return cudaStandInCount("toDevice") + cudaStandInCount("compute");
#endif
        return 0L;
    };
    struct Row { const char* what; int (*call)(const double*, double*); double beta; char part; };
    const Row rows[] = {
        {"dgemm", [](auto a, auto c) { return vornDgemm('N', 'T', n, n, n, 0, a, n, a, n, 0.5, c, n); }, 0.5, 'A'},
        {"dgemm k = 0", [](auto a, auto c) { return vornDgemm('N', 'N', n, n, 0, 1, a, n, a, 1, 0.5, c, n); }, 0.5, 'A'},
        {"dgemm beta 0", [](auto a, auto c) { return vornDgemm('T', 'N', n, n, n, 0, a, n, a, n, 0, c, n); }, 0, 'A'},
        {"dsymm", [](auto a, auto c) { return vornDsymm('R', 'L', n, n, 0, a, n, a, n, 0.5, c, n); }, 0.5, 'A'},
        {"dsyrk", [](auto a, auto c) { return vornDsyrk('U', 'T', n, n, 0, a, n, 0.5, c, n); }, 0.5, 'U'},
        {"dsyr2k k = 0", [](auto a, auto c) { return vornDsyr2k('L', 'N', n, 0, 1, a, n, a, n, 0, c, n); }, 0, 'L'},
        {"dsymv", [](auto a, auto c) { return vornDsymv('U', n, 0, a, n, a, 1, 0.5, c, 1); }, 0.5, 'V'},
        {"dtrmm", [](auto a, auto c) { return vornDtrmm('L', 'U', 'N', 'N', n, n, 0, a, n, c, n); }, 0, 'A'},
        {"dtrsm", [](auto a, auto c) { return vornDtrsm('R', 'L', 'T', 'U', n, n, 0, a, n, c, n); }, 0, 'A'},
    };
    const std::vector<double> a(n * n, std::numeric_limits<double>::infinity());
    for (const Row& row : rows) {
        auto c = matrix<double>(n, n, n, 40), expected = c;
        if (row.beta == 0) c[0] = std::nan("");
        for (int i = 0, p = row.part; i < n * n; ++i)
            if (p == 'A' || (p == 'U' && i % n <= i / n) || (p == 'L' && i % n >= i / n) || (p == 'V' && i < n))
                expected[i] *= row.beta;
        const long before = gpuWork();
        EXPECT_EQ(row.call(a.data(), c.data()), 0) << row.what;
        EXPECT_EQ(gpuWork(), before) << row.what;
        EXPECT_EQ(c, expected) << row.what;
    }
    std::vector<Z> h = {{1, 1.5}, {2, 3}, {4, 5}, {6, -1.5}}, infinite(4, Z(a[0], a[0]));
    EXPECT_EQ(vornZherk('U', 'C', 2, 2, 0, gpu(infinite.data()), 2, 0.5, gpu(h.data()), 2), 0);
    EXPECT_EQ(h, (std::vector<Z>{{0.5, 0}, {2, 3}, {2, 2.5}, {3, 0}}));
}

// Pivots outside 1..n, which LAPACK's getrs and getri do not check (and which
// would fault on the GPU), are left to the CPU library: nothing touched.
TEST(CudaLibrary, PivotsOutsideTheMatrixAreLeftToTheCpu) {
    REQUIRE_GPU();
    const int n = 4;
    auto a = matrix<double>(n, n, n, 41), b = matrix<double>(n, 1, n, 42);
    const auto aBefore = a, bBefore = b;
    for (const auto& ipiv : {std::vector<int>{1, 2, 0, 4}, std::vector<int>{4, 5, 3, 4}}) {
        EXPECT_EQ(vornDgetrs('N', n, 1, a.data(), n, ipiv.data(), b.data(), n), VORN_STATUS_NOT_AVAILABLE);
        EXPECT_EQ(vornDgetri(n, a.data(), n, ipiv.data()), VORN_STATUS_NOT_AVAILABLE);
    }
    EXPECT_EQ(a, aBefore);
    EXPECT_EQ(b, bBefore);
}

// Staging slots too small for an element are raised to the smallest size, said
// once on stderr however often the library starts; getri, which writes its
// identity through them, gives OpenBLAS's answer.
TEST(CudaLibrary, TooSmallStagingSlotsAreRaisedAndSaidOnce) {
    setEnv("VORN_CUDA_STAGING_BYTES", "1");
    testing::internal::CaptureStderr();
    const int status = vornInitialize();
    vornShutdown();
    vornInitialize();
    const std::string said = testing::internal::GetCapturedStderr();
    if (status) GTEST_SKIP() << "no GPU: " << vornGetStatusString(status);
    EXPECT_TRUE(said.find("VORN_CUDA_STAGING_BYTES=1 ") == said.rfind("VORN_CUDA_STAGING") && !said.empty()) << said;
    const int n = 40, lwork = 64 * n;
    auto a = matrix<double>(n, n, n, 43), work = std::vector<double>(lwork);
    std::vector<int> ipiv(n);
    int info = 0;
    dgetrf_(&n, &n, a.data(), &n, ipiv.data(), &info);
    auto expected = a;
    dgetri_(&n, expected.data(), &n, ipiv.data(), work.data(), &lwork, &info);
    ASSERT_EQ(vornDgetri(n, a.data(), n, ipiv.data()), 0);
    expectClose(a, expected, n);
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
                expectClose(c, expected, n);
                auto singular = pivoting<double>(n, n, ld, 100 * t + r);
                std::vector<int> ipiv(n);
                std::fill_n(singular.begin() + std::size_t(t % n) * ld, n, 0.0);
                expectNumerical(vornDgetrf(n, n, singular.data(), ld, ipiv.data()), t % n + 1);
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

#ifdef VORN_CUDA_STAND_IN
// ---- Over the CUDA stand-in, which can make any copy, computation, wait or
// allocation fail on request and counts them (stand_in.h). A failure anywhere
// leaves the caller's arrays as they were, or is made good, and the next call
// works; steady-state calls allocate no device memory; running out of GPU memory
// touches nothing; registered pages stay locked while any call uses them.

namespace {

// One call on fixed arrays, and its outcome.
constexpr int n = 24;
struct Outcome {
    std::vector<double> a = pivoting<double>(n, 4 * n, n, 1);
    std::vector<int> p = std::vector<int>(n, -3);
    int status = -1;
    bool operator==(const Outcome& other) const { return a == other.a && p == other.p; }
};
struct Case { const char* name; int (*call)(double*, int*); };
Outcome run(const Case& c) {
    Outcome r;
    r.status = c.call(r.a.data(), r.p.data());
    return r;
}
const Case cases[] = {
    {"dgemm", [](double* a, int*) { return vornDgemm('N', 'T', n, n, n, 1, a, n, a + n * n, n, 0.5, a + 2 * n * n, n); }},
    {"dgetrf", [](double* a, int* p) { return vornDgetrf(n, n, a, n, p); }},
    {"zgesv", [](double* a, int* p) { return vornZgesv(n / 2, 3, complex(a), n / 2, p, complex(a) + n * n, n / 2); }},
    {"dsgesv",
     [](double* a, int* p) { return vornDsgesv(n, 2, a, n, p, a + n * n, n, a + 2 * n * n, n, a + 3 * n * n); }},
    {"dgels", [](double* a, int*) { return vornDgels('N', n, n / 2, 2, a, n, a + n * n, n); }},
    {"dgesvd", [](double* a, int*) {
         return vornDgesvd('S', 'A', n / 2, n, a, n / 2, a + n * n, a + 2 * n * n, n / 2, a + 3 * n * n, n);
     }},
};

// The nth call of a kind fails: a failure status with the arrays as they were;
// or, for a failure that may come after the results were written (the wait
// before unpinning), success with the clean run's answer. Either way the next
// call gives that answer.
void expectFailureLeavesArrays(const Case& c, const Outcome& clean, const std::string& kind, int nth, bool mayComeAfter) {
    const std::string where = std::string(c.name) + ", " + kind + " " + std::to_string(nth);
    cudaStandInFailAt(kind.c_str(), nth);
    const Outcome failed = run(c);
    cudaStandInFailAt(kind.c_str(), 0);
    const bool wroteAll = mayComeAfter && failed.status == 0 && failed == clean;
    EXPECT_TRUE(wroteAll || (failed.status == VORN_STATUS_RUNTIME_ERROR && failed == Outcome{}))
        << where << ": status " << failed.status;
    const Outcome again = run(c);
    EXPECT_TRUE(again.status == 0 && again == clean) << where;
}

}  // namespace

// Per transfer mode, with staging slots of 1000 bytes (every operand moves in
// several chunks, the failures land between them), then of the default size (the
// outputs fit and come back all at once): every call of every kind. A wait or
// copy that fails once the copy back has begun is made good by copying again.
// Failing twice there, with an input partly overwritten, stops the process.
TEST_P(CudaTransferModes, FailuresLeaveTheArraysAsTheyWere) {
    setEnv("VORN_CUDA_TRANSFER", GetParam());
    for (const bool chunked : {true, false}) {
        SCOPED_TRACE(chunked ? "chunked" : "all at once");
        setEnv("VORN_CUDA_STAGING_BYTES", chunked ? "1000" : "");
        vornShutdown();
        ASSERT_EQ(vornInitialize(), 0);
        for (const Case& c : cases) {
            std::map<std::string, long> calls;
            for (const char* kind : {"toDevice", "compute", "wait", "toHost"}) calls[kind] = -cudaStandInCount(kind);
            const Outcome clean = run(c);
            ASSERT_EQ(clean.status, 0) << c.name;
            for (auto& [kind, count] : calls) count += cudaStandInCount(kind.c_str());
            ASSERT_TRUE(calls["compute"] > 0 && calls["toHost"] > 1) << c.name;
            for (const auto& [kind, count] : calls)
                for (int i = 1; i <= count; ++i)
                    expectFailureLeavesArrays(c, clean, kind, i, kind == "wait" || (chunked && kind == "toHost"));
        }
        if (chunked && std::string(GetParam()) == "pageable") {  // dgetrf: A, then the pivots, then A again
            cudaStandInFailAt("toHost", 3);
            cudaStandInFailAt("toHost", 4);
            // Re-executed, not forked: a forked child of a started library refuses
            // every call.
            GTEST_FLAG_SET(death_test_style, "threadsafe");
            EXPECT_DEATH(run(cases[1]), "dgetrf: copying the results back failed twice");
            cudaStandInFailAt("toHost", 0);
        }
    }
}

// Over two devices: whichever is the library's (VORN_CUDA_DEVICE) and whichever
// the calling thread has made current, calls run on the library's (the stand-in
// refuses streams, handles and memory of another), and vornInitialize and every
// call leave the thread's current device as it was.
TEST(CudaStandInDevices, CallsRunOnTheLibrarysDeviceAndLeaveTheCallersOwn) {
    for (const int library : {0, 1})
        for (const int application : {1, 0}) {
            SCOPED_TRACE(testing::Message() << "library " << library << ", application " << application);
            vornShutdown();
            setEnv("VORN_CUDA_DEVICE", std::to_string(library));
            ASSERT_EQ(cudaSetDevice(application), cudaSuccess);
            ASSERT_EQ(vornInitialize(), 0);
            int device = -1;
            EXPECT_TRUE(cudaGetDevice(&device) == cudaSuccess && device == application);
            ASSERT_EQ(cudaSetDevice(application), cudaSuccess);  // whatever vornInitialize left
            double x = 2;
            EXPECT_EQ(vornDgemm('N', 'N', 1, 1, 1, 1, &x, 1, &x, 1, 0, &x, 1), 0);
            EXPECT_EQ(x, 4);
            EXPECT_TRUE(cudaGetDevice(&device) == cudaSuccess && device == application);
        }
}

// The workspace grows to the largest call and stays: calls of that size or
// smaller allocate nothing. A failed allocation of the grown size falls back to
// the size needed; a failed allocation of that, or a workspace over
// VORN_CUDA_MAX_DEVICE_BYTES, is "out of GPU memory" and touches nothing.
TEST(CudaStandInWorkspace, NoDeviceAllocationPerCallInSteadyState) {
    setEnv("VORN_CUDA_MAX_DEVICE_BYTES", "2097152");
    ASSERT_EQ(vornInitialize(), 0);
    for (int i = 0; i < 6; ++i) ASSERT_EQ(run(cases[i % 2]).status, 0);  // dgemm, and the smaller dgetrf
    EXPECT_EQ(cudaStandInCount("allocate"), 1);

    auto gemmOf = [](int m, int status) {  // on three m x m matrices in one array
        std::vector<double> abc(3 * m * m, 0.25);
        const auto before = abc;
        EXPECT_EQ(vornDgemm('N', 'N', m, m, m, 1, abc.data(), m, abc.data() + m * m, m, 0, abc.data() + 2 * m * m, m),
                  status) << m;
        EXPECT_TRUE(status == 0 || abc == before) << m;
    };
    cudaStandInFailAt("allocate", 1);
    gemmOf(96, 0);
    cudaStandInFailAt("allocate", 1);
    cudaStandInFailAt("allocate", 2);
    gemmOf(200, VORN_STATUS_OUT_OF_MEMORY);
    gemmOf(300, VORN_STATUS_OUT_OF_MEMORY);  // 2,160,256 bytes, over the limit
    EXPECT_NE(std::string(vornGetStatusString(VORN_STATUS_OUT_OF_MEMORY)).find("VORN_CUDA_MAX_DEVICE_BYTES"),
              std::string::npos);
}

// A forked child inherits the parent's contexts but no GPU: its routines refuse
// with a failure status and its shutdown has nothing to destroy, without a CUDA
// call (the stand-in counts every one as misuse); the parent goes on. Then the
// application's cudaDeviceReset destroys the library's streams, handles and
// memory: shutdown afterwards destroys none of them again.
TEST(CudaStandInProcess, AForkedChildRefusesAndShutdownAfterADeviceResetDestroysNothing) {
    ASSERT_EQ(vornInitialize(), 0);
    double x = 2;
    auto square = [&x] { return vornDgemm('N', 'N', 1, 1, 1, 1, &x, 1, &x, 1, 0, &x, 1); };
    ASSERT_EQ(square(), 0);
    const pid_t child = fork();
    if (child == 0) {
        const bool refused = square() == VORN_STATUS_NO_DEVICE && x == 4 && vornInitialize() == VORN_STATUS_NO_DEVICE;
        vornShutdown();
        std::exit(refused && cudaStandInCount("misuse") == 0 ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(square() == 0 && x == 16);
    ASSERT_EQ(cudaDeviceReset(), cudaSuccess);
    vornShutdown();
    EXPECT_EQ(cudaStandInCount("misuse"), 0);
}

// Registered: threads multiply their own tall matrices by one shared matrix,
// whose pages one call registers and the others find registered; none is
// unregistered while another call's copy from it is still queued (behind the
// long copy of the tall matrix).
TEST(CudaStandInRegistered, SharedPagesStayPinnedWhileAnyCallUsesThem) {
    setEnv("VORN_CUDA_TRANSFER", "registered");
    ASSERT_EQ(vornInitialize(), 0);
    const int m = 20000;
    const auto shared = matrix<double>(n, n, n, 1);
    std::vector<std::thread> workers;
    for (int t = 0; t < 8; ++t)
        workers.emplace_back([&shared] {
            std::vector<double> a(std::size_t(m) * n, 1.0), c(std::size_t(m) * n);
            for (int r = 0; r < 100; ++r)
                EXPECT_EQ(vornDgemm('N', 'N', m, n, n, 1, a.data(), m, shared.data(), n, 0, c.data(), m), 0);
        });
    for (auto& worker : workers) worker.join();
    EXPECT_EQ(cudaStandInCount("unpinned"), 0);
}
#endif
