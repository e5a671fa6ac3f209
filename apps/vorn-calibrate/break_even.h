// Where the GPU side starts to pay, from the times of both sides at growing sizes.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

struct SizeTiming {
    int n;
    double measure;
    double cpuSeconds;
    double gpuSeconds;
};

struct BreakEven {
    double measure;
    double n;
};

// The point from which on the GPU side is faster at every size tried, linearly
// interpolated in the measure (and in n) between the last size where the CPU
// side won and the first where the GPU side did; the first size when the GPU
// side won everywhere. Nothing when the GPU side loses at the largest size tried.
std::optional<BreakEven> findBreakEven(std::span<const SizeTiming> timings);

// The crossover list value for a break-even measure: the routine compares its
// measure with its entry times `factor`, and an entry is 1 to 2147483647.
std::int32_t crossoverEntry(double measure, int factor);
