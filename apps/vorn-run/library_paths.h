// Where the libraries that vorn-run preloads are: beside the installed launcher
// (bin/ and lib/ under one prefix) or in the build tree it was built in.
#pragma once

#include <string>

struct LibraryPaths {
    std::string linkLibrary;   // libvorn_lapack_link.so
    std::string gfortranShim;  // libvorn_lapack_gfortran.so
    std::string cblasLibrary;  // libvorn_lapack_cblas.so beside the link library; empty where it is not
    std::string cpuLibrary;    // liblapackcpu.so
    std::string gpuFolder;     // the GPU library's folder, where the loader needs telling; else empty
};

// The paths for the launcher at `launcher` (its own absolute file name). Empty
// linkLibrary and `problem` set when a library is missing.
LibraryPaths findLibraries(const std::string& launcher, std::string& problem);

// Which GPU library the launcher's installation holds, in words for a user.
const char* gpuLibraryDescription(const std::string& launcher);
