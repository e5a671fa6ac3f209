// The emulated routines, one line each: lower-case base, whether it has info, the
// GPU function's parameters.
#include "emulator.h"

extern "C" {

// Cholesky and triangular routines
int vornSpotrf(char uplo, int n, float* a, int lda) { return emulate<"spotrf", true>("vornSpotrf", uplo, n, a, lda); }

}  // extern "C"
