#include "routing/issue_reason.h"

#include "core/link_state.h"

// Side and words of each reason, indexed by its value.
struct ReasonText {
    const char* side;
    const char* words;
};
static constexpr ReasonText reasonTexts[] = {
    {"CPU", ""},  // no reason has the value 0
    {"CPU", "vorn not available"},
    {"CPU", "configured to always choose CPU"},
    {"GPU", "configured to always choose GPU"},
    {"CPU", "retrying on GPU error"},
    {"CPU", "work query"},
    {"CPU", "under threshold"},
    {"GPU", "over threshold"},
    {"CPU", "excluded by user"},
    {"CPU", "no GPU function available"},
};
static_assert(sizeof reasonTexts / sizeof reasonTexts[0] == ReasonNoGpuFunction + 1);

const char* linkReasonSide(IssueReason reason) { return reasonTexts[reason].side; }
const char* linkReasonWords(IssueReason reason) { return reasonTexts[reason].words; }

void linkLogIssue(IssueReason reason) {
    if (linkState.verbose) {
        linkWriteLine("vorn info:  issuing to %s (%s)\n", reasonTexts[reason].side,
                      reasonTexts[reason].words);
    }
}

IssueReason linkChooseReason(const RouteState& s) {
    if (s.gpuUnavailable) return ReasonGpuUnavailable;
    if (s.retry) return ReasonGpuRetry;
    if (s.workQuery) return ReasonWorkQuery;
    if (s.excluded) return ReasonExcluded;
    if (s.cpuAlways) return ReasonCpuAlways;
    if (s.gpuAlways) return ReasonGpuAlways;
    if (s.underCrossover) return ReasonUnderThreshold;
    return ReasonOverThreshold;
}

bool linkRouteToGpu(const RouteState& s) {
    if (!s.gpuAlways && s.underCrossover) return false;
    return !(s.gpuUnavailable || s.retry || s.workQuery || s.excluded || s.cpuAlways);
}
