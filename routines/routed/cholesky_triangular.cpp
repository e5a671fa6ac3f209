// The Cholesky and triangular routines: one implementation per row of cholesky_triangular.inc.
#include "exports/words.h"
#include "routines/routed/cholesky_triangular_rows.h"

#define ROUTED VORN_ROUTED_ROUTINE
#include "routines/routed/cholesky_triangular.inc"
#undef ROUTED

// The family's size as its routine table counts it.
#define ROUTED(...) +1
static_assert(0
#include "routines/routed/cholesky_triangular.inc"
              == 28);
#undef ROUTED
