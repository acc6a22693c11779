#if defined(__x86_64__)

#define VXR_SPAN_BYTES 64
#include <vxr/platform/graphics/pixels/SpanKernelSets.h>
#include <vxr/platform/graphics/pixels/SpanLoops.h>

namespace vxr {

const SpanKernels avx512SpanKernels = kernelsNamed("avx512bw");

} // namespace vxr

#endif
