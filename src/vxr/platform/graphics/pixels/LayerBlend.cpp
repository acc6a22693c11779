#include <vxr/platform/graphics/pixels/LayerBlend.h>

#include <array>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace vxr {

namespace {

template <typename Vector> bool same16(Vector a, Vector b)
{
    typedef std::uint64_t Halves __attribute__((vector_size(16)));
    const Halves different = Halves(a) ^ Halves(b);
    return (different[0] | different[1]) == 0;
}

#define VXR_BLEND_LEVEL portable
#define VXR_BLEND_TARGET
#define VXR_BLEND_BYTES 16
#define VXR_BLEND_SAME(a, b) same16(a, b)
#include <vxr/platform/graphics/pixels/LayerBlendLoops.h>
#undef VXR_BLEND_LEVEL
#undef VXR_BLEND_TARGET
#undef VXR_BLEND_BYTES
#undef VXR_BLEND_SAME

constexpr LayerBlendLoops portableLoops { "portable", portable::overRow, portable::overFadedRow,
    portable::overColorRow, portable::overMaskRow };

#if defined(__x86_64__)
#define VXR_BLEND_LEVEL avx2
#define VXR_BLEND_TARGET __attribute__((target("avx2")))
#define VXR_BLEND_BYTES 32
#define VXR_BLEND_SAME(a, b) (_mm256_movemask_epi8(_mm256_cmpeq_epi32(__m256i(a), __m256i(b))) == -1)
#include <vxr/platform/graphics/pixels/LayerBlendLoops.h>
#undef VXR_BLEND_LEVEL
#undef VXR_BLEND_TARGET
#undef VXR_BLEND_BYTES
#undef VXR_BLEND_SAME

#define VXR_BLEND_LEVEL avx512
#define VXR_BLEND_TARGET __attribute__((target("avx512f,avx512bw")))
#define VXR_BLEND_BYTES 64
#define VXR_BLEND_SAME(a, b) (_mm512_cmpneq_epi32_mask(__m512i(a), __m512i(b)) == 0)
#include <vxr/platform/graphics/pixels/LayerBlendLoops.h>
#undef VXR_BLEND_LEVEL
#undef VXR_BLEND_TARGET
#undef VXR_BLEND_BYTES
#undef VXR_BLEND_SAME

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
