// The route of one pass: which reason wins, that the side a reason names is the
// side the frame takes, and the words each reason is logged with.
#include <cstdio>
#include <gtest/gtest.h>
#include <string>

#include "core/link_state.h"
#include "routing/issue_reason.h"

namespace {

// The conditions in order of precedence, each with the reason it gives.
struct Rule {
    bool RouteState::*flag;
    IssueReason reason;
};
constexpr Rule rules[] = {
    {&RouteState::gpuUnavailable, ReasonGpuUnavailable}, {&RouteState::retry, ReasonGpuRetry},
    {&RouteState::workQuery, ReasonWorkQuery},           {&RouteState::excluded, ReasonExcluded},
    {&RouteState::cpuAlways, ReasonCpuAlways},           {&RouteState::gpuAlways, ReasonGpuAlways},
    {&RouteState::underCrossover, ReasonUnderThreshold},
};
constexpr int ruleCount = sizeof rules / sizeof rules[0];

RouteState stateOf(unsigned bits) {
    RouteState state{};
    for (int i = 0; i < ruleCount; ++i) state.*rules[i].flag = (bits >> i) & 1;
    return state;
}

}  // namespace

// Over all 128 states: the reason is the first rule that holds in the order of
// precedence (over the threshold when none does), and the side word of that
// reason is GPU exactly when the pass goes on to the GPU.
TEST(RoutePredicate, ReasonAndSideAgreeInEveryState) {
    for (unsigned bits = 0; bits < (1u << ruleCount); ++bits) {
        const RouteState state = stateOf(bits);
        IssueReason expected = ReasonOverThreshold;
        for (int i = ruleCount - 1; i >= 0; --i)
            if (state.*rules[i].flag) expected = rules[i].reason;
        const IssueReason reason = linkChooseReason(state);
        EXPECT_EQ(reason, expected) << "state bits " << bits;
        const bool gpuSide = reason == ReasonGpuAlways || reason == ReasonOverThreshold;
        EXPECT_EQ(linkRouteToGpu(state), gpuSide) << "state bits " << bits;
        EXPECT_STREQ(linkReasonSide(reason), gpuSide ? "GPU" : "CPU") << "state bits " << bits;
    }
}

// The issuing line of every reason, word for word; nothing when verbose is off.
TEST(RoutePredicate, IssuingLineWords) {
    struct Case {
        IssueReason reason;
        const char* line;
    };
    const Case cases[] = {
        {ReasonGpuUnavailable, "vorn info:  issuing to CPU (vorn not available)\n"},
        {ReasonCpuAlways, "vorn info:  issuing to CPU (configured to always choose CPU)\n"},
        {ReasonGpuAlways, "vorn info:  issuing to GPU (configured to always choose GPU)\n"},
        {ReasonGpuRetry, "vorn info:  issuing to CPU (retrying on GPU error)\n"},
        {ReasonWorkQuery, "vorn info:  issuing to CPU (work query)\n"},
        {ReasonUnderThreshold, "vorn info:  issuing to CPU (under threshold)\n"},
        {ReasonOverThreshold, "vorn info:  issuing to GPU (over threshold)\n"},
        {ReasonExcluded, "vorn info:  issuing to CPU (excluded by user)\n"},
        {ReasonNoGpuFunction, "vorn info:  issuing to CPU (no GPU function available)\n"},
    };
    FILE* const saved = linkState.logStream;
    const int32_t savedVerbose = linkState.verbose;
    for (const Case& c : cases) {
        for (int32_t verbose : {1, 0}) {
            FILE* log = std::tmpfile();
            ASSERT_NE(log, nullptr);
            linkState.logStream = log;
            linkState.verbose = verbose;
            linkLogIssue(c.reason);
            std::rewind(log);
            char text[128] = {};
            const std::size_t length = std::fread(text, 1, sizeof text - 1, log);
            std::fclose(log);
            EXPECT_EQ(std::string(text, length), verbose ? c.line : "") << "reason " << int(c.reason);
        }
    }
    linkState.logStream = saved;
    linkState.verbose = savedVerbose;
}
