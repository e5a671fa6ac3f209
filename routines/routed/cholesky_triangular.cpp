// The Cholesky and triangular routines: one implementation per row of cholesky_triangular.inc.
#include "exports/words.h"
#include "routines/routed/cholesky_triangular_rows.h"

#define ROUTED VORN_ROUTED_ROUTINE
#include "routines/routed/cholesky_triangular.inc"
#undef ROUTED
