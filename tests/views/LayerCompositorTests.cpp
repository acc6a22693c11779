#include <vxr/platform/graphics/pixels/LayerCompositor.h>
#include <vxr/platform/graphics/pixels/SpanKernels.h>

#include <gtest/gtest.h>
#include <pixman.h>

#include <list>
#include <memory>
#include <random>
#include <sys/mman.h>
#include <vector>

using namespace vxr;

namespace {

/// An image of pixman, whose own source-over judges every result here.
struct Reference {
    std::shared_ptr<pixman_image_t> image;

    explicit Reference(pixman_image_t* made)
        : image(made, pixman_image_unref)
    {
    }
    Reference(pixman_format_code_t format, void* bits, int width, int height, int stride)
        : Reference(pixman_image_create_bits_no_clear(
            format, width, height, static_cast<std::uint32_t*>(bits), stride))
    {
    }
    static Reference solid(std::uint32_t argb)
    {
        const auto channel = [&](int shift) { return std::uint16_t((argb >> shift & 0xff) * 0x101); };
        const pixman_color_t color { channel(16), channel(8), channel(0), channel(24) };
        return Reference(pixman_image_create_solid_fill(&color));
    }
    void over(const Reference& destination, const Reference* mask = nullptr) const
    {
        pixman_image_t* to = destination.image.get();
        pixman_image_composite32(PIXMAN_OP_OVER, image.get(), mask ? mask->image.get() : nullptr, to, 0, 0, 0,
            0, 0, 0, pixman_image_get_width(to), pixman_image_get_height(to));
    }
};

std::uint32_t premultiplied(std::uint32_t argb)
{
    const std::uint32_t alpha = argb >> 24;
    std::uint32_t result = argb & 0xff000000;
    for (int shift : { 0, 8, 16 })
        result |= (argb >> shift & 255) * alpha / 255 << shift;
    return result;
}

template <class T> std::vector<T> randomValues(std::size_t count, std::mt19937& random)
{
    std::vector<T> values(count);
    for (auto& value : values)
        value = T(random());
    return values;
}

} // namespace

TEST(LayerCompositor, LayersMasksAndColoursEqualPixmanAtEveryLength)
{
    std::mt19937 random(7);
    for (unsigned level = 0; level < 256; ++level) {
        const int width = 1 + int(level) % 97;
        const auto count = std::size_t(width);
        auto source = randomValues<std::uint32_t>(count, random);
        // Runs that are opaque or empty, as in most layers, or have colours but no alpha.
        const std::uint32_t kept = level % 2 ? 0 : 0xffffff;
        for (std::size_t i = 0; i < count; ++i)
            source[i] = i / 19 % 3 == 1 ? source[i] | 0xff000000
                : i / 19 % 3 == 2       ? source[i] & kept
                                        : source[i];
        const auto start = randomValues<std::uint32_t>(count + 1, random);
        auto coverage = randomValues<std::uint8_t>(count + 3, random);
        for (auto& value : coverage)
            value = random() % 3 ? value : 0;
        const std::uint32_t color = premultiplied(level << 24 | (random() & 0xffffff));
        const Reference image(PIXMAN_a8r8g8b8, source.data(), width, 1, width * 4),
            fill = Reference::solid(color), fade = Reference::solid(level << 24),
            mask(PIXMAN_a8, coverage.data(), width, 1, (width + 3) & ~3);

        auto plain = start, faded = start, masked = start, colored = start;
        image.over({ PIXMAN_a8r8g8b8, plain.data(), width, 1, width * 4 });
        image.over({ PIXMAN_a8r8g8b8, faded.data(), width, 1, width * 4 }, &fade);
        fill.over({ PIXMAN_a8r8g8b8, masked.data(), width, 1, width * 4 }, &mask);
        fill.over({ PIXMAN_a8r8g8b8, colored.data(), width, 1, width * 4 });
        for (const SpanKernels* kernels : availableSpanKernels()) {
            const SpanOperation& operation = kernels->over();
            auto over = start, a = start, b = start, c = start;
            operation.pixels(over.data(), count, source.data(), 255);
            operation.pixels(a.data(), count, source.data(), std::uint8_t(level));
            operation.colorMask(b.data(), count, color, coverage.data());
            operation.color(c.data(), count, color, 255);
            ASSERT_EQ(over, plain) << kernels->name << " count " << count;
            ASSERT_EQ(a, faded) << kernels->name << " fade " << level;
            ASSERT_EQ(b, masked) << kernels->name << " alpha " << level;
            ASSERT_EQ(c, colored) << kernels->name << " alpha " << level;
        }
    }
}

namespace {

constexpr int pageWidth = 90, pageHeight = 70;

/// A random layer with pixels of its own, opaque where its record says so.
struct TestLayer {
    LayerInfo info;
    std::vector<std::uint32_t> colors;
    std::vector<std::uint8_t> coverage;

    explicit TestLayer(std::mt19937& random)
    {
        const auto between
            = [&](int low, int high) { return low + int(random() % unsigned(high - low + 1)); };
        const int kinds[] = { LayerBitmapConstant, LayerBitmap32, LayerBitmap32, LayerBitmapMask };
        info.layerInfoVersion = 1;
        info.bitmapType = kinds[random() % 4];
        const float fades[] = { 1, 1, 1, 0.5f, 0.3f, 0 };
        info.fade = fades[random() % 6];
        info.constantColor = std::uint32_t(random()) | (random() % 2 ? 0xff : 0);
        const int width = between(1, 80), height = between(1, 60);
        info.frameMinX = between(-40, pageWidth);
        info.frameMinY = between(-40, pageHeight);
        info.frameMaxX = info.frameMinX + width;
        info.frameMaxY = info.frameMinY + height;
        info.clipMinX = info.frameMinX + between(-2, 6);
        info.clipMinY = info.frameMinY + between(-2, 6);
        info.clipMaxX = info.frameMaxX - 1 - between(-2, 6);
        info.clipMaxY = info.frameMaxY - 1 - between(-2, 6);

        colors = randomValues<std::uint32_t>(std::size_t(width * height), random);
        for (auto& pixel : colors)
            pixel = premultiplied(pixel);
        coverage = randomValues<std::uint8_t>(std::size_t((width + 3) * height), random);
        info.colorBytesPerRow = width * 4;
        info.alphaBytesPerRow = width + 3;
        if (info.bitmapType == LayerBitmap32)
            info.colorData = colors.data();
        if (info.bitmapType == LayerBitmapMask)
            info.alphaData = coverage.data();
        if (info.bitmapType == LayerBitmap32 && random() % 3) {
            info.opaqueMinX = info.frameMinX + between(0, width / 2);
            info.opaqueMinY = info.frameMinY + between(0, height / 2);
            info.opaqueMaxX = info.frameMaxX - between(0, width / 2);
            info.opaqueMaxY = info.frameMaxY - between(0, height / 2);
            for (int y = info.opaqueMinY; y < info.opaqueMaxY; ++y)
                for (int x = info.opaqueMinX; x < info.opaqueMaxX; ++x)
                    colors[std::size_t((y - info.frameMinY) * width + x - info.frameMinX)] |= 0xff000000;
        }
    }

    /// The same layer through pixman, one row at a time, with no thought of what is hidden.
    void drawByReference(
        pixman_format_code_t format, std::uint8_t* pixels, int stride, const LayerInfo& destination)
    {
        const int bytesPerPixel = PIXMAN_FORMAT_BPP(format) / 8;
        const int x0 = std::max({ info.frameMinX, info.clipMinX, destination.clipMinX });
        const int x1 = std::min({ info.frameMaxX - 1, info.clipMaxX, destination.clipMaxX }) + 1;
        const int y0 = std::max({ info.frameMinY, info.clipMinY, destination.clipMinY });
        const int y1 = std::min({ info.frameMaxY - 1, info.clipMaxY, destination.clipMaxY }) + 1;
        const auto upperByte = [](double v) { return std::uint32_t(v * 65535 + 0.5) >> 8; };
        const std::uint32_t fade = upperByte(double(info.fade));
        const double alpha = double(info.constantColor & 0xff) / 255 * double(info.fade);
        std::uint32_t color = upperByte(alpha) << 24;
        for (int shift : { 8, 16, 24 })
            color |= upperByte(double(info.constantColor >> shift & 0xff) / 255 * alpha) << (shift - 8);
        const int width = x1 - x0;
        for (int y = y0; y < y1 && width > 0; ++y) {
            const int row = y - info.frameMinY, column = x0 - info.frameMinX;
            const Reference to(
                format, pixels + y * stride + x0 * bytesPerPixel, width, 1, (width * bytesPerPixel + 3) & ~3);
            if (info.bitmapType == LayerBitmap32) {
                const Reference mask = Reference::solid(fade << 24);
                std::uint32_t* from = colors.data() + row * (info.frameMaxX - info.frameMinX) + column;
                Reference(PIXMAN_a8r8g8b8, from, width, 1, width * 4).over(to, &mask);
            } else if (info.bitmapType == LayerBitmapMask) {
                std::uint8_t* from = coverage.data() + row * info.alphaBytesPerRow + column;
                const Reference mask(PIXMAN_a8, from, width, 1, (width + 3) & ~3);
                Reference::solid(color).over(to, &mask);
            } else {
                Reference::solid(color).over(to);
            }
        }
    }
};

LayerInfo pageRecord(std::vector<std::uint8_t>& pixels, bool deep)
{
    LayerInfo page;
    page.layerInfoVersion = 1;
    page.bitmapType = deep ? LayerBitmap32 : LayerBitmap16;
    page.fade = 1;
    page.colorData = pixels.data();
    page.colorBytesPerRow = pageWidth * (deep ? 4 : 2);
    page.frameMaxX = pageWidth;
    page.frameMaxY = pageHeight;
    page.clipMaxX = pageWidth - 1;
    page.clipMaxY = pageHeight - 1;
    return page;
}

} // namespace

TEST(LayerCompositor, ChainEqualsPixmanFromTheBottomUpAndStaysInTheClip)
{
    std::mt19937 random(11);
    for (int round = 0; round < 800; ++round) {
        const bool deep = round % 2;
        std::list<TestLayer> layers; // the top first
        for (unsigned count = random() % 12; count; --count) {
            LayerInfo* below = layers.empty() ? nullptr : &layers.front().info;
            layers.emplace_front(random).info.next = below;
        }
        auto expected
            = randomValues<std::uint8_t>(std::size_t(pageWidth * pageHeight * (deep ? 4 : 2)), random);
        for (std::size_t i = 1; !deep && i < expected.size(); i += 2)
            expected[i] &= 0x7f; // pixman clears the unused bit of what it touches
        std::vector<std::uint8_t> actual = expected;
        LayerInfo page = pageRecord(actual, deep);
        page.clipMinX = int(random() % 40);
        page.clipMinY = int(random() % 40);
        page.clipMaxX = page.clipMinX + int(random() % 60) - 2;
        page.clipMaxY = std::min(pageHeight - 1, page.clipMinY + int(random() % 60) - 2);

        LayerInfo limits = page; // a clip may reach past the frame
        limits.clipMaxX = std::min(page.clipMaxX, pageWidth - 1);
        for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer)
            layer->drawByReference(
                deep ? PIXMAN_a8r8g8b8 : PIXMAN_x1r5g5b5, expected.data(), page.colorBytesPerRow, limits);
        LayerCompositor::composite(page, layers.empty() ? nullptr : &layers.front().info);
        ASSERT_EQ(actual, expected) << "round " << round;
    }
}

TEST(LayerCompositor, PixelsBehindOpaqueBoundsAreNeverRead)
{
    void* forbidden = mmap(nullptr, 1 << 20, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(forbidden, MAP_FAILED);
    std::vector<std::uint8_t> pixels(pageWidth * pageHeight * 4, 0x55);
    const LayerInfo page = pageRecord(pixels, true);

    // Two opaque halves on top hide what lies below only together.
    std::vector<std::uint32_t> half(pageWidth * pageHeight, 0xff102030);
    LayerInfo left = page, right = page, hidden = page;
    left.colorData = right.colorData = half.data();
    left.frameMaxX = left.opaqueMaxX = right.frameMinX = right.opaqueMinX = 41;
    right.opaqueMaxX = right.frameMaxX = pageWidth;
    left.opaqueMaxY = right.opaqueMaxY = pageHeight;
    hidden.colorData = forbidden;
    left.next = &right;
    right.next = &hidden;
    LayerCompositor::composite(page, &left);
    for (std::size_t i = 0; i < half.size(); ++i)
        ASSERT_EQ(reinterpret_cast<std::uint32_t*>(pixels.data())[i], 0xff102030u);
    munmap(forbidden, 1 << 20);
}
