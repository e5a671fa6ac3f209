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

// A column-major 3 x 3 symmetric positive definite matrix; it must come back as
// it went.
template <class Real> std::vector<Real> spdMatrix() { return {3, 0.5, 0.25, 0.5, 3, 0.5, 0.25, 0.5, 3}; }

// The singular value decomposition of a fixed 6 x 4 matrix into all of U and
// the short V^T (both character arguments matter): every output, in one array.
struct SvdCase {
    char jobu = 'A', jobvt = 'S';
    int m = 6, n = 4, lda = 6, ldu = 6, ldvt = 4, lwork = 200, info = -99;
    std::vector<double> out = std::vector<double>(24 + 4 + 36 + 16), work = std::vector<double>(200);
    double *a = out.data(), *s = a + 24, *u = s + 4, *vt = u + 36;
    SvdCase() {
        for (int k = 0; k < 24; ++k) a[k] = double((k * 7) % 11) - 3.5 + 0.25 * k;
    }
};

}  // namespace

TEST(LapackCpuAdapter, DgesvdStaysInsideItsOwnOpenBlas) {
    SvdCase c, d;
    routine<Gesvd>(openAdapter(), "dgesvd")(&c.jobu, &c.jobvt, &c.m, &c.n, c.a, &c.lda, c.s, c.u, &c.ldu, c.vt,
                                            &c.ldvt, c.work.data(), &c.lwork, &c.info);
    EXPECT_EQ(dbdsqrCalls, 0) << "the adapter's dgesvd_ reached this program's dbdsqr_";
    dgesvd_(&d.jobu, &d.jobvt, &d.m, &d.n, d.a, &d.lda, d.s, d.u, &d.ldu, d.vt, &d.ldvt, d.work.data(), &d.lwork,
            &d.info, 1, 1);
    // Without this the check above proves nothing: the global OpenBLAS does reach it.
    EXPECT_GT(dbdsqrCalls, 0) << "this program's dbdsqr_ does not interpose on the global OpenBLAS";
    EXPECT_EQ(c.info, 0);
    EXPECT_EQ(d.info, 0);
    EXPECT_EQ(std::memcmp(c.out.data(), d.out.data(), c.out.size() * sizeof(double)), 0);
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

    char uplo = 'L';
    int n = 3, info = 12345, info2 = 12345;
    auto single = spdMatrix<float>();
    auto twice = spdMatrix<double>();
    StdoutCapture capture;  // standard error goes there too while the adapter runs
    const int savedError = dup(2);
    dup2(1, 2);
    adapterSpotrf(&uplo, &n, single.data(), &n, &info);
    adapterSpotrf(&uplo, &n, single.data(), &n, &info);
    adapterDpotrf(&uplo, &n, twice.data(), &n, &info2);
    std::fflush(stderr);
    dup2(savedError, 2);
    close(savedError);
    const std::string output = capture.stop();

    EXPECT_EQ(info, 12345);
    EXPECT_EQ(info2, 12345);
    EXPECT_EQ(single, spdMatrix<float>());
    EXPECT_EQ(twice, spdMatrix<double>());
    const auto at = output.find(missing);
    EXPECT_NE(at, std::string::npos) << output;
    EXPECT_EQ(output.find('\n'), output.size() - 1) << "more than one line: " << output;
}
