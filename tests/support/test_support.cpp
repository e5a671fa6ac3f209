#include "test_support.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

// The folder goes when the process that made it exits; children forked by a
// test share it and leave it alone.
static std::string tempFolder;
static pid_t tempFolderOwner;
static void removeTempFolder() {
    if (getpid() == tempFolderOwner) std::filesystem::remove_all(tempFolder);
}

std::string tempPath(const std::string& name) {
    if (tempFolder.empty()) {
        std::string pattern = "/tmp/vorn-test-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) std::abort();
        tempFolder = pattern;
        tempFolderOwner = getpid();
        std::atexit(removeTempFolder);
    }
    return tempFolder + "/" + name;
}

std::string readFile(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::stringstream content;
    content << in.rdbuf();
    return content.str();
}

std::vector<std::string> readLines(const std::string& path) {
    std::vector<std::string> lines;
    std::ifstream in(path);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    return lines;
}

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

std::string pointerText(const void* pointer) {
    char text[32];
    std::snprintf(text, sizeof text, "%p", pointer);
    return text;
}

std::vector<std::string> linesStartingWith(const std::vector<std::string>& lines, const std::string& prefix) {
    std::vector<std::string> found;
    for (const auto& line : lines)
        if (line.rfind(prefix, 0) == 0) found.push_back(line);
    return found;
}

void setEnv(const char* name, const std::string& value) { ::setenv(name, value.c_str(), 1); }

StdoutCapture::StdoutCapture() : path_(tempPath("stdout-" + std::to_string(std::rand()))) {
    std::fflush(stdout);
    savedFd_ = dup(1);
    FILE* file = std::fopen(path_.c_str(), "w");
    dup2(fileno(file), 1);
    std::fclose(file);
}

StdoutCapture::~StdoutCapture() { stop(); }

std::string StdoutCapture::stop() {
    if (savedFd_ < 0) return {};
    std::fflush(stdout);
    dup2(savedFd_, 1);
    close(savedFd_);
    savedFd_ = -1;
    return readFile(path_);
}
