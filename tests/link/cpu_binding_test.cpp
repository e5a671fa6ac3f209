// Binding of the CPU library: the limits of VORN_CPU_LIB and a missing library;
// the application's own xerbla_ and ilaenv_ behind it; fork() during start-up and
// after threaded calls.
// (A missing symbol: the frame tests. A process that never needs the library
// never binds it: the control call tests' exact logs of GPU-only processes.)
#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <thread>
#if !defined(_WIN32)
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

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

#if !defined(_WIN32)
extern "C" void sgemv(const char* trans, const void* m, const void* n, const float* alpha, const float* a,
                      const void* lda, const float* x, const void* incx, const float* beta, float* y,
                      const void* incy);

extern "C" void dgeqp3(const void* m, const void* n, double* a, const void* lda, int* jpvt, double* tau,
                       double* work, const void* lwork, int* info);

// This program's own xerbla_ and ilaenv_, exported (ENABLE_EXPORTS) as a Fortran
// program's are. This ilaenv_ gives 7 as DGEQRF's block size and hands every
// other question to the next definition (the link library's).
static std::vector<std::string> xerblaCalls;
extern "C" [[gnu::visibility("default")]] void xerbla_(const char* name, const int* info, std::size_t length) {
    xerblaCalls.push_back(std::string(name, length) + " " + std::to_string(*info));
}
extern "C" [[gnu::visibility("default")]] int ilaenv_(const int* ispec, const char* name, const char* opts,
                                                      const int* n1, const int* n2, const int* n3, const int* n4,
                                                      std::size_t nameLength, std::size_t optsLength) {
    if (*ispec == 1 && std::string(name, nameLength) == "DGEQRF") return 7;
    static const auto next = reinterpret_cast<decltype(&ilaenv_)>(dlsym(RTLD_NEXT, "ilaenv_"));
    return next(ispec, name, opts, n1, n2, n3, n4, nameLength, optsLength);
}

// OpenBLAS behind the CPU library reports to this program's xerbla_ and asks its
// ilaenv_: the forwarded dgeqp3 with an illegal lda reports once, here, and
// OpenBLAS prints nothing; its workspace query answers 2n + (n + 1) nb with
// nb = 7 from this ilaenv_. A program without its own xerbla_ gets OpenBLAS's
// message, as before.
TEST(ApplicationHooks, OpenBlasReportsToAndAsksThisProgram) {
    int m = 5, n = 4, lda = 3, query = -1, info = 0;
    std::vector<int> pivots(n);
    std::vector<double> a(m * n, 1.0), tau(n), work(1);
    StdoutCapture capture;
    dgeqp3(&m, &n, a.data(), &lda, pivots.data(), tau.data(), work.data(), &query, &info);
    EXPECT_EQ(info, -4);
    lda = m;
    dgeqp3(&m, &n, a.data(), &lda, pivots.data(), tau.data(), work.data(), &query, &info);
    EXPECT_EQ(info, 0);
    EXPECT_EQ(work[0], 2 * n + (n + 1) * 7);
    EXPECT_EQ(capture.stop(), "");
    EXPECT_THAT(xerblaCalls, testing::ElementsAre("DGEQP3 4"));
    StdoutCapture child;
    EXPECT_EQ(runProgram(VORN_TEST_EXIT_CHILD, "illegal"), 256 - 2);
    EXPECT_EQ(child.stop(), " ** On entry to SPOTRF parameter number  2 had an illegal value\n");
}

namespace {

// What a process computes around fork(): factors of spdMatrix on the CPU side
// (n = 300) and through the emulator (n = 1100), and the forwarded sgemv's A x.
std::vector<std::vector<float>> forkWork() {
    int info, n = 300, one = 1;
    std::vector<std::vector<float>> results{factor('L', n, &info), factor('L', 1100, &info),
                                            std::vector<float>(n)};
    const float alpha = 1, beta = 0;
    const auto a = spdMatrix(n);
    const std::vector<float> x(n, 1.0f);
    sgemv("N", &n, &n, &alpha, a.data(), &n, x.data(), &one, &beta, results[2].data(), &one);
    return results;
}

bool near(const std::vector<std::vector<float>>& x, const std::vector<std::vector<float>>& y) {
    for (std::size_t k = 0; k < x.size(); ++k)
        for (std::size_t i = 0; i < x[k].size(); ++i)
            if (!(std::abs(x[k][i] - y[k][i]) <= 1e-3f * (1 + std::abs(y[k][i])))) return false;
    return true;
}

// Forks; the child computes forkWork again, within an alarm, and exits with 0
// when its results are near `expected`, as an application's child would.
void expectChildComputes(const std::vector<std::vector<float>>& expected) {
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        std::exit(near(forkWork(), expected) ? 0 : 1);
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "child status " << status;
}

}  // namespace

// fork() while another thread holds the link library's start-up (the emulator's
// start-up takes 300 ms), then after calls that ran on OpenBLAS's threads (two of
// them) on either side: each child computes and exits normally, and the parent
// goes on; all results right. An alarm turns a hang into a failure.
TEST(Fork, ChildrenComputeAfterStartUpAndThreadedCalls) {
    setEnv("OPENBLAS_NUM_THREADS", "2");
    setEnv("VORN_EMU_INIT_DELAY_MS", "300");
    alarm(120);
    std::vector<std::vector<float>> expected;
    std::thread startUp([&] { expected = forkWork(); });
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
        std::exit(forkWork().size() == 3 ? 0 : 1);
    }
    startUp.join();
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "child forked during start-up: " << status;
    expectChildComputes(expected);
    EXPECT_TRUE(near(forkWork(), expected));
    expectChildComputes(expected);
}
#endif
