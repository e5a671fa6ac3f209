// Start-up of the link library: settings from the environment, the log, the
// one-time GPU start-up and the shutdown at exit. Each test is its own process.
#include <barrier>
#include <cstdint>
#include <gtest/gtest.h>
#include <thread>

#include "link_test.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// Factors a small SPD matrix on the CPU side (under the crossover); gives info.
int smallCall() {
    int info;
    factor('L', 4, &info);
    return info;
}

// Runs tests/link/exit_child.cpp, a program linked against the link library
// that returns from main, so that exit handlers run: with "call" after one
// CPU-side call, with "none" after none. Gives its exit status.
int exitChild(const char* argument) { return runProgram(VORN_TEST_EXIT_CHILD, argument); }

}  // namespace

TEST(Startup, VerboseOneWritesInfoLinesToStdout) {
    setEnv("VORN_VERBOSE", "1");
    int info;
    StdoutCapture capture;
    const auto a = factor('L', 4, &info);
    EXPECT_EQ(capture.stop(), spotrfEntryLine('L', 4, a.data(), 4) +
                       "\nvorn info:  issuing to CPU (under threshold)\n" + cpuLibraryLine +
                       "\nvorn info:  done\n");
    EXPECT_EQ(info, 0);
}

// Only the exact value "1" switches verbose on.
class VerboseValue : public testing::TestWithParam<const char*> {};
TEST_P(VerboseValue, OtherValuesLeaveTheLogSilent) {
    setEnv("VORN_VERBOSE", GetParam());
    StdoutCapture capture;
    EXPECT_EQ(smallCall(), 0);
    EXPECT_EQ(capture.stop(), "");
}
INSTANTIATE_TEST_SUITE_P(NotOne, VerboseValue, testing::Values("0", "11", " 1", "1 ", "01", "true", ""));

TEST(Startup, DebugLogAppendsAndTurnsInfoLinesOn) {
    const std::string log = tempPath("existing.log");
    writeFile(log, "a line the user wrote earlier\n");
    setEnv("VORN_DEBUG_LOG", log);
    setEnv("VORN_VERBOSE", "0");
    Expected expected;
    expected.log = {"a line the user wrote earlier"};
    StdoutCapture capture;
    expected.spotrfCall(4, "vorn info:  issuing to CPU (under threshold)", {cpuLibraryLine});
    EXPECT_EQ(capture.stop(), "");
    EXPECT_THAT(readLines(log), testing::ElementsAreArray(expected.log));
}

// A log file that cannot be opened, the empty name included, leaves one error
// line on stdout and the log on stdout with info lines on.
class UnopenableLog : public testing::TestWithParam<const char*> {};
TEST_P(UnopenableLog, LogsToStdoutWithVerboseOn) {
    setEnv("VORN_DEBUG_LOG", GetParam());
    StdoutCapture capture;
    smallCall();
    const std::string out = capture.stop();
    EXPECT_EQ(out.substr(0, out.find('\n')),
              std::string("vorn error: cannot log to '") + GetParam() + "', using stdout");
    EXPECT_NE(out.find("vorn info:  issuing to CPU (under threshold)\n"), std::string::npos);
    EXPECT_NE(out.find("vorn info:  done\n"), std::string::npos);
}
#if defined(_WIN32)
// A test cannot give a variable an empty value on Windows: msvcrt's _putenv("X=")
// removes X.
INSTANTIATE_TEST_SUITE_P(Paths, UnopenableLog, testing::Values("/nonexistent-folder/vorn.log"));
#else
INSTANTIATE_TEST_SUITE_P(Paths, UnopenableLog, testing::Values("/nonexistent-folder/vorn.log", ""));
#endif

// In ILP64 mode integers are 8 bytes: the library reads the low half and leaves a
// full 64-bit info. In the default mode the high half of info is not touched.
struct Ilp64Case {
    const char* value;
    uint64_t infoAfter;  // the caller's info was all ones
    friend void PrintTo(const Ilp64Case& c, std::ostream* out) { *out << "VORN_ILP64='" << c.value << "'"; }
};
class Ilp64Setting : public testing::TestWithParam<Ilp64Case> {};
TEST_P(Ilp64Setting, ClearsTheHighHalfOfInfoOnlyInIlp64Mode) {
    const std::string log = useLogFile();
    setEnv("VORN_ILP64", GetParam().value);
    int64_t n = 4, lda = 4;
    if (GetParam().value == std::string("1")) n += int64_t{1} << 32;  // high half ignored
    auto a = spdMatrix(4);
    uint64_t info = ~uint64_t{0};
    spotrf("L", &n, a.data(), &lda, &info);
    EXPECT_EQ(info, GetParam().infoAfter);
    EXPECT_EQ(readLines(log).at(0), spotrfEntryLine('L', 4, a.data(), 4));
}
INSTANTIATE_TEST_SUITE_P(Modes, Ilp64Setting,
                         testing::Values(Ilp64Case{"1", 0}, Ilp64Case{"true", 0xFFFFFFFF00000000u},
                                         Ilp64Case{"11", 0xFFFFFFFF00000000u}));

// The failed start's lines come first, the crossover list is read all the same,
// and every routine runs on the CPU.
TEST(Startup, FailedGpuStartLogsBeforeAnythingElseAndRoutesToCpu) {
    const std::string log = useLogFile();
    const std::string record = useRecord();
    const std::string list = tempPath("crossovers.txt");
    writeFile(list, "spotrf=5\n");
    setEnv("VORN_CROSSOVER_LIST", list);
    setEnv("VORN_EMU_INIT_STATUS", "1");
    Expected expected;
    expected.log = {"vorn error: vornInitialize failed (no GPU present)", "vorn info:  forwarding all calls to CPU",
                    "vorn info:  parsing crossover list '" + list + "'",
                    "vorn info:  setting crossover for spotrf to '5'"};
    expected.spotrfCall(1100, "vorn info:  issuing to CPU (vorn not available)", {cpuLibraryLine});
    expected.check(log, record);  // the record: vornInitialize, never called again, and no routine
}

TEST(Startup, FailedGpuStartIsSilentWithVerboseOff) {
    setEnv("VORN_EMU_INIT_STATUS", "1");
    StdoutCapture capture;
    expectReferenceFactor('U', 1100);
    EXPECT_EQ(capture.stop(), "");
}

TEST(Startup, ConcurrentFirstCallsInitialiseOnce) {
    const std::string record = useRecord();
    setEnv("VORN_EMU_INIT_DELAY_MS", "300");  // keeps the other threads waiting at the lock
    constexpr int threads = 8;
    std::barrier start(threads);
    std::vector<std::thread> callers;
    std::vector<int> infos(threads, -99);
    for (int t = 0; t < threads; ++t) {
        callers.emplace_back([&, t] {
            int n = spotrfCrossover;
            auto a = spdMatrix(n);
            start.arrive_and_wait();
            spotrf("L", &n, a.data(), &n, &infos[t]);
        });
    }
    for (auto& caller : callers) caller.join();
    const auto lines = readLines(record);
    ASSERT_EQ(lines.size(), 1u + threads);
    EXPECT_EQ(lines[0], "vornInitialize()");  // every routine call came after it
    EXPECT_EQ(linesStartingWith(lines, "vornSpotrf(L, 1024, ").size(), std::size_t{threads});
    EXPECT_EQ(infos, std::vector<int>(threads, 0));
}

// A process that loads the library and exits without a call runs nothing, not
// even with info lines on; after a call the shutdown runs at exit, but only after
// a successful start.
TEST(Startup, ShutdownRunsAtExitOnlyAfterSuccessfulStart) {
    const std::string record = useRecord();
    setEnv("VORN_VERBOSE", "1");
    StdoutCapture capture;
    EXPECT_EQ(exitChild("none"), 0);  // the child loads the link library
    EXPECT_EQ(capture.stop(), "");
    EXPECT_THAT(readLines(record), IsEmpty());

    setEnv("VORN_VERBOSE", "0");
    EXPECT_EQ(exitChild("call"), 0);
    EXPECT_THAT(readLines(record), ElementsAre("vornInitialize()", "vornShutdown()"));
    std::remove(record.c_str());
    setEnv("VORN_EMU_INIT_STATUS", "1");
    EXPECT_EQ(exitChild("call"), 0);
    EXPECT_THAT(readLines(record), ElementsAre("vornInitialize()"));
}
