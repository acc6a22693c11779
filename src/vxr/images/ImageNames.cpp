#include <vxr/images/ImageNames.h>

namespace vxr {

namespace {

std::string withoutTrailingSlashes(const std::string& path)
{
    const std::size_t end = path.find_last_not_of('/');
    return end == std::string::npos ? std::string() : path.substr(0, end + 1);
}

/// Of the dot before the extension; `npos` without one. A leading dot begins a name.
std::size_t extensionDot(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    const std::size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
    const std::size_t dot = path.rfind('.');
    return dot == std::string::npos || dot <= nameStart || dot + 1 == path.size() ? std::string::npos : dot;
}

} // namespace

std::string lowerCase(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

std::string lastPathComponent(const std::string& path)
{
    const std::string trimmed = withoutTrailingSlashes(path);
    const std::size_t slash = trimmed.rfind('/');
    return slash == std::string::npos ? trimmed : trimmed.substr(slash + 1);
}

std::string pathExtension(const std::string& path)
{
    const std::size_t dot = extensionDot(path);
    return dot == std::string::npos ? std::string() : path.substr(dot + 1);
}

std::string stringByDeletingPathExtension(const std::string& path)
{
    return path.substr(0, extensionDot(path));
}

} // namespace vxr
