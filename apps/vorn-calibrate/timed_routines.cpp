// The timed calls. Each problem is built from a fixed seed, so that the CPU and
// the GPU side get the same input; building it is not timed. The routines are
// called under their exported lower-case names, every argument by reference.
#include "timed_routines.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <complex>
#include <random>
#include <type_traits>

using Scomplex = std::complex<float>;
using Dcomplex = std::complex<double>;

#define GEMM_ARGS const char*, const char*, const int*, const int*, const int*, const void*, const void*, const int*, \
                  const void*, const int*, const void*, void*, const int*
#define GETRF_ARGS const int*, const int*, void*, const int*, int*, int*
#define POTRF_ARGS const char*, const int*, void*, const int*, int*
#define GEQRF_ARGS const int*, const int*, void*, const int*, void*, void*, const int*, int*
#define SYEV_ARGS const char*, const char*, const int*, void*, const int*, void*, void*, const int*, int*
#define HEEV_ARGS const char*, const char*, const int*, void*, const int*, void*, void*, const int*, void*, int*
#define GESVD_ARGS const char*, const char*, const int*, const int*, void*, const int*, void*, void*, const int*, \
                   void*, const int*, void*, const int*, int*
#define GESVD_COMPLEX_ARGS const char*, const char*, const int*, const int*, void*, const int*, void*, void*, \
                           const int*, void*, const int*, void*, const int*, void*, int*
extern "C" {
void sgemm(GEMM_ARGS);
void dgemm(GEMM_ARGS);
void cgemm(GEMM_ARGS);
void zgemm(GEMM_ARGS);
void sgetrf(GETRF_ARGS);
void dgetrf(GETRF_ARGS);
void cgetrf(GETRF_ARGS);
void zgetrf(GETRF_ARGS);
void spotrf(POTRF_ARGS);
void dpotrf(POTRF_ARGS);
void cpotrf(POTRF_ARGS);
void zpotrf(POTRF_ARGS);
void sgeqrf(GEQRF_ARGS);
void dgeqrf(GEQRF_ARGS);
void cgeqrf(GEQRF_ARGS);
void zgeqrf(GEQRF_ARGS);
void ssyev(SYEV_ARGS);
void dsyev(SYEV_ARGS);
void cheev(HEEV_ARGS);
void zheev(HEEV_ARGS);
void sgesvd(GESVD_ARGS);
void dgesvd(GESVD_ARGS);
void cgesvd(GESVD_COMPLEX_ARGS);
void zgesvd(GESVD_COMPLEX_ARGS);
}

namespace {

template <class T>
constexpr bool isComplex = false;
template <class R>
constexpr bool isComplex<std::complex<R>> = true;

template <class T>
using RealOf = decltype(std::abs(T{}));

// An n-by-n matrix of entries uniform in [-1, 1] (both parts for complex ones);
// symmetric (Hermitian) with diagonal n + 1, so positive definite by diagonal
// dominance, when asked.
template <class T>
std::vector<T> matrix(int n, bool positiveDefinite = false, unsigned seed = 1) {
    std::mt19937 generator(seed + static_cast<unsigned>(n));
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    auto entry = [&]() -> T {
        if constexpr (isComplex<T>) {
            const double re = uniform(generator);
            return T(RealOf<T>(re), RealOf<T>(uniform(generator)));
        } else {
            return T(uniform(generator));
        }
    };
    std::vector<T> a(static_cast<std::size_t>(n) * n);
    for (auto& value : a) value = entry();
    if (positiveDefinite) {
        for (int j = 0; j < n; ++j) {
            for (int i = 0; i < j; ++i) {
                if constexpr (isComplex<T>) {
                    a[i + std::size_t(j) * n] = std::conj(a[j + std::size_t(i) * n]);
                } else {
                    a[i + std::size_t(j) * n] = a[j + std::size_t(i) * n];
                }
            }
            a[j + std::size_t(j) * n] = T(RealOf<T>(n + 1));
        }
    }
    return a;
}

template <class Values>
void appendValues(std::vector<double>& out, const Values& values) {
    for (const auto& value : values) {
        if constexpr (isComplex<std::decay_t<decltype(value)>>) {
            out.push_back(value.real());
            out.push_back(value.imag());
        } else {
            out.push_back(double(value));
        }
    }
}

template <class Call>
Trial timed(Call call) {
    const auto start = std::chrono::steady_clock::now();
    const int info = call();
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    return {took.count(), info, {}};
}

template <class T, auto Gemm>
Trial runGemm(int n) {
    const auto a = matrix<T>(n, false, 1), b = matrix<T>(n, false, 2);
    std::vector<T> c(a.size());
    const T one(1), zero(0);
    Trial trial = timed([&] {
        Gemm("N", "N", &n, &n, &n, &one, a.data(), &n, b.data(), &n, &zero, c.data(), &n);
        return 0;
    });
    appendValues(trial.comparable, c);
    return trial;
}

template <class T, auto Getrf>
Trial runGetrf(int n) {
    auto a = matrix<T>(n);
    std::vector<int> pivots(std::max(n, 1));
    Trial trial = timed([&] {
        int info = 0;
        Getrf(&n, &n, a.data(), &n, pivots.data(), &info);
        return info;
    });
    appendValues(trial.comparable, a);
    appendValues(trial.comparable, pivots);
    return trial;
}

template <class T, auto Potrf>
Trial runPotrf(int n) {
    auto a = matrix<T>(n, true);
    Trial trial = timed([&] {
        int info = 0;
        Potrf("L", &n, a.data(), &n, &info);
        return info;
    });
    appendValues(trial.comparable, a);
    return trial;
}

// R's magnitudes: a side may choose the opposite sign for a row of R.
template <class T, auto Geqrf>
Trial runGeqrf(int n) {
    auto a = matrix<T>(n);
    std::vector<T> tau(std::max(n, 1)), work(64 * std::max(n, 1));
    const int lwork = static_cast<int>(work.size());
    Trial trial = timed([&] {
        int info = 0;
        Geqrf(&n, &n, a.data(), &n, tau.data(), work.data(), &lwork, &info);
        return info;
    });
    for (int j = 0; j < n; ++j)
        for (int i = 0; i <= j; ++i) trial.comparable.push_back(std::abs(a[i + std::size_t(j) * n]));
    return trial;
}

// With eigenvectors (jobz V), compared by the eigenvalues alone.
template <class T, auto Eigen>
Trial runEigen(int n) {
    auto a = matrix<T>(n, true);
    std::vector<RealOf<T>> w(std::max(n, 1)), rwork(std::max(1, 3 * n - 2));
    std::vector<T> work(66 * std::max(n, 1));
    const int lwork = static_cast<int>(work.size());
    Trial trial = timed([&] {
        int info = 0;
        if constexpr (isComplex<T>) {
            Eigen("V", "L", &n, a.data(), &n, w.data(), work.data(), &lwork, rwork.data(), &info);
        } else {
            Eigen("V", "L", &n, a.data(), &n, w.data(), work.data(), &lwork, &info);
        }
        return info;
    });
    appendValues(trial.comparable, w);
    return trial;
}

// All singular vectors (jobu = jobvt = A), compared by the singular values alone.
template <class T, auto Gesvd>
Trial runGesvd(int n) {
    auto a = matrix<T>(n);
    const int ld = std::max(n, 1);
    std::vector<RealOf<T>> s(ld), rwork(5 * ld);
    std::vector<T> u(std::size_t(ld) * ld), vt(u.size()), work(66 * ld);
    const int lwork = static_cast<int>(work.size());
    Trial trial = timed([&] {
        int info = 0;
        if constexpr (isComplex<T>) {
            Gesvd("A", "A", &n, &n, a.data(), &ld, s.data(), u.data(), &ld, vt.data(), &ld, work.data(), &lwork,
                  rwork.data(), &info);
        } else {
            Gesvd("A", "A", &n, &n, a.data(), &ld, s.data(), u.data(), &ld, vt.data(), &ld, work.data(), &lwork, &info);
        }
        return info;
    });
    appendValues(trial.comparable, s);
    return trial;
}

double cube(int n) { return double(n) * n * n; }
double square(int n) { return double(n) * n; }
double order(int n) { return n; }

// A GPU library may factor in another order, and rounding then differs; a
// wrong result differs in the leading digit. Single precision over thousands of
// columns may lose three or four digits, double precision seven or eight.
constexpr double single = 1e-2, twice = 1e-6;

constexpr TimedRoutine routines[] = {
    {"sgemm", "m*n*k", cube, 1, single, runGemm<float, sgemm>},
    {"dgemm", "m*n*k", cube, 1, twice, runGemm<double, dgemm>},
    {"cgemm", "m*n*k", cube, 1, single, runGemm<Scomplex, cgemm>},
    {"zgemm", "m*n*k", cube, 1, twice, runGemm<Dcomplex, zgemm>},
    {"sgetrf", "m*n", square, 1, single, runGetrf<float, sgetrf>},
    {"dgetrf", "m*n", square, 1, twice, runGetrf<double, dgetrf>},
    {"cgetrf", "m*n", square, 1, single, runGetrf<Scomplex, cgetrf>},
    {"zgetrf", "m*n", square, 1, twice, runGetrf<Dcomplex, zgetrf>},
    {"spotrf", "n", order, 1, single, runPotrf<float, spotrf>},
    {"dpotrf", "n", order, 1, twice, runPotrf<double, dpotrf>},
    {"cpotrf", "n", order, 1, single, runPotrf<Scomplex, cpotrf>},
    {"zpotrf", "n", order, 1, twice, runPotrf<Dcomplex, zpotrf>},
    {"sgeqrf", "m*n", square, 1, single, runGeqrf<float, sgeqrf>},
    {"dgeqrf", "m*n", square, 1, twice, runGeqrf<double, dgeqrf>},
    {"cgeqrf", "m*n", square, 1, single, runGeqrf<Scomplex, cgeqrf>},
    {"zgeqrf", "m*n", square, 1, twice, runGeqrf<Dcomplex, zgeqrf>},
    {"ssyev", "n", order, 2, single, runEigen<float, ssyev>},
    {"dsyev", "n", order, 2, twice, runEigen<double, dsyev>},
    {"cheev", "n", order, 2, single, runEigen<Scomplex, cheev>},
    {"zheev", "n", order, 2, twice, runEigen<Dcomplex, zheev>},
    {"sgesvd", "m*n", square, 1, single, runGesvd<float, sgesvd>},
    {"dgesvd", "m*n", square, 1, twice, runGesvd<double, dgesvd>},
    {"cgesvd", "m*n", square, 1, single, runGesvd<Scomplex, cgesvd>},
    {"zgesvd", "m*n", square, 1, twice, runGesvd<Dcomplex, zgesvd>},
};

}  // namespace

std::span<const TimedRoutine> timedRoutines() { return routines; }

const TimedRoutine* findTimedRoutine(std::string_view name) {
    for (const auto& routine : routines)
        if (routine.name == name) return &routine;
    return nullptr;
}

std::vector<const TimedRoutine*> defaultTimedRoutines() {
    std::vector<const TimedRoutine*> chosen;
    for (const char* name : {"dgemm", "zgemm", "dgetrf", "zgetrf", "dpotrf", "zpotrf", "dgeqrf", "zgeqrf", "dsyev",
                             "zheev", "dgesvd", "zgesvd"})
        chosen.push_back(findTimedRoutine(name));
    return chosen;
}
