// The CBLAS library against OpenBLAS's own CBLAS (opened with RTLD_LOCAL, since
// the names are the same): every function of the reference header, in both
// orders and with each letter where it matters, on small non-square arrays with
// strides, one of them negative; the names it exports against the header; and
// its argument reports, in the reference CBLAS's positions.
#include <cblas-netlib.h>
#include <complex>
#include <dlfcn.h>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "published_prototypes.h"

namespace {

void* openblas() {
    static void* handle = dlopen("libopenblas.so.0", RTLD_NOW | RTLD_LOCAL);
    return handle;
}
// OpenBLAS's function, or for the two it lacks (scabs1, dcabs1) the reference BLAS's (libblas3).
void* theirs(const char* name) {
    static void* reference = dlopen("/usr/lib/x86_64-linux-gnu/blas/libblas.so.3", RTLD_NOW | RTLD_LOCAL);
    void* function = dlsym(openblas(), name);
    return function != nullptr || reference == nullptr ? function : dlsym(reference, name);
}

std::set<std::string> compared;

// An application's own cblas_xerbla, which the library's reports must reach.
int reportedPosition = -1;
std::string reportedRoutine;

template <class F>
struct Pair {
    F ours, theirs;
    const char* name;
};
#define BOTH(f) \
    Pair<decltype(&f)> { &f, reinterpret_cast<decltype(&f)>(theirs(#f)), #f }

template <class T>
using Real = decltype(std::abs(T{}));
template <class T>
constexpr bool complex = !std::is_same_v<T, Real<T>>;

template <class T>
T value(double re, double im) {
    if constexpr (complex<T>)
        return T(Real<T>(re), Real<T>(im));
    else
        return T(re);
}
template <class T>
const T alpha = value<T>(0.7, 0.2);
template <class T>
const T beta = value<T>(-0.4, 0.6);
// A scalar as the header passes it: real ones by value, complex ones by address.
template <class T>
auto scalar(const T& v) {
    if constexpr (complex<T>)
        return static_cast<const void*>(&v);
    else
        return v;
}

// The operands of one call, filled alike for both libraries: real parts in
// [0.5, 1.5] and imaginary parts in [-0.5, 0.5], so that the triangular solves
// stay well conditioned.
template <class T>
struct Operands {
    std::vector<T> a, b, c, x, y, s;
    explicit Operands(unsigned seed) {
        for (auto* array : {&a, &b, &c, &x, &y, &s}) {
            for (int i = 0; i < 64; ++i) {
                seed = seed * 1103515245u + 12345u;
                const double u = double(seed >> 8 & 0xffff) / 65536.0;
                seed = seed * 1103515245u + 12345u;
                array->push_back(value<T>(0.5 + u, double(seed >> 8 & 0xffff) / 65536.0 - 0.5));
            }
        }
    }
};

template <class T, class U>
bool near(U ours, U theirs) {
    const double tolerance = std::is_same_v<Real<T>, float> ? 2e-5 : 1e-13;
    return std::abs(ours - theirs) <= tolerance * (1 + std::abs(theirs));
}

// Calls `call` with our function and with OpenBLAS's on operands alike, and
// compares every operand and the result.
template <class T, class F, class Call>
void compare(const Pair<F>& f, const std::string& row, Call call) {
    ASSERT_NE(f.theirs, nullptr) << f.name;
    compared.insert(f.name);
    Operands<T> ours(7), theirs(7);
    if constexpr (std::is_void_v<decltype(call(f.ours, ours))>) {
        call(f.ours, ours), call(f.theirs, theirs);
    } else {
        const double result = call(f.ours, ours), expected = call(f.theirs, theirs);
        EXPECT_TRUE(near<T>(result, expected)) << f.name << " " << row << ": " << result << " against " << expected;
    }
    const std::pair<const char*, std::vector<T> Operands<T>::*> operands[] = {
        {"A", &Operands<T>::a}, {"B", &Operands<T>::b}, {"C", &Operands<T>::c},
        {"X", &Operands<T>::x}, {"Y", &Operands<T>::y}, {"scalars", &Operands<T>::s}};
    for (const auto& [what, member] : operands)
        for (std::size_t i = 0; i < 64; ++i)
            if (!near<T>((ours.*member)[i], (theirs.*member)[i])) {
                ADD_FAILURE() << f.name << " " << row << ": " << what << "[" << i << "] " << (ours.*member)[i]
                              << " against " << (theirs.*member)[i];
                break;
            }
}

// Calls fn with the first of the argument lists it takes.
template <class F, class... A>
constexpr bool takes(std::tuple<A...>*) {
    return std::is_invocable_v<F, A...>;
}
template <class F, class Args, class... More>
decltype(auto) first(F fn, Args args, More... more) {
    if constexpr (takes<F>(static_cast<Args*>(nullptr)))
        return std::apply(fn, args);
    else
        return first(fn, more...);
}

const CBLAS_LAYOUT layouts[] = {CblasRowMajor, CblasColMajor};
const CBLAS_TRANSPOSE transposes[] = {CblasNoTrans, CblasTrans, CblasConjTrans};
const CBLAS_UPLO uplos[] = {CblasUpper, CblasLower};
const CBLAS_DIAG diags[] = {CblasNonUnit, CblasUnit};
const CBLAS_SIDE sides[] = {CblasLeft, CblasRight};
constexpr int m = 3, n = 4, k = 5, kl = 1, ku = 2, band = 2, ld = 7;

std::string text(std::initializer_list<int> values) {
    std::ostringstream out;
    for (int v : values) out << v << " ";
    return out.str();
}

void levelOne() {
    const std::complex<float> c(0.7f, -0.3f);
    const std::complex<double> z(0.7, -0.3);
    for (auto [incx, incy] : {std::pair{1, 1}, std::pair{2, -3}}) {
        // f(n, x, incx, y, incy, scalars), f(n, scalars, x, incx, y, incy), f(n, scalars, x, incx), or
        // f(n, x, incx, y, incy, the array of scalars): the complex dots' result, rotm's parameters.
        auto vectors = [&]<class T>(auto f, T, auto... scalars) {
            compare<T>(f, text({incx, incy}), [&, given = std::tuple(scalars...)](auto fn, Operands<T>& d) {
                const auto count = std::tuple(k), x = std::tuple(d.x.data(), incx);
                const auto xy = std::tuple_cat(x, std::tuple(d.y.data(), incy));
                return first(fn, std::tuple_cat(count, xy, given), std::tuple_cat(count, given, xy),
                             std::tuple_cat(count, given, x), std::tuple_cat(count, xy, std::tuple(d.s.data())));
            });
        };
        vectors(BOTH(cblas_sdot), 0.f), vectors(BOTH(cblas_ddot), 0.0), vectors(BOTH(cblas_dsdot), 0.f);
        vectors(BOTH(cblas_sdsdot), 0.f, 0.25f), vectors(BOTH(cblas_cdotu_sub), c), vectors(BOTH(cblas_cdotc_sub), c);
        vectors(BOTH(cblas_zdotu_sub), z), vectors(BOTH(cblas_zdotc_sub), z);
        vectors(BOTH(cblas_snrm2), 0.f), vectors(BOTH(cblas_sasum), 0.f), vectors(BOTH(cblas_dnrm2), 0.0);
        vectors(BOTH(cblas_dasum), 0.0), vectors(BOTH(cblas_scnrm2), c), vectors(BOTH(cblas_scasum), c);
        vectors(BOTH(cblas_dznrm2), z), vectors(BOTH(cblas_dzasum), z);
        vectors(BOTH(cblas_isamax), 0.f), vectors(BOTH(cblas_idamax), 0.0), vectors(BOTH(cblas_icamax), c);
        vectors(BOTH(cblas_izamax), z);
        vectors(BOTH(cblas_sswap), 0.f), vectors(BOTH(cblas_dswap), 0.0), vectors(BOTH(cblas_cswap), c);
        vectors(BOTH(cblas_zswap), z), vectors(BOTH(cblas_scopy), 0.f), vectors(BOTH(cblas_dcopy), 0.0);
        vectors(BOTH(cblas_ccopy), c), vectors(BOTH(cblas_zcopy), z);
        vectors(BOTH(cblas_saxpy), 0.f, 0.7f), vectors(BOTH(cblas_daxpy), 0.0, 0.7);
        vectors(BOTH(cblas_caxpy), c, &c), vectors(BOTH(cblas_zaxpy), z, &z);
        vectors(BOTH(cblas_srotm), 0.f), vectors(BOTH(cblas_drotm), 0.0);
        vectors(BOTH(cblas_sscal), 0.f, 0.7f), vectors(BOTH(cblas_dscal), 0.0, 0.7), vectors(BOTH(cblas_cscal), c, &c);
        vectors(BOTH(cblas_zscal), z, &z), vectors(BOTH(cblas_csscal), c, 0.7f), vectors(BOTH(cblas_zdscal), z, 0.7);
        vectors(BOTH(cblas_srot), 0.f, 0.6f, 0.8f), vectors(BOTH(cblas_drot), 0.0, 0.6, 0.8);
        vectors(BOTH(cblas_csrot), c, 0.6f, 0.8f), vectors(BOTH(cblas_zdrot), z, 0.6, 0.8);
    }
    auto rotg = [&]<class T>(auto f, T) {
        compare<T>(f, "", [&](auto fn, Operands<T>& d) {
            Real<T> cosine = 0;
            fn(&d.s[0], &d.s[1], &cosine, &d.s[3]);
            return cosine;
        });
    };
    rotg(BOTH(cblas_srotg), 0.f), rotg(BOTH(cblas_drotg), 0.0), rotg(BOTH(cblas_crotg), c), rotg(BOTH(cblas_zrotg), z);
    auto rotmg = [&]<class T>(auto f, T) {
        compare<T>(f, "", [&](auto fn, Operands<T>& d) { fn(&d.s[0], &d.s[1], &d.s[2], T(0.9), d.y.data()); });
    };
    rotmg(BOTH(cblas_srotmg), 0.f), rotmg(BOTH(cblas_drotmg), 0.0);
    compare<std::complex<float>>(BOTH(cblas_scabs1), "", [](auto fn, auto& d) { return fn(&d.s[0]); });
    compare<std::complex<double>>(BOTH(cblas_dcabs1), "", [](auto fn, auto& d) { return fn(&d.s[0]); });
}

// A kind's call in each precision, with an element of the precision's type.
#define PRECISIONS(kind, s, d, c, z) \
    kind(BOTH(s), 0.f), kind(BOTH(d), 0.0), kind(BOTH(c), std::complex<float>()), kind(BOTH(z), std::complex<double>())
#define REAL(kind, s, d) kind(BOTH(s), 0.f), kind(BOTH(d), 0.0)
#define COMPLEX(kind, c, z) kind(BOTH(c), std::complex<float>()), kind(BOTH(z), std::complex<double>())

void levelTwo() {
    for (auto [incx, incy] : {std::pair{2, -3}, std::pair{-2, 3}}) {
        for (CBLAS_LAYOUT o : layouts) {
            for (CBLAS_TRANSPOSE t : transposes) {
                auto gemv = [&]<class T>(auto f, T) {  // gemv, gbmv
                    compare<T>(f, text({incx, o, t}), [&](auto fn, Operands<T>& d) {
                        const auto a = d.a.data(), x = d.x.data(), y = d.y.data();
                        first(
                            fn,
                            std::tuple(o, t, m, n, kl, ku, scalar(alpha<T>), a, ld, x, incx, scalar(beta<T>), y, incy),
                            std::tuple(o, t, m, n, scalar(alpha<T>), a, ld, x, incx, scalar(beta<T>), y, incy));
                    });
                };
                PRECISIONS(gemv, cblas_sgemv, cblas_dgemv, cblas_cgemv, cblas_zgemv);
                PRECISIONS(gemv, cblas_sgbmv, cblas_dgbmv, cblas_cgbmv, cblas_zgbmv);
                for (CBLAS_UPLO u : uplos)
                    for (CBLAS_DIAG g : diags) {
                        auto triangular = [&]<class T>(auto f, T) {  // the full, band and packed tr?v
                            compare<T>(f, text({incx, o, t, u, g}), [&](auto fn, Operands<T>& d) {
                                const auto a = d.a.data(), x = d.x.data();
                                first(fn, std::tuple(o, u, t, g, n, band, a, ld, x, incx),
                                      std::tuple(o, u, t, g, n, a, ld, x, incx), std::tuple(o, u, t, g, n, a, x, incx));
                            });
                        };
                        PRECISIONS(triangular, cblas_strmv, cblas_dtrmv, cblas_ctrmv, cblas_ztrmv);
                        PRECISIONS(triangular, cblas_strsv, cblas_dtrsv, cblas_ctrsv, cblas_ztrsv);
                        PRECISIONS(triangular, cblas_stbmv, cblas_dtbmv, cblas_ctbmv, cblas_ztbmv);
                        PRECISIONS(triangular, cblas_stbsv, cblas_dtbsv, cblas_ctbsv, cblas_ztbsv);
                        PRECISIONS(triangular, cblas_stpmv, cblas_dtpmv, cblas_ctpmv, cblas_ztpmv);
                        PRECISIONS(triangular, cblas_stpsv, cblas_dtpsv, cblas_ctpsv, cblas_ztpsv);
                    }
            }
            auto ger = [&]<class T>(auto f, T) {
                compare<T>(f, text({incx, o}), [&](auto fn, Operands<T>& d) {
                    fn(o, m, n, scalar(alpha<T>), d.x.data(), incx, d.y.data(), incy, d.a.data(), ld);
                });
            };
            REAL(ger, cblas_sger, cblas_dger), COMPLEX(ger, cblas_cgeru, cblas_zgeru),
                COMPLEX(ger, cblas_cgerc, cblas_zgerc);
            for (CBLAS_UPLO u : uplos) {
                // The symmetric and Hermitian products and updates, full, band and packed; syr, spr, her, hpr take a
                // real alpha.
                auto symmetric = [&]<class T>(auto f, T) {
                    compare<T>(f, text({incx, o, u}), [&](auto fn, Operands<T>& d) {
                        const auto a = d.a.data(), x = d.x.data(), y = d.y.data();
                        const auto al = scalar(alpha<T>), be = scalar(beta<T>);
                        first(fn, std::tuple(o, u, n, band, al, a, ld, x, incx, be, y, incy),
                              std::tuple(o, u, n, al, a, ld, x, incx, be, y, incy),
                              std::tuple(o, u, n, al, a, x, incx, be, y, incy),
                              std::tuple(o, u, n, Real<T>(0.7), x, incx, a, ld),
                              std::tuple(o, u, n, Real<T>(0.7), x, incx, a),
                              std::tuple(o, u, n, al, x, incx, y, incy, a, ld),
                              std::tuple(o, u, n, al, x, incx, y, incy, a));
                    });
                };
                REAL(symmetric, cblas_ssymv, cblas_dsymv), REAL(symmetric, cblas_ssbmv, cblas_dsbmv);
                REAL(symmetric, cblas_sspmv, cblas_dspmv), COMPLEX(symmetric, cblas_chemv, cblas_zhemv);
                COMPLEX(symmetric, cblas_chbmv, cblas_zhbmv), COMPLEX(symmetric, cblas_chpmv, cblas_zhpmv);
                REAL(symmetric, cblas_ssyr, cblas_dsyr), REAL(symmetric, cblas_sspr, cblas_dspr);
                COMPLEX(symmetric, cblas_cher, cblas_zher), COMPLEX(symmetric, cblas_chpr, cblas_zhpr);
                REAL(symmetric, cblas_ssyr2, cblas_dsyr2), REAL(symmetric, cblas_sspr2, cblas_dspr2);
                COMPLEX(symmetric, cblas_cher2, cblas_zher2), COMPLEX(symmetric, cblas_chpr2, cblas_zhpr2);
            }
        }
    }
}

void levelThree() {
    for (CBLAS_LAYOUT o : layouts) {
        for (CBLAS_TRANSPOSE ta : transposes)
            for (CBLAS_TRANSPOSE tb : transposes) {
                auto gemm = [&]<class T>(auto f, T) {
                    compare<T>(f, text({o, ta, tb}), [&](auto fn, Operands<T>& d) {
                        fn(o, ta, tb, m, n, k, scalar(alpha<T>), d.a.data(), ld, d.b.data(), ld, scalar(beta<T>),
                           d.c.data(), ld);
                    });
                };
                PRECISIONS(gemm, cblas_sgemm, cblas_dgemm, cblas_cgemm, cblas_zgemm);
            }
        for (CBLAS_UPLO u : uplos) {
            for (CBLAS_SIDE s : sides) {
                auto symm = [&]<class T>(auto f, T) {
                    compare<T>(f, text({o, s, u}), [&](auto fn, Operands<T>& d) {
                        fn(o, s, u, m, n, scalar(alpha<T>), d.a.data(), ld, d.b.data(), ld, scalar(beta<T>), d.c.data(),
                           ld);
                    });
                };
                PRECISIONS(symm, cblas_ssymm, cblas_dsymm, cblas_csymm, cblas_zsymm);
                COMPLEX(symm, cblas_chemm, cblas_zhemm);
                for (CBLAS_TRANSPOSE t : transposes)
                    for (CBLAS_DIAG g : diags) {
                        auto trmm = [&]<class T>(auto f, T) {
                            compare<T>(f, text({o, s, u, t, g}), [&](auto fn, Operands<T>& d) {
                                fn(o, s, u, t, g, m, n, scalar(alpha<T>), d.a.data(), ld, d.b.data(), ld);
                            });
                        };
                        PRECISIONS(trmm, cblas_strmm, cblas_dtrmm, cblas_ctrmm, cblas_ztrmm);
                        PRECISIONS(trmm, cblas_strsm, cblas_dtrsm, cblas_ctrsm, cblas_ztrsm);
                    }
            }
            for (CBLAS_TRANSPOSE t : transposes) {
                // syrk, syr2k, herk, her2k (a real beta; herk also a real alpha), with the transpositions each
                // takes: complex syrk and syr2k N and T, herk and her2k N and C.
                auto rankK = [&]<class T>(auto f, T, bool hermitian) {
                    if (complex<T> && t == (hermitian ? CblasTrans : CblasConjTrans)) return;
                    compare<T>(f, text({o, u, t}), [&](auto fn, Operands<T>& d) {
                        const auto a = d.a.data(), b = d.b.data(), c = d.c.data();
                        const auto al = scalar(alpha<T>), be = scalar(beta<T>);
                        const Real<T> realAlpha = 0.7, realBeta = -0.4;
                        first(fn, std::tuple(o, u, t, n, k, realAlpha, a, ld, realBeta, c, ld),
                              std::tuple(o, u, t, n, k, al, a, ld, be, c, ld),
                              std::tuple(o, u, t, n, k, al, a, ld, b, ld, realBeta, c, ld),
                              std::tuple(o, u, t, n, k, al, a, ld, b, ld, be, c, ld));
                    });
                };
                auto symmetric = [&](auto f, auto t) { rankK(f, t, false); };
                auto hermitian = [&](auto f, auto t) { rankK(f, t, true); };
                PRECISIONS(symmetric, cblas_ssyrk, cblas_dsyrk, cblas_csyrk, cblas_zsyrk);
                PRECISIONS(symmetric, cblas_ssyr2k, cblas_dsyr2k, cblas_csyr2k, cblas_zsyr2k);
                COMPLEX(hermitian, cblas_cherk, cblas_zherk), COMPLEX(hermitian, cblas_cher2k, cblas_zher2k);
            }
        }
    }
}

// The names the reference header declares.
std::set<std::string> headerFunctions() {
    std::ifstream header(VORN_TEST_CBLAS_HEADER);
    std::stringstream text;
    text << header.rdbuf();
    const std::string content = text.str();
    std::set<std::string> names;
    const std::regex declared(R"(\b(cblas_\w+)\s*\()");
    for (auto it = std::sregex_iterator(content.begin(), content.end(), declared); it != std::sregex_iterator(); ++it)
        names.insert((*it)[1]);
    return names;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) void cblas_xerbla(CBLAS_INT p, const char* rout, const char*, ...) {
    reportedPosition = p;
    reportedRoutine = rout;
}

TEST(Cblas, EveryFunctionOfTheHeaderMatchesOpenBlas) {
    ASSERT_NE(openblas(), nullptr) << dlerror();
    levelOne(), levelTwo(), levelThree();
    std::set<std::string> expected = headerFunctions();
    expected.erase("cblas_xerbla");
    EXPECT_EQ(compared, expected);
}

TEST(Cblas, ExportsExactlyTheHeadersFunctions) {
    const auto exported = definedDynamicSymbols(VORN_TEST_NM, VORN_TEST_CBLAS_LIBRARY);
    const auto expected = headerFunctions();
    EXPECT_EQ(std::set<std::string>(exported.begin(), exported.end()), expected);
    EXPECT_EQ(expected.size(), 149u);
}

// The positions are those the reference CBLAS reports: the Fortran routine's
// position plus one for the layout, traded back in row-major order where the call
// swapped operands; an enumeration value out of range at its own position. The
// call then does nothing.
TEST(Cblas, ArgumentErrorsReachCblasXerblaAtTheReferencePositions) {
    std::vector<double> a(64, 1.0), b(64, 1.0), c(64, 2.0), x(64, 1.0), y(64, 1.0);
    std::vector<std::complex<double>> z(64, 1.0), w(64, 1.0);
    const std::complex<double> alpha = 1.0;
    const auto row = CblasRowMajor;
    const auto no = CblasNoTrans;
    const auto upper = CblasUpper;
    const struct {
        const char* routine;
        int position;
        std::function<void()> call;
    } rows[] = {
        {"cblas_dgemm", 9, [&] { cblas_dgemm(row, no, no, 3, 4, 5, 1, a.data(), 4, b.data(), 7, 0, c.data(), 7); }},
        {"cblas_dgemm", 11, [&] { cblas_dgemm(row, no, no, 3, 4, 5, 1, a.data(), 7, b.data(), 3, 0, c.data(), 7); }},
        {"cblas_dgemm", 5,
         [&] { cblas_dgemm(row, CblasTrans, no, -3, -4, 5, 1, a.data(), 7, b.data(), 7, 0, c.data(), 7); }},
        {"cblas_dgemm", 3,
         [&] { cblas_dgemm(row, no, CBLAS_TRANSPOSE(7), 3, 4, 5, 1, a.data(), 7, b.data(), 7, 0, c.data(), 7); }},
        {"cblas_dgemm", 1,
         [&] { cblas_dgemm(CBLAS_LAYOUT(5), no, no, 3, 4, 5, 1, a.data(), 7, b.data(), 7, 0, c.data(), 7); }},
        {"cblas_dtrmm", 12,
         [&] { cblas_dtrmm(row, CblasLeft, upper, no, CblasNonUnit, 3, 4, 1, a.data(), 3, c.data(), 3); }},
        {"cblas_dgemv", 7, [&] { cblas_dgemv(row, no, 3, 4, 1, a.data(), 3, x.data(), 1, 0, c.data(), 1); }},
        {"cblas_dgbmv", 5, [&] { cblas_dgbmv(row, no, 3, 4, -1, 1, 1, a.data(), 7, x.data(), 1, 0, c.data(), 1); }},
        {"cblas_zgeru", 3, [&] { cblas_zgeru(row, 3, -4, &alpha, z.data(), 1, w.data(), 1, c.data(), 7); }},
        {"cblas_zher2", 6, [&] { cblas_zher2(row, upper, 4, &alpha, z.data(), 0, w.data(), 1, c.data(), 7); }},
        {"cblas_dsymv", 2, [&] { cblas_dsymv(row, CBLAS_UPLO(999), 4, 1, a.data(), 7, x.data(), 1, 0, c.data(), 1); }},
    };
    for (const auto& r : rows) {
        reportedPosition = -1, reportedRoutine.clear();
        r.call();
        EXPECT_EQ(reportedRoutine, r.routine);
        EXPECT_EQ(reportedPosition, r.position) << r.routine;
    }
    EXPECT_EQ(c, std::vector<double>(64, 2.0));
}
