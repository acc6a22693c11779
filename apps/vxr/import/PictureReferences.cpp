#include "PictureReferences.h"

#include <vxr/host/data/VXEData.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/platform/base/Data.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace app {

namespace {

namespace files = std::filesystem;

constexpr std::uintmax_t mostBytes = std::uintmax_t { 1 } << 28; ///< of a picture's file

int digit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string withoutPercents(std::string_view text)
{
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isCode
            = text[i] == '%' && i + 2 < text.size() && digit(text[i + 1]) >= 0 && digit(text[i + 2]) >= 0;
        bytes += isCode ? static_cast<char>(digit(text[i + 1]) * 16 + digit(text[i + 2])) : text[i];
        i += isCode ? 2 : 0;
    }
    return bytes;
}

/// White space is passed over; anything else that is no digit of base 64 ends the text.
std::string fromBase64(std::string_view text)
{
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr std::string_view white = " \t\n\r";
    static const auto values = [&] {
        std::array<int, 256> table {};
        table.fill(-1);
        for (std::size_t i = 0; i < digits.size(); ++i)
            table[static_cast<unsigned char>(digits[i])] = static_cast<int>(i);
        return table;
    }();
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    unsigned bits = 0;
    int count = 0;
    for (const char c : text) {
        const int value = values[static_cast<unsigned char>(c)];
        if (value < 0 && white.find(c) != std::string_view::npos)
            continue;
        if (value < 0)
            break;
        bits = bits << 6 | static_cast<unsigned>(value);
        count += 6;
        if (count >= 8)
            bytes += static_cast<char>(bits >> (count -= 8));
    }
    return bytes;
}

/// What files of a media type are called; empty for types that are no picture's.
std::string_view extensionOf(std::string_view mediaType)
{
    struct MediaType {
        std::string_view type, extension;
    };
    static constexpr MediaType known[] { { "image/jpeg", "jpg" }, { "image/jpg", "jpg" },
        { "image/png", "png" }, { "image/gif", "gif" }, { "image/tiff", "tif" }, { "image/webp", "webp" },
        { "image/bmp", "bmp" }, { "image/jp2", "jp2" }, { "image/avif", "avif" }, { "image/heic", "heic" },
        { "image/vnd.microsoft.icon", "ico" }, { "image/x-icon", "ico" },
        { "image/vnd.adobe.photoshop", "psd" }, { "application/pdf", "pdf" } };
    const auto found = std::ranges::find(known, mediaType, &MediaType::type);
    return found == std::end(known) ? std::string_view() : found->extension;
}

std::shared_ptr<vxr::VXRImageBinary> binaryOf(std::string_view bytes, const std::string& name)
{
    return vxr::VXRImageBinary::imageBinaryWithDataNameTypeUsingDataManager(
        vxr::Data::dataWithBytes(std::as_bytes(std::span(bytes))), name, 0, nullptr);
}

std::shared_ptr<vxr::VXRImageBinary> binaryOfDataURL(std::string_view url)
{
    const std::size_t comma = url.find(',');
    if (comma == std::string_view::npos)
        return nullptr;
    std::string_view head = url.substr(0, comma);
    const bool isBase64 = head.ends_with(";base64");
    std::string type(head.substr(0, head.find(';')));
    std::ranges::transform(
        type, type.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
    const std::string_view extension = extensionOf(type);
    if (extension.empty())
        return nullptr;
    const std::string plain = withoutPercents(url.substr(comma + 1));
    return binaryOf(isBase64 ? fromBase64(plain) : plain, "picture." + std::string(extension));
}

bool isWithin(const files::path& file, const files::path& folder)
{
    return std::ranges::mismatch(folder, file).in1 == folder.end();
}

} // namespace

PictureReferences::PictureReferences(std::string folder)
    : mFolder(std::move(folder))
{
}

std::shared_ptr<vxr::VXRImageBinary> PictureReferences::binary(
    const std::string& reference, std::string& reason)
{
    const auto [place, isNew] = mKnown.try_emplace(reference);
    if (!isNew)
        return place->second;
    try {
        auto found = read(reference);
        if (!found || !found->imageIsLoaded())
            throw std::runtime_error("can't be read");
        place->second = std::move(found);
    } catch (const std::exception& error) {
        constexpr std::size_t longest = 60;
        reason = "the picture '" + reference.substr(0, longest) + "' " + error.what();
    }
    return place->second;
}

std::shared_ptr<vxr::VXRImageBinary> PictureReferences::read(const std::string& reference) const
{
    constexpr std::string_view data = "data:";
    if (reference.starts_with(data))
        return binaryOfDataURL(std::string_view(reference).substr(data.size()));
    return readFile(reference);
}

std::shared_ptr<vxr::VXRImageBinary> PictureReferences::readFile(const std::string& reference) const
{
    const std::string name = withoutPercents(reference);
    std::error_code error;
    const files::path folder = files::canonical(mFolder, error);
    // Links are followed first: it counts where the file is.
    const files::path file = error ? files::path() : files::canonical(folder / name, error);
    const bool isRelative = name.find(':') == std::string::npos && files::path(name).is_relative();
    if (mFolder.empty() || !isRelative || (!error && !isWithin(file, folder)))
        throw std::runtime_error("is not in the folder of the drawing");
    if (error || !files::is_regular_file(file, error))
        throw std::runtime_error("is not there");
    if (files::file_size(file, error) > mostBytes || error)
        throw std::runtime_error("is too large");
    return vxr::VXRImageBinary::epsImageBinaryFromFileUsingDataManagerError(file.string(), nullptr, nullptr);
}

} // namespace app
