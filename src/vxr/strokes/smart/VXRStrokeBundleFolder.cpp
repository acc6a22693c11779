#include <vxr/strokes/smart/VXRStrokeBundleFolder.h>

#include <vxr/host/utility/VXULog.h>
#include <vxr/strokes/smart/VXRStrokeBundle.h>

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace vxr {

namespace {

constexpr const char* suffix = ".stroke";

bool isName(const std::string& name)
{
    return !name.empty() && name.size() < 64 && std::all_of(name.begin(), name.end(), [](unsigned char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == ' '
            || c == '-' || c == '_';
    });
}

} // namespace

std::shared_ptr<const VXRStrokeBundle> VXRStrokeBundleFolder::strokeBundleForName(const std::string& name)
{
    if (!isName(name))
        return nullptr;
    constexpr std::size_t mostKept = 1024;
    const auto known = mRead.find(name);
    if (known != mRead.end())
        return known->second;
    const std::string path = mFolder + "/" + name + suffix;
    std::ifstream file(path, std::ios::binary);
    std::shared_ptr<const VXRStrokeBundle> bundle;
    if (file) {
        constexpr std::size_t mostBytes = (1 << 20) + 1;
        std::string text(mostBytes, '\0'), error;
        file.read(text.data(), static_cast<std::streamsize>(text.size()));
        text.resize(static_cast<std::size_t>(file.gcount()));
        bundle = VXRStrokeBundle::bundleFromText(text, mFolder, &error);
        if (!bundle)
            VXULog_Fn(VXULogLevelWarning, "VXRStrokeBundleFolder.cpp",
                fmt::format("WARNING, stroke bundle {} can't be read: {}", path, error).c_str());
    }
    if (mRead.size() < mostKept)
        mRead.emplace(name, bundle);
    return bundle;
}

std::vector<std::string> VXRStrokeBundleFolder::names() const
{
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(mFolder, error))
        if (entry.path().extension() == suffix && isName(entry.path().stem().string()))
            names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace vxr
