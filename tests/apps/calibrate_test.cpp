// vorn-calibrate over back ends of known cost: the emulator waits a fixed time
// per call (VORN_EMU_DELAY_US), the paced CPU library a time proportional to n,
// so the break-even is known. The list file it writes is read back by the link
// library itself, through VORN_CROSSOVER_LIST and the log's "setting crossover"
// lines.
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/wait.h>

#include "test_support.h"

extern "C" void vornLinkClearCpuAlways();

namespace {

// Runs the calibrator with `arguments` after the shell assignments `environment`;
// gives its exit status, its standard error in `messages`.
int calibrate(const std::string& arguments, std::string& messages, const std::string& environment = "") {
    const std::string errors = tempPath("calibrate-stderr.txt");
    const int status =
        std::system((environment + " " VORN_TEST_CALIBRATE " " + arguments + " 2>" + errors + " >/dev/null").c_str());
    messages = readFile(errors);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(Calibrate, WritesTheBreakEvenAndNeverForTheLibraryToRead) {
    // CPU: dpotrf 100 us per unit of n; GPU: 20 ms per call. Break-even n = 200.
    // dgemm: the GPU side waits 20 ms more than the CPU side at every size.
    setEnv("VORN_CPU_LIB", VORN_TEST_PACED_CPU);
    setEnv("PACED_CPU_US_PER_N", "100");
    setEnv("VORN_EMU_DELAY_US", "dpotrf=20000,dgemm=20000");
    const std::string list = tempPath("crossovers.list");
    std::string messages;
    ASSERT_EQ(calibrate("--routines dpotrf,dgemm --max-size 400 --budget 60 --output " + list, messages), 0)
        << messages;
    EXPECT_NE(messages.find("describe no real GPU"), std::string::npos) << messages;
    EXPECT_TRUE(std::filesystem::exists(tempPath("crossovers.csv")));

    setEnv("VORN_CROSSOVER_LIST", list);
    setEnv("VORN_DEBUG_LOG", tempPath("log.txt"));
    vornLinkClearCpuAlways();
    const auto lines = linesStartingWith(readLines(tempPath("log.txt")), "vorn info:  setting crossover for ");
    ASSERT_EQ(lines.size(), 2u) << readFile(list);
    const std::string potrf = "vorn info:  setting crossover for dpotrf to '";
    ASSERT_EQ(lines[0].rfind(potrf, 0), 0u) << lines[0];
    const int entry = std::atoi(lines[0].c_str() + potrf.size());
    EXPECT_GE(entry, 160) << messages;
    EXPECT_LE(entry, 250) << messages;
    EXPECT_EQ(lines[1], "vorn info:  setting crossover for dgemm to 'never'") << messages;
}

TEST(Calibrate, RefusesBadInputAndWritesNothingWithoutAGpuLibrary) {
    const std::string list = tempPath("refused.list");
    const struct {
        std::string arguments, environment;
        int status;
        std::string message;
    } cases[] = {
        {"--routines dpotrf,xgemm", "", 2, "unknown routine 'xgemm'"},
        {"--routines dpotrf,dpotrf", "", 2, "named twice"},
        {"--budget ten", "", 2, "bad number 'ten' for --budget"},
        {"--budget 0", "", 2, "--budget must be more than 0"},
        {"--max-size 12.5", "", 2, "--max-size must be a whole number"},
        {"--output /nonexistent-folder/x.list", "", 2, "cannot write --output"},
        {"--plot plot.jpg", "", 2, "--plot must name a .png file"},
        {"--frobnicate 1", "", 2, "unknown option --frobnicate"},
        {"--budget", "", 2, "--budget needs a value"},
        {"--output " + list, "VORN_EMU_INIT_STATUS=1", 1, "failed to start: vorn error: vornInitialize failed"},
    };
    for (const auto& row : cases) {
        std::string messages;
        EXPECT_EQ(calibrate(row.arguments, messages, row.environment), row.status) << row.arguments;
        EXPECT_NE(messages.find(row.message), std::string::npos) << row.arguments << ": " << messages;
    }
    EXPECT_FALSE(std::filesystem::exists(list));
}

}  // namespace
