// spotrf through the routed frame: the crossover, each GPU status, the retry on
// the CPU, the failure exits, and results equal to the reference's (OpenBLAS's on Linux) on both sides.
#include <gtest/gtest.h>

#include "link_test.h"

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace {

struct Call {
    std::vector<float> a;
    int info;
};

Call callSpotrf(char uplo, int n, int lda, bool definite = true, int k = 2) {
    Call call{spdMatrix(n, lda, definite, k), 77};
    spotrf(&uplo, &n, call.a.data(), &lda, &call.info);
    return call;
}

}  // namespace

// Below the crossover the CPU runs the routine, at and above it the GPU; both give
// the reference's bits.
TEST(Spotrf, CrossoverDecidesTheSide) {
    const std::string log = useLogFile();
    const std::string record = useRecord();
    struct Case {
        int n;
        char uplo;
        const char* issuing;
        bool onGpu;
    };
    const Case cases[] = {{spotrfCrossover - 1, 'L', "vorn info:  issuing to CPU (under threshold)", false},
                          {spotrfCrossover, 'U', "vorn info:  issuing to GPU (over threshold)", true},
                          {spotrfCrossover + 1, 'L', "vorn info:  issuing to GPU (over threshold)", true},
                          {0, 'U', "vorn info:  issuing to CPU (under threshold)", false}};
    std::vector<std::string> expectedLog, expectedRecord{"vornInitialize()"};
    bool cpuNamed = false;
    for (const Case& c : cases) {
        const int lda = c.n + 3;
        int referenceInfo;
        const auto reference = referenceFactor(c.uplo, c.n, lda, spdMatrix(c.n, lda), &referenceInfo);
        const Call call = callSpotrf(c.uplo, c.n, lda);
        EXPECT_EQ(call.info, 0);
        EXPECT_TRUE(sameBits(call.a, reference)) << "n = " << c.n;
        expectedLog.push_back(spotrfEntryLine(c.uplo, c.n, call.a.data(), lda));
        expectedLog.push_back(c.issuing);
        if (!c.onGpu && !cpuNamed) {
            expectedLog.push_back(cpuLibraryLine);
            cpuNamed = true;
        }
        expectedLog.push_back("vorn info:  done");
        if (c.onGpu) expectedRecord.push_back(emulatorSpotrfLine(c.uplo, c.n, call.a.data(), lda));
    }
    EXPECT_THAT(readLines(log), ElementsAreArray(expectedLog));
    EXPECT_THAT(readLines(record), ElementsAreArray(expectedRecord));
}

// A matrix that is not positive definite: the GPU library answers with status 7
// and its info, which is OpenBLAS's, and the CPU is not asked.
TEST(Spotrf, GpuAnswerBecomesInfo) {
    const std::string log = useLogFile();
    const int n = 1100;
    int referenceInfo;
    const auto reference = referenceFactor('L', n, n, spdMatrix(n, n, false, 5), &referenceInfo);
    ASSERT_EQ(referenceInfo, 5);
    Call call{spdMatrix(n, n, false, 5), 77};
    spotrf("L", &n, call.a.data(), &n, &call.info);
    EXPECT_EQ(call.info, 5);
    EXPECT_TRUE(sameBits(call.a, reference));
    EXPECT_THAT(readLines(log), ElementsAre(spotrfEntryLine('L', n, call.a.data(), n),
                                            "vorn info:  issuing to GPU (over threshold)",
                                            "vorn info:  info returned as 5", "vorn info:  done"));
}

// Statuses 7 and 8 forced with and without an info value.
struct AnswerCase {
    const char* status;
    int info;
    friend void PrintTo(const AnswerCase& c, std::ostream* out) { *out << "VORN_EMU_STATUS=" << c.status; }
};
class GpuAnswer : public testing::TestWithParam<AnswerCase> {};
TEST_P(GpuAnswer, SetsInfoWithoutTheCpu) {
    const std::string log = useLogFile();
    setEnv("VORN_EMU_STATUS", GetParam().status);
    const Call call = callSpotrf('U', 1500, 1500);
    EXPECT_EQ(call.info, GetParam().info);
    EXPECT_TRUE(sameBits(call.a, spdMatrix(1500, 1500)));  // forced answers touch nothing
    std::vector<std::string> expected{spotrfEntryLine('U', 1500, call.a.data(), 1500),
                                      "vorn info:  issuing to GPU (over threshold)"};
    if (GetParam().info != 0) expected.push_back("vorn info:  info returned as " + std::to_string(GetParam().info));
    expected.push_back("vorn info:  done");
    EXPECT_THAT(readLines(log), ElementsAreArray(expected));
}
INSTANTIATE_TEST_SUITE_P(Statuses, GpuAnswer,
                         testing::Values(AnswerCase{"spotrf=7:3", 3}, AnswerCase{"spotrf=8:-4", -4},
                                         AnswerCase{"spotrf=7:0", 0}, AnswerCase{"spotrf=8", 0}));

// Any other status is a failure: two error lines, then the CPU computes the result.
TEST(Spotrf, GpuFailureIsRetriedOnTheCpu) {
    const std::string log = useLogFile();
    setEnv("VORN_EMU_STATUS", "spotrf=4");
    int referenceInfo;
    const auto reference = referenceFactor('U', 1100, 1100, spdMatrix(1100, 1100), &referenceInfo);
    const Call call = callSpotrf('U', 1100, 1100);
    EXPECT_EQ(call.info, 0);
    EXPECT_TRUE(sameBits(call.a, reference));
    EXPECT_THAT(readLines(log), ElementsAre(spotrfEntryLine('U', 1100, call.a.data(), 1100),
                                            "vorn info:  issuing to GPU (over threshold)",
                                            "vorn error: GPU runtime error", "vorn error: Retrying with CPU",
                                            "vorn info:  issuing to CPU (retrying on GPU error)",
                                            cpuLibraryLine, "vorn info:  done"));
}

TEST(Spotrf, RetriedCallReportsTheCpuInfo) {
    const std::string log = useLogFile();
    setEnv("VORN_EMU_STATUS", "spotrf=3");
    const Call call = callSpotrf('L', 1200, 1200, false, 9);
    EXPECT_EQ(call.info, 9);
    const auto lines = readLines(log);
    EXPECT_THAT(std::vector<std::string>(lines.end() - 3, lines.end()),
                ElementsAre(cpuLibraryLine, "vorn info:  info returned as 9",
                            "vorn info:  done"));
}

// With verbose off only the error lines are written.
TEST(Spotrf, VerboseOffWritesOnlyErrorLines) {
    setEnv("VORN_EMU_STATUS", "spotrf=2");
    StdoutCapture capture;
    const Call call = callSpotrf('L', 1100, 1100);
    EXPECT_EQ(call.info, 0);
    EXPECT_EQ(capture.stop(),
              "vorn error: routine not available on this GPU library\n"
              "vorn error: Retrying with CPU\n");
}

// A retry that cannot reach the CPU library leaves by exit F1: info 0, no "done".
TEST(Spotrf, RetryWithoutCpuLibraryReturnsQuietly) {
    const std::string log = useLogFile();
    setEnv("VORN_EMU_STATUS", "spotrf=4");
    setEnv("VORN_CPU_LIB", "libvorn-no-such-library.so");
    const Call call = callSpotrf('L', 1100, 1100);
    EXPECT_EQ(call.info, 0);
    EXPECT_TRUE(sameBits(call.a, spdMatrix(1100, 1100)));
    const auto lines = readLines(log);
    EXPECT_THAT(std::vector<std::string>(lines.end() - 2, lines.end()),
                ElementsAre("vorn info:  CPU library is libvorn-no-such-library.so",
                            "vorn error: failed to read 'libvorn-no-such-library.so'"));
}

// The CPU library's BLAS never calls back into the link library, although this
// process has OpenBLAS loaded and the link library exports LAPACK names: one call,
// one entry line.
TEST(Spotrf, CpuSideCallIsNotReentered) {
    const std::string log = useLogFile();
    const Call call = callSpotrf('U', 700, 700);
    EXPECT_EQ(call.info, 0);
    const auto lines = readLines(log);
    EXPECT_EQ(linesStartingWith(lines, "vorn info:  spotrf (").size(), 1u);
    EXPECT_EQ(linesStartingWith(lines, "vorn info:  done").size(), 1u);
}
