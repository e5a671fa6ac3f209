// The link library's log, which the calibrator has it write to a file of its own
// so that it can see, call by call, which side really ran a call and whether it
// failed there. Writing it costs a few microseconds a call, the same on both
// sides, so it leaves the point where their times meet where it was.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

class LinkLog {
public:
    // Creates an empty file in the temporary folder and names it in
    // VORN_DEBUG_LOG; call before the first call into the link library.
    bool open();
    ~LinkLog();

    // The lines written since the last call.
    std::vector<std::string> newLines();

private:
    std::string path_;
    std::uintmax_t readUpTo_ = 0;
};

// The first line of `lines` that contains `text`, or an empty string.
std::string lineContaining(const std::vector<std::string>& lines, const std::string& text);
