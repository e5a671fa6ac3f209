// The 48 logged CPU-only routines, each an instance of the logged frame.
#include "exports/words.h"
#include "routines/cpu/logged_frame.h"
#include "routines/cpu/logged_rows.h"

#define LOGGED(name, words, Printed, info)                                           \
    extern "C" VORN_EXPORT void name(VORN_WORDS_##words) {                           \
        loggedEntry<LoggedRoutine<#name, words, Printed, info>>(VORN_ARGS_##words);  \
    }
#include "routines/cpu/logged_routines.inc"
#undef LOGGED

// Twelve of them have info as their last word.
#define LOGGED(name, words, Printed, info) +int(info)
static_assert(0
#include "routines/cpu/logged_routines.inc"
              == 12);
#undef LOGGED
