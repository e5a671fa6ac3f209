// The crossover table's names held against the counts that its definition
// states; the crossover list file:
// how its lines read and how names are looked up (one table of lists, each
// applied to the defaults with info lines on and off), and a list the start-up
// cannot read. Each test is its own
// process. That the start-up reads a list, also after a failed GPU start, and
// that the routing follows it are the link tests'.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <string>

#include "core/link_state.h"
#include "core/startup.h"
#include "routing/crossover_list.h"
#include "routing/crossover_table.h"
#include "test_support.h"

using Lines = std::vector<std::string>;

namespace {

const CrossoverTable defaults = crossoverTable;  // copied before any start-up

// An entry of a table by its name in the pairing.
int32_t entryOf(const CrossoverTable& table, const std::string& name) {
    for (const auto& pair : crossoverNames)
        if (name == pair.name) return table.*pair.entry;
    ADD_FAILURE() << "no entry " << name;
    return 0;
}

using Text = const std::string&;
std::string setting(Text name, Text value) {
    return "vorn info:  setting crossover for " + name + " to '" + value + "'";
}
std::string invalid(Text name, Text value) {
    return "vorn error: invalid crossover for '" + name + "' (" + value + ")";
}
std::string badLine(Text text) { return "vorn error: invalid crossover specification: " + text; }

}  // namespace

// Each list applied to the defaults: the log's lines (with verbose off, only its
// error lines) and the entries it leaves.
TEST(CrossoverList, LinesReadAsTheListFileDefines) {
    const std::string longName(300, 'x'), zeros(255 - 6, '0');  // "sgemm=" and 249 zeros fill 255 bytes
    constexpr int32_t unchanged = -2;
    struct Case {
        std::string content;
        Lines lines;
        std::vector<std::pair<std::string, int32_t>> entries;
    };
    const Case cases[] = {
        // Numbers as strtol reads them, clamped to 32 bits; 0 and below are invalid.
        {"sgemm=0x100\ndgemm=0100\ncgemm=12x\nzgemm=  +7\nsgetrf=4294967296\ndgetrf=-4294967296\n"
         "cgetrf=0\nzgetrf=-1\nsgesv=abc\n",
         {setting("sgemm", "0x100"), setting("dgemm", "0100"), setting("cgemm", "12x"), setting("zgemm", "  +7"),
          setting("sgetrf", "4294967296"), invalid("dgetrf", "-4294967296"), invalid("cgetrf", "0"),
          invalid("zgetrf", "-1"), invalid("sgesv", "abc")},
         {{"sgemm", 256}, {"dgemm", 64}, {"cgemm", 12}, {"zgemm", 7}, {"sgetrf", INT32_MAX},
          {"dgetrf", unchanged}, {"cgetrf", unchanged}, {"zgetrf", unchanged}, {"sgesv", unchanged}}},
        // "never" and every beginning of it exclude; nothing else does.
        {"sgemm=\ndgemm=n\nzgemm=nev\nspotrf=never\ndgetrf=nevermore\ncgetrf=Never\nzgetrf=never \n",
         {setting("sgemm", ""), setting("dgemm", "n"), setting("zgemm", "nev"), setting("spotrf", "never"),
          invalid("dgetrf", "nevermore"), invalid("cgetrf", "Never"), invalid("zgetrf", "never ")},
         {{"sgemm", -1}, {"dgemm", -1}, {"zgemm", -1}, {"spotrf", -1}, {"dgetrf", unchanged}}},
        // Names compared whole and in their case, up to the table's last entry; an
        // unknown one passes silently, but a bad value is reported before the name
        // is looked at. An entry that no routine reads is set all the same.
        {"SPOTRF=5\nspotrf = 5\n spotrf=5\nspotr=5\nspotrfx=5\npotrf=5\nnosuchroutine=5\n# tuned values\n"
         "nosuchroutine=0\ncherdb=7\nzcgesv=9\n",
         {badLine("# tuned values"), invalid("nosuchroutine", "0"), setting("cherdb", "7"), setting("zcgesv", "9")},
         {{"spotrf", unchanged}, {"cherdb", 7}, {"zcgesv", 9}}},
        // The first empty line ends the reading; an empty file or first line reads nothing.
        {"spotrf=8\n\nsgemm=5\n", {setting("spotrf", "8")}, {{"sgemm", unchanged}}},
        {"\nspotrf=8\n", {}, {{"spotrf", unchanged}}},
        {"", {}, {}},
        // Windows line ends read as newlines; a last line without one counts; a
        // later line for the same name holds.
        {"sgemm=5\r\ndgemm=6\nspotrf=never\r\nspotrf=9",
         {setting("sgemm", "5"), setting("dgemm", "6"), setting("spotrf", "never"), setting("spotrf", "9")},
         {{"sgemm", 5}, {"spotrf", 9}}},
        // A line longer than 255 bytes is read in pieces of 255, each a line of its own.
        {longName + "=5\nsgemm=" + zeros + "12\ndgemm=3\n",
         {badLine(longName.substr(0, 255)), invalid("sgemm", zeros), badLine("12"), setting("dgemm", "3")},
         {{"sgemm", unchanged}, {"dgemm", 3}}},
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
            EXPECT_EQ(readLines(logPath), verbose ? c.lines : linesStartingWith(c.lines, "vorn error"));
            for (const auto& [name, value] : c.entries)
                EXPECT_EQ(entryOf(crossoverTable, name), value == unchanged ? entryOf(defaults, name) : value) << name;
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

// 204 unique names: 34 roots in the four precisions sdcz, 33 in ds or cz (15 and
// 18), and the single names dsgesv and zcgesv. (Each routed routine's default is
// held at its crossover by the family tests' rows, which cover every one.)
TEST(CrossoverTable, NamesByRootAsTheDesignCounts) {
    std::map<std::string, std::string> precisionsOfRoot;
    for (const auto& [name, entry] : crossoverNames)
        precisionsOfRoot[name == std::string("dsgesv") || name == std::string("zcgesv") ? name : name + 1] += name[0];
    std::map<std::string, int> rootsByPrecisions;
    for (auto& [root, precisions] : precisionsOfRoot) {
        std::sort(precisions.begin(), precisions.end());
        rootsByPrecisions[precisions.size() == 1 ? root : precisions] += 1;
    }
    EXPECT_EQ(rootsByPrecisions, (std::map<std::string, int>{{"cdsz", 34}, {"ds", 15}, {"cz", 18}, {"dsgesv", 1},
                                                              {"zcgesv", 1}}));
}
