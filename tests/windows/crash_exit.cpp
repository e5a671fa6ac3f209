// Linked into every test program of the Windows build. An access violation or
// any other exception that nothing handles ends the process with the exception's
// code as its exit status: Wine's own crash handler may report such a process as
// having exited with 0, which would pass a crashed test.
//
// Standard output goes to ctest through a pipe, where the C library buffers it in
// full: a process that ends through TerminateProcess loses what it printed. It is
// therefore unbuffered, and the filter names the exception on standard error, so
// that a crashed test shows how far it got and why it stopped.
#include <cstdio>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

namespace {

LONG WINAPI exitWithExceptionCode(EXCEPTION_POINTERS* exception) {
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    std::fprintf(stderr, "test program crashed: exception 0x%08lx at %p\n", static_cast<unsigned long>(code),
                 exception->ExceptionRecord->ExceptionAddress);
    // Under Wine only the low byte of the status reaches the host's wait: a code
    // whose low byte is 0 would read as success there, so it ends with 3.
    TerminateProcess(GetCurrentProcess(), (code & 0xff) != 0 ? code : 3);
    return EXCEPTION_EXECUTE_HANDLER;  // not reached
}

// Installed before main: a crash in a static constructor counts too.
const bool installed = [] {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    SetUnhandledExceptionFilter(exitWithExceptionCode);
    return true;
}();

}  // namespace
