#include "test_support.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <unistd.h>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <process.h>
#include <windows.h>
#else
#include <dlfcn.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
extern char** environ;
#endif

// A folder of this process's own in the system's temporary folder (Windows' C
// library, msvcrt, has no mkdtemp), removed when the process exits. On Windows no
// file that is still open can be removed, and the library keeps its log open to
// the end: that much stays behind in the temporary folder (under Wine, in the
// prefix that tools/test-windows.sh removes).
static std::string tempFolder;

std::string tempPath(const std::string& name) {
    for (unsigned attempt = 0; tempFolder.empty(); ++attempt) {
        if (attempt == 1000) std::abort();
        const std::string name = "vorn-test-" + std::to_string(getpid()) + "-" + std::to_string(attempt);
        const std::string candidate = (std::filesystem::temp_directory_path() / name).string();
        std::error_code error;
        if (!std::filesystem::create_directory(candidate, error)) continue;
        tempFolder = candidate;
        std::atexit([] {
            std::error_code ignored;
            std::filesystem::remove_all(tempFolder, ignored);
        });
    }
    return tempFolder + "/" + name;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::vector<std::string> readLines(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

void writeFile(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

std::vector<std::string> linesStartingWith(const std::vector<std::string>& lines, const std::string& prefix) {
    std::vector<std::string> found;
    for (const auto& line : lines)
        if (line.rfind(prefix, 0) == 0) found.push_back(line);
    return found;
}

#if defined(_WIN32)
// msvcrt has no setenv, and its getenv sees only what _putenv sets (a copy of the
// entry), not SetEnvironmentVariable.
void setEnv(const char* name, const std::string& value) { _putenv((std::string(name) + "=" + value).c_str()); }

void* openLibrary(const std::string& path) { return reinterpret_cast<void*>(LoadLibraryA(path.c_str())); }

void* librarySymbol(void* library, const char* name) {
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

void* noAccessPage() {
    static void* const page = VirtualAlloc(nullptr, 4096, MEM_RESERVE | MEM_COMMIT, PAGE_NOACCESS);
    return page;
}

int runProgram(const std::string& path, const std::string& argument) {
    std::fflush(stdout);
    // msvcrt joins the arguments into one command line: quoted, each stays one.
    const std::string quotedPath = "\"" + path + "\"", quotedArgument = "\"" + argument + "\"";
    const intptr_t status = _spawnl(_P_WAIT, path.c_str(), quotedPath.c_str(), quotedArgument.c_str(), nullptr);
    return status < 0 ? -1 : static_cast<int>(status);
}
#else
void setEnv(const char* name, const std::string& value) { setenv(name, value.c_str(), 1); }

void* openLibrary(const std::string& path) { return dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL); }

void* librarySymbol(void* library, const char* name) { return dlsym(library, name); }

void* noAccessPage() {
    static void* const page = mmap(nullptr, 4096, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return page;
}

int runProgram(const std::string& path, const std::string& argument) {
    std::fflush(stdout);
    char* const argv[] = {const_cast<char*>(path.c_str()), const_cast<char*>(argument.c_str()), nullptr};
    pid_t child;
    if (posix_spawn(&child, path.c_str(), nullptr, nullptr, argv, environ) != 0) return -1;
    int status = 0;
    if (waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
    return WEXITSTATUS(status);
}
#endif

StdoutCapture::StdoutCapture() : path_(tempPath("stdout-" + std::to_string(std::rand()))) {
    std::fflush(stdout);
    savedFd_ = dup(1);
    FILE* file = std::fopen(path_.c_str(), "w");
    dup2(fileno(file), 1);
    std::fclose(file);
}

StdoutCapture::~StdoutCapture() { stop(); }

std::vector<std::string> StdoutCapture::next() {
    std::fflush(stdout);
    std::vector<std::string> lines = readLines(path_);  // in text mode, as stop() reads
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(linesRead_));
    linesRead_ += lines.size();
    return lines;
}

std::string StdoutCapture::stop() {
    if (savedFd_ < 0) return {};
    std::fflush(stdout);
    dup2(savedFd_, 1);
    close(savedFd_);
    savedFd_ = -1;
    // On Windows descriptor 1 is in text mode, as the file that replaced it: each
    // newline written reached the file as CR LF, which a text-mode read gives back
    // as it was written.
    std::ifstream in(path_);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}
