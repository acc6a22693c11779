// The loops of LayerBlend.h, compiled once per instruction set: the includer defines VXR_BLEND_LEVEL (a
// namespace), VXR_BLEND_TARGET (the function attribute), VXR_BLEND_BYTES (the vector size) and
// VXR_BLEND_SAME(a, b) (whether two vectors are equal), and so there is no include guard. Vectors are lowered
// by the target of the function that they stand in, so every function here carries the attribute.

namespace VXR_BLEND_LEVEL {

constexpr std::size_t lanes = VXR_BLEND_BYTES / 4;

typedef std::uint8_t Bytes __attribute__((vector_size(VXR_BLEND_BYTES)));
typedef std::uint16_t Words __attribute__((vector_size(VXR_BLEND_BYTES)));
typedef std::uint32_t Pixels __attribute__((vector_size(VXR_BLEND_BYTES)));
typedef std::uint8_t Coverage __attribute__((vector_size(VXR_BLEND_BYTES / 4)));

#define VXR_BLEND_INLINE VXR_BLEND_TARGET static inline __attribute__((always_inline))

/// One value of 0 to 255 per pixel, repeated for both 16-bit halves.
VXR_BLEND_INLINE Words bothHalves(Pixels value) { return Words(value | (value << 16)); }

VXR_BLEND_INLINE Pixels multiply(Pixels pixels, Words factor)
{
    Words low = Words(pixels & 0x00ff00ffu) * factor + 0x80;
    Words high = Words((pixels >> 8) & 0x00ff00ffu) * factor + 0x80;
    low = (low + (low >> 8)) >> 8;
    high = (high + (high >> 8)) & 0xff00;
    return Pixels(low) | Pixels(high);
}

VXR_BLEND_INLINE Pixels over(Pixels source, Pixels destination)
{
    const Bytes rest = Bytes(multiply(destination, bothHalves(255u - (source >> 24))));
    const Bytes room = ~rest;
    const Bytes added = Bytes(source) < room ? Bytes(source) : room;
    return Pixels(rest + added);
}

VXR_BLEND_INLINE Pixels load(const std::uint32_t* from)
{
    Pixels pixels;
    std::memcpy(&pixels, from, sizeof pixels);
    return pixels;
}

VXR_BLEND_INLINE Pixels loadSome(const std::uint32_t* from, std::size_t count)
{
    Pixels pixels = {};
    std::memcpy(&pixels, from, count * 4);
    return pixels;
}

VXR_BLEND_INLINE Words coverageFactor(Coverage coverage)
{
    return bothHalves(__builtin_convertvector(coverage, Pixels));
}

/// Most of a layer is opaque or empty.
VXR_BLEND_INLINE void overPixels(std::uint32_t* destination, Pixels source)
{
    constexpr Pixels none = {}, opaque = none + 0xff000000u;
    if (VXR_BLEND_SAME(source & opaque, opaque)) {
        std::memcpy(destination, &source, sizeof source);
    } else if (!VXR_BLEND_SAME(source, none)) {
        const Pixels result = over(source, load(destination));
        std::memcpy(destination, &result, sizeof result);
    }
}

VXR_BLEND_TARGET static void overRow(
    std::uint32_t* destination, const std::uint32_t* source, std::size_t count)
{
    if (count < lanes) {
        const Pixels result = over(loadSome(source, count), loadSome(destination, count));
        std::memcpy(destination, &result, count * 4);
        return;
    }
    // The last pixels are blended before the others, which reach into them, have changed any.
    const std::size_t last = count - lanes;
    const Pixels end = over(load(source + last), load(destination + last));
    for (std::size_t i = 0; i < last; i += lanes)
        overPixels(destination + i, load(source + i));
    std::memcpy(destination + last, &end, sizeof end);
}

VXR_BLEND_TARGET static void overFadedRow(
    std::uint32_t* destination, const std::uint32_t* source, std::size_t count, std::uint8_t fade)
{
    const Words factor = bothHalves(Pixels {} + fade);
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const Pixels result = over(multiply(load(source + i), factor), load(destination + i));
        std::memcpy(destination + i, &result, sizeof result);
    }
    if (const std::size_t rest = count - i) {
        const Pixels faded = multiply(loadSome(source + i, rest), factor);
        const Pixels result = over(faded, loadSome(destination + i, rest));
        std::memcpy(destination + i, &result, rest * 4);
    }
}

VXR_BLEND_TARGET static void overColorRow(std::uint32_t* destination, std::uint32_t color, std::size_t count)
{
    const Pixels source = Pixels {} + color;
    std::size_t i = 0;
    for (; i + lanes <= count; i += lanes) {
        const Pixels result = over(source, load(destination + i));
        std::memcpy(destination + i, &result, sizeof result);
    }
    if (const std::size_t rest = count - i) {
        const Pixels result = over(source, loadSome(destination + i, rest));
        std::memcpy(destination + i, &result, rest * 4);
    }
}

VXR_BLEND_TARGET static void overMaskRow(
    std::uint32_t* destination, const std::uint8_t* mask, std::uint32_t color, std::size_t count)
{
    const Pixels source = Pixels {} + color;
    std::size_t i = 0;
    for (; i < count; i += lanes) {
        const std::size_t some = count - i < lanes ? count - i : lanes;
        Coverage coverage = {};
        std::memcpy(&coverage, mask + i, some == lanes ? lanes : some);
        // Most of a shadow's mask is empty.
        const Coverage none = {};
        if (std::memcmp(&coverage, &none, sizeof none) == 0)
            continue;
        const Pixels covered = multiply(source, coverageFactor(coverage));
        if (some == lanes) {
            const Pixels result = over(covered, load(destination + i));
            std::memcpy(destination + i, &result, sizeof result);
        } else {
            const Pixels result = over(covered, loadSome(destination + i, some));
            std::memcpy(destination + i, &result, some * 4);
        }
    }
}

#undef VXR_BLEND_INLINE

} // namespace VXR_BLEND_LEVEL
