#include <vxr/filters/FilterLoops.h>

#include <array>

namespace vxr {

#if defined(__x86_64__)
extern const FilterKernels avx2FilterKernels, avx512FilterKernels;
#endif

namespace {

constexpr FilterKernels portableKernels = filterKernelsNamed("portable");

struct Available {
    std::array<const FilterKernels*, 3> kernels {};
    std::size_t count = 0;

    Available()
    {
        kernels[count++] = &portableKernels;
#if defined(__x86_64__)
        if (__builtin_cpu_supports("avx2"))
            kernels[count++] = &avx2FilterKernels;
        if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw")
            && __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl"))
            kernels[count++] = &avx512FilterKernels;
#endif
    }
};

const Available& available()
{
    static const Available found;
    return found;
}

} // namespace

const FilterKernels& filterKernels()
{
    static const FilterKernels& best = *available().kernels[available().count - 1];
    return best;
}

std::span<const FilterKernels* const> availableFilterKernels()
{
    return { available().kernels.data(), available().count };
}

} // namespace vxr
