// The emulator's start-up, statuses and failure knobs.
#include "emulator.h"

#include <chrono>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <random>
#include <thread>

#include "core/platform.h"

static void* cpuLibrary;
static int readiness = VORN_STATUS_NOT_INITIALIZED;  // vornInitialize's last status
static thread_local int errorInfo;

void emulatorRecord(const char* format, ...) {
    const char* path = std::getenv("VORN_EMU_RECORD");
    if (path == nullptr) return;
    // Threads record one line at a time: Windows' C library appends by seeking to
    // the end before each write, so two threads appending at once could write one
    // line over the other.
    static std::mutex recordLock;
    const std::lock_guard hold(recordLock);
    FILE* record = std::fopen(path, "a");
    if (record == nullptr) return;
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(record, format, arguments);
    va_end(arguments);
    std::fputc('\n', record);
    std::fclose(record);
}

bool emulatorRecording() { return std::getenv("VORN_EMU_RECORD") != nullptr; }

// The value of "<routine>=<value>" in a comma-separated list variable, or null.
static const char* routineEntry(const char* variable, const char* routine) {
    const char* list = std::getenv(variable);
    const std::size_t length = std::strlen(routine);
    for (const char* entry = list; entry != nullptr && *entry != '\0';) {
        if (std::strncmp(entry, routine, length) == 0 && entry[length] == '=') return entry + length + 1;
        entry = std::strchr(entry, ',');
        if (entry != nullptr) ++entry;
    }
    return nullptr;
}

// Finds "<routine>=<status>[:<info>]" in VORN_EMU_STATUS.
ForcedStatus emulatorForcedStatus(const char* routine) {
    const char* value = routineEntry("VORN_EMU_STATUS", routine);
    if (value == nullptr) return {false, 0, 0};
    char* end;
    ForcedStatus forced{true, static_cast<int>(std::strtol(value, &end, 10)), 0};
    if (*end == ':') forced.info = static_cast<int>(std::strtol(end + 1, nullptr, 10));
    return forced;
}

void emulatorPace(const char* routine) {
    if (const char* value = routineEntry("VORN_EMU_DELAY_US", routine)) {
        std::this_thread::sleep_for(std::chrono::microseconds(std::strtol(value, nullptr, 10)));
    }
}

int emulatorRandomFailure() {
    const char* percent = std::getenv("VORN_EMU_RANDOM_FAILURES");
    if (percent == nullptr) return 0;
    // One generator per thread: no lock, and each thread its own sequence.
    thread_local std::minstd_rand generator(std::random_device{}());
    if (std::uniform_int_distribution<int>(0, 99)(generator) >= std::atoi(percent)) return 0;
    const int status = std::uniform_int_distribution<int>(VORN_STATUS_NO_DEVICE, VORN_STATUS_DEPENDENCY_MISSING)(generator);
    emulatorRecord("random failure %d", status);
    return status;
}

int emulatorReadiness() { return readiness; }

void* emulatorCpuFunction(const char* routine) {
    return cpuLibrary != nullptr ? platformFindSymbol(cpuLibrary, routine) : nullptr;
}

void emulatorSetErrorInfo(int info) { errorInfo = info; }

int emulatorAnswer(int info) {
    errorInfo = info;
    if (info > 0) return VORN_STATUS_INFO_NUMERICAL;
    if (info < 0) return VORN_STATUS_INFO_ARGUMENT;
    return VORN_STATUS_SUCCESS;
}

extern "C" {

int vornInitialize(void) {
    emulatorRecord("vornInitialize()");
    if (const char* delay = std::getenv("VORN_EMU_INIT_DELAY_MS")) {
        std::this_thread::sleep_for(std::chrono::milliseconds(std::atoi(delay)));
    }
    if (const char* status = std::getenv("VORN_EMU_INIT_STATUS")) {
        if (std::atoi(status) != 0) return readiness = std::atoi(status);
    }
    const char* path = std::getenv("VORN_EMU_CPU_LIB");
    cpuLibrary = platformLoadLibrary(path != nullptr ? path : platformDefaultCpuLibrary);
    readiness = cpuLibrary != nullptr ? VORN_STATUS_SUCCESS : VORN_STATUS_DEPENDENCY_MISSING;
    return readiness;
}

void vornShutdown(void) { emulatorRecord("vornShutdown()"); }

const char* vornGetStatusString(int status) {
    switch (status) {
        case VORN_STATUS_SUCCESS: return "success";
        case VORN_STATUS_NO_DEVICE: return "no GPU present";
        case VORN_STATUS_NOT_AVAILABLE: return "routine not available on this GPU library";
        case VORN_STATUS_OUT_OF_MEMORY: return "out of GPU memory";
        case VORN_STATUS_RUNTIME_ERROR: return "GPU runtime error";
        case VORN_STATUS_NOT_INITIALIZED: return "GPU library not initialized";
        case VORN_STATUS_DEPENDENCY_MISSING: return "emulator: cannot load the CPU library";
        case VORN_STATUS_INFO_NUMERICAL: return "routine reported a numerical condition in info";
        case VORN_STATUS_INFO_ARGUMENT: return "routine reported an illegal argument in info";
        default: return "unknown status";
    }
}

int vornGetErrorInfo(void) { return errorInfo; }

const char* vornEmulatorDescription(void) { return "the emulator GPU library: it computes on the CPU"; }

}  // extern "C"
