// Helpers shared by the tests: temporary files, reading logs, capturing stdout.
#pragma once

#include <string>
#include <vector>

// A path in this process's own temporary folder (created on first use).
std::string tempPath(const std::string& name);

std::string readFile(const std::string& path);
std::vector<std::string> readLines(const std::string& path);
void writeFile(const std::string& path, const std::string& content);

// The text printf gives a pointer with %p.
std::string pointerText(const void* pointer);

// Lines of `lines` that start with `prefix`.
std::vector<std::string> linesStartingWith(const std::vector<std::string>& lines, const std::string& prefix);

// Sets an environment variable for this process (tests set them before the first
// call into the library, which reads the environment once).
void setEnv(const char* name, const std::string& value);

// Sends file descriptor 1 to a file until stop(), which gives what was written.
class StdoutCapture {
public:
    StdoutCapture();
    ~StdoutCapture();
    std::string stop();

private:
    int savedFd_ = -1;
    std::string path_;
};
