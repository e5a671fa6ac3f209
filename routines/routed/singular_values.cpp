// The singular value routines: one implementation per row of singular_values.inc.
#include "exports/words.h"
#include "routines/routed/singular_values_rows.h"

#define ROUTED VORN_ROUTED_ROUTINE
#include "routines/routed/singular_values.inc"
#undef ROUTED

// The family's size as its routine table counts it.
#define ROUTED(...) +1
static_assert(0
#include "routines/routed/singular_values.inc"
              == 12);
#undef ROUTED
