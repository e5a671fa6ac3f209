// The emulated routines: every function of the GPU function list, computed by the
// CPU routine of the same base name. Most roots pass their by-value arguments by
// address and the arrays as they are, with an info of the emulator's own when the
// CPU routine has one; the roots with workspace (work and lwork before info) and
// the mixed-precision solvers bring the workspace the GPU interface leaves out.
#include <string_view>

#include "emulator.h"
#include "vorn_gpu_functions.h"

namespace {

// The roots whose CPU routine takes no info: the BLAS routines.
constexpr std::string_view rootsWithoutInfo[] = {"gemm", "symm",  "hemm", "syrk", "herk", "syr2k",
                                                 "her2k", "trmm", "trsm", "symv", "hemv"};
// The roots whose CPU routine takes work and lwork directly before info. The org
// and orm roots stand for ung and unm as well.
constexpr std::string_view rootsWithWorkspace[] = {
    "getri", "geqrf", "geqlf", "gerqf", "gelqf", "geqrfp", "gels",  "gglse", "ggrqf", "orgbr", "orghr",
    "orglq", "orgql", "orgqr", "orgrq", "ormlq", "ormql",  "ormqr", "ormrq"};

template <std::size_t N>
constexpr bool listed(const std::string_view (&names)[N], std::string_view root) {
    for (std::string_view name : names)
        if (name == root) return true;
    return false;
}

template <FixedString Root, FixedString Base, class T, class... Args>
int emulateRoot(const char* gpuName, Args... args) {
    constexpr std::string_view root = Root.c_str();
    if constexpr (listed(rootsWithWorkspace, root)) {
        return emulateWithWorkspace<Base, T>(gpuName, args...);
    } else if constexpr (root == "mixedGesv") {
        return emulateMixedGesv<Base>(gpuName, args...);
    } else {
        return emulate<Base, !listed(rootsWithoutInfo, root)>(gpuName, args...);
    }
}

}  // namespace

#define VORN_GPU_BODY(function, base, root, T) \
    return emulateRoot<#root, #base, T>(#function, VORN_GPU_ARGUMENT_LIST(root, T));
VORN_GPU_FUNCTIONS(VORN_GPU_DEFINE_ONE)
