#include "recording_cpu.h"

#include <cstring>
#include <initializer_list>

#include "exports/words.h"

static CpuRecord record;

CpuRecord* recordingCpu() { return &record; }

static void remember(std::initializer_list<void*> words) {
    ++record.calls;
    record.wordCount = 0;
    for (void* word : words) record.words[record.wordCount++] = word;
}

// What a routine with info leaves behind: info, and the first element of its work
// arrays in the routine's own types.
template <class Real>
static void answer(void* info, void* work, void* iwork) {
    std::memcpy(info, &record.info, 4);
    if (record.infoHigh != 0) std::memcpy(static_cast<char*>(info) + 4, &record.infoHigh, 4);
    const Real first = static_cast<Real>(record.work);
    std::memcpy(work, &first, sizeof first);
    if (iwork != nullptr) std::memcpy(iwork, &record.iwork, 4);
}

extern "C" {
// getri's shape: n, a, lda, ipiv, work, lwork, info
VORN_EXPORT void dfakegetri(VORN_WORDS_7) {
    remember({VORN_ARGS_7});
    answer<double>(w7, w5, nullptr);
}
// syevd's shape: jobz, uplo, n, a, lda, w, work, lwork, iwork, liwork, info
VORN_EXPORT void sfakesyevd(VORN_WORDS_11) {
    remember({VORN_ARGS_11});
    answer<float>(w11, w7, w9);
}
}
