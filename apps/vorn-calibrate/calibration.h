// Timing the routines on both sides through the link library, within the budget.
#pragma once

#include <vector>

#include "link_log.h"
#include "options.h"
#include "results.h"

// What the first calls found out about the back ends.
struct BackEnds {
    bool gpuStarted;
    std::string gpuFailure;  // the log's line where the GPU library did not start
    std::string cpuFailure;  // the log's line where the CPU library could not be used
};

// Starts the link library with one call on each side.
BackEnds probeBackEnds(LinkLog& log);

std::vector<RoutineResult> calibrate(const Options& options, LinkLog& log);
