#include "recording_cpu.h"

#include <cstring>
#include <initializer_list>

#include "exports/words.h"

static CpuRecord record;

CpuRecord* recordingCpu() { return &record; }

// Records a call's words and leaves behind info and the first element of its work
// arrays in the routine's own types.
template <class Real>
static void answer(std::initializer_list<void*> words, void* info, void* work, void* iwork) {
    record.wordCount = 0;
    for (void* word : words) record.words[record.wordCount++] = word;
    std::memcpy(info, &record.info, 4);
    if (record.infoHigh != 0) std::memcpy(static_cast<char*>(info) + 4, &record.infoHigh, 4);
    const Real first = static_cast<Real>(record.work);
    std::memcpy(work, &first, sizeof first);
    if (iwork != nullptr) std::memcpy(iwork, &record.iwork, 4);
}

extern "C" {
// getri's shape: n, a, lda, ipiv, work, lwork, info
VORN_EXPORT void dfakegetri(VORN_WORDS_7) { answer<double>({VORN_ARGS_7}, w7, w5, nullptr); }
// syevd's shape: jobz, uplo, n, a, lda, w, work, lwork, iwork, liwork, info
VORN_EXPORT void sfakesyevd(VORN_WORDS_11) { answer<float>({VORN_ARGS_11}, w11, w7, w9); }
}
