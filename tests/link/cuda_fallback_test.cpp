// The link library over the CUDA GPU library on a machine without a GPU (ctest
// puts the CUDA library first on LD_LIBRARY_PATH): the start-up failure is logged
// with the CUDA library's own text, and a routed routine still gives OpenBLAS's
// results, on the CPU, even when told to prefer the GPU. (That every routed
// routine takes the same route when the GPU library is unavailable: the route
// predicate test.)
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "link_test.h"

TEST(CudaFallback, StartFailureIsLoggedAndTheCpuComputes) {
    const std::string log = useLogFile();
    setEnv("VORN_GPU_ALWAYS", "1");
    const int n = 8;
    auto a = spdMatrix(n), expected = a;
    int info = -1, expectedInfo = -1;
    spotrf("U", &n, a.data(), &n, &info);
    const auto lines = readLines(log);
    ASSERT_FALSE(lines.empty());
    if (lines[0].rfind("vorn error: vornInitialize failed", 0) != 0) GTEST_SKIP() << "a GPU is present";
    EXPECT_EQ(lines[0].rfind("vorn error: vornInitialize failed (no usable GPU: the CUDA runtime reports: ", 0), 0u)
        << lines[0];
    EXPECT_EQ(lines.at(1), "vorn info:  forwarding all calls to CPU");
    EXPECT_THAT(linesStartingWith(lines, "vorn info:  issuing"),
                testing::ElementsAre("vorn info:  issuing to CPU (vorn not available)"));
    using FortranSpotrf = void (*)(const char*, const int*, float*, const int*, int*, std::size_t);
    auto openblasSpotrf = reinterpret_cast<FortranSpotrf>(librarySymbol(openLibrary("libopenblas.so.0"), "spotrf_"));
    openblasSpotrf("U", &n, expected.data(), &n, &expectedInfo, 1);
    EXPECT_EQ(info, expectedInfo);
    EXPECT_EQ(a, expected);
}
