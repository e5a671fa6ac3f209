// The CUDA GPU library over the CPU stand-in for the CUDA run-time, cuBLAS and
// cuSOLVER (libcuda_stand_in.so), which can make any copy, computation, wait or
// allocation fail on request and counts them. A failure anywhere before the copy
// back, or anywhere at all when the outputs fit in the staging slots, leaves the
// caller's arrays as they were, and the next call works; steady-state calls
// allocate no device memory; running out of GPU memory touches nothing.
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <vector>

#include "stand_in.h"
#include "test_support.h"
#include "vorn_lapack.h"

namespace {

// One call on fixed arrays: small staging slots, so that every operand moves in
// several chunks and the failures land between them.
struct Case {
    const char* name;
    std::function<int(std::vector<double>&, std::vector<int>&)> call;
};
constexpr int n = 24;

std::vector<double> arrays() {
    std::vector<double> a(4 * n * n);
    for (std::size_t i = 0; i < a.size(); ++i) a[i] = double((i * 7919) % 1009) / 1009.0 + (i % (n + 1) == 0 ? n : 0);
    return a;
}

const std::vector<Case>& cases() {
    static const std::vector<Case> all = {
        {"dgemm", [](auto& a, auto&) { return vornDgemm('N', 'T', n, n, n, 1, a.data(), n, a.data() + n * n, n, 0.5,
                                                        a.data() + 2 * n * n, n); }},
        {"dgetrf", [](auto& a, auto& p) { return vornDgetrf(n, n, a.data(), n, p.data()); }},
        {"zgesv", [](auto& a, auto& p) {
             auto* z = reinterpret_cast<vornDoubleComplex*>(a.data());
             return vornZgesv(n / 2, 3, z, n / 2, p.data(), z + n * n, n / 2);
         }},
        {"dsgesv", [](auto& a, auto& p) { return vornDsgesv(n, 2, a.data(), n, p.data(), a.data() + n * n, n,
                                                            a.data() + 2 * n * n, n, a.data() + 3 * n * n); }},
        {"zherk", [](auto& a, auto&) {
             auto* z = reinterpret_cast<vornDoubleComplex*>(a.data());
             return vornZherk('L', 'C', n / 2, n, 1, z, n, 0.5, z + n * n, n / 2);
         }},
    };
    return all;
}

// Runs a case once and counts the stand-in's calls of each kind that it makes.
std::map<std::string, long> countsOf(const Case& c) {
    std::map<std::string, long> counts;
    for (const char* kind : {"toDevice", "compute", "toHost", "wait"}) counts[kind] = -cudaStandInCount(kind);
    auto a = arrays();
    std::vector<int> p(n, 0);
    EXPECT_EQ(c.call(a, p), 0) << c.name;
    for (auto& [kind, count] : counts) count += cudaStandInCount(kind.c_str());
    return counts;
}

// A failure of the nth call of a kind gives a failure status with the arrays as
// they were; or, for a failure after the results were written (the wait before
// unpinning), success with the right answer. Either way the next call works and
// gives the answer of a call that never failed.
void expectFailureLeavesArrays(const Case& c, const char* kind, int nth, bool mayComeAfter = false) {
    auto a = arrays(), clean = arrays();
    std::vector<int> p(n, -3), q(n, -3);
    const auto aBefore = a;
    const auto pBefore = p;
    ASSERT_EQ(c.call(clean, q), 0);
    cudaStandInFailAt(kind, nth);
    const int status = c.call(a, p);
    cudaStandInFailAt(kind, 0);
    const std::string where = std::string(c.name) + ", " + kind + " " + std::to_string(nth);
    if (status == 0 && mayComeAfter) {
        EXPECT_TRUE(a == clean && p == q) << where;
    } else {
        EXPECT_EQ(status, VORN_STATUS_RUNTIME_ERROR) << where << ": " << vornGetStatusString(status);
        EXPECT_TRUE(a == aBefore) << where;
        EXPECT_TRUE(p == pBefore) << where;
    }
    auto again = arrays();
    std::vector<int> r(n, -3);
    EXPECT_EQ(c.call(again, r), 0) << where;
    EXPECT_TRUE(again == clean && r == q) << where;
}

}  // namespace

class CudaStandIn : public testing::TestWithParam<const char*> {};

TEST_P(CudaStandIn, FailuresBeforeTheCopyBackLeaveTheArraysUntouched) {
    setEnv("VORN_CUDA_TRANSFER", GetParam());
    setEnv("VORN_CUDA_STAGING_BYTES", "1000");
    ASSERT_EQ(vornInitialize(), 0);
    for (const Case& c : cases()) {
        auto counts = countsOf(c);
        ASSERT_GT(counts["toDevice"], 0);
        ASSERT_GT(counts["compute"], 0);
        for (int i = 1; i <= counts["toDevice"]; ++i) expectFailureLeavesArrays(c, "toDevice", i);
        for (int i = 1; i <= counts["compute"]; ++i) expectFailureLeavesArrays(c, "compute", i);
        expectFailureLeavesArrays(c, "wait", 1);
        // The info word comes back first, then the first chunk of the first output.
        expectFailureLeavesArrays(c, "toHost", 1);
        expectFailureLeavesArrays(c, "toHost", 2);
    }
}
INSTANTIATE_TEST_SUITE_P(TransferModes, CudaStandIn, testing::Values("staged", "registered", "pageable"));

// Outputs that fit in the staging slots come back all at once: any copy back or
// wait may fail, up to the last, and the arrays stay as they were.
TEST_P(CudaStandIn, OutputsThatFitInStagingComeBackAllOrNothing) {
    setEnv("VORN_CUDA_TRANSFER", GetParam());
    ASSERT_EQ(vornInitialize(), 0);
    for (const Case& c : cases()) {
        auto counts = countsOf(c);
        ASSERT_GT(counts["toHost"], 1);
        for (int i = 1; i <= counts["toHost"]; ++i) expectFailureLeavesArrays(c, "toHost", i);
        for (int i = 1; i <= counts["wait"]; ++i) expectFailureLeavesArrays(c, "wait", i, true);
    }
}

// The workspace grows to the largest call and stays: calls of that size or
// smaller allocate nothing. A failed allocation of the grown size falls back to
// the size needed; a failed allocation of that, or a workspace over
// VORN_CUDA_MAX_DEVICE_BYTES, is "out of GPU memory" and touches nothing. So does
// gbtrf, which is never computed here.
TEST(CudaStandInWorkspace, NoDeviceAllocationPerCallInSteadyState) {
    setEnv("VORN_CUDA_MAX_DEVICE_BYTES", "2097152");
    ASSERT_EQ(vornInitialize(), 0);
    auto a = arrays();
    std::vector<int> p(n, 7);
    const Case& gemm = cases()[0];
    ASSERT_EQ(gemm.call(a, p), 0);
    const long afterFirst = cudaStandInCount("allocate");
    EXPECT_EQ(afterFirst, 1);
    for (int i = 0; i < 5; ++i) ASSERT_EQ(gemm.call(a, p), 0);
    ASSERT_EQ(cases()[1].call(a, p), 0);  // smaller
    EXPECT_EQ(cudaStandInCount("allocate"), afterFirst);

    auto gemmOf = [](int m, int status) {  // on three m x m matrices in one array
        std::vector<double> abc(3 * m * m, 0.25);
        const auto before = abc;
        EXPECT_EQ(vornDgemm('N', 'N', m, m, m, 1, abc.data(), m, abc.data() + m * m, m, 0, abc.data() + 2 * m * m, m),
                  status) << m;
        EXPECT_TRUE(status == 0 || abc == before) << m;
    };
    cudaStandInFailAt("allocate", 1);
    gemmOf(96, 0);
    EXPECT_EQ(cudaStandInCount("allocate"), afterFirst + 2);
    cudaStandInFailAt("allocate", 1);
    cudaStandInFailAt("allocate", 2);
    gemmOf(200, VORN_STATUS_OUT_OF_MEMORY);
    gemmOf(300, VORN_STATUS_OUT_OF_MEMORY);  // 2,160,256 bytes, over the limit: no allocation tried
    EXPECT_EQ(cudaStandInCount("allocate"), afterFirst + 4);
    EXPECT_NE(std::string(vornGetStatusString(VORN_STATUS_OUT_OF_MEMORY)).find("VORN_CUDA_MAX_DEVICE_BYTES"),
              std::string::npos);

    const auto aBefore = a;
    const auto pBefore = p;
    EXPECT_EQ(vornDgbtrf(n, n, 1, 1, a.data(), n, p.data()), VORN_STATUS_NOT_AVAILABLE);
    EXPECT_TRUE(a == aBefore && p == pBefore);
}
