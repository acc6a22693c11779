#include <apps/import/PngFile.h>

#include <apps/import/Job.h>
#include <apps/import/JobRunner.h>
#include <apps/import/PngColor.h>
#include <apps/import/Profiles.h>

#include <png.h>

#include <bit>
#include <cmath>
#include <cstring>

namespace vxr::importing {

namespace {

void fail(png_structp, png_const_charp reason)
{
    throw Refusal(std::string("The file can't be read: ") + reason + ".");
}

void passOver(png_structp, png_const_charp) { }

void readBytes(png_structp png, png_bytep target, std::size_t size)
{
    auto& left = *static_cast<std::span<const std::byte>*>(png_get_io_ptr(png));
    if (size > left.size())
        throw Refusal("The file ends too early.");
    std::memcpy(target, left.data(), size);
    left = left.subspan(size);
}

} // namespace

struct PngFile::Decoder {
    explicit Decoder(std::span<const std::byte> bytes)
        : left(bytes)
        , png(png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, fail, passOver))
        , info(png ? png_create_info_struct(png) : nullptr)
    {
        if (!info)
            throw OversizeError();
        png_set_read_fn(png, &left, readBytes);
        png_set_user_limits(png, mostPixelsPerSide, mostPixelsPerSide);
    }
    ~Decoder() { png_destroy_read_struct(&png, &info, nullptr); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    std::span<const std::byte> left;
    png_structp png;
    png_infop info;
    int passes = 1;
};

PngFile::PngFile(std::span<const std::byte> bytes)
    : mDecoder(std::make_unique<Decoder>(bytes))
{
    png_read_info(mDecoder->png, mDecoder->info);
    png_uint_32 notesSize = 0;
    png_bytep notes = nullptr;
    if (png_get_eXIf_1(mDecoder->png, mDecoder->info, &notesSize, &notes) != 0)
        throw JobForOthers();
    readFormat();
    readMetadata(bytes);
}

PngFile::~PngFile() = default;

/// Samples become whole bytes, palettes colours, a transparent colour an alpha of its own.
void PngFile::readFormat()
{
    const png_structp png = mDecoder->png;
    const png_infop header = mDecoder->info;
    png_set_expand(png);
    if (std::endian::native == std::endian::little)
        png_set_swap(png);
    mDecoder->passes = png_set_interlace_handling(png);
    png_read_update_info(png, header);
    mInfo.kind = "png";
    BitmapFormat& format = mInfo.format;
    format.width = png_get_image_width(png, header);
    format.height = png_get_image_height(png, header);
    format.samplesPerPixel = png_get_channels(png, header);
    format.hasAlpha = format.samplesPerPixel % 2 == 0;
    format.model = format.samplesPerPixel < 3 ? BitmapModel::Gray : BitmapModel::RGB;
    format.bitsPerSample = png_get_bit_depth(png, header);
    format.bytesPerRow = png_get_rowbytes(png, header);
}

void PngFile::readMetadata(std::span<const std::byte> bytes)
{
    const png_structp png = mDecoder->png;
    const png_infop header = mDecoder->info;
    png_uint_32 x = 0, y = 0;
    int unit = 0;
    if (png_get_pHYs(png, header, &x, &y, &unit) != 0 && unit == PNG_RESOLUTION_METER && x > 0 && y > 0) {
        constexpr double inchInMetres = 0.0254;
        mInfo.horizontalResolution = float(x * inchInMetres);
        mInfo.verticalResolution = float(y * inchInMetres);
    }
    png_charp name = nullptr;
    png_bytep profile = nullptr;
    png_uint_32 size = 0;
    int compression = 0;
    if (png_get_iCCP(png, header, &name, &compression, &profile, &size) != 0) {
        const auto content = std::as_bytes(std::span(profile, size));
        mInfo.profile.assign(content.begin(), content.end());
    }
    if (mInfo.profile.empty())
        mInfo.profile = profileOfPNG(bytes, mInfo.format.model);
    if (!mInfo.profile.empty() && !isProfileOf(mInfo.format.model, mInfo.profile))
        mInfo.profile.clear();
}

void PngFile::readRows(const TakeRow& take)
{
    const png_structp png = mDecoder->png;
    const auto rowBytes = std::size_t(mInfo.format.bytesPerRow);
    const bool isInterlaced = mDecoder->passes > 1;
    std::vector<png_byte> pixels(isInterlaced ? rowBytes * mInfo.format.height : rowBytes);
    for (int pass = 0; pass < mDecoder->passes; ++pass)
        for (std::uint32_t y = 0; y < mInfo.format.height; ++y) {
            png_byte* const row = pixels.data() + (isInterlaced ? rowBytes * y : 0);
            png_read_row(png, row, nullptr);
            if (pass + 1 == mDecoder->passes)
                take(y, reinterpret_cast<const std::byte*>(row));
        }
    png_read_end(png, nullptr);
}

} // namespace vxr::importing
