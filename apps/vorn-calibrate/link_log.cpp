#include "link_log.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

bool LinkLog::open() {
    std::error_code error;
    std::filesystem::path folder = std::filesystem::temp_directory_path(error);
    if (error) folder = "/tmp";
    std::string pattern = (folder / "vorn-calibrate-XXXXXX.log").string();
    const int descriptor = mkstemps(pattern.data(), 4);
    if (descriptor < 0) return false;
    close(descriptor);
    path_ = pattern;
    return setenv("VORN_DEBUG_LOG", path_.c_str(), 1) == 0;
}

LinkLog::~LinkLog() {
    if (!path_.empty()) std::remove(path_.c_str());
}

std::vector<std::string> LinkLog::newLines() {
    std::vector<std::string> lines;
    std::ifstream file(path_, std::ios::binary);
    file.seekg(static_cast<std::streamoff>(readUpTo_));
    std::string line;
    while (std::getline(file, line)) {
        if (file.eof()) break;  // a line still being written: read it next time
        readUpTo_ += line.size() + 1;
        lines.push_back(line);
    }
    return lines;
}

std::string lineContaining(const std::vector<std::string>& lines, const std::string& text) {
    for (const auto& line : lines)
        if (line.find(text) != std::string::npos) return line;
    return {};
}
