// The crossover list file, read at start-up: each theme writes a list, starts the
// library, and checks the log's exact lines, the table's entries and, through
// spotrf, the routing that results. Each test is its own process.
#include <cstring>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/startup.h"
#include "routing/crossover_table.h"
#include "test_support.h"

using testing::ElementsAre;
using testing::ElementsAreArray;

extern "C" void spotrf(const char* uplo, const int* n, float* a, const int* lda, int* info);

namespace {

const CrossoverTable defaults = crossoverTable;  // copied before any start-up

// Writes the list, names it and the log in the environment, runs the start-up,
// and gives the log's lines.
std::vector<std::string> startWithList(const std::string& content, bool verbose = true) {
    const std::string list = tempPath("crossovers.txt");
    writeFile(list, content);
    setEnv("VORN_CROSSOVER_LIST", list);
    const std::string log = tempPath("vorn.log");
    if (verbose) setEnv("VORN_DEBUG_LOG", log);
    setEnv("VORN_CPU_LIB", VORN_TEST_LAPACKCPU);
#ifdef VORN_TEST_EMULATOR_CPU
    // Where the emulator finds no CPU library of the default name (Windows, which
    // has no CPU adapter yet), it computes through the one the test names.
    setEnv("VORN_EMU_CPU_LIB", VORN_TEST_EMULATOR_CPU);
#endif
    linkInitGpu();
    return readLines(log);
}

std::string parsingLine() { return "vorn info:  parsing crossover list '" + tempPath("crossovers.txt") + "'"; }

// The side spotrf takes for order n, read from the log's issuing line.
std::string spotrfIssuedFor(int n) {
    const std::string log = tempPath("vorn.log");
    const std::size_t before = readLines(log).size();
    std::vector<float> a(static_cast<std::size_t>(n) * n, 0.0f);
    for (int i = 0; i < n; ++i) a[i + static_cast<std::size_t>(i) * n] = 1.0f;
    int info = -1;
    spotrf("L", &n, a.data(), &n, &info);
    EXPECT_EQ(info, 0);
    const auto lines = readLines(log);
    return lines.size() > before + 1 ? lines[before + 1] : "";
}

}  // namespace

TEST(CrossoverList, NumbersAreReadAsStrtolReadsThem) {
    const auto log = startWithList(
        "sgemm=0x100\ndgemm=0100\ncgemm=12x\nzgemm=  +7\nsgetrf=4294967296\ndgetrf=-4294967296\n"
        "cgetrf=0\nzgetrf=-1\nsgesv=abc\nspotrf=0x10\n");
    EXPECT_THAT(log, ElementsAre(parsingLine(), "vorn info:  setting crossover for sgemm to '0x100'",
                                 "vorn info:  setting crossover for dgemm to '0100'",
                                 "vorn info:  setting crossover for cgemm to '12x'",
                                 "vorn info:  setting crossover for zgemm to '  +7'",
                                 "vorn info:  setting crossover for sgetrf to '4294967296'",
                                 "vorn error: invalid crossover for 'dgetrf' (-4294967296)",
                                 "vorn error: invalid crossover for 'cgetrf' (0)",
                                 "vorn error: invalid crossover for 'zgetrf' (-1)",
                                 "vorn error: invalid crossover for 'sgesv' (abc)",
                                 "vorn info:  setting crossover for spotrf to '0x10'"));
    EXPECT_EQ(crossoverTable.sgemm, 256);
    EXPECT_EQ(crossoverTable.dgemm, 64);
    EXPECT_EQ(crossoverTable.cgemm, 12);
    EXPECT_EQ(crossoverTable.zgemm, 7);
    EXPECT_EQ(crossoverTable.sgetrf, 2147483647);  // beyond 32 bits: the largest value
    EXPECT_EQ(crossoverTable.dgetrf, defaults.dgetrf);
    EXPECT_EQ(crossoverTable.cgetrf, defaults.cgetrf);
    EXPECT_EQ(crossoverTable.zgetrf, defaults.zgetrf);
    EXPECT_EQ(crossoverTable.sgesv, defaults.sgesv);
    EXPECT_EQ(spotrfIssuedFor(15), "vorn info:  issuing to CPU (under threshold)");
    EXPECT_EQ(spotrfIssuedFor(16), "vorn info:  issuing to GPU (over threshold)");
}

TEST(CrossoverList, NeverAndItsBeginningsExclude) {
    setEnv("VORN_GPU_ALWAYS", "1");  // an excluded routine stays on the CPU all the same
    const auto log = startWithList(
        "sgemm=\ndgemm=n\ncgemm=ne\nzgemm=nev\nsgetrf=neve\nspotrf=never\n"
        "dgetrf=nevermore\ncgetrf=Never\nzgetrf=never \n");
    EXPECT_THAT(log, ElementsAre(parsingLine(), "vorn info:  setting crossover for sgemm to ''",
                                 "vorn info:  setting crossover for dgemm to 'n'",
                                 "vorn info:  setting crossover for cgemm to 'ne'",
                                 "vorn info:  setting crossover for zgemm to 'nev'",
                                 "vorn info:  setting crossover for sgetrf to 'neve'",
                                 "vorn info:  setting crossover for spotrf to 'never'",
                                 "vorn error: invalid crossover for 'dgetrf' (nevermore)",
                                 "vorn error: invalid crossover for 'cgetrf' (Never)",
                                 "vorn error: invalid crossover for 'zgetrf' (never )"));
    for (int32_t value : {crossoverTable.sgemm, crossoverTable.dgemm, crossoverTable.cgemm, crossoverTable.zgemm,
                          crossoverTable.sgetrf, crossoverTable.spotrf})
        EXPECT_EQ(value, -1);
    EXPECT_EQ(crossoverTable.dgetrf, defaults.dgetrf);
    EXPECT_EQ(spotrfIssuedFor(3000), "vorn info:  issuing to CPU (excluded by user)");
}

// Names are compared whole and in their case; one that is no entry passes without
// a word, but a bad value is reported before the name is looked at.
TEST(CrossoverList, UnknownNamesPassSilently) {
    const auto log = startWithList(
        "SPOTRF=5\nspotrf = 5\nspotrf =5\n spotrf=5\nnosuchroutine=5\n# tuned=5\n"
        "# tuned values\nnosuchroutine=0\ncherdb=7\n");
    EXPECT_THAT(log, ElementsAre(parsingLine(), "vorn error: invalid crossover specification: # tuned values",
                                 "vorn error: invalid crossover for 'nosuchroutine' (0)",
                                 "vorn info:  setting crossover for cherdb to '7'"));
    EXPECT_EQ(crossoverTable.spotrf, defaults.spotrf);
    EXPECT_EQ(crossoverTable.cherdb, 7);
    EXPECT_EQ(spotrfIssuedFor(5), "vorn info:  issuing to CPU (under threshold)");
}

TEST(CrossoverList, FirstEmptyLineEndsTheReading) {
    const auto log = startWithList("spotrf=8\n\nsgemm=5\nno equals sign\n");
    EXPECT_THAT(log, ElementsAre(parsingLine(), "vorn info:  setting crossover for spotrf to '8'"));
    EXPECT_EQ(crossoverTable.sgemm, defaults.sgemm);
    EXPECT_EQ(spotrfIssuedFor(8), "vorn info:  issuing to GPU (over threshold)");
}

TEST(CrossoverList, EmptyFirstLineReadsNothing) {
    const auto log = startWithList("\nspotrf=8\n");
    EXPECT_THAT(log, ElementsAre(parsingLine()));
    EXPECT_EQ(crossoverTable.spotrf, defaults.spotrf);
}

TEST(CrossoverList, EmptyFileWritesOnlyTheParsingLine) {
    EXPECT_THAT(startWithList(""), ElementsAre(parsingLine()));
}

// Windows line ends read as newlines, and a last line without one counts.
TEST(CrossoverList, LineEndsOfBothKindsAndNoneAtTheEnd) {
    const auto log = startWithList("sgemm=5\r\ndgemm=6\ncgemm=7\r\nspotrf=9");
    EXPECT_THAT(log, ElementsAre(parsingLine(), "vorn info:  setting crossover for sgemm to '5'",
                                 "vorn info:  setting crossover for dgemm to '6'",
                                 "vorn info:  setting crossover for cgemm to '7'",
                                 "vorn info:  setting crossover for spotrf to '9'"));
    EXPECT_EQ(crossoverTable.sgemm, 5);
    EXPECT_EQ(crossoverTable.spotrf, 9);
}

// A line longer than 255 bytes is read in pieces of 255, each a line of its own.
TEST(CrossoverList, LongLinesAreReadInPiecesOf255Bytes) {
    const std::string longName(300, 'x');
    const std::string zeros(255 - 6, '0');  // "sgemm=" and 249 zeros fill one piece
    const auto log = startWithList(longName + "=5\n" + "sgemm=" + zeros + "12\n" + "dgemm=3\n");
    EXPECT_THAT(log, ElementsAre(parsingLine(), "vorn error: invalid crossover specification: " + longName.substr(0, 255),
                                 "vorn error: invalid crossover for 'sgemm' (" + zeros + ")",
                                 "vorn error: invalid crossover specification: 12",
                                 "vorn info:  setting crossover for dgemm to '3'"));
    EXPECT_EQ(crossoverTable.sgemm, defaults.sgemm);
    EXPECT_EQ(crossoverTable.dgemm, 3);
}

TEST(CrossoverList, LaterLineForTheSameNameHolds) {
    startWithList("spotrf=5\nspotrf=never\nspotrf=2000\n");
    EXPECT_EQ(crossoverTable.spotrf, 2000);
    EXPECT_EQ(spotrfIssuedFor(1999), "vorn info:  issuing to CPU (under threshold)");
}

TEST(CrossoverList, VerboseOffWritesOnlyErrorLines) {
    StdoutCapture capture;
    startWithList("spotrf=5\nsgemm=0\nbad line\n", false);
    EXPECT_EQ(capture.stop(),
              "vorn error: invalid crossover for 'sgemm' (0)\n"
              "vorn error: invalid crossover specification: bad line\n");
    EXPECT_EQ(crossoverTable.spotrf, 5);
}

TEST(CrossoverList, UnreadableListKeepsTheDefaults) {
    setEnv("VORN_CROSSOVER_LIST", "/nonexistent-folder/crossovers.txt");
    StdoutCapture capture;
    linkInitGpu();
    EXPECT_EQ(capture.stop(), "vorn error: cannot read crossover list '/nonexistent-folder/crossovers.txt'\n");
    EXPECT_EQ(std::memcmp(&crossoverTable, &defaults, sizeof defaults), 0);
}

// The list is read also when the GPU library failed to start, after its lines.
TEST(CrossoverList, ReadAfterAFailedGpuStart) {
    setEnv("VORN_EMU_INIT_STATUS", "1");
    const auto log = startWithList("spotrf=5\n");
    EXPECT_THAT(log, ElementsAre("vorn error: vornInitialize failed (no GPU present)",
                                 "vorn info:  forwarding all calls to CPU", parsingLine(),
                                 "vorn info:  setting crossover for spotrf to '5'"));
    EXPECT_EQ(spotrfIssuedFor(6), "vorn info:  issuing to CPU (vorn not available)");
}
