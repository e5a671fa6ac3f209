// The platform layer on Windows: LoadLibraryA/GetProcAddress, a critical section
// as the recursive lock, and the C library's own text mode and strtol. The only
// file of the library that includes windows.h.
#include "core/platform.h"

#include <cstdio>
#include <cstdlib>

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

static_assert(sizeof(CRITICAL_SECTION) <= sizeof(PlatformLock::storage));
static_assert(alignof(CRITICAL_SECTION) <= alignof(PlatformLock));
// long is 32 bits here, so strtol already gives the saturated 32-bit result.
static_assert(sizeof(long) == sizeof(int32_t));

// The error code of this thread's last failed load, kept apart from GetLastError,
// which any later system call may overwrite before the message is asked for.
static thread_local DWORD lastLoadError = ERROR_SUCCESS;

// LoadLibraryA("") fails already; the test keeps the rule in one place for both
// platforms: a name that names nothing never loads.
void* platformLoadLibrary(const char* name) {
    if (name == nullptr || name[0] == '\0') {
        lastLoadError = ERROR_MOD_NOT_FOUND;
        return nullptr;
    }
    HMODULE library = LoadLibraryA(name);
    if (library == nullptr) lastLoadError = GetLastError();
    return reinterpret_cast<void*>(library);
}

// Each DLL binds its own imports when it is loaded: a BLAS DLL's internal calls
// reach the BLAS DLL's own functions, never the link library's exports of the same
// names, and it writes through the process's one C library. A plain load is
// therefore already isolated.
void* platformLoadIsolatedLibrary(const char* name) {
    return platformLoadLibrary(name);
}

void* platformLoadIsolatedLibraryWithHooks(const char* name, const char*, void** hooksHandle) {
    *hooksHandle = nullptr;
    return platformLoadLibrary(name);
}

// Each DLL binds its own imports: no other module's definition reaches a DLL's calls.
void* platformFindApplicationSymbol(const char*, const char*, const void*) { return nullptr; }

void platformCallAroundFork(void (*)(), void (*)(), void (*)()) {}

const char* platformLoadError() {
    static thread_local char message[256];
    if (lastLoadError == ERROR_SUCCESS) return "no error";
    const DWORD length = FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                                        lastLoadError, 0, message, sizeof message, nullptr);
    if (length == 0) {
        std::snprintf(message, sizeof message, "error %lu", static_cast<unsigned long>(lastLoadError));
        return message;
    }
    // The system's messages end in CR LF; the caller writes its own line end.
    DWORD end = length;
    while (end > 0 && (message[end - 1] == '\r' || message[end - 1] == '\n' || message[end - 1] == ' ')) --end;
    message[end] = '\0';
    return message;
}

void* platformFindSymbol(void* library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

static CRITICAL_SECTION* sectionOf(PlatformLock* lock) {
    return reinterpret_cast<CRITICAL_SECTION*>(lock->storage);
}

// A critical section is recursive: the owning thread may enter it again.
void platformCreateLock(PlatformLock* lock) { InitializeCriticalSection(sectionOf(lock)); }

void platformEnterLock(PlatformLock* lock) { EnterCriticalSection(sectionOf(lock)); }

void platformLeaveLock(PlatformLock* lock) { LeaveCriticalSection(sectionOf(lock)); }

// Files are opened in text mode, which turns CR LF into LF before fgets sees it.
char* platformReadTextLine(char* buffer, int size, FILE* stream) {
    return std::fgets(buffer, size, stream);
}

int32_t platformParseLong(const char* text) {
    return static_cast<int32_t>(std::strtol(text, nullptr, 0));
}
