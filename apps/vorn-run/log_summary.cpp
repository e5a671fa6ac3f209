#include "apps/vorn-run/log_summary.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace {

constexpr std::string_view infoPrefix = "vorn info:  ";
constexpr std::string_view errorPrefix = "vorn error: ";
constexpr std::string_view issuingPrefix = "issuing to ";
constexpr std::string_view gpuStartFailurePrefix = "vornInitialize failed (";

// The words of the log's "issuing to" lines, and the summary's words for them.
constexpr std::array<std::pair<std::string_view, std::string_view>, 9> reasonWords{{
    {"under threshold", "under threshold"},
    {"over threshold", "over threshold"},
    {"excluded by user", "excluded by user"},
    {"work query", "work query"},
    {"retrying on GPU error", "retried after a GPU failure"},
    {"configured to always choose CPU", "configured to always choose CPU"},
    {"configured to always choose GPU", "configured to always choose GPU"},
    {"vorn not available", "GPU unavailable"},
    {"no GPU function available", "no GPU function available"},
}};
constexpr std::string_view noIssuingLine = "no issuing line logged";

std::string summaryWords(std::string_view logWords) {
    for (const auto& [log, summary] : reasonWords)
        if (log == logWords) return std::string(summary);
    return std::string(logWords);
}

// "name (...)" with a lower-case routine name: the entry line of a call.
bool isEntryLine(std::string_view text, std::string_view& routine) {
    const size_t open = text.find(" (");
    if (open == 0 || open == std::string_view::npos || text.back() != ')') return false;
    routine = text.substr(0, open);
    return std::all_of(routine.begin(), routine.end(),
                       [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_'; });
}

struct Call {
    std::string routine;
    std::string side;     // "GPU", "CPU", or empty before any issuing line
    std::string reason;   // the log's words
};

class Tally {
public:
    void start(std::string_view routine) {
        finish();
        current_ = Call{std::string(routine), {}, {}};
        open_ = true;
    }
    void issue(std::string_view side, std::string_view reason) {
        if (!open_) return;
        current_.side = side;
        current_.reason = reason;
    }
    std::vector<RoutineCalls> take() {
        finish();
        std::vector<RoutineCalls> rows;
        for (auto& [name, row] : byRoutine_) rows.push_back(std::move(row));
        std::stable_sort(rows.begin(), rows.end(), [](const RoutineCalls& a, const RoutineCalls& b) {
            return a.calls > b.calls;
        });
        return rows;
    }

private:
    void finish() {
        if (!open_) return;
        open_ = false;
        RoutineCalls& row = byRoutine_[current_.routine];
        row.routine = current_.routine;
        ++row.calls;
        if (current_.side == "GPU") ++row.gpu;
        if (current_.side == "CPU") ++row.cpu;
        ++row.reasons[current_.side.empty() ? std::string(noIssuingLine) : summaryWords(current_.reason)];
    }

    std::map<std::string, RoutineCalls> byRoutine_;
    Call current_;
    bool open_ = false;
};

}  // namespace

LogSummary summariseLog(std::string_view log) {
    LogSummary summary;
    Tally tally;
    while (!log.empty()) {
        const size_t end = log.find('\n');
        std::string_view line = log.substr(0, end);
        log.remove_prefix(end == std::string_view::npos ? log.size() : end + 1);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);

        if (line.starts_with(errorPrefix)) {
            line.remove_prefix(errorPrefix.size());
            if (line.starts_with(gpuStartFailurePrefix) && line.ends_with(")"))
                summary.gpuStartFailure =
                    line.substr(gpuStartFailurePrefix.size(), line.size() - gpuStartFailurePrefix.size() - 1);
            continue;
        }
        if (!line.starts_with(infoPrefix)) continue;
        line.remove_prefix(infoPrefix.size());
        std::string_view routine;
        if (line.starts_with(issuingPrefix)) {
            line.remove_prefix(issuingPrefix.size());
            const size_t open = line.find(" (");
            if (open != std::string_view::npos && line.ends_with(")"))
                tally.issue(line.substr(0, open), line.substr(open + 2, line.size() - open - 3));
        } else if (isEntryLine(line, routine)) {
            tally.start(routine);
        }
    }
    summary.routines = tally.take();
    return summary;
}

std::string formatSummary(const LogSummary& summary) {
    std::string text;
    char row[160];
    RoutineCalls total;
    total.routine = "total";
    for (const RoutineCalls& routine : summary.routines) {
        total.calls += routine.calls;
        total.gpu += routine.gpu;
        total.cpu += routine.cpu;
        for (const auto& [reason, count] : routine.reasons) total.reasons[reason] += count;
    }
    std::snprintf(row, sizeof row, "%-10s %7s %7s %7s  %s\n", "routine", "calls", "GPU", "CPU", "reasons");
    text += row;
    auto append = [&](const RoutineCalls& routine) {
        std::snprintf(row, sizeof row, "%-10s %7d %7d %7d  ", routine.routine.c_str(), routine.calls, routine.gpu,
                      routine.cpu);
        text += row;
        const char* separator = "";
        for (const auto& [reason, count] : routine.reasons) {
            text += separator + std::to_string(count) + " " + reason;
            separator = ", ";
        }
        text += '\n';
    };
    for (const RoutineCalls& routine : summary.routines) append(routine);
    append(total);
    if (!summary.gpuStartFailure.empty())
        text += "the GPU library did not start (" + summary.gpuStartFailure + "): every call ran on the CPU\n";
    return text;
}
