// The reduction and eigenvalue routines: one implementation per row of reductions_eigenvalues.inc.
#include "exports/words.h"
#include "routines/routed/reductions_eigenvalues_rows.h"

#define ROUTED VORN_ROUTED_ROUTINE
#include "routines/routed/reductions_eigenvalues.inc"
#undef ROUTED

// The family's size as its routine table counts it.
#define ROUTED(...) +1
static_assert(0
#include "routines/routed/reductions_eigenvalues.inc"
              == 30);
#undef ROUTED
