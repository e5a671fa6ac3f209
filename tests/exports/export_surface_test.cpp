// What the link library shows to the outside: its exported names, and lsame,
// which it computes itself. (Each spelling reaching its routine with every word:
// the CPU-only routines' tests, which call each spelling in turn.)
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <tuple>

#include "exports/routine_classes.h"
#include "exports_test.h"
#include "published_prototypes.h"

// The dynamic symbols are the export list, nothing more and nothing less: 6,660
// names, the four spellings of each forwarded, logged and routed routine
// and of lsame, and the four control calls. On Windows the build checks the DLL's
// export table (tools/check-windows-exports.sh).
#if !defined(_WIN32)
TEST(ExportSurface, DynamicSymbolsAreExactlyTheExportList) {
    std::multiset<std::string> expected = {"vornLinkSetCpuAlways", "vornLinkSetGpuAlways", "vornLinkClearCpuAlways",
                                           "vornLinkClearGpuAlways"};
    auto add = [&](const std::string& routine) {
        for (const auto& name : spellings(routine)) expected.insert(name);
    };
    add("lsame");
    for (const char* routine : routine_classes::forwardedRoutines) add(routine);
    for (const char* routine : routine_classes::loggedRoutines) add(routine);
#define ROUTED(base, ...) add(#base);
#include "routines/routed/routed_routines.inc"
#undef ROUTED
    EXPECT_EQ(expected.size(), 6660u);
    EXPECT_EQ(definedDynamicSymbols(VORN_TEST_NM, VORN_TEST_LINK_LIBRARY), expected);
}
#endif

// lsame folds the 26 ASCII letters and nothing else, by every spelling.
// As the first calls of a process it starts nothing: no log line, and the GPU
// library is never initialised, which the emulator's record would show. The call
// of a forwarded routine after it does start up, and is recorded.
TEST(Lsame, FoldsOnlyAsciiLettersAndStartsNothing) {
    setEnv("VORN_VERBOSE", "1");
    const std::string record = tempPath("emulator.record");
    setEnv("VORN_EMU_RECORD", record);
    void* link = openLibrary(VORN_TEST_LINK_LIBRARY);
    ASSERT_NE(link, nullptr) << VORN_TEST_LINK_LIBRARY;
    const std::tuple<unsigned char, unsigned char, int32_t> cases[] = {
        {'a', 'A', 1}, {'A', 'a', 1}, {'z', 'Z', 1}, {'A', 'B', 0}, {'b', 'A', 0},   {'N', 'n', 1}, {'7', '7', 1},
        {'[', '[', 1}, {200, 200, 1}, {255, 255, 1}, {'[', '{', 0}, {64, 96, 0},     {96, 64, 0},   {0xE1, 0xC1, 0},
        {'{', '[', 0}, {0, 0, 1}};
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
