#include <vxr/platform/graphics/Image.h>

#include <vxr/platform/graphics/ImageImpl.h>

#include <tests/platform/ProfileSupport.h>
#include <tests/support/PictureCompare.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>

using namespace vxr;
using namespace vxr::test;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace {

using Bytes = std::vector<std::uint8_t>;

std::shared_ptr<const Image> imageOf(ImageLayout layout, const Bytes& pixels)
{
    if (layout.bytesPerRow == 0)
        layout.bytesPerRow = static_cast<std::size_t>(layout.width) * layout.bytesPerPixel();
    return Image::createWithCopy(layout, pixels.data(), pixels.size());
}

/// A folder of this test's own, gone at the end.
class Folder {
public:
    Folder()
        : mPath(std::filesystem::path(::testing::TempDir())
            / ("vxr-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name())))
    {
        std::filesystem::remove_all(mPath);
        std::filesystem::create_directories(mPath);
    }
    ~Folder() { std::filesystem::remove_all(mPath); }
    std::string operator/(const std::string& name) const { return mPath / name; }
    std::ptrdiff_t fileCount() const
    {
        return std::distance(
            std::filesystem::directory_iterator(mPath), std::filesystem::directory_iterator());
    }

private:
    std::filesystem::path mPath;
};

Bytes readFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

void writeFile(const std::string& path, const Bytes& bytes)
{
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
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
    ImageLayout layout = ImageLayout::nativeARGB(1, 1, 4);
    EXPECT_EQ(pictureOf(*Image::createWithCopy(layout, &number, 4)).at(0, 0), (Pixel { 40, 30, 20, 51 }));
    layout.alpha = AlphaFormat::NoneSkipFirst;
    EXPECT_EQ(pictureOf(*Image::createWithCopy(layout, &number, 4)).at(0, 0), (Pixel { 40, 30, 20, 255 }));
    layout.alpha = AlphaFormat::Last; // 0x33, 0x28, 0x1e with alpha 20: 51 * 20 / 255 = 4, 3.1, 2.4
    EXPECT_EQ(pictureOf(*Image::createWithCopy(layout, &number, 4)).at(0, 0), (Pixel { 4, 3, 2, 20 }));
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
    const ImageLayout good { 4, 4, 16, AlphaFormat::Last, false, nullptr };
    const auto accepts = [&](const ImageLayout& layout, std::size_t size) {
        return Image::createWithCopy(layout, pixels.data(), size) != nullptr;
    };
    const auto with = [&](auto change) {
        ImageLayout layout = good;
        change(layout);
        return layout;
    };
    EXPECT_TRUE(accepts(good, 64));
    EXPECT_FALSE(accepts(good, 63));
    EXPECT_FALSE(accepts(with([](auto& l) { l.width = 0; }), 64));
    EXPECT_FALSE(accepts(with([](auto& l) { l.height = -1; }), 64));
    EXPECT_FALSE(accepts(with([](auto& l) { l.bytesPerRow = 15; }), 64));
    EXPECT_FALSE(accepts(with([](auto& l) { l.bytesPerRow = std::size_t(-1) / 2; }), 64));
    EXPECT_FALSE(accepts(with([](auto& l) { l.height = 32768; }), 64));
    EXPECT_FALSE(accepts(with([](auto& l) { l.alpha = static_cast<AlphaFormat>(7); }), 64));
    EXPECT_FALSE(
        accepts(with([](auto& l) { l.space = ColorSpace::deviceCMYK(), l.nativeOrder = true; }), 64));
    EXPECT_FALSE(Image::createWithCopy(good, nullptr, 64));

    // The last row may lack its padding.
    const auto padded = with([](auto& l) { l.bytesPerRow = 16, l.width = 3; });
    EXPECT_TRUE(accepts(padded, 60));
    EXPECT_FALSE(accepts(padded, 59));
}

TEST(Image, NativePixelsAreDrawnWhereTheyLieAndKeepTheirOwner)
{
    auto owner = std::make_shared<std::vector<std::uint32_t>>(std::size_t { 16 }, 0x80402010u);
    const std::weak_ptr<void> watched = owner;
    auto image = Image::create(ImageLayout::nativeARGB(4, 4, 16), owner->data(), 64, owner);
    owner.reset();
    cairo_surface_t* surface = image->impl().surface();
    EXPECT_EQ(cairo_image_surface_get_data(surface), image->pixels());
    EXPECT_EQ(image->impl().surface(), surface);

    cairo_surface_reference(surface); // as a document being written does
    image.reset();
    EXPECT_FALSE(watched.expired());
    cairo_surface_destroy(surface);
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
        Picture pictures[2];
        for (int i = 0; i < 2; ++i) {
            const auto context = CairoContext::createBitmap(160, 160);
            context->translate(80, 80);
            context->rotate(0.4f);
            context->setInterpolationQuality(InterpolationQuality::High);
            context->drawImage(
                { -size.width / 2, -size.height / 2, size.width, size.height }, i == 0 ? *averaged : *smooth);
            pictures[i] = pictureOf(*context);
        }
        // Half a pixel of the device is what leaving out may shift.
        const double step = 255 / std::min(size.width, size.height);
        EXPECT_LE(compare(pictures[0], pictures[1]).largest, step + 2) << size;
    }
}

TEST(ImagePNG, KeepsEveryStraightPixel)
{
    const Folder folder;
    Bytes pixels(std::size_t { 37 } * 19 * 4);
    std::mt19937 random(5);
    for (auto& byte : pixels)
        byte = static_cast<std::uint8_t>(random());
    const auto image = imageOf({ 37, 19, 0, AlphaFormat::Last, false, nullptr }, pixels);
    std::string error;
    ASSERT_TRUE(image->writePNG(folder / "a.png", &error)) << error;
    const auto read = Image::createWithPNGFile(folder / "a.png", &error);
    ASSERT_TRUE(read) << error;
    EXPECT_EQ(read->layout().alpha, AlphaFormat::Last);
    EXPECT_EQ(Bytes(read->pixels(), read->pixels() + pixels.size()), pixels);
    EXPECT_EQ(folder.fileCount(), 1);
}

TEST(ImagePNG, KeepsEveryPremultipliedPixel)
{
    const Folder folder;
    Picture all { 256, 256, {} };
    for (std::uint32_t alpha = 0; alpha < 256; ++alpha)
        for (std::uint32_t value = 0; value < 256; ++value)
            all.pixels.push_back(alpha << 24 | std::min(value, alpha) * 0x010101u);
    ASSERT_TRUE(vxr::test::imageOf(all)->writePNG(folder / "a.png"));
    EXPECT_EQ(compare(pictureOf(*Image::createWithPNGFile(folder / "a.png")), all).largest, 0);
}

TEST(ImagePNG, FailsWithAReasonAndLeavesNoPartialFile)
{
    const Folder folder;
    const auto image = imageOf({ 1, 1, 0, AlphaFormat::Last, false, nullptr }, { 1, 2, 3, 4 });
    std::string error;
    EXPECT_FALSE(image->writePNG(folder / "no/such/folder.png", &error));
    EXPECT_THAT(error, HasSubstr("No such file"));
    std::filesystem::create_directories(folder / "taken.png/inside");
    EXPECT_FALSE(image->writePNG(folder / "taken.png", &error));
    EXPECT_EQ(folder.fileCount(), 1);

    error.clear();
    EXPECT_FALSE(Image::createWithPNGFile(folder / "none.png", &error));
    EXPECT_THAT(error, HasSubstr("none.png: No such file"));
    EXPECT_FALSE(Image::createWithPNGFile(folder / "taken.png", &error));
    EXPECT_FALSE(Image::createWithPNGFile(folder / "none.png"));
}

TEST(ImagePNG, DamagedFilesAreRefusedOrReadButNeverCrash)
{
    const Folder folder;
    Bytes pixels(std::size_t { 24 } * 24 * 4, 90);
    ASSERT_TRUE(
        imageOf({ 24, 24, 0, AlphaFormat::Last, false, nullptr }, pixels)->writePNG(folder / "a.png"));
    const Bytes good = readFile(folder / "a.png");
    const std::string path = folder / "b.png";
    for (std::size_t size = 0; size < good.size() - 12; ++size) { // all but the end chunk
        writeFile(path, Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)));
        std::string error;
        EXPECT_FALSE(Image::createWithPNGFile(path, &error)) << size;
        EXPECT_THAT(error, Not(IsEmpty())) << size;
    }
    std::mt19937 random(9);
    for (int round = 0; round < 300; ++round) {
        Bytes bad = good;
        for (int k = 0; k < 4; ++k)
            bad[random() % bad.size()] = static_cast<std::uint8_t>(random());
        writeFile(path, bad);
        Image::createWithPNGFile(path);
    }
}

TEST(ImagePNG, AHeaderThatPromisesTooMuchTakesNoMemory)
{
    const Folder folder;
    ASSERT_TRUE(
        imageOf({ 1, 1, 0, AlphaFormat::Last, false, nullptr }, { 1, 2, 3, 4 })->writePNG(folder / "a.png"));
    Bytes file = readFile(folder / "a.png");
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
    writeFile(folder / "b.png", file);
    std::string error;
    EXPECT_FALSE(Image::createWithPNGFile(folder / "b.png", &error));
    EXPECT_THAT(error, HasSubstr("impossible size"));
}

} // namespace
