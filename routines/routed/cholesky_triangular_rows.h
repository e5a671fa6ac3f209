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

// potrs: uplo, n, nrhs, a, lda, b, ldb, info (8)
//        | GPU c:uplo, i:n, i:nrhs, p:a, i:lda, p:b, i:ldb | B | n (nrhs plays no part)
// posv: the same arguments, class and measure.
struct potrs {
    enum : int { uplo = 1, n, nrhs, a, lda, b, ldb, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Chr<uplo>, Int<n>, Int<nrhs>, Ptr<a>, Int<lda>, Ptr<b>, Int<ldb>>;
    static int32_t measure(CallWords w) { return w.integer(n); }
};
using posv = potrs;

// potri: uplo, n, a, lda, info (5) | GPU c:uplo, i:n, p:a, i:lda | B | n
using potri = potrf;

// pbtrf: uplo, n, kd, ab, ldab, info (6) | GPU c:uplo, i:n, i:kd, p:ab, i:ldab | B | kd
struct pbtrf {
    enum : int { uplo = 1, n, kd, ab, ldab, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Chr<uplo>, Int<n>, Int<kd>, Ptr<ab>, Int<ldab>>;
    static int32_t measure(CallWords w) { return w.integer(kd); }
};

// trtri: uplo, diag, n, a, lda, info (6) | GPU c:uplo, c:diag, i:n, p:a, i:lda | B | n
struct trtri {
    enum : int { uplo = 1, diag, n, a, lda, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Chr<uplo>, Chr<diag>, Int<n>, Ptr<a>, Int<lda>>;
    static int32_t measure(CallWords w) { return w.integer(n); }
};

// trtrs: uplo, trans, diag, n, nrhs, a, lda, b, ldb, info (10)
//        | GPU c:uplo, c:trans, c:diag, i:n, i:nrhs, p:a, i:lda, p:b, i:ldb | B | n
struct trtrs {
    enum : int { uplo = 1, trans, diag, n, nrhs, a, lda, b, ldb, info, wordCount = info };
    static constexpr FrameClass frameClass = FrameClass::B;
    using GpuArgs = ArgList<Chr<uplo>, Chr<trans>, Chr<diag>, Int<n>, Int<nrhs>, Ptr<a>, Int<lda>, Ptr<b>, Int<ldb>>;
    static int32_t measure(CallWords w) { return w.integer(n); }
};
