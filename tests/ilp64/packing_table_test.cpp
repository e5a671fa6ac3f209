// The packing table and its steps, apart from any frame: the rows held against
// the prototypes of lapack.h and against the counts the design states, the tree
// lengths of the divide-and-conquer routines at their worked values, and the
// pack and unpack of one array byte by byte. (The frames' use of the steps, on
// each side of a call, is the family tests'.)
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "exports/routine_classes.h"
#include "ilp64/integer_packing.h"
#include "published_prototypes.h"

namespace {

// The table as written: each row's name, its inputs and its items, as text.
struct RowText {
    const char* name;
    const char* inputs;
    const char* items;
};
const RowText rowTexts[] = {
#define PACKING(name, inputs, ...) {#name, #inputs, #__VA_ARGS__},
#include "ilp64/packing_table.inc"
#undef PACKING
};

// What one step of a routine does: for each treated argument, by place, the
// length it takes (-1 for an output scalar), and whether the pack step skips it.
struct Treated {
    int32_t length;
    bool unpackOnly;
    bool operator==(const Treated&) const = default;
};
using Treatment = std::map<int, Treated>;
struct RecordingStep {
    CallWords words;
    Treatment* seen;
    void array(int place, Int32 length) const { (*seen)[place] = {length.value, false}; }
    void outputArray(int place, Int32 length) const { (*seen)[place] = {length.value, true}; }
    void scalar(int place) const { (*seen)[place] = {-1, false}; }
};

// A call's words: integers at the places given, 64-bit cells as an ILP64 caller
// passes them, with a high half that no length may read.
struct Words {
    std::vector<int64_t> cells = std::vector<int64_t>(32, 0x5a5a5a5a00000000);
    std::vector<void*> words;
    Words(std::map<int, int32_t> integers, std::map<int, char> letters = {}) {
        for (auto [place, value] : integers) cells[place - 1] = (cells[place - 1] & ~int64_t{0xffffffff}) | uint32_t(value);
        for (auto [place, letter] : letters) cells[place - 1] = letter;
        for (auto& cell : cells) words.push_back(&cell);
    }
};

template <FixedString Name>
Treatment treatmentOf(std::map<int, int32_t> integers, std::map<int, char> letters = {}) {
    Words words(integers, letters);
    Treatment seen;
    PackingOf<Name>::run(RecordingStep{CallWords{words.words.data()}, &seen});
    return seen;
}

constexpr int32_t scalar = -1;

}  // namespace

// Every row names a routine that stands, once; every treated argument and every
// input has, where lapack.h declares the routine, that name at that place, and is
// an integer pointer (select and tryrac LOGICAL ones), a letter a char one.
TEST(PackingTable, RowsMatchThePublishedPrototypes) {
    std::set<std::string> standing(std::begin(routine_classes::forwardedRoutines),
                                   std::end(routine_classes::forwardedRoutines));
    standing.insert(std::begin(routine_classes::loggedRoutines), std::end(routine_classes::loggedRoutines));
#define ROUTED(base, ...) standing.insert(#base);
#include "routines/routed/routed_routines.inc"
#undef ROUTED
    const auto published = readPublishedPrototypes(VORN_LAPACK_HEADER);
    const std::regex item(R"((OUTPUT_ARRAY|ARRAY|SCALAR)\((\w+), (\d+))"), input(R"((In|Ch)<(\d+)> (\w+))");
    std::set<std::string> named;
    int checked = 0;
    for (const RowText& row : rowTexts) {
        SCOPED_TRACE(row.name);
        EXPECT_TRUE(standing.count(row.name)) << "no such routine stands";
        EXPECT_TRUE(named.insert(row.name).second) << "two rows";
        const auto found = published.find(row.name);
        if (found == published.end()) continue;
        ++checked;
        const auto& parameters = found->second.parameters;
        auto expectParameter = [&](int place, const std::string& name, const std::string& type) {
            ASSERT_LE(place, int(parameters.size())) << name;
            std::string written = lastIdentifier(parameters[place - 1]);
            for (char& c : written) c = char(std::tolower(static_cast<unsigned char>(c)));
            EXPECT_EQ(written, name) << "at " << place;
            EXPECT_EQ(parameters[place - 1].rfind(type, 0), 0u) << parameters[place - 1];
            EXPECT_NE(parameters[place - 1].find('*'), std::string::npos) << parameters[place - 1];
        };
        const std::string items = row.items, inputs = row.inputs;
        for (std::sregex_iterator it(items.begin(), items.end(), item), end; it != end; ++it) {
            const bool logical = (*it)[2] == "select" || (*it)[2] == "tryrac";
            const std::string type = logical ? "lapack_logical" : "lapack_int";
            expectParameter(std::stoi((*it)[3]), (*it)[2], type);
        }
        for (std::sregex_iterator it(inputs.begin(), inputs.end(), input), end; it != end; ++it)
            expectParameter(std::stoi((*it)[2]), (*it)[3], (*it)[1] == "In" ? "lapack_int" : "char");
    }
    EXPECT_EQ(checked, 363);  // lapack.h does not declare the other 144
}

// The design's table has 503 routines with 647 arrays and 311 output scalars;
// four members of a family have rows of their own (ssbgvx, dsbgvx, strsen,
// ztrsen: 2 arrays, 2 scalars). 18 routines take tree-depth terms.
TEST(PackingTable, CountsAreThoseOfTheDesign) {
    int arrays = 0, scalars = 0, treeDepth = 0;
    const std::regex array(R"(ARRAY\()"), output(R"(\bSCALAR\()"), tree(R"(\b(L|NLVL|TLVL|BLVL|LIW)\()");
    auto count = [](const std::string& text, const std::regex& pattern) {
        return int(std::distance(std::sregex_iterator(text.begin(), text.end(), pattern), std::sregex_iterator()));
    };
    for (const RowText& row : rowTexts) {
        arrays += count(row.items, array);
        scalars += count(row.items, output);
        treeDepth += count(row.items, tree) > 0;
    }
    EXPECT_EQ(std::size(rowTexts), 503u + 4);
    EXPECT_EQ(arrays, 647 + 2);
    EXPECT_EQ(scalars, 311 + 2);
    EXPECT_EQ(treeDepth, 18);
}

// The highest bit by five masks: the edges, and the worked lengths of the tree
// terms through the rows that use them, with the wrap and the skip of negative
// lengths in the plain ones.
TEST(PackingTable, DerivedLengthsAtTheirWorkedValues) {
    const std::pair<int32_t, int32_t> logs[] = {{0, 0},   {1, 0},   {2, 1},         {3, 1},        {4, 2},
                                                {255, 7}, {256, 8}, {65536, 16},    {2147483647, 30},
                                                {-1, 31}, {INT32_MIN, 31}};
    for (auto [value, log] : logs) EXPECT_EQ(linkFloorLog2(value), log) << value;

    // bdsdc: uplo, compq, n; iq (11), iwork (13)
    EXPECT_EQ(treatmentOf<"dbdsdc">({{3, 100}}), (Treatment{{11, {600, false}}, {13, {800, false}}}));
    EXPECT_EQ(treatmentOf<"sbdsdc">({{3, 20}})[11].length, 60);
    EXPECT_EQ(treatmentOf<"sbdsdc">({{3, 26}})[11].length, 78);   // BLVL 1
    EXPECT_EQ(treatmentOf<"sbdsdc">({{3, 52}})[11].length, 312);  // 52/26 = 2: BLVL 2
    EXPECT_EQ(treatmentOf<"sbdsdc">({{3, 0}}), (Treatment{{11, {0, false}}, {13, {0, false}}}));
    // gelsd: m, n; iwork (13 in s and d, 14 in c and z), rank (10)
    EXPECT_EQ(treatmentOf<"dgelsd">({{1, 1000}, {2, 100}}), (Treatment{{10, {scalar, false}}, {13, {1700, false}}}));
    EXPECT_EQ(treatmentOf<"zgelsd">({{1, 0}, {2, 5}})[14].length, 1);
    EXPECT_EQ(treatmentOf<"cgelsd">({{1, -3}, {2, 5}})[14].length, 1);
    // lalsa: smlsiz 2, n 3, ldgcol 19; givcol (18) and perm (20) take NLVL = 2
    const Treatment lalsa = treatmentOf<"clalsa">({{2, 25}, {3, 100}, {19, 7}});
    EXPECT_EQ(lalsa.at(18).length, 4 * 7);
    EXPECT_EQ(lalsa.at(20).length, 2 * 7);
    // lasda: icompq 1, smlsiz 2, n 3, ldgcol 17; TLVL = 2 with icompq set
    EXPECT_EQ(treatmentOf<"dlasda">({{1, 1}, {2, 25}, {3, 100}, {17, 7}}),
              (Treatment{{10, {100, false}}, {15, {100, false}}, {16, {28, false}}, {18, {14, false}},
                         {23, {700, false}}}));
    EXPECT_EQ(treatmentOf<"slasda">({{1, 0}, {2, 0}, {3, 100}, {17, 7}}),
              (Treatment{{10, {1, false}}, {15, {1, false}}, {16, {0, false}}, {18, {1, false}},
                         {23, {700, false}}}));
    EXPECT_EQ(treatmentOf<"slasda">({{1, 1}, {2, 0}, {3, 100}, {17, 7}}).at(16).length, 0);  // smlsiz 0
    // laed7 (s, d): n is word 2; indxq (10), qptr (14), prmptr, perm, givptr (15-17), givcol (18)
    const Treatment laed7 = treatmentOf<"dlaed7">({{2, 1000}});
    EXPECT_EQ(laed7.at(15).length, 9000);
    EXPECT_EQ(laed7.at(18).length, 18000);
    const Treatment small = treatmentOf<"slaed7">({{2, 1}});
    EXPECT_EQ(small.at(10).length, 1);
    EXPECT_EQ(small.at(14).length, 3);
    EXPECT_EQ(small.at(15).length, 0);
    EXPECT_EQ(small.at(18).length, 0);
    // Plain lengths: a character folded, an output that only the unpack reads,
    // a product that wraps.
    EXPECT_EQ(treatmentOf<"dtgevc">({{4, 9}}, {{2, 'a'}}).at(3).length, 0);
    EXPECT_EQ(treatmentOf<"dtgevc">({{4, 9}}, {{2, 's'}}).at(3).length, 9);
    EXPECT_EQ(treatmentOf<"dsyevr">({{12, 0}, {20, -1}}), (Treatment{{12, {scalar, false}}, {16, {2, true}},
                                                                      {19, {1, false}}}));
    EXPECT_EQ(treatmentOf<"sstemr">({{3, 5}, {10, 4}}, {{1, 'v'}}).at(15), (Treated{8, true}));
    EXPECT_EQ(treatmentOf<"dlaswp">({{5, 1 << 30}, {7, -4}}).at(6).length, 0);
    EXPECT_EQ(treatmentOf<"dsbgvx">({{18, 6}}, {{1, 'V'}}), (Treatment{{24, {6, true}}}));
    // Fixed arrays, whatever the arguments say.
    EXPECT_EQ(treatmentOf<"zlarnv">({{1, 3}, {3, -5}}), (Treatment{{2, {4, false}}}));
    EXPECT_EQ(treatmentOf<"dlacn2">({}), (Treatment{{4, {scalar, false}}, {6, {scalar, false}}, {7, {3, false}}}));
}

// An array whose length reads an output of the routine (dstevr's isuppz, with m)
// is left alone by the pack step, and by the unpack step too when the routine
// rejected an argument: then m holds whatever the caller left there.
TEST(PackingSteps, OutputArraysOnlyAfterAnAcceptedCall) {
    for (bool rejected : {false, true}) {
        // jobz, range, n, d, e, vl, vu, il, iu, abstol, m (11), w, z, ldz,
        // isuppz (15), work, lwork, iwork (18), liwork (19), info
        Words words({{3, 2}, {11, 1000000}, {19, 1}});
        int64_t isuppz[2] = {7, 8}, iwork[2] = {5, 6};
        words.words[14] = isuppz;
        words.words[17] = iwork;
        const CallWords call{words.words.data()};
        PackingOf<"dstevr">::run(PackStep{call});
        EXPECT_EQ(isuppz[0], 7);
        words.cells[10] = 1 | (int64_t{9} << 32);  // m found: 2 elements of isuppz, written by the routine as 32-bit values
        const int32_t found[] = {3, 4};
        std::memcpy(isuppz, found, sizeof found);
        PackingOf<"dstevr">::run(UnpackStep{call, rejected});
        EXPECT_EQ(iwork[0], 5) << rejected;
        EXPECT_EQ(words.cells[10], 1) << rejected;  // m's high half cleared
        if (rejected) {
            EXPECT_EQ(std::memcmp(isuppz, found, sizeof found), 0);
        } else {
            EXPECT_EQ(isuppz[0], 3);
            EXPECT_EQ(isuppz[1], 4);
        }
    }
}
