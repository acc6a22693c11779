#include <vxr/platform/graphics/Image.h>

#include <vxr/platform/graphics/BitmapContext.h>
#include <vxr/platform/graphics/ImageImpl.h>

#include <tests/platform/ProfileSupport.h>
#include <tests/support/PictureCompare.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>
#include <unistd.h>

using namespace vxr;
using namespace vxr::test;
using ::testing::HasSubstr;

namespace {

using Bytes = std::vector<std::uint8_t>;

std::shared_ptr<const Image> imageOf(ImageLayout layout, const Bytes& pixels)
{
    if (layout.bytesPerRow == 0)
        layout.bytesPerRow = static_cast<std::size_t>(layout.width) * layout.bytesPerPixel();
    return Image::createWithCopy(layout, pixels.data(), pixels.size());
}

/// Files in a folder of the test's own, gone at the end.
class ImagePNG : public ::testing::Test {
protected:
    const std::filesystem::path folder
        = std::filesystem::path(::testing::TempDir()) / ("vxr-png-" + std::to_string(getpid()));

    ImagePNG() { std::filesystem::create_directories(folder); }
    ~ImagePNG() override { std::filesystem::remove_all(folder); }
    std::ptrdiff_t fileCount() const
    {
        return std::distance(std::filesystem::directory_iterator(folder), {});
    }
};

/// A file's bytes of an image of so many equal pixels on a side.
Bytes fileOfSquare(int side, const std::string& path)
{
    const Bytes pixels(static_cast<std::size_t>(4 * side * side), 90);
    imageOf({ side, side, 0, AlphaFormat::Last, false, nullptr }, pixels)->writePNG(path);
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

/// The error of reading a file of these bytes; empty when it can be read.
std::string errorOf(const Bytes& bytes, const std::string& path)
{
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    std::string error;
    return Image::createWithPNGFile(path, &error) ? "" : error.empty() ? "no reason" : error;
}

struct PixelCase {
    const char* name;
    AlphaFormat alpha;
    std::shared_ptr<const ColorSpace> space;
    Bytes bytes;
    Pixel drawn; ///< premultiplied
};

TEST(Image, EveryLayoutGivesThePixelItMeans)
{
    // 200 * 51 / 255 = 40, 100 * 51 / 255 = 20, 50 * 51 / 255 = 10.
    const auto rgb = ColorSpace::deviceRGB(), gray = ColorSpace::deviceGray(),
               cmyk = ColorSpace::deviceCMYK();
    const auto generic = ColorSpace::createWithDefaultProfile(ColorModel::RGB);
    const PixelCase cases[] = {
        { "rgb without alpha", AlphaFormat::None, rgb, { 200, 100, 50 }, { 200, 100, 50, 255 } },
        { "alpha behind", AlphaFormat::Last, rgb, { 200, 100, 50, 51 }, { 40, 20, 10, 51 } },
        { "alpha before", AlphaFormat::First, rgb, { 51, 200, 100, 50 }, { 40, 20, 10, 51 } },
        { "alpha before, generic", AlphaFormat::First, generic, { 51, 200, 100, 50 }, { 40, 20, 10, 51 } },
        { "premultiplied behind", AlphaFormat::PremultipliedLast, rgb, { 40, 20, 10, 51 },
            { 40, 20, 10, 51 } },
        { "premultiplied before", AlphaFormat::PremultipliedFirst, rgb, { 51, 40, 20, 10 },
            { 40, 20, 10, 51 } },
        { "ignored behind", AlphaFormat::NoneSkipLast, rgb, { 200, 100, 50, 51 }, { 200, 100, 50, 255 } },
        { "ignored before", AlphaFormat::NoneSkipFirst, rgb, { 51, 200, 100, 50 }, { 200, 100, 50, 255 } },
        { "space left out", AlphaFormat::Last, nullptr, { 200, 100, 50, 51 }, { 40, 20, 10, 51 } },
        { "grey", AlphaFormat::None, gray, { 77 }, { 77, 77, 77, 255 } },
        { "grey with alpha", AlphaFormat::Last, gray, { 200, 51 }, { 40, 40, 40, 51 } },
        { "premultiplied grey", AlphaFormat::PremultipliedFirst, gray, { 51, 40 }, { 40, 40, 40, 51 } },
        // Light past the inks: 191 * 204 / 255 = 152.8, 204, 0.
        { "cmyk", AlphaFormat::None, cmyk, { 64, 0, 255, 51 }, { 153, 204, 0, 255 } },
        // Straight inks are 255, 0, 0, 0: cyan, whatever the alpha.
        { "premultiplied cmyk", AlphaFormat::PremultipliedLast, cmyk, { 51, 0, 0, 0, 51 },
            { 0, 51, 51, 51 } },
    };
    for (const PixelCase& c : cases) {
        const auto image = imageOf({ 1, 1, 0, c.alpha, false, c.space }, c.bytes);
        ASSERT_TRUE(image) << c.name;
        EXPECT_EQ(pictureOf(*image).at(0, 0), c.drawn) << c.name;
    }
}

TEST(Image, NativeOrderReadsPixelsAsNumbers)
{
    const std::uint32_t number = 0x33281e14; // alpha 51, then 40, 30, 20
    const auto drawn = [&](AlphaFormat alpha) {
        ImageLayout layout = ImageLayout::nativeARGB(1, 1, 4);
        layout.alpha = alpha;
        return pictureOf(*Image::createWithCopy(layout, &number, 4)).at(0, 0);
    };
    EXPECT_EQ(drawn(AlphaFormat::PremultipliedFirst), (Pixel { 40, 30, 20, 51 }));
    EXPECT_EQ(drawn(AlphaFormat::NoneSkipFirst), (Pixel { 40, 30, 20, 255 }));
    // 0x33, 0x28, 0x1e with alpha 20: 51 * 20 / 255 = 4, 3.1, 2.4
    EXPECT_EQ(drawn(AlphaFormat::Last), (Pixel { 4, 3, 2, 20 }));
}

TEST(Image, PremultiplicationRoundsCorrectlyForEveryValueAndAlpha)
{
    Bytes pixels;
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int value = 0; value < 256; ++value)
            for (const int byte : { value, value, 255 - value, alpha })
                pixels.push_back(static_cast<std::uint8_t>(byte));
    const Picture picture = pictureOf(*imageOf({ 256, 256, 0, AlphaFormat::Last, false, nullptr }, pixels));
    for (int alpha = 0; alpha < 256; ++alpha)
        for (int value = 0; value < 256; ++value) {
            const Pixel pixel = picture.at(value, 255 - alpha);
            ASSERT_EQ(pixel.red, std::lround(value * alpha / 255.0)) << value << " of " << alpha;
            ASSERT_EQ(pixel.blue, std::lround((255 - value) * alpha / 255.0)) << value << " of " << alpha;
        }
}

TEST(Image, ProfileColoursAreConvertedStraightAndThenPremultiplied)
{
    // 64 of 128 is straight 128, which in linear light is sRGB 188; 188 * 128 / 255 = 94.
    const auto linear = ColorSpace::createWithICCProfile(linearRGBProfile(), 3);
    const auto image
        = imageOf({ 1, 1, 0, AlphaFormat::PremultipliedFirst, false, linear }, { 128, 64, 64, 64 });
    EXPECT_LE(difference(pictureOf(*image).at(0, 0), { 94, 94, 94, 128 }), 1);
}

TEST(Image, RefusesImpossibleLayouts)
{
    const Bytes pixels(64);
    const auto possible = [&](int width, int height, std::size_t bytesPerRow, std::size_t size,
                              AlphaFormat alpha = AlphaFormat::Last) {
        const ImageLayout layout { width, height, bytesPerRow, alpha, false, nullptr };
        return Image::createWithCopy(layout, pixels.data(), size) != nullptr;
    };
    EXPECT_TRUE(possible(4, 4, 16, 64));
    EXPECT_FALSE(possible(4, 4, 16, 63));
    EXPECT_TRUE(possible(3, 4, 16, 60)) << "the last row may lack its padding";
    EXPECT_FALSE(possible(3, 4, 16, 59));
    EXPECT_FALSE(possible(0, 4, 16, 64));
    EXPECT_FALSE(possible(4, -1, 16, 64));
    EXPECT_FALSE(possible(4, 32768, 16, 64));
    EXPECT_FALSE(possible(4, 4, 15, 64));
    EXPECT_FALSE(possible(4, 4, std::size_t(-1) / 2, 64));
    EXPECT_FALSE(possible(4, 4, 16, 64, static_cast<AlphaFormat>(7)));
    const ImageLayout fiveBytes { 2, 2, 16, AlphaFormat::Last, true, ColorSpace::deviceCMYK() };
    EXPECT_FALSE(Image::createWithCopy(fiveBytes, pixels.data(), 64)) << "no number has five bytes";
    EXPECT_FALSE(Image::createWithCopy(ImageLayout::nativeARGB(4, 4, 16), nullptr, 64));
}

TEST(Image, NativePixelsAreDrawnWhereTheyLieAndKeepTheirOwner)
{
    auto owner = std::make_shared<std::vector<std::uint32_t>>(std::size_t { 16 }, 0x80402010u);
    const std::weak_ptr<void> watched = owner;
    auto image = Image::create(ImageLayout::nativeARGB(4, 4, 16), owner->data(), 64, owner);
    owner.reset();
    const void* drawn = image->impl().native()->pixels;
    EXPECT_EQ(drawn, image->pixels());

    const auto context = BitmapContext::createBitmap(4, 4);
    context->drawImage({ 0, 0, 4, 4 }, *image);
    EXPECT_FALSE(watched.expired());
    image.reset();
    EXPECT_TRUE(watched.expired());
}

TEST(Image, SmoothImagesLookTheSameWhenTheyAreDrawnTheFastWay)
{
    ImageLayout layout { 301, 97, 301 * 4, AlphaFormat::NoneSkipLast, false, nullptr };
    Bytes pixels;
    for (int y = 0; y < layout.height; ++y)
        for (int x = 0; x < layout.width; ++x)
            for (const int byte : { x * 255 / 300, y * 255 / 96, 128, 0 })
                pixels.push_back(static_cast<std::uint8_t>(byte));
    const auto averaged = imageOf(layout, pixels);
    layout.smooth = true;
    const auto smooth = imageOf(layout, pixels);
    for (const Size size :
        { Size { 20, 11 }, { 90, 60 }, { 60, 90 }, { 280, 120 }, { 301, 97 }, { 900, 40 } }) {
        const auto drawn = [&](const Image& image) {
            const auto context = BitmapContext::createBitmap(160, 160);
            context->translate(80, 80);
            context->rotate(0.4f);
            context->setInterpolationQuality(InterpolationQuality::High);
            context->drawImage({ -size.width / 2, -size.height / 2, size.width, size.height }, image);
            return pictureOf(*context);
        };
        // Half a pixel of the device is what leaving out may shift.
        const double step = 255 / std::min(size.width, size.height);
        EXPECT_LE(compare(drawn(*averaged), drawn(*smooth)).largest, step + 2) << size;
    }
}

TEST_F(ImagePNG, KeepsEveryPixel)
{
    Bytes straight(std::size_t { 37 } * 19 * 4);
    std::mt19937 random(5);
    for (auto& byte : straight)
        byte = static_cast<std::uint8_t>(random());
    const auto image = imageOf({ 37, 19, 0, AlphaFormat::Last, false, nullptr }, straight);
    std::string error;
    ASSERT_TRUE(image->writePNG(folder / "a.png", &error)) << error;
    const auto read = Image::createWithPNGFile(folder / "a.png", &error);
    ASSERT_TRUE(read) << error;
    EXPECT_EQ(read->layout().alpha, AlphaFormat::Last);
    EXPECT_EQ(Bytes(read->pixels(), read->pixels() + straight.size()), straight);
    EXPECT_EQ(fileCount(), 1);

    Picture premultiplied { 256, 256, {} };
    for (std::uint32_t alpha = 0; alpha < 256; ++alpha)
        for (std::uint32_t value = 0; value < 256; ++value)
            premultiplied.pixels.push_back(alpha << 24 | std::min(value, alpha) * 0x010101u);
    ASSERT_TRUE(vxr::test::imageOf(premultiplied)->writePNG(folder / "b.png"));
    EXPECT_EQ(compare(pictureOf(*Image::createWithPNGFile(folder / "b.png")), premultiplied).largest, 0);
}

TEST_F(ImagePNG, FailsWithAReasonAndLeavesNoPartialFile)
{
    const auto image = imageOf({ 1, 1, 0, AlphaFormat::Last, false, nullptr }, { 1, 2, 3, 4 });
    std::string error;
    EXPECT_FALSE(image->writePNG(folder / "no/such/folder.png", &error));
    EXPECT_THAT(error, HasSubstr("No such file"));
    std::filesystem::create_directories(folder / "taken.png/inside");
    EXPECT_FALSE(image->writePNG(folder / "taken.png", &error));
    EXPECT_EQ(fileCount(), 1);

    error.clear();
    EXPECT_FALSE(Image::createWithPNGFile(folder / "none.png", &error));
    EXPECT_THAT(error, HasSubstr("none.png: No such file"));
    EXPECT_FALSE(Image::createWithPNGFile(folder / "taken.png"));
}

TEST_F(ImagePNG, DamagedFilesAreRefusedOrReadButNeverCrash)
{
    const Bytes good = fileOfSquare(24, folder / "a.png");
    for (std::size_t size = 0; size < good.size() - 12; ++size) // all but the end chunk
        EXPECT_NE(errorOf({ good.data(), good.data() + size }, folder / "b.png"), "") << size;
    std::mt19937 random(9);
    for (int round = 0; round < 300; ++round) {
        Bytes bad = good;
        for (int k = 0; k < 4; ++k)
            bad[random() % bad.size()] = static_cast<std::uint8_t>(random());
        errorOf(bad, folder / "b.png");
    }
}

TEST_F(ImagePNG, AHeaderThatPromisesTooMuchTakesNoMemory)
{
    Bytes file = fileOfSquare(1, folder / "a.png");
    const Bytes header { 0, 0, 0x70, 0, 0, 0, 0x70, 0, 8, 6, 0, 0, 0 }; // 28672 x 28672
    std::copy(header.begin(), header.end(), file.begin() + 16);
    std::uint32_t crc = 0xffffffff; // of the chunk's name and body
    for (std::size_t i = 12; i < 29; ++i) {
        crc ^= file[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = crc & 1 ? crc >> 1 ^ 0xedb88320 : crc >> 1;
    }
    for (int i = 0; i < 4; ++i)
        file[29 + static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(~crc >> (24 - 8 * i));
    EXPECT_THAT(errorOf(file, folder / "b.png"), HasSubstr("impossible size"));
}

} // namespace
