// A string known at compile time, usable as a template argument and joinable
// with +, for the log formats that the routine tables derive.
#pragma once

#include <cstddef>

template <std::size_t N>
struct FixedString {
    char text[N]{};  // N counts the terminating NUL

    constexpr FixedString() = default;
    constexpr FixedString(const char (&literal)[N]) {
        for (std::size_t i = 0; i < N; ++i) text[i] = literal[i];
    }
    constexpr const char* c_str() const { return text; }
};

template <std::size_t A, std::size_t B>
constexpr FixedString<A + B - 1> operator+(const FixedString<A>& left, const FixedString<B>& right) {
    FixedString<A + B - 1> joined;
    for (std::size_t i = 0; i + 1 < A; ++i) joined.text[i] = left.text[i];
    for (std::size_t i = 0; i < B; ++i) joined.text[A - 1 + i] = right.text[i];
    return joined;
}

template <std::size_t A, std::size_t B>
constexpr auto operator+(const FixedString<A>& left, const char (&right)[B]) {
    return left + FixedString<B>(right);
}

template <std::size_t A, std::size_t B>
constexpr auto operator+(const char (&left)[A], const FixedString<B>& right) {
    return FixedString<A>(left) + right;
}
