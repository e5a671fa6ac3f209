#include "apps/vorn-run/library_paths.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr const char* emulatorDescription =
    "the emulator (it computes on the CPU through the CPU library; no GPU is used)";
constexpr const char* cudaDescription = "the CUDA library (cuBLAS and cuSOLVER on the GPU)";

// Run from the build tree: its libraries lie where the build put them, and the
// GPU library there is the emulator in a folder of its own, which the link
// library's RUNPATH does not reach.
bool inBuildTree(const std::string& launcher) {
    std::error_code error;
    return fs::equivalent(fs::path(launcher).parent_path(), VORN_RUN_BUILD_DIR, error);
}

bool present(const fs::path& file) {
    std::error_code error;
    return fs::is_regular_file(file, error);
}

}  // namespace

LibraryPaths findLibraries(const std::string& launcher, std::string& problem) {
    LibraryPaths paths;
    fs::path libraryDir;
    if (inBuildTree(launcher)) {
        paths.linkLibrary = VORN_RUN_BUILD_LINK_LIBRARY;
        paths.gfortranShim = VORN_RUN_BUILD_GFORTRAN_SHIM;
        paths.cpuLibrary = VORN_RUN_BUILD_CPU_LIBRARY;
        paths.gpuFolder = VORN_RUN_BUILD_GPU_FOLDER;
        libraryDir = fs::path(paths.linkLibrary).parent_path();
    } else {
        // Installed: the link library's RUNPATH ($ORIGIN) finds the GPU library beside it.
        libraryDir = (fs::path(launcher).parent_path() / VORN_RUN_LIBDIR_FROM_BINDIR).lexically_normal();
        paths.linkLibrary = libraryDir / "libvorn_lapack_link.so";
        paths.gfortranShim = libraryDir / "libvorn_lapack_gfortran.so";
        paths.cpuLibrary = libraryDir / "liblapackcpu.so";
    }
    const fs::path gpuLibrary = (paths.gpuFolder.empty() ? libraryDir : fs::path(paths.gpuFolder)) / "libvorn_lapack.so";
    for (const fs::path& needed : {fs::path(paths.linkLibrary), fs::path(paths.gfortranShim),
                                   fs::path(paths.cpuLibrary), gpuLibrary})
        if (!present(needed)) {
            problem = "missing " + needed.string() +
                      (paths.gpuFolder.empty() ? " (an installed vorn-run finds its libraries in " VORN_RUN_LIBDIR_FROM_BINDIR
                                                 " from its own folder)"
                                               : " (vorn-run in the build tree uses the libraries built beside it)");
            return LibraryPaths{};
        }
    if (const fs::path cblas = libraryDir / "libvorn_lapack_cblas.so"; present(cblas)) paths.cblasLibrary = cblas;
    return paths;
}

const char* gpuLibraryDescription(const std::string& launcher) {
    if (inBuildTree(launcher)) return emulatorDescription;
    return VORN_RUN_INSTALLED_GPU_IS_CUDA ? cudaDescription : emulatorDescription;
}
