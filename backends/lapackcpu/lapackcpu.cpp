// The CPU library: undecorated lower-case names in our argument convention,
// forwarded to the Fortran back end.
#include <cstddef>
#include <utility>

#include "exports/words.h"
#include "fortran_backend.h"

namespace {

// One cached back-end function per routine; looked up on first use.
struct FortranSlot {
    void* function;
    const char* symbol;
};

void* resolve(FortranSlot& slot) {
    if (slot.function == nullptr) slot.function = fortranSymbol(slot.symbol);
    return slot.function;
}

// Calls a Fortran routine with the words and one hidden length per character.
template <std::size_t Characters, std::size_t... I, std::size_t... L>
void callFortran(void* function, void* const* words, std::index_sequence<I...>, std::index_sequence<L...>) {
    using Function = void (*)(decltype((void)I, Word{})..., decltype((void)L, std::size_t{})...);
    reinterpret_cast<Function>(function)(words[I]..., (void(L), std::size_t{1})...);
}

template <std::size_t Words, std::size_t Characters>
void forward(FortranSlot& slot, void* const* words) {
    if (void* function = resolve(slot)) {
        callFortran<Characters>(function, words, std::make_index_sequence<Words>{},
                                std::make_index_sequence<Characters>{});
    }
}

}  // namespace

#define CPU_ROUTINE(name, count, ...)                                                      \
    extern "C" VORN_EXPORT void name(VORN_WORDS_##count) {                                 \
        static constinit FortranSlot slot{nullptr, #name "_"};                             \
        constexpr int characterPositions[] = {0, __VA_ARGS__}; /* 0: none */                                 \
        void* const words[] = {VORN_ARGS_##count};                                         \
        forward<count, sizeof characterPositions / sizeof(int) - 1>(slot, words);              \
    }
#include "cpu_routines.h"
