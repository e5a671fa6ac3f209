// Helpers shared by the tests: temporary files, reading logs, capturing stdout.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

// A path in this process's own temporary folder (created on first use).
std::string tempPath(const std::string& name);

std::string readFile(const std::string& path);
std::vector<std::string> readLines(const std::string& path);
void writeFile(const std::string& path, const std::string& content);

// What printf writes for `format` and `values` (a pointer with %p, as the log shows it).
template <class... T>
std::string formatted(const char* format, T... values) {
    char text[512];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

// Lines of `lines` that start with `prefix`.
std::vector<std::string> linesStartingWith(const std::vector<std::string>& lines, const std::string& prefix);

// Sets an environment variable for this process (tests set them before the first
// call into the library, which reads the environment once).
void setEnv(const char* name, const std::string& value);

// The log and the emulator's record of this test; naming them must precede the
// first call.
inline std::string useFile(const char* variable, const char* name) {
    const std::string path = tempPath(name);
    setEnv(variable, path);
    return path;
}
inline std::string useLogFile() { return useFile("VORN_DEBUG_LOG", "vorn.log"); }
inline std::string useRecord() { return useFile("VORN_EMU_RECORD", "emulator.record"); }

// A shared library opened by path or name, and a symbol of it (dlopen and dlsym,
// LoadLibraryA and GetProcAddress); both give null where nothing is found.
void* openLibrary(const std::string& path);
void* librarySymbol(void* library, const char* name);

// A system library that loads but has no LAPACK routine.
#if defined(_WIN32)
inline constexpr const char* libraryWithoutLapack = "kernel32.dll";
#else
inline constexpr const char* libraryWithoutLapack = "libm.so.6";
#endif

// An address in a page that faults when anything reads or writes it.
void* noAccessPage();

// Runs a program with one argument and waits for it; gives its exit status, or -1
// if it did not exit normally. It inherits this process's environment and
// standard output (a StdoutCapture's file included).
int runProgram(const std::string& path, const std::string& argument);

// Sends file descriptor 1 to a file until stop(), which gives what was written.
// next() gives the lines written since its last call (on Windows, where standard
// output is in text mode, their CR LF ends read as line ends). Test messages
// written meanwhile would mix in: tests collect their findings and report after stop().
class StdoutCapture {
public:
    StdoutCapture();
    ~StdoutCapture();
    std::vector<std::string> next();
    std::string stop();

private:
    int savedFd_ = -1;
    std::string path_;
    std::size_t linesRead_ = 0;
};
