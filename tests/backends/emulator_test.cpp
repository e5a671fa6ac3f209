// The emulator GPU library, called as the link library calls it: its info
// answers against OpenBLAS, its failure knobs and the per-thread error info. (Its
// results and its record: the family and start-up tests through the link library.)
#include <cstddef>
#include <cstring>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "test_support.h"
#include "vorn_lapack.h"

// OpenBLAS, linked into this program, with gfortran's hidden length.
extern "C" void spotrf_(const char* uplo, const int* n, float* a, const int* lda, int* info, std::size_t);

namespace {

// A column-major n x n matrix with leading dimension lda (padding rows -7):
// symmetric positive definite, or with a negative (k,k) element where k > 0.
std::vector<float> spdMatrix(int n, int lda, int k = 0) {
    std::vector<float> a(std::size_t(lda) * n, -7.0f);
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) a[i + std::size_t(j) * lda] = i == j ? float(n) : 1.0f / float(1 + std::abs(i - j));
    if (k > 0) a[(k - 1) + std::size_t(k - 1) * lda] = -1.0f;
    return a;
}

std::vector<float> referenceFactor(char uplo, int n, int lda, std::vector<float> a, int* info) {
    spotrf_(&uplo, &n, a.data(), &lda, info, 1);
    return a;
}

bool sameBits(const std::vector<float>& x, const std::vector<float>& y) {
    return x.size() == y.size() && std::memcmp(x.data(), y.data(), x.size() * sizeof(float)) == 0;
}

}  // namespace

TEST(VornEmulator, InfoBecomesStatusSevenOrEight) {
    ASSERT_EQ(vornInitialize(), VORN_STATUS_SUCCESS);
    const int n = 5, lda = 5;
    auto a = spdMatrix(n, lda, 3);
    int info = 0;
    const auto expected = referenceFactor('L', n, lda, a, &info);
    ASSERT_GT(info, 0);
    EXPECT_EQ(vornSpotrf('L', n, a.data(), lda), VORN_STATUS_INFO_NUMERICAL);
    EXPECT_EQ(vornGetErrorInfo(), info);
    EXPECT_TRUE(sameBits(a, expected));  // LAPACK's partial factor, as on the CPU

    float one = 1.0f;
    StdoutCapture quiet;  // OpenBLAS's xerbla message is not the subject here
    EXPECT_EQ(vornSpotrf('U', -1, &one, 1), VORN_STATUS_INFO_ARGUMENT);
    quiet.stop();
    EXPECT_EQ(vornGetErrorInfo(), -2);
    EXPECT_EQ(one, 1.0f);
}

TEST(VornEmulator, ForcedStatusesLeaveTheArrayAlone) {
    ASSERT_EQ(vornInitialize(), VORN_STATUS_SUCCESS);
    const int n = 4, lda = 5;
    const auto original = spdMatrix(n, lda);
    struct Case { const char* setting; int status, info; };
    for (const Case& c : {Case{"spotrf=4", 4, 0}, Case{"spotrf=7:5", 7, 5}, Case{"dgemm=4,spotrf=8:-1", 8, -1},
                          Case{"spotrf2=3,dspotrf=3,spotrf=6", 6, 0}}) {
        SCOPED_TRACE(c.setting);
        setEnv("VORN_EMU_STATUS", c.setting);
        auto a = original;
        EXPECT_EQ(vornSpotrf('U', n, a.data(), lda), c.status);
        EXPECT_EQ(vornGetErrorInfo(), c.info);
        EXPECT_TRUE(sameBits(a, original));
    }
    // Entries for other routines only: spotrf computes.
    setEnv("VORN_EMU_STATUS", "dgemm=4,spotrf2=3");
    auto a = original;
    int info = -99;
    const auto expected = referenceFactor('U', n, lda, a, &info);
    EXPECT_EQ(vornSpotrf('U', n, a.data(), lda), VORN_STATUS_SUCCESS);
    EXPECT_TRUE(sameBits(a, expected));
}

TEST(VornEmulator, InitializeWithoutTheCpuLibraryFails) {
    setEnv("VORN_EMU_CPU_LIB", tempPath("no-such-lapackcpu.so"));
    EXPECT_EQ(vornInitialize(), VORN_STATUS_DEPENDENCY_MISSING);
    float one = 1.0f;
    const int status = vornSpotrf('U', 1, &one, 1);  // a failure, not an answer
    EXPECT_TRUE(status != VORN_STATUS_SUCCESS && status != VORN_STATUS_INFO_NUMERICAL &&
                status != VORN_STATUS_INFO_ARGUMENT) << status;
    EXPECT_EQ(one, 1.0f);
}

TEST(VornEmulator, ErrorInfoIsPerThread) {
    ASSERT_EQ(vornInitialize(), VORN_STATUS_SUCCESS);
    auto a = spdMatrix(4, 4, 2);
    ASSERT_EQ(vornSpotrf('U', 4, a.data(), 4), VORN_STATUS_INFO_NUMERICAL);
    ASSERT_EQ(vornGetErrorInfo(), 2);

    int otherStatus = -1, otherInfo = 0, freshInfo = -1;
    std::thread other([&] {
        auto b = spdMatrix(5, 5, 4);
        otherStatus = vornSpotrf('L', 5, b.data(), 5);
        otherInfo = vornGetErrorInfo();
    });
    other.join();
    std::thread fresh([&] { freshInfo = vornGetErrorInfo(); });
    fresh.join();

    EXPECT_EQ(otherStatus, VORN_STATUS_INFO_NUMERICAL);
    EXPECT_EQ(otherInfo, 4);
    EXPECT_EQ(freshInfo, 0);
    EXPECT_EQ(vornGetErrorInfo(), 2);
}
