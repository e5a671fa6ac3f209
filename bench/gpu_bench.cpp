// GPU benchmark: dgemm, zgemm, dgetrf, dgesv and dtrsm at n = 256 ... 16384,
// dpotrf, dgeqrf and dormqr (Q^T C, C square) at n = 4096, and dsyev (jobz 'V'),
// dgesvd (jobu = jobvt = 'S') and dgesdd (jobz 'S') at n = 2048, 4096, 8192
// (cuSOLVER has no gesdd: the CUDA library leaves it to the CPU), each timed
//   link     through the link library over the CUDA GPU library (VORN_GPU_ALWAYS=1,
//            so every call goes to the GPU), host arrays in and out;
//   openblas OpenBLAS on all cores, the same call;
//   hand     the same cuBLAS / cuSOLVER call as a user writes it by hand: cudaMemcpy
//            of the inputs, the call, cudaMemcpy of the outputs and info (link / hand
//            is what the library's staging costs);
//   device   cuBLAS / cuSOLVER on data already on the GPU (the limit);
//   nvblas   dgemm through NVBLAS (a run of its own, with libnvblas.so preloaded);
// and the fixed cost of one small GPU call (n = 64). tools/run-gpu-bench.sh runs
// it and turns the CSV into a table with the break-even size of each routine.
// Every result is checked (check(), below); a wrong one is recorded with no time.
// A link point whose GPU call failed and was retried on the CPU (the link
// library's error lines, read from its log) is recorded with no time either.
// Without a GPU it says so and measures nothing.
//
//   [GPU_BENCH_ROUTINES=dsyev,dgesvd,...] gpu_bench run LINK_LIBRARY OUT.csv [BUDGET_SECONDS]
//   gpu_bench nvblas OUT.csv [BUDGET_SECONDS]
//   gpu_bench report IN.csv... > RESULTS.md
//   gpu_bench check          (no GPU needed: the result checks on OpenBLAS's results)
#include <algorithm>
#include <chrono>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cublas_v2.h>
#include <cuda_runtime.h>
#include <cusolverDn.h>
#include <dlfcn.h>
#include <fstream>
#include <functional>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Z = std::complex<double>;
using Clock = std::chrono::steady_clock;

const int sizes[] = {256, 512, 1024, 2048, 4096, 8192, 16384};
// Each routine and the sizes it is timed at. The three at one size come first,
// so that the sweep's time budget never skips them.
struct Timed { const char* routine; std::vector<int> sizes; };
const Timed timed[] = {
    {"dpotrf", {4096}}, {"dgeqrf", {4096}}, {"dormqr", {4096}},
    {"dgemm", {std::begin(sizes), std::end(sizes)}}, {"zgemm", {std::begin(sizes), std::end(sizes)}},
    {"dgetrf", {std::begin(sizes), std::end(sizes)}}, {"dgesv", {std::begin(sizes), std::end(sizes)}},
    {"dtrsm", {std::begin(sizes), std::end(sizes)}},
    {"dsyev", {2048, 4096, 8192}}, {"dgesvd", {2048, 4096, 8192}}, {"dgesdd", {2048, 4096, 8192}},
};
constexpr double cpuCapSeconds = 60;   // a CPU call estimated longer than this is skipped
constexpr double pointSeconds = 1.5;    // repetitions per point stop after about this long

using Dgemm = void (*)(const char*, const char*, const int*, const int*, const int*, const double*, const double*,
                       const int*, const double*, const int*, const double*, double*, const int*);
using Zgemm = void (*)(const char*, const char*, const int*, const int*, const int*, const Z*, const Z*, const int*,
                       const Z*, const int*, const Z*, Z*, const int*);
using Dgetrf = void (*)(const int*, const int*, double*, const int*, int*, int*);
using Dgesv = void (*)(const int*, const int*, double*, const int*, int*, double*, const int*, int*);
using Dtrsm = void (*)(const char*, const char*, const char*, const char*, const int*, const int*, const double*,
                       const double*, const int*, double*, const int*);
using Dpotrf = void (*)(const char*, const int*, double*, const int*, int*);
using Dgeqrf = void (*)(const int*, const int*, double*, const int*, double*, double*, const int*, int*);
using Dormqr = void (*)(const char*, const char*, const int*, const int*, const int*, const double*, const int*,
                        const double*, double*, const int*, double*, const int*, int*);
using Dsyev = void (*)(const char*, const char*, const int*, double*, const int*, double*, double*, const int*, int*);
using Dgesvd = void (*)(const char*, const char*, const int*, const int*, double*, const int*, double*, double*,
                        const int*, double*, const int*, double*, const int*, int*);
using Dgesdd = void (*)(const char*, const int*, const int*, double*, const int*, double*, double*, const int*,
                        double*, const int*, double*, const int*, int*, int*);

// One implementation of the routines, Fortran style (link library, OpenBLAS, NVBLAS).
struct Host {
    Dgemm dgemm; Zgemm zgemm; Dgetrf dgetrf; Dgesv dgesv; Dtrsm dtrsm; Dpotrf dpotrf; Dgeqrf dgeqrf; Dormqr dormqr;
    Dsyev dsyev; Dgesvd dgesvd; Dgesdd dgesdd;
};
Host hostFrom(void* handle) {
    auto get = [&](const char* name) {
        void* f = dlsym(handle, name);
        if (f == nullptr) { std::fprintf(stderr, "gpu_bench: no %s: %s\n", name, dlerror()); std::exit(1); }
        return f;
    };
    return {reinterpret_cast<Dgemm>(get("dgemm_")), reinterpret_cast<Zgemm>(get("zgemm_")),
            reinterpret_cast<Dgetrf>(get("dgetrf_")), reinterpret_cast<Dgesv>(get("dgesv_")),
            reinterpret_cast<Dtrsm>(get("dtrsm_")), reinterpret_cast<Dpotrf>(get("dpotrf_")),
            reinterpret_cast<Dgeqrf>(get("dgeqrf_")), reinterpret_cast<Dormqr>(get("dormqr_")),
            reinterpret_cast<Dsyev>(get("dsyev_")), reinterpret_cast<Dgesvd>(get("dgesvd_")),
            reinterpret_cast<Dgesdd>(get("dgesdd_"))};
}

double flops(const std::string& routine, double n) {
    if (routine == "dgemm") return 2 * n * n * n;
    if (routine == "zgemm") return 8 * n * n * n;
    if (routine == "dgetrf") return 2.0 / 3 * n * n * n;
    if (routine == "dgesv") return 2.0 / 3 * n * n * n + 2 * n * n;
    if (routine == "dpotrf") return 1.0 / 3 * n * n * n;
    if (routine == "dgeqrf") return 4.0 / 3 * n * n * n;
    if (routine == "dormqr") return 2.0 * n * n * n;  // m = n = k
    // Nominal counts of the decompositions with vectors (their iterations vary).
    if (routine == "dsyev") return 9.0 * n * n * n;
    if (routine == "dgesvd" || routine == "dgesdd") return 22.0 * n * n * n;
    return n * n * n;  // dtrsm, m = n
}

// The problem of one size: inputs made once, restored before each call. dpotrf
// reads the lower triangle of a, diagonally dominant and so positive definite
// (dtrsm's triangle is too, so that its solution stays bounded);
// dormqr applies the Q of OpenBLAS's QR factors of a (made by factor) to c.
struct Problem {
    int n;
    std::vector<double> a, b, c, a0, c0, tau, work;
    std::vector<Z> za, zb, zc;
    std::vector<int> ipiv, iwork;
    Problem(const std::string& routine, int size) : n(size), tau(size), ipiv(size) {
        if (routine == "dgeqrf" || routine == "dormqr") work.resize(std::size_t(size) * 256);
        const std::size_t nn = std::size_t(n) * n;
        auto fill = [&](std::vector<double>& v, std::size_t count, unsigned seed, bool diagonal) {
            v.resize(count);
            for (std::size_t i = 0; i < count; ++i) {
                seed = seed * 1664525u + 1013904223u;
                v[i] = double(seed >> 9) / double(1u << 23) - 0.5;
            }
            if (diagonal)
                for (int i = 0; i < n; ++i) v[i + std::size_t(i) * n] += n;
        };
        if (routine == "zgemm") {
            for (auto* v : {&za, &zb, &zc}) v->assign(nn, Z(0.5, -0.25));
            for (std::size_t i = 0; i < nn; i += 7) za[i] = Z(double(i % 13) / 13, 0.1);
            return;
        }
        const bool square = routine != "dgesv";
        fill(a, nn, 1, routine == "dpotrf" || routine == "dtrsm");  // general elsewhere: getrf swaps rows
        fill(b, square ? nn : std::size_t(n), 2, false);  // dgesv: one right-hand side
        if (routine == "dgemm") fill(c, nn, 3, false);
        a0 = a;
        c0 = routine == "dgemm" ? c : b;
        if (decomposition(routine)) c.resize(nn);  // b and c hold the vectors, tau the values
    }
    static bool decomposition(const std::string& routine) {
        return routine == "dsyev" || routine == "dgesvd" || routine == "dgesdd";
    }
    // The decompositions' workspace, as OpenBLAS's query asks for it.
    void query(const Host& h, const std::string& routine) {
        double size = 1;
        const int none = -1;
        int info = 0;
        iwork.resize(8 * std::size_t(n));
        if (routine == "dsyev") h.dsyev("V", "L", &n, a.data(), &n, tau.data(), &size, &none, &info);
        if (routine == "dgesvd")
            h.dgesvd("S", "S", &n, &n, a.data(), &n, tau.data(), b.data(), &n, c.data(), &n, &size, &none, &info);
        if (routine == "dgesdd")
            h.dgesdd("S", &n, &n, a.data(), &n, tau.data(), b.data(), &n, c.data(), &n, &size, &none, iwork.data(), &info);
        work.resize(std::size_t(size) + 1);
    }
    void factor(const Host& h) {
        const int lwork = int(work.size());
        int info = 0;
        h.dgeqrf(&n, &n, a.data(), &n, tau.data(), work.data(), &lwork, &info);
    }
    void restore(const std::string& routine) {
        if (routine == "dgetrf" || routine == "dgesv" || routine == "dpotrf" || routine == "dgeqrf" ||
            decomposition(routine))
            a = a0;
        if (routine == "dgesv" || routine == "dtrsm" || routine == "dormqr") b = c0;
        if (routine == "dgemm") c = c0;
        if (routine == "zgemm") std::fill(zc.begin(), zc.end(), Z(0.5, -0.25));
    }
};

// ---- Checks, in O(n^2): products with a vector x of the result and of the problem
// it came from, as LAPACK's tests measure: the largest element of the residual over
// n eps ||A|| ||x|| (infinity norms) must stay under checkBound; orthonormal
// vectors must keep ||x||_2 within the same bound.
constexpr double eps = 1.1e-16, checkBound = 30;
// y = M x for the n x n matrix M: shape 'G' all of it, 'T' its transpose, 'L' its
// lower triangle, 'l' that with a unit diagonal, 'U' its upper triangle, 'R' the
// transpose of its lower triangle, 'S' the symmetric matrix of its lower triangle.
template <class T> std::vector<T> mul(const T* m, int n, const std::vector<T>& x, char shape) {
    std::vector<T> y(n, T(0));
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i) {
            const T e = m[i + std::size_t(j) * n];
            const bool lower = i >= j, upper = i <= j;
            if (shape == 'G' || (shape == 'L' && lower) || (shape == 'U' && upper) || (shape == 'l' && i > j)) y[i] += e * x[j];
            if (shape == 'l' && i == j) y[i] += x[j];
            if (shape == 'T' || (shape == 'R' && lower) || (shape == 'S' && i > j)) y[j] += e * x[i];
            if (shape == 'S' && lower) y[i] += e * x[j];
        }
    return y;
}
template <class T> double largest(const std::vector<T>& v) {
    double m = 0;
    for (const T& e : v) m = std::max(m, double(std::abs(e)));
    return m;
}
template <class T> double norm(const T* m, int n) {  // infinity norm of all of it
    std::vector<double> rows(n, 0.0);
    for (std::size_t k = 0; k < std::size_t(n) * n; ++k) rows[k % n] += std::abs(m[k]);
    return largest(rows);
}
double twoNorm(const std::vector<double>& v) {
    double s = 0;
    for (double e : v) s += e * e;
    return std::sqrt(s);
}
// y = Q y, Q from geqrf's reflectors below the diagonal of f and tau.
void applyQ(const double* f, const double* tau, int n, std::vector<double>& y) {
    for (int i = n - 1; i >= 0; --i) {
        const double* v = f + std::size_t(i) * n;
        double dot = y[i];
        for (int l = i + 1; l < n; ++l) dot += v[l] * y[l];
        y[i] -= tau[i] * dot;
        for (int l = i + 1; l < n; ++l) y[l] -= tau[i] * dot * v[l];
    }
}
template <class T> std::vector<T> minus(std::vector<T> a, const std::vector<T>& b) {
    for (std::size_t i = 0; i < a.size(); ++i) a[i] -= b[i];
    return a;
}

// The check's ratio for the result that p holds now (the inputs a0, c0 kept).
double check(const std::string& routine, const Problem& p) {
    const int n = p.n;
    std::vector<double> x(n);
    for (int i = 0; i < n; ++i) x[i] = std::cos(i + 1.0);
    const double xn = largest(x), scale = n * eps;
    const double* a = p.a.data();
    if (routine == "zgemm") {
        std::vector<Z> zx(x.begin(), x.end()), c0(p.zc.size(), Z(0.5, -0.25));
        auto want = mul(p.za.data(), n, mul(p.zb.data(), n, zx, 'G'), 'G'), c0x = mul(c0.data(), n, zx, 'G');
        for (int i = 0; i < n; ++i) want[i] += 0.5 * c0x[i];
        return largest(minus(mul(p.zc.data(), n, zx, 'G'), want)) /
               (scale * (norm(p.za.data(), n) * norm(p.zb.data(), n) + 0.5 * norm(c0.data(), n)) * xn);
    }
    if (routine == "dgemm") {
        auto want = mul(a, n, mul(p.b.data(), n, x, 'G'), 'G'), c0x = mul(p.c0.data(), n, x, 'G');
        for (int i = 0; i < n; ++i) want[i] += 0.5 * c0x[i];
        return largest(minus(mul(p.c.data(), n, x, 'G'), want)) /
               (scale * (norm(a, n) * norm(p.b.data(), n) + 0.5 * norm(p.c0.data(), n)) * xn);
    }
    const double a0n = norm(p.a0.data(), n);
    if (routine == "dgesv") {  // A0 x = b0, x the solution
        return largest(minus(mul(p.a0.data(), n, p.b, 'G'), p.c0)) / (scale * a0n * largest(p.b));
    }
    if (routine == "dtrsm") {  // L X = B0
        const auto xx = mul(p.b.data(), n, x, 'G');
        return largest(minus(mul(a, n, xx, 'L'), mul(p.c0.data(), n, x, 'G'))) / (scale * norm(a, n) * largest(xx));
    }
    if (routine == "dormqr") {  // Q (Q^T C0) = C0
        auto y = mul(p.b.data(), n, x, 'G');
        applyQ(a, p.tau.data(), n, y);
        return largest(minus(y, mul(p.c0.data(), n, x, 'G'))) / (scale * norm(p.c0.data(), n) * xn);
    }
    std::vector<double> y;
    double orthonormal = 0;
    if (routine == "dgetrf") {  // P L U = A0
        y = mul(a, n, mul(a, n, x, 'U'), 'l');
        for (int i = n - 1; i >= 0; --i) std::swap(y[i], y[p.ipiv[i] - 1]);
        y = minus(y, mul(p.a0.data(), n, x, 'G'));
    } else if (routine == "dpotrf") {  // L L^T = A0
        y = minus(mul(a, n, mul(a, n, x, 'R'), 'L'), mul(p.a0.data(), n, x, 'S'));
    } else if (routine == "dgeqrf") {  // Q R = A0
        y = mul(a, n, x, 'U');
        applyQ(a, p.tau.data(), n, y);
        y = minus(y, mul(p.a0.data(), n, x, 'G'));
    } else {  // A0 V = V diag(w) (dsyev) or A0 V = U diag(s), V = VT^T
        const bool eigen = routine == "dsyev";
        const double* u = eigen ? a : p.b.data();
        const auto v = eigen ? mul(a, n, x, 'G') : mul(p.c.data(), n, x, 'T');
        std::vector<double> wx(n);
        for (int i = 0; i < n; ++i) wx[i] = p.tau[i] * x[i];
        y = minus(mul(p.a0.data(), n, v, eigen ? 'S' : 'G'), mul(u, n, wx, 'G'));
        orthonormal = std::max(std::abs(twoNorm(v) - twoNorm(x)), std::abs(twoNorm(mul(u, n, x, 'G')) - twoNorm(x))) /
                      (scale * twoNorm(x));
    }
    return std::max(largest(y) / (scale * a0n * xn), orthonormal);
}

void callHost(const Host& h, const std::string& routine, Problem& p) {
    const int n = p.n, one = 1, lwork = int(p.work.size());
    const double alpha = 1, beta = 0.5;
    int info = 0;
    if (routine == "dgemm") h.dgemm("N", "N", &n, &n, &n, &alpha, p.a.data(), &n, p.b.data(), &n, &beta, p.c.data(), &n);
    else if (routine == "zgemm") {
        const Z za(1, 0), zb(0.5, 0);
        h.zgemm("N", "N", &n, &n, &n, &za, p.za.data(), &n, p.zb.data(), &n, &zb, p.zc.data(), &n);
    } else if (routine == "dgetrf") h.dgetrf(&n, &n, p.a.data(), &n, p.ipiv.data(), &info);
    else if (routine == "dgesv") h.dgesv(&n, &one, p.a.data(), &n, p.ipiv.data(), p.b.data(), &n, &info);
    else if (routine == "dpotrf") h.dpotrf("L", &n, p.a.data(), &n, &info);
    else if (routine == "dgeqrf") h.dgeqrf(&n, &n, p.a.data(), &n, p.tau.data(), p.work.data(), &lwork, &info);
    else if (routine == "dormqr")
        h.dormqr("L", "T", &n, &n, &n, p.a.data(), &n, p.tau.data(), p.b.data(), &n, p.work.data(), &lwork, &info);
    else if (routine == "dsyev") h.dsyev("V", "L", &n, p.a.data(), &n, p.tau.data(), p.work.data(), &lwork, &info);
    else if (routine == "dgesvd")
        h.dgesvd("S", "S", &n, &n, p.a.data(), &n, p.tau.data(), p.b.data(), &n, p.c.data(), &n, p.work.data(), &lwork,
                 &info);
    else if (routine == "dgesdd")
        h.dgesdd("S", &n, &n, p.a.data(), &n, p.tau.data(), p.b.data(), &n, p.c.data(), &n, p.work.data(), &lwork,
                 p.iwork.data(), &info);
    else h.dtrsm("L", "L", "N", "N", &n, &n, &alpha, p.a.data(), &n, p.b.data(), &n);
}

// The same computation on data already on the GPU.
struct Device {
    cublasHandle_t blas = nullptr;
    cusolverDnHandle_t solver = nullptr;
    cudaStream_t stream = nullptr;
    void *a = nullptr, *b = nullptr, *c = nullptr, *a0 = nullptr, *b0 = nullptr, *tau = nullptr, *work = nullptr;
    int* ipiv = nullptr;
    int* info = nullptr;
    int n = 0, lwork = 0;
    std::size_t bytes = 0;
    bool ok = false;
    bool prepare(const std::string& routine, Problem& p) {
        release();
        n = p.n;
        const std::size_t element = routine == "zgemm" ? sizeof(Z) : sizeof(double);
        bytes = std::size_t(n) * n * element;
        if (blas == nullptr) {
            cudaStreamCreate(&stream);
            cublasCreate(&blas);
            cublasSetStream(blas, stream);
            cusolverDnCreate(&solver);
            cusolverDnSetStream(solver, stream);
        }
        // The largest workspace any of the routines asks for at this size.
        int sizes[6] = {};
        cusolverDnDgetrf_bufferSize(solver, n, n, nullptr, n, &sizes[0]);
        cusolverDnDpotrf_bufferSize(solver, CUBLAS_FILL_MODE_LOWER, n, nullptr, n, &sizes[1]);
        cusolverDnDgeqrf_bufferSize(solver, n, n, nullptr, n, &sizes[2]);
        cusolverDnDormqr_bufferSize(solver, CUBLAS_SIDE_LEFT, CUBLAS_OP_T, n, n, n, nullptr, n, nullptr, nullptr, n,
                                    &sizes[3]);
        cusolverDnDsyevd_bufferSize(solver, CUSOLVER_EIG_MODE_VECTOR, CUBLAS_FILL_MODE_LOWER, n, nullptr, n, nullptr,
                                    &sizes[4]);
        cusolverDnDgesvd_bufferSize(solver, n, n, &sizes[5]);
        lwork = std::max(1, *std::max_element(std::begin(sizes), std::end(sizes)));
        ok = cudaMalloc(&a, bytes) == cudaSuccess && cudaMalloc(&b, bytes) == cudaSuccess &&
             cudaMalloc(&c, bytes) == cudaSuccess && cudaMalloc(&a0, bytes) == cudaSuccess &&
             cudaMalloc(&b0, bytes) == cudaSuccess && cudaMalloc(&tau, n * sizeof(double)) == cudaSuccess &&
             cudaMalloc(&work, std::size_t(lwork) * sizeof(double)) == cudaSuccess &&
             cudaMalloc(&ipiv, n * sizeof(int)) == cudaSuccess && cudaMalloc(&info, sizeof(int)) == cudaSuccess;
        if (!ok) return false;
        p.restore(routine);
        transfer(routine, p, true);  // a0 and b0 keep a and the output among b and c, for restore
        cudaMemcpy(a0, a, bytes, cudaMemcpyDeviceToDevice);
        cudaMemcpy(b0, routine == "dgemm" || routine == "zgemm" ? c : b, bytes, cudaMemcpyDeviceToDevice);
        return true;
    }
    // What a user moves by hand around the call: its inputs in (dormqr's a: the
    // factors), its outputs and info out, in plain cudaMemcpy calls.
    void transfer(const std::string& r, Problem& p, bool in) {
        auto move = [&](void* device, void* host, std::size_t size) {
            if (in) cudaMemcpy(device, host, size, cudaMemcpyHostToDevice);
            else cudaMemcpy(host, device, size, cudaMemcpyDeviceToHost);
        };
        auto is = [&](std::initializer_list<const char*> names) {
            return std::any_of(names.begin(), names.end(), [&](const char* name) { return r == name; });
        };
        const std::size_t vector = n * sizeof(double);
        if (r == "zgemm") {
            if (in) move(a, p.za.data(), bytes), move(b, p.zb.data(), bytes);
            move(c, p.zc.data(), bytes);
            return;
        }
        if (in ? true : is({"dgetrf", "dgesv", "dpotrf", "dgeqrf", "dsyev"})) move(a, p.a.data(), bytes);
        if (in ? is({"dgemm", "dgesv", "dtrsm", "dormqr"}) : is({"dgesv", "dtrsm", "dormqr", "dgesvd"}))
            move(b, p.b.data(), p.b.size() * sizeof(double));
        if (in ? r == "dgemm" : is({"dgemm", "dgesvd"})) move(c, p.c.data(), bytes);
        if (in ? r == "dormqr" : is({"dgeqrf", "dsyev", "dgesvd"})) move(tau, p.tau.data(), vector);
        if (!in && is({"dgetrf", "dgesv"})) move(ipiv, p.ipiv.data(), n * sizeof(int));
        int hostInfo = 0;
        if (!in && !is({"dgemm", "dtrsm"})) move(info, &hostInfo, sizeof(int));
    }
    void restore(const std::string& routine) {
        if (routine == "dgetrf" || routine == "dgesv" || routine == "dpotrf" || routine == "dgeqrf" ||
            Problem::decomposition(routine))
            cudaMemcpyAsync(a, a0, bytes, cudaMemcpyDeviceToDevice, stream);
        if (routine == "dormqr" || routine == "dgesv" || routine == "dtrsm")
            cudaMemcpyAsync(b, b0, routine == "dgesv" ? n * sizeof(double) : bytes, cudaMemcpyDeviceToDevice, stream);
        if (routine == "dgemm" || routine == "zgemm") cudaMemcpyAsync(c, b0, bytes, cudaMemcpyDeviceToDevice, stream);
        cudaStreamSynchronize(stream);
    }
    void call(const std::string& routine) {
        const double alpha = 1, beta = 0.5;
        auto* A = static_cast<double*>(a); auto* B = static_cast<double*>(b); auto* C = static_cast<double*>(c);
        if (routine == "dgemm") cublasDgemm(blas, CUBLAS_OP_N, CUBLAS_OP_N, n, n, n, &alpha, A, n, B, n, &beta, C, n);
        else if (routine == "zgemm") {
            const cuDoubleComplex za{1, 0}, zb{0.5, 0};
            cublasZgemm(blas, CUBLAS_OP_N, CUBLAS_OP_N, n, n, n, &za, static_cast<cuDoubleComplex*>(a), n,
                        static_cast<cuDoubleComplex*>(b), n, &zb, static_cast<cuDoubleComplex*>(c), n);
        } else if (routine == "dgetrf") cusolverDnDgetrf(solver, n, n, A, n, static_cast<double*>(work), ipiv, info);
        else if (routine == "dpotrf")
            cusolverDnDpotrf(solver, CUBLAS_FILL_MODE_LOWER, n, A, n, static_cast<double*>(work), lwork, info);
        else if (routine == "dgeqrf")
            cusolverDnDgeqrf(solver, n, n, A, n, static_cast<double*>(tau), static_cast<double*>(work), lwork, info);
        else if (routine == "dormqr")
            cusolverDnDormqr(solver, CUBLAS_SIDE_LEFT, CUBLAS_OP_T, n, n, n, A, n, static_cast<double*>(tau), B, n,
                             static_cast<double*>(work), lwork, info);
        else if (routine == "dsyev")
            cusolverDnDsyevd(solver, CUSOLVER_EIG_MODE_VECTOR, CUBLAS_FILL_MODE_LOWER, n, A, n,
                             static_cast<double*>(tau), static_cast<double*>(work), lwork, info);
        else if (routine == "dgesvd")  // rwork: the unconverged superdiagonals, in the workspace's place of b0
            cusolverDnDgesvd(solver, 'S', 'S', n, n, A, n, static_cast<double*>(tau), B, n, C, n,
                             static_cast<double*>(work), lwork, static_cast<double*>(b0), info);
        else if (routine == "dgesv") {
            cusolverDnDgetrf(solver, n, n, A, n, static_cast<double*>(work), ipiv, info);
            cusolverDnDgetrs(solver, CUBLAS_OP_N, n, 1, A, n, ipiv, B, n, info);
        } else cublasDtrsm(blas, CUBLAS_SIDE_LEFT, CUBLAS_FILL_MODE_LOWER, CUBLAS_OP_N, CUBLAS_DIAG_NON_UNIT, n, n,
                           &alpha, A, n, B, n);
        cudaStreamSynchronize(stream);
    }
    void release() {
        for (void* p : {a, b, c, a0, b0, tau, work, static_cast<void*>(ipiv), static_cast<void*>(info)})
            if (p != nullptr) cudaFree(p);
        a = b = c = a0 = b0 = tau = work = nullptr;
        ipiv = info = nullptr;
    }
};

double seconds(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

// One point: a warm-up call (unless a single call is long), then repetitions up
// to about pointSeconds; the median.
struct Point { double median; int reps; };
Point measure(const std::function<void()>& restore, const std::function<void()>& call, double expected) {
    if (expected < 10) { restore(); call(); }
    std::vector<double> times;
    double spent = 0;
    while (times.empty() || (spent < pointSeconds && times.size() < 10)) {
        restore();
        const auto start = Clock::now();
        call();
        times.push_back(seconds(start));
        spent += times.back();
    }
    std::sort(times.begin(), times.end());
    return {times[times.size() / 2], int(times.size())};
}

void record(std::FILE* out, const std::string& routine, int n, const char* side, const Point& p, const char* note) {
    const double gflops = p.median > 0 ? flops(routine, n) / p.median / 1e9 : 0;
    std::fprintf(out, "%s,%d,%s,%.6g,%.1f,%d,%s\n", routine.c_str(), n, side, p.median, gflops, p.reps, note);
    std::fflush(out);
    std::fprintf(stderr, "%-7s %6d %-9s %10.4f s %9.1f GFLOP/s %s\n", routine.c_str(), n, side, p.median, gflops, note);
}

// Whether GPU_BENCH_ROUTINES (a comma-separated list; unset: all) names the routine.
bool selected(const std::string& routine) {
    const char* list = std::getenv("GPU_BENCH_ROUTINES");
    return list == nullptr || *list == '\0' || ("," + std::string(list) + ",").find("," + routine + ",") != std::string::npos;
}

// Whether the CUDA run-time finds a GPU; if not, says so.
bool gpuPresent() {
    int count = 0;
    if (cudaGetDeviceCount(&count) == cudaSuccess && count > 0) return true;
    std::fprintf(stderr, "gpu_bench: no GPU: nothing measured\n");
    return false;
}

// The link library's error lines (always written: to standard output, here sent to
// OUT.csv.link.log, or to VORN_DEBUG_LOG's file) that came since the last look: a
// GPU library that did not start, or a GPU call that failed and ran on the CPU.
struct LinkLog {
    std::string path;
    std::streamoff seen = 0;
    explicit LinkLog(const std::string& out) {
        const char* debugLog = std::getenv("VORN_DEBUG_LOG");
        const bool ownFile = debugLog == nullptr || *debugLog == '\0';
        path = ownFile ? out + ".link.log" : debugLog;
        if (ownFile && std::freopen(path.c_str(), "w", stdout) == nullptr) std::perror(path.c_str());
        std::ifstream in(path, std::ios::ate);
        seen = in ? std::streamoff(in.tellg()) : 0;
    }
    std::string newErrors() {
        std::ifstream in(path);
        in.seekg(seen);
        std::string line, first;
        while (std::getline(in, line))
            if (first.empty() && line.rfind("vorn error: ", 0) == 0) first = line;
        in.clear();
        in.seekg(0, std::ios::end);
        seen = in.tellg();
        return first;
    }
};

// A point's time, or none with the reason: a wrong result, or a call not on the GPU.
void recordChecked(std::FILE* out, const std::string& routine, int n, const char* side, const Point& point,
                   double ratio, const std::string& linkError = "") {
    char note[200];
    if (!linkError.empty()) std::snprintf(note, sizeof note, "not on the GPU: %s", linkError.c_str());
    else if (!(ratio <= checkBound)) std::snprintf(note, sizeof note, "wrong result: check %.3g over %g", ratio, checkBound);
    else std::snprintf(note, sizeof note, "check %.2g", ratio);
    const bool good = linkError.empty() && ratio <= checkBound;
    record(out, routine, n, side, good ? point : Point{0, point.reps}, note);
}

int run(const char* linkPath, const char* outPath, double budget) {
    if (!gpuPresent()) return 0;
    const auto begin = Clock::now();
    LinkLog linkLog(outPath);
    void* linkHandle = dlopen(linkPath, RTLD_NOW | RTLD_LOCAL);
    void* openblasHandle = dlopen("libopenblas.so.0", RTLD_NOW | RTLD_LOCAL);
    if (linkHandle == nullptr || openblasHandle == nullptr) {
        std::fprintf(stderr, "gpu_bench: %s\n", dlerror());
        return 1;
    }
    const Host link = hostFrom(linkHandle), openblas = hostFrom(openblasHandle);
    std::FILE* out = std::fopen(outPath, "w");
    std::fprintf(out, "routine,n,side,seconds,gflops,reps,note\n");

    // Fixed cost of a small GPU call: dgemm n = 64 through the link library, into
    // the CUDA library directly, and cuBLAS on device data.
    {
        Problem p("dgemm", 64);
        using VornDgemm = int (*)(char, char, int, int, int, double, const double*, int, const double*, int, double,
                                  double*, int);
        auto vorn = reinterpret_cast<VornDgemm>(dlsym(linkHandle, "vornDgemm"));
        if (vorn == nullptr) vorn = reinterpret_cast<VornDgemm>(dlsym(RTLD_DEFAULT, "vornDgemm"));
        auto many = [](const std::function<void()>& f) {
            for (int i = 0; i < 20; ++i) f();
            std::vector<double> t;
            for (int i = 0; i < 400; ++i) { auto s = Clock::now(); f(); t.push_back(seconds(s)); }
            std::sort(t.begin(), t.end());
            return Point{t[t.size() / 2], 400};
        };
        const Point linkPoint = many([&] { callHost(link, "dgemm", p); });
        const std::string linkError = linkLog.newErrors();
        if (!linkError.empty()) {
            std::fprintf(stderr, "gpu_bench: the link library's calls do not run on the GPU: %s\n", linkError.c_str());
            return 1;
        }
        record(out, "dgemm", 64, "link", linkPoint, "fixed cost");
        if (vorn != nullptr && vorn('N', 'N', 64, 64, 64, 1, p.a.data(), 64, p.b.data(), 64, 0.5, p.c.data(), 64) != 0)
            vorn = nullptr;  // a failing GPU library shows no time
        if (vorn != nullptr)
            record(out, "dgemm", 64, "vorn", many([&] { vorn('N', 'N', 64, 64, 64, 1, p.a.data(), 64, p.b.data(), 64, 0.5, p.c.data(), 64); }), "fixed cost");
        Device d;
        if (d.prepare("dgemm", p)) record(out, "dgemm", 64, "device", many([&] { d.call("dgemm"); }), "fixed cost");
        d.release();
        record(out, "dgemm", 64, "openblas", many([&] { callHost(openblas, "dgemm", p); }), "fixed cost");
    }

    Device device;
    for (const Timed& t : timed) {
        const std::string routine = t.routine;
        if (!selected(routine)) continue;
        double cpuPrevious = 0, gpuPrevious = 0;
        for (int n : t.sizes) {
            // A point whose GPU calls, estimated from the size before (x8 a call, a
            // warm-up and one repetition each for link and device), would end past
            // the budget is skipped too: the decompositions take minutes at 8192.
            if (seconds(begin) + 4 * 8 * gpuPrevious > budget) {
                record(out, routine, n, "all", {0, 0}, "skipped: time budget");
                continue;
            }
            Problem p(routine, n);
            if (routine == "dormqr") p.factor(openblas);
            if (Problem::decomposition(routine)) p.query(openblas, routine);
            const double expectedGpu = flops(routine, n) / 5e12 + 3.0 * n * n * 16 / 5e9;
            const Point linkPoint =
                measure([&] { p.restore(routine); }, [&] { callHost(link, routine, p); }, expectedGpu);
            recordChecked(out, routine, n, "link", linkPoint, check(routine, p), linkLog.newErrors());
            gpuPrevious = linkPoint.median;
            if (routine == "dgesdd") {
                record(out, routine, n, "hand", {0, 0}, "none: cuSOLVER has no gesdd");
                record(out, routine, n, "device", {0, 0}, "none: cuSOLVER has no gesdd");
            } else if (device.prepare(routine, p)) {
                const Point floor = measure([&] { device.restore(routine); }, [&] { device.call(routine); }, 0);
                device.transfer(routine, p, false);
                recordChecked(out, routine, n, "device", floor, check(routine, p));
                const Point hand = measure([&] { p.restore(routine); }, [&] {
                    device.transfer(routine, p, true);
                    device.call(routine);
                    device.transfer(routine, p, false);
                }, expectedGpu);
                recordChecked(out, routine, n, "hand", hand, check(routine, p));
            } else {
                record(out, routine, n, "hand", {0, 0}, "skipped: GPU memory");
                record(out, routine, n, "device", {0, 0}, "skipped: GPU memory");
            }
            device.release();
            const double expectedCpu = cpuPrevious * 8;
            if (expectedCpu > cpuCapSeconds) {
                char note[64];
                std::snprintf(note, sizeof note, "skipped: estimated %.0f s", expectedCpu);
                record(out, routine, n, "openblas", {0, 0}, note);
                continue;
            }
            const Point cpu = measure([&] { p.restore(routine); }, [&] { callHost(openblas, routine, p); }, expectedCpu);
            recordChecked(out, routine, n, "openblas", cpu, check(routine, p));
            cpuPrevious = cpu.median;
        }
    }
    std::fclose(out);
    return 0;
}

// Without a GPU: the checks on OpenBLAS's results at n = 96 (within the bound)
// and on each result with one element spoiled (far over it).
int selfCheck() {
    void* handle = dlopen("libopenblas.so.0", RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) { std::fprintf(stderr, "gpu_bench: %s\n", dlerror()); return 1; }
    const Host openblas = hostFrom(handle);
    int wrong = 0;
    for (const Timed& t : timed) {
        const std::string routine = t.routine;
        Problem p(routine, 96);
        if (routine == "dormqr") p.factor(openblas);
        if (Problem::decomposition(routine)) p.query(openblas, routine);
        p.restore(routine);
        callHost(openblas, routine, p);
        const double good = check(routine, p);
        if (routine == "zgemm") p.zc[5] += 1e-3;
        else (routine == "dgemm" ? p.c : routine == "dgetrf" || routine == "dpotrf" || routine == "dgeqrf" || routine == "dsyev" ? p.a : p.b)[5] += 1e-3;
        const double spoiled = check(routine, p);
        wrong += !(good <= checkBound) + !(spoiled > checkBound);
        std::printf("%-7s check %.3g, spoiled %.3g\n", routine.c_str(), good, spoiled);
    }
    return wrong != 0;
}

// NVBLAS is preloaded: dgemm_ in the global scope is its own.
int runNvblas(const char* outPath, double budget) {
    if (!gpuPresent()) return 0;
    const auto begin = Clock::now();
    auto dgemm = reinterpret_cast<Dgemm>(dlsym(RTLD_DEFAULT, "dgemm_"));
    if (dgemm == nullptr) {
        std::fprintf(stderr, "gpu_bench: no dgemm_ in the process: is libnvblas.so preloaded?\n");
        return 1;
    }
    Host nvblas{};
    nvblas.dgemm = dgemm;
    std::FILE* out = std::fopen(outPath, "w");
    std::fprintf(out, "routine,n,side,seconds,gflops,reps,note\n");
    for (int n : sizes) {
        if (seconds(begin) > budget) break;
        Problem p("dgemm", n);
        const Point point = measure([&] { p.restore("dgemm"); }, [&] { callHost(nvblas, "dgemm", p); }, 0);
        recordChecked(out, "dgemm", n, "nvblas", point, check("dgemm", p));
    }
    std::fclose(out);
    return 0;
}

// The CSV files as one table per routine (seconds, and the link library's time
// over the device-resident time), then the break-even sizes: the smallest n from
// which the GPU through the link library beats OpenBLAS at every larger size measured.
int report(int count, char** paths) {
    std::map<std::string, std::map<int, std::map<std::string, double>>> t;
    std::map<std::string, std::string> notes;
    for (int i = 0; i < count; ++i) {
        std::ifstream in(paths[i]);
        std::string line;
        std::getline(in, line);
        while (std::getline(in, line)) {
            std::stringstream fields(line);
            std::string routine, n, side, secs, gflops, reps, note;
            std::getline(fields, routine, ','); std::getline(fields, n, ','); std::getline(fields, side, ',');
            std::getline(fields, secs, ','); std::getline(fields, gflops, ','); std::getline(fields, reps, ',');
            std::getline(fields, note);
            if (note == "fixed cost") { t["fixed"][std::stoi(n)][side] = std::stod(secs); continue; }
            if (std::stod(secs) > 0) t[routine][std::stoi(n)][side] = std::stod(secs);
            if (!note.empty()) notes[routine + " " + n + " " + side] = note;
        }
    }
    std::printf("### Fixed cost of a small GPU call (dgemm, n = 64), median of 400\n\n| Path | time |\n|---|---|\n");
    for (const auto& [side, secs] : t["fixed"][64]) std::printf("| %s | %.1f us |\n", side.c_str(), secs * 1e6);
    std::printf("\n### Time per call (seconds, median)\n\n");
    std::string breakEven;
    for (const Timed& timedRoutine : timed) {
        const char* routine = timedRoutine.routine;
        std::printf("| %s n | link (CUDA) | by hand (copy, call, copy) | device cuBLAS/cuSOLVER | link / hand | link / device | OpenBLAS | nvblas |\n"
                    "|---|---|---|---|---|---|---|---|\n", routine);
        int from = 0;
        for (int n : timedRoutine.sizes) {
            auto& row = t[routine][n];
            auto cell = [&](const char* side) {
                char text[64];
                if (row.count(side)) std::snprintf(text, sizeof text, "%.4g", row[side]);
                else if (notes.count(std::string(routine) + " " + std::to_string(n) + " " + side))
                    std::snprintf(text, sizeof text, "%s", notes[std::string(routine) + " " + std::to_string(n) + " " + side].c_str());
                else std::snprintf(text, sizeof text, "-");
                return std::string(text);
            };
            auto ratio = [&](const char* over) {
                char text[32] = "-";
                if (row.count("link") && row.count(over)) std::snprintf(text, sizeof text, "%.2f", row["link"] / row[over]);
                return std::string(text);
            };
            std::printf("| %d | %s | %s | %s | %s | %s | %s | %s |\n", n, cell("link").c_str(), cell("hand").c_str(),
                        cell("device").c_str(), ratio("hand").c_str(), ratio("device").c_str(), cell("openblas").c_str(),
                        cell("nvblas").c_str());
            if (row.count("link") && row.count("openblas")) {
                if (row["link"] < row["openblas"]) { if (from == 0) from = n; }
                else from = 0;
            }
        }
        std::printf("\n");
        breakEven += "| " + std::string(routine) + " | " + (from ? "n = " + std::to_string(from) : "not reached") + " |\n";
    }
    std::printf("### Break-even (GPU through the link library faster than OpenBLAS from this size on)\n\n| Routine | break-even |\n|---|---|\n%s", breakEven.c_str());
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "run" && argc >= 4) return run(argv[2], argv[3], argc > 4 ? std::atof(argv[4]) : 420);
    if (mode == "nvblas" && argc >= 3) return runNvblas(argv[2], argc > 3 ? std::atof(argv[3]) : 60);
    if (mode == "report" && argc >= 3) return report(argc - 2, argv + 2);
    if (mode == "check") return selfCheck();
    std::fprintf(stderr, "usage: gpu_bench run LINK_LIBRARY OUT.csv [BUDGET_S] | nvblas OUT.csv [BUDGET_S] | report CSV...\n");
    return 2;
}
