#include <tests/images/ImageTestSupport.h>
#include <vxr/platform/graphics/BitmapContext.h>

#include <numeric>
#include <random>

namespace vxr::test {

namespace {

std::shared_ptr<const Image> noise(int width, int height)
{
    std::mt19937 random(7);
    std::vector<std::uint32_t> pixels(static_cast<std::size_t>(width * height));
    for (std::uint32_t& pixel : pixels)
        pixel = 0xff000000 | random();
    return Image::createWithCopy(ImageLayout::nativeARGB(width, height, 4 * static_cast<std::size_t>(width)),
        pixels.data(), 4 * pixels.size());
}

std::vector<std::uint32_t> pixelsOf(const Image& image, const Rect& rect, const AffineTransform& transform)
{
    const auto bitmap = BitmapContext::createBitmap(90, 70);
    bitmap->concatTransform(transform);
    bitmap->setInterpolationQuality(InterpolationQuality::High);
    bitmap->drawImage(rect, image);
    return { bitmap->pixels(), bitmap->pixels() + 90 * 70 };
}

double mean(const Image& image)
{
    double sum = 0;
    const std::size_t count = image.layout().bytesPerRow * static_cast<std::size_t>(image.height());
    for (std::size_t i = 0; i < count; i += 4)
        sum += image.pixels()[i];
    return sum * 4 / static_cast<double>(count);
}

} // namespace

TEST(ImageReduction, KeepsTheMeanOfEverySize)
{
    for (const auto& [width, height] : { std::pair(64, 32), { 63, 32 }, { 65, 33 }, { 1, 40 }, { 3, 1 } }) {
        const auto image = noise(width, height);
        const auto half = image->reduced(1);
        EXPECT_EQ(half->width(), (width + 1) / 2);
        EXPECT_EQ(half->height(), (height + 1) / 2);
        EXPECT_NEAR(mean(*half), mean(*image), 0.5) << width << " x " << height;
    }
    EXPECT_EQ(noise(1, 1)->reduced(3), nullptr);
    EXPECT_EQ(noise(8, 8)->reduced(9)->width(), 1);
}

TEST(ImageReduction, AReducedImageLooksLikeTheImageWhereverItSuffices)
{
    struct Case {
        const char* name;
        Rect rect;
        AffineTransform transform;
        int halvings;
    };
    for (const Case& c : { Case { "Quarter", { 3, 4, 25, 20 }, {}, 1 },
             { "Eighth", { 3.25f, 4.5f, 12.5f, 10 }, {}, 2 }, { "Sixth", { 0, 0, 16.5f, 13.5f }, {}, 1 },
             { "Turned", { 20, 10, 12, 10 }, AffineTransform::makeRotation(0.4f), 2 },
             { "Zoomed", { 1, 1, 5, 4 }, AffineTransform::makeScale(2, 2), 2 } })
        for (const int width : { 100, 101 }) {
            const auto image = noise(width, 80);
            EXPECT_EQ(pixelsOf(*image, c.rect, c.transform),
                pixelsOf(*image->reduced(c.halvings), c.rect, c.transform))
                << c.name << ", " << width << " wide";
        }
}

} // namespace vxr::test
