#include <apps/import/JpegProfiles.h>

#include <apps/import/Profiles.h>

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>

#include <map>
#include <string>
#include <string_view>

namespace vxr::importing {

namespace {

/// The profile in a JPEG's segments; empty when it has none or parts of it are missing.
std::string profileOfJPEG(std::string_view jpeg)
{
    constexpr std::string_view name("ICC_PROFILE\0", 12);
    std::map<std::uint8_t, std::string_view> parts;
    std::size_t count = 0;
    for (std::size_t at = 2; at + 4 <= jpeg.size() && jpeg[at] == '\xff';) {
        const auto code = std::uint8_t(jpeg[at + 1]);
        const std::size_t length = std::size_t(std::uint8_t(jpeg[at + 2])) << 8 | std::uint8_t(jpeg[at + 3]);
        constexpr std::uint8_t startOfScan = 0xda, secondApplication = 0xe2;
        if (code == startOfScan || length < 2 || length > jpeg.size() - at - 2)
            break;
        const std::string_view content = jpeg.substr(at + 4, length - 2);
        if (code == secondApplication && content.starts_with(name) && content.size() > name.size() + 2) {
            count = std::uint8_t(content[name.size() + 1]);
            parts[std::uint8_t(content[name.size()])] = content.substr(name.size() + 2);
        }
        at += 2 + length;
    }
    std::string profile;
    if (parts.size() == count)
        for (const auto& [number, part] : parts)
            profile += part;
    return profile;
}

} // namespace

void honourJPEGProfiles(QPDF& document)
{
    std::map<std::string, QPDFObjectHandle> streams; // pictures of one camera share one
    for (auto object : document.getAllObjects()) {
        if (!object.isStream() || !object.getDict().getKey("/Filter").isNameAndEquals("/DCTDecode"))
            continue;
        auto space = object.getDict().getKey("/ColorSpace");
        const bool isGray = space.isNameAndEquals("/DeviceGray");
        if (!isGray && !space.isNameAndEquals("/DeviceRGB"))
            continue;
        const auto raw = object.getRawStreamData();
        const std::string profile
            = profileOfJPEG({ reinterpret_cast<const char*>(raw->getBuffer()), raw->getSize() });
        const auto model = isGray ? BitmapModel::Gray : BitmapModel::RGB;
        if (profile.empty() || !isProfileOf(model, std::as_bytes(std::span(profile))))
            continue;
        const auto [place, isNew] = streams.try_emplace(profile);
        if (isNew) {
            place->second = document.newStream(profile);
            place->second.getDict().replaceKey("/N", QPDFObjectHandle::newInteger(isGray ? 1 : 3));
            place->second.getDict().replaceKey("/Alternate", space);
        }
        auto array = QPDFObjectHandle::newArray();
        array.appendItem(QPDFObjectHandle::newName("/ICCBased"));
        array.appendItem(place->second);
        object.getDict().replaceKey("/ColorSpace", array);
    }
}

} // namespace vxr::importing
