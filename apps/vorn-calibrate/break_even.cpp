#include "break_even.h"

#include <algorithm>
#include <cmath>
#include <limits>

std::optional<BreakEven> findBreakEven(std::span<const SizeTiming> timings) {
    std::size_t first = timings.size();
    while (first > 0 && timings[first - 1].gpuSeconds < timings[first - 1].cpuSeconds) --first;
    if (first == timings.size()) return std::nullopt;
    if (first == 0) return BreakEven{timings[0].measure, double(timings[0].n)};
    const SizeTiming& below = timings[first - 1];
    const SizeTiming& above = timings[first];
    // The CPU side's lead shrinks from below to above and turns into a loss.
    const double lead = below.gpuSeconds - below.cpuSeconds, loss = above.cpuSeconds - above.gpuSeconds;
    const double fraction = lead / (lead + loss);
    return BreakEven{below.measure + fraction * (above.measure - below.measure),
                     below.n + fraction * (above.n - below.n)};
}

std::int32_t crossoverEntry(double measure, int factor) {
    const double entry = std::ceil(measure / factor);
    return static_cast<std::int32_t>(std::clamp(entry, 1.0, double(std::numeric_limits<std::int32_t>::max())));
}
