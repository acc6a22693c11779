#include "DocumentData.h"

#include <vxr/host/data/VXEData.h>
#include <vxr/platform/base/Data.h>
#include <vxr/strokes/smart/VXRStrokeBundleFolder.h>

#include <zlib.h>

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace app {

namespace {

std::uint32_t checksumOf(const std::string& bytes)
{
    return static_cast<std::uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

bool isExtension(const std::string& extension)
{
    return !extension.empty() && extension.size() <= 10
        && std::all_of(extension.begin(), extension.end(), [](unsigned char c) { return std::isalnum(c); });
}

} // namespace

bool DocumentData::has(const std::string& name) const
{
    return mAdded.count(name) || (mSource && mSource->has(name));
}

std::string DocumentData::add(std::string bytes, const std::string& extension)
{
    if (!isExtension(extension))
        throw DocumentFileError("'" + extension + "' can't be a picture's extension");
    for (const auto& [name, held] : mAdded) {
        if (held == bytes)
            return name;
    }
    const std::pair<std::uint64_t, std::uint32_t> key { bytes.size(), checksumOf(bytes) };
    for (const std::string& name : names()) {
        // The checksum is told without reading the picture, and may agree by chance.
        if (mSource && mSource->has(name) && mSource->sizeAndChecksum(name) == key
            && mSource->read(name) == bytes)
            return name;
    }
    std::size_t number = names().size();
    std::string name;
    do
        name = std::string(folder) + "picture-" + std::to_string(++number) + "." + extension;
    while (has(name));
    return mAdded.emplace(name, std::move(bytes)).first->first;
}

std::vector<std::string> DocumentData::names() const
{
    std::vector<std::string> names;
    for (const std::string& name : mSource ? mSource->names() : std::vector<std::string>()) {
        if (name.starts_with(folder))
            names.push_back(name);
    }
    for (const auto& [name, bytes] : mAdded)
        names.push_back(name);
    return names;
}

std::string DocumentData::bytes(const std::string& name) const
{
    const auto found = mAdded.find(name);
    if (found != mAdded.end())
        return found->second;
    if (!mSource)
        throw DocumentFileError("'" + name + "' is missing");
    return mSource->read(name);
}

std::shared_ptr<vxr::VXEData> DocumentData::dataWithSaveNameDisplayNameType(
    const std::string& saveName, const std::string& displayName, std::uint32_t hfsType)
{
    const std::string entry = folder + saveName;
    if (const auto given = mGiven[saveName].lock())
        return given;
    if (!has(entry))
        return nullptr;
    const auto added = mAdded.find(entry);
    const std::size_t size = added != mAdded.end()
        ? added->second.size()
        : static_cast<std::size_t>(mSource->sizeAndChecksum(entry).first);
    // The reader may outlast this object, but not the bytes in its file.
    auto reader = [source = mSource, lose = mLose, entry,
                      held = added != mAdded.end() ? added->second : std::string()] {
        try {
            const std::string bytes = held.empty() ? source->read(entry) : held;
            return vxr::Data::dataWithBytes(bytes.data(), bytes.size());
        } catch (const DocumentFileError& error) {
            lose(error.what());
            return std::shared_ptr<const vxr::Data>();
        }
    };
    auto data = std::make_shared<vxr::VXEData>(std::move(reader), size, displayName, saveName, hfsType, this);
    mGiven[saveName] = data;
    mKnown[data.get()] = { data, saveName };
    return data;
}

std::string DocumentData::saveNameForData(const std::shared_ptr<vxr::VXEData>& data)
{
    const auto known = mKnown.find(data.get());
    if (known != mKnown.end() && !known->second.data.expired())
        return known->second.name;
    const auto content = data->data();
    if (!content || content->isEmpty()) // of a picture that is missing
        return data->saveName();
    const std::string extension = data->pathExtension();
    const auto* const bytes = reinterpret_cast<const char*>(content->bytes().data());
    const std::string entry
        = add(std::string(bytes, content->length()), isExtension(extension) ? extension : "bin");
    const std::string name = entry.substr(std::string_view(folder).size());
    mKnown[data.get()] = { data, name };
    return name;
}

std::shared_ptr<const vxr::VXRStrokeBundle> DocumentData::strokeBundleForName(const std::string& name)
{
    static vxr::VXRStrokeBundleFolder bundles = [] {
        std::error_code error;
        const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
        const auto installed = program.parent_path().parent_path() / "share/vxr/strokes";
        return vxr::VXRStrokeBundleFolder(
            std::filesystem::is_directory(installed, error) ? installed.string() : VXR_STROKE_BUNDLES);
    }();
    return bundles.strokeBundleForName(name);
}

} // namespace app
