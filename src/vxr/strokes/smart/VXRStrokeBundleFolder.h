#pragma once

#include <vxr/protocols/VXRStrokeBundleSource.h>

#include <map>
#include <vector>

namespace vxr {

/// The bundles of a folder, each in the file NAME.stroke. They are read when first asked for, and kept.
class VXR_EXPORT VXRStrokeBundleFolder final : public VXRStrokeBundleSource {
public:
    explicit VXRStrokeBundleFolder(std::string folder)
        : mFolder(std::move(folder))
    {
    }

    /// What can't be read is logged once and answered as missing. Names are letters, digits, blanks, hyphens
    /// and underscores.
    std::shared_ptr<const VXRStrokeBundle> strokeBundleForName(const std::string& name) override;
    /// Of the files in the folder, in alphabetical order; empty without the folder.
    std::vector<std::string> names() const;

private:
    std::string mFolder;
    std::map<std::string, std::shared_ptr<const VXRStrokeBundle>> mRead;
};

} // namespace vxr
