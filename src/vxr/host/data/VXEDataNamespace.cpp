#include <vxr/host/data/VXEDataNamespace.h>

#include <filesystem>

namespace vxr {

VXEUniqueID VXEDataNamespace::generateUniqueIDFromBase(const std::string& base)
{
    const std::filesystem::path path(base);
    const std::string stem = path.stem().string(), extension = path.extension().string();
    std::string name = base;
    for (int number = 1; !mUsed.insert(name).second; ++number)
        name = stem + "-" + std::to_string(number) + extension;
    return VXEUniqueID(std::move(name));
}

} // namespace vxr
