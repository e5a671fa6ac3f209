// liblapackcpu_hooks.so: loaded into the back end's link-map namespace ahead of
// the back end and visible to it, so that the back end's own calls of xerbla_
// and ilaenv_ (made through its PLT) arrive here. Each goes on through a pointer
// that the CPU library sets once, after loading the back end: to the
// application's definition where it has one, else to the back end's own. One
// indirect jump a call: ilaenv_ is called for every blocked routine.
//
// Built without the C++ library and with nothing else exported, so that the
// namespace gains no second copy of libstdc++ and no other name of the back
// end's is taken over.
#include <cstddef>

namespace {

// gfortran's convention: the hidden lengths of the string arguments follow the
// others, by value.
using Xerbla = void (*)(const char* name, const int* info, std::size_t nameLength);
using Ilaenv = int (*)(const int* ispec, const char* name, const char* opts, const int* n1, const int* n2,
                       const int* n3, const int* n4, std::size_t nameLength, std::size_t optsLength);

Xerbla xerblaTarget = nullptr;
Ilaenv ilaenvTarget = nullptr;

}  // namespace

extern "C" {

[[gnu::visibility("default")]] void xerbla_(const char* name, const int* info, std::size_t nameLength) {
    xerblaTarget(name, info, nameLength);
}

[[gnu::visibility("default")]] int ilaenv_(const int* ispec, const char* name, const char* opts, const int* n1,
                                           const int* n2, const int* n3, const int* n4, std::size_t nameLength,
                                           std::size_t optsLength) {
    return ilaenvTarget(ispec, name, opts, n1, n2, n3, n4, nameLength, optsLength);
}

// Called by the CPU library once, before the back end's first routine runs.
[[gnu::visibility("default")]] void lapackcpuSetHookTargets(void* xerbla, void* ilaenv) {
    xerblaTarget = reinterpret_cast<Xerbla>(xerbla);
    ilaenvTarget = reinterpret_cast<Ilaenv>(ilaenv);
}
}
