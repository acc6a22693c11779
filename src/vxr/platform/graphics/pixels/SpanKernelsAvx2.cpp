#if defined(__x86_64__)

#define VXR_SPAN_BYTES 32
#include <vxr/platform/graphics/pixels/SpanKernelSets.h>
#include <vxr/platform/graphics/pixels/SpanLoops.h>

namespace vxr {

const SpanKernels avx2SpanKernels = kernelsNamed("avx2");

} // namespace vxr

#endif
