// Cholesky and triangular routines: one row per root, one instance per precision.
// Columns: the exported arguments (word positions), the GPU function's arguments,
// the frame class and the measure compared with the crossover.
#pragma once

#include "routing/routed_frame.h"

// potrf: uplo, n, a, lda, info (5) | GPU c:uplo, i:n, p:a, i:lda | B | measure n
struct potrf {
    enum : int { uplo = 1, n, a, lda, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Chr<uplo>, Int<n>, Ptr<a>, Int<lda>>;
    static int32_t measure(CallWords w) { return w.integer(n); }
};
