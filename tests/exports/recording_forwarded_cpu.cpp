#include "recording_forwarded_cpu.h"

#include <cstring>

#include "exports/words.h"
#include "routines/cpu/forwarded_frame.h"

static ForwardedCpuRecord record;

extern "C" VORN_EXPORT ForwardedCpuRecord* recordingForwardedCpu() { return &record; }

// Writes each work line's answer to its element 1, in the order of the lines.
template <class Real, class... Lines>
static void answerWork(void* const* words, WorkLines<Lines...>) {
    [[maybe_unused]] int k = 0;
    [[maybe_unused]] auto put = [&](int word, auto value) { std::memcpy(words[word - 1], &value, sizeof value); };
    (..., (std::is_same_v<Lines, WorkReal<Lines::position>> ? put(Lines::position, static_cast<Real>(realWorkAnswer(k++)))
                                                          : put(Lines::position, integerWorkAnswer(k++))));
}

template <FixedString Name, int Words, bool HasInfo>
static ForwardedResult<Name> answer(void* const* words) {
    ++record.calls;
    std::strncpy(record.routine, Name.c_str(), sizeof record.routine - 1);
    record.wordCount = Words;
    std::memcpy(record.words, words, Words * sizeof(void*));
    if constexpr (HasInfo) std::memcpy(words[Words - 1], &record.info, 4);
    answerWork<RealTypeOf<Name.text[0]>>(words, typename WorkQueryOf<Name>::Lines{});
    if constexpr (!std::is_void_v<ForwardedResult<Name>>) {
        ForwardedResult<Name> result;
        std::memcpy(&result, &record.result, sizeof result);
        return result;
    }
}

#define FORWARDED(name, words, info)                                         \
    extern "C" VORN_EXPORT ForwardedResult<#name> name(VORN_WORDS_##words) { \
        void* const passed[] = {VORN_ARGS_##words};                          \
        return answer<#name, words, info>(passed);                           \
    }
#include "routines/cpu/forwarded_routines.inc"

// The logged CPU-only routines too: they have no result and no work query.
#define LOGGED(name, words, Printed, info)                      \
    extern "C" VORN_EXPORT void name(VORN_WORDS_##words) {      \
        void* const passed[] = {VORN_ARGS_##words};             \
        answer<#name, words, info>(passed);                     \
    }
#include "routines/cpu/logged_routines.inc"
