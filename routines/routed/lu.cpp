// The LU routines: one implementation per row of lu.inc.
#include "exports/words.h"
#include "routines/routed/lu_rows.h"

#define ROUTED VORN_ROUTED_ROUTINE
#include "routines/routed/lu.inc"
#undef ROUTED

// The family's size as its routine table counts it.
#define ROUTED(...) +1
static_assert(0
#include "routines/routed/lu.inc"
              == 22);
#undef ROUTED
