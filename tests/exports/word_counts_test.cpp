// The word count, info, result and work query of every forwarded routine, and the
// word count and info of every routed routine, held against the
// prototypes that the system's LAPACK and BLAS headers publish: lapack.h
// (liblapacke-dev) and the Fortran BLAS prototypes of cblas_f77.h (libblas-dev).
// The headers are read at test time; the hidden string lengths at their ends are
// not words of ours.
//
// Routines that neither header declares, so that only the tables vouch for them
// (474, a number the test holds), in the notation of the tables:
//   sdcz: gbtf2 gebd2 gegs gegv gehd2 gelsx geqr2p gesc2 getc2 gtts2 labrd lacon
//     ladiv laed0 laed7 laed8 laein laev2 lags2 lagtm lahqr lahr2 lahrd laic1 lals0
//     lalsa lalsd lapll laqgb laqge laqp2 laqps laqr0 laqr1 laqr2 laqr3 laqr4 laqr5
//     laqsb laqsp laqsy lar1v larfgp larrv lartg larz larzb larzt lasyf latbs latdf
//     latps latrd latrs latrz latzm lauu2 pbtf2 pstf2 ptts2 sytf2 tgex2 tgsy2 trti2
//     tzrqf
//   sd: gsvj0 gsvj1 isnan labad lae2 laebz laed1 laed2 laed3 laed4 laed5 laed6 laed9
//     laeda laexc lag2 lagtf lagts lagv2 laisnan laln2 lamc3 lamrg laneg lansf lanv2
//     laqtr larra larrb larrc larrd larre larrf larrj larrk larrr laruv las2 lasd0
//     lasd1 lasd2 lasd3 lasd4 lasd5 lasd6 lasd7 lasd8 lasda lasdq lasdt lasq1 lasq2
//     lasq3 lasq4 lasq5 lasq6 lasv2 lasy2 lazq3 lazq4 org2l org2r orgl2 orgr2 orm2l
//     orm2r orml2 ormr2 ormr3 rscl sygs2 sytd2
//   cz: hegs2 hetd2 hetf2 lacrt laesy lahef lanhf laqhb laqhe laqhp rot spmv spr symv
//     ung2l ung2r ungl2 ungr2 unm2l unm2r unml2 unmr2 unmr3
//   alone: csrscl dzsum1 scsum1 zdrscl chla_transtype icmax1 ieeeck ilaclc ilaclr
//     iladiag iladlc iladlr ilaenv ilaprec ilaslc ilaslr ilatrans ilauplo ilazlc
//     ilazlr iparmq izmax1 lsamen xerbla_array
#include <cctype>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>

#include "exports_test.h"
#include "published_prototypes.h"
#include "routing/routed_frame.h"

// The routed roots' rows, for their frame classes.
#include "routines/routed/cholesky_triangular_rows.h"
#include "routines/routed/lu_rows.h"
#include "routines/routed/multiply_rank_update_rows.h"
#include "routines/routed/orthogonal_factorisations_rows.h"
#include "routines/routed/orthogonal_factors_rows.h"
#include "routines/routed/reductions_eigenvalues_rows.h"
#include "routines/routed/singular_values_rows.h"

namespace {

// A routed routine's facts from its root's row: class B and C have info, class C
// a work query on its lwork word.
template <class Root>
void addRouted(RoutineFacts& facts, int words) {
    facts.words = words;
    facts.info = Root::frameClass != FrameClass::A;
    if constexpr (Root::frameClass == FrameClass::C)
        facts.query(RoutineFacts::Query<Tested<Root::lwork>, typename Root::WorkLines>{});
}

// Ours, from the tables: the forwarded and the routed routines.
std::map<std::string, RoutineFacts> ourRoutines() {
    std::map<std::string, RoutineFacts> ours;
    for (const RoutineFacts& routine : forwardedTable()) ours[routine.name] = routine;
#define ROUTED(base, Root, count, gpuFunction) addRouted<Root>(ours[#base], count);
#include "routines/routed/routed_routines.inc"
#undef ROUTED
    return ours;
}

// A published prototype as facts of ours. The BLAS header declares its functions
// as subroutines named NAMEsub (`sub`) with the result's address last: a complex
// result (void*) is word 1 in our convention, the others are returned.
RoutineFacts theirFacts(const PublishedPrototype& prototype, bool sub) {
    const std::vector<std::string>& parameters = prototype.parameters;
    RoutineFacts facts;
    facts.words = static_cast<int>(parameters.size());
    for (int i = 0; i < facts.words; ++i) {
        std::string parameter = lastIdentifier(parameters[i]);
        for (char& c : parameter) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (parameter == "lwork" || parameter == "lrwork" || parameter == "liwork") facts.tested.push_back(i + 1);
        if (parameter == "work" || parameter == "rwork") facts.lines.push_back({i + 1, true});
        if (parameter == "iwork" || parameter == "bwork") facts.lines.push_back({i + 1, false});
    }
    facts.info = facts.words > 0 && lastIdentifier(parameters.back()) == "info";
    if (facts.tested.empty()) facts.lines.clear();
    // lapack.h gives the deprecated ggsvd and ggsvp an integer result next to
    // their info; they are subroutines.
    const std::map<std::string, Result> returned = {{"double", Result::real64}, {"lapack_float_return", Result::real32},
                                                    {"lapack_int", Result::int32}, {"lapack_logical", Result::int32}};
    if (!sub && !facts.info && returned.count(prototype.returned)) facts.result = returned.at(prototype.returned);
    if (sub) {
        const std::string& last = parameters.back();
        facts.result = last.find("void") != std::string::npos     ? Result::complex
                       : last.find("float") != std::string::npos  ? Result::real32
                       : last.find("double") != std::string::npos ? Result::real64
                                                                  : Result::int32;
        facts.words -= facts.result != Result::complex;
    }
    return facts;
}

// Roots whose words are one fewer than the header's, by design: syswapr and
// heswapr have the argument list of LAPACK 3.3 (uplo, n, a, i1, i2), to which later
// releases added lda; lartgs has four words, its fifth argument sn being a scratch
// variable of the CPU library (backends/lapackcpu/cpu_routines.h).
const std::set<std::string> fewerWords = {"syswapr", "heswapr", "lartgs"};

// lapack.h's lsame, declared with two lengths as words, is not among ours: lsame
// is neither forwarded nor routed and has tests of its own.
TEST(WordCounts, TablesAgreeWithThePublishedPrototypes) {
    const auto ours = ourRoutines();
    std::set<std::string> covered;
    for (const auto& [published, prototype] : publishedPrototypes()) {
        const std::string stem = published.substr(0, published.size() - 3);
        const bool sub = published.ends_with("sub") && ours.count(stem);
        const std::string name = sub ? stem : published;
        if (!ours.count(name)) continue;
        const RoutineFacts& mine = ours.at(name);
        const RoutineFacts theirs = theirFacts(prototype, sub);
        SCOPED_TRACE(name);
        // xerbla's hidden length is ours too: it travels by value as word 3.
        EXPECT_EQ(mine.words + (fewerWords.count(name.substr(1)) ? 1 : 0), theirs.words + (name == "xerbla"));
        EXPECT_EQ(mine.info, theirs.info);
        EXPECT_EQ(mine.result, theirs.result);
        EXPECT_EQ(mine.tested, theirs.tested);
        EXPECT_EQ(mine.lines, theirs.lines);
        covered.insert(name);
    }
    EXPECT_EQ(ours.size() - covered.size(), 474u) << "routines that neither header declares";
}

// The routed routines by frame class as the design counts them: 34 without info
// (A), 56 with info alone (B), 108 with a work query (C), whose queries write one
// line in 92 routines, two in 12 and three in 4.
TEST(WordCounts, RoutedClassesAndWorkLinesAsTheDesignCounts) {
    std::map<std::string, int> counts;
#define ROUTED(base, Root, count, gpuFunction)                                                                  \
    {                                                                                                           \
        RoutineFacts facts;                                                                                     \
        addRouted<Root>(facts, count);                                                                          \
        ++counts[!facts.info ? "A" : facts.tested.empty() ? "B" : "C" + std::to_string(facts.lines.size())];   \
    }
#include "routines/routed/routed_routines.inc"
#undef ROUTED
    EXPECT_EQ(counts, (std::map<std::string, int>{{"A", 34}, {"B", 56}, {"C1", 92}, {"C2", 12}, {"C3", 4}}));
}

}  // namespace
