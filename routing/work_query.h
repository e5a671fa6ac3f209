// Work queries: a call whose lwork-like argument reads -1 only asks for workspace
// sizes. The routine's tables name the tested words and the arrays whose first
// element the log reports after such a call.
#pragma once

#include <cstdint>
#include <type_traits>

#include "core/link_state.h"
#include "routing/call_words.h"

// The lwork-like words of a routine; -1 in any of them makes the call a query.
template <int... W> struct Tested {};

// An array whose first element a query reports: a real (or the real part of a
// complex) element truncated toward zero, or a 32-bit integer element.
template <int W> struct WorkReal { static constexpr int position = W; };
template <int W> struct WorkInt { static constexpr int position = W; };
template <class... Lines> struct WorkLines {};
// The lines of a routine whose complex precisions take rwork after work: work,
// rwork where Complex holds, then the others.
template <bool Complex, class Work, class Rwork, class... After>
using WorkLinesWithRwork = std::conditional_t<Complex, WorkLines<Work, Rwork, After...>, WorkLines<Work, After...>>;

template <int... W>
bool linkIsWorkQuery(CallWords words, Tested<W...>) {
    return ((words.integer(W) == -1) || ...);
}

// "vorn info:  work query returned %d" for each array, in order. RealType is the
// routine's real type: float in s and c routines, double in d and z routines.
template <class RealType, class... Lines>
void linkWriteWorkLines(CallWords words, WorkLines<Lines...>) {
    auto line = [&](auto kind) {
        using Kind = decltype(kind);
        int32_t value;
        if constexpr (std::is_same_v<Kind, WorkInt<Kind::position>>) {
            value = words.integer(Kind::position);
        } else {
            value = static_cast<int32_t>(words.read<RealType>(Kind::position));
        }
        linkWriteLine("vorn info:  work query returned %d\n", value);
    };
    (line(Lines{}), ...);
}

