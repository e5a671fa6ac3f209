#include "core/link_state.h"

#include <cstdarg>
#include <cstdlib>

constinit LinkState linkState{};

// A setting switches something on only when its value is exactly "1": "11", " 1",
// "01", "true" and the empty value do not count.
static bool settingIsOne(const char* value) {
    return value != nullptr && value[0] == '1' && value[1] == '\0';
}

void linkOpenLog() {
    if (linkState.logOpened) return;
    linkState.logStream = stdout;
    if (settingIsOne(std::getenv("VORN_VERBOSE"))) linkState.verbose = 1;

    // VORN_DEBUG_LOG turns the info lines on even when the file cannot be opened:
    // the user asked for a log, and stdout is the next best place for it.
    if (const char* logPath = std::getenv("VORN_DEBUG_LOG")) {
        linkState.logStream = std::fopen(logPath, "a");
        if (linkState.logStream == nullptr) {
            linkState.logStream = stdout;
            linkWriteLine("vorn error: cannot log to '%s', using stdout\n", logPath);
        }
        linkState.verbose = 1;
    }

    // Unbuffered, so that a line has left the library when its write returns.
    std::setvbuf(linkState.logStream, nullptr, _IONBF, 0);
    linkState.logOpened = 1;
}

void linkReadRouting() {
    linkState.cpuAlways = settingIsOne(std::getenv("VORN_CPU_ALWAYS"));
    linkState.gpuAlways = settingIsOne(std::getenv("VORN_GPU_ALWAYS"));
    linkState.ilp64 = settingIsOne(std::getenv("VORN_ILP64"));
}

void linkWriteLine(const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(linkState.logStream, format, arguments);
    va_end(arguments);
}
