// Level 1 of the CBLAS interface, in the header's order: each function calls the
// link library's routine with the addresses of its arguments. The integer
// results of i?amax come back 0-based, as CBLAS counts.
#include <cmath>

#include "cblas_frame.h"

using namespace cblas;

namespace {
CBLAS_INDEX zeroBased(int index) { return index > 0 ? CBLAS_INDEX(index - 1) : 0; }
}  // namespace

extern "C" {

CBLAS_EXPORT double cblas_dcabs1(const void* z) { return dcabs1_(z); }
// scabs1 is not in the routine list (it came to the BLAS after LAPACK 3.3): |re| + |im| here.
CBLAS_EXPORT float cblas_scabs1(const void* c) {
    const auto* value = static_cast<const float*>(c);
    return std::fabs(value[0]) + std::fabs(value[1]);
}

CBLAS_EXPORT float cblas_sdsdot(const CBLAS_INT N, const float alpha, const float* X, const CBLAS_INT incX,
                                const float* Y, const CBLAS_INT incY) {
    return sdsdot_(&N, &alpha, X, &incX, Y, &incY);
}
CBLAS_EXPORT double cblas_dsdot(const CBLAS_INT N, const float* X, const CBLAS_INT incX, const float* Y,
                                const CBLAS_INT incY) {
    return dsdot_(&N, X, &incX, Y, &incY);
}
CBLAS_EXPORT float cblas_sdot(const CBLAS_INT N, const float* X, const CBLAS_INT incX, const float* Y,
                              const CBLAS_INT incY) {
    return sdot_(&N, X, &incX, Y, &incY);
}
CBLAS_EXPORT double cblas_ddot(const CBLAS_INT N, const double* X, const CBLAS_INT incX, const double* Y,
                               const CBLAS_INT incY) {
    return ddot_(&N, X, &incX, Y, &incY);
}

CBLAS_EXPORT void cblas_cdotu_sub(const CBLAS_INT N, const void* X, const CBLAS_INT incX, const void* Y,
                                  const CBLAS_INT incY, void* dotu) {
    cdotu(dotu, &N, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_cdotc_sub(const CBLAS_INT N, const void* X, const CBLAS_INT incX, const void* Y,
                                  const CBLAS_INT incY, void* dotc) {
    cdotc(dotc, &N, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_zdotu_sub(const CBLAS_INT N, const void* X, const CBLAS_INT incX, const void* Y,
                                  const CBLAS_INT incY, void* dotu) {
    zdotu(dotu, &N, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_zdotc_sub(const CBLAS_INT N, const void* X, const CBLAS_INT incX, const void* Y,
                                  const CBLAS_INT incY, void* dotc) {
    zdotc(dotc, &N, X, &incX, Y, &incY);
}

CBLAS_EXPORT float cblas_snrm2(const CBLAS_INT N, const float* X, const CBLAS_INT incX) { return snrm2_(&N, X, &incX); }
CBLAS_EXPORT float cblas_sasum(const CBLAS_INT N, const float* X, const CBLAS_INT incX) { return sasum_(&N, X, &incX); }
CBLAS_EXPORT double cblas_dnrm2(const CBLAS_INT N, const double* X, const CBLAS_INT incX) {
    return dnrm2_(&N, X, &incX);
}
CBLAS_EXPORT double cblas_dasum(const CBLAS_INT N, const double* X, const CBLAS_INT incX) {
    return dasum_(&N, X, &incX);
}
CBLAS_EXPORT float cblas_scnrm2(const CBLAS_INT N, const void* X, const CBLAS_INT incX) {
    return scnrm2_(&N, X, &incX);
}
CBLAS_EXPORT float cblas_scasum(const CBLAS_INT N, const void* X, const CBLAS_INT incX) {
    return scasum_(&N, X, &incX);
}
CBLAS_EXPORT double cblas_dznrm2(const CBLAS_INT N, const void* X, const CBLAS_INT incX) {
    return dznrm2_(&N, X, &incX);
}
CBLAS_EXPORT double cblas_dzasum(const CBLAS_INT N, const void* X, const CBLAS_INT incX) {
    return dzasum_(&N, X, &incX);
}

CBLAS_EXPORT CBLAS_INDEX cblas_isamax(const CBLAS_INT N, const float* X, const CBLAS_INT incX) {
    return zeroBased(isamax_(&N, X, &incX));
}
CBLAS_EXPORT CBLAS_INDEX cblas_idamax(const CBLAS_INT N, const double* X, const CBLAS_INT incX) {
    return zeroBased(idamax_(&N, X, &incX));
}
CBLAS_EXPORT CBLAS_INDEX cblas_icamax(const CBLAS_INT N, const void* X, const CBLAS_INT incX) {
    return zeroBased(icamax_(&N, X, &incX));
}
CBLAS_EXPORT CBLAS_INDEX cblas_izamax(const CBLAS_INT N, const void* X, const CBLAS_INT incX) {
    return zeroBased(izamax_(&N, X, &incX));
}

CBLAS_EXPORT void cblas_sswap(const CBLAS_INT N, float* X, const CBLAS_INT incX, float* Y, const CBLAS_INT incY) {
    sswap_(&N, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_scopy(const CBLAS_INT N, const float* X, const CBLAS_INT incX, float* Y, const CBLAS_INT incY) {
    scopy_(&N, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_saxpy(const CBLAS_INT N, const float alpha, const float* X, const CBLAS_INT incX, float* Y,
                              const CBLAS_INT incY) {
    saxpy_(&N, &alpha, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_dswap(const CBLAS_INT N, double* X, const CBLAS_INT incX, double* Y, const CBLAS_INT incY) {
    dswap_(&N, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_dcopy(const CBLAS_INT N, const double* X, const CBLAS_INT incX, double* Y,
                              const CBLAS_INT incY) {
    dcopy_(&N, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_daxpy(const CBLAS_INT N, const double alpha, const double* X, const CBLAS_INT incX, double* Y,
                              const CBLAS_INT incY) {
    daxpy_(&N, &alpha, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_cswap(const CBLAS_INT N, void* X, const CBLAS_INT incX, void* Y, const CBLAS_INT incY) {
    cswap_(&N, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_ccopy(const CBLAS_INT N, const void* X, const CBLAS_INT incX, void* Y, const CBLAS_INT incY) {
    ccopy_(&N, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_caxpy(const CBLAS_INT N, const void* alpha, const void* X, const CBLAS_INT incX, void* Y,
                              const CBLAS_INT incY) {
    caxpy_(&N, alpha, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_zswap(const CBLAS_INT N, void* X, const CBLAS_INT incX, void* Y, const CBLAS_INT incY) {
    zswap_(&N, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_zcopy(const CBLAS_INT N, const void* X, const CBLAS_INT incX, void* Y, const CBLAS_INT incY) {
    zcopy_(&N, X, &incX, Y, &incY);
}
CBLAS_EXPORT void cblas_zaxpy(const CBLAS_INT N, const void* alpha, const void* X, const CBLAS_INT incX, void* Y,
                              const CBLAS_INT incY) {
    zaxpy_(&N, alpha, X, &incX, Y, &incY);
}

CBLAS_EXPORT void cblas_srotmg(float* d1, float* d2, float* b1, const float b2, float* P) {
    srotmg_(d1, d2, b1, &b2, P);
}
CBLAS_EXPORT void cblas_srotm(const CBLAS_INT N, float* X, const CBLAS_INT incX, float* Y, const CBLAS_INT incY,
                              const float* P) {
    srotm_(&N, X, &incX, Y, &incY, P);
}
CBLAS_EXPORT void cblas_drotmg(double* d1, double* d2, double* b1, const double b2, double* P) {
    drotmg_(d1, d2, b1, &b2, P);
}
CBLAS_EXPORT void cblas_drotm(const CBLAS_INT N, double* X, const CBLAS_INT incX, double* Y, const CBLAS_INT incY,
                              const double* P) {
    drotm_(&N, X, &incX, Y, &incY, P);
}

CBLAS_EXPORT void cblas_sscal(const CBLAS_INT N, const float alpha, float* X, const CBLAS_INT incX) {
    sscal_(&N, &alpha, X, &incX);
}
CBLAS_EXPORT void cblas_dscal(const CBLAS_INT N, const double alpha, double* X, const CBLAS_INT incX) {
    dscal_(&N, &alpha, X, &incX);
}
CBLAS_EXPORT void cblas_cscal(const CBLAS_INT N, const void* alpha, void* X, const CBLAS_INT incX) {
    cscal_(&N, alpha, X, &incX);
}
CBLAS_EXPORT void cblas_zscal(const CBLAS_INT N, const void* alpha, void* X, const CBLAS_INT incX) {
    zscal_(&N, alpha, X, &incX);
}
CBLAS_EXPORT void cblas_csscal(const CBLAS_INT N, const float alpha, void* X, const CBLAS_INT incX) {
    csscal_(&N, &alpha, X, &incX);
}
CBLAS_EXPORT void cblas_zdscal(const CBLAS_INT N, const double alpha, void* X, const CBLAS_INT incX) {
    zdscal_(&N, &alpha, X, &incX);
}

CBLAS_EXPORT void cblas_srotg(float* a, float* b, float* c, float* s) { srotg_(a, b, c, s); }
CBLAS_EXPORT void cblas_drotg(double* a, double* b, double* c, double* s) { drotg_(a, b, c, s); }
CBLAS_EXPORT void cblas_crotg(void* a, void* b, float* c, void* s) { crotg_(a, b, c, s); }
CBLAS_EXPORT void cblas_zrotg(void* a, void* b, double* c, void* s) { zrotg_(a, b, c, s); }

CBLAS_EXPORT void cblas_srot(const CBLAS_INT N, float* X, const CBLAS_INT incX, float* Y, const CBLAS_INT incY,
                             const float c, const float s) {
    srot_(&N, X, &incX, Y, &incY, &c, &s);
}
CBLAS_EXPORT void cblas_drot(const CBLAS_INT N, double* X, const CBLAS_INT incX, double* Y, const CBLAS_INT incY,
                             const double c, const double s) {
    drot_(&N, X, &incX, Y, &incY, &c, &s);
}
CBLAS_EXPORT void cblas_csrot(const CBLAS_INT N, void* X, const CBLAS_INT incX, void* Y, const CBLAS_INT incY,
                              const float c, const float s) {
    csrot_(&N, X, &incX, Y, &incY, &c, &s);
}
CBLAS_EXPORT void cblas_zdrot(const CBLAS_INT N, void* X, const CBLAS_INT incX, void* Y, const CBLAS_INT incY,
                              const double c, const double s) {
    zdrot_(&N, X, &incX, Y, &incY, &c, &s);
}

}  // extern "C"
