// The cost of one forwarded call after start-up, with the log off: the same call
// through the link library (as an application calls it, ddot_), straight into
// the CPU library (ddot), and straight into OpenBLAS (ddot_). The difference
// between the first two is what the link library adds.
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

struct Sides {
    Ddot ddot[3];
    Dlaswp dlaswp[3];
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

void sideNames(benchmark::internal::Benchmark* b) {
    b->ArgName("side_0link_1cpu_2openblas")->Arg(0)->Arg(1)->Arg(2);
}

}  // namespace

BENCHMARK(ddotOne)->Apply(sideNames);
BENCHMARK(dlaswpOneRow)->Apply(sideNames);
BENCHMARK_MAIN();
