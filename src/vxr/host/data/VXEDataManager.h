#pragma once

#include <vxr/host/data/VXEDataNamespace.h>

#include <vxr/platform/base/Object.h>

#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace vxr {

class Data;
class VXEData;

/// Under which readers of documents find the data manager.
inline constexpr std::string_view VXEDataHostUnarchiverKey = "VXEDataHostUnarchiverKey";

/// The data objects of one document. Equal bytes have one canonical data object; the objects that others
/// keep for a data object (such as decoded pictures) are found through it. Neither is owned: what nobody
/// uses any more goes.
class VXR_EXPORT VXEDataManager : public Object {
public:
    VXEDataManager();
    ~VXEDataManager() override;

    /// None for a file that can't be read.
    virtual std::shared_ptr<VXEData> canonicalDataFromFilePreferredName(
        const std::string& path, const std::string& preferredName);
    virtual std::shared_ptr<VXEData> canonicalDataFromNSDataPreferredNameType(
        std::shared_ptr<const Data>, const std::string& preferredName, std::uint32_t hfsType);
    virtual std::shared_ptr<VXEData> unsharedDataFromNSDataPreferredNameType(
        std::shared_ptr<const Data>, const std::string& preferredName, std::uint32_t hfsType);
    /// The data object with these bytes: the given one unless there is another. None without bytes.
    virtual std::shared_ptr<VXEData> canonicalDataFromVXEData(std::shared_ptr<VXEData>);

    /// The canonical data object of that save name; none when nobody uses one. A manager that makes it only
    /// now gives it the display name and type.
    virtual std::shared_ptr<VXEData> dataWithSaveNameDisplayNameType(
        const std::string& saveName, const std::string& displayName, std::uint32_t hfsType);
    /// The name under which documents refer to a data object, whoever made it.
    virtual std::string saveNameForData(const std::shared_ptr<VXEData>&);

    virtual std::shared_ptr<Object> objectWithIdentifierForData(
        const std::string& identifier, const VXEData&) const; ///< or none
    virtual void setObjectWithIdentifierForData(
        std::shared_ptr<Object>, const std::string& identifier, const std::shared_ptr<VXEData>&);

    VXEDataNamespace& dataNamespace() { return mNamespace; }

private:
    struct Attached {
        std::weak_ptr<VXEData> data; ///< to tell an object that has taken the place of another in memory
        std::weak_ptr<Object> object;
    };

    std::unordered_multimap<std::size_t, std::weak_ptr<VXEData>> mCanonical; ///< by a hash of the bytes
    std::map<std::pair<const VXEData*, std::string>, Attached> mAttached;
    VXEDataNamespace mNamespace;
};

} // namespace vxr
