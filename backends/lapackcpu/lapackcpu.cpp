// The CPU library: every routine of the routine list but lsame, under its
// undecorated lower-case name in our argument convention (every argument a word
// holding the address of the caller's variable, no hidden lengths), forwarded to
// the back end's Fortran routine name_. One frame serves them all; the facts of
// each routine come from the tables, looked up by its name: its word count
// (routines/cpu/forwarded_routines.inc, logged_routines.inc, routed_word_counts.inc),
// result class (routines/cpu/result_classes.inc), character arguments
// (character_arguments.inc) and the exceptions of cpu_routines.h.
#include <algorithm>
#include <array>
#include <atomic>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "exports/words.h"
#include "fortran_backend.h"
#include "routing/fixed_string.h"

namespace {

// Where the hidden length of a character argument comes from.
struct Length {
    enum Source { one, text, countAt, valueOf } source = one;
    int word = 0;  // countAt, valueOf: the word that holds the length
};
// The spellings of character_arguments.inc: the caller's text up to its NUL, at
// most 16 characters (Fortran strings need not end in one); the integer a word
// points to; the low 32 bits of a word itself, which is then no argument.
constexpr Length text{Length::text};
constexpr Length countAt(int word) { return {Length::countAt, word}; }
constexpr Length valueOf(int word) { return {Length::valueOf, word}; }
constexpr std::size_t longestText = 16;

struct CharacterArgument {
    int position;
    Length length;
};

template <class... Positions>
constexpr auto characterArguments(Length length, Positions... positions) {
    return std::array<CharacterArgument, sizeof...(Positions)>{CharacterArgument{positions, length}...};
}

template <FixedString Name> struct CharactersOf {
    static constexpr std::array<CharacterArgument, 0> arguments{};
};
#define CHARS(name, ...)                                                                \
    template <> struct CharactersOf<#name> {                                            \
        static constexpr auto arguments = characterArguments(Length{}, __VA_ARGS__);    \
    };
#define STRINGS(name, length, ...)                                                      \
    template <> struct CharactersOf<#name> {                                            \
        static constexpr auto arguments = characterArguments(length, __VA_ARGS__);      \
    };
#include "character_arguments.inc"
#undef CHARS
#undef STRINGS

template <FixedString Name> struct ResultOf {
    using type = void;
};
#define RESULT(name, Type) \
    template <> struct ResultOf<#name> { using type = Type; };
#include "routines/cpu/result_classes.inc"
#undef RESULT

// The word of each back-end argument, where it is not every word in order.
template <FixedString Name> struct ArgumentsOf {
    static constexpr std::array<int, 0> words{};
};
#define COMPLEX_RESULT(name, Part) \
    template <> struct ResultOf<#name> { using type = std::complex<Part>; };
#define BACKEND_ARGUMENTS(name, ...) \
    template <> struct ArgumentsOf<#name> { static constexpr std::array words{__VA_ARGS__}; };
#include "cpu_routines.h"
#undef COMPLEX_RESULT
#undef BACKEND_ARGUMENTS

template <class T> constexpr bool isComplex = false;
template <class T> constexpr bool isComplex<std::complex<T>> = true;

// One cached back-end function per routine; looked up on first use. Threads read
// and write the cache without a lock, as whole loads and stores without order:
// concurrent look-ups store the same value.
struct FortranSlot {
    void* function;
    const char* symbol;
};

void* resolve(FortranSlot& slot) {
    std::atomic_ref<void*> cached(slot.function);
    void* function = cached.load(std::memory_order_relaxed);
    if (function == nullptr) {
        function = fortranSymbol(slot.symbol);
        cached.store(function, std::memory_order_relaxed);
    }
    return function;
}

template <FixedString Name> using ResultType = typename ResultOf<Name>::type;

// Every word is a back-end argument, in order, but a complex result's address and
// a length passed by value.
template <FixedString Name>
constexpr bool isArgument(int word) {
    if (isComplex<ResultType<Name>> && word == 1) return false;
    for (CharacterArgument argument : CharactersOf<Name>::arguments)
        if (argument.length.source == Length::valueOf && argument.length.word == word) return false;
    return true;
}

template <FixedString Name, int Words>
constexpr int argumentCount() {
    int count = 0;
    for (int word = 1; word <= Words; ++word) count += isArgument<Name>(word);
    return count;
}

template <FixedString Name, int Words>
constexpr auto backendArguments() {
    if constexpr (!ArgumentsOf<Name>::words.empty()) {
        return ArgumentsOf<Name>::words;
    } else {
        std::array<int, argumentCount<Name, Words>()> words{};
        for (int word = 1, n = 0; word <= Words; ++word)
            if (isArgument<Name>(word)) words[n++] = word;
        return words;
    }
}

// Each word reaches the back end, as an argument or as a length, or holds the
// result, and nothing beyond the words is asked for: a table whose word count
// disagrees with the rows here stops the build.
template <FixedString Name, int Words>
constexpr bool wordsAgree() {
    for (int word : backendArguments<Name, Words>())
        if (word < 0 || word > Words) return false;
    for (CharacterArgument argument : CharactersOf<Name>::arguments)
        if (argument.position < 1 || argument.position > Words || argument.length.word > Words) return false;
    for (int word = 1; word <= Words; ++word) {
        bool used = isComplex<ResultType<Name>> && word == 1;
        for (int argument : backendArguments<Name, Words>()) used = used || argument == word;
        for (CharacterArgument argument : CharactersOf<Name>::arguments) used = used || argument.length.word == word;
        if (!used) return false;
    }
    return true;
}

template <FixedString Name, int Words>
struct CpuRoutine {
    static_assert(wordsAgree<Name, Words>(), "the word count disagrees with the routine's rows");
    using Result = ResultType<Name>;
    // A complex result goes through word 1: the exported function returns nothing.
    using Exported = std::conditional_t<isComplex<Result>, void, Result>;
    static constexpr auto arguments = backendArguments<Name, Words>();
    static constexpr auto characters = CharactersOf<Name>::arguments;
    static constexpr auto symbol = Name + "_";
    static inline constinit FortranSlot slot{nullptr, symbol.c_str()};
};

std::size_t hiddenLength(CharacterArgument argument, void* const* words) {
    const Length length = argument.length;
    switch (length.source) {
    case Length::one:
        return 1;
    case Length::text:
        return strnlen(static_cast<const char*>(words[argument.position - 1]), longestText);
    case Length::countAt:
        return static_cast<std::size_t>(std::max(*static_cast<const int32_t*>(words[length.word - 1]), 0));
    case Length::valueOf:
        return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(words[length.word - 1]));
    }
    return 1;
}

// Calls a routine's Fortran function: the leading hidden arguments of a CHARACTER
// function's result, then the routine's back-end arguments, then one hidden
// length per character argument.
template <class Routine, class Return, std::size_t... A, std::size_t... L, class... Leading>
Return callFortran(void* function, void* const* words, void* scratch, const std::size_t* lengths,
                   std::index_sequence<A...>, std::index_sequence<L...>, Leading... leading) {
    constexpr auto& order = Routine::arguments;
    using Function = Return (*)(Leading..., decltype((void)A, Word{})..., decltype((void)L, std::size_t{})...);
    return reinterpret_cast<Function>(function)(leading..., (order[A] == 0 ? scratch : words[order[A] - 1])...,
                                                lengths[L]...);
}

template <class Routine>
typename Routine::Exported cpuFrame(void* const* words) {
    using Result = typename Routine::Result;
    constexpr auto& characters = Routine::characters;
    void* function = resolve(Routine::slot);
    if (function == nullptr) return typename Routine::Exported();  // reported by fortranSymbol

    std::array<std::size_t, characters.size()> lengths{};
    for (std::size_t k = 0; k < characters.size(); ++k) lengths[k] = hiddenLength(characters[k], words);
    std::complex<double> scratch{};
    auto call = [&]<class Return>(auto... leading) {
        return callFortran<Routine, Return>(function, words, &scratch, lengths.data(),
                                            std::make_index_sequence<Routine::arguments.size()>{},
                                            std::make_index_sequence<characters.size()>{}, leading...);
    };

    if constexpr (isComplex<Result>) {
        *static_cast<Result*>(words[0]) = call.template operator()<Result>();
    } else if constexpr (std::is_same_v<Result, char>) {
        // A CHARACTER*1 function: gfortran passes the result's address and length first.
        char result = ' ';
        call.template operator()<void>(&result, std::size_t{1});
        return result;
    } else {
        return call.template operator()<Result>();
    }
}

}  // namespace

// A routine the back end lacks (cpu_routines.h) expands to nothing.
#define CPU_SECOND(first, second, ...) second
#define CPU_PICK(...) CPU_SECOND(__VA_ARGS__)
#define CPU_ABSENT ~, CPU_DROP
#define CPU_KEEP(...) __VA_ARGS__
#define CPU_DROP(...)
#define CPU_UNLESS_ABSENT(name) CPU_PICK(CPU_ABSENT_##name, CPU_KEEP, ~)

#define CPU_ROUTINE(name, count)                                                               \
    CPU_UNLESS_ABSENT(name)(                                                                   \
        extern "C" VORN_EXPORT CpuRoutine<#name, count>::Exported name(VORN_WORDS_##count) { \
            void* const words[] = {VORN_ARGS_##count};                                         \
            return cpuFrame<CpuRoutine<#name, count>>(words);                                  \
        })
#define FORWARDED(name, words, info) CPU_ROUTINE(name, words)
#include "routines/cpu/forwarded_routines.inc"
#undef FORWARDED
#define LOGGED(name, words, ...) CPU_ROUTINE(name, words)
#include "routines/cpu/logged_routines.inc"
#undef LOGGED
#define ROUTED_WORDS(name, words) CPU_ROUTINE(name, words)
#include "routed_word_counts.inc"
#undef ROUTED_WORDS
