// The route of one pass: which reason wins, and that the side a reason names is
// the side the frame takes. The words of each reason's line, and that verbose off
// writes none, are held in the tests that meet each reason in a real call (the
// frame, link and export tests).
#include <gtest/gtest.h>

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
