// The multiply and rank-update routines: one implementation per row of multiply_rank_update.inc.
#include "exports/words.h"
#include "routines/routed/multiply_rank_update_rows.h"

#define ROUTED VORN_ROUTED_ROUTINE
#include "routines/routed/multiply_rank_update.inc"
#undef ROUTED
