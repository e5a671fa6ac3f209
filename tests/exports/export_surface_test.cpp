// What the link library shows to the outside: its exported names, the four
// spellings of each routine reaching one implementation, and lsame, which it
// computes itself.
#include <algorithm>
#include <cctype>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

#include "exports_test.h"

namespace {

// The routines that stand: the forwarded, logged and routed ones.
std::vector<RoutineFacts> standingRoutines() {
    std::vector<RoutineFacts> routines = forwardedTable();
    auto add = [&](const char* name, int words) {
        RoutineFacts& routine = routines.emplace_back();
        routine.name = name, routine.words = words;
    };
#define LOGGED(name, count, ...) add(#name, count);
#include "routines/cpu/logged_routines.inc"
#undef LOGGED
#define ROUTED(base, Root, count, gpuFunction) add(#base, count);
#include "routines/routed/routed_routines.inc"
#undef ROUTED
    return routines;
}

int32_t lsameOf(void* function, unsigned char a, unsigned char b) {
    return reinterpret_cast<int32_t (*)(const void*, const void*)>(function)(&a, &b);
}

}  // namespace

// The dynamic symbols are the export list, nothing more and nothing less: 6,096
// names, the four spellings of each routine and of lsame, and the four control
// calls. On Windows the build checks the DLL's export table
// (tools/check-windows-exports.sh).
#if !defined(_WIN32)
TEST(ExportSurface, DynamicSymbolsAreExactlyTheExportList) {
    std::multiset<std::string> expected = {"vornLinkSetCpuAlways", "vornLinkSetGpuAlways", "vornLinkClearCpuAlways",
                                           "vornLinkClearGpuAlways", "lsame", "lsame_", "LSAME", "LSAME_"};
    for (const auto& routine : standingRoutines())
        for (const auto& name : spellings(routine.name)) expected.insert(name);
    EXPECT_EQ(expected.size(), 6096u);
    std::multiset<std::string> exported;
    FILE* nm = popen(VORN_TEST_NM " -D --defined-only " VORN_TEST_LINK_LIBRARY, "r");
    ASSERT_NE(nm, nullptr);
    for (char line[512]; std::fgets(line, sizeof line, nm) != nullptr;) {
        std::istringstream fields(line);
        std::string address, type, name;
        fields >> address >> type >> name;
        exported.insert(name);
    }
    EXPECT_EQ(pclose(nm), 0);
    EXPECT_EQ(exported, expected);
}
#endif

// Over a CPU library without the routines: each spelling of a routine gives the
// same lines, with the lower-case name, and looks up the lower-case symbol.
TEST(ExportSurface, FourSpellingsReachOneImplementation) {
    setEnv("VORN_CPU_LIB", libraryWithoutLapack);
    setEnv("VORN_VERBOSE", "1");
    void* link = openLinkLibrary();
    // Every word addresses a cell whose integer reads 76 and whose character is 'L'.
    std::vector<std::array<int64_t, 2>> cells(32, {'L', 0});
    std::vector<void*> words;
    for (auto& cell : cells) words.push_back(cell.data());
    Findings findings;
    StdoutCapture output;
    callRoutine(librarySymbol(link, "dlamch"), Result::real64, {cells[0].data()});  // the start-up's lines
    output.next();

    for (const auto& routine : standingRoutines()) {
        const auto names = spellings(routine.name);
        void* trampoline = librarySymbol(link, names[1].c_str());
        findings.expect(trampoline != nullptr && librarySymbol(link, names[2].c_str()) == trampoline &&
                            librarySymbol(link, names[3].c_str()) == trampoline &&
                            librarySymbol(link, names[0].c_str()) != trampoline,
                        routine.name + ": addresses");
        const std::vector<void*> passed(words.begin(), words.begin() + routine.words);
        std::vector<std::string> first;
        for (const auto& name : names) {
            callRoutine(librarySymbol(link, name.c_str()), routine.result, passed);
            const auto lines = output.next();
            if (name == names[0]) first = lines;
            findings.expect(lines == first, name + ": lines" + joined(lines));
        }
        const std::string missing = "Failed to read symbol '" + routine.name + "' from '" + libraryWithoutLapack + "'";
        findings.expect(!first.empty() && first.front().starts_with("vorn info:  " + routine.name + " (") &&
                            first.back() == "vorn error: " + missing,
                        routine.name + ": lines" + joined(first));
    }
    output.stop();
    findings.report();
}

// lsame folds the 26 ASCII letters and nothing else; every spelling is one body.
// As the first calls of a process it starts nothing: no log line, and the GPU
// library is never initialised, which the emulator's record would show. The call
// of a forwarded routine after it does start up, and is recorded.
TEST(Lsame, FoldsOnlyAsciiLettersAndStartsNothing) {
    setEnv("VORN_VERBOSE", "1");
    const std::string record = tempPath("emulator.record");
    setEnv("VORN_EMU_RECORD", record);
    void* link = openLinkLibrary();
    struct Case {
        unsigned char a, b;
        int32_t same;
    };
    const Case cases[] = {{'a', 'A', 1}, {'A', 'a', 1}, {'z', 'Z', 1}, {'A', 'B', 0},   {'b', 'A', 0},
                          {'N', 'n', 1}, {'7', '7', 1}, {'[', '[', 1}, {200, 200, 1},   {255, 255, 1},
                          {'[', '{', 0}, {64, 96, 0},   {96, 64, 0},   {0xE1, 0xC1, 0}, {0, 0, 1}};
    StdoutCapture output;
    for (const auto& name : spellings("lsame")) {
        void* function = librarySymbol(link, name.c_str());
        EXPECT_EQ(function, librarySymbol(link, "lsame")) << name;
        for (const Case& c : cases)
            EXPECT_EQ(lsameOf(function, c.a, c.b), c.same) << name << " " << int(c.a) << " " << int(c.b);
    }
    EXPECT_THAT(output.next(), testing::IsEmpty());
    EXPECT_EQ(readFile(record), "");
    char cmach = 'E';
    callRoutine(librarySymbol(link, "dlamch"), Result::real64, {&cmach});
    output.stop();
    EXPECT_THAT(readFile(record), testing::StartsWith("vornInitialize()"));
}
