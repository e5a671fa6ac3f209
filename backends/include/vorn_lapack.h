/* Interface of a GPU library as the link library uses it.
 *
 * The link library is bound to libvorn_lapack.so at load time and knows it only
 * by these calls. Every GPU library of the project (the CUDA one, the emulator,
 * test stand-ins) implements exactly this header.
 *
 * Conventions: a character is a char, an integer a 32-bit int, a real scalar a
 * float or double, a complex scalar a vornFloatComplex / vornDoubleComplex passed
 * by value, an array a typed pointer to the caller's host memory. Every routine
 * returns a status; on any status but 0, 7 and 8 the caller's arrays must be left
 * exactly as they were, because the link library then repeats the call on the CPU.
 */
#ifndef VORN_LAPACK_H
#define VORN_LAPACK_H

#ifdef __cplusplus
extern "C" {
#endif

/* Every GPU library exports these functions, whatever its default visibility. */
#if defined(_WIN32)
#define VORN_API
#else
#define VORN_API __attribute__((visibility("default")))
#endif

typedef struct { float re, im; } vornFloatComplex;
typedef struct { double re, im; } vornDoubleComplex;

/* Statuses. 0 is success. 7 and 8 are answers, not failures: the routine met
 * what LAPACK reports through info, and vornGetErrorInfo() gives that value.
 * Every other status is a failure that the link library retries on the CPU. */
enum {
    VORN_STATUS_SUCCESS = 0,
    VORN_STATUS_NO_DEVICE = 1,          /* no usable GPU (or no driver) */
    VORN_STATUS_NOT_AVAILABLE = 2,      /* routine not available on this GPU library */
    VORN_STATUS_OUT_OF_MEMORY = 3,      /* GPU memory exhausted */
    VORN_STATUS_RUNTIME_ERROR = 4,      /* the GPU runtime or a GPU library failed */
    VORN_STATUS_NOT_INITIALIZED = 5,    /* called before a successful vornInitialize */
    VORN_STATUS_DEPENDENCY_MISSING = 6, /* a library the GPU library needs is missing */
    VORN_STATUS_INFO_NUMERICAL = 7,     /* info > 0: singular, not positive definite... */
    VORN_STATUS_INFO_ARGUMENT = 8       /* info < 0: an argument had an illegal value */
};

VORN_API int vornInitialize(void);
VORN_API void vornShutdown(void);
VORN_API const char* vornGetStatusString(int status);
/* The info value of the last routine call on the calling thread that returned 7 or 8. */
VORN_API int vornGetErrorInfo(void);

/* Cholesky and triangular routines */
VORN_API int vornSpotrf(char uplo, int n, float* a, int lda);

#ifdef __cplusplus
}
#endif

#endif
