#include <vxr/platform/base/Exceptions.h>
#include <vxr/platform/base/FileReplacement.h>
#include <vxr/platform/graphics/ImageImpl.h>

#include <png.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace vxr {

namespace {

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// libpng's simplified API: it reports errors as a message and never jumps.
struct PNGSession {
    png_image image {};

    PNGSession() { image.version = PNG_IMAGE_VERSION; }
    ~PNGSession() { png_image_free(&image); }
    PNGSession(const PNGSession&) = delete;
    PNGSession& operator=(const PNGSession&) = delete;

    std::string message() const { return image.message[0] ? image.message : "not a readable PNG file"; }
};

void report(std::string* error, const std::string& path, const std::string& reason)
{
    if (error)
        *error = path + ": " + reason;
}

/// Deflate cannot compress by more than 1032 to 1, so a header that promises more pixels than the file could
/// hold is rejected before memory is allocated. A pixel has at least one bit.
bool isPlausibleSize(png_uint_32 width, png_uint_32 height, std::size_t fileSize)
{
    constexpr std::size_t pixelLimit = std::size_t { 1 } << 28;
    if (width < 1 || height < 1 || width > static_cast<png_uint_32>(maxImageSide)
        || height > static_cast<png_uint_32>(maxImageSide))
        return false;
    const std::size_t pixels = std::size_t { width } * height;
    return pixels <= pixelLimit && pixels / 8 / 1032 <= fileSize;
}

} // namespace

std::shared_ptr<const Image> Image::createWithPNGFile(const std::string& path, std::string* error)
{
    File file(std::fopen(path.c_str(), "rb"));
    struct stat status { };
    if (!file || ::fstat(::fileno(file.get()), &status) != 0) {
        report(error, path, std::strerror(errno));
        return nullptr;
    }
    PNGSession session;
    if (!S_ISREG(status.st_mode) || !png_image_begin_read_from_stdio(&session.image, file.get())) {
        report(error, path, session.message());
        return nullptr;
    }
    if (!isPlausibleSize(
            session.image.width, session.image.height, static_cast<std::size_t>(status.st_size))) {
        report(error, path, "impossible size");
        return nullptr;
    }
    session.image.format = PNG_FORMAT_RGBA;
    session.image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB; // treats 16-bit files without gamma like 8-bit ones
    ImageLayout layout;
    layout.width = static_cast<int>(session.image.width);
    layout.height = static_cast<int>(session.image.height);
    layout.bytesPerRow = static_cast<std::size_t>(layout.width) * 4;
    layout.alpha = AlphaFormat::Last;
    layout.space = ColorSpace::deviceRGB();
    const std::size_t size = layout.bytesPerRow * static_cast<std::size_t>(layout.height);
    auto pixels = std::make_shared_for_overwrite<std::uint8_t[]>(size);
    if (!png_image_finish_read(&session.image, nullptr, pixels.get(), 0, nullptr)) {
        report(error, path, session.message());
        return nullptr;
    }
    const std::uint8_t* data = pixels.get();
    return create(layout, data, size, std::shared_ptr<const void>(std::move(pixels), data));
}

bool Image::writePNG(const std::string& path, std::string* error) const
{
    const ImageLayout& layout = mImpl->layout;
    const std::size_t rowSize = static_cast<std::size_t>(layout.width) * 4;
    std::vector<std::uint8_t> rgba(rowSize * static_cast<std::size_t>(layout.height));
    for (int y = 0; y < layout.height; ++y)
        readStraightRow(layout, mImpl->bytes(), y, rgba.data() + rowSize * static_cast<std::size_t>(y));

    PNGSession session;
    session.image.width = static_cast<png_uint_32>(layout.width);
    session.image.height = static_cast<png_uint_32>(layout.height);
    session.image.format = PNG_FORMAT_RGBA;
    try {
        FileReplacement file(path);
        if (!png_image_write_to_stdio(&session.image, file.stream(), 0, rgba.data(), 0, nullptr))
            throw GenericException(session.message());
        file.commit();
        return true;
    } catch (const GenericException& failure) {
        report(error, path, failure.what());
        return false;
    }
}

} // namespace vxr
