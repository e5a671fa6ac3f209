// The emulator GPU library, called as the link library calls it: its info
// answers against OpenBLAS, the per-thread error info and its failure knobs. (Its
// results and its record: the family and start-up tests through the link library.)
#include <thread>

#include "tests/link/link_test.h"  // the matrices
#include "vorn_lapack.h"

// OpenBLAS, linked into this program, with gfortran's hidden lengths.
extern "C" void spotrf_(const char* uplo, const int* n, float* a, const int* lda, int* info, std::size_t);
extern "C" void dgeqlf_(const int* m, const int* n, double* a, const int* lda, double* tau, double* work,
                        const int* lwork, int* info);
extern "C" void cunmlq_(const char* side, const char* trans, const int* m, const int* n, const int* k,
                        const vornFloatComplex* a, const int* lda, const vornFloatComplex* tau, vornFloatComplex* c,
                        const int* ldc, vornFloatComplex* work, const int* lwork, int* info, std::size_t,
                        std::size_t);

namespace {

std::vector<float> referenceFactor(char uplo, int n, int lda, std::vector<float> a, int* info) {
    spotrf_(&uplo, &n, a.data(), &lda, info, 1);
    return a;
}

}  // namespace

// A routine's info becomes status 7 (numerical, LAPACK's partial factor left as
// on the CPU) or 8 (an argument, nothing touched), its value the thread's error
// info: another thread's answer leaves this one's alone, a fresh thread reads 0.
TEST(VornEmulator, InfoBecomesStatusSevenOrEightAndPerThreadErrorInfo) {
    ASSERT_EQ(vornInitialize(), VORN_STATUS_SUCCESS);
    auto a = spdMatrix(5, 5, 3);
    int info = 0;
    const auto expected = referenceFactor('L', 5, 5, a, &info);
    ASSERT_GT(info, 0);
    EXPECT_EQ(vornSpotrf('L', 5, a.data(), 5), VORN_STATUS_INFO_NUMERICAL);
    EXPECT_EQ(vornGetErrorInfo(), info);
    EXPECT_TRUE(sameBits(a, expected));

    float one = 1.0f;
    int otherStatus = 0, otherInfo = 0, freshInfo = -1;
    std::thread([&] {
        StdoutCapture quiet;  // OpenBLAS's xerbla message is not the subject here
        otherStatus = vornSpotrf('U', -1, &one, 1);
        otherInfo = vornGetErrorInfo();
    }).join();
    std::thread([&] { freshInfo = vornGetErrorInfo(); }).join();
    EXPECT_EQ(otherStatus, VORN_STATUS_INFO_ARGUMENT);
    EXPECT_EQ(otherInfo, -2);
    EXPECT_EQ(one, 1.0f);
    EXPECT_EQ(freshInfo, 0);
    EXPECT_EQ(vornGetErrorInfo(), info);
}

// VORN_EMU_STATUS forces a routine's status and info (name=status[:info], names
// compared whole) and leaves its array alone; without an entry of its own the
// routine computes.
TEST(VornEmulator, ForcedStatusesLeaveTheArrayAlone) {
    ASSERT_EQ(vornInitialize(), VORN_STATUS_SUCCESS);
    const auto original = spdMatrix(4, 5);
    int referenceInfo;
    const auto computed = referenceFactor('U', 4, 5, original, &referenceInfo);
    struct Case { const char* setting; int status, info; };
    for (const Case& c : {Case{"spotrf=4", 4, 0}, Case{"spotrf=7:5", 7, 5}, Case{"dgemm=4,spotrf=8:-1", 8, -1},
                          Case{"spotrf2=3,dspotrf=3,spotrf=6", 6, 0}, Case{"dgemm=4,spotrf2=3", 0, 0}}) {
        SCOPED_TRACE(c.setting);
        setEnv("VORN_EMU_STATUS", c.setting);
        auto a = original;
        EXPECT_EQ(vornSpotrf('U', 4, a.data(), 5), c.status);
        EXPECT_EQ(vornGetErrorInfo(), c.info);
        EXPECT_TRUE(sameBits(a, c.status == 0 ? computed : original));
    }
}

// A routine with workspace brings enough of it also where the CPU routine's
// query answers less than the call then asks for (a dimension of 0): calls that
// OpenBLAS takes with the workspace its documentation asks for.
TEST(VornEmulator, WorkspaceEnoughWhereAQueryAnswersTooLittle) {
    ASSERT_EQ(vornInitialize(), VORN_STATUS_SUCCESS);
    const int zero = 0, one = 1, three = 3, five = 5;
    std::vector<double> a(5), tau(5), work(5);
    int info = -99;
    dgeqlf_(&zero, &five, a.data(), &one, tau.data(), work.data(), &five, &info);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(vornDgeqlf(0, 5, a.data(), 1, tau.data()), VORN_STATUS_SUCCESS);
    std::vector<vornFloatComplex> ca(9), ctau(3), c(15), cwork(5);
    cunmlq_("L", "C", &three, &five, &zero, ca.data(), &three, ctau.data(), c.data(), &three, cwork.data(), &five,
            &info, 1, 1);
    ASSERT_EQ(info, 0);
    EXPECT_EQ(vornCunmlq('L', 'C', 3, 5, 0, ca.data(), 3, ctau.data(), c.data(), 3), VORN_STATUS_SUCCESS);
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
