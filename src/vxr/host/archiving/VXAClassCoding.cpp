#include <vxr/host/archiving/VXAClassCoding.h>

#include <map>

namespace vxr {

namespace {

std::map<std::type_index, VXAClassCoding>& registry()
{
    static std::map<std::type_index, VXAClassCoding> classes;
    return classes;
}

} // namespace

void VXARegisterClassCoding(std::type_index type, VXAClassCoding coding)
{
    registry().insert_or_assign(type, std::move(coding));
}

const VXAClassCoding* VXAClassCodingForType(std::type_index type)
{
    const auto found = registry().find(type);
    return found == registry().end() ? nullptr : &found->second;
}

const VXAClassCoding* VXAClassCodingNamed(std::string_view name)
{
    for (const auto& [type, coding] : registry())
        if (coding.name == name)
            return &coding;
    return nullptr;
}

} // namespace vxr
