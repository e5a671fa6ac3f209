// What the CBLAS functions share: the element type of each precision letter,
// the choice of the link library's routine by precision, the letters the
// enumerations stand for, the argument reports, and the conjugated copies that
// row-major complex calls need.
#pragma once

#include <cblas-netlib.h>
#include <complex>
#include <type_traits>

#include "fortran_blas.h"

#define CBLAS_EXPORT __attribute__((visibility("default")))

namespace cblas {

// The precision letters of the routine names: s, d, c, z.
template <char p>
using Element = std::conditional_t<
    p == 's', float,
    std::conditional_t<p == 'd', double, std::conditional_t<p == 'c', std::complex<float>, std::complex<double>>>>;
template <char p>
constexpr bool complexPrecision = p == 'c' || p == 'z';

// Of two routines given in s, d (or c, z) order, the one of precision p.
template <char p>
constexpr auto pick(auto s_or_c, auto d_or_z) {
    if constexpr (p == 's' || p == 'c')
        return s_or_c;
    else
        return d_or_z;
}

// The letter a Fortran routine takes for an enumeration value, 0 for a value
// outside the enumeration. In row-major order uplo and side name the other
// triangle and side of the transposed array.
constexpr char uploLetter(CBLAS_UPLO uplo, bool flip) {
    return uplo == CblasUpper ? (flip ? 'L' : 'U') : uplo == CblasLower ? (flip ? 'U' : 'L') : 0;
}
constexpr char sideLetter(CBLAS_SIDE side, bool flip) {
    return side == CblasLeft ? (flip ? 'R' : 'L') : side == CblasRight ? (flip ? 'L' : 'R') : 0;
}
constexpr char diagLetter(CBLAS_DIAG diag) { return diag == CblasUnit ? 'U' : diag == CblasNonUnit ? 'N' : 0; }
constexpr char transposeLetter(CBLAS_TRANSPOSE trans) {
    return trans == CblasNoTrans ? 'N' : trans == CblasTrans ? 'T' : trans == CblasConjTrans ? 'C' : 0;
}
constexpr int atLeastOne(int value) { return value > 1 ? value : 1; }

// Two argument positions that trade places in a row-major call's report,
// because the call handed the Fortran routine the other operand in that place.
struct Swap {
    int first = 0, second = 0;
};

// The argument reports of one call, in the reference CBLAS's form: cblas_xerbla
// with the position in the CBLAS argument list (the Fortran position plus one
// for the layout, traded back through `swaps` in row-major order).
struct Report {
    const char* name;
    bool rowMajor;
    Swap swaps[2] = {};

    // An enumeration value out of range at `position`, with the reference's message.
    void illegal(int position, const char* form, int value) const;
    // The Fortran routine's check `info` failed.
    void fortranPosition(int info) const;
    // `position` as the caller counts it.
    int traded(int position) const;
};

// Whether the layout is one of the two; reports it as argument 1 if not.
bool validLayout(const char* name, CBLAS_LAYOUT layout);

// A Fortran routine's argument check: its info when `failed`.
struct Check {
    int info;
    bool failed;
};
// The info of the first failing check, in the Fortran routine's own order; 0 when all pass.
constexpr int firstFailure(std::initializer_list<Check> checks) {
    for (const Check& check : checks)
        if (check.failed) return check.info;
    return 0;
}

// Complex conjugation of n elements of a vector with stride inc, in place.
template <char p>
void conjugate(void* vector, int n, int inc) {
    auto* element = static_cast<Element<p>*>(vector);
    const int step = inc < 0 ? -inc : inc;
    for (int i = 0; i < n; ++i) element[i * step] = std::conj(element[i * step]);
}

// The conjugate of a vector of n elements with stride inc, copied to unit stride
// in the vector's logical order (so that it is passed with increment 1). Released
// by its destructor; `data` is null if the memory could not be had.
template <char p>
struct ConjugatedCopy {
    Element<p>* data;
    ConjugatedCopy(Ref vector, int n, int inc);
    ~ConjugatedCopy();
    ConjugatedCopy(const ConjugatedCopy&) = delete;
    ConjugatedCopy& operator=(const ConjugatedCopy&) = delete;
};
// Reports a copy that could not be made; true when the call must stop.
bool copyFailed(const char* name, const void* data);

}  // namespace cblas
