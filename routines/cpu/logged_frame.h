// The frame of the logged CPU-only routines: the CPU path of the routed frame with
// the route settled in advance. The routine prints its arguments, clears its info,
// gives the reason "excluded by user" (or "vorn not available" when the GPU
// library did not start) and runs on the CPU library. It reads no crossover and no
// routing flag, and never calls the GPU library.
#pragma once

#include <cstdint>
#include <cstring>
#include <utility>

#include "core/link_state.h"
#include "core/startup.h"
#include "ilp64/int_width.h"
#include "routing/call_words.h"
#include "routing/entry_line.h"
#include "routing/fixed_string.h"
#include "routing/issue_reason.h"
#include "routing/routed_frame.h"

template <FixedString Name, int Words, class Printed, bool HasInfo>
struct LoggedRoutine {
    static constexpr FixedString name = Name;
    static constexpr int wordCount = Words;
    static constexpr bool hasInfo = HasInfo;  // info is the last word
    using Entry = EntryLine<Name, Printed>;
    static inline constinit CpuSlot cpuSlot{};
};

// The whole frame.
template <class Routine>
[[gnu::always_inline]] inline void loggedFrame(CallWords words) {
    // Start-up first, so that the very first call of a process keeps its entry line.
    linkInitGpu();
    if (linkState.verbose) Routine::Entry::write(words);
    void* info = nullptr;
    if constexpr (Routine::hasInfo) {
        info = words.pointer(Routine::wordCount);
        linkStoreInteger(info, 0);
    }
    if (linkState.verbose) linkLogIssue(linkState.gpuUnavailable ? ReasonGpuUnavailable : ReasonExcluded);

    if (!linkRunOnCpu<Routine, true>(words)) return;
    if constexpr (Routine::hasInfo) linkLogInfoReturned(linkTakeInteger(info));
    linkUnpackIntegerArrays<Routine>(words, info);  // iter of dsposv and zcposv
    if (linkState.verbose) linkWriteLine("vorn info:  done\n");
}

// Each routine's implementation. The common case, started, the function found,
// the log off and 32-bit callers: info set to 0 and a jump to the CPU library
// with the caller's words in place. Everything else takes the whole frame.
template <class Routine, class... Words>
[[gnu::always_inline]] inline void loggedEntry(Words... words) {
    static_assert(sizeof...(Words) == Routine::wordCount);
    if (void* function = linkShortPathFunction<Routine>()) {
        if constexpr (Routine::hasInfo) {
            void* info = nullptr;
            ((info = words), ...);  // the last word
            std::memset(info, 0, 4);
        }
        return callCpuFunction<void>(function, words...);
    }
    linkFrameOutOfLine<&loggedFrame<Routine>>(words...);
}
