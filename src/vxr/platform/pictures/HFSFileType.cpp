#include <vxr/platform/pictures/HFSFileType.h>

#include <sys/xattr.h>

namespace vxr {

std::string HFSTypeStringOfFile(const std::string& path)
{
    for (const char* attribute : { "hfs.type", "user.hfs.type" }) {
        char type[4];
        if (::getxattr(path.c_str(), attribute, type, sizeof type) == sizeof type
            && std::string_view(type, sizeof type) != std::string_view("\0\0\0\0", 4))
            return "'" + std::string(type, sizeof type) + "'";
    }
    return {};
}

std::uint32_t HFSTypeCodeFromString(std::string_view quoted)
{
    if (quoted.size() != 6 || quoted.front() != '\'' || quoted.back() != '\'')
        return 0;
    std::uint32_t code = 0;
    for (const char c : quoted.substr(1, 4))
        code = code << 8 | static_cast<unsigned char>(c);
    return code;
}

} // namespace vxr
