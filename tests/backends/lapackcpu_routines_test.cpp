// Every routine of the CPU library liblapackcpu.so: its exported names against the
// routine list and what OpenBLAS has, its routed word counts and character
// arguments against the prototypes of the system's lapack.h (liblapacke-dev) and
// cblas_f77.h (libblas-dev), read at test time, and its calls against OpenBLAS's
// own answers where our convention and gfortran's differ: string lengths,
// function results, arguments passed in another order. (Character arguments
// reaching OpenBLAS: the family tests' CPU side and the reference LAPACK run.)
#include <algorithm>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "exports/routine_classes.h"
#include "published_prototypes.h"
#include "test_support.h"

// OpenBLAS, linked into this program, with gfortran's hidden lengths.
extern "C" {
int ilaenv_(const int* ispec, const char* name, const char* opts, const int* n1, const int* n2, const int* n3,
            const int* n4, std::size_t, std::size_t);
int iparmq_(const int* ispec, const char* name, const char* opts, const int* n, const int* ilo, const int* ihi,
            const int* lwork, std::size_t, std::size_t);
int lsamen_(const int* n, const char* ca, const char* cb, std::size_t, std::size_t);
float sdot_(const int* n, const float* x, const int* incx, const float* y, const int* incy);
float slamch_(const char* cmach, std::size_t);
double dlamch_(const char* cmach, std::size_t);
float slange_(const char* norm, const int* m, const int* n, const float* a, const int* lda, float* work, std::size_t);
using Cf = std::complex<float>;
using Cd = std::complex<double>;
Cf cdotc_(const int* n, const Cf* x, const int* incx, const Cf* y, const int* incy);
Cf cdotu_(const int* n, const Cf* x, const int* incx, const Cf* y, const int* incy);
Cd zdotc_(const int* n, const Cd* x, const int* incx, const Cd* y, const int* incy);
Cd zdotu_(const int* n, const Cd* x, const int* incx, const Cd* y, const int* incy);
Cf cladiv_(const Cf* x, const Cf* y);
Cd zladiv_(const Cd* x, const Cd* y);
void ssyswapr_(const char* uplo, const int* n, float* a, const int* lda, const int* i1, const int* i2, std::size_t);
void slartgs_(const float* x, const float* y, const float* sigma, float* cs, float* sn);
}

namespace {

using Word = void*;

// The routines OpenBLAS 0.3.21 lacks, left out of the adapter: LAPACK dropped
// xLAZQ3 and xLAZQ4 (the dqds steps that xLASQ3 and xLASQ4 took over).
const std::set<std::string> lackedByOpenBlas = {"slazq3", "dlazq3", "slazq4", "dlazq4"};

// The CPU library as the link library opens it.
void* adapter() {
    static void* const handle = dlopen(VORN_TEST_LAPACKCPU, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    EXPECT_NE(handle, nullptr) << dlerror();
    return handle;
}

template <class Function> Function routine(const char* name) {
    auto function = reinterpret_cast<Function>(dlsym(adapter(), name));
    EXPECT_NE(function, nullptr) << name;
    return function;
}

template <class T> bool sameBits(const T& x, const T& y) { return std::memcmp(&x, &y, sizeof(T)) == 0; }
template <class T> bool sameBits(const std::vector<T>& x, const std::vector<T>& y) {
    return x.size() == y.size() && std::memcmp(x.data(), y.data(), x.size() * sizeof(T)) == 0;
}

std::vector<std::string> routineList() {
    std::vector<std::string> names;
    for (const char* name : routine_classes::routineList)
        if (std::string(name) != "lsame") names.push_back(name);
    return names;
}

// A prototype of one of the headers: its parameters before the hidden lengths,
// the positions (from 1) of its character parameters, and its hidden lengths.
struct Prototype {
    int parameters = 0;
    std::vector<int> characters;
    int lengths = 0;
};

std::map<std::string, Prototype> publishedPrototypes() {
    std::map<std::string, Prototype> prototypes;
    for (const char* path : {VORN_LAPACK_HEADER, VORN_BLAS_HEADER}) {
        const auto published = readPublishedPrototypes(path);
        EXPECT_GT(published.size(), 100u) << path;
        for (const auto& [name, found] : published) {
            Prototype prototype{static_cast<int>(found.parameters.size()), {}, found.hiddenLengths};
            for (int i = 0; i < prototype.parameters; ++i) {
                const std::string& parameter = found.parameters[i];
                if (parameter.starts_with("char") || parameter.starts_with("const char") || parameter == "FCHAR")
                    prototype.characters.push_back(i + 1);
            }
            prototypes.emplace(name, prototype);  // lapack.h first
        }
    }
    return prototypes;
}

TEST(LapackCpuRoutines, ExportsEveryListedRoutineThatOpenBlasHasAndNothingElse) {
    void* openBlas = dlopen("libopenblas.so.0", RTLD_NOW);
    ASSERT_NE(openBlas, nullptr) << dlerror();
    std::set<std::string> expected, lacked;
    for (const std::string& name : routineList()) {
        if (dlsym(openBlas, (name + "_").c_str()) == nullptr) lacked.insert(name);
        else expected.insert(name);
    }
    EXPECT_EQ(lacked, lackedByOpenBlas);

    FILE* symbols = popen((std::string("nm -D --defined-only ") + VORN_TEST_LAPACKCPU).c_str(), "r");
    ASSERT_NE(symbols, nullptr);
    std::set<std::string> exported;
    char line[512];
    while (std::fgets(line, sizeof line, symbols) != nullptr) {
        std::istringstream fields(line);
        std::string address, type, name;
        fields >> address >> type >> name;
        exported.insert(name);
    }
    ASSERT_EQ(pclose(symbols), 0);
    EXPECT_EQ(exported, expected);
}

TEST(LapackCpuRoutines, RoutedWordCountsAgreeWithThePublishedPrototypes) {
    std::map<std::string, int> routed;
#define ROUTED_WORDS(name, words) EXPECT_TRUE(routed.emplace(#name, words).second) << #name;
#include "backends/lapackcpu/routed_word_counts.inc"
#undef ROUTED_WORDS

    // The routed routines are the crossover entries, less those no routine reads.
    std::set<std::string> crossovers;
    for (const CrossoverName& entry : crossoverNames) crossovers.insert(entry.name);
    for (const char* name : routine_classes::crossoversWithoutRoutine) crossovers.erase(name);
    std::set<std::string> names;
    for (const auto& [name, words] : routed) names.insert(name);
    EXPECT_EQ(names, crossovers);

    const auto prototypes = publishedPrototypes();
    for (const auto& [name, words] : routed) {
        const auto found = prototypes.find(name);
        if (found == prototypes.end()) {
            ADD_FAILURE() << name << ": neither header declares it";
            continue;
        }
        EXPECT_EQ(words, found->second.parameters) << name;
    }
}

TEST(LapackCpuRoutines, CharacterArgumentsAgreeWithThePublishedPrototypes) {
    std::map<std::string, std::vector<int>> table;
#define CHARS(name, ...) EXPECT_TRUE(table.emplace(#name, std::vector<int>{__VA_ARGS__}).second) << #name;
#define STRINGS(name, length, ...) CHARS(name, __VA_ARGS__)
#include "backends/lapackcpu/character_arguments.inc"
#undef CHARS
#undef STRINGS

    const auto list = routineList();
    for (const auto& [name, positions] : table)
        EXPECT_NE(std::find(list.begin(), list.end(), name), list.end()) << name << " is no routine of the list";

    const auto prototypes = publishedPrototypes();
    int compared = 0;
    for (const std::string& name : list) {
        const auto found = prototypes.find(name);
        if (found == prototypes.end()) continue;
        const Prototype& prototype = found->second;
        EXPECT_EQ(prototype.lengths, static_cast<int>(prototype.characters.size())) << name << ": header misread";
        const auto row = table.find(name);
        EXPECT_EQ(row == table.end() ? std::vector<int>{} : row->second, prototype.characters) << name;
        ++compared;
    }
    EXPECT_GT(compared, 1100);  // about 1,150 of the 1,663 are declared
}

// Fortran strings of any length: ours carry none, OpenBLAS's routines read them.
TEST(LapackCpuRoutines, StringLengthsReachOpenBlas) {
    using Ilaenv = int (*)(Word, Word, Word, Word, Word, Word, Word);
    int one = 1, none = -1;
    char name[] = "DGETRF", opts[] = " ";
    const int block = ilaenv_(&one, name, opts, &none, &none, &none, &none, 6, 1);
    ASSERT_NE(block, ilaenv_(&one, name, opts, &none, &none, &none, &none, 0, 0)) << "the lengths would not matter";
    EXPECT_EQ(routine<Ilaenv>("ilaenv")(&one, name, opts, &none, &none, &none, &none), block);
    EXPECT_EQ(block, 64);

    // iparmq's choice of kernel for the 2 by 2 blocks depends on the routine's name.
    int kernelChoice = 16, n = 1000, ilo = 1, query = -1;
    char gghrd[] = "DGGHRD", en[] = "EN";
    const int kernel = iparmq_(&kernelChoice, gghrd, en, &n, &ilo, &n, &query, 6, 2);
    ASSERT_NE(kernel, iparmq_(&kernelChoice, gghrd, en, &n, &ilo, &n, &query, 0, 0)) << "the lengths would not matter";
    EXPECT_EQ(routine<Ilaenv>("iparmq")(&kernelChoice, gghrd, en, &n, &ilo, &n, &query), kernel);

    // lsamen compares n characters, and answers false for strings shorter than n.
    using Lsamen = int32_t (*)(Word, Word, Word);
    int three = 3;
    char upper[] = "ABC", lower[] = "abc", other[] = "abd";
    EXPECT_EQ(routine<Lsamen>("lsamen")(&three, upper, other), 0);
    EXPECT_NE(routine<Lsamen>("lsamen")(&three, upper, lower), 0);
    EXPECT_NE(lsamen_(&three, upper, lower, 3, 3), 0);

    // xerbla's third word is the name's length by value, 32 bits in a 64-bit word.
    using Xerbla = void (*)(Word, Word, Word);
    char routineName[] = "DGEQRF";
    int info = 5;
    const auto length = reinterpret_cast<Word>((uintptr_t{0xdeadbeef} << 32) | 6);
    StdoutCapture capture;
    routine<Xerbla>("xerbla")(routineName, &info, length);
    const std::string output = capture.stop();
    EXPECT_NE(output.find(" ** On entry to DGEQRF parameter number  5 had an illegal value"), std::string::npos)
        << output;
}

// The complex functions of one precision: each writes through word 1 what
// OpenBLAS returns, and the dot products, of values exact in binary, their sums.
template <class Real, class Dot, class Divide>
void expectComplexResults(const char* dotc, const char* dotu, const char* ladiv, Dot openBlasDotc, Dot openBlasDotu,
                          Divide openBlasLadiv) {
    using Complex = std::complex<Real>;
    int n = 3, inc = 1;
    Complex x[] = {{1, 2}, {3, -1}, {0.5, 0.25}}, y[] = {{-2, 1}, {0.5, 4}, {8, -2}};
    for (bool conjugated : {true, false}) {
        const char* name = conjugated ? dotc : dotu;
        Complex expected{}, result{-7, -7};
        for (int i = 0; i < n; ++i) expected += (conjugated ? std::conj(x[i]) : x[i]) * y[i];
        routine<void (*)(Word, Word, Word, Word, Word, Word)>(name)(&result, &n, x, &inc, y, &inc);
        EXPECT_EQ(result, expected) << name;
        EXPECT_TRUE(sameBits(result, (conjugated ? openBlasDotc : openBlasDotu)(&n, x, &inc, y, &inc))) << name;
    }
    Complex dividend{-5, 5}, divisor{-2, 1}, quotient{-7, -7};
    routine<void (*)(Word, Word, Word)>(ladiv)(&quotient, &dividend, &divisor);
    EXPECT_TRUE(sameBits(quotient, openBlasLadiv(&dividend, &divisor))) << ladiv;
    EXPECT_LT(std::abs(quotient - Complex(3, -1)), Real(1e-6)) << ladiv;
}

// Functions: real and integer results come back as OpenBLAS returns them, a
// complex one through word 1, a CHARACTER one as its byte.
TEST(LapackCpuRoutines, FunctionResultsAreOpenBlasOwn) {
    int n = 3, inc = 1;
    float x[] = {0.1f, -2.5f, 3.3f}, y[] = {7.25f, 0.3f, -1.7f};
    EXPECT_TRUE(sameBits(routine<float (*)(Word, Word, Word, Word, Word)>("sdot")(&n, x, &inc, y, &inc),
                         sdot_(&n, x, &inc, y, &inc)));

    for (char cmach : std::string("ESBPNRMULO")) {
        SCOPED_TRACE(cmach);
        EXPECT_TRUE(sameBits(routine<float (*)(Word)>("slamch")(&cmach), slamch_(&cmach, 1)));
        EXPECT_TRUE(sameBits(routine<double (*)(Word)>("dlamch")(&cmach), dlamch_(&cmach, 1)));
    }

    int rows = 3, columns = 4, lda = 4;
    float a[] = {1.5f, -2, 0.25f, 99, 3, 4.5f, -6, 99, -0.5f, 8, 1, 99, 2, -3, 7.75f, 99}, work[4];
    using Lange = float (*)(Word, Word, Word, Word, Word, Word);
    for (char norm : std::string("M1OIFE")) {
        SCOPED_TRACE(norm);
        EXPECT_TRUE(sameBits(routine<Lange>("slange")(&norm, &rows, &columns, a, &lda, work),
                             slange_(&norm, &rows, &columns, a, &lda, work, 1)));
    }

    expectComplexResults<float>("cdotc", "cdotu", "cladiv", cdotc_, cdotu_, cladiv_);
    expectComplexResults<double>("zdotc", "zdotu", "zladiv", zdotc_, zdotu_, zladiv_);

    // The BLAST constants and their characters.
    const std::pair<int, char> transposes[] = {{111, 'N'}, {112, 'T'}, {113, 'C'}, {0, 'X'}};
    for (auto [constant, character] : transposes)
        EXPECT_EQ(routine<char (*)(Word)>("chla_transtype")(&constant), character) << constant;
    const struct {
        const char* name;
        char argument;
        int32_t constant;
    } constants[] = {{"ilatrans", 'C', 113}, {"ilauplo", 'L', 122}, {"iladiag", 'U', 132}, {"ilaprec", 'I', 213}};
    for (auto [name, argument, constant] : constants)
        EXPECT_EQ(routine<int32_t (*)(Word)>(name)(&argument), constant) << name;
}

// Routines whose words are not OpenBLAS's arguments: syswapr lacks lda (n), and
// lartgs's sn has no word.
TEST(LapackCpuRoutines, RoutinesWithOtherArgumentListsReachOpenBlasRight) {
    using Syswapr = void (*)(Word, Word, Word, Word, Word);
    int n = 5, i1 = 2, i2 = 4;
    for (char uplo : {'U', 'L'}) {
        SCOPED_TRACE(uplo);
        std::vector<float> a(n * n), reference;
        for (int i = 0; i < n * n; ++i) a[i] = float(i);
        reference = a;
        routine<Syswapr>("ssyswapr")(&uplo, &n, a.data(), &i1, &i2);
        ssyswapr_(&uplo, &n, reference.data(), &n, &i1, &i2, 1);
        EXPECT_TRUE(sameBits(a, reference));
        EXPECT_EQ(a[(i1 - 1) * (n + 1)], float((i2 - 1) * (n + 1))) << "the diagonal entries were not swapped";
    }

    float x = 3, y = 1.5f, sigma = 0.75f, cs = -9, referenceCs = -8, referenceSn = -8;
    routine<void (*)(Word, Word, Word, Word)>("slartgs")(&x, &y, &sigma, &cs);
    slartgs_(&x, &y, &sigma, &referenceCs, &referenceSn);
    EXPECT_TRUE(sameBits(cs, referenceCs));
}

}  // namespace
