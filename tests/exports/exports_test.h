// What the export surface's tests share: the forwarded routines' facts read from
// the routine tables, a call of a routine with a given number of words, and what
// a stretch of calls found while the log went to a file (StdoutCapture).
#pragma once

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <gmock/gmock.h>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "routing/work_query.h"
#include "test_support.h"

enum class Result { none, real32, real64, int32, byte, complex };

struct WorkLine {
    int word;
    bool real;
    bool operator==(const WorkLine&) const = default;
};

struct RoutineFacts {
    std::string name;
    int words = 0;
    bool info = false;
    Result result = Result::none;
    std::vector<int> tested;
    std::vector<WorkLine> lines;

    template <class TestedWords, class Lines>
    struct Query {};
    template <int... W, class... L>
    void query(Query<Tested<W...>, WorkLines<L...>>) {
        tested = {W...};
        lines = {WorkLine{L::position, std::is_same_v<L, WorkReal<L::position>>}...};
    }
};

// The routines whose complex result goes through word 1.
inline const std::vector<std::string> complexResults = {"cdotc", "cdotu", "zdotc", "zdotu", "cladiv", "zladiv"};

// The forwarded routines in the order of their table, with their facts.
inline std::vector<RoutineFacts> forwardedTable() {
    std::vector<RoutineFacts> table;
    auto find = [&](const char* name) -> RoutineFacts& {
        for (auto& routine : table)
            if (routine.name == name) return routine;
        throw std::runtime_error(std::string(name) + " is not a forwarded routine");
    };
    auto add = [&](const char* name, int words, bool info) {
        RoutineFacts& routine = table.emplace_back();
        routine.name = name, routine.words = words, routine.info = info;
    };
#define FORWARDED(name, count, hasInfo) add(#name, count, hasInfo);
#include "routines/cpu/forwarded_routines.inc"
#undef FORWARDED
#define RESULT(name, Type)                                                \
    find(#name).result = std::is_same_v<Type, float>     ? Result::real32  \
                         : std::is_same_v<Type, double>  ? Result::real64  \
                         : std::is_same_v<Type, int32_t> ? Result::int32   \
                                                         : Result::byte;
#include "routines/cpu/result_classes.inc"
#undef RESULT
#define WORK_QUERY(name, ...) find(#name).query(RoutineFacts::Query<__VA_ARGS__>{});
#include "routines/cpu/work_queries.inc"
#undef WORK_QUERY
    for (const auto& name : complexResults) find(name.c_str()).result = Result::complex;
    return table;
}

// Calls `function` with the words, followed by nulls up to 32 (a routine reads
// only its own), and gives the bits of what it returns, read in its result's width.
template <class R>
uint64_t callBits(void* function, std::vector<void*> words) {
    words.resize(32);
    auto call = [&]<std::size_t... I>(std::index_sequence<I...>) {
        return reinterpret_cast<R (*)(std::conditional_t<true, void*, decltype(I)>...)>(function)(words[I]...);
    };
    uint64_t bits = 0;
    if constexpr (std::is_void_v<R>) {
        call(std::make_index_sequence<32>{});
    } else {
        const R value = call(std::make_index_sequence<32>{});
        std::memcpy(&bits, &value, sizeof value);
    }
    return bits;
}
inline uint64_t callRoutine(void* function, Result result, const std::vector<void*>& words) {
    switch (result) {
        case Result::real32: return callBits<float>(function, words);
        case Result::real64: return callBits<double>(function, words);
        case Result::int32: return callBits<int32_t>(function, words);
        case Result::byte: return callBits<char>(function, words);
        default: return callBits<void>(function, words);
    }
}

// What a stretch of calls found while the log went to a file, reported after it.
struct Findings {
    std::vector<std::string> list;
    void expect(bool ok, const std::string& what) {
        if (!ok) list.push_back(what);
    }
    void report() const {  // the first few, and how many there were
        std::vector<std::string> shown(list.begin(), list.begin() + std::min<std::size_t>(list.size(), 30));
        EXPECT_THAT(shown, testing::IsEmpty()) << list.size() << " findings in all";
    }
};

inline std::vector<std::string> spellings(const std::string& name) {
    std::string upper = name;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return {name, name + "_", upper, upper + "_"};
}

inline std::string joined(const std::vector<std::string>& lines) {
    std::string text;
    for (const auto& line : lines) text += "\n  " + line;
    return text;
}
