// The link library over the CUDA GPU library on a machine without a GPU (ctest
// puts the CUDA library first on LD_LIBRARY_PATH): the start-up failure is logged
// with the CUDA library's own text, and routed routines still give OpenBLAS's
// results, on the CPU, even when told to prefer the GPU.
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "core/platform.h"
#include "link_test.h"

extern "C" void dgetrf(const void* m, const void* n, double* a, const void* lda, int* ipiv, int* info);
extern "C" void dgemm(const char* transa, const char* transb, const void* m, const void* n, const void* k,
                      const double* alpha, const double* a, const void* lda, const double* b, const void* ldb,
                      const double* beta, double* c, const void* ldc);

TEST(CudaFallback, StartFailureIsLoggedAndTheCpuComputes) {
    const std::string log = useLogFile();
    setEnv("VORN_GPU_ALWAYS", "1");
    const int n = 8;
    std::vector<double> a(n * n), b(n * n), c(n * n, 0.5);
    for (int i = 0; i < n * n; ++i) a[i] = b[i] = (i % 7) - 3.0 + (i % (n + 1) == 0 ? 9.0 : 0.0);
    void* openblas = platformLoadIsolatedLibrary("libopenblas.so.0");
    using Dgetrf = void (*)(const int*, const int*, double*, const int*, int*, int*);
    using Dgemm = void (*)(const char*, const char*, const int*, const int*, const int*, const double*, const double*,
                           const int*, const double*, const int*, const double*, double*, const int*, std::size_t,
                           std::size_t);
    auto referenceGetrf = reinterpret_cast<Dgetrf>(platformFindSymbol(openblas, "dgetrf_"));
    auto referenceGemm = reinterpret_cast<Dgemm>(platformFindSymbol(openblas, "dgemm_"));
    ASSERT_NE(referenceGetrf, nullptr);
    ASSERT_NE(referenceGemm, nullptr);

    auto factors = a, expectedFactors = a;
    std::vector<int> ipiv(n), expectedIpiv(n);
    int info = -1, expectedInfo = -1;
    dgetrf(&n, &n, factors.data(), &n, ipiv.data(), &info);
    const auto lines = readLines(log);
    ASSERT_FALSE(lines.empty());
    if (lines[0].rfind("vorn error: vornInitialize failed", 0) != 0) GTEST_SKIP() << "a GPU is present";
    EXPECT_EQ(lines[0].rfind("vorn error: vornInitialize failed (no usable GPU: the CUDA runtime reports: ", 0), 0u)
        << lines[0];
    EXPECT_EQ(lines.at(1), "vorn info:  forwarding all calls to CPU");
    referenceGetrf(&n, &n, expectedFactors.data(), &n, expectedIpiv.data(), &expectedInfo);
    EXPECT_EQ(info, expectedInfo);
    EXPECT_EQ(ipiv, expectedIpiv);
    EXPECT_EQ(factors, expectedFactors);

    auto expectedC = c;
    const double alpha = 1.5, beta = -0.5;
    dgemm("N", "T", &n, &n, &n, &alpha, a.data(), &n, b.data(), &n, &beta, c.data(), &n);
    referenceGemm("N", "T", &n, &n, &n, &alpha, a.data(), &n, b.data(), &n, &beta, expectedC.data(), &n, 1, 1);
    EXPECT_EQ(c, expectedC);
    EXPECT_EQ(linesStartingWith(readLines(log), "vorn info:  issuing to CPU (vorn not available)").size(), 2u);
}
