#include <vxr/platform/graphics/LayerBlend.h>
#include <vxr/platform/views/LayerCompositor.h>

#include <gtest/gtest.h>
#include <pixman.h>

#include <memory>
#include <random>
#include <sys/mman.h>
#include <vector>

using namespace vxr;

namespace {

/// pixman's own source-over, the judge of every result here.
struct Reference {
    static pixman_image_t* image(pixman_format_code_t format, void* bits, int width, int height, int stride)
    {
        return pixman_image_create_bits_no_clear(
            format, width, height, static_cast<std::uint32_t*>(bits), stride);
    }
    static pixman_image_t* solid(std::uint32_t argb)
    {
        const auto channel = [&](int shift) { return std::uint16_t((argb >> shift & 0xff) * 0x101); };
        const pixman_color_t color { channel(16), channel(8), channel(0), channel(24) };
        return pixman_image_create_solid_fill(&color);
    }
    static void over(pixman_image_t* source, pixman_image_t* mask, pixman_image_t* destination, int sx,
        int sy, int x, int y, int width, int height)
    {
        pixman_image_composite32(
            PIXMAN_OP_OVER, source, mask, destination, sx, sy, sx, sy, x, y, width, height);
        pixman_image_unref(source);
        if (mask)
            pixman_image_unref(mask);
        pixman_image_unref(destination);
    }
};

std::uint32_t premultiplied(std::uint32_t argb)
{
    const auto alpha = std::uint8_t(argb >> 24);
    std::uint32_t result = argb & 0xff000000;
    for (int shift : { 0, 8, 16 })
        result |= std::uint32_t(multiply255(std::uint8_t(argb >> shift), alpha)) << shift;
    return result;
}

class LayerBlendTest : public ::testing::Test {
protected:
    std::mt19937 mRandom { 7 };

    std::vector<std::uint32_t> randomPixels(std::size_t count)
    {
        std::vector<std::uint32_t> pixels(count);
        for (auto& pixel : pixels)
            pixel = std::uint32_t(mRandom());
        return pixels;
    }
};

} // namespace

TEST_F(LayerBlendTest, OverEqualsPixmanForEveryAlphaColourAndDestination)
{
    std::vector<std::uint32_t> source(65536), start(65536);
    for (unsigned alpha = 0; alpha < 256; ++alpha) {
        for (unsigned i = 0; i < 65536; ++i) {
            source[i] = alpha << 24 | (i >> 8) * 0x010101u;
            start[i] = (i & 0xff) * 0x01010101u;
        }
        std::vector<std::uint32_t> expected = start;
        Reference::over(Reference::image(PIXMAN_a8r8g8b8, source.data(), 256, 256, 1024), nullptr,
            Reference::image(PIXMAN_a8r8g8b8, expected.data(), 256, 256, 1024), 0, 0, 0, 0, 256, 256);
        for (const LayerBlendLoops* loops : availableLayerBlendLoops()) {
            std::vector<std::uint32_t> actual = start;
            loops->over(actual.data(), source.data(), actual.size());
            ASSERT_EQ(actual, expected) << loops->name << " alpha " << alpha;
        }
    }
}

TEST_F(LayerBlendTest, LayersMasksAndColoursEqualPixmanAtEveryLength)
{
    for (unsigned level = 0; level < 256; ++level) {
        const int count = 1 + int(level) % 97;
        std::vector<std::uint32_t> source = randomPixels(std::size_t(count));
        // Runs that are opaque or empty, as in most layers.
        for (std::size_t i = 0; i < source.size(); ++i)
            source[i] = i / 19 % 3 == 1 ? source[i] | 0xff000000 : i / 19 % 3 == 2 ? 0 : source[i];
        const std::vector<std::uint32_t> start = randomPixels(std::size_t(count) + 1);
        std::vector<std::uint8_t> coverage(std::size_t(count) + 3);
        for (auto& value : coverage)
            value = mRandom() % 3 ? std::uint8_t(mRandom()) : 0;
        const std::uint32_t color = premultiplied(level << 24 | (mRandom() & 0xffffff));

        const auto destination = [&](std::vector<std::uint32_t>& pixels) {
            return Reference::image(PIXMAN_a8r8g8b8, pixels.data(), count, 1, count * 4);
        };
        auto over = start, faded = start, masked = start, colored = start;
        Reference::over(Reference::image(PIXMAN_a8r8g8b8, source.data(), count, 1, count * 4), nullptr,
            destination(over), 0, 0, 0, 0, count, 1);
        Reference::over(Reference::image(PIXMAN_a8r8g8b8, source.data(), count, 1, count * 4),
            Reference::solid(level << 24), destination(faded), 0, 0, 0, 0, count, 1);
        Reference::over(Reference::solid(color),
            Reference::image(PIXMAN_a8, coverage.data(), count, 1, (count + 3) & ~3), destination(masked), 0,
            0, 0, 0, count, 1);
        Reference::over(Reference::solid(color), nullptr, destination(colored), 0, 0, 0, 0, count, 1);

        for (const LayerBlendLoops* loops : availableLayerBlendLoops()) {
            auto plain = start, a = start, b = start, c = start;
            loops->over(plain.data(), source.data(), std::size_t(count));
            loops->overFaded(a.data(), source.data(), std::size_t(count), std::uint8_t(level));
            loops->overMask(b.data(), coverage.data(), color, std::size_t(count));
            loops->overColor(c.data(), color, std::size_t(count));
            ASSERT_EQ(plain, over) << loops->name << " count " << count;
            ASSERT_EQ(a, faded) << loops->name << " fade " << level;
            ASSERT_EQ(b, masked) << loops->name << " alpha " << level;
            ASSERT_EQ(c, colored) << loops->name << " alpha " << level;
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

        colors.resize(std::size_t(width * height));
        for (auto& pixel : colors)
            pixel = premultiplied(std::uint32_t(random()));
        coverage.resize(std::size_t((width + 3) * height));
        for (auto& value : coverage)
            value = std::uint8_t(random());
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
    void drawByReference(pixman_format_code_t format, std::uint8_t* pixels, int stride, int bytesPerPixel,
        const LayerInfo& destination)
    {
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
        for (int y = y0; y < y1 && x0 < x1; ++y) {
            pixman_image_t *source, *mask = nullptr;
            const int row = y - info.frameMinY, column = x0 - info.frameMinX;
            if (info.bitmapType == LayerBitmap32) {
                const int width = info.frameMaxX - info.frameMinX;
                source = Reference::image(
                    PIXMAN_a8r8g8b8, colors.data() + row * width + column, x1 - x0, 1, width * 4);
                mask = Reference::solid(fade << 24);
            } else {
                source = Reference::solid(color);
            }
            if (info.bitmapType == LayerBitmapMask)
                mask = Reference::image(PIXMAN_a8, coverage.data() + row * info.alphaBytesPerRow + column,
                    x1 - x0, 1, (x1 - x0 + 3) & ~3);
            Reference::over(source, mask,
                Reference::image(format, pixels + y * stride + x0 * bytesPerPixel, x1 - x0, 1, (x1 - x0) * 4),
                0, 0, 0, 0, x1 - x0, 1);
        }
    }
};

struct DepthCase {
    const char* name;
    int bitmapType;
    int bytesPerPixel;
    pixman_format_code_t format;
};

class LayerCompositorDepths : public ::testing::TestWithParam<DepthCase> { };

LayerInfo pageRecord(std::vector<std::uint8_t>& pixels, const DepthCase& depth)
{
    LayerInfo page;
    page.layerInfoVersion = 1;
    page.bitmapType = depth.bitmapType;
    page.fade = 1;
    page.colorData = pixels.data();
    page.colorBytesPerRow = pageWidth * depth.bytesPerPixel;
    page.frameMaxX = pageWidth;
    page.frameMaxY = pageHeight;
    page.clipMaxX = pageWidth - 1;
    page.clipMaxY = pageHeight - 1;
    return page;
}

const LayerInfo* chained(std::vector<std::unique_ptr<TestLayer>>& layers)
{
    for (std::size_t i = 0; i < layers.size(); ++i)
        layers[i]->info.next = i + 1 < layers.size() ? &layers[i + 1]->info : nullptr;
    return layers.empty() ? nullptr : &layers.front()->info;
}

} // namespace

TEST_P(LayerCompositorDepths, ChainEqualsPixmanFromTheBottomUpAndStaysInTheClip)
{
    std::mt19937 random(11);
    for (int round = 0; round < 400; ++round) {
        std::vector<std::unique_ptr<TestLayer>> layers;
        for (unsigned count = random() % 12; count; --count)
            layers.push_back(std::make_unique<TestLayer>(random));

        std::vector<std::uint8_t> expected(std::size_t(pageWidth * pageHeight * GetParam().bytesPerPixel));
        for (auto& byte : expected)
            byte = std::uint8_t(random());
        if (GetParam().bitmapType == LayerBitmap16) // pixman clears the unused bit of what it touches
            for (std::size_t i = 1; i < expected.size(); i += 2)
                expected[i] &= 0x7f;
        std::vector<std::uint8_t> actual = expected;
        LayerInfo page = pageRecord(actual, GetParam());
        page.clipMinX = int(random() % 40);
        page.clipMinY = int(random() % 40);
        page.clipMaxX = page.clipMinX + int(random() % 60) - 2;
        page.clipMaxY = std::min(pageHeight - 1, page.clipMinY + int(random() % 60) - 2);

        LayerInfo limits = page; // a clip may reach past the frame
        limits.clipMaxX = std::min(page.clipMaxX, pageWidth - 1);
        for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer)
            (*layer)->drawByReference(
                GetParam().format, expected.data(), page.colorBytesPerRow, GetParam().bytesPerPixel, limits);
        LayerCompositor::composite(page, chained(layers));
        ASSERT_EQ(actual, expected) << "round " << round;
    }
}

INSTANTIATE_TEST_SUITE_P(Depths, LayerCompositorDepths,
    ::testing::Values(DepthCase { "Bits32", LayerBitmap32, 4, PIXMAN_a8r8g8b8 },
        DepthCase { "Bits16", LayerBitmap16, 2, PIXMAN_x1r5g5b5 }),
    [](const auto& one) { return one.param.name; });

TEST(LayerCompositor, PixelsBehindOpaqueBoundsAreNeverRead)
{
    void* forbidden = mmap(nullptr, 1 << 20, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(forbidden, MAP_FAILED);
    std::vector<std::uint8_t> pixels(pageWidth * pageHeight * 4, 0x55);
    const LayerInfo page = pageRecord(pixels, { "", LayerBitmap32, 4, PIXMAN_a8r8g8b8 });

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
