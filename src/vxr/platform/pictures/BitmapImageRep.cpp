#include <vxr/platform/base/Data.h>
#include <vxr/platform/graphics/GraphicsContext.h>
#include <vxr/platform/graphics/Image.h>
#include <vxr/platform/graphics/codecs/TIFF.h>
#include <vxr/platform/imaging/Importer.h>
#include <vxr/platform/pictures/BitmapImageRep.h>
#include <vxr/platform/pictures/ImportedImages.h>

#include <cstring>

namespace vxr {

namespace {

constexpr float pointsPerInch = 72;

std::shared_ptr<const ImportedBitmap> decode(
    const std::shared_ptr<const Data>& data, bool useProfile, std::string* reason = nullptr)
{
    const auto file = data ? MemoryFile::createWithCopy(data->bytes()) : nullptr;
    ImportFailure failure { .outcome = ImportOutcome::Unavailable, .message = "Memory is short." };
    auto bitmap = file
        ? Importer::shared().decodeBitmap(*file, { .drawable = true, .useProfile = useProfile }, &failure)
        : nullptr;
    if (!bitmap && reason)
        *reason = failure.message;
    return bitmap;
}

BitmapPlanes planesOfDrawable(const ImportedBitmap& bitmap)
{
    const BitmapFormat& format = bitmap.format();
    BitmapPlanes planes;
    planes.planes[0] = reinterpret_cast<const std::uint8_t*>(bitmap.pixels().data());
    planes.pixelsWide = static_cast<int>(format.width);
    planes.pixelsHigh = static_cast<int>(format.height);
    planes.samplesPerPixel = format.hasAlpha ? 4 : 3;
    planes.bitsPerPixel = 32;
    planes.bytesPerRow = format.bytesPerRow;
    planes.hasAlpha = format.hasAlpha;
    planes.colorSpaceName = kDeviceRGBColorSpace;
    planes.bitmapFormat = kBitmapAlphaFirst;
    return planes;
}

int colorComponents(const BitmapPlanes& planes) { return planes.samplesPerPixel - (planes.hasAlpha ? 1 : 0); }

std::shared_ptr<const ColorSpace> spaceNamed(const std::string& name)
{
    if (name == kDeviceWhiteColorSpace)
        return ColorSpace::deviceGray();
    return name == kDeviceCMYKColorSpace ? ColorSpace::deviceCMYK() : ColorSpace::deviceRGB();
}

AlphaFormat alphaFormat(const BitmapPlanes& planes, bool heedsFormat)
{
    if (!planes.hasAlpha)
        return AlphaFormat::None;
    const unsigned format = heedsFormat ? planes.bitmapFormat : 0;
    const bool first = format & kBitmapAlphaFirst;
    if (format & kBitmapAlphaNonpremultiplied)
        return first ? AlphaFormat::First : AlphaFormat::Last;
    return first ? AlphaFormat::PremultipliedFirst : AlphaFormat::PremultipliedLast;
}

/// Whether the samples lie as an image's do: whole bytes, side by side, nothing between the pixels.
bool liesLikeAnImage(const BitmapPlanes& planes)
{
    return !planes.isPlanar && planes.bitsPerSample == 8 && planes.bitsPerPixel == 8 * planes.samplesPerPixel;
}

/// Samples of any arrangement as bytes side by side; of 16 bits the upper 8.
std::vector<std::uint8_t> meshedBytes(const BitmapPlanes& planes)
{
    const int samples = planes.samplesPerPixel, sampleBytes = planes.bitsPerSample / 8;
    const int pixelBytes = planes.bitsPerPixel / 8;
    std::vector<std::uint8_t> bytes(
        static_cast<std::size_t>(planes.pixelsWide) * static_cast<std::size_t>(planes.pixelsHigh * samples));
    std::uint8_t* out = bytes.data();
    for (int y = 0; y < planes.pixelsHigh; ++y)
        for (int x = 0; x < planes.pixelsWide; ++x)
            for (int s = 0; s < samples; ++s) {
                const std::uint8_t* row = planes.planes[static_cast<std::size_t>(planes.isPlanar ? s : 0)]
                    + static_cast<std::size_t>(y) * planes.bytesPerRow;
                const std::uint8_t* sample = row + static_cast<std::size_t>(x) * pixelBytes
                    + (planes.isPlanar ? 0 : s * sampleBytes);
                std::uint16_t wide = 0;
                if (sampleBytes == 2)
                    std::memcpy(&wide, sample, sizeof wide);
                *out++
                    = sampleBytes == 2 ? static_cast<std::uint8_t>((wide * 255u + 32767) / 65535) : *sample;
            }
    return bytes;
}

} // namespace

BitmapImageRep::~BitmapImageRep() = default;

std::shared_ptr<BitmapImageRep> BitmapImageRep::imageRepWithData(
    const std::shared_ptr<const Data>& data, std::string* reason)
{
    auto bitmap = decode(data, true, reason);
    if (!bitmap || !bitmap->format().isDrawable)
        return nullptr;
    std::shared_ptr<BitmapImageRep> rep(new BitmapImageRep);
    rep->mPlanes = planesOfDrawable(*bitmap);
    if (!bitmap->info().profile.empty())
        rep->mProfile = std::make_shared<const std::vector<std::byte>>(bitmap->info().profile);
    rep->mImported = std::move(bitmap);
    rep->mFile = data;
    return rep;
}

std::shared_ptr<BitmapImageRep> BitmapImageRep::imageRepWithPlanes(const BitmapPlanes& planes,
    std::shared_ptr<const void> owner, std::shared_ptr<const std::vector<std::byte>> profile)
{
    std::shared_ptr<BitmapImageRep> rep(new BitmapImageRep);
    rep->mPlanes = planes;
    rep->mOwner = std::move(owner);
    rep->mProfile = std::move(profile);
    return rep;
}

std::shared_ptr<BitmapImageRep> BitmapImageRep::imageRepWithImage(std::shared_ptr<const Image> image)
{
    BitmapPlanes planes;
    planes.pixelsWide = image->width();
    planes.pixelsHigh = image->height();
    planes.samplesPerPixel = 4;
    planes.bitsPerPixel = 32;
    planes.hasAlpha = true;
    planes.colorSpaceName = kDeviceRGBColorSpace;
    planes.bitmapFormat = kBitmapAlphaNonpremultiplied;
    planes.bytesPerRow = static_cast<std::size_t>(planes.pixelsWide) * 4;
    auto pixels = std::make_shared<std::vector<std::uint8_t>>(straightPixelsOfImage(*image));
    planes.planes[0] = pixels->data();
    return imageRepWithPlanes(planes, std::move(pixels));
}

bool BitmapImageRep::isPlainJPEG() const { return mImported && mImported->info().isPlainJPEG; }

std::shared_ptr<const Image> BitmapImageRep::image(
    std::shared_ptr<const ColorSpace> space, bool heedsFormat) const
{
    if (!hasDataPlanes())
        return nullptr;
    if (mImported)
        return imageOfImportedBitmap(mImported);
    if (!space)
        space = spaceNamed(mPlanes.colorSpaceName);
    if (space->componentCount() != colorComponents(mPlanes))
        return nullptr;
    ImageLayout layout { .width = mPlanes.pixelsWide,
        .height = mPlanes.pixelsHigh,
        .bytesPerRow = mPlanes.bytesPerRow,
        .alpha = alphaFormat(mPlanes, heedsFormat),
        .space = std::move(space) };
    if (liesLikeAnImage(mPlanes))
        return Image::create(layout, mPlanes.planes[0],
            mPlanes.bytesPerRow * static_cast<std::size_t>(mPlanes.pixelsHigh), shared_from_this());
    layout.bytesPerRow
        = static_cast<std::size_t>(mPlanes.pixelsWide) * static_cast<std::size_t>(mPlanes.samplesPerPixel);
    auto bytes = std::make_shared<std::vector<std::uint8_t>>(meshedBytes(mPlanes));
    return Image::create(layout, bytes->data(), bytes->size(), bytes);
}

std::shared_ptr<const Image> BitmapImageRep::imageWithoutProfile(bool heedsFormat) const
{
    return mImported ? imageOfImportedBitmap(decode(mFile, false)) : image(nullptr, heedsFormat);
}

Size BitmapImageRep::size() const
{
    const auto points = [](int pixels, float perInch) {
        return static_cast<float>(pixels) * (perInch > 0 ? pointsPerInch / perInch : 1);
    };
    return { points(mPlanes.pixelsWide, mImported ? mImported->info().horizontalResolution : 0),
        points(mPlanes.pixelsHigh, mImported ? mImported->info().verticalResolution : 0) };
}

bool BitmapImageRep::drawInRect(const Rect& rect) const
{
    const auto drawn = image(nullptr);
    if (drawn)
        currentDrawingPort().drawImage(rect, *drawn);
    return drawn != nullptr;
}

std::shared_ptr<const Data> BitmapImageRep::TIFFRepresentation() const
{
    const auto shown = image(nullptr);
    return shown ? std::make_shared<Data>(tiffOfImage(*shown)) : nullptr;
}

} // namespace vxr
