#pragma once

#include "Container.h"

#include <vxr/host/data/VXEDataManager.h>
#include <vxr/protocols/VXRStrokeBundleSource.h>

#include <functional>

namespace app {

/// The bytes of a document's pictures, once each: those in its file, which are read when they are needed, and
/// those that have been added. Pictures are known to pages by their names within the folder of pictures.
class DocumentData final : public vxr::VXEDataManager, public vxr::VXRStrokeBundleSource {
public:
    static constexpr const char* folder = "pictures/";

    /// Called with what can't be read.
    using Loss = std::function<void(const std::string&)>;
    explicit DocumentData(Loss lose)
        : mLose(std::move(lose))
    {
    }
    void setSource(std::shared_ptr<const ContainerReader> source) { mSource = std::move(source); }

    /// The name under which the bytes are kept, folder included; the same one for the same bytes.
    std::string add(std::string bytes, const std::string& extension);
    std::vector<std::string> names() const;
    std::string bytes(const std::string& name) const; ///< throws `DocumentFileError`
    const std::map<std::string, std::string>& added() const { return mAdded; }

    std::shared_ptr<vxr::VXEData> dataWithSaveNameDisplayNameType(
        const std::string&, const std::string& displayName, std::uint32_t hfsType) override;
    /// Adds the bytes of data that other managers made.
    std::string saveNameForData(const std::shared_ptr<vxr::VXEData>&) override;
    /// One of those that are installed with the program.
    std::shared_ptr<const vxr::VXRStrokeBundle> strokeBundleForName(const std::string&) override;

private:
    struct Known {
        std::weak_ptr<vxr::VXEData> data; ///< to tell an object that has taken the place of another in memory
        std::string name;
    };

    bool has(const std::string& name) const;

    Loss mLose;
    std::shared_ptr<const ContainerReader> mSource;
    std::map<std::string, std::string> mAdded; ///< by name, folder included
    std::map<std::string, std::weak_ptr<vxr::VXEData>> mGiven;
    std::map<const vxr::VXEData*, Known> mKnown;
};

} // namespace app
