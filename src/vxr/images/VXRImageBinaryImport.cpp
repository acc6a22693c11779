#include <vxr/host/data/VXEData.h>
#include <vxr/host/data/VXEDataManager.h>
#include <vxr/host/utility/VXUHFSPath.h>
#include <vxr/images/ImageNames.h>
#include <vxr/images/VXRImageBinary.h>
#include <vxr/images/VXRImageData.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/pictures/EPSImageRep.h>
#include <vxr/platform/pictures/HFSFileType.h>
#include <vxr/platform/pictures/ImageRep.h>
#include <vxr/platform/pictures/Pasteboard.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <unistd.h>

namespace vxr {

namespace {

/// MacPaint, SGI and Targa pictures are not accepted, whatever can read them.
constexpr std::array<std::string_view, 17> refusedTypes { "pntg", "PNTG", "pnt", "PNT", "mac", "MAC",
    "'PNTG'", "sgi", "SGI", "rgb", "RGB", "'.SGI'", "targa", "TARGA", "tga", "TGA", "'TPIC'" };

struct TypeName {
    std::string_view type, extension;
};

constexpr std::array<TypeName, 10> extensionsOfHFSTypes { { { "'8BPS'", "psd" }, { "'BMPf'", "bmp" },
    { "'FPIX'", "fpx" }, { "'GIFf'", "gif" }, { "'ICO '", "ico" }, { "'jp2 '", "jp2" }, { "'JPEG'", "jpg" },
    { "'PDF '", "pdf" }, { "'PNGf'", "png" }, { "'qtif'", "qti" } } };

struct PasteboardKind {
    std::string_view type, extension;
    std::uint32_t hfsType;
};

constexpr std::array<PasteboardKind, 3> pasteboardKinds { { { kPasteboardTypePDF, "pdf", kHFSTypePDF },
    { kPasteboardTypeTIFF, "tiff", kHFSTypeTIFF }, { kPasteboardTypePICT, "pict", kHFSTypePICT } } };

bool contains(const std::vector<std::string>& list, std::string_view entry)
{
    return std::ranges::find(list, entry) != list.end();
}

bool isAccepted(const std::string& extension)
{
    return contains(VXRImageBinary::imageFileTypes(), lowerCase(extension));
}

std::string extensionOfHFSType(const std::string& type)
{
    const auto found = std::ranges::find(extensionsOfHFSTypes, std::string_view(type), &TypeName::type);
    return found != extensionsOfHFSTypes.end() ? std::string(found->extension)
                                               : VXRImageBinary::p_stripHFSTypeString(type);
}

/// Up to the first `stop`.
std::string partBefore(const std::string& text, char stop) { return text.substr(0, text.find(stop)); }

std::string trimmed(const std::string& text)
{
    constexpr const char* white = " \t\n\r\v\f";
    const std::size_t first = text.find_first_not_of(white), last = text.find_last_not_of(white);
    return first == std::string::npos ? std::string() : text.substr(first, last + 1 - first);
}

/// At most that many characters of UTF-8.
std::string cutToCharacters(const std::string& text, int limit)
{
    std::size_t end = 0;
    for (; end < text.size(); ++end) {
        const bool begins = (static_cast<unsigned char>(text[end]) & 0xc0) != 0x80;
        if (begins && limit-- == 0)
            break;
    }
    return text.substr(0, end);
}

/// Text beside a pasted picture is mostly its path or its title. A text of several lines that does not begin
/// at the root is no path, so a slash in its first line is part of the title.
std::string nameFromText(const std::string& text)
{
    constexpr int mostCharacters = 200;
    const bool isTitle = !text.starts_with('/') && trimmed(text).find_first_of("\n\r") != std::string::npos;
    std::string name = stringByDeletingPathExtension(isTitle ? text : lastPathComponent(text));
    name = trimmed(name);
    for (const char stop : { '\n', '\r', '\t' })
        name = partBefore(name, stop);
    std::ranges::replace(name, ':', '-');
    std::ranges::replace(name, '/', '-');
    return cutToCharacters(name, mostCharacters);
}

} // namespace

// The list is kept as long as what it is made of is the same: a program that can't be reached now may be
// later.
const std::vector<std::string>& VXRImageBinary::imageFileTypes()
{
    static std::vector<std::string> readable, accepted;
    std::vector<std::string> now = imageUnfilteredFileTypes();
    if (now == readable)
        return accepted;
    readable = std::move(now);
    const std::vector<std::string> eps = EPSImageRep::imageUnfilteredFileTypes();
    accepted.clear();
    std::ranges::copy_if(readable, std::back_inserter(accepted), [&](const std::string& type) {
        return std::ranges::find(refusedTypes, type) == refusedTypes.end() && !contains(eps, type);
    });
    return accepted;
}

std::vector<std::string_view> VXRImageBinary::pasteboardTypes()
{
    std::vector<std::string_view> types;
    for (const PasteboardKind& kind : pasteboardKinds)
        types.push_back(kind.type);
    return types;
}

bool VXRImageBinary::canInitFromFile(const std::string& path)
{
    const std::string file = VXUHFSPathByResolvingAlias(path);
    std::error_code error;
    return ::access(file.c_str(), R_OK) == 0 && !p_saveNameFromPath(file).empty()
        && std::filesystem::is_regular_file(file, error) && std::filesystem::file_size(file, error) > 0
        && !error;
}

bool VXRImageBinary::canInitFromPasteboard(const Pasteboard& pasteboard)
{
    return pasteboard.availableTypeFromArray(pasteboardTypes()).has_value();
}

std::string VXRImageBinary::p_stripHFSTypeString(const std::string& type)
{
    const bool isQuoted = type.size() >= 3 && type.front() == '\'' && type.back() == '\'';
    return isQuoted ? type.substr(1, type.size() - 2) : type;
}

std::string VXRImageBinary::p_saveNameFromPath(const std::string& path)
{
    const std::string component = lastPathComponent(path);
    const std::string base = stringByDeletingPathExtension(component);
    const std::string extension = pathExtension(component);
    if (!extension.empty() && isAccepted(extension))
        return base + "." + extension;
    const std::string mapped = extensionOfHFSType(HFSTypeStringOfFile(path));
    return isAccepted(mapped) ? base + "." + mapped : std::string();
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::registeredBinary(
    VXEDataManager& manager, const std::shared_ptr<VXEData>& data)
{
    if (!data)
        return nullptr;
    auto known = std::dynamic_pointer_cast<VXRImageBinary>(
        manager.objectWithIdentifierForData(std::string(kVXRImageBinaryDMIdentifier), *data));
    return known && known->sharable() ? known : nullptr;
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::binaryWithData(
    std::shared_ptr<VXEData> data, VXEDataManager* manager)
{
    auto binary = std::make_shared<VXRImageBinary>();
    binary->mData = std::move(data);
    binary->_constructImageData();
    if (manager)
        manager->setObjectWithIdentifierForData(
            binary, std::string(kVXRImageBinaryDMIdentifier), binary->mData);
    return binary;
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::imageBinaryFromFileUsingDataManager(
    const std::string& path, VXEDataManager* manager)
{
    return _initFromFileUsingDataManagerSharable(path, manager, true);
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::_initFromFileUsingDataManagerSharable(
    const std::string& path, VXEDataManager* manager, bool sharable)
{
    const std::string file = VXUHFSPathByResolvingAlias(path);
    std::string saveName = ::access(file.c_str(), R_OK) == 0 ? p_saveNameFromPath(file) : std::string();
    if (saveName.empty())
        return nullptr;
    std::shared_ptr<VXEData> data;
    if (sharable && manager) {
        data = manager->canonicalDataFromFilePreferredName(file, saveName);
        if (auto known = registeredBinary(*manager, data))
            return known;
    } else {
        if (manager)
            saveName = manager->dataNamespace().generateUniqueIDFromBase(saveName).string();
        data = std::make_shared<VXEData>(Data::dataWithContentsOfFile(file), saveName, saveName,
            HFSTypeCodeFromString(HFSTypeStringOfFile(file)), nullptr);
        data->setSharable(false);
    }
    if (!data || data->byteSize() == 0)
        return nullptr;
    return binaryWithData(std::move(data), sharable ? manager : nullptr);
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::imageBinaryFromFileDisplayNameUsingDataManagerResourceType(
    const std::string& path, const std::string& displayName, VXEDataManager* manager,
    std::uint32_t resourceType)
{
    if (path.empty() || !manager)
        return nullptr;
    const auto data = manager->canonicalDataFromVXEData(
        std::make_shared<VXEData>(path, displayName, manager, resourceType));
    return data
        ? imageBinaryWithDataNameTypeUsingDataManager(data->data(), lastPathComponent(path), 0, manager)
        : nullptr;
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::imageBinaryWithDataNameTypeUsingDataManager(
    std::shared_ptr<const Data> data, const std::string& name, std::uint32_t hfsType, VXEDataManager* manager)
{
    return _initWithDataNameTypeUsingDataManagerSharable(std::move(data), name, hfsType, manager, true);
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::unsharedImageBinaryWithDataNameTypeUsingDataManager(
    std::shared_ptr<const Data> data, const std::string& name, std::uint32_t hfsType, VXEDataManager* manager)
{
    return _initWithDataNameTypeUsingDataManagerSharable(std::move(data), name, hfsType, manager, false);
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::_initWithDataNameTypeUsingDataManagerSharable(
    std::shared_ptr<const Data> bytes, std::string name, std::uint32_t hfsType, VXEDataManager* manager,
    bool sharable)
{
    if (!bytes || bytes->isEmpty() || !isAccepted(pathExtension(name)))
        return nullptr;
    if (name.starts_with('/'))
        name = lastPathComponent(name);
    std::shared_ptr<VXEData> data;
    if (manager && sharable) {
        data = manager->canonicalDataFromNSDataPreferredNameType(std::move(bytes), name, hfsType);
        if (auto known = registeredBinary(*manager, data))
            return known;
    } else if (manager) {
        data = manager->unsharedDataFromNSDataPreferredNameType(std::move(bytes), name, hfsType);
    } else {
        data = std::make_shared<VXEData>(std::move(bytes), name, name, hfsType, nullptr);
        data->setSharable(false);
    }
    return data ? binaryWithData(std::move(data), sharable ? manager : nullptr) : nullptr;
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::imageBinaryFromPasteboardUsingDataManager(
    const Pasteboard& pasteboard, VXEDataManager* manager)
{
    return _initFromPasteboardUsingDataManagerSharable(pasteboard, manager, true);
}

std::shared_ptr<VXRImageBinary> VXRImageBinary::_initFromPasteboardUsingDataManagerSharable(
    const Pasteboard& pasteboard, VXEDataManager* manager, bool sharable)
{
    const auto type = pasteboard.availableTypeFromArray(pasteboardTypes());
    auto data = type ? pasteboard.dataForType(*type) : nullptr;
    if (!data)
        return nullptr;
    const PasteboardKind& kind = *std::ranges::find(pasteboardKinds, *type, &PasteboardKind::type);
    std::string name = nameFromText(pasteboard.stringForType(kPasteboardTypeString).value_or(""));
    if (name.empty())
        name = "droppedImage";
    return _initWithDataNameTypeUsingDataManagerSharable(
        std::move(data), name + "." + std::string(kind.extension), kind.hfsType, manager, sharable);
}

} // namespace vxr
