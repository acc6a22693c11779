#include <vxr/platform/graphics/ImageImpl.h>

#include <algorithm>
#include <array>
#include <new>
#include <vector>

namespace vxr {

namespace {

/// The pixels along one axis that a pixel at half the resolution covers, with their weights.
struct Cover {
    int first = 0;
    std::array<float, 3> weights {}; ///< sum 1
};

std::vector<Cover> coversOf(int length)
{
    const int half = (length + 1) / 2;
    const double step = static_cast<double>(length) / half;
    std::vector<Cover> covers(static_cast<std::size_t>(half));
    for (int i = 0; i < half; ++i) {
        const double from = i * step, to = from + step;
        Cover& cover = covers[static_cast<std::size_t>(i)];
        cover.first = std::min(static_cast<int>(from), length - 1);
        for (int tap = 0; tap < 3; ++tap) {
            const double x = cover.first + tap;
            const double part = std::max(0.0, std::min(x + 1, to) - std::max(x, from));
            cover.weights[static_cast<std::size_t>(tap)] = static_cast<float>(part / step);
        }
    }
    return covers;
}

struct Pixels {
    std::uint8_t* bytes;
    std::ptrdiff_t stride;
    int width, height;

    std::uint8_t* row(int y) const { return bytes + y * stride; }
};

/// Both sides are even: each pixel is the mean of four.
void halveEven(const Pixels& source, const Pixels& half)
{
    for (int y = 0; y < half.height; ++y) {
        const std::uint8_t *upper = source.row(2 * y), *lower = source.row(2 * y + 1);
        std::uint8_t* out = half.row(y);
        for (int x = 0; x < half.width; ++x)
            for (int c = 0; c < 4; ++c) {
                const int at = 8 * x + c;
                out[4 * x + c] = static_cast<std::uint8_t>(
                    (upper[at] + upper[at + 4] + lower[at] + lower[at + 4] + 2) >> 2);
            }
    }
}

void halveAny(const Pixels& source, const Pixels& half)
{
    const std::vector<Cover> columns = coversOf(source.width), rows = coversOf(source.height);
    std::vector<float> mixed(static_cast<std::size_t>(source.width) * 4);
    for (int y = 0; y < half.height; ++y) {
        const Cover& cover = rows[static_cast<std::size_t>(y)];
        std::ranges::fill(mixed, 0.0f);
        for (int tap = 0; tap < 3; ++tap) {
            const float weight = cover.weights[static_cast<std::size_t>(tap)];
            if (weight == 0)
                continue;
            const std::uint8_t* in = source.row(cover.first + tap);
            for (std::size_t i = 0; i < mixed.size(); ++i)
                mixed[i] += weight * in[i];
        }
        std::uint8_t* out = half.row(y);
        for (int x = 0; x < half.width; ++x) {
            const Cover& across = columns[static_cast<std::size_t>(x)];
            for (int c = 0; c < 4; ++c) {
                float sum = 0.5f;
                for (int tap = 0; tap < 3; ++tap) {
                    const float weight = across.weights[static_cast<std::size_t>(tap)];
                    if (weight != 0)
                        sum += weight * mixed[static_cast<std::size_t>(4 * (across.first + tap) + c)];
                }
                out[4 * x + c] = static_cast<std::uint8_t>(sum);
            }
        }
    }
}

std::shared_ptr<const Image> halfOf(const Image& image)
{
    const NativePixels* source = image.impl().native();
    if (!source || (image.width() == 1 && image.height() == 1))
        return nullptr;
    const int width = (image.width() + 1) / 2, height = (image.height() + 1) / 2;
    const std::size_t bytesPerRow = static_cast<std::size_t>(width) * 4;
    const std::size_t size = bytesPerRow * static_cast<std::size_t>(height);
    const std::shared_ptr<std::uint32_t[]> pixels(new (std::nothrow) std::uint32_t[size / 4]);
    if (!pixels)
        return nullptr;
    const Pixels from { reinterpret_cast<std::uint8_t*>(const_cast<std::uint32_t*>(source->pixels)),
        source->stride * 4, image.width(), image.height() };
    const Pixels to { reinterpret_cast<std::uint8_t*>(pixels.get()), static_cast<std::ptrdiff_t>(bytesPerRow),
        width, height };
    if (image.width() % 2 == 0 && image.height() % 2 == 0)
        halveEven(from, to);
    else
        halveAny(from, to);
    ImageLayout layout = ImageLayout::nativeARGB(width, height, bytesPerRow);
    if (source->opaque) {
        layout.alpha = AlphaFormat::NoneSkipFirst;
        layout.isFullAlpha = true;
    }
    auto half = Image::create(layout, pixels.get(), size, pixels);
    if (half) {
        half->impl().halvings = image.halvings() + 1;
        half->impl().sourceWidth = image.impl().sourceWidth;
        half->impl().sourceHeight = image.impl().sourceHeight;
    }
    return half;
}

} // namespace

std::shared_ptr<const Image> Image::reduced(int halvings) const
{
    std::shared_ptr<const Image> result;
    const Image* source = this;
    for (; halvings > 0; --halvings) {
        auto& half = source->mImpl->half;
        if (!half)
            half = halfOf(*source);
        if (!half)
            break;
        result = half;
        source = result.get();
    }
    return result;
}

} // namespace vxr
