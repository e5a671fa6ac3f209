// The LU routines: one implementation per row of lu.inc.
#include "exports/words.h"
#include "routines/routed/lu_rows.h"

#define ROUTED VORN_ROUTED_ROUTINE
#include "routines/routed/lu.inc"
#undef ROUTED
