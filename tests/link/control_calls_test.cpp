// The run-time control calls: each runs the start-up, then sets or clears one
// flag, which the next routed call reads; the same flags from the environment;
// the flags' order against the other reasons, and the one-time test of both flags
// set. Each test is its own process.

#include "link_test.h"

namespace {

// Sizes under and at spotrf's default crossover; the list lowers the crossover to
// 64, and a call at `overListed` going to the GPU proves it read.
constexpr int under = 8, overListed = 100;

const char* const cpuAlwaysLine = "vorn info:  issuing to CPU (configured to always choose CPU)";
const char* const gpuAlwaysLine = "vorn info:  issuing to GPU (configured to always choose GPU)";
const char* const underLine = "vorn info:  issuing to CPU (under threshold)";
const char* const overLine = "vorn info:  issuing to GPU (over threshold)";
const char* const ignoringBothLine =
    "vorn error: both VORN_CPU_ALWAYS and VORN_GPU_ALWAYS are set; ignoring both";

}  // namespace

// A control call as the first call of the process runs the whole start-up (the
// GPU library's initialisation, the list, the environment read before the flag is
// written, so the call wins) and rules the routines after it. Without a control
// call, VORN_CPU_ALWAYS and VORN_GPU_ALWAYS rule, with the exact value "1" only.
// A routine the list excludes outranks gpuAlways.
struct FirstCallCase {
    const char* name;
    void (*call)();  // null: none
    int n;
    const char* issuing;
    const char* environment = nullptr;  // set to `value` before the call
    const char* value = "1";
    const char* crossover = "64";  // the list's value for spotrf: overListed is over it, under under it
    friend void PrintTo(const FirstCallCase& c, std::ostream* out) { *out << c.name; }
};
class FirstCall : public testing::TestWithParam<FirstCallCase> {};
TEST_P(FirstCall, StartUpAndFlagsRuleTheCallsAfterIt) {
    const auto& c = GetParam();
    const std::string log = useLogFile(), record = useRecord();
    const std::string list = tempPath("crossovers.txt");
    writeFile(list, "spotrf=" + std::string(c.crossover) + "\n");
    setEnv("VORN_CROSSOVER_LIST", list);
    if (c.environment != nullptr) setEnv(c.environment, c.value);
    Expected expected;
    expected.log = {"vorn info:  parsing crossover list '" + list + "'",
                    "vorn info:  setting crossover for spotrf to '" + std::string(c.crossover) + "'"};
    if (c.call != nullptr) {
        c.call();
        expected.check(log, record);
    }
    const bool onCpu = std::string(c.issuing).find("to CPU") != std::string::npos;
    expected.spotrfCall(c.n, c.issuing, onCpu ? std::vector<std::string>{cpuLibraryLine} : std::vector<std::string>{});
    expected.spotrfCall(c.n, c.issuing);
    expected.check(log, record);
}
const char* const excludedLine = "vorn info:  issuing to CPU (excluded by user)";
INSTANTIATE_TEST_SUITE_P(
    ControlCalls, FirstCall,
    testing::Values(FirstCallCase{"SetCpuAlways", vornLinkSetCpuAlways, overListed, cpuAlwaysLine},
                    FirstCallCase{"SetGpuAlways", vornLinkSetGpuAlways, under, gpuAlwaysLine},
                    FirstCallCase{"ClearCpuAlwaysOverVornCpuAlways", vornLinkClearCpuAlways, overListed, overLine,
                                  "VORN_CPU_ALWAYS"},
                    FirstCallCase{"ClearGpuAlwaysOverVornGpuAlways", vornLinkClearGpuAlways, under, underLine,
                                  "VORN_GPU_ALWAYS"},
                    FirstCallCase{"ExcludedUnderSetGpuAlways", vornLinkSetGpuAlways, spotrfCrossover, excludedLine,
                                  nullptr, "", "never"},
                    FirstCallCase{"VornCpuAlways", nullptr, overListed, cpuAlwaysLine, "VORN_CPU_ALWAYS"},
                    FirstCallCase{"VornCpuAlwaysTrue", nullptr, overListed, overLine, "VORN_CPU_ALWAYS", "true"},
                    FirstCallCase{"VornGpuAlways", nullptr, under, gpuAlwaysLine, "VORN_GPU_ALWAYS"},
                    FirstCallCase{"VornGpuAlwaysOneBlank", nullptr, under, underLine, "VORN_GPU_ALWAYS", "1 "}),
    [](const auto& info) { return std::string(info.param.name); });

// Both flags set before the CPU library is bound: the first routine goes to the
// CPU, whose binding reports the pair once and clears both; later calls follow
// the crossover. Both set again after the binding: nothing looks at the pair
// again, cpuAlways wins without a word, and the clear calls give the routing
// back. Here and above, the exact logs and records show that the control calls,
// first or later, write no line of their own and start the GPU library once.
TEST(ControlCalls, BothSetAreIgnoredOnlyWhenTheCpuLibraryIsBound) {
    const std::string log = useLogFile(), record = useRecord();
    vornLinkSetCpuAlways();
    vornLinkSetGpuAlways();
    Expected expected;
    expected.spotrfCall(spotrfCrossover, cpuAlwaysLine, {ignoringBothLine, cpuLibraryLine});
    expected.spotrfCall(spotrfCrossover, overLine);
    expected.spotrfCall(under, underLine);
    vornLinkSetCpuAlways();
    vornLinkSetGpuAlways();
    expected.spotrfCall(spotrfCrossover, cpuAlwaysLine);
    vornLinkClearCpuAlways();  // gpuAlways is still set
    expected.spotrfCall(under, gpuAlwaysLine);
    vornLinkClearGpuAlways();
    expected.spotrfCall(under, underLine);
    expected.check(log, record);
}
