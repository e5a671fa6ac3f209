// The route of one pass: which reason wins, and that the side a reason names is
// the side the frame takes. (The words of each reason's line are held in the
// tests that meet each reason in a real call: the frame tests below, the link and
// the export tests.)
// The routed frame for rows of class C (info and a work query), over a fake GPU
// library defined here and the recording CPU library: the GPU statuses and info,
// work queries, the missing symbol's exit (F2), info in LP64 and ILP64 mode, and
// the exact log lines of each; with verbose off, only the error lines. The
// routing of each routine, its measure, its results and class A (no info, status
// 7 and 8 retried on the CPU) are the family tests' (tests/link); the missing CPU
// library's exit (F1), which shares F2's return, the CPU binding tests'.
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "core/link_state.h"
#include "recording_cpu.h"
#include "routines/routed/lu_rows.h"
#include "routing/issue_reason.h"
#include "routing/routed_frame.h"
#include "test_support.h"

using Lines = std::vector<std::string>;
using Words = std::vector<void*>;

// The fake GPU library: every answer is set by the test. (The by-value arguments
// that a GPU routine gets are the family tests', in the emulator's record.)
static struct { int status, errorInfo; } gpu;

int vornInitialize() { return 0; }
void vornShutdown() {}
const char* vornGetStatusString(int status) {
    static std::string words;
    return (words = formatted("fake failure %d", status)).c_str();
}
int vornGetErrorInfo() { return gpu.errorInfo; }

namespace {

int fakeDgetri(int, double*, int, int*) { return gpu.status; }
int fakeSsyevd(char, char, int, float*, int, float*) { return gpu.status; }

// Rows: getri (one real work line) as its family defines it, and a row shaped
// like syevd: 11 words, class C, a real and an integer work line.
struct syevdShape {
    enum : int { jobz = 1, uplo, n, a, lda, w, work, lwork, iwork, liwork, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::C;
    using GpuArgs = ArgList<Chr<jobz>, Chr<uplo>, Int<n>, Ptr<a>, Int<lda>, Ptr<w>>;
    using WorkLines = ::WorkLines<WorkReal<work>, WorkInt<iwork>>;
    static int32_t measure(CallWords words) { return words.integer(n); }
};

using Dgetri = RoutedRoutine<"dfakegetri", getri, fakeDgetri, &CrossoverTable::spotrf>;
using Ssyevd = RoutedRoutine<"sfakesyevd", syevdShape, fakeSsyevd, &CrossoverTable::spotrf>;
// A row whose name the CPU library does not export.
using Dmissing = RoutedRoutine<"dfakemissing", getri, fakeDgetri, &CrossoverTable::spotrf>;

// Callers' arguments. Integers are 64 bits wide so that the same calls serve ILP64
// mode; info starts with a pattern in both halves, and a LP64 call must keep the
// high one.
constexpr int64_t presetInfo = 0x7777777777777777;
int32_t low(int64_t v) { return static_cast<int32_t>(v); }
uint32_t high(int64_t v) { return static_cast<uint32_t>(static_cast<uint64_t>(v) >> 32); }

struct GetriCall {
    int64_t n, lwork, lda = 5, ipiv[4]{}, info = presetInfo;
    double a[4]{}, work[2]{};
    Words words() { return {&n, a, &lda, ipiv, work, &lwork, &info}; }
    std::string entry(const char* name) { return formatted("vorn info:  %s (%d, %p, 5, %p)", name, low(n), a, ipiv); }
};
struct SyevdCall {
    int64_t n, lwork, lda = 3, iwork[2]{}, liwork = -1, info = presetInfo;
    char jobz = 'V', uplo = 'L';
    float a[4]{}, w[2]{}, work[2]{};
    Words words() { return {&jobz, &uplo, &n, a, &lda, w, work, &lwork, iwork, &liwork, &info}; }
    std::string entry(const char* name) { return formatted("vorn info:  %s (V, L, %d, %p, 3, %p)", name, low(n), a, w); }
};

CpuRecord& cpu = *recordingCpu();

// What one call of a row left: its entry line, the caller's info, and whether the
// CPU routine, where it ran, got the caller's words as they are.
struct Outcome {
    std::string entry;
    int64_t info;
    bool cpuGotTheWords;
};
template <class Row, class Call>
Outcome call(int64_t n, int64_t lwork) {
    Call args{n, lwork};
    Words words = args.words();
    cpu.wordCount = 0;
    routedFrame<Row>(CallWords{words.data()});
    return {args.entry(Row::name.c_str()), args.info,
            cpu.wordCount == 0 || Words(cpu.words, cpu.words + cpu.wordCount) == words};
}
constexpr auto getriCall = call<Dgetri, GetriCall>, syevdCall = call<Ssyevd, SyevdCall>,
               missingCall = call<Dmissing, GetriCall>;

const std::string issuing = "vorn info:  issuing to ", over = issuing + "GPU (over threshold)",
                  under = issuing + "CPU (under threshold)", done = "vorn info:  done",
                  missingSymbol = "vorn error: Failed to read symbol 'dfakemissing' from '" RECORDING_CPU_PATH "'";
Lines operator+(Lines a, const Lines& b) { return a.insert(a.end(), b.begin(), b.end()), a; }
// The lines of a failed GPU call up to the second pass's issuing line.
Lines retried(int status) {
    return {formatted("vorn error: fake failure %d", status), "vorn error: Retrying with CPU",
            issuing + "CPU (retrying on GPU error)"};
}

// The conditions in order of precedence, each with the reason it gives.
constexpr std::pair<bool RouteState::*, IssueReason> rules[] = {
    {&RouteState::gpuUnavailable, ReasonGpuUnavailable}, {&RouteState::retry, ReasonGpuRetry},
    {&RouteState::workQuery, ReasonWorkQuery},           {&RouteState::excluded, ReasonExcluded},
    {&RouteState::cpuAlways, ReasonCpuAlways},           {&RouteState::gpuAlways, ReasonGpuAlways},
    {&RouteState::underCrossover, ReasonUnderThreshold}};

}  // namespace

// Over all 128 states: the reason is the first rule that holds in the order of
// precedence (over the threshold when none does), and the side word of that
// reason is GPU exactly when the pass goes on to the GPU.
TEST(RoutePredicate, ReasonAndSideAgreeInEveryState) {
    for (unsigned bits = 0; bits < (1u << std::size(rules)); ++bits) {
        RouteState state{};
        IssueReason expected = ReasonOverThreshold;
        for (int i = std::size(rules) - 1; i >= 0; --i) {
            state.*rules[i].first = (bits >> i) & 1;
            if (state.*rules[i].first) expected = rules[i].second;
        }
        const IssueReason reason = linkChooseReason(state);
        EXPECT_EQ(reason, expected) << "state bits " << bits;
        const bool gpuSide = reason == ReasonGpuAlways || reason == ReasonOverThreshold;
        EXPECT_EQ(linkRouteToGpu(state), gpuSide) << "state bits " << bits;
        EXPECT_STREQ(linkReasonSide(reason), gpuSide ? "GPU" : "CPU") << "state bits " << bits;
    }
}

// Class C calls in LP64 and in ILP64 mode, each with verbose on and off, after a
// start-up of both back ends over the recording CPU library. The GPU answers each
// call it gets with its status, the CPU with its info, -7.9 in work and 12 in
// iwork: a call that goes to the wrong side shows in its lines. In ILP64 mode the
// CPU routine writes the high half of info too: there the high half is 0 at every
// return; in LP64 mode it is never touched.
class FrameClassC : public testing::TestWithParam<bool> {};
INSTANTIATE_TEST_SUITE_P(Integers, FrameClassC, testing::Bool(),
                         [](const auto& info) { return info.param ? "Ilp64" : "Lp64"; });

TEST_P(FrameClassC, LinesAndInfoOfEachOutcome) {
    const std::string log = useLogFile();
    setEnv("VORN_CPU_LIB", RECORDING_CPU_PATH);
    if (GetParam()) setEnv("VORN_ILP64", "1");
    linkInitGpu();
    linkInitCpu();
    cpu.infoHigh = GetParam() ? 0x5a5a5a5a : 0;
    cpu.work = -7.9;
    cpu.iwork = 12;
    const std::string query = issuing + "CPU (work query)", returned = "vorn info:  work query returned ",
                      infoAs = "vorn info:  info returned as ";
    struct Case {
        Outcome (*run)(int64_t n, int64_t lwork);
        int64_t n, lwork;
        int status, errorInfo, cpuInfo;
        Lines lines;  // after the entry line
        int32_t info;
    };
    const Case cases[] = {
        // A work query (lwork -1, liwork not counting) goes to the CPU over the
        // crossover and reports info, then each work array's first element in the
        // table's order, truncated towards zero in the row's own precision.
        {getriCall, 4096, -1, 4, 9, 0, {query, returned + "-7", done}, 0},
        {getriCall, 4096, -1, 4, 9, -3, {query, infoAs + "-3", returned + "-7", done}, -3},
        {syevdCall, 4096, -1, 4, 9, 2, {query, infoAs + "2", returned + "-7", returned + "12", done}, 2},
        {syevdCall, 4096, -2, 0, 9, 6, {over, done}, 0},
        // Statuses 7 and 8 are answers whose info the GPU library gives (no line
        // when it is 0); status 0 leaves info 0; any other status retries on the
        // CPU, whose info is reported.
        {getriCall, 4096, 10, 0, 9, 6, {over, done}, 0},
        {getriCall, 4096, 10, 7, 3, 6, {over, infoAs + "3", done}, 3},
        {getriCall, 4096, 10, 8, -2, 6, {over, infoAs + "-2", done}, -2},
        {getriCall, 4096, 10, 7, 0, 6, {over, done}, 0},
        {getriCall, 4096, 10, 4, 9, 5, Lines{over} + retried(4) + Lines{infoAs + "5", done}, 5},
        // Exit F2: a routine the CPU library lacks returns with info 0 and no
        // "done" line, and each call looks the symbol up again.
        {missingCall, 10, 10, 4, 9, 6, {under, missingSymbol}, 0},
        {missingCall, 4096, 10, 4, 9, 6, Lines{over} + retried(4) + Lines{missingSymbol}, 0},
    };
    for (const Case& c : cases) {
        for (int32_t verbose : {1, 0}) {
            linkState.verbose = verbose;
            const std::size_t before = readLines(log).size();
            gpu.status = c.status;
            gpu.errorInfo = c.errorInfo;
            cpu.info = c.cpuInfo;
            const Outcome outcome = c.run(c.n, c.lwork);
            SCOPED_TRACE(outcome.entry + formatted(", lwork %d, status %d, verbose %d", low(c.lwork), c.status, verbose));
            const Lines lines = readLines(log), expected = Lines{outcome.entry} + c.lines;
            EXPECT_EQ(Lines(lines.begin() + before, lines.end()),
                      verbose ? expected : linesStartingWith(expected, "vorn error"));
            EXPECT_TRUE(outcome.cpuGotTheWords);
            EXPECT_EQ(low(outcome.info), c.info);
            EXPECT_EQ(high(outcome.info), GetParam() ? 0u : high(presetInfo));
        }
    }
}
