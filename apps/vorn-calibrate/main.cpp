// vorn-calibrate: measures where the GPU side starts to pay for each chosen
// routine and writes a crossover list file, the times and a plot.
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <string>

#include "calibration.h"
#include "link_log.h"
#include "options.h"
#include "results.h"

namespace {

// Settings that would keep a side from being forced or change the calls'
// arguments; the calibrator's own log replaces any the caller asked for.
void clearRoutingSettings() {
    for (const char* name : {"VORN_CROSSOVER_LIST", "VORN_CPU_ALWAYS", "VORN_GPU_ALWAYS", "VORN_ILP64", "VORN_VERBOSE"})
        unsetenv(name);
}

// Which GPU library the loader gave the link library. Only the emulator exports
// vornEmulatorDescription.
std::string describeGpuLibrary(bool& emulator) {
    std::string file = "libvorn_lapack.so";
    Dl_info where;
    if (void* initialize = dlsym(RTLD_DEFAULT, "vornInitialize"); initialize != nullptr && dladdr(initialize, &where))
        file = where.dli_fname;
    using Description = const char* (*)();
    auto description = reinterpret_cast<Description>(dlsym(RTLD_DEFAULT, "vornEmulatorDescription"));
    emulator = description != nullptr;
    return emulator ? file + ", " + description() : file;
}

}  // namespace

int main(int argc, char** argv) {
    bool helpShown = false;
    const auto options = parseOptions(argc, argv, helpShown);
    if (!options) return helpShown ? 0 : 2;

    clearRoutingSettings();
    LinkLog log;
    if (!log.open()) {
        std::fprintf(stderr, "vorn-calibrate: cannot create the log file in the temporary folder\n");
        return 1;
    }
    const BackEnds backEnds = probeBackEnds(log);
    bool emulator = false;
    const std::string gpuLibrary = describeGpuLibrary(emulator);
    if (!backEnds.gpuStarted) {
        std::fprintf(stderr,
                     "vorn-calibrate: the GPU library (%s) failed to start: %s\n"
                     "vorn-calibrate: every call would run on the CPU; nothing measured, nothing written\n",
                     gpuLibrary.c_str(), backEnds.gpuFailure.c_str());
        return 1;
    }
    if (!backEnds.cpuFailure.empty()) {
        std::fprintf(stderr, "vorn-calibrate: the CPU library cannot be used: %s\nvorn-calibrate: nothing written\n",
                     backEnds.cpuFailure.c_str());
        return 1;
    }
    std::fprintf(stderr, "vorn-calibrate: GPU library %s\n", gpuLibrary.c_str());
    const char* noRealGpu = "the GPU library is the emulator, which computes on the CPU: these times and crossovers "
                            "describe no real GPU";
    if (emulator) std::fprintf(stderr, "vorn-calibrate: %s\n", noRealGpu);

    const auto results = calibrate(*options, log);

    bool written = true;
    if (!writeCrossoverList(options->output, results)) {
        std::fprintf(stderr, "vorn-calibrate: cannot write '%s'\n", options->output.c_str());
        written = false;
    } else {
        std::fprintf(stderr, "vorn-calibrate: crossover list written to %s (use it with VORN_CROSSOVER_LIST=%s)\n",
                     options->output.c_str(), options->output.c_str());
    }
    if (!writeTimings(options->timings, results)) {
        std::fprintf(stderr, "vorn-calibrate: cannot write '%s'\n", options->timings.c_str());
        written = false;
    } else {
        std::fprintf(stderr, "vorn-calibrate: times written to %s\n", options->timings.c_str());
    }
    const std::string title = emulator ? "Emulator GPU library (computes on the CPU): describes no real GPU"
                                       : "CPU and GPU side through the link library";
    if (const std::string failure = drawPlot(options->plot, results, title); !failure.empty()) {
        std::fprintf(stderr, "vorn-calibrate: no plot: %s; the times are in %s\n", failure.c_str(),
                     options->timings.c_str());
    } else {
        std::fprintf(stderr, "vorn-calibrate: plot drawn to %s\n", options->plot.c_str());
    }
    if (emulator) std::fprintf(stderr, "vorn-calibrate: %s\n", noRealGpu);
    return written ? 0 : 1;
}
