// How a routed routine's arguments reach its GPU function: the same argument list
// that its entry line prints (routing/entry_line.h), each word given by value as
// its kind reads it (a character, a 32-bit integer, a real or complex scalar in
// the routine's precision) or as the caller's pointer. The GPU function's own
// prototype is only checked against the list, at compile time, so a table row
// that disagrees with vorn_lapack.h does not build.
#pragma once

#include <cstddef>
#include <tuple>
#include <type_traits>

#include "routing/call_words.h"
#include "routing/entry_line.h"
#include "routing/fixed_string.h"
#include "vorn_gpu_functions.h"
#include "vorn_lapack.h"

// Whether a GPU parameter of type P is what an argument of kind Kind gives, in a
// routine whose real type is RealType.
template <class Kind, class P, class RealType> struct GpuParameterFits : std::false_type {};
template <int W, class R> struct GpuParameterFits<Chr<W>, char, R> : std::true_type {};
template <int W, class R> struct GpuParameterFits<Int<W>, int, R> : std::true_type {};
template <int W, class R> struct GpuParameterFits<Real<W>, R, R> : std::true_type {};
template <int W> struct GpuParameterFits<Cplx<W>, vornFloatComplex, float> : std::true_type {};
template <int W> struct GpuParameterFits<Cplx<W>, vornDoubleComplex, double> : std::true_type {};
template <int W, class P, class R> struct GpuParameterFits<Ptr<W>, P*, R> : std::true_type {};

// The parameter types of a GPU function.
template <class F> struct GpuSignature;
template <class... P> struct GpuSignature<int (*)(P...)> {
    using Parameters = std::tuple<P...>;
    static constexpr std::size_t count = sizeof...(P);
};

// Binds an argument list to a GPU function of a routine whose real type is RealType.
template <auto GpuFunction, class List, class RealType> struct GpuBinding;
template <auto GpuFunction, class... Kinds, class RealType>
struct GpuBinding<GpuFunction, ArgList<Kinds...>, RealType> {
    using Signature = GpuSignature<decltype(GpuFunction)>;
    static_assert(Signature::count == sizeof...(Kinds),
                  "the GPU argument list and the GPU function differ in length");

    template <std::size_t I>
    using Parameter = std::tuple_element_t<I, typename Signature::Parameters>;

    template <std::size_t... I>
    static constexpr bool kindsMatch(std::index_sequence<I...>) {
        return (GpuParameterFits<Kinds, Parameter<I>, RealType>::value && ...);
    }
    static_assert(kindsMatch(std::index_sequence_for<Kinds...>{}),
                  "an argument kind does not match the GPU function's parameter type");

    static int call(CallWords words) { return callWith(words, std::index_sequence_for<Kinds...>{}); }

private:
    template <class Kind, class P>
    static P value(CallWords words) {
        if constexpr (std::is_pointer_v<P>) {
            return static_cast<P>(words.pointer(Kind::position));
        } else {
            return words.read<P>(Kind::position);
        }
    }
    template <std::size_t... I>
    static int callWith(CallWords words, std::index_sequence<I...>) {
        return GpuFunction(value<Kinds, Parameter<I>>(words)...);
    }
};

// The GPU function that the GPU function list gives a routine, by its base name;
// null for a routine the list does not name. The routed rows are held against it.
template <FixedString Base> struct ListedGpuFunction {
    static constexpr std::nullptr_t value = nullptr;
};
#define VORN_LISTED_GPU_FUNCTION(function, base, root, T) \
    template <> struct ListedGpuFunction<#base> {         \
        static constexpr auto value = &function;           \
    };
VORN_GPU_FUNCTIONS(VORN_LISTED_GPU_FUNCTION)
#undef VORN_LISTED_GPU_FUNCTION
