// The run-time control calls: an application forces or releases a side, with the
// effect of VORN_CPU_ALWAYS and VORN_GPU_ALWAYS. Each runs the start-up first, so
// that the environment, read there, cannot overwrite what the call writes. The
// flag is a whole store, without order: routines read it afresh at their next
// route decision.
#include "core/link_state.h"
#include "core/startup.h"
#include "exports/words.h"

extern "C" {

VORN_EXPORT void vornLinkSetCpuAlways() {
    linkInitGpu();
    platformStoreRelaxed(&linkState.cpuAlways, 1);
}

VORN_EXPORT void vornLinkSetGpuAlways() {
    linkInitGpu();
    platformStoreRelaxed(&linkState.gpuAlways, 1);
}

VORN_EXPORT void vornLinkClearCpuAlways() {
    linkInitGpu();
    platformStoreRelaxed(&linkState.cpuAlways, 0);
}

VORN_EXPORT void vornLinkClearGpuAlways() {
    linkInitGpu();
    platformStoreRelaxed(&linkState.gpuAlways, 0);
}

}  // extern "C"
