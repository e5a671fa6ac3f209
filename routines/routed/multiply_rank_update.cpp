// The multiply and rank-update routines: one implementation per row of multiply_rank_update.inc.
#include "exports/words.h"
#include "routines/routed/multiply_rank_update_rows.h"

#define ROUTED VORN_ROUTED_ROUTINE
#include "routines/routed/multiply_rank_update.inc"
#undef ROUTED

// The family's size as its routine table counts it.
#define ROUTED(...) +1
static_assert(0
#include "routines/routed/multiply_rank_update.inc"
              == 34);
#undef ROUTED
