// liblapackcpu_hooks.so: loaded into the back end's link-map namespace ahead of
// the back end and visible to it, so that the back end's own calls of xerbla_
// and ilaenv_ (made through its PLT) arrive here. Each goes on through a pointer
// that the CPU library sets once, after loading the back end: to the
// application's definition where it has one, else to the back end's own. One
// indirect jump a call: ilaenv_ is called for every blocked routine. An
// application with 64-bit integers (VORN_ILP64=1) gets its integers widened.
//
// Built without the C++ library and with nothing else exported, so that the
// namespace gains no second copy of libstdc++ and no other name of the back
// end's is taken over.
#include <cstddef>
#include <cstdint>

namespace {

// gfortran's convention: the hidden lengths of the string arguments follow the
// others, by value. Integer is the back end's (int) or the application's.
template <class Integer> using Xerbla = void (*)(const char* name, const Integer* info, std::size_t nameLength);
template <class Integer>
using Ilaenv = Integer (*)(const Integer* ispec, const char* name, const char* opts, const Integer* n1,
                           const Integer* n2, const Integer* n3, const Integer* n4, std::size_t nameLength,
                           std::size_t optsLength);

Xerbla<int> xerblaEntry = nullptr;  // the target itself, or widenXerbla
Ilaenv<int> ilaenvEntry = nullptr;  // the target itself, or widenIlaenv
Xerbla<int64_t> wideXerbla = nullptr;
Ilaenv<int64_t> wideIlaenv = nullptr;

void widenXerbla(const char* name, const int* info, std::size_t nameLength) {
    const int64_t wide = *info;
    wideXerbla(name, &wide, nameLength);
}

int widenIlaenv(const int* ispec, const char* name, const char* opts, const int* n1, const int* n2, const int* n3,
                const int* n4, std::size_t nameLength, std::size_t optsLength) {
    const int64_t wide[5] = {*ispec, *n1, *n2, *n3, *n4};
    return static_cast<int>(
        wideIlaenv(&wide[0], name, opts, &wide[1], &wide[2], &wide[3], &wide[4], nameLength, optsLength));
}

}  // namespace

extern "C" {

[[gnu::visibility("default")]] void xerbla_(const char* name, const int* info, std::size_t nameLength) {
    xerblaEntry(name, info, nameLength);
}

[[gnu::visibility("default")]] int ilaenv_(const int* ispec, const char* name, const char* opts, const int* n1,
                                           const int* n2, const int* n3, const int* n4, std::size_t nameLength,
                                           std::size_t optsLength) {
    return ilaenvEntry(ispec, name, opts, n1, n2, n3, n4, nameLength, optsLength);
}

// Called by the CPU library once, before the back end's first routine runs. A
// target of the application with 64-bit integers (wideXerbla/wideIlaenv set)
// takes its integers widened; the others are called as they are.
[[gnu::visibility("default")]] void lapackcpuSetHookTargets(void* xerbla, bool wideXerblaTarget, void* ilaenv,
                                                            bool wideIlaenvTarget) {
    wideXerbla = wideXerblaTarget ? reinterpret_cast<Xerbla<int64_t>>(xerbla) : nullptr;
    wideIlaenv = wideIlaenvTarget ? reinterpret_cast<Ilaenv<int64_t>>(ilaenv) : nullptr;
    xerblaEntry = wideXerblaTarget ? widenXerbla : reinterpret_cast<Xerbla<int>>(xerbla);
    ilaenvEntry = wideIlaenvTarget ? widenIlaenv : reinterpret_cast<Ilaenv<int>>(ilaenv);
}
}
