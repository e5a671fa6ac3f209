// Binding of the CPU library: the limits of VORN_CPU_LIB and a missing library.
// (A missing symbol: the frame tests. A process that never needs the library
// never binds it: the control call tests' exact logs of GPU-only processes.)
#include <algorithm>
#include <filesystem>

#include "link_test.h"

namespace {

// A path of exactly `length` characters that names the default CPU library: a
// symbolic link to it on Linux, a copy on Windows, whose loader also wants the
// name to end in ".dll" (else it appends that) and takes backslashes.
std::string cpuLibraryPathOfLength(std::size_t length) {
    namespace fs = std::filesystem;
    std::string folder = tempPath("");
    folder += std::string(150 - folder.size(), 'd');
    fs::create_directory(folder);
#if defined(_WIN32)
    std::string path = folder + "/" + std::string(length - folder.size() - 5, 'f') + ".dll";
    std::replace(path.begin(), path.end(), '/', '\\');
    std::error_code error;  // a copy at the 260-character path may fail; that one is never loaded
    fs::copy_file(VORN_TEST_LAPACKCPU, path, error);
#else
    std::string path = folder + "/" + std::string(length - folder.size() - 1, 'f');
    fs::create_symlink(VORN_TEST_LAPACKCPU, path);
#endif
    return path;
}

}  // namespace

// VORN_CPU_LIB, bound at the first CPU-side call, with verbose off: a path of
// 259 characters reaches the loader whole (a shorter one would name nothing);
// one of 260, which exists too, is refused before the loader sees it; a name the
// loader cannot find and the empty name fail. A failure is reported once and the
// library never tried again: the calls return with info 0 and nothing computed.
class CpuLibrarySetting : public testing::TestWithParam<std::string> {};
TEST_P(CpuLibrarySetting, BindsOrFailsOnce) {
    const std::string path = GetParam() == "259" || GetParam() == "260"
                                 ? cpuLibraryPathOfLength(std::stoul(GetParam())) : GetParam();
    setEnv("VORN_CPU_LIB", path);
    StdoutCapture capture;
    for (int call = 0; call < 3; ++call) {
        int info;
        EXPECT_EQ(sameBits(factor('L', 4, &info), spdMatrix(4)), GetParam() != "259");  // untouched unless bound
        EXPECT_EQ(info, 0);
    }
    const std::string previous = "vorn error: a previous attempt at initialization failed, cannot continue\n";
    const std::string first = GetParam() == "260" ? "vorn error: Initialization failed, filename path is too long\n"
                                                  : "vorn error: failed to read '" + path + "'\n";
    EXPECT_EQ(capture.stop(), GetParam() == "259" ? "" : first + previous + previous);
}
#if defined(_WIN32)
// A test cannot give a variable an empty value on Windows: msvcrt's _putenv("X=")
// removes X.
INSTANTIATE_TEST_SUITE_P(Paths, CpuLibrarySetting, testing::Values("259", "260", "libvorn-no-such-library.so"));
#else
INSTANTIATE_TEST_SUITE_P(Paths, CpuLibrarySetting, testing::Values("259", "260", "libvorn-no-such-library.so", ""));
#endif
