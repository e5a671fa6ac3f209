// Linked into every test program of the Windows build. An access violation or
// any other exception that nothing handles ends the process with the exception's
// code as its exit status: Wine's own crash handler may report such a process as
// having exited with 0, which would pass a crashed test.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace {

LONG WINAPI exitWithExceptionCode(EXCEPTION_POINTERS* exception) {
    // Under Wine only the low byte of the status reaches the host's wait: a code
    // whose low byte is 0 would read as success there, so it ends with 3.
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    TerminateProcess(GetCurrentProcess(), (code & 0xff) != 0 ? code : 3);
    return EXCEPTION_EXECUTE_HANDLER;  // not reached
}

// Installed before main: a crash in a static constructor counts too.
const bool installed = (SetUnhandledExceptionFilter(exitWithExceptionCode), true);

}  // namespace
