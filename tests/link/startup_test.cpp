// Start-up of the link library: settings from the environment, the log, the
// one-time GPU start-up and the shutdown at exit. Each test is its own process.
#include <barrier>
#include <cstdint>
#include <thread>

#include "link_test.h"

// Runs tests/link/exit_child.cpp, a program linked against the link library
// that returns from main, so that exit handlers run: with "call" after one
// CPU-side call, with "none" after none. Gives its exit status.
static int exitChild(const char* argument) { return runProgram(VORN_TEST_EXIT_CHILD, argument); }

// Where the info lines go without a log file: to stdout, with VORN_VERBOSE
// exactly "1" only. With a VORN_DEBUG_LOG that cannot be opened (the empty name
// included): to stdout after one error line, whatever VORN_VERBOSE says.
struct Output {
    const char* verbose;
    const char* log = nullptr;  // VORN_DEBUG_LOG, if set
    friend void PrintTo(const Output& o, std::ostream* out) { *out << "'" << o.verbose << "', " << (o.log ? o.log : "-"); }
};
const Output outputs[] = {{"1"}, {"0"}, {"11"}, {" 1"}, {"1 "}, {"01"}, {"true"}, {""},
                          {"0", "/nonexistent-folder/vorn.log"},
#if !defined(_WIN32)  // Windows cannot give a variable an empty value: msvcrt's _putenv("X=") removes X
                          {"0", ""},
#endif
};
class StdoutLog : public testing::TestWithParam<Output> {};
TEST_P(StdoutLog, HoldsTheInfoLinesOnlyWhereTheSettingsAskForThem) {
    const Output o = GetParam();
    setEnv("VORN_VERBOSE", o.verbose);
    if (o.log != nullptr) setEnv("VORN_DEBUG_LOG", o.log);
    int info;
    StdoutCapture capture;
    const auto a = factor('L', 4, &info);
    std::string lines = "vorn info:  spotrf " + spotrfArguments(4, a.data()) +
                        "\nvorn info:  issuing to CPU (under threshold)\n" + cpuLibraryLine + "\nvorn info:  done\n";
    if (o.log != nullptr) lines = "vorn error: cannot log to '" + std::string(o.log) + "', using stdout\n" + lines;
    EXPECT_EQ(capture.stop(), o.log != nullptr || o.verbose == std::string("1") ? lines : "");
    EXPECT_EQ(info, 0);
}
INSTANTIATE_TEST_SUITE_P(Settings, StdoutLog, testing::ValuesIn(outputs));

// In ILP64 mode (VORN_ILP64 exactly "1") integers are 8 bytes: the library reads
// the low half and leaves a full 64-bit info. Else the high half of info is not
// touched.
class Ilp64Setting : public testing::TestWithParam<const char*> {};
TEST_P(Ilp64Setting, ClearsTheHighHalfOfInfoOnlyInIlp64Mode) {
    const std::string log = useLogFile();
    const bool ilp64 = GetParam() == std::string("1");
    setEnv("VORN_ILP64", GetParam());
    int64_t n = 4 + (ilp64 ? int64_t{1} << 32 : 0), lda = 4;  // the high half is ignored
    auto a = spdMatrix(4);
    uint64_t info = ~uint64_t{0};
    spotrf("L", &n, a.data(), &lda, &info);
    EXPECT_EQ(info, ilp64 ? 0 : 0xFFFFFFFF00000000u);
    EXPECT_EQ(readLines(log).at(0), "vorn info:  spotrf " + spotrfArguments(4, a.data()));
}
INSTANTIATE_TEST_SUITE_P(Values, Ilp64Setting, testing::Values("1", "true", "11"));

// A log file is appended to, turns the info lines on and leaves stdout silent.
// A failed GPU start's lines come first, the crossover list is read all the
// same, and every routine runs on the CPU.
TEST(Startup, FailedGpuStartLogsBeforeAnythingElseAndRoutesToCpu) {
    const std::string log = useLogFile(), record = useRecord(), list = tempPath("crossovers.txt");
    writeFile(log, "a line the user wrote earlier\n");
    writeFile(list, "spotrf=5\n");
    setEnv("VORN_CROSSOVER_LIST", list);
    setEnv("VORN_EMU_INIT_STATUS", "1");
    setEnv("VORN_VERBOSE", "0");
    Expected expected;
    expected.log = {"a line the user wrote earlier", "vorn error: vornInitialize failed (no GPU present)",
                    "vorn info:  forwarding all calls to CPU", "vorn info:  parsing crossover list '" + list + "'",
                    "vorn info:  setting crossover for spotrf to '5'"};
    StdoutCapture capture;
    expected.spotrfCall(1100, "vorn info:  issuing to CPU (vorn not available)", {cpuLibraryLine});
    EXPECT_EQ(capture.stop(), "");
    expected.check(log, record);  // the record: vornInitialize, never called again, and no routine
}

TEST(Startup, ConcurrentFirstCallsInitialiseOnce) {
    const std::string record = useRecord();
    setEnv("VORN_EMU_INIT_DELAY_MS", "300");  // keeps the other threads waiting at the lock
    constexpr int threads = 8;
    std::barrier start(threads);
    std::vector<std::thread> callers;
    std::vector<int> infos(threads, -99);
    for (int t = 0; t < threads; ++t)
        callers.emplace_back([&, t] {
            int n = spotrfCrossover;
            auto a = spdMatrix(n);
            start.arrive_and_wait();
            spotrf("L", &n, a.data(), &n, &infos[t]);
        });
    for (auto& caller : callers) caller.join();
    const auto lines = readLines(record);
    ASSERT_EQ(lines.size(), 1u + threads);
    EXPECT_EQ(lines[0], "vornInitialize()");  // every routine call came after it
    EXPECT_EQ(linesStartingWith(lines, "vornSpotrf(L, 1024, ").size(), std::size_t{threads});
    EXPECT_EQ(infos, std::vector<int>(threads, 0));
}

// A process that loads the library and exits without a call runs nothing, not
// even with info lines on; after a call the shutdown runs at exit, but only after
// a successful start (a failed one, with verbose off, is silent).
TEST(Startup, ShutdownRunsAtExitOnlyAfterSuccessfulStart) {
    const std::string record = useRecord();
    setEnv("VORN_VERBOSE", "1");
    StdoutCapture capture;
    EXPECT_EQ(exitChild("none"), 0);  // the child loads the link library
    EXPECT_THAT(readLines(record), testing::IsEmpty());
    setEnv("VORN_VERBOSE", "0");
    EXPECT_EQ(exitChild("call"), 0);
    EXPECT_THAT(readLines(record), testing::ElementsAre("vornInitialize()", "vornShutdown()"));
    std::remove(record.c_str());
    setEnv("VORN_EMU_INIT_STATUS", "1");
    EXPECT_EQ(exitChild("call"), 0);
    EXPECT_THAT(readLines(record), testing::ElementsAre("vornInitialize()"));
    EXPECT_EQ(capture.stop(), "");
}
