// The orthogonal factorisations: one implementation per row of orthogonal_factorisations.inc.
#include "exports/words.h"
#include "routines/routed/orthogonal_factorisations_rows.h"

#define ROUTED VORN_ROUTED_ROUTINE
#include "routines/routed/orthogonal_factorisations.inc"
#undef ROUTED

// The family's size as its routine table counts it.
#define ROUTED(...) +1
static_assert(0
#include "routines/routed/orthogonal_factorisations.inc"
              == 32);
#undef ROUTED
