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
