// What the link library shows to the outside. Its exported names; lsame, which it
// computes itself; the CPU-only routines: every forwarded routine, called by each
// of its spellings with its table's word count, and every logged routine, held
// against its entry format as the design gives it. Over a recording CPU library
// (the words it receives, the log's lines, info and an ILP64 caller's high halves,
// work queries, function results) and over a CPU library that cannot be reached
// (nothing touched but a logged routine's info, results of 0).
#include <array>
#include <regex>
#include <set>
#include <sstream>
#include <tuple>

#include "exports/routine_classes.h"
#include "exports_test.h"
#include "published_prototypes.h"
#include "recording_forwarded_cpu.h"

namespace {

const std::vector<RoutineFacts> forwarded = forwardedTable();

// The 48 logged routines' entry formats as the design gives them: the routines of
// a row, their word count, whether their last word is info (the mixed-precision
// solvers' iter is the word before it) and the conversions their entry line
// prints from word 1 on.
struct LoggedRow {
    const char* names;
    int words;
    bool info;
    const char* conversions;
};
const LoggedRow loggedRows[] = {
    {"zcposv", 14, true, "%c, %d, %d, %p, %d, %p, %d, %p, %d, %p"},
    {"cgemv zgemv", 11, false, "%c, %d, %d, (%f,%f), %p, %d, %p, %d, (%f,%f), %p, %d"},
    {"sgemv dgemv", 11, false, "%c, %d, %d, %f, %p, %d, %p, %d, %f, %p, %d"},
    {"slacpy dlacpy clacpy zlacpy", 7, false, "%c, %d, %d, %p, %d, %p, %d"},
    {"zlag2c slag2d dlag2s clag2z", 7, true, "%d, %d, %p, %d, %p, %d"},
    {"slar2v dlar2v clar2v zlar2v", 8, false, "%d, %p, %p, %p, %d, %p, %p, %d"},
    {"slarfb dlarfb clarfb zlarfb", 15, false, "%c, %c, %c, %c, %d, %d, %d, %p, %d, %p, %d, %p, %d"},
    {"slarfg dlarfg clarfg zlarfg", 5, false, "%d, %p, %p, %d, %p"},
    {"slargv dlargv clargv zlargv", 7, false, "%d, %p, %d, %p, %d, %p, %d"},
    {"slartv dlartv clartv zlartv", 8, false, "%d, %p, %d, %p, %d, %p, %p, %d"},
    {"slascl dlascl clascl zlascl", 10, true, "%c, %d, %d, %f, %f, %d, %d, %p, %d"},
    {"claset zlaset", 7, false, "%c, %d, %d, (%f,%f), (%f,%f), %p, %d"},
    {"slaset dlaset", 7, false, "%c, %d, %d, %f, %f, %p, %d"},
    {"slasr dlasr clasr zlasr", 9, false, "%c, %c, %c, %d, %d, %p, %p, %p, %d"},
    {"zlat2c dlat2s", 7, true, "%c, %d, %p, %d, %p, %d"},
    {"dsposv", 13, true, "%c, %d, %d, %p, %d, %p, %d, %p, %d, %p"},
};

// One call of a routine, made twice (`second`: with a non-zero info from the CPU
// routine, a work query for a forwarded routine). Its words address cells filled
// with a pattern where the frame or the CPU routine may read or write, elsewhere
// distinct addresses that fault if anything reads them.
struct Call {
    std::string name, entry;
    bool logged = false, second = false, info = false;
    int iter = 0;  // the word of the mixed-precision solvers' iter
    Result result = Result::none;
    std::vector<std::string> queryLines;
    std::vector<std::array<unsigned char, 16>> cells;
    std::vector<void*> words;

    Call(const std::string& routine, int count, bool again, auto valid) : name(routine), second(again), cells(count) {
        for (int word = 1; word <= count; ++word) {
            cells[word - 1].fill(0xA5);
            words.push_back(valid(word) ? cells[word - 1].data() : static_cast<unsigned char*>(noAccessPage()) + 64 * word);
        }
    }
    std::string what() const { return name + (second ? " (second)" : ""); }
};

// A forwarded routine's work query puts -1 in the low half of one tested word (a
// different one from routine to routine), 0 in the others; the high halves keep
// the other value, so only a 32-bit reading sees the query.
Call forwardedCall(const RoutineFacts& routine, std::size_t index, bool query) {
    Call call(routine.name, routine.words, query, [&](int word) {
        return (routine.info && word == routine.words) || std::ranges::count(routine.tested, word) > 0 ||
               std::ranges::count(routine.lines, word, &WorkLine::word) > 0 || (routine.result == Result::complex && word == 1);
    });
    call.entry = "vorn info:  " + routine.name + " ()", call.info = routine.info, call.result = routine.result;
    const int queried = routine.tested.empty() ? 0 : routine.tested[index % routine.tested.size()];
    for (int word : routine.tested) {
        const int32_t halves[2] = {query && word == queried ? -1 : 0, query && word == queried ? 0 : -1};
        std::memcpy(call.cells[word - 1].data(), halves, sizeof halves);
    }
    for (std::size_t k = 0; query && k < routine.lines.size(); ++k) {
        const int value = routine.lines[k].real ? static_cast<int>(realWorkAnswer(k)) : integerWorkAnswer(k);
        call.queryLines.push_back("vorn info:  work query returned " + std::to_string(value));
    }
    // xerbla's third word is a length by value.
    if (routine.name == "xerbla") call.words[2] = reinterpret_cast<void*>(0xFEDCBA9800000011);
    return call;
}

// A logged routine's call: each word its entry line prints as a value holds one of
// its conversion's type (a letter, an integer, a real or complex of the routine's
// precision), so that the expected line is formatted from the same cells.
Call loggedCall(const std::string& name, const LoggedRow& row, bool second) {
    const std::string list = row.conversions;
    const std::regex comma(", ");
    const std::vector<std::string> kinds(std::sregex_token_iterator(list.begin(), list.end(), comma, -1), {});
    const bool info = row.info, mixed = name == "dsposv" || name == "zcposv";
    Call call(name, row.words, second, [&](int word) {
        return (word <= static_cast<int>(kinds.size()) && kinds[word - 1] != "%p") || (info && word >= row.words - mixed);
    });
    call.logged = true, call.info = info, call.iter = mixed ? row.words - 1 : 0;
    const bool single = name[0] == 's' || name[0] == 'c';
    auto real = [&](unsigned char* at, double value) {
        const float f = static_cast<float>(value);
        single ? std::memcpy(at, &f, 4) : std::memcpy(at, &value, 8);
        return formatted("%f", value);
    };
    call.entry = "vorn info:  " + name + " (";
    for (int word = 1; word <= static_cast<int>(kinds.size()); ++word) {
        unsigned char* at = call.cells[word - 1].data();
        const std::string& kind = kinds[word - 1];
        const int32_t integer = 100 * word - 250;
        if (kind == "%c") at[0] = static_cast<unsigned char>('A' + word);
        if (kind == "%d") std::memcpy(at, &integer, 4);
        call.entry += (word > 1 ? ", " : "") +
                      (kind == "%c"   ? std::string(1, static_cast<char>(at[0]))
                       : kind == "%d" ? std::to_string(integer)
                       : kind == "%p" ? formatted("%p", call.words[word - 1])
                       : kind == "%f" ? real(at, word + 0.25)
                                      : "(" + real(at, word + 0.25) + "," + real(at + (single ? 4 : 8), -word - 0.5) + ")");
    }
    call.entry += ")";
    return call;
}

// The forwarded routines with a row in the packing table: for an ILP64 caller they
// read and rewrite integer arrays that the cells here do not model. The packing
// table's tests hold their steps, the family tests the frames' use of them, and
// the 64-bit reference LAPACK run whole calls.
const std::set<std::string> packedRoutines = {
#define PACKING(name, ...) #name,
#include "ilp64/packing_table.inc"
#undef PACKING
};

// Each routine twice; for an ILP64 caller the logged ones first, and no forwarded
// routine with a packing row.
std::vector<Call> allCalls(bool ilp64) {
    std::vector<Call> calls;
    for (std::size_t i = 0; i < forwarded.size(); ++i) {
        if (ilp64 && packedRoutines.count(forwarded[i].name)) continue;
        for (bool second : {false, true}) calls.push_back(forwardedCall(forwarded[i], i, second));
    }
    for (const LoggedRow& row : loggedRows) {
        std::istringstream names(row.names);
        for (std::string name; names >> name;)
            for (bool second : {false, true}) calls.push_back(loggedCall(name, row, second));
    }
    if (ilp64) std::stable_partition(calls.begin(), calls.end(), [](const Call& call) { return call.logged; });
    return calls;
}

// Calls are made by each spelling in turn: the trampolines, too, must pass every
// word on (xerbla's length word whole, for the one implementation to cut).
uint64_t invoke(void* link, const Call& call, std::size_t index = 0) {
    const std::string name = spellings(call.name)[index % 4];
    void* function = librarySymbol(link, name.c_str());
    if (function == nullptr) throw std::runtime_error(name + " is not exported");
    return callRoutine(function, call.result, call.words);
}

}  // namespace

// The scenarios: over the recording CPU library, without ILP64 (a forwarded
// routine comes first in the process) and with it (a logged one does); over a CPU
// library that cannot be reached, being missing or lacking the names, while the
// GPU library did not start either (which gives a logged routine the reason "vorn
// not available").
struct Scenario {
    const char* name;
    const char* cpuLibrary;
    bool verbose, ilp64;
};
void PrintTo(const Scenario& scenario, std::ostream* out) { *out << scenario.name; }
class CpuOnlyRoutines : public testing::TestWithParam<Scenario> {};

// Reached, each routine, by any spelling, hands its words unchanged to its CPU
// routine (xerbla's length word only its low half), whose info and result it
// reports; a forwarded routine gives "no GPU function available", a logged one
// "excluded by user" whatever the routing settings. Info's high half (and iter's)
// is cleared for an ILP64 caller, else left as the caller left it. Unreached, a
// logged routine leaves its info 0 in both halves of an ILP64 caller's integer;
// nothing else is touched, and a function gives 0.
TEST_P(CpuOnlyRoutines, ReachTheirCpuRoutineOrTouchNothing) {
    const Scenario& scenario = GetParam();
    const std::string library = scenario.cpuLibrary;
    const bool reached = library == RECORDING_CPU_PATH, missingLibrary = !reached && library != libraryWithoutLapack;
    setEnv("VORN_CPU_LIB", library);
    if (scenario.verbose) setEnv("VORN_VERBOSE", "1");
    if (scenario.ilp64) setEnv("VORN_ILP64", "1");
    setEnv(reached ? "VORN_CPU_ALWAYS" : "VORN_EMU_INIT_STATUS", "1");
    void* link = openLibrary(VORN_TEST_LINK_LIBRARY);
    ASSERT_NE(link, nullptr) << VORN_TEST_LINK_LIBRARY;
    void* cpu = openLibrary(RECORDING_CPU_PATH);  // the one the link library loads where reached
    ForwardedCpuRecord& record = *reinterpret_cast<RecordingForwardedCpu>(librarySymbol(cpu, "recordingForwardedCpu"))();
    std::vector<Call> calls = allCalls(reached && scenario.ilp64);
    Findings findings;
    StdoutCapture output;
    auto expectedLines = [&](const Call& call) {
        std::vector<std::string> expected;
        if (scenario.verbose) expected.push_back(call.entry);
        if (scenario.verbose && (reached || call.logged || !missingLibrary))
            expected.push_back(std::string("vorn info:  issuing to CPU (") +
                               (!call.logged ? "no GPU function available)" : reached ? "excluded by user)" : "vorn not available)"));
        if (!reached) {
            expected.push_back(missingLibrary ? "vorn error: a previous attempt at initialization failed, cannot continue"
                                              : "vorn error: Failed to read symbol '" + call.name + "' from '" +
                                                    libraryWithoutLapack + "'");
            return expected;
        }
        if (call.info && record.info != 0) expected.push_back("vorn info:  info returned as " + std::to_string(record.info));
        expected.insert(expected.end(), call.queryLines.begin(), call.queryLines.end());
        expected.push_back("vorn info:  done");
        return expected;
    };
    // The first call of a process: the start-up's lines come among its own, and a
    // forwarded routine loses its entry line (verbose is read in the start-up, after
    // the line's place) where a logged routine keeps it. Unreached, only that.
    const Call& first = calls[0];
    record.info = 0;
    std::vector<std::string> firstLines = reached ? expectedLines(first) : std::vector<std::string>{}, own;
    if (!first.logged) std::erase(firstLines, first.entry);
    invoke(link, first);
    const auto printed = output.next();
    for (const auto& line : printed)
        if (line == first.entry || std::ranges::count(firstLines, line) > 0) own.push_back(line);
    findings.expect(own == firstLines, "first call, " + first.name + ":" + joined(printed));

    for (std::size_t i = 0; i < calls.size(); ++i) {
        Call& call = calls[i];
        auto cells = call.cells;  // as they must come back
        record.info = !call.second ? 0 : i % 2 ? -static_cast<int32_t>(i) - 1 : static_cast<int32_t>(i) + 1;
        record.result = 0xC0DE000000000000 ^ (uint64_t{i} << 24) ^ (call.second ? 0xA5A5A5A5 : 0x3C3C3C3C);
        const int calledBefore = record.calls;
        const uint64_t result = invoke(link, call, i);
        const auto lines = output.next();
        findings.expect(lines == expectedLines(call), call.what() + ": lines" + joined(lines));
        findings.expect(record.calls == calledBefore + reached, call.what() + ": calls");
        if (!reached) {
            if (call.logged && call.info) std::fill(cells.back().begin(), cells.back().begin() + 8, 0);
            findings.expect(result == 0, call.what() + ": result");
            findings.expect(call.cells == cells, call.what() + ": memory");
            continue;
        }
        std::vector<void*> expectedWords = call.words;
        if (call.name == "xerbla") expectedWords[2] = reinterpret_cast<void*>(0x11);
        findings.expect(record.routine == call.name && record.wordCount == static_cast<int>(call.words.size()) &&
                            std::equal(expectedWords.begin(), expectedWords.end(), record.words),
                        call.what() + ": words received");
        const int width = call.result == Result::real64 ? 64 : call.result == Result::byte ? 8 : 32;
        if (call.result != Result::none && call.result != Result::complex)
            findings.expect(result == (record.result & (~uint64_t{0} >> (64 - width))), call.what() + ": result");
        // Only info and iter: the recording routine writes its work lines.
        for (int word : {call.info ? static_cast<int>(call.words.size()) : 0, call.iter}) {
            if (word == 0) continue;
            if (word != call.iter) std::memcpy(cells[word - 1].data(), &record.info, 4);
            if (scenario.ilp64) std::fill(cells[word - 1].begin() + 4, cells[word - 1].begin() + 8, 0);
            findings.expect(call.cells[word - 1] == cells[word - 1], call.what() + ": info or iter");
        }
    }
    output.stop();
    findings.report();
}
INSTANTIATE_TEST_SUITE_P(Scenarios, CpuOnlyRoutines,
                         testing::Values(Scenario{"ReachedIlp64Off", RECORDING_CPU_PATH, true, false},
                                         Scenario{"ReachedIlp64On", RECORDING_CPU_PATH, true, true},
                                         Scenario{"MissingLibrary", "libvorn-no-such-library.so", true, true},
                                         Scenario{"MissingSymbols", libraryWithoutLapack, false, true}),
                         [](const auto& info) { return std::string(info.param.name); });

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
    const std::string record = useRecord();
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
