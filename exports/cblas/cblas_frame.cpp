// The argument reports, the default cblas_xerbla and the conjugated copies.
#include "cblas_frame.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace cblas {

int Report::traded(int position) const {
    for (const Swap& swap : swaps) {
        if (!rowMajor || swap.first == 0) continue;
        if (position == swap.first) return swap.second;
        if (position == swap.second) return swap.first;
    }
    return position;
}

// cblas_xerbla is called through the dynamic symbol table, so that an
// application's own definition (the usual way to catch argument errors) is the
// one that runs.
void Report::illegal(int position, const char* form, int value) const {
    cblas_xerbla(traded(position), name, form, value);
}

void Report::fortranPosition(int info) const { cblas_xerbla(traded(info + 1), name, ""); }

bool validLayout(const char* name, CBLAS_LAYOUT layout) {
    if (layout == CblasRowMajor || layout == CblasColMajor) return true;
    cblas_xerbla(1, name, "Illegal layout setting, %d\n", layout);
    return false;
}

template <char p>
ConjugatedCopy<p>::ConjugatedCopy(Ref vector, int n, int inc)
    : data(static_cast<Element<p>*>(std::malloc(sizeof(Element<p>) * (n > 0 ? n : 1)))) {
    if (data == nullptr) return;
    const auto* element = static_cast<const Element<p>*>(vector);
    for (int i = 0; i < n; ++i) data[i] = std::conj(element[inc > 0 ? i * inc : (n - 1 - i) * -inc]);
}

template <char p>
ConjugatedCopy<p>::~ConjugatedCopy() {
    std::free(data);
}

template struct ConjugatedCopy<'c'>;
template struct ConjugatedCopy<'z'>;

bool copyFailed(const char* name, const void* data) {
    if (data != nullptr) return false;
    std::fprintf(stderr, "%s: no memory for the conjugated copy of a vector\n", name);
    return true;
}

}  // namespace cblas

// The reference CBLAS's message on stderr. Unlike the reference, it returns
// instead of ending the program: the call that reported does nothing.
extern "C" CBLAS_EXPORT void cblas_xerbla(CBLAS_INT p, const char* rout, const char* form, ...) {
    std::va_list arguments;
    va_start(arguments, form);
    if (p != 0) std::fprintf(stderr, "Parameter %d to routine %s was incorrect\n", p, rout);
    std::vfprintf(stderr, form, arguments);
    va_end(arguments);
}
