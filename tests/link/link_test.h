// What the link library's tests share: the routines as an application declares
// them, a routine for reference results, and small scenario helpers.
#pragma once

#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "test_support.h"

// The link library's export, in the argument convention of its callers.
extern "C" void spotrf(const char* uplo, const void* n, float* a, const void* lda, void* info);
// The control calls.
extern "C" void vornLinkSetCpuAlways();
extern "C" void vornLinkSetGpuAlways();
extern "C" void vornLinkClearCpuAlways();
extern "C" void vornLinkClearGpuAlways();
// The reference for spotrf's results. On Linux, OpenBLAS's own spotrf_, with
// gfortran's hidden length: the program links OpenBLAS, but the name spotrf_
// belongs to the link library, which comes first, so it is taken from OpenBLAS's
// handle. The Windows tests run without OpenBLAS: there the reference is the
// spotrf of the test CPU library (tests/windows/spotrf_cpu.cpp), in the word
// convention, which shows that the link library hands the CPU's answer on intact.
#if defined(_WIN32)
inline constexpr const char* defaultCpuLibrary = "lapackcpu.dll";
inline void referenceSpotrf(char uplo, int n, float* a, int lda, int* info) {
    using Spotrf = void (*)(const void*, const void*, void*, const void*, void*);
    static const auto function = reinterpret_cast<Spotrf>(librarySymbol(openLibrary(defaultCpuLibrary), "spotrf"));
    function(&uplo, &n, a, &lda, info);
}
#else
inline constexpr const char* defaultCpuLibrary = "liblapackcpu.so";
inline void referenceSpotrf(char uplo, int n, float* a, int lda, int* info) {
    using FortranSpotrf = void (*)(const char*, const int*, float*, const int*, int*, std::size_t);
    static const auto function =
        reinterpret_cast<FortranSpotrf>(librarySymbol(openLibrary("libopenblas.so.0"), "spotrf_"));
    function(&uplo, &n, a, &lda, info, 1);
}
#endif
inline const std::string cpuLibraryLine = std::string("vorn info:  CPU library is ") + defaultCpuLibrary;

inline constexpr int spotrfCrossover = 1024;

// A column-major symmetric positive definite n x n matrix.
inline std::vector<float> spdMatrix(int n) {
    std::vector<float> a(static_cast<std::size_t>(n) * n);
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i)
            a[i + static_cast<std::size_t>(j) * n] =
                i == j ? static_cast<float>(n) : 1.0f / static_cast<float>(1 + (i > j ? i - j : j - i));
    return a;
}

inline bool sameBits(const std::vector<float>& x, const std::vector<float>& y) {
    return x.size() == y.size() && std::memcmp(x.data(), y.data(), x.size() * sizeof(float)) == 0;
}

// Factors spdMatrix(n) through the link library: gives the array after the call
// (its data is the array the call got) and sets *info (-99 before the call).
inline std::vector<float> factor(char uplo, int n, int* info) {
    auto a = spdMatrix(n);
    *info = -99;
    spotrf(&uplo, &n, a.data(), &n, info);
    return a;
}
// The same call, its array held bit for bit against the reference's.
inline void expectReferenceFactor(char uplo, int n) {
    int info, referenceInfo;
    const auto a = factor(uplo, n, &info);
    auto reference = spdMatrix(n);
    referenceSpotrf(uplo, n, reference.data(), n, &referenceInfo);
    EXPECT_EQ(info, 0);
    EXPECT_TRUE(sameBits(a, reference));
}

// Log and record files of this test; setting them must precede the first call.
inline std::string useLogFile() {
    std::string path = tempPath("vorn.log");
    setEnv("VORN_DEBUG_LOG", path);
    return path;
}
inline std::string useRecord() {
    std::string path = tempPath("emulator.record");
    setEnv("VORN_EMU_RECORD", path);
    return path;
}

// The entry line that spotrf writes for these arguments, and the call the
// emulator records for them.
inline std::string spotrfArguments(char uplo, int n, const void* a, int lda) {
    return std::string(1, uplo) + ", " + std::to_string(n) + ", " + pointerText(a) + ", " + std::to_string(lda) + ")";
}
inline std::string spotrfEntryLine(char uplo, int n, const void* a, int lda) {
    return "vorn info:  spotrf (" + spotrfArguments(uplo, n, a, lda);
}
inline std::string emulatorSpotrfLine(char uplo, int n, const void* a, int lda) {
    return "vornSpotrf(" + spotrfArguments(uplo, n, a, lda);
}

// The log and the emulator's record that a sequence of spotrf calls should leave.
struct Expected {
    std::vector<std::string> log;
    std::vector<std::string> record{"vornInitialize()"};

    // Factors an n x n matrix and adds the call's lines: the entry line, the
    // issuing line, `extra` (lines of the CPU library's binding) and "done".
    void spotrfCall(int n, const std::string& issuing, const std::vector<std::string>& extra = {}) {
        int info;
        const auto a = factor('L', n, &info);
        EXPECT_EQ(info, 0) << "n = " << n;
        log.push_back(spotrfEntryLine('L', n, a.data(), n));
        log.push_back(issuing);
        log.insert(log.end(), extra.begin(), extra.end());
        log.push_back("vorn info:  done");
        if (issuing.find("to GPU") != std::string::npos) record.push_back(emulatorSpotrfLine('L', n, a.data(), n));
    }
    // The log and the record hold exactly the lines expected.
    void check(const std::string& logPath, const std::string& recordPath) const {
        EXPECT_THAT(readLines(logPath), testing::ElementsAreArray(log));
        EXPECT_THAT(readLines(recordPath), testing::ElementsAreArray(record));
    }
};
