#include <vxr/platform/base/Data.h>
#include <vxr/platform/pictures/Pasteboard.h>

namespace vxr {

Pasteboard::~Pasteboard() = default;

void Pasteboard::setDataForType(std::shared_ptr<const Data> data, std::string_view type)
{
    std::erase_if(mContents, [&](const auto& entry) { return entry.first == type; });
    if (data)
        mContents.emplace_back(type, std::move(data));
}

void Pasteboard::setStringForType(std::string_view string, std::string_view type)
{
    setDataForType(Data::dataWithBytes(string.data(), string.size()), type);
}

std::shared_ptr<const Data> Pasteboard::dataForType(std::string_view type) const
{
    for (const auto& [offered, data] : mContents) {
        if (offered == type)
            return data;
    }
    return nullptr;
}

std::optional<std::string> Pasteboard::stringForType(std::string_view type) const
{
    const auto data = dataForType(type);
    if (!data)
        return std::nullopt;
    return std::string(reinterpret_cast<const char*>(data->bytes().data()), data->length());
}

std::optional<std::string_view> Pasteboard::availableTypeFromArray(
    std::span<const std::string_view> types) const
{
    for (const std::string_view type : types) {
        if (dataForType(type))
            return type;
    }
    return std::nullopt;
}

} // namespace vxr
