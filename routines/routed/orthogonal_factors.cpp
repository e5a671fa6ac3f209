// The orthogonal factor routines: one implementation per row of orthogonal_factors.inc.
#include "exports/words.h"
#include "routines/routed/orthogonal_factors_rows.h"

#define ROUTED VORN_ROUTED_ROUTINE
#include "routines/routed/orthogonal_factors.inc"
#undef ROUTED

// The family's size as its routine table counts it.
#define ROUTED(...) +1
static_assert(0
#include "routines/routed/orthogonal_factors.inc"
              == 40);
#undef ROUTED
