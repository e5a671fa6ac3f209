// What the link library shows to the outside: its exported names, the four
// spellings of each routine reaching one implementation, and lsame, which it
// computes itself.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <tuple>

#include "exports_test.h"
#include "published_prototypes.h"

namespace {

// The routines that stand, as many of each class as the design states: 1,417
// forwarded, 48 logged and 57 routed.
std::vector<RoutineFacts> standingRoutines() {
    std::vector<RoutineFacts> routines = forwardedTable();
    EXPECT_EQ(routines.size(), 1417u);
    auto add = [&](const char* name, int words) {
        RoutineFacts& routine = routines.emplace_back();
        routine.name = name, routine.words = words;
    };
#define LOGGED(name, count, ...) add(#name, count);
#include "routines/cpu/logged_routines.inc"
#undef LOGGED
    EXPECT_EQ(routines.size(), 1417u + 48);
#define ROUTED(base, Root, count, gpuFunction) add(#base, count);
#include "routines/routed/routed_routines.inc"
#undef ROUTED
    EXPECT_EQ(routines.size(), 1417u + 48 + 57);
    return routines;
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
    EXPECT_EQ(definedDynamicSymbols(VORN_TEST_NM, VORN_TEST_LINK_LIBRARY), expected);
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
        const std::vector<void*> passed(words.begin(), words.begin() + routine.words);
        const std::string missing = "Failed to read symbol '" + routine.name + "' from '" + libraryWithoutLapack + "'";
        std::vector<std::string> first;
        for (const auto& name : spellings(routine.name)) {
            void* function = librarySymbol(link, name.c_str());
            if (function != nullptr) callRoutine(function, routine.result, passed);
            const auto lines = output.next();
            if (first.empty()) first = lines;
            findings.expect(lines == first && !lines.empty() && lines.back() == "vorn error: " + missing &&
                                lines.front().starts_with("vorn info:  " + routine.name + " ("),
                            name + ": lines" + joined(lines));
        }
    }
    output.stop();
    findings.report();
}

// lsame folds the 26 ASCII letters and nothing else, by every spelling.
// As the first calls of a process it starts nothing: no log line, and the GPU
// library is never initialised, which the emulator's record would show. The call
// of a forwarded routine after it does start up, and is recorded.
TEST(Lsame, FoldsOnlyAsciiLettersAndStartsNothing) {
    setEnv("VORN_VERBOSE", "1");
    const std::string record = tempPath("emulator.record");
    setEnv("VORN_EMU_RECORD", record);
    void* link = openLinkLibrary();
    const std::tuple<unsigned char, unsigned char, int32_t> cases[] = {
        {'a', 'A', 1}, {'A', 'a', 1}, {'z', 'Z', 1}, {'A', 'B', 0}, {'b', 'A', 0},   {'N', 'n', 1}, {'7', '7', 1},
        {'[', '[', 1}, {200, 200, 1}, {255, 255, 1}, {'[', '{', 0}, {64, 96, 0},     {96, 64, 0},   {0xE1, 0xC1, 0},
        {0, 0, 1}};
    StdoutCapture output;
    for (const auto& name : spellings("lsame")) {
        const auto lsame = reinterpret_cast<int32_t (*)(const void*, const void*)>(librarySymbol(link, name.c_str()));
        ASSERT_NE(lsame, nullptr) << name;
        for (const auto& [a, b, same] : cases) EXPECT_EQ(lsame(&a, &b), same) << name << " " << int(a) << " " << int(b);
    }
    EXPECT_THAT(output.next(), testing::IsEmpty());
    EXPECT_EQ(readFile(record), "");
    char cmach = 'E';
    callRoutine(librarySymbol(link, "dlamch"), Result::real64, {&cmach});
    output.stop();
    EXPECT_THAT(readFile(record), testing::StartsWith("vornInitialize()"));
}
