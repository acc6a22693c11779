#include <apps/import/PixelConversion.h>

#include <vxr/platform/graphics/color/ColorSpace.h>

#include <lcms2.h>

#include <fstream>
#include <iterator>

namespace vxr::importing {

namespace {

std::vector<std::byte> readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string text { std::istreambuf_iterator<char>(file), {} };
    const auto bytes = std::as_bytes(std::span(text));
    return { bytes.begin(), bytes.end() };
}

/// The system's default CMYK profile; empty when it has none.
const std::vector<std::byte>& defaultCMYKProfile()
{
    static const std::vector<std::byte> profile = readFile(ColorSpace::defaultCMYKProfilePath());
    return profile;
}

/// For opaque samples of 8 bits, which nearly all are.
void* defaultCMYKTransform()
{
    static const Transform transform = makeTransform(
        { .width = 1, .height = 1, .model = BitmapModel::CMYK, .samplesPerPixel = 4, .bitsPerSample = 8 },
        defaultCMYKProfile());
    return transform.get();
}

constexpr std::uint32_t level(std::uint8_t value) { return value; }

constexpr std::uint32_t level(std::uint16_t value) { return (value * 255u + 32767u) / 65535u; }

/// Rounded a * b / 255.
constexpr std::uint32_t product(std::uint32_t a, std::uint32_t b)
{
    const std::uint32_t t = a * b + 128;
    return (t + (t >> 8)) >> 8;
}

constexpr std::uint32_t pixel(std::uint32_t red, std::uint32_t green, std::uint32_t blue, std::uint32_t alpha)
{
    return alpha << 24 | red << 16 | green << 8 | blue;
}

} // namespace

void loadDefaultConversions() { defaultCMYKTransform(); }

PixelConversion::PixelConversion(const BitmapFormat& source, std::span<const std::byte> profile)
    : mSource(source)
{
    if (!profile.empty()) {
        if (leavesValues(source.model, profile))
            return;
        mTransform = makeTransform(source, profile);
    }
    if (mTransform || source.model != BitmapModel::CMYK)
        return;
    if (!source.hasAlpha && source.bitsPerSample == 8)
        mShared = defaultCMYKTransform();
    else
        mTransform = makeTransform(source, defaultCMYKProfile());
}

template <class Sample>
void PixelConversion::convertPlainly(const Sample* samples, std::uint32_t* pixels) const
{
    const std::uint32_t step = mSource.samplesPerPixel, alphaAt = step - 1;
    for (std::uint32_t x = 0; x < mSource.width; ++x, samples += step) {
        const std::uint32_t alpha = mSource.hasAlpha ? level(samples[alphaAt]) : 255;
        switch (mSource.model) {
        case BitmapModel::Gray: {
            const std::uint32_t gray = level(samples[0]);
            pixels[x] = pixel(gray, gray, gray, alpha);
            break;
        }
        case BitmapModel::RGB:
            pixels[x] = pixel(level(samples[0]), level(samples[1]), level(samples[2]), alpha);
            break;
        case BitmapModel::CMYK: {
            const std::uint32_t light = 255 - level(samples[3]);
            pixels[x] = pixel(product(255 - level(samples[0]), light),
                product(255 - level(samples[1]), light), product(255 - level(samples[2]), light), alpha);
            break;
        }
        }
    }
}

void PixelConversion::premultiply(std::uint32_t* pixels) const
{
    for (std::uint32_t x = 0; x < mSource.width; ++x) {
        const std::uint32_t value = pixels[x], alpha = value >> 24;
        if (alpha != 255)
            pixels[x] = pixel(product(value >> 16 & 255, alpha), product(value >> 8 & 255, alpha),
                product(value & 255, alpha), alpha);
    }
}

void PixelConversion::convertRow(const std::byte* samples, std::uint32_t* pixels)
{
    if (void* const transform = mTransform ? mTransform.get() : mShared) {
        cmsDoTransform(transform, samples, pixels, mSource.width);
        if (!mSource.hasAlpha)
            for (std::uint32_t x = 0; x < mSource.width; ++x)
                pixels[x] |= 0xff000000;
    } else if (mSource.bitsPerSample == 8) {
        convertPlainly(reinterpret_cast<const std::uint8_t*>(samples), pixels);
    } else {
        convertPlainly(reinterpret_cast<const std::uint16_t*>(samples), pixels);
    }
    if (mSource.hasAlpha)
        premultiply(pixels);
}

} // namespace vxr::importing
