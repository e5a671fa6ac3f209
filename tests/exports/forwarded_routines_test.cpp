// The forwarded routines through the link library: every one of them, called by
// its lower-case name with its table's word count, over a recording CPU library
// (the words it receives, the log's lines, info, work queries, function results)
// and over a CPU library that cannot be reached (nothing touched, results of 0).
#include <map>
#include <regex>
#include <set>
#include <sstream>

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

// The logged CPU-only routines, held against their entry formats as the design
// gives them: the routines of a row, their word count and the conversions their
// entry line prints from word 1 on. Twelve have info as their last word.
namespace {
struct LoggedRow {
    const char* names;
    int words;
    const char* conversions;
};
const LoggedRow loggedRows[] = {
    {"zcposv", 14, "%c, %d, %d, %p, %d, %p, %d, %p, %d, %p"},
    {"cgemv zgemv", 11, "%c, %d, %d, (%f,%f), %p, %d, %p, %d, (%f,%f), %p, %d"},
    {"sgemv dgemv", 11, "%c, %d, %d, %f, %p, %d, %p, %d, %f, %p, %d"},
    {"slacpy dlacpy clacpy zlacpy", 7, "%c, %d, %d, %p, %d, %p, %d"},
    {"zlag2c slag2d dlag2s clag2z", 7, "%d, %d, %p, %d, %p, %d"},
    {"slar2v dlar2v clar2v zlar2v", 8, "%d, %p, %p, %p, %d, %p, %p, %d"},
    {"slarfb dlarfb clarfb zlarfb", 15, "%c, %c, %c, %c, %d, %d, %d, %p, %d, %p, %d, %p, %d"},
    {"slarfg dlarfg clarfg zlarfg", 5, "%d, %p, %p, %d, %p"},
    {"slargv dlargv clargv zlargv", 7, "%d, %p, %d, %p, %d, %p, %d"},
    {"slartv dlartv clartv zlartv", 8, "%d, %p, %d, %p, %d, %p, %p, %d"},
    {"slascl dlascl clascl zlascl", 10, "%c, %d, %d, %f, %f, %d, %d, %p, %d"},
    {"claset zlaset", 7, "%c, %d, %d, (%f,%f), (%f,%f), %p, %d"},
    {"slaset dlaset", 7, "%c, %d, %d, %f, %f, %p, %d"},
    {"slasr dlasr clasr zlasr", 9, "%c, %c, %c, %d, %d, %p, %p, %p, %d"},
    {"zlat2c dlat2s", 7, "%c, %d, %p, %d, %p, %d"},
    {"dsposv", 13, "%c, %d, %d, %p, %d, %p, %d, %p, %d, %p"},
};
const std::set<std::string> loggedWithInfo = {"clag2z", "dlag2s", "slag2d", "zlag2c", "dlat2s", "zlat2c",
                                              "clascl", "dlascl", "slascl", "zlascl", "dsposv", "zcposv"};

struct LoggedCall {
    std::string name, entry;
    int words;
    bool info;
    std::vector<std::array<unsigned char, 16>> cells;
    std::vector<void*> pointers;
};

// One call of each logged routine. Each printed word's cell holds a value of its
// conversion's type (a letter, an integer, a real or complex of the routine's
// precision), so the expected line can be formatted from the same cells; info
// holds a pattern in both halves.
std::vector<LoggedCall> loggedCalls() {
    std::vector<LoggedCall> calls;
    for (const LoggedRow& row : loggedRows) {
        std::istringstream names(row.names);
        for (std::string name; names >> name;) {
            LoggedCall& call = calls.emplace_back();
            call.name = name, call.words = row.words, call.info = loggedWithInfo.count(name) > 0;
            call.cells.resize(row.words);
            for (auto& cell : call.cells) cell.fill(0xA5);
            for (auto& cell : call.cells) call.pointers.push_back(cell.data());
            const bool single = name[0] == 's' || name[0] == 'c';
            auto real = [&](unsigned char* at, double value) -> std::string {
                if (single) {
                    const float f = static_cast<float>(value);
                    std::memcpy(at, &f, 4);
                } else {
                    std::memcpy(at, &value, 8);
                }
                char text[64];
                std::snprintf(text, sizeof text, "%f", value);
                return text;
            };
            std::string entry = "vorn info:  " + name + " (", separator;
            const std::string list = row.conversions;
            const std::regex conversion(R"(\(%f,%f\)|%[cdpf])");
            int word = 0;
            for (auto it = std::sregex_iterator(list.begin(), list.end(), conversion); it != std::sregex_iterator();
                 ++it, ++word) {
                unsigned char* at = call.cells[word].data();
                char text[128];
                if (it->str() == "%c") {
                    at[0] = static_cast<unsigned char>('A' + word);
                    std::snprintf(text, sizeof text, "%c", at[0]);
                } else if (it->str() == "%d") {
                    const int32_t value = 100 * word - 250;
                    std::memcpy(at, &value, 4);
                    std::snprintf(text, sizeof text, "%d", value);
                } else if (it->str() == "%p") {
                    std::snprintf(text, sizeof text, "%p", static_cast<void*>(at));
                } else if (it->str() == "%f") {
                    std::snprintf(text, sizeof text, "%s", real(at, word + 0.25).c_str());
                } else {
                    const std::string re = real(at, word + 0.25), im = real(at + (single ? 4 : 8), -word - 0.5);
                    std::snprintf(text, sizeof text, "(%s,%s)", re.c_str(), im.c_str());
                }
                entry += separator + text;
                separator = ", ";
            }
            call.entry = entry + ")";
        }
    }
    return calls;
}
}  // namespace

// Each logged routine prints its entry line (the very first call of a process
// too), gives "excluded by user" whatever the routing settings, and hands its
// words unchanged to the CPU routine, whose info it reports. For an ILP64 caller
// the high halves of info and of the mixed-precision solvers' iter are cleared.
TEST(LoggedRoutines, PrintTheirWordsAndReachTheirCpuRoutine) {
    setEnv("VORN_CPU_LIB", RECORDING_CPU_PATH);
    setEnv("VORN_VERBOSE", "1");
    setEnv("VORN_CPU_ALWAYS", "1");
    setEnv("VORN_ILP64", "1");
    void* link = openLinkLibrary();
    void* cpu = openLibrary(RECORDING_CPU_PATH);
    ForwardedCpuRecord& record = *reinterpret_cast<RecordingForwardedCpu>(librarySymbol(cpu, "recordingForwardedCpu"))();
    std::vector<LoggedCall> calls = loggedCalls();
    ASSERT_EQ(calls.size(), 48u);
    std::stable_partition(calls.begin(), calls.end(), [](const LoggedCall& c) { return c.name == "dgemv"; });
    Findings findings;
    OutputLines output;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        LoggedCall& call = calls[i];
        record.info = call.info ? (i % 2 ? -static_cast<int32_t>(i) - 1 : static_cast<int32_t>(i) + 1) : 0;
        callRoutine(librarySymbol(link, call.name.c_str()), Result::none, call.pointers);
        findings.expect(record.routine == call.name && record.wordCount == call.words &&
                            std::equal(call.pointers.begin(), call.pointers.end(), record.words),
                        call.name + ": words received");
        auto cleared = [&](int word, bool lowWritten) {
            const auto& cell = call.cells[word - 1];
            const bool low = !lowWritten || std::memcmp(cell.data(), &record.info, 4) == 0;
            return low && std::all_of(cell.begin() + 4, cell.begin() + 8, [](auto c) { return c == 0; });
        };
        if (call.info) findings.expect(cleared(call.words, true), call.name + ": info");
        if (call.name == "dsposv" || call.name == "zcposv")
            findings.expect(cleared(call.words - 1, false), call.name + ": iter");
        std::vector<std::string> expected = {call.entry, "vorn info:  issuing to CPU (excluded by user)"};
        if (call.info) expected.push_back("vorn info:  info returned as " + std::to_string(record.info));
        expected.push_back("vorn info:  done");
        auto lines = output.next();
        if (i == 0) {  // the start-up's lines come first, and the CPU library's is issued after the reason
            lines.erase(lines.begin(), std::find(lines.begin(), lines.end(), call.entry));
            expected.insert(expected.begin() + 2, "vorn info:  CPU library is " RECORDING_CPU_PATH);
        }
        findings.expect(lines == expected, call.name + ": lines" + joined(lines));
    }
    output.finish();
    findings.report();
}

// Where the CPU routine cannot be reached, info is 0 in both halves of an ILP64
// caller's integer and nothing else is touched; after a failed GPU start-up the
// reason is "vorn not available".
class LoggedUnreached : public testing::TestWithParam<const char*> {};
TEST_P(LoggedUnreached, LeavesInfoZeroAndTouchesNothingElse) {
    const bool missingLibrary = std::string(GetParam()) != libraryWithoutLapack;
    setEnv("VORN_CPU_LIB", GetParam());
    setEnv("VORN_VERBOSE", "1");
    setEnv("VORN_ILP64", "1");
    setEnv("VORN_EMU_INIT_STATUS", "1");
    void* link = openLinkLibrary();
    Findings findings;
    OutputLines output;
    for (LoggedCall& call : loggedCalls()) {
        auto expectedCells = call.cells;
        if (call.info) std::fill(expectedCells.back().begin(), expectedCells.back().begin() + 8, 0);
        callRoutine(librarySymbol(link, call.name.c_str()), Result::none, call.pointers);
        findings.expect(call.cells == expectedCells, call.name + ": memory");
        auto lines = output.next();
        // The first call's start-up lines come before its entry line.
        lines.erase(lines.begin(), std::find(lines.begin(), lines.end(), call.entry));
        const std::string reached =
            missingLibrary ? "vorn error: " : "vorn error: Failed to read symbol '" + call.name + "' from '" + GetParam() + "'";
        findings.expect(lines.size() >= 3 && lines[0] == call.entry &&
                            lines[1] == "vorn info:  issuing to CPU (vorn not available)" &&
                            lines.back().starts_with(reached) && lines.back() != "vorn info:  done",
                        call.name + ": lines" + joined(lines));
    }
    output.finish();
    findings.report();
}
INSTANTIATE_TEST_SUITE_P(CpuLibrary, LoggedUnreached, testing::Values("libvorn-no-such-library.so", libraryWithoutLapack),
                         [](const auto& info) { return std::string(info.index == 0 ? "Missing" : "WithoutSymbols"); });
