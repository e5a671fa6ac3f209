// The routed families through the link library: a new routine is one more row
// below. One row per root holds the shape of its
// arguments as the routine tables give them: the kind of each word in order,
// which words never reach the GPU library, the integers to pass, the measure and
// the crossover. From the row the tests build the calls, the entry line and the
// GPU call the emulator records, and hold results against OpenBLAS; so do some
// CPU-only routines (their entry lines and words: the export tests).
//
// The results are held in three processes: with the log on, with it off (the
// frames' short path), and for a caller with 64-bit integers (VORN_ILP64=1),
// whose integer arrays and outputs must come back as OpenBLAS's 32-bit ones,
// zero-extended, with every byte behind them as the caller left it.
//
// With LINK_TEST_TOLERANCE=1 (tools/test-cuda.sh, a real GPU library first on
// LD_LIBRARY_PATH) the GPU side's arrays need only agree with OpenBLAS's within
// LAPACK's error bounds instead of bit for bit, and the test that relies on the
// emulator's record and forced statuses skips itself.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdint>
#include <cstdlib>
#include <dlfcn.h>
#include <iterator>
#include <sstream>
#include <tuple>

#include "core/platform.h"
#include "link_test.h"
#include "published_prototypes.h"

namespace {

// Word kinds: c character, i integer, S the precision's scalar (real in s and d,
// complex in c and z), R the precision's real scalar, p an array of the
// precision's type, r an array of its real type, I an integer array (or an
// integer output such as m), f a float array, F a single complex array, d a
// double array, D a double complex array, w lwork, o info.
// An upper-case X before a kind marks a word that never reaches the GPU library;
// a W marks workspace whose contents only a CPU routine called by a 32-bit
// caller must reproduce (syevx's work, which the GPU library gets but need not
// write; its iwork, which a 64-bit caller sees in 32-bit form); a Z marks an
// array of zeros (a matrix that is not positive definite, or singular); a V marks
// eigenvectors or singular vectors, or an array LAPACK leaves destroyed, which a
// real GPU library gives with other signs, phases or contents: held only where
// the results must be OpenBLAS's bits.
// The measure is the product of the integers at measureWords (one alone: that
// integer), wrapping at 32 bits, or in double for Measure::wide; for Measure::sum
// their sum.
enum class Measure { product, wide, sum };

struct RootRow {
    const char* bases;      // the routines of the row
    const char* kinds;      // one kind per word, with the X and W marks
    const char* characters; // values of the character words, in order
    std::vector<int> integers;  // values of the integer words, in order (dims, leading dimensions)
    Measure measure;
    std::vector<int> measureWords;  // positions in `integers` of the measure's operands
    int crossover;
    // Of each integer array (I), the elements a 64-bit caller gets back zero-extended.
    std::vector<int> treated = {};
};

// Small problems: every dimension at most 6, every leading dimension 8 (pbtrf's
// 9, which puts the band's diagonal on the arrays' strong elements). The lengths
// of the integer arrays are ipiv's (min(m, n) in getrf and gbtrf, n in the
// others) and iter's, one. Roots with the same arguments share a row.
const std::vector<RootRow> rows = {
    {"sgemm dgemm cgemm zgemm", "cciiiSpipiSpi", "NT", {5, 4, 3, 8, 8, 8}, Measure::wide, {0, 1, 2}, 4194304},
    {"ssymm dsymm csymm zsymm", "cciiSpipiSpi", "LU", {5, 4, 8, 8, 8}, Measure::product, {0, 1}, 262144},
    {"chemm zhemm", "cciiSpipiSpi", "RL", {5, 4, 8, 8, 8}, Measure::wide, {0, 1}, 262144},
    {"ssyrk dsyrk csyrk zsyrk", "cciiSpiSpi", "UN", {5, 3, 8, 8}, Measure::product, {0, 1}, 262144},
    {"cherk zherk", "cciiRpiRpi", "LC", {5, 3, 8, 8}, Measure::product, {0, 1}, 262144},
    {"ssyr2k dsyr2k csyr2k zsyr2k", "cciiSpipiSpi", "LN", {5, 3, 8, 8, 8}, Measure::product, {0, 1}, 262144},
    {"cher2k zher2k", "cciiSpipiRpi", "UN", {5, 3, 8, 8, 8}, Measure::product, {0, 1}, 262144},
    {"strmm dtrmm ctrmm ztrmm", "cccciiSpipi", "LUNN", {5, 4, 8, 8}, Measure::product, {0, 1}, 262144},
    {"strsm dtrsm ctrsm ztrsm", "cccciiSpipi", "RLTN", {5, 4, 8, 8}, Measure::product, {0, 1}, 262144},
    {"ssymv dsymv", "ciSpipiSpi", "U", {6, 8, 1, 1}, Measure::product, {0}, 512},
    {"chemv zhemv", "ciSpipiSpi", "L", {6, 8, 1, 1}, Measure::product, {0}, 512},
    {"sgetrf dgetrf cgetrf zgetrf", "iipiIo", "", {6, 5, 8}, Measure::product, {0, 1}, 1048576, {5}},
    {"sgetrs dgetrs cgetrs zgetrs", "ciipiIpio", "N", {6, 2, 8, 8}, Measure::product, {0}, 1024, {6}},
    {"sgetri dgetri cgetri zgetri", "ipiIXpXwo", "", {6, 8}, Measure::product, {0}, 1024, {6}},
    {"sgesv dgesv cgesv zgesv", "iipiIpio", "", {6, 2, 8, 8}, Measure::product, {0, 1}, 1048576, {6}},
    {"sgbtrf dgbtrf cgbtrf zgbtrf", "iiiipiIo", "", {6, 6, 1, 2, 8}, Measure::sum, {2, 3}, 1024, {6}},
    {"dsgesv", "iipiIpipiWpXfXIo", "", {6, 2, 8, 8, 8}, Measure::product, {0, 1}, 1048576, {6, 1}},
    {"zcgesv", "iipiIpipiWpXFXdXIo", "", {6, 2, 8, 8, 8}, Measure::product, {0, 1}, 1048576, {6, 1}},
    {"spotrf dpotrf cpotrf zpotrf spotri dpotri cpotri zpotri", "cipio", "U", {6, 8}, Measure::product, {0}, 1024},
    {"spotrf dpotrf cpotrf zpotrf", "ciZpio", "L", {6, 8}, Measure::product, {0}, 1024},  // not positive definite
    {"spotrs dpotrs cpotrs zpotrs sposv dposv cposv zposv", "ciipipio", "L", {6, 2, 8, 8}, Measure::product, {0},
     1024},
    {"spbtrf dpbtrf cpbtrf zpbtrf", "ciipio", "L", {6, 2, 9}, Measure::product, {1}, 1024},
    {"strtri dtrtri ctrtri ztrtri", "ccipio", "UN", {6, 8}, Measure::product, {0}, 1024},
    {"strtrs dtrtrs ctrtrs ztrtrs", "ccciipipio", "LTN", {6, 2, 8, 8}, Measure::product, {0}, 1024},
    {"strtrs dtrtrs ctrtrs ztrtrs", "ccciiZpipio", "UNN", {6, 2, 8, 8}, Measure::product, {0}, 1024},  // singular
    {"sgeqrf dgeqrf cgeqrf zgeqrf sgeqlf dgeqlf cgeqlf zgeqlf sgerqf dgerqf cgerqf zgerqf "
     "sgelqf dgelqf cgelqf zgelqf sgeqrfp dgeqrfp cgeqrfp zgeqrfp",
     "iipipXpXwo", "", {6, 5, 8}, Measure::product, {0, 1}, 1048576},
    {"sgels dgels cgels zgels", "ciiipipiXpXwo", "N", {6, 4, 2, 8, 8}, Measure::product, {0, 1}, 1048576},
    {"sgglse dgglse cgglse zgglse", "iiipipipppXpXwo", "", {6, 4, 2, 8, 8}, Measure::product, {0, 1}, 1048576},
    {"sggrqf dggrqf cggrqf zggrqf", "iiipippipXpXwo", "", {4, 6, 5, 8, 8}, Measure::wide, {0, 2, 1}, 1073741824},
    {"sorgbr dorgbr cungbr zungbr", "ciiipipXpXwo", "Q", {6, 5, 4, 8}, Measure::product, {0, 1}, 1048576},
    {"sorghr dorghr cunghr zunghr", "iiipipXpXwo", "", {6, 1, 6, 8}, Measure::product, {0}, 1024},
    {"sorgqr dorgqr cungqr zungqr sorglq dorglq cunglq zunglq sorgql dorgql cungql zungql "
     "sorgrq dorgrq cungrq zungrq",
     "iiipipXpXwo", "", {6, 6, 4, 8}, Measure::product, {0, 1}, 1048576},
    {"sormqr dormqr cunmqr zunmqr sormlq dormlq cunmlq zunmlq sormql dormql cunmql zunmql "
     "sormrq dormrq cunmrq zunmrq",
     "cciiipippiXpXwo", "LN", {6, 5, 4, 8, 8}, Measure::product, {0, 1}, 1048576},
    // The eigenvalue drivers' crossovers count twice for jobz V (v too), steqr's
    // ten times for compz N: the rows give the scaled value.
    {"sgehrd dgehrd cgehrd zgehrd", "iiipipXpXwo", "", {6, 1, 6, 8}, Measure::product, {0}, 1024},
    {"sgebrd dgebrd cgebrd zgebrd", "iipirrppXpXwo", "", {6, 5, 8}, Measure::product, {0, 1}, 1048576},
    {"sgeev dgeev", "ccipippVpiVpiXpXwo", "VV", {6, 8, 8, 8}, Measure::product, {0}, 1024},
    {"cgeev zgeev", "ccipipVpipiXpXwXro", "VN", {6, 8, 8, 8}, Measure::product, {0}, 1024},
    {"ssyev dsyev", "cciVpirXpXwo", "vU", {6, 8}, Measure::product, {0}, 1024},
    {"cheev zheev", "cciVpirXpXwXro", "NL", {6, 8}, Measure::product, {0}, 512},
    {"ssyevx dsyevx", "ccciVpiRRiiRIrVpiWpXwXWIXIo", "VAU", {6, 8, 1, 6, 8}, Measure::product, {0}, 1024, {1, 0, 6}},
    {"cheevx zheevx", "ccciVpiRRiiRIrVpiWpXwXrXIXIo", "VIL", {6, 8, 2, 5, 8}, Measure::product, {0}, 1024, {1, 30, 6}},
    {"ssygv dsygv", "icciVpipirXpXwo", "VU", {1, 6, 8, 8}, Measure::product, {1}, 1024},
    {"chegv zhegv", "iccipiZpirXpXwXro", "NL", {2, 6, 8, 8}, Measure::product, {1}, 512},  // B not positive definite
    {"ssteqr dsteqr csteqr zsteqr", "cirrVpiXro", "I", {6, 8}, Measure::product, {0}, 512},
    {"ssteqr dsteqr csteqr zsteqr", "cirrpiXro", "n", {6, 8}, Measure::product, {0}, 5120},
    {"sstebz dstebz", "cciRRiiRrrIIrIIXrXWIo", "AE", {6, 1, 6}, Measure::product, {0}, 256, {1, 1, 6, 6, 0}},
    {"sgesvd dgesvd", "cciiVpirVpiVpiXpXwo", "AS", {6, 5, 8, 8, 8}, Measure::product, {0, 1}, 1048576},
    {"cgesvd zgesvd", "cciiVpirVpiVpiXpXwXro", "OA", {6, 5, 8, 8, 8}, Measure::product, {0, 1}, 1048576},
    {"sgesdd dgesdd", "ciiVpirVpiVpiXpXwXIo", "A", {5, 4, 8, 8, 8}, Measure::product, {0, 1}, 1048576, {32}},
    {"cgesdd zgesdd", "ciiVpirVpiVpiXpXwXrXIo", "S", {5, 4, 8, 8, 8}, Measure::product, {0, 1}, 1048576, {32}},
    {"sbdsqr dbdsqr cbdsqr zbdsqr", "ciiiirrVpiVpiVpiXro", "U", {6, 6, 6, 0, 8, 8, 8}, Measure::product, {0}, 1024},
};

// CPU-only routines whose results matter, held on their one side: no crossover,
// no GPU function. The logged ones, and the packing kinds that only forwarded
// routines have: dlarnv's iseed, a fixed array of 4 read and written; dtrevc's
// select, a LOGICAL array, and m, an output scalar.
const std::vector<RootRow> cpuOnlyRows = {
    {"sgemv dgemv cgemv zgemv", "ciiSpipiSpi", "T", {5, 4, 8, 1, 1}, Measure::product, {}, 0},
    {"slacpy dlacpy clacpy zlacpy", "ciipipi", "L", {5, 4, 8, 8}, Measure::product, {}, 0},
    {"slascl dlascl clascl zlascl", "ciiRRiipio", "G", {0, 0, 5, 4, 8}, Measure::product, {}, 0},
    {"dlarnv", "iIip", "", {3, 7}, Measure::product, {}, 0, {4}},
    {"dtrevc", "ccIipipipiiIpo", "RS", {6, 8, 8, 8, 6}, Measure::product, {}, 0, {6, 1}},
};

std::vector<std::string> basesOf(const RootRow& row) {
    std::istringstream in(row.bases);
    return {std::istream_iterator<std::string>(in), std::istream_iterator<std::string>()};
}

// A word of a call; `real` is the size of an array's reals (0: not an array of reals).
struct Word {
    std::vector<unsigned char> bytes;
    bool hostOnly, workspace, vectors = false;
    std::size_t real = 0;
    char kind = 0;
};
struct Call {
    std::vector<Word> words;
    std::string entryLine, recordLine;
};

template <class T>
void append(std::vector<unsigned char>& bytes, T value) {
    const auto* at = reinterpret_cast<const unsigned char*>(&value);
    bytes.insert(bytes.end(), at, at + sizeof value);
}
void appendReal(std::vector<unsigned char>& bytes, double value, std::size_t size) {
    size == 8 ? append(bytes, value) : append(bytes, float(value));
}
// A scalar as `format` gives it; a complex one as the pair (value, -0.25).
std::string scalarText(const std::string& format, double value, bool pair) {
    return formatted((pair ? "(" + format + "," + format + ")" : format).c_str(), value, -0.25);
}

// The high half of every integer of a 64-bit caller, which no back end may see,
// and the whole info word it passes in.
constexpr int32_t highHalf = 0x5a5a5a5a;
constexpr int64_t infoBefore = 0x7777777777777777;

// The words of one call, filled from a fixed seed so that two calls built alike
// start from the same bytes, and the entry line and the GPU call they give. A
// wide call has 64-bit integers, as an ILP64 caller passes them; lwork is -1 in a
// work query.
Call buildCall(const RootRow& row, const std::string& base, const std::vector<int>& integers, bool wide = false,
               int lwork = 128) {
    auto appendInteger = [wide](std::vector<unsigned char>& bytes, int value) {
        append(bytes, value);
        if (wide) append(bytes, highHalf);
    };
    const bool complex = base[0] == 'c' || base[0] == 'z';
    const char* character = row.characters;
    auto integer = integers.begin();
    int scalars = 0;
    unsigned seed = 7;
    Call call;
    std::string logged, recorded;
    for (const char* kind = row.kinds; *kind != '\0'; ++kind) {
        Word& word = call.words.emplace_back(Word{{}, false, false});
        bool zeros = false;
        for (;; ++kind) {
            if (*kind == 'X') word.hostOnly = true;
            else if (*kind == 'W') word.workspace = true;
            else if (*kind == 'Z') zeros = true;
            else if (*kind == 'V') word.vectors = true;
            else break;
        }
        word.kind = *kind;
        // The size of the word's reals: by its kind for f, F, d and D, else by the
        // routine's first letter (dsgesv and zcgesv too).
        const std::size_t real = std::strchr("fFdD", *kind) ? (std::strchr("dD", *kind) ? 8 : 4)
                                                            : (base[0] == 'd' || base[0] == 'z' ? 8 : 4);
        const bool pair = *kind == 'S' && complex;
        std::string shown, shownInRecord;
        if (*kind == 'c') {
            word.bytes.push_back(static_cast<unsigned char>(*character));
            shown = std::string(1, *character++);
        } else if (*kind == 'i' || *kind == 'w') {
            const int value = *kind == 'w' ? lwork : *integer++;
            appendInteger(word.bytes, value);
            shown = std::to_string(value);
        } else if (*kind == 'S' || *kind == 'R') {
            const double value = scalars++ % 2 ? 0.75 : 1.5;  // the two scalars of a call differ
            appendReal(word.bytes, value, real);
            if (pair) appendReal(word.bytes, -0.25, real);
            // The entry line shows %f; the record is exact, here as short as %g.
            shown = scalarText("%f", value, pair);
            shownInRecord = scalarText("%g", value, pair);
        } else if (*kind == 'o') {
            append(word.bytes, wide ? infoBefore : 0);  // info: never shown
            continue;
        } else {  // arrays of 8 x 16 elements: pivots valid for every problem here, else random
                  // values with a strong diagonal for leading dimension 8
            const int parts = *kind == 'F' || *kind == 'D' || (*kind == 'p' && complex) ? 2 : 1;  // r: 1
            word.real = *kind == 'I' ? 0 : real;
            for (int j = 0; j < 8 * 16; ++j)
                for (int part = 0; part < parts; ++part) {
                    seed = seed * 1103515245u + 12345u;
                    const double value = zeros ? 0 : double((seed >> 8) % 2001) / 1000.0 - 1.0 + (part == 0 && j % 9 == 0 ? 8 : 0);
                    *kind == 'I' ? appendInteger(word.bytes, j % 6 + 1) : appendReal(word.bytes, value, real);
                }
            shown = formatted("%p", static_cast<const void*>(word.bytes.data()));
        }
        if (word.hostOnly) continue;
        const char* separator = logged.empty() ? "" : ", ";
        logged += separator + shown;
        recorded += separator + (shownInRecord.empty() ? shown : shownInRecord);
    }
    call.entryLine = "vorn info:  " + base + " (" + logged + ")";
    call.recordLine = "vorn" + std::string(1, char(base[0] - 32)) + base.substr(1) + "(" + recorded + ")";
    return call;
}

template <std::size_t... I>
void callWords(void* function, Call& call, std::index_sequence<I...>) {
    using Function = void (*)(decltype((void)I, static_cast<void*>(nullptr))...);
    reinterpret_cast<Function>(function)((I < call.words.size() ? call.words[I].bytes.data() : nullptr)...);
}
void callWith(void* function, Call& call) { callWords(function, call, std::make_index_sequence<21>{}); }

void* linkRoutine(const std::string& base) { return dlsym(RTLD_DEFAULT, (base + "_").c_str()); }

// OpenBLAS in a namespace of its own: the reference, untouched by the link library.
void* referenceRoutine(const std::string& base) {
    static void* openblas = platformLoadIsolatedLibrary("libopenblas.so.0");
    return platformFindSymbol(openblas, (base + "_").c_str());
}

const char* const tolerance = std::getenv("LINK_TEST_TOLERANCE");
const bool tolerant = tolerance != nullptr && std::string(tolerance) == "1";

// Equal within LAPACK's bound for these small problems: the largest difference
// within a multiple of eps of the array's largest element. Words that are not
// arrays of reals (integers, scalars, characters) must match exactly.
void expectWithinBound(const Word& word, const Word& reference) {
    if (word.real == 0) {
        EXPECT_EQ(word.bytes, reference.bytes);
        return;
    }
    auto value = [&](const Word& w, std::size_t i) {
        double d;
        float f;
        std::memcpy(word.real == 8 ? static_cast<void*>(&d) : &f, &w.bytes[i * word.real], word.real);
        return word.real == 8 ? d : f;
    };
    double largest = 1, difference = 0;
    for (std::size_t i = 0; i < word.bytes.size() / word.real; ++i) {
        largest = std::max(largest, std::abs(value(reference, i)));
        difference = std::max(difference, std::abs(value(word, i) - value(reference, i)));
    }
    EXPECT_LE(difference, 1000 * (word.real == 8 ? 1.1e-16 : 6e-8) * largest);
}

// What a 64-bit caller must hold after a call whose 32-bit counterpart left
// `reference`: its input integers as it gave them; info 0 in both halves; in each
// integer array the row's number of elements, OpenBLAS's values zero-extended,
// and behind them its own bytes; everything else OpenBLAS's.
Call expectedWide(const RootRow& row, const std::string& base, const Call& reference, int lwork) {
    Call expected = buildCall(row, base, row.integers, true, lwork);
    auto treated = row.treated.begin();
    for (std::size_t w = 0; w < expected.words.size(); ++w) {
        auto& bytes = expected.words[w].bytes;
        const auto& given = reference.words[w].bytes;
        const char kind = expected.words[w].kind;
        if (kind == 'o') {
            bytes.assign(8, 0);
            std::copy_n(given.begin(), 4, bytes.begin());
        } else if (kind == 'I') {
            for (int i = 0; i < *treated; ++i) {
                std::copy_n(given.begin() + 4 * i, 4, bytes.begin() + 8 * i);
                std::fill_n(bytes.begin() + 8 * i + 4, 4, 0);
            }
            ++treated;
        } else if (kind != 'i' && kind != 'w') {
            bytes = given;
        }
    }
    return expected;
}

// The integers of a row's calls about the crossover, each with whether the call
// goes to the GPU: each operand of the measure in turn one below the crossover,
// at it and one above it, the others neutral (1 in a product, 0 in a sum); then
// two products that wrap at 32 bits, to 0 (2^16 x 2^16) and to a negative number
// (2^16 x 32769), so are under it, while in double they are far over it. The
// other integers are large, 2^20 raised by their position: a measure that reads
// one of them (k in ormqr, nrhs in posv, n in pbtrf) leaves the crossover's side,
// and no two are alike, so that two words that trade places show in the entry
// line and the record.
std::vector<std::pair<std::vector<int>, bool>> crossoverCases(const RootRow& row) {
    std::vector<std::pair<std::vector<int>, bool>> cases;
    auto add = [&](std::vector<std::pair<std::size_t, int>> values, bool gpu) {
        auto& integers = cases.emplace_back(row.integers, gpu).first;
        for (std::size_t i = 0; i < integers.size(); ++i) integers[i] = (1 << 20) + int(i);
        for (int operand : row.measureWords) integers[operand] = row.measure == Measure::sum ? 0 : 1;
        for (auto [operand, value] : values) integers[row.measureWords[operand]] = value;
    };
    for (std::size_t operand = 0; operand < row.measureWords.size(); ++operand)
        for (int offset : {-1, 0, 1}) add({{operand, row.crossover + offset}}, offset >= 0);
    if (row.measureWords.size() > 1 && row.measure != Measure::sum)
        for (int second : {65536, 32769}) add({{0, 65536}, {1, second}}, row.measure == Measure::wide);
    return cases;
}

}  // namespace

// Each routine on each side gives OpenBLAS's bits: on the CPU, on the GPU (the
// emulator), and on the CPU after a GPU failure — for class A (no info) also
// after statuses 7 and 8, which only routines with info take as answers. With
// the log on, with it off, and for a 64-bit caller, each in its own process.
class RoutedFamilies : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Modes, RoutedFamilies, testing::Values("Log", "Quiet", "Ilp64"),
                         [](const auto& info) { return std::string(info.param); });

TEST_P(RoutedFamilies, EverySideGivesOpenBlasResults) {
    const std::string mode = GetParam();
    const bool wide = mode == "Ilp64";
    if (wide) setEnv("VORN_ILP64", "1");
    const std::string record = useRecord(), log = mode == "Quiet" ? "" : useLogFile();
    std::size_t gpuCalls = 0;
    std::vector<RootRow> all = rows;
    all.insert(all.end(), cpuOnlyRows.begin(), cpuOnlyRows.end());
    const auto prototypes = publishedPrototypes();
    for (const RootRow& row : all) {
        // The CPU twice (the second call, its CPU function found, takes the short
        // path where the log is off), the GPU, then the GPU failing with each
        // status (only the emulator fails on request; 7 and 8 are failures only
        // without info); a work query where there is lwork, which goes to the CPU
        // although the GPU is asked for.
        std::vector<std::string> sides = {"CPU", "CPU", "GPU", "4", "7", "8"};
        if (row.crossover == 0) sides.resize(2);
        else if (tolerant) sides.resize(3);
        else if (std::strchr(row.kinds, 'o') != nullptr) sides.resize(4);
        if (std::strchr(row.kinds, 'w') != nullptr) sides.push_back("query");
        for (const std::string& base : basesOf(row)) {
            SCOPED_TRACE(base);
            // The row's kinds against the routine's published prototype.
            ASSERT_EQ(buildCall(row, base, row.integers).words.size(), prototypes.at(base).parameters.size());
            for (const std::string& side : sides) {
                const int lwork = side == "query" ? -1 : 128;
                Call reference = buildCall(row, base, row.integers, false, lwork);
                callWith(referenceRoutine(base), reference);
                const Call expected = wide ? expectedWide(row, base, reference, lwork) : reference;
                if (side != "CPU" && side != "GPU" && side != "query") setEnv("VORN_EMU_STATUS", base + "=" + side);
                side == "CPU" ? vornLinkSetCpuAlways() : vornLinkSetGpuAlways();
                Call call = buildCall(row, base, row.integers, wide, lwork);
                callWith(linkRoutine(base), call);
                vornLinkClearCpuAlways();
                vornLinkClearGpuAlways();
                unsetenv("VORN_EMU_STATUS");
                gpuCalls += side != "CPU" && side != "query";
                for (std::size_t w = 0; w < call.words.size(); ++w) {
                    SCOPED_TRACE(side + " side, word " + std::to_string(w + 1));
                    const Word& word = call.words[w];
                    // Words that never reach the GPU library (workspace, iter) are
                    // the CPU routine's business only.
                    if ((side == "GPU" || wide) && word.workspace) continue;
                    if (side == "GPU" && word.hostOnly) continue;
                    if (side == "GPU" && tolerant) {
                        if (word.vectors) continue;
                        expectWithinBound(word, expected.words[w]);
                    } else {
                        EXPECT_EQ(word.bytes, expected.words[w].bytes);
                    }
                }
            }
        }
    }
    // The GPU sides were the GPU library's: it started and got each call, which
    // the emulator records after vornInitialize (a real GPU library records none).
    if (!log.empty()) {
        EXPECT_EQ(linesStartingWith(readLines(log), "vorn info:  issuing to GPU").size(), gpuCalls);
    }
    EXPECT_EQ(readLines(record).size(), tolerant ? 0 : 1 + gpuCalls);
}

// The entry line prints exactly the GPU arguments, the emulator receives them by
// value, and the measure takes each of its operands and decides at the crossover
// (crossoverCases). No computation happens: the GPU answers are forced and the
// CPU library is missing, so the words may describe any size.
TEST(RoutedCrossovers, EntryLineGpuArgumentsAndCrossover) {
    if (tolerant) GTEST_SKIP() << "needs the emulator's record";
    const std::string log = useLogFile(), record = useRecord();
    setEnv("VORN_CPU_LIB", "libvorn-no-such-library.so");
    std::string forced;
    for (const RootRow& row : rows)
        for (const std::string& base : basesOf(row)) forced += base + "=8:0,";
    setEnv("VORN_EMU_STATUS", forced);
    vornLinkClearGpuAlways();  // runs the start-up, so that each call adds only its own lines
    std::size_t logSeen = readLines(log).size(), recordSeen = 1;
    for (const RootRow& row : rows)
        for (const std::string& base : basesOf(row))
            for (const auto& [integers, gpu] : crossoverCases(row)) {
                SCOPED_TRACE(base + testing::PrintToString(integers));
                Call call = buildCall(row, base, integers);
                callWith(linkRoutine(base), call);
                const auto lines = readLines(log), recorded = readLines(record);
                ASSERT_GT(lines.size(), logSeen + 1);
                EXPECT_EQ(lines[logSeen], call.entryLine);
                EXPECT_EQ(lines[logSeen + 1], gpu ? "vorn info:  issuing to GPU (over threshold)"
                                                  : "vorn info:  issuing to CPU (under threshold)");
                const std::vector<std::string> fresh(recorded.begin() + recordSeen, recorded.end());
                EXPECT_EQ(fresh, gpu ? std::vector{call.recordLine} : std::vector<std::string>{});
                logSeen = lines.size();
                recordSeen = recorded.size();
            }
}

// A scaled crossover is a wrapping 32-bit product: an entry of 2147483647 counts
// as -2 for jobz V and as -10 for compz N, so that any n is over it, while jobz N
// and compz I hold n against the entry itself.
TEST(RoutedCrossovers, ScaledCrossoversWrap) {
    if (tolerant) GTEST_SKIP() << "needs the emulator's forced statuses";
    const std::string log = useLogFile(), list = tempPath("crossovers.txt");
    writeFile(list, "ssyev=2147483647\nssteqr=2147483647\n");
    setEnv("VORN_CROSSOVER_LIST", list);
    setEnv("VORN_CPU_LIB", "libvorn-no-such-library.so");
    setEnv("VORN_EMU_STATUS", "ssyev=8:0,ssteqr=8:0");
    const std::tuple<const char*, const char*, bool> calls[] = {
        {"ssyev", "VU", true}, {"ssyev", "NU", false}, {"ssteqr", "n", true}, {"ssteqr", "I", false}};
    for (auto [base, characters, gpu] : calls) {
        SCOPED_TRACE(std::string(base) + " " + characters);
        RootRow row = *std::find_if(rows.begin(), rows.end(), [&](const RootRow& r) {
            return std::string(r.bases).starts_with(base);
        });
        row.characters = characters;
        Call call = buildCall(row, base, row.integers);
        callWith(linkRoutine(base), call);
        const auto lines = readLines(log);
        EXPECT_NE(std::find(lines.end() - 3, lines.end(), gpu ? "vorn info:  issuing to GPU (over threshold)"
                                                              : "vorn info:  issuing to CPU (under threshold)"),
                  lines.end());
    }
}
