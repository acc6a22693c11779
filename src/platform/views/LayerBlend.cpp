#include <vxr/platform/views/LayerBlend.h>

#include <array>
#include <cstring>

namespace vxr {

namespace {

#define VXR_BLEND_LEVEL portable
#define VXR_BLEND_TARGET
#define VXR_BLEND_BYTES 16
#include "LayerBlendLoops.h"
#undef VXR_BLEND_LEVEL
#undef VXR_BLEND_TARGET
#undef VXR_BLEND_BYTES

constexpr LayerBlendLoops portableLoops { "portable", portable::overRow, portable::overFadedRow,
    portable::overColorRow, portable::overMaskRow };

#if defined(__x86_64__)
#define VXR_BLEND_LEVEL avx2
#define VXR_BLEND_TARGET __attribute__((target("avx2")))
#define VXR_BLEND_BYTES 32
#include "LayerBlendLoops.h"
#undef VXR_BLEND_LEVEL
#undef VXR_BLEND_TARGET
#undef VXR_BLEND_BYTES

#define VXR_BLEND_LEVEL avx512
#define VXR_BLEND_TARGET __attribute__((target("avx512f,avx512bw")))
#define VXR_BLEND_BYTES 64
#include "LayerBlendLoops.h"
#undef VXR_BLEND_LEVEL
#undef VXR_BLEND_TARGET
#undef VXR_BLEND_BYTES

constexpr LayerBlendLoops avx2Loops { "avx2", avx2::overRow, avx2::overFadedRow, avx2::overColorRow,
    avx2::overMaskRow };
constexpr LayerBlendLoops avx512Loops { "avx512bw", avx512::overRow, avx512::overFadedRow,
    avx512::overColorRow, avx512::overMaskRow };
#endif

struct Available {
    std::array<const LayerBlendLoops*, 3> loops {};
    std::size_t count = 0;

    Available()
    {
        loops[count++] = &portableLoops;
#if defined(__x86_64__)
        if (__builtin_cpu_supports("avx2"))
            loops[count++] = &avx2Loops;
        if (__builtin_cpu_supports("avx512bw"))
            loops[count++] = &avx512Loops;
#endif
    }
};

const Available& available()
{
    static const Available found;
    return found;
}

} // namespace

const LayerBlendLoops& layerBlendLoops() { return *available().loops[available().count - 1]; }

std::span<const LayerBlendLoops* const> availableLayerBlendLoops()
{
    return { available().loops.data(), available().count };
}

} // namespace vxr
