/* Links against the installed link library and factors a 3x3 symmetric positive
 * definite matrix with dpotrf: prints "dpotrf ok" when the factor is right. */
#include <math.h>
#include <stdio.h>

void dpotrf(const char* uplo, const int* n, double* a, const int* lda, int* info);

int main(void) {
    double a[9] = {4, 2, 2, 2, 5, 3, 2, 3, 6};
    const double l[9] = {2, 1, 1, 0, 2, 1, 0, 0, 2};  /* lower factor, by columns */
    const int n = 3;
    int info = -1;
    dpotrf("L", &n, a, &n, &info);
    for (int j = 0; j < 3; ++j)
        for (int i = j; i < 3; ++i)
            if (fabs(a[i + 3 * j] - l[i + 3 * j]) > 1e-12) info = 1000;
    printf(info == 0 ? "dpotrf ok\n" : "dpotrf wrong (info %d)\n", info);
    return info != 0;
}
