#include <apps/import/BitmapFile.h>

#include <apps/import/Job.h>
#include <apps/import/PngColor.h>
#include <apps/import/Profiles.h>
#include <apps/import/PsdFile.h>
#include <apps/import/Signatures.h>

#include <vips/vips.h>

#include <algorithm>
#include <memory>

namespace vxr::importing {

namespace {

constexpr int rowsAtOnce = 64;

struct ObjectReleaser {
    void operator()(VipsRegion* region) const { g_object_unref(region); }
};

[[noreturn]] void refuse()
{
    std::string reason = vips_error_buffer();
    vips_error_clear();
    reason = reason.substr(0, reason.find('\n'));
    throw Refusal(reason.empty() ? "The file can't be read." : "The file can't be read: " + reason + ".");
}

int integer(VipsImage* image, const char* name, int otherwise)
{
    int value = 0;
    return vips_image_get_typeof(image, name) && vips_image_get_int(image, name, &value) == 0 ? value
                                                                                              : otherwise;
}

std::vector<std::byte> blob(VipsImage* image, const char* name)
{
    const void* bytes = nullptr;
    std::size_t size = 0;
    if (!vips_image_get_typeof(image, name) || vips_image_get_blob(image, name, &bytes, &size) != 0)
        return {};
    const auto* first = static_cast<const std::byte*>(bytes);
    return { first, first + size };
}

bool isModelOfSamples(VipsInterpretation interpretation)
{
    switch (interpretation) {
    case VIPS_INTERPRETATION_B_W:
    case VIPS_INTERPRETATION_GREY16:
    case VIPS_INTERPRETATION_sRGB:
    case VIPS_INTERPRETATION_RGB:
    case VIPS_INTERPRETATION_RGB16:
    case VIPS_INTERPRETATION_CMYK:
    case VIPS_INTERPRETATION_MULTIBAND:
        return true;
    default:
        return false; // measured colour, or numbers that are no colour at all
    }
}

} // namespace

BitmapFile::BitmapFile(std::span<const std::byte> bytes)
{
    mInfo.kind = bitmapKind(bytes);
    if (mInfo.kind.empty())
        throw Refusal("The file is of no known kind.");
    if (mInfo.kind == "psd")
        openPSD(bytes);
    if (!mImage)
        mImage = vips_image_new_from_buffer(bytes.data(), bytes.size(), "", "access", VIPS_ACCESS_SEQUENTIAL,
            "fail_on", VIPS_FAIL_ON_ERROR, nullptr);
    if (!mImage)
        refuse();
    try {
        normaliseSamples();
        readFormat();
        readMetadata(bytes);
    } catch (...) {
        g_object_unref(mImage);
        throw;
    }
}

BitmapFile::~BitmapFile() { g_object_unref(mImage); }

/// Leaves the image empty for kinds that the loaders read as well.
void BitmapFile::openPSD(std::span<const std::byte> bytes)
{
    PsdFile file;
    if (!file.readHeader(bytes))
        return;
    const auto samples = file.readSamples();
    const bool isWide = file.bitsPerSample == 16;
    mImage = vips_image_new_from_memory_copy(samples.data(), samples.size(), int(file.width),
        int(file.height), int(file.colors + file.hasAlpha), isWide ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR);
    if (!mImage)
        throw OversizeError();
    mImage->Type = file.colors == 4 ? VIPS_INTERPRETATION_CMYK
        : file.colors == 3          ? (isWide ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB)
                                    : (isWide ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_B_W);
    constexpr double inchInMillimetres = 25.4;
    mImage->Xres = mImage->Yres = file.pixelsPerInch > 0 ? file.pixelsPerInch / inchInMillimetres : 1;
    if (!file.profile.empty())
        vips_image_set_blob_copy(mImage, VIPS_META_ICC_NAME, file.profile.data(), file.profile.size());
}

/// Samples become unsigned numbers of 8 or 16 bits in one of the three models.
void BitmapFile::normaliseSamples()
{
    const bool isWhole = mImage->BandFmt == VIPS_FORMAT_UCHAR || mImage->BandFmt == VIPS_FORMAT_USHORT;
    if (isWhole && isModelOfSamples(mImage->Type))
        return;
    VipsImage* converted = nullptr;
    if (vips_colourspace(mImage, &converted, VIPS_INTERPRETATION_sRGB, nullptr) != 0)
        refuse();
    g_object_unref(mImage);
    mImage = converted;
    vips_image_remove(mImage, VIPS_META_ICC_NAME); // described the samples of before
    if (mImage->BandFmt == VIPS_FORMAT_UCHAR)
        return;
    if (vips_cast_uchar(mImage, &converted, nullptr) != 0)
        refuse();
    g_object_unref(mImage);
    mImage = converted;
}

void BitmapFile::readFormat()
{
    BitmapFormat& format = mInfo.format;
    const int bands = mImage->Bands;
    format.hasAlpha = vips_image_hasalpha(mImage) != 0;
    const int colors = bands - format.hasAlpha;
    if (colors != 1 && colors != 3 && colors != 4)
        throw Refusal("The file has " + std::to_string(colors) + " colour components.");
    if (mImage->Xsize <= 0 || mImage->Ysize <= 0 || std::uint32_t(mImage->Xsize) > mostPixelsPerSide
        || std::uint32_t(mImage->Ysize) > mostPixelsPerSide)
        throw OversizeError();
    format.width = std::uint32_t(mImage->Xsize);
    format.height = std::uint32_t(mImage->Ysize);
    format.model = BitmapModel(colors);
    format.samplesPerPixel = std::uint32_t(bands);
    format.bitsPerSample = mImage->BandFmt == VIPS_FORMAT_USHORT ? 16 : 8;
    format.bytesPerRow = VIPS_IMAGE_SIZEOF_LINE(mImage);
}

void BitmapFile::readMetadata(std::span<const std::byte> bytes)
{
    constexpr double perInch = 25.4; // libvips counts per millimetre
    const bool isPNG = mInfo.kind == "png";
    // What was not stated reads as one pixel per millimetre, or as none at all.
    const auto stated = [](double perMillimetre) { return perMillimetre > 0 && perMillimetre != 1; };
    if (stated(mImage->Xres) && stated(mImage->Yres)) {
        mInfo.horizontalResolution = float(mImage->Xres * perInch);
        mInfo.verticalResolution = float(mImage->Yres * perInch);
    }
    const int orientation = integer(mImage, VIPS_META_ORIENTATION, 1);
    mInfo.orientation = orientation >= 1 && orientation <= 8 ? std::uint32_t(orientation) : 1;
    // Pages of others are layers or smaller copies.
    if (mInfo.kind == "gif" || mInfo.kind == "tif" || mInfo.kind == "webp")
        mInfo.frames = std::uint32_t(std::max(vips_image_get_n_pages(mImage), 1));
    mInfo.profile = blob(mImage, VIPS_META_ICC_NAME);
    if (mInfo.profile.empty() && isPNG)
        mInfo.profile = profileOfPNG(bytes, mInfo.format.model);
    if (!mInfo.profile.empty() && !isProfileOf(mInfo.format.model, mInfo.profile))
        mInfo.profile.clear();
    mInfo.isPlainJPEG = mInfo.kind == "jpg" && mInfo.orientation == 1 && mInfo.format.bitsPerSample == 8
        && mInfo.format.model != BitmapModel::CMYK;
}

void BitmapFile::readRows(const TakeRow& take)
{
    // Strips in this thread: no pool of threads, and little more memory than a strip.
    const std::unique_ptr<VipsRegion, ObjectReleaser> region(vips_region_new(mImage));
    for (int y = 0; y < mImage->Ysize; y += rowsAtOnce) {
        const VipsRect strip { 0, y, mImage->Xsize, std::min(rowsAtOnce, mImage->Ysize - y) };
        if (vips_region_prepare(region.get(), &strip) != 0)
            refuse();
        for (int row = y; row < y + strip.height; ++row)
            take(std::uint32_t(row),
                reinterpret_cast<const std::byte*>(VIPS_REGION_ADDR(region.get(), 0, row)));
    }
}

} // namespace vxr::importing
