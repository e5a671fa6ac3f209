// The CPU library liblapackcpu.so, opened as the link library opens it, in a
// program that links OpenBLAS (with gfortran's hidden lengths) and exports a
// dbdsqr_ of its own. Its OpenBLAS stays private and its messages reach standard
// output; its exported names agree with the routine list and what OpenBLAS has,
// its routed word counts and character arguments with the prototypes of the
// system's lapack.h (liblapacke-dev) and cblas_f77.h (libblas-dev), and its calls
// with OpenBLAS's own answers where our convention and gfortran's differ: string
// lengths, function results, arguments passed in another order. (Character
// arguments reaching OpenBLAS: the family tests' CPU side and the reference
// LAPACK run.)
#include <algorithm>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <tuple>
#include <type_traits>
#include <unistd.h>

#include "exports/routine_classes.h"
#include "published_prototypes.h"
#include "test_support.h"

// OpenBLAS, linked into this program, with gfortran's hidden lengths.
extern "C" void dgesvd_(const char* jobu, const char* jobvt, const int* m, const int* n, double* a, const int* lda,
                        double* s, double* u, const int* ldu, double* vt, const int* ldvt, double* work,
                        const int* lwork, int* info, std::size_t, std::size_t);

// This program's dbdsqr_, exported (ENABLE_EXPORTS): it wins over OpenBLAS's for
// every caller that resolves through the global scope. It counts the call and
// hands it on to OpenBLAS's own, so that the results stay right.
static int dbdsqrCalls = 0;
extern "C" [[gnu::visibility("default")]] void dbdsqr_(const char* uplo, const int* n, const int* ncvt,
                                                       const int* nru, const int* ncc, double* d, double* e,
                                                       double* vt, const int* ldvt, double* u, const int* ldu,
                                                       double* c, const int* ldc, double* work, int* info,
                                                       std::size_t uploLength) {
    ++dbdsqrCalls;
    static const auto next = reinterpret_cast<decltype(&dbdsqr_)>(dlsym(RTLD_NEXT, "dbdsqr_"));
    next(uplo, n, ncvt, nru, ncc, d, e, vt, ldvt, u, ldu, c, ldc, work, info, uploLength);
}

namespace {

// The CPU library as the link library opens it (each test is a process of its
// own, so a test may set the environment before the first call).
void* adapter() {
    static void* const handle = dlopen(VORN_TEST_LAPACKCPU, RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND);
    EXPECT_NE(handle, nullptr) << dlerror();
    return handle;
}

// Calls the adapter's routine `name` with one word per argument.
template <class R = void, class... Args>
R call(const std::string& name, Args*... words) {
    const auto function =
        reinterpret_cast<R (*)(std::conditional_t<true, const void*, Args>...)>(dlsym(adapter(), name.c_str()));
    if (function == nullptr) throw std::runtime_error(name + " is not exported");
    return function(words...);
}

// Calls OpenBLAS's own routine `name`, in gfortran's convention: an integer passed
// by value is a hidden string length.
template <class T> using ByValue = std::conditional_t<std::is_integral_v<T>, std::size_t, T>;
template <class R = void, class... Args>
R openBlas(const std::string& name, Args... arguments) {
    const auto function = reinterpret_cast<R (*)(ByValue<Args>...)>(dlsym(RTLD_DEFAULT, name.c_str()));
    if (function == nullptr) throw std::runtime_error(name + " is not in OpenBLAS");
    return function(static_cast<ByValue<Args>>(arguments)...);
}

template <class T> bool sameBits(const T& x, const T& y) { return std::memcmp(&x, &y, sizeof(T)) == 0; }

std::vector<std::string> routineList() {
    std::vector<std::string> names(std::begin(routine_classes::routineList), std::end(routine_classes::routineList));
    std::erase(names, "lsame");
    return names;
}

// A column-major 3 x 3 symmetric positive definite matrix.
template <class Real> std::vector<Real> spdMatrix() { return {3, 0.5, 0.25, 0.5, 3, 0.5, 0.25, 0.5, 3}; }

}  // namespace

// The singular value decomposition of a fixed 6 x 4 matrix into all of U and the
// short V^T, by the adapter and by the program's OpenBLAS: the adapter's dgesvd_
// must not reach this program's dbdsqr_, the global one must.
TEST(LapackCpu, DgesvdStaysInsideItsOwnOpenBlas) {
    struct Svd {
        char jobu = 'A', jobvt = 'S';
        int m = 6, n = 4, lda = 6, ldu = 6, ldvt = 4, lwork = 200, info = -99;
        std::vector<double> out = std::vector<double>(24 + 4 + 36 + 16), work = std::vector<double>(200);
        double *a = out.data(), *s = a + 24, *u = s + 4, *vt = u + 36;
        Svd() {
            for (int k = 0; k < 24; ++k) a[k] = double((k * 7) % 11) - 3.5 + 0.25 * k;
        }
    } c, d;
    call("dgesvd", &c.jobu, &c.jobvt, &c.m, &c.n, c.a, &c.lda, c.s, c.u, &c.ldu, c.vt, &c.ldvt, c.work.data(),
         &c.lwork, &c.info);
    EXPECT_EQ(dbdsqrCalls, 0) << "the adapter's dgesvd_ reached this program's dbdsqr_";
    dgesvd_(&d.jobu, &d.jobvt, &d.m, &d.n, d.a, &d.lda, d.s, d.u, &d.ldu, d.vt, &d.ldvt, d.work.data(), &d.lwork,
            &d.info, 1, 1);
    EXPECT_GT(dbdsqrCalls, 0) << "this program's dbdsqr_ does not interpose on the global OpenBLAS";
    EXPECT_EQ(c.info, 0);
    EXPECT_EQ(d.info, 0);
    EXPECT_EQ(c.out, d.out);
}

// An illegal argument that OpenBLAS finds, reported to this program's xerbla_
// (its linked OpenBLAS's, which prints through this program's buffered standard
// output), and xerbla called directly with its name's length by value (32 bits
// in a 64-bit word), the isolated OpenBLAS's own: each message printed once.
TEST(LapackCpu, XerblaMessagesReachStandardOutputOnce) {
    char uplo = 'U', routineName[] = "DGEQRF";
    int n = -1, lda = 1, info = 0, position = 5;
    float a[1] = {3};
    StdoutCapture capture;
    call("spotrf", &uplo, &n, a, &lda, &info);
    std::fflush(stdout);
    call("xerbla", routineName, &position, reinterpret_cast<void*>((uintptr_t{0xdeadbeef} << 32) | 6));
    EXPECT_EQ(capture.stop(), " ** On entry to SPOTRF parameter number  2 had an illegal value\n"
                              " ** On entry to DGEQRF parameter number  5 had an illegal value\n");
    EXPECT_EQ(info, -2);
}

TEST(LapackCpu, MissingBackendIsReportedOnceAndTouchesNothing) {
    const std::string missing = tempPath("no-such-openblas.so");
    setEnv("VORN_LAPACKCPU_BACKEND", missing);
    char uplo = 'L';
    int n = 3, info = 12345, info2 = 12345;
    auto single = spdMatrix<float>();
    auto twice = spdMatrix<double>();
    StdoutCapture capture;  // standard error goes there too while the adapter runs
    const int savedError = dup(2);
    dup2(1, 2);
    call("spotrf", &uplo, &n, single.data(), &n, &info);
    call("spotrf", &uplo, &n, single.data(), &n, &info);
    call("dpotrf", &uplo, &n, twice.data(), &n, &info2);
    std::fflush(stderr);
    dup2(savedError, 2);
    close(savedError);
    const std::string output = capture.stop();
    EXPECT_EQ(info, 12345);
    EXPECT_EQ(info2, 12345);
    EXPECT_EQ(single, spdMatrix<float>());
    EXPECT_EQ(twice, spdMatrix<double>());
    EXPECT_NE(output.find(missing), std::string::npos) << output;
    EXPECT_EQ(output.find('\n'), output.size() - 1) << "more than one line: " << output;
}

// Every routine of the list that OpenBLAS has, and nothing else. OpenBLAS 0.3.21
// lacks xLAZQ3 and xLAZQ4 (LAPACK dropped them for xLASQ3 and xLASQ4's steps).
TEST(LapackCpu, ExportsEveryListedRoutineThatOpenBlasHasAndNothingElse) {
    void* library = dlopen("libopenblas.so.0", RTLD_NOW);
    ASSERT_NE(library, nullptr) << dlerror();
    std::multiset<std::string> expected;
    std::set<std::string> lacked;
    for (const std::string& name : routineList()) {
        if (dlsym(library, (name + "_").c_str()) == nullptr) lacked.insert(name);
        else expected.insert(name);
    }
    EXPECT_EQ(lacked, (std::set<std::string>{"slazq3", "dlazq3", "slazq4", "dlazq4"}));
    EXPECT_EQ(definedDynamicSymbols("nm", VORN_TEST_LAPACKCPU), expected);
}

// The routed routines are the crossover entries, less those no routine reads;
// each one's word count is its published parameter count.
TEST(LapackCpu, RoutedWordCountsAgreeWithThePublishedPrototypes) {
    const auto prototypes = publishedPrototypes();
    std::set<std::string> routed, crossovers;
#define ROUTED_WORDS(name, words)                                                       \
    EXPECT_TRUE(routed.insert(#name).second) << #name;                                  \
    EXPECT_EQ(prototypes.count(#name) ? prototypes.at(#name).parameters.size() : 0u, \
              std::size_t{words}) << #name;
#include "backends/lapackcpu/routed_word_counts.inc"
#undef ROUTED_WORDS
    for (const CrossoverName& entry : crossoverNames) crossovers.insert(entry.name);
    for (const char* name : routine_classes::crossoversWithoutRoutine) crossovers.erase(name);
    EXPECT_EQ(routed, crossovers);
}

// The positions of the character parameters of every routine a header declares;
// a routine without a row has none.
TEST(LapackCpu, CharacterArgumentsAgreeWithThePublishedPrototypes) {
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
    for (const std::string& name : list) {
        if (!prototypes.count(name)) continue;
        const PublishedPrototype& prototype = prototypes.at(name);
        std::vector<int> characters;
        for (std::size_t i = 0; i < prototype.parameters.size(); ++i) {
            const std::string& parameter = prototype.parameters[i];
            if (parameter.starts_with("char") || parameter.starts_with("const char") || parameter == "FCHAR")
                characters.push_back(static_cast<int>(i) + 1);
        }
        EXPECT_EQ(prototype.hiddenLengths, static_cast<int>(characters.size())) << name << ": header misread";
        EXPECT_EQ(table.count(name) ? table.at(name) : std::vector<int>{}, characters) << name;
    }
}

// Fortran strings of any length: ours carry none, OpenBLAS's routines read them.
TEST(LapackCpu, StringLengthsReachOpenBlas) {
    int one = 1, none = -1;
    char name[] = "DGETRF", opts[] = " ";
    const int block = openBlas<int>("ilaenv_", &one, name, opts, &none, &none, &none, &none, 6, 1);
    ASSERT_NE(block, openBlas<int>("ilaenv_", &one, name, opts, &none, &none, &none, &none, 0, 0))
        << "the lengths would not matter";
    EXPECT_EQ(call<int>("ilaenv", &one, name, opts, &none, &none, &none, &none), block);

    // iparmq's choice of kernel for the 2 by 2 blocks depends on the routine's name.
    int kernelChoice = 16, n = 1000, ilo = 1, query = -1;
    char gghrd[] = "DGGHRD", en[] = "EN";
    const int kernel = openBlas<int>("iparmq_", &kernelChoice, gghrd, en, &n, &ilo, &n, &query, 6, 2);
    ASSERT_NE(kernel, openBlas<int>("iparmq_", &kernelChoice, gghrd, en, &n, &ilo, &n, &query, 0, 0))
        << "the lengths would not matter";
    EXPECT_EQ(call<int>("iparmq", &kernelChoice, gghrd, en, &n, &ilo, &n, &query), kernel);

    // lsamen compares n characters, and answers false for strings shorter than n.
    int three = 3;
    char upper[] = "ABC", lower[] = "abc", other[] = "abd";
    EXPECT_EQ(call<int32_t>("lsamen", &three, upper, other), 0);
    EXPECT_NE(call<int32_t>("lsamen", &three, upper, lower), 0);
    EXPECT_NE(openBlas<int>("lsamen_", &three, upper, lower, 3, 3), 0);
}

// The complex functions of one precision: each writes through word 1 what
// OpenBLAS returns.
template <class Real>
void expectComplexResults(const std::string& letter) {
    using Complex = std::complex<Real>;
    int n = 3, inc = 1;
    Complex x[] = {{1, 2}, {3, -1}, {0.5, 0.25}}, y[] = {{-2, 1}, {0.5, 4}, {8, -2}}, result{-7, -7};
    for (const std::string& name : {letter + "dotc", letter + "dotu"}) {
        call(name, &result, &n, x, &inc, y, &inc);
        EXPECT_TRUE(sameBits(result, openBlas<Complex>(name + "_", &n, x, &inc, y, &inc))) << name;
    }
    call(letter + "ladiv", &result, x, y);
    EXPECT_TRUE(sameBits(result, openBlas<Complex>(letter + "ladiv_", x, y))) << letter;
}

// Functions: real and integer results come back as OpenBLAS returns them, a
// complex one through word 1, a CHARACTER one as its byte.
TEST(LapackCpu, FunctionResultsAreOpenBlasOwn) {
    for (char cmach : std::string("ESBPNRMULO")) {
        EXPECT_TRUE(sameBits(call<float>("slamch", &cmach), openBlas<float>("slamch_", &cmach, 1))) << cmach;
        EXPECT_TRUE(sameBits(call<double>("dlamch", &cmach), openBlas<double>("dlamch_", &cmach, 1))) << cmach;
    }
    int rows = 3, columns = 4, lda = 4;
    float a[] = {1.5f, -2, 0.25f, 99, 3, 4.5f, -6, 99, -0.5f, 8, 1, 99, 2, -3, 7.75f, 99}, work[4];
    for (char norm : std::string("M1OIFE"))
        EXPECT_TRUE(sameBits(call<float>("slange", &norm, &rows, &columns, a, &lda, work),
                             openBlas<float>("slange_", &norm, &rows, &columns, a, &lda, work, 1))) << norm;
    expectComplexResults<float>("c");
    expectComplexResults<double>("z");

    // The BLAST constants and their characters.
    const std::pair<int, char> transposes[] = {{111, 'N'}, {112, 'T'}, {113, 'C'}, {0, 'X'}};
    for (auto [constant, character] : transposes)
        EXPECT_EQ(call<char>("chla_transtype", &constant), character) << constant;
    const std::tuple<const char*, char, int32_t> constants[] = {
        {"ilatrans", 'C', 113}, {"ilauplo", 'L', 122}, {"iladiag", 'U', 132}, {"ilaprec", 'I', 213}};
    for (auto [name, argument, constant] : constants) EXPECT_EQ(call<int32_t>(name, &argument), constant) << name;
}

// Routines whose words are not OpenBLAS's arguments: syswapr lacks lda (n), and
// lartgs's sn has no word.
TEST(LapackCpu, RoutinesWithOtherArgumentListsReachOpenBlasRight) {
    int n = 5, i1 = 2, i2 = 4;
    for (char uplo : {'U', 'L'}) {
        std::vector<float> a(n * n);
        for (int i = 0; i < n * n; ++i) a[i] = float(i);
        std::vector<float> reference = a;
        call("ssyswapr", &uplo, &n, a.data(), &i1, &i2);
        openBlas("ssyswapr_", &uplo, &n, reference.data(), &n, &i1, &i2, 1);
        EXPECT_EQ(a, reference) << uplo;
        EXPECT_EQ(a[(i1 - 1) * (n + 1)], float((i2 - 1) * (n + 1))) << uplo << ": the diagonal was not swapped";
    }
    float x = 3, y = 1.5f, sigma = 0.75f, cs = -9, referenceCs = -8, referenceSn = -8;
    call("slartgs", &x, &y, &sigma, &cs);
    openBlas("slartgs_", &x, &y, &sigma, &referenceCs, &referenceSn);
    EXPECT_TRUE(sameBits(cs, referenceCs));
}
