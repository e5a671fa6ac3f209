// The link library over the CUDA GPU library on a machine without a GPU (ctest
// puts the CUDA library first on LD_LIBRARY_PATH): the start-up failure is logged
// with the CUDA library's own text, and a routed routine still gives OpenBLAS's
// results, on the CPU, even when told to prefer the GPU. (That every routed
// routine takes the same route when the GPU library is unavailable: the route
// predicate test.)
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "core/platform.h"
#include "link_test.h"

extern "C" void dgetrf(const void* m, const void* n, double* a, const void* lda, int* ipiv, int* info);

TEST(CudaFallback, StartFailureIsLoggedAndTheCpuComputes) {
    const std::string log = useLogFile();
    setEnv("VORN_GPU_ALWAYS", "1");
    const int n = 8;
    std::vector<double> a(n * n);
    for (int i = 0; i < n * n; ++i) a[i] = (i % 7) - 3.0 + (i % (n + 1) == 0 ? 9.0 : 0.0);
    using Dgetrf = void (*)(const int*, const int*, double*, const int*, int*, int*);
    auto referenceGetrf = reinterpret_cast<Dgetrf>(
        platformFindSymbol(platformLoadIsolatedLibrary("libopenblas.so.0"), "dgetrf_"));
    ASSERT_NE(referenceGetrf, nullptr);

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
    EXPECT_THAT(linesStartingWith(readLines(log), "vorn info:  issuing"),
                testing::ElementsAre("vorn info:  issuing to CPU (vorn not available)"));
}
