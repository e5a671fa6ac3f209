// The route of one pass: which reason wins, and that the side a reason names is
// the side the frame takes. (The words of each reason's line, and that verbose
// off writes none, are held in the tests that meet each reason in a real call:
// the frame tests below, the link and the export tests.)
// The routed frame for rows of class A (no info) and class C (info and a work
// query), over a fake GPU library defined here and the recording CPU library:
// the GPU statuses and info, work queries, the failure exits, info in LP64 and
// ILP64 mode, and the exact log lines of each. The routing of each routine, its
// measure and its results are the family tests' (tests/link).
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "core/link_state.h"
#include "recording_cpu.h"
#include "routines/routed/lu_rows.h"
#include "routines/routed/multiply_rank_update_rows.h"
#include "routing/issue_reason.h"
#include "routing/routed_frame.h"
#include "test_support.h"

using Lines = std::vector<std::string>;
using Words = std::vector<void*>;

template <class... T>
static std::string text(const char* format, T... values) {
    char buffer[512];
    std::snprintf(buffer, sizeof buffer, format, values...);
    return buffer;
}

// The fake GPU library: every answer is set by the test, and the routines count
// their calls. (The by-value arguments that a GPU routine gets are the family
// tests', in the emulator's record.)
static struct {
    int initStatus = 0, status = 0, errorInfo = 0, calls = 0;
} gpu;

int vornInitialize() { return gpu.initStatus; }
void vornShutdown() {}
const char* vornGetStatusString(int status) {
    static std::string words;
    return (words = text("fake failure %d", status)).c_str();
}
int vornGetErrorInfo() { return gpu.errorInfo; }

namespace {

int gpuCall() { return ++gpu.calls, gpu.status; }
int fakeDgemm(char, char, int, int, int, double, double*, int, double*, int, double, double*, int) { return gpuCall(); }
int fakeDgetri(int, double*, int, int*) { return gpuCall(); }
int fakeSsyevd(char, char, int, float*, int, float*) { return gpuCall(); }

// Rows: gemm (class A) and getri (class C, one real work line) as the families
// define them, and a row shaped like syevd: 11 words, class C, a real and an
// integer work line.
struct syevdShape {
    enum : int { jobz = 1, uplo, n, a, lda, w, work, lwork, iwork, liwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Chr<jobz>, Chr<uplo>, Int<n>, Ptr<a>, Int<lda>, Ptr<w>>;
    using WorkLines = ::WorkLines<WorkReal<work>, WorkInt<iwork>>;
    static int32_t measure(CallWords words) { return words.integer(n); }
};

using Dgemm = RoutedRoutine<"dfakegemm", gemm<Real>, fakeDgemm, &CrossoverTable::spotrf>;
using Dgetri = RoutedRoutine<"dfakegetri", getri, fakeDgetri, &CrossoverTable::spotrf>;
using Ssyevd = RoutedRoutine<"sfakesyevd", syevdShape, fakeSsyevd, &CrossoverTable::spotrf>;
// A row whose name the CPU library does not export.
using Dmissing = RoutedRoutine<"dfakemissing", getri, fakeDgetri, &CrossoverTable::spotrf>;

// Callers' arguments. Integers are 64 bits wide so that the same calls serve ILP64
// mode; info starts with a pattern in both halves, and a LP64 call must keep the
// high one.
constexpr int64_t presetInfo = 0x7777777777777777;
constexpr uint32_t presetHigh = 0x77777777;
int32_t low(int64_t v) { return static_cast<int32_t>(v); }
uint32_t high(int64_t v) { return static_cast<uint32_t>(static_cast<uint64_t>(v) >> 32); }

struct GemmCall {
    int64_t m, n, k, lda = 2, ldb = 3, ldc = 4;
    char transa = 'N', transb = 'T';
    double alpha = 1.5, beta = 0.5, a[4]{}, b[4]{}, c[4]{};
    Words words() { return {&transa, &transb, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc}; }
};
struct GetriCall {
    int64_t n, lwork, lda = 5, ipiv[4]{}, info = presetInfo;
    double a[4]{}, work[2]{};
    Words words() { return {&n, a, &lda, ipiv, work, &lwork, &info}; }
    std::string entry(const char* name = "dfakegetri") {
        return text("vorn info:  %s (%d, %p, 5, %p)", name, low(n), a, ipiv);
    }
};
struct SyevdCall {
    int64_t n, lwork, lda = 3, iwork[2]{}, liwork = -1, info = presetInfo;
    char jobz = 'V', uplo = 'L';
    float a[4]{}, w[2]{}, work[2]{};
    Words words() { return {&jobz, &uplo, &n, a, &lda, w, work, &lwork, iwork, &liwork, &info}; }
    std::string entry() { return text("vorn info:  sfakesyevd (V, L, %d, %p, 3, %p)", low(n), a, w); }
};

template <class Row, class Call>
void run(Call& call) {
    Words words = call.words();
    routedFrame<Row>(CallWords{words.data()});
}

CpuRecord& cpu = *recordingCpu();
Words cpuWords() { return Words(cpu.words, cpu.words + cpu.wordCount); }

// The log file, read a call at a time.
class Log {
    std::string path_ = tempPath("vorn.log");
    std::size_t seen_ = 0;

public:
    Log() { setEnv("VORN_DEBUG_LOG", path_); }
    Lines next() {
        Lines all = readLines(path_);
        Lines fresh(all.begin() + seen_, all.end());
        seen_ = all.size();
        return fresh;
    }
};

// Starts both back ends over the recording CPU library.
void startUp() {
    setEnv("VORN_CPU_LIB", RECORDING_CPU_PATH);
    linkInitGpu();
    linkInitCpu();
    crossoverTable.spotrf = 1024;
}

// The tests of class C, each in LP64 and in ILP64 mode, after the start-up, so
// that each case sees only its own lines. In ILP64 mode the CPU routine writes
// the high half of info too: there the high half is 0 at every return; in LP64
// mode it is never touched.
class FrameClassC : public testing::TestWithParam<bool> {
protected:
    Log log;
    void SetUp() override {
        if (GetParam()) setEnv("VORN_ILP64", "1");
        cpu.infoHigh = GetParam() ? 0x5a5a5a5a : 0;
        startUp();
        log.next();
    }
    void expectInfo(int64_t info, int32_t value) {
        EXPECT_EQ(low(info), value);
        EXPECT_EQ(high(info), GetParam() ? 0u : presetHigh);
    }
};
INSTANTIATE_TEST_SUITE_P(Integers, FrameClassC, testing::Bool(),
                         [](const auto& info) { return info.param ? "Ilp64" : "Lp64"; });

const std::string issuing = "vorn info:  issuing to ", done = "vorn info:  done";
Lines operator+(Lines a, const Lines& b) { return a.insert(a.end(), b.begin(), b.end()), a; }
// The lines of a failed GPU call up to the second pass's issuing line.
Lines retried(int status) {
    return {text("vorn error: fake failure %d", status), "vorn error: Retrying with CPU",
            issuing + "CPU (retrying on GPU error)"};
}

// The conditions in order of precedence, each with the reason it gives.
struct Rule {
    bool RouteState::*flag;
    IssueReason reason;
};
constexpr Rule rules[] = {
    {&RouteState::gpuUnavailable, ReasonGpuUnavailable}, {&RouteState::retry, ReasonGpuRetry},
    {&RouteState::workQuery, ReasonWorkQuery},           {&RouteState::excluded, ReasonExcluded},
    {&RouteState::cpuAlways, ReasonCpuAlways},           {&RouteState::gpuAlways, ReasonGpuAlways},
    {&RouteState::underCrossover, ReasonUnderThreshold},
};
constexpr int ruleCount = sizeof rules / sizeof rules[0];

RouteState stateOf(unsigned bits) {
    RouteState state{};
    for (int i = 0; i < ruleCount; ++i) state.*rules[i].flag = (bits >> i) & 1;
    return state;
}

}  // namespace

// Over all 128 states: the reason is the first rule that holds in the order of
// precedence (over the threshold when none does), and the side word of that
// reason is GPU exactly when the pass goes on to the GPU.
TEST(RoutePredicate, ReasonAndSideAgreeInEveryState) {
    for (unsigned bits = 0; bits < (1u << ruleCount); ++bits) {
        const RouteState state = stateOf(bits);
        IssueReason expected = ReasonOverThreshold;
        for (int i = ruleCount - 1; i >= 0; --i)
            if (state.*rules[i].flag) expected = rules[i].reason;
        const IssueReason reason = linkChooseReason(state);
        EXPECT_EQ(reason, expected) << "state bits " << bits;
        const bool gpuSide = reason == ReasonGpuAlways || reason == ReasonOverThreshold;
        EXPECT_EQ(linkRouteToGpu(state), gpuSide) << "state bits " << bits;
        EXPECT_STREQ(linkReasonSide(reason), gpuSide ? "GPU" : "CPU") << "state bits " << bits;
    }
}

// A work query (lwork of -1 and nothing else) goes to the CPU whatever the
// settings, and reports info first, then each work array's first element in the
// table's order, truncated towards zero in the row's own precision.
TEST_P(FrameClassC, WorkQueryGoesToTheCpuAndReportsWork) {
    const std::string returned = "vorn info:  work query returned ";
    struct Case {
        bool syevd;
        int32_t gpuAlways, crossover, info;
        int64_t lwork;
        double work;
        int32_t iwork;
        Lines tail;
    };
    const Case cases[] = {
        {false, 1, 1024, 0, -1, 7.9, 0, {returned + "7"}},
        {false, 0, -1, -3, -1, -7.9, 0, {"vorn info:  info returned as -3", returned + "-7"}},
        {true, 1, 1024, 2, -1, -7.9, 12, {"vorn info:  info returned as 2", returned + "-7", returned + "12"}},
        {true, 0, -1, 0, -1, 7.9, -5, {returned + "7", returned + "-5"}},
        {true, 0, 1024, 0, -2, 7.9, 5, {}},  // lwork -2 and liwork -1: no query; over the crossover
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(text("syevd %d lwork %d work %g", c.syevd, low(c.lwork), c.work));
        linkState.gpuAlways = c.gpuAlways;
        crossoverTable.spotrf = c.crossover;
        cpu.info = c.info;
        cpu.work = c.work;
        cpu.iwork = c.iwork;
        gpu.status = gpu.calls = cpu.calls = 0;
        GetriCall getri{4096, c.lwork};
        SyevdCall syevd{4096, c.lwork};
        c.syevd ? run<Ssyevd>(syevd) : run<Dgetri>(getri);
        const bool query = c.lwork == -1;
        const Lines head{c.syevd ? syevd.entry() : getri.entry(),
                         issuing + (query ? "CPU (work query)" : "GPU (over threshold)")};
        EXPECT_EQ(log.next(), head + c.tail + Lines{done});
        EXPECT_EQ(gpu.calls, !query);
        EXPECT_EQ(cpu.calls, query);
        if (query) {
            EXPECT_EQ(cpuWords(), c.syevd ? syevd.words() : getri.words());
        }
        expectInfo(c.syevd ? syevd.info : getri.info, query ? c.info : 0);
    }
}

// Class C: statuses 7 and 8 are answers whose info the GPU library gives (no line
// when it is 0); status 0 leaves info 0; any other status retries on the CPU,
// whose info is reported.
TEST_P(FrameClassC, GpuStatusesAndInfo) {
    struct Case {
        int status, errorInfo, cpuInfo, info;
    };
    for (const Case c : {Case{0, 9, 0, 0}, Case{7, 3, 0, 3}, Case{8, -2, 0, -2}, Case{7, 0, 0, 0}, Case{8, 0, 0, 0},
                         Case{4, 9, 5, 5}, Case{1, 9, 0, 0}}) {
        SCOPED_TRACE(text("status %d", c.status));
        gpu.status = c.status;
        gpu.errorInfo = c.errorInfo;
        cpu.info = c.cpuInfo;
        gpu.calls = cpu.calls = 0;
        GetriCall call{4096, 10};
        run<Dgetri>(call);
        const bool retry = c.status != 0 && c.status != 7 && c.status != 8;
        Lines expected = Lines{call.entry(), issuing + "GPU (over threshold)"} + (retry ? retried(c.status) : Lines{});
        if (c.info != 0) expected.push_back(text("vorn info:  info returned as %d", c.info));
        EXPECT_EQ(log.next(), expected + Lines{done});
        EXPECT_EQ(gpu.calls, 1);
        EXPECT_EQ(cpu.calls, retry);
        expectInfo(call.info, c.info);
    }
}

// Exit F1, in ILP64 mode: without the CPU library the call returns with nothing
// done, no "done" line and info 0 in both halves, also from the retry pass.
TEST(FrameExit, MissingCpuLibrary) {
    Log log;
    setEnv("VORN_ILP64", "1");
    const std::string path = tempPath("libnothing.so");
    setEnv("VORN_CPU_LIB", path);
    linkInitGpu();
    crossoverTable.spotrf = 1024;
    GetriCall under{10, 10};
    run<Dgetri>(under);
    EXPECT_EQ(log.next(), (Lines{under.entry(), issuing + "CPU (under threshold)", "vorn info:  CPU library is " + path,
                                 "vorn error: failed to read '" + path + "'"}));
    EXPECT_EQ(under.info, 0);
    const std::string previous = "vorn error: a previous attempt at initialization failed, cannot continue";
    gpu.status = 4;
    GetriCall failed{4096, 10};
    run<Dgetri>(failed);
    EXPECT_EQ(log.next(), (Lines{failed.entry(), issuing + "GPU (over threshold)"} + retried(4) + Lines{previous}));
    EXPECT_EQ(failed.info, 0);
    EXPECT_EQ(cpu.calls, 0);
}

// Exit F2: a routine the CPU library lacks returns with info 0 and no "done" line,
// and each call looks the symbol up again and repeats the error.
TEST_P(FrameClassC, MissingSymbolExit) {
    const std::string missing = "vorn error: Failed to read symbol 'dfakemissing' from '" RECORDING_CPU_PATH "'";
    for (int status : {-1, 4, -1}) {  // -1: under the crossover, no GPU call
        gpu.status = status;
        GetriCall call{status < 0 ? 10 : 4096, 10};
        run<Dmissing>(call);
        const Lines head{call.entry("dfakemissing"),
                         issuing + (status < 0 ? "CPU (under threshold)" : "GPU (over threshold)")};
        EXPECT_EQ(log.next(), head + (status < 0 ? Lines{} : retried(4)) + Lines{missing});
        expectInfo(call.info, 0);
    }
    EXPECT_EQ(cpu.calls, 0);
}

// With verbose off only the error lines are written, to stdout: a class A
// failure's two lines and a missing symbol's line; an answer, a work query and
// the CPU calls write nothing.
TEST(FrameVerbose, OffWritesOnlyErrorLines) {
    StdoutCapture capture;
    startUp();
    gpu.status = 7;
    gpu.errorInfo = 3;
    GemmCall gemm{4096, 1, 1};
    run<Dgemm>(gemm);
    GetriCall answer{4096, 10}, query{4096, -1}, missing{10, 10};
    run<Dgetri>(answer);
    run<Dgetri>(query);
    run<Dmissing>(missing);
    const std::string written = capture.stop();
    EXPECT_EQ(written, "vorn error: fake failure 7\nvorn error: Retrying with CPU\n"
                       "vorn error: Failed to read symbol 'dfakemissing' from '" RECORDING_CPU_PATH "'\n");
    EXPECT_EQ(low(answer.info), 3);
    EXPECT_EQ(cpu.calls, 2);
}
