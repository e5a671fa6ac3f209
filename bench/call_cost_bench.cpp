// The cost of one call after start-up, with the log off: the same call through
// the link library (as an application calls it, ddot_), straight into the CPU
// library (ddot), and straight into OpenBLAS (ddot_). The difference between the
// first two is what the link library adds. ddot and dlaswp are forwarded
// routines; dgemm and dgetrf are routed ones, here under their crossovers, so
// that they too run on the CPU library.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

namespace {

void* symbol(const char* library, const char* name) {
    void* handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
    void* found = handle != nullptr ? dlsym(handle, name) : nullptr;
    if (found == nullptr) {
        std::fprintf(stderr, "bench: no %s in %s: %s\n", name, library, dlerror());
        std::exit(1);
    }
    return found;
}

using Ddot = double (*)(const int*, const double*, const int*, const double*, const int*);
using Dlaswp = void (*)(const int*, double*, const int*, const int*, const int*, const int*, const int*);
using Dgemm = void (*)(const char*, const char*, const int*, const int*, const int*, const double*, const double*,
                       const int*, const double*, const int*, const double*, double*, const int*);
using Dgetrf = void (*)(const int*, const int*, double*, const int*, int*, int*);

struct Sides {
    Ddot ddot[3];
    Dlaswp dlaswp[3];
    Dgemm dgemm[3];
    Dgetrf dgetrf[3];
};

// 0: the link library, 1: the CPU library, 2: OpenBLAS.
const Sides& sides() {
    static const Sides loaded = [] {
        Sides s{};
        const char* link = VORN_BENCH_LINK_LIBRARY;
        const char* cpu = VORN_BENCH_CPU_LIBRARY;
        s.ddot[0] = reinterpret_cast<Ddot>(symbol(link, "ddot_"));
        s.ddot[1] = reinterpret_cast<Ddot>(symbol(cpu, "ddot"));
        s.ddot[2] = reinterpret_cast<Ddot>(symbol("libopenblas.so.0", "ddot_"));
        s.dlaswp[0] = reinterpret_cast<Dlaswp>(symbol(link, "dlaswp_"));
        s.dlaswp[1] = reinterpret_cast<Dlaswp>(symbol(cpu, "dlaswp"));
        s.dlaswp[2] = reinterpret_cast<Dlaswp>(symbol("libopenblas.so.0", "dlaswp_"));
        s.dgemm[0] = reinterpret_cast<Dgemm>(symbol(link, "dgemm_"));
        s.dgemm[1] = reinterpret_cast<Dgemm>(symbol(cpu, "dgemm"));
        s.dgemm[2] = reinterpret_cast<Dgemm>(symbol("libopenblas.so.0", "dgemm_"));
        s.dgetrf[0] = reinterpret_cast<Dgetrf>(symbol(link, "dgetrf_"));
        s.dgetrf[1] = reinterpret_cast<Dgetrf>(symbol(cpu, "dgetrf"));
        s.dgetrf[2] = reinterpret_cast<Dgetrf>(symbol("libopenblas.so.0", "dgetrf_"));
        return s;
    }();
    return loaded;
}

void ddotOne(benchmark::State& state) {
    const Ddot ddot = sides().ddot[state.range(0)];
    const int n = 1, inc = 1;
    double x = 1.5, y = 2.0;
    ddot(&n, &x, &inc, &y, &inc);  // start-up and first look-ups happen here
    for (auto _ : state) {
        benchmark::DoNotOptimize(ddot(&n, &x, &inc, &y, &inc));
        benchmark::ClobberMemory();
    }
}

void dlaswpOneRow(benchmark::State& state) {
    const Dlaswp dlaswp = sides().dlaswp[state.range(0)];
    const int n = 1, lda = 1, k1 = 1, k2 = 1, inc = 1;
    double a = 3.0;
    int ipiv = 1;
    dlaswp(&n, &a, &lda, &k1, &k2, &ipiv, &inc);
    for (auto _ : state) {
        dlaswp(&n, &a, &lda, &k1, &k2, &ipiv, &inc);
        benchmark::ClobberMemory();
    }
}

void dgemmOneByOne(benchmark::State& state) {
    const Dgemm dgemm = sides().dgemm[state.range(0)];
    const int one = 1;
    const double alpha = 1.0, beta = 0.5, a = 2.0, b = 3.0;
    double c = 1.0;
    dgemm("N", "N", &one, &one, &one, &alpha, &a, &one, &b, &one, &beta, &c, &one);
    for (auto _ : state) {
        dgemm("N", "N", &one, &one, &one, &alpha, &a, &one, &b, &one, &beta, &c, &one);
        benchmark::ClobberMemory();
    }
}

void dgetrfOneByOne(benchmark::State& state) {
    const Dgetrf dgetrf = sides().dgetrf[state.range(0)];
    const int one = 1;
    double a = 4.0;
    int ipiv = 0, info = 0;
    dgetrf(&one, &one, &a, &one, &ipiv, &info);
    for (auto _ : state) {
        dgetrf(&one, &one, &a, &one, &ipiv, &info);
        benchmark::ClobberMemory();
    }
}

void sideNames(benchmark::internal::Benchmark* b) {
    b->ArgName("side_0link_1cpu_2openblas")->Arg(0)->Arg(1)->Arg(2);
}

}  // namespace

BENCHMARK(ddotOne)->Apply(sideNames);
BENCHMARK(dlaswpOneRow)->Apply(sideNames);
BENCHMARK(dgemmOneByOne)->Apply(sideNames);
BENCHMARK(dgetrfOneByOne)->Apply(sideNames);
BENCHMARK_MAIN();
