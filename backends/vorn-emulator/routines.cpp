// The emulated routines: every function of the GPU function list, computed by the
// CPU routine of the same base name. Most roots pass their by-value arguments by
// address and the arrays as they are, with an info of the emulator's own when the
// CPU routine has one; getri and the mixed-precision solvers bring workspace the
// GPU interface leaves out.
#include <string_view>

#include "emulator.h"
#include "vorn_gpu_functions.h"

namespace {

// The roots whose CPU routine takes no info: the BLAS routines.
constexpr std::string_view rootsWithoutInfo[] = {"gemm", "symm",  "hemm", "syrk", "herk", "syr2k",
                                                 "her2k", "trmm", "trsm", "symv", "hemv"};
constexpr bool hasInfo(std::string_view root) {
    for (std::string_view name : rootsWithoutInfo)
        if (name == root) return false;
    return true;
}

template <FixedString Root, FixedString Base, class... Args>
int emulateRoot(const char* gpuName, Args... args) {
    constexpr std::string_view root = Root.c_str();
    if constexpr (root == "getri") {
        return emulateGetri<Base>(gpuName, args...);
    } else if constexpr (root == "mixedGesv") {
        return emulateMixedGesv<Base>(gpuName, args...);
    } else {
        return emulate<Base, hasInfo(root)>(gpuName, args...);
    }
}

}  // namespace

#define VORN_GPU_BODY(function, base, root, T) \
    return emulateRoot<#root, #base>(#function, VORN_GPU_ARGUMENT_LIST(root, T));
VORN_GPU_FUNCTIONS(VORN_GPU_DEFINE_ONE)
