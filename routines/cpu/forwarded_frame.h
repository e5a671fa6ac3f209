// The frame of the forwarded routines: every exported routine without a GPU
// counterpart. It starts the library, calls the CPU library's routine of the same
// name with exactly the caller's words, and reports info and work queries on the
// log. No route decision is made, and arguments are never printed.
//
// Per-routine facts come from the tables, looked up by the routine's name: its
// work query (routines/cpu/work_queries.inc), its result class
// (routines/cpu/result_classes.inc). A routine that no table names has none.
#pragma once

#include <cstdint>
#include <type_traits>
#include <utility>

#include "core/link_state.h"
#include "core/startup.h"
#include "ilp64/int_width.h"
#include "routing/call_words.h"
#include "routing/fixed_string.h"
#include "routing/work_query.h"

template <class TestedList, class LineList> struct WorkQuery {
    using TestedWords = TestedList;
    using Lines = LineList;
};
template <FixedString Name> struct WorkQueryOf : WorkQuery<Tested<>, WorkLines<>> {};
template <FixedString Name> struct ResultOf {
    using type = void;
};

#define WORK_QUERY(name, ...) \
    template <> struct WorkQueryOf<#name> : WorkQuery<__VA_ARGS__> {};
#include "routines/cpu/work_queries.inc"
#undef WORK_QUERY

#define RESULT(name, Type) \
    template <> struct ResultOf<#name> { using type = Type; };
#include "routines/cpu/result_classes.inc"
#undef RESULT

template <FixedString Name>
using ForwardedResult = typename ResultOf<Name>::type;

// What the exported routine gives back: an integer or LOGICAL result of the CPU
// library zero-extended to 64 bits, whatever the mode. A 32-bit caller reads the
// low half, the CPU library's value; an ILP64 caller reads the whole register and
// finds a high half of 0, as in every other integer the library hands back (so
// -1 reads as 4294967295 there).
template <FixedString Name>
using ExportedResult = std::conditional_t<std::is_same_v<ForwardedResult<Name>, int32_t>, uint64_t,
                                          ForwardedResult<Name>>;

// xerbla's third word holds the length of its name by value, a 32-bit integer:
// only the low half of the word reaches the CPU library.
template <FixedString Name> inline constexpr int lengthByValueWord = 0;
template <> inline constexpr int lengthByValueWord<"xerbla"> = 3;

template <FixedString Name, int Words, bool HasInfo>
struct ForwardedRoutine {
    static constexpr FixedString name = Name;
    static constexpr int wordCount = Words;
    static constexpr bool hasInfo = HasInfo;
    static constexpr auto entryLine = "vorn info:  " + Name + " ()\n";
    using Result = ForwardedResult<Name>;
    using Exported = ExportedResult<Name>;
    using WorkQuery = WorkQueryOf<Name>;
    using RealType = RealTypeOf<Name.text[0]>;
    static inline constinit CpuSlot cpuSlot{};
};

template <class Routine>
inline typename Routine::Exported zeroExtended(typename Routine::Result result) {
    if constexpr (std::is_same_v<typename Routine::Result, int32_t>) return static_cast<uint32_t>(result);
    else return result;
}

// The whole frame: start-up, lines, work queries, the integers of ILP64 callers.
template <class Routine>
[[gnu::always_inline]] inline typename Routine::Exported forwardedFrame(CallWords words) {
    using Result = typename Routine::Result;
    using Exported = typename Routine::Exported;
    using WorkQuery = typename Routine::WorkQuery;

    // verbose is read before the start-up: the first call of a process, if it is
    // a forwarded routine, loses its entry line. It is read only once the start-up
    // is published, since another thread may be setting verbose and the log
    // stream at this moment; a call that races with the start-up loses its entry
    // line too.
    if (platformLoadAcquire(&linkState.gpuInitDone) && linkState.verbose) linkWriteLine(Routine::entryLine.c_str());
    linkInitGpu();
    if (!linkInitCpu()) return Exported();
    if (linkState.verbose) linkWriteLine("vorn info:  issuing to CPU (no GPU function available)\n");
    void* function = linkCpuFunction(Routine::cpuSlot, Routine::name.c_str());
    if (function == nullptr) return Exported();

    constexpr bool hasWorkQuery = !std::is_same_v<typename WorkQuery::TestedWords, Tested<>>;
    bool workQuery = false;
    if constexpr (hasWorkQuery) workQuery = linkIsWorkQuery(words, typename WorkQuery::TestedWords{});
    linkPackIntegerArrays<Routine>(words);

    void* passed[Routine::wordCount];
    if constexpr (constexpr int lengthWord = lengthByValueWord<Routine::name>) {
        for (int i = 0; i < Routine::wordCount; ++i) passed[i] = words.word[i];
        const auto length = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(passed[lengthWord - 1]));
        passed[lengthWord - 1] = reinterpret_cast<void*>(static_cast<uintptr_t>(length));
        words = CallWords{passed};
    }
    auto report = [&] {
        if constexpr (Routine::hasInfo) linkLogInfoReturned(linkTakeInteger(words.pointer(Routine::wordCount)));
        if constexpr (hasWorkQuery) {
            if (linkState.verbose && workQuery) {
                linkWriteWorkLines<typename Routine::RealType>(words, typename WorkQuery::Lines{});
            }
        }
        linkUnpackIntegerArrays<Routine>(words, Routine::hasInfo ? words.pointer(Routine::wordCount) : nullptr);
        if (linkState.verbose) linkWriteLine("vorn info:  done\n");
    };
    if constexpr (std::is_void_v<Result>) {
        callCpuWords<Result>(function, words, std::make_index_sequence<Routine::wordCount>{});
        report();
    } else {
        // Held across the closing lines, which must not disturb it.
        const Result result = callCpuWords<Result>(function, words, std::make_index_sequence<Routine::wordCount>{});
        report();
        return zeroExtended<Routine>(result);
    }
}

// Each routine's implementation. The common case, started, the function found,
// the log off and 32-bit callers, has no line to write and no integer to adapt:
// one test of one flag, one of the routine's slot, and a jump to the CPU library
// with the caller's words in place. Everything else, and xerbla with its length
// word, takes the long path.
template <class Routine, class... Words>
[[gnu::always_inline]] inline typename Routine::Exported forwardedEntry(Words... words) {
    static_assert(sizeof...(Words) == Routine::wordCount);
    using Result = typename Routine::Result;
    if constexpr (lengthByValueWord<Routine::name> == 0) {
        if (void* function = linkShortPathFunction<Routine>()) {
            if constexpr (std::is_void_v<Result>) return callCpuFunction<Result>(function, words...);
            else return zeroExtended<Routine>(callCpuFunction<Result>(function, words...));
        }
    }
    return linkFrameOutOfLine<&forwardedFrame<Routine>>(words...);
}
