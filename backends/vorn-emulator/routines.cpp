// The emulated routines: every function of the GPU function list, computed by the
// CPU routine of the same base name. Most roots pass their by-value arguments by
// address and the arrays as they are, with an info of the emulator's own when the
// CPU routine has one; the roots whose CPU routine takes workspace that the GPU
// interface leaves out, and the mixed-precision solvers, bring their own.
#include <string_view>
#include <type_traits>

#include "emulator.h"
#include "vorn_gpu_functions.h"

namespace {

// The roots whose CPU routine takes no info: the BLAS routines.
constexpr std::string_view rootsWithoutInfo[] = {"gemm", "symm",  "hemm", "syrk", "herk", "syr2k",
                                                 "her2k", "trmm", "trsm", "symv", "hemv"};
// The roots whose CPU routine takes arguments that the GPU interface leaves out,
// with what the emulator brings for them (emulateWithTail) in real and in complex
// precisions; every other root with info has an empty tail. The org and orm roots stand for ung and unm as well.
struct Tails {
    std::string_view root, real, complex;
};
constexpr Tails tails[] = {
    {"getri", "W", "W"},   {"geqrf", "W", "W"},  {"geqlf", "W", "W"},  {"gerqf", "W", "W"},
    {"gelqf", "W", "W"},   {"geqrfp", "W", "W"}, {"gels", "W", "W"},   {"gglse", "W", "W"},
    {"ggrqf", "W", "W"},   {"orgbr", "W", "W"},  {"orghr", "W", "W"},  {"orglq", "W", "W"},
    {"orgql", "W", "W"},   {"orgqr", "W", "W"},  {"orgrq", "W", "W"},  {"ormlq", "W", "W"},
    {"ormql", "W", "W"},   {"ormqr", "W", "W"},  {"ormrq", "W", "W"},  {"gehrd", "W", "W"},
    {"gebrd", "W", "W"},   {"geev", "W", ""},    {"geevComplex", "", "Wr"},
    {"syev", "W", ""},     {"heev", "", "Wr"},   {"syevx", "-Wii", ""}, {"heevx", "", "-Wrii"},
    {"sygv", "W", ""},     {"hegv", "", "Wr"},   {"steqr", "r", "r"},  {"stebz", "ri", ""},
    {"gesvd", "W", "Wr"},  {"gesdd", "Wi", "WRi"}, {"bdsqr", "r", "r"},
};

// The tail of a root in a precision; empty where the root has none.
constexpr std::string_view tailOf(std::string_view root, bool complex) {
    for (const Tails& row : tails)
        if (row.root == root) return complex ? row.complex : row.real;
    return {};
}

template <std::size_t N>
constexpr bool listed(const std::string_view (&names)[N], std::string_view root) {
    for (std::string_view name : names)
        if (name == root) return true;
    return false;
}

template <class T>
constexpr bool isComplex = std::is_same_v<T, vornFloatComplex> || std::is_same_v<T, vornDoubleComplex>;

// A tail as a template argument.
template <std::size_t N>
constexpr FixedString<N + 1> fixedTail(std::string_view tail) {
    FixedString<N + 1> out;
    for (std::size_t i = 0; i < N; ++i) out.text[i] = tail[i];
    return out;
}

template <FixedString Root, FixedString Base, class T, class... Args>
int emulateRoot(const char* gpuName, Args... args) {
    constexpr std::string_view root = Root.c_str(), tail = tailOf(root, isComplex<T>);
    if constexpr (listed(rootsWithoutInfo, root)) {
        return emulate<Base>(gpuName, args...);
    } else if constexpr (root == "mixedGesv") {
        return emulateMixedGesv<Base>(gpuName, args...);
    } else {
        return emulateWithTail<Base, T, fixedTail<tail.size()>(tail)>(gpuName, args...);
    }
}

}  // namespace

#define VORN_GPU_BODY(function, base, root, T) \
    return emulateRoot<#root, #base, T>(#function, VORN_GPU_ARGUMENT_LIST(root, T));
VORN_GPU_FUNCTIONS(VORN_GPU_DEFINE_ONE)
