// Integer arrays of ILP64 callers, met in the caller's own memory: before a back
// end runs, each array of the routine's row in ilp64/packing_table.inc is packed
// in place to 32-bit elements in the first half of its storage; after the call it
// is unpacked to 64-bit elements again, and the high half of each integer output
// scalar of the row is cleared. Nothing is allocated or copied elsewhere, and the
// back end gets the caller's own pointer. In 32-bit mode neither step does
// anything, and a routine without a row has no steps at all.
#pragma once

#include <cstdint>
#include <cstring>

#include "core/link_state.h"
#include "ilp64/derived_lengths.h"
#include "routing/call_words.h"
#include "routing/fixed_string.h"

// A 0 in the high half of a 64-bit integer: its 4 bytes at the address plus 4.
inline void linkZeroHighHalf(void* integer) {
    const int32_t zero = 0;
    std::memcpy(static_cast<char*>(integer) + 4, &zero, sizeof zero);
}

// Element i moves from byte 8*i to byte 4*i, going forward, so that no store
// overtakes a read; the bytes behind the packed elements keep what they held. A
// negative length skips the array.
inline void linkPackArray(void* array, int32_t length) {
    auto* bytes = static_cast<unsigned char*>(array);
    for (int64_t i = 1; i < length; ++i) std::memcpy(bytes + 4 * i, bytes + 8 * i, 4);
}

// Element i moves back from byte 4*i to byte 8*i with a high half of 0, going
// backward, so that no store hits an element still unread.
inline void linkUnpackArray(void* array, int32_t length) {
    auto* bytes = static_cast<unsigned char*>(array);
    for (int64_t i = int64_t{length} - 1; i >= 0; --i) {
        int32_t element;
        std::memcpy(&element, bytes + 4 * i, 4);
        linkZeroHighHalf(bytes + 8 * i);
        std::memcpy(bytes + 8 * i, &element, 4);
    }
}

// The arguments a row's lengths read, named and placed in the row:
// (In<3> n, Ch<1> jobz). An integer is its low half, a character is folded to
// upper case as LAPACK compares them. A constant converts to In as well, so that
// "howmny == 'A' ? 0 : n" has one type.
template <int W> struct In : Int32 {
    explicit In(CallWords words) : Int32(words.integer(W)) {}
    constexpr In(int32_t value) : Int32(value) {}  // NOLINT: see above
};
template <int W> struct Ch {
    char letter;
    explicit Ch(CallWords words) : letter(words.upperCharacter(W)) {}
    bool operator==(char upper) const { return letter == upper; }
};

// The two steps, each walking the row's arrays and output scalars. An output
// array is one whose length depends on an output of the routine (the m of syevr's
// isuppz): the routine reads nothing of it, and before the call its length is
// unknown, so only the unpack step, with the m the routine returned, touches it;
// and not even that step when the routine rejected an argument (info < 0): then
// it wrote neither m nor the array, and the m there is whatever the caller left.
struct PackStep {
    CallWords words;
    void array(int place, Int32 length) const { linkPackArray(words.pointer(place), length.value); }
    void outputArray(int, Int32) const {}
    void scalar(int) const {}
};
struct UnpackStep {
    CallWords words;
    bool rejected;  // the routine gave info < 0
    void array(int place, Int32 length) const { linkUnpackArray(words.pointer(place), length.value); }
    void outputArray(int place, Int32 length) const {
        if (!rejected) array(place, length);
    }
    void scalar(int place) const { linkZeroHighHalf(words.pointer(place)); }
};

// Calls a row's steps with the arguments its parameter list names, each read
// afresh from the words at the moment of the step.
template <class Steps, class... Inputs>
void linkWithInputs([[maybe_unused]] CallWords words, const Steps& steps, void (Steps::*)(Inputs...) const) {
    steps(Inputs(words)...);
}
template <class Steps>
void linkWithInputs(CallWords words, const Steps& steps) {
    linkWithInputs(words, steps, &Steps::operator());
}

template <FixedString Name> struct PackingOf {
    static constexpr bool listed = false;
};

#define PACKING(name, inputs, ...)                                                   \
    template <> struct PackingOf<#name> {                                            \
        static constexpr bool listed = true;                                         \
        template <class Step> static void run(const Step& step) {                    \
            linkWithInputs(step.words, [&] inputs { __VA_ARGS__ });                  \
        }                                                                            \
    };
#define ARRAY(name, place, length) step.array(place, length);
#define OUTPUT_ARRAY(name, place, length) step.outputArray(place, length);
#define SCALAR(name, place) step.scalar(place);
#include "ilp64/packing_table.inc"
#undef PACKING
#undef ARRAY
#undef OUTPUT_ARRAY
#undef SCALAR

// The steps as the frames call them: in 32-bit mode one test, and for a routine
// without a row nothing at all.
template <class Routine>
[[gnu::always_inline]] inline void linkPackIntegerArrays(CallWords words) {
    if constexpr (PackingOf<Routine::name>::listed) {
        if (linkState.ilp64) PackingOf<Routine::name>::run(PackStep{words});
    }
}

// info: the routine's info argument, null for a routine without one.
template <class Routine>
[[gnu::always_inline]] inline void linkUnpackIntegerArrays(CallWords words, const void* info) {
    if constexpr (PackingOf<Routine::name>::listed) {
        if (linkState.ilp64) {
            int32_t value = 0;
            if (info != nullptr) std::memcpy(&value, info, sizeof value);
            PackingOf<Routine::name>::run(UnpackStep{words, value < 0});
        }
    }
}
