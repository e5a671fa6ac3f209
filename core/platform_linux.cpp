// The platform layer on Linux: dlopen/dlsym/dlmopen, a recursive pthread mutex,
// text lines and numbers read as Windows reads them.
#include "core/platform.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <pthread.h>

static_assert(sizeof(pthread_mutex_t) <= sizeof(PlatformLock::storage));
static_assert(alignof(pthread_mutex_t) <= alignof(PlatformLock));

// RTLD_DEEPBIND makes the loaded library resolve its own references to itself
// first. The sanitizer runtimes refuse it, so sanitizer builds load without it.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
static constexpr int loadFlags = RTLD_NOW | RTLD_LOCAL;
#else
static constexpr int loadFlags = RTLD_NOW | RTLD_LOCAL | RTLD_DEEPBIND;
#endif

void* platformLoadLibrary(const char* name) {
    // dlopen("") gives the main program, whose symbol lookups would find the
    // link library's own exports; a name that names nothing must fail instead.
    if (name == nullptr || name[0] == '\0') return nullptr;
    return dlopen(name, loadFlags);
}

// RTLD_DEEPBIND isolates only a library that the process has not loaded yet; an
// application linked against the same BLAS defeats it. A link-map namespace of the
// library's own isolates in every case. The namespace has a private copy of the C
// library, whose stdout is not flushed at exit: making that stream unbuffered sends
// each message (a BLAS's xerbla, say) to the process's standard output at once.
void* platformLoadIsolatedLibrary(const char* name) {
    void* noHooks = nullptr;
    return platformLoadIsolatedLibraryWithHooks(name, nullptr, &noHooks);
}

// The hooks open the namespace: the first object loaded into a namespace is in
// its global scope, which every later object there searches before its own
// dependencies. The library, loaded after them, so resolves each name the hooks
// define to theirs.
static Lmid_t namespaceWithHooks(const char* hooks, void** hooksHandle) {
    *hooksHandle = nullptr;
    if (hooks == nullptr) return LM_ID_NEWLM;
    void* handle = dlmopen(LM_ID_NEWLM, hooks, RTLD_NOW | RTLD_LOCAL);
    Lmid_t space = LM_ID_NEWLM;
    if (handle == nullptr || dlinfo(handle, RTLD_DI_LMID, &space) != 0) {
        std::fprintf(stderr, "vorn: cannot load %s (%s): the library's own names serve its calls\n", hooks,
                     platformLoadError());
        return LM_ID_NEWLM;
    }
    *hooksHandle = handle;
    return space;
}

void* platformLoadIsolatedLibraryWithHooks(const char* name, const char* hooks, void** hooksHandle) {
    *hooksHandle = nullptr;
    if (name == nullptr || name[0] == '\0') return nullptr;
    const Lmid_t space = namespaceWithHooks(hooks, hooksHandle);
    void* library = dlmopen(space, name, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return nullptr;
    auto privateStdout = static_cast<FILE**>(dlsym(library, "stdout"));
    using Setvbuf = int (*)(FILE*, char*, int, size_t);
    auto privateSetvbuf = reinterpret_cast<Setvbuf>(dlsym(library, "setvbuf"));
    if (privateStdout != nullptr && privateSetvbuf != nullptr) privateSetvbuf(*privateStdout, nullptr, _IONBF, 0);
    return library;
}

static const void* moduleBase(const void* address) {
    Dl_info info;
    return address != nullptr && dladdr(address, &info) != 0 ? info.dli_fbase : nullptr;
}

void* platformFindApplicationSymbol(const char* name, const char* excludedModuleMark, const void* self) {
    void* definition = dlsym(RTLD_DEFAULT, name);
    const void* base = moduleBase(definition);
    if (base == nullptr) return nullptr;
    if (base == moduleBase(self)) return nullptr;
    if (base == moduleBase(dlsym(RTLD_DEFAULT, excludedModuleMark))) return nullptr;
    return definition;
}

void platformCallAroundFork(void (*prepare)(), void (*parent)(), void (*child)()) {
    pthread_atfork(prepare, parent, child);
}

const char* platformLoadError() {
    const char* error = dlerror();
    return error != nullptr ? error : "no error";
}

void* platformFindSymbol(void* library, const char* name) {
    return dlsym(library, name);
}

static pthread_mutex_t* mutexOf(PlatformLock* lock) {
    return reinterpret_cast<pthread_mutex_t*>(lock->storage);
}

void platformCreateLock(PlatformLock* lock) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(mutexOf(lock), &attributes);
    pthread_mutexattr_destroy(&attributes);
}

void platformEnterLock(PlatformLock* lock) { pthread_mutex_lock(mutexOf(lock)); }

void platformLeaveLock(PlatformLock* lock) { pthread_mutex_unlock(mutexOf(lock)); }

// Linux reads text files as they are; Windows text mode turns CR LF into LF
// before the reader sees it. A lone CR stays a CR on both.
char* platformReadTextLine(char* buffer, int size, FILE* stream) {
    int used = 0;
    while (used < size - 1) {
        int c = std::getc(stream);
        if (c == EOF) break;
        if (c == '\r') {
            const int next = std::getc(stream);
            if (next == '\n') {
                c = '\n';
            } else if (next != EOF) {
                std::ungetc(next, stream);
            }
        }
        buffer[used++] = static_cast<char>(c);
        if (c == '\n') break;
    }
    if (used == 0) return nullptr;
    buffer[used] = '\0';
    return buffer;
}

// long is 64 bits here; a platform with a 32-bit long saturates at its range.
int32_t platformParseLong(const char* text) {
    const long value = std::strtol(text, nullptr, 0);
    if (value > INT32_MAX) return INT32_MAX;
    if (value < INT32_MIN) return INT32_MIN;
    return static_cast<int32_t>(value);
}
