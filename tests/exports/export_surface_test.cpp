// What the link library shows to the outside: its exported names (on Windows the
// loaded DLL's export table, made from the .def file), the four spellings of each
// routine reaching one implementation, and lsame, which it computes itself.
#include <algorithm>
#include <cctype>
#include <numeric>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

#include "exports_test.h"

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

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

std::string upper(std::string text) {
    for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}
std::vector<std::string> spellings(const std::string& name) {
    return {name, name + "_", upper(name), upper(name) + "_"};
}

// Every name the library must export, in ascending byte order.
std::vector<std::string> expectedNames() {
    std::vector<std::string> names = {"vornLinkSetCpuAlways", "vornLinkSetGpuAlways", "vornLinkClearCpuAlways",
                                      "vornLinkClearGpuAlways"};
    for (const auto& routine : standingRoutines())
        for (const auto& name : spellings(routine.name)) names.push_back(name);
    for (const auto& name : spellings("lsame")) names.push_back(name);
    std::sort(names.begin(), names.end());
    return names;
}

int32_t lsameOf(void* function, unsigned char a, unsigned char b) {
    return reinterpret_cast<int32_t (*)(const void*, const void*)>(function)(&a, &b);
}

}  // namespace

#if defined(_WIN32)
// The loader's view of the DLL: the export directory of the module it mapped. Its
// name table is sorted by byte order (the loader searches it by bisection); each
// name's ordinal is the ordinal base plus the name's slot in the address table.
TEST(ExportSurface, ExportTableIsExactlyTheExportListWithOrdinalsInByteOrder) {
    const auto base = static_cast<const unsigned char*>(openLinkLibrary());
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& entry = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* directory = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + entry.VirtualAddress);
    const auto* nameRvas = reinterpret_cast<const DWORD*>(base + directory->AddressOfNames);
    const auto* slots = reinterpret_cast<const WORD*>(base + directory->AddressOfNameOrdinals);

    EXPECT_STREQ(reinterpret_cast<const char*>(base + directory->Name), "vorn_lapack_link.dll");
    EXPECT_EQ(directory->Base, 1u);
    EXPECT_EQ(directory->NumberOfFunctions, directory->NumberOfNames);  // no export without a name
    std::vector<std::string> names;
    std::vector<unsigned> ordinals;
    for (DWORD i = 0; i < directory->NumberOfNames; ++i) {
        names.emplace_back(reinterpret_cast<const char*>(base + nameRvas[i]));
        ordinals.push_back(directory->Base + slots[i]);
    }
    EXPECT_EQ(names, expectedNames());
    std::vector<unsigned> ascending(names.size());
    std::iota(ascending.begin(), ascending.end(), 1u);
    EXPECT_EQ(ordinals, ascending);
}
#else
TEST(ExportSurface, DynamicSymbolsAreExactlyTheExportList) {
    const auto expected = expectedNames();
    std::set<std::string> exported;
    FILE* nm = popen(VORN_TEST_NM " -D --defined-only " VORN_TEST_LINK_LIBRARY, "r");
    ASSERT_NE(nm, nullptr);
    for (char line[512]; std::fgets(line, sizeof line, nm) != nullptr;) {
        std::istringstream fields(line);
        std::string address, type, name;
        fields >> address >> type >> name;
        exported.insert(name);
    }
    EXPECT_EQ(pclose(nm), 0);
    EXPECT_EQ(exported, std::set<std::string>(expected.begin(), expected.end()));
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
    Findings findings;
    OutputLines output;
    callRoutine(librarySymbol(link, "dlamch"), Result::real64, {cells[0].data()});  // the start-up's lines
    output.next();

    for (const auto& routine : standingRoutines()) {
        const auto names = spellings(routine.name);
        void* trampoline = librarySymbol(link, names[1].c_str());
        findings.expect(trampoline != nullptr && librarySymbol(link, names[2].c_str()) == trampoline &&
                            librarySymbol(link, names[3].c_str()) == trampoline && librarySymbol(link, names[0].c_str()) != trampoline,
                        routine.name + ": addresses");
        std::vector<void*> passed;
        for (int word = 0; word < routine.words; ++word) passed.push_back(cells[word].data());
        std::vector<std::string> first;
        for (const auto& name : names) {
            callRoutine(librarySymbol(link, name.c_str()), routine.result, passed);
            const auto lines = output.next();
            if (name == names[0]) first = lines;
            findings.expect(lines == first, name + ": lines" + joined(lines));
        }
        const std::string missing = "vorn error: Failed to read symbol '" + routine.name + "' from '" + libraryWithoutLapack + "'";
        findings.expect(!first.empty() && first.front().starts_with("vorn info:  " + routine.name + " (") &&
                            first.back() == missing,
                        routine.name + ": lines" + joined(first));
    }
    output.finish();
    findings.report();
}

// lsame folds the 26 ASCII letters and nothing else; every spelling is one body.
TEST(Lsame, ComparesCharactersFoldingOnlyAsciiLetters) {
    void* link = openLinkLibrary();
    struct Case {
        unsigned char a, b;
        int32_t same;
    };
    const Case cases[] = {{'a', 'A', 1}, {'A', 'a', 1}, {'z', 'Z', 1}, {'A', 'B', 0},   {'b', 'A', 0},
                          {'N', 'n', 1}, {'7', '7', 1}, {'[', '[', 1}, {200, 200, 1},   {255, 255, 1},
                          {'[', '{', 0}, {64, 96, 0},   {96, 64, 0},   {0xE1, 0xC1, 0}, {0, 0, 1}};
    for (const auto& name : spellings("lsame")) {
        void* function = librarySymbol(link, name.c_str());
        ASSERT_EQ(function, librarySymbol(link, "lsame")) << name;
        for (const Case& c : cases) EXPECT_EQ(lsameOf(function, c.a, c.b), c.same) << int(c.a) << " " << int(c.b);
    }
}

// As the first call of a process, LSAME starts nothing: no log line, and the GPU
// library is never initialised, which the emulator's record would show. The call
// of a forwarded routine after it does start up, and is recorded.
TEST(Lsame, FirstCallOfAProcessStartsNothing) {
    setEnv("VORN_VERBOSE", "1");
    const std::string record = tempPath("emulator.record");
    setEnv("VORN_EMU_RECORD", record);
    void* link = openLinkLibrary();
    OutputLines output;
    EXPECT_EQ(lsameOf(librarySymbol(link, "LSAME"), 'q', 'Q'), 1);
    EXPECT_THAT(output.next(), testing::IsEmpty());
    EXPECT_EQ(readFile(record), "");
    char cmach = 'E';
    callRoutine(librarySymbol(link, "dlamch"), Result::real64, {&cmach});
    output.finish();
    EXPECT_THAT(readFile(record), testing::StartsWith("vornInitialize()"));
}
