// The 1,417 forwarded routines, each an instance of the forwarded frame.
#include "exports/words.h"
#include "routines/cpu/forwarded_frame.h"

#define FORWARDED(name, words, info)                                            \
    extern "C" VORN_EXPORT ExportedResult<#name> name(VORN_WORDS_##words) {    \
        return forwardedEntry<ForwardedRoutine<#name, words, info>>(VORN_ARGS_##words); \
    }
#include "routines/cpu/forwarded_routines.inc"
