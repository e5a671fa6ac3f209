// A program linked against the link library, for the tests of what happens at
// process exit: with the argument "call" it factors a small matrix on the CPU
// side first, with "illegal" the same call with n = -1 (the program has no
// xerbla_ of its own), with "none" it makes no call; then main returns, and the
// exit handlers run as in any application. Exits with spotrf's info.
#include <cstring>

extern "C" void spotrf(const char* uplo, const void* n, float* a, const void* lda, void* info);

int main(int argc, char** argv) {
    int info = 0;
    if (argc > 1 && std::strcmp(argv[1], "none") != 0) {
        int n = std::strcmp(argv[1], "illegal") == 0 ? -1 : 2;
        float a[] = {4.0f, 1.0f, 1.0f, 9.0f};
        spotrf("L", &n, a, &n, &info);
    }
    return info;
}
