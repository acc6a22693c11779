#include <apps/import/Signatures.h>

#include <apps/import/DecoderJobs.h>
#include <apps/import/Libraries.h>
#include <apps/import/pict/Pict.h>

#include <vips/vips.h>

#include <unistd.h>

#include <algorithm>
#include <string_view>

namespace vxr::importing {

namespace {

using namespace std::string_view_literals;

/// One kind of bitmap: how its files begin, which loader or module of loaders reads them, and how they are
/// called.
struct BitmapKind {
    const char* kind;
    std::string_view start, later; ///< `later` stands at `offset`
    std::size_t offset;
    const char* loader; ///< null when it is in a module
    const char* module;
    const char* hfsType;
    const char* extensions;
};

constexpr BitmapKind bitmapKinds[] = {
    { "jpg", "\xff\xd8\xff"sv, {}, 0, "VipsForeignLoadJpegBuffer", nullptr, "'JPEG'", "jpg jpeg jpe jfif" },
    { "png", "\x89PNG\r\n\x1a\n"sv, {}, 0, "VipsForeignLoadPngBuffer", nullptr, "'PNGf'", "png" },
    { "tif", "II*\0"sv, {}, 0, "VipsForeignLoadTiffBuffer", nullptr, "'TIFF'", "tif tiff" },
    { "tif", "MM\0*"sv, {}, 0, "VipsForeignLoadTiffBuffer", nullptr, "'TIFF'", "" },
    { "tif", "II+\0"sv, {}, 0, "VipsForeignLoadTiffBuffer", nullptr, "'TIFF'", "" },
    { "tif", "MM\0+"sv, {}, 0, "VipsForeignLoadTiffBuffer", nullptr, "'TIFF'", "" },
    { "gif", "GIF8"sv, {}, 0, "VipsForeignLoadNsgifBuffer", nullptr, "'GIFf'", "gif" },
    { "bmp", "BM"sv, {}, 0, nullptr, "vips-magick.so", "'BMPf'", "bmp" },
    { "ico", "\0\0\1\0"sv, {}, 0, nullptr, "vips-magick.so", "'ICO '", "ico" },
    { "psd", "8BPS"sv, {}, 0, nullptr, "vips-magick.so", "'8BPS'", "psd" },
    { "jp2", "\0\0\0\x0cjP  \r\n\x87\n"sv, {}, 0, "VipsForeignLoadJp2kBuffer", nullptr, "'jp2 '",
        "jp2 jpf jpx" },
    { "jp2", "\xff\x4f\xff\x51"sv, {}, 0, "VipsForeignLoadJp2kBuffer", nullptr, "", "j2k" },
    { "webp", "RIFF"sv, "WEBP"sv, 8, "VipsForeignLoadWebpBuffer", nullptr, "", "webp" },
    { "heic", ""sv, "ftyphei"sv, 4, nullptr, "vips-heif.so", "", "heic heif" },
    { "heic", ""sv, "ftypmif1"sv, 4, nullptr, "vips-heif.so", "", "" },
    { "avif", ""sv, "ftypavif"sv, 4, nullptr, "vips-heif.so", "", "avif" },
    { "jxl", "\xff\x0a"sv, {}, 0, nullptr, "vips-jxl.so", "", "" },
    { "jxl", "\0\0\0\x0cJXL \r\n\x87\n"sv, {}, 0, nullptr, "vips-jxl.so", "", "jxl" },
};

bool canLoad(const BitmapKind& kind)
{
    return kind.loader ? g_type_from_name(kind.loader) != 0
                       : ::access((moduleFolder() + kind.module).c_str(), R_OK) == 0;
}

bool hasGhostscript() { return ::access("/usr/bin/gs", X_OK) == 0; }

void add(
    std::vector<ImportFileType>& types, std::string_view extensions, const char* hfsType, ImportKind kind)
{
    while (!extensions.empty()) {
        const auto blank = extensions.find(' ');
        types.push_back({ std::string(extensions.substr(0, blank)), hfsType, kind });
        extensions = blank == std::string_view::npos ? std::string_view() : extensions.substr(blank + 1);
    }
}

} // namespace

std::string bitmapKind(std::span<const std::byte> bytes)
{
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    for (const BitmapKind& kind : bitmapKinds)
        if (text.starts_with(kind.start)
            && text.substr(std::min(kind.offset, text.size())).starts_with(kind.later))
            return kind.kind;
    return {};
}

const char* moduleFor(std::string_view kind)
{
    for (const BitmapKind& known : bitmapKinds)
        if (kind == known.kind)
            return known.module;
    return nullptr;
}

std::vector<ImportFileType> readableFileTypes()
{
    std::vector<ImportFileType> types;
    for (const BitmapKind& kind : bitmapKinds)
        if (canLoad(kind))
            add(types, kind.extensions, kind.hfsType, ImportKind::Bitmap);
    add(types, "pdf", "'PDF '", ImportKind::PDF);
    if (canReadPict())
        add(types, "pict pct pic", "'PICT'", ImportKind::PICT);
    if (hasGhostscript())
        add(types, "eps epsf epi", "'EPSF'", ImportKind::EPS);
    return types;
}

void listFileTypes(JobOutput& output)
{
    std::string lines;
    for (const ImportFileType& type : readableFileTypes())
        lines += type.extension + "\t" + (type.hfsType.empty() ? "-" : type.hfsType) + "\t"
            + std::to_string(unsigned(type.kind)) + "\n";
    const auto bytes = std::as_bytes(std::span(lines));
    output.trailing.assign(bytes.begin(), bytes.end());
}

} // namespace vxr::importing
