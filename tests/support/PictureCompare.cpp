#include <tests/support/PictureCompare.h>

#include <vxr/platform/graphics/ImageImpl.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <ostream>

namespace vxr::test {

namespace {

Pixel pixelOf(std::uint32_t value)
{
    return { static_cast<int>(value >> 16 & 255), static_cast<int>(value >> 8 & 255),
        static_cast<int>(value & 255), static_cast<int>(value >> 24) };
}

Picture pictureOf(const void* data, int width, int height, std::size_t bytesPerRow, std::uint32_t fill)
{
    Picture picture { width, height, {} };
    for (int y = 0; y < height; ++y) {
        const auto* row = reinterpret_cast<const std::uint32_t*>(
            static_cast<const std::uint8_t*>(data) + static_cast<std::size_t>(y) * bytesPerRow);
        for (int x = 0; x < width; ++x)
            picture.pixels.push_back(row[x] | fill);
    }
    return picture;
}

/// Opaque grey: white where the two agree, darker the more they differ, black from 64 levels on.
Picture differencePicture(const Picture& a, const Picture& b)
{
    Picture shown { a.width, a.height, {} };
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        const int off = std::min(63, difference(pixelOf(a.pixels[i]), pixelOf(b.pixels[i])));
        const auto grey = static_cast<std::uint32_t>(off == 0 ? 255 : 189 - off * 3);
        shown.pixels.push_back(0xff000000u | grey << 16 | grey << 8 | grey);
    }
    return shown;
}

} // namespace

std::ostream& operator<<(std::ostream& stream, const Pixel& p)
{
    return stream << "rgba(" << p.red << ' ' << p.green << ' ' << p.blue << ' ' << p.alpha << ')';
}

int difference(const Pixel& a, const Pixel& b)
{
    return std::max({ std::abs(a.red - b.red), std::abs(a.green - b.green), std::abs(a.blue - b.blue),
        std::abs(a.alpha - b.alpha) });
}

Pixel Picture::at(int x, int y) const
{
    if (x < 0 || y < 0 || x >= width || y >= height) {
        ADD_FAILURE() << "no pixel at " << x << ", " << y << " in " << width << " x " << height;
        return {};
    }
    return pixelOf(pixels[static_cast<std::size_t>(height - 1 - y) * static_cast<std::size_t>(width)
        + static_cast<std::size_t>(x)]);
}

Pixel pixelAt(const BitmapContext& context, int x, int y)
{
    if (x < 0 || y < 0 || x >= context.width() || y >= context.height()) {
        ADD_FAILURE() << "no pixel at " << x << ", " << y;
        return {};
    }
    const std::size_t wordsPerRow = context.bytesPerRow() / 4;
    return pixelOf(context.pixels()[static_cast<std::size_t>(context.height() - 1 - y) * wordsPerRow
        + static_cast<std::size_t>(x)]);
}

Picture pictureOf(const BitmapContext& context)
{
    return pictureOf(context.pixels(), context.width(), context.height(), context.bytesPerRow(), 0);
}

Picture pictureOf(const Image& image)
{
    const NativePixels& native = *image.impl().native();
    return pictureOf(
        native.pixels, native.width, native.height, static_cast<std::size_t>(native.stride) * 4, 0);
}

std::shared_ptr<const Image> imageOf(const Picture& picture)
{
    const std::size_t bytesPerRow = static_cast<std::size_t>(picture.width) * 4;
    return Image::createWithCopy(ImageLayout::nativeARGB(picture.width, picture.height, bytesPerRow),
        picture.pixels.data(), picture.pixels.size() * 4);
}

PictureDifference compare(const Picture& a, const Picture& b, int tolerance)
{
    if (a.width != b.width || a.height != b.height)
        return { 255, std::max(a.width * a.height, b.width * b.height) };
    PictureDifference result;
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        const int off = difference(pixelOf(a.pixels[i]), pixelOf(b.pixels[i]));
        result.largest = std::max(result.largest, off);
        result.pixelsAbove += off > tolerance;
    }
    return result;
}

::testing::AssertionResult matchesGolden(const Picture& picture, const std::string& name, int tolerance)
{
    const std::filesystem::path folder(VXR_TEST_PICTURES);
    std::filesystem::create_directories(folder);
    const std::string actual = folder / (name + ".actual.png");
    const std::string shown = folder / (name + ".difference.png");
    std::filesystem::remove(actual);
    std::filesystem::remove(shown);

    std::string error;
    const auto golden = Image::createWithPNGFile(VXR_TEST_DATA "/" + name + ".png", &error);
    if (!golden) {
        imageOf(picture)->writePNG(actual);
        return ::testing::AssertionFailure() << error << "; see " << actual;
    }
    const Picture expected = pictureOf(*golden);
    const PictureDifference off = compare(picture, expected, tolerance);
    if (off.pixelsAbove == 0)
        return ::testing::AssertionSuccess();
    imageOf(picture)->writePNG(actual);
    if (picture.width == expected.width && picture.height == expected.height)
        imageOf(differencePicture(picture, expected))->writePNG(shown);
    return ::testing::AssertionFailure() << off.pixelsAbove << " pixels differ from " << name << ".png, by "
                                         << off.largest << " levels at most; see " << actual;
}

::testing::AssertionResult matchesGolden(const BitmapContext& context, const std::string& name, int tolerance)
{
    return matchesGolden(pictureOf(context), name, tolerance);
}

} // namespace vxr::test
