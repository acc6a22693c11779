#include <vxr/platform/imaging/ImportAnswers.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <sstream>

namespace vxr::importing {

namespace {

constexpr std::uint32_t mostFileTypes = 1000;
constexpr std::uint32_t mostFrames = 1u << 20;
constexpr double mostPageUnits = 1e7;

/// The text up to the first zero; bytes that no message needs become question marks.
template <std::size_t size> std::string plainText(const char (&text)[size])
{
    std::string plain(text, ::strnlen(text, size));
    for (char& character : plain)
        if (static_cast<unsigned char>(character) < ' ' || character == '\x7f')
            character = character == '\n' ? ' ' : '?';
    while (!plain.empty() && plain.back() == ' ')
        plain.pop_back();
    return plain;
}

bool isWord(const std::string& text)
{
    return !text.empty() && text.size() < 12 && std::ranges::all_of(text, [](unsigned char character) {
        return (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
    });
}

std::optional<BitmapFormat> readFormat(const FormatRecord& record)
{
    BitmapFormat format;
    format.width = record.width;
    format.height = record.height;
    format.model = BitmapModel(record.model);
    format.samplesPerPixel = record.samplesPerPixel;
    format.bitsPerSample = record.bitsPerSample;
    format.hasAlpha = record.hasAlpha != 0;
    format.isDrawable = record.isDrawable != 0;
    format.bytesPerRow = record.bytesPerRow;
    const bool isSized = format.width > 0 && format.height > 0 && format.width <= mostPixelsPerSide
        && format.height <= mostPixelsPerSide;
    const bool isModel = record.model == 1 || record.model == 3 || record.model == 4;
    if (!isSized || !isModel || record.hasAlpha > 1 || record.isDrawable > 1
        || (format.bitsPerSample != 8 && format.bitsPerSample != 16))
        return std::nullopt;
    if (format.isDrawable ? record.model != 3 || format.samplesPerPixel != 4 || format.bitsPerSample != 8
                          : format.samplesPerPixel != record.model + record.hasAlpha)
        return std::nullopt;
    return format;
}

float resolution(float value) { return std::isfinite(value) && value > 0 && value < 1e6f ? value : 0; }

std::span<const std::byte> trailingBytes(std::span<const std::byte> report)
{
    return report.subspan(sizeof(Report));
}

} // namespace

std::optional<Report> readReport(std::span<const std::byte> bytes)
{
    Report report;
    if (bytes.size() < sizeof report)
        return std::nullopt;
    std::memcpy(static_cast<void*>(&report), bytes.data(), sizeof report);
    const bool isOutcome = report.outcome == ImportOutcome::Done || report.outcome == ImportOutcome::Refused
        || report.outcome == ImportOutcome::TooLarge;
    if (report.magic != protocolMagic || !isOutcome || report.trailingBytes != bytes.size() - sizeof report)
        return std::nullopt;
    return report;
}

std::optional<BitmapInfo> readBitmapInfo(std::span<const std::byte> bytes)
{
    const auto report = readReport(bytes);
    if (!report)
        return std::nullopt;
    const BitmapRecord& record = report->bitmap;
    const auto format = readFormat(record.source);
    BitmapInfo info;
    info.kind = plainText(record.kind);
    if (!format || format->isDrawable || !isWord(info.kind))
        return std::nullopt;
    info.format = *format;
    info.horizontalResolution = resolution(record.horizontalResolution);
    info.verticalResolution = resolution(record.verticalResolution);
    info.orientation = record.orientation >= 1 && record.orientation <= 8 ? record.orientation : 1;
    info.frames = std::clamp(record.frames, 1u, mostFrames);
    info.isPlainJPEG = record.isPlainJPEG == 1;
    info.profileName = plainText(record.profileName);
    const auto profile = trailingBytes(bytes);
    info.profile.assign(profile.begin(), profile.end());
    return info;
}

std::optional<BitmapFormat> readPixelFormat(const Report& report, std::uint64_t payloadBytes)
{
    const auto format = readFormat(report.bitmap.pixels);
    if (!format)
        return std::nullopt;
    const std::uint64_t least
        = std::uint64_t { format->width } * format->samplesPerPixel * (format->bitsPerSample / 8);
    // Sides are limited, so the product can't overflow.
    const bool fits = format->bytesPerRow >= least && format->bytesPerRow <= std::uint64_t { 1 } << 30
        && format->bytesPerRow * format->height <= payloadBytes;
    const bool isAligned = !format->isDrawable || format->bytesPerRow % 4 == 0;
    return fits && isAligned ? format : std::nullopt;
}

std::optional<DocumentInfo> readDocumentInfo(const Report& report)
{
    const DocumentRecord& record = report.document;
    DocumentInfo info;
    info.pages = record.pages;
    info.rotation = record.rotation;
    info.version = plainText(record.version);
    if (info.pages == 0 || info.rotation < 0 || info.rotation >= 360 || info.rotation % 90 != 0)
        return std::nullopt;
    PageBox* boxes[] { &info.media, &info.crop, &info.bleed, &info.trim, &info.art };
    for (std::size_t i = 0; i < std::size(boxes); ++i) {
        const auto& [x, y, width, height] = record.boxes[i];
        for (const double value : { x, y, width, height })
            if (!(std::abs(value) < mostPageUnits))
                return std::nullopt;
        if (width < 0 || height < 0)
            return std::nullopt;
        *boxes[i] = { x, y, width, height };
    }
    return info;
}

std::vector<ImportFileType> readFileTypes(std::span<const std::byte> report)
{
    std::vector<ImportFileType> types;
    if (!readReport(report))
        return types;
    const auto text = trailingBytes(report);
    std::istringstream lines(std::string(reinterpret_cast<const char*>(text.data()), text.size()));
    std::string line;
    while (types.size() < mostFileTypes && std::getline(lines, line)) {
        // The quoted type may hold a blank: fields are apart by tabs.
        const auto first = line.find('\t'), second = line.rfind('\t');
        if (first == second)
            continue;
        ImportFileType type { line.substr(0, first), line.substr(first + 1, second - first - 1) };
        const std::string kind = line.substr(second + 1);
        if (type.hfsType == "-")
            type.hfsType.clear();
        const bool isQuoted = type.hfsType.empty()
            || (type.hfsType.size() == 6 && type.hfsType.front() == '\'' && type.hfsType.back() == '\'');
        if (!isWord(type.extension) || !isQuoted || kind.size() != 1 || kind[0] < '1' || kind[0] > '4')
            continue;
        type.kind = ImportKind(kind[0] - '0');
        types.push_back(std::move(type));
    }
    return types;
}

std::string readMessage(const Report& report) { return plainText(report.message); }

} // namespace vxr::importing
