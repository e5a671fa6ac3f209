// The CPU library liblapackcpu.so, loaded as the link library loads it, in a
// program that has OpenBLAS loaded itself and exports a dbdsqr_ of its own: the
// adapter's OpenBLAS must stay private (its dgesvd_ must not reach this program's
// dbdsqr_), take the hidden lengths right and print its xerbla messages.
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "test_support.h"

// OpenBLAS, linked into this program, with gfortran's hidden lengths.
extern "C" {
void dgesvd_(const char* jobu, const char* jobvt, const int* m, const int* n, double* a, const int* lda,
             double* s, double* u, const int* ldu, double* vt, const int* ldvt, double* work, const int* lwork,
             int* info, std::size_t, std::size_t);
}

// This program's dbdsqr_, exported (-rdynamic): it wins over OpenBLAS's for every
// caller that resolves through the global scope. It counts the call and hands it
// on to OpenBLAS's own dbdsqr_, so that the results stay right.
static int dbdsqrCalls = 0;

extern "C" [[gnu::visibility("default")]] void dbdsqr_(const char* uplo, const int* n, const int* ncvt,
                                                       const int* nru, const int* ncc, double* d, double* e,
                                                       double* vt, const int* ldvt, double* u, const int* ldu,
                                                       double* c, const int* ldc, double* work, int* info,
                                                       std::size_t uploLength) {
    ++dbdsqrCalls;
    using Dbdsqr = decltype(&dbdsqr_);
    static const auto next = reinterpret_cast<Dbdsqr>(dlsym(RTLD_NEXT, "dbdsqr_"));
    next(uplo, n, ncvt, nru, ncc, d, e, vt, ldvt, u, ldu, c, ldc, work, info, uploLength);
}

namespace {

using Word = void*;
using Potrf = void (*)(Word uplo, Word n, Word a, Word lda, Word info);
using Gesvd = void (*)(Word jobu, Word jobvt, Word m, Word n, Word a, Word lda, Word s, Word u, Word ldu,
                       Word vt, Word ldvt, Word work, Word lwork, Word info);

// The CPU library as the link library opens it.
void* openAdapter() {
    void* adapter = dlopen(VORN_TEST_LAPACKCPU, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    EXPECT_NE(adapter, nullptr) << dlerror();
    return adapter;
}

template <class Function>
Function routine(void* adapter, const char* name) {
    auto function = reinterpret_cast<Function>(dlsym(adapter, name));
    EXPECT_NE(function, nullptr) << name;
    return function;
}

// A column-major n x n symmetric positive definite matrix with leading dimension
// lda; the padding rows hold -7 and must come back as they went.
template <class Real>
std::vector<Real> spdMatrix(int n, int lda) {
    std::vector<Real> a(static_cast<std::size_t>(lda) * n, Real(-7));
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i)
            a[i + static_cast<std::size_t>(j) * lda] = i == j ? Real(n) : Real(1) / Real(1 + (i > j ? i - j : j - i));
    return a;
}

template <class Real>
bool sameBits(const std::vector<Real>& x, const std::vector<Real>& y) {
    return x.size() == y.size() && std::memcmp(x.data(), y.data(), x.size() * sizeof(Real)) == 0;
}

// The singular value decomposition of a fixed 6 x 4 matrix into all of U and
// the short V^T: both character arguments matter.
struct SvdCase {
    char jobu = 'A', jobvt = 'S';
    int m = 6, n = 4, lda = 6, ldu = 6, ldvt = 4, lwork = 200, info = -99;
    std::vector<double> a = std::vector<double>(24), s = std::vector<double>(4), u = std::vector<double>(36),
                        vt = std::vector<double>(16), work = std::vector<double>(200);
    SvdCase() {
        for (int k = 0; k < 24; ++k) a[k] = double((k * 7) % 11) - 3.5 + 0.25 * k;
    }
};

}  // namespace

TEST(LapackCpuAdapter, DgesvdStaysInsideItsOwnOpenBlas) {
    const auto adapterDgesvd = routine<Gesvd>(openAdapter(), "dgesvd");
    SvdCase viaAdapter;
    SvdCase& c = viaAdapter;
    adapterDgesvd(&c.jobu, &c.jobvt, &c.m, &c.n, c.a.data(), &c.lda, c.s.data(), c.u.data(), &c.ldu,
                  c.vt.data(), &c.ldvt, c.work.data(), &c.lwork, &c.info);
    EXPECT_EQ(dbdsqrCalls, 0) << "the adapter's dgesvd_ reached this program's dbdsqr_";

    SvdCase direct;
    SvdCase& d = direct;
    dgesvd_(&d.jobu, &d.jobvt, &d.m, &d.n, d.a.data(), &d.lda, d.s.data(), d.u.data(), &d.ldu, d.vt.data(),
            &d.ldvt, d.work.data(), &d.lwork, &d.info, 1, 1);
    // Without this the check above proves nothing: the global OpenBLAS does reach it.
    EXPECT_GT(dbdsqrCalls, 0) << "this program's dbdsqr_ does not interpose on the global OpenBLAS";

    EXPECT_EQ(viaAdapter.info, 0);
    EXPECT_EQ(direct.info, 0);
    EXPECT_TRUE(sameBits(viaAdapter.s, direct.s));
    EXPECT_TRUE(sameBits(viaAdapter.u, direct.u));
    EXPECT_TRUE(sameBits(viaAdapter.vt, direct.vt));
    EXPECT_TRUE(sameBits(viaAdapter.a, direct.a));
}

TEST(LapackCpuAdapter, IllegalArgumentReachesStandardOutput) {
    const auto adapterSpotrf = routine<Potrf>(openAdapter(), "spotrf");
    char uplo = 'U';
    int n = -1, lda = 1, info = 0;
    float a[1] = {3.0f};
    StdoutCapture capture;
    adapterSpotrf(&uplo, &n, a, &lda, &info);
    const std::string output = capture.stop();
    EXPECT_EQ(info, -2);
    const std::string message = " ** On entry to SPOTRF parameter number  2 had an illegal value";
    const auto at = output.find(message);
    EXPECT_NE(at, std::string::npos) << output;
    EXPECT_EQ(output.find(message, at + 1), std::string::npos) << "printed twice: " << output;
}

TEST(LapackCpuAdapter, MissingBackendIsReportedOnceAndTouchesNothing) {
    const std::string missing = tempPath("no-such-openblas.so");
    setEnv("VORN_LAPACKCPU_BACKEND", missing);
    void* adapter = openAdapter();
    const auto adapterSpotrf = routine<Potrf>(adapter, "spotrf");
    const auto adapterDpotrf = routine<Potrf>(adapter, "dpotrf");

    // Standard error goes to a file while the adapter runs.
    const std::string errorPath = tempPath("stderr");
    std::fflush(stderr);
    const int savedError = dup(2);
    FILE* errorFile = std::fopen(errorPath.c_str(), "w");
    dup2(fileno(errorFile), 2);
    std::fclose(errorFile);

    char uplo = 'L';
    int n = 3, lda = 3, info = 12345, info2 = 12345;
    auto single = spdMatrix<float>(n, lda);
    auto twice = spdMatrix<double>(n, lda);
    adapterSpotrf(&uplo, &n, single.data(), &lda, &info);
    adapterSpotrf(&uplo, &n, single.data(), &lda, &info);
    adapterDpotrf(&uplo, &n, twice.data(), &lda, &info2);

    std::fflush(stderr);
    dup2(savedError, 2);
    close(savedError);

    EXPECT_EQ(info, 12345);
    EXPECT_EQ(info2, 12345);
    EXPECT_TRUE(sameBits(single, spdMatrix<float>(n, lda)));
    EXPECT_TRUE(sameBits(twice, spdMatrix<double>(n, lda)));
    const auto lines = readLines(errorPath);
    ASSERT_EQ(lines.size(), 1u) << readFile(errorPath);
    EXPECT_NE(lines[0].find(missing), std::string::npos) << lines[0];
}
