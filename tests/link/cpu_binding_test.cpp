// Binding of the CPU library: the limits of VORN_CPU_LIB and a missing library.
// (A missing symbol: the frame tests. A process that never needs the library
// never binds it: the control call tests' exact logs of GPU-only processes.)
#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

#include "link_test.h"

using testing::ElementsAre;

namespace {

// A CPU-side call whose arrays must come back untouched when the CPU library
// cannot be reached; gives info.
int unreachedCall() {
    int info;
    EXPECT_TRUE(sameBits(factor('L', 4, &info), spdMatrix(4)));
    return info;
}

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

TEST(CpuBinding, PathOf259CharactersReachesTheLoaderWhole) {
    const std::string path = cpuLibraryPathOfLength(259);
    ASSERT_EQ(path.size(), 259u);
    setEnv("VORN_CPU_LIB", path);
    const std::string log = useLogFile();
    expectReferenceFactor('L', 5);
    EXPECT_THAT(linesStartingWith(readLines(log), "vorn info:  CPU"), ElementsAre("vorn info:  CPU library is " + path));
}

TEST(CpuBinding, PathOf260CharactersIsRefusedForGood) {
    setEnv("VORN_CPU_LIB", cpuLibraryPathOfLength(260));  // exists, but is never loaded
    StdoutCapture capture;
    EXPECT_EQ(unreachedCall(), 0);
    EXPECT_EQ(unreachedCall(), 0);
    EXPECT_EQ(capture.stop(),
              "vorn error: Initialization failed, filename path is too long\n"
              "vorn error: a previous attempt at initialization failed, cannot continue\n");
}

// A library that cannot be loaded is reported at the first CPU-side call and
// never tried again; the calls return with info 0 and nothing computed.
class MissingLibrary : public testing::TestWithParam<const char*> {};
TEST_P(MissingLibrary, FailsOnceThenRefersToThePreviousAttempt) {
    setEnv("VORN_CPU_LIB", GetParam());
    StdoutCapture capture;
    EXPECT_EQ(unreachedCall(), 0);
    EXPECT_EQ(unreachedCall(), 0);
    EXPECT_EQ(unreachedCall(), 0);
    EXPECT_EQ(capture.stop(), std::string("vorn error: failed to read '") + GetParam() + "'\n" +
                                  "vorn error: a previous attempt at initialization failed, cannot continue\n"
                                  "vorn error: a previous attempt at initialization failed, cannot continue\n");
}
#if defined(_WIN32)
// A test cannot give a variable an empty value on Windows: msvcrt's _putenv("X=")
// removes X.
INSTANTIATE_TEST_SUITE_P(Names, MissingLibrary, testing::Values("libvorn-no-such-library.so"));
#else
INSTANTIATE_TEST_SUITE_P(Names, MissingLibrary, testing::Values("libvorn-no-such-library.so", ""));
#endif
