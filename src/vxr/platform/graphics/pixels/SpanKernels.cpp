#define VXR_SPAN_BYTES 16
#include <vxr/platform/graphics/pixels/SpanKernelSets.h>
#include <vxr/platform/graphics/pixels/SpanLoops.h>

#include <algorithm>
#include <array>
#include <chrono>

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

/// What most of a page is drawn with, on spans that stay in the first cache.
double nanosecondsOf(const SpanKernels& kernels)
{
    using Clock = std::chrono::steady_clock;
    constexpr std::size_t length = 1024;
    alignas(64) std::uint32_t below[length] = {}, above[length];
    alignas(64) std::uint8_t coverage[length];
    std::fill_n(above, length, 0x80402010u);
    std::fill_n(coverage, length, std::uint8_t { 100 });
    double least = 1e9;
    for (int round = 0; round < 8; ++round) {
        const auto start = Clock::now();
        kernels.over().pixels(below, length, above, 255);
        kernels.over().color(below, length, 0x80402010u, 255);
        kernels.over().colorMask(below, length, 0x80402010u, coverage);
        kernels.over().pixelsMask(below, length, above, coverage);
        least = std::min(least, std::chrono::duration<double, std::nano>(Clock::now() - start).count());
    }
    return least;
}

/// Wider vectors are not always faster: some processors halve them, others slow down. All sets give the same
/// bytes, so that it doesn't matter what a busy machine makes of it. Takes some 20 microseconds.
const SpanKernels& fastestKernels()
{
    const SpanKernels* fastest = nullptr;
    double least = 0;
    for (const SpanKernels* kernels : availableSpanKernels()) {
        const double time = nanosecondsOf(*kernels);
        // A set that is hardly faster may be slower elsewhere.
        if (!fastest || time < 0.95 * least) {
            fastest = kernels;
            least = time;
        }
    }
    return *fastest;
}

} // namespace

const SpanKernels& spanKernels()
{
    static const SpanKernels& chosen = fastestKernels();
    return chosen;
}

std::span<const SpanKernels* const> availableSpanKernels()
{
    return { available().kernels.data(), available().count };
}

} // namespace vxr
