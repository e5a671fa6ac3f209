// libvorn_lapack_gfortran.so: preloaded in front of the link library by
// applications compiled with gfortran against a LAPACK newer than 3.3, it serves
// the calls whose form differs there from the link library's:
//
// - The six complex functions. The link library takes the result's address as
//   word 1 and returns nothing; gfortran's callers pass no such word and take
//   the result from registers. Each function here calls the link library's
//   implementation with a local result and returns it the gfortran way.
// - syswapr and heswapr, which gained an lda argument after LAPACK 3.3. The link
//   library keeps the earlier five-argument form (a square array with lda = n).
//   A call with lda = n goes through it; any other goes to the application's own
//   LAPACK, the next definition of the name in the process.
//
// Only the name_ spelling is served: it is the one gfortran emits.
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <link.h>

namespace {

using Word = void*;

// The link library's implementation of a routine: the next definition of its
// undecorated name after this library, which is preloaded in front of it.
void* linkImplementation(const char* name) {
    void* function = dlsym(RTLD_NEXT, name);
    if (function == nullptr) {
        std::fprintf(stderr, "libvorn_lapack_gfortran: no %s in the link library; preload it after this one\n",
                     name);
        std::abort();
    }
    return function;
}

// The application's own definition of a name_: the first loaded object, other
// than this library and the one that serves `served`, that defines it.
void* applicationDefinition(const char* name, void* served) {
    struct Search {
        const char* name;
        void* self;
        void* served;
        void* found;
    } search{name, reinterpret_cast<void*>(&applicationDefinition), served, nullptr};
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* data) -> int {
            auto* s = static_cast<Search*>(data);
            if (info->dlpi_name == nullptr || info->dlpi_name[0] == '\0') return 0;
            void* object = dlopen(info->dlpi_name, RTLD_NOW | RTLD_NOLOAD);
            if (object == nullptr) return 0;
            void* candidate = dlsym(object, s->name);
            Dl_info where{}, self{}, served{};
            const bool known = candidate != nullptr && dladdr(candidate, &where) && dladdr(s->self, &self) &&
                               dladdr(s->served, &served);
            dlclose(object);
            if (known && where.dli_fbase != self.dli_fbase && where.dli_fbase != served.dli_fbase) {
                s->found = candidate;
                return 1;
            }
            return 0;
        },
        &search);
    return search.found;
}

template <class Complex>
Complex dot(const char* name, Word n, Word x, Word incx, Word y, Word incy) {
    using Implementation = void (*)(Word, Word, Word, Word, Word, Word);
    Complex result{};
    reinterpret_cast<Implementation>(linkImplementation(name))(&result, n, x, incx, y, incy);
    return result;
}

template <class Complex>
Complex divide(const char* name, Word x, Word y) {
    using Implementation = void (*)(Word, Word, Word);
    Complex result{};
    reinterpret_cast<Implementation>(linkImplementation(name))(&result, x, y);
    return result;
}

// uplo, n, a, lda, i1, i2: the link library's five-word form when lda = n.
void swapRowsAndColumns(const char* name, const char* fortranName, Word uplo, Word n, Word a, Word lda, Word i1,
                        Word i2) {
    if (*static_cast<const int*>(lda) == *static_cast<const int*>(n)) {
        using Implementation = void (*)(Word, Word, Word, Word, Word);
        reinterpret_cast<Implementation>(linkImplementation(name))(uplo, n, a, i1, i2);
        return;
    }
    using Application = void (*)(Word, Word, Word, Word, Word, Word, std::size_t);
    void* application = applicationDefinition(fortranName, linkImplementation(name));
    if (application == nullptr) {
        std::fprintf(stderr, "libvorn_lapack_gfortran: %s with lda != n needs the application's LAPACK\n", name);
        std::abort();
    }
    reinterpret_cast<Application>(application)(uplo, n, a, lda, i1, i2, 1);
}

}  // namespace

#define EXPORT extern "C" __attribute__((visibility("default")))

EXPORT std::complex<float> cdotc_(Word n, Word x, Word incx, Word y, Word incy) { return dot<std::complex<float>>("cdotc", n, x, incx, y, incy); }
EXPORT std::complex<float> cdotu_(Word n, Word x, Word incx, Word y, Word incy) { return dot<std::complex<float>>("cdotu", n, x, incx, y, incy); }
EXPORT std::complex<double> zdotc_(Word n, Word x, Word incx, Word y, Word incy) { return dot<std::complex<double>>("zdotc", n, x, incx, y, incy); }
EXPORT std::complex<double> zdotu_(Word n, Word x, Word incx, Word y, Word incy) { return dot<std::complex<double>>("zdotu", n, x, incx, y, incy); }
EXPORT std::complex<float> cladiv_(Word x, Word y) { return divide<std::complex<float>>("cladiv", x, y); }
EXPORT std::complex<double> zladiv_(Word x, Word y) { return divide<std::complex<double>>("zladiv", x, y); }

EXPORT void ssyswapr_(Word u, Word n, Word a, Word lda, Word i1, Word i2) { swapRowsAndColumns("ssyswapr", "ssyswapr_", u, n, a, lda, i1, i2); }
EXPORT void dsyswapr_(Word u, Word n, Word a, Word lda, Word i1, Word i2) { swapRowsAndColumns("dsyswapr", "dsyswapr_", u, n, a, lda, i1, i2); }
EXPORT void csyswapr_(Word u, Word n, Word a, Word lda, Word i1, Word i2) { swapRowsAndColumns("csyswapr", "csyswapr_", u, n, a, lda, i1, i2); }
EXPORT void zsyswapr_(Word u, Word n, Word a, Word lda, Word i1, Word i2) { swapRowsAndColumns("zsyswapr", "zsyswapr_", u, n, a, lda, i1, i2); }
EXPORT void cheswapr_(Word u, Word n, Word a, Word lda, Word i1, Word i2) { swapRowsAndColumns("cheswapr", "cheswapr_", u, n, a, lda, i1, i2); }
EXPORT void zheswapr_(Word u, Word n, Word a, Word lda, Word i1, Word i2) { swapRowsAndColumns("zheswapr", "zheswapr_", u, n, a, lda, i1, i2); }
