#include <vxr/host/data/VXEData.h>
#include <vxr/host/data/VXEDataManager.h>
#include <vxr/platform/base/Data.h>
#include <vxr/platform/pictures/HFSFileType.h>

#include <string_view>

namespace vxr {

namespace {

std::size_t hashOf(const Data& data)
{
    return std::hash<std::string_view> {}(
        { reinterpret_cast<const char*>(data.bytes().data()), data.length() });
}

} // namespace

VXEDataManager::VXEDataManager() = default;

VXEDataManager::~VXEDataManager() = default;

std::shared_ptr<VXEData> VXEDataManager::canonicalDataFromVXEData(std::shared_ptr<VXEData> candidate)
{
    const auto data = candidate ? candidate->data() : nullptr;
    if (!data || data->isEmpty())
        return nullptr;
    const std::size_t hash = hashOf(*data);
    auto [entry, last] = mCanonical.equal_range(hash);
    while (entry != last) {
        const auto known = entry->second.lock();
        if (known && known->isEquivalent(*candidate))
            return known;
        entry = known ? std::next(entry) : mCanonical.erase(entry);
    }
    mCanonical.emplace(hash, candidate);
    return candidate;
}

std::shared_ptr<VXEData> VXEDataManager::canonicalDataFromFilePreferredName(
    const std::string& path, const std::string& preferredName)
{
    return canonicalDataFromNSDataPreferredNameType(
        Data::dataWithContentsOfFile(path), preferredName, HFSTypeCodeFromString(HFSTypeStringOfFile(path)));
}

// A name is taken only for bytes that are new.
std::shared_ptr<VXEData> VXEDataManager::canonicalDataFromNSDataPreferredNameType(
    std::shared_ptr<const Data> data, const std::string& preferredName, std::uint32_t hfsType)
{
    if (!data || data->isEmpty())
        return nullptr;
    const auto probe = std::make_shared<VXEData>(data, preferredName, preferredName, hfsType, nullptr);
    auto [entry, last] = mCanonical.equal_range(hashOf(*data));
    for (; entry != last; ++entry) {
        const auto known = entry->second.lock();
        if (known && known->isEquivalent(*probe))
            return known;
    }
    const std::string name = mNamespace.generateUniqueIDFromBase(preferredName).string();
    return canonicalDataFromVXEData(
        std::make_shared<VXEData>(std::move(data), preferredName, name, hfsType, this));
}

std::shared_ptr<VXEData> VXEDataManager::unsharedDataFromNSDataPreferredNameType(
    std::shared_ptr<const Data> data, const std::string& preferredName, std::uint32_t hfsType)
{
    const std::string name = mNamespace.generateUniqueIDFromBase(preferredName).string();
    auto unshared = std::make_shared<VXEData>(std::move(data), preferredName, name, hfsType, this);
    unshared->setSharable(false);
    return unshared;
}

std::shared_ptr<VXEData> VXEDataManager::dataWithSaveNameDisplayNameType(
    const std::string& saveName, const std::string&, std::uint32_t)
{
    for (const auto& [hash, held] : mCanonical) {
        if (auto known = held.lock(); known && known->saveName() == saveName)
            return known;
    }
    return nullptr;
}

std::string VXEDataManager::saveNameForData(const std::shared_ptr<VXEData>& data) { return data->saveName(); }

std::shared_ptr<Object> VXEDataManager::objectWithIdentifierForData(
    const std::string& identifier, const VXEData& data) const
{
    const auto found = mAttached.find({ &data, identifier });
    if (found == mAttached.end() || found->second.data.expired())
        return nullptr;
    return found->second.object.lock();
}

void VXEDataManager::setObjectWithIdentifierForData(
    std::shared_ptr<Object> object, const std::string& identifier, const std::shared_ptr<VXEData>& data)
{
    std::erase_if(mAttached, [](const auto& entry) { return entry.second.object.expired(); });
    mAttached[{ data.get(), identifier }] = { data, object };
}

} // namespace vxr
