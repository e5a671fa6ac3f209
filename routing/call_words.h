// The words of one call, as the frames read them: by 1-based word position, the
// way the routine tables number the arguments.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

struct CallWords {
    void* const* word;

    void* pointer(int position) const { return word[position - 1]; }

    // An integer argument, read as a signed 32-bit value: in ILP64 mode this is
    // the low half of the caller's 8 bytes.
    int32_t integer(int position) const { return read<int32_t>(position); }

    // A character argument folded to upper case, as LAPACK compares them (ASCII
    // letters only).
    char upperCharacter(int position) const {
        const char c = read<char>(position);
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    }

    template <class T>
    T read(int position) const {
        T value;
        std::memcpy(&value, word[position - 1], sizeof value);
        return value;
    }
};

// Measure arithmetic is signed 32-bit and wraps on overflow.
constexpr int32_t multiply32(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) * static_cast<uint32_t>(b));
}
constexpr int32_t add32(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

// Calls a CPU library function with exactly the first N words of a call, and
// gives its result as the function's own type.
template <class Result, std::size_t... I>
inline Result callCpuWords(void* function, CallWords words, std::index_sequence<I...>) {
    using Function = Result (*)(decltype((void)I, static_cast<void*>(nullptr))...);
    return reinterpret_cast<Function>(function)(words.word[I]...);
}

// Calls a CPU library function with the caller's words as they came.
template <class Result, class... Words>
inline Result callCpuFunction(void* function, Words... words) {
    return reinterpret_cast<Result (*)(Words...)>(function)(words...);
}

// A frame out of line, with the words by value: the exported routine that calls it
// keeps no array of its own, so that both its ends can be jumps.
template <auto Frame, class... Words>
[[gnu::noinline]] auto linkFrameOutOfLine(Words... words) {
    void* const passed[] = {words...};
    return Frame(CallWords{passed});
}

// The real type of a routine by its precision letter: float in s and c routines,
// double in d and z routines.
template <char Precision>
using RealTypeOf = std::conditional_t<Precision == 's' || Precision == 'c', float, double>;
