// Each routine is timed at growing orders n, both sides at each, forced with the
// control calls, until the GPU side has won clearly at two sizes in a row, the largest
// size is reached, or the routine's share of the budget is spent. The log,
// which the link library writes to a file of the calibrator's, tells whether
// each call ran where it was sent.
#include "calibration.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>

extern "C" {
void vornLinkSetCpuAlways();
void vornLinkSetGpuAlways();
void vornLinkClearCpuAlways();
void vornLinkClearGpuAlways();
void dpotrf(const char*, const int*, double*, const int*, int*);
}

namespace {

using Clock = std::chrono::steady_clock;

enum class Side { cpu, gpu };

// Never both flags at once: the link library would clear both at its first
// CPU-side call.
void force(Side side) {
    if (side == Side::cpu) {
        vornLinkClearGpuAlways();
        vornLinkSetCpuAlways();
    } else {
        vornLinkClearCpuAlways();
        vornLinkSetGpuAlways();
    }
}

const char* sideName(Side side) { return side == Side::cpu ? "CPU" : "GPU"; }

// One call on one side. Gives why it cannot count, or an empty string.
std::string callOn(Side side, const TimedRoutine& routine, int n, LinkLog& log, Trial& trial) {
    force(side);
    trial = routine.run(n);
    const auto lines = log.newLines();
    if (std::string error = lineContaining(lines, "vorn error"); !error.empty()) return error;
    if (lineContaining(lines, side == Side::cpu ? "issuing to CPU (configured" : "issuing to GPU").empty())
        return "the call did not run on the " + std::string(sideName(side)) + " side: " +
               lineContaining(lines, "issuing to");
    if (trial.info != 0) return "info = " + std::to_string(trial.info);
    return {};
}

// The best call of each side at one size; a failure tells why a side cannot count.
struct SizeTime {
    Trial cpu, gpu;
    std::string cpuFailure, gpuFailure;
};

// Rounds of one call on each side in turn, so that a spell of load on the
// machine slows both sides alike: three rounds, and more, up to 50, while they
// have taken less than minimumSeconds (short calls vary most); past `stopBy`
// only one.
constexpr double minimumSeconds = 0.04;

SizeTime timeSize(const TimedRoutine& routine, int n, LinkLog& log, Clock::time_point stopBy) {
    constexpr double never = std::numeric_limits<double>::infinity();
    SizeTime best{{never, 0, {}}, {never, 0, {}}, {}, {}};
    double spent = 0;
    for (int round = 0; round == 0 || ((round < 3 || (spent < minimumSeconds && round < 50)) && Clock::now() < stopBy);
         ++round) {
        Trial cpu, gpu;
        best.cpuFailure = callOn(Side::cpu, routine, n, log, cpu);
        if (!best.cpuFailure.empty()) return best;
        best.gpuFailure = callOn(Side::gpu, routine, n, log, gpu);
        if (!best.gpuFailure.empty()) return best;
        spent += cpu.seconds + gpu.seconds;
        if (cpu.seconds < best.cpu.seconds) best.cpu = std::move(cpu);
        if (gpu.seconds < best.gpu.seconds) best.gpu = std::move(gpu);
    }
    return best;
}

double relativeDifference(const std::vector<double>& gpu, const std::vector<double>& cpu) {
    if (gpu.size() != cpu.size()) return std::numeric_limits<double>::infinity();
    double difference = 0, norm = 0;
    for (std::size_t i = 0; i < cpu.size(); ++i) {
        difference += (gpu[i] - cpu[i]) * (gpu[i] - cpu[i]);
        norm += cpu[i] * cpu[i];
    }
    if (!std::isfinite(difference)) return std::numeric_limits<double>::infinity();
    return std::sqrt(difference) / std::max(std::sqrt(norm), std::numeric_limits<double>::min());
}

std::vector<int> sizesUpTo(int maxSize) {
    std::vector<int> sizes;
    for (int n = smallestSize; n < maxSize; n = std::max(n + 1, static_cast<int>(std::lround(n * 1.26))))
        sizes.push_back(n);
    sizes.push_back(maxSize);
    return sizes;
}

double secondsSince(Clock::time_point start) { return std::chrono::duration<double>(Clock::now() - start).count(); }

// The outcome of a routine timed without a failure, with its message.
void conclude(RoutineResult& result, const std::string& stopped) {
    const TimedRoutine& routine = *result.routine;
    const std::string name(routine.name);
    if (result.timings.empty()) {
        std::fprintf(stderr, "vorn-calibrate: %s: not timed; it keeps its default crossover\n", name.c_str());
        return;
    }
    if (const auto found = findBreakEven(result.timings)) {
        result.outcome = Outcome::crossover;
        result.entry = crossoverEntry(found->measure, routine.crossoverFactor);
        result.breakEvenN = found->n;
        std::fprintf(stderr, "vorn-calibrate: %s: the GPU side wins from n = %.0f (measure %s = %.0f%s): %s=%d\n",
                     name.c_str(), found->n, std::string(routine.measureOf).c_str(), found->measure,
                     routine.crossoverFactor == 2 ? ", held against twice the entry with jobz V" : "", name.c_str(),
                     result.entry);
    } else {
        result.outcome = Outcome::never;
        std::fprintf(stderr, "vorn-calibrate: %s: the GPU side is slower at n = %d, the largest size timed%s%s: %s=never\n",
                     name.c_str(), result.timings.back().n, stopped.empty() ? "" : "; ", stopped.c_str(), name.c_str());
    }
}

// About how long the run will still take: this routine's remaining sizes at
// cubic growth from the last one, within its share; each routine after it as
// long as the finished ones took on average (its share before any finished).
double estimateSecondsLeft(const std::vector<int>& sizes, int n, double lastSizeSeconds, double shareLeft,
                           int routinesAfter, double perRoutine, double budgetLeft) {
    double rest = 0;
    for (int later : sizes)
        if (later > n) rest += lastSizeSeconds * std::pow(double(later) / n, 3);
    const double thisLeft = std::min(rest, std::max(0.0, shareLeft));
    return std::max(0.0, std::min(budgetLeft, thisLeft + perRoutine * routinesAfter));
}


}  // namespace

BackEnds probeBackEnds(LinkLog& log) {
    BackEnds found{true, {}, {}};
    for (Side side : {Side::gpu, Side::cpu}) {
        force(side);
        double a = 4;
        const int n = 1;
        int info = 0;
        dpotrf("L", &n, &a, &n, &info);
        const auto lines = log.newLines();
        if (side == Side::gpu) {
            found.gpuFailure = lineContaining(lines, "vornInitialize failed");
            found.gpuStarted = found.gpuFailure.empty();
        } else {
            found.cpuFailure = lineContaining(lines, "vorn error");
        }
    }
    vornLinkClearCpuAlways();
    return found;
}

std::vector<RoutineResult> calibrate(const Options& options, LinkLog& log) {
    const auto start = Clock::now();
    const auto deadline = start + std::chrono::duration_cast<Clock::duration>(
                                      std::chrono::duration<double>(options.budgetSeconds));
    const std::vector<int> sizes = sizesUpTo(options.maxSize);
    const int count = static_cast<int>(options.routines.size());
    std::vector<RoutineResult> results;
    double finishedSeconds = 0;

    for (int index = 0; index < count; ++index) {
        const TimedRoutine& routine = *options.routines[index];
        RoutineResult& result = results.emplace_back(RoutineResult{&routine, {}});
        const auto routineStart = Clock::now();
        const double budgetLeft = std::chrono::duration<double>(deadline - routineStart).count();
        const double share = budgetLeft / (count - index);
        const auto routineEnd = routineStart + std::chrono::duration_cast<Clock::duration>(
                                                   std::chrono::duration<double>(share));
        const std::string name(routine.name);
        double lastSizeSeconds = 0;
        int lastN = 0, gpuWinsInARow = 0;
        std::string stopped;

        for (int n : sizes) {
            const double growth = lastN == 0 ? 1 : std::pow(double(n) / lastN, 3);
            const double predicted = lastSizeSeconds * growth, spent = secondsSince(routineStart);
            if (lastN != 0 && spent + predicted > share) {
                stopped = "its share of the budget ends before n = " + std::to_string(n);
                break;
            }
            if (lastN == 0 && budgetLeft <= 0) break;
            const auto sizeStart = Clock::now();
            if (lastN == 0) {  // first calls of a routine on a side carry one-time costs
                for (Side side : {Side::cpu, Side::gpu}) {
                    force(side);
                    routine.run(n);
                    log.newLines();
                }
            }
            const SizeTime time = timeSize(routine, n, log, routineEnd);
            if (!time.cpuFailure.empty()) {
                std::fprintf(stderr, "vorn-calibrate: %s: the CPU side failed at n = %d (%s): not timed\n",
                             name.c_str(), n, time.cpuFailure.c_str());
                break;
            }
            if (!time.gpuFailure.empty()) {
                std::fprintf(stderr, "vorn-calibrate: %s: the GPU side failed at n = %d (%s): %s=never\n",
                             name.c_str(), n, time.gpuFailure.c_str(), name.c_str());
                result.outcome = Outcome::gpuFailed;
                break;
            }
            const Trial &cpu = time.cpu, &gpu = time.gpu;
            const double difference = relativeDifference(gpu.comparable, cpu.comparable);
            if (!(difference <= routine.tolerance)) {
                std::fprintf(stderr,
                             "vorn-calibrate: %s: the GPU side's result differs from the CPU side's at n = %d "
                             "(relative difference %.3g, more than %.0e): %s=never\n",
                             name.c_str(), n, difference, routine.tolerance, name.c_str());
                result.outcome = Outcome::mismatch;
                break;
            }
            result.timings.push_back({n, routine.measure(n), cpu.seconds, gpu.seconds});
            lastSizeSeconds = secondsSince(sizeStart);
            lastN = n;
            // Growing stops once the GPU side is clearly ahead: where both sides
            // take about the same time (the emulator), noise alone would stop it.
            gpuWinsInARow = gpu.seconds < 0.9 * cpu.seconds ? gpuWinsInARow + 1 : 0;

            const double left = estimateSecondsLeft(
                sizes, n, lastSizeSeconds, share - secondsSince(routineStart), count - index - 1,
                index > 0 ? finishedSeconds / index : share,
                std::chrono::duration<double>(deadline - Clock::now()).count());
            std::fprintf(stderr, "vorn-calibrate: [%d/%d] %s n = %d: CPU %.3f ms, GPU %.3f ms; about %.0f s left\n",
                         index + 1, count, name.c_str(), n, cpu.seconds * 1e3, gpu.seconds * 1e3, left);
            if (gpuWinsInARow == 2) break;
        }
        finishedSeconds += secondsSince(routineStart);

        if (result.outcome == Outcome::notMeasured) conclude(result, stopped);
    }
    vornLinkClearCpuAlways();
    vornLinkClearGpuAlways();
    return results;
}
