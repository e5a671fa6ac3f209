// The crossover table held against the counts and values that its definition
// states, reading the names the table actually holds; the crossover list file:
// how its lines read (one table of lists, each applied to the defaults with info
// lines on and off), and a list the start-up cannot read. Each test is its own
// process. That the start-up reads a list, also after a failed GPU start, and
// that the routing follows it are the link tests'.
#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>

#include "core/link_state.h"
#include "core/startup.h"
#include "routing/crossover_list.h"
#include "routing/crossover_table.h"
#include "test_support.h"

using Lines = std::vector<std::string>;

namespace {

const CrossoverTable defaults = crossoverTable;  // copied before any start-up

int32_t defaultOf(const std::string& name) {
    for (const auto& pair : crossoverNames)
        if (name == pair.name) return crossoverTable.*pair.entry;
    ADD_FAILURE() << "no entry " << name;
    return 0;
}

// A name's root: without its precision letter. dsgesv and zcgesv are roots of one.
std::string rootOf(const std::string& name) {
    return name == "dsgesv" || name == "zcgesv" ? name : name.substr(1);
}

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

TEST(CrossoverTable, RootsAndPrecisionsAddUpTo204Names) {
    std::set<std::string> names;
    std::map<std::string, std::string> precisionsOfRoot;
    for (const auto& pair : crossoverNames) {
        EXPECT_TRUE(names.insert(pair.name).second) << "twice: " << pair.name;
        EXPECT_NE(std::string("sdcz").find(pair.name[0]), std::string::npos) << pair.name;
        precisionsOfRoot[rootOf(pair.name)] += pair.name[0];
    }
    EXPECT_EQ(names.size(), 204u);

    std::map<std::size_t, int> rootsByPrecisionCount;
    for (auto& [root, precisions] : precisionsOfRoot) {
        std::sort(precisions.begin(), precisions.end());
        rootsByPrecisionCount[precisions.size()] += 1;
        if (precisions.size() == 4) {
            EXPECT_EQ(precisions, "cdsz") << root;
        }
        if (precisions.size() == 2) {
            EXPECT_TRUE(precisions == "ds" || precisions == "cz") << root;
        }
    }
    // 34 roots in four precisions, 33 in two, and two single names.
    EXPECT_EQ(rootsByPrecisionCount, (std::map<std::size_t, int>{{1, 2}, {2, 33}, {4, 34}}));
    EXPECT_EQ(precisionsOfRoot.count("dsgesv") + precisionsOfRoot.count("zcgesv"), 2u);
}

TEST(CrossoverTable, DefaultsArePowersOfTwoSharedByEachRoot) {
    const std::set<int32_t> stated{256, 512, 1024, 262144, 1048576, 4194304, 1073741824};
    std::map<std::string, int32_t> defaultOfRoot;
    for (const auto& pair : crossoverNames) {
        const int32_t value = crossoverTable.*pair.entry;
        EXPECT_TRUE(stated.count(value)) << pair.name << " = " << value;
        auto [it, first] = defaultOfRoot.emplace(rootOf(pair.name), value);
        EXPECT_TRUE(first || it->second == value) << pair.name << " differs from its root";
    }
    // The routed routines' defaults are the family tests' rows (tests/link).
    EXPECT_EQ(defaultOf("sstebz"), 256);
    for (const char* name : {"sggrqf", "dggrqf", "cggrqf", "zggrqf"}) EXPECT_EQ(defaultOf(name), 1073741824);
    int largest = 0;
    for (const auto& pair : crossoverNames) largest += (crossoverTable.*pair.entry == 1073741824);
    EXPECT_EQ(largest, 4);
    // Entries that no routine reads are ordinary entries all the same.
    for (const char* name : {"cherdb", "zherdb", "ssyrdb", "dsyrdb", "csymv", "zsymv"}) EXPECT_GT(defaultOf(name), 0);
}

TEST(CrossoverTable, LookUpComparesWholeNamesInTheirCase) {
    int32_t* sgemm = linkFindCrossover("sgemm");
    ASSERT_EQ(sgemm, &crossoverTable.sgemm);
    ASSERT_EQ(linkFindCrossover("zcgesv"), &crossoverTable.zcgesv);
    for (const char* name : {"SGEMM", "sgem", "sgemmx", " sgemm", "sgemm ", "", "gemm"})
        EXPECT_EQ(linkFindCrossover(name), nullptr) << "'" << name << "'";
}
