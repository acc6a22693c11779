#pragma once

#include <vxr/platform/graphics/pixels/SpanKernels.h>

namespace vxr {

// Sets of loops that only some processors run, each made by a source that is compiled for them.
#if defined(__x86_64__)
extern const SpanKernels avx2SpanKernels;
extern const SpanKernels avx512SpanKernels;
#endif

} // namespace vxr
