#pragma once

// The loops that blend spans, for one instruction set; see SpanLoops.h.

#include <vxr/platform/graphics/pixels/SpanKernels.h>
#include <vxr/platform/graphics/pixels/SpanVectors.h>

namespace vxr {

namespace {

// What is blended: `at<size>(i)` is a vector of it from pixel i on. `few` makes
// the same from up to three pixels that is as long as a vector.

struct OneColor {
    std::uint32_t color;

    template <int size> VXR_SPAN_INLINE Pixels<size> at(std::size_t) const { return Pixels<size> {} + color; }
    VXR_SPAN_INLINE OneColor few(std::size_t, std::uint32_t*) const { return *this; }
};

struct SourceSpan {
    const std::uint32_t* source;

    template <int size> VXR_SPAN_INLINE Pixels<size> at(std::size_t i) const
    {
        return load<size>(source + i);
    }
    VXR_SPAN_INLINE SourceSpan few(std::size_t count, std::uint32_t* memory) const
    {
        for (std::size_t i = 0; i < count; ++i)
            memory[i] = source[i];
        return { memory };
    }
};

// Coverages. What is known of a whole vector saves work.

enum class Seen { Nothing, Part, All };

struct FullCoverage {
    VXR_SPAN_INLINE FullCoverage few(std::size_t, std::uint8_t*) const { return {}; }
    VXR_SPAN_INLINE Seen seen(std::size_t) const { return Seen::All; }
};

struct OneCoverage {
    std::uint8_t coverage;

    template <int size> VXR_SPAN_INLINE Words<size> at(std::size_t) const
    {
        return sameFactor<size>(coverage);
    }
    VXR_SPAN_INLINE OneCoverage few(std::size_t, std::uint8_t*) const { return *this; }
    VXR_SPAN_INLINE Seen seen(std::size_t) const { return Seen::Part; }
};

struct Mask {
    const std::uint8_t* coverage;

    template <int size> VXR_SPAN_INLINE Words<size> at(std::size_t i) const
    {
        return factors(Vector<size> {}, coverage + i);
    }
    VXR_SPAN_INLINE Mask few(std::size_t count, std::uint8_t* memory) const
    {
        for (std::size_t i = 0; i < count; ++i)
            memory[i] = coverage[i];
        return { memory };
    }
    VXR_SPAN_INLINE Seen seen(std::size_t i) const
    {
        std::uint64_t any = 0, all = ~any;
        for (std::size_t part = 0; part < widest; part += 8) {
            std::uint64_t bytes = 0;
            memcpy(&bytes, coverage + i + part, widest < 8 ? widest : 8);
            if (widest < 8)
                bytes |= bytes << 32;
            any |= bytes;
            all &= bytes;
        }
        return !any ? Seen::Nothing : !~all ? Seen::All : Seen::Part;
    }
};

// Operations.

struct Over {
    template <int size>
    static VXR_SPAN_INLINE Pixels<size> full(Pixels<size> source, Pixels<size> destination)
    {
        return over<size>(source, destination);
    }
    template <int size>
    static VXR_SPAN_INLINE Pixels<size> part(
        Pixels<size> source, Pixels<size> destination, Words<size> coverage)
    {
        return over<size>(product<size>(Channels<size>(source), coverage), destination);
    }
};

struct Copy {
    template <int size> static VXR_SPAN_INLINE Pixels<size> full(Pixels<size> source, Pixels<size>)
    {
        return source;
    }
    template <int size>
    static VXR_SPAN_INLINE Pixels<size> part(
        Pixels<size> source, Pixels<size> destination, Words<size> coverage)
    {
        return mix<size>(Channels<size>(source), destination, coverage);
    }
};

template <class Operation, int size, class Source>
VXR_SPAN_INLINE Pixels<size> blended(
    std::uint32_t* destination, std::size_t i, const Source& source, const FullCoverage&)
{
    return Operation::template full<size>(source.template at<size>(i), load<size>(destination + i));
}

template <class Operation, int size, class Source, class Coverage>
VXR_SPAN_INLINE Pixels<size> blended(
    std::uint32_t* destination, std::size_t i, const Source& source, const Coverage& coverage)
{
    return Operation::template part<size>(
        source.template at<size>(i), load<size>(destination + i), coverage.template at<size>(i));
}

/// Blends a widest vector in place. Most of a layer is opaque or empty, and so
/// is most of a mask.
template <class Operation, class Source, class Coverage>
VXR_SPAN_INLINE void step(
    std::uint32_t* destination, std::size_t i, const Source& source, const Coverage& coverage)
{
    constexpr int size = VXR_SPAN_BYTES;
    const Seen seen = coverage.seen(i);
    if (seen == Seen::Nothing)
        return;
    if (seen == Seen::Part) {
        store<size>(destination + i, blended<Operation, size>(destination, i, source, coverage));
        return;
    }
    const Pixels<size> pixels = source.template at<size>(i);
    if constexpr (__is_same(Operation, Over)) {
        constexpr std::uint32_t opaque = 0xff000000u;
        if (isZero(~pixels & opaque)) {
            store<size>(destination + i, pixels);
            return;
        }
        if (isZero(pixels))
            return;
    }
    store<size>(destination + i, Operation::template full<size>(pixels, load<size>(destination + i)));
}

// Where a span is not whole vectors, its last two overlap. Both are blended before either is stored, so that
// no pixel is blended twice. They are the last to be touched: memory is read in order.

template <class Operation, int size, class Source, class Coverage>
VXR_SPAN_INLINE void blendTwo(std::uint32_t* destination, std::size_t i, std::size_t count,
    const Source& source, const Coverage& coverage)
{
    const std::size_t last = count - Vector<size>::lanes;
    const Pixels<size> first = blended<Operation, size>(destination, i, source, coverage);
    const Pixels<size> end = blended<Operation, size>(destination, last, source, coverage);
    store<size>(destination + i, first);
    store<size>(destination + last, end);
}

template <class Operation, class Source, class Coverage>
VXR_SPAN_INLINE void blend(
    std::uint32_t* destination, std::size_t count, const Source& source, const Coverage& coverage)
{
    constexpr int size = VXR_SPAN_BYTES;
    if (count >= widest) {
        std::size_t i = 0;
        for (; i + 2 * widest <= count; i += widest)
            step<Operation>(destination, i, source, coverage);
        blendTwo<Operation, size>(destination, i, count, source, coverage);
        return;
    }
#if VXR_SPAN_BYTES >= 64
    if (count >= 8) {
        blendTwo<Operation, 32>(destination, 0, count, source, coverage);
        return;
    }
#endif
    if (count >= 4) {
        blendTwo<Operation, 16>(destination, 0, count, source, coverage);
        return;
    }
    std::uint32_t pixels[4] = {}, sources[4] = {};
    std::uint8_t coverages[4] = {};
    for (std::size_t i = 0; i < count; ++i)
        pixels[i] = destination[i];
    const Pixels<16> result
        = blended<Operation, 16>(pixels, 0, source.few(count, sources), coverage.few(count, coverages));
    for (std::size_t i = 0; i < count; ++i)
        destination[i] = result[i];
}

std::uint32_t fadedColor(std::uint32_t color, std::uint8_t coverage)
{
    return product<16>(Channels<16>(Pixels<16> {} + color), sameFactor<16>(coverage))[0];
}

// The functions of the table.

void fill(std::uint32_t* destination, std::size_t count, std::uint32_t color)
{
    for (std::size_t i = 0; i < count; ++i)
        destination[i] = color;
}

void copyColor(std::uint32_t* destination, std::size_t count, std::uint32_t color, std::uint8_t coverage)
{
    if (coverage == 255)
        fill(destination, count, color);
    else if (coverage)
        blend<Copy>(destination, count, OneColor { color }, OneCoverage { coverage });
}

void copyColorMask(
    std::uint32_t* destination, std::size_t count, std::uint32_t color, const std::uint8_t* coverage)
{
    blend<Copy>(destination, count, OneColor { color }, Mask { coverage });
}

void copyPixels(
    std::uint32_t* destination, std::size_t count, const std::uint32_t* source, std::uint8_t coverage)
{
    if (coverage == 255)
        memcpy(destination, source, count * 4);
    else if (coverage)
        blend<Copy>(destination, count, SourceSpan { source }, OneCoverage { coverage });
}

void copyPixelsMask(
    std::uint32_t* destination, std::size_t count, const std::uint32_t* source, const std::uint8_t* coverage)
{
    blend<Copy>(destination, count, SourceSpan { source }, Mask { coverage });
}

void clearColor(std::uint32_t* destination, std::size_t count, std::uint32_t, std::uint8_t coverage)
{
    copyColor(destination, count, 0, coverage);
}

void clearColorMask(
    std::uint32_t* destination, std::size_t count, std::uint32_t, const std::uint8_t* coverage)
{
    copyColorMask(destination, count, 0, coverage);
}

void clearPixels(std::uint32_t* destination, std::size_t count, const std::uint32_t*, std::uint8_t coverage)
{
    copyColor(destination, count, 0, coverage);
}

void clearPixelsMask(
    std::uint32_t* destination, std::size_t count, const std::uint32_t*, const std::uint8_t* coverage)
{
    copyColorMask(destination, count, 0, coverage);
}

void overColor(std::uint32_t* destination, std::size_t count, std::uint32_t color, std::uint8_t coverage)
{
    const std::uint32_t faded = coverage == 255 ? color : fadedColor(color, coverage);
    if (faded >> 24 == 255)
        fill(destination, count, faded);
    else if (faded)
        blend<Over>(destination, count, OneColor { faded }, FullCoverage {});
}

void overColorMask(
    std::uint32_t* destination, std::size_t count, std::uint32_t color, const std::uint8_t* coverage)
{
    if (color)
        blend<Over>(destination, count, OneColor { color }, Mask { coverage });
}

void overPixels(
    std::uint32_t* destination, std::size_t count, const std::uint32_t* source, std::uint8_t coverage)
{
    if (coverage == 255)
        blend<Over>(destination, count, SourceSpan { source }, FullCoverage {});
    else if (coverage)
        blend<Over>(destination, count, SourceSpan { source }, OneCoverage { coverage });
}

void overPixelsMask(
    std::uint32_t* destination, std::size_t count, const std::uint32_t* source, const std::uint8_t* coverage)
{
    blend<Over>(destination, count, SourceSpan { source }, Mask { coverage });
}

void fade(std::uint32_t* target, const std::uint32_t* source, std::size_t count, std::uint8_t factor)
{
    constexpr int size = VXR_SPAN_BYTES;
    std::size_t i = 0;
    for (; i + widest <= count; i += widest) {
        const Channels<size> pixels(load<size>(source + i));
        store<size>(target + i, product<size>(pixels, sameFactor<size>(factor)));
    }
    for (; i < count; ++i)
        target[i] = fadedColor(source[i], factor);
}

/// Swaps bytes; what is not opaque is premultiplied.
void toNative(std::uint32_t* target, const std::uint32_t* source, std::size_t count, bool isOpaque)
{
    for (std::size_t i = 0; i < count; ++i) {
        std::uint32_t pixel;
        std::uint8_t bytes[4];
        memcpy(bytes, source + i, 4);
        pixel = std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8 | bytes[3];
        if (isOpaque)
            pixel |= 0xff000000u;
        else
            pixel = fadedColor(pixel, bytes[0]) | std::uint32_t(bytes[0]) << 24;
        target[i] = pixel;
    }
}

/// Colours that exceed their alpha become as large as it.
void limitToAlpha(std::uint32_t* pixels, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t pixel = pixels[i], alpha = pixel >> 24;
        const std::uint32_t red = pixel >> 16 & 0xff, green = pixel >> 8 & 0xff, blue = pixel & 0xff;
        pixels[i] = alpha << 24 | (red < alpha ? red : alpha) << 16 | (green < alpha ? green : alpha) << 8
            | (blue < alpha ? blue : alpha);
    }
}

void multiplyMask(std::uint8_t* mask, const std::uint8_t* other, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        mask[i] = multiplyBytes(mask[i], other[i]);
}

void fadeMask(std::uint8_t* mask, std::size_t count, std::uint8_t factor)
{
    for (std::size_t i = 0; i < count; ++i)
        mask[i] = multiplyBytes(mask[i], factor);
}

} // namespace

} // namespace vxr
