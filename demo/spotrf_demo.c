/* A small application that knows nothing of GPUs: it factors two symmetric
 * positive definite matrices with spotrf, one below the routine's crossover (1024)
 * and one above it, and checks each factor by rebuilding the matrix from it.
 * Linked against the link library alone; run it with VORN_VERBOSE=1 to see where
 * each call went and why. */
#include <math.h>
#include <stdio.h>
#include <stdlib.h>

void spotrf(const char* uplo, const int* n, float* a, const int* lda, int* info);

/* A symmetric, diagonally dominant matrix with a positive diagonal: SPD. */
static void fill_spd(float* a, int n) {
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < n; ++i)
            a[i + (size_t)j * n] = (i == j) ? (float)n : 1.0f / (float)(1 + abs(i - j));
}

/* Largest |(L L^T - A)(i,j)| over the lower triangle, relative to n. */
static double factor_error(const float* l, const float* a, int n) {
    double worst = 0.0;
    for (int j = 0; j < n; ++j)
        for (int i = j; i < n; ++i) {
            double sum = 0.0;
            for (int k = 0; k <= j; ++k) sum += (double)l[i + (size_t)k * n] * l[j + (size_t)k * n];
            double error = fabs(sum - a[i + (size_t)j * n]) / n;
            if (error > worst) worst = error;
        }
    return worst;
}

static int run(int n) {
    float* a = malloc(sizeof(float) * (size_t)n * n);
    float* original = malloc(sizeof(float) * (size_t)n * n);
    if (a == NULL || original == NULL) return 1;
    fill_spd(a, n);
    fill_spd(original, n);
    const char uplo = 'L';
    int info = -99;
    printf("demo: spotrf with n = %d\n", n);
    spotrf(&uplo, &n, a, &n, &info);
    const double error = factor_error(a, original, n);
    const int ok = info == 0 && error < 1e-5;
    printf("demo: n = %d: info = %d, max |L*L^T - A| / n = %.2e: %s\n", n, info, error,
           ok ? "correct" : "WRONG");
    free(a);
    free(original);
    return ok ? 0 : 1;
}

int main(void) {
    setvbuf(stdout, NULL, _IONBF, 0); /* keep our lines in order with the library's */
    int failures = run(200) + run(1100);
    printf("demo: %s\n", failures == 0 ? "all results checked and correct" : "FAILED");
    return failures == 0 ? 0 : 1;
}
