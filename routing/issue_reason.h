// Why a routed call goes to the side it goes to, and the one predicate that
// decides it.
#pragma once

#include <cstdint>

enum IssueReason : int32_t {
    ReasonGpuUnavailable = 1,
    ReasonCpuAlways = 2,
    ReasonGpuAlways = 3,
    ReasonGpuRetry = 4,
    ReasonWorkQuery = 5,
    ReasonUnderThreshold = 6,
    ReasonOverThreshold = 7,
    ReasonExcluded = 8,
    ReasonNoGpuFunction = 9,
};

// Writes "vorn info:  issuing to <side> (<words>)" when verbose is set.
void linkLogIssue(IssueReason reason);

// Side word of a reason: "GPU" for ReasonGpuAlways and ReasonOverThreshold, else "CPU".
const char* linkReasonSide(IssueReason reason);
const char* linkReasonWords(IssueReason reason);

// What one pass of the routed frame knows when it decides. Read afresh for the
// reason and again for the side, as the flags may change between passes.
struct RouteState {
    bool gpuUnavailable;
    bool retry;
    bool workQuery;
    bool excluded;
    bool cpuAlways;
    bool gpuAlways;
    bool underCrossover;  // the measure is less than the crossover
};

// The reason of a pass: the first rule that holds, in order of precedence.
inline IssueReason linkChooseReason(const RouteState& s) {
    if (s.gpuUnavailable) return ReasonGpuUnavailable;
    if (s.retry) return ReasonGpuRetry;
    if (s.workQuery) return ReasonWorkQuery;
    if (s.excluded) return ReasonExcluded;
    if (s.cpuAlways) return ReasonCpuAlways;
    if (s.gpuAlways) return ReasonGpuAlways;
    if (s.underCrossover) return ReasonUnderThreshold;
    return ReasonOverThreshold;
}

// Whether a pass goes on to the GPU. Agrees with linkChooseReason's side for the
// same state.
inline bool linkRouteToGpu(const RouteState& s) {
    if (!s.gpuAlways && s.underCrossover) return false;
    return !(s.gpuUnavailable || s.retry || s.workQuery || s.excluded || s.cpuAlways);
}
