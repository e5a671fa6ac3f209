/* A first run of the Windows build under a real PE loader: an application linked
 * against vorn_lapack_link.dll alone calls lsame in its four spellings and a
 * control call, and looks names and an ordinal up in the loaded module. Exits 0
 * when every check holds. Needs vorn_lapack.dll on the search path; no CPU
 * library is needed, so the GPU library's initialisation may fail. */
#include <stdio.h>
#include <windows.h>

int lsame(const char* ca, const char* cb);
int lsame_(const char* ca, const char* cb);
int LSAME(const char* ca, const char* cb);
int LSAME_(const char* ca, const char* cb);
void vornLinkSetCpuAlways(void);
void vornLinkClearCpuAlways(void);

static int failures;

static void check(int holds, const char* what) {
    if (!holds) {
        printf("smoke: FAILED: %s\n", what);
        ++failures;
    }
}

typedef int (*Lsame)(const char*, const char*);

int main(void) {
    const struct {
        const char* name;
        Lsame function;
    } spellings[] = {{"lsame", lsame}, {"lsame_", lsame_}, {"LSAME", LSAME}, {"LSAME_", LSAME_}};
    for (int i = 0; i < 4; ++i) {
        const Lsame f = spellings[i].function;
        char what[64];
        snprintf(what, sizeof what, "%s answers by letter, regardless of case", spellings[i].name);
        check(f("a", "A") == 1 && f("Z", "z") == 1 && f("q", "q") == 1 && f("b", "A") == 0 && f("[", "{") == 0,
              what);
    }

    /* The module as the loader sees it: its name, one body behind lsame's four
     * names, one trampoline behind dgesv_, DGESV and DGESV_ apart from dgesv,
     * ordinal 1 is CAXPY, and the GPU library's functions are not re-exported. */
    HMODULE link = GetModuleHandleA("vorn_lapack_link.dll");
    check(link != NULL, "vorn_lapack_link.dll is loaded under that name");
    if (link != NULL) {
        FARPROC body = GetProcAddress(link, "lsame");
        check(body != NULL && GetProcAddress(link, "lsame_") == body && GetProcAddress(link, "LSAME") == body &&
                  GetProcAddress(link, "LSAME_") == body,
              "lsame's four names share one body");
        FARPROC trampoline = GetProcAddress(link, "dgesv_");
        check(trampoline != NULL && GetProcAddress(link, "DGESV") == trampoline &&
                  GetProcAddress(link, "DGESV_") == trampoline,
              "dgesv_, DGESV and DGESV_ share one trampoline");
        check(GetProcAddress(link, "dgesv") != NULL && GetProcAddress(link, "dgesv") != trampoline,
              "dgesv is the implementation, apart from the trampoline");
        check(GetProcAddress(link, MAKEINTRESOURCEA(1)) == GetProcAddress(link, "CAXPY"), "ordinal 1 is CAXPY");
        check(GetProcAddress(link, "vornInitialize") == NULL, "the GPU library's functions are not exported");
    }

    /* Runs the start-up: the GPU library's initialisation, the environment. */
    vornLinkSetCpuAlways();
    vornLinkClearCpuAlways();

    printf("smoke: %s\n", failures == 0 ? "ok" : "failed");
    return failures == 0 ? 0 : 1;
}
