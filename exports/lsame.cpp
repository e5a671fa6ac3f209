// lsame, the one routine the library computes itself: whether two characters are
// the same letter regardless of case. It starts nothing and logs nothing, so it
// can be called before anything else; one body serves all four spellings.
#include <cstdint>

#include "exports/words.h"

extern "C" VORN_EXPORT int32_t lsame(Word ca, Word cb) {
    unsigned a = *static_cast<const unsigned char*>(ca);
    unsigned b = *static_cast<const unsigned char*>(cb);
    if (a == b) return 1;
    // Plain ASCII folding of the 26 letters, independent of any locale.
    if (a >= 'a' && a <= 'z') a -= 32;
    if (b >= 'a' && b <= 'z') b -= 32;
    return a == b ? 1 : 0;
}

extern "C" VORN_EXPORT int32_t lsame_(Word, Word) __attribute__((alias("lsame")));
extern "C" VORN_EXPORT int32_t LSAME(Word, Word) __attribute__((alias("lsame")));
extern "C" VORN_EXPORT int32_t LSAME_(Word, Word) __attribute__((alias("lsame")));
