// Many threads through the link library at once: 16 threads make mixed routed
// and forwarded calls, on both sides of each crossover, work queries and calls
// that end with info > 0, while the emulator fails a share of the GPU calls at
// random with every failure status and one more thread flips the control calls.
// Every result must be OpenBLAS's, and the log must hold whole lines of the
// known forms, one retry for each failure the emulator records.
#include <atomic>
#include <barrier>
#include <dlfcn.h>
#include <map>
#include <random>
#include <regex>
#include <thread>
#include <tuple>

#include "core/platform.h"
#include "link_test.h"
#include "vorn_lapack.h"

namespace {

// One call's arrays, all n x n (tau and ipiv n, work 64n). The GPU side need
// not write work outside a work query.
struct Problem {
    int n = 0, lwork = 0, info = -99;
    std::vector<double> a, b, c, tau, work;
    std::vector<int> ipiv;
    bool operator==(const Problem& o) const {
        return std::tie(info, a, b, c, tau, ipiv) == std::tie(o.info, o.a, o.b, o.c, o.tau, o.ipiv) &&
               (lwork != -1 || work == o.work);
    }
};
using Caller = void (*)(void* function, Problem& p);

const double one = 1.0, zero = 0.0;
const int unit = 1;

void potrf(void* f, Problem& p) {
    reinterpret_cast<void (*)(const char*, int*, double*, int*, int*)>(f)("L", &p.n, p.a.data(), &p.n, &p.info);
}
void getrf(void* f, Problem& p) {
    reinterpret_cast<void (*)(int*, int*, double*, int*, int*, int*)>(f)(&p.n, &p.n, p.a.data(), &p.n,
                                                                           p.ipiv.data(), &p.info);
}
void geqrf(void* f, Problem& p) {
    reinterpret_cast<void (*)(int*, int*, double*, int*, double*, double*, int*, int*)>(f)(
        &p.n, &p.n, p.a.data(), &p.n, p.tau.data(), p.work.data(), &p.lwork, &p.info);
}
void gemm(void* f, Problem& p) {
    using Gemm = void (*)(const char*, const char*, int*, int*, int*, const double*, double*, int*, double*, int*,
                          const double*, double*, int*);
    reinterpret_cast<Gemm>(f)("N", "T", &p.n, &p.n, &p.n, &one, p.a.data(), &p.n, p.b.data(), &p.n, &zero,
                              p.c.data(), &p.n);
}
void axpy(void* f, Problem& p) {  // forwarded: always the CPU library
    int length = p.n * p.n;
    reinterpret_cast<void (*)(int*, const double*, double*, const int*, double*, const int*)>(f)(
        &length, &one, p.a.data(), &unit, p.b.data(), &unit);
}

enum class Matrix { positiveDefinite, notPositiveDefinite, singular };

struct Case {
    const char* routine;
    Caller call;
    Matrix matrix;
    int lwork = 0;  // geqrf's: -1 asks for the work size
};
// Each case at n = 4 (under the crossovers the list file sets) and n = 12 (over).
const Case cases[] = {
    {"dpotrf", potrf, Matrix::positiveDefinite},
    {"dpotrf", potrf, Matrix::notPositiveDefinite},
    {"dgetrf", getrf, Matrix::positiveDefinite},
    {"dgetrf", getrf, Matrix::singular},
    {"dgeqrf", geqrf, Matrix::positiveDefinite, 1},
    {"dgeqrf", geqrf, Matrix::positiveDefinite, -1},
    {"dgemm", gemm, Matrix::notPositiveDefinite},
    {"daxpy", axpy, Matrix::positiveDefinite},
};
const char* const crossoverList = "dpotrf=8\ndgetrf=64\ndgeqrf=64\ndgemm=1000\n";
constexpr int sizes[] = {4, 12}, threads = 16, callsPerThread = 2000, failurePercent = 25;

Problem input(const Case& c, int n) {
    const auto spd = spdMatrix(n, n, c.matrix == Matrix::notPositiveDefinite ? n / 2 : 0);
    Problem p;
    p.n = n;
    p.lwork = c.lwork < 0 ? -1 : 64 * n;
    p.a.assign(spd.begin(), spd.end());
    if (c.matrix == Matrix::singular)
        for (int i = 0; i < n; ++i) p.a[i + n * (n / 2)] = 0.0;  // a zero column
    p.b.assign(p.a.rbegin(), p.a.rend());
    p.c.assign(p.a.size(), 0.0);
    p.tau.assign(n, 0.0);
    p.work.assign(64 * n, 0.0);
    p.ipiv.assign(n, 0);
    return p;
}

TEST(Stress, ConcurrentCallsWithGpuFailuresAndControlCallsGiveOpenBlasResults) {
    const std::string log = useLogFile(), record = useRecord(), list = tempPath("crossovers.txt");
    writeFile(list, crossoverList);
    setEnv("VORN_CROSSOVER_LIST", list);
    setEnv("VORN_EMU_RANDOM_FAILURES", std::to_string(failurePercent));

    // OpenBLAS in a namespace of its own gives every expected result up front.
    void* openblas = platformLoadIsolatedLibrary("libopenblas.so.0");
    ASSERT_NE(openblas, nullptr);
    std::vector<std::pair<Problem, Problem>> calls;  // input, expected
    std::vector<void*> linked;
    for (const Case& c : cases) {
        for (int n : sizes) {
            Problem p = input(c, n), expected = p;
            c.call(platformFindSymbol(openblas, (std::string(c.routine) + "_").c_str()), expected);
            calls.emplace_back(p, expected);
            linked.push_back(dlsym(RTLD_DEFAULT, c.routine));
        }
    }

    vornLinkClearCpuAlways();  // the start-up: the first call of each thread then writes its entry line
    std::atomic<int> wrong{0};
    std::atomic<bool> finished{false};
    std::barrier start(threads + 1);
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t)
        workers.emplace_back([&, t] {
            start.arrive_and_wait();
            for (int i = 0; i < callsPerThread; ++i) {
                const std::size_t k = (i * 5 + t) % calls.size();
                Problem p = calls[k].first;
                cases[k / 2].call(linked[k], p);
                if (!(p == calls[k].second)) ++wrong;
            }
        });
    std::thread control([&] {
        void (*const flips[])() = {vornLinkSetCpuAlways, vornLinkClearCpuAlways, vornLinkSetGpuAlways,
                                   vornLinkClearGpuAlways};
        std::minstd_rand generator(1);
        start.arrive_and_wait();
        while (!finished.load()) {
            flips[generator() % 4]();
            std::this_thread::yield();
        }
    });
    for (auto& worker : workers) worker.join();
    finished = true;
    control.join();
    EXPECT_EQ(wrong.load(), 0);

    // Each failure: its status line, then the retry line.
    std::map<std::string, int> failures, statusLines;
    for (const auto& line : linesStartingWith(readLines(record), "random failure "))
        ++failures[vornGetStatusString(std::stoi(line.substr(15)))];
    EXPECT_EQ(failures.size(), 6u);  // every failure status
    const std::regex known(
        "vorn info:  (d(potrf|getrf|geqrf|gemm|axpy) \\(.*\\)|issuing to (CPU|GPU) \\([a-zA-Z ]+\\)|done|"
        "info returned as -?[0-9]+|work query returned [0-9]+|CPU library is .*|parsing crossover list '.*'|"
        "setting crossover for d[a-z]+ to '[0-9]+')|vorn error: .*");
    int entries = 0, dones = 0, retries = 0, toGpu = 0;
    for (const auto& line : readLines(log)) {
        if (!std::regex_match(line, known)) ADD_FAILURE() << "not a known line: " << line;
        entries += line.starts_with("vorn info:  d") && line.ends_with(")");
        dones += line == "vorn info:  done";
        toGpu += line.starts_with("vorn info:  issuing to GPU");
        if (line == "vorn error: Retrying with CPU") ++retries;
        else if (line.starts_with("vorn error: ")) ++statusLines[line.substr(12)];
    }
    EXPECT_EQ(entries, threads * callsPerThread);
    EXPECT_EQ(dones, threads * callsPerThread);
    EXPECT_EQ(statusLines, failures);
    int failed = 0;
    for (const auto& [status, count] : failures) failed += count;
    EXPECT_EQ(retries, failed);
    EXPECT_GT(toGpu, failed);
}

}  // namespace
