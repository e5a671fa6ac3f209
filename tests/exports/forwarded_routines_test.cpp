// The forwarded routines through the link library: every one of them, called by
// its lower-case name with its table's word count, over a recording CPU library
// (the words it receives, the log's lines, info, work queries, function results)
// and over a CPU library that cannot be reached (nothing touched, results of 0).
#include <map>

#include "exports_test.h"
#include "recording_forwarded_cpu.h"

namespace {

const std::vector<RoutineFacts> routines = forwardedTable();

bool contains(const std::vector<int>& list, int value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

// The words of one call: valid memory where the frame or the CPU routine may read
// or write (info, tested words, work lines, a complex result), each cell filled
// with a pattern; elsewhere distinct addresses that fault if anything reads them.
struct Call {
    static constexpr unsigned char pattern = 0xA5;
    std::vector<std::array<unsigned char, 16>> cells, before;
    std::vector<void*> words;

    // `query` puts -1 in the low half of one tested word (a different one from
    // routine to routine), 0 in the others; the high halves keep the other value,
    // so only a 32-bit reading sees the query.
    Call(const RoutineFacts& routine, std::size_t index, bool query) : cells(routine.words), words(routine.words) {
        void* const noAccess = noAccessPage();
        const int queried = routine.tested.empty() ? 0 : routine.tested[index % routine.tested.size()];
        for (int word = 1; word <= routine.words; ++word) {
            auto& cell = cells[word - 1];
            cell.fill(pattern);
            const bool valid = (routine.info && word == routine.words) || contains(routine.tested, word) ||
                               std::any_of(routine.lines.begin(), routine.lines.end(),
                                           [&](const WorkLine& line) { return line.word == word; }) ||
                               (routine.result == Result::complex && word == 1);
            words[word - 1] = valid ? static_cast<void*>(cell.data()) : static_cast<char*>(noAccess) + 64 * word;
            if (contains(routine.tested, word)) {
                const int32_t halves[2] = {query && word == queried ? -1 : 0, query && word == queried ? 0 : -1};
                std::memcpy(cell.data(), halves, sizeof halves);
            }
        }
        // xerbla's third word is a length by value.
        if (routine.name == "xerbla") words[2] = reinterpret_cast<void*>(0xFEDCBA9800000011);
        before = cells;
    }
};

std::string entryLine(const std::string& name) { return "vorn info:  " + name + " ()"; }
const std::string issuingLine = "vorn info:  issuing to CPU (no GPU function available)";
}  // namespace

TEST(ForwardedRoutines, ClassesHaveTheirStatedSizes) {
    std::map<std::pair<bool, bool>, int> classes;
    std::map<std::size_t, int> lineCounts;
    std::map<Result, int> results;
    std::vector<std::string> noInfoTested, fourLines;
    for (const auto& routine : routines) {
        ++classes[{routine.info, !routine.tested.empty()}];
        if (!routine.tested.empty()) ++lineCounts[routine.lines.size()];
        if (!routine.info && !routine.tested.empty()) noInfoTested.push_back(routine.name);
        if (routine.lines.size() == 4) fourLines.push_back(routine.name);
        ++results[routine.result];
    }
    EXPECT_EQ(routines.size(), 1417u);
    EXPECT_EQ(classes[std::make_pair(true, false)], 743);
    EXPECT_EQ(classes[std::make_pair(true, true)], 216);
    EXPECT_EQ(classes[std::make_pair(false, false)], 450);
    EXPECT_THAT(noInfoTested, testing::UnorderedElementsAre("claqr2", "dlaqr2", "slaqr2", "zlaqr2", "claqr3", "dlaqr3",
                                                            "slaqr3", "zlaqr3"));
    EXPECT_EQ(lineCounts, (std::map<std::size_t, int>{{1, 108}, {2, 78}, {3, 34}, {4, 4}}));
    EXPECT_THAT(fourLines, testing::UnorderedElementsAre("cggesx", "zggesx", "cggevx", "zggevx"));
    EXPECT_EQ(results, (std::map<Result, int>{{Result::none, 1417 - 112},
                                              {Result::real32, 38},
                                              {Result::real64, 39},
                                              {Result::int32, 28},
                                              {Result::byte, 1},
                                              {Result::complex, 6}}));
}

// Each routine is called twice: with info 0 and no query, then with a non-zero
// info and one tested word at -1. The CPU routine writes info and element 1 of
// each work line, and a function returns chosen bits.
TEST(ForwardedRoutines, ReachTheirCpuRoutineWithTheirWordsAndReport) {
    setEnv("VORN_CPU_LIB", RECORDING_CPU_PATH);
    setEnv("VORN_VERBOSE", "1");
    void* link = openLinkLibrary();
    void* cpu = openLibrary(RECORDING_CPU_PATH);  // the one the link library loads
    ForwardedCpuRecord& record = *reinterpret_cast<RecordingForwardedCpu>(librarySymbol(cpu, "recordingForwardedCpu"))();
    Findings findings;
    OutputLines output;

    // The first call of the process: verbose is read in the start-up, after the
    // place of the entry line.
    Call first(routines[0], 0, false);
    callRoutine(librarySymbol(link, routines[0].name.c_str()), routines[0].result, first.words);
    const auto firstLines = output.next();
    findings.expect(std::count(firstLines.begin(), firstLines.end(), entryLine(routines[0].name)) == 0 &&
                        firstLines.size() >= 2 && firstLines.end()[-2] == issuingLine &&
                        firstLines.back() == "vorn info:  done",
                    "first call's lines:" + joined(firstLines));

    for (std::size_t i = 0; i < routines.size(); ++i) {
        const RoutineFacts& routine = routines[i];
        for (bool query : {false, true}) {
            const std::string what = routine.name + (query ? " (query)" : "");
            Call call(routine, i, query);
            record.info = !query ? 0 : i % 2 ? -static_cast<int32_t>(i) - 1 : static_cast<int32_t>(i) + 1;
            record.result = 0xC0DE000000000000 ^ (uint64_t{i} << 24) ^ (query ? 0xA5A5A5A5 : 0x3C3C3C3C);
            const int calls = record.calls;
            const uint64_t result = callRoutine(librarySymbol(link, routine.name.c_str()), routine.result, call.words);

            std::vector<void*> expectedWords = call.words;
            if (routine.name == "xerbla") expectedWords[2] = reinterpret_cast<void*>(0x11);
            findings.expect(record.calls == calls + 1 && record.routine == routine.name &&
                                record.wordCount == routine.words &&
                                std::equal(expectedWords.begin(), expectedWords.end(), record.words),
                            what + ": words received");
            const int width = routine.result == Result::real64 ? 64 : routine.result == Result::byte ? 8 : 32;
            if (routine.result != Result::none && routine.result != Result::complex) {
                findings.expect(result == (record.result & (~uint64_t{0} >> (64 - width))), what + ": result");
            }
            // The CPU routine's info stands, the high half as the caller left it.
            if (routine.info) {
                auto& cell = call.cells.back();
                findings.expect(
                    std::memcmp(cell.data(), &record.info, 4) == 0 &&
                        std::all_of(cell.begin() + 4, cell.end(), [](auto c) { return c == Call::pattern; }),
                    what + ": info");
            }

            std::vector<std::string> expected = {entryLine(routine.name), issuingLine};
            if (routine.info && record.info != 0)
                expected.push_back("vorn info:  info returned as " + std::to_string(record.info));
            for (std::size_t k = 0; query && k < routine.lines.size(); ++k) {
                const int value = routine.lines[k].real ? -(10 * static_cast<int>(k) + 2) : 1000 + static_cast<int>(k);
                expected.push_back("vorn info:  work query returned " + std::to_string(value));
            }
            expected.push_back("vorn info:  done");
            const auto lines = output.next();
            findings.expect(lines == expected, what + ": lines" + joined(lines));
        }
    }
    // The other spellings of xerbla hand its length word on whole to the one
    // implementation, which passes only the low half.
    const RoutineFacts& xerbla =
        *std::find_if(routines.begin(), routines.end(), [](auto& r) { return r.name == "xerbla"; });
    for (const char* name : {"xerbla_", "XERBLA", "XERBLA_"}) {
        Call call(xerbla, 0, false);
        callRoutine(librarySymbol(link, name), Result::none, call.words);
        findings.expect(record.words[2] == reinterpret_cast<void*>(0x11) && record.words[1] == call.words[1],
                        std::string(name) + ": words received");
        const auto lines = output.next();
        findings.expect(!lines.empty() && lines.front() == entryLine("xerbla"), std::string(name) + ": lines");
    }
    output.finish();
    findings.report();
}

// A CPU routine that cannot be reached: its library is missing, or lacks the name.
struct Unreached {
    const char* name;
    const char* cpuLibrary;
    bool verbose;
};
void PrintTo(const Unreached& scenario, std::ostream* out) { *out << scenario.name; }
class UnreachedCpuRoutine : public testing::TestWithParam<Unreached> {};

TEST_P(UnreachedCpuRoutine, TouchesNothingAndGivesZero) {
    const Unreached& scenario = GetParam();
    const bool missingLibrary = std::string(scenario.cpuLibrary) != libraryWithoutLapack;
    setEnv("VORN_CPU_LIB", scenario.cpuLibrary);
    if (scenario.verbose) setEnv("VORN_VERBOSE", "1");
    void* link = openLinkLibrary();
    Findings findings;
    OutputLines output;

    // The first call: no entry line, whatever verbose says.
    Call first(routines[0], 0, false);
    callRoutine(librarySymbol(link, routines[0].name.c_str()), routines[0].result, first.words);
    const auto firstLines = output.next();
    findings.expect(std::count(firstLines.begin(), firstLines.end(), entryLine(routines[0].name)) == 0,
                    "first call's lines:" + joined(firstLines));

    for (std::size_t i = 0; i < routines.size(); ++i) {
        const RoutineFacts& routine = routines[i];
        for (int repeat = 0; repeat < 2; ++repeat) {
            Call call(routine, i, repeat == 1);
            const uint64_t result = callRoutine(librarySymbol(link, routine.name.c_str()), routine.result, call.words);
            findings.expect(result == 0, routine.name + ": result");
            findings.expect(call.cells == call.before, routine.name + ": memory written");
            std::vector<std::string> expected;
            if (scenario.verbose) expected.push_back(entryLine(routine.name));
            if (missingLibrary) {
                expected.push_back("vorn error: a previous attempt at initialization failed, cannot continue");
            } else {
                if (scenario.verbose) expected.push_back(issuingLine);
                expected.push_back("vorn error: Failed to read symbol '" + routine.name + "' from '" + libraryWithoutLapack + "'");
            }
            const auto lines = output.next();
            findings.expect(lines == expected, routine.name + ": lines" + joined(lines));
        }
    }
    output.finish();
    findings.report();
}
INSTANTIATE_TEST_SUITE_P(Scenarios, UnreachedCpuRoutine,
                         testing::Values(Unreached{"MissingLibrary", "libvorn-no-such-library.so", true},
                                         Unreached{"MissingSymbols", libraryWithoutLapack, false}),
                         [](const auto& info) { return std::string(info.param.name); });
