// What the link library's tests share (and the emulator's, for its matrices):
// the routines as an application declares them and small scenario helpers.
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
// The log's line naming the default CPU library.
#if defined(_WIN32)
inline const std::string cpuLibraryLine = "vorn info:  CPU library is lapackcpu.dll";
#else
inline const std::string cpuLibraryLine = "vorn info:  CPU library is liblapackcpu.so";
#endif

inline constexpr int spotrfCrossover = 1024;

// A column-major n x n matrix with leading dimension lda (at least n; padding rows
// -7): symmetric positive definite, or with a negative (k,k) element where k > 0.
inline std::vector<float> spdMatrix(int n, int lda = 0, int k = 0) {
    lda = lda < n ? n : lda;
    std::vector<float> a(static_cast<std::size_t>(lda) * n, -7.0f);
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i)
            a[i + static_cast<std::size_t>(j) * lda] = i == j ? float(n) : 1.0f / float(1 + (i > j ? i - j : j - i));
    if (k > 0) a[(k - 1) + static_cast<std::size_t>(k - 1) * lda] = -1.0f;
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

// The arguments that spotrf's entry line and the emulator's record show for a
// call on spdMatrix(n) in the lower triangle.
inline std::string spotrfArguments(int n, const void* a) {
    return "(L, " + std::to_string(n) + ", " + formatted("%p", a) + ", " + std::to_string(n) + ")";
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
        log.push_back("vorn info:  spotrf " + spotrfArguments(n, a.data()));
        log.push_back(issuing);
        log.insert(log.end(), extra.begin(), extra.end());
        log.push_back("vorn info:  done");
        if (issuing.find("to GPU") != std::string::npos) record.push_back("vornSpotrf" + spotrfArguments(n, a.data()));
    }
    // The log and the record hold exactly the lines expected.
    void check(const std::string& logPath, const std::string& recordPath) const {
        EXPECT_THAT(readLines(logPath), testing::ElementsAreArray(log));
        EXPECT_THAT(readLines(recordPath), testing::ElementsAreArray(record));
    }
};
