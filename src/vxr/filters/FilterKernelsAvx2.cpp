// Compiled for AVX2 where the processor is an x86-64, and empty elsewhere.
#if defined(__x86_64__)
#include <vxr/filters/FilterLoops.h>

namespace vxr {

extern const FilterKernels avx2FilterKernels;
const FilterKernels avx2FilterKernels = filterKernelsNamed("avx2");

} // namespace vxr
#endif
