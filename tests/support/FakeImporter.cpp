#include <tests/support/FakeImporter.h>

#include <algorithm>
#include <cstring>
#include <sstream>
#include <utility>

namespace vxr::test {

namespace {

void refuse(ImportFailure* failure, bool available)
{
    if (failure)
        *failure = available ? ImportFailure { ImportOutcome::Refused, "The file can't be read." }
                             : ImportFailure { ImportOutcome::Unavailable, "There is no import program." };
}

/// What the map holds for the file; null, and the reason, when there is nothing.
template <class Map> auto* find(Map& map, const MemoryFile& file, bool available, ImportFailure* failure)
{
    const auto found = map.find(bytesOf(file));
    if (available && found != map.end())
        return &found->second;
    refuse(failure, available);
    return decltype(&found->second) { nullptr };
}

std::shared_ptr<const ImportedBitmap> bitmapOver(
    std::vector<std::byte> bytes, const BitmapFormat& format, BitmapInfo info)
{
    auto pixels = std::make_shared<const std::vector<std::byte>>(std::move(bytes));
    return std::make_shared<const ImportedBitmap>(std::move(info), format, pixels->data(), pixels);
}

} // namespace

FakeImporter::FakeImporter()
    : types { { "jpg", "'JPEG'", ImportKind::Bitmap }, { "jpeg", "'JPEG'", ImportKind::Bitmap },
        { "png", "'PNGf'", ImportKind::Bitmap }, { "tif", "'TIFF'", ImportKind::Bitmap },
        { "tiff", "'TIFF'", ImportKind::Bitmap }, { "gif", "'GIFf'", ImportKind::Bitmap },
        { "bmp", "'BMPf'", ImportKind::Bitmap }, { "psd", "'8BPS'", ImportKind::Bitmap },
        { "pdf", "'PDF '", ImportKind::PDF }, { "pict", "'PICT'", ImportKind::PICT },
        { "pct", "'PICT'", ImportKind::PICT }, { "eps", "'EPSF'", ImportKind::EPS } }
{
}

std::shared_ptr<const ImportedBitmap> FakeImporter::bitmap(
    const BitmapFormat& wanted, std::uint8_t sample, BitmapInfo info)
{
    BitmapFormat format = wanted;
    if (format.samplesPerPixel == 0)
        format.samplesPerPixel = unsigned(format.model) + format.hasAlpha;
    if (format.bitsPerSample == 0)
        format.bitsPerSample = 8;
    if (format.bytesPerRow == 0)
        format.bytesPerRow
            = std::uint64_t { format.width } * format.samplesPerPixel * (format.bitsPerSample / 8);
    if (info.kind.empty())
        info.kind = "png";
    if (info.format.width == 0)
        info.format = format;
    return bitmapOver(
        std::vector(std::size_t(format.bytesPerRow * format.height), std::byte(sample)), format, info);
}

std::shared_ptr<const ImportedBitmap> FakeImporter::drawable(
    std::uint32_t width, std::uint32_t height, std::uint32_t color)
{
    BitmapFormat format { .width = width,
        .height = height,
        .samplesPerPixel = 4,
        .bitsPerSample = 8,
        .hasAlpha = color >> 24 != 0xff,
        .isDrawable = true,
        .bytesPerRow = std::uint64_t { width } * 4 };
    std::vector<std::byte> pixels(std::size_t(format.bytesPerRow) * height);
    for (std::size_t at = 0; at < pixels.size(); at += sizeof color)
        std::memcpy(pixels.data() + at, &color, sizeof color);
    BitmapInfo info { .kind = "png", .format = format };
    info.format.isDrawable = false;
    info.format.samplesPerPixel = 3 + format.hasAlpha;
    info.format.bytesPerRow = std::uint64_t { width } * info.format.samplesPerPixel;
    return bitmapOver(std::move(pixels), format, info);
}

const std::vector<ImportFileType>& FakeImporter::fileTypes()
{
    static const std::vector<ImportFileType> none;
    return available ? types : none;
}

std::optional<BitmapInfo> FakeImporter::measureBitmap(const MemoryFile& file, ImportFailure* failure)
{
    calls.push_back("measure bitmap");
    const auto* found = find(bitmaps, file, available, failure);
    return found ? std::optional((*found)->info()) : std::nullopt;
}

std::shared_ptr<const ImportedBitmap> FakeImporter::decodeBitmap(
    const MemoryFile& file, const BitmapRequest& request, ImportFailure* failure)
{
    calls.push_back(std::string("decode") + (request.drawable ? " drawable" : "")
        + (request.useProfile ? "" : " without profile"));
    const auto* found = find(bitmaps, file, available, failure);
    return found ? *found : nullptr;
}

std::optional<DocumentInfo> FakeImporter::measureDocument(const MemoryFile& file, ImportFailure* failure)
{
    calls.push_back("measure document");
    const auto* found = find(documents, file, available, failure);
    return found ? std::optional(*found) : std::nullopt;
}

std::shared_ptr<const ImportedBitmap> FakeImporter::renderPageArea(
    const MemoryFile& file, const PageAreaRequest& area, ImportFailure* failure)
{
    std::ostringstream call;
    call << "area " << area.scaleX << ' ' << area.scaleY << ' ' << area.x << ' ' << area.y << ' '
         << area.width << ' ' << area.height;
    if (area.offsetX != 0 || area.offsetY != 0)
        call << " offset " << area.offsetX << ' ' << area.offsetY;
    calls.push_back(call.str());
    if (!find(documents, file, available, failure))
        return nullptr;
    const auto plain = drawable(std::uint32_t(area.width), std::uint32_t(area.height), pageColor);
    BitmapFormat format = plain->format();
    format.hasAlpha = true;
    return std::make_shared<const ImportedBitmap>(
        plain->info(), format, plain->pixels().data(), plain->owner());
}

std::shared_ptr<const MemoryFile> FakeImporter::normalisedDocument(
    const MemoryFile& file, ImportFailure* failure)
{
    calls.push_back("normalise");
    if (!find(documents, file, available, failure))
        return nullptr;
    const auto found = normalised.find(bytesOf(file));
    return memoryFile(found == normalised.end() ? bytesOf(file) : found->second);
}

std::shared_ptr<const MemoryFile> FakeImporter::converted(const MemoryFile& file, ImportFailure* failure)
{
    const auto* found = find(conversions, file, available, failure);
    return found ? memoryFile(*found) : nullptr;
}

std::shared_ptr<const MemoryFile> FakeImporter::convertEPS(const MemoryFile& file, ImportFailure* failure)
{
    calls.push_back("convert EPS");
    return converted(file, failure);
}

std::shared_ptr<const MemoryFile> FakeImporter::convertPICT(const MemoryFile& file, ImportFailure* failure)
{
    calls.push_back("convert PICT");
    return converted(file, failure);
}

std::shared_ptr<const MemoryFile> FakeImporter::placePages(
    const MemoryFile& written, std::span<const PlacedPage> pages, ImportFailure* failure)
{
    calls.push_back("place " + std::to_string(pages.size()));
    if (!available) {
        refuse(failure, available);
        return nullptr;
    }
    if (std::ranges::any_of(
            pages, [&](const PlacedPage& p) { return bytesOf(*p.document) == unplaceable; })) {
        refuse(failure, true);
        return nullptr;
    }
    std::string result = bytesOf(written);
    for (const PlacedPage& page : pages)
        result += "%" + page.mark + "\n";
    return memoryFile(result);
}

} // namespace vxr::test
