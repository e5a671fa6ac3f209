// The trampolines: for each routine that stands, name_, NAME and NAME_ reach its
// implementation `name` with exactly its words, and give back what it returns.
// One body serves the three spellings; the upper-case ones are aliases of name_,
// listed by the export list generator.
#include "exports/words.h"
#include "routines/cpu/forwarded_frame.h"

// The implementations, as their own files define them.
#define FORWARDED(name, words, info) extern "C" ExportedResult<#name> name(VORN_WORDS_##words);
#include "routines/cpu/forwarded_routines.inc"
#undef FORWARDED
#define LOGGED(name, words, ...) extern "C" void name(VORN_WORDS_##words);
#include "routines/cpu/logged_routines.inc"
#undef LOGGED
#define ROUTED(base, Root, words, gpuFunction) extern "C" void base(VORN_WORDS_##words);
#include "routines/routed/routed_routines.inc"
#undef ROUTED

#define SPELLINGS(name, NAME, count)                                                          \
    extern "C" VORN_EXPORT auto name##_(VORN_WORDS_##count)->decltype(name(VORN_ARGS_##count)) { \
        return name(VORN_ARGS_##count);                                                       \
    }                                                                                         \
    extern "C" VORN_EXPORT decltype(name##_) NAME __attribute__((alias(#name "_")));         \
    extern "C" VORN_EXPORT decltype(name##_) NAME##_ __attribute__((alias(#name "_")));
#include "exported_spellings.inc"
