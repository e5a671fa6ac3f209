// How a routed routine's arguments reach its GPU function, in the notation of the
// routine tables:
//   Chr<w>   the character at word w, by value (c:)
//   Int<w>   the 32-bit integer at word w, by value (i:)
//   Real<w>  the real scalar at word w, by value, float or double (f:)
//   Cplx<w>  the complex scalar at word w, by value, real part first (P:)
//   Ptr<w>   word w itself, the caller's pointer (p:)
// The value's C type comes from the GPU function's own prototype, and each kind is
// checked against it at compile time, so a table row that disagrees with
// vorn_lapack.h does not build. The entry line prints exactly these arguments, in
// this order, with the conversion of each kind.
#pragma once

#include <tuple>
#include <type_traits>

#include "routing/call_words.h"
#include "routing/fixed_string.h"
#include "vorn_lapack.h"

template <int W> struct Chr { static constexpr int position = W; };
template <int W> struct Int { static constexpr int position = W; };
template <int W> struct Real { static constexpr int position = W; };
template <int W> struct Cplx { static constexpr int position = W; };
template <int W> struct Ptr { static constexpr int position = W; };

template <class... Kinds> struct ArgList {};

template <class Kind> struct KindTraits;
template <int W> struct KindTraits<Chr<W>> {
    static constexpr FixedString format = "%c";
    template <class P> static constexpr bool accepts = std::is_same_v<P, char>;
    static auto printed(char value) { return std::tuple<int>(value); }
};
template <int W> struct KindTraits<Int<W>> {
    static constexpr FixedString format = "%d";
    template <class P> static constexpr bool accepts = std::is_same_v<P, int>;
    static auto printed(int value) { return std::tuple<int>(value); }
};
template <int W> struct KindTraits<Real<W>> {
    static constexpr FixedString format = "%f";
    template <class P>
    static constexpr bool accepts = std::is_same_v<P, float> || std::is_same_v<P, double>;
    static auto printed(double value) { return std::tuple<double>(value); }
};
template <int W> struct KindTraits<Cplx<W>> {
    static constexpr FixedString format = "(%f,%f)";
    template <class P>
    static constexpr bool accepts =
        std::is_same_v<P, vornFloatComplex> || std::is_same_v<P, vornDoubleComplex>;
    template <class C> static auto printed(C value) {
        return std::tuple<double, double>(value.re, value.im);
    }
};
template <int W> struct KindTraits<Ptr<W>> {
    static constexpr FixedString format = "%p";
    template <class P> static constexpr bool accepts = std::is_pointer_v<P>;
    static auto printed(const void* value) { return std::tuple<const void*>(value); }
};

// The value that a GPU parameter of type P receives for an argument of kind Kind.
template <class Kind, class P>
P gpuValue(CallWords words) {
    if constexpr (std::is_pointer_v<P>) {
        return static_cast<P>(words.pointer(Kind::position));
    } else {
        return words.read<P>(Kind::position);
    }
}

// The parameter types of a GPU function.
template <class F> struct GpuSignature;
template <class... P> struct GpuSignature<int (*)(P...)> {
    using Parameters = std::tuple<P...>;
    static constexpr std::size_t count = sizeof...(P);
};

// The entry line's conversions for an argument list: "%c, %d, %p, %d".
template <class... Kinds>
constexpr auto conversionList(ArgList<Kinds...>) {
    if constexpr (sizeof...(Kinds) == 0) {
        return FixedString("");
    } else {
        return [](auto first, auto... rest) { return (first + ... + (", " + rest)); }(
            KindTraits<Kinds>::format...);
    }
}

// Binds an argument list to a GPU function: the call itself and the entry line.
template <auto GpuFunction, class List> struct GpuBinding;
template <auto GpuFunction, class... Kinds>
struct GpuBinding<GpuFunction, ArgList<Kinds...>> {
    using Signature = GpuSignature<decltype(GpuFunction)>;
    static_assert(Signature::count == sizeof...(Kinds),
                  "the GPU argument list and the GPU function differ in length");

    template <std::size_t... I>
    static constexpr bool kindsMatch(std::index_sequence<I...>) {
        return (KindTraits<Kinds>::template accepts<
                    std::tuple_element_t<I, typename Signature::Parameters>> && ...);
    }
    static_assert(kindsMatch(std::index_sequence_for<Kinds...>{}),
                  "an argument kind does not match the GPU function's parameter type");

    template <std::size_t I>
    using Parameter = std::tuple_element_t<I, typename Signature::Parameters>;

    static int call(CallWords words) { return callWith(words, std::index_sequence_for<Kinds...>{}); }

    // The values the entry line prints, in order: one per argument, two for a
    // complex scalar, floats widened to double.
    static auto printedValues(CallWords words) {
        return printedWith(words, std::index_sequence_for<Kinds...>{});
    }

private:
    template <std::size_t... I>
    static int callWith(CallWords words, std::index_sequence<I...>) {
        return GpuFunction(gpuValue<Kinds, Parameter<I>>(words)...);
    }
    template <std::size_t... I>
    static auto printedWith(CallWords words, std::index_sequence<I...>) {
        return std::tuple_cat(KindTraits<Kinds>::printed(gpuValue<Kinds, Parameter<I>>(words))...);
    }
};
