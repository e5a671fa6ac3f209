// vorn-run [options] -- program [args]: runs a program with the link library
// preloaded in front of its own LAPACK and BLAS, the settings given as options,
// and with --summary a table of where its calls ran, read from the log.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "apps/vorn-run/library_paths.h"
#include "apps/vorn-run/log_summary.h"

namespace fs = std::filesystem;

namespace {

constexpr int usageError = 2;
constexpr int notExecutable = 126;
constexpr int notFound = 127;

constexpr const char* usage = R"(usage: vorn-run [options] -- program [args]

Runs the program with the link library preloaded (LD_PRELOAD: the gfortran
shim, the CBLAS library where installed, the link library, then any
LD_PRELOAD of your own), so that its LAPACK and BLAS calls run on the GPU
library or on the CPU library by their size. VORN_CPU_LIB names the CPU
library unless you set it yourself.

options:
  --verbose          log every call on standard output (VORN_VERBOSE=1)
  --cpu-always       run every routed routine on the CPU (VORN_CPU_ALWAYS=1)
  --gpu-always       run every routed routine on the GPU (VORN_GPU_ALWAYS=1)
  --crossovers FILE  read crossovers from FILE (VORN_CROSSOVER_LIST)
  --ilp64            the program passes 64-bit integers (VORN_ILP64=1)
  --log FILE         append the log to FILE (VORN_DEBUG_LOG)
  --summary          run the program, then print on standard error, per
                     routine, its calls, how many ran on the GPU and on the
                     CPU, and why; the log goes to a temporary file, or to
                     the --log file (with --verbose it is printed after the
                     program ends)
  --version          the version and the GPU library in use
  --help             this text

The exit status is the program's; 128+N when signal N ended it; 2 for a bad
option, 126 or 127 when the program cannot be run.
)";

[[noreturn]] void fail(const std::string& message, int status = usageError) {
    std::cerr << "vorn-run: " << message << "\n";
    std::exit(status);
}

struct Options {
    bool verbose = false, cpuAlways = false, gpuAlways = false, ilp64 = false, summary = false;
    std::string crossovers, log;
    std::vector<char*> program;  // the program and its arguments, null-terminated
};

std::string launcherPath() {
    std::error_code error;
    const fs::path self = fs::read_symlink("/proc/self/exe", error);
    if (error) fail("cannot find its own file (/proc/self/exe): " + error.message(), 1);
    return self.string();
}

Options readOptions(int argc, char** argv) {
    Options options;
    int next = 1;
    auto value = [&](const std::string& option) -> std::string {
        if (next + 1 >= argc) fail(option + " needs a file name");
        return argv[++next];
    };
    for (; next < argc; ++next) {
        const std::string arg = argv[next];
        if (arg == "--") { ++next; break; }
        if (arg.empty() || arg[0] != '-') break;
        if (arg == "--verbose") options.verbose = true;
        else if (arg == "--cpu-always") options.cpuAlways = true;
        else if (arg == "--gpu-always") options.gpuAlways = true;
        else if (arg == "--ilp64") options.ilp64 = true;
        else if (arg == "--summary") options.summary = true;
        else if (arg == "--crossovers") options.crossovers = value(arg);
        else if (arg == "--log") options.log = value(arg);
        else if (arg == "--help") {
            std::cout << usage << "\nGPU library: " << gpuLibraryDescription(launcherPath()) << "\n";
            std::exit(0);
        } else if (arg == "--version") {
            std::cout << "vorn-run " VORN_RUN_VERSION "\nGPU library: " << gpuLibraryDescription(launcherPath())
                      << "\n";
            std::exit(0);
        } else fail("unknown option '" + arg + "' (see vorn-run --help)");
    }
    if (next >= argc) fail("no program to run: vorn-run [options] -- program [args]");
    if (options.cpuAlways && options.gpuAlways) fail("--cpu-always and --gpu-always exclude each other");
    options.program.assign(argv + next, argv + argc);
    options.program.push_back(nullptr);
    return options;
}

// The program's file as execvp would find it, checked here so that a missing
// program is reported before anything runs.
std::string findProgram(const std::string& name) {
    auto executable = [](const fs::path& file) {
        struct stat info;
        return stat(file.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(file.c_str(), X_OK) == 0;
    };
    if (name.find('/') != std::string::npos) {
        if (access(name.c_str(), F_OK) != 0) fail("program '" + name + "' not found", notFound);
        if (!executable(name)) fail("program '" + name + "' is not an executable file", notExecutable);
        return name;
    }
    const char* path = std::getenv("PATH");
    std::stringstream folders(path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin");
    for (std::string folder; std::getline(folders, folder, ':');) {
        const fs::path file = fs::path(folder.empty() ? "." : folder) / name;
        if (executable(file)) return file.string();
    }
    fail("program '" + name + "' not found on PATH", notFound);
}

std::string absoluteFile(const std::string& name) { return fs::absolute(name).lexically_normal().string(); }

void setVariable(const char* name, const std::string& value) { setenv(name, value.c_str(), 1); }

void prependTo(const char* name, const std::string& value, char separator) {
    const char* old = std::getenv(name);
    setVariable(name, old != nullptr && *old != '\0' ? value + separator + old : value);
}

// The environment the program runs in: the preloads, the libraries' places and
// the settings of the options. The options win over the same settings already
// in the environment.
void prepareEnvironment(const Options& options, const LibraryPaths& paths) {
    std::string preload;
    for (const std::string& library : {paths.gfortranShim, paths.cblasLibrary, paths.linkLibrary}) {
        if (library.empty()) continue;
        // The loader splits LD_PRELOAD at blanks and colons.
        if (library.find_first_of(" :\t") != std::string::npos)
            fail("cannot preload '" + library + "': its path holds a blank or a colon", 1);
        preload += (preload.empty() ? "" : " ") + library;
    }
    prependTo("LD_PRELOAD", preload, ' ');
    if (!paths.gpuFolder.empty()) prependTo("LD_LIBRARY_PATH", paths.gpuFolder, ':');
    setenv("VORN_CPU_LIB", paths.cpuLibrary.c_str(), 0);
    if (options.verbose && !options.summary) setVariable("VORN_VERBOSE", "1");
    if (options.cpuAlways) { setVariable("VORN_CPU_ALWAYS", "1"); unsetenv("VORN_GPU_ALWAYS"); }
    if (options.gpuAlways) { setVariable("VORN_GPU_ALWAYS", "1"); unsetenv("VORN_CPU_ALWAYS"); }
    if (options.ilp64) setVariable("VORN_ILP64", "1");
    if (!options.crossovers.empty()) {
        std::error_code error;
        if (fs::is_directory(options.crossovers, error))
            fail("cannot read the crossover file '" + options.crossovers + "': it is a folder");
        if (!std::ifstream(options.crossovers))
            fail("cannot read the crossover file '" + options.crossovers + "': " + std::strerror(errno));
        setVariable("VORN_CROSSOVER_LIST", absoluteFile(options.crossovers));
    }
    if (!options.log.empty()) {
        const int fd = open(options.log.c_str(), O_WRONLY | O_APPEND | O_CREAT, 0666);
        if (fd < 0) fail("cannot write the log file '" + options.log + "': " + std::strerror(errno));
        close(fd);
        setVariable("VORN_DEBUG_LOG", absoluteFile(options.log));
    }
}

[[noreturn]] void execute(const std::string& file, const Options& options) {
    execv(file.c_str(), options.program.data());
    const int error = errno;
    std::cerr << "vorn-run: cannot run '" << file << "': " << std::strerror(error) << "\n";
    _exit(error == ENOENT ? notFound : notExecutable);
}

std::string readFrom(const std::string& file, std::streamoff offset) {
    std::ifstream in(file, std::ios::binary);
    in.seekg(offset);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// --summary: the program runs as a child with the log in a file; its part of the
// file is read when it ends. The launcher ignores the terminal's interrupt and
// quit while it waits, as a shell does, so that it outlives the program to
// print the table.
int runWithSummary(const std::string& file, const Options& options) {
    std::string log = options.log.empty() && std::getenv("VORN_DEBUG_LOG") != nullptr
                          ? std::string(std::getenv("VORN_DEBUG_LOG"))
                          : options.log;
    bool temporary = false;
    if (log.empty()) {
        const char* folder = std::getenv("TMPDIR");
        std::string name = std::string(folder != nullptr && *folder != '\0' ? folder : "/tmp") + "/vorn-run-XXXXXX";
        const int fd = mkstemp(name.data());
        if (fd < 0) fail("cannot make a temporary log file '" + name + "': " + std::strerror(errno), 1);
        close(fd);
        log = name;
        temporary = true;
        setVariable("VORN_DEBUG_LOG", log);
    }
    std::error_code error;
    const auto size = fs::file_size(log, error);
    const std::streamoff start = error ? 0 : static_cast<std::streamoff>(size);

    const auto interrupt = signal(SIGINT, SIG_IGN);
    const auto quit = signal(SIGQUIT, SIG_IGN);
    const pid_t child = fork();
    if (child < 0) fail(std::string("cannot start the program: ") + std::strerror(errno), 1);
    if (child == 0) {
        signal(SIGINT, interrupt);
        signal(SIGQUIT, quit);
        execute(file, options);
    }
    int status = 0;
    while (waitpid(child, &status, 0) < 0)
        if (errno != EINTR) fail(std::string("lost the program: ") + std::strerror(errno), 1);

    const std::string text = readFrom(log, start);
    if (temporary) fs::remove(log, error);
    if (options.verbose) std::cout << text << std::flush;
    std::cerr << "\nvorn-run: where the calls of " << options.program[0] << " ran\n"
              << formatSummary(summariseLog(text));
    if (WIFSIGNALED(status)) {
        const int signal = WTERMSIG(status);
        std::cerr << "vorn-run: " << options.program[0] << " was ended by signal " << signal << " ("
                  << strsignal(signal) << ")\n";
        return 128 + signal;
    }
    return WEXITSTATUS(status);
}

}  // namespace

int main(int argc, char** argv) {
    const Options options = readOptions(argc, argv);
    const std::string file = findProgram(options.program[0]);
    std::string problem;
    const LibraryPaths paths = findLibraries(launcherPath(), problem);
    if (paths.linkLibrary.empty()) fail(problem, 1);
    prepareEnvironment(options, paths);
    if (options.summary) return runWithSummary(file, options);
    execute(file, options);
}
