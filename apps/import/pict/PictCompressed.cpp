// Compressed images within pictures: a JPEG with a matrix that places it.
#include <apps/import/pict/PictPlayer.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace vxr::importing {
namespace {

struct JPEGSize {
    int width = 0, height = 0, components = 0;
};

/// From the frame header; all zero when there is none.
JPEGSize sizeOfJPEG(std::span<const std::byte> data)
{
    PictReader reader(data);
    if (reader.left() < 4 || reader.u16() != 0xFFD8)
        return {};
    while (reader.left() >= 4) {
        if (reader.u8() != 0xFF)
            continue;
        const unsigned marker = reader.u8();
        if (marker == 0xFF || marker == 0 || (marker >= 0xD0 && marker <= 0xD9))
            continue;
        const unsigned length = reader.u16();
        if (length < 2 || reader.left() < length - 2u)
            return {};
        PictReader segment(reader.bytes(length - 2));
        // The start of a frame; C4, C8 and CC are tables.
        if (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC
            && segment.left() >= 6) {
            segment.skip(1);
            JPEGSize size;
            size.height = segment.u16();
            size.width = segment.u16();
            size.components = segment.u8();
            return size;
        }
    }
    return {};
}

constexpr std::int64_t pixelLimit = 100'000'000;

} // namespace

void PictPlayer::playCompressed(PictReader data)
{
    data.skip(2); // version
    double matrix[9];
    for (double& m : matrix)
        m = data.fixed();
    const std::size_t matteSize = data.u32();
    data.skip(8); // the matte's rectangle
    data.skip(2); // transfer mode: photographs cover
    const PictRect source = data.rect();
    data.skip(4); // accuracy
    const std::size_t maskSize = data.u32();
    data.skip(matteSize);
    data.skip(maskSize);
    const std::size_t descriptionSize = data.u32();
    if (descriptionSize < 86)
        throw PictError("A compressed image is damaged.");
    PictReader description(data.bytes(descriptionSize - 4));
    const std::uint32_t codec = description.u32();
    description.skip(36);
    const std::size_t size = description.u32();
    constexpr std::uint32_t jpegCodec = 0x6A706567; // "jpeg"
    if (codec == jpegCodec)
        drawCompressed(data, size ? std::min(size, data.left()) : data.left(), source, matrix);
}

void PictPlayer::drawCompressed(
    PictReader& data, std::size_t size, const PictRect& source, const double (&matrix)[9])
{
    const auto jpeg = data.bytes(size);
    const JPEGSize pixels = sizeOfJPEG(jpeg);
    if (pixels.width <= 0 || pixels.height <= 0 || std::int64_t(pixels.width) * pixels.height > pixelLimit
        || (pixels.components != 1 && pixels.components != 3) || source.isEmpty())
        return;
    // The page takes the compressed bytes; the pixels in memory are never looked at.
    cairo_surface_t* const image
        = cairo_image_surface_create(CAIRO_FORMAT_RGB24, pixels.width, pixels.height);
    auto* const bytes = static_cast<unsigned char*>(std::malloc(jpeg.size()));
    if (bytes)
        std::memcpy(bytes, jpeg.data(), jpeg.size());
    const bool isAttached = bytes && cairo_surface_status(image) == CAIRO_STATUS_SUCCESS
        && cairo_surface_set_mime_data(image, CAIRO_MIME_TYPE_JPEG, bytes, jpeg.size(), std::free, bytes)
            == CAIRO_STATUS_SUCCESS;
    if (isAttached) {
        spend(1);
        // The last column of the matrix is that of perspective, which drawings don't use.
        cairo_matrix_t placed;
        cairo_matrix_init(&placed, matrix[0], matrix[1], matrix[3], matrix[4], matrix[6], matrix[7]);
        if (std::abs(matrix[0] * matrix[4] - matrix[1] * matrix[3]) < 1e-9)
            cairo_matrix_init_identity(&placed);
        cairo_save(mPage);
        cairo_transform(mPage, &placed);
        cairo_translate(mPage, -source.left, -source.top);
        cairo_set_source_surface(mPage, image, 0, 0);
        cairo_paint(mPage);
        cairo_restore(mPage);
        double left = 0, top = 0, right = source.width(), bottom = source.height();
        cairo_matrix_transform_point(&placed, &left, &top);
        cairo_matrix_transform_point(&placed, &right, &bottom);
        mHasCompressed = true;
        mCompressedTarget
            = { int(std::floor(std::min(left, right))) - 1, int(std::floor(std::min(top, bottom))) - 1,
                  int(std::ceil(std::max(left, right))) + 1, int(std::ceil(std::max(top, bottom))) + 1 };
    } else {
        std::free(bytes);
    }
    cairo_surface_destroy(image);
}

} // namespace vxr::importing
