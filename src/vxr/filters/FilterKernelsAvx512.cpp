// Compiled for AVX-512 where the processor is an x86-64, and empty elsewhere.
#if defined(__x86_64__)
#include <vxr/filters/FilterLoops.h>

namespace vxr {

extern const FilterKernels avx512FilterKernels;
const FilterKernels avx512FilterKernels = filterKernelsNamed("avx512");

} // namespace vxr
#endif
