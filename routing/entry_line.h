// The entry line of a routine that logs its arguments (routed and logged CPU-only
// routines): "vorn info:  dgemv (N, 4, 4, 1.000000, 0x..., ...)". A routine gives
// the kinds of the words it prints, in order; the C type each word is read as
// comes from its kind and the routine's precision letter:
//   Chr<w>   the one byte at word w                               %c
//   Int<w>   the first 4 bytes at word w, a signed 32-bit integer  %d
//   Real<w>  the real scalar at word w, in the routine's precision %f (widened)
//   Cplx<w>  the complex scalar at word w, real part first         (%f,%f)
//   Ptr<w>   word w itself, the address of the caller's array      %p
// Integers are read as 32-bit values in ILP64 mode too.
#pragma once

#include <array>
#include <tuple>
#include <utility>

#include "core/link_state.h"
#include "routing/call_words.h"
#include "routing/fixed_string.h"

template <int W> struct Chr { static constexpr int position = W; };
template <int W> struct Int { static constexpr int position = W; };
template <int W> struct Real { static constexpr int position = W; };
template <int W> struct Cplx { static constexpr int position = W; };
template <int W> struct Ptr { static constexpr int position = W; };

template <class... Kinds> struct ArgList {};

// The first words of a routine, in order, by kind alone:
// FirstWords<Chr, Int, Ptr> is ArgList<Chr<1>, Int<2>, Ptr<3>>.
template <template <int> class... Kinds>
struct FirstWordsOf {
    template <std::size_t... I>
    static auto list(std::index_sequence<I...>) -> ArgList<Kinds<int(I) + 1>...>;
    using type = decltype(list(std::index_sequence_for<Kinds<0>...>{}));
};
template <template <int> class... Kinds>
using FirstWords = typename FirstWordsOf<Kinds...>::type;

// What the entry line prints of a word of each kind, for a routine whose real
// type is RealType.
template <class Kind> struct KindTraits;
template <int W> struct KindTraits<Chr<W>> {
    static constexpr FixedString format = "%c";
    template <class RealType> static auto printed(CallWords w) { return std::tuple<int>(w.read<char>(W)); }
};
template <int W> struct KindTraits<Int<W>> {
    static constexpr FixedString format = "%d";
    template <class RealType> static auto printed(CallWords w) { return std::tuple<int>(w.integer(W)); }
};
template <int W> struct KindTraits<Real<W>> {
    static constexpr FixedString format = "%f";
    template <class RealType> static auto printed(CallWords w) {
        return std::tuple<double>(w.read<RealType>(W));
    }
};
template <int W> struct KindTraits<Cplx<W>> {
    static constexpr FixedString format = "(%f,%f)";
    template <class RealType> static auto printed(CallWords w) {
        const auto parts = w.read<std::array<RealType, 2>>(W);
        return std::tuple<double, double>(parts[0], parts[1]);
    }
};
template <int W> struct KindTraits<Ptr<W>> {
    static constexpr FixedString format = "%p";
    template <class RealType> static auto printed(CallWords w) { return std::tuple<const void*>(w.pointer(W)); }
};

// The conversions of an argument list: "%c, %d, %p, %d".
template <class... Kinds>
constexpr auto conversionList(ArgList<Kinds...>) {
    if constexpr (sizeof...(Kinds) == 0) {
        return FixedString("");
    } else {
        return [](auto first, auto... rest) { return (first + ... + (", " + rest)); }(
            KindTraits<Kinds>::format...);
    }
}

template <FixedString Name, class Printed> struct EntryLine;
template <FixedString Name, class... Kinds>
struct EntryLine<Name, ArgList<Kinds...>> {
    using RealType = RealTypeOf<Name.text[0]>;
    static constexpr auto format = "vorn info:  " + Name + " (" + conversionList(ArgList<Kinds...>{}) + ")\n";

    // Called only with verbose set: nothing is read or formatted otherwise. Kept
    // out of line, so that the frames' paths with the log off stay short.
    [[gnu::noinline]] static void write(CallWords words) {
        std::apply([](auto... values) { linkWriteLine(format.c_str(), values...); },
                   std::tuple_cat(KindTraits<Kinds>::template printed<RealType>(words)...));
    }
};
