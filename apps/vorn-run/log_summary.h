// The table that `vorn-run --summary` prints: calls per routine, the side each
// call ended on and why, read from the link library's log text alone.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

struct RoutineCalls {
    std::string routine;
    int calls = 0;
    int gpu = 0;
    int cpu = 0;
    std::map<std::string, int> reasons;  // the summary's words for each call's last reason
};

struct LogSummary {
    std::vector<RoutineCalls> routines;  // most calls first, then by name
    std::string gpuStartFailure;         // the status text of a failed vornInitialize, if any
};

// Reads log lines: an entry line ("vorn info:  spotrf (L, 1100, 0x..., 1100)" or
// "vorn info:  dlamch ()") starts a call, and the last "issuing to SIDE (REASON)"
// line before the next entry line decides its side and reason, so a call retried
// after a GPU failure counts once, on the CPU. Lines of calls made at once from
// several threads interleave in the log and cannot be told apart.
LogSummary summariseLog(std::string_view log);

// The table, one routine a row and a total row, ready for standard error.
std::string formatSummary(const LogSummary& summary);
