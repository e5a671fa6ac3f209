// The crossover list file: how its lines read (one table of lists, each applied
// to the defaults with info lines on and off), and, in a process of its own, a
// list the start-up cannot read. That the start-up reads a list, also after a
// failed GPU start, and that the routing follows it are the link tests'.
#include <cstring>
#include <gtest/gtest.h>

#include "core/link_state.h"
#include "core/startup.h"
#include "routing/crossover_list.h"
#include "routing/crossover_table.h"
#include "test_support.h"

using Lines = std::vector<std::string>;

namespace {

const CrossoverTable defaults = crossoverTable;  // copied before any start-up

std::string setting(const std::string& name, const std::string& value) {
    return "vorn info:  setting crossover for " + name + " to '" + value + "'";
}
std::string invalid(const std::string& name, const std::string& value) {
    return "vorn error: invalid crossover for '" + name + "' (" + value + ")";
}
std::string badLine(const std::string& text) { return "vorn error: invalid crossover specification: " + text; }

}  // namespace

// Each list applied to the defaults: the log's lines (with verbose off, only its
// error lines) and the entries it leaves.
TEST(CrossoverList, LinesReadAsTheListFileDefines) {
    const std::string longName(300, 'x'), zeros(255 - 6, '0');  // "sgemm=" and 249 zeros fill 255 bytes
    struct Case {
        std::string content;
        Lines lines;
        std::vector<std::pair<int32_t CrossoverTable::*, int32_t>> entries;  // -2: the default
    };
    const Case cases[] = {
        // Numbers as strtol reads them, clamped to 32 bits; 0 and below are invalid.
        {"sgemm=0x100\ndgemm=0100\ncgemm=12x\nzgemm=  +7\nsgetrf=4294967296\ndgetrf=-4294967296\n"
         "cgetrf=0\nzgetrf=-1\nsgesv=abc\n",
         {setting("sgemm", "0x100"), setting("dgemm", "0100"), setting("cgemm", "12x"), setting("zgemm", "  +7"),
          setting("sgetrf", "4294967296"), invalid("dgetrf", "-4294967296"), invalid("cgetrf", "0"),
          invalid("zgetrf", "-1"), invalid("sgesv", "abc")},
         {{&CrossoverTable::sgemm, 256}, {&CrossoverTable::dgemm, 64}, {&CrossoverTable::cgemm, 12},
          {&CrossoverTable::zgemm, 7}, {&CrossoverTable::sgetrf, INT32_MAX}, {&CrossoverTable::dgetrf, -2},
          {&CrossoverTable::cgetrf, -2}, {&CrossoverTable::zgetrf, -2}, {&CrossoverTable::sgesv, -2}}},
        // "never" and every beginning of it exclude; nothing else does.
        {"sgemm=\ndgemm=n\nzgemm=nev\nspotrf=never\ndgetrf=nevermore\ncgetrf=Never\nzgetrf=never \n",
         {setting("sgemm", ""), setting("dgemm", "n"), setting("zgemm", "nev"), setting("spotrf", "never"),
          invalid("dgetrf", "nevermore"), invalid("cgetrf", "Never"), invalid("zgetrf", "never ")},
         {{&CrossoverTable::sgemm, -1}, {&CrossoverTable::dgemm, -1}, {&CrossoverTable::zgemm, -1},
          {&CrossoverTable::spotrf, -1}, {&CrossoverTable::dgetrf, -2}}},
        // Names compared whole and in their case; an unknown one passes silently,
        // but a bad value is reported before the name is looked at.
        {"SPOTRF=5\nspotrf = 5\n spotrf=5\nnosuchroutine=5\n# tuned values\nnosuchroutine=0\ncherdb=7\n",
         {badLine("# tuned values"), invalid("nosuchroutine", "0"), setting("cherdb", "7")},
         {{&CrossoverTable::spotrf, -2}, {&CrossoverTable::cherdb, 7}}},
        // The first empty line ends the reading; an empty file or first line reads nothing.
        {"spotrf=8\n\nsgemm=5\n", {setting("spotrf", "8")}, {{&CrossoverTable::sgemm, -2}}},
        {"\nspotrf=8\n", {}, {{&CrossoverTable::spotrf, -2}}},
        {"", {}, {}},
        // Windows line ends read as newlines; a last line without one counts; a
        // later line for the same name holds.
        {"sgemm=5\r\ndgemm=6\nspotrf=never\r\nspotrf=9", {setting("sgemm", "5"), setting("dgemm", "6"),
          setting("spotrf", "never"), setting("spotrf", "9")}, {{&CrossoverTable::sgemm, 5}, {&CrossoverTable::spotrf, 9}}},
        // A line longer than 255 bytes is read in pieces of 255, each a line of its own.
        {longName + "=5\nsgemm=" + zeros + "12\ndgemm=3\n",
         {badLine(longName.substr(0, 255)), invalid("sgemm", zeros), badLine("12"), setting("dgemm", "3")},
         {{&CrossoverTable::sgemm, -2}, {&CrossoverTable::dgemm, 3}}},
    };
    const std::string listPath = tempPath("list.txt"), logPath = tempPath("log.txt");
    for (const Case& c : cases) {
        for (int32_t verbose : {1, 0}) {
            SCOPED_TRACE(c.content.substr(0, 40) + (verbose ? "" : " (verbose off)"));
            crossoverTable = defaults;
            writeFile(listPath, c.content);
            FILE* list = std::fopen(listPath.c_str(), "r");
            linkState.logStream = std::fopen(logPath.c_str(), "w");
            linkState.verbose = verbose;
            linkApplyCrossoverList(list);
            std::fclose(list);
            std::fclose(linkState.logStream);
            Lines expected;
            for (const auto& line : c.lines)
                if (verbose || line.starts_with("vorn error")) expected.push_back(line);
            EXPECT_EQ(readLines(logPath), expected);
            for (const auto& [entry, value] : c.entries)
                EXPECT_EQ(crossoverTable.*entry, value == -2 ? defaults.*entry : value);
        }
    }
}

TEST(CrossoverList, UnreadableListKeepsTheDefaults) {
    setEnv("VORN_CROSSOVER_LIST", "/nonexistent-folder/crossovers.txt");
    StdoutCapture capture;
    linkInitGpu();
    EXPECT_EQ(capture.stop(), "vorn error: cannot read crossover list '/nonexistent-folder/crossovers.txt'\n");
    EXPECT_EQ(std::memcmp(&crossoverTable, &defaults, sizeof defaults), 0);
}
