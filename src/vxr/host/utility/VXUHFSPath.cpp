#include <vxr/host/utility/VXUHFSPath.h>

#include <filesystem>

namespace vxr {

std::string VXUHFSPathByResolvingAlias(const std::string& path)
{
    std::error_code error;
    if (!std::filesystem::is_symlink(path, error))
        return path;
    const auto target = std::filesystem::canonical(path, error);
    return error ? path : target.string();
}

} // namespace vxr
