// The frame that every routed routine follows: start-up, entry line, the route
// decision, the GPU call and its statuses, the retry on the CPU, the CPU call and
// the closing lines. A routine is a row: its root's argument table (word
// positions, GPU arguments, class, measure, work query) and its instance (name,
// GPU function, crossover entry). The frame holds no state beyond one call.
//
// Classes: A has no info (BLAS); statuses 7 and 8 are failures like any other.
// B has info; statuses 7 and 8 are answers turned into info. C is B with a work
// query: an lwork-like argument of -1 sends the call to the CPU, and the first
// element of each work array is reported after it.
#pragma once

#include <cstdint>
#include <cstring>
#include <tuple>
#include <type_traits>
#include <utility>

#include "core/link_state.h"
#include "core/startup.h"
#include "exports/words.h"
#include "ilp64/int_width.h"
#include "routing/crossover_table.h"
#include "routing/entry_line.h"
#include "routing/gpu_arguments.h"
#include "routing/issue_reason.h"
#include "routing/work_query.h"
#include "vorn_lapack.h"

enum class FrameClass { A, B, C };

template <FixedString Name, class Root, auto GpuFunction, int32_t CrossoverTable::*CrossoverEntry>
struct RoutedRoutine {
    static constexpr FixedString name = Name;
    static constexpr int wordCount = Root::wordCount;
    using Args = Root;
    // The routine's real type: single in s and c routines, double in d and z.
    using RealType = RealTypeOf<Name.text[0]>;
    // The entry line prints the arguments that the GPU function gets.
    using Entry = EntryLine<Name, typename Root::GpuArgs>;
    using Gpu = GpuBinding<GpuFunction, typename Root::GpuArgs, RealType>;
    static inline constinit CpuSlot cpuSlot{};
    static int32_t crossover() { return crossoverTable.*CrossoverEntry; }
};

// The crossover the measure is held against: the routine's entry, or for a row
// with a job-scaled crossover (syev's jobz, steqr's compz) the entry times the
// factor its job character gives, a wrapping 32-bit product. The character is
// read afresh at each evaluation.
template <class Routine>
int32_t linkScaledCrossover(CallWords words) {
    if constexpr (requires { Routine::Args::crossoverFactor(words); }) {
        return multiply32(Routine::Args::crossoverFactor(words), Routine::crossover());
    } else {
        return Routine::crossover();
    }
}

template <class Routine>
bool measureUnderCrossover(CallWords words) {
    const auto measure = Routine::Args::measure(words);
    const int32_t crossover = linkScaledCrossover<Routine>(words);
    if constexpr (std::is_same_v<decltype(measure), const double>) {
        return measure < static_cast<double>(crossover);
    } else {
        static_assert(std::is_same_v<decltype(measure), const int32_t>);
        return measure < crossover;
    }
}

// The CPU side of a routine that logs its arguments, once the route is settled:
// binds the CPU library, finds the routine's function and calls it with all the
// caller's words. False at the failure exits, where nothing ran: F1, no CPU
// library; F2, no such symbol in it (the look-up wrote the error line). A routine
// that packs its integer arrays only when it reaches the CPU library (the logged
// CPU-only routines) packs them here, directly before the call.
template <class Routine, bool PackBeforeCall = false>
[[gnu::always_inline]] inline bool linkRunOnCpu(CallWords words) {
    if (!linkInitCpu()) return false;
    void* function = linkCpuFunction(Routine::cpuSlot, Routine::name.c_str());
    if (function == nullptr) return false;
    if constexpr (PackBeforeCall) linkPackIntegerArrays<Routine>(words);
    callCpuWords<void>(function, words, std::make_index_sequence<Routine::wordCount>{});
    return true;
}

// The GPU call of one pass. Gives true when the GPU library answered the call:
// status 0, or in classes B and C status 7 or 8, whose info it then stores. Any
// other status is a failure: its two error lines are written and false given, and
// the caller's arrays are as the GPU library left them, untouched.
template <class Routine>
bool routedGpuCall(CallWords words, void* info) {
    const int status = Routine::Gpu::call(words);
    if constexpr (Routine::Args::frameClass != FrameClass::A) {
        if (status == VORN_STATUS_INFO_NUMERICAL || status == VORN_STATUS_INFO_ARGUMENT) {
            const int32_t value = vornGetErrorInfo();
            linkStoreInteger(info, value);
            linkLogInfoReturned(value);
            return true;
        }
        if (status == VORN_STATUS_SUCCESS) linkStoreInteger(info, 0);
    }
    if (status == VORN_STATUS_SUCCESS) return true;
    linkWriteLine("vorn error: %s\n", vornGetStatusString(status));
    linkWriteLine("vorn error: Retrying with CPU\n");
    return false;
}

// Two conditions that send a call to the CPU whatever else holds: the routine's
// crossover says "never", or (class C) its lwork-like argument is -1.
template <class Routine>
bool linkIsExcluded() {
    return Routine::crossover() == crossoverNever;
}
template <class Routine>
bool linkIsRoutedWorkQuery(CallWords words) {
    if constexpr (Routine::Args::frameClass == FrameClass::C) return words.integer(Routine::Args::lwork) == -1;
    else return false;
}

// The whole frame.
template <class Routine>
[[gnu::always_inline]] inline void routedFrame(CallWords words) {
    using Args = typename Routine::Args;
    constexpr bool hasInfo = Args::frameClass != FrameClass::A;
    constexpr bool hasWorkQuery = Args::frameClass == FrameClass::C;

    linkInitGpu();
    if (linkState.verbose) Routine::Entry::write(words);

    void* info = nullptr;
    if constexpr (hasInfo) {
        info = words.pointer(Args::info);
        linkStoreInteger(info, 0);
    }

    // Read once per call: a change of the crossover or of lwork during the call
    // does not alter them.
    const bool isExcluded = linkIsExcluded<Routine>(), isWorkQuery = linkIsRoutedWorkQuery<Routine>(words);

    linkPackIntegerArrays<Routine>(words);
    auto commonEnd = [&] {
        linkUnpackIntegerArrays<Routine>(words, info);
        if (linkState.verbose) linkWriteLine("vorn info:  done\n");
    };

    // At most two passes: the first may reach the GPU; a failure there brings a
    // second pass, which always leads to the CPU. Each pass reads the flags, the
    // crossover and the measure afresh, for the reason and again for the side.
    for (bool retry = false;; retry = true) {
        auto state = [&] {
            return RouteState{linkState.gpuUnavailable != 0,
                              retry,
                              isWorkQuery,
                              isExcluded,
                              platformLoadRelaxed(&linkState.cpuAlways) != 0,
                              platformLoadRelaxed(&linkState.gpuAlways) != 0,
                              measureUnderCrossover<Routine>(words)};
        };
        // linkLogIssue writes nothing with verbose off: the reason is then not
        // worked out at all.
        if (linkState.verbose) linkLogIssue(linkChooseReason(state()));
        if (!linkRouteToGpu(state())) break;
        if (routedGpuCall<Routine>(words, info)) return commonEnd();
    }

    // Exits F1 and F2: no back end ran, and the caller gets its arrays back in the
    // form it gave them.
    if (!linkRunOnCpu<Routine>(words)) return linkUnpackIntegerArrays<Routine>(words, info);

    if constexpr (hasInfo) linkLogInfoReturned(linkTakeInteger(info));
    if constexpr (hasWorkQuery) {
        if (linkState.verbose && isWorkQuery) {
            linkWriteWorkLines<typename Routine::RealType>(words, typename Args::WorkLines{});
        }
    }
    commonEnd();
}

// Each routine's implementation. The common case, started, the function found,
// the log off and 32-bit callers, where the first pass goes to the CPU, needs no
// line and no integer adapted: info set to 0, the route worked out, a jump to the
// CPU library with the caller's words in place. Any other call takes the long
// path from its start.
template <class Routine, class... Words>
[[gnu::always_inline]] inline void routedEntry(Words... words) {
    using Args = typename Routine::Args;
    static_assert(sizeof...(Words) == Routine::wordCount);
    if (void* function = linkShortPathFunction<Routine>()) {
        void* const passed[] = {words...};
        const CallWords callWords{passed};
        if constexpr (Args::frameClass != FrameClass::A) std::memset(callWords.pointer(Args::info), 0, 4);
        const RouteState first{linkState.gpuUnavailable != 0,
                               false,
                               linkIsRoutedWorkQuery<Routine>(callWords),
                               linkIsExcluded<Routine>(),
                               platformLoadRelaxed(&linkState.cpuAlways) != 0,
                               platformLoadRelaxed(&linkState.gpuAlways) != 0,
                               measureUnderCrossover<Routine>(callWords)};
        if (!linkRouteToGpu(first)) return callCpuFunction<void>(function, words...);
    }
    linkFrameOutOfLine<&routedFrame<Routine>>(words...);
}

// Defines the exported implementation of a routed routine: its base name, its
// root's row, its word count, its GPU function and its crossover entry.
#define VORN_ROUTED_ROUTINE(base, Root, count, gpuFunction)                                  \
    static_assert(Root::wordCount == count, #base ": word count differs from its root");     \
    static_assert(ListedGpuFunction<#base>::value == &gpuFunction,                           \
                  #base ": not the GPU function that the GPU function list gives it");       \
    extern "C" VORN_EXPORT void base(VORN_WORDS_##count) {                                   \
        routedEntry<RoutedRoutine<#base, Root, gpuFunction, &CrossoverTable::base>>(         \
            VORN_ARGS_##count);                                                              \
    }
