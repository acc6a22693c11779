#pragma once

#include <map>
#include <memory>
#include <string>

namespace vxr {
class VXRImageBinary;
}

namespace app {

/// The pictures that a drawing refers to: data URLs, and files in the drawing's own folder or below it.
/// Nothing else is opened.
class PictureReferences {
public:
    /// An empty folder for none.
    explicit PictureReferences(std::string folder);

    /// One object for each reference. Null, with a reason the first time, when there is no such picture.
    std::shared_ptr<vxr::VXRImageBinary> binary(const std::string& reference, std::string& reason);

private:
    std::shared_ptr<vxr::VXRImageBinary> read(const std::string& reference) const;
    std::shared_ptr<vxr::VXRImageBinary> readFile(const std::string& reference) const;

    std::string mFolder;
    std::map<std::string, std::shared_ptr<vxr::VXRImageBinary>, std::less<>> mKnown;
};

} // namespace app
