// The routed families through the link library (spotrf, LU, multiply): a new
// routine is one more row below. One row per root holds
// the shape of its arguments as the routine tables give them: the kind of each
// word in order, which words never reach the GPU library, the integers to pass,
// and the measure. From the row the tests build the calls, the entry line and the
// GPU call the emulator records, and hold results against OpenBLAS.
//
// With LINK_TEST_TOLERANCE=1 (tools/test-cuda.sh, a real GPU library first on
// LD_LIBRARY_PATH) the GPU side's arrays need only agree with OpenBLAS's within
// LAPACK's error bounds instead of bit for bit, and the tests that rely on the
// emulator's record and forced statuses skip themselves.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/platform.h"
#include "link_test.h"

namespace {

// Word kinds: c character, i integer, S the precision's scalar (real in s and d,
// complex in c and z), R the precision's real scalar, p an array of the
// precision's type, I an integer array, f a float array, F a single complex
// array, d a double array, D a double complex array, w lwork, o info.
// An upper-case X before a kind marks a word that never reaches the GPU library;
// a W marks workspace whose contents a GPU library need not reproduce.
// The measure is the product of the integers at measureWords (one alone: that
// integer) or, for Measure::sum, their sum; where a product wraps at 32 bits is
// the last test's. Measure::none marks a logged CPU-only routine: no GPU side, no
// crossover.
enum class Measure { product, sum, none };

struct RootRow {
    const char* bases;      // the routines of the row
    const char* kinds;      // one kind per word; "X" marks the next word as host-only
    const char* characters; // values of the character words, in order
    std::vector<int> integers;  // values of the integer words, in order (dims, leading dimensions)
    Measure measure;
    std::vector<int> measureWords;  // positions in `integers` of the measure's operands
    int crossover;
};

// Small problems: every dimension at most 6, every leading dimension 8.
const std::vector<RootRow> rows = {
    {"sgemm dgemm cgemm zgemm", "cciiiSpipiSpi", "NT", {5, 4, 3, 8, 8, 8}, Measure::product, {0, 1, 2}, 4194304},
    {"ssymm dsymm csymm zsymm", "cciiSpipiSpi", "LU", {5, 4, 8, 8, 8}, Measure::product, {0, 1}, 262144},
    {"chemm zhemm", "cciiSpipiSpi", "RL", {5, 4, 8, 8, 8}, Measure::product, {0, 1}, 262144},
    {"ssyrk dsyrk csyrk zsyrk", "cciiSpiSpi", "UN", {5, 3, 8, 8}, Measure::product, {0, 1}, 262144},
    {"cherk zherk", "cciiRpiRpi", "LC", {5, 3, 8, 8}, Measure::product, {0, 1}, 262144},
    {"ssyr2k dsyr2k csyr2k zsyr2k", "cciiSpipiSpi", "LN", {5, 3, 8, 8, 8}, Measure::product, {0, 1}, 262144},
    {"cher2k zher2k", "cciiSpipiRpi", "UN", {5, 3, 8, 8, 8}, Measure::product, {0, 1}, 262144},
    {"strmm dtrmm ctrmm ztrmm", "cccciiSpipi", "LUNN", {5, 4, 8, 8}, Measure::product, {0, 1}, 262144},
    {"strsm dtrsm ctrsm ztrsm", "cccciiSpipi", "RLTN", {5, 4, 8, 8}, Measure::product, {0, 1}, 262144},
    {"ssymv dsymv", "ciSpipiSpi", "U", {6, 8, 1, 1}, Measure::product, {0}, 512},
    {"chemv zhemv", "ciSpipiSpi", "L", {6, 8, 1, 1}, Measure::product, {0}, 512},
    {"spotrf", "cipio", "U", {6, 8}, Measure::product, {0}, 1024},
    {"sgetrf dgetrf cgetrf zgetrf", "iipiIo", "", {6, 5, 8}, Measure::product, {0, 1}, 1048576},
    {"sgetrs dgetrs cgetrs zgetrs", "ciipiIpio", "N", {6, 2, 8, 8}, Measure::product, {0}, 1024},
    {"sgetri dgetri cgetri zgetri", "ipiIXpXwo", "", {6, 8, 64}, Measure::product, {0}, 1024},
    {"sgesv dgesv cgesv zgesv", "iipiIpio", "", {6, 2, 8, 8}, Measure::product, {0, 1}, 1048576},
    {"sgbtrf dgbtrf cgbtrf zgbtrf", "iiiipiIo", "", {6, 6, 1, 2, 8}, Measure::sum, {2, 3}, 1024},
    {"dsgesv", "iipiIpipiWpXfXIo", "", {6, 2, 8, 8, 8}, Measure::product, {0, 1}, 1048576},
    {"zcgesv", "iipiIpipiWpXFXdXIo", "", {6, 2, 8, 8, 8}, Measure::product, {0, 1}, 1048576},
    {"sgemv dgemv cgemv zgemv", "ciiSpipiSpi", "T", {5, 4, 8, 1, 1}, Measure::none, {}, 0},
    {"slacpy dlacpy clacpy zlacpy", "ciipipi", "L", {5, 4, 8, 8}, Measure::none, {}, 0},
    {"slascl dlascl clascl zlascl", "ciiRRiipio", "G", {0, 0, 5, 4, 8}, Measure::none, {}, 0},
    {"slaset dlaset claset zlaset", "ciiSSpi", "U", {5, 4, 8}, Measure::none, {}, 0},
};

std::vector<std::string> basesOf(const RootRow& row) {
    std::vector<std::string> bases;
    std::istringstream in(row.bases);
    for (std::string base; in >> base;) bases.push_back(base);
    return bases;
}

// The element type of the precision's arrays, by the routine's letter (dsgesv and
// zcgesv by their first).
bool isComplex(const std::string& base) { return base[0] == 'c' || base[0] == 'z'; }
bool isDouble(const std::string& base) { return base[0] == 'd' || base[0] == 'z'; }

// The storage behind the words of one call, filled from a seed so that two calls
// built alike start from the same bytes.
struct Call {
    std::vector<std::vector<unsigned char>> storage;
    std::vector<void*> words;
    std::vector<bool> hostOnly;
    std::vector<char> kinds;      // the kind of each word
    std::vector<bool> workspace;
    std::string entryLine, recordLine;
};

Call buildCall(const RootRow& row, const std::string& base, const std::vector<int>& integers) {
    Call call;
    const bool complex = isComplex(base), dbl = isDouble(base);
    const std::size_t real = dbl ? 8 : 4;
    std::size_t nextCharacter = 0, nextInteger = 0, nextScalar = 0;
    std::string entry = "vorn info:  " + base + " (", record = "vorn" + std::string(1, char(base[0] - 32)) + base.substr(1) + "(";
    const char* separator = "";
    bool hostOnly = false, workspace = false;
    char kindNow = 0;
    unsigned seed = 7;
    auto random = [&] { seed = seed * 1103515245u + 12345u; return double((seed >> 8) % 2001) / 1000.0 - 1.0; };
    auto store = [&](std::size_t bytes) -> unsigned char* {
        call.storage.emplace_back(bytes, 0);
        call.words.push_back(call.storage.back().data());
        call.hostOnly.push_back(hostOnly);
        call.kinds.push_back(kindNow);
        call.workspace.push_back(workspace);
        return call.storage.back().data();
    };
    auto putReal = [&](unsigned char* at, double value, std::size_t size) {
        if (size == 8) std::memcpy(at, &value, 8);
        else { float f = float(value); std::memcpy(at, &f, 4); }
    };
    auto show = [&](const std::string& logged, const std::string& recorded) {
        if (hostOnly) return;
        entry += separator + logged;
        record += separator + recorded;
        separator = ", ";
    };
    auto number = [](double v, std::size_t size, const char* logFormat) {
        char text[64];
        std::snprintf(text, sizeof text, logFormat, size == 8 ? v : double(float(v)));
        return std::string(text);
    };
    for (const char* kind = row.kinds; *kind != '\0'; ++kind) {
        if (*kind == 'X') { hostOnly = true; continue; }
        if (*kind == 'W') { workspace = true; continue; }
        kindNow = *kind;
        switch (*kind) {
            case 'c': {
                const char value = row.characters[nextCharacter++];
                *store(1) = static_cast<unsigned char>(value);
                show(std::string(1, value), std::string(1, value));
                break;
            }
            case 'i': case 'w': {
                const int value = *kind == 'w' ? 64 : integers[nextInteger++];
                std::memcpy(store(4), &value, 4);
                show(std::to_string(value), std::to_string(value));
                break;
            }
            case 'S': case 'R': {
                const bool pair = *kind == 'S' && complex;
                const double value = nextScalar++ % 2 ? 0.75 : 1.5;  // two scalars of a call differ
                unsigned char* at = store(pair ? 2 * real : real);
                putReal(at, value, real);
                if (pair) putReal(at + real, -0.25, real);
                const char* digits = real == 8 ? "%.17g" : "%.9g";
                if (pair) show("(" + number(value, real, "%f") + "," + number(-0.25, real, "%f") + ")",
                               "(" + number(value, real, digits) + "," + number(-0.25, real, digits) + ")");
                else show(number(value, real, "%f"), number(value, real, digits));
                break;
            }
            case 'o': store(8); break;  // info: never shown
            default: {  // arrays: random values, a strong diagonal for leading dimension 8
                const std::size_t partSize = std::strchr("fF", *kind) ? 4 : std::strchr("dD", *kind) ? 8 : real;
                const std::size_t parts = std::strchr("fd", *kind) ? 1 : std::strchr("FD", *kind) || complex ? 2 : 1;
                const int elements = 8 * 16;
                unsigned char* at = store((*kind == 'I' ? 4 : parts * partSize) * elements);
                for (int j = 0; j < elements; ++j) {
                    if (*kind == 'I') {
                        const int pivot = j % 6 + 1;  // a valid row for every problem here
                        std::memcpy(at + 4 * j, &pivot, 4);
                        continue;
                    }
                    for (std::size_t part = 0; part < parts; ++part) {
                        const double boost = (part == 0 && j % 9 == 0) ? 8.0 : 0.0;
                        putReal(at + (j * parts + part) * partSize, random() + boost, partSize);
                    }
                }
                show(pointerText(at), pointerText(at));
            }
        }
        hostOnly = workspace = false;
    }
    call.entryLine = entry + ")";
    call.recordLine = record + ")";
    return call;
}

template <std::size_t... I>
void callWords(void* function, const std::vector<void*>& words, std::index_sequence<I...>) {
    using Function = void (*)(decltype((void)I, static_cast<void*>(nullptr))...);
    reinterpret_cast<Function>(function)((I < words.size() ? words[I] : nullptr)...);
}
void callWith(void* function, const Call& call) { callWords(function, call.words, std::make_index_sequence<17>{}); }

void* linkRoutine(const std::string& base) {
    void* found = dlsym(RTLD_DEFAULT, (base + "_").c_str());
    EXPECT_NE(found, nullptr) << base;
    return found;
}

// OpenBLAS in a namespace of its own: the reference, untouched by the link library.
void* referenceRoutine(const std::string& base) {
    static void* openblas = platformLoadIsolatedLibrary("libopenblas.so.0");
    return platformFindSymbol(openblas, (base + "_").c_str());
}

bool tolerant() {
    const char* value = std::getenv("LINK_TEST_TOLERANCE");
    return value != nullptr && std::string(value) == "1";
}

// Equal within LAPACK's bound for these small problems: the largest difference
// within a multiple of eps of the array's largest element. Words that are not
// arrays of reals (integers, scalars, characters) must match exactly.
void expectWithinBound(const Call& call, const Call& reference, std::size_t w, const std::string& base) {
    const char kind = call.kinds[w];
    if (std::strchr("pfFdD", kind) == nullptr) {
        EXPECT_EQ(call.storage[w], reference.storage[w]) << "word " << w + 1;
        return;
    }
    const bool dbl = kind == 'd' || kind == 'D' || (kind == 'p' && isDouble(base));
    auto value = [&](const Call& c, std::size_t i) {
        double v;
        float f;
        if (dbl) std::memcpy(&v, &c.storage[w][8 * i], 8);
        else std::memcpy(&f, &c.storage[w][4 * i], 4), v = f;
        return v;
    };
    const double eps = dbl ? 1.1e-16 : 6e-8;
    double largest = 1, difference = 0;
    for (std::size_t i = 0; i < call.storage[w].size() / (dbl ? 8 : 4); ++i) {
        largest = std::max(largest, std::abs(value(reference, i)));
        difference = std::max(difference, std::abs(value(call, i) - value(reference, i)));
    }
    EXPECT_LE(difference, 1000 * eps * largest) << "word " << w + 1;
}

const RootRow& rowOf(const std::string& base) {
    for (const RootRow& row : rows)
        for (const std::string& each : basesOf(row))
            if (each == base) return row;
    throw std::invalid_argument("no row for " + base);
}

const std::string underLine = "vorn info:  issuing to CPU (under threshold)",
                  overLine = "vorn info:  issuing to GPU (over threshold)";

}  // namespace

// Each routine on each side gives OpenBLAS's bits: on the CPU, on the GPU (the
// emulator), and on the CPU after a GPU failure — for class A (no info) also
// after statuses 7 and 8, which only routines with info take as answers.
TEST(LuMultiplyFamilies, EverySideGivesOpenBlasResults) {
    const std::string record = useRecord();
    const std::string log = useLogFile();
    std::size_t gpuCalls = 0;
    for (const RootRow& row : rows) {
        const bool classA = std::strchr(row.kinds, 'o') == nullptr, cpuOnly = row.measure == Measure::none;
        for (const std::string& base : basesOf(row)) {
            SCOPED_TRACE(base);
            Call reference = buildCall(row, base, row.integers);
            callWith(referenceRoutine(base), reference);
            std::vector<std::string> failures = {"4"};
            if (classA) failures.insert(failures.end(), {"7", "8"});
            if (tolerant()) failures.clear();  // only the emulator fails on request
            const std::size_t sides = cpuOnly ? 1 : 2 + failures.size();
            gpuCalls += sides - 1;
            // Side 0: the CPU; side 1: the GPU; then the GPU failing with each status.
            for (std::size_t side = 0; side < sides; ++side) {
                if (side >= 2) setEnv("VORN_EMU_STATUS", base + "=" + failures[side - 2]);
                if (side == 0) vornLinkSetCpuAlways(); else vornLinkSetGpuAlways();
                Call call = buildCall(row, base, row.integers);
                callWith(linkRoutine(base), call);
                vornLinkClearCpuAlways();
                vornLinkClearGpuAlways();
                unsetenv("VORN_EMU_STATUS");
                // Words that never reach the GPU library (workspace, iter) are the
                // CPU routine's business only.
                for (std::size_t w = 0; w < call.storage.size(); ++w) {
                    if (side == 1 && call.hostOnly[w]) continue;
                    if (side == 1 && tolerant()) {
                        if (!call.workspace[w]) expectWithinBound(call, reference, w, base);
                        continue;
                    }
                    EXPECT_EQ(call.storage[w], reference.storage[w]) << "side " << side << ", word " << w + 1;
                }
            }
        }
    }
    if (tolerant()) {
        // The GPU side really was the GPU: the library started.
        for (const std::string& line : readLines(log)) EXPECT_EQ(line.find("vornInitialize failed"), std::string::npos) << line;
        return;
    }
    EXPECT_EQ(readLines(record).size(), 1 + gpuCalls);  // vornInitialize, then one line per GPU call
}

// The entry line prints exactly the GPU arguments, the emulator receives them by
// value, and the measure decides at the crossover: one below goes to the CPU,
// equal and above to the GPU. No computation happens: the GPU answers are forced
// and the CPU library is missing, so the words may describe any size.
TEST(LuMultiplyFamilies, EntryLineGpuArgumentsAndCrossover) {
    if (tolerant()) GTEST_SKIP() << "needs the emulator's record";
    const std::string log = useLogFile();
    const std::string record = useRecord();
    setEnv("VORN_CPU_LIB", "libvorn-no-such-library.so");
    std::string forced;
    for (const RootRow& row : rows)
        for (const std::string& base : basesOf(row)) forced += base + "=8:0,";
    setEnv("VORN_EMU_STATUS", forced);
    vornLinkClearGpuAlways();  // runs the start-up, so that each call adds only its own lines

    for (const RootRow& row : rows) {
        const bool cpuOnly = row.measure == Measure::none;
        for (const std::string& base : basesOf(row)) {
            SCOPED_TRACE(base);
            // A logged CPU-only routine: one call, on the CPU whatever the settings.
            for (int offset : cpuOnly ? std::vector<int>{0} : std::vector<int>{-1, 0, 1}) {
                std::vector<int> integers = row.integers;
                if (!cpuOnly) integers[row.measureWords[0]] = row.crossover + offset;
                for (std::size_t i = 1; i < row.measureWords.size(); ++i)  // the other operands: 0 in a sum, else 1
                    integers[row.measureWords[i]] = row.measure == Measure::sum ? 0 : 1;
                const auto logBefore = readLines(log).size(), recordBefore = readLines(record).size();
                Call call = buildCall(row, base, integers);
                callWith(linkRoutine(base), call);
                const auto lines = readLines(log);
                ASSERT_GT(lines.size(), logBefore + 1);
                EXPECT_EQ(lines[logBefore], call.entryLine);
                const bool gpu = !cpuOnly && offset >= 0;
                EXPECT_EQ(lines[logBefore + 1],
                          cpuOnly ? "vorn info:  issuing to CPU (excluded by user)" : gpu ? overLine : underLine);
                const auto recorded = readLines(record);
                ASSERT_EQ(recorded.size(), recordBefore + gpu);
                if (gpu) {
                    EXPECT_EQ(recorded.back(), call.recordLine);
                }
            }
        }
    }
}

// Each measure takes its own operands: gesv n × nrhs, getrs n alone, gbtrf the
// band width. Products of 32-bit dimensions wrap; gemm's and hemm's double
// products do not.
TEST(LuMultiplyFamilies, MeasuresTakeTheirOperandsAndWrapWhere32Bit) {
    if (tolerant()) GTEST_SKIP() << "needs the emulator's forced statuses";
    const std::string log = useLogFile();
    setEnv("VORN_CPU_LIB", "libvorn-no-such-library.so");
    setEnv("VORN_EMU_STATUS", "sgemm=8,ssymm=8,chemm=8,sgesv=8:0,dgesv=8:0,dgetrs=8:0,cgbtrf=8:0,dsyrk=8,ztrsm=8");
    struct Case { const char* base; std::vector<int> integers; const std::string& issuing; };
    const Case cases[] = {
        {"sgemm", {65536, 65536, 65536, 8, 8, 8}, overLine},
        {"ssymm", {65536, 65536, 8, 8, 8}, underLine},  // 2^32 wraps to 0
        {"chemm", {65536, 65536, 8, 8, 8}, overLine},  // 2^32 in double
        {"sgesv", {65536, 32769, 8, 8}, underLine},  // negative
        {"dsyrk", {-70000, -70000, 8, 8}, overLine},  // positive again
        {"ztrsm", {0, 100000, 8, 8}, underLine},  // zero
        {"sgemm", {0, 4194304, 4194304, 8, 8, 8}, underLine},
        {"dgesv", {1024, 1024, 8, 8}, overLine},  // not n alone
        {"dgetrs", {1023, 100000, 8, 8}, underLine},  // nrhs plays no part
        {"cgbtrf", {2, 2, 1000, 24, 8}, overLine},  // kl + ku only
    };
    for (const Case& c : cases) {
        const auto before = readLines(log).size();
        Call call = buildCall(rowOf(c.base), c.base, c.integers);
        callWith(linkRoutine(c.base), call);
        EXPECT_EQ(readLines(log).at(before + 1), c.issuing) << c.base;
    }
}
