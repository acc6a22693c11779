#define VXR_SPAN_BYTES 16
#include <vxr/platform/graphics/pixels/SpanKernelSets.h>
#include <vxr/platform/graphics/pixels/SpanLoops.h>

#include <array>

namespace vxr {

namespace {

constexpr SpanKernels portableKernels = kernelsNamed("portable");

struct Available {
    std::array<const SpanKernels*, 3> kernels {};
    std::size_t count = 0;

    Available()
    {
        kernels[count++] = &portableKernels;
#if defined(__x86_64__)
        if (__builtin_cpu_supports("avx2"))
            kernels[count++] = &avx2SpanKernels;
        if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw"))
            kernels[count++] = &avx512SpanKernels;
#endif
    }
};

const Available& available()
{
    static const Available found;
    return found;
}

} // namespace

const SpanKernels& spanKernels()
{
    static const SpanKernels& chosen = *available().kernels[available().count > 1 ? 1 : 0];
    return chosen;
}

std::span<const SpanKernels* const> availableSpanKernels()
{
    return { available().kernels.data(), available().count };
}

} // namespace vxr
